// Booting from iSCSI: the list of adapters, their places, and what the system can do.
#include "Boot/BootMachine.h"

namespace {

using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class ISCSIBootTest : public boot::BootTest {
  protected:
    std::int64_t PlaceOf(const wchar_t* className, const wchar_t* port) {
        const std::wstring key = std::wstring(className) + L".Name";
        return machine->Store().FindInstance(boot::Path(key.c_str(), port))->Number(L"iSCSI_Status", -1);
    }

    CISCSIAdapters adapters;
    const std::wstring SECOND = boot::Path(L"Zorel_BootAgent.Name", L"{B}");
};

TEST_F(ISCSIBootTest, List_HoldsEveryAdapter) {
    adapters.m_vecItems.push_back(new CISCSIAdapter);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    const CISCSIAdapter& first = *adapters.m_vecItems[0];
    EXPECT_EQ(first.m_wsPath, boot::Path(L"Zorel_BootAgent_iSCSI_Adapters.Name", L"{A}"));
    EXPECT_EQ(first.m_wsBootAgentID, L"{A}");
    EXPECT_EQ(first.m_wsAdapterName, L"First");
    EXPECT_EQ(first.m_eStatus, CISCSIAdapter::PrimaryPort);
    EXPECT_EQ(adapters.m_vecItems[1]->m_eStatus, CISCSIAdapter::NotBootPort);
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::EnumerateISCSIAdapters");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::EnumerateISCSIAdapters");
    EXPECT_THAT(Called(),
                ElementsAre("CreateInstanceEnum Zorel_BootAgent_iSCSI_Adapters -> 0x00000000 {ClientSetId=0}",
                            StartsWith("Next"), StartsWith("Next"), StartsWith("Next")));
}

TEST_F(ISCSIBootTest, List_WithoutAdapters_IsEmptyAndNoFailure) {
    UseText(NET_SERVICE_MOF);
    Connect();
    adapters.m_vecItems.push_back(new CISCSIAdapter);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x00000000");
    EXPECT_TRUE(adapters.m_vecItems.empty());
}

TEST_F(ISCSIBootTest, List_UnknownPlace_IsCarriedAsItIs) {
    auto entry = *machine->Store().FindInstance(boot::Path(L"Zorel_BootAgent_iSCSI_Adapters.Name", L"{A}"));
    entry.Set(L"iSCSI_Status", Value::Signed(-17));
    ASSERT_TRUE(SUCCEEDED(machine->Store().PutInstance(entry)));
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x00000000");
    EXPECT_EQ(static_cast<LONG>(adapters.m_vecItems[0]->m_eStatus), -17);
}

TEST_F(ISCSIBootTest, List_UnreadableProperty_IsNamedAndTheAdaptersBeforeItStay) {
    struct Case {
        const wchar_t* property;
        const char* line;
    };
    for (const Case& each : {
             Case{L"__PATH", "CQuillet::EnumerateISCSIAdapters failed to get GUID"},
             Case{L"iSCSI_Status", "GetPropertyAsLong -> pIAdapter_Instance, L_PROP_ISCSI_ADAPTERS_STATUS"},
             Case{L"AdapterName",
                  "GetPropertyAsString -> pIAdapter_Instance, L_PROP_ISCSI_ADAPTERS_ADAPTERNAME"},
         }) {
        SCOPED_TRACE(each.line);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, each.property, 2);
        EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x80041003");
        EXPECT_THAT(Traced(), Contains(each.line));
        EXPECT_EQ(adapters.m_vecItems.size(), 1u);
        machine->Rules().Clear();
    }
    Fail(Operation::CreateInstanceEnum, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("CreateInstanceEnum -> L_CLASS_ZOREL_ISCSI_ADAPTERS"));
    machine->Rules().Clear();
    Fail(Operation::Next, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("pEnumAdapters -> Next"));
    EXPECT_EQ(adapters.m_vecItems.size(), 1u);
}

TEST_F(ISCSIBootTest, Set_PutsTheNumberAndTellsTheProvidersCode) {
    unsigned int code = 99;
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code)), "0x00000000");
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent", L"{B}"), 2);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent_iSCSI_Adapters", L"{B}"), 2);
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::SetiSCSIStatus");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::SetiSCSIStatus");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].target, L"Zorel_BootAgent_iSCSI_Adapters");
    EXPECT_EQ(calls[1].target, SECOND);
    EXPECT_EQ(calls[1].method, L"SetiSCSI_Status");
    ASSERT_EQ(calls[1].arguments.size(), 1u);
    EXPECT_EQ(calls[1].arguments[0].name, L"iSCSI_State");
    EXPECT_EQ(calls[1].arguments[0].vt, VT_I4);
    EXPECT_EQ(calls[1].arguments[0].value, Value::Signed(2));
}

