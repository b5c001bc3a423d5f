// What the numbers and masks of VLANs mean, in words for people.
#pragma once

#include <windows.h>

#include <quillet/Export.h>

#include <string>
#include <vector>

/// The texts for display of everything about VLANs that is a number, so that every client says the same. They
/// are in English.
class QUILLET_API CVLANTexts {
  public:
    /// A `CVLAN::VlanStatus`; empty for a number without a text.
    static std::wstring Status(LONG lStatus);
    /// The bits of a check's mask (`CVLAN::Problem`) as sentences without a full stop, lowest bit first. A
    /// bit that has no sentence is "problem 9 (unknown)", with its number.
    static std::vector<std::wstring> Problems(ULONGLONG ullMask);
    /// Why an adapter cannot carry VLANs when `ParentSupportingVLAN` returned `CVLAN::ParentIsTeamMember`, as
    /// such a sentence.
    static std::wstring ParentIsTeamMember();
};
