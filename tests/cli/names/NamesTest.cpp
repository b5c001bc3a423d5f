// Names on the command line: what is printed of a thing is what it can be called, by every command alike.
#include "support/RunCommandLine.h"

#include <ending/Failure.h>
#include <names/NameLookup.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using namespace quilletctl;

constexpr const char* kNamesFirst = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
constexpr const char* kNamesTeam = "TEAM : Zürich";
constexpr const char* kMember = "{D2BC81D1-8495-5F60-84AD-B2450A03D882}";

// What may stand for a name.

std::vector<std::size_t> Find(const std::vector<std::string>& names, const std::string& text, Match match) {
    std::vector<Named> things;
    for (const std::string& name : names) {
        things.push_back({name, name, {name}});
    }
    return FindNamed(things, text, match);
}

TEST(NameLookupTest, APattern_FitsWholeNamesWhateverTheirCase) {
    const std::vector<std::string> names{"Port 1", "port 12", "Port 東", "Other"};
    EXPECT_THAT(Find(names, "PORT ?", Match::Pattern), ElementsAre(0u, 2u)) << "a character, not a byte";
    EXPECT_THAT(Find(names, "port*", Match::Pattern), ElementsAre(0u, 1u, 2u));
    EXPECT_THAT(Find(names, "*t*1*", Match::Pattern), ElementsAre(0u, 1u));
    EXPECT_THAT(Find(names, "*", Match::Pattern), ElementsAre(0u, 1u, 2u, 3u));
    EXPECT_THAT(Find(names, "ort*", Match::Pattern), ElementsAre());
    EXPECT_THAT(Find(names, "*ort", Match::Pattern), ElementsAre());
    EXPECT_THAT(Find(names, "", Match::Pattern), ElementsAre());
}

TEST(NameLookupTest, APatternThatNearlyFitsOftenIsToldSoon) {
    std::string pattern;
    for (int i = 0; i < 200; ++i) {
        pattern += "*a";
    }
    EXPECT_THAT(Find({std::string(20000, 'a')}, pattern + "b", Match::Pattern), ElementsAre());
}

TEST(NameLookupTest, AShortenedName_HasAnEllipsisForWhatWasLeftOut) {
    const std::vector<std::string> names{"Server Adapter #2", "Server Adapter #3", "a*b"};
    EXPECT_THAT(Find(names, "Serv…#2", Match::Shortened), ElementsAre(0u));
    EXPECT_THAT(Find(names, "…", Match::Shortened), ElementsAre(0u, 1u, 2u));
    EXPECT_THAT(Find(names, "Server Adapter #2", Match::Shortened), ElementsAre()) << "nothing was left out";
    EXPECT_THAT(Find({"{000A}", "{000B}"}, "…0A}", Match::Shortened), ElementsAre(0u));
}

TEST(NameLookupTest, Whole_IsWithAndWithoutBracesAndAsItIsPrinted) {
    EXPECT_THAT(Find({"{A}", "B"}, "a", Match::Whole), ElementsAre(0u));
    EXPECT_THAT(Find({"{A}", "B"}, "{b}", Match::Whole), ElementsAre(1u));
    EXPECT_THAT(Find({"a\tb"},
                     "a\xEF\xBF\xBD"
                     "b",
                     Match::Whole),
                ElementsAre(0u));
    EXPECT_THAT(Find({"a*b", "acb"}, "a*b", Match::Whole), ElementsAre(0u)) << "a star may be part of a name";
}

TEST(NameLookupTest, WhatNamesOneOnly_ComesBeforeWhatSeveralMayShare) {
    const std::vector<Named> things{
        {"{1}", "one", {"{1}", "twin"}}, {"{2}", "two", {"{2}", "TWIN"}}, {"{3}", "three", {"twin", ""}}};
    EXPECT_EQ(FindOneNamed(things, "twin", "things"), 2u);
    EXPECT_EQ(FindOneNamed(things, "nothing", "things"), std::nullopt);
    const std::vector<Named> twins(things.begin(), things.begin() + 2);
    try {
        FindOneNamed(twins, "twin", "things");
        FAIL() << "ambiguous";
    } catch (const UsageError& mistake) {
        EXPECT_STREQ(mistake.what(), "several things are called \"twin\": {1} (one), {2} (two)");
    }
}

// The commands.

class NamesTest : public CommandLine {
  protected:
    static Outcome Run(std::vector<std::string> arguments, const Screen& screen = {}) {
        arguments.insert(arguments.end(), {"--simulate", TestMachine("golden.mof")});
        return RunCommandLine(arguments, screen);
    }
    static Json RunJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    static std::vector<std::string> ObjectIds(const Json& list) {
        std::vector<std::string> ids;
        for (const Json& each : list) {
            ids.push_back(each.at("objectId"));
        }
        return ids;
    }
    /// The first column of a table, without its title; it ends at two blanks.
    static std::vector<std::string> FirstColumn(const std::string& table) {
        std::vector<std::string> cells;
        std::istringstream lines(table);
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line);) {
            cells.push_back(line.substr(0, line.find("  ")));
        }
        return cells;
    }
    static std::size_t Calls(const std::string& journal, const std::string& part) {
        std::size_t count = 0;
        for (auto at = journal.find(part); at != std::string::npos; at = journal.find(part, at + 1)) {
            ++count;
        }
        return count;
    }
};

