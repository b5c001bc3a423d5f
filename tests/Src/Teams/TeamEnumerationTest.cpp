// Listing teams, reading one, and the ways to its identity and its virtual adapter.
#include "Teams/TeamFixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class TeamEnumerationTest : public TeamTest {
  protected:
    CTeams teams;
    CTeam team;
};

TEST_F(TeamEnumerationTest, TeamMode_IsTheProvidersNumberBelow7And255Otherwise) {
    for (LONG mode = 0; mode < 7; ++mode) {
        EXPECT_EQ(QuilletTestAccess::GetTeamMode(mode), mode);
    }
    for (const LONG mode : {7, 8, 255, 256, 0x7FFFFFFF, -1, -7, -0x7FFFFFFF - 1}) {
        EXPECT_EQ(QuilletTestAccess::GetTeamMode(mode), 255) << mode;
    }
}

TEST_F(TeamEnumerationTest, EnumerateTeams_ReadsSixPropertiesInTheirOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
    ASSERT_EQ(teams.m_vecItems.size(), 1u);
    const CTeam& found = *teams.m_vecItems[0];
    EXPECT_EQ(found.m_wsTeamID, kT);
    EXPECT_EQ(found.m_wsName, L"{T}");
    EXPECT_EQ(found.m_wsCaption, L"TEAM : One");
    EXPECT_EQ(found.m_eTeamMode, CTeam::TeamMode4);
    EXPECT_FALSE(found.m_bMFOEnabled);
    EXPECT_TRUE(found.m_bLinkSecEnabled);
    EXPECT_EQ(found.m_wsTeamMacAddress, L"") << "not read by the list";
    EXPECT_FALSE(found.m_bBoundToHyperV);
    std::vector<std::string> calls = Called();
    calls.erase(calls.begin(), std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
                    return call.rfind("CreateInstanceEnum", 0) == 0;
                }));
    EXPECT_THAT(calls, ElementsAre("CreateInstanceEnum Zorel_TeamOfAdapters -> 0x00000000 {ClientSetId=0}",
                                   testing::StartsWith("Next"), "Get __PATH -> 0x00000000",
                                   "Get Name -> 0x00000000", "Get Caption -> 0x00000000",
                                   "Get TeamingMode -> 0x00000000", "Get MFOEnabled -> 0x00000000",
                                   "Get LinksecEnabled -> 0x00000000", testing::StartsWith("Next")));
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateTeams", "dwErrorCode: %l",
                                      "pInstance->Get() passed", "Exiting CQuillet::EnumerateTeams"));
}

TEST_F(TeamEnumerationTest, EnumerateTeams_AppendsAndCarriesAnUnknownModeAs255) {
    teams.m_vecItems.push_back(new CTeam);
    SetNumber(kT, L"TeamingMode", -1);
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
    ASSERT_EQ(teams.m_vecItems.size(), 2u);
    EXPECT_EQ(teams.m_vecItems[1]->m_eTeamMode, CTeam::TeamModeUnknown);
}

TEST_F(TeamEnumerationTest, EnumerateTeams_WithoutTeams_IsEmptyAndNoFailure) {
    UseText(kNetServiceMof);
    Connect();
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
    EXPECT_THAT(teams.m_vecItems, IsEmpty());
}

TEST_F(TeamEnumerationTest, EnumerateTeams_ReadFails_ReturnsTheAccessorsCodeAndKeepsTheTeamsBefore) {
    UseText(std::string(kMachine) + R"(instance of Zorel_TeamOfAdapters {
        Name = "{U}"; Caption = "Two"; TeamingMode = 0; MFOEnabled = TRUE; LinksecEnabled = FALSE; };)");
    Connect();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"Caption", 2);
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041003");
    EXPECT_EQ(teams.m_vecItems.size(), 1u);
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::EnumerateTeams",
                                     "GetPropertyAsString -> pTeamInstance, L_PROP_TEAMOFADAPTERS_CAPTION",
                                     "Exiting CQuillet::EnumerateTeams"));
}

TEST_F(TeamEnumerationTest, EnumerateTeams_NullValue_IsNamedAndTheRecordIsNotAppended) {
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pTeamInstance, L_ZOREL_PATH -> NULL"));
    machine->Rules().Clear();
    for (const wchar_t* property : {L"Caption", L"TeamingMode", L"MFOEnabled", L"LinksecEnabled"}) {
        UseText(kMachine);
        Connect();
        SetNull(kT, property);
        EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041001") << Narrow(property);
        EXPECT_THAT(Traced(), Contains(testing::EndsWith(" -> NULL")));
    }
    EXPECT_THAT(teams.m_vecItems, IsEmpty());
}

