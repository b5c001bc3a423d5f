// Listing and reading VLANs, and finding out who can carry them.
#include "Vlans/VlanMachine.h"

#include <atlbase.h>

namespace {

using ATL::CComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Access = QuilletTestAccess;

constexpr const char* SET = " {ClientSetId=0}";
constexpr const char* PARTIAL =
    " {ClientSetId=0, GET_EXT_CLIENT_REQUEST=true, GET_EXTENSIONS=true, Zorel_PartialData=1}";

class VlanEnumerationTest : public VlanTest {
  protected:
    /// The trace of a listing: `lines` stand where the answer is read.
    static std::vector<std::string> ListingTrace(const std::string& operation,
                                                 const std::vector<std::string>& lines) {
        std::vector<std::string> all{"Entering CQuillet::" + operation,
                                     "dwErrorCode: %l",
                                     "Entering CQuillet::EnumerateVLANsOfComponent",
                                     "dwErrorCode: %l",
                                     "CQuillet::ChangeContext",
                                     "Setting for partial data!!",
                                     "Else Partial Retrieval!!",
                                     "CQuillet::ChangeContext",
                                     " Unset Partial Retrieval!!"};
        all.insert(all.end(), lines.begin(), lines.end());
        all.push_back("Exiting CQuillet::" + operation);
        return all;
    }
    static std::string Query(const char* parent) {
        return std::string("SELECT * FROM Zorel_VLAN WHERE ParentID = \"") + parent + "\"";
    }

    CVLANs vlans;
    CVLAN vlan;
};

// --- lists ---

TEST_F(VlanEnumerationTest, OfAdapter_FillsARecordForEachInOrder) {
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x00000000");
    ASSERT_EQ(vlans.m_vecItems.size(), 2u);
    const CVLAN& first = *vlans.m_vecItems[0];
    EXPECT_EQ(first.m_wsName, L"{V1}");
    EXPECT_EQ(first.m_wsCaption, L"Alpha - VLAN : Voice");
    EXPECT_EQ(first.m_wsParentID, L"{A}");
    EXPECT_EQ(first.m_wsVLANName, L"Voice");
    EXPECT_EQ(first.m_lVLANNumber, 10);
    EXPECT_EQ(first.m_wsVLANID, V1);
    EXPECT_EQ(first.m_eStatus, CVLAN::VlanStatusEnabled);
    EXPECT_EQ(vlans.m_vecItems[1]->m_wsName, L"{V2}");
    EXPECT_EQ(vlans.m_vecItems[1]->m_eStatus, CVLAN::VlanStatusDisabled);
    const std::vector<std::string> one{"Entering CQuillet::GetVLANInfo", "pInstance->Get() passed",
                                       "Exiting CQuillet::GetVLANInfo"};
    std::vector<std::string> lines = one;
    lines.insert(lines.end(), one.begin(), one.end());
    lines.push_back("Exiting CQuillet::EnumerateVLANsOfComponent");
    EXPECT_EQ(Traced(), ListingTrace("EnumerateVLANsOfAdapter", lines));
    EXPECT_THAT(Called(), ElementsAre("ExecQuery " + Query("{A}") + " -> 0x00000000" + PARTIAL,
                                      "Next " + Query("{A}") + " -> 0x00000000",
                                      "Next " + Query("{A}") + " -> 0x00000000",
                                      "Next " + Query("{A}") + " -> 0x00000001"));
}

TEST_F(VlanEnumerationTest, OfTeam_ListsTheUntaggedVlanAsWell) {
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfTeam(T, vlans)), "0x00000000");
    ASSERT_EQ(vlans.m_vecItems.size(), 2u);
    EXPECT_EQ(vlans.m_vecItems[0]->m_lVLANNumber, 0);
    EXPECT_EQ(vlans.m_vecItems[1]->m_wsVLANName, L"B\u00fcro");
    EXPECT_THAT(Called(), Contains("ExecQuery " + Query("{T}") + " -> 0x00000000" + PARTIAL));
}

TEST_F(VlanEnumerationTest, WithoutVlans_GivesAnEmptyListAndSuccess) {
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(B, vlans)), "0x00000000");
    EXPECT_THAT(vlans.m_vecItems, IsEmpty());
    EXPECT_EQ(Traced(),
              ListingTrace("EnumerateVLANsOfAdapter", {"Exiting CQuillet::EnumerateVLANsOfComponent"}));
}

