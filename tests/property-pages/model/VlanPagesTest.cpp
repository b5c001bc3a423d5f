// The pages of VLANs without their windows.
#include "model/AskingDesk.h"

#include "model/MachineTree.h"
#include "model/VlanPage.h"
#include "model/VlanRangePage.h"
#include "model/VlansPage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillet::tests {

namespace {

using pages::VlanPage;
using pages::VlanRangePage;
using pages::VlansPage;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kTeam = L"TEAM : Zürich";
constexpr const wchar_t* kVlanFree = L"Zorel 10G Dual Port Server Adapter";
constexpr const wchar_t* kMember = L"Zorel Quad Port Gigabit Server Adapter";
constexpr const wchar_t* kIdTaken = L"a VLAN with this ID exists";
constexpr const wchar_t* kNameTaken = L"a VLAN with this name exists";
constexpr const wchar_t* kOutOfRange = L"the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN";

std::vector<Vlan> VlansOf(AskingDesk& desk, const VlanParentId& parent) {
    return desk.With([&](Session& session) { return session.Vlans(parent); });
}

Vlan VlanOf(AskingDesk& desk, const VlanParentId& parent, std::int32_t number) {
    for (const Vlan& vlan : VlansOf(desk, parent)) {
        if (vlan.number == number) {
            return vlan;
        }
    }
    throw std::runtime_error("there is no such VLAN");
}

TEST(NewVlanTest, ProposesAFreeIdAndIsNoChangeYet) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(TeamNamed(desk, kTeam)));
    EXPECT_EQ(page->Parent().name, kTeam);
    EXPECT_EQ(page->Entry().id, L"1");
    EXPECT_FALSE(page->IsChanged());
    EXPECT_TRUE(page->CanEdit());
    EXPECT_EQ(page->Mistake(), L"");
}

TEST(NewVlanTest, IsMadeInOneClientSet) {
    AskingDesk desk;
    const TeamId team = TeamNamed(desk, kTeam);
    const auto page = desk.Open(std::make_shared<VlanPage>(team));
    page->TypeId(L"77");
    page->TypeName(L"Werkstatt");
    desk.Settle();
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"CreateVLAN", L"Apply"}));
    EXPECT_EQ(VlanOf(desk, team, 77).name, L"Werkstatt");
    EXPECT_FALSE(page->IsChanged());
}

TEST(NewVlanTest, TellsBesideTheFieldsWhatIsWrong) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(TeamNamed(desk, kTeam)));
    page->TypeId(L"12");
    desk.Settle();
    EXPECT_EQ(page->IdProblem(), L""); // without a name there is nothing to check yet
    EXPECT_EQ(page->NameProblem(), L"a name is needed");
    page->TypeName(L"BÜRO");
    desk.Settle();
    EXPECT_EQ(page->IdProblem(), kIdTaken);
    page->TypeId(L"13");
    page->TypeName(L"VOIP");
    desk.Settle();
    EXPECT_EQ(page->IdProblem(), L"");
    EXPECT_EQ(page->NameProblem(), kNameTaken);
    EXPECT_EQ(page->Mistake(), kNameTaken);
    for (const wchar_t* wrong : {L"", L"0", L"4095", L"-1", L"1x", L"99999999999999999999"}) {
        page->TypeId(wrong);
        EXPECT_EQ(page->IdProblem(), kOutOfRange) << ToUtf8(wrong);
    }
}

TEST(NewVlanTest, TheUntaggedOneNeedsTaggedOnesBesideIt) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(AdapterNamed(desk, kVlanFree)));
    page->MakeUntagged(true);
    page->TypeName(L"Untagged");
    desk.Settle();
    EXPECT_EQ(page->IdProblem(), L"the untagged VLAN can only stand beside tagged ones, and there are none");
}

TEST(NewVlanTest, ATeamsMemberSaysWhereVlansGo) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(AdapterNamed(desk, kMember)));
    EXPECT_FALSE(page->CanEdit());
    EXPECT_NE(page->Notice().find(L"the adapter is a member of a team: VLANs go on the team"),
              std::wstring::npos);
    EXPECT_EQ(page->Mistake(), page->Notice());
}

TEST(NewVlanTest, AnIdThatWasSeenDoesNotBecomeAnother) {
    AskingDesk desk;
    const TeamId team = TeamNamed(desk, kTeam);
    const auto page = desk.Open(std::make_shared<VlanPage>(team));
    page->TypeName(L"Werkstatt");
    desk.Settle();
    desk.With([&](Session& session) { return session.AddVlan(team, {1, L"Anderes"}); });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_EQ(page->Entry().id, L"1");
    EXPECT_EQ(page->Entry().name, L"Werkstatt");
    EXPECT_NE(page->Notice().find(kIdTaken), std::wstring::npos);
}

