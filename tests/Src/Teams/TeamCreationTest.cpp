// Making a team, and asking the provider about it before.
#include "Teams/TeamFixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class TeamCreationTest : public TeamTest {
  protected:
    HRESULT Create(const wchar_t* name = L"Two") {
        return quillet.CreateTeam(CTeam::TeamMode1, name, Adapters({D, C}), team,
                                  static_cast<ePERFORMANCE_PROFILE>(5), true, false);
    }
    CTeam team;
};

TEST_F(TeamCreationTest, CreateTeam_PutsSixParametersInTheirOrderAndTypes) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const LONG set = QuilletTestAccess::ClientSetId(quillet);
    Calls();
    EXPECT_EQ(Code(Create()), "0x00000000");
    EXPECT_THAT(Changes(),
                ElementsAre("ExecMethod Zorel_TeamOfAdapters CreateTeam Adapters:VT_ARRAY|VT_BSTR=[" +
                            Narrow(D) + ", " + Narrow(C) +
                            "] TeamingMode:VT_I4=1 TeamName:VT_BSTR=Two MFOEnable:VT_BOOL=true "
                            "LinksecEnabled:VT_BOOL=false TeamProfile:VT_I4=5 set=" +
                            std::to_string(set)));
}

TEST_F(TeamCreationTest, CreateTeam_FillsTheNewTeam) {
    RecordLocalCalls();
    EXPECT_EQ(Code(Create()), "0x00000000");
    EXPECT_EQ(team.m_eTeamMode, CTeam::TeamMode1);
    EXPECT_EQ(team.m_wsCaption, L"Two");
    ASSERT_TRUE(Exists(team.m_wsTeamID));
    EXPECT_EQ(Narrow(team.m_wsName), Text(team.m_wsTeamID, L"Name"));
    EXPECT_EQ(team.m_wsTeamID.rfind(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name=)", 0), 0u);
    std::vector<std::string> calls = Called();
    // From the class on: signature, parameters, call, its answers, the new team.
    calls.erase(calls.begin(), std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
                    return call.rfind("GetObject Zorel_TeamOfAdapters ", 0) == 0;
                }));
    EXPECT_THAT(calls,
                ElementsAre("GetObject Zorel_TeamOfAdapters -> 0x00000000 {ClientSetId=0}",
                            testing::StartsWith("GetMethod "), testing::StartsWith("SpawnInstance "),
                            testing::StartsWith("Put Adapters"), testing::StartsWith("Put TeamingMode"),
                            testing::StartsWith("Put TeamName"), testing::StartsWith("Put MFOEnable"),
                            testing::StartsWith("Put LinksecEnabled"), testing::StartsWith("Put TeamProfile"),
                            testing::StartsWith("ExecMethod "), testing::StartsWith("Get TeamPath"),
                            testing::StartsWith("Get ReturnValue"),
                            testing::StartsWith("GetObject " + Narrow(team.m_wsTeamID)),
                            testing::StartsWith("Get Name")));
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::CreateTeam", "Exiting CQuillet::CreateTeam"));
}

TEST_F(TeamCreationTest, CreateTeam_EmptyName_FailsWithoutACall) {
    EXPECT_EQ(Code(Create(L"")), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::CreateTeam", "(wsTeamName.empty())",
                                      "Exiting CQuillet::CreateTeam"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(TeamCreationTest, CreateTeam_NotConnected_Fails) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(Create()), "0x80041001");
    EXPECT_THAT(Traced(), Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
}

TEST_F(TeamCreationTest, CreateTeam_Refused_ReturnsTheProvidersCode) {
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Create()), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> bstrObjectPath, L_METHOD_TEAMOFADAPTERS_CREATETEAM"));
    EXPECT_EQ(team.m_wsCaption, L"");
}

TEST_F(TeamCreationTest, CreateTeam_ReturnValueUnreadable_Fails) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"ReturnValue");
    EXPECT_EQ(Code(Create()), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN"));
}

