// The commands that read settings, of every kind and every owner.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <set>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

constexpr const char* kAdapter = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
constexpr const char* kTeam = "{233D64CB-B845-581B-A807-C628FFE690C9}";
constexpr const char* kVlan = "{063ED469-BA26-5EFF-991F-22031C2B1C4A}";

class SettingsTest : public CommandLine {
  protected:
    static Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--simulate", TestMachine("golden.mof")});
        return RunCommandLine(arguments);
    }
    static Json RunJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    static std::string Golden(const std::string& name) {
        return ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/" + name);
    }
    static std::set<std::string> Kinds(const Json& answer) {
        std::set<std::string> kinds;
        for (const Json& setting : answer.at("settings")) {
            kinds.insert(setting.at("kind").get<std::string>());
        }
        return kinds;
    }
    /// One setting of each kind that says what the shipped machine's do not.
    std::string Odd() const {
        return MachineFile(R"(
            instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "model"; };
            instance of Zorel_AdapterSettingEnum { Caption = "Enum"; ParentId = "{A}"; ParentType = "NIC";
                Writable = FALSE; Grouped = TRUE; GroupId = 3; CurrentValue = 7; DefaultValue = 1;
                PossibleValues = {"1", "2", "three"}; DescriptionMap = {"on"}; };
            instance of Zorel_AdapterSettingMultiSelection { Caption = "Bits"; ParentId = "{A}";
                ParentType = "NIC"; CurrentValue = 6; DefaultValue = 0; PossibleValues = {"1", "2", "4"};
                DescriptionMap = {"a", "b"}; };
            instance of Zorel_AdapterSettingInt { Caption = "Int"; ParentId = "{A}"; ParentType = "NIC";
                CurrentValue = -5; DefaultValue = 0; Min = -10; Max = 10; Step = 1; Base = 10; Scale = 1; };
            instance of Zorel_AdapterSettingMultiString { Caption = "List"; ParentId = "{A}";
                ParentType = "NIC"; CurrentValues = {"x", "", "a\tb"}; DefaultValue = "d"; MaxLength = 1; };)");
    }
};

const std::set<std::string> kSix{"int", "enum", "slider", "string", "multiSelection", "multiString"};

TEST_F(SettingsTest, List_OfAnAdapter_ShowsAllSixKindsAsInTheGoldenFiles) {
    const Outcome json = Run({"setting", "list", kAdapter, "--json"});
    EXPECT_EQ(json.out, Golden("setting-list-adapter.json"));
    EXPECT_EQ(Kinds(Json::parse(json.out)), kSix);
    EXPECT_EQ(Run({"setting", "list", kAdapter}).out, Golden("setting-list-adapter.txt"));
}

TEST_F(SettingsTest, List_OfTeamsVlansAndBootAgents_ShowsAllSixKinds) {
    for (const auto& [kind, owner] :
         {std::pair{"team", kTeam}, std::pair{"vlan", kVlan}, std::pair{"boot-agent", kAdapter}}) {
        const Json answer = RunJson({"setting", "list", owner, "--of", kind});
        EXPECT_EQ(Kinds(answer), kSix) << kind;
        EXPECT_EQ(answer.at("owner").at("kind"), kind);
        EXPECT_EQ(answer.at("owner").at("objectId"), owner);
        EXPECT_EQ(Run({"setting", "list", owner, "--of", kind}).out,
                  Golden(std::string("setting-list-") + kind + ".txt"));
    }
}

