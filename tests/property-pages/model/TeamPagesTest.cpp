// The pages of teams and of their members without their windows.
#include "model/AskingDesk.h"

#include "model/SwitchTestPage.h"
#include "model/TeamPage.h"
#include "model/TeamingPage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillet::tests {

namespace {

using pages::SwitchTestPage;
using pages::TeamingPage;
using pages::TeamPage;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kTeamName = L"TEAM : Zürich";
constexpr const wchar_t* kPrimary = L"Zorel Quad Port Gigabit Server Adapter";
constexpr const wchar_t* kSecondary = L"Zorel Quad Port Gigabit Server Adapter #2";
constexpr const wchar_t* kJoiner = L"Zorel Quad Port Gigabit Server Adapter #3 (Zürich)";
constexpr const wchar_t* kDesktop = L"Zorel Fast Ethernet Adapter";

struct TeamPagesTest : testing::Test {
    TeamPagesTest() : team(TeamNamed(desk, kTeamName)) {}

    AdapterId Named(const wchar_t* name) { return AdapterNamed(desk, name); }
    std::vector<TeamMember> Members() {
        return desk.With([this](Session& session) { return session.Members(team); });
    }
    MemberRole RoleOf(const wchar_t* name) {
        for (const TeamMember& member : Members()) {
            if (member.id == Named(name)) {
                return member.role;
            }
        }
        throw std::runtime_error("it is no member");
    }
    /// What has VLANs of its own can join no team.
    void GiveVlan(const wchar_t* name) {
        desk.With([id = Named(name)](Session& session) { return session.AddVlan(id, {7, L"Eigenes"}); });
    }
    Team TeamNow() {
        return desk.With([this](Session& session) { return session.ReadTeam(team); });
    }

    AskingDesk desk;
    TeamId team;
};

struct TeamPageTest : TeamPagesTest {
    TeamPageTest() { page = desk.Open(std::make_shared<TeamPage>(team)); }

    std::shared_ptr<TeamPage> page;
};

TEST_F(TeamPageTest, ShowsTheTeam) {
    EXPECT_EQ(page->Entry().name, kTeamName);
    EXPECT_EQ(page->Entry().mode, TeamMode::AdaptiveLoadBalancing);
    EXPECT_EQ(page->Status(), L"enabled");
    EXPECT_NE(page->MacAddress(), L"");
    ASSERT_GE(page->Rows().size(), 2u);
    EXPECT_EQ(page->Rows()[0].id, Named(kPrimary)); // members first
    EXPECT_EQ(page->RoleOf(Named(kPrimary)), MemberRole::Primary);
    EXPECT_EQ(page->RoleOf(Named(kSecondary)), MemberRole::Secondary);
    const std::vector<TeamMode> modes = page->Modes();
    EXPECT_EQ(modes.front(), TeamMode::AdaptiveLoadBalancing);
    EXPECT_NE(std::ranges::find(modes, TeamMode::FaultTolerance), modes.end());
    EXPECT_FALSE(page->IsChanged());
}

TEST_F(TeamPageTest, RenamesAndChangesTheMode) {
    page->TypeName(L"TEAM : Keller");
    page->PickMode(TeamMode::FaultTolerance);
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"");
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone) << ToUtf8(page->Notice());
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"PutInstance", L"Apply"}));
    EXPECT_EQ(TeamNow().name, L"TEAM : Keller");
    EXPECT_EQ(TeamNow().mode, TeamMode::FaultTolerance);
    EXPECT_FALSE(page->IsChanged());
}

TEST_F(TeamPageTest, SaysWhatANameIsNot) {
    page->TypeName(L"");
    EXPECT_EQ(page->Mistake(), L"a name is needed");
    page->TypeName(L"   ");
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"this cannot be the name of a team");
}

TEST_F(TeamPageTest, AddsAndRemovesMembers) {
    page->Tick(Named(kJoiner), true);
    page->Tick(Named(kPrimary), false);
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"");
    const Texts warnings = page->Changes().warnings;
    ASSERT_FALSE(warnings.empty());
    EXPECT_EQ(warnings[0], L"“Slot 4, port 1: Zorel Quad Port Gigabit Server Adapter” will leave the team. "
                           L"Its connection is interrupted.");
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone) << ToUtf8(page->Notice());
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"DeleteInstance", L"PutInstance", L"Apply"}));
    EXPECT_EQ(Members().size(), 2u);
    EXPECT_EQ(RoleOf(kSecondary), MemberRole::Primary); // the provider's doing, and no complaint
    EXPECT_EQ(page->Notice(), L"");
}

