// Teams: what a client may write, what is refused, and what the test of the switch finds.
#include "ComFixture.h"

#include <chrono>

using ATL::CComPtr;
using testing::ElementsAre;

using namespace std::chrono_literals;

namespace {

/// A team for switch fault tolerance, with a member too many and links of two speeds.
constexpr const char* kTeamMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; HardwareStatus = 3; Speed = 1000000000; Capabilities = {12, 33, 34}; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; HardwareStatus = 3; Speed = 1000000000; Capabilities = {12, 33, 34}; };
    instance of Zorel_PhysicalEthernetAdapter as $C {
        DeviceID = "{C}"; HardwareStatus = 3; Speed = 100000000; Capabilities = {12, 33, 34}; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{D}"; Capabilities = {37}; PermanentAddress = "02"; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 5; };
    instance of Zorel_TeamOfAdapters { Name = "{U}"; Caption = "TEAM : two"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; AdapterFunction = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $C; };)";

constexpr const wchar_t* kTeam = LR"(Zorel_TeamOfAdapters.Name="{T}")";
constexpr const wchar_t* kMember =
    LR"(Zorel_TeamedMemberAdapter.GroupComponent="Zorel_TeamOfAdapters.Name=\"{T}\"",)"
    LR"(PartComponent="Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"")";

class Teams : public ComTest {
  protected:
    void SetUp() override {
        Use(kTeamMachine);
        Connect();
    }
    std::string Write(IWbemClassObject* object, LONG flags = 0) {
        return Code(services->PutInstance(object, flags, nullptr, nullptr));
    }
    std::string Run(const wchar_t* path, const wchar_t* method, IWbemClassObject* in) {
        return ExecMethod(path, method, in, out);
    }
    std::string TestSwitch(LONG command) {
        const auto in = InParameters(L"Zorel_TeamOfAdapters", L"TestSwitchConfiguration");
        EXPECT_EQ(Put(in, L"Cmd", I4(command)), S_OK);
        return Run(kTeam, L"TestSwitchConfiguration", in);
    }
    std::vector<std::wstring> TakeTexts(const wchar_t* name) {
        auto value = Get(out, name);
        V_VT(&value) = VT_EMPTY;
        return TakeNames(V_ARRAY(&value));
    }
    std::vector<LONG> Numbers(const wchar_t* name) {
        const auto value = Get(out, name);
        LONG upper = -1;
        EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
        std::vector<LONG> numbers;
        for (LONG index = 0; index <= upper; ++index) {
            EXPECT_EQ(SafeArrayGetElement(V_ARRAY(&value), &index, &numbers.emplace_back()), S_OK);
        }
        return numbers;
    }
    /// Makes a team of the adapter that is in none.
    std::string Create() {
        const auto in = InParameters(L"Zorel_TeamOfAdapters", L"CreateTeam");
        EXPECT_EQ(Put(in, L"TeamName", L"TEAM : new"), S_OK);
        EXPECT_EQ(Put(in, L"TeamingMode", I4(0)), S_OK);
        EXPECT_EQ(Put(in, L"Adapters", TextArray({LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{D}")"})),
                  S_OK);
        return Run(L"Zorel_TeamOfAdapters", L"CreateTeam", in);
    }

    CComPtr<IWbemClassObject> out;
};

TEST_F(Teams, AClientWritesOnlyTheTeamsThatAreThere) {
    const auto team = Object(kTeam);
    EXPECT_EQ(Write(team), "0x00000000");
    EXPECT_EQ(Write(team, WBEM_FLAG_CREATE_ONLY), "0x80041019");
    ASSERT_EQ(Put(team, L"Name", L"{W}"), S_OK);
    EXPECT_EQ(Write(team, WBEM_FLAG_UPDATE_ONLY), "0x80041002");
    EXPECT_EQ(Write(team), "0x80041024") << "there is a method for making teams";
    EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamOfAdapters").size(), 2u);
}

