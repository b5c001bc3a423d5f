// What the team wizard offers, and the texts of everything about teams.
#include "Teams/TeamFixture.h"

#include <chrono>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

std::vector<LONG> ModesOf(const CTeamWizTeamModes& modes) {
    std::vector<LONG> numbers;
    for (const CTeamWizTeamMode* mode : modes.m_vecItems) {
        numbers.push_back(mode->m_lTeamMode);
    }
    return numbers;
}

class TeamWizardTest : public TeamTest {
  protected:
    void SetCapabilities(const std::wstring& adapter, std::initializer_list<std::uint64_t> codes) {
        quillet::simulator::Value::Array array;
        for (const std::uint64_t code : codes) {
            array.emplace_back(code);
        }
        Set(adapter, L"Capabilities", quillet::simulator::Value(std::move(array)));
    }
    CTeamWizTeamModes modes;
};

TEST_F(TeamWizardTest, SwitchTest_IsForModes4And5) {
    for (const int mode : {0, 1, 2, 3, 6, 7, 255, -1}) {
        EXPECT_EQ(quillet.TestSwitchSupport(static_cast<CTeam::TeamMode>(mode)), 0) << mode;
    }
    EXPECT_EQ(quillet.TestSwitchSupport(CTeam::TeamMode4), 0x2000);
    EXPECT_EQ(quillet.TestSwitchSupport(CTeam::TeamMode5), 0x2000);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(TeamWizardTest, Capability_SevenCodesAreModesAndNoOtherIs) {
    const std::map<LONG, LONG> expected{{4, 0}, {5, 1}, {9, 2}, {8, 3}, {10, 4}, {12, 5}, {68, 6}};
    for (LONG code = -1; code <= 70; ++code) {
        modes.RemoveAll();
        ASSERT_EQ(Code(QuilletTestAccess::FillTeamAttr(quillet, code, &modes)), "0x00000000");
        const auto mode = expected.find(code);
        EXPECT_EQ(ModesOf(modes),
                  mode == expected.end() ? std::vector<LONG>() : std::vector<LONG>{mode->second})
            << code;
    }
}

TEST_F(TeamWizardTest, Capability_TextIsThatOfTheCodeInTheProvidersList) {
    ASSERT_EQ(Code(QuilletTestAccess::FillTeamAttr(quillet, 9, &modes)), "0x00000000");
    ASSERT_EQ(Code(QuilletTestAccess::FillTeamAttr(quillet, 68, &modes)), "0x00000000");
    EXPECT_EQ(modes.m_vecItems[0]->m_wsDescription, L"Static link aggregation team");
    EXPECT_EQ(modes.m_vecItems[1]->m_wsDescription, L"Virtual machine load balancing team");
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(QuilletTestAccess::FillTeamAttr(quillet, 4, &modes)), "0x80041003");
    machine->Rules().Clear();
    Calls();
    EXPECT_EQ(Code(QuilletTestAccess::FillTeamAttr(quillet, 4, nullptr)), "0x00000000");
    EXPECT_THAT(Called(), IsEmpty()) << "there is nowhere to put a text";
    EXPECT_EQ(modes.m_vecItems.size(), 2u);
}

TEST_F(TeamWizardTest, AdapterModes_InTheOrderOfTheCapabilities) {
    CAdapter adapter;
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x00000000");
    ASSERT_NE(adapter.m_pTeamModes, nullptr);
    EXPECT_THAT(ModesOf(*adapter.m_pTeamModes), ElementsAre(0, 1, 3, 2, 4, 5, 6));
    const auto fetches = CallsOf(Operation::GetObject);
    ASSERT_FALSE(fetches.empty());
    EXPECT_EQ(fetches[0].target, kA);
    ASSERT_NE(fetches[0].ContextValue(L"Zorel_PartialData"), nullptr);
    EXPECT_EQ(fetches[0].ContextValue(L"Zorel_PartialData")->value, quillet::simulator::Value::Signed(16));
    const std::vector<std::string> lines = Traced();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), " Unset Partial Retrieval!!"), 1);
    EXPECT_LT(std::find(lines.begin(), lines.end(), " Unset Partial Retrieval!!"),
              std::find(lines.begin(), lines.end(), "Entering CQuillet::GetDataFromValues"))
        << "the texts are no part of the partial data";
    EXPECT_EQ(fetches[1].target, L"Zorel_PhysicalEthernetAdapter");
    EXPECT_EQ(fetches[1].ContextValue(L"Zorel_PartialData"), nullptr);
}