class PlacesAndCaptionsTest : public NamesTest, public testing::WithParamInterface<const char*> {};

TEST_P(PlacesAndCaptionsTest, NameTheirAdapter) {
    EXPECT_EQ(RunJson({"adapter", "show", GetParam()}).at("objectId"), kMember);
    EXPECT_EQ(RunJson({"vlan", "list", GetParam()}).at("vlans"), Json::array()) << "as a parent";
    EXPECT_EQ(RunJson({"profile", "list", GetParam()}).at("adapters").size(), 1u);
    EXPECT_EQ(RunJson({"team", "modes", GetParam()}).at("adapters"), 1);
    EXPECT_EQ(Run({"setting", "list", GetParam(), "--of", "boot-agent"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Adapters, PlacesAndCaptionsTest,
                         testing::Values("Zürich 2", "ZüRICH 2", "Slot 4:2", "slot 4:2", "4:2",
                                         "02-00-5E-00-20-02", "02:00:5e:00:20:02", "0200.5e00.2002",
                                         "02005E002002", "Zorel Quad…Adapter #2", "{D2BC…D882}",
                                         "Zorel_BootAgent.Name='{D2BC81D1-8495-5F60-84AD-B2450A03D882}'"));

TEST_F(NamesTest, PlacesAreAskedForOnlyWhereNothingCheaperFits) {
    const auto asked = [](const std::string& name) {
        const std::string journal = Run({"adapter", "capabilities", name, "--journal"}).out;
        return Calls(journal, "  GetObject ");
    };
    EXPECT_EQ(asked(kNamesFirst), 1u);
    EXPECT_EQ(asked("Zorel Gigabit Desktop Adapter"), 1u);
    EXPECT_EQ(asked("02-00-5E-00-10-01"), 1u + 10u) << "one for each adapter";
    EXPECT_LT(asked("nobody"), 10u) << "it looks like no place";
}

TEST_F(NamesTest, AnAdapterThatDoesNotTellItsPlaceHidesNoOther) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "bare"; OriginalDisplayName = "model"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "one"; OriginalDisplayName = "model";
            Capabilities = {46}; NetworkAddresses = {"02-00-5E-00-00-01"}; };)");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "adapter", "identify", "02005e000001"}).out,
              "one was asked to blink for 10 seconds; it does not tell whether it does\n");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "adapter", "identify", "02005e000002"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err,
              "quilletctl: no adapter is called \"02005e000002\"; 1 adapter does not tell its slot, port and "
              "MAC address; see quilletctl adapter list\n");
}

TEST_F(NamesTest, AnAmbiguousName_TellsTheCandidatesWithTheirNames) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; Name = "left"; OriginalDisplayName = "model";
            Capabilities = {46}; NetworkAddresses = {"02-00-5E-00-00-01"}; };
        instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; Name = "right"; OriginalDisplayName = "model";
            Capabilities = {46}; NetworkAddresses = {"02-00-5E-00-00-01"}; };
        instance of Zorel_TeamOfAdapters { Name = "{T}"; Caption = "LEFT"; TeamingMode = 0;
            MFOEnabled = FALSE; LinksecEnabled = FALSE; };)");
    const auto error = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--simulate", machine});
        const Outcome outcome = RunCommandLine(arguments);
        EXPECT_EQ(outcome.status, 2);
        return outcome.err;
    };
    EXPECT_EQ(error({"adapter", "show", "model"}),
              "quilletctl: several adapters are called \"model\": {A} (left), {B} (right)\n");
    EXPECT_EQ(error({"adapter", "show", "02:00:5E:00:00:01"}),
              "quilletctl: several adapters are called \"02005E000001\": {A} (left), {B} (right)\n");
    EXPECT_EQ(error({"vlan", "check", "left", "5", "Voice"}),
              "quilletctl: several adapters and teams are called \"left\": {T}, {A}\n");
    EXPECT_EQ(error({"team", "modes", "…"}),
              "quilletctl: several adapters are called \"…\": {A} (left), {B} (right)\n");
}

TEST_F(NamesTest, APattern_SelectsSeveral) {
    EXPECT_EQ(RunJson({"team", "modes", "Zorel Quad*", "*#2"}).at("adapters"), 6) << "each counts once";
    EXPECT_EQ(RunJson({"profile", "list", "zorel 10g*"}).at("adapters").size(), 2u);
    EXPECT_EQ(RunJson({"profile", "list", "slot 4:?"}).at("adapters").size(), 4u);
    EXPECT_EQ(RunJson({"vlan", "list", "TEAM*"}).at("vlans").size(), 3u);
    const Json set = RunJson({"setting", "set", "Zorel Quad*", "*JumboPacket", "1514"});
    EXPECT_EQ(set.at("targets").size(), 4u);
    EXPECT_EQ(RunJson({"team", "create", "Pair", "Zorel Gigabit*", "--force"}).at("name"), "Pair");
    const Outcome none = Run({"team", "modes", "none*"});
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err, "quilletctl: no adapter is called \"none*\"; see quilletctl adapter list\n");
}

