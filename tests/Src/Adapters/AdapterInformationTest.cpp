// What is known of one adapter: names, link and state, capabilities, identity on its bus.
#include "ProviderTest.h"

#include <cstring>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* ADAPTER = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter {
        DeviceID = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
        Name = "Zorel Gigabit";
        OriginalDisplayName = "Zorel Gigabit Server Adapter";
        SlotID = "Slot 3";
        Status = "OK"; StatusInfo = 3; Availability = 8; AdapterStatus = 1; HardwareStatus = 2;
        Speed = 1000000000; FullDuplex = TRUE; LinkSecStatus = 7;
        Capabilities = {37, 46, 50, 64, 99, 37};
        ControllerID = "ZC-1"; MediaType = "Copper"; BusType = "PCI Express"; NegotiatedLinkWidth = "x4";
        PortNumber = "2"; PHYDevice = 0; PartNumber = "P-1";
        NetworkAddresses = {"02-00-5E-00-00-01"}; PermanentAddress = "02-00-5E-00-00-02";
        EEPROMVersion = "1.5"; SanMacAddress = "02-00-5E-00-00-03"; PCIDeviceID = "F112";
    };)";
constexpr const wchar_t* PATH =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{64D1BF82-B507-5E42-AED2-547CA8AAC36A}")";

class AdapterInformationTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(ADAPTER);
        Connect();
    }
    /// Changes a property of the adapter in the machine.
    void Set(const wchar_t* property, quillet::simulator::Value value) {
        quillet::simulator::Instance changed = *machine->Store().FindInstance(PATH);
        ASSERT_TRUE(changed.Set(property, std::move(value)));
        ASSERT_EQ(Code(machine->Store().PutInstance(changed)), "0x00000000");
    }
    static std::string Fetch(const char* result = "0x00000000") {
        return "GetObject " + Narrow(PATH) + " -> " + result + " {ClientSetId=0}";
    }

    CAdapter adapter;
};

TEST_F(AdapterInformationTest, BasicInfo_ReadsTheFourTexts) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(PATH, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_wsName, L"Zorel Gigabit");
    EXPECT_EQ(adapter.m_wsDisplayName, L"Zorel Gigabit Server Adapter");
    EXPECT_EQ(adapter.m_wsDeviceID, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
    EXPECT_EQ(adapter.m_wsSlotID, L"Slot 3");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetAdapterBasicInfo", "dwErrorCode: %l",
                                      "Exiting CQuillet::GetAdapterBasicInfo"));
    const std::vector<std::string> calls = Called();
    EXPECT_THAT(std::vector<std::string>(calls.end() - 5, calls.end()),
                ElementsAre(Fetch(), "Get Name -> 0x00000000", "Get OriginalDisplayName -> 0x00000000",
                            "Get DeviceID -> 0x00000000", "Get SlotID -> 0x00000000"));
}

TEST_F(AdapterInformationTest, BasicInfo_ReadFails_KeepsWhatWasReadAndReturnsItsCode) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"DeviceID");
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(PATH, adapter)), "0x80041003");
    EXPECT_EQ(adapter.m_wsName, L"Zorel Gigabit");
    EXPECT_EQ(adapter.m_wsSlotID, L"");
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsString -> pInstanceHandle, L_PROP_ETHERNETADAPTER_DEVICEID"));
}

TEST_F(AdapterInformationTest, BasicInfo_UnknownAdapter_ReturnsTheProvidersCode) {
    const std::wstring stranger = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{0}")";
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(stranger, adapter)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsAdapterID"));
}

TEST_F(AdapterInformationTest, EachOperation_EmptyIdentifier_IsRefusedWithoutACall) {
    CPCIInfo pci;
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(L"", adapter)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetAdapterStatus(L"", adapter)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(L"", pci)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(L"", adapter)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterDynamicInfo))"));
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(L"", adapter)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))"));
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(AdapterInformationTest, EachOperation_NotConnected_Fails) {
    quillet.UninitQuillet();
    CPCIInfo pci;
    EXPECT_EQ(Code(quillet.GetAdapterBasicInfo(PATH, adapter)), "0x80041001");
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x80041001");
    EXPECT_EQ(Code(quillet.GetAdapterStatus(PATH, adapter)), "0x80041001");
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x80041001");
    EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(PATH, pci)), "0x80041001");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
}

