// The tables behind the texts of VLANs.
#include <quillet/VLANTexts.h>

#include <quillet/VLAN.h>

#include <algorithm>

namespace {

struct Entry {
    ULONGLONG value;
    const wchar_t* text;
};

constexpr Entry kStatuses[] = {
    {CVLAN::VlanStatusOther, L"other"},
    {CVLAN::VlanStatusUnknown, L"unknown"},
    {CVLAN::VlanStatusEnabled, L"enabled"},
    {CVLAN::VlanStatusDisabled, L"disabled"},
    {CVLAN::VlanStatusNotApplicable, L"not applicable"},
};

constexpr Entry kProblems[] = {
    {CVLAN::UntaggedAlone, L"the untagged VLAN can only stand beside tagged ones, and there are none"},
    {CVLAN::IDTaken, L"a VLAN with this ID exists"},
    {CVLAN::NameTaken, L"a VLAN with this name exists"},
    {CVLAN::TooMany, L"there would be too many VLANs: 64 is the limit"},
    {CVLAN::IDOutOfRange, L"the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN"},
};

template <std::size_t Count>
const wchar_t* Find(const Entry (&table)[Count], ULONGLONG value) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [value](const Entry& entry) { return entry.value == value; });
    return found == std::end(table) ? nullptr : found->text;
}

} // namespace

std::wstring CVLANTexts::Status(LONG lStatus) {
    const wchar_t* text = lStatus < 0 ? nullptr : Find(kStatuses, static_cast<ULONGLONG>(lStatus));
    return text ? text : L"";
}

std::vector<std::wstring> CVLANTexts::Problems(ULONGLONG ullMask) {
    std::vector<std::wstring> sentences;
    for (unsigned bit = 0; bit < 64; ++bit) {
        const ULONGLONG value = ULONGLONG{1} << bit;
        if ((ullMask & value) != 0) {
            const wchar_t* text = Find(kProblems, value);
            sentences.push_back(text ? text : L"problem " + std::to_wstring(bit));
        }
    }
    return sentences;
}

std::wstring CVLANTexts::ParentIsTeamMember() {
    return L"the adapter is a member of a team: VLANs go on the team";
}