TEST_F(VlanEnumerationTest, Lists_ReadEachPropertyInOrderAndSwitchPartialDataOffAfterTheQuery) {
    RecordLocalCalls();
    EXPECT_EQ(Code(Access::EnumerateVLANsOfComponent(quillet, L"{T}", vlans)), "0x00000000");
    std::vector<std::string> expected{
        "SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
        "SetContextValue ClientSetId(ClientSetId=0) -> 0x00000000",
        "SetContextValue GET_EXT_CLIENT_REQUEST(GET_EXT_CLIENT_REQUEST=true) -> 0x00000000",
        "SetContextValue GET_EXTENSIONS(GET_EXTENSIONS=true) -> 0x00000000",
        "SetContextValue Zorel_PartialData(Zorel_PartialData=1) -> 0x00000000",
        "ExecQuery " + Query("{T}") + " -> 0x00000000" + PARTIAL,
        "SetContextValue GET_EXT_CLIENT_REQUEST(GET_EXT_CLIENT_REQUEST=false) -> 0x00000000",
        "SetContextValue GET_EXTENSIONS(GET_EXTENSIONS=false) -> 0x00000000",
        "SetContextValue GET_EXT_KEYS_ONLY(GET_EXT_KEYS_ONLY=false) -> 0x00000000",
        "SetContextValue Zorel_PartialData(Zorel_PartialData=-1) -> 0x00000000"};
    for (int each = 0; each < 2; ++each) {
        expected.push_back("Next " + Query("{T}") + " -> 0x00000000");
        for (const char* property :
             {"__PATH", "__PATH", "Caption", "Name", "ParentID", "VLANName", "VLANNumber", "StatusInfo"}) {
            expected.push_back(std::string("Get ") + property + " -> 0x00000000");
        }
    }
    expected.push_back("Next " + Query("{T}") + " -> 0x00000001");
    EXPECT_EQ(Called(), expected);
}

TEST_F(VlanEnumerationTest, Lists_AppendBehindWhatIsThere) {
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x00000000");
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfTeam(T, vlans)), "0x00000000");
    EXPECT_EQ(vlans.m_vecItems.size(), 4u);
}

TEST_F(VlanEnumerationTest, Lists_OneThatCannotBeRead_EndsTheListAndKeepsThoseBefore) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"VLANName", 2);
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x80041003");
    ASSERT_EQ(vlans.m_vecItems.size(), 1u);
    EXPECT_EQ(vlans.m_vecItems[0]->m_wsVLANName, L"Voice");
    EXPECT_EQ(Traced(),
              ListingTrace("EnumerateVLANsOfAdapter",
                           {"Entering CQuillet::GetVLANInfo", "pInstance->Get() passed",
                            "Exiting CQuillet::GetVLANInfo", "Entering CQuillet::GetVLANInfo",
                            "GetPropertyAsString -> pVLANInstance, L_PARAM_VLAN_VLANNAME",
                            "Exiting CQuillet::GetVLANInfo", "(Res != WBEM_S_NO_ERROR)",
                            "Exiting CQuillet::EnumerateVLANsOfComponent", "(WBEM_S_NO_ERROR != hRes)"}));
}

TEST_F(VlanEnumerationTest, Lists_PathNull_IsAFailure) {
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfTeam(T, vlans)), "0x80041001");
    EXPECT_THAT(vlans.m_vecItems, IsEmpty());
    EXPECT_EQ(Traced(),
              ListingTrace("EnumerateVLANsOfTeam",
                           {"GetPropertyAsString -> pVLANInstance, L_ZOREL_PATH -> NULL",
                            "(Res != WBEM_S_NO_ERROR)", "Exiting CQuillet::EnumerateVLANsOfComponent",
                            "(WBEM_S_NO_ERROR != hRes)"}));
}

TEST_F(VlanEnumerationTest, Lists_QueryRefused_SwitchesPartialDataOffAllTheSame) {
    Fail(Operation::ExecQuery, WBEM_E_INVALID_QUERY);
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x80041017");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains(" Unset Partial Retrieval!!"));
    EXPECT_THAT(trace, Contains("ExecQuery -> L_CLASS_ZOREL_VLAN"));
    EXPECT_THAT(trace, Contains("(WBEM_S_NO_ERROR != hRes)"));
}

