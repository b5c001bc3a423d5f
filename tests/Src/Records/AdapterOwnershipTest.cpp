// Adapters and their records: who deletes which record, whatever becomes of a source and its copies.
#include "AdapterRecords.h"

#include <memory>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace {

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

TEST(Adapter, CopyConstructor_SharesTheRecords) {
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

TEST(Adapter, View_OutlivingItsSource_KeepsTheRecords) {
    int deleted = 0;
    auto source = std::make_unique<CAdapter>();
    source->m_pAdapterDynamicInfo = new Watched(deleted);
    auto view = std::make_unique<CAdapter>(*source);
    source.reset();
    EXPECT_EQ(deleted, 0);
    EXPECT_EQ(view->m_pAdapterDynamicInfo->m_wsStatus, L"");
    view.reset();
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, View_OfASourceThatGaveItsRecordUp_DeletesIt) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        const CAdapter view(source);
        source.m_pAdapterDynamicInfo = nullptr;
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, View_OfASourceWithAnotherRecord_DeletesTheSharedOne) {
    int deletedOfSource = 0;
    int deletedOfView = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deletedOfView);
        {
            const CAdapter view(source);
            source.m_pAdapterDynamicInfo = new Watched(deletedOfSource);
        }
        EXPECT_EQ(deletedOfView, 1);
        EXPECT_EQ(deletedOfSource, 0);
    }
    EXPECT_EQ(deletedOfSource, 1);
    EXPECT_EQ(deletedOfView, 1);
}

TEST(Adapter, View_WithoutTheSharedRecord_LeavesItToASourceThatGoesFirst) {
    int deleted = 0;
    auto source = std::make_unique<CAdapter>();
    source->m_pAdapterDynamicInfo = new Watched(deleted);
    CAdapter view(*source);
    view.m_pAdapterDynamicInfo = nullptr;
    source.reset();
    EXPECT_EQ(deleted, 1);
}

TEST(Adapter, RecordThatNoAdapterPointsTo_IsTheCallers) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Watched(deleted);
        CAdapter view(source);
        const std::unique_ptr<CAdapterDynamicInfo> taken(source.m_pAdapterDynamicInfo);
        source.m_pAdapterDynamicInfo = nullptr;
        view.m_pAdapterDynamicInfo = nullptr;
    }
    EXPECT_EQ(deleted, 1);
}

// A client reads the state anew by deleting the record and asking the operation for another.
TEST(Adapter, RecordThatTheCallerDeletes_AfterACopyHasGone_IsNotDeletedAgain) {
    int deleted = 0;
    {
        CAdapter adapter;
        adapter.m_pAdapterDynamicInfo = new Watched(deleted);
        { const CAdapter view(adapter); }
        delete adapter.m_pAdapterDynamicInfo;
        adapter.m_pAdapterDynamicInfo = nullptr;
        EXPECT_EQ(deleted, 1);
        adapter.m_pAdapterDynamicInfo = new Watched(deleted);
    }
    EXPECT_EQ(deleted, 2);
}

// A record that always has the same address.
struct Placed : Watched {
    using Watched::Watched;
    static void* operator new(std::size_t size) {
        static std::aligned_storage_t<64 + sizeof(Watched)> place;
        return size <= sizeof(place) ? &place : throw std::bad_alloc();
    }
    static void operator delete(void*) {}
};

TEST(Adapter, RecordAtAnAddressThatWasShared_IsDeletedLikeAnyOther) {
    int deleted = 0;
    {
        CAdapter source;
        source.m_pAdapterDynamicInfo = new Placed(deleted);
        CAdapter view(source);
        view.m_pAdapterDynamicInfo = nullptr;
        CAdapterDynamicInfo* const pShared = std::exchange(source.m_pAdapterDynamicInfo, nullptr);
        delete pShared;
        view.m_pAdapterDynamicInfo = new Placed(deleted);
        ASSERT_EQ(view.m_pAdapterDynamicInfo, pShared);
    }
    EXPECT_EQ(deleted, 2);
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

TEST(Adapter, Copies_MayBeMadeAndGoInSeveralThreads) {
    int deleted = 0;
    {
        CAdapter adapter;
        Fill(adapter);
        delete adapter.m_pAdapterDynamicInfo;
        adapter.m_pAdapterDynamicInfo = new Watched(deleted);
        const CAdapter& rAdapter = adapter;
        std::vector<std::thread> threads;
        for (int number = 0; number < 4; ++number) {
            threads.emplace_back([&rAdapter] {
                for (int round = 0; round < 500; ++round) {
                    CAdapter copy(rAdapter);
                    const CAdapter moved(std::move(copy));
                    const CAdapter another(moved);
                }
            });
        }
        for (std::thread& rThread : threads) {
            rThread.join();
        }
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

} // namespace
