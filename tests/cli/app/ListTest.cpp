// What every list takes: columns, order, the form for scripts; and the filters of some.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

constexpr const char* kPort = "Zorel 10G Dual Port Server Adapter";

class ListTest : public CommandLine {
  protected:
    static Outcome Run(std::vector<std::string> arguments, Screen screen = {}) {
        arguments.insert(arguments.end(), {"--simulate", TestMachine("golden.mof")});
        return RunCommandLine(arguments, screen);
    }
    static std::string Out(const std::vector<std::string>& arguments, Screen screen = {}) {
        const Outcome outcome = Run(arguments, screen);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    }
    static Json Answer(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        return Json::parse(Out(arguments), nullptr, false);
    }
    /// The first fields, which have no ':' here.
    static std::vector<std::string> First(const std::string& lines) {
        std::vector<std::string> fields;
        std::istringstream in(lines);
        for (std::string line; std::getline(in, line);) {
            fields.push_back(line.substr(0, line.find(':')));
        }
        return fields;
    }
};

TEST_F(ListTest, Columns_AreThoseNamedInTheirOrder) {
    EXPECT_EQ(Out({"adapter", "list", "2:?", "--columns", "link,slot,name"}),
              "LINK  SLOT  NAME\n"
              "up    2:1   Zorel 10G Dual Port Server Adapter\n"
              "up    2:2   Zorel 10G Dual Port Server Adapter #2\n");
}

TEST_F(ListTest, Columns_ThatWereNamedStayInANarrowTerminal) {
    const std::string out =
        Out({"adapter", "list", "2:?", "--no-color", "--columns", "object-id,mac,name"}, {true, 60});
    EXPECT_EQ(out, "OBJECT ID                               MAC                NAME\n"
                   "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}  02-00-5E-00-10-01  Zore…ter\n"
                   "{5DB8F12F-BC1D-503E-8302-0ED98B178FB8}  02-00-5E-00-10-02  Zore… #2\n");
}

TEST_F(ListTest, UnknownColumn_IsBadUsageBeforeAnythingIsAsked) {
    for (const char* option : {"--columns", "--sort"}) {
        const Outcome outcome = Run({"vlan", "list", "nobody", option, "nam"});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.err, std::string("quilletctl: ") + option +
                                   ": there is no column \"nam\", only parent, kind, vlan, name, status, "
                                   "object-id; did you mean \"name\"?\n");
    }
    EXPECT_EQ(Run({"adapter", "list", "--columns", ""}).status, 2);
    EXPECT_EQ(Run({"adapter", "list", "--columns", "name,"}).status, 2);
    EXPECT_EQ(Run({"adapter", "list", "--sort", "-"}).status, 2);
}

TEST_F(ListTest, Terse_EscapesWhatPartsTheFields) {
    EXPECT_EQ(Out({"adapter", "list", "2:1", "4:1", "--terse", "--columns", "slot,team,speed,role"}),
              "2\\:1::10 Gbit/s:\n"
              "4\\:1:TEAM \\: Zürich:1 Gbit/s:primary\n");
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "a\\b:c\n"; OriginalDisplayName = "m"; };)");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "adapter", "list", "--terse", "--columns", "name"}).out,
              "a\\\\b\\:c\xEF\xBF\xBD\n");
}

TEST_F(ListTest, Terse_HasEveryColumnWhateverTheTerminal) {
    const std::string file = Out({"adapter", "list", "--terse"});
    EXPECT_EQ(Out({"adapter", "list", "--terse"}, {true, 20}), file);
    EXPECT_EQ(file.substr(0, file.find('\n')),
              "Zorel 10G Dual Port Server Adapter:up:10 Gbit/s:02-00-5E-00-10-01:2\\:1:::enabled:"
              "Zorel 10G Dual Port Server Adapter:{64D1BF82-B507-5E42-AED2-547CA8AAC36A}:"
              "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
}

TEST_F(ListTest, NoHeadings_LeavesOnlyRows) {
    EXPECT_EQ(Out({"vlan", "list", "--no-headings", "--columns", "vlan,name"}),
              "untagged  Untagged\n12        Büro\n340       VoIP\n");
}

TEST_F(ListTest, EmptyList_SaysSoToPeopleOnly) {
    const std::string machine = MachineFile("");
    const auto list = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"--simulate", machine, "adapter", "list"});
        return RunCommandLine(more).out;
    };
    EXPECT_EQ(list({}), "no adapters\n");
    EXPECT_EQ(list({"--terse"}), "");
    EXPECT_EQ(list({"--no-headings"}), "");
    EXPECT_EQ(Json::parse(list({"--json", "--terse"})), (Json{{"adapters", Json::array()}}));
}

