// The simulated machine that lives in a file from one command to the next.
#include "RunCommandLine.h"

#include <Console.h>

#include <nlohmann/json.hpp>

namespace {

class State : public CommandLine {};

std::size_t FilesIn(const std::filesystem::path& folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST_F(State, IsMadeFromTheMachineFileAndReadFromThenOn) {
    const std::string state = Utf8(InFolder("lab.mof"));
    const std::string golden = ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/adapter-list.json");
    const Outcome first = RunCommandLine(
        {"--state", state, "--simulate", TestMachine("golden.mof"), "adapter", "list", "--json"});
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.out, golden);
    const std::string saved = ReadFile(InFolder("lab.mof"));
    EXPECT_NE(saved.find("instance of Zorel_PhysicalEthernetAdapter"), std::string::npos);

    const Outcome second = RunCommandLine({"--state", state, "adapter", "list", "--json"});
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.out, golden);
    EXPECT_EQ(ReadFile(InFolder("lab.mof")), saved) << "reading changes nothing";
    EXPECT_EQ(FilesIn(Folder()), 1u) << "no temporary file is left";
}

TEST_F(State, TakesPrecedenceOverTheMachineFile) {
    const std::string state = Utf8(InFolder("lab.mof"));
    ASSERT_EQ(RunCommandLine({"--state", state, "--simulate", TestMachine("names.mof"), "warnings"}).status,
              0);
    const Outcome outcome = RunCommandLine(
        {"--state", state, "--simulate", TestMachine("golden.mof"), "adapter", "list", "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(nlohmann::json::parse(outcome.out).at("adapters").size(), 3u);
}

TEST_F(State, WhatIsChangedInTheFileIsSeenAndKept) {
    const std::filesystem::path file = InFolder("lab.mof");
    ASSERT_EQ(
        RunCommandLine({"--state", Utf8(file), "--simulate", TestMachine("names.mof"), "warnings"}).status,
        0);
    std::string text = ReadFile(file);
    const std::string before = "Gerät";
    ASSERT_NE(text.find(before), std::string::npos) << text;
    text.replace(text.find(before), before.size(), "Kraftwerk");
    WriteFile(file, text);
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "adapter", "list"});
    EXPECT_NE(outcome.out.find("Kraftwerk"), std::string::npos) << outcome.out << outcome.err;
    EXPECT_NE(ReadFile(file).find("Kraftwerk"), std::string::npos);
}

TEST_F(State, MayHaveANameInAnyScript) {
    const std::filesystem::path file = InFolder("Prüfstand 東京.mof");
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "warnings"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(RunCommandLine({"--state", Utf8(file), "warnings"}).status, 0);
}

TEST_F(State, IsSavedAlsoAfterARefusal) {
    const std::string machine = MachineFile("instance of QuilletSimulator_Fault { Id = 1; Operation = "
                                            "\"ExecMethod\"; Code = 0x80041001; };\n");
    const std::filesystem::path file = InFolder("lab.mof");
    EXPECT_EQ(RunCommandLine({"--state", Utf8(file), "--simulate", machine, "transaction", "try"}).status, 1);
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(State, ABrokenFileIsNamedWithItsPositionAndLeftAlone) {
    const std::filesystem::path file = InFolder("lab.mof");
    const std::string broken = "instance of Zorel_NetService {\n    Nonsense = 1;\n};\n";
    WriteFile(file, broken);
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "adapter", "list"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("lab.mof:2:"), std::string::npos) << outcome.err;
    EXPECT_EQ(ReadFile(file), broken);
}

TEST_F(State, AFileThatCannotBeWrittenIsBadUsage) {
    const std::filesystem::path file = InFolder("no-such-folder") / "lab.mof";
    const Outcome outcome = RunCommandLine({"--state", Utf8(file), "warnings"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "no pending warnings\n") << "the command itself was done";
    EXPECT_NE(outcome.err.find("cannot be written"), std::string::npos) << outcome.err;
}

TEST_F(State, BelongsToItsOwnerAlone) {
    if (quilletctl::HostHasWmi()) {
        GTEST_SKIP() << "the folder's access list decides on this host";
    }
    const std::filesystem::path file = InFolder("lab.mof");
    ASSERT_EQ(RunCommandLine({"--state", Utf8(file), "warnings"}).status, 0);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(file).permissions() & (perms::group_all | perms::others_all),
              perms::none);
}

} // namespace
