// The wizard's use of the library.
#include "VlanWizard.h"

using quillet::VlanProblem;

namespace {

std::wstring Why(quillet::Flags<VlanProblem> problems) {
    if (problems.Has(VlanProblem::IdTaken)) {
        return L"The adapter has a VLAN of this ID.";
    }
    if (problems.Has(VlanProblem::NameTaken)) {
        return L"The adapter has a VLAN of this name.";
    }
    if (problems.Has(VlanProblem::TooMany)) {
        return L"The adapter has as many VLANs as it can carry.";
    }
    return L"This is no valid VLAN.";
}

} // namespace

VlanWizard::Outcome VlanWizard::Finish(const quillet::AdapterId& adapter, const quillet::NewVlan& vlan) {
    if (const auto problems = m_session.CheckVlan(adapter, vlan); problems.Any()) {
        return {false, false, Why(problems)};
    }
    try {
        quillet::Transaction change(m_session); // closed in any case
        m_session.AddVlan(adapter, vlan);
        return {true, change.Apply().restartNeeded, {}};
    } catch (const quillet::Error& error) {
        return {false, false,
                error.Operation() == "BeginApply"
                    ? L"Somebody else is changing the network adapters. Try again later."
                    : L"The VLAN could not be made."};
    }
}
