// Counts before and after a test.
#include "LeakCheck.h"

#include <utility>
#include <vector>

namespace quillet::tests {

namespace {

struct Counter {
    std::string name;
    std::function<long()> count;
    long before = 0;
};

std::vector<Counter>& Counters() {
    static std::vector<Counter> counters;
    return counters;
}

} // namespace

void RegisterLeakCounter(std::string name, std::function<long()> count) {
    Counters().push_back({std::move(name), std::move(count)});
}

void LeakListener::OnTestStart(const testing::TestInfo&) {
    for (Counter& counter : Counters()) {
        counter.before = counter.count();
    }
}

void LeakListener::OnTestEnd(const testing::TestInfo& test) {
    for (const Counter& counter : Counters()) {
        EXPECT_LE(counter.count(), counter.before)
            << test.test_suite_name() << '.' << test.name() << " leaves " << counter.name;
    }
}

} // namespace quillet::tests
