// Adapters and their records: the order of the capability flags, defaults, numbers and copies.
#include <quillet/Adapter.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace {

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
