// After every test: nothing that the host can count may be more than it was before.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace quillet::tests {

/// Adds something to count. Call it before the tests run, or from a static initialiser.
/// @param name for the failure message, e.g. "simulator COM objects"
/// @param count how many are alive in the process now; asked before and after every test
void RegisterLeakCounter(std::string name, std::function<long()> count);

/// The counters of this host; one implementation per host.
void RegisterHostLeakCounters();

/// Fails a test that ends with more of anything than it began with. Less is no failure: a test may close what
/// was open before it.
class LeakListener : public testing::EmptyTestEventListener {
  public:
    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;
};

} // namespace quillet::tests