TEST_F(TeamPageTest, SaysWhoCannotBeAMember) {
    GiveVlan(kJoiner);
    page->Tick(Named(kJoiner), true);
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"an adapter carries VLANs of its own");
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_EQ(Members().size(), 2u);
    EXPECT_TRUE(page->IsMember(Named(kJoiner)));
}

TEST_F(TeamPageTest, ANewPrimaryGivesItsRoleToTheOldOne) {
    page->SetRole(Named(kSecondary), MemberRole::Primary);
    EXPECT_EQ(page->RoleOf(Named(kSecondary)), MemberRole::Primary);
    EXPECT_EQ(page->RoleOf(Named(kPrimary)), MemberRole::Secondary);
    EXPECT_TRUE(page->IsChanged());
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(RoleOf(kSecondary), MemberRole::Primary);
    EXPECT_EQ(RoleOf(kPrimary), MemberRole::Secondary);
    EXPECT_FALSE(page->IsChanged());
    page->SetRole(Named(kSecondary), MemberRole::NotAssigned);
    page->SetRole(Named(kSecondary), MemberRole::Primary);
    EXPECT_FALSE(page->IsChanged());
}

TEST_F(TeamPageTest, NoticesThatSomebodyElseChangedIt) {
    page->TypeName(L"TEAM : Keller");
    desk.With([this](Session& session) {
        session.ModifyTeam(team, L"TEAM : Dach", TeamMode::AdaptiveLoadBalancing);
        return true;
    });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"TEAM : Dach"), std::wstring::npos);
    EXPECT_EQ(page->Entry().name, L"TEAM : Keller");
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(TeamNow().name, L"TEAM : Keller");
}

TEST_F(TeamPageTest, ARefusalLosesNothing) {
    page->TypeName(L"TEAM : Keller");
    simulator::FaultRule rule;
    rule.operation = simulator::Operation::PutInstance;
    rule.code = HRESULT(WBEM_E_ACCESS_DENIED);
    desk.Machine().Rules().Add(rule);
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(page->Entry().name, L"TEAM : Keller");
}

TEST_F(TeamPageTest, FindsTheBestMode) {
    desk.Do(page, page->FindingBest());
    for (int left = 100; left > 0 && page->IsSearching(); --left) {
        EXPECT_EQ(page->About().find(L"The best mode is being looked for"), 0u);
        desk.Machine().Advance(std::chrono::seconds(1));
        desk.Do(page, page->FindingBest());
    }
    EXPECT_FALSE(page->IsSearching());
    EXPECT_EQ(page->About().find(L"Best for this team: "), 0u) << ToUtf8(page->About());
    page->PickMode(TeamMode::FaultTolerance);
    EXPECT_EQ(page->About().find(L"One member carries all traffic"), 0u);
}

struct SwitchTestPageTest : TeamPagesTest {
    std::shared_ptr<SwitchTestPage> OpenWith(TeamMode mode) {
        desk.With([&](Session& session) {
            session.ModifyTeam(team, kTeamName, mode);
            return true;
        });
        return desk.Open(std::make_shared<SwitchTestPage>(team));
    }
};

TEST_F(SwitchTestPageTest, HasNothingToTestWhereTheSwitchNeedNotHelp) {
    const auto page = OpenWith(TeamMode::AdaptiveLoadBalancing);
    EXPECT_FALSE(page->CanStart());
    EXPECT_EQ(page->Notice(),
              L"There is nothing to test: adaptive load balancing asks nothing of the switch.");
}

TEST_F(SwitchTestPageTest, RunsToItsEnd) {
    const auto page = OpenWith(TeamMode::DynamicLinkAggregation);
    EXPECT_TRUE(page->CanStart());
    EXPECT_EQ(page->Status(), L"not started");
    desk.Do(page, page->Sending(SwitchCommand::Start));
    EXPECT_TRUE(page->IsRunning());
    EXPECT_FALSE(page->CanStart());
    desk.Machine().Advance(std::chrono::minutes(5));
    desk.Do(page, page->Sending(SwitchCommand::Query));
    EXPECT_FALSE(page->IsRunning());
    EXPECT_TRUE(page->Status() == L"passed" || page->Status() == L"failed");
    EXPECT_EQ(page->Status() == L"failed", !page->Troubles().empty());
}

TEST_F(SwitchTestPageTest, CanBeStopped) {
    const auto page = OpenWith(TeamMode::DynamicLinkAggregation);
    desk.Do(page, page->Sending(SwitchCommand::Start));
    desk.Do(page, page->Sending(SwitchCommand::Stop));
    EXPECT_FALSE(page->IsRunning());
    EXPECT_EQ(page->Status(), L"stopped");
}