TEST_F(AdapterInformationTest, EachOperation_FetchFails_ReturnsItsCode) {
    CPCIInfo pci;
    FailEachProviderCall([&] { return quillet.GetAdapterBasicInfo(PATH, adapter); });
    FailEachProviderCall([&] { return quillet.GetAdapterStatus(PATH, adapter); });
    FailEachProviderCall([&] { return quillet.GetAdapterPCIInfo(PATH, pci); });
    FailEachProviderCall([&] {
        CAdapter fresh;
        return quillet.GetAdapterDynamicInfo(PATH, fresh);
    });
    FailEachProviderCall([&] {
        CAdapter fresh;
        return quillet.GetAdapterCapabilities(PATH, fresh);
    });
}

TEST_F(AdapterInformationTest, EachOperation_NullObject_FailsWithATraceLine) {
    CPCIInfo pci;
    for (const std::function<HRESULT()>& operation :
         std::vector<std::function<HRESULT()>>{[&] { return quillet.GetAdapterBasicInfo(PATH, adapter); },
                                               [&] { return quillet.GetAdapterDynamicInfo(PATH, adapter); },
                                               [&] { return quillet.GetAdapterStatus(PATH, adapter); },
                                               [&] { return quillet.GetAdapterCapabilities(PATH, adapter); },
                                               [&] { return quillet.GetAdapterPCIInfo(PATH, pci); }}) {
        Spoil(Operation::GetObject, Effect::NullObject);
        EXPECT_EQ(Code(operation()), "0x80041001");
        EXPECT_THAT(Traced(), Contains("GetObject -> wsAdapterID -> NULL"));
        machine->Rules().Clear();
    }
}

TEST_F(AdapterInformationTest, DynamicInfo_ReadWithoutAValue_LeavesWhatItIsForAsItWas) {
    // Small enough to be a status as well, if one read took over what the other left.
    Set(L"Speed", quillet::simulator::Value::Signed(5));
    Fail(Operation::Get, WBEM_S_NO_MORE_DATA, L"LinkSecStatus");
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_eLinkSecStatus, CAdapterDynamicInfo::LinkSecStatusUnknown);
    machine->Rules().Clear();
    for (const wchar_t* property : {L"Speed", L"LinkSecStatus", L"FullDuplex"}) {
        SCOPED_TRACE(Narrow(property));
        Spoil(Operation::Get, Effect::WrongType, property); // VT_UNKNOWN is no number
        CAdapter other;
        EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, other)), "0x00000000");
        const CAdapterDynamicInfo& info = *other.m_pAdapterDynamicInfo;
        const std::wstring spoilt = property;
        EXPECT_EQ(info.m_eLinkSpeed, CAdapterDynamicInfo::LinkSpeedNone);
        EXPECT_EQ(info.m_eLinkSecStatus, spoilt == L"LinkSecStatus"
                                             ? CAdapterDynamicInfo::LinkSecStatusUnknown
                                             : CAdapterDynamicInfo::LinkSecStatus7);
        EXPECT_EQ(info.m_eDuplexMode, spoilt == L"FullDuplex" ? CAdapterDynamicInfo::DuplexUnknown
                                                              : CAdapterDynamicInfo::DuplexFull);
        machine->Rules().Clear();
    }
}