TEST_F(Teams, WhatIsAskedOfATeamIsNotAnsweredByTheClass) {
    for (const wchar_t* method :
         {L"ValidateAddAdapters", L"GetBestTeamMode", L"TestSwitchConfiguration", L"ValidateSetting"}) {
        EXPECT_EQ(Run(L"Zorel_TeamOfAdapters", method, nullptr), "0x8004102F") << Narrow(method);
        EXPECT_FALSE(out) << Narrow(method);
    }
}

TEST_F(Teams, TwoCannotHaveOneName) {
    const auto team = Object(kTeam);
    ASSERT_EQ(Put(team, L"Caption", L"TEAM : two"), S_OK);
    EXPECT_EQ(Write(team), "0x80041019");
    ASSERT_EQ(Put(team, L"Caption", L"  "), S_OK);
    EXPECT_EQ(Write(team), "0x80041008");
    EXPECT_EQ(machine->Store().FindInstance(kTeam)->Text(L"Caption"), L"TEAM : one");
}

TEST_F(Teams, ACreationThatFailsHalfwayLeavesNothing) {
    ASSERT_EQ(Create(), "0x00000000");
    const auto created = ObjectPath::Parse(V_BSTR(&static_cast<const VARIANT&>(Get(out, L"TeamPath"))));
    const auto id = Narrow(std::get<std::wstring>(created->keys.at(0).value));
    // A machine's text may hold parts of a team that it does not have, under the ID that the next one gets.
    for (const auto& stray : {"instance of Zorel_LogicalEthernetAdapter { DeviceID = \"" + id + "\"; };",
                              "instance of Zorel_802dot1QVLANService { Name = \"" + id + "\"; };"}) {
        SCOPED_TRACE(stray);
        Use(kTeamMachine + stray);
        Connect();
        EXPECT_EQ(Create(), "0x80041019");
        EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamOfAdapters").size(), 2u);
        EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamedMemberAdapter").size(), 3u);
        EXPECT_EQ(machine->Store().Instances(L"Zorel_NetworkVirtualAdapter").size(), 0u);
    }
}

TEST_F(Teams, AMembershipIsMadeOnceAndChangedWhereItIs) {
    const auto member = Object(kMember);
    EXPECT_EQ(Write(member, WBEM_FLAG_CREATE_ONLY), "0x80041019");
    EXPECT_EQ(Write(member, WBEM_FLAG_UPDATE_ONLY), "0x00000000");
    ASSERT_EQ(Put(member, L"PartComponent", LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{D}")"), S_OK);
    EXPECT_EQ(Write(member, WBEM_FLAG_UPDATE_ONLY), "0x80041002");
    EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamedMemberAdapter").size(), 3u);
    EXPECT_EQ(Write(member, WBEM_FLAG_CREATE_ONLY), "0x00000000");
    EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamedMemberAdapter").size(), 4u);
}

TEST_F(Teams, AMembershipOfATeamThatIsGoneCanBeRemoved) {
    Use(R"(instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
           instance of Zorel_TeamedMemberAdapter {
               GroupComponent = "Zorel_TeamOfAdapters.Name=\"{T}\""; PartComponent = $A; AdapterFunction = 1; };)");
    Connect();
    EXPECT_EQ(Code(services->DeleteInstance(_bstr_t(kMember).GetBSTR(), 0, nullptr, nullptr)), "0x00000000");
    EXPECT_EQ(machine->Store().Instances(L"Zorel_TeamedMemberAdapter").size(), 0u);
}

