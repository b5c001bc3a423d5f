// The commands about diagnostics, boot agents and iSCSI boot against simulated machines.
#include "support/RunCommandLine.h"

#include <quillet-simulator/FlashImage.h>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <cstdint>
#include <set>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using quillet::simulator::WriteFlashImage;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kMachine = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "Left port"; OriginalDisplayName = "Left port"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Right port"; OriginalDisplayName = "R"; };
    instance of Zorel_DiagTest as $L { Name = "Link test - Left port"; TestId = 4; Grouped = TRUE; GroupId = 2; };
    instance of Zorel_DiagTest as $C { Name = "Cable test - Left port"; TestId = 5; Grouped = TRUE; GroupId = 2; };
    instance of Zorel_DiagTest as $P { Name = "All tests - Left port"; TestId = 7; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $L; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $C; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $P; Dependent = $A; };
    instance of QuilletSimulator_DiagnosticTest { Name = "Link test - Left port"; Milliseconds = 150; };
    instance of QuilletSimulator_DiagnosticTest { Name = "Cable test - Left port"; Milliseconds = 50; TestState = 3;
        ResultCode = 4; Title = "Cable"; Result = "Pair 2 is broken."; Description = "After 12 m."; TestResultIds = {500};
        TestResultsAttr = {1}; };
    instance of QuilletSimulator_DiagnosticTest { Name = "All tests - Left port";
        Members = {"Link test - Left port", "Cable test - Left port"}; };
    instance of Zorel_BootAgent { Name = "{A}"; Version = "1.2.3"; VersionNumber = 66051; UpdateAvailable = TRUE;
        FlashImageType = 1; iSCSI_Status = 0; InstalledFlashImageTypes = 1; FlashImage = {1, 2, 3}; };
    instance of Zorel_BootAgent { Name = "{B}"; };
    instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{A}"; AdapterName = "Left port"; iSCSI_Status = 0; };)";

std::string Image() {
    const auto bytes = WriteFlashImage(
        {{L"PXE", L"1.4.0", 0, 1, std::vector<std::uint8_t>(300, 7)}, {L"iSCSI", L"2.1.7", 1, 3, {9}}});
    return {bytes.begin(), bytes.end()};
}

class BootCommandsTest : public CommandLine {
  protected:
    /// Runs a command against the machine, which lives on in its file.
    Outcome Run(std::vector<std::string> arguments, Screen screen = {}) {
        if (m_state.empty()) {
            m_machine = MachineFile(kMachine);
            m_state = Utf8(InFolder("lab.mof"));
        }
        arguments.insert(arguments.end(), {"--simulate", m_machine, "--state", m_state});
        return RunCommandLine(arguments, screen);
    }
    std::string File(const std::string& name, const std::string& bytes) const {
        WriteFile(InFolder(name), bytes);
        return Utf8(InFolder(name));
    }
    /// What is in the flash memory now.
    std::string Flash() {
        const std::string file = Utf8(InFolder("read back.bin"));
        EXPECT_EQ(Run({"boot", "read", "{A}", file, "--yes"}).status, 0);
        return ReadFile(InFolder("read back.bin"));
    }

  private:
    std::string m_machine;
    std::string m_state;
};

TEST_F(BootCommandsTest, DiagList_ShowsTheTestsOfTheAdapter) {
    EXPECT_EQ(Run({"diag", "list", "Left port"}).out, "ID  TEST                    GROUP\n"
                                                      "4   Link test - Left port   2\n"
                                                      "5   Cable test - Left port  2\n"
                                                      "7   All tests - Left port   -\n");
    EXPECT_EQ(Run({"diag", "list", "Right port"}).out, "no tests\n");
    const Json json = Json::parse(Run({"diag", "list", "{A}", "--json"}).out);
    ASSERT_EQ(json.at("tests").size(), 3u);
    EXPECT_EQ(json.at("tests")[0].at("name"), "Link test - Left port");
    EXPECT_EQ(json.at("tests")[0].at("testId"), 4);
    EXPECT_EQ(json.at("tests")[0].at("group"), 2);
    EXPECT_TRUE(json.at("tests")[2].at("group").is_null());
    EXPECT_THAT(json.at("tests")[0].at("path").get<std::string>(), HasSubstr("Zorel_DiagTest.Name="));
}