TEST_F(AdapterInformationTest, DynamicInfo_FillsANewRecordInOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x00000000");
    ASSERT_NE(adapter.m_pAdapterDynamicInfo, nullptr);
    const CAdapterDynamicInfo& info = *adapter.m_pAdapterDynamicInfo;
    EXPECT_EQ(info.m_eLinkSpeed, CAdapterDynamicInfo::LinkSpeed1Gb);
    EXPECT_EQ(info.m_eLinkSecStatus, CAdapterDynamicInfo::LinkSecStatus7);
    EXPECT_EQ(info.m_eDuplexMode, CAdapterDynamicInfo::DuplexFull);
    EXPECT_EQ(info.m_lAdapterStatus, 1);
    EXPECT_EQ(info.m_lStatusInfo, 3);
    EXPECT_EQ(info.m_lAvailability, 8);
    EXPECT_EQ(info.m_lHardwareStatus, 2);
    EXPECT_EQ(info.m_wsStatus, L"OK");
    const std::vector<std::string> calls = Called();
    EXPECT_THAT(std::vector<std::string>(calls.end() - 9, calls.end()),
                ElementsAre(Fetch(), "Get Speed -> 0x00000000", "Get LinkSecStatus -> 0x00000000",
                            "Get FullDuplex -> 0x00000000", "Get AdapterStatus -> 0x00000000",
                            "Get StatusInfo -> 0x00000000", "Get Availability -> 0x00000000",
                            "Get HardwareStatus -> 0x00000000", "Get Status -> 0x00000000"));
}

TEST_F(AdapterInformationTest, DynamicInfo_TenGigabit_IsTheFastestClass) {
    Set(L"Speed", quillet::simulator::Value::Unsigned(10'000'000'000));
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_eLinkSpeed, CAdapterDynamicInfo::LinkSpeed10Gb);
}

TEST_F(AdapterInformationTest, DynamicInfo_NullProperties_KeepTheDefaults) {
    for (const wchar_t* property : {L"Speed", L"LinkSecStatus", L"FullDuplex", L"Status"}) {
        Set(property, quillet::simulator::Value());
    }
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_eLinkSpeed, CAdapterDynamicInfo::LinkSpeedNone);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_eLinkSecStatus, CAdapterDynamicInfo::LinkSecStatusUnknown);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_eDuplexMode, CAdapterDynamicInfo::DuplexUnknown);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_wsStatus, L"");
}

TEST_F(AdapterInformationTest, DynamicInfo_RecordExists_IsRefusedAndLeftAlone) {
    auto* record = new CAdapterDynamicInfo;
    record->m_lAvailability = 77;
    adapter.m_pAdapterDynamicInfo = record;
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x80004005");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, record);
    EXPECT_EQ(record->m_lAvailability, 77);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(AdapterInformationTest, DynamicInfo_LaterReadFails_RecordStaysWithWhatWasRead) {
    Fail(Operation::Get, WBEM_E_FAILED, L"Availability");
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(PATH, adapter)), "0x80041001");
    ASSERT_NE(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_lStatusInfo, 3);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_lHardwareStatus, 0);
    EXPECT_THAT(Traced(),
                Contains("GetPropertyAsLong -> pInstanceHandle, L_PROP_ETHERNETADAPTER_AVAILABILITY"));
}

TEST_F(AdapterInformationTest, Status_MakesTheRecordAndReadsOnlyTheStatus) {
    EXPECT_EQ(Code(quillet.GetAdapterStatus(PATH, adapter)), "0x00000000");
    ASSERT_NE(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_lAdapterStatus, 1);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_lStatusInfo, 0);
}

TEST_F(AdapterInformationTest, Status_RecordExists_IsBroughtUpToDate) {
    auto* record = new CAdapterDynamicInfo;
    record->m_lAdapterStatus = 9;
    record->m_wsStatus = L"kept";
    adapter.m_pAdapterDynamicInfo = record;
    EXPECT_EQ(Code(quillet.GetAdapterStatus(PATH, adapter)), "0x00000000");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, record);
    EXPECT_EQ(record->m_lAdapterStatus, 1);
    EXPECT_EQ(record->m_wsStatus, L"kept");
}

