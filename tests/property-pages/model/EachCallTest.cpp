// Pages whose changes meet a provider that fails once, at every call in turn.
#include "model/AskingDesk.h"

#include "model/BootPage.h"
#include "model/DiagnosticsPage.h"
#include "model/GeneralPage.h"
#include "model/KeysPage.h"
#include "model/LinkSecurityPage.h"
#include "model/NewTeamPage.h"
#include "model/PacPage.h"
#include "model/PowerPage.h"
#include "model/SettingsPage.h"
#include "model/SwitchTestPage.h"
#include "model/TeamPage.h"
#include "model/TeamingPage.h"
#include "model/VlanPage.h"
#include "model/VlansPage.h"

#include <gtest/gtest.h>

#include <limits>
#include <typeinfo>

namespace quillet::tests {

namespace {

using namespace pages;

constexpr const wchar_t* kTeamName = L"TEAM : Zürich";
constexpr const wchar_t* kMember = L"Zorel Quad Port Gigabit Server Adapter";
constexpr const wchar_t* kFree = L"Zorel Quad Port Gigabit Server Adapter #3 (Zürich)";
constexpr const wchar_t* kSecondFree = L"Zorel Quad Port Gigabit Server Adapter #4";
constexpr const wchar_t* kBootable = L"Zorel 10G Dual Port Server Adapter";

// With sanitizers every call of a long reading takes half a minute; without them all are tried.
#ifdef QUILLET_SANITIZED
constexpr std::size_t kLongReading = 50;
#else
constexpr std::size_t kLongReading = std::numeric_limits<std::size_t>::max();
#endif
/// From one call that fails to the next.
std::size_t StrideOf(std::size_t calls) {
    return calls > kLongReading ? 7 : 1;
}

using Subject = std::variant<AdapterId, TeamId>;

/// A page, and what a user does there.
struct Edited {
    std::string name;
    const wchar_t* of; ///< an adapter's name or the team's
    std::function<std::shared_ptr<Page>(const Subject&)> make;
    std::function<void(Page&, AskingDesk&)> edit;

    friend void PrintTo(const Edited& page, std::ostream* out) { *out << page.name; }
};

template <class Model, class Of>
std::function<std::shared_ptr<Page>(const Subject&)> A() {
    return [](const Subject& of) { return std::make_shared<Model>(std::get<Of>(of)); };
}

std::vector<Edited> AllPages() {
    return {
        {"Settings", kFree, A<SettingsPage, AdapterId>(),
         [](Page& page, AskingDesk&) {
             auto& settings = static_cast<SettingsPage&>(page);
             for (std::size_t index = 0; index < settings.Settings().size(); ++index) {
                 settings.Choose(index);
                 if (settings.ChosenEditor() == Editor::Slider || settings.ChosenEditor() == Editor::Choice) {
                     settings.Pick(1);
                     return;
                 }
             }
         }},
        {"Power", kMember, A<PowerPage, AdapterId>(),
         [](Page& page, AskingDesk&) {
             auto& power = static_cast<PowerPage&>(page);
             power.Set(&WakeOptions::onLink, power.Wake().onLink != true);
         }},
        {"Boot", kBootable, A<BootPage, AdapterId>(),
         [](Page& page, AskingDesk&) {
             auto& boot = static_cast<BootPage&>(page);
             boot.SetPlace(boot.Places().back());
         }},
        {"Link security", kMember, A<LinkSecurityPage, AdapterId>(),
         [](Page& page, AskingDesk&) {
             static_cast<LinkSecurityPage&>(page).Edit(
                 [](Authentication& wanted) { wanted.methods.randomMac = !wanted.methods.randomMac; });
         }},
        {"Keys", kMember, A<KeysPage, AdapterId>(),
         [](Page& page, AskingDesk&) { static_cast<KeysPage&>(page).Type(KeysPage::OutFirst, L"77"); }},
        {"Team", kTeamName, A<TeamPage, TeamId>(),
         [](Page& page, AskingDesk& desk) {
             auto& team = static_cast<TeamPage&>(page);
             team.TypeName(L"TEAM : Keller");
             team.Tick(AdapterNamed(desk, kFree), true);
         }},
        {"Teaming", kFree, A<TeamingPage, AdapterId>(),
         [](Page& page, AskingDesk& desk) {
             static_cast<TeamingPage&>(page).PickTeam(TeamNamed(desk, kTeamName));
         }},
        {"New team", kFree, A<NewTeamPage, AdapterId>(),
         [](Page& page, AskingDesk& desk) {
             auto& team = static_cast<NewTeamPage&>(page);
             team.TypeName(L"TEAM : Keller");
             team.Tick(AdapterNamed(desk, kSecondFree), true);
             team.PickMode(TeamMode::AdaptiveLoadBalancing);
         }},
        {"New VLAN", kTeamName, A<VlanPage, TeamId>(),
         [](Page& page, AskingDesk&) {
             auto& vlan = static_cast<VlanPage&>(page);
             vlan.TypeId(L"77");
             vlan.TypeName(L"Lab");
         }},
    };
}

class EachCallTest : public testing::TestWithParam<Edited> {
  protected:
    /// A desk with a new machine, and the page with what the user did there.
    struct Opened {
        AskingDesk desk;
        std::shared_ptr<Page> page;