TEST_F(TeamWizardTest, AdapterModes_ReadAgain_ReplaceThoseBefore) {
    CAdapter adapter;
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x00000000");
    SetCapabilities(kA, {12, 4});
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x00000000");
    EXPECT_THAT(ModesOf(*adapter.m_pTeamModes), ElementsAre(5, 0));
    SetCapabilities(kA, {1, 2, 3, 99});
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x00000000");
    EXPECT_THAT(ModesOf(*adapter.m_pTeamModes), IsEmpty());
}

TEST_F(TeamWizardTest, AdapterModes_Failures) {
    CAdapter adapter;
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(L"", adapter)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("((wsAdapterID.empty()) "));
    SetNull(kA, L"Capabilities");
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("vAdapterCapabilities.vt INVALID"));
    EXPECT_EQ(adapter.m_pTeamModes, nullptr);
    Spoil(Operation::Get, Effect::WrongType, L"Capabilities");
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kB, adapter)), "0x80041001");
    machine->Rules().Clear();
    Spoil(Operation::Get, Effect::UnreadableElement, L"Capabilities");
    const HRESULT result = quillet.GetAdapterTeamModes(kB, adapter);
    EXPECT_TRUE(SUCCEEDED(result) || result == static_cast<HRESULT>(WBEM_E_FAILED)) << Code(result);
}

TEST_F(TeamWizardTest, CompatibleModes_AreThoseThatAllOfferInTheOrderOfTheFirst) {
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kD}), modes, true)),
              "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(0, 1, 3, 2, 4, 5, 6));
    SetCapabilities(kA, {68, 12, 4, 4, 9});
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kD}), modes, true)),
              "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(6, 5, 0, 2)) << "each once, and what was there is replaced";
    EXPECT_EQ(modes.m_vecItems[2]->m_wsDescription, L"Fault tolerance team");
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kE}), modes, true)),
              "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(5, 0));
}

TEST_F(TeamWizardTest, CompatibleModes_ThreeAdaptersAreNotOfferedMode5) {
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA}), modes, true)), "0x00000000");
    EXPECT_THAT(ModesOf(modes), Contains(5));
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kB}), modes, true)),
              "0x00000000");
    EXPECT_THAT(ModesOf(modes), Contains(5));
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kB, kC}), modes, true)),
              "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(0, 1, 3, 2, 4, 6));
}

TEST_F(TeamWizardTest, CompatibleModes_WithoutRefreshing_UseWhatTheRecordsCarry) {
    CAdapters adapters = Adapters({kA, kB});
    adapters.m_vecItems[0]->m_pTeamModes = new CTeamWizTeamModes;
    adapters.m_vecItems[0]->m_pTeamModes->m_vecItems.push_back(new CTeamWizTeamMode);
    adapters.m_vecItems[0]->m_pTeamModes->m_vecItems[0]->m_lTeamMode = 4;
    adapters.m_vecItems[0]->m_pTeamModes->m_vecItems[0]->m_wsDescription = L"mine";
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, false)), "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(4));
    EXPECT_EQ(modes.m_vecItems[0]->m_wsDescription, L"mine");
    for (const JournalEntry& call : Calls()) {
        EXPECT_NE(call.target, kA) << "what the record carries is not read";
    }
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, true)), "0x00000000");
    EXPECT_THAT(ModesOf(modes), ElementsAre(0, 1, 3, 2, 4, 5, 6));
    // The records stay as they are.
    EXPECT_EQ(adapters.m_vecItems[1]->m_pTeamModes, nullptr);
    EXPECT_THAT(ModesOf(*adapters.m_vecItems[0]->m_pTeamModes), ElementsAre(4));
}

