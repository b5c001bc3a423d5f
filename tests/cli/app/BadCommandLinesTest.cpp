// Command lines that cannot be carried out, each with what is said about it and how it ends.
#include "support/RunCommandLine.h"

#include <texts/Text.h>

#include <nlohmann/json.hpp>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

/// Names in angle brackets are files of the test's folder.
struct BadLine {
    std::vector<std::string> arguments;
    std::string message;
    int status = 2;
    const char* machine = "golden";
};

/// GoogleTest would show the bytes, and what lies in them is not all written.
void PrintTo(const BadLine& line, std::ostream* out) {
    for (const std::string& argument : line.arguments) {
        *out << '"' << argument << "\" ";
    }
}

class BadCommandLinesTest : public CommandLine, public testing::WithParamInterface<BadLine> {
  protected:
    BadCommandLinesTest() {
        WriteFile(InFolder("bad.mof"), "instance of Zorel_NetService {\n  Name = ;\n};\n");
        WriteFile(InFolder("text.mof"), "this is no machine\n");
        WriteFile(InFolder("twice.mof"), "instance of Zorel_NetService { Name = \"A\"; };\n"
                                         "instance of Zorel_NoSuchClass { Name = \"A\"; };\n");
        WriteFile(InFolder("string.mof"), "instance of Zorel_NetService { Name = \"A\n");
        WriteFile(InFolder("empty.img"), "");
        std::filesystem::create_directories(InFolder("folder"));
    }

    /// The text with the paths of its files.
    std::string WithPaths(std::string text) const {
        const std::size_t begin = text.find('<');
        const std::size_t end = text.find('>');
        if (begin != std::string::npos && end != std::string::npos) {
            text.replace(begin, end - begin + 1, Utf8(InFolder(text.substr(begin + 1, end - begin - 1))));
        }
        return text;
    }

    Outcome Run(std::vector<std::string> line) const {
        for (const std::string& argument : GetParam().arguments) {
            line.push_back(WithPaths(argument));
        }
        return RunCommandLine(line);
    }
    std::vector<std::string> Machine() const {
        return *GetParam().machine == '\0'
                   ? std::vector<std::string>{}
                   : std::vector<std::string>{"--simulate", TestMachine("golden.mof")};
    }
};

TEST_P(BadCommandLinesTest, AreToldInOneLineWithTheirStatus) {
    const std::string message = WithPaths(GetParam().message);
    const Outcome outcome = Run(Machine());
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.err, "quilletctl: " + message + "\n");

    // The same as JSON, in one document, whatever stands in it.
    std::vector<std::string> line = Machine();
    line.insert(line.begin(), "--json");
    const Outcome json = Run(line);
    EXPECT_EQ(json.status, outcome.status);
    EXPECT_EQ(json.err, outcome.err);
    const Json answer = Json::parse(json.out, nullptr, false);
    ASSERT_TRUE(answer.is_object()) << json.out;
    if (outcome.out.empty()) {
        EXPECT_EQ(quilletctl::Printable(answer.at("error").at("message").get<std::string>()), message);
        EXPECT_EQ(answer.at("error").at("status"), outcome.status);
        EXPECT_EQ(answer.at("error").at("code").is_null(), outcome.status == 2);
    } else {
        EXPECT_FALSE(answer.contains("error")) << json.out;
    }
}

constexpr const char* kFree = "Zorel Gigabit Server Adapter (東京)";
constexpr const char* kOnboard = "Zorel Fast Ethernet Adapter";
constexpr const char* kSecure = "Zorel Quad Port Gigabit Server Adapter";
constexpr const char* kTeam = "TEAM : Zürich";
constexpr const char* kNouns = "adapter, setting, profile, power, wol, team, linksec, vlan, diag, boot, "
                               "iscsi, config, dsc, warnings, machine, report, monitor, "
                               "trace, transaction, completion, version, help";
constexpr const char* kNotRepeated = " takes no such word or option; it is not repeated here, for it may be "
                                     "a secret: secrets are typed at a prompt "
                                     "or read with --secret-fd, never given on the command line";

