// The simulated machine that lives in a file from one command to the next.
#include "support/RunCommandLine.h"

#include <terminal/Console.h>

#include <nlohmann/json.hpp>

namespace {

using namespace quillet::tests;

constexpr const char* kStateBuiltin = QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof";
constexpr const char* kTeam = "TEAM : Zürich";

class StateTest : public CommandLine {
  protected:
    /// Makes the file of a machine of tests/cli/machines, by a command that changes nothing in it.
    std::filesystem::path Make(const std::string& machine = "golden.mof") const {
        const std::filesystem::path file = InFolder("lab.mof");
        const Outcome outcome =
            RunCommandLine({"--state", Utf8(file), "--simulate", TestMachine(machine), "transaction", "try"});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return file;
    }
    static Outcome AddVlan(const std::filesystem::path& file) {
        return RunCommandLine({"--state", Utf8(file), "vlan", "add", kTeam, "100", "Labor"});
    }
    std::size_t FilesInFolder() const {
        const std::filesystem::directory_iterator entries(Folder());
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
};

TEST_F(StateTest, IsMadeFromTheMachineFileByTheFirstCommandThatMayChangeIt) {
    const std::string golden = ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/adapter-list.json");
    const std::filesystem::path file = Make();
    const std::string saved = ReadFile(file);
    EXPECT_NE(saved.find("instance of Zorel_PhysicalEthernetAdapter"), std::string::npos);
    const Outcome second = RunCommandLine({"--state", Utf8(file), "adapter", "list", "--json"});
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.out, golden);
    EXPECT_EQ(FilesInFolder(), 1u) << "neither a temporary file nor a lock is left";
}

TEST_F(StateTest, ACommandThatOnlyReadsMakesNoFile) {
    const std::string state = Utf8(InFolder("lab.mof"));
    const Outcome outcome = RunCommandLine(
        {"--state", state, "--simulate", TestMachine("golden.mof"), "adapter", "list", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/adapter-list.json"));
    EXPECT_EQ(FilesInFolder(), 0u);
}

TEST_F(StateTest, ACommandThatOnlyReadsLeavesTheFileAsItIs) {
    const std::filesystem::path file = InFolder("lab.mof");
    const std::string byHand = "  // mine\n" + ReadFile(kStateBuiltin);
    WriteFile(file, byHand);
    const auto before = std::filesystem::last_write_time(file) - std::chrono::hours(1);
    std::filesystem::last_write_time(file, before);
    const std::string adapter = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
    const std::string secure = "Zorel Quad Port Gigabit Server Adapter";
    const std::string image = Utf8(InFolder("flash.img"));
    const std::vector<std::vector<std::string>> reading = {{"adapter", "list"},
                                                           {"adapter", "show", adapter},
                                                           {"adapter", "capabilities", adapter},
                                                           {"adapter", "ports", adapter},
                                                           {"setting", "list", adapter},
                                                           {"setting", "get", adapter, "*FlowControl"},
                                                           {"profile", "list"},
                                                           {"power", "show", adapter},
                                                           {"wol", "show", adapter},
                                                           {"team", "list"},
                                                           {"team", "show", kTeam},
                                                           {"team", "modes"},
                                                           {"linksec", "show", secure},
                                                           {"linksec", "pmk", secure},
                                                           {"linksec", "stats", secure},
                                                           {"vlan", "list"},
                                                           {"vlan", "check", kTeam, "100", "Labor"},
                                                           {"diag", "list", adapter},
                                                           {"boot", "show", adapter},
                                                           {"boot", "read", adapter, image},
                                                           {"iscsi", "list"},
                                                           {"warnings"},
                                                           {"trace"}};
    for (std::vector<std::string> line : reading) {
        line.insert(line.begin(), {"--state", Utf8(file)});
        const Outcome outcome = RunCommandLine(line);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(ReadFile(file), byHand) << line[2] << ' ' << line.back();
        EXPECT_EQ(std::filesystem::last_write_time(file), before) << line[2] << ' ' << line.back();
    }
}

TEST_F(StateTest, AChangeThatFindsNothingToChangeLeavesTheFileAsItIs) {
    const std::filesystem::path file = InFolder("lab.mof");
    const std::string byHand = ReadFile(kStateBuiltin);
    WriteFile(file, byHand);
    EXPECT_EQ(RunCommandLine({"--state", Utf8(file), "vlan", "add", kTeam, "5000", "Labor"}).status, 3);
    EXPECT_EQ(ReadFile(file), byHand);
}

TEST_F(StateTest, TakesPrecedenceOverTheMachineFile) {
    const std::string state = Utf8(Make("names.mof"));
    const Outcome outcome = RunCommandLine(
        {"--state", state, "--simulate", TestMachine("golden.mof"), "adapter", "list", "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(nlohmann::json::parse(outcome.out).at("adapters").size(), 3u);
}

TEST_F(StateTest, WhatIsChangedInTheFileIsSeenAndKept) {
    const std::filesystem::path file = Make();
    std::string text = ReadFile(file);
    const std::string before = "Server Adapter (東京)";
    ASSERT_NE(text.find(before), std::string::npos) << text;
    text.replace(text.find(before), before.size(), "Kraftwerk");
    WriteFile(file, text);
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "adapter", "list"});
    EXPECT_NE(outcome.out.find("Kraftwerk"), std::string::npos) << outcome.out << outcome.err;
    EXPECT_EQ(AddVlan(file).status, 0);
    EXPECT_NE(ReadFile(file).find("Kraftwerk"), std::string::npos);
    EXPECT_NE(ReadFile(file).find("Labor"), std::string::npos);
}

TEST_F(StateTest, KeepsTheCommentsAtItsHead) {
    const std::filesystem::path file = InFolder("lab.mof");
    const std::string head = "// The lab of Zürich.\r\n/* Do not\n   touch. */\n\n";
    const std::string machine = ReadFile(kStateBuiltin);
    WriteFile(file, "\xEF\xBB\xBF" + head + machine.substr(machine.find("instance of")));
    for (const char* id : {"100", "101"}) {
        const Outcome outcome =
            RunCommandLine({"--state", Utf8(file), "vlan", "add", kTeam, id, std::string("Labor ") + id});
        ASSERT_EQ(outcome.status, 0) << outcome.err << outcome.out;
        EXPECT_TRUE(ReadFile(file).starts_with(head + "instance of ")) << ReadFile(file).substr(0, 100);
    }
}

TEST_F(StateTest, AnEmptyFileIsAnErrorWithItsName) {
    const std::filesystem::path file = InFolder("lab.mof");
    for (const std::string text : {"", " \n\n", "// nothing here\n"}) {
        WriteFile(file, text);
        for (const char* option : {"--state", "--simulate"}) {
            const Outcome outcome = RunCommandLine({option, Utf8(file), "adapter", "list"});
            EXPECT_EQ(outcome.status, 2);
            EXPECT_EQ(outcome.err,
                      "quilletctl: " + Utf8(file) + ": the file is empty, and describes no machine\n");
        }
        EXPECT_EQ(AddVlan(file).status, 2);
        EXPECT_EQ(ReadFile(file), text);
    }
}

TEST_F(StateTest, MayHaveANameInAnyScript) {
    const std::filesystem::path file = InFolder("Prüfstand 東京.mof");
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "transaction", "try"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(AddVlan(file).status, 0);
}

TEST_F(StateTest, IsSavedAlsoAfterARefusal) {
    const std::string machine = MachineFile("instance of QuilletSimulator_Fault { Id = 1; Operation = "
                                            "\"ExecMethod\"; Code = 0x80041001; };\n");
    const std::filesystem::path file = InFolder("lab.mof");
    EXPECT_EQ(RunCommandLine({"--state", Utf8(file), "--simulate", machine, "transaction", "try"}).status, 1);
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(StateTest, ABrokenFileIsNamedWithItsPositionAndLeftAlone) {
    const std::filesystem::path file = InFolder("lab.mof");
    const std::string broken = "instance of Zorel_NetService {\n    Nonsense = 1;\n};\n";
    WriteFile(file, broken);
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"adapter", "list"}, {"transaction", "try"}}) {
        const Outcome outcome = RunCommandLine({"--state", Utf8(file), words[0], words[1]});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.err.find("lab.mof:2:"), std::string::npos) << outcome.err;
        EXPECT_EQ(ReadFile(file), broken);
    }
}

TEST_F(StateTest, WhereItCannotBeWrittenNothingIsDone) {
    const std::filesystem::path file = InFolder("no-such-folder") / "lab.mof";
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "transaction", "try", "--journal"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "\nCalls to the provider: 0\n");
    EXPECT_TRUE(outcome.err.starts_with("quilletctl: " + Utf8(file) + ": cannot be written: "))
        << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
}

TEST_F(StateTest, BelongsToItsOwnerAlone) {
    if (quilletctl::HostHasWmi()) {
        GTEST_SKIP() << "the folder's access list decides on this host";
    }
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(Make()).permissions() & (perms::group_all | perms::others_all),
              perms::none);
}

} // namespace