TEST_F(ListTest, Sort_TakesNumbersAsNumbersAndWhatIsMissingLast) {
    const auto sorted = [](const std::string& list, const std::string& column) {
        return First(Out({list, "list", "--terse", "--columns", column, "--sort", column}));
    };
    EXPECT_EQ(sorted("adapter", "speed"),
              (std::vector<std::string>{"100 Mbit/s", "100 Mbit/s", "1 Gbit/s", "1 Gbit/s", "1 Gbit/s",
                                        "1 Gbit/s", "10 Gbit/s", "10 Gbit/s", "", ""}));
    EXPECT_EQ(First(Out({"adapter", "list", "--terse", "--columns", "speed", "--sort", "-speed"})),
              (std::vector<std::string>{"10 Gbit/s", "10 Gbit/s", "1 Gbit/s", "1 Gbit/s", "1 Gbit/s",
                                        "1 Gbit/s", "100 Mbit/s", "100 Mbit/s", "", ""}));
    EXPECT_EQ(sorted("vlan", "vlan"), (std::vector<std::string>{"untagged", "12", "340"}));
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "port 10"; OriginalDisplayName = "m"; };
           instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Port 9"; OriginalDisplayName = "m"; };
           instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Name = "port 009b"; OriginalDisplayName = "m"; };)");
    EXPECT_EQ(
        RunCommandLine({"--simulate", machine, "adapter", "list", "--terse", "--columns=name", "--sort=name"})
            .out,
        "Port 9\nport 009b\nport 10\n");
}

TEST_F(ListTest, SortAndFilters_HoldForJson_ColumnsDoNot) {
    const Json listed = Answer({"adapter", "list", "--down", "--sort", "-slot", "--columns", "name"});
    ASSERT_EQ(listed.at("adapters").size(), 2u);
    EXPECT_EQ(listed.at("adapters").at(0).at("slot"), "7:1");
    EXPECT_EQ(listed.at("adapters").at(1).at("slot"), "4:4");
    EXPECT_EQ(listed.at("adapters").at(1).at("hardwareStatus"),
              (Json{{"code", 2}, {"text", "cable removed"}}));
    const Json profiles = Answer({"profile", "list", "2:?", "--sort", "-profile"});
    ASSERT_EQ(profiles.at("adapters").size(), 2u);
    EXPECT_EQ(profiles.at("adapters").at(0).at("profiles").at(0).at("profile"), 6);
}

TEST_F(ListTest, Adapters_AreChosenByLinkTeamAndName) {
    const auto slots = [](std::vector<std::string> more) {
        more.insert(more.begin(), {"adapter", "list", "--columns", "slot", "--no-headings"});
        return Out(more);
    };
    EXPECT_EQ(slots({"--down"}), "4:4\n7:1\n");
    EXPECT_EQ(slots({"--up", "4:*"}), "4:1\n4:2\n4:3\n");
    EXPECT_EQ(slots({"--team", "team : zürich"}), "4:1\n4:2\n");
    EXPECT_EQ(Run({"adapter", "list", "--team", "nobody"}).err,
              "quilletctl: no team is called \"nobody\"; see quilletctl team list\n");
    EXPECT_EQ(Run({"adapter", "list", "--up", "--down"}).err, "quilletctl: --up, --down: nothing is both\n");
}

