// What quilletctl itself gives back to the heap while it handles secrets.
#include "support/Descriptor.h"
#include "FreedBlocks.h"
#include "support/LinksecMachine.h"
#include "support/RunCommandLine.h"

namespace {

using namespace quillet::tests;

struct Line {
    const char* name;
    std::vector<std::string> arguments;
    std::string secrets; ///< for the descriptor; empty: none is named
    int status;
};

void PrintTo(const Line& line, std::ostream* out) {
    *out << line.name;
}

class LinksecFreesTest : public CommandLine, public testing::WithParamInterface<Line> {};

TEST_P(LinksecFreesTest, NoSecrets) {
    const std::string machine = MachineFile(kLinksecMachine);
    std::vector<std::string> arguments{"--simulate", machine, "linksec"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const Descriptor descriptor(GetParam().secrets);
    if (!GetParam().secrets.empty()) {
        arguments.insert(arguments.end(), {"--secret-fd", descriptor.Number()});
    }
    const FreedBlocks freed("CANARY");
    const Outcome outcome = RunCommandLine(arguments);
    EXPECT_EQ(outcome.status, GetParam().status) << outcome.err;
    for (const FreedBlocks::Finding& finding : freed.FindingsOutsideSimulator()) {
        ADD_FAILURE() << finding.bytes << " bytes, freed by" << finding.where;
    }
    EXPECT_FALSE(freed.Findings().empty()) << "the machine went, and its secrets with it";
}

INSTANTIATE_TEST_SUITE_P(
    Linksec, LinksecFreesTest,
    testing::Values(
        Line{"Show", {"show", "A"}, "", 0}, Line{"ShowJson", {"show", "A", "--json", "--journal"}, "", 0},
        Line{"SetKeys",
             {"set-keys", "A"},
             "CANARY of a new outgoing key CANARY\nCANARY of a new incoming key CANARY\n",
             0},
        Line{"SetKeysHalf", {"set-keys", "A"}, "CANARY of the only key CANARY\n", 2},
        Line{"SetAuth",
             {"set-auth", "A", "--outer", "4", "--journal"},
             "CANARY of a new password CANARY\n",
             0},
        Line{"SetAuthRefused", {"set-auth", "B"}, "CANARY of a new password CANARY\n", 1},
        Line{"ImportPac", {"import-pac", "A", "new.pac"}, "CANARY-file-CANARY\n", 0},
        Line{"ImportPacRefused", {"import-pac", "A", "new.pac"}, "CANARY of the wrong one CANARY\n", 1},
        Line{"Pmk", {"pmk", "A"}, "", 0},
        Line{"PmkSet", {"pmk", "A"}, "CANARY of a new master key CANARY\n", 0},
        Line{"PmkFlag", {"pmk", "A", "--random-mac", "on"}, "", 0},
        Line{"PmkRemove", {"pmk", "A", "--remove"}, "", 0},
        Line{"NotTaken", {"set-auth", "A", "--outer", "1"}, "CANARY of a password not sent CANARY\n", 1},
        Line{"NoText", {"pmk", "A"}, "CANARY of no text\xC0 CANARY\n", 2},
        Line{"TooLong", {"pmk", "A"}, "CANARY" + std::string(5000, 'x') + "\n", 2}),
    [](const testing::TestParamInfo<Line>& line) { return std::string(line.param.name); });

} // namespace
