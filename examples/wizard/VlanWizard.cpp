// The wizard's use of the library.
#include "VlanWizard.h"

namespace {

std::wstring Why(ULONGLONG problems) {
    if (problems & CVLAN::IDTaken) {
        return L"The adapter has a VLAN of this ID.";
    }
    if (problems & CVLAN::NameTaken) {
        return L"The adapter has a VLAN of this name.";
    }
    if (problems & CVLAN::TooMany) {
        return L"The adapter has as many VLANs as it can carry.";
    }
    return L"This is no valid VLAN.";
}

} // namespace

VlanWizard::Outcome VlanWizard::Finish(const std::wstring& adapterId, LONG number, const std::wstring& name) {
    Outcome outcome;
    CVLAN vlan;
    vlan.m_lVLANNumber = number;
    vlan.m_wsVLANName = name;
    if (const ULONGLONG problems = m_quillet.CreateVLANAdapterCheck(adapterId, vlan); problems != 0) {
        outcome.message = Why(problems);
        return outcome;
    }
    if (FAILED(m_quillet.BeginApply())) {
        outcome.message = L"Somebody else is changing the network adapters. Try again later.";
        return outcome;
    }
    const HRESULT added = m_quillet.AddVLANToAdapter(adapterId, vlan);
    // The set is closed in any case.
    const HRESULT closed = m_quillet.ApplyDone(outcome.restartNeeded);
    outcome.done = SUCCEEDED(added) && SUCCEEDED(closed);
    if (!outcome.done) {
        outcome.message = L"The VLAN could not be made.";
    }
    return outcome;
}
