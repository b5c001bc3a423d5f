// The members of a team: records, roles, and status after a look at the adapter.
#include "Teams/TeamFixture.h"

#include "Teams/CircularSearch.h"

#include <numeric>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class TeamMembersTest : public TeamTest {
  protected:
    void SetMember(const wchar_t* adapter, long long told, long long state) {
        SetNumber(Membership(L"{T}", adapter), L"AdapterStatus", told);
        SetNumber(Adapter(adapter), L"HardwareStatus", state);
    }
    CTeamedAdapters members;
};

TEST_F(TeamMembersTest, GetMemberAdapters_FillsEveryField) {
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    ASSERT_EQ(members.m_vecItems.size(), 2u);
    const CTeamedAdapter& first = *members.m_vecItems[0];
    EXPECT_EQ(first.m_wsAdapterID, kA) << "what the operations on adapters take";
    EXPECT_EQ(first.m_wsDisplayName, L"Adapter A");
    EXPECT_EQ(first.m_wsDeviceID, L"{A}");
    EXPECT_EQ(first.m_wsCaption, L"Port A");
    EXPECT_EQ(first.m_wsTeamID, kT);
    EXPECT_EQ(first.m_wsTeamCaption, L"TEAM : One");
    EXPECT_EQ(first.m_lMemberRole, 1);
    EXPECT_EQ(first.m_lMemberStatus, CTeamedAdapter::MemberStatusActive);
    EXPECT_EQ(members.m_vecItems[1]->m_wsAdapterID, kB);
    EXPECT_EQ(members.m_vecItems[1]->m_lMemberRole, 2);
}

TEST_F(TeamMembersTest, GetMemberAdapters_AsksInThisOrder) {
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    std::vector<std::string> calls;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::ExecQuery || call.operation == Operation::GetObject) {
            const NamedValue* partial = call.ContextValue(L"Zorel_PartialData");
            calls.push_back(
                Narrow(quillet::simulator::OperationName(call.operation)) + " " + Narrow(call.target) +
                (partial && partial->value == quillet::simulator::Value::Signed(1) ? " partial" : ""));
        }
    }
    const std::string team = Narrow(kT);
    EXPECT_THAT(calls, ElementsAre("ExecQuery ASSOCIATORS OF {" + team +
                                       "} WHERE ResultClass = Zorel_PhysicalEthernetAdapter partial",
                                   "GetObject " + team + " partial", "GetObject " + team + " partial",
                                   "ExecQuery REFERENCES OF {" + team +
                                       "} WHERE ResultClass = Zorel_TeamedMemberAdapter",
                                   "GetObject " + Narrow(kA), "GetObject " + Narrow(kB)));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::GetMemberAdapters", "Got UniqueId and team ID",
                                     "Got UniqueId and team ID", "Found adapter at index:0",
                                     "QRT Returned StatusActive", "Entering CQuillet::GetAdapterDynamicInfo",
                                     "Exiting CQuillet::GetAdapterDynamicInfo", "Found adapter at index:1",
                                     "QRT Returned StatusActive", "Entering CQuillet::GetAdapterDynamicInfo",
                                     "Exiting CQuillet::GetAdapterDynamicInfo",
                                     "Exiting CQuillet::GetMemberAdapters"));
}

TEST_F(TeamMembersTest, GetMemberAdapters_SwitchesPartialDataOnAndOffAlsoWhenTheListFails) {
    constexpr const char* kOn = "Setting for partial data!!";
    constexpr const char* kOff = " Unset Partial Retrieval!!";
    const auto count = [](const std::vector<std::string>& lines, const char* text) {
        return std::count(lines.begin(), lines.end(), text);
    };
    quillet.GetMemberAdapters(kT, members);
    std::vector<std::string> lines = Traced();
    EXPECT_EQ(count(lines, kOn), 1);
    EXPECT_EQ(count(lines, kOff), 1);
    Fail(Operation::ExecQuery, WBEM_E_FAILED);
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x80041001");
    lines = Traced();
    EXPECT_EQ(count(lines, kOn), 1);
    EXPECT_EQ(count(lines, kOff), 1);
}

struct StatusCase {
    int told;  ///< "AdapterStatus" of the membership; negative: null
    int state; ///< "HardwareStatus" of the adapter
    LONG status;
};

class MemberStatusTest : public TeamMembersTest, public testing::WithParamInterface<StatusCase> {};