INSTANTIATE_TEST_SUITE_P(
    Commands, BadCommandLinesTest,
    testing::Values(
        BadLine{{}, "a command is needed: " + std::string(kNouns)},
        BadLine{{"adaptor", "list"}, "there is no command \"adaptor\"; did you mean \"adapter\"?"},
        BadLine{{"network", "list"}, "there is no command \"network\", only " + std::string(kNouns)},
        BadLine{{""}, "there is no command \"\", only " + std::string(kNouns)},
        BadLine{{"ADAPTER", "list"}, "there is no command \"ADAPTER\"; did you mean \"adapter\"?"},
        BadLine{{"adapter"}, "adapter needs a verb: list, show, capabilities, ports, identify"},
        BadLine{{"transaction"}, "transaction needs a verb: try"},
        BadLine{{"adapter", "lost"}, "adapter has no verb \"lost\"; did you mean \"list\"?"},
        BadLine{{"power", "off"}, "power has no verb \"off\", only show, set, reapply"},
        BadLine{{"adapter", "show", "A", "more"}, "adapter show takes no further word: \"more\""},
        BadLine{{"adapter", "show", "A", "--", "-more"}, "adapter show takes no further word: \"-more\""},
        BadLine{{"--", "--nothing"}, "there is no option --nothing; see quilletctl help"},
        BadLine{{"warnings", "version"}, "warnings takes no further word: \"version\""},
        BadLine{{"trace", "--lines", "5", "x"}, "trace takes no further word: \"x\""},
        BadLine{{"vlan", "list", "A", "B"},
                "too many words; usage: quilletctl vlan list [PARENT] [OPTION...]"},
        BadLine{{"help", "a", "b", "c"}, "too many words; usage: quilletctl help [NOUN [VERB]]"},
        BadLine{{"help", "adapter", "lost"},
                "there is no command \"adapter lost\"; did you mean \"adapter list\"?"},
        BadLine{{"help", "nothing"}, "there is no command \"nothing\"; see quilletctl help"},
        BadLine{{"adapter", "show"}, "words are missing; usage: quilletctl adapter show ADAPTER"},
        BadLine{{"vlan", "add", kTeam, "5"},
                "words are missing; usage: quilletctl vlan add PARENT ID NAME [OPTION...]"},
        BadLine{{"team", "create", "T"},
                "words are missing; usage: quilletctl team create NAME ADAPTER... [OPTION...]"},
        BadLine{{"setting", "set", "*JumboPacket"},
                "an owner (or --all-adapters), a setting and a value are needed"},
        BadLine{{"diag", "run", kFree},
                "words are missing; usage: quilletctl diag run ADAPTER TEST [OPTION...]"},
        BadLine{{"iscsi", "set", kFree}, "words are missing; usage: quilletctl iscsi set ADAPTER PLACE"}));

