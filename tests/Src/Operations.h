// The operations that go through every anomaly: one line each.
#pragma once

#include "ProviderTest.h"

/// An operation, ready to run on the machine of OperationsTest.
struct OperationCase {
    const char* name;
    /// Runs it with fresh outputs.
    std::function<HRESULT(CQuillet&)> run;
    /// What comes back when this call fails with `code`, where it is not the code itself.
    std::function<HRESULT(const JournalEntry& failed, HRESULT code)> documented = {};
};

/// All of them.
const std::vector<OperationCase>& Operations();

void PrintTo(const OperationCase& operation, std::ostream* out);

/// A connected session with a small machine in which every operation has something to read.
class OperationsTest : public ProviderTest, public testing::WithParamInterface<OperationCase> {
  protected:
    void SetUp() override;
};

std::string OperationTestName(const testing::TestParamInfo<OperationCase>& info);