TEST_P(MemberStatusTest, IsReconciledWithTheAdapterWhenListedAndWhenRefreshed) {
    const auto [told, state, status] = GetParam();
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    SetMember(L"{A}", told, state);
    if (told < 0) {
        SetNull(Membership(L"{T}", L"{A}"), L"AdapterStatus");
    }
    CTeamedAdapters listed;
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, listed)), "0x00000000");
    EXPECT_EQ(listed.m_vecItems[0]->m_lMemberStatus, status);
    ASSERT_EQ(Code(quillet.GetMemberAdaptersStatus(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberStatus, status);
    EXPECT_EQ(members.m_vecItems[1]->m_lMemberStatus, 1);
}

// Every number that the provider has for a member in every state of its adapter.
INSTANTIATE_TEST_SUITE_P(States, MemberStatusTest,
                         testing::Values(StatusCase{0, 0, 4}, StatusCase{1, 0, 4}, StatusCase{3, 0, 4},
                                         StatusCase{-1, 0, 4}, StatusCase{0, 1, 3}, StatusCase{1, 1, 3},
                                         StatusCase{3, 1, 3}, StatusCase{-1, 1, 3}, StatusCase{0, 2, 3},
                                         StatusCase{1, 2, 3}, StatusCase{3, 2, 3}, StatusCase{-1, 2, 3},
                                         StatusCase{0, 3, 1}, StatusCase{1, 3, 1}, StatusCase{3, 3, 3},
                                         StatusCase{-1, 3, 1}, StatusCase{0, 4, 0}, StatusCase{1, 4, 1},
                                         StatusCase{3, 9, 3}, StatusCase{-1, 4, 0}, StatusCase{2, 0, 2},
                                         StatusCase{2, 3, 2}, StatusCase{4, 3, 4}, StatusCase{77, 0, 77}));

TEST_F(TeamMembersTest, Status_OfTheProvidersOwn_IsNotReconciledAndAsksNothing) {
    SetMember(L"{A}", 77, 0);
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    EXPECT_THAT(Traced(), Contains("Status is other than Active InActive  or UnKnown"));
    for (const JournalEntry& call : Calls()) {
        EXPECT_FALSE(call.operation == Operation::GetObject && call.target == kA);
    }
}

TEST_F(TeamMembersTest, Status_EachWordHasItsLine) {
    SetMember(L"{A}", 0, 3);
    SetMember(L"{B}", 3, 3);
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    EXPECT_THAT(Traced(), testing::AllOf(Contains("QRT Returned StatusUnknown"),
                                         Contains("QRT Returned StatusInActive"),
                                         Not(Contains("QRT Returned StatusActive"))));
}

TEST_F(TeamMembersTest, Role_NullLeavesItAlone) {
    SetNull(Membership(L"{T}", L"{A}"), L"AdapterFunction");
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberRole, 0);
    members.m_vecItems[0]->m_lMemberRole = 9;
    ASSERT_EQ(Code(quillet.GetMemberAdaptersStatus(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberRole, 9);
}

TEST_F(TeamMembersTest, GetMemberAdapters_NamesThatAreMissing_DoNotHideTheMember) {
    SetNull(kA, L"OriginalDisplayName");
    SetNull(kA, L"Caption");
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    ASSERT_EQ(members.m_vecItems.size(), 2u);
    EXPECT_EQ(members.m_vecItems[0]->m_wsDisplayName, L"Not Available");
    EXPECT_EQ(members.m_vecItems[0]->m_wsCaption, L"");
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsString -> pAdapterInstance, L_PROP_ETHERNETADAPTER_ORIGNAME -> NULL"));
}

TEST_F(TeamMembersTest, GetMemberAdapters_AppendsAndLeavesEarlierRecordsAlone) {
    members = Members({kA});
    members.m_vecItems[0]->m_lMemberRole = 5;
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    ASSERT_EQ(members.m_vecItems.size(), 3u);
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberRole, 5);
    EXPECT_EQ(members.m_vecItems[1]->m_lMemberRole, 1);
    EXPECT_THAT(Traced(), Contains("Found adapter at index:1"));
}

TEST_F(TeamMembersTest, GetMemberAdapters_FindsTheMemberWhateverTheFormOfItsPath) {
    for (const char* part :
         {R"("Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"")",
          R"("zorel_physicalethernetadapter.deviceid='{a}'")",
          R"("\\\\testhost\\root\\marlolum2:Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"")"}) {
        SCOPED_TRACE(part);
        std::string text = kMachine;
        const std::string reference = "PartComponent = $A";
        text.replace(text.find(reference), reference.size(), std::string("PartComponent = ") + part);
        UseText(text);
        Connect();
        CTeamedAdapters found;
        ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, found)), "0x00000000");
        ASSERT_EQ(found.m_vecItems.size(), 2u);
        EXPECT_EQ(found.m_vecItems[0]->m_wsAdapterID, kA);
        EXPECT_EQ(found.m_vecItems[0]->m_lMemberRole, 1);
        EXPECT_EQ(found.m_vecItems[0]->m_lMemberStatus, CTeamedAdapter::MemberStatusActive);
    }
}