TEST_F(Teams, AMemberWithoutItsAdapterDoesNotKeepATeamFromAnything) {
    Use(std::string(kTeamMachine) + R"(
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; AdapterStatus = 1;
            PartComponent = "Zorel_PhysicalEthernetAdapter.DeviceID=\"{gone}\""; };
        instance of Zorel_AdapterSettingEnum { Caption = "Enum"; ParentId = "{A}"; ParentType = "NIC";
            CurrentValue = 0; PossibleValues = {"0", "1"}; };
        instance of Zorel_LogicalEthernetAdapter as $L { DeviceID = "{T}"; };
        instance of Zorel_NetworkVirtualAdapter { SystemElement = $L; SameElement = $T; };)");
    Connect();
    ASSERT_EQ(machine->SetHardwareStatus(L"{A}", 2), S_OK);
    EXPECT_EQ(
        machine->Store().FindInstance(LR"(Zorel_LogicalEthernetAdapter.DeviceID="{T}")")->Text(L"Status"),
        L"OK")
        << "the others are there";
    const auto in = InParameters(L"Zorel_TeamOfAdapters", L"ValidateSetting");
    ASSERT_EQ(Put(in, L"Adapter", LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")"), S_OK);
    ASSERT_EQ(Put(in, L"SettingName", L"Enum"), S_OK);
    ASSERT_EQ(Put(in, L"Value", I4(1)), S_OK);
    EXPECT_EQ(Run(kTeam, L"ValidateSetting", in), "0x00000000");
    EXPECT_EQ(Get(out, L"ValResult"), _variant_t(L"8")) << "{B} and {C} have no such setting";
}

TEST_F(Teams, TheTestOfTheSwitchNamesEachTroubleWithWhatHelps) {
    ASSERT_EQ(TestSwitch(0), "0x00000000");
    EXPECT_EQ(Get(out, L"Status"), I4(1));
    EXPECT_THAT(TakeTexts(L"strCause"), ElementsAre()) << "it still runs";
    machine->Advance(2s);
    ASSERT_EQ(TestSwitch(1), "0x00000000");
    EXPECT_EQ(Get(out, L"Status"), I4(3));
    EXPECT_THAT(TakeTexts(L"strCause"), ElementsAre(L"Switch fault tolerance works with two adapters.",
                                                    L"The links of the team differ in their speed."));
    EXPECT_THAT(TakeTexts(L"strSolution"),
                ElementsAre(L"Leave two members in the team, and connect each to a switch of its own.",
                            L"Set the ports of the switch to one speed."));
    EXPECT_THAT(Numbers(L"CauseMessageId"), ElementsAre(2003, 2004));
    EXPECT_THAT(Numbers(L"SolutionMessageId"), ElementsAre(3003, 3004));
}

TEST_F(Teams, TheBestModeIsTheSimplestWhereTheMembersCanDoNone) {
    ASSERT_EQ(Run(kTeam, L"GetBestTeamMode", nullptr), "0x00000000");
    EXPECT_EQ(Get(out, L"Status"), I4(2));
    EXPECT_EQ(Get(out, L"PercentOfCoverage"), I4(100));
    EXPECT_EQ(Get(out, L"TeamingMode"), I4(0));
}

TEST_F(Teams, AMemberOfUnknownSpeedSpeaksAgainstNoOther) {
    Use(R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Capabilities = {9, 33, 46}; };
           instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Capabilities = {9}; };
           instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Capabilities = {9, 34}; };)");
    Connect();
    const auto reasons = [this](std::initializer_list<const wchar_t*> adapters) {
        std::vector<std::wstring> paths;
        for (const auto* adapter : adapters) {
            paths.push_back(LR"(Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(adapter) + L'"');
        }
        const auto in = InParameters(L"Zorel_TeamOfAdapters", L"ValidateNewTeamMembers");
        EXPECT_EQ(Put(in, L"NewAdapters", TextArray(paths)), S_OK);
        EXPECT_EQ(Put(in, L"NewTeamMode", I4(2)), S_OK);
        EXPECT_EQ(Run(L"Zorel_TeamOfAdapters", L"ValidateNewTeamMembers", in), "0x00000000");
        return std::wstring(_bstr_t(Get(out, L"ValResultNewTeam")));
    };
    EXPECT_EQ(reasons({L"{A}", L"{B}"}), L"0");
    EXPECT_NE(reasons({L"{A}", L"{C}"}), L"0") << "they share no speed";
}

} // namespace
