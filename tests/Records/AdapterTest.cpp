// Adapters: the order of the capability flags, the numbers of the enumerations, and who deletes which record.
#include <quillet/Adapter.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace {

// A dynamic record that says when it is deleted, for the one record type with a virtual destructor of its
// own.
struct Watched : CAdapterDynamicInfo {
    explicit Watched(int& rDeleted) : m_rDeleted(rDeleted) {}
    ~Watched() override { ++m_rDeleted; }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;
    int& m_rDeleted;
};

// Attaches all four records.
void Fill(CAdapter& rAdapter) {
    rAdapter.m_wsAdapterID = L"path";
    rAdapter.m_wsDisplayName = L"Überschall 10-Gigabit";
    rAdapter.m_wsName = L"name";
    rAdapter.m_wsDeviceID = L"device";
    rAdapter.m_wsSlotID = L"slot";
    rAdapter.m_lBasicInfo = 7;
    rAdapter.m_bTeamed = true;
    rAdapter.m_bSelected = true;
    rAdapter.m_pAdapterCapabilities = new CAdapterCapInfo;
    rAdapter.m_pAdapterCapabilities->m_bVLAN = true;
    rAdapter.m_pAdapterDynamicInfo = new CAdapterDynamicInfo;
    rAdapter.m_pAdapterDynamicInfo->m_wsStatus = L"OK";
    rAdapter.m_pTeamModes = new CTeamWizTeamModes;
    rAdapter.m_pTeamModes->m_vecItems.push_back(new CTeamWizTeamMode);
    rAdapter.m_pPerformanceProfiles = new CPerformanceProfiles;
    rAdapter.m_pPerformanceProfiles->m_vecItems.push_back(new CPerformanceProfile);
}

void ExpectSameTextsAndFlags(const CAdapter& rLeft, const CAdapter& rRight) {
    EXPECT_EQ(rLeft.m_wsAdapterID, rRight.m_wsAdapterID);
    EXPECT_EQ(rLeft.m_wsDisplayName, rRight.m_wsDisplayName);
    EXPECT_EQ(rLeft.m_wsName, rRight.m_wsName);
    EXPECT_EQ(rLeft.m_wsDeviceID, rRight.m_wsDeviceID);
    EXPECT_EQ(rLeft.m_wsSlotID, rRight.m_wsSlotID);
    EXPECT_EQ(rLeft.m_lBasicInfo, rRight.m_lBasicInfo);
    EXPECT_EQ(rLeft.m_bTeamed, rRight.m_bTeamed);
    EXPECT_EQ(rLeft.m_bSelected, rRight.m_bSelected);
}

void ExpectSameRecords(const CAdapter& rLeft, const CAdapter& rRight) {
    EXPECT_EQ(rLeft.m_pAdapterCapabilities, rRight.m_pAdapterCapabilities);
    EXPECT_EQ(rLeft.m_pAdapterDynamicInfo, rRight.m_pAdapterDynamicInfo);
    EXPECT_EQ(rLeft.m_pTeamModes, rRight.m_pTeamModes);
    EXPECT_EQ(rLeft.m_pPerformanceProfiles, rRight.m_pPerformanceProfiles);
}

void ExpectNoRecords(const CAdapter& rAdapter) {
    ExpectSameRecords(rAdapter, CAdapter());
}

TEST(AdapterCapInfo, IsThirtyFourFlagsOfOneByteAllFalse) {
    EXPECT_FALSE(std::is_polymorphic_v<CAdapterCapInfo>);
    EXPECT_EQ(sizeof(CAdapterCapInfo), 34u);
    const CAdapterCapInfo info;
    for (const auto& rFlag : CAdapterCapInfo::Flags()) {
        EXPECT_FALSE(info.*rFlag.m_pFlag) << rFlag.m_lCode;
    }
}

TEST(AdapterCapInfo, Flags_StandInTheOrderOfTheRecordWithTheirCodes) {
    const std::vector<LONG> expected{41, 43, 44, 46, 50, 3,  36, 4,  5,  12, 10, 9,  8,  68, 53, 32, 33,
                                     34, 35, 64, 37, 39, 57, 60, 47, 54, 55, 52, 56, 61, 62, 63, 65, 66};
    const CAdapterCapInfo info;
    const auto& rFlags = CAdapterCapInfo::Flags();
    ASSERT_EQ(rFlags.size(), expected.size());
    for (std::size_t position = 0; position < rFlags.size(); ++position) {
        EXPECT_EQ(rFlags[position].m_lCode, expected[position]);
        const auto offset = reinterpret_cast<const char*>(&(info.*rFlags[position].m_pFlag)) -
                            reinterpret_cast<const char*>(&info);
        EXPECT_EQ(static_cast<std::size_t>(offset), position);
    }
}

