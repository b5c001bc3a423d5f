// Makes every string allocation of an operation fail in turn. Only for hosts whose platform layer can do
// that.
#pragma once

#include <quillet-platform/TestHooks.h>

#include <comdef.h>

#include <gtest/gtest.h>

#include <functional>

/// Runs an operation as it is, counts the BSTRs that are allocated meanwhile, and runs it again with the
/// first of them failing, the second and so on. Each time either _com_error(E_OUTOFMEMORY) escapes or a
/// failure comes back, and afterwards nothing is alive that was not before. Some of the strings are the
/// simulated provider's own (its journal's, for example); a run that succeeds without one of those must have
/// done all that it should, which the operation checks itself.
/// @param operation leaves the session as it found it when it succeeds, and checks what it then got
/// @param cleanUp   run after each failure, to close what the operation could not
/// @param prepare   run before each run, to give it what the last one used up
inline void FailEachStringAllocation(const std::function<HRESULT()>& operation,
                                     const std::function<void()>& cleanUp = {},
                                     const std::function<void()>& prepare = {}) {
    using quillet::platform::BstrAllocations;
    using quillet::platform::FailBstrAllocation;
    using quillet::platform::Live;

    if (prepare) {
        prepare();
    }
    const unsigned long before = BstrAllocations();
    ASSERT_TRUE(SUCCEEDED(operation())) << "the operation fails without any fault";
    const unsigned long count = BstrAllocations() - before;
    ASSERT_GT(count, 0u) << "the operation allocates no string";
    unsigned long failures = 0;
    for (unsigned long nth = 1; nth <= count; ++nth) {
        SCOPED_TRACE(testing::Message() << "string allocation " << nth << " of " << count);
        if (prepare) {
            prepare();
        }
        const auto alive = Live();
        FailBstrAllocation(nth);
        try {
            failures += FAILED(operation()) ? 1u : 0u;
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
            ++failures;
        }
        FailBstrAllocation(0);
        if (cleanUp) {
            cleanUp();
        }
        EXPECT_TRUE(Live() == alive) << "something is left";
    }
    EXPECT_GT(failures, 0u) << "no allocation was the operation's own";
}
