// Teams as they live: the library and the simulated machine together, through makings, changes and removals.
#include "Teams/TeamFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TeamLifeTest : public TeamTest {
  protected:
    std::wstring Make(const wchar_t* name, std::initializer_list<std::wstring> members, int mode = 1) {
        CTeam team;
        EXPECT_EQ(Code(quillet.CreateTeam(static_cast<CTeam::TeamMode>(mode), name, Adapters(members), team,
                                          PERFORMANCE_PROFILE_CUSTOM, false, true)),
                  "0x00000000");
        return team.m_wsTeamID;
    }
    HRESULT Refused(const wchar_t* name, std::initializer_list<std::wstring> members, int mode = 1) {
        CTeam team;
        const std::uint64_t before = machine->Store().Generation();
        const HRESULT result = quillet.CreateTeam(static_cast<CTeam::TeamMode>(mode), name, Adapters(members),
                                                  team, PERFORMANCE_PROFILE_CUSTOM, false, false);
        EXPECT_EQ(machine->Store().Generation(), before) << "a refusal leaves nothing behind";
        return result;
    }
    std::vector<std::string> Captions() {
        CTeams teams;
        EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
        std::vector<std::string> captions;
        for (const CTeam* team : teams.m_vecItems) {
            captions.push_back(Narrow(team->m_wsCaption));
        }
        return captions;
    }
    /// "A 1 1": the device, the role and the status of each member.
    std::vector<std::string> MembersNow(const std::wstring& team) {
        CTeamedAdapters members;
        EXPECT_EQ(Code(quillet.GetMemberAdapters(team, members)), "0x00000000");
        std::vector<std::string> texts;
        for (const CTeamedAdapter* member : members.m_vecItems) {
            texts.push_back(Narrow(member->m_wsDeviceID.substr(1, 1)) + " " +
                            std::to_string(member->m_lMemberRole) + " " +
                            std::to_string(member->m_lMemberStatus));
        }
        return texts;
    }
    LONG StatusOf(const std::wstring& team) {
        CTeam::TeamStatus status{};
        EXPECT_EQ(Code(quillet.GetTeamStatus(team, status)), "0x00000000");
        return status;
    }
    HRESULT Wanted(const std::wstring& team, std::initializer_list<std::wstring> wanted) {
        CTeamedAdapters current;
        EXPECT_EQ(Code(quillet.GetMemberAdapters(team, current)), "0x00000000");
        return quillet.ModifyMemberList(team, current, Adapters(wanted));
    }
    std::size_t Count(const wchar_t* className) { return machine->Store().Instances(className).size(); }
};

