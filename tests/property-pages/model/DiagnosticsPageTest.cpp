// Diagnostic tests, run and followed.
#include "model/DiagnosticsPage.h"
#include "model/ModelDesk.h"

#include <algorithm>

namespace quillet::tests {

namespace {

using namespace pages;
using namespace std::chrono_literals;

class DiagnosticsPageTest : public testing::Test {
  protected:
    DiagnosticsPageTest() { m_page = Open(); }

    std::shared_ptr<DiagnosticsPage> Open() {
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            m_adapter = session.Adapters().front().id;
            return nullptr;
        });
        const auto page = std::make_shared<DiagnosticsPage>(m_adapter);
        page->now = [this] { return m_now; };
        m_desk.Read(page);
        m_desk.Machine().Calls().Clear();
        return page;
    }
    /// What the window does at once and with each beat of its timer.
    void Beat() {
        if (std::optional<Job> question = m_page->NextQuestion()) {
            m_desk.Worker().Ask(m_page, std::move(*question),
                                [this](const std::wstring& reason) { m_page->Fail(reason); });
            m_desk.Settle();
        }
    }
    void Pass(std::chrono::milliseconds time) {
        m_desk.Machine().Advance(time);
        m_now += time;
    }
    void RunToTheEnd() {
        for (int beats = 200; m_page->IsBusy() && beats > 0; --beats) {
            Beat();
            Pass(500ms);
        }
        EXPECT_FALSE(m_page->IsBusy());
    }
    std::size_t Place(const std::wstring& name) const {
        const auto& tests = m_page->Tests();
        const auto found = std::ranges::find_if(
            tests, [&](const ListedTest& each) { return each.test.name.find(name) == 0; });
        EXPECT_NE(found, tests.end());
        return std::size_t(found - tests.begin());
    }
    const ListedTest& Chosen() const { return m_page->Tests().at(m_page->Chosen()); }

    ModelDesk m_desk;
    AdapterId m_adapter;
    DiagnosticsPage::Clock::time_point m_now{};
    std::shared_ptr<DiagnosticsPage> m_page;
};

TEST_F(DiagnosticsPageTest, ListsTheTestsWithWhatIsKnownOfThem) {
    ASSERT_FALSE(m_page->Tests().empty());
    m_page->Choose(Place(L"Register test"));
    EXPECT_EQ(m_page->State(Chosen()), L"Passed");
    EXPECT_EQ(DiagnosticsPage::Outcome(Chosen()), L"The registers answer.");
    EXPECT_FALSE(m_page->IsBusy());
    EXPECT_EQ(m_page->Progress(), Say(TextId::DiagBefore));
    EXPECT_FALSE(m_page->NextQuestion().has_value()) << "nothing runs";
}

TEST_F(DiagnosticsPageTest, APackageTellsItsMembers) {
    m_page->Choose(Place(L"Hardware tests"));
    const std::wstring details = m_page->Details();
    EXPECT_NE(details.find(L"All tests passed."), std::wstring::npos);
    EXPECT_NE(details.find(L"Registers: The registers answer."), std::wstring::npos);
    EXPECT_NE(details.find(L"Loopback: 1000 frames came back."), std::wstring::npos);
    EXPECT_NE(details.find(L"700"), std::wstring::npos);
}

TEST_F(DiagnosticsPageTest, RunsATestAndFollowsIt) {
    m_page->Choose(Place(L"Register test"));
    m_page->Run();
    Beat();
    EXPECT_TRUE(m_page->IsBusy());
    EXPECT_EQ(m_page->State(Chosen()), L"In Progress");
    EXPECT_EQ(DiagnosticsPage::Outcome(Chosen()), L"") << "what came of it before is nobody's question now";
    Pass(1000ms);
    Beat();
    EXPECT_EQ(m_page->Progress(), Say(TextId::DiagRunning, {L"1", L"0"}));
    Pass(1500ms);
    Beat();
    EXPECT_FALSE(m_page->IsBusy());
    EXPECT_EQ(m_page->State(Chosen()), L"Passed");
    EXPECT_EQ(m_desk.Calls(L"RunTest").size(), 1U);
}