INSTANTIATE_TEST_SUITE_P(
    Options, BadCommandLinesTest,
    testing::Values(
        BadLine{{"--verbose"}, "there is no option --verbose; see quilletctl help"},
        BadLine{{"-x", "adapter", "list"}, "adapter list has no option -x; see quilletctl help adapter list"},
        BadLine{{"adapter", "list", "--colour=red"},
                "adapter list has no option --colour; see quilletctl help adapter list"},
        BadLine{{"adapter", "list", "--JSON"},
                "adapter list has no option --JSON; see quilletctl help adapter list"},
        BadLine{{"warnings", "--lines", "3"}, "warnings has no option --lines; see quilletctl help warnings"},
        BadLine{{"adapter", "--bogus"}, "adapter has no option --bogus; see quilletctl help adapter"},
        BadLine{{"trace", "--lines"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"trace", "--lines", "0"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"trace", "--lines", "-3"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"trace", "--lines", "100001"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"trace", "--lines=99999999999999999999"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"trace", "--lines", "0x10"}, "--lines: a number from 1 to 100000 is needed"},
        BadLine{{"adapter", "identify", kFree, "--seconds", "1.5"},
                "--seconds: a number from 1 to 3600 is needed"},
        BadLine{{"diag", "run", kFree, "1", "--interval", "5"},
                "--interval: a number from 10 to 60000 is needed"},
        BadLine{{"team", "create", "T", kFree, "--profile", "-1"},
                "--profile: a number from 0 to 2147483647 is needed"},
        BadLine{{"trace", "--lines", "1", "--lines", "2"}, "--lines: given more than once"},
        BadLine{{"--machine", "a", "--machine", "b", "adapter", "list"}, "--machine: given more than once"},
        BadLine{{"adapter", "list", "--json=3"}, "--json: takes no value"},
        BadLine{{"adapter", "list", "--yes=no"}, "--yes: takes no value"},
        BadLine{{"setting", "list", kFree, "--of", "port"},
                "--of: adapter, team, vlan or boot-agent is needed"},
        BadLine{{"setting", "list", kFree, "--of"}, "--of: adapter, team, vlan or boot-agent is needed"},
        BadLine{{"power", "set", kFree, "--mode", "7"}, "--mode: 0, 1 or 2 is needed"},
        BadLine{{"power", "set", kFree, "--aspm", "yes"}, "--aspm: on or off is needed"},
        BadLine{{"iscsi", "set", kFree, "first"}, "PLACE: off, primary or secondary is needed"},
        BadLine{{"boot", "verify", kFree, "f", "--type"}, "--type: a value (TYPE) is needed"},
        BadLine{{"adapter", "list", "--machine"}, "--machine: a value (HOST) is needed"},
        BadLine{{"adapter", "list", "--machine", "\\\\"}, "--machine: a name or an address is needed"},
        BadLine{{"adapter", "list", "--machine", "a b"},
                "--machine: \"a b\" is no name and no address of a machine"},
        BadLine{{"adapter", "list", "--machine", "192.0.2.256"},
                "--machine: \"192.0.2.256\" is no name and no address of a machine"},
        BadLine{{"adapter", "list", "--machine", "192.0.2"},
                "--machine: \"192.0.2\" is no name and no address of a machine"},
        BadLine{{"adapter", "list", "--machine", "fe80:::1"},
                "--machine: \"fe80:::1\" is no name and no address of a machine"},
        BadLine{{"adapter", "list", "--machine", "server:5985"},
                "--machine: \"server:5985\" is no name and no address of a machine"},
        BadLine{{"adapter", "list", "--machine", "a", "--port", "0"},
                "--port: a number from 1 to 65535 is needed"},
        BadLine{{"adapter", "list", "--port", "5986"},
                "--port: a simulated machine is not reached over the network"},
        BadLine{{"adapter", "list", "--insecure"},
                "--insecure: a simulated machine is not reached over the network"},
        BadLine{{"adapter", "list", "--machine", "a", "--simulate", "--ca", "x"},
                "--ca: a simulated machine is not reached over the network"}));

INSTANTIATE_TEST_SUITE_P(
    Contradictions, BadCommandLinesTest,
    testing::Values(
        BadLine{{"team", "primary", kFree, "--secondary", "--none"}, "--secondary: not together with --none"},
        BadLine{{"team", "modes", kFree, "--team", kTeam}, "--team: not together with adapters"},
        BadLine{{"team", "modify", kTeam}, "nothing to change: --name or --mode is needed"},
        BadLine{{"vlan", "modify", kTeam, "12"}, "a new name or a new ID is needed: --name, --id"},
        BadLine{{"vlan", "add", kFree, "12", "X", "--through", "5"}, "--through: an ID from 12 on is needed"},
        BadLine{{"power", "set", kFree}, "an option to set is needed; see quilletctl power set --help"},
        BadLine{{"wol", "set", kFree}, "an option to set is needed; see quilletctl wol set --help"},
        BadLine{{"setting", "set", kFree, "*JumboPacket"},
                "an owner (or --all-adapters), a setting and a value are needed"},
        BadLine{{"setting", "set", "--all-adapters", kFree, "*JumboPacket", "9014"},
                "--all-adapters: a setting and a value are needed, and no owner"},
        BadLine{{"setting", "set", "--all-adapters", "--of", "team", "*JumboPacket", "9014"},
                "--all-adapters: not together with --of team"},
        BadLine{{"setting", "list", kFree, "--of", "boot-agent", "--vmq"},
                "--vmq: only an adapter has virtual machine queues"},
        BadLine{{"setting", "list", "Zorel_VLAN.Name=\"x\"", "--of", "team"},
                "the path is not that of a team: Zorel_VLAN.Name=\"x\""},
        BadLine{{"vlan", "remove", kTeam, "12"},
                "nobody can be asked \"Remove VLAN 12 \"Büro\" from TEAM : Zürich?\"; add --yes to agree"}));