TEST_F(TeamEnumerationTest, EnumerateTeams_EnumerationFails_ReturnsItAsItIs) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("CreateInstanceEnum -> L_CLASS_ZOREL_TEAMOFADAPTERS"));
    machine->Rules().Clear();
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041015");
    EXPECT_EQ(teams.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pEnumTeams -> Next"));
}

TEST_F(TeamEnumerationTest, GetTeamInfo_ReadsAddressAndUseByVirtualMachinesAsWell) {
    Set(kT, L"BoundToHyperV", quillet::simulator::Value::Bool(true));
    EXPECT_EQ(Code(quillet.GetTeamInfo(kT, team)), "0x00000000");
    EXPECT_EQ(team.m_wsTeamID, kT);
    EXPECT_EQ(team.m_wsCaption, L"TEAM : One");
    EXPECT_EQ(team.m_eTeamMode, CTeam::TeamMode4);
    EXPECT_TRUE(team.m_bLinkSecEnabled);
    EXPECT_EQ(team.m_wsTeamMacAddress, L"02-00-5E-00-00-0A");
    EXPECT_TRUE(team.m_bBoundToHyperV);
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::GetTeamInfo", "Exiting CQuillet::GetTeamInfo"));
}

TEST_F(TeamEnumerationTest, GetTeamInfo_AnyFailure_Is80041001) {
    EXPECT_EQ(Code(quillet.GetTeamInfo(Team(L"{none}"), team)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsTeamID"));
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"TeamMacAddress");
    EXPECT_EQ(Code(quillet.GetTeamInfo(kT, team)), "0x80041001");
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsString -> pTeamInstance, L_PROP_TEAMOFADAPTERS_TEAMMACADDRESS"));
    machine->Rules().Clear();
    SetNull(kT, L"BoundToHyperV");
    EXPECT_EQ(Code(quillet.GetTeamInfo(kT, team)), "0x80041001");
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsBool -> pTeamInstance, L_PROP_TEAMOFADAPTERS_BOUNDTOHYPERV -> NULL"));
}

TEST_F(TeamEnumerationTest, GetTeamStatus_ReadsTheLogicalAdapterOfTheSameObjectId) {
    CTeam::TeamStatus status{};
    EXPECT_EQ(Code(quillet.GetTeamStatus(kT, status)), "0x00000000");
    EXPECT_EQ(status, CTeam::TeamStatusEnabled);
    EXPECT_THAT(Called(), ElementsAre(R"(GetObject Zorel_LogicalEthernetAdapter.DeviceID="{T}" -> 0x00000000)"
                                      " {ClientSetId=0}"));
    EXPECT_THAT(Traced(), Contains("Logical Ethernet Adapter Path"));
    SetNumber(Path(L"Zorel_LogicalEthernetAdapter", L"DeviceID", L"{T}"), L"StatusInfo", 77);
    EXPECT_EQ(Code(quillet.GetTeamStatus(kT, status)), "0x00000000");
    EXPECT_EQ(status, 77) << "a number that is not known is carried";
}

TEST_F(TeamEnumerationTest, GetTeamStatus_Failures) {
    CTeam::TeamStatus status = CTeam::TeamStatusOther;
    EXPECT_EQ(Code(quillet.GetTeamStatus(Team(L"{none}"), status)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> bstrLogicalAdapterPath"));
    EXPECT_EQ(Code(quillet.GetTeamStatus(kA, status)), "0x80041001") << "not the path of a team";
    EXPECT_THAT(Traced(), Contains("GetObjectIdFromTeamOfAdapPath -> wsTeamID"));
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"StatusInfo");
    EXPECT_EQ(Code(quillet.GetTeamStatus(kT, status)), "0x80041003");
    EXPECT_EQ(status, CTeam::TeamStatusOther);
}

TEST_F(TeamEnumerationTest, GetTeamID_MakesTheFullPathOnThisComputer) {
    std::wstring path;
    EXPECT_EQ(Code(quillet.GetTeamID(L"{5}", path)), "0x00000000");
    EXPECT_EQ(path, QuilletTestAccess::AddNameSpace(quillet, LR"(Zorel_TeamOfAdapters.Name="{5}")"));
    EXPECT_TRUE(path.rfind(L"\\\\", 0) == 0);
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_EQ(Code(quillet.GetTeamID(L"", path)), "0x00000000") << "also for nothing";
}

TEST_F(TeamEnumerationTest, VirtualAdapter_IsFoundByTheTeamItIsTheSameElementAs) {
    _bstr_t path;
    EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, kT, path)), "0x00000000");
    EXPECT_NE(std::wstring(path).find(L"Zorel_NetworkVirtualAdapter.SystemElement="), std::wstring::npos)
        << Narrow(std::wstring(path));
    const std::vector<JournalEntry> queries = CallsOf(Operation::ExecQuery);
    ASSERT_EQ(queries.size(), 1u);
    EXPECT_EQ(queries[0].target,
              L"SELECT * FROM Zorel_NetworkVirtualAdapter WHERE SameElement = '" + kT + L"'");
}

