// Fault rules on the command line.
#include "support/RunCommandLine.h"

#include <app/FaultRules.h>

#include <ending/Failure.h>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using quillet::simulator::Effect;
using quillet::simulator::FaultRule;
using quillet::wmi::Operation;
using quilletctl::ParseFault;
using testing::HasSubstr;

TEST(FaultRulesTest, EveryPart_IsRead) {
    const FaultRule rule = ParseFault("ExecMethod:CreateVLAN:2=0x80041003");
    EXPECT_EQ(rule.operation, Operation::ExecMethod);
    EXPECT_EQ(rule.method, L"CreateVLAN");
    EXPECT_EQ(rule.target, L"");
    EXPECT_EQ(rule.nth, 2U);
    EXPECT_FALSE(rule.repeat);
    EXPECT_EQ(rule.effect, Effect::Fail);
    EXPECT_EQ(static_cast<std::uint32_t>(rule.code), 0x80041003U);
}

TEST(FaultRulesTest, LeftOutParts_AreTheUsualOnes) {
    const FaultRule rule = ParseFault("PutInstance");
    EXPECT_EQ(rule.operation, Operation::PutInstance);
    EXPECT_EQ(rule.nth, 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(rule.code), 0x80041001U);
    EXPECT_EQ(ParseFault("*:*:3+").operation, std::nullopt);
    EXPECT_TRUE(ParseFault("*:*:3+").repeat);
    EXPECT_EQ(ParseFault("*:*:3+").nth, 3U);
}

TEST(FaultRulesTest, Place_IsTheMethodOfACallThatHasOne) {
    EXPECT_EQ(ParseFault("ExecMethod:Zorel_NetService.Apply").target, L"Zorel_NetService");
    EXPECT_EQ(ParseFault("ExecMethod:Zorel_NetService.Apply").method, L"Apply");
    EXPECT_EQ(ParseFault("Next:Zorel_VLAN=EndOfData").target, L"Zorel_VLAN");
    EXPECT_EQ(ParseFault("Get:Name=NullValue").target, L"Name");
}

TEST(FaultRulesTest, Effects_TakeTheirNumbers) {
    EXPECT_EQ(ParseFault("ExecMethod:Apply=Verdict:-5").verdict, -5);
    EXPECT_EQ(ParseFault("Next:Zorel_VLAN=Delay:500").milliseconds, 500U);
    EXPECT_EQ(ParseFault("Get:Name=WrongType:3").vt, 3);
    EXPECT_EQ(ParseFault("Get:Name=HugeString:77").size, 77U);
    EXPECT_EQ(ParseFault("Get:Capabilities=UnreadableElement:1").element, 1);
    EXPECT_EQ(static_cast<std::uint32_t>(ParseFault("GetObject=FailStatus:0x80041002").code), 0x80041002U);
}

TEST(FaultRulesTest, UnclearRules_AreRefusedWithTheForm) {
    for (const char* text : {"",
                             ":",
                             "=",
                             "Exec",
                             "ExecMethod:A:0",
                             "ExecMethod:A:x",
                             "ExecMethod:A:1++",
                             "ExecMethod:A:1:2",
                             "ExecMethod:A:99999999999",
                             "ExecMethod=",
                             "ExecMethod=0x",
                             "ExecMethod=0x1zz",
                             "ExecMethod=5",
                             "ExecMethod=Explode",
                             "ExecMethod=NoOutParameters:1",
                             "Get:Name=Verdict:1",
                             "*=EndOfData",
                             "ExecMethod=Verdict:",
                             "ExecMethod=Fail:--1",
                             "ExecMethod=Fail:0x-1"}) {
        try {
            ParseFault(text);
            ADD_FAILURE() << "taken: " << text;
        } catch (const quilletctl::UsageError& mistake) {
            EXPECT_THAT(mistake.what(),
                        HasSubstr("a rule reads OPERATION[:WHERE[:NTH[+]]][=EFFECT[:NUMBER]]"))
                << text;
        }
    }
}

class FaultOptionTest : public CommandLine {};

TEST_F(FaultOptionTest, Rules_HitTheMachineAndAreNotKept) {
    const std::string state = Utf8(InFolder("lab.mof"));
    const std::vector<std::string> line{"--state", state, "vlan",      "add", "2:1",
                                        "100",     "Lab", "--through", "102"};
    std::vector<std::string> faulty = line;
    faulty.insert(faulty.end(),
                  {"--fault", "ExecMethod:CreateVLAN:2=0x80041001", "--fault", "ExecMethod:Nothing"});
    const Outcome refused = RunCommandLine(faulty);
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("could not add VLAN 101"));
    EXPECT_EQ(
        RunCommandLine({"--state", state, "vlan", "add", "2:1", "101", "Lab 2", "--through", "102"}).status,
        0);
}

TEST_F(FaultOptionTest, WithoutASimulatedMachine_IsRefused) {
    const Outcome run = RunCommandLine({"--machine", "server12", "--fault", "ExecMethod", "adapter", "list"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("--fault: only a simulated machine"));
}

} // namespace