TEST_F(TeamMembersTest, GetMemberAdapters_AMemberWithoutAnAdapterInTheList_HasNoEffect) {
    UseText(std::string(kMachine) + R"(
        instance of Zorel_TeamedMemberAdapter {
            GroupComponent = "Zorel_TeamOfAdapters.Name=\"{T}\"";
            PartComponent = "Zorel_PhysicalEthernetAdapter.DeviceID=\"{gone}\""; AdapterFunction = 1; };)");
    Connect();
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems.size(), 2u);
    EXPECT_THAT(Traced(), Contains(testing::StartsWith("ERROR:  Unable to locate the device ID ")));
}

TEST_F(TeamMembersTest, GetMemberAdapters_Failures) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"DeviceID", 2);
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x80041003");
    EXPECT_EQ(members.m_vecItems.size(), 1u) << "the records before it stay";
    machine->Rules().Clear();
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Zorel_TeamOfAdapters");
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x80041001");
    machine->Rules().Clear();
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> BSTR_QUERY_REFERENCE"));
    machine->Rules().Clear();
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Zorel_PhysicalEthernetAdapter");
    EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetAdapterDynamicInfo() call FAILED"));
}

TEST_F(TeamMembersTest, Status_FindsTheMemberWhateverTheFormOfItsPath) {
    members = Members({LR"(zorel_physicalethernetadapter.deviceid="{b}")", Adapter(L"{none}"), kA});
    members.m_vecItems.push_back(nullptr);
    ASSERT_EQ(Code(quillet.GetMemberAdaptersStatus(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberRole, 2);
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberStatus, 1);
    EXPECT_EQ(members.m_vecItems[1]->m_lMemberRole, 0);
    EXPECT_EQ(members.m_vecItems[2]->m_lMemberRole, 1);
    EXPECT_THAT(Traced(), Not(Contains("Adapter Not Found!!!")));
}

TEST_F(TeamMembersTest, Status_AStrangersAssociation_IsPassedOver) {
    members = Members({kB});
    ASSERT_EQ(Code(quillet.GetMemberAdaptersStatus(kT, members)), "0x00000000");
    EXPECT_EQ(members.m_vecItems[0]->m_lMemberRole, 2);
    EXPECT_THAT(Traced(), Contains("Adapter Not Found!!!"));
}

TEST_F(TeamMembersTest, Status_EmptyList_IsAFailure) {
    EXPECT_EQ(Code(quillet.GetMemberAdaptersStatus(kT, members)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("rAdapters.size() <= 0"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(TeamMembersTest, Primary_IsTheMemberOfFunction1) {
    bool primary = false;
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kA, primary)), "0x00000000");
    EXPECT_TRUE(primary);
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kB, primary)), "0x00000000");
    EXPECT_FALSE(primary);
    primary = true;
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kC, primary)), "0x00000000") << "in no team";
    EXPECT_FALSE(primary);
    SetNull(Membership(L"{T}", L"{A}"), L"AdapterFunction");
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kA, primary)), "0x00000000");
    EXPECT_FALSE(primary);
    const auto queries = CallsOf(Operation::ExecQuery);
    EXPECT_EQ(queries.front().target,
              L"REFERENCES OF {" + kA + L"} WHERE ResultClass = Zorel_TeamedMemberAdapter");
}

TEST_F(TeamMembersTest, EnabledMembers_AreThoseWhoseStatusIs1) {
    int count = 7;
    EXPECT_EQ(Code(quillet.GetNumberEnabledMembers(kT, count)), "0x00000000");
    EXPECT_EQ(count, 2);
    SetNumber(kB, L"AdapterStatus", 5);
    EXPECT_EQ(Code(quillet.GetNumberEnabledMembers(kT, count)), "0x00000000");
    EXPECT_EQ(count, 1);
}