TEST_F(TeamEnumerationTest, VirtualAdapter_None_IsAFailureWithItsLine) {
    _bstr_t path(L"kept");
    EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, Team(L"{none}"), path)),
              "0x80041001");
    EXPECT_EQ(std::wstring(path), L"kept");
    EXPECT_THAT(Steps(), ElementsAre("Entering CQuillet::GetTeamsEthernetAdapterPath",
                                     "(pNetVertualAdapterInst == NULL)",
                                     "Exiting CQuillet::GetTeamsEthernetAdapterPath"));
    // A quote in the path ends neither the text nor the query.
    EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, L"x' OR SameElement <> '", path)),
              "0x80041001");
}

TEST_F(TeamEnumerationTest, EachOperation_EmptyPath_Is80041001WithoutACall) {
    CTeam::TeamStatus status{};
    CTeamedAdapters members;
    bool primary = true;
    int count = 7;
    _bstr_t path;
    EXPECT_EQ(Code(quillet.GetTeamInfo(L"", team)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.GetTeamStatus(L"", status)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.GetMemberAdapters(L"", members)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.GetMemberAdaptersStatus(L"", members)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, L"", path)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.IsPrimaryAdapter(L"", primary)), "0x80041001");
    EXPECT_FALSE(primary);
    EXPECT_THAT(Traced(), Contains("(wsAdapterID.empty())"));
    EXPECT_EQ(Code(quillet.GetNumberEnabledMembers(L"", count)), "0x80041001");
    EXPECT_EQ(count, 0);
    EXPECT_THAT(Traced(), Contains("GetMemberAdapters() call FAILED"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(TeamEnumerationTest, EachOperation_NotConnected_ChecksThatFirst) {
    quillet.UninitQuillet();
    constexpr const char* kMissing = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
    CTeam::TeamStatus status{};
    CTeamedAdapters members;
    bool primary = true;
    _bstr_t path;
    Traced();
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
    for (const std::wstring& id : {kT, std::wstring()}) {
        EXPECT_EQ(Code(quillet.GetTeamInfo(id, team)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(kMissing));
        EXPECT_EQ(Code(quillet.GetTeamStatus(id, status)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(kMissing));
        EXPECT_EQ(Code(quillet.GetMemberAdapters(id, members)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(kMissing));
        EXPECT_EQ(Code(quillet.GetMemberAdaptersStatus(id, members)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(kMissing));
        EXPECT_EQ(Code(quillet.IsPrimaryAdapter(id, primary)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(kMissing));
        EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, id, path)), "0x80041001");
        EXPECT_THAT(Traced(),
                    testing::AllOf(Contains(kMissing), testing::Not(Contains("(wsTeamID.empty())"))));
    }
}

class TeamedPortsTest : public TeamTest {
  protected:
    void Add(const std::wstring& adapter, bool teamed, const std::wstring& team) {
        ports.m_vecItems.push_back(new CAdapterPort{adapter, teamed, team});
    }
    CAdapterPorts ports;
    std::wstring found = L"kept";
};

TEST_F(TeamedPortsTest, FirstTeamedPortOfTheAdapterDecides) {
    ports.m_vecItems.push_back(nullptr);
    Add(kB, true, L"other");
    Add(kA, false, L"not teamed");
    Add(kA, true, kT);
    Add(kA, true, L"later");
    EXPECT_TRUE(QuilletTestAccess::CheckIfAdapterIsTeamed(quillet, kA, found, ports));
    EXPECT_EQ(found, kT);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::CheckIfAdapterIsTeamed",
                                      "CQuillet::CheckIfAdapterIsTeamed - adapter is part of a team.",
                                      "Exiting CQuillet::CheckIfAdapterIsTeamed"));
}

TEST_F(TeamedPortsTest, NoTeamedPort_IsFalseAndLeavesTheTeam) {
    Add(kA, false, kT);
    Add(kB, true, kT);
    EXPECT_FALSE(QuilletTestAccess::CheckIfAdapterIsTeamed(quillet, kA, found, ports));
    EXPECT_EQ(found, L"kept");
    EXPECT_FALSE(QuilletTestAccess::CheckIfAdapterIsTeamed(quillet, kC, found, CAdapterPorts()));
}

} // namespace