INSTANTIATE_TEST_SUITE_P(
    Names, BadCommandLinesTest,
    testing::Values(
        BadLine{{"adapter", "show", "nobody"},
                "no adapter is called \"nobody\"; see quilletctl adapter list"},
        BadLine{{"adapter", "show", ""}, "an adapter is needed: its name, object ID or path"},
        BadLine{
            {"adapter", "show", "Zorel Quad Port Gigabit Server Adapter #9"},
            "no adapter is called \"Zorel Quad Port Gigabit Server Adapter #9\"; did you mean \"Zorel Quad "
            "Port Gigabit Server Adapter #2\"?"},
        BadLine{{"adapter", "show", "{64D1BF82-B507-5E42-AED2-547CA8AAC36Z}"},
                "no adapter is called \"{64D1BF82-B507-5E42-AED2-547CA8AAC36Z}\"; did you mean "
                "\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\"?"},
        BadLine{{"team", "show", "TEAM: Zurich"},
                "no team is called \"TEAM: Zurich\"; did you mean \"TEAM : Zürich\"?"},
        BadLine{{"vlan", "list", "TEAM: Zurich"},
                "no adapter is called \"TEAM: Zurich\"; did you mean \"TEAM : Zürich\"?"},
        BadLine{{"vlan", "remove", kTeam, "Buro"},
                "TEAM : Zürich has no VLAN \"Buro\"; did you mean \"Büro\"?"},
        BadLine{{"setting", "list", "Buro", "--of", "vlan"},
                "no VLAN is called \"Buro\"; did you mean \"Büro\"?"},
        BadLine{{"adapter", "show", "0000:03:00.0"},
                "no adapter is called \"0000:03:00.0\"; see quilletctl adapter list"},
        BadLine{{"adapter", "show", "--", "-x"}, "no adapter is called \"-x\"; see quilletctl adapter list"},
        BadLine{{"adapter", "show", "\x1b[31m"},
                "no adapter is called \"\xEF\xBF\xBD[31m\"; see quilletctl adapter list"},
        BadLine{{"team", "show", "{233D64CB"}, "no team is called \"{233D64CB\"; see quilletctl team list"},
        BadLine{{"team", "create", "", kFree}, "a name is needed"},
        BadLine{{"team", "create", "X", "nobody"},
                "no adapter is called \"nobody\"; see quilletctl adapter list"},
        BadLine{{"team", "create", "X", kFree, "--mode", "9"},
                "no team mode is called \"9\"; there are 0 (fault tolerance), 1 (adaptive load balancing), 2 "
                "(static "
                "link aggregation), 3 (gigabit link aggregation), 4 (IEEE 802.3ad dynamic link aggregation), "
                "5 (switch "
                "fault tolerance), 6 (virtual machine load balancing)"},
        BadLine{{"team", "switch-test", kTeam},
                "TEAM : Zürich: adaptive load balancing asks nothing of the switch, "
                "so there is nothing to test"},
        BadLine{{"team", "remove", kTeam, kFree}, std::string(kFree) + " is no member of TEAM : Zürich"},
        BadLine{{"vlan", "check", "", "1", "x"},
                "an adapter or a team is needed: its name, object ID or path"},
        BadLine{{"vlan", "remove", kTeam, "99"}, "TEAM : Zürich has no VLAN 99; see quilletctl vlan list"},
        BadLine{{"vlan", "add", kFree, "12x", "X"},
                "\"12x\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN"},
        BadLine{
            {"vlan", "add", kFree, "99999999999", "X"},
            "\"99999999999\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN"},
        BadLine{{"setting", "list", "nothing", "--of", "vlan"},
                "no VLAN is called \"nothing\"; see quilletctl vlan list"},
        BadLine{{"setting", "list", "Zorel_NetService.Name=\"x\""},
                "a Zorel_NetService has no settings: Zorel_NetService.Name=\"x\""},
        BadLine{{"setting", "get", kFree, "*Nothing"},
                std::string(kFree) + " has no setting \"*Nothing\"; see quilletctl setting list"},
        BadLine{{"diag", "run", kFree, "99"},
                "no test of " + std::string(kFree) + " is called \"99\"; see quilletctl diag list"},
        BadLine{{"iscsi", "set", kOnboard, "primary"},
                std::string(kOnboard) + " cannot boot from iSCSI; see quilletctl iscsi list"},
        BadLine{{"power", "set", kOnboard, "--aspm", "on"},
                "--aspm: not available on " + std::string(kOnboard)}));

