// Every operation with each of its string allocations failing in turn.
#include "AllocationFailures.h"
#include "Operations.h"

namespace {

class AnomalyAllocationTest : public OperationsTest {};

TEST_P(AnomalyAllocationTest, EachStringMissing_RaisesOrFailsAndLeavesNothing) {
    FailEachStringAllocation(
        [this] {
            Outputs outputs;
            return Run(outputs);
        },
        {}, [this] { RenewAfterChange(); });
}

INSTANTIATE_TEST_SUITE_P(Operations, AnomalyAllocationTest, testing::ValuesIn(Operations()),
                         OperationTestName);

} // namespace
