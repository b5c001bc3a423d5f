// Changing and removing a team, with everything that is written.
#include "Teams/TeamFixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class TeamModificationTest : public TeamTest {
  protected:
    std::vector<std::wstring> Added(const CTeamedAdapters& current, const CAdapters& wanted) {
        std::vector<std::wstring> ids;
        QuilletTestAccess::GetNewAdaptersAddedToTeam(current, wanted, ids);
        return ids;
    }
    std::vector<std::wstring> Staying(const CTeamedAdapters& current, const CAdapters& wanted) {
        std::vector<std::wstring> ids;
        QuilletTestAccess::GetCurrentAdaptersStillInNewTeam(current, wanted, ids);
        return ids;
    }
    /// The object IDs of the members that the machine has.
    std::vector<std::string> MembersNow() {
        CTeamedAdapters members;
        EXPECT_EQ(Code(quillet.GetMemberAdapters(T, members)), "0x00000000");
        std::vector<std::string> ids;
        for (const CTeamedAdapter* member : members.m_vecItems) {
            ids.push_back(Narrow(member->m_wsDeviceID));
        }
        Calls();
        Traced();
        return ids;
    }
};

TEST_F(TeamModificationTest, Differences_AreThoseOfTheIdentifiersInTheirOrder) {
    EXPECT_THAT(Added(Members({A, B}), Adapters({D, B, C})), ElementsAre(D, C));
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetNewAdaptersAddedToTeam",
                                      "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                      "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                      "Exiting CQuillet::GetNewAdaptersAddedToTeam"));
    EXPECT_THAT(Staying(Members({A, B, C}), Adapters({C, D, A})), ElementsAre(A, C));
    EXPECT_THAT(Added(Members({A}), CAdapters()), IsEmpty());
    EXPECT_THAT(Staying(CTeamedAdapters(), Adapters({A})), IsEmpty());
    EXPECT_THAT(Added(CTeamedAdapters(), Adapters({A})), ElementsAre(A));
    EXPECT_THAT(Staying(Members({A}), CAdapters()), IsEmpty());
}

TEST_F(TeamModificationTest, Differences_CaseCounts) {
    const std::wstring lower = Adapter(L"{a}");
    EXPECT_THAT(Added(Members({A}), Adapters({lower})), ElementsAre(lower));
    EXPECT_THAT(Staying(Members({A}), Adapters({lower})), IsEmpty());
}

TEST_F(TeamModificationTest, Members_Unchanged_NothingIsDeletedOrAdded) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({B, A}))), "0x00000000");
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{B}"));
}

TEST_F(TeamModificationTest, Members_OneReplaced_IsOneRemovalAndThenOneWrite) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const std::string set = " set=" + std::to_string(QuilletTestAccess::ClientSetId(quillet));
    Calls();
    Traced();
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({A, C}))), "0x00000000");
    EXPECT_THAT(
        Changes(),
        ElementsAre(testing::AllOf(testing::StartsWith("DeleteInstance "),
                                   testing::HasSubstr("Zorel_TeamedMemberAdapter."),
                                   testing::HasSubstr("{B}"), testing::EndsWith(set)),
                    testing::AllOf(
                        testing::StartsWith("PutInstance "), testing::HasSubstr("Zorel_TeamedMemberAdapter."),
                        testing::EndsWith(" GroupComponent:VT_BSTR=" + Narrow(T) +
                                          " PartComponent:VT_BSTR=" + Narrow(C) + " flags=0x20010" + set))));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::ModifyMemberList",
                                     "Entering CQuillet::GetCurrentAdaptersStillInNewTeam",
                                     "Exiting CQuillet::GetCurrentAdaptersStillInNewTeam",
                                     "ModifyMemberList() - deleting " + Narrow(B),
                                     "Entering CQuillet::GetNewAdaptersAddedToTeam",
                                     "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                     "Exiting CQuillet::GetNewAdaptersAddedToTeam",
                                     "ModifyMemberList() - adding " + Narrow(C),
                                     "Exiting CQuillet::ModifyMemberList"));
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{C}"));
}

TEST_F(TeamModificationTest, Members_AllReplaced_AllLeaveBeforeTheFirstComes) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({C, D}))), "0x00000000");
    std::vector<std::string> kinds;
    for (const std::string& change : Changes()) {
        kinds.push_back(change.substr(0, change.find(' ')));
    }
    EXPECT_THAT(kinds, ElementsAre("DeleteInstance", "DeleteInstance", "PutInstance", "PutInstance"));
    EXPECT_THAT(MembersNow(), ElementsAre("{C}", "{D}"));
}

TEST_F(TeamModificationTest, Members_AssociationIsFoundWhateverTheFormOfTheMembersPath) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(
                  T, Members({LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{b}")", A}), Adapters({A}))),
              "0x00000000");
    EXPECT_THAT(MembersNow(), ElementsAre("{A}"));
}

