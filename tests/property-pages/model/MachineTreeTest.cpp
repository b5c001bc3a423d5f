// What the start window lists, and the page "General".
#include "model/GeneralPage.h"
#include "model/MachineTree.h"
#include "model/ModelDesk.h"

#include <algorithm>

namespace quillet::tests {

namespace {

using namespace pages;

class MachineTreeTest : public testing::Test {
  protected:
    MachineTreeTest() { m_desk.Read(m_tree); }

    const Node& Team() const { return m_tree->Headings()[1].children.front(); }

    ModelDesk m_desk;
    std::shared_ptr<MachineTree> m_tree = std::make_shared<MachineTree>();
};

TEST_F(MachineTreeTest, HasAdaptersAndTeamsWithTheirVlans) {
    ASSERT_EQ(m_tree->Headings().size(), 2U);
    EXPECT_EQ(m_tree->Headings()[0].children.size(), 10U);
    EXPECT_EQ(Team().name, L"TEAM : Z\u00FCrich");
    EXPECT_EQ(Team().children.size(), 3U);
    EXPECT_EQ(m_tree->Find(Team().children[1].id), &Team().children[1]);
    EXPECT_EQ(m_tree->Find(ObjectId()), nullptr);
}

TEST_F(MachineTreeTest, FindsAnAdapterByNameOrMacAddress) {
    const Node* byName = m_tree->FindAdapter(L"zorel fast ETHERNET adapter");
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(byName->name, L"Zorel Fast Ethernet Adapter (Onboard, port 1)");
    EXPECT_EQ(m_tree->FindAdapter(L"02-00-5E-00-20-01")->name,
              L"Zorel Quad Port Gigabit Server Adapter (Slot 4, port 1)");
    EXPECT_EQ(m_tree->FindAdapter(L"Zorel"), nullptr);
}

TEST_F(MachineTreeTest, ATeamGoesWithItsVlansAndSaysSo) {
    const std::wstring consequences = m_tree->Consequences(Team());
    EXPECT_NE(consequences.find(L"340 VoIP"), std::wstring::npos);
    EXPECT_EQ(m_tree->Consequences(m_tree->Headings()[0].children.front()), L"")
        << "an adapter cannot be deleted";

    m_desk.Machine().Calls().Clear();
    std::optional<bool> restart;
    EXPECT_EQ(m_desk.Do(m_tree->Deleting(Team().id, [&](bool needed) { restart = needed; })), L"");
    EXPECT_TRUE(restart.has_value());
    EXPECT_EQ(m_desk.Calls(L"BeginApply").size(), 1U);
    m_desk.Read(m_tree);
    EXPECT_TRUE(m_tree->Headings()[1].children.empty());
}

TEST_F(MachineTreeTest, WhatOneAdapterCannotTellHidesNothingElse) {
    m_desk.Machine().Rules().Add({.operation = simulator::Operation::GetObject,
                                  .target = {},
                                  .method = {},
                                  .nth = 2,
                                  .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    m_desk.Read(m_tree);
    EXPECT_EQ(m_tree->Headings()[0].children.size(), 10U);
}

TEST_F(MachineTreeTest, TheGeneralPageTellsLinkAndHardwareAndLetsTheAdapterBlink) {
    const Node& node = *m_tree->FindAdapter(L"02-00-5E-00-20-01");
    const auto page = std::make_shared<GeneralPage>(std::get<AdapterId>(node.id));
    m_desk.Machine().Calls().Clear();
    m_desk.Read(page);
    EXPECT_EQ(m_desk.Calls(L"GetObject \\\\").size(), 1U) << "one fetch of the adapter for all of it";
    EXPECT_EQ(page->Name(), L"Zorel Quad Port Gigabit Server Adapter");
    EXPECT_EQ(page->Link(), L"up, 1 Gbit/s, full duplex");
    const auto mac = std::ranges::find(page->Facts(), L"MAC address", &Fact::name);
    ASSERT_NE(mac, page->Facts().end());
    EXPECT_EQ(mac->value, L"02-00-5E-00-20-01");
    ASSERT_TRUE(page->CanBlink());
    EXPECT_EQ(m_desk.Do(page->Blinking(std::chrono::seconds(30))), L"");
    const auto device = std::ranges::find(page->Facts(), L"Device identifier", &Fact::name);
    EXPECT_EQ(m_desk.Machine().BlinksFor(device->value), std::chrono::seconds(30));
}

TEST_F(MachineTreeTest, AnAdapterThatIsGoneIsTold) {
    const Node& node = *m_tree->FindAdapter(L"02-00-5E-00-20-01");
    const auto page = std::make_shared<GeneralPage>(std::get<AdapterId>(node.id));
    m_desk.Machine().Rules().Add({.operation = simulator::Operation::GetObject,
                                  .target = {},
                                  .method = {},
                                  .repeat = true,
                                  .code = HRESULT(WBEM_E_NOT_FOUND)});
    m_desk.Read(page);
    EXPECT_NE(page->Notice().find(L"there is no such object"), std::wstring::npos);
    EXPECT_FALSE(page->IsRead());
}

} // namespace

} // namespace quillet::tests