TEST(AdapterCapInfo, Flags_NamedByWhatTheyMean) {
    const auto code = [](bool CAdapterCapInfo::*pFlag) {
        for (const auto& rFlag : CAdapterCapInfo::Flags()) {
            if (rFlag.m_pFlag == pFlag) {
                return rFlag.m_lCode;
            }
        }
        return LONG{-1};
    };
    EXPECT_EQ(code(&CAdapterCapInfo::m_bServerAdapter), 46);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bPowerManagement), 50);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamModeOther), 36);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode0), 4);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode1), 5);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode2), 9);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode3), 8);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode4), 10);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode5), 12);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bTeamMode6), 68);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bSpeed10Mb), 32);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bSpeed100Mb), 33);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bSpeed1Gb), 34);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bSpeed10Gb), 35);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bLinkSec), 64);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bVLAN), 37);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability41), 41);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability43), 43);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability44), 44);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability3), 3);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability53), 53);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability39), 39);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability57), 57);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability60), 60);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability47), 47);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability54), 54);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability55), 55);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability52), 52);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability56), 56);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability61), 61);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability62), 62);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability63), 63);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability65), 65);
    EXPECT_EQ(code(&CAdapterCapInfo::m_bCapability66), 66);
}

TEST(AdapterCapInfo, Copy_CopiesEveryFlag) {
    for (const auto& rFlag : CAdapterCapInfo::Flags()) {
        CAdapterCapInfo info;
        info.*rFlag.m_pFlag = true;
        const std::unique_ptr<CAdapterCapInfo> pCopy(info.Copy());
        for (const auto& rOther : CAdapterCapInfo::Flags()) {
            EXPECT_EQ(pCopy.get()->*rOther.m_pFlag, rOther.m_lCode == rFlag.m_lCode);
        }
    }
}

TEST(AdapterDynamicInfo, StartsUnknown) {
    const CAdapterDynamicInfo info;
    EXPECT_TRUE(std::has_virtual_destructor_v<CAdapterDynamicInfo>);
    EXPECT_EQ(info.m_eLinkSpeed, 0);
    EXPECT_EQ(info.m_eDuplexMode, 0);
    EXPECT_EQ(info.m_eLinkSecStatus, 1);
    EXPECT_EQ(info.m_lAdapterStatus, 0);
    EXPECT_EQ(info.m_lStatusInfo, 0);
    EXPECT_EQ(info.m_lAvailability, 0);
    EXPECT_EQ(info.m_lHardwareStatus, 0);
    EXPECT_EQ(info.m_wsStatus, L"");
}

TEST(AdapterDynamicInfo, CopyAssignmentAndCopy_TakeEveryMember) {
    CAdapterDynamicInfo info;
    info.m_eLinkSpeed = CAdapterDynamicInfo::LinkSpeed1Gb;
    info.m_eDuplexMode = CAdapterDynamicInfo::DuplexFull;
    info.m_eLinkSecStatus = CAdapterDynamicInfo::LinkSecStatus9;
    info.m_lAdapterStatus = 1;
    info.m_lStatusInfo = 2;
    info.m_lAvailability = 3;
    info.m_lHardwareStatus = 4;
    info.m_wsStatus = L"OK";
    const CAdapterDynamicInfo copy(info);
    CAdapterDynamicInfo assigned;
    assigned = info;
    const std::unique_ptr<CAdapterDynamicInfo> pCopy(info.Copy());
    for (const CAdapterDynamicInfo* p : {&copy, static_cast<const CAdapterDynamicInfo*>(&assigned),
                                         static_cast<const CAdapterDynamicInfo*>(pCopy.get())}) {
        EXPECT_EQ(p->m_eLinkSpeed, 4);
        EXPECT_EQ(p->m_eDuplexMode, 2);
        EXPECT_EQ(p->m_eLinkSecStatus, 9);
        EXPECT_EQ(p->m_lAdapterStatus, 1);
        EXPECT_EQ(p->m_lStatusInfo, 2);
        EXPECT_EQ(p->m_lAvailability, 3);
        EXPECT_EQ(p->m_lHardwareStatus, 4);
        EXPECT_EQ(p->m_wsStatus, L"OK");
    }
}