TEST_F(TeamModificationTest, Members_OneThatIsGoneAlready_IsNoFailure) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B, C}), Adapters({A, B}))), "0x00000000");
    EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(TeamModificationTest, Members_Refusals_EndTheOperationWithTheirLine) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(L"", Members({A}), Adapters({B}))), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(ModifyMemberList()- wsTeamID.empty())"));
    Fail(Operation::DeleteInstance, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({C}))), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - DeleteInstance failed"));
    machine->Rules().Clear();
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{B}")) << "nothing after the failure";
    Fail(Operation::PutInstance, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({A, C, D}))), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - PutInstance failed -> pTeamMemAdapter_Instance"));
    machine->Rules().Clear();
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{C}")) << "what was changed before stays";
}

TEST_F(TeamModificationTest, Members_StatusOfTheWrite_IsTheResult) {
    FaultRule rule;
    rule.operation = Operation::PutInstance;
    rule.effect = Effect::FailStatus;
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A, B}), Adapters({A, B, C}))), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - PutInstance failed -> pTeamMemAdapter_Instance"));
}

TEST_F(TeamModificationTest, Members_PathThatIsNoText_IsAFailureWithItsLine) {
    Spoil(Operation::Get, Effect::WrongType, L"__PATH");
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A}), CAdapters())), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - vPath.vt INVALID"));
}

TEST_F(TeamModificationTest, Members_NotConnected_HasALineOfItsOwn) {
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.ModifyMemberList(T, Members({A}), Adapters({B}))), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - pIWbemService is NULL) or pIWbemContext is NULL"));
}

TEST_F(TeamModificationTest, Info_WritesModeAndThenCaption) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const std::string set = " set=" + std::to_string(QuilletTestAccess::ClientSetId(quillet));
    Calls();
    Traced();
    CTeam team;
    team.m_eTeamMode = CTeam::TeamMode0;
    team.m_wsCaption = L"Renamed";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre("PutInstance " + Narrow(T) +
                                       " TeamingMode:VT_I4=0 Caption:VT_BSTR=Renamed flags=0x20010" + set));
    EXPECT_THAT(Steps(),
                ElementsAre("Entering CQuillet::ModifyTeamInfo", "Exiting CQuillet::ModifyTeamInfo"));
    EXPECT_EQ(Text(T, L"Caption"), "Renamed");
    EXPECT_EQ(Number(T, L"TeamingMode"), 0);
}

TEST_F(TeamModificationTest, Info_Failures) {
    CTeam team;
    team.m_wsCaption = L"x";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(L"", team)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(Team(L"{none}"), team)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsTeamID"));
    Fail(Operation::Put, WBEM_E_TYPE_MISMATCH, L"Caption");
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x80041005");
    EXPECT_THAT(Traced(), Contains("Put -> L_PROP_TEAMOFADAPTERS_CAPTION"));
    machine->Rules().Clear();
    FaultRule rule;
    rule.operation = Operation::PutInstance;
    rule.effect = Effect::FailStatus;
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("pWbemCallResult -> GetCallStatus"));
}

TEST_F(TeamModificationTest, Priority_WritesTheFirstMembership) {
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(B, 1)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre(testing::AllOf(
                               testing::StartsWith("PutInstance "), testing::HasSubstr("{B}"),
                               testing::EndsWith(" AdapterFunction:VT_I4=1 flags=0x20010 set=0"))));
    bool primary = false;
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(B, primary)), "0x00000000");
    EXPECT_TRUE(primary);
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(A, primary)), "0x00000000");
    EXPECT_FALSE(primary) << "there is one primary adapter";
}

TEST_F(TeamModificationTest, Priority_Failures) {
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(L"", 1)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsMemberID.empty())"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(C, 1)), "0x80041001");
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::SetTeamedAdapterPriority",
                                     "pEnumTeamedMemberAdapters -> Next -> NULL",
                                     "Exiting CQuillet::SetTeamedAdapterPriority"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(A, 9)), "0x80041008") << "the provider's own refusal";
}

TEST_F(TeamModificationTest, RemoveTeam_DeletesItsInstance) {
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre("DeleteInstance " + Narrow(T) + " set=0"));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::RemoveTeam", "Exiting CQuillet::RemoveTeam"));
    EXPECT_FALSE(Exists(T));
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("DeleteInstance -> wsTeamID"));
    EXPECT_EQ(Code(quillet.RemoveTeam(L"")), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
}

TEST_F(TeamModificationTest, EachOperation_NotConnected_Fails) {
    quillet.UninitQuillet();
    Traced();
    constexpr const char* MISSING = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, CTeam())), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(A, 1)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
}

} // namespace