TEST_F(ListTest, TeamsAndVlans_AreChosenByTheLinksOfMembersAndAdapters) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Cold"; OriginalDisplayName = "m";
            HardwareStatus = 2; Capabilities = {4, 9}; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Warm"; OriginalDisplayName = "m";
            HardwareStatus = 3; Capabilities = {4, 9}; };
        instance of Zorel_802dot1QVLANService { Name = "{A}"; };
        instance of Zorel_802dot1QVLANService { Name = "{B}"; };)");
    const std::string state = Utf8(InFolder("lab.mof"));
    const auto run = [&](std::vector<std::string> line) {
        line.insert(line.begin(), {"--simulate", machine, "--state", state});
        const Outcome outcome = RunCommandLine(line);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out;
    };
    run({"vlan", "add", "Cold", "7", "Seven"});
    run({"vlan", "add", "Warm", "8", "Eight"});
    const auto vlans = [&](const char* option) {
        return run({"vlan", "list", option, "--columns", "vlan", "--no-headings"});
    };
    EXPECT_EQ(vlans("--up"), "8\n");
    EXPECT_EQ(vlans("--down"), "7\n");
    EXPECT_EQ(Out({"team", "list", "--up", "--columns", "name", "--no-headings"}), "TEAM : Zürich\n");
    EXPECT_EQ(Out({"team", "list", "--down"}), "no teams\n");
    EXPECT_EQ(Answer({"vlan", "list", "TEAM : Zürich", "--up"}).at("vlans").size(), 3u);
    EXPECT_EQ(Answer({"vlan", "list", "TEAM : Zürich", "--down"}).at("vlans").size(), 0u);
    for (const char* noun : {"team", "vlan"}) {
        EXPECT_EQ(Run({noun, "list", "--up", "--down"}).err, "quilletctl: --up, --down: nothing is both\n");
    }
}

TEST_F(ListTest, Vlans_OfATeamThatDoesNotTellItsLinkAreNeitherUpNorDown) {
    const auto vlans = [](std::vector<std::string> line) {
        line.insert(line.begin(), {"vlan", "list", "--fault", "Get:Speed:1+"});
        return Answer(line).at("vlans").size();
    };
    EXPECT_EQ(vlans({}), 3u);
    EXPECT_EQ(vlans({"--up"}), 0u);
    EXPECT_EQ(vlans({"--down"}), 0u);
}

TEST_F(ListTest, Vlans_TheLinkIsAskedForWhereItIsWanted) {
    const auto fetches = [](std::vector<std::string> more) {
        more.insert(more.begin(), {"vlan", "list", "TEAM : Zürich", "--journal"});
        const std::string out = Out(more);
        std::size_t count = 0;
        for (auto at = out.find("GetObject "); at != std::string::npos; at = out.find("GetObject ", at + 1)) {
            ++count;
        }
        return count;
    };
    EXPECT_LT(fetches({}), fetches({"--up"}));
}

TEST_F(ListTest, AdapterThatTellsNothing_IsListedAndSaysWhy) {
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "m"; };
           instance of QuilletSimulator_Fault { Id = 1; Operation = "GetObject"; Code = 0x80041003; };)");
    const auto list = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"--simulate", machine, "adapter", "list"});
        return RunCommandLine(more);
    };
    EXPECT_EQ(list({"--columns", "name,link,mac,state"}).out,
              "NAME  LINK  MAC  STATE\n"
              "one   -     -    not told: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
    const Json entry = Json::parse(list({"--json"}).out).at("adapters").at(0);
    EXPECT_EQ(entry.at("failure"), "0x80041003 WBEM_E_ACCESS_DENIED");
    EXPECT_TRUE(entry.at("link").is_null());
    EXPECT_EQ(list({"--up"}).out, "no adapters\n");
    EXPECT_EQ(list({"--down"}).out, "no adapters\n");
}

TEST_F(ListTest, AdapterList_FetchesEachAdapterOnce) {
    const std::string out = Out({"adapter", "list", "--journal"});
    std::size_t fetches = 0;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) {
        fetches += line.starts_with("  GetObject ") && line.find("Zorel_PhysicalEthernetAdapter") != line.npos
                       ? 1U
                       : 0U;
    }
    EXPECT_EQ(fetches, Answer({"adapter", "list"}).at("adapters").size());
}

