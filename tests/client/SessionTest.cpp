// Sessions, transactions, threads, values.
#include "ProviderTest.h"

#include <quillet/client.h>

#include <algorithm>
#include <sstream>
#include <thread>

namespace quillet::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The machine that ships with the simulator.
class SessionTest : public ProviderTest {
  protected:
    const Adapter& First(const std::vector<Adapter>& adapters) {
        EXPECT_FALSE(adapters.empty());
        return adapters.front();
    }
};

TEST_F(SessionTest, Session_OfAMachineThatCannotBeReached_IsAnError) {
    Fail(Operation::ConnectServer, static_cast<HRESULT>(WBEM_E_ACCESS_DENIED));
    try {
        const Session session;
        FAIL() << "connected";
    } catch (const Error& error) {
        EXPECT_EQ(error.Operation(), "InitQuillet");
        EXPECT_EQ(error.code(), std::errc::permission_denied);
        EXPECT_STREQ(error.what(), "InitQuillet: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED");
    }
}

TEST_F(SessionTest, Session_EachCallOfConnectingFails_LeavesNothing) {
    Calls();
    { const Session session; }
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_FALSE(calls.empty());
    for (std::size_t index = 0; index < calls.size(); ++index) {
        SCOPED_TRACE(Describe(calls[index]));
        FaultRule rule;
        rule.operation = calls[index].operation;
        rule.target = calls[index].target;
        rule.code = static_cast<HRESULT>(WBEM_E_PROVIDER_FAILURE);
        Inject(rule);
        try {
            Session session;
            EXPECT_EQ(calls[index].target, L"Zorel_NetService") << "a provider without one is no failure";
        } catch (const Error& error) {
            EXPECT_EQ(error.Operation(), "InitQuillet");
        }
        machine->Rules().Clear();
    }
    // What is left in COM's tables fails the test when it ends.
}

TEST_F(SessionTest, Error_NamesWhatItWasAbout) {
    Session session;
    const AdapterId none(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{none}")");
    try {
        session.ReadHardware(none);
        FAIL() << "read";
    } catch (const Error& error) {
        EXPECT_EQ(error.About(), R"(Zorel_PhysicalEthernetAdapter.DeviceID="{none}")");
        EXPECT_THAT(error.what(), HasSubstr("GetAdapterPCIInfo Zorel_PhysicalEthernetAdapter.DeviceID"));
        EXPECT_THAT(error.what(), HasSubstr("there is no such object: 0x80041002 WBEM_E_NOT_FOUND"));
    }
}

TEST_F(SessionTest, Adapters_WhenOneCannotBeRead_ThoseBeforeItAreTold) {
    Session session;
    const std::vector<Adapter> all = session.Adapters();
    ASSERT_GE(all.size(), 2u);
    Fail(Operation::Get, static_cast<HRESULT>(WBEM_E_FAILED), L"OriginalDisplayName", 2);
    try {
        session.Adapters();
        FAIL() << "read";
    } catch (const PartialError<std::vector<Adapter>>& error) {
        ASSERT_EQ(error.Read().size(), 1u);
        EXPECT_EQ(error.Read().front().name, all.front().name);
        EXPECT_EQ(Code(error.Code()), "0x80004005");
    }
}

TEST_F(SessionTest, Setting_IsChangedAndWrittenAsAValue) {
    Session session;
    const std::vector<Adapter> adapters = session.Adapters();
    std::vector<Setting> settings = session.Settings(First(adapters).id);
    Setting* jumbo = FindSetting(settings, L"*jumbopacket");
    ASSERT_NE(jumbo, nullptr);
    EXPECT_EQ(jumbo->keyword, L"*JumboPacket");
    auto& value = std::get<ChoiceValue>(jumbo->value);
    const Choice& other = *std::find_if(value.choices.begin(), value.choices.end(), [&](const Choice& each) {
        return each.value != std::to_wstring(value.current);
    });
    value.current = std::stoi(other.value);
    Transaction change(session);
    session.Write(*jumbo);
    static_cast<void>(change.Apply());
    EXPECT_EQ(*FindSetting(session.Settings(First(adapters).id), L"*JumboPacket"), *jumbo);
    EXPECT_EQ(CurrentText(*jumbo), other.value);
}

TEST_F(SessionTest, Settings_EveryKindOfTheMachine_IsWrittenBackAsItIs) {
    Session session;
    std::size_t kinds = 0;
    for (const Adapter& adapter : session.Adapters()) {
        const std::vector<Setting> settings = session.Settings(adapter.id);
        Transaction change(session);
        for (const Setting& setting : settings) {
            kinds |= std::size_t{1} << setting.value.index();
            if (setting.writable) {
                session.Write(setting);
            }
        }
        static_cast<void>(change.Apply());
        EXPECT_EQ(session.Settings(adapter.id), settings);
    }
    EXPECT_EQ(kinds, 0x3Fu) << "the machine lacks a kind of setting";
}

