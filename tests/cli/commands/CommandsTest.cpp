// The commands against simulated machines.
#include "support/Environment.h"
#include "support/RunCommandLine.h"

#include <filesystem>
#include <fstream>
#include <remote/RemoteMachine.h>
#include <terminal/Console.h>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::AllOf;
using testing::HasSubstr;

class AdaptersTest : public CommandLine {};
class WarningsTest : public CommandLine {};
class TransactionsTest : public CommandLine {};
class RefusalsTest : public CommandLine {};
class JournalsTest : public CommandLine {};
class ColoursTest : public CommandLine {};

std::vector<std::string> Keys(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& item : object.items()) {
        keys.push_back(item.key());
    }
    return keys;
}

TEST_F(AdaptersTest, List_JsonIsByteForByteTheGoldenFile) {
    const Outcome outcome =
        RunCommandLine({"--simulate", TestMachine("golden.mof"), "adapter", "list", "--json"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/adapter-list.json"));
}

TEST_F(AdaptersTest, List_JsonHasItsKeysInOrderAndReadsBack) {
    const Outcome outcome =
        RunCommandLine({"adapter", "list", "--json", "--simulate", TestMachine("names.mof")});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.ends_with("}\n"));
    const Json json = Json::parse(outcome.out);
    ASSERT_EQ(json.at("adapters").size(), 3u);
    const Json& first = json.at("adapters").at(0);
    EXPECT_EQ(Keys(first),
              (std::vector<std::string>{"path", "objectId", "name", "displayName", "deviceId", "link",
                                        "speed", "duplex", "slot", "slotId", "portNumber", "macAddress",
                                        "team", "hardwareStatus", "statusInfo", "failure"}));
    EXPECT_EQ(first.at("path"), "\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter."
                                "DeviceID=\"{00000000-0000-0000-0000-000000000001}\"");
    EXPECT_EQ(first.at("objectId"), "{00000000-0000-0000-0000-000000000001}");
    EXPECT_EQ(first.at("name"), "東京 NIC");
    EXPECT_EQ(first.at("displayName"), "plain");
    EXPECT_EQ(first.at("deviceId"), "{00000000-0000-0000-0000-000000000001}");
    EXPECT_EQ(json.at("adapters").at(2).at("name"), "a\tb\x1B[31m") << "programs get the name as it is";
    EXPECT_NE(outcome.out.find("東京"), std::string::npos) << "characters are not escaped";
}

TEST_F(AdaptersTest, List_TextIsAlignedAndCannotSteerTheTerminal) {
    const Outcome outcome = RunCommandLine({"--simulate", TestMachine("names.mof"), "adapter", "list",
                                            "--columns", "name,display-name,object-id"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "NAME      DISPLAY NAME  OBJECT ID\n"
              "東京 NIC  plain         {00000000-0000-0000-0000-000000000001}\n"
              "Gerät     e\xCC\x81tude         {00000000-0000-0000-0000-000000000002}\n"
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD[31m  two\xEF\xBF\xBDlines     {00000000-0000-0000-0000-000000000003}\n");
}

TEST_F(AdaptersTest, List_FitsANarrowTerminalWithoutCuttingIdentifiers) {
    const Outcome outcome = RunCommandLine({"--simulate", TestMachine("golden.mof"), "adapter", "list",
                                            "--no-color", "--columns", "name,link,object-id"},
                                           {true, 72});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("…"), std::string::npos);
    std::istringstream lines(outcome.out);
    std::string line;
    std::getline(lines, line);
    std::size_t adapters = 0;
    while (std::getline(lines, line)) {
        EXPECT_TRUE(line.ends_with("}")) << line;
        ++adapters;
    }
    EXPECT_GT(adapters, 5u);
}

TEST_F(AdaptersTest, List_OfAMachineWithoutAdapters) {
    const std::string machine = MachineFile("");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "adapter", "list"}).out, "no adapters\n");
    const Outcome json = RunCommandLine({"--simulate", machine, "adapter", "list", "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(Json::parse(json.out), (Json{{"adapters", Json::array()}}));
}

TEST_F(AdaptersTest, List_OptionsMayStandAnywhereAndTheFileMayBeLeftOut) {
    const Outcome before = RunCommandLine({"--simulate", "--json", "adapter", "list"});
    ASSERT_EQ(before.status, 0) << before.err;
    EXPECT_GT(Json::parse(before.out).at("adapters").size(), 5u) << "the built-in machine";
    EXPECT_EQ(RunCommandLine({"adapter", "--simulate", "list", "--json"}).out, before.out);
    EXPECT_EQ(RunCommandLine({"--json", "adapter", "list", "--simulate"}).out, before.out);
    EXPECT_EQ(RunCommandLine({"--simulate", "--yes", "adapter", "list", "--json"}).out, before.out);
}

TEST_F(AdaptersTest, List_OnAMachineByName) {
    EXPECT_EQ(RunCommandLine({"--simulate", "--machine", "lab-7", "adapter", "list"}).status, 0);
    EXPECT_EQ(RunCommandLine({"--simulate", "--machine", "\\\\lab-7", "--journal", "adapter", "list"})
                  .out.find("\\\\\\\\lab-7"),
              std::string::npos)
        << "the backslashes of a pasted name are not doubled";
}

/// Only a host without WMI has a simulated machine answer that nobody asked for.
class WithoutWmiTest : public CommandLine {
  protected:
    void SetUp() override {
        if (quilletctl::HostHasWmi()) {
            GTEST_SKIP() << "the real provider answers";
        }
    }
};

TEST_F(WithoutWmiTest, OneLineOnTheErrorStreamSaysThatASimulatedMachineAnswers) {
    const std::string line =
        "quilletctl: this host has no WMI, so a simulated machine answers; with --simulate it "
        "does so without this line\n";
    for (std::vector<std::string> words : {std::vector<std::string>{"team", "list"},
                                           {"team", "list", "--json"},
                                           {"--no-color", "vlan", "check", "TEAM : Zürich", "100", "x"}}) {
        const Outcome silent = RunCommandLine(words, {true, 200});
        EXPECT_EQ(silent.err, line);
        words.push_back("--simulate");
        const Outcome asked = RunCommandLine(words, {true, 200});
        EXPECT_EQ(asked.err, "");
        EXPECT_EQ(silent.out, asked.out);
        EXPECT_EQ(silent.status, asked.status);
    }
    EXPECT_EQ(RunCommandLine({"--state", Utf8(InFolder("lab.mof")), "team", "list"}).err, "");
    EXPECT_EQ(RunCommandLine({"team", "show", "nobody"}).err.find(line), 0u) << "an error is below it";
    EXPECT_EQ(RunCommandLine({"version"}).err, "") << "no machine answers";
    EXPECT_EQ(RunCommandLine({"help", "team", "list"}).err, "");
}

TEST_F(WithoutWmiTest, AnotherMachineIsReachedOverTheNetwork) {
    if (!quilletctl::HasRemoteAccess()) {
        EXPECT_THAT(RunCommandLine({"--machine", "lab-7", "team", "list"}).err,
                    HasSubstr("this program was built without WS-Management"));
        return;
    }
    const std::string message = "could not connect to 127.0.0.1: 127.0.0.1: nobody answers at this port: ";
    const std::string code = " (https://127.0.0.1:1/wsman): 0x800706BA RPC_S_SERVER_UNAVAILABLE";
    const Outcome text = RunCommandLine({"--machine", "127.0.0.1", "--port", "1", "team", "list"});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.out, "");
    EXPECT_THAT(text.err, AllOf(HasSubstr(message), HasSubstr(code)));
    const Outcome json = RunCommandLine({"--machine", "127.0.0.1", "--port", "1", "team", "list", "--json"});
    EXPECT_EQ(json.status, 1);
    EXPECT_THAT(Json::parse(json.out).at("error").at("message").get<std::string>(), HasSubstr(message));
    EXPECT_EQ(RunCommandLine({"--machine", "lab-7", "--simulate", "team", "list"}).status, 0);
    EXPECT_EQ(
        RunCommandLine({"--machine", "lab-7", "--state", Utf8(InFolder("lab.mof")), "team", "list"}).status,
        0);
    EXPECT_EQ(RunCommandLine({"--machine", "lab-7", "--journal", "team", "list"}).err,
              "quilletctl: --journal: only a simulated machine keeps a journal; add --simulate\n");
}

TEST_F(WithoutWmiTest, CredentialsComeFromWhereNobodyElseCanRead) {
    const std::string file = Utf8(InFolder("credentials"));
    const auto said = [&](const std::string& text, std::filesystem::perms rights) {
        std::ofstream(InFolder("credentials"), std::ios::trunc) << text;
        std::filesystem::permissions(InFolder("credentials"), rights);
        const Outcome outcome =
            RunCommandLine({"--machine", "127.0.0.1", "--port", "1", "--credentials", file, "team", "list"});
        EXPECT_EQ(outcome.err.find("s3cret"), std::string::npos);
        return outcome.err;
    };
    if (!quilletctl::HasRemoteAccess()) {
        GTEST_SKIP() << "no machine is reached over the network";
    }
    using std::filesystem::perms;
    const perms own = perms::owner_read | perms::owner_write;
    EXPECT_THAT(said("user = a\npassword = s3cret\n", own | perms::group_read),
                HasSubstr("must be yours, and readable by you alone"));
    EXPECT_THAT(said("user = a\ns3cret\n", own), HasSubstr(file + ":2: this is neither"));
    EXPECT_THAT(said("user = a\n", own), HasSubstr("are needed"));
    EXPECT_THAT(said("# mine\n\n  user=a\n password = s3cret \n", own),
                HasSubstr("nobody answers at this port"));
    EXPECT_THAT(RunCommandLine({"--machine", "127.0.0.1", "--credentials", file + "x", "team", "list"}).err,
                HasSubstr("credentialsx: cannot be read"));
    EXPECT_THAT(RunCommandLine({"--machine", "server12", "--plain-http", "--auth", "basic", "--credentials",
                                file, "team", "list"})
                    .err,
                AllOf(HasSubstr("warning: --plain-http"), HasSubstr("does not go to server12 without TLS")));
}

TEST_F(WarningsTest, NoneIsSaidInWords) {
    const Outcome outcome = RunCommandLine({"--simulate", "warnings"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "no pending warnings\n");
    EXPECT_EQ(RunCommandLine({"--simulate", "warnings", "--json"}).out,
              "{\n  \"mask\": \"0x0000000000000000\",\n  \"bits\": [],\n  \"texts\": []\n}\n");
}

TEST_F(WarningsTest, EachIsALine) {
    std::string mof = ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/empty.mof");
    const std::string caption = "Version = ";
    ASSERT_NE(mof.find(caption), std::string::npos);
    mof.insert(mof.find(caption), "Warnings = 9223372036854775813;\n    ");
    WriteFile(InFolder("warned.mof"), mof);
    const std::string machine = Utf8(InFolder("warned.mof"));

    const Outcome outcome = RunCommandLine({"--simulate", machine, "warnings"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "warning 0 (unknown)\nwarning 2 (unknown)\nwarning 63 (unknown)\n");
    const Json json = Json::parse(RunCommandLine({"--simulate", machine, "warnings", "--json"}).out);
    EXPECT_EQ(json.at("mask"), "0x8000000000000005");
    EXPECT_EQ(json.at("bits"), (Json{0, 2, 63}));
}

TEST_F(TransactionsTest, Try_SaysWhetherARestartIsNeeded) {
    const Outcome outcome = RunCommandLine({"--simulate", "transaction", "try"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "opened a client set and closed it again: no restart is needed\n");
    EXPECT_EQ(RunCommandLine({"--simulate", "transaction", "try", "--json"}).out,
              "{\n  \"restartNeeded\": false\n}\n");
}

struct Refused {
    const char* fault;
    std::vector<std::string> command;
    const char* message;
};

class ProviderRefusesTest : public CommandLine, public testing::WithParamInterface<Refused> {};

TEST_P(ProviderRefusesTest, IsOneLineWithCodeAndNameAndStatusOne) {
    const std::string machine = MachineFile("instance of QuilletSimulator_Fault { Id = 1; " +
                                            std::string(GetParam().fault) + " };\n");
    std::vector<std::string> arguments = GetParam().command;
    arguments.insert(arguments.end(), {"--simulate", machine});
    for (const bool json : {false, true}) {
        if (json) {
            arguments.push_back("--json");
        }
        const Outcome outcome = RunCommandLine(arguments);
        const std::string message = "could not " + std::string(GetParam().message);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "quilletctl: " + message + "\n");
        if (json) {
            const Json error = Json::parse(outcome.out).at("error");
            EXPECT_EQ(error.at("message"), message);
            EXPECT_EQ(error.at("status"), 1);
            // Not every code has a name.
            const Json& name = error.at("name");
            EXPECT_TRUE(message.ends_with(": " + error.at("code").get<std::string>() +
                                          (name.is_null() ? " (unknown)" : ' ' + name.get<std::string>())));
        } else {
            EXPECT_EQ(outcome.out, "");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Steps, ProviderRefusesTest,
    testing::Values(
        Refused{"Operation = \"ConnectServer\"; Code = 0x80041003;",
                {"adapter", "list"},
                "connect to this machine: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED"},
        Refused{"Operation = \"ConnectServer\"; Code = 0x800706BA;",
                {"adapter", "list", "--machine", "lab-7"},
                "connect to lab-7: the machine cannot be reached: 0x800706BA RPC_S_SERVER_UNAVAILABLE"},
        Refused{
            "Operation = \"CreateInstanceEnum\"; Target = \"Zorel_PhysicalEthernetAdapter\"; "
            "Code = 0x80041010;",
            {"adapter", "list"},
            "list the adapters: the provider knows nothing of this kind: 0x80041010 WBEM_E_INVALID_CLASS"},
        Refused{"Operation = \"ExecMethod\"; MethodName = \"GetKavlorWarnings\"; Code = 0x80041004;",
                {"warnings"},
                "read the warnings: the provider broke down: 0x80041004 WBEM_E_PROVIDER_FAILURE"},
        Refused{"Operation = \"ExecMethod\"; MethodName = \"BeginApply\"; Code = 0x80041001;",
                {"transaction", "try"},
                "open a client set: 0x80041001 WBEM_E_FAILED"},
        Refused{"Operation = \"ExecMethod\"; MethodName = \"Apply\"; Code = 0x80041FFF;",
                {"transaction", "try"},
                "close the client set: 0x80041FFF (unknown)"}));

TEST_F(RefusalsTest, ABrokenMachineFileIsNamedWithItsPosition) {
    const std::string machine = Utf8(InFolder("broken.mof"));
    WriteFile(InFolder("broken.mof"), "// a comment\ninstance of Zorel_NetService {\n    Name = ;\n};\n");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "adapter", "list"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("broken.mof:3:12: "), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
}

TEST_F(RefusalsTest, AnErrorIsRedOnATerminal) {
    const Outcome outcome = RunCommandLine({"nonsense"}, {true, 80});
    EXPECT_TRUE(outcome.err.starts_with("\x1b[1;31mquilletctl:\x1b[0m ")) << outcome.err;
}

TEST_F(JournalsTest, FollowTheAnswerOnTheOutput) {
    const Outcome outcome = RunCommandLine({"--simulate", "transaction", "try", "--journal"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const auto answer = outcome.out.find("opened a client set");
    const auto heading = outcome.out.find("\n\nCalls to the provider: ");
    const auto begin = outcome.out.find("  ExecMethod ");
    const auto apply = outcome.out.find(", Apply(ClientSetHandle=");
    EXPECT_EQ(answer, 0u);
    EXPECT_NE(apply, std::string::npos) << outcome.out;
    EXPECT_LT(heading, begin);
    EXPECT_LT(begin, apply);
    EXPECT_NE(outcome.out.find(", BeginApply() -> 0x00000000\n"), std::string::npos) << outcome.out;
}

TEST_F(JournalsTest, GoToTheErrorStreamBesideJson) {
    const Outcome outcome = RunCommandLine({"--simulate", "adapter", "list", "--json", "--journal"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(Json::parse(outcome.out).size(), 1u);
    EXPECT_TRUE(outcome.err.starts_with("Calls to the provider: ")) << outcome.err;
    EXPECT_NE(outcome.err.find("  CreateInstanceEnum Zorel_PhysicalEthernetAdapter"), std::string::npos);
}

TEST_F(JournalsTest, ArePrintedWhenTheProviderRefuses) {
    const std::string machine = MachineFile("instance of QuilletSimulator_Fault { Id = 1; Operation = "
                                            "\"ExecMethod\"; Code = 0x80041001; };\n");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "transaction", "try", "--journal"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out.find(", BeginApply() -> 0x80041001"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("opened a client set"), std::string::npos);
}

TEST_F(JournalsTest, AreOnlyKeptBySimulatedMachines) {
    const Outcome outcome = RunCommandLine({"warnings", "--journal"});
    if (quilletctl::HostHasWmi()) {
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err,
                  "quilletctl: --journal: only a simulated machine keeps a journal; add --simulate\n");
    } else {
        EXPECT_EQ(outcome.status, 0) << "the simulator stands in for WMI";
        EXPECT_NE(outcome.out.find("Calls to the provider: "), std::string::npos);
    }
}

TEST_F(ColoursTest, TitlesAreBoldOnATerminalUnlessUnwanted) {
    SetEnvironment("NO_COLOR", "");
    const std::vector<std::string> list{"--simulate", TestMachine("names.mof"), "adapter", "list"};
    const std::string plain = RunCommandLine(list).out;
    EXPECT_EQ(plain.find('\x1B'), std::string::npos);

    const std::string coloured = RunCommandLine(list, {true, 200}).out;
    EXPECT_TRUE(coloured.starts_with("\x1b[1mNAME")) << coloured;

    std::vector<std::string> without = list;
    without.push_back("--no-color");
    EXPECT_EQ(RunCommandLine(without, {true, 200}).out, plain);

    SetEnvironment("NO_COLOR", "1");
    EXPECT_EQ(RunCommandLine(list, {true, 200}).out, plain);
    SetEnvironment("NO_COLOR", "");
}

} // namespace