TEST(Adapter, StartsEmpty) {
    const CAdapter adapter;
    EXPECT_FALSE(std::is_polymorphic_v<CAdapter>);
    EXPECT_EQ(adapter.m_wsAdapterID, L"");
    EXPECT_EQ(adapter.m_wsDisplayName, L"");
    EXPECT_EQ(adapter.m_wsName, L"");
    EXPECT_EQ(adapter.m_wsDeviceID, L"");
    EXPECT_EQ(adapter.m_wsSlotID, L"");
    EXPECT_EQ(adapter.m_lBasicInfo, 0);
    EXPECT_EQ(adapter.m_pAdapterCapabilities, nullptr);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, nullptr);
    EXPECT_EQ(adapter.m_pTeamModes, nullptr);
    EXPECT_EQ(adapter.m_pPerformanceProfiles, nullptr);
    EXPECT_FALSE(adapter.m_bTeamed);
    EXPECT_FALSE(adapter.m_bSelected);
}

TEST(Adapter, MembersStandInOrder) {
    const CAdapter adapter;
    const std::vector<const void*> members{&adapter.m_wsAdapterID,
                                           &adapter.m_wsDisplayName,
                                           &adapter.m_wsName,
                                           &adapter.m_wsDeviceID,
                                           &adapter.m_wsSlotID,
                                           &adapter.m_lBasicInfo,
                                           &adapter.m_pAdapterCapabilities,
                                           &adapter.m_pAdapterDynamicInfo,
                                           &adapter.m_pTeamModes,
                                           &adapter.m_pPerformanceProfiles,
                                           &adapter.m_bTeamed,
                                           &adapter.m_bSelected};
    EXPECT_EQ(members.front(), &adapter);
    for (std::size_t index = 1; index < members.size(); ++index) {
        EXPECT_LT(members[index - 1], members[index]) << index;
    }
}

TEST(Adapter, Destructor_DeletesItsRecords) {
    int deleted = 0;
    {
        CAdapter adapter;
        Fill(adapter);
        delete adapter.m_pAdapterDynamicInfo;
        adapter.m_pAdapterDynamicInfo = new Watched(deleted);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, CopyConstructor_SharesTheRecordsAndDoesNotDeleteThem) {
    int deleted = 0;
    {
        CAdapter source;
        Fill(source);
        delete source.m_pAdapterDynamicInfo;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        {
            const CAdapter view(source);
            const CAdapter viewOfView(view);
            ExpectSameTextsAndFlags(view, source);
            ExpectSameRecords(view, source);
            ExpectSameRecords(viewOfView, source);
        }
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, View_OutlivingItsSource_DeletesNothing) {
    int deleted = 0;
    auto source = std::make_unique<CAdapter>();
    source->m_pAdapterDynamicInfo = new Watched(deleted);
    auto view = std::make_unique<CAdapter>(*source);
    source.reset();
    EXPECT_EQ(deleted, 1);
    view.reset();
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, View_OwnsARecordThatIsAttachedToItLater) {
    int deleted = 0;
    CAdapter source;
    source.m_pAdapterCapabilities = new CAdapterCapInfo;
    {
        CAdapter view(source);
        view.m_pAdapterDynamicInfo = new Watched(deleted);
        EXPECT_EQ(source.m_pAdapterDynamicInfo, nullptr);
    }
    EXPECT_EQ(deleted, 1);
    EXPECT_NE(source.m_pAdapterCapabilities, nullptr);
}

TEST(Adapter, View_OwnsARecordThatReplacesASharedOne) {
    int deletedOfSource = 0;
    int deletedOfView = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deletedOfSource);
        {
            CAdapter view(source);
            view.m_pAdapterDynamicInfo = new Watched(deletedOfView);
        }
        EXPECT_EQ(deletedOfView, 1);
        EXPECT_EQ(deletedOfSource, 0);
    }
    EXPECT_EQ(deletedOfSource, 1);
}

TEST(Adapter, View_WithoutTheSharedRecord_LeavesItToTheSource) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        {
            CAdapter view(source);
            view.m_pAdapterDynamicInfo = nullptr;
        }
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, Assignment_DeletesOwnRecordsAndViewsTheOthers) {
    int deletedOfSource = 0;
    int deletedOfTarget = 0;
    {
        CAdapter source;
        Fill(source);
        delete source.m_pAdapterDynamicInfo;
        source.m_pAdapterDynamicInfo = new Watched(deletedOfSource);
        {
            CAdapter target;
            Fill(target);
            delete target.m_pAdapterDynamicInfo;
            target.m_pAdapterDynamicInfo = new Watched(deletedOfTarget);
            target.m_wsName = L"another";
            target = source;
            EXPECT_EQ(deletedOfTarget, 1);
            ExpectSameTextsAndFlags(target, source);
            ExpectSameRecords(target, source);
        }
        EXPECT_EQ(deletedOfSource, 0);
    }
    EXPECT_EQ(deletedOfSource, 1);
}