TEST_F(TeamLifeTest, Make_BringsAllThatBelongsToATeam) {
    const std::wstring team = Make(L"Two", {C, D, E}, 0);
    CTeam info;
    ASSERT_EQ(Code(quillet.GetTeamInfo(team, info)), "0x00000000");
    EXPECT_EQ(info.m_wsCaption, L"Two");
    EXPECT_EQ(info.m_eTeamMode, CTeam::TeamMode0);
    EXPECT_EQ(info.m_wsTeamMacAddress, L"02-00-5E-00-00-0C");
    EXPECT_FALSE(info.m_bMFOEnabled);
    EXPECT_TRUE(info.m_bLinkSecEnabled);
    EXPECT_EQ(Number(team, L"TeamProfile"), 1);
    EXPECT_THAT(MembersNow(team), ElementsAre("C 1 1", "D 2 1", "E 0 1"));
    EXPECT_EQ(StatusOf(team), CTeam::TeamStatusEnabled);
    const std::wstring logical = Path(L"Zorel_LogicalEthernetAdapter", L"DeviceID", info.m_wsName.c_str());
    EXPECT_EQ(Text(logical, L"Caption"), "Two");
    EXPECT_EQ(Number(logical, L"Speed"), 10'000'000'000);
    _bstr_t path;
    EXPECT_EQ(Code(QuilletTestAccess::GetTeamsEthernetAdapterPath(quillet, team, path)), "0x00000000");
    EXPECT_FALSE(Exists(Path(L"Zorel_802dot1QVLANService", L"Name", info.m_wsName.c_str())))
        << "E can carry no VLANs";
    EXPECT_EQ(Code(quillet.RemoveTeam(team)), "0x00000000");
    const std::wstring other = Make(L"Two", {C, D}, 0);
    ASSERT_EQ(Code(quillet.GetTeamInfo(other, info)), "0x00000000");
    EXPECT_EQ(Text(Path(L"Zorel_802dot1QVLANService", L"Name", info.m_wsName.c_str()), L"Caption"),
              "VLAN service of Two");
    EXPECT_THAT(Captions(), ElementsAre("TEAM : One", "Two"));
}

TEST_F(TeamLifeTest, Make_IsRefused) {
    EXPECT_EQ(Code(Refused(L"Two", {C, Adapter(L"{none}")})), "0x80041002") << "an unknown adapter";
    EXPECT_EQ(Code(Refused(L"Two", {T})), "0x80041002") << "no adapter at all";
    EXPECT_EQ(Code(Refused(L"Two", {C, A})), "0x80041016") << "a member of another team";
    EXPECT_EQ(Code(Refused(L"Two", {C, Adapter(L"{c}")})), "0x8004102F") << "twice the same";
    EXPECT_EQ(Code(Refused(L"TEAM : One", {C})), "0x80041019") << "a name that is taken";
    EXPECT_EQ(Code(Refused(L"  ", {C})), "0x8004102F");
    EXPECT_EQ(Code(Refused(L"Two", {})), "0x8004102F");
    EXPECT_EQ(Code(Refused(L"Two", {C}, 7)), "0x8004102F");
    EXPECT_EQ(Code(Refused(L"Two", {C, C, C, C, C, C, C, C, C})), "0x8004102F") << "nine";
    EXPECT_THAT(Captions(), ElementsAre("TEAM : One"));
    EXPECT_EQ(Count(L"Zorel_TeamedMemberAdapter"), 2u);
}

TEST_F(TeamLifeTest, Remove_TakesAllAlongThatDependsOnIt) {
    UseText(std::string(MACHINE) + R"(
        instance of Zorel_VLAN { Name = "{V1}"; ParentID = "{T}"; VLANName = "v"; VLANNumber = 5; };
        instance of Zorel_VLAN { Name = "{V2}"; ParentID = "{C}"; VLANName = "v"; VLANNumber = 5; };
        instance of Zorel_VLANSettingInt { Caption = "VLANPriority"; ParentId = "{V1}"; ParentType = "VLAN"; };
        instance of Zorel_VLANSettingInt { Caption = "VLANPriority"; ParentId = "{V2}"; ParentType = "VLAN"; };
        instance of Zorel_TeamSettingInt { Caption = "Probe"; ParentId = "{T}"; ParentType = "TEAM"; };
        instance of Zorel_AdapterSettingInt { Caption = "Padding"; ParentId = "{A}"; ParentType = "NIC"; };)");
    Connect();
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x00000000");
    for (const wchar_t* className :
         {L"Zorel_TeamOfAdapters", L"Zorel_LogicalEthernetAdapter", L"Zorel_NetworkVirtualAdapter",
          L"Zorel_TeamedMemberAdapter", L"Zorel_802dot1QVLANService", L"Zorel_TeamSetting"}) {
        EXPECT_EQ(Count(className), 0u) << Narrow(className);
    }
    EXPECT_TRUE(Exists(Path(L"Zorel_VLAN", L"Name", L"{V2}"))) << "the adapter's VLAN stays";
    EXPECT_EQ(Count(L"Zorel_VLAN"), 1u);
    EXPECT_EQ(Count(L"Zorel_VLANSetting"), 1u);
    EXPECT_EQ(Count(L"Zorel_AdapterSetting"), 1u);
    EXPECT_EQ(Count(L"Zorel_PhysicalEthernetAdapter"), 5u);
    Make(L"Again", {A, B});
}

TEST_F(TeamLifeTest, Members_ComeAndGoWithTheirRoles) {
    EXPECT_EQ(Code(Wanted(T, {A, B, C})), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 1 1", "B 2 1", "C 0 1"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(C, 1)), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 0 1", "B 2 1", "C 1 1")) << "the one before takes C's role";
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(B, 1)), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 0 1", "B 1 1", "C 2 1"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(B, 0)), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 0 1", "B 0 1", "C 2 1"));
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(A, 1)), "0x00000000");
    EXPECT_EQ(Code(Wanted(T, {B, C})), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("B 0 1", "C 1 1")) << "the secondary takes over";
    EXPECT_EQ(Code(Wanted(T, {D})), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("D 1 1"));
    EXPECT_EQ(Code(Wanted(T, {})), "0x00000000");
    EXPECT_THAT(MembersNow(T), IsEmpty());
    EXPECT_EQ(StatusOf(T), CTeam::TeamStatusDisabled) << "a team of none";
    EXPECT_EQ(Code(Wanted(T, {A})), "0x00000000");
    EXPECT_EQ(StatusOf(T), CTeam::TeamStatusEnabled);
}

