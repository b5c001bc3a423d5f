// Signals to the program while it changes something: where it stops, what it tells, and what the machine is
// then.
#include "support/RunningProgram.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <csignal>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kTeam = "TEAM : Zürich";
constexpr const char* kFree = "Zorel Gigabit Desktop Adapter";
constexpr const char* kStopped = "quilletctl: interrupted before everything was done\n";
constexpr const char* kAllDone = "quilletctl: interrupted, but everything was done\n";
constexpr const char* kNothing = "quilletctl: interrupted; nothing was changed\n";

class InterruptedTest : public CommandLine {
  protected:
    /// A command on the shipped machine, strict, where calls as the fault says take a while.
    std::vector<std::string> Slow(std::vector<std::string> command, const std::string& calls,
                                  unsigned milliseconds = 400) const {
        WriteFile(InFolder("slow.mof"),
                  ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                      "instance of QuilletSimulator_Machine { Name = \"m\"; Strict = TRUE; };\n"
                      "instance of QuilletSimulator_Fault { Id = 1; Effect = \"Delay\"; Repeat = TRUE; "
                      "Milliseconds = " +
                      std::to_string(milliseconds) + "; " + calls + " };\n");
        command.insert(command.end(),
                       {"--simulate", Utf8(InFolder("slow.mof")), "--state", State(), "--journal"});
        return command;
    }
    std::string State() const { return Utf8(InFolder("lab.mof")); }
    /// What a later command says of the machine.
    Json Ask(std::vector<std::string> command) const {
        command.insert(command.end(), {"--state", State(), "--json"});
        const Outcome outcome = RunCommandLine(command);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    std::vector<int> VlansOf(const char* parent) const {
        std::vector<int> numbers;
        const Json listed = Ask({"vlan", "list", parent});
        for (const Json& vlan : listed.at("vlans")) {
            numbers.push_back(vlan.at("number"));
        }
        return numbers;
    }
    /// What stands before the journal, and that there a client set was opened and closed once.
    static std::string Answer(const std::string& output) {
        const auto count = [&](const std::string& call) {
            const std::size_t first = output.find(call);
            return first == std::string::npos ? 0 : output.find(call, first + 1) == std::string::npos ? 1 : 2;
        };
        EXPECT_EQ(count("BeginApply("), 1) << output;
        EXPECT_EQ(count(", Apply("), 1) << output;
        EXPECT_THAT(output, Not(HasSubstr("outside a client set")));
        return output.substr(0, output.find("\nCalls to the provider: "));
    }
};

class ManyVlansTest : public InterruptedTest, public testing::WithParamInterface<int> {};

TEST_P(ManyVlansTest, StopBetweenTwo) {
    RunningProgram program(Folder(), Slow({"vlan", "add", kFree, "7", "Lab", "--through", "12"},
                                          "Operation = \"ExecMethod\"; MethodName = \"CreateVLAN\";"));
    program.WaitForTrace("Entering CQuillet::AddVLANToComponent", 2);
    program.Signal(GetParam());
    program.Signal(GetParam()); // impatience changes nothing
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, kStopped);
    EXPECT_EQ(Answer(outcome.out), "added VLAN 7 \"Lab 7\" to Zorel Gigabit Desktop Adapter\n"
                                   "added VLAN 8 \"Lab 8\" to Zorel Gigabit Desktop Adapter\n"
                                   "not added: VLAN 9 \"Lab 9\"\n"
                                   "not added: VLAN 10 \"Lab 10\"\n"
                                   "not added: VLAN 11 \"Lab 11\"\n"
                                   "not added: VLAN 12 \"Lab 12\"\n"
                                   "no restart is needed\n");
    EXPECT_EQ(VlansOf(kFree), (std::vector<int>{7, 8})) << "the file holds what was told";
}

INSTANTIATE_TEST_SUITE_P(Signals, ManyVlansTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(InterruptedTest, WaitingAfterAChange_EndsAtOnce) {
    // The link is up before the change, and cannot be read afterwards.
    WriteFile(
        InFolder("down.mof"),
        ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
            "instance of QuilletSimulator_Fault { Id = 1; Operation = \"Get\"; Target = \"HardwareStatus\"; "
            "Effect = \"NullValue\"; Nth = 2; Repeat = TRUE; };\n");
    RunningProgram program(Folder(), {"--simulate", Utf8(InFolder("down.mof")), "--state", State(), "setting",
                                      "set", kFree, "*SpeedDuplex=0", "--wait", "600"});
    program.WaitForTrace("Entering CQuillet::GetAdapterDynamicInfo", 3);
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.out, HasSubstr(": *SpeedDuplex: set to "));
    EXPECT_EQ(Ask({"setting", "get", kFree, "*SpeedDuplex"}).at("setting").at("current"), 0);
}