TEST_F(ISCSIBootTest, Set_NewPrimary_ChangesPlacesWithTheOldOne) {
    unsigned int code = 99;
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(boot::Path(L"Zorel_BootAgent_iSCSI_Adapters.Name", L"{B}"),
                                          CISCSIAdapter::PrimaryPort, code)),
              "0x00000000");
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent_iSCSI_Adapters", L"{B}"), 1);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent_iSCSI_Adapters", L"{A}"), 0);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent", L"{A}"), 0);
}

TEST_F(ISCSIBootTest, Set_RefusedByTheProvider_IsToldByTheCodeAlone) {
    unsigned int code = 99;
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, static_cast<CISCSIAdapter::iSCSIStatus>(7), code)),
              "0x00000000");
    EXPECT_EQ(code, 1u);
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(boot::Path(L"Zorel_BootAgent.Name", L"{C}"),
                                          CISCSIAdapter::PrimaryPort, code)),
              "0x00000000");
    EXPECT_EQ(code, 2u);
    EXPECT_EQ(PlaceOf(L"Zorel_BootAgent_iSCSI_Adapters", L"{A}"), 1);
}

TEST_F(ISCSIBootTest, Set_NullCode_LeavesTheArgumentAndSucceeds) {
    Spoil(Operation::Get, Effect::NullValue, L"RetCode");
    unsigned int code = 99;
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code)), "0x00000000");
    EXPECT_EQ(code, 99u);
}

TEST_F(ISCSIBootTest, Set_CodeThatIsNotWritten_LeavesTheArgumentAndSucceeds) {
    unsigned int code = 99;
    Fail(Operation::Get, WBEM_S_NO_MORE_DATA, L"RetCode");
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code)), "0x00000000");
    EXPECT_EQ(code, 99u);
    machine->Rules().Clear();
    Spoil(Operation::Get, Effect::WrongType, L"RetCode");
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code)), "0x00000000");
    EXPECT_EQ(code, 99u);
}

TEST_F(ISCSIBootTest, Set_FailedSteps_AreNamed) {
    struct Case {
        Operation operation;
        Effect effect;
        const char* code;
        const char* line;
    };
    for (const Case& each : {
             Case{Operation::GetObject, Effect::Fail, "0x80041003",
                  "GetObject -> L_CLASS_ZOREL_ISCSI_ADAPTERS"},
             Case{Operation::GetObject, Effect::NullObject, "0x80041001",
                  "GetObject -> L_CLASS_ZOREL_ISCSI_ADAPTERS -> NULL"},
             Case{Operation::GetMethod, Effect::Fail, "0x80041003",
                  "GetMethod -> L_METHOD_BOOTAGENT_SET_ISCSI_STATUS"},
             Case{Operation::Put, Effect::Fail, "0x80041003", "Put -> L_PARAM_SET_ISCSI_STATE"},
             Case{Operation::ExecMethod, Effect::Fail, "0x80041003",
                  "ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_SET_ISCSI_STATUS"},
             Case{Operation::ExecMethod, Effect::NoOutParameters, "0x80041001",
                  "ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_SET_ISCSI_STATUS, "
                  "pWbemClassObject_OutParams -> NULL"},
             Case{Operation::Get, Effect::Fail, "0x80041003",
                  "GetPropertyAsString -> pIWbemClassObject_OutParams -> L_PARAM_SET_ISCSI_PRIORITY_RETURN"},
         }) {
        SCOPED_TRACE(each.line);
        FaultRule rule;
        rule.operation = each.operation;
        rule.effect = each.effect;
        rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
        Inject(rule);
        unsigned int code = 99;
        EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code)), each.code);
        EXPECT_EQ(code, 99u);
        EXPECT_THAT(Traced(), Contains(each.line));
        machine->Rules().Clear();
    }
}

