// Teams, VLANs, diagnostic tests, iSCSI adapters and performance profiles: defaults, numbers and copies.
#include <quillet/Records.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

TEST(Team, StartsEmptyAndCopiesEveryField) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CTeam>);
    CTeam team;
    EXPECT_EQ(team.m_wsTeamID + team.m_wsName + team.m_wsCaption + team.m_wsTeamMacAddress, L"");
    EXPECT_EQ(team.m_eTeamMode, 0);
    EXPECT_FALSE(team.m_bMFOEnabled || team.m_bLinkSecEnabled || team.m_bBoundToHyperV);
    team.m_wsTeamID = L"path";
    team.m_wsName = L"name";
    team.m_wsCaption = L"caption";
    team.m_eTeamMode = CTeam::TeamMode5;
    team.m_wsTeamMacAddress = L"02:00:00:00:00:01";
    team.m_bMFOEnabled = true;
    team.m_bLinkSecEnabled = true;
    team.m_bBoundToHyperV = true;
    const CTeam copy(team);
    CTeam assigned;
    assigned = team;
    for (const CTeam* p : {&copy, static_cast<const CTeam*>(&assigned)}) {
        EXPECT_EQ(p->m_wsTeamID, L"path");
        EXPECT_EQ(p->m_wsName, L"name");
        EXPECT_EQ(p->m_wsCaption, L"caption");
        EXPECT_EQ(p->m_eTeamMode, 5);
        EXPECT_EQ(p->m_wsTeamMacAddress, L"02:00:00:00:00:01");
        EXPECT_TRUE(p->m_bMFOEnabled && p->m_bLinkSecEnabled && p->m_bBoundToHyperV);
    }
}

TEST(Team, EnumerationsCarryAnyNumberOfTheProvider) {
    EXPECT_EQ(CTeam::TeamMode0, 0);
    EXPECT_EQ(CTeam::TeamMode6, 6);
    EXPECT_EQ(CTeam::TeamModeUnknown, 255);
    EXPECT_EQ(static_cast<CTeam::TeamStatus>(-123456), -123456);
    EXPECT_EQ(static_cast<CTeam::TeamAutoDetectStatus>(2147483647), 2147483647);
    EXPECT_EQ(static_cast<CTeam::SwitchCmd>(77), 77);
    EXPECT_EQ(static_cast<CTeam::SwitchCmdStatus>(78), 78);
    EXPECT_EQ(static_cast<CVLAN::VlanStatus>(-9), -9);
    EXPECT_EQ(static_cast<CISCSIAdapter::iSCSIStatus>(4711), 4711);
    EXPECT_EQ(static_cast<ePERFORMANCE_PROFILE>(65535), 65535);
}

TEST(TeamedAdapter, DisplayNameStartsNotAvailable) {
    const CTeamedAdapter member;
    EXPECT_TRUE(std::has_virtual_destructor_v<CTeamedAdapter>);
    EXPECT_EQ(member.m_wsDisplayName, L"Not Available");
    EXPECT_EQ(member.m_wsAdapterID + member.m_wsDeviceID + member.m_wsTeamCaption + member.m_wsTeamID +
                  member.m_wsCaption,
              L"");
    EXPECT_EQ(member.m_lMemberRole, 0);
    EXPECT_EQ(member.m_lMemberStatus, 0);
}

TEST(TeamedAdapter, StatusNumbers) {
    EXPECT_EQ(CTeamedAdapter::MemberStatusUnknown, 0);
    EXPECT_EQ(CTeamedAdapter::MemberStatusActive, 1);
    EXPECT_EQ(CTeamedAdapter::MemberStatusInactive, 3);
    EXPECT_EQ(CTeamedAdapter::MemberStatusMissing, 4);
}

TEST(TeamedAdapter, CopyAssignmentAndCopy_TakeEveryField) {
    CTeamedAdapter member;
    member.m_wsDisplayName = L"display";
    member.m_wsAdapterID = L"adapter";
    member.m_wsDeviceID = L"device";
    member.m_lMemberRole = 1;
    member.m_lMemberStatus = 3;
    member.m_wsTeamCaption = L"team caption";
    member.m_wsTeamID = L"team";
    member.m_wsCaption = L"caption";
    const CTeamedAdapter copy(member);
    CTeamedAdapter assigned;
    assigned = member;
    const std::unique_ptr<const CTeamedAdapter> pCopy(member.Copy());
    for (const CTeamedAdapter* p : {&copy, static_cast<const CTeamedAdapter*>(&assigned), pCopy.get()}) {
        EXPECT_EQ(p->m_wsDisplayName, L"display");
        EXPECT_EQ(p->m_wsAdapterID, L"adapter");
        EXPECT_EQ(p->m_wsDeviceID, L"device");
        EXPECT_EQ(p->m_lMemberRole, 1);
        EXPECT_EQ(p->m_lMemberStatus, 3);
        EXPECT_EQ(p->m_wsTeamCaption, L"team caption");
        EXPECT_EQ(p->m_wsTeamID, L"team");
        EXPECT_EQ(p->m_wsCaption, L"caption");
    }
}