INSTANTIATE_TEST_SUITE_P(
    Values, BadCommandLinesTest,
    testing::Values(
        BadLine{{"setting", "set", kFree, "NetworkAddress", "00:11"},
                "\"00:11\" is no value of NetworkAddress: twelve hexadecimal digits are needed, or nothing"},
        BadLine{{"setting", "set", kFree, "NetworkAddress", "02005E00000G"},
                "\"02005E00000G\" is no value of NetworkAddress: twelve hexadecimal digits are needed, or "
                "nothing"},
        BadLine{
            {"setting", "set", kFree, "TargetIP", "192.0.2.400", "--of", "boot-agent"},
            "\"192.0.2.400\" is no value of TargetIP: an address such as 192.0.2.10 is needed, or nothing"},
        BadLine{{"setting", "set", kFree, "TargetIP", "target", "--of", "boot-agent"},
                "\"target\" is no value of TargetIP: an address such as 192.0.2.10 is needed, or nothing"},
        BadLine{{"setting", "set", kFree, "*JumboPacket", "big"},
                "\"big\" is no value of *JumboPacket: Disabled (1514), 4088 Bytes (4088), 9014 Bytes (9014)"},
        BadLine{{"setting", "set", kFree, "*TransmitBuffers", "99999999999"},
                "\"99999999999\" is no value of *TransmitBuffers: 80 to 2048 in steps of 8"},
        BadLine{{"setting", "set", kFree, "*JumboPacket", "9999"},
                "could not set *JumboPacket of " + std::string(kFree) +
                    " to 9999: the value is out of range (Disabled (1514), 4088 Bytes (4088), 9014 Bytes "
                    "(9014)): 0x8004102B WBEM_E_VALUE_OUT_OF_RANGE",
                1},
        BadLine{{"adapter", "show", "Zorel_PhysicalEthernetAdapter.DeviceID=\"{X}\""},
                "could not read the adapter Zorel_PhysicalEthernetAdapter.DeviceID=\"{X}\": there is no such "
                "object: 0x80041002 "
                "WBEM_E_NOT_FOUND",
                1},
        BadLine{{"linksec", "show", kFree},
                "could not read the authentication of " + std::string(kFree) +
                    ": this is not supported: 0x8004100C WBEM_E_NOT_SUPPORTED",
                1},
        BadLine{{"linksec", "pac-show", kSecure, "none.pac"},
                "could not read none.pac of " + std::string(kSecure) +
                    ": there is no such object: 0x80041002 WBEM_E_NOT_FOUND",
                1}));