TEST_F(TeamWizardTest, CompatibleModes_NullEntries_AreNoAdapters) {
    CAdapters adapters = Adapters({kA, kB});
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, true)), "0x00000000");
    const std::vector<LONG> without = ModesOf(modes);
    adapters.m_vecItems.insert(adapters.m_vecItems.begin() + 1, nullptr);
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, true)), "0x00000000");
    EXPECT_EQ(ModesOf(modes), without);
    EXPECT_FALSE(without.empty());
}

TEST_F(TeamWizardTest, CompatibleModes_NoAdapters_IsAFailure) {
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(CAdapters(), modes, true)), "0x80004005");
    EXPECT_THAT(Called(), IsEmpty());
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, kB.c_str());
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(Adapters({kA, kB}), modes, true)),
              "0x80041003");
    EXPECT_THAT(modes.m_vecItems, IsEmpty());
}

TEST_F(TeamWizardTest, Teamable_FlagIsTrueExactlyForMembers) {
    CAdapters adapters = Adapters({kA, kC, kB});
    adapters.m_vecItems.push_back(nullptr);
    adapters.m_vecItems[1]->m_bTeamed = true;
    EXPECT_EQ(Code(quillet.GetTeamableAdapters(adapters)), "0x00000000");
    EXPECT_TRUE(adapters.m_vecItems[0]->m_bTeamed);
    EXPECT_FALSE(adapters.m_vecItems[1]->m_bTeamed);
    EXPECT_TRUE(adapters.m_vecItems[2]->m_bTeamed);
    EXPECT_EQ(adapters.m_vecItems.size(), 4u);
    std::vector<std::string> queries;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::ExecQuery) {
            queries.push_back(Narrow(call.target));
        }
    }
    const std::string end = "} WHERE ResultClass = Zorel_TeamedMemberAdapter";
    EXPECT_THAT(queries,
                ElementsAre("REFERENCES OF {" + Narrow(kA) + end, "REFERENCES OF {" + Narrow(kC) + end,
                            "REFERENCES OF {" + Narrow(kB) + end));
}

TEST_F(TeamWizardTest, Teamable_OneThatTheProviderDoesNotKnow_IsAPhantomAndTheOthersGoOn) {
    CAdapters adapters = Adapters({Adapter(L"{none}"), kA});
    adapters.m_vecItems[0]->m_bTeamed = true;
    EXPECT_EQ(Code(quillet.GetTeamableAdapters(adapters)), "0x00000000");
    EXPECT_FALSE(adapters.m_vecItems[0]->m_bTeamed);
    EXPECT_TRUE(adapters.m_vecItems[1]->m_bTeamed);
    EXPECT_THAT(Traced(), Contains(" Phantom adapter!!"));
}

TEST_F(TeamWizardTest, Teamable_NotConnected_Fails) {
    quillet.UninitQuillet();
    CAdapters adapters = Adapters({kA});
    EXPECT_EQ(Code(quillet.GetTeamableAdapters(adapters)), "0x80041001");
    CAdapter adapter;
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(kA, adapter)), "0x80041001");
}

class BestModeTest : public TeamWizardTest {
  protected:
    HRESULT Ask(const std::wstring& team) { return quillet.GetBestTeamMode(team, mode, status, coverage); }
    CTeamWizTeamMode mode;
    CTeam::TeamAutoDetectStatus status{};
    unsigned int coverage = 7;
};

TEST_F(BestModeTest, IsTheProvidersWithTheTextOfTheMode) {
    RecordLocalCalls();
    EXPECT_EQ(Code(Ask(kT)), "0x00000000");
    EXPECT_EQ(mode.m_lTeamMode, 4);
    EXPECT_EQ(mode.m_wsDescription, L"IEEE 802.3ad Dynamic Link Aggregation");
    EXPECT_EQ(status, CTeam::TeamAutoDetectCompleted);
    EXPECT_EQ(coverage, 100u);
    std::vector<std::string> reads;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::Get) {
            reads.push_back(Narrow(call.target));
        }
        if (call.operation == Operation::ExecMethod) {
            EXPECT_EQ(call.target, kT);
            EXPECT_THAT(call.arguments, IsEmpty());
        }
    }
    EXPECT_THAT(reads,
                ElementsAre("ReturnValue", "Status", "PercentOfCoverage", "ErrorMessageId", "TeamingMode"));
    EXPECT_THAT(Traced(), Contains("GetBestTeamMode -> ErrorMessageId 0"));
}

