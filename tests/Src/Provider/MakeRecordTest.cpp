// Making records: what an operation does when there is no memory for one, wherever it is missing.
#include "Provider/MakeRecord.h"
#include "ProviderTest.h"

#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A record one of whose members finds no memory.
struct Greedy {
    Greedy() { throw std::bad_alloc(); }
};

/// A collection without room.
struct Full {
    struct Items {
        template <class Record>
        void push_back(Record*) {
            throw std::bad_alloc();
        }
    } m_vecItems;
};

class MakeRecordTest : public ProviderTest {};

TEST_F(MakeRecordTest, MemberWithoutMemory_IsALineAndNoRecord) {
    EXPECT_EQ(MakeRecord<Greedy>(L"pGreedy == NULL"), nullptr);
    EXPECT_THAT(Traced(), ElementsAre("pGreedy == NULL"));
    CPointerArray<Greedy*> records;
    EXPECT_EQ(Code(AppendRecord<Greedy>(records, L"pGreedy == NULL", [](Greedy&) { return S_OK; })),
              "0x80004005");
    EXPECT_TRUE(records.m_vecItems.empty());
    EXPECT_THAT(Traced(), ElementsAre("pGreedy == NULL"));
}

TEST_F(MakeRecordTest, CollectionWithoutRoom_FailsAndKeepsNothing) {
    Full full; // the leak check after the test sees a record that was left behind
    EXPECT_EQ(Code(AppendRecord<CVLAN>(full, L"pVLAN == NULL", [](CVLAN&) { return S_OK; })), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("pVLAN == NULL"));
}

TEST_F(MakeRecordTest, RecordThatCannotBeFilled_GoesWithTheCodeOfTheStep) {
    CVLANs vlans;
    EXPECT_EQ(Code(AppendRecord<CVLAN>(vlans, L"pVLAN == NULL", [](CVLAN&) { return E_ABORT; })),
              Code(E_ABORT));
    EXPECT_TRUE(vlans.m_vecItems.empty());
    EXPECT_EQ(Code(AppendRecord<CVLAN>(vlans, L"pVLAN == NULL",
                                       [](CVLAN& vlan) {
                                           vlan.m_lVLANNumber = 7;
                                           return S_FALSE;
                                       })),
              "0x00000000");
    ASSERT_EQ(vlans.m_vecItems.size(), 1u);
    EXPECT_EQ(vlans.m_vecItems[0]->m_lVLANNumber, 7);
    EXPECT_THAT(Traced(), IsEmpty());
}

} // namespace