TEST_F(VlanEnumerationTest, Lists_QueryWithoutEnumerator_IsNamed) {
    Spoil(Operation::ExecQuery, Effect::NullObject);
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> L_CLASS_ZOREL_VLAN -> NULL"));
}

TEST_F(VlanEnumerationTest, Lists_BrokenOff_IsNotAShorterList) {
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(A, vlans)), "0x80041015");
    EXPECT_EQ(vlans.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pEnumVLANs -> Next"));
}

TEST_F(VlanEnumerationTest, Lists_EmptyOrUnusableIdentifier_IsRefusedWithoutACall) {
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(L"", vlans)), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateVLANsOfAdapter", "dwErrorCode: %l",
                                      "(wsAdapterID.empty())", "Exiting CQuillet::EnumerateVLANsOfAdapter"));
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfTeam(L"", vlans)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    for (const std::wstring& path : {std::wstring(L"{A}"), T, V1, std::wstring(5000, L'"')}) {
        EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(path, vlans)), "0x80041001") << Narrow(path);
        EXPECT_THAT(Traced(), Contains("Auto Parser Failed"));
    }
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfTeam(A, vlans)), "0x80041001") << "an adapter is no team";
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_THAT(vlans.m_vecItems, IsEmpty());
}

TEST_F(VlanEnumerationTest, Lists_IdentifierWithAQuote_CannotEndTheQuery) {
    const std::wstring path = LR"(Zorel_PhysicalEthernetAdapter.DeviceID='x" OR Name="{V1}')";
    EXPECT_EQ(Code(quillet.EnumerateVLANsOfAdapter(path, vlans)), "0x00000000");
    EXPECT_THAT(vlans.m_vecItems, IsEmpty());
    EXPECT_THAT(Called(),
                Contains(testing::StartsWith(
                    R"(ExecQuery SELECT * FROM Zorel_VLAN WHERE ParentID = "x\" OR Name=\"{V1}")")));
}

// --- one VLAN ---

TEST_F(VlanEnumerationTest, Info_ReadsEveryField) {
    EXPECT_EQ(Code(quillet.GetVLANInfo(V1, vlan)), "0x00000000");
    EXPECT_EQ(vlan.m_wsVLANID, V1);
    EXPECT_EQ(vlan.m_wsName, L"{V1}");
    EXPECT_EQ(vlan.m_wsCaption, L"Alpha - VLAN : Voice");
    EXPECT_EQ(vlan.m_wsParentID, L"{A}");
    EXPECT_EQ(vlan.m_wsVLANName, L"Voice");
    EXPECT_EQ(vlan.m_lVLANNumber, 10);
    EXPECT_EQ(vlan.m_eStatus, 3);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVLANInfo", "dwErrorCode: %l",
                                      "Entering CQuillet::GetVLANInfo", "pInstance->Get() passed",
                                      "Exiting CQuillet::GetVLANInfo", "Exiting CQuillet::GetVLANInfo"));
    EXPECT_THAT(Called(), ElementsAre("GetObject " + Narrow(V1) + " -> 0x00000000" + SET));
}

TEST_F(VlanEnumerationTest, Info_AnyPropertyUnreadableOrNull_IsNamedAndFails) {
    const struct {
        const wchar_t* property;
        const char* step;
    } reads[] = {
        {L"__PATH", "GetPropertyAsString -> pVLANInstance, L_ZOREL_PATH"},
        {L"Caption", "GetPropertyAsString -> pVLANInstance, L_PARAM_VLAN_CAPTION"},
        {L"Name", "GetPropertyAsString -> pVLANInstance, L_PARAM_VLAN_NAME"},
        {L"ParentID", "GetPropertyAsString -> pVLANInstance, L_PARAM_VLAN_PARENTID"},
        {L"VLANName", "GetPropertyAsString -> pVLANInstance, L_PARAM_VLAN_VLANNAME"},
        {L"VLANNumber", "GetPropertyAsLong -> pVLANInstance, L_PARAM_VLAN_NUMBER"},
        {L"StatusInfo", "GetPropertyAsInt -> pVLANInstance, L_PARAM_VLAN_STATUS"},
    };
    for (const auto& read : reads) {
        SCOPED_TRACE(read.step);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, read.property);
        EXPECT_EQ(Code(quillet.GetVLANInfo(V1, vlan)), "0x80041003");
        EXPECT_THAT(Traced(), Contains(read.step));
        machine->Rules().Clear();
        Spoil(Operation::Get, Effect::NullValue, read.property);
        EXPECT_EQ(Code(quillet.GetVLANInfo(V1, vlan)), "0x80041001");
        EXPECT_THAT(Traced(), Contains(std::string(read.step) + " -> NULL"));
        machine->Rules().Clear();
    }
}

