// CLumDebug::Configure: whether the log is on, and where its file is.
#include "DebugOutput.h"
#include "EnvironmentScope.h"
#include "LumDebug.h"
#include "RegistryScope.h"
#include "TemporaryDirectory.h"
#include "TraceFile.h"

#include <fstream>
#include <gmock/gmock.h>

using namespace quillet::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr wchar_t kFile[] = L"Trace.txt";

/// A place for the file of either way, and a registry that names the first.
class LumDebugConfigureTest : public testing::Test {
  protected:
    LumDebugConfigureTest() {
        m_registry.RemoveValue(kLum2Key, L"TRACE");
        m_registry.SetString(kLum2Key, L"InstalledDir", m_installed.Text());
    }

    bool InInstalledDir(const wchar_t* name = kFile) const { return exists(m_installed.File(name)); }
    bool InTemp(const wchar_t* name = kFile) const { return exists(m_temp.File(name)); }
    /// A full path of exactly this many characters, for the process that gives full paths.
    std::wstring FullPath(std::size_t length) const {
        std::wstring path = m_installed.Text() + L'\\';
        path.append(length - path.size(), L'n');
        return path;
    }

    TemporaryDirectory m_installed;
    TemporaryDirectory m_temp;
    EnvironmentScope m_environment{L"Temp", m_temp.Text()};
    RegistryScope m_registry;
    CLumDebug m_log;
};

TEST_F(LumDebugConfigureTest, NewObject_IsOffAndNotConfigured) {
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 0u);
    EXPECT_FALSE(m_log.IsConfigured());
}

TEST_F(LumDebugConfigureTest, OrdinaryCall_OpensTheFileInInstalledDirAndStoresTheLevel) {
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 1u);
    EXPECT_TRUE(m_log.IsConfigured());
    EXPECT_TRUE(InInstalledDir());
    EXPECT_FALSE(InTemp());
}

TEST_F(LumDebugConfigureTest, LevelZero_StoresTheLevelAndStaysOff) {
    ASSERT_EQ(m_log.Configure(L"Quillet", kFile, 3, false, 0), 0);
    EXPECT_EQ(m_log.Configure(L"Quillet", L"other.txt", 0, false, 0), -1);
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 0u);
    EXPECT_FALSE(InInstalledDir(L"other.txt"));
}

TEST_F(LumDebugConfigureTest, SwitchedOffByRegistry_LevelsOneAndTwoStayOff) {
    m_registry.SetDword(kLum2Key, L"TRACE", 0);
    for (const unsigned level : {1u, 2u}) {
        EXPECT_EQ(m_log.Configure(L"Quillet", kFile, level, false, 0), -1);
        EXPECT_EQ(m_log.GetCurrentLogLevel(), 0u);
        EXPECT_FALSE(m_log.IsConfigured());
        EXPECT_FALSE(InInstalledDir());
    }
}

TEST_F(LumDebugConfigureTest, SwitchedOffByRegistry_LevelsFromThreeOnWrite) {
    m_registry.SetDword(kLum2Key, L"TRACE", 0);
    for (const unsigned level : {3u, 4u, 5u}) {
        EXPECT_EQ(m_log.Configure(L"Quillet", kFile, level, false, 0), 0);
        EXPECT_EQ(m_log.GetCurrentLogLevel(), level);
        m_log.PrintText(L"written");
        EXPECT_THAT(ParseTraceFile(m_installed.File(kFile)), SizeIs(1));
    }
}

TEST_F(LumDebugConfigureTest, RegistrySwitchIsNotZero_TracingGoesOn) {
    for (const DWORD value : {DWORD{1}, DWORD{2}, DWORD{0x80000000}}) {
        m_registry.SetDword(kLum2Key, L"TRACE", value);
        EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0) << value;
    }
}

TEST_F(LumDebugConfigureTest, RegistrySwitchOfAnotherType_IsNone) {
    const wchar_t text[] = L"0";
    m_registry.SetValue(kLum2Key, L"TRACE", REG_SZ, text, sizeof text);
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    const unsigned long long zero = 0;
    m_registry.SetValue(kLum2Key, L"TRACE", REG_QWORD, &zero, sizeof zero);
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    m_registry.SetValue(kLum2Key, L"TRACE", REG_DWORD, &zero, 2);
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
}

TEST_F(LumDebugConfigureTest, FileNameOfNoCharacters_Fails) {
    EXPECT_EQ(m_log.Configure(L"Quillet", L"", 1, false, 0), -1);
    EXPECT_EQ(m_log.Configure(L"Quillet", nullptr, 1, false, 0), -1);
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 0u);
    EXPECT_FALSE(m_log.IsConfigured());
}

TEST_F(LumDebugConfigureTest, FileNameOfOneCharacter_IsEnough) {
    EXPECT_EQ(m_log.Configure(L"Quillet", L"n", 1, false, 0), 0);
    EXPECT_TRUE(InInstalledDir(L"n"));
}

