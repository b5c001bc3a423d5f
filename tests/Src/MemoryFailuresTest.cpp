// Records that cannot be allocated. The operations ask for their records without exceptions, and this program
// makes such an allocation fail.
#include "Boot/BootMachine.h"

#include <cstdlib>
#include <new>

namespace {

/// Counts down the allocations that may fail without an exception and have this size (0: any, for the
/// platform makes its own that way, too); the one that finds it at 1 fails.
int g_failAt = 0;
std::size_t g_size = 0;

bool Fails(std::size_t size) noexcept {
    return g_failAt > 0 && (g_size == 0 || size == g_size) && --g_failAt == 0;
}

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Fails(size) ? nullptr : ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Fails(size) ? nullptr : ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using testing::Contains;

class MemoryFailuresTest : public ProviderTest {
  protected:
    void SetUp() override {
        // A memory checker puts its own allocation in the place of this program's.
        g_failAt = 1;
        void* const probe = ::operator new(1, std::nothrow);
        g_failAt = 0;
        if (probe != nullptr) {
            ::operator delete(probe);
            GTEST_SKIP() << "allocations cannot be made to fail here";
        }
        UseText(R"(
            instance of Zorel_NetService { Name = "ZorelNetService"; };
            instance of Zorel_PhysicalEthernetAdapter as $A {
                DeviceID = "{A}"; Name = "a"; Capabilities = {3}; OriginalDisplayName = "a"; SlotID = "1"; AdapterStatus = 1; };
            instance of Zorel_PhysicalEthernetAdapter as $B {
                DeviceID = "{B}"; Name = "b"; OriginalDisplayName = "b"; SlotID = "1"; AdapterStatus = 1; };
            instance of Zorel_AdapterSettingString { Caption = "S"; ParentId = "{A}"; ParentType = "NIC"; };
            instance of Zorel_AdapterSettingString { Caption = "T"; ParentId = "{A}"; ParentType = "NIC"; };
            instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; };
            instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
            instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };)");
        Connect();
    }
    void TearDown() override {
        g_failAt = 0;
        g_size = 0;
    }

    static constexpr const wchar_t* ADAPTER = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";

    /// The second record of a list cannot be made: the operation fails, says why, and keeps the first.
    template <class Record, class Records, class Operation>
    void ExpectFirstOnly(const Records& records, Operation operation, const char* line) {
        g_failAt = 2;
        g_size = sizeof(Record);
        EXPECT_EQ(Code(operation()), "0x80004005");
        EXPECT_EQ(g_failAt, 0) << "the fault was never met";
        EXPECT_EQ(records.m_vecItems.size(), 1u);
        EXPECT_THAT(Traced(), Contains(line));
    }
};

TEST_F(MemoryFailuresTest, EnumerateAdapters_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CAdapters adapters;
    ExpectFirstOnly<CAdapter>(
        adapters, [&] { return quillet.EnumerateAdapters(adapters); }, "pAdapter == NULL");
}

