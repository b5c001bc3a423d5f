// One session, several threads.
#include "ProviderTest.h"

#include <quillet/client.h>

#include <latch>
#include <thread>

namespace quillet::tests {

namespace {

class SessionThreadsTest : public ProviderTest {};

TEST_F(SessionThreadsTest, Session_ServesSeveralThreads) {
    Session session;
    const std::size_t count = session.Adapters().size();
    constexpr int kThreads = 4;
    std::latch start(kThreads);
    std::vector<std::thread> threads;
    std::vector<std::size_t> counts(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
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
