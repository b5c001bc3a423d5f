// Waiting after a change.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kPort = "Zorel 10G Dual Port Server Adapter";
constexpr const char* kTimedOut = "0x80041069 WBEM_E_TIMED_OUT\n";

/// The shipped machine; from a look at a property on, it cannot be read, or only that once.
class WaitTest : public CommandLine {
  protected:
    void Hide(const std::string& property, int look, bool forGood) {
        m_faults += "instance of QuilletSimulator_Fault { Id = 1; Operation = \"Get\"; Target = \"" +
                    property + "\"; Effect = \"NullValue\"; Nth = " + std::to_string(look) +
                    "; Repeat = " + (forGood ? "TRUE" : "FALSE") + "; };\n";
    }
    Outcome Run(std::vector<std::string> line) const {
        const std::filesystem::path file = InFolder("machine.mof");
        WriteFile(file, ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") + m_faults);
        line.insert(line.begin(), {"--simulate", Utf8(file)});
        return RunCommandLine(line);
    }

  private:
    std::string m_faults;
};

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

TEST_F(WaitTest, ALinkThatComesUpAgain_IsWaitedFor) {
    Hide("HardwareStatus", 3, false); // before the change, once afterwards, then hidden once
    const Outcome outcome = Run({"setting", "set", kPort, "*JumboPacket=1514", "--wait", "20"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Waiting for the change to settle\n" + std::string(kPort) +
                               ": *JumboPacket: set to Disabled (1514)\nno restart is needed\n");
}

TEST_F(WaitTest, ALinkThatStaysDown_IsToldAfterTheAnswer) {
    Hide("HardwareStatus", 2, true);
    const std::vector<std::string> line{"setting", "set", kPort, "*JumboPacket", "1514", "--wait", "1"};
    const Outcome outcome = Run(line);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr(": set to Disabled (1514)\n"));
    EXPECT_THAT(outcome.err,
                HasSubstr("could not see the link of " + std::string(kPort) + " up within 1 second"));
    EXPECT_THAT(outcome.err, testing::EndsWith(kTimedOut));
    std::vector<std::string> json = line;
    json.emplace_back("--json");
    EXPECT_EQ(Json::parse(Run(json).out).at("targets").at(0).at("outcome"), "changed");
}

TEST_F(WaitTest, WhatWasDownBefore_IsNotWaitedFor) {
    Hide("HardwareStatus", 1, true);
    const Outcome outcome = Run({"setting", "set", kPort, "*JumboPacket=1514", "--wait", "20"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out.find("Waiting"), std::string::npos) << outcome.out;
}

TEST_F(WaitTest, Without_NobodyLooks) {
    const std::vector<std::string> line{"profile", "set", "Zorel 10G*", "2", "--journal"};
    std::vector<std::string> waiting = line;
    waiting.insert(waiting.end(), {"--wait", "5"});
    const Outcome outcome = Run(line);
    const Outcome waited = Run(waiting);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(waited.status, 0);
    const std::size_t reads = Count(outcome.out, "GetObject");
    // One look at each of the two before the change, and three afterwards.
    EXPECT_EQ(Count(waited.out, "GetObject"), reads + 8) << waited.out;
}

TEST_F(WaitTest, ATeam_IsWaitedForUntilItIsEnabled) {
    const Outcome outcome = Run({"team", "create", "Front", "2:1", "2:2", "--wait", "20"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    Hide("StatusInfo", 1, true);
    const Outcome down = Run({"team", "create", "Front", "2:1", "2:2", "--wait", "1"});
    EXPECT_EQ(down.status, 1);
    EXPECT_THAT(down.out, HasSubstr("created the team Front"));
    EXPECT_THAT(down.err, HasSubstr("could not see the team Front enabled within 1 second"));
}

TEST_F(WaitTest, NothingToChange_IsNotWaitedFor) {
    const Outcome outcome = Run({"setting", "set", kPort, "*JumboPacket=9014", "--wait", "20"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out.find("Waiting"), std::string::npos) << outcome.out;
}

TEST_F(WaitTest, BadTimes) {
    for (const char* seconds : {"0", "-1", "x", "3601", ""}) {
        EXPECT_EQ(
            Run({"setting", "set", kPort, "*JumboPacket=9014", std::string("--wait=") + seconds}).status, 2)
            << seconds;
    }
}

} // namespace
