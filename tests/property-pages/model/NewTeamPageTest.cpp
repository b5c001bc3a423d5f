// The New Team wizard without its windows.
#include "model/AskingDesk.h"

#include "model/NewTeamPage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillet::tests {

namespace {

using pages::NewTeamPage;
using Step = pages::NewTeamPage::Step;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kFirst = L"Zorel Quad Port Gigabit Server Adapter #3 (Zürich)";
constexpr const wchar_t* kSecond = L"Zorel Quad Port Gigabit Server Adapter #4";
constexpr const wchar_t* kTeamed = L"Zorel Quad Port Gigabit Server Adapter";
constexpr const wchar_t* kTenGigabit = L"Zorel 10G Dual Port Server Adapter";
constexpr const wchar_t* kSlow = L"Zorel Fast Ethernet Adapter";

/// Whether a step may be left.
bool MayLeave(AskingDesk& desk, const std::shared_ptr<NewTeamPage>& page, Step step) {
    bool isGood = false;
    desk.Do(page, page->Verifying(step, [&] { isGood = true; }));
    EXPECT_FALSE(page->IsBusy());
    return isGood;
}

std::vector<Team> TeamsOf(AskingDesk& desk) {
    return desk.With([](Session& session) { return session.Teams(); });
}

struct NewTeamPageTest : testing::Test {
    NewTeamPageTest() { page = desk.Open(std::make_shared<NewTeamPage>()); }

    AdapterId Named(const wchar_t* name) { return AdapterNamed(desk, name); }
    void Tick(const wchar_t* name) { page->Tick(Named(name), true); }

    AskingDesk desk;
    std::shared_ptr<NewTeamPage> page;
};

TEST_F(NewTeamPageTest, ProposesThePrefixAndSaysWhoCannot) {
    EXPECT_EQ(page->Wanted().name, L"TEAM : ");
    const auto teamed = std::ranges::find(page->Candidates(), Named(kTeamed), &pages::Candidate::id);
    ASSERT_NE(teamed, page->Candidates().end());
    EXPECT_EQ(teamed->whyNot, L"member of TEAM : Zürich");
    Tick(kTeamed);
    EXPECT_TRUE(page->Wanted().members.empty());
}

TEST_F(NewTeamPageTest, TheAdapterThatWasChosenIsAMember) {
    const auto other = desk.Open(std::make_shared<NewTeamPage>(Named(kFirst)));
    EXPECT_EQ(other->Wanted().members, std::vector<AdapterId>{Named(kFirst)});
    const auto none = desk.Open(std::make_shared<NewTeamPage>(Named(kTeamed)));
    EXPECT_TRUE(none->Wanted().members.empty());
}

TEST_F(NewTeamPageTest, EachStepSaysWhatIsWrongThere) {
    page->TypeName(L"TEAM : Zürich");
    EXPECT_FALSE(MayLeave(desk, page, Step::Name));
    EXPECT_EQ(page->Notice(), L"a team with this name exists");
    page->TypeName(L"TEAM : Keller");
    EXPECT_TRUE(MayLeave(desk, page, Step::Name));
    EXPECT_EQ(page->Notice(), L"");
    EXPECT_FALSE(MayLeave(desk, page, Step::Members));
    EXPECT_EQ(page->Notice(), L"Tick the adapters that are to become members.");
    Tick(kTenGigabit);
    Tick(kSlow);
    EXPECT_FALSE(MayLeave(desk, page, Step::Members));
    EXPECT_NE(page->Notice().find(L"adapters of 10 gigabit and slow ones cannot be in one team"),
              std::wstring::npos);
    page->Tick(Named(kTenGigabit), false);
    page->Tick(Named(kSlow), false);
    Tick(kFirst);
    Tick(kSecond);
    EXPECT_TRUE(MayLeave(desk, page, Step::Members)) << ToUtf8(page->Notice());
    EXPECT_EQ(page->Modes().front(), TeamMode::AdaptiveLoadBalancing);
    page->PickMode(TeamMode::FaultTolerance);
    EXPECT_TRUE(MayLeave(desk, page, Step::Mode)) << ToUtf8(page->Notice());
}

TEST_F(NewTeamPageTest, AModeForTwoIsNotOfferedToThree) {
    Tick(kFirst);
    Tick(kSecond);
    MayLeave(desk, page, Step::Members);
    const auto has = [&] {
        return std::ranges::find(page->Modes(), TeamMode::SwitchFaultTolerance) != page->Modes().end();
    };
    EXPECT_TRUE(has());
    page->PickMode(TeamMode::SwitchFaultTolerance);
    Tick(kTenGigabit);
    MayLeave(desk, page, Step::Members);
    EXPECT_FALSE(has());
    EXPECT_NE(page->Wanted().mode, TeamMode::SwitchFaultTolerance);
}

TEST_F(NewTeamPageTest, MakesTheTeamInOneClientSet) {
    page->TypeName(L"TEAM : Keller");
    Tick(kFirst);
    Tick(kSecond);
    page->MakePrimary(Named(kSecond));
    MayLeave(desk, page, Step::Members);
    MayLeave(desk, page, Step::Mode);
    const std::wstring summary = page->Summary();
    EXPECT_NE(summary.find(L"Name: TEAM : Keller\r\nMode: adaptive load balancing\r\nMembers: 2"),
              std::wstring::npos);
    EXPECT_NE(summary.find(L"(Slot 4, port 4), primary"), std::wstring::npos);
    EXPECT_NE(summary.find(L"receive side scaling will be enabled on the team"), std::wstring::npos);
    desk.Machine().Calls().Clear();
    EXPECT_TRUE(desk.Apply(page).isDone) << ToUtf8(page->Notice());
    EXPECT_EQ(desk.Changes(), (Texts{L"BeginApply", L"CreateTeam", L"Apply"}));
    EXPECT_EQ(page->Wanted().members.size(), 2u);
    const TeamId team = TeamNamed(desk, L"TEAM : Keller");
    const auto members = desk.With([&](Session& session) { return session.Members(team); });
    EXPECT_EQ(members.size(), 2u);
    for (const TeamMember& member : members) {
        EXPECT_EQ(member.role == MemberRole::Primary, member.id == Named(kSecond));
    }
}

TEST_F(NewTeamPageTest, ATeamWithoutVlansIsAConsequenceAndNoMistake) {
    desk.TakeCapability(kSecond, Capability::Vlan);
    page->TypeName(L"TEAM : Keller");
    Tick(kFirst);
    Tick(kSecond);
    EXPECT_TRUE(MayLeave(desk, page, Step::Members)) << ToUtf8(page->Notice());
    EXPECT_TRUE(MayLeave(desk, page, Step::Mode)) << ToUtf8(page->Notice());
    EXPECT_NE(page->Summary().find(L"an adapter cannot carry VLANs, so the team will not either"),
              std::wstring::npos);
}

TEST_F(NewTeamPageTest, AMemberThatSomebodyElseTookIsTold) {
    page->TypeName(L"TEAM : Keller");
    Tick(kFirst);
    Tick(kSecond);
    desk.With([second = Named(kSecond)](Session& session) {
        session.AddMember(session.Teams().front().id, second);
        return true;
    });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"cannot be a member any more: member of TEAM : Zürich"),
              std::wstring::npos)
        << ToUtf8(page->Notice());
    EXPECT_EQ(page->Wanted().members, std::vector<AdapterId>{Named(kFirst)});
    EXPECT_EQ(TeamsOf(desk).size(), 1u);
}