TEST_F(MemoryFailuresTest, Vlans_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    UseText(R"(
        instance of Zorel_NetService { Name = "ZorelNetService"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
        instance of Zorel_802dot1QVLANService { Name = "{A}"; };
        instance of Zorel_VLAN { Name = "{V1}"; Caption = "a - VLAN : 1"; ParentID = "{A}"; VLANName = "1"; VLANNumber = 1;
            StatusInfo = 3; };
        instance of Zorel_VLAN { Name = "{V2}"; Caption = "a - VLAN : 2"; ParentID = "{A}"; VLANName = "2"; VLANNumber = 2;
            StatusInfo = 3; };)");
    Connect();
    CVLANs vlans;
    ExpectFirstOnly<CVLAN>(
        vlans, [&] { return quillet.EnumerateVLANsOfAdapter(ADAPTER, vlans); }, "(pVLANInfo == NULL)");
}

TEST_F(MemoryFailuresTest, Ports_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CAdapterPorts ports;
    ExpectFirstOnly<CAdapterPort>(
        ports, [&] { return quillet.EnumerateOtherPortOfAdapter(ADAPTER, ports); },
        "Mem alloc problem in CAdapterPort *pAdapterPort");
}

TEST_F(MemoryFailuresTest, AdapterInformation_NoMemoryForTheRecord_FailsAndLeavesTheAdapterWithoutOne) {
    const std::wstring path = ADAPTER;
    CAdapter adapter;
    g_size = sizeof(CAdapterDynamicInfo);
    g_failAt = 1;
    EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(path, adapter)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_THAT(Traced(), Contains("rAdapter.m_pAdapterDynamicInfo == NULL"));
    g_failAt = 1;
    EXPECT_EQ(Code(quillet.GetAdapterStatus(path, adapter)), "0x80004005");
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, nullptr);
    g_size = sizeof(CAdapterCapInfo);
    g_failAt = 1;
    EXPECT_EQ(Code(quillet.GetAdapterCapabilities(path, adapter)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
    EXPECT_THAT(Traced(), Contains("rAdapter.m_pAdapterCapabilities == NULL"));
}

TEST_F(MemoryFailuresTest, Settings_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CSettings settings;
    g_failAt = 2;
    g_size = sizeof(CSettingString);
    EXPECT_EQ(Code(quillet.GetAdapterSettings(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")", settings)),
              "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(settings.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pSetting == NULL"));
}

class TeamMemoryFailuresTest : public MemoryFailuresTest {
  protected:
    void SetUp() override {
        MemoryFailuresTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        UseText(R"(
            instance of Zorel_NetService { Name = "ZorelNetService"; };
            instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; Capabilities = {4, 5}; };
            instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; Capabilities = {4, 5}; };
            instance of Zorel_TeamOfAdapters as $T {
                Name = "{T}"; Caption = "t"; TeamingMode = 0; MFOEnabled = FALSE; LinksecEnabled = FALSE; };
            instance of Zorel_TeamOfAdapters {
                Name = "{U}"; Caption = "u"; TeamingMode = 0; MFOEnabled = FALSE; LinksecEnabled = FALSE; };
            instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
            instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };)");
        Connect();
    }
    const std::wstring A = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
};