TEST_F(BootCommandsTest, DiagRun_IntoAFile_PrintsPlainLines) {
    const Outcome outcome = Run({"diag", "run", "Left port", "Link", "--interval", "10"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "In Progress\n"
                           "Test:      Link test - Left port\n"
                           "State:     Passed\n"
                           "Result:    The test passed. (0)\n"
                           "Details:   -\n"
                           "Messages:  -\n");
}

TEST_F(BootCommandsTest, DiagRun_OnATerminal_MovesABarAndWipesIt) {
    const Outcome outcome = Run({"diag", "run", "Left port", "4", "--interval", "400"}, {true, 60});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::set<std::string> pictures;
    std::istringstream frames(outcome.out);
    std::string frame;
    while (std::getline(frames, frame, '\r')) {
        if (frame.starts_with("[")) {
            EXPECT_THAT(frame, HasSubstr("In Progress  0 s"));
            pictures.insert(frame.substr(0, frame.find(']') + 1));
        }
    }
    EXPECT_GE(pictures.size(), 3u) << outcome.out;
    EXPECT_THAT(outcome.out, HasSubstr("\rTest:      Link test - Left port\n")) << "behind the wiped bar";
}

TEST_F(BootCommandsTest, DiagRun_FailedTest_IsAFinding) {
    const Outcome outcome = Run({"diag", "run", "Left port", "cable test", "--interval", "10", "--json"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json.at("test"), "Cable test - Left port");
    EXPECT_EQ(json.at("testId"), 5);
    EXPECT_EQ(json.at("passed"), false);
    EXPECT_EQ(json.at("state").at("code"), 3);
    EXPECT_EQ(json.at("state").at("text"), "Failed");
    EXPECT_EQ(json.at("title"), "Cable");
    EXPECT_EQ(json.at("result"), "Pair 2 is broken.");
    EXPECT_EQ(json.at("description"), "After 12 m.");
    EXPECT_EQ(json.at("resultCode"), 4);
    EXPECT_EQ(json.at("messages"), (Json::array({Json{{"id", 500}, {"attribute", 1}}})));
    EXPECT_TRUE(json.at("members").empty());
}

TEST_F(BootCommandsTest, DiagRun_Package_ShowsItsMembers) {
    const Outcome outcome = Run({"diag", "run", "Left port", "all", "--interval", "10"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("State:     Failed\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Cable test - Left port  Pair 2 is broken. (4)\n"));
    const Json json = Json::parse(Run({"diag", "run", "{a}", "7", "--interval", "10", "--json"}).out);
    ASSERT_EQ(json.at("members").size(), 2u);
    EXPECT_EQ(json.at("members")[1].at("name"), "Cable test - Left port");
    EXPECT_EQ(json.at("members")[1].at("resultCode"), 4);
}

TEST_F(BootCommandsTest, DiagRun_UnknownOrAmbiguousTest_IsBadUsage) {
    EXPECT_EQ(Run({"diag", "run", "Left port", "nothing"}).status, 2);
    EXPECT_EQ(Run({"diag", "run", "Right port", "4"}).status, 2);
    EXPECT_EQ(Run({"diag", "run", "nobody", "4"}).status, 2);
    EXPECT_EQ(Run({"diag", "run", "Left port"}).status, 2);
    EXPECT_EQ(Run({"diag", "run", "Left port", "4", "--interval", "1"}).status, 2);
}

TEST_F(BootCommandsTest, DiagStop_OfATestThatRanBefore_TellsItsState) {
    Run({"diag", "run", "Left port", "4", "--interval", "10"});
    const Outcome outcome = Run({"diag", "stop", "Left port", "4", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Link test - Left port: Passed\n"));
    EXPECT_THAT(outcome.out, HasSubstr("DiscontinueTest("));
    EXPECT_EQ(Run({"diag", "stop", "Left port", "5"}).status, 1) << "it never ran";
}

TEST_F(BootCommandsTest, BootShow_TellsWhatIsThere) {
    const Outcome outcome = Run({"boot", "show", "Left port"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Version:           1.2.3\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Update available:  yes\n"));
    EXPECT_THAT(outcome.out, HasSubstr("Image in flash:    PXE\n"));
    const Json json = Json::parse(Run({"boot", "show", "Left port", "--json"}).out);
    EXPECT_EQ(json.at("version"), "1.2.3");
    EXPECT_EQ(json.at("versionNumber"), 66051);
    EXPECT_EQ(json.at("updateAvailable"), true);
    EXPECT_EQ(json.at("imageType"), (Json{{"code", 1}, {"text", "PXE"}}));
    EXPECT_EQ(json.at("installedImageTypes"), 1);
}

TEST_F(BootCommandsTest, BootRead_WritesTheBytesAndAsksBeforeItOverwrites) {
    const std::string file = Utf8(InFolder("flash.bin"));
    const Outcome outcome = Run({"boot", "read", "Left port", file});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "3 bytes were written to " + file + "\n");
    EXPECT_EQ(ReadFile(InFolder("flash.bin")), "\x01\x02\x03");
    WriteFile(InFolder("flash.bin"), "mine");
    EXPECT_EQ(Run({"boot", "read", "Left port", file}).status, 2) << "nobody can be asked";
    EXPECT_EQ(ReadFile(InFolder("flash.bin")), "mine");
    EXPECT_EQ(Run({"boot", "read", "Left port", file}, {.answers = "n\n"}).out, "nothing was written\n");
    EXPECT_EQ(ReadFile(InFolder("flash.bin")), "mine");
    EXPECT_EQ(Run({"boot", "read", "Left port", file}, {.answers = "y\n"}).status, 0);
    EXPECT_EQ(ReadFile(InFolder("flash.bin")), "\x01\x02\x03");
    EXPECT_EQ(Run({"boot", "read", "Right port", Utf8(InFolder("none.bin"))}).status, 1)
        << "there is no flash";
    EXPECT_FALSE(std::filesystem::exists(InFolder("none.bin")));
}

TEST_F(BootCommandsTest, BootInspect_ListsTheImages) {
    const std::string file = File("new.img", Image());
    EXPECT_EQ(Run({"boot", "inspect", "Left port", file}).out, "TYPE   VERSION  GROUP  LEVEL\n"
                                                               "PXE    1.4.0    0      1\n"
                                                               "iSCSI  2.1.7    1      3\n");
    const Json json = Json::parse(Run({"boot", "inspect", "Left port", file, "--json"}).out);
    EXPECT_EQ(json.at("code"), 0);
    EXPECT_EQ(json.at("images")[1],
              (Json{{"type", "iSCSI"}, {"version", "2.1.7"}, {"group", 1}, {"exposeLevel", 3}}));
    const Outcome foreign = Run({"boot", "inspect", "Left port", File("x.img", "no image")});
    EXPECT_EQ(foreign.status, 3);
    EXPECT_EQ(foreign.out, "the image file is refused: it cannot be read: code 1 (unknown)\n");
    EXPECT_EQ(Run({"boot", "inspect", "Left port", File("empty.img", "")}).status, 2);
    EXPECT_EQ(Run({"boot", "inspect", "Left port", Utf8(InFolder("missing.img"))}).status, 2);
}

TEST_F(BootCommandsTest, BootVerify_IsAFindingWhereTheFileIsWrong) {
    const std::string file = File("new.img", Image());
    EXPECT_EQ(Run({"boot", "verify", "Left port", file}).out, "the image file is right\n");
    EXPECT_EQ(Run({"boot", "verify", "Left port", file, "--type", "iSCSI", "--type", "PXE"}).status, 0);
    const Outcome missing = Run({"boot", "verify", "Left port", file, "--type", "EFI"});
    EXPECT_EQ(missing.status, 3);
    EXPECT_EQ(missing.out, "the image file is refused: code 8 (unknown)\n");
    std::string damaged = Image();
    damaged[200] = static_cast<char>(damaged[200] ^ 1);
    const Outcome wrong = Run({"boot", "verify", "Left port", File("bad.img", damaged), "--json"});
    EXPECT_EQ(wrong.status, 3);
    EXPECT_EQ(Json::parse(wrong.out).at("code"), 3);
}

TEST_F(BootCommandsTest, BootWrite_ChecksAsksWritesAndCompares) {
    const std::string file = File("new.img", Image());
    EXPECT_EQ(Run({"boot", "write", "Left port", file}).status, 2) << "nobody can be asked";
    const Outcome refused = Run({"boot", "write", "Left port", file}, {.answers = "\n"});
    EXPECT_EQ(refused.status, 0);
    EXPECT_EQ(refused.out, "nothing was written\n");
    EXPECT_THAT(refused.err, HasSubstr("Write PXE, iSCSI into the flash memory of Left port? [y/N]"));
    EXPECT_EQ(Flash(), "\x01\x02\x03");

    const Outcome written = Run({"boot", "write", "Left port", file, "--journal"}, {.answers = "yes\n"});
    EXPECT_EQ(written.status, 0) << written.err;
    EXPECT_THAT(written.out,
                HasSubstr("Writing the flash memory; do not switch off\n"
                          "the flash memory holds the image, byte for byte; a restart is needed\n"));
    // Looked into, checked, written inside a client set, read back.
    std::size_t at = 0;
    for (const char* step :
         {"ReadImageFile(", "VerifyImageType(", "BeginApply(", "ProgramFlashEx(", "Apply(", "ReadFlash("}) {
        const std::size_t next = written.out.find(step, at);
        ASSERT_NE(next, std::string::npos) << step;
        at = next;
    }
    EXPECT_THAT(written.out, Not(HasSubstr("outside a client set")));
    EXPECT_EQ(Flash(), Image()) << "also in the next command: the machine lives in its state file";
    EXPECT_EQ(Json::parse(Run({"boot", "show", "Left port", "--json"}).out).at("version"), "1.4.0");
}

TEST_F(BootCommandsTest, BootWrite_Json) {
    const Outcome outcome =
        Run({"boot", "write", "Left port", File("new.img", Image()), "--type", "PXE", "--yes", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json.at("types"), Json::array({"PXE"}));
    EXPECT_EQ(json.at("code"), 0);
    EXPECT_EQ(json.at("written"), true);
    EXPECT_EQ(json.at("restartNeeded"), true);
}

TEST_F(BootCommandsTest, BootWrite_WrongFile_IsNeverWrittenNorAskedFor) {
    std::string damaged = Image();
    damaged.back() = static_cast<char>(damaged.back() ^ 1);
    const Outcome outcome =
        Run({"boot", "write", "Left port", File("bad.img", damaged), "--yes", "--journal"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("the flash memory is as it was; the image file is refused: it cannot "
                                       "be read: code 3 (unknown)\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("ProgramFlashEx")));
    EXPECT_EQ(Flash(), "\x01\x02\x03");
}

TEST_F(BootCommandsTest, BootWrite_PowerCut_IsARefusalAndTheClientSetIsClosed) {
    const std::string machine =
        MachineFile(std::string(kMachine) +
                    "instance of QuilletSimulator_Fault { Id = 1; Operation = \"ExecMethod\"; "
                    "MethodName = \"ProgramFlashEx\"; Effect = \"PowerCut\"; Code = 0x80041015; };");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "boot", "write", "Left port",
                                            File("new.img", Image()), "--yes", "--journal"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                HasSubstr("could not write the flash memory: the connection failed: 0x80041015"));
    EXPECT_THAT(outcome.out, HasSubstr(", Apply("));
    EXPECT_THAT(outcome.out,
                HasSubstr("the flash memory does not hold what was written; write it again before a "
                          "restart, unless it is as it was\n"));
    const Json json = Json::parse(RunCommandLine({"--simulate", machine, "boot", "write", "Left port",
                                                  File("new.img", Image()), "--yes", "--json"})
                                      .out);
    EXPECT_EQ(json.at("written"), false);
    EXPECT_TRUE(json.at("result").get<std::string>().starts_with("0x80041015")) << json;
    EXPECT_EQ(json.at("restartNeeded"), false);
}

TEST_F(BootCommandsTest, BootWrite_MemoryThatCannotBeReadBack_IsNotKnown) {
    const std::string machine = MachineFile(
        std::string(kMachine) + "instance of QuilletSimulator_Fault { Id = 1; Operation = "
                                "\"ExecMethod\"; MethodName = \"ReadFlash\"; Code = 0x80041003; };");
    const std::vector<std::string> command{
        "--simulate", machine, "boot", "write", "Left port", File("new.img", Image()), "--yes"};
    const Outcome outcome = RunCommandLine(command);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out,
                HasSubstr("the flash memory cannot be read back, so what it holds is not known; a "
                          "restart is needed\n"));
    EXPECT_THAT(outcome.err, HasSubstr("could not read the flash memory: access is denied: 0x80041003 "
                                       "WBEM_E_ACCESS_DENIED\n"));
    std::vector<std::string> json = command;
    json.emplace_back("--json");
    EXPECT_TRUE(Json::parse(RunCommandLine(json).out).at("written").is_null());
}

TEST_F(BootCommandsTest, BootWrite_MemoryThatHoldsSomethingElse_IsAFinding) {
    const std::string machine = MachineFile(
        std::string(kMachine) + "instance of QuilletSimulator_Fault { Id = 1; Operation = \"Get\"; "
                                "Target = \"FlashData\"; Effect = \"EmptyArray\"; };");
    const Outcome outcome = RunCommandLine(
        {"--simulate", machine, "boot", "write", "Left port", File("new.img", Image()), "--yes"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("the flash memory does not hold what was written"));
}

TEST_F(BootCommandsTest, Iscsi_ListShowSet) {
    EXPECT_EQ(Run({"iscsi", "list"}).out, "ADAPTER    PLACE  BOOT AGENT ID\n"
                                          "Left port  off    {A}\n");
    const Outcome set = Run({"iscsi", "set", "Left port", "primary"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out, "Left port is primary; a restart is needed\n");
    const Json list = Json::parse(Run({"iscsi", "list", "--json"}).out);
    EXPECT_EQ(list.at("adapters")[0].at("status"), (Json{{"code", 1}, {"text", "primary"}}));
    EXPECT_EQ(list.at("adapters")[0].at("bootAgentId"), "{A}");
    EXPECT_EQ(list.at("adapters")[0].at("name"), "Left port");
    EXPECT_EQ(list.at("adapters")[0].at("adapter"),
              Json::parse(Run({"adapter", "list", "--json"}).out).at("adapters")[0].at("path"));
    const Json show = Json::parse(Run({"iscsi", "show", "Left port", "--json"}).out);
    EXPECT_EQ(show.at("status").at("text"), "primary");
    EXPECT_EQ(show.at("systemSupported"), false);
    EXPECT_THAT(Run({"iscsi", "show", "Left port"}).out, HasSubstr("Place:               primary\n"));
    EXPECT_EQ(Run({"iscsi", "set", "Left port", "first"}).status, 2);
    EXPECT_EQ(Run({"iscsi", "set", "Right port", "primary"}).status, 2);
    EXPECT_EQ(RunCommandLine({"--simulate", MachineFile(""), "iscsi", "list"}).out,
              "no adapter can boot from iSCSI\n");
}

TEST_F(BootCommandsTest, BootWrite_OnATerminal_TellsTheTimeThatHasGone) {
    const std::string file = File("new.img", Image());
    const Outcome outcome =
        Run({"boot", "write", "{A}", file, "--yes", "--fault", "ExecMethod:ProgramFlashEx=Delay:1300"},
            {.isTerminal = true});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("do not switch off  0 s"));
    EXPECT_THAT(outcome.out, HasSubstr("do not switch off  1 s"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("left")));
}

} // namespace