TEST_F(TeamCreationTest, CreateTeam_PathUnreadable_IsNoFailureByItselfButThereIsNoTeamToRead) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"TeamPath");
    EXPECT_EQ(Code(Create()), "0x80041001");
    const std::vector<std::string> lines = Traced();
    EXPECT_THAT(lines, Contains("GetPropertyAsString -> pAdapter_OutParams, L_PARAM_TEAM_TEAMPATH"));
    EXPECT_THAT(lines, Contains("GetObject -> bstrTeamPath"));
    EXPECT_THAT(lines, Not(Contains("GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN")));
    EXPECT_EQ(team.m_wsCaption, L"Two");
    EXPECT_EQ(team.m_wsTeamID, L"");
}

TEST_F(TeamCreationTest, CreateTeam_NewTeamUnreadable_ReturnsTheCode) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Zorel_TeamOfAdapters", 2);
    EXPECT_EQ(Code(Create()), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetObject -> bstrTeamPath"));
    EXPECT_TRUE(Exists(team.m_wsTeamID)) << "the team is there, and its path is told";
}

TEST_F(TeamCreationTest, CreateTeam_NoOutParameters_IsAFailureWithALine) {
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(Create()), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN"));
}

/// A provider that answers with a return value of its own although it made the team.
class RefusedInWordsTest : public TeamCreationTest {};

TEST_F(RefusedInWordsTest, CreateTeam_ReturnValueNotZero_DoesNotMatterWhenThereIsAPath) {
    // The answer of the provider, but for its return value.
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"ReturnValue";
    rule.effect = Effect::WrongType;
    rule.vt = VT_R8;
    Inject(rule);
    EXPECT_EQ(Code(Create()), "0x00000000");
    EXPECT_TRUE(Exists(team.m_wsTeamID));
}

TEST_F(RefusedInWordsTest, CreateTeam_VerdictWithoutPath_FailsBecauseThereIsNoPath) {
    FaultRule rule;
    rule.operation = Operation::ExecMethod;
    rule.method = L"CreateTeam";
    rule.effect = Effect::Verdict;
    rule.verdict = 87;
    Inject(rule);
    EXPECT_EQ(Code(Create()), "0x80041001");
    EXPECT_THAT(Traced(), testing::AllOf(Contains("CreateTeam -> ReturnValue 87"),
                                         Contains("GetObject -> bstrTeamPath")));
}

class TeamValidationTest : public TeamTest {
  protected:
    /// What is asked about a team that is yet to be made.
    static constexpr const wchar_t* CLASS = L"Zorel_TeamOfAdapters";
    DWORD word = 77;
    ULONGLONG mask = 77;
};