TEST_F(SessionTest, Transaction_LeftWithoutApply_ClosesTheSetAllTheSame) {
    Session session;
    {
        const Transaction change(session);
        EXPECT_NE(machine->OpenClientSet(), 0);
    }
    EXPECT_EQ(machine->OpenClientSet(), 0);
    try {
        const Transaction change(session);
        session.RemoveVlan(VlanId(LR"(Zorel_VLAN.Name="{none}")"));
        FAIL() << "removed";
    } catch (const Error& error) {
        EXPECT_EQ(error.Operation(), "RemoveVLAN");
    }
    EXPECT_EQ(machine->OpenClientSet(), 0);
}

TEST_F(SessionTest, Transaction_TellsWhetherARestartIsNeeded) {
    Session session;
    Transaction change(session);
    machine->RequireFollowup(1);
    EXPECT_TRUE(change.Apply().restartNeeded);
    EXPECT_FALSE(change.Apply().restartNeeded) << "it is closed: nothing is asked a second time";
    Transaction none(session);
    EXPECT_FALSE(none.Apply().restartNeeded);
}

TEST_F(SessionTest, Transaction_ThatCannotBeClosed_IsAnErrorAndNotTriedAgain) {
    Session session;
    Calls();
    {
        Transaction change(session);
        FaultRule rule;
        rule.operation = Operation::ExecMethod;
        rule.method = L"Apply";
        rule.code = static_cast<HRESULT>(WBEM_E_FAILED);
        Inject(rule);
        EXPECT_THROW(static_cast<void>(change.Apply()), Error);
    }
    const std::vector<std::string> called = Called();
    EXPECT_EQ(std::count_if(called.begin(), called.end(),
                            [](const std::string& line) {
                                return line.find("ExecMethod") != std::string::npos &&
                                       line.find("Apply") != std::string::npos &&
                                       line.find("BeginApply") == std::string::npos;
                            }),
              1);
}

TEST_F(SessionTest, Session_InAThreadWithoutCom_WorksAndLeavesItWithout) {
    std::string name;
    HRESULT mode = E_FAIL;
    std::thread([&] {
        {
            Session session;
            name = Narrow(session.Adapters().front().name);
        }
        // Not one that was left behind, nor another model.
        mode = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        CoUninitialize();
    }).join();
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(Code(mode), "0x00000000");
}

TEST_F(SessionTest, VlanLife_AddedChangedRemoved) {
    Session session;
    const std::vector<Team> teams = session.Teams();
    ASSERT_FALSE(teams.empty());
    const TeamId& team = teams.front().id;
    ASSERT_EQ(session.SupportsVlans(team), VlanSupport::Supported);
    EXPECT_FALSE(session.CheckVlan(team, {4000, L"Labor"}).Any());
    Transaction change(session);
    const Vlan made = session.AddVlan(team, {4000, L"Labor"});
    static_cast<void>(change.Apply());
    EXPECT_EQ(made.number, 4000);
    EXPECT_TRUE(session.HasVlan(team, 4000));
    EXPECT_TRUE(session.CheckVlan(team, {4000, L"Other"}).Has(VlanProblem::IdTaken));
    EXPECT_FALSE(session.CheckVlanChange(team, made, {4000, L"Office"}).Any()) << "it met itself";
    EXPECT_THAT(Texts(session.CheckVlan(team, {5000, L"x"})), testing::Not(IsEmpty()));
    {
        Transaction rename(session);
        session.ModifyVlan(made.id, {4000, L"Office"});
        static_cast<void>(rename.Apply());
    }
    EXPECT_EQ(session.ReadVlan(made.id).name, L"Office");
    {
        Transaction removal(session);
        session.RemoveVlan(made.id);
        static_cast<void>(removal.Apply());
    }
    EXPECT_FALSE(session.HasVlan(team, 4000));
}

TEST_F(SessionTest, RunDiagnostic_IsFollowedToItsEnd) {
    machine->FollowRealTime(true);
    Session session;
    const std::vector<Adapter> adapters = session.Adapters();
    const AdapterId& adapter = First(adapters).id;
    const std::vector<Diagnostic> tests = session.Diagnostics(adapter);
    ASSERT_FALSE(tests.empty());
    std::size_t looks = 0;
    Following following;
    following.interval = std::chrono::milliseconds(20);
    following.seen = [&](const TestResult&) { ++looks; };
    const FollowedRun run = session.RunDiagnostic(tests.front().id, adapter, following);
    EXPECT_EQ(run.end, RunEnd::Ended);
    EXPECT_NE(run.result.state, TestState::InProgress);
    EXPECT_GE(looks, 1u);
}