TEST_F(VlanEnumerationTest, Info_StatusOfAnyNumber_IsCarried) {
    UseText(std::string(NET_SERVICE_MOF) + R"(
        instance of Zorel_VLAN { Name = "{V1}"; Caption = "c"; ParentID = "{A}"; VLANName = "n"; VLANNumber = 4095;
            StatusInfo = 4711; };)");
    Connect();
    CVLAN::VlanStatus status{};
    EXPECT_EQ(Code(quillet.GetVLANInfo(V1, vlan)), "0x00000000");
    EXPECT_EQ(Code(quillet.GetVlanStatus(V1, status)), "0x00000000");
    EXPECT_EQ(vlan.m_eStatus, 4711);
    EXPECT_EQ(vlan.m_lVLANNumber, 4095);
    EXPECT_EQ(status, 4711);
}

TEST_F(VlanEnumerationTest, Info_OfAnInstance_NeedsOne) {
    EXPECT_EQ(Code(Access::GetVLANInfo(CComPtr<IWbemClassObject>(), vlan)), "0x80004005");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetVLANInfo", "GetPropertyAsString -> pInstance == NULL",
                            "GetPropertyAsString -> pVLANInstance, L_ZOREL_PATH",
                            "Exiting CQuillet::GetVLANInfo"));
}

TEST_F(VlanEnumerationTest, Info_EmptyAbsentOrNull_Fails) {
    EXPECT_EQ(Code(quillet.GetVLANInfo(L"", vlan)), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVLANInfo", "dwErrorCode: %l",
                                      "(wsVLANID.empty())", "Exiting CQuillet::GetVLANInfo"));
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_EQ(Code(quillet.GetVLANInfo(VlanPath(L"{V9}"), vlan)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsVLANID"));
    Spoil(Operation::GetObject, Effect::NullObject);
    EXPECT_EQ(Code(quillet.GetVLANInfo(V1, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsVLANID -> NULL"));
}

TEST_F(VlanEnumerationTest, Status_IsThatOfTheVlan) {
    CVLAN::VlanStatus status{};
    EXPECT_EQ(Code(quillet.GetVlanStatus(VlanPath(L"{V2}"), status)), "0x00000000");
    EXPECT_EQ(status, CVLAN::VlanStatusDisabled);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVlanStatus", "dwErrorCode: %l",
                                      "Exiting CQuillet::GetVlanStatus"));
    RecordLocalCalls();
    Called();
    EXPECT_EQ(Code(quillet.GetVlanStatus(V1, status)), "0x00000000");
    const std::vector<std::string> calls = Called();
    EXPECT_EQ(calls.back(), "Get StatusInfo -> 0x00000000");
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const std::string& call) { return call.starts_with("Get "); }),
              1);
}