INSTANTIATE_TEST_SUITE_P(
    Secrets, BadCommandLinesTest,
    testing::Values(
        BadLine{{"linksec", "set-auth", kSecure, "--password", "hunter2"},
                "linksec set-auth" + std::string(kNotRepeated)},
        BadLine{{"linksec", "set-auth", kSecure, "--password=hunter2"}, "--password: takes no value"},
        BadLine{{"linksec", "set-keys", kSecure, "--tx-key", "hunter2"},
                "linksec set-keys" + std::string(kNotRepeated)},
        BadLine{{"linksec", "set-keys", kSecure, "--tx-key=hunter2"},
                "linksec set-keys" + std::string(kNotRepeated)},
        BadLine{{"linksec", "pmk", kSecure, "hunter2"}, "linksec pmk" + std::string(kNotRepeated)},
        BadLine{{"linksec", "pmk", kSecure, "--set=hunter2"}, "--set: takes no value"},
        BadLine{{"linksec", "import-pac", kSecure, "f.pac", "hunter2"},
                "linksec import-pac" + std::string(kNotRepeated)},
        BadLine{{"linksec", "pmk", kSecure, "--secret-fd", "hunter2"},
                "--secret-fd: a number from 0 to 65535 is needed"},
        BadLine{{"linksec", "set-auth", kSecure, "--outer", "5"}, "--outer: a number from 1 to 4 is needed"},
        BadLine{{"linksec", "set-keys", kSecure, "--tx-number1", "x"}, "--tx-number1: a number is needed"},
        BadLine{{"linksec", "set-pasword", kSecure, "hunter2"},
                "linksec has no verb \"set-pasword\", only show, set-keys, set-auth, import-pac, pac-show, "
                "pac-delete, "
                "pmk, stats"},
        BadLine{{"linksec", "pmk", kSecure, "--", "-hunter2"}, "linksec pmk" + std::string(kNotRepeated)}));

INSTANTIATE_TEST_SUITE_P(
    Files, BadCommandLinesTest,
    testing::Values(
        BadLine{{"adapter", "list", "--state"}, "--state: a value (FILE) is needed"},
        BadLine{{"adapter", "list", "--state", ""}, "--state: the name of a file is needed"},
        BadLine{{"adapter", "list", "--simulate", "<missing.mof>"}, "<missing.mof>: no such file", 2, ""},
        BadLine{{"adapter", "list", "--simulate=<folder>"}, "<folder>: not a file", 2, ""},
        BadLine{
            {"adapter", "list", "--simulate", "<bad.mof>"}, "<bad.mof>:2:10: a value was expected", 2, ""},
        BadLine{{"adapter", "list", "--state", "<bad.mof>"}, "<bad.mof>:2:10: a value was expected", 2, ""},
        BadLine{{"adapter", "list", "--simulate", "<text.mof>"},
                "<text.mof>:1:1: 'class', 'instance', 'Qualifier' or '#pragma' was expected",
                2,
                ""},
        BadLine{{"adapter", "list", "--simulate", "<twice.mof>"},
                "<twice.mof>:2:13: unknown class 'Zorel_NoSuchClass'",
                2,
                ""},
        BadLine{{"adapter", "list", "--simulate", "<string.mof>"},
                "<string.mof>:1:39: the string does not end before the line does",
                2,
                ""},
        BadLine{{"adapter", "list", "--state", "<folder>"}, "<folder>: not a file"},
        BadLine{{"boot", "inspect", kFree, "<missing.img>"}, "<missing.img>: no such file"},
        BadLine{{"boot", "verify", kFree, "<folder>"}, "<folder>: not a file"},
        BadLine{{"boot", "inspect", kFree, "<empty.img>"}, "<empty.img>: no image is as short as this file"},
        BadLine{{"boot", "read", kFree, "<empty.img>"},
                "nobody can be asked \"Overwrite <empty.img>?\"; add --yes to agree"}));

} // namespace