TEST_F(InterruptedTest, SettingOfAllAdapters_StopsBetweenTwo) {
    RunningProgram program(Folder(),
                           Slow({"setting", "set", "--all-adapters", "*JumboPacket", "9014", "--json"},
                                "Operation = \"PutInstance\";"));
    program.WaitForTrace("Entering CQuillet::SetSetting", 2);
    program.Signal(SIGTERM);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.err, testing::EndsWith(kStopped));
    const Json answer = Json::parse(outcome.out, nullptr, false);
    std::size_t changed = 0;
    std::size_t notTried = 0;
    for (const Json& target : answer.at("targets")) {
        const bool isChanged = target.at("outcome") == "changed";
        changed += isChanged ? 1U : 0U;
        notTried += target.at("outcome") == "notTried" ? 1U : 0U;
        if (isChanged || target.at("outcome") == "notTried") {
            const Json now = Ask({"setting", "get", target.at("path"), "*JumboPacket"});
            EXPECT_EQ(now.at("setting").at("current") == 9014, isChanged) << target;
        }
    }
    EXPECT_EQ(changed, 2u);
    EXPECT_GE(notTried, 1u);
    EXPECT_EQ(answer.at("restartNeeded"), false);
}

TEST_F(InterruptedTest, TeamMembers_StopBetweenTwo) {
    RunningProgram program(Folder(), Slow({"team", "remove", kTeam, "Zorel Quad Port Gigabit Server Adapter",
                                           "Zorel Quad Port Gigabit Server Adapter #2", "--yes"},
                                          "Operation = \"DeleteInstance\";"));
    program.WaitForTrace("Entering CQuillet::ModifyMemberList");
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, kStopped);
    EXPECT_EQ(Answer(outcome.out), "not taken out: Zorel Quad Port Gigabit Server Adapter #2\n"
                                   "TEAM : Zürich has 1 member: no restart is needed\n");
    EXPECT_EQ(Ask({"team", "show", kTeam}).at("members").size(), 1u);
}

TEST_F(InterruptedTest, AChangeThatIsUnderWay_IsFinished) {
    RunningProgram program(Folder(), Slow({"vlan", "add", kFree, "7", "Lab"},
                                          "Operation = \"ExecMethod\"; MethodName = \"CreateVLAN\";"));
    program.WaitForTrace("Entering CQuillet::AddVLANToComponent");
    program.Signal(SIGTERM);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, kAllDone);
    EXPECT_EQ(Answer(outcome.out),
              "added VLAN 7 \"Lab\" to Zorel Gigabit Desktop Adapter\nno restart is needed\n");
    EXPECT_EQ(VlansOf(kFree), std::vector<int>{7});
}

TEST_F(InterruptedTest, BeforeTheFirstChange_NothingIsChangedAndTheSetIsClosed) {
    const std::string begin = "Operation = \"ExecMethod\"; MethodName = \"BeginApply\";";
    RunningProgram program(Folder(), Slow({"power", "set", kFree, "--mode", "1", "--json"}, begin));
    program.WaitForTrace("Enter CQuillet::BeginApply");
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(Json::parse(outcome.out, nullptr, false),
              (Json{{"error", Json{{"status", 130},
                                   {"message", "interrupted; nothing was changed"},
                                   {"code", nullptr},
                                   {"name", nullptr},
                                   {"restartNeeded", false}}}}));
    EXPECT_THAT(outcome.err, testing::StartsWith(kNothing));
    EXPECT_THAT(Answer(outcome.err + "\n"), Not(HasSubstr("SetPowerUsage")));
}

TEST_F(InterruptedTest, WhileItOnlyReads_ItEndsAtOnce) {
    constexpr unsigned kAnHour = 3600000;
    for (const int signal : {SIGINT, SIGTERM}) {
        RunningProgram program(Folder(), Slow({"vlan", "add", kFree, "7", "Lab"},
                                              "Operation = \"CreateInstanceEnum\"; Target = "
                                              "\"Zorel_TeamOfAdapters\";",
                                              kAnHour));
        program.WaitForTrace("Entering CQuillet::EnumerateTeams");
        program.Signal(signal);
        const Outcome outcome = program.Finish();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, kNothing);
        EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
        std::filesystem::remove(InFolder("Gui_Quillet.txt"));
    }
}