TEST_F(LumDebugConfigureTest, FileNameOf245Characters_IsTheLongest) {
    EXPECT_EQ(m_log.Configure(L"RvSetup", FullPath(245).c_str(), 1, false, 0), 0);
    m_log = CLumDebug();
    EXPECT_EQ(m_log.Configure(L"RvSetup", FullPath(246).c_str(), 1, false, 0), -1);
    EXPECT_FALSE(m_log.IsConfigured());
}

TEST_F(LumDebugConfigureTest, FailedCall_LeavesTheLevelAndTheFileAsTheyWere) {
    ASSERT_EQ(m_log.Configure(L"Quillet", kFile, 3, false, 0), 0);
    EXPECT_EQ(m_log.Configure(L"RvSetup", FullPath(246).c_str(), 1, false, 0), -1);
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 3u);
    m_log.PrintText(L"still here");
    EXPECT_THAT(ParseTraceFile(m_installed.File(kFile)), SizeIs(1));
}

TEST_F(LumDebugConfigureTest, SetupProcess_GivesTheFullPath) {
    DebugOutput output;
    for (const wchar_t* process : {L"RvSetup", L"RVSETUP", L"rvsetup"}) {
        const std::wstring path = m_temp.Text() + L"\\full.txt";
        EXPECT_EQ(m_log.Configure(process, path.c_str(), 1, false, 0), 0);
        EXPECT_TRUE(InTemp(L"full.txt"));
        m_log = CLumDebug();
        remove(m_temp.File(L"full.txt"));
    }
    EXPECT_THAT(output.Texts(), IsEmpty());
}

TEST_F(LumDebugConfigureTest, Lum2SetupProcess_UsesTempAlthoughInstalledDirIsThere) {
    for (const wchar_t* process : {L"Lum2Setp", L"LUM2SETP", L"lum2setp"}) {
        EXPECT_EQ(m_log.Configure(process, kFile, 1, false, 0), 0);
        EXPECT_TRUE(InTemp());
        EXPECT_FALSE(InInstalledDir());
        m_log = CLumDebug();
        remove(m_temp.File(kFile));
    }
}

TEST_F(LumDebugConfigureTest, KeyIsMissing_UsesTemp) {
    m_registry.RemoveKey(kLum2Key);
    DebugOutput output;
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    EXPECT_TRUE(InTemp());
    const std::wstring directory = m_temp.Text();
    EXPECT_THAT(output.Texts(),
                ElementsAre(L"FILE PATH 1 IS " + directory, L"FILE PATH 2 IS " + directory + L"\\",
                            L"FILE PATH 3 IS " + directory + L"\\Trace.txt"));
}

TEST_F(LumDebugConfigureTest, InstalledDirIsThere_DebuggerIsToldEachStage) {
    DebugOutput output;
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    const std::wstring directory = m_installed.Text();
    EXPECT_THAT(output.Texts(),
                ElementsAre(L"FILE PATH 1 IS " + directory, L"FILE PATH 2 IS " + directory + L"\\",
                            L"FILE PATH 3 IS " + directory + L"\\Trace.txt"));
}

// The name has a directory that does not exist, so that nothing is made at the root of the machine.
TEST_F(LumDebugConfigureTest, KeyWithoutInstalledDir_LooksAtTheRootThenInTemp) {
    m_registry.RemoveValue(kLum2Key, L"InstalledDir");
    DebugOutput output;
    EXPECT_EQ(m_log.Configure(L"Quillet", L"no-such-directory\\Trace.txt", 1, false, 0), 0);
    EXPECT_THAT(output.Texts(), ElementsAre(L"FILE PATH 1 IS ", L"FILE PATH 2 IS \\",
                                            L"FILE PATH 3 IS \\no-such-directory\\Trace.txt"));
    EXPECT_TRUE(InTemp());
}

TEST_F(LumDebugConfigureTest, InstalledDirThatIsNoText_CountsAsMissing) {
    m_registry.SetDword(kLum2Key, L"InstalledDir", 7);
    DebugOutput output;
    EXPECT_EQ(m_log.Configure(L"Quillet", L"no-such-directory\\Trace.txt", 1, false, 0), 0);
    EXPECT_EQ(output.Texts().at(0), L"FILE PATH 1 IS ");
    EXPECT_TRUE(InTemp());
}

TEST_F(LumDebugConfigureTest, InstalledDirOf512Characters_DoesNotFitItsBuffer) {
    DebugOutput output;
    m_registry.SetString(kLum2Key, L"InstalledDir", L"\\\\" + std::wstring(509, L'd'));
    EXPECT_EQ(m_log.Configure(L"Quillet", L"no-such-directory\\Trace.txt", 1, false, 0), 0);
    EXPECT_EQ(output.Texts().at(0), L"FILE PATH 1 IS \\\\" + std::wstring(509, L'd'));
    m_registry.SetString(kLum2Key, L"InstalledDir", L"\\\\" + std::wstring(510, L'd'));
    EXPECT_EQ(m_log.Configure(L"Quillet", L"no-such-directory\\Trace.txt", 1, false, 0), 0);
    EXPECT_EQ(output.Texts().at(3), L"FILE PATH 1 IS ");
}