TEST_F(SessionTest, RunDiagnostic_ARequestToStop_StopsTheTest) {
    machine->FollowRealTime(true);
    Session session;
    const std::vector<Adapter> adapters = session.Adapters();
    const AdapterId& adapter = First(adapters).id;
    const std::vector<Diagnostic> tests = session.Diagnostics(adapter);
    ASSERT_FALSE(tests.empty());
    std::stop_source stop;
    Following following;
    following.interval = std::chrono::hours(1); // which no test that is told to stop is left alone for
    following.stop = stop.get_token();
    following.seen = [&](const TestResult& seen) {
        if (seen.state == TestState::InProgress) {
            stop.request_stop();
        }
    };
    const FollowedRun run = session.RunDiagnostic(tests.front().id, adapter, following);
    EXPECT_EQ(run.end, RunEnd::Ended);
    EXPECT_EQ(run.result.state, TestState::Stopped);
    EXPECT_FALSE(run.result.Passed());
}

TEST_F(SessionTest, ProgramFlash_TellsItsStagesAndWhetherItIsThere) {
    Session session;
    const BootAgent agent = session.ReadBootAgent(First(session.Adapters()).id);
    const std::vector<std::byte> present = session.ReadFlash(agent.id);
    ASSERT_FALSE(present.empty());
    const FlashContents contents = session.ReadImageFile(agent.id, present);
    ASSERT_TRUE(contents.verdict.IsGood());
    std::vector<std::wstring> types;
    for (const FlashImage& image : contents.images) {
        types.push_back(image.type);
    }
    std::vector<FlashStage> stages;
    Transaction change(session);
    const FlashOutcome outcome =
        session.ProgramFlash(agent.id, present, types, [&](FlashStage stage) { stages.push_back(stage); });
    static_cast<void>(change.Apply());
    EXPECT_TRUE(outcome.verdict.IsGood());
    EXPECT_TRUE(outcome.written);
    EXPECT_THAT(stages, ElementsAre(FlashStage::Verifying, FlashStage::Writing, FlashStage::ReadingBack));
    std::vector<std::byte> broken = present;
    broken.resize(3);
    const FlashOutcome refused = session.ProgramFlash(agent.id, broken, types);
    EXPECT_FALSE(refused.verdict.IsGood());
    EXPECT_FALSE(refused.written);
    EXPECT_EQ(session.ReadFlash(agent.id), present);
}

TEST(SecretTest, MovesCopiesAndCompares) {
    Secret one(L"top");
    Secret other = one;
    EXPECT_EQ(one, other);
    const Secret moved = std::move(one);
    EXPECT_EQ(moved.Reveal(), L"top");
    EXPECT_NE(moved, Secret(L"tap"));
    EXPECT_NE(moved, Secret(L"topper"));
    other = Secret(L"new");
    EXPECT_EQ(other.Reveal(), L"new");
    other.Clear();
    EXPECT_TRUE(other.IsEmpty());
    EXPECT_EQ(other, Secret());
    static_assert(!std::is_convertible_v<Secret, std::wstring_view>);
}

TEST(FlagsTest, KeepsWhatItDoesNotKnow) {
    const auto problems = Flags<VlanProblem>::FromMask(0x8000000000000010);
    EXPECT_TRUE(problems.Has(VlanProblem::IdTaken));
    EXPECT_FALSE(problems.Has(VlanProblem::NameTaken));
    EXPECT_EQ(problems.Each().size(), 2u);
    EXPECT_EQ(problems.Mask(), 0x8000000000000010u);
    EXPECT_EQ((Flags(VlanProblem::IdTaken) | VlanProblem::NameTaken).Mask(), 0x30u);
    EXPECT_EQ(Narrow(Texts(problems).back()), "problem 63 (unknown)");
}

TEST(AdapterTextsTest, SayTheNumberOfWhatTheyDoNotKnow) {
    EXPECT_EQ(Text(LinkSpeed::Gigabit10), L"10 Gbit/s");
    EXPECT_EQ(Text(LinkSpeed(7)), L"code 7 (unknown)");
    EXPECT_EQ(Text(HardwareStatus(9)), L"code 9 (unknown)");
    EXPECT_EQ(Text(StatusInfo(-1)), L"code -1 (unknown)");
    EXPECT_EQ(Text(Availability(22)), L"code 22 (unknown)");
    EXPECT_EQ(Text(Capability(99)), L"code 99 (unknown)");
    EXPECT_EQ(Text(Flags<AdapterCondition>()), L"nothing reported");
    EXPECT_EQ(Text(Flags<AdapterCondition>::FromMask(5)), L"enabled, hardware missing");
    EXPECT_EQ(Text(Flags<AdapterCondition>::FromMask(2 | 16)), L"driver problem, condition 4 (unknown)");
    EXPECT_EQ(Text(Flags<AdapterCondition>::FromMask(0x80000000)), L"condition 31 (unknown)");
}

} // namespace

} // namespace quillet::tests
