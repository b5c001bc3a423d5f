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
        EXPECT_EQ(Code(quillet.GetMemberAdapters(kT, members)), "0x00000000");
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
    EXPECT_THAT(Added(Members({kA, kB}), Adapters({kD, kB, kC})), ElementsAre(kD, kC));
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetNewAdaptersAddedToTeam",
                                      "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                      "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                      "Exiting CQuillet::GetNewAdaptersAddedToTeam"));
    EXPECT_THAT(Staying(Members({kA, kB, kC}), Adapters({kC, kD, kA})), ElementsAre(kA, kC));
    EXPECT_THAT(Added(Members({kA}), CAdapters()), IsEmpty());
    EXPECT_THAT(Staying(CTeamedAdapters(), Adapters({kA})), IsEmpty());
    EXPECT_THAT(Added(CTeamedAdapters(), Adapters({kA})), ElementsAre(kA));
    EXPECT_THAT(Staying(Members({kA}), CAdapters()), IsEmpty());
}

TEST_F(TeamModificationTest, Differences_CaseCounts) {
    const std::wstring lower = Adapter(L"{a}");
    EXPECT_THAT(Added(Members({kA}), Adapters({lower})), ElementsAre(lower));
    EXPECT_THAT(Staying(Members({kA}), Adapters({lower})), IsEmpty());
}

TEST_F(TeamModificationTest, Members_Unchanged_NothingIsDeletedOrAdded) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kB, kA}))), "0x00000000");
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{B}"));
}

TEST_F(TeamModificationTest, Members_OneReplaced_IsOneRemovalAndThenOneWrite) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const std::string set = " set=" + std::to_string(QuilletTestAccess::ClientSetId(quillet));
    Calls();
    Traced();
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kA, kC}))), "0x00000000");
    EXPECT_THAT(
        Changes(),
        ElementsAre(testing::AllOf(testing::StartsWith("DeleteInstance "),
                                   testing::HasSubstr("Zorel_TeamedMemberAdapter."),
                                   testing::HasSubstr("{B}"), testing::EndsWith(set)),
                    testing::AllOf(
                        testing::StartsWith("PutInstance "), testing::HasSubstr("Zorel_TeamedMemberAdapter."),
                        testing::EndsWith(" GroupComponent:VT_BSTR=" + Narrow(kT) +
                                          " PartComponent:VT_BSTR=" + Narrow(kC) + " flags=0x20010" + set))));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::ModifyMemberList",
                                     "Entering CQuillet::GetCurrentAdaptersStillInNewTeam",
                                     "Exiting CQuillet::GetCurrentAdaptersStillInNewTeam",
                                     "ModifyMemberList() - deleting " + Narrow(kB),
                                     "Entering CQuillet::GetNewAdaptersAddedToTeam",
                                     "GetNewAdaptersAddedToTeam() - new adapter added to the team!",
                                     "Exiting CQuillet::GetNewAdaptersAddedToTeam",
                                     "ModifyMemberList() - adding " + Narrow(kC),
                                     "Exiting CQuillet::ModifyMemberList"));
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{C}"));
}

TEST_F(TeamModificationTest, Members_AllReplaced_AllLeaveBeforeTheFirstComes) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kC, kD}))), "0x00000000");
    std::vector<std::string> kinds;
    for (const std::string& change : Changes()) {
        kinds.push_back(change.substr(0, change.find(' ')));
    }
    EXPECT_THAT(kinds, ElementsAre("DeleteInstance", "DeleteInstance", "PutInstance", "PutInstance"));
    EXPECT_THAT(MembersNow(), ElementsAre("{C}", "{D}"));
}

TEST_F(TeamModificationTest, Members_AssociationIsFoundWhateverTheFormOfTheMembersPath) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(
                  kT, Members({LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{b}")", kA}), Adapters({kA}))),
              "0x00000000");
    EXPECT_THAT(MembersNow(), ElementsAre("{A}"));
}

