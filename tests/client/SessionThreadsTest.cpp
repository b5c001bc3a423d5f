// One session, several threads.
#include "ProviderTest.h"

#include <quillet/client.h>

#include <atomic>
#include <thread>

namespace quillet::tests {

namespace {

class SessionThreadsTest : public ProviderTest {};

TEST_F(SessionThreadsTest, Session_ServesSeveralThreads) {
    Session session;
    const std::size_t count = session.Adapters().size();
    constexpr int kThreads = 4;
    // Not a std::latch: where the system has no futex, libstdc++'s can lose the last arrival.
    std::atomic<int> waitedFor{kThreads};
    std::vector<std::thread> threads;
    std::vector<std::size_t> counts(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (--waitedFor; waitedFor > 0;) {
                std::this_thread::yield();
            }
            for (int round = 0; round < 5; ++round) {
                counts[static_cast<std::size_t>(i)] = session.Adapters().size();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counts, std::vector<std::size_t>(kThreads, count));
}

} // namespace

} // namespace quillet::tests
