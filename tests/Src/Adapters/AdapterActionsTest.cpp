// The ports of an adapter's board, and what one adapter can be asked to do or tell.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

// A board with four ports in slot 1 (one of them missing, two in the team), and a lone adapter in slot 2.
constexpr const char* kBoard = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; SlotID = "Slot 1"; AdapterStatus = 1; HbaPath = "hba:3"; NDISMajorVersion = 6;
        NDISMinorVersion = 30; AdapterWarnings = 9223372036854775809; };
    instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; SlotID = "Slot 1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $C { DeviceID = "{C}"; SlotID = "Slot 1"; AdapterStatus = 5; };
    instance of Zorel_PhysicalEthernetAdapter as $D { DeviceID = "{D}"; SlotID = "Slot 1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $E { DeviceID = "{E}"; SlotID = "Slot 2"; AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $C; };)";

std::wstring Path(const wchar_t* device) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(device) +
           L"\"";
}

class AdapterActionsTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kBoard);
        Connect();
    }
    CAdapterPorts ports;
    const std::wstring kA = Path(L"{A}");
    const std::wstring kE = Path(L"{E}");
};

TEST_F(AdapterActionsTest, Ports_ListsEveryPresentTeamedPortOfTheSlotItselfIncluded) {
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x00000000");
    ASSERT_EQ(ports.m_vecItems.size(), 2u);
    EXPECT_EQ(ports.m_vecItems[0]->m_wsAdapterID, kA);
    EXPECT_EQ(ports.m_vecItems[1]->m_wsAdapterID, Path(L"{B}"));
    for (const CAdapterPort* port : ports.m_vecItems) {
        EXPECT_TRUE(port->m_bTeamed);
        EXPECT_EQ(port->m_wsTeamID, LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name="{T}")");
    }
    std::vector<std::string> queries;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::ExecQuery) {
            EXPECT_EQ(call.flags, 0);
            EXPECT_TRUE(call.hasContext);
            queries.push_back(Narrow(call.target));
        }
    }
    EXPECT_THAT(
        queries,
        ElementsAre(
            R"(SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE SlotID = "Slot 1")",
            "REFERENCES OF {" + Narrow(kA) + "} WHERE ResultClass = Zorel_TeamedMemberAdapter",
            "REFERENCES OF {" + Narrow(Path(L"{B}")) + "} WHERE ResultClass = Zorel_TeamedMemberAdapter",
            "REFERENCES OF {" + Narrow(Path(L"{D}")) + "} WHERE ResultClass = Zorel_TeamedMemberAdapter"));
}

TEST_F(AdapterActionsTest, Ports_MissingHardware_IsNeverListedAlthoughTeamed) {
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x00000000");
    for (const CAdapterPort* port : ports.m_vecItems) {
        EXPECT_NE(port->m_wsAdapterID, Path(L"{C}"));
    }
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "Hardware is realy Missing"), 1);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "Hardware is present"), 3);
}

TEST_F(AdapterActionsTest, Ports_AloneInItsSlotAndNotTeamed_GivesAnEmptyList) {
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kE, ports)), "0x00000000");
    EXPECT_TRUE(ports.m_vecItems.empty());
}

TEST_F(AdapterActionsTest, Ports_EachCallFailing_ReturnsItsCode) {
    FailEachProviderCall([&] { return quillet.EnumerateOtherPortOfAdapter(kA, ports); });
}

TEST_F(AdapterActionsTest, Ports_SlotUnreadableOrNull_IsNamed) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"SlotID");
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pInstanceHandle, L_PROP_ETHERNETADAPTER_SLOTID"));
    machine->Rules().Clear();
    Spoil(Operation::Get, Effect::NullValue, L"SlotID");
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x80041001");
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsString -> pInstanceHandle, L_PROP_ETHERNETADAPTER_SLOTID -> NULL"));
}

TEST_F(AdapterActionsTest, Ports_QueriesFailing_AreNamed) {
    Fail(Operation::ExecQuery, WBEM_E_FAILED, L"", 1);
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> SELECT * FROM ADAPTER FOR SLOTID -> FAIL"));
    machine->Rules().Clear();
    Fail(Operation::ExecQuery, WBEM_E_FAILED, L"", 3);
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> BSTR_QUERY_REFERENCE"));
    EXPECT_EQ(ports.m_vecItems.size(), 1u); // the port found before the failure stays
}

