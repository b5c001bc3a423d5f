// What adapters answer that is not the ordinary: verdicts of methods, capabilities in any order, ports with
// odd slots, properties without a value.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const wchar_t* kA = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";

class AdapterAnswersTest : public ProviderTest {
  protected:
    void Use(const std::string& properties, const std::string& more = "") {
        UseText(std::string(kNetServiceMof) +
                "instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = \"{A}\"; " + properties +
                " };" + more);
        Connect();
    }
    void AnswerVerdict(LONG verdict) {
        FaultRule rule;
        rule.operation = Operation::ExecMethod;
        rule.effect = Effect::Verdict;
        rule.verdict = verdict;
        Inject(rule);
    }
};

TEST_F(AdapterAnswersTest, Identify_NonZeroVerdict_IsTracedAndNoFailure) {
    Use("");
    AnswerVerdict(5);
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, 1)), "0x00000000");
    EXPECT_THAT(Traced(), Contains("IdentifyAdapter -> ReturnValue 5"));
}

TEST_F(AdapterAnswersTest, HbaPath_NonZeroVerdict_IsTracedAndLeavesThePath) {
    Use("HbaPath = \"hba\";");
    AnswerVerdict(-2);
    std::wstring path = L"before";
    EXPECT_EQ(Code(quillet.GetHbaPath(kA, path)), "0x00000000");
    EXPECT_EQ(path, L"before");
    EXPECT_THAT(Traced(), Contains("GetHbaPath -> ReturnValue -2"));
}

TEST_F(AdapterAnswersTest, NdisVersion_NullNumbers_StayMinusOne) {
    Use("");
    int major = 0;
    int minor = 0;
    EXPECT_EQ(Code(quillet.GetNDIS_Version(kA, major, minor)), "0x00000000");
    EXPECT_EQ(major, -1);
    EXPECT_EQ(minor, -1);
}

TEST_F(AdapterAnswersTest, Warnings_NullMask_StaysZero) {
    Use("AdapterWarnings = NULL;");
    ULONGLONG warnings = 9;
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0u);
}

TEST_F(AdapterAnswersTest, Identify_PassesTheSecondsAsTheyAre) {
    Use("");
    for (const LONG seconds : {0, 86400}) {
        EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, seconds)), "0x00000000");
        const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
        EXPECT_EQ(calls.back().arguments[0].value, quillet::simulator::Value::Signed(seconds));
    }
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, -1)), "0x8004102F") << "the provider's own refusal";
    EXPECT_EQ(CallsOf(Operation::ExecMethod).back().arguments[0].value,
              quillet::simulator::Value::Signed(-1));
}

TEST_F(AdapterAnswersTest, Actions_NotConnected_FailAndAreTraced) {
    Use("");
    quillet.UninitQuillet();
    Traced();
    std::wstring path = L"before";
    int major = 1;
    int minor = 1;
    CAdapterPorts ports;
    const std::string missing = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
    for (const std::function<HRESULT()>& operation : std::vector<std::function<HRESULT()>>{
             [&] { return quillet.EnumerateOtherPortOfAdapter(kA, ports); },
             [&] { return quillet.IdentifyAdapter(kA, 1); }, [&] { return quillet.GetHbaPath(kA, path); },
             [&] { return quillet.GetNDIS_Version(kA, major, minor); }}) {
        EXPECT_EQ(Code(operation()), "0x80041001");
        EXPECT_THAT(Traced(), Contains(missing));
    }
    EXPECT_EQ(path, L"before");
    EXPECT_EQ(major, -1);
    EXPECT_EQ(minor, -1);
}

TEST_F(AdapterAnswersTest, Actions_NoOutParameters_FailWithTheFirstRead) {
    Use("");
    std::wstring path = L"before";
    int major = 1;
    int minor = 1;
    ULONGLONG warnings = 1;
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.GetHbaPath(kA, path)), "0x80004005");
    EXPECT_EQ(path, L"before");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pAdapter_OutParams, "
                                   "L_PARAM_ETHERNETADAPTER_HBA_PATH"));
    machine->Rules().Clear();
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.IdentifyAdapter(kA, 1)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN"));
    machine->Rules().Clear();
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.GetNDIS_Version(kA, major, minor)), "0x80004005");
    EXPECT_EQ(major, -1);
    machine->Rules().Clear();
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.GetAdapterWarnings(kA, warnings)), "0x80004005");
    EXPECT_EQ(warnings, 0u);
}