TEST_F(InterruptedTest, AHangUpThatIsIgnored_StaysIgnored) {
    const auto before = std::signal(SIGHUP, SIG_IGN); // as nohup does
    RunningProgram program(Folder(), Slow({"vlan", "add", kFree, "7", "Lab", "--through", "8"},
                                          "Operation = \"ExecMethod\"; MethodName = \"CreateVLAN\";"));
    std::signal(SIGHUP, before);
    program.WaitForTrace("Entering CQuillet::AddVLANToComponent");
    program.Signal(SIGHUP);
    EXPECT_EQ(program.Finish().status, 0);
    EXPECT_EQ(VlansOf(kFree), (std::vector<int>{7, 8}));
}

TEST_F(InterruptedTest, AQuestion_EndsAtOnce) {
    RunningProgram program(Folder(), {"--simulate", "--state", State(), "team", "delete", kTeam},
                           RunningProgram::Ends::Terminal);
    program.WaitForScreen("[y/N] ");
    program.Type("\x03");
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("interrupted; nothing was changed\r\n"));
    EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
}

TEST_F(InterruptedTest, APromptForASecret_EndsAtOnceAndTheTerminalEchoesAgain) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        WriteFile(InFolder("secure.mof"), ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                                              "instance of Zorel_LinkSecConfiguration { DeviceID = "
                                              "\"{B8A405BF-61B9-5217-AADA-670F163E6DF1}\"; };\n");
        RunningProgram program(Folder(),
                               {"--simulate", Utf8(InFolder("secure.mof")), "linksec", "pmk",
                                "Zorel Gigabit Server Adapter #2", "--set"},
                               RunningProgram::Ends::Terminal);
        program.WaitForScreen("Pairwise master key: ");
        EXPECT_FALSE(program.Echoes());
        program.Type("half a sec");
        if (signal == SIGINT) {
            program.Type("\x03");
        } else {
            program.Signal(signal);
        }
        program.WaitForScreen("nothing was changed");
        EXPECT_TRUE(program.Echoes());
        const Outcome outcome = program.Finish();
        EXPECT_EQ(outcome.status, 130) << outcome.out;
        EXPECT_THAT(outcome.out, Not(HasSubstr("sec\r")));
        EXPECT_THAT(outcome.out, Not(HasSubstr("half a")));
    }
}

TEST_F(InterruptedTest, TheFlashMemory_IsWrittenToItsEnd) {
    ASSERT_EQ(std::system((QUILLET_SOURCE_DIR "/scripts/make-flash-image '" + Utf8(InFolder("new.img")) +
                           "' PXE:1.4.0 > /dev/null")
                              .c_str()),
              0);
    const char* adapter = "Zorel Gigabit Server Adapter (東京)";
    RunningProgram program(Folder(), Slow({"boot", "write", adapter, Utf8(InFolder("new.img")), "--yes"},
                                          "Operation = \"ExecMethod\"; MethodName = \"ProgramFlashEx\";"));
    program.WaitForTrace("Entering CQuillet::WriteBootAgentFlash");
    program.Signal(SIGTERM);
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, "About to program the flash memory of " + std::string(adapter) +
                               ". Cut off half-way it may hold nothing that works, so this cannot be "
                               "interrupted.\n" +
                               kAllDone);
    EXPECT_THAT(Answer(outcome.out), HasSubstr("the flash memory holds the image, byte for byte; "));
    const std::string copy = Utf8(InFolder("copy.img"));
    ASSERT_EQ(RunCommandLine({"--state", State(), "boot", "read", adapter, copy}).status, 0);
    EXPECT_EQ(ReadFile(InFolder("copy.img")), ReadFile(InFolder("new.img")));
}

TEST_F(InterruptedTest, ATestOfTheSwitch_IsStopped) {
    WriteFile(InFolder("switch.mof"),
              "instance of Zorel_NetService { Name = \"ZorelNetService\"; };\n"
              "instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = \"{A}\"; Caption = \"A\"; "
              "HardwareStatus "
              "= 3; };\n"
              "instance of Zorel_TeamOfAdapters as $T { Name = \"{T}\"; Caption = \"T\"; TeamingMode = 4; "
              "MFOEnabled = FALSE; LinksecEnabled = FALSE; };\n"
              "instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };\n");
    RunningProgram program(
        Folder(), {"--simulate", Utf8(InFolder("switch.mof")), "team", "switch-test", "T", "--journal"});
    program.WaitForTrace("Exiting CQuillet::TestSwitchConfiguration");
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, kStopped);
    EXPECT_THAT(outcome.out, testing::StartsWith("the test of the switch: "));
}

} // namespace
