#include "Vlans/VlanRules.h"

#include "Provider/Trace.h"

namespace {

constexpr LONG FIRST_ID = 1;
constexpr LONG LAST_ID = 4094;

bool IsInRange(const CVLAN& vlan) {
    return vlan.m_lVLANNumber >= FIRST_ID && vlan.m_lVLANNumber <= LAST_ID;
}

/// A finding and its trace line.
ULONGLONG Found(CVLAN::Problem problem, const wchar_t* text) {
    TraceText(text);
    return problem;
}

/// Names are people's: in whatever case they write one, it means the same VLAN.
bool SameName(const std::wstring& left, const std::wstring& right) {
    return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

ULONGLONG OutOfRange() {
    return Found(CVLAN::IDOutOfRange, L"VLAN ID out of range");
}

ULONGLONG SameID() {
    // The line says adapter for teams as well, on purpose.
    return Found(CVLAN::IDTaken, L"VLAN ID not Unique. In an adapter");
}

/// Whether there is no room for one more. Only the very number counts, on purpose: a parent that has more
/// already was filled by other means, and is left to the provider.
bool IsFull(const CVLANs& existing, bool isModify) {
    return !isModify && existing.m_vecItems.size() == VlanRules::MOST_VLANS;
}

} // namespace

namespace VlanRules {

ULONGLONG CheckTaggedID(const CVLAN& vlan) {
    return IsInRange(vlan) ? 0 : OutOfRange();
}

ULONGLONG CheckUntaggedID(const CVLAN& vlan) {
    return vlan.m_lVLANNumber == 0 ? 0 : OutOfRange();
}

ULONGLONG CheckTagged(const CVLANs& existing, const CVLAN& vlan, bool isModify) {
    ULONGLONG problems = 0;
    if (IsFull(existing, isModify)) {
        problems |= Found(CVLAN::TooMany, L"Too Many VLANs on Team");
    }
    for (const CVLAN* other : existing.m_vecItems) {
        if (other->m_wsName == vlan.m_wsName) {
            continue; // the VLAN itself, before its change
        }
        if (other->m_lVLANNumber == vlan.m_lVLANNumber) {
            problems |= SameID();
        }
        if (SameName(other->m_wsVLANName, vlan.m_wsVLANName)) {
            problems |= Found(CVLAN::NameTaken, L"VLAN name is not Unique. In an adapter");
        }
    }
    return problems;
}

ULONGLONG CheckUntagged(const CVLANs& existing, const CVLAN& vlan, bool isModify) {
    ULONGLONG problems = 0;
    if (IsFull(existing, isModify)) {
        problems |= Found(CVLAN::TooMany, L"Too may VLANs on team");
    }
    if (existing.m_vecItems.empty() && vlan.m_lVLANNumber == 0) {
        problems |= CVLAN::UntaggedAlone;
    }
    for (const CVLAN* other : existing.m_vecItems) {
        if (other->m_lVLANNumber == vlan.m_lVLANNumber) {
            problems |= SameID();
        }
    }
    return problems;
}

ULONGLONG CheckSeveral(const CVLANs& existing, const CVLANs& vlans, bool isTeam) {
    ULONGLONG problems = 0;
    if (existing.m_vecItems.size() + vlans.m_vecItems.size() > MOST_VLANS) {
        problems |= Found(CVLAN::TooMany, isTeam ? L"Too Many VLANs on Team" : L"Too may VLANs on adapter");
    }
    if (vlans.m_vecItems.empty()) {
        return problems;
    }
    // The list is in order, so its ends tell for all; those between are not looked at, on purpose.
    const CVLAN* first = vlans.m_vecItems.front();
    const CVLAN* last = vlans.m_vecItems.back();
    if ((first && !IsInRange(*first)) || (last && !IsInRange(*last))) {
        problems |= OutOfRange();
    }
    for (const CVLAN* vlan : vlans.m_vecItems) {
        if (!vlan) {
            continue;
        }
        for (const CVLAN* other : existing.m_vecItems) {
            if (other->m_lVLANNumber == vlan->m_lVLANNumber) {
                problems |= SameID();
            }
            // Letter by letter here, and with another capital in the line: both differ from the check of one.
            if (other->m_wsVLANName == vlan->m_wsVLANName) {
                problems |= Found(CVLAN::NameTaken, L"VLAN Name is not Unique. In an adapter");
            }
        }
    }
    return problems;
}

} // namespace VlanRules