TEST_F(DiagnosticsPageTest, OneQuestionAtATime) {
    m_page->Run();
    const std::optional<Job> first = m_page->NextQuestion();
    EXPECT_TRUE(first.has_value());
    EXPECT_FALSE(m_page->NextQuestion().has_value());
}

TEST_F(DiagnosticsPageTest, RunsAllOneAfterTheOther) {
    m_page->RunAll();
    m_page->RunAll();
    EXPECT_EQ(m_page->State(m_page->Tests().back()), Say(TextId::DiagWaiting));
    RunToTheEnd();
    EXPECT_EQ(m_desk.Calls(L"ExecMethod").size(), m_page->Tests().size()) << "each is started once";
    EXPECT_EQ(m_page->Notice(), L"");
}

TEST_F(DiagnosticsPageTest, StopsTheOneThatRunsAndForgetsTheOthers) {
    m_page->RunAll();
    Beat();
    m_page->Stop();
    EXPECT_TRUE(m_page->IsStopping());
    Beat();
    Pass(200ms);
    Beat();
    EXPECT_FALSE(m_page->IsBusy());
    EXPECT_EQ(m_page->State(m_page->Tests().front()), L"Stopped");
    EXPECT_EQ(m_desk.Calls(L"RunTest").size(), 1U);
}

TEST_F(DiagnosticsPageTest, ATestThatTheProviderDoesNotStartIsToldAndTheNextOneRuns) {
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"RunTest", .effect = simulator::Effect::Verdict, .verdict = 2});
    m_page->Choose(Place(L"Register test"));
    m_page->Run();
    m_page->Choose(Place(L"EEPROM test"));
    m_page->Run();
    Beat();
    Pass(2500ms);
    Beat();
    EXPECT_NE(m_page->Notice().find(L"Register test"), std::wstring::npos);
    RunToTheEnd();
    EXPECT_EQ(m_desk.Calls(L"RunTest").size(), 2U);
}

TEST_F(DiagnosticsPageTest, ARefusalEndsTheFollowing) {
    m_desk.Machine().Rules().Add({.target = {}, .method = L"RunTest", .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    m_page->RunAll();
    Beat();
    EXPECT_FALSE(m_page->IsBusy());
    EXPECT_NE(m_page->Notice().find(L"access is denied"), std::wstring::npos);
    m_page->Run();
    RunToTheEnd();
    EXPECT_EQ(m_page->Notice(), L"");
}

TEST_F(DiagnosticsPageTest, ATestThatDoesNotStopIsFollowedOn) {
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"DiscontinueTest", .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    m_page->Run();
    Beat();
    m_page->Stop();
    Beat();
    EXPECT_NE(m_page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_TRUE(m_page->IsBusy());
    EXPECT_FALSE(m_page->IsStopping()) << "it can be tried again";
    RunToTheEnd();
}

TEST_F(DiagnosticsPageTest, ATestThatRunsAlreadyIsFollowedAndCanBeStopped) {
    m_page->Choose(Place(L"Loopback test"));
    m_page->Run();
    Beat();
    m_page = Open();
    EXPECT_TRUE(m_page->IsBusy());
    m_page->Stop();
    RunToTheEnd();
    EXPECT_EQ(m_desk.Calls(L"DiscontinueTest").size(), 1U);
}

TEST_F(DiagnosticsPageTest, ReadingAgainMeanwhileLosesNothing) {
    m_page->RunAll();
    Beat();
    m_desk.Read(m_page);
    EXPECT_TRUE(m_page->IsBusy());
    RunToTheEnd();
    EXPECT_EQ(m_desk.Calls(L"RunTest").size(), m_page->Tests().size());
}

} // namespace

} // namespace quillet::tests
