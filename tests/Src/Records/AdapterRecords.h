// An adapter with all of its records, and a record that says when it is deleted.
#pragma once

#include <quillet/Adapter.h>

#include <gtest/gtest.h>

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
inline void Fill(CAdapter& rAdapter) {
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

inline void ExpectSameTextsAndFlags(const CAdapter& rLeft, const CAdapter& rRight) {
    EXPECT_EQ(rLeft.m_wsAdapterID, rRight.m_wsAdapterID);
    EXPECT_EQ(rLeft.m_wsDisplayName, rRight.m_wsDisplayName);
    EXPECT_EQ(rLeft.m_wsName, rRight.m_wsName);
    EXPECT_EQ(rLeft.m_wsDeviceID, rRight.m_wsDeviceID);
    EXPECT_EQ(rLeft.m_wsSlotID, rRight.m_wsSlotID);
    EXPECT_EQ(rLeft.m_lBasicInfo, rRight.m_lBasicInfo);
    EXPECT_EQ(rLeft.m_bTeamed, rRight.m_bTeamed);
    EXPECT_EQ(rLeft.m_bSelected, rRight.m_bSelected);
}

inline void ExpectSameRecords(const CAdapter& rLeft, const CAdapter& rRight) {
    EXPECT_EQ(rLeft.m_pAdapterCapabilities, rRight.m_pAdapterCapabilities);
    EXPECT_EQ(rLeft.m_pAdapterDynamicInfo, rRight.m_pAdapterDynamicInfo);
    EXPECT_EQ(rLeft.m_pTeamModes, rRight.m_pTeamModes);
    EXPECT_EQ(rLeft.m_pPerformanceProfiles, rRight.m_pPerformanceProfiles);
}

inline void ExpectNoRecords(const CAdapter& rAdapter) {
    ExpectSameRecords(rAdapter, CAdapter());
}
