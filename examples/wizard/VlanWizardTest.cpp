// How the wizard's author tests it: against a machine that this text describes, with the provider failing
// when asked to.
#include "VlanWizard.h"

#include <quillet-simulator/Machine.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using quillet::simulator::FaultRule;
using quillet::simulator::Machine;
using quillet::simulator::Operation;
using quillet::simulator::Registration;

constexpr const char* kMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "Port 1"; OriginalDisplayName = "Port"; AdapterStatus = 1; HardwareStatus = 3; };
    instance of Zorel_802dot1QVLANService as $S { Name = "{A}"; };)";
const quillet::AdapterId kAdapter(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")");

class VlanWizardTest : public testing::Test {
  protected:
    void FailMethod(const wchar_t* method) {
        FaultRule rule;
        rule.method = method;
        machine->Rules().Add(rule);
    }
    std::size_t CountVlans() { return session.Vlans(kAdapter).size(); }

    quillet::ComUsage com;
    std::shared_ptr<Machine> machine = Machine::FromText(kMachine, "wizard.mof");
    Registration registration{machine};
    quillet::Session session;
    VlanWizard wizard{session};
};

TEST_F(VlanWizardTest, MakesTheVlan) {
    const VlanWizard::Outcome outcome = wizard.Finish(kAdapter, {12, L"Voice"});
    EXPECT_TRUE(outcome.done);
    EXPECT_EQ(outcome.message, L"");
    EXPECT_EQ(CountVlans(), 1u);
    EXPECT_EQ(machine->OpenClientSet(), 0);
}

TEST_F(VlanWizardTest, TellsThatTheIdIsTaken) {
    ASSERT_TRUE(wizard.Finish(kAdapter, {12, L"Voice"}).done);
    const VlanWizard::Outcome outcome = wizard.Finish(kAdapter, {12, L"Video"});
    EXPECT_FALSE(outcome.done);
    EXPECT_EQ(outcome.message, L"The adapter has a VLAN of this ID.");
    EXPECT_EQ(CountVlans(), 1u);
}

TEST_F(VlanWizardTest, ChangesNothingWhenTheSetCannotBeOpened) {
    FailMethod(L"BeginApply");
    const VlanWizard::Outcome outcome = wizard.Finish(kAdapter, {12, L"Voice"});
    EXPECT_FALSE(outcome.done);
    EXPECT_EQ(outcome.message, L"Somebody else is changing the network adapters. Try again later.");
    EXPECT_EQ(CountVlans(), 0u);
}

TEST_F(VlanWizardTest, ClosesTheSetWhenTheProviderRefusesTheVlan) {
    FailMethod(L"CreateVLAN");
    const VlanWizard::Outcome outcome = wizard.Finish(kAdapter, {12, L"Voice"});
    EXPECT_FALSE(outcome.done);
    EXPECT_EQ(outcome.message, L"The VLAN could not be made.");
    EXPECT_EQ(CountVlans(), 0u);
    EXPECT_EQ(machine->OpenClientSet(), 0) << "the set was left open";
}

} // namespace