TEST_F(NamesTest, APattern_IsNoNameWhereACommandTakesOne) {
    EXPECT_EQ(Run({"adapter", "show", "Zorel*"}).status, 2);
    EXPECT_EQ(Run({"vlan", "check", "TEAM*", "5", "Voice"}).status, 2);
}

TEST_F(NamesTest, AVlan_GoesByEveryNameThatIsPrinted) {
    const Json vlan = RunJson({"vlan", "list"}).at("vlans").at(1);
    for (const std::string& name :
         {std::string("12"), vlan.at("name").get<std::string>(), vlan.at("caption").get<std::string>(),
          vlan.at("objectId").get<std::string>(), vlan.at("path").get<std::string>()}) {
        EXPECT_EQ(RunJson({"vlan", "modify", kNamesTeam, name, "--name", "Neu"}).at("vlan").at("number"), 12)
            << name;
        EXPECT_EQ(RunJson({"setting", "list", name, "--of", "vlan"}).at("owner").at("objectId"),
                  vlan.at("objectId"))
            << name;
    }
    EXPECT_EQ(RunJson({"vlan", "modify", kNamesTeam, "untagged", "--name", "Neu"}).at("vlan").at("number"),
              0);
    EXPECT_EQ(Run({"vlan", "remove", kNamesTeam, "Nothing", "--yes"}).err,
              "quilletctl: TEAM : Zürich has no VLAN \"Nothing\"; see quilletctl vlan list\n");
}

TEST_F(NamesTest, ASetting_GoesByEveryNameThatIsPrinted) {
    const Json setting = RunJson({"setting", "get", kNamesFirst, "*FlowControl"}).at("setting");
    for (const char* key : {"caption", "description", "path"}) {
        const std::string name = setting.at(key);
        EXPECT_EQ(RunJson({"setting", "get", kNamesFirst, name}).at("setting"), setting) << name;
        const Json set = RunJson({"setting", "set", kNamesFirst, name, "3"});
        EXPECT_EQ(set.at("setting"), "*FlowControl") << name;
        EXPECT_EQ(set.at("targets").at(0).at("outcome"), "unchanged") << name;
    }
}

TEST_F(NamesTest, ATeamMode_GoesByEveryNameThatIsPrinted) {
    for (const char* name : {"0", "fault tolerance", "Fault tolerance team"}) {
        EXPECT_EQ(RunJson({"team", "modify", kNamesTeam, "--mode", name}).at("mode").at("code"), 0) << name;
    }
}

TEST_F(NamesTest, AnAmbiguousTest_TellsTheCandidates) {
    EXPECT_EQ(Run({"diag", "stop", kNamesFirst, "L"}).err,
              "quilletctl: several tests of Zorel 10G Dual Port Server Adapter are called \"L\": "
              "3 (Loopback test - Zorel 10G Dual Port Server Adapter), "
              "4 (Link test - Zorel 10G Dual Port Server Adapter)\n");
}

TEST_F(NamesTest, WhateverATableShowsOfAnAdapter_NamesIt) {
    const std::vector<std::string> ids = ObjectIds(RunJson({"adapter", "list"}).at("adapters"));
    for (const std::size_t width : {60u, 80u, 120u, 200u}) {
        std::vector<std::string> shown =
            FirstColumn(Run({"adapter", "list", "--no-color"}, {true, width}).out);
        // What stands below a name is none.
        std::erase_if(shown, [](const std::string& each) { return each.starts_with(' ') || each.empty(); });
        ASSERT_EQ(shown.size(), ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i) {
            EXPECT_EQ(RunJson({"adapter", "show", shown[i]}).at("objectId"), ids[i]) << shown[i];
        }
    }
}

TEST_F(NamesTest, TheKeyNameOfAnAdapter_IsTheSameEverywhere) {
    std::map<std::string, std::string> names;
    const Json adapters = RunJson({"adapter", "list"});
    for (const Json& each : adapters.at("adapters")) {
        names[each.at("objectId")] = each.at("name");
    }
    const Json team = RunJson({"team", "show", kNamesTeam});
    for (const Json& member : team.at("members")) {
        EXPECT_EQ(member.at("name"), names.at(member.at("objectId")));
    }
    const Json ports = RunJson({"iscsi", "list"});
    for (const Json& port : ports.at("adapters")) {
        EXPECT_EQ(port.at("name"), names.at(port.at("bootAgentId")));
    }
    EXPECT_EQ(RunJson({"adapter", "show", kNamesFirst}).at("name"), names.at(kNamesFirst));
}

} // namespace
