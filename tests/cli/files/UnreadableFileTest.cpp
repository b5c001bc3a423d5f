// A file that opens and then cannot be read, as on a broken disk. Only a POSIX host has one that always does
// so.
#include "support/RunCommandLine.h"

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;

class UnreadableFileTest : public CommandLine {};

TEST_F(UnreadableFileTest, IsBadUsageAndNamed) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Port"; OriginalDisplayName = "Port"; };
        instance of Zorel_BootAgent { Name = "{A}"; };)");
    const Outcome image =
        RunCommandLine({"--simulate", machine, "boot", "write", "Port", "/proc/self/mem", "--yes"});
    EXPECT_EQ(image.status, 2);
    EXPECT_THAT(image.err, testing::HasSubstr("/proc/self/mem: cannot be read"));
    const Outcome simulated = RunCommandLine({"--simulate", "/proc/self/mem", "adapter", "list"});
    EXPECT_EQ(simulated.status, 2);
    EXPECT_THAT(simulated.err, testing::HasSubstr("/proc/self/mem:1:1: the file cannot be read"));
}

} // namespace
