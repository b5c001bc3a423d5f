// A client of the shared library: it connects, lists adapters, and finds its trace in the file that the
// library opened when it was loaded.
#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Text.h>
#include <quillet/Quillet.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using quillet::simulator::Machine;
using quillet::simulator::Registration;

/// The directories in which the library may have put its file, best first.
std::vector<std::filesystem::path> TraceDirectories() {
    std::vector<std::filesystem::path> directories;
    wchar_t installed[512];
    DWORD size = sizeof installed;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2", 0, KEY_READ, &key) ==
        ERROR_SUCCESS) {
        if (RegQueryValueExW(key, L"InstalledDir", nullptr, nullptr, reinterpret_cast<BYTE*>(installed),
                             &size) == ERROR_SUCCESS) {
            directories.emplace_back(std::wstring(installed));
        }
        directories.emplace_back(L"/");
        RegCloseKey(key);
    }
    for (const char* variable : {"Temp", "TMPDIR"}) {
        if (const char* directory = std::getenv(variable)) {
            directories.emplace_back(directory);
        }
    }
    directories.emplace_back("/tmp");
    return directories;
}

/// The lines of this process in any of the files.
std::vector<std::string> OwnTrace() {
    char head[32];
    std::snprintf(head, sizeof head, "Quillet\tPID:%lx\t", static_cast<unsigned long>(GetCurrentProcessId()));
    for (const std::filesystem::path& directory : TraceDirectories()) {
        std::ifstream file(directory / "Gui_Quillet.txt");
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            const std::size_t start = line.find(head);
            if (start != std::string::npos) {
                lines.push_back(line.substr(line.rfind('\t') + 1));
            }
        }
        if (!lines.empty()) {
            return lines;
        }
    }
    return {};
}

bool Traced(const std::vector<std::string>& lines, const std::string& text) {
    for (const std::string& line : lines) {
        if (line.substr(0, text.size()) == text) {
            return true;
        }
    }
    return false;
}

TEST(SharedLibrary, Client_ConnectsListsAdaptersAndIsTraced) {
    const auto machine = Machine::BuiltIn();
    const Registration registration(machine);
    ASSERT_TRUE(SUCCEEDED(registration.Result()));
    {
        CQuillet quillet;
        ASSERT_EQ(quillet.InitQuillet(), S_OK);
        CAdapters adapters;
        EXPECT_EQ(quillet.EnumerateAdapters(adapters), S_OK);
        EXPECT_EQ(adapters.m_vecItems.size(),
                  machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter").size());
        // What crosses the library's boundary: copies, and memory that one side allocates and the other
        // frees.
        const CAdapters copy(adapters);
        ASSERT_FALSE(copy.m_vecItems.empty());
        EXPECT_EQ(copy.m_vecItems[0]->m_wsAdapterID, adapters.m_vecItems[0]->m_wsAdapterID);
        std::wstring objectId;
        EXPECT_EQ(quillet.GetGUI(copy.m_vecItems[0]->m_wsAdapterID, objectId), S_OK);
        EXPECT_EQ(objectId, copy.m_vecItems[0]->m_wsDeviceID);
        EXPECT_EQ(quillet.UninitQuillet(), S_OK);
    }
    const std::vector<std::string> trace = OwnTrace();
    EXPECT_TRUE(Traced(trace, "Enter InitQuillet"));
    EXPECT_TRUE(Traced(trace, "Entering CQuillet::EnumerateAdapters"));
    EXPECT_TRUE(Traced(trace, "~CQuillet"));
}

TEST(SharedLibrary, Client_WithoutAConnection_IsToldSo) {
    CQuillet quillet;
    ULONGLONG warnings = 7;
    EXPECT_EQ(static_cast<ULONG>(quillet.GetWarnings(warnings)), 0x80041001u);
    EXPECT_EQ(warnings, 7u);
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        std::fputs("COM can not be initialised\n", stderr);
        return 2;
    }
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