        explicit Opened(const Edited& edited) {
            if (std::wstring(edited.of) == kTeamName) {
                page = edited.make(TeamNamed(desk, edited.of));
            } else {
                page = edited.make(AdapterNamed(desk, edited.of));
            }
            desk.Open(page);
            edited.edit(*page, desk);
            desk.Settle();
            desk.Machine().Calls().Clear();
        }
        std::size_t Calls() const { return desk.Machine().Calls().ProviderCalls().size(); }
    };
};

TEST_P(EachCallTest, MayFailWhileThePageIsReadAgain) {
    Opened opened(GetParam());
    ASSERT_TRUE(opened.page->IsChanged());
    ASSERT_EQ(opened.page->Mistake(), L"");
    opened.desk.Read(opened.page);
    const std::size_t calls = opened.Calls();
    ASSERT_GT(calls, 0U);
    std::size_t told = 0;
    for (std::size_t nth = 1; nth <= calls; nth += StrideOf(calls)) {
        RefuseCall(opened.desk.Machine(), nth);
        opened.desk.Read(opened.page);
        opened.desk.Machine().Rules().Clear();
        EXPECT_TRUE(opened.page->IsChanged()) << "call " << nth << ": what was entered is lost";
        told += opened.page->Notice().empty() ? 0U : 1U;
    }
    EXPECT_GT(told, 0U);
    opened.desk.Read(opened.page);
    EXPECT_EQ(opened.page->Notice(), L"");
    EXPECT_TRUE(opened.desk.Apply(opened.page).isDone) << ToUtf8(opened.page->Notice());
}

TEST_P(EachCallTest, MayFailWhileThePageIsApplied) {
    std::size_t calls = 0;
    std::size_t reading = 0;
    {
        Opened opened(GetParam());
        opened.desk.Read(opened.page);
        reading = opened.Calls();
        opened.desk.Machine().Calls().Clear();
        ASSERT_TRUE(opened.desk.Apply(opened.page).isDone) << ToUtf8(opened.page->Notice());
        calls = opened.Calls();
    }
    std::size_t told = 0;
    // The page is read before, as in the other test, and again after it: of that a few calls are enough.
    ASSERT_GT(calls, 2 * reading);
    for (std::size_t nth = reading + 1; nth <= calls;
         nth += nth + reading > calls ? reading / 10 + 1 : StrideOf(calls)) {
        SCOPED_TRACE(nth);
        Opened opened(GetParam());
        RefuseCall(opened.desk.Machine(), nth);
        const bool isDone = opened.desk.Apply(opened.page).isDone;
        opened.desk.Machine().Rules().Clear();
        EXPECT_TRUE(isDone || !opened.page->Notice().empty());
        told += isDone ? 0U : 1U;
        // Only the provider can close the client set whose end it refused.
        EXPECT_TRUE(!isDone || opened.desk.Machine().OpenClientSet() == 0);
        // What is there already need not be made again, and something new cannot be.
        opened.desk.Apply(opened.page);
        EXPECT_TRUE(!opened.page->IsChanged() || !opened.page->Notice().empty());
    }
    EXPECT_GT(told, 0U);
}

INSTANTIATE_TEST_SUITE_P(Pages, EachCallTest, testing::ValuesIn(AllPages()),
                         [](const testing::TestParamInfo<Edited>& page) {
                             std::string name = page.param.name;
                             std::erase(name, ' ');
                             return name;
                         });

/// Pages that have nothing to apply.
TEST(EachCallOfReadingTest, MayFailOnPagesThatActAtOnce) {
    AskingDesk desk;
    const AdapterId adapter = AdapterNamed(desk, kMember);
    const TeamId team = TeamNamed(desk, kTeamName);
    const PageList pages{std::make_shared<GeneralPage>(adapter), std::make_shared<VlansPage>(adapter),
                         std::make_shared<VlansPage>(team),      std::make_shared<DiagnosticsPage>(adapter),
                         std::make_shared<PacPage>(adapter),     std::make_shared<SwitchTestPage>(team)};
    for (const std::shared_ptr<Page>& page : pages) {
        const Page& shown = *page;
        SCOPED_TRACE(typeid(shown).name());
        desk.Read(page);
        const std::wstring notice = page->Notice();
        desk.Machine().Calls().Clear();
        desk.Read(page);
        const std::size_t calls = desk.Machine().Calls().ProviderCalls().size();
        std::size_t told = 0;
        for (std::size_t nth = 1; nth <= calls; nth += StrideOf(calls)) {
            RefuseCall(desk.Machine(), nth);
            desk.Read(page);
            desk.Machine().Rules().Clear();
            told += page->Notice() == notice ? 0U : 1U;
        }
        EXPECT_GT(told, 0U);
        desk.Read(page);
        EXPECT_EQ(page->Notice(), notice);
    }
}

} // namespace

} // namespace quillet::tests