TEST_F(VlanEnumerationTest, Status_Failures_AreNamedAndLeaveTheOutput) {
    CVLAN::VlanStatus status = CVLAN::VlanStatusOther;
    EXPECT_EQ(Code(quillet.GetVlanStatus(L"", status)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsVlanID.empty())"));
    EXPECT_EQ(Code(quillet.GetVlanStatus(VlanPath(L"{V9}"), status)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsVlanID"));
    Spoil(Operation::Get, Effect::NullValue, L"StatusInfo");
    EXPECT_EQ(Code(quillet.GetVlanStatus(V1, status)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsInt -> pVLANInstance, L_PARAM_VLAN_STATUS -> NULL"));
    machine->Rules().Clear();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"StatusInfo");
    EXPECT_EQ(Code(quillet.GetVlanStatus(V1, status)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsInt -> pVLANInstance, L_PARAM_VLAN_STATUS"));
    EXPECT_EQ(status, CVLAN::VlanStatusOther);
}

TEST_F(VlanEnumerationTest, Identifier_IsTheFullPathOnThisComputer) {
    std::wstring path;
    EXPECT_EQ(Code(quillet.GetVLANID(L"{V1}", path)), "0x00000000");
    EXPECT_EQ(path, Access::AddNameSpace(quillet, L"Zorel_VLAN.Name=\"{V1}\""));
    EXPECT_TRUE(path.starts_with(L"\\\\")) << Narrow(path);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVLANID", "dwErrorCode: %l",
                                      "VLAN WMI Object ID is", "Exiting CQuillet::GetVLANID"));
    EXPECT_EQ(Code(quillet.GetVLANID(L"", path)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsGUID.empty())"));
    EXPECT_THAT(Called(), IsEmpty());
}

// --- services ---

TEST_F(VlanEnumerationTest, Service_IsFoundByTheComponentsObjectId) {
    CComPtr<IWbemClassObject> service;
    EXPECT_EQ(Code(Access::GetVLANService(quillet, A, service)), "0x00000000");
    ASSERT_TRUE(service);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVLANService", "dwErrorCode: %l",
                                      "VLAN Servie WMI ObjectID", "Exiting CQuillet::GetVLANService"));
    EXPECT_THAT(
        Called(),
        ElementsAre(std::string(R"(GetObject Zorel_802dot1QVLANService.Name="{A}" -> 0x00000000)") + SET));
}

TEST_F(VlanEnumerationTest, Service_NoneEmptyOrUnusable_Fails) {
    CComPtr<IWbemClassObject> service;
    EXPECT_EQ(Code(Access::GetVLANService(quillet, N, service)), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetVLANService", "dwErrorCode: %l",
                                      "VLAN Servie WMI ObjectID", "GetObject -> bstrVLANServicePath",
                                      "(pVLANService == NULL)", "Exiting CQuillet::GetVLANService"));
    Spoil(Operation::GetObject, Effect::NullObject);
    EXPECT_EQ(Code(Access::GetVLANService(quillet, A, service)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(pVLANService == NULL)"));
    Calls();
    EXPECT_EQ(Code(Access::GetVLANService(quillet, L"", service)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(wsComponentID.empty())"));
    EXPECT_EQ(Code(Access::GetVLANService(quillet, L"no path", service)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("Auto Parser Failed"));
    EXPECT_FALSE(service);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(VlanEnumerationTest, Support_AdapterWithAService_MayCarryVlans) {
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(A)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ParentSupportingVLAN", "dwErrorCode: %l",
                                      "Entering CQuillet::GetVLANService", "dwErrorCode: %l",
                                      "VLAN Servie WMI ObjectID", "Exiting CQuillet::GetVLANService",
                                      "Exiting CQuillet::ParentSupportingVLAN"));
    const std::string query =
        "REFERENCES OF {" + Narrow(A) + "} WHERE ResultClass = Zorel_TeamedMemberAdapter";
    EXPECT_THAT(
        Called(),
        ElementsAre(std::string(R"(GetObject Zorel_802dot1QVLANService.Name="{A}" -> 0x00000000)") + SET,
                    "ExecQuery " + query + " -> 0x00000000" + SET, "Next " + query + " -> 0x00000001"));
}

TEST_F(VlanEnumerationTest, Support_TeamMember_IsToldApartAlthoughItHasAService) {
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(M)), "0x00001000");
    EXPECT_EQ(quillet.ParentSupportingVLAN(M), CVLAN::ParentIsTeamMember);
    EXPECT_THAT(Traced(), Contains("Adapter is part of the Team, ParentSupportVLAN"));
}

TEST_F(VlanEnumerationTest, Support_AdapterWithoutService_YieldsTheProvidersCode) {
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(N)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("(pVLANService == NULL)"));
    EXPECT_EQ(Called().size(), 1u) << "the membership is not asked for";
}

TEST_F(VlanEnumerationTest, Support_Team_IsAskedThroughItsLogicalAdapter) {
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(T)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ParentSupportingVLAN", "dwErrorCode: %l",
                                      "May be a team - ParentSupportingVLAN", "Logical Ethernet Adapter Path",
                                      "Entering CQuillet::GetVLANService", "dwErrorCode: %l",
                                      "VLAN Servie WMI ObjectID", "Exiting CQuillet::GetVLANService",
                                      "Exiting CQuillet::ParentSupportingVLAN"));
    EXPECT_THAT(
        Called(),
        ElementsAre(std::string(R"(GetObject Zorel_802dot1QVLANService.Name="{T}" -> 0x00000000)") + SET));
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(TeamPath(L"{U}"))), "0x80041002");
}