TEST_F(ListTest, SettingsThatWereChanged) {
    EXPECT_EQ(Out({"setting", "list", kPort, "--changed", "--columns", "setting,current,default"}),
              "SETTING             CURRENT                               DEFAULT\n"
              "*JumboPacket        9014 Bytes (9014)                     Disabled (1514)\n"
              "PerformanceProfile  Storage Server (4)                    Standard Server (2)\n"
              "WakeOnEvents        Magic Packet + Pattern Match (5)      Magic Packet (1)\n"
              "WakePatterns        FF-FF-FF-FF-FF-FF, 01-00-5E-00-00-FB  (empty)\n"
              "DriverDate          2011-03-14                            (empty)\n");
    EXPECT_EQ(Answer({"setting", "list", kPort, "flow*", "*jumbo*"}).at("settings").size(), 2u);
    EXPECT_EQ(Out({"setting", "list", kPort, "*FlowControl", "--changed"}),
              "every setting has its default\n");
    EXPECT_EQ(Run({"setting", "list", kPort, "Jumbo Packt"}).err,
              "quilletctl: no setting is called \"Jumbo Packt\"; did you mean \"Jumbo Packet\"?\n");
}

TEST_F(ListTest, OtherLists_TakeNames) {
    EXPECT_EQ(Out({"iscsi", "list", "*10G*", "--columns", "place", "--no-headings"}), "primary\nsecondary\n");
    EXPECT_EQ(Run({"iscsi", "list", "nobody"}).status, 2);
    EXPECT_EQ(Out({"profile", "list", "2:1", "--current", "--columns", "description", "--no-headings"}),
              "Storage Server\n");
    EXPECT_EQ(Answer({"team", "list", "team*"}).at("teams").size(), 1u);
    EXPECT_EQ(Run({"team", "list", "nobody"}).err, "quilletctl: no team is called \"nobody\"\n");
}

TEST_F(ListTest, Teams_TellTheirMembersBelowEachOtherInATerminal) {
    EXPECT_EQ(Out({"team", "list", "--no-color"}, {true, 80}),
              "NAME           MODE                     STATUS   MEMBERS\n"
              "TEAM : Zürich  adaptive load balancing  enabled  Zorel Quad Port…er Adapter (up)\n"
              "                                                 Zorel Quad Port…Adapter #2 (up)\n");
    EXPECT_EQ(
        Out({"team", "list", "--columns", "members", "--no-headings"}),
        "Zorel Quad Port Gigabit Server Adapter (up), Zorel Quad Port Gigabit Server Adapter #2 (up)\n");
}

TEST_F(ListTest, Colours_AreOfWordsThatStandThere) {
    EXPECT_EQ(Out({"adapter", "list", "4:3", "4:4", "--columns", "link,state", "--no-headings"}, {true, 80}),
              "\x1b[32mup\x1b[0m    \x1b[32menabled\x1b[0m\n"
              "\x1b[31mdown\x1b[0m  \x1b[33mcable removed\x1b[0m\n");
}

TEST_F(ListTest, AdapterList_FitsTerminalsOf80Columns) {
    // All that tells one adapter from another stands there; what only few have stands below them.
    EXPECT_EQ(Out({"adapter", "list", "2:1", "4:1", "4:4", "--no-color"}, {true, 80}),
              "NAME                                       LINK  SPEED  MAC                SLOT\n"
              "Zorel 10G Dual Port Server Adapter         up    10G    02-00-5E-00-10-01  2:1\n"
              "Zorel Quad Port Gigabit Server Adapter     up    1G     02-00-5E-00-20-01  4:1\n"
              "  in TEAM : Zürich, primary\n"
              "Zorel Quad Port Gigabit Server Adapter #4  down  -      02-00-5E-00-20-04  4:4\n"
              "  cable removed\n");
    EXPECT_EQ(
        Out({"adapter", "list", "4:1", "--no-color", "--columns", "speed,team,role,state,mac,object-id"},
            {true, 80}),
        "SPEED     TEAM      ROLE     STATE    MAC                OBJECT ID\n"
        "1 Gbit/s  TEAM…ich  primary  enabled  02-00-5E-00-20-01  "
        "{DF69224E-BBCB-576F-A929-C8858BAF7155}\n")
        << "what was asked for stays as it is";
}

} // namespace
