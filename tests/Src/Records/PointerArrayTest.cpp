// The owning list: what it deletes, how it copies, and what is left when a copy fails half way.
#include <quillet/Records.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <type_traits>

namespace {

// Counts its live objects; its copy constructor can be told to throw.
struct Plain {
    explicit Plain(int value) : m_value(value) { ++s_alive; }
    Plain(const Plain& rOther) : m_value(rOther.m_value) {
        if (s_copiesLeft-- == 0) {
            throw std::runtime_error("copy");
        }
        ++s_alive;
    }
    Plain& operator=(const Plain&) = delete;
    ~Plain() { --s_alive; }

    int m_value;
    inline static int s_alive = 0;
    inline static int s_copiesLeft = -1;
};

struct Shape {
    Shape() = default;
    Shape(const Shape&) = default;
    Shape& operator=(const Shape&) = default;
    virtual ~Shape() = default;
    virtual Shape* Copy() const { return new Shape(*this); }
};
struct Square : Shape {
    Square* Copy() const override { return new Square(*this); }
};

class PointerArray : public testing::Test {
  protected:
    PointerArray() { Plain::s_copiesLeft = -1; }
    ~PointerArray() override { EXPECT_EQ(Plain::s_alive, 0); }
};

TEST_F(PointerArray, RemoveAll_OfAnEmptyList_DoesNothing) {
    CPointerArray<Plain*> list;
    list.RemoveAll();
    EXPECT_TRUE(list.m_vecItems.empty());
}

TEST_F(PointerArray, RemoveAll_DeletesElementsAndErasesNullEntries) {
    CPointerArray<Plain*> list;
    list.m_vecItems = {new Plain(1), nullptr, new Plain(2)};
    EXPECT_EQ(Plain::s_alive, 2);
    list.RemoveAll();
    EXPECT_EQ(Plain::s_alive, 0);
    EXPECT_TRUE(list.m_vecItems.empty());
}

TEST_F(PointerArray, RemoveAll_LeavesAListThatCanBeFilledAgain) {
    CPointerArray<Plain*> list;
    list.m_vecItems.push_back(new Plain(1));
    list.RemoveAll();
    list.m_vecItems.push_back(new Plain(2));
    EXPECT_EQ(list.m_vecItems.at(0)->m_value, 2);
}

TEST_F(PointerArray, Destructor_DeletesTheElements) {
    {
        CPointerArray<Plain*> list;
        list.m_vecItems = {new Plain(1), nullptr, new Plain(2)};
    }
    EXPECT_EQ(Plain::s_alive, 0);
}

TEST_F(PointerArray, CopyConstructor_CopiesEveryElementInOrderAndKeepsNullEntries) {
    auto source = std::make_unique<CPointerArray<Plain*>>();
    source->m_vecItems = {new Plain(1), nullptr, new Plain(2)};
    const CPointerArray<Plain*> copy(*source);
    EXPECT_EQ(Plain::s_alive, 4);
    source.reset();
    ASSERT_EQ(copy.m_vecItems.size(), 3u);
    EXPECT_EQ(copy.m_vecItems[0]->m_value, 1);
    EXPECT_EQ(copy.m_vecItems[1], nullptr);
    EXPECT_EQ(copy.m_vecItems[2]->m_value, 2);
}

TEST_F(PointerArray, CopyConstructor_KeepsTheTypeOfAnElementThatCopiesItself) {
    CPointerArray<Shape*> shapes;
    shapes.m_vecItems = {new Square, new Shape};
    const CPointerArray<Shape*> copy(shapes);
    EXPECT_NE(dynamic_cast<Square*>(copy.m_vecItems.at(0)), nullptr);
    EXPECT_EQ(dynamic_cast<Square*>(copy.m_vecItems.at(1)), nullptr);
    EXPECT_NE(copy.m_vecItems.at(0), shapes.m_vecItems.at(0));
}

TEST_F(PointerArray, CopyConstructor_ThatFailsHalfWay_LeavesNothing) {
    CPointerArray<Plain*> source;
    source.m_vecItems = {new Plain(1), new Plain(2), new Plain(3)};
    Plain::s_copiesLeft = 2;
    EXPECT_THROW(const CPointerArray<Plain*> copy(source), std::runtime_error);
    EXPECT_EQ(Plain::s_alive, 3);
}

TEST_F(PointerArray, Assignment_ReplacesTheElements) {
    CPointerArray<Plain*> source;
    source.m_vecItems = {new Plain(1), new Plain(2)};
    CPointerArray<Plain*> target;
    target.m_vecItems = {new Plain(7)};
    target = source;
    EXPECT_EQ(Plain::s_alive, 4);
    ASSERT_EQ(target.m_vecItems.size(), 2u);
    EXPECT_EQ(target.m_vecItems[1]->m_value, 2);
    EXPECT_NE(target.m_vecItems[1], source.m_vecItems[1]);
}

TEST_F(PointerArray, Assignment_ThatFailsHalfWay_LeavesTheTargetAsItWas) {
    CPointerArray<Plain*> source;
    source.m_vecItems = {new Plain(1), new Plain(2)};
    CPointerArray<Plain*> target;
    target.m_vecItems = {new Plain(7)};
    Plain::s_copiesLeft = 1;
    EXPECT_THROW(target = source, std::runtime_error);
    ASSERT_EQ(target.m_vecItems.size(), 1u);
    EXPECT_EQ(target.m_vecItems[0]->m_value, 7);
    EXPECT_EQ(Plain::s_alive, 3);
}

TEST_F(PointerArray, Assignment_ToItself_KeepsTheElements) {
    CPointerArray<Plain*> list;
    list.m_vecItems = {new Plain(1), new Plain(2)};
    Plain* const pFirst = list.m_vecItems[0];
    const CPointerArray<Plain*>& rSame = list;
    list = rSame;
    ASSERT_EQ(list.m_vecItems.size(), 2u);
    EXPECT_EQ(list.m_vecItems[0], pFirst);
}

TEST_F(PointerArray, Move_TakesTheElementsOverWithoutCopying) {
    CPointerArray<Plain*> source;
    source.m_vecItems = {new Plain(1)};
    Plain* const pElement = source.m_vecItems[0];
    CPointerArray<Plain*> target(std::move(source));
    EXPECT_EQ(target.m_vecItems.at(0), pElement);
    CPointerArray<Plain*> another;
    another.m_vecItems = {new Plain(2)};
    another = std::move(target);
    EXPECT_EQ(another.m_vecItems.at(0), pElement);
    EXPECT_EQ(Plain::s_alive, 1);
    CPointerArray<Plain*>& rSame = another;
    another = std::move(rSame);
    EXPECT_EQ(another.m_vecItems.at(0), pElement);
}

// An element that holds a list of its kind.
struct Node : Plain {
    using Plain::Plain;
    CPointerArray<Node*> m_children;
};

TEST_F(PointerArray, AssignedFromAListWithinAnElement_HasItsElements) {
    for (const bool bMove : {false, true}) {
        CPointerArray<Node*> list;
        list.m_vecItems = {new Node(1), new Node(2)};
        list.m_vecItems[1]->m_children.m_vecItems = {new Node(20), nullptr, new Node(21)};
        list.m_vecItems[1]->m_children.m_vecItems[2]->m_children.m_vecItems = {new Node(210)};
        if (bMove) {
            list = std::move(list.m_vecItems[1]->m_children);
        } else {
            list = list.m_vecItems[1]->m_children;
        }
        EXPECT_EQ(Plain::s_alive, 3);
        ASSERT_EQ(list.m_vecItems.size(), 3u);
        EXPECT_EQ(list.m_vecItems[0]->m_value, 20);
        EXPECT_EQ(list.m_vecItems[2]->m_children.m_vecItems.at(0)->m_value, 210);
    }
}

TEST_F(PointerArray, AssignedToAListWithinAnElement_IsThereWhole) {
    CPointerArray<Node*> list;
    list.m_vecItems = {new Node(1), new Node(2)};
    CPointerArray<Node*>& rInner = list.m_vecItems[1]->m_children;
    rInner.m_vecItems = {new Node(20)};
    rInner = list;
    EXPECT_EQ(list.m_vecItems.size(), 2u);
    ASSERT_EQ(rInner.m_vecItems.size(), 2u);
    EXPECT_EQ(rInner.m_vecItems[1]->m_children.m_vecItems.at(0)->m_value, 20);
}

// What is true of every typed collection, whatever its elements.
template <class TCollection>
struct TypedCollection : testing::Test {
    using Item = std::remove_pointer_t<typename decltype(TCollection::m_vecItems)::value_type>;
    static Item* NewItem() {
        if constexpr (std::is_abstract_v<Item>) {
            return new CSettingEnum;
        } else {
            return new Item;
        }
    }
};
using AllCollections =
    testing::Types<CAdapters, CAdapterPorts, CTeams, CTeamedAdapters, CTeamWizAdapters, CTeamWizTeamModes,
                   CVLANs, CSettings, CDiagTests, CISCSIAdapters, CPerformanceProfiles>;
TYPED_TEST_SUITE(TypedCollection, AllCollections);

TYPED_TEST(TypedCollection, HasOneVirtualOperationAndNoDataOfItsOwn) {
    EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
    EXPECT_EQ(sizeof(TypeParam), sizeof(CPointerArray<typename TestFixture::Item*>));
}

TYPED_TEST(TypedCollection, IsEmptyAtFirst) {
    EXPECT_TRUE(TypeParam().m_vecItems.empty());
}

TYPED_TEST(TypedCollection, CopyAssignAndSelfAssign_AreDeepAndOutliveTheSource) {
    auto source = std::make_unique<TypeParam>();
    source->m_vecItems.push_back(TestFixture::NewItem());
    source->m_vecItems.push_back(nullptr);
    source->m_vecItems.push_back(TestFixture::NewItem());
    const TypeParam copy(*source);
    TypeParam assigned;
    assigned.m_vecItems.push_back(TestFixture::NewItem());
    assigned = *source;
    const TypeParam& rSame = assigned;
    assigned = rSame;
    for (const TypeParam* pList : {&copy, static_cast<const TypeParam*>(&assigned)}) {
        ASSERT_EQ(pList->m_vecItems.size(), 3u);
        EXPECT_NE(pList->m_vecItems[0], nullptr);
        EXPECT_NE(pList->m_vecItems[0], source->m_vecItems[0]);
        EXPECT_EQ(pList->m_vecItems[1], nullptr);
        EXPECT_NE(pList->m_vecItems[2], source->m_vecItems[2]);
    }
    EXPECT_NE(copy.m_vecItems[0], assigned.m_vecItems[0]);
    source.reset();
    assigned.RemoveAll();
    EXPECT_EQ(copy.m_vecItems.size(), 3u);
}

template <class TCollection>
struct CopyingCollection : TypedCollection<TCollection> {};
using CopyingCollections =
    testing::Types<CAdapters, CTeamedAdapters, CTeamWizTeamModes, CSettings, CPerformanceProfiles>;
TYPED_TEST_SUITE(CopyingCollection, CopyingCollections);

TYPED_TEST(CopyingCollection, Copy_OfAnEmptyCollection_IsANewEmptyOne) {
    const TypeParam source;
    const std::unique_ptr<TypeParam> pCopy(source.Copy());
    ASSERT_NE(pCopy, nullptr);
    EXPECT_NE(pCopy.get(), &source);
    EXPECT_TRUE(pCopy->m_vecItems.empty());
}

TYPED_TEST(CopyingCollection, Copy_IsDeepAndOutlivesTheSource) {
    auto source = std::make_unique<TypeParam>();
    source->m_vecItems.push_back(TestFixture::NewItem());
    source->m_vecItems.push_back(nullptr);
    const auto* pOriginal = source->m_vecItems[0];
    const std::unique_ptr<TypeParam> pCopy(source->Copy());
    source.reset();
    ASSERT_EQ(pCopy->m_vecItems.size(), 2u);
    EXPECT_NE(pCopy->m_vecItems[0], pOriginal);
    EXPECT_NE(pCopy->m_vecItems[0], nullptr);
    EXPECT_EQ(pCopy->m_vecItems[1], nullptr);
}

} // namespace
