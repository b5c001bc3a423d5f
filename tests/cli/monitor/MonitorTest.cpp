// quilletctl monitor in this process: the differences between rounds, a provider that fails, the ends.
#include "support/RunCommandLine.h"

#include <commands/monitor/Events.h>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using quilletctl::Event;
using quilletctl::Snapshot;
using quilletctl::WatchedKey;
using Kind = WatchedKey::Kind;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr quilletctl::Moment kWhen{std::chrono::seconds(1'795'368'253)};

std::vector<std::string> Told(const Snapshot& before, const Snapshot& now, bool onTerminal = false) {
    std::ostringstream out;
    const quilletctl::Terminal screen{out, out, onTerminal};
    std::vector<std::string> lines;
    for (const Event& event : quilletctl::Compare(before, now)) {
        lines.push_back(quilletctl::AsText(event, kWhen, screen));
    }
    return lines;
}

TEST(EventsTest, Differences_AreToldEachOnItsLine) {
    const Snapshot before{{{{Kind::Adapter, "A"}, {"Left", "", "present"}},
                           {{Kind::Link, "A"}, {"Left", "", "1 Gbit/s"}},
                           {{Kind::Adapter, "B"}, {"Right", "", "present"}},
                           {{Kind::Link, "B"}, {"Right", "", "1 Gbit/s"}},
                           {{Kind::Vlan, "V"}, {"7 \"Lab\"", "Left", "enabled"}},
                           {{Kind::Team, "T"}, {"Front", "", "fault tolerance"}}}};
    const Snapshot now{{{{Kind::Adapter, "A"}, {"Left", "", "present"}},
                        {{Kind::Link, "A"}, {"Left", "", "cable removed"}},
                        {{Kind::Vlan, "W"}, {"8 \"Web\"", "Front", "enabled"}},
                        {{Kind::Team, "T"}, {"Back", "", "fault tolerance"}},
                        {{Kind::Member, "T A"}, {"Left", "Back", "primary, active"}}}};
    EXPECT_THAT(
        Told(before, now),
        ElementsAre("2026-11-22 17:24:13Z  adapter Right: gone, was present",
                    "2026-11-22 17:24:13Z  VLAN 7 \"Lab\" of Left: gone, was enabled",
                    "2026-11-22 17:24:13Z  link Left: 1 Gbit/s -> cable removed",
                    "2026-11-22 17:24:13Z  team Front: Front (fault tolerance) -> Back (fault tolerance)",
                    "2026-11-22 17:24:13Z  member Left of Back: new, primary, active",
                    "2026-11-22 17:24:13Z  VLAN 8 \"Web\" of Front: new, enabled"));
    EXPECT_THAT(Told(now, now), ElementsAre());
}

TEST(EventsTest, OnATerminal_LongNamesGiveWayAndNothingSteersIt) {
    const auto with = [](const std::string& state) {
        return Snapshot{
            {{{Kind::Link, "A"}, {"Zorel Quad Port Gigabit Server Adapter \x1b[2J #2", "", state}}}};
    };
    EXPECT_THAT(
        Told(with("cable removed"), with("1 Gbit/s, full duplex"), true),
        ElementsAre("17:24:13Z  link Zorel Quad P…ter �[2J #2: cable removed -> 1 Gbit/s, full duplex"));
}

TEST(EventsTest, Json_HasTheObjectsIdentifier) {
    const Snapshot now{{{{Kind::Member, "{T} {A}"}, {"Left", "Back", "primary, active"}}}};
    EXPECT_EQ(
        quilletctl::AsJson(quilletctl::Compare({}, now).front(), kWhen),
        Json::parse(
            R"({"time": "2026-11-22T17:24:13Z", "event": "appeared", "kind": "member", "objectId": "{A}",
                              "name": "Left", "of": "Back", "from": null, "to": "primary, active", "interval": null,
                              "calls": null})"));
}

class MonitorTest : public CommandLine {
  protected:
    static std::vector<Json> Lines(const std::vector<std::string>& arguments, int status = 0) {
        const Outcome run = RunCommandLine(arguments);
        EXPECT_EQ(run.status, status) << run.err;
        std::vector<Json> lines;
        std::istringstream stream(run.out);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(Json::parse(line));
        }
        return lines;
    }
};

TEST_F(MonitorTest, Cost_IsWhatTheJournalShows) {
    // Connecting takes four.
    const std::string busy = Utf8(InFolder("busy.mof"));
    ASSERT_EQ(RunCommandLine({"--state", busy, "team", "create", "Front", "2:1", "2:2"}).status, 0);
    ASSERT_EQ(
        RunCommandLine({"--state", busy, "vlan", "add", "Front", "100", "Web", "--through", "102"}).status,
        0);
    for (const std::string& machine :
         {std::string(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof"), busy,
          std::string(QUILLET_SOURCE_DIR "/simulator/machines/empty.mof")}) {
        const Outcome run = RunCommandLine(
            {"--simulate", machine, "--json", "--journal", "monitor", "--for", "1", "--interval", "5"});
        const std::size_t calls = Json::parse(run.out)["calls"];
        EXPECT_THAT(run.err, HasSubstr("Calls to the provider: " + std::to_string(calls + 4) + "\n"))
            << machine;
    }
}

TEST_F(MonitorTest, ProviderThatFailsOnce_IsGoneAndBack) {
    const std::vector<Json> lines =
        Lines({"--simulate", "--json", "--fault", "Next:Zorel_PhysicalEthernetAdapter:20=0x80041003",
               "monitor", "--interval", "1", "--count", "2"});
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["event"], "started");
    EXPECT_EQ(lines[0]["interval"], 1);
    EXPECT_EQ(lines[1]["event"], "gone");
    EXPECT_THAT(lines[1]["to"].get<std::string>(), HasSubstr("access is denied"));
    EXPECT_EQ(lines[2]["event"], "back");
}

TEST_F(MonitorTest, ProviderThatStaysAway_IsToldOnceAndAskedLessAndLess) {
    const Outcome run =
        RunCommandLine({"--simulate", "--json", "--journal", "--fault", "ConnectServer:*:2+=0x800706BA",
                        "--fault", "CreateInstanceEnum:Zorel_PhysicalEthernetAdapter:2+=0x800706BA",
                        "monitor", "--interval", "1", "--for", "6"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2) << run.out;
    EXPECT_THAT(run.out, HasSubstr("\"event\":\"gone\""));
    // At first, and after 1 + 1 and 2 seconds; the next time would be 4 seconds later.
    std::size_t tried = 0;
    for (std::size_t at = run.err.find("ConnectServer"); at != std::string::npos;
         at = run.err.find("ConnectServer", at + 1)) {
        ++tried;
    }
    EXPECT_EQ(tried, 3U) << run.err;
}

TEST_F(MonitorTest, MachineThatNeverAnswered_IsAFailure) {
    const Outcome run = RunCommandLine({"--simulate", "--fault",
                                        "CreateInstanceEnum:Zorel_PhysicalEthernetAdapter:1+=0x80041003",
                                        "monitor", "--for", "5"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("could not watch this machine: access is denied"));
}

TEST_F(MonitorTest, AdapterThatVanishesDuringARound_IsNoFailureOfTheMachine) {
    const std::vector<Json> lines =
        Lines({"--simulate", "--json", "--fault", "GetObject:Zorel_PhysicalEthernetAdapter:20=0x80041002",
               "monitor", "--interval", "1", "--for", "2"});
    for (const Json& line : lines) {
        EXPECT_NE(line["event"], "gone") << line;
    }
}

TEST_F(MonitorTest, WrongNumbers_AreRefused) {
    for (const char* option : {"--interval", "--for", "--count"}) {
        for (const char* number : {"0", "-1", "x", "99999999999"}) {
            EXPECT_EQ(RunCommandLine({"--simulate", "monitor", option, number}).status, 2)
                << option << ' ' << number;
        }
    }
}

} // namespace
