// Assignments for which there is no memory: the record that was to be replaced is whole, and nothing is lost.
#include <quillet/Records.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

/// Counts down the allocations; the one that finds it at 1 fails.
int g_failAt = 0;

void* Allocate(std::size_t size) {
    void* const block = g_failAt > 0 && --g_failAt == 0 ? nullptr : std::malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

class RecordsMemory : public testing::Test {
  protected:
    void SetUp() override {
        // A memory checker puts its own allocation in the place of this program's.
        g_failAt = 1;
        try {
            ::operator delete(::operator new(1));
        } catch (const std::bad_alloc&) {
            return;
        }
        g_failAt = 0;
        GTEST_SKIP() << "allocations cannot be made to fail here";
    }

    /// Fails each allocation of the step in turn; whatever fails leaves things as `unchanged` expects them.
    template <class TStep, class TUnchanged>
    static void FailEachAllocation(TStep step, TUnchanged unchanged) {
        int failures = 0;
        for (;; ++failures) {
            g_failAt = failures + 1;
            try {
                step();
                g_failAt = 0;
                break;
            } catch (const std::bad_alloc&) {
                g_failAt = 0;
                unchanged();
            }
        }
        EXPECT_GT(failures, 0) << "nothing was allocated";
    }
};

const std::wstring OLD = L"what the record held before, which is long";
const std::wstring NEW = L"what the record is to hold, which is much longer than what it held before";

// Every text of a record is the given one.
void Fill(CAdapterManualAuthInfo& rRecord, const std::wstring& rwsText) {
    rRecord.m_sTXSAKey = rRecord.m_sTXSCI = rRecord.m_sRXSAKey = rRecord.m_sRXSCI = rwsText;
}
void Fill(CAdapterAuthTypeInfo& rRecord, const std::wstring& rwsText) {
    rRecord.m_sUserName = rRecord.m_sPassword = rRecord.m_sMachineDomainName = rwsText;
    rRecord.m_sPACAuthority = rwsText;
}
void Fill(CAdapterPACInfo& rRecord, const std::wstring& rwsText) {
    rRecord.m_sPACPath = rRecord.m_sPACFilePassword = rwsText;
}
void Fill(CAdapterManualPMKInfo& rRecord, const std::wstring& rwsText) {
    rRecord.m_sManualPMKKey = rwsText;
}
void Fill(CAdapterLinksecSavedCredInfo& rRecord, const std::wstring& rwsText) {
    rRecord.m_sUserName = rRecord.m_sPassword = rRecord.m_sMachineDomainName = rwsText;
}
void Fill(CDiagResult& rRecord, const std::wstring& rwsText) {
    rRecord.m_wsDiagnosticName = rRecord.m_wsTitle = rRecord.m_wsDescription = rwsText;
    rRecord.m_vecPackageResults.resize(2);
    rRecord.m_vecPackageResults[1].m_wsTitle = rwsText;
}

std::wstring Texts(const CAdapterManualAuthInfo& r) {
    return r.m_sTXSAKey + r.m_sTXSCI + r.m_sRXSAKey + r.m_sRXSCI;
}
std::wstring Texts(const CAdapterAuthTypeInfo& r) {
    return r.m_sUserName + r.m_sPassword + r.m_sMachineDomainName + r.m_sPACAuthority;
}
std::wstring Texts(const CAdapterPACInfo& r) {
    return r.m_sPACPath + r.m_sPACFilePassword;
}
std::wstring Texts(const CAdapterManualPMKInfo& r) {
    return r.m_sManualPMKKey;
}
std::wstring Texts(const CAdapterLinksecSavedCredInfo& r) {
    return r.m_sUserName + r.m_sPassword + r.m_sMachineDomainName;
}
std::wstring Texts(const CDiagResult& r) {
    return r.m_wsDiagnosticName + r.m_wsTitle + r.m_wsDescription + r.m_vecPackageResults.at(1).m_wsTitle;
}

template <class TRecord>
struct AssignedRecord : RecordsMemory {};
using Records = testing::Types<CAdapterManualAuthInfo, CAdapterAuthTypeInfo, CAdapterPACInfo,
                               CAdapterManualPMKInfo, CAdapterLinksecSavedCredInfo, CDiagResult>;
TYPED_TEST_SUITE(AssignedRecord, Records);

TYPED_TEST(AssignedRecord, WithoutMemory_IsAsItWas) {
    TypeParam record;
    Fill(record, OLD);
    TypeParam other;
    Fill(other, NEW);
    const std::wstring before = Texts(record);
    this->FailEachAllocation([&] { record = other; }, [&] { EXPECT_EQ(Texts(record), before); });
    EXPECT_EQ(Texts(record), Texts(other));
}

TYPED_TEST(AssignedRecord, ToItselfWithoutMemory_IsAsItWas) {
    TypeParam record;
    Fill(record, OLD);
    const std::wstring before = Texts(record);
    const TypeParam& rSame = record;
    this->FailEachAllocation([&] { record = rSame; }, [&] { EXPECT_EQ(Texts(record), before); });
    EXPECT_EQ(Texts(record), before);
}

void Fill(CAdapter& rAdapter, const std::wstring& rwsText) {
    rAdapter.m_wsAdapterID = rAdapter.m_wsName = rAdapter.m_wsSlotID = rwsText;
    rAdapter.m_pAdapterCapabilities = new CAdapterCapInfo;
    rAdapter.m_pAdapterDynamicInfo = new CAdapterDynamicInfo;
    rAdapter.m_pAdapterDynamicInfo->m_wsStatus = rwsText;
    rAdapter.m_pTeamModes = new CTeamWizTeamModes;
    rAdapter.m_pTeamModes->m_vecItems.push_back(new CTeamWizTeamMode);
    rAdapter.m_pPerformanceProfiles = new CPerformanceProfiles;
}

TEST_F(RecordsMemory, AdapterThatIsAssigned_KeepsItsTextsAndRecords) {
    CAdapter adapter;
    Fill(adapter, OLD);
    CAdapter other;
    Fill(other, NEW);
    const auto* const pBefore = adapter.m_pAdapterDynamicInfo;
    FailEachAllocation([&] { adapter = other; },
                       [&] {
                           EXPECT_EQ(adapter.m_wsAdapterID + adapter.m_wsName, OLD + OLD);
                           EXPECT_EQ(adapter.m_pAdapterDynamicInfo, pBefore);
                           EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_wsStatus, OLD);
                       });
    EXPECT_EQ(adapter.m_wsSlotID, NEW);
    EXPECT_EQ(adapter.m_pAdapterDynamicInfo, other.m_pAdapterDynamicInfo);
}

TEST_F(RecordsMemory, AdapterThatIsCopied_LosesNothing) {
    CAdapter adapter;
    Fill(adapter, OLD);
    std::unique_ptr<CAdapter> pCopy;
    FailEachAllocation([&] { pCopy.reset(adapter.Copy()); },
                       [&] {
                           EXPECT_EQ(pCopy, nullptr);
                           EXPECT_EQ(adapter.m_pAdapterDynamicInfo->m_wsStatus, OLD);
                           EXPECT_EQ(adapter.m_pTeamModes->m_vecItems.size(), 1u);
                       });
    ASSERT_NE(pCopy, nullptr);
    EXPECT_NE(pCopy->m_pTeamModes, adapter.m_pTeamModes);
}

} // namespace
