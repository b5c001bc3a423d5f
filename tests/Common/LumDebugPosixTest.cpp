// What the trace log owes to the other users of a POSIX host.
#include "EnvironmentScope.h"
#include "LumDebug.h"
#include "RegistryScope.h"
#include "TemporaryDirectory.h"
#include "TraceAtLoad.h"
#include "TraceFile.h"

#include <quillet-platform/TestHooks.h>

#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace quillet::tests;

namespace {

class LumDebugPosixTest : public testing::Test {
  protected:
    LumDebugPosixTest() { m_registry.SetString(kLum2Key, L"InstalledDir", m_directory.Text()); }
    LONG Configure() { return m_log.Configure(L"Quillet", L"Trace.txt", 1, false, 0); }
    std::filesystem::path File() const { return m_directory.File(L"Trace.txt"); }

    TemporaryDirectory m_directory;
    TemporaryDirectory m_temp;
    EnvironmentScope m_environment{L"Temp", m_temp.Text()};
    RegistryScope m_registry;
    CLumDebug m_log;
};

TEST_F(LumDebugPosixTest, NewFile_IsItsOwnersAlone) {
    const mode_t mask = umask(0);
    const LONG result = Configure();
    umask(mask);
    ASSERT_EQ(result, 0);
    struct stat status {};
    ASSERT_EQ(stat(File().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0600u);
}

TEST_F(LumDebugPosixTest, SymbolicLink_IsNeverFollowed) {
    const auto victim = m_directory.File(L"victim");
    std::ofstream(victim) << "precious";
    create_symlink(victim, File());
    EXPECT_EQ(Configure(), 0); // in the Temp directory
    m_log.PrintText(L"line");
    EXPECT_EQ(ReadFile(victim), "precious");
    EXPECT_TRUE(exists(m_temp.File(L"Trace.txt")));
}

TEST_F(LumDebugPosixTest, SymbolicLinksInBothPlaces_LeaveTheLogOff) {
    const auto victim = m_directory.File(L"victim");
    create_symlink(victim, File());
    create_symlink(victim, m_temp.File(L"Trace.txt"));
    EXPECT_EQ(Configure(), -1);
    EXPECT_FALSE(exists(victim));
    EXPECT_EQ(m_log.Configure(L"Quillet", L"Trace.txt", 1, true, 0), -1);
    EXPECT_FALSE(exists(victim));
}

TEST_F(LumDebugPosixTest, PipeUnderTheName_IsNoTraceFileAndDoesNotBlock) {
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    EXPECT_EQ(Configure(), 0);
    EXPECT_TRUE(exists(m_temp.File(L"Trace.txt")));
}

TEST_F(LumDebugPosixTest, DeviceUnderTheName_IsNoTraceFile) {
    // As "RvSetup" the log takes the file's full name, and falls back to its last part.
    EXPECT_EQ(m_log.Configure(L"RvSetup", L"/dev/null", 1, false, 0), 0);
    m_log.PrintText(L"line");
    EXPECT_THAT(ReadFile(m_temp.File(L"null")), testing::EndsWith("line\n"));
}

TEST_F(LumDebugPosixTest, ProgramWithALongPath_IsStillKnown) {
    const std::wstring path = L"/" + std::wstring(700, L'd') + L"/LUM2Prov";
    quillet::platform::SetModuleFileName(path);
    EXPECT_EQ(HostExecutablePath(), path);
    quillet::platform::SetModuleFileName({});
}

TEST_F(LumDebugPosixTest, ClosedStandardStream_DoesNotBecomeTheTraceFile) {
    const int saved = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const LONG result = Configure();
    const bool isFree = fcntl(STDIN_FILENO, F_GETFD) == -1;
    m_log.PrintText(L"line");
    dup2(saved, STDIN_FILENO);
    close(saved);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(isFree);
    EXPECT_THAT(ReadFile(File()), testing::EndsWith("line\n"));
}

TEST_F(LumDebugPosixTest, BackslashesInTheName_AreDirectories) {
    create_directory(m_directory.File(L"logs"));
    EXPECT_EQ(m_log.Configure(L"Quillet", L"logs\\Trace.txt", 1, false, 0), 0);
    EXPECT_TRUE(exists(m_directory.File(L"logs") / "Trace.txt"));
}

TEST_F(LumDebugPosixTest, NoTempVariable_UsesTmpdir) {
    m_registry.RemoveKey(kLum2Key);
    const EnvironmentScope temp(L"Temp", std::nullopt);
    const EnvironmentScope tmpdir(L"TMPDIR", m_directory.Text());
    EXPECT_EQ(Configure(), 0);
    EXPECT_TRUE(exists(File()));
}

TEST_F(LumDebugPosixTest, NeitherTempNorTmpdir_UsesTmp) {
    m_registry.RemoveKey(kLum2Key);
    const EnvironmentScope temp(L"Temp", std::nullopt);
    const EnvironmentScope tmpdir(L"TMPDIR", std::nullopt);
    const std::wstring name = m_directory.Path().filename().wstring() + L".txt";
    EXPECT_EQ(m_log.Configure(L"Quillet", name.c_str(), 1, false, 0), 0);
    const std::filesystem::path file = std::filesystem::path("/tmp") / name;
    EXPECT_TRUE(exists(file));
    remove(file);
}

} // namespace