TEST_F(TeamLifeTest, Members_AreRefused) {
    Make(L"Two", {C});
    EXPECT_EQ(Code(Wanted(T, {A, B, C})), "0x80041016") << "a member of another team";
    EXPECT_EQ(Code(Wanted(T, {A, B, Adapter(L"{none}")})), "0x80041002");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 1 1", "B 2 1"));
    std::string mof = MACHINE;
    for (int i = 0; i < 7; ++i) {
        mof +=
            "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{N" + std::to_string(i) + "}\"; };\n";
    }
    UseText(mof);
    Connect();
    EXPECT_EQ(Code(Wanted(T, {A, B, Adapter(L"{N0}"), Adapter(L"{N1}"), Adapter(L"{N2}"), Adapter(L"{N3}"),
                              Adapter(L"{N4}"), Adapter(L"{N5}"), Adapter(L"{N6}")})),
              "0x80041016")
        << "the ninth";
    EXPECT_EQ(MembersNow(T).size(), 8u);
}

TEST_F(TeamLifeTest, States_FollowLinkAndHardware) {
    const std::wstring logical = Path(L"Zorel_LogicalEthernetAdapter", L"DeviceID", L"{T}");
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{a}", 2)), "0x00000000");
    EXPECT_EQ(Number(Membership(L"{T}", L"{A}"), L"AdapterStatus"), 3);
    EXPECT_THAT(MembersNow(T), ElementsAre("A 1 3", "B 2 1"));
    EXPECT_EQ(Number(logical, L"Speed"), 1'000'000'000);
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{B}", 0)), "0x00000000");
    EXPECT_EQ(Number(Membership(L"{T}", L"{B}"), L"AdapterStatus"), 0);
    EXPECT_THAT(MembersNow(T), ElementsAre("A 1 3", "B 2 4"));
    EXPECT_EQ(Number(logical, L"Speed"), 0);
    EXPECT_EQ(StatusOf(T), CTeam::TeamStatusEnabled) << "A is there, only without a link";
    int enabled = 0;
    EXPECT_EQ(Code(quillet.GetNumberEnabledMembers(T, enabled)), "0x00000000");
    EXPECT_EQ(enabled, 1);
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{A}", 0)), "0x00000000");
    EXPECT_EQ(StatusOf(T), CTeam::TeamStatusDisabled);
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{A}", 3)), "0x00000000");
    ASSERT_EQ(Code(machine->SetHardwareStatus(L"{B}", 1)), "0x00000000");
    EXPECT_THAT(MembersNow(T), ElementsAre("A 1 1", "B 2 3"));
    EXPECT_EQ(Number(A, L"Speed"), 1'000'000'000);
    EXPECT_EQ(StatusOf(T), CTeam::TeamStatusEnabled);
    EXPECT_EQ(Code(machine->SetHardwareStatus(L"{none}", 3)), "0x80041002");
    EXPECT_EQ(Code(machine->SetHardwareStatus(L"{A}", 4)), "0x80041008");
    EXPECT_EQ(Code(machine->SetHardwareStatus(L"{A}", -1)), "0x80041008");
}

TEST_F(TeamLifeTest, States_FollowAnAdapterThatAClientWrites) {
    const auto services = QuilletTestAccess::GetWbemService(quillet);
    ATL::CComPtr<IWbemClassObject> adapter;
    ASSERT_EQ(Code(services->GetObject(_bstr_t(A.c_str()), 0, nullptr, &adapter, nullptr)), "0x00000000");
    _variant_t state;
    state.vt = VT_I4;
    state.lVal = 2;
    ASSERT_EQ(Code(adapter->Put(L"HardwareStatus", 0, &state, 0)), "0x00000000");
    ASSERT_EQ(Code(services->PutInstance(adapter, 0, nullptr, nullptr)), "0x00000000");
    EXPECT_EQ(Number(Membership(L"{T}", L"{A}"), L"AdapterStatus"), 3);
}

TEST_F(TeamLifeTest, Info_RenamesWhatBearsTheName) {
    UseText(std::string(MACHINE) + R"(
        instance of Zorel_VLAN { Name = "{V}"; ParentID = "{T}"; Caption = "TEAM : One - VLAN : Guests";
            VLANName = "Guests"; VLANNumber = 5; };)");
    Connect();
    CTeam team;
    ASSERT_EQ(Code(quillet.GetTeamInfo(T, team)), "0x00000000");
    team.m_wsCaption = L"Renamed";
    team.m_eTeamMode = CTeam::TeamMode6;
    team.m_bMFOEnabled = true;
    ASSERT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x00000000");
    EXPECT_EQ(Text(Path(L"Zorel_LogicalEthernetAdapter", L"DeviceID", L"{T}"), L"Name"), "Renamed");
    EXPECT_EQ(Text(Path(L"Zorel_802dot1QVLANService", L"Name", L"{T}"), L"Caption"),
              "VLAN service of Renamed");
    EXPECT_EQ(Text(Path(L"Zorel_VLAN", L"Name", L"{V}"), L"Caption"), "Renamed - VLAN : Guests");
    EXPECT_EQ(Number(T, L"TeamingMode"), 6);
    EXPECT_EQ(Number(T, L"MFOEnabled"), 0) << "not the library's to write";
}

TEST_F(TeamLifeTest, Info_IsRefused) {
    Make(L"Two", {C});
    CTeam team;
    ASSERT_EQ(Code(quillet.GetTeamInfo(T, team)), "0x00000000");
    team.m_wsCaption = L"Two";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x80041019");
    team.m_wsCaption = L"";
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x80041008");
    team.m_wsCaption = L"Fine";
    team.m_eTeamMode = CTeam::TeamModeUnknown;
    EXPECT_EQ(Code(quillet.ModifyTeamInfo(T, team)), "0x80041008");
    EXPECT_THAT(Captions(), ElementsAre("TEAM : One", "Two"));
}

TEST_F(TeamLifeTest, Changes_TakePartInTheirClientSet) {
    MachineOptions strict = Options();
    strict.strict = true;
    UseText(MACHINE, strict);
    Connect();
    CTeam team;
    const CAdapters members = Adapters({C, D});
    const auto make = [&] {
        return quillet.CreateTeam(CTeam::TeamMode1, L"Two", members, team, PERFORMANCE_PROFILE_CUSTOM, false,
                                  false);
    };
    EXPECT_EQ(Code(make()), "0x80041003") << "outside a set";
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x80041003");
    EXPECT_EQ(Code(Wanted(T, {A})), "0x80041003");
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(B, 1)), "0x80041003");
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Code(make()), "0x00000000");
    EXPECT_EQ(Code(quillet.SetTeamedAdapterPriority(D, 1)), "0x00000000");
    EXPECT_EQ(Code(Wanted(T, {A})), "0x00000000");
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x00000000");
    bool restart = true;
    EXPECT_EQ(Code(quillet.ApplyDone(restart)), "0x00000000");
    EXPECT_FALSE(restart);
    EXPECT_THAT(Captions(), ElementsAre("Two"));
}