TEST(Adapter, Assignment_OfAnEmptyAdapter_DeletesTheRecords) {
    int deleted = 0;
    CAdapter adapter;
    Fill(adapter);
    delete adapter.m_pAdapterDynamicInfo;
    adapter.m_pAdapterDynamicInfo = new Watched(deleted);
    const CAdapter empty;
    adapter = empty;
    EXPECT_EQ(deleted, 1);
    ExpectNoRecords(adapter);
}

TEST(Adapter, Assignment_ToItselfOrFromItsOwnView_KeepsTheRecords) {
    int deleted = 0;
    {
        CAdapter adapter;
        adapter.m_pAdapterDynamicInfo = new Watched(deleted);
        const CAdapter& rSame = adapter;
        adapter = rSame;
        {
            const CAdapter view(adapter);
            adapter = view;
        }
        EXPECT_EQ(deleted, 0);
        ASSERT_NE(adapter.m_pAdapterDynamicInfo, nullptr);
        EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_wsStatus, L"");
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, Move_TakesTheOwnershipAlong) {
    int deleted = 0;
    {
        std::vector<CAdapter> adapters;
        for (int count = 0; count < 5; ++count) {
            CAdapter adapter;
            Fill(adapter);
            delete adapter.m_pAdapterDynamicInfo;
            adapter.m_pAdapterDynamicInfo = new Watched(deleted);
            adapters.push_back(std::move(adapter));
        }
        EXPECT_EQ(deleted, 0);
        for (const CAdapter& rAdapter : adapters) {
            EXPECT_EQ(rAdapter.m_wsName, L"name");
            EXPECT_EQ(rAdapter.m_lBasicInfo, 7);
            EXPECT_TRUE(rAdapter.m_bTeamed);
            EXPECT_TRUE(rAdapter.m_bSelected);
            EXPECT_TRUE(rAdapter.m_pAdapterCapabilities->m_bVLAN);
            EXPECT_EQ(rAdapter.m_pTeamModes->m_vecItems.size(), 1u);
            EXPECT_EQ(rAdapter.m_pPerformanceProfiles->m_vecItems.size(), 1u);
        }
    }
    EXPECT_EQ(deleted, 5);
}