TEST_F(TeamValidationTest, Name_AsksTheClassOrTheTeam) {
    EXPECT_EQ(Code(quillet.ValidateTeamName(L"Two", CLASS, word)), "0x00000000");
    EXPECT_EQ(word, 0u);
    EXPECT_EQ(Code(quillet.ValidateTeamName(L"TEAM : One", CLASS, word)), "0x00000000");
    EXPECT_EQ(word, 0x80u) << "a new team of this name";
    EXPECT_EQ(Code(quillet.ValidateTeamName(L"TEAM : One", T, word)), "0x00000000");
    EXPECT_EQ(word, 0u) << "the team's own name";
    EXPECT_THAT(
        Changes(),
        ElementsAre("ExecMethod Zorel_TeamOfAdapters ValidateTeamName Caption:VT_BSTR=Two set=0",
                    "ExecMethod Zorel_TeamOfAdapters ValidateTeamName Caption:VT_BSTR=TEAM : One set=0",
                    "ExecMethod " + Narrow(T) + " ValidateTeamName Caption:VT_BSTR=TEAM : One set=0"));
    EXPECT_EQ(Code(quillet.ValidateTeamName(L"", L"", word)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamName.empty())"));
}

TEST_F(TeamValidationTest, NameAndMode_WithoutAnObject_AreRefusedBeforeAnythingIsSent) {
    EXPECT_EQ(Code(quillet.ValidateTeamName(L"Two", L"", word)), "0x80041001");
    EXPECT_EQ(word, 0u);
    EXPECT_THAT(Traced(), Contains("(wsObjectPath.empty())"));
    word = 77;
    EXPECT_EQ(Code(quillet.ValidateTeamMode(CTeam::TeamMode6, L"", word)), "0x80041001");
    EXPECT_EQ(word, 0u);
    EXPECT_THAT(Traced(), Contains("(wsObjectPath.empty())"));
    EXPECT_THAT(Called(), testing::IsEmpty());
}

TEST_F(TeamValidationTest, Mode_AsksTheClassOrTheTeam) {
    EXPECT_EQ(Code(quillet.ValidateTeamMode(CTeam::TeamMode6, CLASS, word)), "0x00000000");
    EXPECT_EQ(word, 0u);
    EXPECT_EQ(Code(quillet.ValidateTeamMode(CTeam::TeamModeUnknown, CLASS, word)), "0x00000000");
    EXPECT_EQ(word, 0x400u);
    EXPECT_EQ(Code(quillet.ValidateTeamMode(CTeam::TeamMode5, T, word)), "0x00000000");
    EXPECT_EQ(word, 0u);
    EXPECT_THAT(Changes(),
                Contains("ExecMethod " + Narrow(T) + " ValidateTeamMode TeamingMode:VT_I4=5 set=0"));
}

TEST_F(TeamValidationTest, NameAndMode_ARefusalOfTheMethod_IsReturnedUnderTheNamesLine) {
    FaultRule rule;
    rule.operation = Operation::ExecMethod;
    rule.effect = Effect::Verdict;
    rule.verdict = 5;
    rule.repeat = true;
    Inject(rule);
    EXPECT_EQ(quillet.ValidateTeamName(L"Two", CLASS, word), 5);
    EXPECT_THAT(Traced(), Contains("ValidateTeamName() -> Validate team name Method failed."));
    EXPECT_EQ(quillet.ValidateTeamMode(CTeam::TeamMode1, CLASS, word), 5);
    EXPECT_THAT(Traced(), Contains("ValidateTeamName() -> Validate team name Method failed."));
    EXPECT_EQ(word, 0u);
}

TEST_F(TeamValidationTest, NewMembers_NoneAreValidWithoutACall) {
    EXPECT_EQ(Code(quillet.ValidateNewTeamMembers(CAdapters(), CTeam::TeamMode1, mask)), "0x00000000");
    EXPECT_EQ(mask, 0u);
    EXPECT_THAT(Traced(), Contains("ValidateNewTeamMembers:No new adapters ;hence returning success"));
    mask = 77;
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(CAdapters(), mask)), "0x00000000");
    EXPECT_EQ(mask, 0u);
    EXPECT_THAT(Traced(), Contains("ValidateSettingsOnNewTeam:No new adapters ;hence returning success"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(TeamValidationTest, NewMembers_ReadsTheWordAndThenTheVerdict) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.ValidateNewTeamMembers(Adapters({C, A}), CTeam::TeamMode2, mask)), "0x00000000");
    EXPECT_EQ(mask, 0x20u) << "A is in a team";
    const std::vector<std::string> calls = Called();
    EXPECT_THAT(std::vector<std::string>(calls.end() - 2, calls.end()),
                ElementsAre("Get ValResultNewTeam -> 0x00000000", "Get ReturnValue -> 0x00000000"));
    EXPECT_EQ(Code(quillet.ValidateNewTeamMembers(Adapters({C, D}), CTeam::TeamMode2, mask)), "0x00000000");
    EXPECT_EQ(mask, 0u);
    EXPECT_THAT(Changes(), ElementsAre("ExecMethod Zorel_TeamOfAdapters ValidateNewTeamMembers "
                                       "NewAdapters:VT_ARRAY|VT_BSTR=[" +
                                       Narrow(C) + ", " + Narrow(D) + "] NewTeamMode:VT_I4=2 set=0"));
}

TEST_F(TeamValidationTest, NewMembers_ARefusalOfTheMethod_IsReturned) {
    FaultRule rule;
    rule.operation = Operation::ExecMethod;
    rule.effect = Effect::Verdict;
    rule.verdict = 5;
    Inject(rule);
    EXPECT_EQ(quillet.ValidateNewTeamMembers(Adapters({C}), CTeam::TeamMode2, mask), 5);
    EXPECT_THAT(Traced(), Contains("(0 != lValue) -> ValidateNewTeamMembers Method failure"));
}