TEST_F(TeamLifeTest, Remove_OfATeamUnderAVirtualSwitch_NeedsARestart) {
    Set(T, L"BoundToHyperV", quillet::simulator::Value::Bool(true));
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Code(quillet.RemoveTeam(T)), "0x00000000");
    bool restart = false;
    EXPECT_EQ(Code(quillet.ApplyDone(restart)), "0x00000000");
    EXPECT_TRUE(restart);
}

TEST_F(TeamLifeTest, Validation_TellsEveryRealConflict) {
    const auto members = [&](std::initializer_list<std::wstring> ids, int mode) {
        ULONGLONG word = 77;
        EXPECT_EQ(
            Code(quillet.ValidateNewTeamMembers(Adapters(ids), static_cast<CTeam::TeamMode>(mode), word)),
            "0x00000000");
        return word;
    };
    EXPECT_EQ(members({C, D}, 1), 0u);
    EXPECT_EQ(members({C, Adapter(L"{none}")}, 1), 0x2u);
    EXPECT_EQ(members({C, E}, 4), 0x4u);
    EXPECT_EQ(members({E}, 0), 0x10u);
    EXPECT_EQ(members({C, A}, 1), 0x20u);
    EXPECT_EQ(members({C, D, C}, 5), 0x200u);
    EXPECT_EQ(members({C}, 7), 0x400u);
    EXPECT_EQ(members({C, D, E}, 1), 0x8000u);
    EXPECT_EQ(members({C, C, C, C, C, C, C, C, C}, 1), 0x1u);
    UseText(std::string(MACHINE) + R"(
        instance of Zorel_VLAN { Name = "{V}"; ParentID = "{C}"; VLANName = "v"; VLANNumber = 5; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{F}"; Capabilities = {9, 46, 35}; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{G}"; Capabilities = {9, 46, 34}; };)");
    Connect();
    EXPECT_EQ(members({C, D}, 1), 0x40u) << "C carries a VLAN of its own";
    EXPECT_EQ(members({Adapter(L"{F}"), Adapter(L"{G}")}, 2), 0x4000u);
    DWORD word = 77;
    EXPECT_EQ(Code(quillet.ValidateTeamName(L" ", L"Zorel_TeamOfAdapters", word)), "0x00000000");
    EXPECT_EQ(word, 0x100u);
}