TEST(Adapter, Move_OfAView_StaysAView) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        {
            CAdapter view(source);
            const CAdapter moved(std::move(view));
            EXPECT_EQ(moved.m_pAdapterDynamicInfo, source.m_pAdapterDynamicInfo);
        }
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, Move_OfAViewToItsSource_KeepsTheRecords) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        CAdapter view(source);
        source = std::move(view);
        EXPECT_EQ(deleted, 0);
        EXPECT_NE(source.m_pAdapterDynamicInfo, nullptr);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, Move_OfASourceToItsView_MakesTheViewTheOwner) {
    int deleted = 0;
    {
        auto source = std::make_unique<CAdapter>();
        source->m_pAdapterDynamicInfo = new Watched(deleted);
        CAdapter view(*source);
        view = std::move(*source);
        source.reset();
        EXPECT_EQ(deleted, 0);
        EXPECT_NE(view.m_pAdapterDynamicInfo, nullptr);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, Move_DeletesWhatTheTargetOwned) {
    int deleted = 0;
    CAdapter target;
    target.m_pAdapterDynamicInfo = new Watched(deleted);
    target = CAdapter();
    EXPECT_EQ(deleted, 1);
    ExpectNoRecords(target);
}

TEST(Adapter, Copy_HasRecordsOfItsOwn) {
    auto source = std::make_unique<CAdapter>();
    Fill(*source);
    const std::unique_ptr<CAdapter> pCopy(source->Copy());
    ExpectSameTextsAndFlags(*pCopy, *source);
    EXPECT_NE(pCopy->m_pAdapterCapabilities, source->m_pAdapterCapabilities);
    EXPECT_NE(pCopy->m_pAdapterDynamicInfo, source->m_pAdapterDynamicInfo);
    EXPECT_NE(pCopy->m_pTeamModes, source->m_pTeamModes);
    EXPECT_NE(pCopy->m_pPerformanceProfiles, source->m_pPerformanceProfiles);
    source.reset();
    EXPECT_TRUE(pCopy->m_pAdapterCapabilities->m_bVLAN);
    EXPECT_EQ(pCopy->m_pAdapterDynamicInfo->m_wsStatus, L"OK");
    EXPECT_EQ(pCopy->m_pTeamModes->m_vecItems.size(), 1u);
    EXPECT_EQ(pCopy->m_pPerformanceProfiles->m_vecItems.size(), 1u);
}

TEST(Adapter, Copy_OfAView_OwnsItsRecordsToo) {
    CAdapter source;
    Fill(source);
    const CAdapter view(source);
    const std::unique_ptr<CAdapter> pCopy(view.Copy());
    EXPECT_NE(pCopy->m_pAdapterCapabilities, source.m_pAdapterCapabilities);
    EXPECT_EQ(pCopy->m_pAdapterDynamicInfo->m_wsStatus, L"OK");
}

TEST(Adapter, Copy_WithoutRecords_HasNone) {
    const CAdapter source;
    const std::unique_ptr<CAdapter> pCopy(source.Copy());
    ExpectNoRecords(*pCopy);
}

TEST(Adapters, EveryCopyOfTheCollectionOwnsItsRecords) {
    auto source = std::make_unique<CAdapters>();
    source->m_vecItems.push_back(new CAdapter);
    Fill(*source->m_vecItems[0]);
    const CAdapters copy(*source);
    CAdapters assigned;
    assigned = *source;
    const std::unique_ptr<CAdapters> pCopy(source->Copy());
    source.reset();
    for (const CAdapters* p :
         {&copy, static_cast<const CAdapters*>(&assigned), static_cast<const CAdapters*>(pCopy.get())}) {
        EXPECT_EQ(p->m_vecItems.at(0)->m_pAdapterDynamicInfo->m_wsStatus, L"OK");
        EXPECT_TRUE(p->m_vecItems.at(0)->m_pAdapterCapabilities->m_bVLAN);
    }
}

TEST(PCIInfo, IsNineTextsThatAreCopied) {
    EXPECT_FALSE(std::is_polymorphic_v<CPCIInfo>);
    EXPECT_EQ(sizeof(CPCIInfo), 9 * sizeof(std::wstring));
    CPCIInfo info;
    const std::vector<std::wstring CPCIInfo::*> members{
        &CPCIInfo::m_wsControllerID,  &CPCIInfo::m_wsMediaType,     &CPCIInfo::m_wsNegotiatedLinkWidth,
        &CPCIInfo::m_wsPortNumber,    &CPCIInfo::m_wsPartNumber,    &CPCIInfo::m_wsMacAddress,
        &CPCIInfo::m_wsEEPROMVersion, &CPCIInfo::m_wsSanMacAddress, &CPCIInfo::m_wsPCIDeviceID};
    ASSERT_EQ(members.size(), 9u);
    for (std::size_t index = 0; index < members.size(); ++index) {
        std::wstring& rText = info.*members[index];
        EXPECT_EQ(rText, L"");
        EXPECT_EQ(static_cast<const void*>(&rText), reinterpret_cast<const std::wstring*>(&info) + index);
        rText = std::to_wstring(index);
    }
    const CPCIInfo copy(info);
    CPCIInfo assigned;
    assigned = info;
    for (std::size_t index = 0; index < members.size(); ++index) {
        EXPECT_EQ(copy.*members[index], std::to_wstring(index));
        EXPECT_EQ(assigned.*members[index], std::to_wstring(index));
    }
}

TEST(AdapterPort, CopiesAllThreeMembers) {
    CAdapterPort port;
    EXPECT_EQ(port.m_wsAdapterID, L"");
    EXPECT_FALSE(port.m_bTeamed);
    EXPECT_EQ(port.m_wsTeamID, L"");
    port.m_wsAdapterID = L"adapter";
    port.m_bTeamed = true;
    port.m_wsTeamID = L"team";
    const CAdapterPort copy(port);
    CAdapterPort assigned;
    assigned = port;
    for (const CAdapterPort* p : {&copy, static_cast<const CAdapterPort*>(&assigned)}) {
        EXPECT_EQ(p->m_wsAdapterID, L"adapter");
        EXPECT_TRUE(p->m_bTeamed);
        EXPECT_EQ(p->m_wsTeamID, L"team");
    }
}

TEST(DataCenter, StartsAtZero) {
    EXPECT_EQ(CDataCenter().m_eDCBStatus, 0);
}

} // namespace
