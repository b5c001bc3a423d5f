// Ctrl-C on Windows, in a console that the program shares with the test.
#include "support/RunCommandLine.h"

#include <ending/Interrupt.h>
#include <texts/Text.h>

#include <gmock/gmock.h>

#include <windows.h>

namespace {

using namespace quillet::tests;
using testing::HasSubstr;

constexpr DWORD kPatience = 30000;

BOOL WINAPI Ignore(DWORD) {
    return TRUE;
}

/// A console of the test's own. What interrupts the program does not interrupt the test.
class InAConsoleTest : public CommandLine {
  protected:
    static void SetUpTestSuite() {
        FreeConsole();
        ASSERT_TRUE(AllocConsole());
        SetConsoleCtrlHandler(Ignore, TRUE);
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        input = CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            &inherited, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(input, INVALID_HANDLE_VALUE);
    }
    static void TearDownTestSuite() {
        CloseHandle(input);
        SetConsoleCtrlHandler(Ignore, FALSE);
    }
    static bool Echoes() {
        DWORD mode = 0;
        EXPECT_TRUE(GetConsoleMode(input, &mode));
        return (mode & ENABLE_ECHO_INPUT) != 0;
    }
    static void PressCtrlC() { ASSERT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)); }

    /// Starts the program with both outputs in a file.
    void Start(const std::string& arguments) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        m_output = CreateFileW(Output().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = input;
        startup.hStdOutput = m_output;
        startup.hStdError = m_output;
        std::wstring line = quilletctl::ToWide("\"" QUILLETCTL_PROGRAM "\" " + arguments);
        PROCESS_INFORMATION process{};
        ASSERT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                   &startup, &process));
        CloseHandle(process.hThread);
        m_process = process.hProcess;
    }
    template <class Condition>
    static void WaitFor(Condition condition) {
        constexpr DWORD kAMoment = 10;
        for (DWORD waited = 0; !condition(); waited += kAMoment) {
            ASSERT_LT(waited, kPatience);
            Sleep(kAMoment);
        }
    }
    void WaitForOutput(const std::string& text) const {
        WaitFor([&] { return ReadFile(Output()).find(text) != std::string::npos; });
    }
    Outcome Finish() {
        EXPECT_EQ(WaitForSingleObject(m_process, kPatience), DWORD{WAIT_OBJECT_0});
        DWORD status = 0;
        EXPECT_TRUE(GetExitCodeProcess(m_process, &status));
        CloseHandle(m_process);
        CloseHandle(m_output);
        return {static_cast<int>(status), ReadFile(Output()), {}};
    }

  private:
    std::filesystem::path Output() const { return InFolder("output.txt"); }

    static inline HANDLE input = INVALID_HANDLE_VALUE;
    HANDLE m_output = INVALID_HANDLE_VALUE;
    HANDLE m_process = nullptr;
};

TEST_F(InAConsoleTest, CtrlC_IsRememberedWhileAnInterruptIsHeld) {
    quilletctl::Interrupt interrupt;
    interrupt.Hold(nullptr);
    EXPECT_FALSE(interrupt.Requested());
    PressCtrlC();
    WaitFor([&] { return interrupt.Requested(); });
}

TEST_F(InAConsoleTest, AQuestion_EndsAtOnce) {
    const std::string state = Utf8(InFolder("lab.mof"));
    Start("--simulate --state \"" + state + "\" team delete {233D64CB-B845-581B-A807-C628FFE690C9}");
    WaitForOutput("[y/N] ");
    PressCtrlC();
    const Outcome outcome = Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("quilletctl: interrupted; nothing was changed\n"));
    EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
}

TEST_F(InAConsoleTest, APromptForASecret_EndsAtOnceAndTheConsoleEchoesAgain) {
    WriteFile(InFolder("secure.mof"), ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                                          "instance of Zorel_LinkSecConfiguration { DeviceID = "
                                          "\"{B8A405BF-61B9-5217-AADA-670F163E6DF1}\"; };\n");
    ASSERT_TRUE(Echoes());
    Start("--simulate \"" + Utf8(InFolder("secure.mof")) +
          "\" linksec pmk {B8A405BF-61B9-5217-AADA-670F163E6DF1} --set");
    WaitFor([] { return !Echoes(); });
    PressCtrlC();
    const Outcome outcome = Finish();
    EXPECT_EQ(outcome.status, 130) << outcome.out;
    EXPECT_EQ(outcome.out, "quilletctl: interrupted; nothing was changed\n");
    EXPECT_TRUE(Echoes());
}

TEST_F(InAConsoleTest, TheFlashMemory_IsWrittenToItsEnd) {
    constexpr const char* kAdapter = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
    WriteFile(InFolder("slow.mof"),
              ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                  "instance of QuilletSimulator_Fault { Id = 1; Operation = \"ExecMethod\"; "
                  "MethodName = \"ProgramFlashEx\"; Effect = \"Delay\"; Milliseconds = 1500; "
                  "};\n");
    // What is there already is an image that may be written.
    const std::string image = Utf8(InFolder("image.bin"));
    const std::string state = Utf8(InFolder("lab.mof"));
    ASSERT_EQ(RunCommandLine({"--simulate", "boot", "read", kAdapter, image}).status, 0);
    Start("--simulate \"" + Utf8(InFolder("slow.mof")) + "\" --state \"" + state + "\" boot write " +
          kAdapter + " \"" + image + "\" --yes");
    WaitForOutput("cannot be interrupted.");
    PressCtrlC();
    const Outcome outcome = Finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("the flash memory holds the image, byte for byte; "));
    EXPECT_THAT(outcome.out, HasSubstr("quilletctl: interrupted, but everything was done\n"));
    EXPECT_TRUE(std::filesystem::exists(InFolder("lab.mof")));
}

} // namespace