// A record that a caller derived from ours, in a collection of ours.
template <class TRecord>
struct Derived : TRecord {
    Derived* Copy() const override { return new Derived(*this); }
};

template <class TCollection>
struct DerivedElements : testing::Test {};
using DerivableCollections = testing::Types<CTeamedAdapters, CTeamWizTeamModes, CPerformanceProfiles>;
TYPED_TEST_SUITE(DerivedElements, DerivableCollections);

TYPED_TEST(DerivedElements, KeepTheirTypeInACopy) {
    using Record = std::remove_pointer_t<typename decltype(TypeParam::m_vecItems)::value_type>;
    TypeParam source;
    source.m_vecItems.push_back(new Derived<Record>);
    const std::unique_ptr<TypeParam> pCopy(source.Copy());
    EXPECT_NE(dynamic_cast<Derived<Record>*>(pCopy->m_vecItems.at(0)), nullptr);
}

TEST(TeamWizAdapter, AllTextsStartNotAvailable) {
    CTeamWizAdapter adapter;
    EXPECT_TRUE(std::has_virtual_destructor_v<CTeamWizAdapter>);
    EXPECT_EQ(adapter.m_wsAdapterID, L"Not Available");
    EXPECT_EQ(adapter.m_wsDisplayName, L"Not Available");
    EXPECT_EQ(adapter.m_wsDeviceID, L"Not Available");
    EXPECT_EQ(adapter.m_wsSlotID, L"Not Available");
    EXPECT_EQ(adapter.m_lAdapterStatus, 0);
    adapter.m_wsSlotID = L"slot 3";
    adapter.m_lAdapterStatus = 5;
    CTeamWizAdapter assigned;
    assigned = CTeamWizAdapter(adapter);
    EXPECT_EQ(assigned.m_wsSlotID, L"slot 3");
    EXPECT_EQ(assigned.m_lAdapterStatus, 5);
}

TEST(TeamWizTeamMode, CopiesModeAndText) {
    CTeamWizTeamMode mode;
    EXPECT_TRUE(std::has_virtual_destructor_v<CTeamWizTeamMode>);
    EXPECT_EQ(mode.m_lTeamMode, 0);
    EXPECT_EQ(mode.m_wsDescription, L"");
    mode.m_lTeamMode = CTeam::TeamMode4;
    mode.m_wsDescription = L"four";
    const std::unique_ptr<CTeamWizTeamMode> pCopy(mode.Copy());
    CTeamWizTeamMode assigned;
    assigned = CTeamWizTeamMode(mode);
    EXPECT_EQ(pCopy->m_lTeamMode, 4);
    EXPECT_EQ(pCopy->m_wsDescription, L"four");
    EXPECT_EQ(assigned.m_lTeamMode, 4);
    EXPECT_EQ(assigned.m_wsDescription, L"four");
}

TEST(VLAN, StartsEmptyAndCopiesEveryField) {
    EXPECT_FALSE(std::is_polymorphic_v<CVLAN>);
    CVLAN vlan;
    EXPECT_EQ(vlan.m_wsName + vlan.m_wsCaption + vlan.m_wsParentID + vlan.m_wsVLANName + vlan.m_wsVLANID,
              L"");
    EXPECT_EQ(vlan.m_lVLANNumber, 0);
    EXPECT_EQ(vlan.m_eStatus, 0);
    vlan.m_wsName = L"name";
    vlan.m_wsCaption = L"caption";
    vlan.m_wsParentID = L"parent";
    vlan.m_wsVLANName = L"voice";
    vlan.m_lVLANNumber = 4094;
    vlan.m_wsVLANID = L"path";
    vlan.m_eStatus = CVLAN::VlanStatus(3);
    const CVLAN copy(vlan);
    CVLAN assigned;
    assigned = vlan;
    for (const CVLAN* p : {&copy, static_cast<const CVLAN*>(&assigned)}) {
        EXPECT_EQ(p->m_wsName, L"name");
        EXPECT_EQ(p->m_wsCaption, L"caption");
        EXPECT_EQ(p->m_wsParentID, L"parent");
        EXPECT_EQ(p->m_wsVLANName, L"voice");
        EXPECT_EQ(p->m_lVLANNumber, 4094);
        EXPECT_EQ(p->m_wsVLANID, L"path");
        EXPECT_EQ(p->m_eStatus, 3);
    }
}

