// Listing adapters, and the two forms of an adapter's identity.
#include "ProviderTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* TWO_ADAPTERS = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter {
        DeviceID = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
        Name = "Zorel Gigabit";
        OriginalDisplayName = "Zorel Gigabit Server Adapter";
    };
    instance of Zorel_PhysicalEthernetAdapter {
        DeviceID = "{5DB8F12F-BC1D-503E-8302-0ED98B178FB8}";
        Name = "Z\x00fcrich 100%s";
        OriginalDisplayName = "";
    };)";
constexpr const wchar_t* FIRST_PATH =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{64D1BF82-B507-5E42-AED2-547CA8AAC36A}")";
constexpr const wchar_t* SECOND_PATH =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{5DB8F12F-BC1D-503E-8302-0ED98B178FB8}")";
constexpr const char* PARTIAL =
    " {ClientSetId=0, GET_EXT_CLIENT_REQUEST=true, GET_EXTENSIONS=true, Zorel_PartialData=1}";
constexpr const char* NEXT = "Next Zorel_PhysicalEthernetAdapter -> 0x00000000";
constexpr const char* END = "Next Zorel_PhysicalEthernetAdapter -> 0x00000001";

std::string Enumeration(const char* result = "0x00000000") {
    return std::string("CreateInstanceEnum Zorel_PhysicalEthernetAdapter -> ") + result + PARTIAL;
}

class AdapterEnumerationTest : public ProviderTest {
  protected:
    AdapterEnumerationTest() : ProviderTest(TWO_ADAPTERS) {}
    void SetUp() override { Connect(); }
    /// What is traced up to the enumeration itself, then `lines`, then the exit.
    static std::vector<std::string> Trace(std::vector<std::string> lines, bool enumerated = true) {
        std::vector<std::string> all{"Entering CQuillet::EnumerateAdapters", "dwErrorCode: %l",
                                     "CQuillet::ChangeContext", "Setting for partial data!!",
                                     "Else Partial Retrieval!!"};
        if (enumerated) {
            all.insert(all.end(), {"CQuillet::ChangeContext", " Unset Partial Retrieval!!"});
        }
        all.insert(all.end(), lines.begin(), lines.end());
        all.emplace_back("Exiting CQuillet::EnumerateAdapters");
        return all;
    }

    CAdapters adapters;
};