TEST_F(AdapterActionsTest, Identify_TellsTheAdapterToBlink) {
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, 5)), "0x00000000");
    EXPECT_EQ(machine->BlinksFor(L"{A}"), 5s);
    EXPECT_EQ(machine->BlinksFor(L"{B}"), 0s);
    machine->Advance(4s);
    EXPECT_EQ(machine->BlinksFor(L"{a}"), 1s);
    machine->Advance(2s);
    EXPECT_EQ(machine->BlinksFor(L"{A}"), 0s);
    const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].target, kA);
    EXPECT_EQ(calls[0].method, L"IdentifyAdapter");
    ASSERT_EQ(calls[0].arguments.size(), 1u);
    EXPECT_EQ(calls[0].arguments[0].name, L"nSeconds");
    EXPECT_EQ(calls[0].arguments[0].vt, VT_I4);
    EXPECT_EQ(calls[0].arguments[0].value, quillet::simulator::Value::Signed(5));
    EXPECT_THAT(Called(), ElementsAre("GetObject Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0}",
                                      testing::StartsWith("ExecMethod ")));
}

TEST_F(AdapterActionsTest, HbaPath_ReadsThePath) {
    std::wstring path;
    EXPECT_EQ(Code(quillet.GetHbaPath(kA, path)), "0x00000000");
    EXPECT_EQ(path, L"hba:3");
    path = L"kept";
    EXPECT_EQ(Code(quillet.GetHbaPath(kE, path)), "0x00000000"); // none: null
    EXPECT_EQ(path, L"kept");
}

TEST_F(AdapterActionsTest, NdisVersion_ReadsBothNumbers) {
    int major = 0;
    int minor = 0;
    EXPECT_EQ(Code(quillet.GetNDIS_Version(kA, major, minor)), "0x00000000");
    EXPECT_EQ(major, 6);
    EXPECT_EQ(minor, 30);
}

TEST_F(AdapterActionsTest, NdisVersion_MethodFails_LeavesBothAtMinusOne) {
    Fail(Operation::ExecMethod, WBEM_E_FAILED);
    int major = 5;
    int minor = 5;
    EXPECT_EQ(Code(quillet.GetNDIS_Version(kA, major, minor)), "0x80041001");
    EXPECT_EQ(major, -1);
    EXPECT_EQ(minor, -1);
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_GETNDISVERSION"));
}

TEST_F(AdapterActionsTest, Warnings_ReadsAll64Bits) {
    ULONGLONG warnings = 1;
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0x8000000000000001ull);
}

TEST_F(AdapterActionsTest, Warnings_Failures_LeaveZeroAndAreNamedAsEver) {
    ULONGLONG warnings = 1;
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(L"", warnings)), "0x80004005");
    EXPECT_EQ(warnings, 0u);
    EXPECT_THAT(Traced(), Contains("GetAdapterWarnings() - invalid adapter GUID )"));

    warnings = 1;
    Fail(Operation::ExecMethod, WBEM_E_FAILED);
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x80041001");
    EXPECT_EQ(warnings, 0u);
    EXPECT_THAT(Traced(), Contains("GetAdapterWarnings() - ExecMethod failed -> wsAdapterID, "
                                   "L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS"));
    machine->Rules().Clear();

    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"dwAdapterWarnings");
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetAdapterFanStatus() - GetPropertyAsLong failed -> pAdapter_OutParams, "
                                   "L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS"));
    machine->Rules().Clear();

    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetAdapterWarnings() - pIWbemService or pIWbemContext is NULL)"));
}

TEST_F(AdapterActionsTest, MethodCalls_EachCallFailing_ReturnsItsCode) {
    std::wstring path;
    int major = 0;
    int minor = 0;
    ULONGLONG warnings = 0;
    FailEachProviderCall([&] { return quillet.IdentifyAdapter(kA, 1); });
    FailEachProviderCall([&] { return quillet.GetHbaPath(kA, path); });
    FailEachProviderCall([&] { return quillet.GetNDIS_Version(kA, major, minor); });
    FailEachProviderCall([&] { return quillet.GetAdapterWarnings(kA, warnings); });
}

TEST_F(AdapterActionsTest, MethodCalls_SignatureAndPutFailing_AreNamed) {
    Fail(Operation::GetMethod, WBEM_E_FAILED);
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, 1)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetMethod -> L_METHOD_ETHERNETADAPTER_IDENTIFY"));
    machine->Rules().Clear();
    Fail(Operation::Put, WBEM_E_TYPE_MISMATCH);
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, 1)), "0x80041005");
    EXPECT_THAT(Traced(), Contains("Put -> L_PARAM_ETHERNETADAPTER_IDENTIFY_SECONDS"));
    EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
}

TEST_F(AdapterActionsTest, MethodCalls_EmptyIdentifier_IsRefusedWithoutACall) {
    std::wstring path;
    int major = 0;
    int minor = 0;
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(L"", ports)), "0x80004005");
    EXPECT_EQ(Code(quillet.IdentifyAdapter(L"", 1)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetHbaPath(L"", path)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetNDIS_Version(L"", major, minor)), "0x80004005");
    EXPECT_EQ(major, -1);
    EXPECT_THAT(Traced(), Contains("(wsAdapterID.empty())"));
    EXPECT_THAT(Called(), IsEmpty());
}

} // namespace