TEST(NewVlanTest, ARefusalLosesNothing) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(TeamNamed(desk, kTeam)));
    page->TypeId(L"77");
    page->TypeName(L"Werkstatt");
    desk.Settle();
    Refuse(desk.Machine(), L"CreateVLAN");
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(page->Entry().id, L"77");
    EXPECT_EQ(page->Entry().name, L"Werkstatt");
    EXPECT_TRUE(desk.Apply(page).isDone);
}

TEST(NewVlanTest, AsksTheMachineOnceHoweverFastSomebodyTypes) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlanPage>(TeamNamed(desk, kTeam)));
    const std::uint64_t before = desk.Worker().Asked();
    std::wstring name;
    for (const wchar_t character : std::wstring(L"Werkstatt im Keller")) {
        name += character;
        page->TypeName(name);
    }
    EXPECT_EQ(desk.Worker().Asked() - before, 1u);
    desk.Settle();
    page->TypeName(L"VoIP");
    desk.Settle();
    EXPECT_EQ(page->NameProblem(), kNameTaken);
}

TEST(VlanPageTest, ShowsAndChangesAVlan) {
    AskingDesk desk;
    const TeamId team = TeamNamed(desk, kTeam);
    const auto page = desk.Open(std::make_shared<VlanPage>(team, VlanOf(desk, team, 12).id));
    EXPECT_EQ(page->Entry(), (pages::VlanEntry{L"12", L"Büro"}));
    EXPECT_EQ(page->Status(), L"enabled");
    page->TypeId(L"340");
    desk.Settle();
    EXPECT_EQ(page->Mistake(), kIdTaken);
    page->TypeId(L"14");
    page->TypeName(L"Empfang");
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"");
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"PutInstance", L"Apply"}));
    EXPECT_EQ(VlanOf(desk, team, 14).name, L"Empfang");
}

TEST(VlanPageTest, TheUntaggedOneMayHaveAnotherName) {
    AskingDesk desk;
    const TeamId team = TeamNamed(desk, kTeam);
    const auto page = desk.Open(std::make_shared<VlanPage>(team, VlanOf(desk, team, 0).id));
    EXPECT_TRUE(page->Entry().isUntagged);
    page->TypeName(L"Rest");
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"");
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(VlanOf(desk, team, 0).name, L"Rest");
}

TEST(VlanPageTest, NoticesThatSomebodyElseChangedIt) {
    AskingDesk desk;
    const TeamId team = TeamNamed(desk, kTeam);
    const Vlan vlan = VlanOf(desk, team, 12);
    const auto page = desk.Open(std::make_shared<VlanPage>(team, vlan.id));
    page->TypeName(L"Empfang");
    desk.With([&](Session& session) {
        session.ModifyVlan(vlan.id, {12, L"Lager"});
        return true;
    });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"Lager"), std::wstring::npos);
    EXPECT_EQ(page->Entry().name, L"Empfang");
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(VlanOf(desk, team, 12).name, L"Empfang");
}

std::shared_ptr<VlanRangePage> OpenRange(AskingDesk& desk, const VlanParentId& parent, const wchar_t* first,
                                         const wchar_t* last, const wchar_t* pattern) {
    auto page = desk.Open(std::make_shared<VlanRangePage>(parent));
    page->TypeFirst(first);
    page->TypeLast(last);
    page->TypePattern(pattern);
    desk.Settle();
    return page;
}

TEST(VlanRangeTest, TellsWhatWillBeMade) {
    AskingDesk desk;
    const AdapterId adapter = AdapterNamed(desk, kVlanFree);
    EXPECT_EQ(OpenRange(desk, adapter, L"10", L"12", L"Etage")->Preview(),
              L"3 VLANs will be made: “Etage 10” to “Etage 12”.");
    EXPECT_EQ(OpenRange(desk, adapter, L"10", L"10", L"V#-Büro")->Preview(),
              L"One VLAN will be made: “V10-Büro”.");
    EXPECT_EQ(OpenRange(desk, adapter, L"12", L"10", L"Etage")->Mistake(),
              L"The last ID is lower than the first.");
    EXPECT_EQ(OpenRange(desk, adapter, L"12", L"4095", L"Etage")->Mistake(), kOutOfRange);
    EXPECT_EQ(OpenRange(desk, adapter, L"1", L"70", L"Etage")->Mistake(),
              L"there would be too many VLANs: 64 is the limit");
    EXPECT_EQ(OpenRange(desk, TeamNamed(desk, kTeam), L"10", L"20", L"Etage")->Mistake(), kIdTaken);
}