TEST_F(TeamModificationTest, Members_OneThatIsGoneAlready_IsNoFailure) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB, kC}), Adapters({kA, kB}))), "0x00000000");
    EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(TeamModificationTest, Members_Refusals_EndTheOperationWithTheirLine) {
    EXPECT_EQ(Code(quillet.ModifyMemberList(L"", Members({kA}), Adapters({kB}))), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(ModifyMemberList()- wsTeamID.empty())"));
    Fail(Operation::DeleteInstance, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kC}))), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - DeleteInstance failed"));
    machine->Rules().Clear();
    EXPECT_THAT(MembersNow(), ElementsAre("{A}", "{B}")) << "nothing after the failure";
    Fail(Operation::PutInstance, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kA, kC, kD}))), "0x80041003");
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
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA, kB}), Adapters({kA, kB, kC}))), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - PutInstance failed -> pTeamMemAdapter_Instance"));
}

TEST_F(TeamModificationTest, Members_PathThatIsNoText_IsAFailureWithItsLine) {
    Spoil(Operation::Get, Effect::WrongType, L"__PATH");
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA}), CAdapters())), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ModifyMemberList() - vPath.vt INVALID"));
}

TEST_F(TeamModificationTest, Members_NotConnected_HasALineOfItsOwn) {
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.ModifyMemberList(kT, Members({kA}), Adapters({kB}))), "0x80041001");
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
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(kT, team)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre("PutInstance " + Narrow(kT) +
                                       " TeamingMode:VT_I4=0 Caption:VT_BSTR=Renamed flags=0x20010" + set));
    EXPECT_THAT(Steps(),
                ElementsAre("Entering CQuillet::ModifyTeamInfo", "Exiting CQuillet::ModifyTeamInfo"));
    EXPECT_EQ(Text(kT, L"Caption"), "Renamed");
    EXPECT_EQ(Number(kT, L"TeamingMode"), 0);
}

TEST_F(TeamModificationTest, Info_Failures) {
    CTeam team;
    team.m_wsCaption = L"x";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(L"", team)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(Team(L"{none}"), team)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsTeamID"));
    Fail(Operation::Put, WBEM_E_TYPE_MISMATCH, L"Caption");
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(kT, team)), "0x80041005");
    EXPECT_THAT(Traced(), Contains("Put -> L_PROP_TEAMOFADAPTERS_CAPTION"));
    machine->Rules().Clear();
    FaultRule rule;
    rule.operation = Operation::PutInstance;
    rule.effect = Effect::FailStatus;
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(kT, team)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("pWbemCallResult -> GetCallStatus"));
}

TEST_F(TeamModificationTest, Priority_WritesTheFirstMembership) {
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(kB, 1)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre(testing::AllOf(
                               testing::StartsWith("PutInstance "), testing::HasSubstr("{B}"),
                               testing::EndsWith(" AdapterFunction:VT_I4=1 flags=0x20010 set=0"))));
    bool primary = false;
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kB, primary)), "0x00000000");
    EXPECT_TRUE(primary);
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(kA, primary)), "0x00000000");
    EXPECT_FALSE(primary) << "there is one primary adapter";
}

TEST_F(TeamModificationTest, Priority_Failures) {
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(L"", 1)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsMemberID.empty())"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(kC, 1)), "0x80041001");
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::SetTeamedAdapterPriority",
                                     "pEnumTeamedMemberAdapters -> Next -> NULL",
                                     "Exiting CQuillet::SetTeamedAdapterPriority"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(kA, 9)), "0x80041008") << "the provider's own refusal";
}

TEST_F(TeamModificationTest, RemoveTeam_DeletesItsInstance) {
    EXPECT_EQ(Code(quillet.RemoveTeam(kT)), "0x00000000");
    EXPECT_THAT(Changes(), ElementsAre("DeleteInstance " + Narrow(kT) + " set=0"));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::RemoveTeam", "Exiting CQuillet::RemoveTeam"));
    EXPECT_FALSE(Exists(kT));
    EXPECT_EQ(Code(quillet.RemoveTeam(kT)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("DeleteInstance -> wsTeamID"));
    EXPECT_EQ(Code(quillet.RemoveTeam(L"")), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
}

TEST_F(TeamModificationTest, EachOperation_NotConnected_Fails) {
    quillet.UninitQuillet();
    Traced();
    constexpr const char* kMissing = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(kT, CTeam())), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(kA, 1)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
    EXPECT_EQ(Code(quillet.RemoveTeam(kT)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
}

} // namespace