TEST_F(SettingsTest, List_ATeamGoesByItsNameToo) {
    const Outcome outcome = Run({"setting", "list", "team : Zürich", "--of", "team"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, Golden("setting-list-team.txt"));
}

TEST_F(SettingsTest, List_APathSaysItselfWhatItIsAPathOf) {
    const std::string team = std::string("Zorel_TeamOfAdapters.Name=\"") + kTeam + '"';
    EXPECT_EQ(RunJson({"setting", "list", team}).at("owner").at("kind"), "team");
    EXPECT_EQ(Run({"setting", "list", team}).out, Golden("setting-list-team.txt"));
    const std::string agent = std::string("Zorel_BootAgent.Name=\"") + kAdapter + '"';
    EXPECT_EQ(Run({"setting", "list", agent}).out, Golden("setting-list-boot-agent.txt"));
    const std::string adapter = std::string("Zorel_PhysicalEthernetAdapter.DeviceID=\"") + kAdapter + '"';
    EXPECT_EQ(Run({"setting", "list", adapter, "--of", "boot-agent"}).out,
              Golden("setting-list-boot-agent.txt"));
}

TEST_F(SettingsTest, List_OwnersThatAreNone_AreBadUsage) {
    const std::string team = std::string("Zorel_TeamOfAdapters.Name=\"") + kTeam + '"';
    for (const std::vector<std::string>& owner : {std::vector<std::string>{"nobody"},
                                                  {""},
                                                  {"nobody", "--of", "team"},
                                                  {"nobody", "--of", "vlan"},
                                                  {"nobody", "--of", "boot-agent"},
                                                  {team, "--of", "vlan"},
                                                  {"Zorel_DiagTest.Name=\"x\""},
                                                  {kAdapter, "--of", "nonsense"}}) {
        std::vector<std::string> command{"setting", "list"};
        command.insert(command.end(), owner.begin(), owner.end());
        const Outcome outcome = Run(command);
        EXPECT_EQ(outcome.status, 2) << owner[0];
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

TEST_F(SettingsTest, List_Vmq_AsksForThatSubsetAndShowsOnlyIt) {
    const Json answer = RunJson({"setting", "list", kAdapter, "--vmq"});
    std::set<std::string> captions;
    for (const Json& setting : answer.at("settings")) {
        captions.insert(setting.at("caption").get<std::string>());
    }
    EXPECT_EQ(captions, (std::set<std::string>{"*VMQ", "*MaxVmqQueues"}));
    const Outcome journal = Run({"setting", "list", kAdapter, "--vmq", "--journal"});
    EXPECT_NE(journal.out.find("{GET_EXT_CLIENT_REQUEST=true, GET_EXTENSIONS=true, Zorel_PartialData=256}"),
              std::string::npos)
        << journal.out;
    EXPECT_EQ(Run({"setting", "list", kTeam, "--of", "team", "--vmq"}).status, 2);
}

TEST_F(SettingsTest, List_OfAnOwnerWithoutSettings_SaysSo) {
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "model"; };)");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "setting", "list", "one"}).out, "no settings\n");
    const Json json =
        Json::parse(RunCommandLine({"--simulate", machine, "setting", "list", "one", "--json"}).out);
    EXPECT_EQ(json.at("settings"), Json::array());
}

TEST_F(SettingsTest, List_ValuesWithoutTextsAndTextsThatSteer_AreShownSafely) {
    const std::string machine = Odd();
    const Outcome text = RunCommandLine({"--simulate", machine, "setting", "list", "one"});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out, "SETTING  NAME  KIND               CURRENT          DEFAULT   POSSIBLE VALUES\n"
                        "Enum     -     choice, read only  7 (unknown)      on (1)    on (1), 2, three\n"
                        "Bits     -     selection          b + 4 (6)        none (0)  a (1), b (2), 4\n"
                        "Int      -     number             -5               0         -10 to 10\n"
                        "List     -     list               x, (empty), a\xEF\xBF\xBD"
                        "b  d         texts of up to 1 character\n");
    const Json json =
        Json::parse(RunCommandLine({"--simulate", machine, "setting", "list", "one", "--json"}).out);
    const Json& choice = json.at("settings").at(0);
    EXPECT_EQ(choice.at("group"), 3);
    EXPECT_EQ(choice.at("writable"), false);
    EXPECT_EQ(choice.at("possible"),
              (Json::array({Json{{"value", 1}, {"text", "on"}}, Json{{"value", 2}, {"text", nullptr}},
                            Json{{"value", "three"}, {"text", nullptr}}})));
    EXPECT_TRUE(json.at("settings").at(1).at("group").is_null());
    EXPECT_EQ(json.at("settings").at(3).at("current"), (Json::array({"x", "", "a\tb"})));
    EXPECT_EQ(json.at("settings").at(3).at("maxLength"), 1);
}

TEST_F(SettingsTest, List_Refused_IsTheProvidersCode) {
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "model"; };
                       instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecQuery";
                           Code = 0x80041017; };)");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "setting", "list", "one"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quilletctl: could not read the settings of one: the provider does not understand "
                           "the query: 0x80041017 WBEM_E_INVALID_QUERY\n");
}

