// The validation words of the simulated provider: what speaks against a team, as bits.
#pragma once

#include "rules/TeamModel.h"

namespace quillet::simulator {

/// The bits of a validation word.
enum TeamReason : std::uint64_t {
    ReasonTooManyMembers = 0x1,
    ReasonUnknownAdapter = 0x2,
    ReasonModeNotSupported = 0x4,
    ReasonNoServerAdapter = 0x10,
    ReasonTeamedAlready = 0x20,
    ReasonHasVlans = 0x40,
    ReasonNameTaken = 0x80,
    ReasonBadName = 0x100,
    ReasonMoreThanTwo = 0x200,
    ReasonUnknownMode = 0x400,
    ReasonSettingsDiffer = 0x800,
    ReasonNoSharedSpeed = 0x4000,
    ReasonMixedSpeeds = 0x8000
};

/// Against a caption for a team. @param team the one that is to take it; null for a new team
std::uint64_t ReasonsAgainstName(const Repository& store, std::wstring_view caption, const Instance* team);
/// Against a mode for some members.
std::uint64_t ReasonsAgainstMode(const std::vector<InstancePtr>& members, std::int64_t mode);
/// Against adapters (object paths) that are to join some members, none for a new team, in a mode.
std::uint64_t ReasonsAgainstMembers(const Repository& store, const std::vector<InstancePtr>& members,
                                    const std::vector<std::wstring>& added, std::int64_t mode);
/// Against a team of adapters (object paths) because of one of their settings.
std::uint64_t ReasonsAgainstSetting(const Repository& store, const std::vector<std::wstring>& adapters,
                                    const std::wstring& setting);

/// The texts of a string array; null elements are empty texts.
std::vector<std::wstring> TextsOf(const Instance& parameters, std::wstring_view name);

} // namespace quillet::simulator