TEST_F(ISCSIBootTest, Info_AsksTheAdapterTwice) {
    CiSCSI info;
    EXPECT_EQ(Code(quillet.GetiSCSI_Info(ADAPTER, info)), "0x00000000");
    EXPECT_EQ(info.m_lStatus, 1);
    EXPECT_TRUE(info.m_bOSSupported);
    EXPECT_FALSE(info.m_bPatchPresent);
    EXPECT_TRUE(info.m_bHotFixPresent);
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::GetiSCSI_Info");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::GetiSCSI_Info");
    const std::string execute = "ExecMethod " + Narrow(ADAPTER);
    const std::string fetch = "GetObject Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0}";
    EXPECT_THAT(Called(), ElementsAre(fetch, execute + ", IsiSCSIEnabled() -> 0x00000000 {ClientSetId=0}",
                                      fetch, execute + ", IsiSCSISupported() -> 0x00000000 {ClientSetId=0}"));
}

TEST_F(ISCSIBootTest, Info_FailedSteps_AreNamedAndEndIt) {
    struct Case {
        Operation operation;
        Effect effect;
        const wchar_t* target;
        unsigned nth;
        const char* code;
        const char* line;
    };
    for (const Case& each : {
             Case{Operation::ExecMethod, Effect::Fail, L"", 1, "0x80041003",
                  "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSIENABLED"},
             Case{Operation::ExecMethod, Effect::NoOutParameters, L"", 1, "0x80041001",
                  "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSIENABLED, pAdapter_OutParams -> "
                  "NULL"},
             Case{Operation::Get, Effect::Fail, L"iSCSIStatus", 1, "0x80041003",
                  "GetPropertyAsLong -> pAdapter_OutParams, L_PARAM_ETHERNETADAPTER_ISCSISTATUS"},
             Case{Operation::ExecMethod, Effect::Fail, L"", 2, "0x80041003",
                  "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED"},
             Case{Operation::ExecMethod, Effect::NoOutParameters, L"", 2, "0x80041001",
                  "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED, pAdapter_OutParams "
                  "-> "
                  "NULL"},
             Case{Operation::Get, Effect::Fail, L"bIsiSCSIOS", 1, "0x80041003",
                  "GetPropertyAsBool -> pAdapter_OutParams, L_PARAM_ETHERNETADAPTER_ISISCSIOS"},
             Case{Operation::Get, Effect::Fail, L"bIsiSCSIPatch", 1, "0x80041003",
                  "GetPropertyAsBool -> pAdapter_OutParams, L_PARAM_ETHERNETADAPTER_ISISCSIPATCH"},
             Case{Operation::Get, Effect::Fail, L"bIsiSCSIHotFix", 1, "0x80041003",
                  "GetPropertyAsBool -> pAdapter_OutParams, L_PARAM_ETHERNETADAPTER_ISISCSIHOTFIX"},
         }) {
        SCOPED_TRACE(each.line);
        FaultRule rule;
        rule.operation = each.operation;
        rule.effect = each.effect;
        rule.target = each.target;
        rule.nth = each.nth;
        rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
        Inject(rule);
        CiSCSI info;
        EXPECT_EQ(Code(quillet.GetiSCSI_Info(ADAPTER, info)), each.code);
        EXPECT_FALSE(info.m_bHotFixPresent);
        EXPECT_THAT(Traced(), Contains(each.line));
        machine->Rules().Clear();
    }
}

TEST_F(ISCSIBootTest, EmptyIdentifierAndNoConnection_AreRefused) {
    CiSCSI info;
    EXPECT_EQ(Code(quillet.GetiSCSI_Info(L"", info)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetiSCSI_Info", "(wsAdapterID.empty())",
                                      "Exiting CQuillet::GetiSCSI_Info"));
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    unsigned int code = 99;
    adapters.m_vecItems.push_back(new CISCSIAdapter);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x80041001");
    EXPECT_TRUE(adapters.m_vecItems.empty()) << "emptied before the connection is looked at";
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(Code(quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::PrimaryPort, code)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(Code(quillet.GetiSCSI_Info(ADAPTER, info)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
}

TEST_F(ISCSIBootTest, EachCallFailing_ReturnsItsCode) {
    unsigned int code = 0;
    CiSCSI info;
    FailEachProviderCall([&] { return quillet.EnumerateISCSIAdapters(adapters); });
    FailEachProviderCall([&] { return quillet.SetiSCSIStatus(SECOND, CISCSIAdapter::SecondaryPort, code); });
    FailEachProviderCall([&] { return quillet.GetiSCSI_Info(ADAPTER, info); });
}

} // namespace
