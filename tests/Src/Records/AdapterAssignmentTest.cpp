// Adapters and their records: what assignment, moving, swapping and Copy() do to them.
#include "AdapterRecords.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

TEST(Adapter, Assignment_DeletesOwnRecordsAndSharesTheOthers) {
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

// A record of the caller's own that holds an adapter.
struct Board : Watched {
    using Watched::Watched;
    CAdapter m_adapter;
};

TEST(Adapter, AssignedFromAPartOfItself_HasThePartsRecords) {
    for (const bool bMove : {false, true}) {
        int deletedOfWhole = 0;
        int deletedOfPart = 0;
        {
            CAdapter adapter;
            auto* pBoard = new Board(deletedOfWhole);
            adapter.m_pAdapterDynamicInfo = pBoard;
            pBoard->m_adapter.m_wsName = L"a name too long for the text itself to hold";
            pBoard->m_adapter.m_pAdapterDynamicInfo = new Watched(deletedOfPart);
            pBoard->m_adapter.m_pAdapterCapabilities = new CAdapterCapInfo;
            if (bMove) {
                adapter = std::move(pBoard->m_adapter);
            } else {
                adapter = pBoard->m_adapter;
            }
            EXPECT_EQ(deletedOfWhole, 1);
            EXPECT_EQ(deletedOfPart, 0);
            EXPECT_EQ(adapter.m_wsName, L"a name too long for the text itself to hold");
            ASSERT_NE(adapter.m_pAdapterDynamicInfo, nullptr);
            EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_wsStatus, L"");
            EXPECT_FALSE(adapter.m_pAdapterCapabilities->m_bVLAN);
        }
        EXPECT_EQ(deletedOfPart, 1);
    }
}

TEST(Adapter, Swap_ExchangesTheRecordsOfStrangersAndOfCopies) {
    int deletedOfOne = 0;
    int deletedOfTwo = 0;
    {
        CAdapter one;
        one.m_pAdapterDynamicInfo = new Watched(deletedOfOne);
        CAdapter two;
        two.m_pAdapterDynamicInfo = new Watched(deletedOfTwo);
        const CAdapter* const pOne = &one;
        CAdapter view(*pOne);
        const CAdapterDynamicInfo* const pRecord = one.m_pAdapterDynamicInfo;
        std::swap(one, two);
        EXPECT_EQ(two.m_pAdapterDynamicInfo, pRecord);
        std::swap(view, two);
        EXPECT_EQ(two.m_pAdapterDynamicInfo, pRecord);
        EXPECT_EQ(view.m_pAdapterDynamicInfo, pRecord);
        EXPECT_EQ(deletedOfOne + deletedOfTwo, 0);
    }
    EXPECT_EQ(deletedOfOne, 1);
    EXPECT_EQ(deletedOfTwo, 1);
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

TEST(Adapter, Move_OfASourceToItsView_LeavesTheRecordsToTheView) {
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

} // namespace
