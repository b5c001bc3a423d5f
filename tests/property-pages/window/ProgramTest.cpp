// The finished program, started as a user starts it.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include "resources/Ids.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace quillet::tests {

namespace {

using namespace std::chrono_literals;

/// The program alone in a folder, as whoever copied it there has it.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
        std::filesystem::copy_file(QUILLET_PROPERTIES, m_folder / "quillet-properties.exe");
    }
    ~ProgramTest() override {
        if (m_process.hProcess != nullptr) {
            TerminateProcess(m_process.hProcess, 99);
            WaitForSingleObject(m_process.hProcess, 10000);
            CloseHandle(m_process.hProcess);
            CloseHandle(m_process.hThread);
        }
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    void Begin(const std::wstring& options) {
        std::wstring line = L"\"" + (m_folder / "quillet-properties.exe").wstring() + L"\" " + options;
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        ASSERT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                   m_folder.c_str(), &startup, &m_process));
    }
    /// Waits for a window of the program that is as it should be.
    template <class IsRight>
    HWND Await(IsRight isRight) {
        struct Search {
            DWORD process;
            IsRight* isRight;
            HWND found;
        };
        for (int left = 1000; left > 0; --left) {
            Search search{m_process.dwProcessId, &isRight, nullptr};
            EnumWindows(
                [](HWND window, LPARAM parameter) -> BOOL {
                    auto& wanted = *reinterpret_cast<Search*>(parameter);
                    DWORD process = 0;
                    GetWindowThreadProcessId(window, &process);
                    if (process == wanted.process && IsWindowVisible(window) != FALSE &&
                        (*wanted.isRight)(window)) {
                        wanted.found = window;
                        return FALSE;
                    }
                    return TRUE;
                },
                reinterpret_cast<LPARAM>(&search));
            if (search.found != nullptr) {
                return search.found;
            }
            std::this_thread::sleep_for(20ms);
        }
        ADD_FAILURE() << "the program shows no such window";
        return nullptr;
    }
    DWORD ExitStatus() {
        EXPECT_EQ(WaitForSingleObject(m_process.hProcess, 20000), WAIT_OBJECT_0) << "it does not end";
        DWORD status = 99;
        GetExitCodeProcess(m_process.hProcess, &status);
        return status;
    }

    const std::filesystem::path m_folder = std::filesystem::temp_directory_path() / L"Quillet \u00FC";
    PROCESS_INFORMATION m_process{};
};

bool ShowsTheMachine(HWND window) {
    // Two headings, ten adapters, a team and its three VLANs.
    return SendDlgItemMessageW(window, ID_START_TREE, TVM_GETCOUNT, 0, 0) == 16;
}

TEST_F(ProgramTest, ShowsASimulatedMachineAndEnds) {
    Begin(L"--simulate");
    PostMessageW(Await(ShowsTheMachine), WM_CLOSE, 0, 0);
    EXPECT_EQ(ExitStatus(), 0U);
}

TEST_F(ProgramTest, AStateFileIsKept) {
    Begin(L"--state lab.mof");
    const HWND start = Await(ShowsTheMachine);
    EXPECT_TRUE(IsWindowEnabled(start));
    PostMessageW(start, WM_CLOSE, 0, 0);
    EXPECT_EQ(ExitStatus(), 0U);
    EXPECT_TRUE(std::filesystem::exists(m_folder / "lab.mof"));
}

TEST_F(ProgramTest, OneAdapterHasASheetOfItsOwn) {
    Begin(L"--simulate --adapter 02-00-5E-00-20-01");
    const HWND sheet = Await([](HWND window) { return PropSheet_GetTabControl(window) != nullptr; });
    PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    EXPECT_EQ(ExitStatus(), 0U);
}

TEST_F(ProgramTest, AnUnknownAdapterIsTold) {
    Begin(L"--simulate --adapter none");
    const HWND box = Await([](HWND window) { return GetDlgItem(window, IDOK) != nullptr; });
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(ExitStatus(), 1U);
}

TEST_F(ProgramTest, AWrongCommandLineIsTold) {
    Begin(L"--simulate --machine other");
    const HWND box = Await([](HWND window) { return GetDlgItem(window, IDOK) != nullptr; });
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(ExitStatus(), 2U);
}

} // namespace

} // namespace quillet::tests