TEST(VlanRangeTest, MakesThemInOneClientSet) {
    AskingDesk desk;
    const AdapterId adapter = AdapterNamed(desk, kVlanFree);
    const auto page = OpenRange(desk, adapter, L"10", L"12", L"Etage");
    desk.Machine().Calls().Clear();
    VlanRangePage::Made made;
    std::vector<std::size_t> progress;
    page->changed = [&, raw = page.get()] { progress.push_back(raw->Done()); };
    desk.Do(page, page->Making([&](const VlanRangePage::Made& all) { made = all; }));
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"CreateVLAN", L"CreateVLAN", L"CreateVLAN", L"Apply"}));
    EXPECT_TRUE(made.isAll);
    EXPECT_EQ(made.count, 3u);
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_NE(std::ranges::find(progress, 2u), progress.end());
    EXPECT_FALSE(page->IsBusy());
    EXPECT_EQ(VlanOf(desk, adapter, 11).name, L"Etage 11");
}

TEST(VlanRangeTest, AFailureLeavesTheRestToBeMade) {
    AskingDesk desk;
    const AdapterId adapter = AdapterNamed(desk, kVlanFree);
    const auto page = OpenRange(desk, adapter, L"10", L"13", L"Etage");
    Refuse(desk.Machine(), L"CreateVLAN", 3);
    VlanRangePage::Made made;
    desk.Do(page, page->Making([&](const VlanRangePage::Made& some) { made = some; }));
    EXPECT_FALSE(made.isAll);
    EXPECT_EQ(made.count, 2u);
    EXPECT_EQ(page->Notice().find(L"2 of 4 VLANs were made: access is denied"), 0u);
    EXPECT_EQ(page->Entry().first, L"12");
    EXPECT_EQ(page->Mistake(), L"");
    desk.Do(page, page->Making([&](const VlanRangePage::Made& some) { made = some; }));
    EXPECT_TRUE(made.isAll);
    EXPECT_EQ(VlansOf(desk, adapter).size(), 4u);
}

TEST(VlanRangeTest, CanBeStopped) {
    AskingDesk desk;
    const AdapterId adapter = AdapterNamed(desk, kVlanFree);
    const auto page = OpenRange(desk, adapter, L"10", L"40", L"Etage");
    std::stop_source stop;
    VlanRangePage::Made made;
    pages::Job making = page->Making([&](const VlanRangePage::Made& some) { made = some; });
    page->changed = nullptr;
    stop = desk.Worker().Ask(
        page,
        [&, making](Session& session, const pages::Asking& asking) -> pages::Answer {
            return making(session, pages::Asking(asking.Stop(), [&](pages::Answer) { stop.request_stop(); }));
        },
        [](const std::wstring&) {});
    desk.Settle();
    EXPECT_FALSE(made.isAll);
    EXPECT_GE(made.count, 1u);
    EXPECT_LT(made.count, 31u);
    EXPECT_EQ(VlansOf(desk, adapter).size(), made.count);
    EXPECT_NE(page->Notice().find(L"you stopped it"), std::wstring::npos);
    EXPECT_EQ(desk.Machine().OpenClientSet(), 0);
}

TEST(VlansPageTest, ListsThemByTheirIds) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlansPage>(TeamNamed(desk, kTeam)));
    Texts labels;
    for (const Vlan& vlan : page->Parent().vlans) {
        labels.push_back(pages::VlanLabel(vlan));
    }
    EXPECT_EQ(labels, (Texts{L"untagged VLAN", L"VLAN 12 Büro", L"VLAN 340 VoIP"}));
    EXPECT_EQ(page->At(1)->number, 12);
    EXPECT_EQ(page->At(3), nullptr);
    EXPECT_EQ(page->At(-1), nullptr);
}

TEST(VlansPageTest, SaysWhyThereCanBeNone) {
    AskingDesk desk;
    const auto page = desk.Open(std::make_shared<VlansPage>(AdapterNamed(desk, kMember)));
    EXPECT_FALSE(page->CanAdd());
    EXPECT_NE(page->Notice().find(L"VLANs go on the team"), std::wstring::npos);
}

TEST(TreeLinesTest, TellsPortsApart) {
    AskingDesk desk;
    const auto tree = desk.Open(std::make_shared<pages::MachineTree>());
    Texts names;
    for (const pages::Node& node : tree->Headings()[0].children) {
        names.push_back(node.name);
    }
    EXPECT_EQ(names[3], L"Zorel Quad Port Gigabit Server Adapter (Slot 4, port 2)");
    EXPECT_EQ(tree->Headings()[0].children[0].state, L"10 Gbit/s");
    EXPECT_EQ(tree->Headings()[0].children[5].state, L"down");
    EXPECT_EQ(tree->Headings()[0].children[8].state, L"100 Mbit/s, half duplex");
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
    EXPECT_EQ(tree->Headings()[1].children[0].children[0].name, L"untagged VLAN");
}

} // namespace

} // namespace quillet::tests