struct TeamingPageTest : TeamPagesTest {
    std::shared_ptr<TeamingPage> Of(const wchar_t* name) {
        return desk.Open(std::make_shared<TeamingPage>(Named(name)));
    }
};

TEST_F(TeamingPageTest, ShowsAMember) {
    const auto page = Of(kPrimary);
    EXPECT_TRUE(page->IsTeamed());
    EXPECT_EQ(page->Team(), team);
    EXPECT_EQ(page->Role(), MemberRole::Primary);
    EXPECT_EQ(page->Status(), L"active");
    ASSERT_EQ(page->Members().size(), 2u);
    EXPECT_EQ(page->Members()[1].name, L"Slot 4, port 2: Zorel Quad Port Gigabit Server Adapter");
    EXPECT_EQ(page->Members()[1].link, L"1 Gbit/s");
    EXPECT_EQ(page->Members()[1].role, L"secondary");
    EXPECT_EQ(page->Ports(), L"Zorel Quad Port Gigabit Server Adapter (Slot 4, port 2): TEAM : Zürich");
    EXPECT_EQ(page->Modes().find(L"adaptive load balancing\r\n"), 0u);
}

TEST_F(TeamingPageTest, AnAdapterThatCannotSaysSo) {
    desk.TakeCapability(kDesktop, Capability::Teaming);
    const auto page = Of(kDesktop);
    EXPECT_FALSE(page->CanBeTeamed());
    EXPECT_EQ(page->Notice(), L"This adapter cannot be a member of a team: it lacks the capability.");
}

TEST_F(TeamingPageTest, JoinsAndLeaves) {
    const auto page = Of(kJoiner);
    EXPECT_FALSE(page->IsTeamed());
    page->PickTeam(team);
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"");
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone) << ToUtf8(page->Notice());
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"PutInstance", L"Apply"}));
    EXPECT_EQ(Members().size(), 3u);
    page->PickTeam(TeamId());
    desk.Settle();
    EXPECT_EQ(page->Changes().warnings[0],
              L"The adapter will leave “TEAM : Zürich”. Its connection is interrupted.");
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"DeleteInstance", L"Apply"}));
    EXPECT_EQ(Members().size(), 2u);
}

TEST_F(TeamingPageTest, SaysWhyItCannotJoin) {
    GiveVlan(kJoiner);
    const auto page = Of(kJoiner);
    page->PickTeam(team);
    desk.Settle();
    EXPECT_EQ(page->Mistake(), L"an adapter carries VLANs of its own");
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_EQ(Members().size(), 2u);
    EXPECT_EQ(page->Team(), team);
}

TEST_F(TeamingPageTest, TellsThatATeamIsLeftEmpty) {
    desk.With([this](Session& session) {
        session.RemoveMember(team, AdapterId(session.Members(team).back().id));
        return true;
    });
    const auto page = Of(kPrimary);
    page->PickTeam(TeamId());
    desk.Settle();
    const Texts warnings = page->Changes().warnings;
    EXPECT_NE(std::ranges::find(warnings, L"The team will have no members, and no connection."),
              warnings.end());
}

TEST_F(TeamingPageTest, ChangesItsRole) {
    const auto page = Of(kSecondary);
    page->PickRole(MemberRole::Primary);
    EXPECT_TRUE(page->IsChanged());
    EXPECT_TRUE(desk.Apply(page).isDone) << ToUtf8(page->Notice());
    EXPECT_EQ(RoleOf(kSecondary), MemberRole::Primary);
    EXPECT_EQ(RoleOf(kPrimary), MemberRole::Secondary);
    EXPECT_FALSE(page->IsChanged());
    page->PickRole(MemberRole::NotAssigned);
    page->PickRole(MemberRole::Primary);
    EXPECT_FALSE(page->IsChanged());
}

TEST_F(TeamingPageTest, NoticesThatSomebodyElseChangedIt) {
    const auto page = Of(kSecondary);
    page->PickTeam(TeamId());
    desk.Settle();
    desk.With([this, id = Named(kSecondary)](Session& session) {
        NewTeam other{.name = L"TEAM : Dach", .members = {AdapterNamedIn(session, kJoiner)}};
        const Team made = session.CreateTeam(other);
        session.RemoveMember(team, id);
        session.AddMember(made.id, id);
        return true;
    });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"TEAM : Dach"), std::wstring::npos) << ToUtf8(page->Notice());
    EXPECT_TRUE(page->Team().IsEmpty());
}

} // namespace

} // namespace quillet::tests