TEST_F(AdapterEnumerationTest, EnumerateAdapters_FillsARecordForEachInOrder) {
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    const CAdapter& first = *adapters.m_vecItems[0];
    EXPECT_EQ(first.m_wsAdapterID, FIRST_PATH);
    EXPECT_EQ(first.m_wsName, L"Zorel Gigabit");
    EXPECT_EQ(first.m_wsDisplayName, L"Zorel Gigabit Server Adapter");
    EXPECT_EQ(first.m_wsDeviceID, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
    const CAdapter& second = *adapters.m_vecItems[1];
    EXPECT_EQ(second.m_wsAdapterID, SECOND_PATH);
    EXPECT_EQ(second.m_wsName, L"Z\u00fcrich 100%s");
    EXPECT_EQ(second.m_wsDisplayName, L"");
    EXPECT_EQ(second.m_wsDeviceID, L"{5DB8F12F-BC1D-503E-8302-0ED98B178FB8}");
    EXPECT_EQ(Traced(), Trace({}));
    EXPECT_THAT(Called(), ElementsAre(Enumeration(), NEXT, NEXT, END));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_ReadsFourPropertiesOfEachAndRestoresTheContext) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    constexpr const char* PATH = "Get __PATH -> 0x00000000";
    constexpr const char* NAME = "Get Name -> 0x00000000";
    constexpr const char* ORIGINAL = "Get OriginalDisplayName -> 0x00000000";
    constexpr const char* DEVICE = "Get DeviceID -> 0x00000000";
    EXPECT_THAT(
        Called(),
        ElementsAre("SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
                    "SetContextValue ClientSetId(ClientSetId=0) -> 0x00000000",
                    "SetContextValue GET_EXT_CLIENT_REQUEST(GET_EXT_CLIENT_REQUEST=true) -> 0x00000000",
                    "SetContextValue GET_EXTENSIONS(GET_EXTENSIONS=true) -> 0x00000000",
                    "SetContextValue Zorel_PartialData(Zorel_PartialData=1) -> 0x00000000", Enumeration(),
                    "SetContextValue GET_EXT_CLIENT_REQUEST(GET_EXT_CLIENT_REQUEST=false) -> 0x00000000",
                    "SetContextValue GET_EXTENSIONS(GET_EXTENSIONS=false) -> 0x00000000",
                    "SetContextValue GET_EXT_KEYS_ONLY(GET_EXT_KEYS_ONLY=false) -> 0x00000000",
                    "SetContextValue Zorel_PartialData(Zorel_PartialData=-1) -> 0x00000000", NEXT, PATH, NAME,
                    ORIGINAL, DEVICE, NEXT, PATH, NAME, ORIGINAL, DEVICE, END));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_CollectionWithTwoAdapters_AppendsBehindThem) {
    auto* one = new CAdapter;
    auto* two = new CAdapter;
    adapters.m_vecItems = {one, two};
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 4u);
    EXPECT_EQ(adapters.m_vecItems[0], one);
    EXPECT_EQ(adapters.m_vecItems[1], two);
    EXPECT_EQ(adapters.m_vecItems[2]->m_wsAdapterID, FIRST_PATH);
    EXPECT_EQ(adapters.m_vecItems[3]->m_wsAdapterID, SECOND_PATH);
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_NoAdapters_SucceedsAndLeavesTheCollection) {
    UseText(NET_SERVICE_MOF);
    Connect();
    adapters.m_vecItems.push_back(new CAdapter);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    EXPECT_EQ(adapters.m_vecItems.size(), 1u);
    EXPECT_EQ(Traced(), Trace({}));
    EXPECT_THAT(Called(), ElementsAre(Enumeration(), END));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_ShippedMachine_ListsAllItsAdapters) {
    Use(Machine::BuiltIn(Options()));
    Connect();
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    const auto stored = machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter");
    ASSERT_GT(stored.size(), 5u);
    ASSERT_EQ(adapters.m_vecItems.size(), stored.size());
    for (std::size_t index = 0; index < stored.size(); ++index) {
        EXPECT_EQ(adapters.m_vecItems[index]->m_wsAdapterID, machine->Store().FullPath(*stored[index]));
        EXPECT_EQ(adapters.m_vecItems[index]->m_wsName, stored[index]->Text(L"Name"));
        EXPECT_EQ(adapters.m_vecItems[index]->m_wsDisplayName, stored[index]->Text(L"OriginalDisplayName"));
        EXPECT_EQ(adapters.m_vecItems[index]->m_wsDeviceID, stored[index]->Text(L"DeviceID"));
    }
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_InsideATransaction_CarriesItsSet) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Calls();
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_TRUE(calls.at(0).ContextValue(L"ClientSetId"));
    EXPECT_EQ(calls[0].ContextValue(L"ClientSetId")->value,
              quillet::simulator::Value::Signed(machine->OpenClientSet()));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_NotConnected_Fails) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateAdapters",
                                      "GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                      "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                      "((pIWbemService == NULL) || (pIWbemContext == NULL))",
                                      "Exiting CQuillet::EnumerateAdapters"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_Refused_ReturnsThatCodeInPartialMode) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_INVALID_CLASS);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80041010");
    EXPECT_EQ(Traced(), Trace({"CreateInstanceEnum -> L_CLASS_ZOREL_ETHERNETADAPTER"}, false));
    EXPECT_THAT(Called(), ElementsAre(Enumeration("0x80041010")));
    // The context that was left in partial mode was this call's own.
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Calls().back().context.size(), 1u);
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_NoEnumerator_IsAFailureAndNoEmptyList) {
    Spoil(Operation::CreateInstanceEnum, Effect::NullObject);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80041001");
    EXPECT_TRUE(adapters.m_vecItems.empty());
    EXPECT_EQ(Traced(), Trace({"CreateInstanceEnum -> L_CLASS_ZOREL_ETHERNETADAPTER -> NULL"}, false));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_BreaksOff_ReturnsTheCodeAndKeepsWhatWasRead) {
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), Code(WBEM_E_TRANSPORT_FAILURE));
    ASSERT_EQ(adapters.m_vecItems.size(), 1u);
    EXPECT_EQ(adapters.m_vecItems[0]->m_wsAdapterID, FIRST_PATH);
    EXPECT_EQ(Traced(), Trace({"pEnumAdapters -> Next"}));
}