TEST_F(TeamLifeTest, BuiltInMachine_ItsTeamCanBeTakenApartAndMadeAgain) {
    Use(Machine::BuiltIn(Options()));
    Connect();
    CTeams teams;
    ASSERT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
    ASSERT_EQ(teams.m_vecItems.size(), 1u);
    const std::wstring team = teams.m_vecItems[0]->m_wsTeamID;
    CTeamedAdapters current;
    ASSERT_EQ(Code(quillet.GetMemberAdapters(team, current)), "0x00000000");
    ASSERT_EQ(current.m_vecItems.size(), 2u);
    const std::wstring name = teams.m_vecItems[0]->m_wsCaption;
    ASSERT_EQ(Count(L"Zorel_VLAN"), 3u);
    ASSERT_EQ(Code(quillet.RemoveTeam(team)), "0x00000000");
    EXPECT_EQ(Count(L"Zorel_VLAN"), 0u);
    EXPECT_EQ(Count(L"Zorel_VLANSetting"), 0u);
    CAdapters members =
        Adapters({current.m_vecItems[0]->m_wsAdapterID, current.m_vecItems[1]->m_wsAdapterID});
    EXPECT_EQ(quillet.CreateTeamCheck(CTeam::TeamMode4, name, members, 3), 0u);
    CTeam made;
    EXPECT_EQ(Code(quillet.CreateTeam(CTeam::TeamMode4, name, members, made, PERFORMANCE_PROFILE_CUSTOM,
                                      false, false)),
              "0x00000000");
    // What was made outlives the machine.
    const std::string saved = machine->Save();
    UseText(saved);
    Connect();
    CTeam info;
    EXPECT_EQ(Code(quillet.GetTeamInfo(made.m_wsTeamID, info)), "0x00000000");
    EXPECT_EQ(info.m_wsCaption, name);
    EXPECT_EQ(MembersNow(made.m_wsTeamID).size(), 2u);
}

} // namespace
