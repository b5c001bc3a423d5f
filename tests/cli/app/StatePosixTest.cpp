// The state file's rights, owner and links, as a POSIX host has them.
#include "support/RunCommandLine.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace quillet::tests;

constexpr const char* kBuiltin = QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof";

class StateOnPosixTest : public CommandLine {
  protected:
    StateOnPosixTest() { WriteFile(m_file, ReadFile(kBuiltin)); }

    Outcome Change(const std::filesystem::path& file) const {
        return RunCommandLine({"--state", Utf8(file), "vlan", "add", "TEAM : Zürich", "100", "Labor"});
    }
    static struct stat Status(const std::filesystem::path& file) {
        struct stat status = {};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status;
    }
    bool IsChanged() const { return ReadFile(m_file).find("Labor") != std::string::npos; }

    const std::filesystem::path m_file = InFolder("lab.mof");
};

TEST_F(StateOnPosixTest, KeepsItsMode) {
    for (const mode_t mode : {0640U, 0604U, 0777U}) {
        ASSERT_EQ(chmod(m_file.c_str(), mode), 0);
        WriteFile(m_file, ReadFile(kBuiltin));
        EXPECT_EQ(Change(m_file).status, 0);
        EXPECT_TRUE(IsChanged());
        EXPECT_EQ(Status(m_file).st_mode & 07777U, mode);
    }
}

TEST_F(StateOnPosixTest, KeepsItsOwnerAndGroup) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    ASSERT_EQ(chown(m_file.c_str(), 12, 34), 0);
    EXPECT_EQ(Change(m_file).status, 0);
    EXPECT_TRUE(IsChanged());
    EXPECT_EQ(Status(m_file).st_uid, 12u);
    EXPECT_EQ(Status(m_file).st_gid, 34u);
}

TEST_F(StateOnPosixTest, IsFoundThroughLinksWhichStay) {
    const std::filesystem::path folder = InFolder("folder");
    std::filesystem::create_directory(folder);
    const std::filesystem::path first = folder / "first.mof";
    const std::filesystem::path second = InFolder("second.mof");
    std::filesystem::create_symlink("../lab.mof", first);
    std::filesystem::create_symlink(first, second);
    EXPECT_EQ(Change(second).status, 0);
    EXPECT_TRUE(IsChanged());
    EXPECT_TRUE(std::filesystem::is_symlink(first));
    EXPECT_TRUE(std::filesystem::is_symlink(second));
    EXPECT_FALSE(std::filesystem::is_symlink(m_file));
}

TEST_F(StateOnPosixTest, IsMadeWhereALinkToNothingLeads) {
    const std::filesystem::path link = InFolder("link.mof");
    std::filesystem::remove(m_file);
    std::filesystem::create_symlink("lab.mof", link);
    EXPECT_EQ(Change(link).status, 0);
    EXPECT_TRUE(IsChanged());
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST_F(StateOnPosixTest, ALinkToItselfIsAnError) {
    const std::filesystem::path link = InFolder("link.mof");
    std::filesystem::create_symlink("link.mof", link);
    const Outcome outcome = Change(link);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.err.starts_with("quilletctl: " + Utf8(link) + ": ")) << outcome.err;
}

// Whatever rights the tests have: nobody makes files there.
TEST_F(StateOnPosixTest, InAFolderThatTakesNoFile_NothingIsDone) {
    const Outcome outcome = RunCommandLine({"--state", "/proc/lab.mof", "transaction", "try", "--journal"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "\nCalls to the provider: 0\n");
    EXPECT_EQ(outcome.err,
              "quilletctl: /proc/lab.mof: cannot be written: no file can be made in its folder\n");
}

TEST_F(StateOnPosixTest, ThatMayNotBeWritten_NothingIsDone) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may write everything";
    }
    ASSERT_EQ(chmod(m_file.c_str(), 0444), 0);
    const Outcome outcome = Change(m_file);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "quilletctl: " + Utf8(m_file) + ": cannot be written: Permission denied\n");
    EXPECT_EQ(RunCommandLine({"--state", Utf8(m_file), "vlan", "list"}).status, 0) << "but it can be read";
}

// The lock is the file's own: one that somebody else holds lets readers pass.
TEST_F(StateOnPosixTest, IsReadWhileACommandChangesIt) {
    const int descriptor = open(m_file.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(flock(descriptor, LOCK_EX), 0);
    const Outcome outcome = RunCommandLine({"--state", Utf8(m_file), "vlan", "list"});
    close(descriptor);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

// A device or a folder is no place for a file that is replaced as a whole.
TEST_F(StateOnPosixTest, AFileOfACommandIsReplacedTheSameWay) {
    const std::string adapter = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
    const std::filesystem::path image = InFolder("flash.img");
    const std::filesystem::path link = InFolder("link.img");
    WriteFile(image, "old");
    ASSERT_EQ(chmod(image.c_str(), 0604), 0);
    std::filesystem::create_symlink("flash.img", link);
    EXPECT_EQ(RunCommandLine({"--simulate", "boot", "read", adapter, Utf8(link), "--yes"}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_NE(ReadFile(image), "old");
    EXPECT_EQ(Status(image).st_mode & 07777U, 0604U);

    const Outcome device = RunCommandLine({"--simulate", "boot", "read", adapter, "/dev/full", "--yes"});
    EXPECT_EQ(device.status, 2);
    EXPECT_EQ(device.err, "quilletctl: /dev/full: not a file\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

} // namespace