TEST_F(AdapterEnumerationTest, EnumerateAdapters_NullObject_EndsTheList) {
    Spoil(Operation::Next, Effect::NullObject, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    EXPECT_EQ(adapters.m_vecItems.size(), 1u);
}

struct ReadProperty {
    const wchar_t* name;
    const char* symbol;
};

/// One of the four properties of the second adapter goes wrong.
class AdapterPropertyTest : public AdapterEnumerationTest, public testing::WithParamInterface<ReadProperty> {
  protected:
    std::string Line() const {
        return std::string("GetPropertyAsString -> pIAdapter_Instance, ") + GetParam().symbol;
    }
};

TEST_P(AdapterPropertyTest, EnumerateAdapters_ReadFails_EndsWithTheAdaptersBeforeIt) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, GetParam().name, 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80004005");
    ASSERT_EQ(adapters.m_vecItems.size(), 1u);
    EXPECT_EQ(adapters.m_vecItems[0]->m_wsAdapterID, FIRST_PATH);
    EXPECT_EQ(Traced(), Trace({Line()}));
    EXPECT_THAT(Called(), ElementsAre(Enumeration(), NEXT, NEXT));
}

TEST_P(AdapterPropertyTest, EnumerateAdapters_NoValue_EndsWithTheAdaptersBeforeIt) {
    Spoil(Operation::Get, Effect::NullValue, GetParam().name, 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80004005");
    EXPECT_EQ(adapters.m_vecItems.size(), 1u);
    EXPECT_EQ(Traced(), Trace({Line() + " -> NULL"}));
    EXPECT_THAT(Called(), ElementsAre(Enumeration(), NEXT, NEXT));
}

TEST_P(AdapterPropertyTest, EnumerateAdapters_NoText_ReadsAsAnEmptyOne) {
    Spoil(Operation::Get, Effect::WrongType, GetParam().name, 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    const CAdapter& second = *adapters.m_vecItems[1];
    EXPECT_EQ(second.m_wsAdapterID.empty(), GetParam().name == std::wstring(L"__PATH"));
    EXPECT_EQ(second.m_wsName.empty(), GetParam().name == std::wstring(L"Name"));
    EXPECT_EQ(second.m_wsDeviceID.empty(), GetParam().name == std::wstring(L"DeviceID"));
}

TEST_P(AdapterPropertyTest, EnumerateAdapters_HugeText_IsTakenWhole) {
    Spoil(Operation::Get, Effect::HugeString, GetParam().name, 2);
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    const CAdapter& second = *adapters.m_vecItems[1];
    EXPECT_EQ(second.m_wsAdapterID.size() + second.m_wsName.size() + second.m_wsDisplayName.size() +
                      second.m_wsDeviceID.size() >=
                  (1u << 20),
              true);
}

INSTANTIATE_TEST_SUITE_P(Properties, AdapterPropertyTest,
                         testing::Values(ReadProperty{L"__PATH", "L_ZOREL_PATH"},
                                         ReadProperty{L"Name", "L_PROP_ETHERNETADAPTER_NAME"},
                                         ReadProperty{L"OriginalDisplayName",
                                                      "L_PROP_ETHERNETADAPTER_ORIGNAME"},
                                         ReadProperty{L"DeviceID", "L_PROP_ETHERNETADAPTER_DEVICEID"}),
                         [](const testing::TestParamInfo<ReadProperty>& test) { return test.param.symbol; });

TEST_F(AdapterEnumerationTest, EnumerateAdapters_EachProviderCallFails_ReturnsItsCodeAndSendsNothingMore) {
    FailEachProviderCall([this] {
        CAdapters fresh;
        return quillet.EnumerateAdapters(fresh);
    });
}

// --- identities ---

TEST_F(AdapterEnumerationTest, GetGUI_AdapterPath_IsItsObjectId) {
    std::wstring objectId = L"before";
    EXPECT_EQ(Code(quillet.GetGUI(FIRST_PATH, objectId)), "0x00000000");
    EXPECT_EQ(objectId, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetGUI", "Exiting CQuillet::GetGUI"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(AdapterEnumerationTest, GetGUI_NoAdapterPath_FailsWithAnEmptyId) {
    for (const wchar_t* text :
         {L"", L"no path at all", L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}", L"Zorel_PhysicalEthernetAdapter",
          L"\\\\TESTHOST\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=",
          L"Zorel_PhysicalEthernetAdapter.DeviceID=\"unclosed", L"\\\\\\", L"=", L"%s%n"}) {
        SCOPED_TRACE(Narrow(text));
        std::wstring objectId = L"before";
        EXPECT_EQ(Code(quillet.GetGUI(text, objectId)), "0x80041001");
        EXPECT_EQ(objectId, L"");
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetGUI", "Exiting CQuillet::GetGUI"));
    }
}

TEST_F(AdapterEnumerationTest, GetGUI_PathOfAnotherKind_FailsWithAnEmptyId) {
    for (const wchar_t* text :
         {LR"(Zorel_BootAgent.Name="{A}")", LR"(Zorel_BootAgent_iSCSI_Adapters.Name="{A}")",
          LR"(Zorel_TeamOfAdapters.Name="{A}")", LR"(Zorel_VLAN.Name="{A}")",
          LR"(Zorel_PhysicalEthernetAdapter.Name="{A}")"}) {
        SCOPED_TRACE(Narrow(text));
        std::wstring objectId = L"before";
        EXPECT_EQ(Code(quillet.GetGUI(text, objectId)), "0x80041001");
        EXPECT_EQ(objectId, L"");
    }
}

TEST_F(AdapterEnumerationTest, GetGUI_KeyBesideTheIdentifyingOne_DoesNotMatter) {
    for (const wchar_t* text :
         {LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}",SystemName="TESTHOST")",
          LR"(Zorel_PhysicalEthernetAdapter.SystemName="TESTHOST",DeviceID="{A}")",
          LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_LogicalEthernetAdapter.deviceid="{A}")"}) {
        SCOPED_TRACE(Narrow(text));
        std::wstring objectId = L"before";
        EXPECT_EQ(Code(quillet.GetGUI(text, objectId)), "0x00000000");
        EXPECT_EQ(objectId, L"{A}");
    }
}

TEST_F(AdapterEnumerationTest, GetGUIAndGetAdapterID_InputAndOutputOneString_Work) {
    std::wstring text = FIRST_PATH;
    EXPECT_EQ(Code(quillet.GetGUI(text, text)), "0x00000000");
    EXPECT_EQ(text, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
    EXPECT_EQ(Code(quillet.GetAdapterID(text, text)), "0x00000000");
    EXPECT_THAT(text,
                testing::EndsWith(
                    LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{64D1BF82-B507-5E42-AED2-547CA8AAC36A}")"));
}

TEST_F(AdapterEnumerationTest, GetGUI_NotConnected_WorksAllTheSame) {
    quillet.UninitQuillet();
    std::wstring objectId;
    EXPECT_EQ(Code(quillet.GetGUI(FIRST_PATH, objectId)), "0x00000000");
    EXPECT_EQ(objectId, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
}

TEST_F(AdapterEnumerationTest, GetAdapterID_OfAnEnumeratedAdaptersId_IsItsPath) {
    // The path names the computer that the program runs on, so the machine must be that one.
    UseText(TWO_ADAPTERS, MachineOptions());
    Connect();
    ASSERT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    for (const CAdapter* adapter : adapters.m_vecItems) {
        std::wstring objectId;
        EXPECT_EQ(Code(quillet.GetGUI(adapter->m_wsAdapterID, objectId)), "0x00000000");
        Traced();
        std::wstring adapterId = L"before";
        EXPECT_EQ(Code(quillet.GetAdapterID(objectId, adapterId)), "0x00000000");
        EXPECT_EQ(adapterId, adapter->m_wsAdapterID);
        const std::vector<std::string> trace = Traced();
        ASSERT_GE(trace.size(), 2u);
        EXPECT_EQ(trace[0], "Entering CQuillet::GetAdapterID");
        EXPECT_EQ(trace[1], "Adapter Path from WMI Is " + Narrow(adapterId));
    }
}

TEST_F(AdapterEnumerationTest, GetAdapterID_OddIds_AlwaysSucceed) {
    for (const wchar_t* text : {L"%s%n", L"a\"b\\c", L"Z\u00fcrich"}) {
        SCOPED_TRACE(Narrow(text));
        std::wstring adapterId;
        EXPECT_EQ(Code(quillet.GetAdapterID(text, adapterId)), "0x00000000");
        std::wstring objectId;
        EXPECT_EQ(Code(quillet.GetGUI(adapterId, objectId)), "0x00000000");
        EXPECT_EQ(objectId, text);
    }
    std::wstring adapterId = L"before";
    EXPECT_EQ(Code(quillet.GetAdapterID(L"", adapterId)), "0x00000000");
    EXPECT_EQ(adapterId, L"") << "nothing has no path";
}

} // namespace