TEST_F(LumDebugConfigureTest, InstalledDirWithoutTerminator_IsReadToItsEnd) {
    const std::wstring directory = m_installed.Text();
    m_registry.SetValue(kLum2Key, L"InstalledDir", REG_SZ, directory.data(),
                        directory.size() * sizeof(wchar_t));
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    EXPECT_TRUE(InInstalledDir());
}

TEST_F(LumDebugConfigureTest, DirectoryThatDoesNotExist_FallsBackToTemp) {
    m_registry.SetString(kLum2Key, L"InstalledDir", m_installed.Text() + L"\\none");
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 2, false, 0), 0);
    EXPECT_TRUE(InTemp());
    EXPECT_TRUE(m_log.IsConfigured());
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 2u);
}

TEST_F(LumDebugConfigureTest, PathLongerThan260Characters_FallsBackToTemp) {
    m_registry.SetString(kLum2Key, L"InstalledDir", m_installed.Text() + std::wstring(250, L'/'));
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
    EXPECT_FALSE(InInstalledDir());
    EXPECT_TRUE(InTemp());
}

TEST_F(LumDebugConfigureTest, SetupProcessWhosePathCanNotBeOpened_UsesItsLastPartInTemp) {
    const std::wstring path = m_installed.Text() + L"\\none\\last.txt";
    EXPECT_EQ(m_log.Configure(L"RvSetup", path.c_str(), 1, false, 0), 0);
    EXPECT_TRUE(InTemp(L"last.txt"));
}

TEST_F(LumDebugConfigureTest, NeitherPlaceCanBeOpened_StaysOff) {
    m_registry.SetString(kLum2Key, L"InstalledDir", m_installed.Text() + L"\\none");
    const EnvironmentScope temp(L"Temp", m_temp.Text() + L"\\none");
    EXPECT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), -1);
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 0u);
    EXPECT_FALSE(m_log.IsConfigured());
    m_log.PrintText(L"nowhere");
    m_log.Error(L"file.cpp", 1, L"nowhere");
}

TEST_F(LumDebugConfigureTest, Append_KeepsWhatTheFileHolds) {
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(m_log.Configure(L"Quillet", kFile, 1, true, 0), 0);
        m_log.PrintText(L"line");
        m_log = CLumDebug();
    }
    EXPECT_THAT(ParseTraceFile(m_installed.File(kFile)), SizeIs(2));
}

TEST_F(LumDebugConfigureTest, NoAppend_EmptiesTheFile) {
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(m_log.Configure(L"Quillet", kFile, 1, false, 0), 0);
        m_log.PrintText(L"line");
    }
    EXPECT_THAT(ParseTraceFile(m_installed.File(kFile)), SizeIs(1));
}

TEST_F(LumDebugConfigureTest, SecondCall_MovesToTheNewFile) {
    ASSERT_EQ(m_log.Configure(L"One", L"one.txt", 1, false, 0), 0);
    m_log.PrintText(L"to one");
    ASSERT_EQ(m_log.Configure(L"Two", L"two.txt", 1, false, 0), 0);
    m_log.PrintText(L"to two");
    const auto one = ParseTraceFile(m_installed.File(L"one.txt"));
    const auto two = ParseTraceFile(m_installed.File(L"two.txt"));
    ASSERT_THAT(one, SizeIs(1));
    ASSERT_THAT(two, SizeIs(1));
    EXPECT_EQ(one[0].process, L"One");
    EXPECT_EQ(two[0].process, L"Two");
    EXPECT_EQ(two[0].text, L"to two");
}

TEST_F(LumDebugConfigureTest, DirectoryAndNameBeyondAscii_AreFoundUnderTheirOwnNames) {
    const std::filesystem::path directory = m_installed.File(L"Zażółć 網路");
    create_directory(directory);
    m_registry.SetString(kLum2Key, L"InstalledDir", m_installed.Text() + L"\\Zażółć 網路");
    EXPECT_EQ(m_log.Configure(L"Quillet", L"Prüfung.txt", 1, false, 0), 0);
    EXPECT_TRUE(exists(directory / PathOf(L"Prüfung.txt")));
}

TEST_F(LumDebugConfigureTest, NullProcessName_IsTheEmptyOne) {
    ASSERT_EQ(m_log.Configure(nullptr, kFile, 1, false, 0), 0);
    m_log.PrintText(L"line");
    const auto lines = ParseTraceFile(m_installed.File(kFile));
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].process, L"");
}

} // namespace