TEST_F(VlanEnumerationTest, Support_IdentifierThatMerelyHoldsTheName_IsTakenForATeam) {
    const std::wstring adapter = AdapterPath(L"Zorel_TeamOfAdapters");
    for (const std::wstring& id : {adapter, std::wstring(L"xZorel_TeamOfAdaptersx")}) {
        EXPECT_EQ(Code(quillet.ParentSupportingVLAN(id)), "0x80004005") << Narrow(id);
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ParentSupportingVLAN", "dwErrorCode: %l",
                                          "May be a team - ParentSupportingVLAN", "Auto Parser Failed",
                                          "Exiting CQuillet::ParentSupportingVLAN"));
    }
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(LR"(zorel_teamofadapters.Name="{T}")")), "0x80041001")
        << "letter by letter: this is taken for an adapter";
    EXPECT_THAT(Traced(), Not(Contains("May be a team - ParentSupportingVLAN")));
}

TEST_F(VlanEnumerationTest, Support_MembershipCannotBeLookedUp_IsOneCode) {
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(A)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> BSTR_QUERY_REFERENCE"));
    machine->Rules().Clear();
    Fail(Operation::Next, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(A)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("pEnumTeamedMemberAdapters -> Next"));
}

TEST_F(VlanEnumerationTest, Support_EmptyIdentifier_IsRefused) {
    EXPECT_EQ(Code(quillet.ParentSupportingVLAN(L"")), "0x80004005");
    EXPECT_THAT(Called(), IsEmpty());
}

// --- all of them ---

TEST_F(VlanEnumerationTest, EachCallFailing_ReturnsItsCode) {
    CVLAN::VlanStatus status{};
    FailEachProviderCall([&] { return quillet.EnumerateVLANsOfAdapter(A, vlans); });
    FailEachProviderCall([&] { return quillet.EnumerateVLANsOfTeam(T, vlans); });
    FailEachProviderCall([&] { return quillet.GetVLANInfo(V1, vlan); });
    FailEachProviderCall([&] { return quillet.GetVlanStatus(V1, status); });
    FailEachProviderCall([&] { return quillet.ParentSupportingVLAN(T); });
    FailEachProviderCall([&] { return quillet.ParentSupportingVLAN(A); },
                         [](const JournalEntry& failed, HRESULT code) {
                             return failed.operation == Operation::GetObject
                                        ? code
                                        : static_cast<HRESULT>(WBEM_E_FAILED);
                         });
}

TEST_F(VlanEnumerationTest, WithoutConnection_EachOperationSaysSoFirst) {
    quillet.UninitQuillet();
    CVLAN::VlanStatus status{};
    CComPtr<IWbemClassObject> service;
    std::wstring path;
    const std::pair<const char*, std::function<HRESULT()>> operations[] = {
        {"EnumerateVLANsOfAdapter", [&] { return quillet.EnumerateVLANsOfAdapter(L"", vlans); }},
        {"EnumerateVLANsOfTeam", [&] { return quillet.EnumerateVLANsOfTeam(L"", vlans); }},
        {"EnumerateVLANsOfComponent",
         [&] { return Access::EnumerateVLANsOfComponent(quillet, L"{A}", vlans); }},
        {"GetVLANInfo", [&] { return quillet.GetVLANInfo(L"", vlan); }},
        {"GetVlanStatus", [&] { return quillet.GetVlanStatus(L"", status); }},
        {"GetVLANID", [&] { return quillet.GetVLANID(L"", path); }},
        {"GetVLANService", [&] { return Access::GetVLANService(quillet, L"", service); }},
        {"ParentSupportingVLAN", [&] { return quillet.ParentSupportingVLAN(L""); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        Traced();
        EXPECT_EQ(Code(operation()), "0x80041001");
        EXPECT_THAT(Traced(), ElementsAre(std::string("Entering CQuillet::") + name,
                                          "GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                          "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                          "((pIWbemService == NULL) || (pIWbemContext == NULL))",
                                          std::string("Exiting CQuillet::") + name));
    }
}

} // namespace