TEST_F(NewTeamPageTest, ANameThatSomebodyElseTookIsTold) {
    page->TypeName(L"TEAM : Keller");
    Tick(kFirst);
    MayLeave(desk, page, Step::Members);
    desk.With([&](Session& session) {
        session.ModifyTeam(session.Teams().front().id, L"TEAM : Keller", TeamMode::AdaptiveLoadBalancing);
        return true;
    });
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"a team with this name exists"), std::wstring::npos);
}

TEST_F(NewTeamPageTest, ARefusalLosesNothing) {
    page->TypeName(L"TEAM : Keller");
    Tick(kFirst);
    Tick(kSecond);
    MayLeave(desk, page, Step::Mode);
    Refuse(desk.Machine(), L"CreateTeam");
    EXPECT_FALSE(desk.Apply(page).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(page->Wanted().members.size(), 2u);
    EXPECT_EQ(page->Wanted().name, L"TEAM : Keller");
    EXPECT_TRUE(desk.Apply(page).isDone);
    EXPECT_EQ(TeamsOf(desk).size(), 2u);
}

TEST_F(NewTeamPageTest, ACheckThatFailsIsNoFinding) {
    Tick(kFirst);
    Refuse(desk.Machine(), L"ValidateNewTeamMembers");
    bool isGood = false;
    desk.Worker().Ask(page, page->Verifying(Step::Members, [&] { isGood = true; }),
                      [raw = page.get()](const std::wstring& reason) { raw->NoteFailure(reason); });
    desk.Settle();
    EXPECT_FALSE(isGood);
    EXPECT_FALSE(page->IsBusy());
    EXPECT_EQ(page->Notice().find(L"This could not be checked: access is denied"), 0u);
}

} // namespace

} // namespace quillet::tests