TEST(DiagTest, StartsEmptyAndCopiesEveryField) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CDiagTest>);
    CDiagTest test;
    EXPECT_EQ(test.m_wsName + test.m_wsUniqueID, L"");
    EXPECT_EQ(test.m_lTestId, 0);
    EXPECT_FALSE(test.m_bGrouped);
    EXPECT_EQ(test.m_lGroupId, 0);
    test.m_wsName = L"Loopback";
    test.m_lTestId = 12;
    test.m_wsUniqueID = L"path";
    test.m_bGrouped = true;
    test.m_lGroupId = 2;
    const CDiagTest copy(test);
    CDiagTest assigned;
    assigned = test;
    for (const CDiagTest* p : {&copy, static_cast<const CDiagTest*>(&assigned)}) {
        EXPECT_EQ(p->m_wsName, L"Loopback");
        EXPECT_EQ(p->m_lTestId, 12);
        EXPECT_EQ(p->m_wsUniqueID, L"path");
        EXPECT_TRUE(p->m_bGrouped);
        EXPECT_EQ(p->m_lGroupId, 2);
    }
}

TEST(ISCSIAdapter, StartsEmptyAndCopiesEveryField) {
    EXPECT_FALSE(std::is_polymorphic_v<CISCSIAdapter>);
    CISCSIAdapter adapter;
    EXPECT_EQ(adapter.m_wsPath + adapter.m_wsBootAgentID + adapter.m_wsAdapterName, L"");
    EXPECT_EQ(adapter.m_eStatus, 0);
    adapter.m_wsPath = L"path";
    adapter.m_wsBootAgentID = L"agent";
    adapter.m_wsAdapterName = L"name";
    adapter.m_eStatus = CISCSIAdapter::iSCSIStatus(99);
    CISCSIAdapter assigned;
    assigned = CISCSIAdapter(adapter);
    EXPECT_EQ(assigned.m_wsPath, L"path");
    EXPECT_EQ(assigned.m_wsBootAgentID, L"agent");
    EXPECT_EQ(assigned.m_wsAdapterName, L"name");
    EXPECT_EQ(assigned.m_eStatus, 99);
}

TEST(iSCSI, StartsClearAndAssignsEverything) {
    CiSCSI state;
    EXPECT_EQ(state.m_lStatus, 0);
    EXPECT_FALSE(state.m_bOSSupported || state.m_bPatchPresent || state.m_bHotFixPresent);
    state.m_lStatus = 2;
    state.m_bOSSupported = true;
    state.m_bPatchPresent = true;
    state.m_bHotFixPresent = true;
    CiSCSI assigned;
    assigned = state;
    EXPECT_EQ(assigned.m_lStatus, 2);
    EXPECT_TRUE(assigned.m_bOSSupported && assigned.m_bPatchPresent && assigned.m_bHotFixPresent);
}

TEST(PerformanceProfile, NumbersDefaultsAndCopies) {
    EXPECT_EQ(PERFORMANCE_PROFILE_NOT_SUPPORTED, 0);
    EXPECT_EQ(PERFORMANCE_PROFILE_CUSTOM, 1);
    EXPECT_EQ(PERFORMANCE_PROFILE_HYPERV, 5);
    EXPECT_TRUE(std::has_virtual_destructor_v<CPerformanceProfile>);
    CPerformanceProfile profile;
    EXPECT_EQ(profile.m_eProfile, 0);
    EXPECT_EQ(profile.m_wsDescription, L"");
    EXPECT_EQ(profile.m_lReserved, 0);
    EXPECT_FALSE(profile.m_bIsCurrent);
    profile.m_eProfile = PERFORMANCE_PROFILE_HYPERV;
    profile.m_wsDescription = L"Hosts of virtual machines";
    profile.m_lReserved = 8;
    profile.m_bIsCurrent = true;
    const std::unique_ptr<const CPerformanceProfile> pCopy(profile.Copy());
    CPerformanceProfile assigned;
    assigned = CPerformanceProfile(profile);
    for (const CPerformanceProfile* p : {pCopy.get(), static_cast<const CPerformanceProfile*>(&assigned)}) {
        EXPECT_EQ(p->m_eProfile, 5);
        EXPECT_EQ(p->m_wsDescription, L"Hosts of virtual machines");
        EXPECT_EQ(p->m_lReserved, 8);
        EXPECT_TRUE(p->m_bIsCurrent);
    }
}

} // namespace
