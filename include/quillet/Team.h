// Teams of adapters, their members, and what the team wizard offers.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <cstddef>
#include <string>

/// One team, an instance of "Zorel_TeamOfAdapters".
class QUILLET_API CTeam {
  public:
    /// How a team shares its traffic: the provider's "TeamingMode" numbers, unchanged.
    enum TeamMode : LONG {
        TeamMode0 = 0,
        TeamMode1 = 1,
        TeamMode2 = 2, ///< its members must share a speed
        TeamMode3 = 3,
        TeamMode4 = 4, ///< needs the switch's cooperation
        TeamMode5 = 5, ///< needs the switch's cooperation; two members
        TeamMode6 = 6,
        TeamModeUnknown = 255 ///< any other number of the provider's
    };
    /// "StatusInfo" of the team's logical adapter: the provider's number, unchanged. Other numbers are
    /// carried.
    enum TeamStatus : LONG {
        TeamStatusOther = 1,
        TeamStatusUnknown = 2,
        TeamStatusEnabled = 3,
        TeamStatusDisabled = 4,
        TeamStatusNotApplicable = 5
    };
    /// "Status" of the search for the best team mode: the provider's number, unchanged. Other numbers are
    /// carried.
    enum TeamAutoDetectStatus : LONG {
        TeamAutoDetectNotStarted = 0,
        TeamAutoDetectRunning = 1,
        TeamAutoDetectCompleted = 2,
        TeamAutoDetectFailed = 3
    };
    /// The command of a switch test: the provider's number. Other numbers are carried.
    enum SwitchCmd : LONG { SwitchCmdStart = 0, SwitchCmdQuery = 1, SwitchCmdStop = 2 };
    /// How far a switch test has come: the provider's number, unchanged. Other numbers are carried.
    enum SwitchCmdStatus : LONG {
        SwitchCmdStatusNotStarted = 0,
        SwitchCmdStatusRunning = 1,
        SwitchCmdStatusPassed = 2,
        SwitchCmdStatusFailed = 3,
        SwitchCmdStatusStopped = 4
    };
    /// Bits of the mask of `CQuillet::CreateTeamCheck`.
    enum Problem : ULONGLONG {
        ProblemTooManyMembers = 0x1,   ///< more than 8 members
        ProblemModeNotSupported = 0x4, ///< a member does not support the mode
        ProblemNoVLANs = 0x8,          ///< a member that supports the mode cannot carry VLANs
        ProblemNoServerAdapter = 0x10, ///< no server adapter among the members, or no members at all
        ProblemNameTaken = 0x80,       ///< a team with this caption exists
        ProblemMoreThanTwo = 0x200,    ///< more than 2 members in mode 5
        ProblemNoSharedSpeed = 0x4000, ///< mode 2, and the members share no speed; stands alone
        ProblemMixedSpeeds = 0x8000    ///< 10-gigabit and slow members together; stands alone
    };
    /// The most members that a team has.
    static constexpr std::size_t MaximumMembers = 8;

    /// The team's identifier in every operation: its object path ("__PATH").
    std::wstring m_wsTeamID;
    /// "Name".
    std::wstring m_wsName;
    /// The display name ("Caption").
    std::wstring m_wsCaption;
    /// "TeamingMode".
    TeamMode m_eTeamMode = TeamMode0;
    /// "TeamMacAddress"; only `GetTeamInfo` fills it.
    std::wstring m_wsTeamMacAddress;
    /// "MFOEnabled".
    bool m_bMFOEnabled = false;
    /// "LinksecEnabled".
    bool m_bLinkSecEnabled = false;
    /// "BoundToHyperV"; only `GetTeamInfo` fills it.
    bool m_bBoundToHyperV = false;

    CTeam() = default;
    CTeam(const CTeam&) = default;
    CTeam& operator=(const CTeam&) = default;
    virtual ~CTeam();
};

