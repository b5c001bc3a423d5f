// The tables behind the texts of VLANs.
#include <quillet/VLANTexts.h>

#include <quillet/VLAN.h>

#include "Records/TextTable.h"

namespace {

using Entry = CTeamTexts::Entry;

constexpr Entry kStatuses[] = {
    {CVLAN::VlanStatusOther, L"other"},
    {CVLAN::VlanStatusUnknown, L"unknown"},
    {CVLAN::VlanStatusEnabled, L"enabled"},
    {CVLAN::VlanStatusDisabled, L"disabled"},
    {CVLAN::VlanStatusNotApplicable, L"not applicable"},
};

constexpr Entry kVlanProblems[] = {
    {CVLAN::UntaggedAlone, L"the untagged VLAN can only stand beside tagged ones, and there are none"},
    {CVLAN::IDTaken, L"a VLAN with this ID exists"},
    {CVLAN::NameTaken, L"a VLAN with this name exists"},
    {CVLAN::TooMany, L"there would be too many VLANs: 64 is the limit"},
    {CVLAN::IDOutOfRange, L"the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN"},
};

} // namespace

std::wstring CVLANTexts::Status(LONG lStatus) {
    return quillet::TextOf(kStatuses, lStatus);
}

std::vector<std::wstring> CVLANTexts::Problems(ULONGLONG ullMask) {
    return quillet::SentencesOf(kVlanProblems, ullMask, L"problem ");
}

std::wstring CVLANTexts::ParentIsTeamMember() {
    return L"the adapter is a member of a team: VLANs go on the team";
}
