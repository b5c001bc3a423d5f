// What loading the library does to the trace log: the rule, and that it is applied.
#include "EnvironmentScope.h"
#include "LumDebug.h"
#include "RegistryScope.h"
#include "RunProgram.h"
#include "TemporaryDirectory.h"
#include "TraceAtLoad.h"
#include "TraceFile.h"

#include <fstream>
#include <gmock/gmock.h>

using namespace quillet::tests;

namespace {

TEST(TraceAtLoadTest, SilentHosts_AreToldByNameAlone) {
    for (const wchar_t* path :
         {L"LUM2Prov", L"C:\\Windows\\System32\\Services.exe", L"c:/x/SERVICES.EXE", L"/usr/lib/lum2prov",
          L"C:\\Program Files\\MARLO\\LUM2PROV.exe", L"services.other", L"D:\\a.b\\Services"}) {
        EXPECT_TRUE(IsSilentTraceHost(path)) << path;
    }
}

TEST(TraceAtLoadTest, OtherHosts_AreTraced) {
    for (const wchar_t* path : {L"", L"Service", L"MyServices.exe", L"C:\\Services\\client.exe",
                                L"LUM2Prov.old.exe", L"LUM2Prov\\", L"LUM2Provider.exe", L".services"}) {
        EXPECT_FALSE(IsSilentTraceHost(path)) << path;
    }
}

TEST(TraceAtLoadTest, OrdinaryHost_GetsItsTraceFile) {
    TemporaryDirectory directory;
    RegistryScope registry;
    registry.SetString(kLum2Key, L"InstalledDir", directory.Text());
    registry.RemoveValue(kLum2Key, L"TRACE");
    std::ofstream(directory.File(L"Gui_Quillet.txt")) << "of the last run";
    EXPECT_EQ(ConfigureTraceAtLoad(L"C:\\client.exe"), 0);
    EXPECT_EQ(LumTrace().GetCurrentLogLevel(), 1u);
    LumTrace().PrintText(L"line");
    const auto lines = ParseTraceFile(directory.File(L"Gui_Quillet.txt"));
    LumTrace() = CLumDebug();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].process, L"Quillet");
}

TEST(TraceAtLoadTest, SilentHost_LeavesTheLogAsItIs) {
    LumTrace() = CLumDebug();
    EXPECT_EQ(ConfigureTraceAtLoad(L"C:\\Windows\\Services.exe"), -1);
    EXPECT_FALSE(LumTrace().IsConfigured());
    EXPECT_EQ(LumTrace().GetCurrentLogLevel(), 0u);
}

TEST(TraceAtLoadTest, SwitchedOffByRegistry_StaysOff) {
    LumTrace() = CLumDebug();
    RegistryScope registry;
    registry.SetDword(kLum2Key, L"TRACE", 0);
    EXPECT_EQ(ConfigureTraceAtLoad(L"client"), -1);
    EXPECT_FALSE(LumTrace().IsConfigured());
}

TEST(TraceAtLoadTest, HostExecutablePath_IsThisProgram) {
    EXPECT_EQ(std::filesystem::path(HostExecutablePath()).stem(), "common_tests");
}

/// Programs whose load routine runs for itself.
class LoadedProgram : public testing::TestWithParam<const char*> {
  protected:
    LoadedProgram() { m_registry.RemoveKey(kLum2Key); }
    bool Traced() const { return exists(m_temp.File(L"Gui_Quillet.txt")); }

    TemporaryDirectory m_temp;
    EnvironmentScope m_environment{L"Temp", m_temp.Text()};
    RegistryScope m_registry;
};

using TracedProgramTest = LoadedProgram;
TEST_P(TracedProgramTest, HasItsLogOnFromTheStart) {
    EXPECT_EQ(RunProgram(GetParam()), 1);
    EXPECT_TRUE(Traced());
}
INSTANTIATE_TEST_SUITE_P(Static, TracedProgramTest, testing::Values(LOAD_PROBE));
INSTANTIATE_TEST_SUITE_P(Shared, TracedProgramTest, testing::Values(LOAD_PROBE_SHARED));

using SilentProgramTest = LoadedProgram;
TEST_P(SilentProgramTest, HasNoLog) {
    EXPECT_EQ(RunProgram(GetParam()), 0);
    EXPECT_FALSE(Traced());
}
INSTANTIATE_TEST_SUITE_P(Hosts, SilentProgramTest,
                         testing::Values(LOAD_PROBE_PROVIDER, LOAD_PROBE_SERVICES,
                                         LOAD_PROBE_SHARED_SERVICES));

} // namespace