TEST_F(AdapterAnswersTest, Capabilities_OrderOfTheCodes_DoesNotMatter) {
    std::string ascending;
    std::string descending;
    for (LONG code = 0; code <= 68; ++code) {
        const std::string text = std::to_string(code);
        ascending += (ascending.empty() ? "" : ", ") + text;
        descending = text + (descending.empty() ? "" : ", ") + descending;
    }
    for (const std::string& codes : {ascending, descending}) {
        Use("Capabilities = {" + codes + "};");
        CAdapter adapter;
        EXPECT_EQ(Code(quillet.GetAdapterCapabilities(kA, adapter)), "0x00000000");
        for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
            EXPECT_TRUE(adapter.m_pAdapterCapabilities->*flag.m_pFlag) << flag.m_lCode;
        }
    }
}

TEST_F(AdapterAnswersTest, Capabilities_PowerManagementAndLinkSecurity_AreTheOnlyOnesTraced) {
    Use("Capabilities = {3, 46, 50, 37, 64};");
    CAdapter adapter;
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(kA, adapter)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetAdapterCapabilities", "dwErrorCode: %l",
                                      "  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_POWER_MGMT",
                                      "  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_LINKSEC",
                                      "Exiting CQuillet::GetAdapterCapabilities"));
}

TEST_F(AdapterAnswersTest, BasicInfo_NullTexts_LeaveWhatTheRecordHolds) {
    Use("Name = NULL;");
    CAdapter adapter;
    adapter.m_wsName = L"before";
    adapter.m_wsSlotID = L"before";
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(kA, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_wsName, L"before");
    EXPECT_EQ(adapter.m_wsSlotID, L"before");
    EXPECT_EQ(adapter.m_wsDeviceID, L"{A}");
}

TEST_F(AdapterAnswersTest, PCIInfo_BusIsComparedExactly) {
    for (const char* bus : {"pci express", "PCI Express ", "PCI-X", ""}) {
        Use(std::string("NetworkAddresses = {\"x\"}; NegotiatedLinkWidth = \"x8\"; BusType = \"") + bus +
            "\";");
        CPCIInfo info;
        EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(kA, info)), "0x00000000");
        EXPECT_EQ(info.m_wsNegotiatedLinkWidth, L"") << bus;
        EXPECT_THAT(Traced(), Contains("BusType is not PCI Express - did not get the NegLinkWidth")) << bus;
    }
}

TEST_F(AdapterAnswersTest, PCIInfo_NoAddressArray_EndsTheOperation) {
    Use("BusType = \"PCI\"; EEPROMVersion = \"1\";");
    CPCIInfo info;
    EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(kA, info)), "0x80004005");
    EXPECT_EQ(info.m_wsEEPROMVersion, L"");
    EXPECT_THAT(Traced(), Contains("GetPropertyArray -> pInstanceHandle, "
                                   "L_PROP_ETHERNETADAPTER_NETWORKADDRESSES"));
}

TEST_F(AdapterAnswersTest, Ports_SlotWithAQuote_StaysOneValueOfTheQuery) {
    Use("SlotID = \"a\\\"b\"; AdapterStatus = 1;");
    CAdapterPorts ports;
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x00000000");
    const std::vector<JournalEntry> queries = CallsOf(Operation::ExecQuery);
    ASSERT_EQ(queries.size(), 2u) << "the adapter itself is found by its odd slot";
    EXPECT_EQ(queries[0].target, LR"(SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE SlotID = "a\"b")");
}

TEST_F(AdapterAnswersTest, Ports_StatusBits_OnlyTheOneOfValueFourHides) {
    for (const LONG status : {0, 1, 2, 3, 4, 5, 8, 12, 0x7FFFFFFB, -1}) {
        Use("SlotID = \"1\"; AdapterStatus = " + std::to_string(static_cast<DWORD>(status)) + ";",
            R"(instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; };
               instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };)");
        CAdapterPorts ports;
        EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x00000000");
        EXPECT_EQ(ports.m_vecItems.size(), (status & 4) != 0 ? 0u : 1u) << status;
    }
}

TEST_F(AdapterAnswersTest, Ports_OfTwoTeams_AreListedOncePerTeamBehindWhatIsThere) {
    Use("SlotID = \"1\"; AdapterStatus = 1;",
        R"(instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; };
           instance of Zorel_TeamOfAdapters as $U { Name = "{U}"; };
           instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
           instance of Zorel_TeamedMemberAdapter { GroupComponent = $U; PartComponent = $A; };)");
    CAdapterPorts ports;
    ports.m_vecItems.push_back(new CAdapterPort);
    EXPECT_EQ(Code(quillet.EnumerateOtherPortOfAdapter(kA, ports)), "0x00000000");
    ASSERT_EQ(ports.m_vecItems.size(), 3u);
    EXPECT_EQ(ports.m_vecItems[0]->m_wsAdapterID, L"");
    EXPECT_NE(ports.m_vecItems[1]->m_wsTeamID, ports.m_vecItems[2]->m_wsTeamID);
}

} // namespace
