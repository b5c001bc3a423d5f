// Copy() through a null pointer, called by a client and within a library that are both optimised as far as a
// compiler goes, whatever the other tests are built with.
#include <quillet/Records.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

// The sanitizer of undefined behaviour stops where such a call is made, which is what is meant here.
template <class TCollection>
__attribute__((no_sanitize("undefined"))) TCollection* CopyThrough(const TCollection* pCollection) {
    return pCollection->Copy();
}

template <class TCollection>
struct NullCopy : testing::Test {
    // Which pointer it is, the compiler cannot know.
    TCollection* volatile m_pNone = nullptr;
    volatile bool m_bNone = true;
};
using CopyingCollections =
    testing::Types<CAdapters, CTeamedAdapters, CTeamWizTeamModes, CSettings, CPerformanceProfiles>;
TYPED_TEST_SUITE(NullCopy, CopyingCollections);

TYPED_TEST(NullCopy, IsNull) {
    EXPECT_EQ(CopyThrough<TypeParam>(this->m_pNone), nullptr);
}

TYPED_TEST(NullCopy, OfAPointerThatTheCompilerKnowsToBeNull_IsNull) {
    EXPECT_EQ(CopyThrough<TypeParam>(nullptr), nullptr);
}

TYPED_TEST(NullCopy, OfOneOfTwoPointers_IsNullForTheNullOne) {
    const TypeParam collection;
    const std::unique_ptr<TypeParam> pNone(CopyThrough(this->m_bNone ? nullptr : &collection));
    EXPECT_EQ(pNone, nullptr);
    this->m_bNone = false;
    const std::unique_ptr<TypeParam> pCopy(CopyThrough(this->m_bNone ? nullptr : &collection));
    ASSERT_NE(pCopy, nullptr);
    EXPECT_TRUE(pCopy->m_vecItems.empty());
}

TEST(NullCopyOfARecord, OfAnAdapterBeforeItsRecordsWereRead_IsNull) {
    const CAdapter adapter;
    EXPECT_EQ(CopyThrough(adapter.m_pTeamModes), nullptr);
    EXPECT_EQ(CopyThrough(adapter.m_pPerformanceProfiles), nullptr);
}

} // namespace
