// What the numbers and masks of teams mean, in words for people.
#pragma once

#include <windows.h>

#include <quillet/Export.h>

#include <string>
#include <vector>

/// The texts for display of everything about teams that is a number: one table each, so that every client
/// says the same. They are in English; where the provider has texts in the connection's language (the team
/// modes), those are the better choice for a user. A number without a text gives an empty one.
class QUILLET_API CTeamTexts {
  public:
    /// A number and its text; of a mask, one bit and a sentence.
    struct Entry {
        ULONGLONG m_ullValue;     ///< the number, or one bit
        const wchar_t* m_pszText; ///< what it means
    };

    /// A `CTeam::TeamMode`.
    static std::wstring TeamMode(LONG lMode);
    /// A `CTeam::TeamStatus`.
    static std::wstring TeamStatus(LONG lStatus);
    /// A `CTeam::TeamAutoDetectStatus`.
    static std::wstring AutoDetectStatus(LONG lStatus);
    /// A `CTeam::SwitchCmdStatus`.
    static std::wstring SwitchCmdStatus(LONG lStatus);
    /// The priority of a member.
    static std::wstring MemberRole(LONG lRole);
    /// A `CTeamedAdapter::MemberStatus`.
    static std::wstring MemberStatus(LONG lStatus);
    /// The bits of a check's mask, or of a validation word of the provider's, as sentences without a full
    /// stop, lowest bit first. A bit that has no sentence is "the provider's reason 9 (unknown)", with its
    /// number.
    static std::vector<std::wstring> Problems(ULONGLONG ullMask);
};