TEST_F(AdapterInformationTest, Capabilities_KnownCodesSetTheirFlagOnce_OthersNone) {
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x00000000");
    ASSERT_NE(adapter.m_pAdapterCapabilities, nullptr);
    for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
        const bool expected =
            flag.m_lCode == 37 || flag.m_lCode == 46 || flag.m_lCode == 50 || flag.m_lCode == 64;
        EXPECT_EQ(adapter.m_pAdapterCapabilities->*flag.m_pFlag, expected) << flag.m_lCode;
    }
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetAdapterCapabilities", "dwErrorCode: %l",
                                      "  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_POWER_MGMT",
                                      "  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_LINKSEC",
                                      "Exiting CQuillet::GetAdapterCapabilities"));
}

/// The codes in the order of the flags; the team modes are crossed on purpose.
constexpr LONG CODES[] = {41, 43, 44, 46, 50, 3,  36, 4,  5,  12, 10, 9,  8,  68, 53, 32, 33,
                          34, 35, 64, 37, 39, 57, 60, 47, 54, 55, 52, 56, 61, 62, 63, 65, 66};

class CapabilityCodeTest : public AdapterInformationTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(CapabilityCodeTest, Code_SetsTheFlagAtItsPositionAndNoOther) {
    Set(L"Capabilities", quillet::simulator::Value(quillet::simulator::Value::Array{
                             quillet::simulator::Scalar(std::uint64_t(CODES[GetParam()]))}));
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x00000000");
    // The record is 34 one-byte flags, and callers index them by position.
    static_assert(sizeof(CAdapterCapInfo) == std::size(CODES));
    bool flags[std::size(CODES)];
    std::memcpy(flags, adapter.m_pAdapterCapabilities, sizeof flags);
    for (std::size_t position = 0; position < std::size(CODES); ++position) {
        EXPECT_EQ(flags[position], position == GetParam()) << position;
    }
}

INSTANTIATE_TEST_SUITE_P(All, CapabilityCodeTest, testing::Range(std::size_t(0), std::size(CODES)));

TEST_F(AdapterInformationTest, Capabilities_OnlyUnknownCodes_GivesARecordWithoutFlags) {
    Set(L"Capabilities",
        quillet::simulator::Value(quillet::simulator::Value::Array{
            quillet::simulator::Scalar(std::uint64_t(1)), quillet::simulator::Scalar(std::uint64_t(1000))}));
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x00000000");
    ASSERT_NE(adapter.m_pAdapterCapabilities, nullptr);
    for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
        EXPECT_FALSE(adapter.m_pAdapterCapabilities->*flag.m_pFlag) << flag.m_lCode;
    }
}

TEST_F(AdapterInformationTest, Capabilities_SecondCall_IsRefusedAndLeavesTheRecord) {
    ASSERT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x00000000");
    const CAdapterCapInfo* record = adapter.m_pAdapterCapabilities;
    Calls();
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x80004005");
    EXPECT_EQ(adapter.m_pAdapterCapabilities, record);
    EXPECT_TRUE(record->m_bVLAN);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(AdapterInformationTest, Capabilities_NoArray_FailsWithoutARecord) {
    for (const Effect effect : {Effect::NullValue, Effect::WrongType}) {
        Spoil(Operation::Get, effect, L"Capabilities");
        EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x80041001");
        EXPECT_THAT(Traced(), Contains("vAdapterCapabilities.vt - NA"));
        EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
        machine->Rules().Clear();
    }
    Spoil(Operation::Get, Effect::NullArray, L"Capabilities");
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("vAdapterCapabilities.parray - EMPTY"));
    EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
}

