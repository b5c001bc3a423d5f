// The thread that talks to the machine.
#include "model/ModelDesk.h"

namespace quillet::tests {

namespace {

using namespace pages;
using namespace std::chrono_literals;

Job Saying(std::vector<int>& said, int what) {
    return
        [&said, what](Session&, const Asking&) -> Answer { return [&said, what] { said.push_back(what); }; };
}

void Unexpected(const std::wstring& reason) {
    ADD_FAILURE() << std::string(reason.begin(), reason.end());
}

TEST(WorkerTest, AnswersComeInOrderOnTheThreadOfTheWindows) {
    ModelDesk desk;
    std::vector<int> said;
    const auto here = std::this_thread::get_id();
    for (const int what : {1, 2, 3}) {
        desk.Worker().Ask(desk.Owner(), Saying(said, what), Unexpected);
    }
    std::thread::id there;
    std::thread::id answered;
    desk.Worker().Ask(
        desk.Owner(),
        [&](Session&, const Asking&) -> Answer {
            there = std::this_thread::get_id();
            return [&] { answered = std::this_thread::get_id(); };
        },
        Unexpected);
    EXPECT_TRUE(said.empty()) << "nobody waited";
    desk.Settle();
    EXPECT_EQ(said, (std::vector{1, 2, 3}));
    EXPECT_NE(there, here);
    EXPECT_EQ(answered, here);
}

TEST(WorkerTest, AnAnswerWhoseOwnerIsGoneIsDropped) {
    ModelDesk desk;
    std::vector<int> said;
    auto owner = std::make_shared<int>();
    desk.Worker().Ask(owner, Saying(said, 1), Unexpected);
    owner.reset();
    desk.Settle();
    EXPECT_TRUE(said.empty());
}

TEST(WorkerTest, ProgressIsToldBeforeTheAnswer) {
    ModelDesk desk;
    std::vector<int> said;
    desk.Worker().Ask(
        desk.Owner(),
        [&](Session&, const Asking& asking) -> Answer {
            asking.Show([&] { said.push_back(1); });
            asking.Show([&] { said.push_back(2); });
            return [&] { said.push_back(3); };
        },
        Unexpected);
    desk.Settle();
    EXPECT_EQ(said, (std::vector{1, 2, 3}));
}

TEST(WorkerTest, AFailureIsToldInWords) {
    ModelDesk desk;
    desk.Machine().Rules().Add({.operation = simulator::Operation::CreateInstanceEnum,
                                .target = {},
                                .method = {},
                                .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    const std::wstring reason = desk.Do([](Session& session, const Asking&) -> Answer {
        session.Adapters();
        return nullptr;
    });
    EXPECT_EQ(reason, L"access is denied: 0x80041003 WBEM_E_ACCESS_DENIED");
    EXPECT_EQ(desk.Do([](Session&, const Asking&) -> Answer { throw std::runtime_error("other"); }),
              L"other");
}

TEST(WorkerTest, AProviderThatWentAwayIsConnectedAnew) {
    ModelDesk desk;
    const auto read = [](Session& session, const Asking&) -> Answer {
        session.Adapters();
        return nullptr;
    };
    EXPECT_EQ(desk.Do(read), L"");
    EXPECT_EQ(desk.Do(read), L"");
    EXPECT_EQ(desk.Connections(), 1) << "a connection that works is kept";

    desk.Machine().Rules().Add({.operation = simulator::Operation::CreateInstanceEnum,
                                .target = {},
                                .method = {},
                                .code = HRESULT(0x800706BA)});
    EXPECT_NE(desk.Do(read), L"");
    EXPECT_EQ(desk.Do(read), L"");
    EXPECT_EQ(desk.Connections(), 2);
}

TEST(WorkerTest, AMachineThatCannotBeReachedIsTriedAgainWithTheNextQuestion) {
    const auto machine = FreshMachine();
    machine->Rules().Add({.operation = simulator::Operation::ConnectServer,
                          .target = {},
                          .method = {},
                          .code = HRESULT(0x800706BA)});
    ModelDesk desk(machine);
    const auto nothing = [](Session&, const Asking&) -> Answer { return nullptr; };
    EXPECT_NE(desk.Do(nothing), L"");
    EXPECT_EQ(desk.Do(nothing), L"");
}

TEST(WorkerTest, AJobCanBeStopped) {
    ModelDesk desk;
    bool isStopped = false;
    std::stop_source stop = desk.Worker().Ask(
        desk.Owner(),
        [&](Session&, const Asking& asking) -> Answer {
            while (!asking.Stop().stop_requested()) {
                std::this_thread::sleep_for(1ms);
            }
            return [&] { isStopped = true; };
        },
        Unexpected);
    stop.request_stop();
    desk.Settle();
    EXPECT_TRUE(isStopped);
}

TEST(WorkerTest, ItLeavesAJobThatDoesNotReturn) {
    std::atomic<bool> mayReturn = false;
    std::atomic<bool> isRunning = false;
    ModelDesk desk;
    desk.Worker().Ask(
        desk.Owner(),
        [&](Session&, const Asking&) -> Answer {
            isRunning = true;
            while (!mayReturn) {
                std::this_thread::sleep_for(1ms);
            }
            return nullptr;
        },
        Unexpected);
    while (!isRunning) {
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_FALSE(desk.Worker().Leave(10ms));
    mayReturn = true;
    EXPECT_TRUE(desk.Worker().Leave(10s));
}

} // namespace

} // namespace quillet::tests