TEST_F(BestModeTest, WithALinkDown_CoversLess) {
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{B}", 2)), "0x00000000");
    EXPECT_EQ(Code(Ask(kT)), "0x00000000");
    EXPECT_EQ(coverage, 50u);
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{A}", 0)), "0x00000000");
    EXPECT_EQ(Code(Ask(kT)), "0x00000000");
    EXPECT_EQ(status, CTeam::TeamAutoDetectFailed);
    EXPECT_EQ(coverage, 0u);
    EXPECT_THAT(Traced(), Contains("GetBestTeamMode -> ErrorMessageId 1001"));
}

TEST_F(BestModeTest, CoverageThatIsNotTold_IsThatOfAWholeSearch) {
    Spoil(Operation::Get, Effect::NullValue, L"PercentOfCoverage");
    EXPECT_EQ(Code(Ask(kT)), "0x00000000");
    EXPECT_EQ(coverage, 100u);
}

TEST_F(BestModeTest, Failures) {
    EXPECT_EQ(Code(Ask(L"")), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(Ask(kT)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("Outparam of method is NULL"));
    machine->Rules().Clear();
    FaultRule rule;
    rule.operation = Operation::ExecMethod;
    rule.effect = Effect::Verdict;
    rule.verdict = 5;
    Inject(rule);
    EXPECT_EQ(Ask(kT), 5);
    EXPECT_THAT(Traced(), Contains("(0 != lValue) -> GetBestTeamMode Method failure"));
    machine->Rules().Clear();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"PercentOfCoverage");
    coverage = 7;
    EXPECT_EQ(Code(Ask(kT)), "0x80041003");
    EXPECT_EQ(coverage, 7u);
    machine->Rules().Clear();
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Ask(kT)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> bstrObjectPath, L_METHOD_TEAMOFADAPTERS_GETBESTTEAMMODE"));
}

class SwitchTestTest : public TeamWizardTest {
  protected:
    HRESULT Send(CTeam::SwitchCmd command) {
        return quillet.TestSwitchConfiguration(kT, command, status, causes, solutions, causeIds, solutionIds);
    }
    CTeam::SwitchCmdStatus status{};
    std::vector<std::wstring> causes{L"old"};
    std::vector<std::wstring> solutions{L"old"};
    std::vector<int> causeIds{1};
    std::vector<int> solutionIds{1};
};

TEST_F(SwitchTestTest, RunsThroughItsStates) {
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdQuery)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusNotStarted);
    EXPECT_THAT(causes, IsEmpty());
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStart)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusRunning);
    machine->Advance(1s);
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdQuery)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusRunning);
    machine->Advance(1s);
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdQuery)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusPassed);
    EXPECT_THAT(causes, IsEmpty());
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStop)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusPassed) << "over already";
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStart)), "0x00000000");
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStop)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusStopped);
    EXPECT_THAT(Changes(),
                Contains("ExecMethod " + Narrow(kT) + " TestSwitchConfiguration Cmd:VT_I4=2 set=0"));
}

TEST_F(SwitchTestTest, TellsCausesWithSolutionsInTheirOrder) {
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{A}", 0)), "0x00000000");
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{B}", 2)), "0x00000000");
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStart)), "0x00000000");
    machine->Advance(3s);
    RecordLocalCalls();
    Calls();
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdQuery)), "0x00000000");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusFailed);
    EXPECT_THAT(causes, ElementsAre(L"The adapter Port A is missing.", L"The adapter Port B has no link."));
    EXPECT_THAT(solutions, ElementsAre(L"Put the adapter back, or remove it from the team.",
                                       L"Connect its cable, and enable its port on the switch."));
    EXPECT_THAT(causeIds, ElementsAre(2001, 2002));
    EXPECT_THAT(solutionIds, ElementsAre(3001, 3002));
    std::vector<std::string> reads;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::Get) {
            reads.push_back(Narrow(call.target));
        }
    }
    EXPECT_THAT(reads, ElementsAre("Status", "strCause", "strSolution", "ReturnValue", "CauseMessageId",
                                   "SolutionMessageId"));
}