TEST_F(TeamMembersTest, EnabledMembers_OneThatCannotBeAsked_IsNotCountedAndEndsNothing) {
    // The adapters are fetched for their state, and then again for their status.
    Fail(Operation::GetObject, WBEM_E_FAILED, L"Zorel_PhysicalEthernetAdapter", 3);
    int count = 7;
    EXPECT_EQ(Code(quillet.GetNumberEnabledMembers(kT, count)), "0x00000000");
    EXPECT_EQ(count, 1);
    EXPECT_THAT(Traced(), Contains("GetAdapterStatus() call FAILED"));
}

/// Searches for each of the wanted positions in turn, and yields how many steps each search took.
std::vector<int> StepsOfSearches(std::size_t count, const std::vector<int>& wanted,
                                 std::vector<int>* found = nullptr) {
    CircularSearch search(count);
    std::vector<int> steps;
    for (const int each : wanted) {
        int looked = 0;
        const auto position = search.Find([&](std::size_t candidate) {
            ++looked;
            return static_cast<int>(candidate) == each;
        });
        steps.push_back(looked);
        if (found) {
            found->push_back(position ? static_cast<int>(*position) : -1);
        }
    }
    return steps;
}

TEST(MemberSearchTest, InOrder_EachIsFoundInOneStep) {
    std::vector<int> wanted(8);
    std::iota(wanted.begin(), wanted.end(), 0);
    std::vector<int> found;
    EXPECT_THAT(StepsOfSearches(8, wanted, &found), testing::Each(1));
    EXPECT_EQ(found, wanted);
}

TEST(MemberSearchTest, InReverseOrder_TheFirstAndThenEachOtherGoesNearlyAround) {
    std::vector<int> found;
    // From 0 to 3; then from behind each find around to the one before it.
    EXPECT_THAT(StepsOfSearches(4, {3, 2, 1, 0}, &found), ElementsAre(4, 3, 3, 3));
    EXPECT_THAT(found, ElementsAre(3, 2, 1, 0));
}

TEST(MemberSearchTest, StrangersInBetween_CostOneRoundEachAndDoNotMoveTheStart) {
    std::vector<int> found;
    EXPECT_THAT(StepsOfSearches(4, {0, 99, 1, 98, 2, 3, 0}, &found), ElementsAre(1, 4, 1, 4, 1, 1, 1));
    EXPECT_THAT(found, ElementsAre(0, -1, 1, -1, 2, 3, 0));
}

TEST(MemberSearchTest, NothingToSearch_FindsNothing) {
    std::vector<int> found;
    EXPECT_THAT(StepsOfSearches(0, {0}, &found), ElementsAre(0));
    EXPECT_THAT(found, ElementsAre(-1));
}

TEST_F(TeamMembersTest, Search_AssociationsInAnotherOrderAndAStrangerInBetween_AllFindTheirRecords) {
    // The machine tells adapters in the order of their memberships; the records are those of an operation
    // whose answers to the second query come in another order: B, a stranger, A.
    UseText(R"(
        instance of Zorel_NetService { Name = "ZorelNetService"; };
        instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; HardwareStatus = 3; };
        instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; HardwareStatus = 2; };
        instance of Zorel_PhysicalEthernetAdapter as $C { DeviceID = "{C}"; HardwareStatus = 3; };
        instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "c"; };
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $C; AdapterFunction = 3; };
        instance of Zorel_TeamedMemberAdapter {
            GroupComponent = $T; PartComponent = "Zorel_PhysicalEthernetAdapter.DeviceID=\"{gone}\""; };
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; AdapterFunction = 1; };
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; AdapterFunction = 2; };)");
    Connect();
    ASSERT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
    ASSERT_EQ(members.m_vecItems.size(), 3u);
    for (const CTeamedAdapter* member : members.m_vecItems) {
        const LONG role = member->m_wsDeviceID == L"{A}" ? 1 : member->m_wsDeviceID == L"{B}" ? 2 : 3;
        EXPECT_EQ(member->m_lMemberRole, role) << Narrow(member->m_wsDeviceID);
        EXPECT_EQ(member->m_lMemberStatus, role == 2 ? 3 : 1);
    }
}

} // namespace