TEST_F(TeamMemoryFailuresTest, Teams_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CTeams teams;
    g_failAt = 2;
    g_size = sizeof(CTeam);
    EXPECT_EQ(Code(quillet.EnumerateTeams(teams)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(teams.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pTeam == NULL"));
}

TEST_F(TeamMemoryFailuresTest, Members_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CTeamedAdapters members;
    g_failAt = 2;
    g_size = sizeof(CTeamedAdapter);
    EXPECT_EQ(Code(quillet.GetMemberAdapters(LR"(Zorel_TeamOfAdapters.Name="{T}")", members)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(members.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pTeamedAdapter == NULL"));
}

TEST_F(TeamMemoryFailuresTest, TeamModes_NoMemoryForARecord_FailsWithItsLine) {
    CAdapter adapter;
    g_failAt = 1;
    g_size = sizeof(CTeamWizTeamModes);
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(A, adapter)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(adapter.m_pTeamModes, nullptr);
    EXPECT_THAT(Traced(), Contains("rAdapter.m_pTeamModes == NULL"));
    g_failAt = 2;
    g_size = sizeof(CTeamWizTeamMode);
    EXPECT_EQ(Code(quillet.GetAdapterTeamModes(A, adapter)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    ASSERT_NE(adapter.m_pTeamModes, nullptr);
    EXPECT_EQ(adapter.m_pTeamModes->m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("(NULL == pTeamMode)"));
}

TEST_F(TeamMemoryFailuresTest, CompatibleModes_NoMemoryForARecord_FailsWithItsLine) {
    CAdapters adapters;
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems[0]->m_wsAdapterID = A;
    CTeamWizTeamModes modes;
    // The adapter's own two records come first.
    g_failAt = 4;
    g_size = sizeof(CTeamWizTeamMode);
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, true)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(modes.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("(NULL == pTeamModeComp)"));
}

class BootMemoryFailuresTest : public MemoryFailuresTest {
  protected:
    void SetUp() override {
        MemoryFailuresTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        UseText(R"(
            instance of Zorel_NetService { Name = "ZorelNetService"; };
            instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
            instance of Zorel_DiagTest as $Link { Name = "Link test"; TestId = 4; Grouped = FALSE; };
            instance of Zorel_DiagTest as $Call { Name = "Connection test"; TestId = 6; Grouped = FALSE; };
            instance of Zorel_DiagTestForAdapter { Antecedent = $Link; Dependent = $A; };
            instance of Zorel_DiagTestForAdapter { Antecedent = $Call; Dependent = $A; };
            instance of Zorel_BootAgent { Name = "{A}"; FlashImage = {1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17}; };
            instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{A}"; AdapterName = "a"; iSCSI_Status = 1; };
            instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{B}"; AdapterName = "b"; iSCSI_Status = 0; };)");
        Connect();
    }
};

TEST_F(BootMemoryFailuresTest, Diagnostics_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CDiagTests tests;
    g_failAt = 2;
    g_size = sizeof(CDiagTest);
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")", tests)),
              "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(tests.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("(NULL == pDiagTest)"));
}

TEST_F(BootMemoryFailuresTest, ReadFlash_NoMemoryForTheBuffer_HandsOutNone) {
    LONG size = 0;
    unsigned char* data = nullptr;
    g_failAt = 1;
    g_size = 17; // no record has this size
    EXPECT_EQ(Code(quillet.ReadBootAgentFlash(LR"(Zorel_BootAgent.Name="{A}")", size, &data)), "0x8007000E");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(data, nullptr);
    EXPECT_THAT(Traced(), Contains("(!pbyBuffer)"));
}

TEST_F(BootMemoryFailuresTest, ISCSIAdapters_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    CISCSIAdapters adapters;
    g_failAt = 2;
    g_size = sizeof(CISCSIAdapter);
    EXPECT_EQ(Code(quillet.EnumerateISCSIAdapters(adapters)), "0x80004005");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_EQ(adapters.m_vecItems.size(), 1u);
    EXPECT_THAT(Traced(), Contains("pAdapter == NULL"));
}

TEST_F(BootMemoryFailuresTest, ImageFile_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    boot::Bytes file = boot::NewImage();
    CSettings images;
    int code = 0;
    ExpectFirstOnly<CSettingString>(
        images,
        [&] {
            return quillet.ReadBootAgentImageFile(LR"(Zorel_BootAgent.Name="{A}")",
                                                  static_cast<LONG>(file.size()), file.data(), images, code);
        },
        "pSetting == NULL");
}

TEST_F(MemoryFailuresTest, Profiles_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    UseText(R"(
        instance of Zorel_NetService { Name = "ZorelNetService"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
        instance of Zorel_AdapterSettingEnum {
            Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
            PossibleValues = {"1", "2"}; DescriptionMap = {"one", "two"}; };)");
    Connect();
    CPerformanceProfiles profiles;
    ExpectFirstOnly<CPerformanceProfile>(
        profiles, [&] { return quillet.GetAdapterProfiles(ADAPTER, profiles); }, "pProfile == NULL");
}

TEST_F(MemoryFailuresTest, SettingsOfMembers_NoMemoryForTheSecondRecord_KeepsTheFirst) {
    UseText(R"(
        instance of Zorel_NetService { Name = "ZorelNetService"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
        instance of Zorel_AdapterSettingEnum {
            Caption = "*RSS"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
            PossibleValues = {"0"}; DescriptionMap = {"off"}; };
        instance of Zorel_AdapterSettingEnum {
            Caption = "RssMode"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
            PossibleValues = {"0"}; DescriptionMap = {"off"}; };)");
    Connect();
    CSettings settings;
    bool onAll = true;
    ExpectFirstOnly<CSettingEnum>(
        settings,
        [&] {
            return QuilletTestAccess::GetSettingOnTeamOrAdapter(quillet, {ADAPTER}, settings, onAll,
                                                                SettingName::RssMode);
        },
        "pSetting == NULL");
    EXPECT_FALSE(onAll);
}

TEST_F(MemoryFailuresTest, InitQuillet_NoMemoryForThePrivileges_IsThatCodeAndSendsNothing) {
    quillet.UninitQuillet();
    Calls();
    g_failAt = 1;
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041006");
    EXPECT_EQ(g_failAt, 0) << "the fault was never met";
    EXPECT_THAT(Called(), testing::IsEmpty());
}

} // namespace