TEST_F(SwitchTestTest, Failures) {
    EXPECT_EQ(Code(quillet.TestSwitchConfiguration(L"", CTeam::SwitchCmdStart, status, causes, solutions,
                                                   causeIds, solutionIds)),
              "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_THAT(causes, IsEmpty());
    EXPECT_EQ(Code(Send(static_cast<CTeam::SwitchCmd>(9))), "0x8004102F") << "the provider's own refusal";
    SetNumber(kT, L"TeamingMode", 1);
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStart)), "0x8004100C") << "nothing to test in this mode";
    SetNumber(kT, L"TeamingMode", 4);
    Spoil(Operation::Get, Effect::NullValue, L"strCause");
    EXPECT_EQ(Code(Send(CTeam::SwitchCmdStart)), "0x80004005");
    EXPECT_EQ(status, CTeam::SwitchCmdStatusRunning) << "what was read before stays";
    EXPECT_THAT(Traced(), Contains("GetPropertyArray -> pAdapter_OutParams, L_PARAM_TEAM_CAUSE"));
}

TEST(TeamTextsTest, EveryNumberHasItsTextAndAStrangerNone) {
    EXPECT_EQ(CTeamTexts::TeamMode(CTeam::TeamMode0), L"fault tolerance");
    EXPECT_EQ(CTeamTexts::TeamMode(CTeam::TeamMode6), L"virtual machine load balancing");
    EXPECT_EQ(CTeamTexts::TeamMode(CTeam::TeamModeUnknown), L"unknown");
    EXPECT_EQ(CTeamTexts::TeamMode(7), L"");
    EXPECT_EQ(CTeamTexts::TeamMode(-1), L"");
    EXPECT_EQ(CTeamTexts::TeamStatus(CTeam::TeamStatusDisabled), L"disabled");
    EXPECT_EQ(CTeamTexts::AutoDetectStatus(CTeam::TeamAutoDetectFailed), L"failed");
    EXPECT_EQ(CTeamTexts::SwitchCmdStatus(CTeam::SwitchCmdStatusStopped), L"stopped");
    EXPECT_EQ(CTeamTexts::MemberRole(1), L"primary");
    EXPECT_EQ(CTeamTexts::MemberStatus(CTeamedAdapter::MemberStatusMissing), L"missing");
    EXPECT_EQ(CTeamTexts::MemberStatus(2), L"");
    for (LONG mode = 0; mode < 7; ++mode) {
        EXPECT_FALSE(CTeamTexts::TeamMode(mode).empty()) << mode;
    }
}

TEST(TeamTextsTest, AMaskIsOneSentencePerBitLowestFirst) {
    EXPECT_THAT(CTeamTexts::Problems(0), IsEmpty());
    EXPECT_THAT(CTeamTexts::Problems(CTeam::ProblemNameTaken | CTeam::ProblemTooManyMembers),
                ElementsAre(L"a team has at most 8 members", L"a team with this name exists"));
    EXPECT_THAT(CTeamTexts::Problems(1ull << 63), ElementsAre(L"the provider's reason 63 (unknown)"));
    EXPECT_EQ(CTeamTexts::Problems(~0ull).size(), 64u);
    for (const auto problem :
         {CTeam::ProblemTooManyMembers, CTeam::ProblemModeNotSupported, CTeam::ProblemNoVLANs,
          CTeam::ProblemNoServerAdapter, CTeam::ProblemNameTaken, CTeam::ProblemMoreThanTwo,
          CTeam::ProblemNoSharedSpeed, CTeam::ProblemMixedSpeeds}) {
        EXPECT_EQ(CTeamTexts::Problems(problem).front().find(L"reason"), std::wstring::npos);
    }
}

} // namespace