TEST_F(TeamValidationTest, Settings_AsksTheAdaptersClassForTheJumboPacket) {
    UseText(std::string(MACHINE) + R"(
        instance of Zorel_AdapterSettingEnum { Caption = "*JumboPacket"; ParentId = "{C}"; ParentType = "NIC";
            CurrentValue = 9014; };
        instance of Zorel_AdapterSettingEnum { Caption = "*JumboPacket"; ParentId = "{D}"; ParentType = "NIC";
            CurrentValue = 1514; };
        instance of Zorel_AdapterSettingEnum { Caption = "*JumboPacket"; ParentId = "{B}"; ParentType = "NIC";
            CurrentValue = 1514; };)");
    Connect();
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(Adapters({C, D}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0x800u) << "they differ";
    EXPECT_THAT(Changes(),
                ElementsAre("ExecMethod Zorel_PhysicalEthernetAdapter ValidateSettingOnNewTeam "
                            "Adapters:VT_ARRAY|VT_BSTR=[" +
                            Narrow(C) + ", " + Narrow(D) + "] SettingName:VT_BSTR=*JumboPacket set=0"));
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(Adapters({D, B}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0u);
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(Adapters({D, E}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0x800u) << "E has no such setting";
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(Adapters({Adapter(L"{none}")}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0x2u);
}

TEST_F(TeamValidationTest, AddAdapters_AsksTheTeam) {
    EXPECT_EQ(Code(quillet.ValidateAddAdapters(T, Members({A, B}), Adapters({C}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0u);
    EXPECT_EQ(Code(quillet.ValidateAddAdapters(T, Members({A, B}), Adapters({E, A}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0x4u + 0x20u) << "E does not support the team's mode, and A is a member";
    EXPECT_THAT(Changes(),
                Contains("ExecMethod " + Narrow(T) + " ValidateAddAdapters Adapters:VT_ARRAY|VT_BSTR=[" +
                         Narrow(C) + "] set=0"));
    EXPECT_EQ(Code(quillet.ValidateAddAdapters(L"", CTeamedAdapters(), Adapters({C}), mask)), "0x80041001");
    EXPECT_EQ(mask, 0u);
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
}

TEST_F(TeamValidationTest, Words_AreThe64BitsOfTheProvider) {
    Spoil(Operation::Get, Effect::NullValue, L"ValResult");
    EXPECT_EQ(Code(quillet.ValidateAddAdapters(T, CTeamedAdapters(), Adapters({A}), mask)), "0x00000000");
    EXPECT_EQ(mask, 0u) << "a word that is not told";
    machine->Rules().Clear();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"ValResult");
    EXPECT_EQ(Code(quillet.ValidateAddAdapters(T, CTeamedAdapters(), Adapters({A}), mask)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsUINT64 -> pAdapter_OutParams, L_PARAM_TEAM_VALRESULT"));
}

TEST_F(TeamValidationTest, Prefix_IsTheValuesQualifierOfTeamPrefix) {
    RecordLocalCalls();
    std::wstring prefix;
    EXPECT_EQ(Code(quillet.GetTeamNamePrefix(prefix)), "0x00000000");
    EXPECT_EQ(prefix, L"TEAM : ");
    const std::vector<std::string> calls = Called();
    EXPECT_THAT(std::vector<std::string>(calls.end() - 3, calls.end()),
                ElementsAre("GetObject Zorel_TeamOfAdapters -> 0x00000000 {ClientSetId=0}",
                            testing::StartsWith("GetPropertyQualifierSet TeamPrefix"),
                            testing::StartsWith("GetQualifier Values")));
}

TEST_F(TeamValidationTest, Prefix_FailuresAreNamed) {
    std::wstring prefix = L"kept";
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetTeamNamePrefix(prefix)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_ZOREL_TEAMOFADAPTERS"));
    machine->Rules().Clear();
    Fail(Operation::GetPropertyQualifierSet, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetTeamNamePrefix(prefix)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("Class_Def GetPropertyQualifierSet() FAILED!!! hRes"));
    machine->Rules().Clear();
    Fail(Operation::GetQualifier, WBEM_E_NOT_FOUND);
    EXPECT_EQ(Code(quillet.GetTeamNamePrefix(prefix)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("  pIQualifierSet->Get() FAILED!!! hRes"));
    machine->Rules().Clear();
    Spoil(Operation::GetQualifier, Effect::WrongType);
    EXPECT_EQ(Code(quillet.GetTeamNamePrefix(prefix)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("vPrefix.vt INVALID"));
    EXPECT_EQ(prefix, L"kept");
}

} // namespace