TEST_F(AdapterInformationTest, Capabilities_OddArrays_AreReadForWhatTheyHold) {
    Spoil(Operation::Get, Effect::ShiftedArray, L"Capabilities");
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, adapter)), "0x00000000");
    EXPECT_TRUE(adapter.m_pAdapterCapabilities->m_bVLAN);
    machine->Rules().Clear();

    CAdapter unreadable;
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"Capabilities";
    rule.effect = Effect::UnreadableElement;
    rule.element = 1; // code 46
    Inject(rule);
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, unreadable)), "0x00000000");
    EXPECT_FALSE(unreadable.m_pAdapterCapabilities->m_bServerAdapter);
    EXPECT_TRUE(unreadable.m_pAdapterCapabilities->m_bVLAN);
    machine->Rules().Clear();

    CAdapter empty;
    Spoil(Operation::Get, Effect::EmptyArray, L"Capabilities");
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(PATH, empty)), "0x00000000");
    ASSERT_NE(empty.m_pAdapterCapabilities, nullptr);
    EXPECT_FALSE(empty.m_pAdapterCapabilities->m_bVLAN);
}

TEST_F(AdapterInformationTest, PCIInfo_ReadsTheNineTextsInOrder) {
    RecordLocalCalls();
    CPCIInfo info;
    EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(PATH, info)), "0x00000000");
    EXPECT_EQ(info.m_wsControllerID, L"ZC-1");
    EXPECT_EQ(info.m_wsMediaType, L"Copper");
    EXPECT_EQ(info.m_wsNegotiatedLinkWidth, L"x4");
    EXPECT_EQ(info.m_wsPortNumber, L"2");
    EXPECT_EQ(info.m_wsPartNumber, L"P-1");
    EXPECT_EQ(info.m_wsMacAddress, L"02-00-5E-00-00-01");
    EXPECT_EQ(info.m_wsEEPROMVersion, L"1.5");
    EXPECT_EQ(info.m_wsSanMacAddress, L"02-00-5E-00-00-03");
    EXPECT_EQ(info.m_wsPCIDeviceID, L"F112");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetAdapterPCIInfo", "dwErrorCode: %l",
                            "The Value Reurned is empty NVal is Zero",
                            "current MAC address: 02-00-5E-00-00-01 harware MAC address: 02-00-5E-00-00-02",
                            "Exiting CQuillet::GetAdapterPCIInfo"));
    std::vector<std::string> read;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::Get) {
            read.push_back(Narrow(call.target));
        }
    }
    EXPECT_THAT(read, ElementsAre("ControllerID", "MediaType", "BusType", "NegotiatedLinkWidth", "PortNumber",
                                  "PHYDevice", "PartNumber", "NetworkAddresses", "PermanentAddress",
                                  "EEPROMVersion", "SanMacAddress", "PCIDeviceID"));
}

TEST_F(AdapterInformationTest, PCIInfo_OtherBus_HasNoLinkWidth) {
    Set(L"BusType", quillet::simulator::Value::Text(L"PCI"));
    Set(L"PHYDevice", quillet::simulator::Value::Signed(5));
    CPCIInfo info;
    info.m_wsNegotiatedLinkWidth = L"left over";
    EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(PATH, info)), "0x00000000");
    EXPECT_EQ(info.m_wsNegotiatedLinkWidth, L"");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("BusType is not PCI Express - did not get the NegLinkWidth"));
    EXPECT_THAT(trace, Not(Contains("The Value Reurned is empty NVal is Zero")));
}

TEST_F(AdapterInformationTest, PCIInfo_NotExactlyOneAddress_UsesThePermanentOne) {
    for (const std::size_t count : {std::size_t(0), std::size_t(2)}) {
        quillet::simulator::Value::Array addresses(count, quillet::simulator::Scalar(std::wstring(L"x")));
        Set(L"NetworkAddresses", quillet::simulator::Value(std::move(addresses)));
        CPCIInfo info;
        EXPECT_EQ(Code(quillet.GetAdapterPCIInfo(PATH, info)), "0x00000000");
        EXPECT_EQ(info.m_wsMacAddress, L"02-00-5E-00-00-02");
        EXPECT_THAT(Traced(), Contains("ERROR: Invalid program state. Wrong number of MAC addresses."));
    }
}

} // namespace