TEST_F(SettingsTest, List_OfSeveralOwners_HasAHeadingForEach) {
    const Outcome outcome =
        Run({"setting", "list", "2:*", "*FlowControl", "*Jumbo*", "--columns", "setting,current"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "Zorel 10G Dual Port Server Adapter:\n"
                           "SETTING       CURRENT\n"
                           "*FlowControl  Rx & Tx Enabled (3)\n"
                           "*JumboPacket  9014 Bytes (9014)\n"
                           "\n"
                           "Zorel 10G Dual Port Server Adapter #2:\n"
                           "SETTING       CURRENT\n"
                           "*FlowControl  Rx & Tx Enabled (3)\n"
                           "*JumboPacket  9014 Bytes (9014)\n");
    EXPECT_EQ(Run({"setting", "list", "2:*", "*FlowControl", "--terse", "--columns", "owner,current"}).out,
              "Zorel 10G Dual Port Server Adapter:Rx & Tx Enabled (3)\n"
              "Zorel 10G Dual Port Server Adapter #2:Rx & Tx Enabled (3)\n");
    const std::string sorted = Run({"setting", "list", "2:*", "*FlowControl", "*Jumbo*", "--sort", "-setting",
                                    "--terse", "--columns", "setting"})
                                   .out;
    EXPECT_EQ(sorted, "*JumboPacket\n*FlowControl\n*JumboPacket\n*FlowControl\n") << "within its owner";
    EXPECT_EQ(Run({"setting", "list", "2:*", "--columns", "setting", "--no-headings", "*FlowControl"}).out,
              "*FlowControl\n*FlowControl\n");
    const Outcome screen =
        RunCommandLine({"setting", "list", "2:1*", "*FlowControl", "--simulate", TestMachine("golden.mof")},
                       {.isTerminal = true});
    EXPECT_TRUE(screen.out.starts_with("\x1b[1mZorel 10G Dual Port Server Adapter:\x1b[0m\n")) << screen.out;
}

TEST_F(SettingsTest, List_OfSeveralOwners_AnswersWithAListOfThem) {
    const Json one = RunJson({"setting", "list", kAdapter});
    const Json several = RunJson({"setting", "list", "2:*"});
    ASSERT_EQ(several.at("owners").size(), 2u);
    EXPECT_EQ(several.at("owners").at(0), one);
    const Json all = RunJson({"setting", "list", "--all-adapters", "*JumboPacket", "--changed"});
    std::size_t changed = 0;
    for (const Json& each : all.at("owners")) {
        EXPECT_EQ(each.at("owner").at("kind"), "adapter");
        changed += each.at("settings").size();
    }
    EXPECT_EQ(all.at("owners").size(), RunJson({"adapter", "list"}).at("adapters").size());
    EXPECT_GT(changed, 0u);
    EXPECT_EQ(RunJson({"setting", "list", "TEAM*", "--of", "team"}).at("owners").at(0),
              RunJson({"setting", "list", kTeam, "--of", "team"}));
    EXPECT_GT(RunJson({"setting", "list", "*", "--of", "boot-agent"}).at("owners").size(), 1u);
}

TEST_F(SettingsTest, List_OfSeveralOwners_PassesOverThoseWithoutTheSetting) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "m"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "two"; OriginalDisplayName = "m"; };
        instance of Zorel_AdapterSettingInt { Caption = "Int"; ParentId = "{B}"; ParentType = "NIC";
            CurrentValue = -5; DefaultValue = 0; Min = -10; Max = 10; Step = 1; Base = 10; Scale = 1; };)");
    const auto list = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"--simulate", machine, "setting", "list", "--all-adapters"});
        return RunCommandLine(more);
    };
    EXPECT_EQ(list({"Int", "--columns", "setting"}).out, "two:\nSETTING\nInt\n");
    const Outcome unknown = list({"Int", "Nothing"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.out, "");
    EXPECT_EQ(unknown.err, "quilletctl: no setting is called \"Nothing\"\n");
    EXPECT_EQ(list({"--of", "team"}).err, "quilletctl: --all-adapters: not together with --of team\n");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "setting", "list"}).err,
              "quilletctl: an owner (or --all-adapters) is needed\n");

    // One that cannot be read hides none of the others, and the status tells.
    const Outcome failed = list({"--columns", "setting", "--fault", "ExecQuery:*:1"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.out, "two:\nSETTING\nInt\n");
    EXPECT_EQ(failed.err, "quilletctl: could not read the settings of one: 0x80041001 WBEM_E_FAILED\n");
}

TEST_F(SettingsTest, Get_ShowsOneSettingByItsCaption) {
    EXPECT_EQ(Run({"setting", "get", kAdapter, "*FlowControl", "--json"}).out, Golden("setting-get.json"));
    const Outcome text = Run({"setting", "get", kAdapter, "*flowcontrol"});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_TRUE(text.out.starts_with("Setting:          *FlowControl\n"
                                     "Name:             Flow Control\n"
                                     "Help:             Sets how the link is paused when a buffer fills.\n"
                                     "Kind:             choice\n"
                                     "Current:          Rx & Tx Enabled (3)\n"
                                     "Default:          Rx & Tx Enabled (3)\n"
                                     "Possible values:  Disabled (0), Tx Enabled (1), Rx Enabled (2), "
                                     "Rx & Tx Enabled (3)\n"
                                     "Writable:         yes\n"
                                     "Group:            -\n"
                                     "Expose level:     1\n"
                                     "Path:             \\\\LAB-SERVER\\ROOT\\MarloLUM2:"))
        << text.out;
}

TEST_F(SettingsTest, Get_UnknownCaption_IsBadUsage) {
    const Outcome outcome = Run({"setting", "get", kAdapter, "*Nothing"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "quilletctl: Zorel 10G Dual Port Server Adapter has no setting \"*Nothing\"; see "
                           "quilletctl setting list\n");
    EXPECT_EQ(Run({"setting", "get", kAdapter}).status, 2);
}

} // namespace