/// The teams of a machine.
class QUILLET_API CTeams : public CPointerArray<CTeam*> {};

/// One member of a team: a "Zorel_TeamedMemberAdapter" joined with its adapter and its team.
class QUILLET_API CTeamedAdapter {
  public:
    /// Values of `m_lMemberStatus`; other numbers of the provider's pass through.
    enum MemberStatus : LONG {
        MemberStatusUnknown = 0,
        MemberStatusActive = 1,
        MemberStatusInactive = 3,
        MemberStatusMissing = 4 ///< the adapter's hardware is absent
    };

    /// The adapter's own name ("OriginalDisplayName").
    std::wstring m_wsDisplayName = L"Not Available";
    /// The member adapter's identifier, as the operations on adapters take it: its object path ("__PATH").
    std::wstring m_wsAdapterID;
    /// The adapter's "DeviceID".
    std::wstring m_wsDeviceID;
    /// The member's priority ("AdapterFunction"); 1 is the primary member.
    LONG m_lMemberRole = 0;
    /// A `MemberStatus`: "AdapterStatus" of the member, reconciled with the adapter's own state.
    LONG m_lMemberStatus = 0;
    /// The team's display name ("Caption").
    std::wstring m_wsTeamCaption;
    /// The team's object path.
    std::wstring m_wsTeamID;
    /// The adapter's display name ("Caption").
    std::wstring m_wsCaption;

    CTeamedAdapter() = default;
    CTeamedAdapter(const CTeamedAdapter&) = default;
    CTeamedAdapter& operator=(const CTeamedAdapter&) = default;
    virtual ~CTeamedAdapter();
    /// A new copy that the caller owns.
    virtual CTeamedAdapter* Copy() const;
};

/// The members of a team.
class QUILLET_API CTeamedAdapters : public CPointerArray<CTeamedAdapter*> {
  public:
    /// A new deep copy that the caller owns; null for a null collection (see `CPointerArray`).
    CTeamedAdapters* Copy() const;
};

/// An adapter as the team wizard offers it.
class QUILLET_API CTeamWizAdapter {
  public:
    /// The adapter's identifier (object path).
    std::wstring m_wsAdapterID = L"Not Available";
    /// The adapter's own name ("OriginalDisplayName").
    std::wstring m_wsDisplayName = L"Not Available";
    /// The adapter's "DeviceID".
    std::wstring m_wsDeviceID = L"Not Available";
    /// The adapter's "SlotID".
    std::wstring m_wsSlotID = L"Not Available";
    /// The adapter's "AdapterStatus".
    LONG m_lAdapterStatus = 0;

    CTeamWizAdapter() = default;
    CTeamWizAdapter(const CTeamWizAdapter&) = default;
    CTeamWizAdapter& operator=(const CTeamWizAdapter&) = default;
    virtual ~CTeamWizAdapter();
};

/// The adapters that the team wizard offers.
class QUILLET_API CTeamWizAdapters : public CPointerArray<CTeamWizAdapter*> {};

/// A team mode as the team wizard offers it.
class QUILLET_API CTeamWizTeamMode {
  public:
    /// A `CTeam::TeamMode` number.
    LONG m_lTeamMode = 0;
    /// The provider's display text for the mode.
    std::wstring m_wsDescription;

    CTeamWizTeamMode() = default;
    CTeamWizTeamMode(const CTeamWizTeamMode&) = default;
    CTeamWizTeamMode& operator=(const CTeamWizTeamMode&) = default;
    virtual ~CTeamWizTeamMode();
    /// A new copy that the caller owns.
    virtual CTeamWizTeamMode* Copy() const;
};

/// The team modes that an adapter, or a set of adapters, can take part in.
class QUILLET_API CTeamWizTeamModes : public CPointerArray<CTeamWizTeamMode*> {
  public:
    /// A new deep copy that the caller owns; null for a null collection (see `CPointerArray`).
    CTeamWizTeamModes* Copy() const;
};
