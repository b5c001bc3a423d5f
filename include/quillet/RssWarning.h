// What a change of a team's members does to receive side scaling (RSS) on the team.
#pragma once

#include <windows.h>

/// The warnings of `CQuillet::RSS_PrecheckOnTeamModify`; a check yields at most one of them.
enum RssWarning : ULONGLONG {
    RssWarningNone = 0,
    RssWarningTeamGainsRss = 0x1,          ///< every member will have RSS enabled, which was not so before
    RssWarningDisabledAdapterAdded = 0x2,  ///< an adapter with RSS disabled joins: the whole team loses it
    RssWarningIncapableAdapterAdded = 0x4, ///< an adapter without RSS joins a team that has it enabled
    RssWarningThirdPartyAdded = 0x8,       ///< another maker's adapter joins a team that has it enabled
    RssWarningAddedToIncapableTeam = 0x10, ///< an adapter with RSS enabled joins a team that cannot have it
    RssWarningAddedToMixedTeam = 0x20      ///< an adapter with RSS enabled joins a team of several makers
};
