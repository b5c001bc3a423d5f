// The trace log under several threads.
#include "LumDebug.h"
#include "LumSecure.h"
#include "RegistryScope.h"
#include "TemporaryDirectory.h"
#include "TraceFile.h"

#include <atomic>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <set>
#include <thread>

using namespace quillet::tests;

namespace {

constexpr int kThreads = 6;
constexpr int kLines = 300;

void InThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

class LumDebugThreadsTest : public testing::Test {
  protected:
    LumDebugThreadsTest() { m_registry.SetString(kLum2Key, L"InstalledDir", m_directory.Text()); }
    std::vector<TraceLine> Lines() const { return ParseTraceFile(m_directory.File(L"Trace.txt")); }

    TemporaryDirectory m_directory;
    RegistryScope m_registry;
    CLumDebug m_log;
};

TEST_F(LumDebugThreadsTest, EveryLine_IsWholeAndNoneIsLost) {
    ASSERT_EQ(m_log.Configure(L"Quillet", L"Trace.txt", 1, false, 0), 0);
    InThreads([this](int thread) {
        const std::wstring filler(static_cast<std::size_t>(50 * thread), static_cast<wchar_t>(L'a' + thread));
        for (int line = 0; line < kLines; ++line) {
            switch (line % 3) {
            case 0:
                m_log.Print(L"%d:%d:%s.", thread, line, filler.c_str());
                break;
            case 1:
                m_log.PrintText(
                    (std::to_wstring(thread) + L':' + std::to_wstring(line) + L':' + filler + L'.').c_str());
                break;
            default:
                m_log.Error(L"f", 1, L"%d:%d:%s.", thread, line, filler.c_str());
                break;
            }
        }
    });
    std::set<std::wstring> texts;
    std::map<unsigned, int> ofThread;
    for (const TraceLine& line : Lines()) {
        texts.insert(line.text);
        ++ofThread[line.tid];
    }
    EXPECT_EQ(ofThread.size(), std::size_t{kThreads});
    std::set<std::wstring> expected;
    for (int thread = 0; thread < kThreads; ++thread) {
        const std::wstring filler(static_cast<std::size_t>(50 * thread), static_cast<wchar_t>(L'a' + thread));
        for (int line = 0; line < kLines; ++line) {
            expected.insert((line % 3 == 2 ? L"f (1): " : L"") + std::to_wstring(thread) + L':' +
                            std::to_wstring(line) + L':' + filler + L'.');
        }
    }
    EXPECT_EQ(texts, expected);
}

TEST_F(LumDebugThreadsTest, AtLevelTwo_NoLineSlipsInBesideAnError) {
    ASSERT_EQ(m_log.Configure(L"Quillet", L"Trace.txt", 2, false, 0), 0);
    InThreads([this](int thread) {
        for (int line = 0; line < kLines; ++line) {
            if (thread % 2 == 0) {
                m_log.Error(L"f", 1, L"error");
            } else {
                m_log.Print(L"print");
                m_log.PrintText(L"print");
            }
        }
    });
    const auto lines = Lines();
    EXPECT_EQ(lines.size(), std::size_t{kThreads / 2 * kLines});
    for (const TraceLine& line : lines) {
        EXPECT_EQ(line.text, L"f (1): error");
    }
}

TEST_F(LumDebugThreadsTest, ConfiguringAndCopyingMeanwhile_IsSafe) {
    ASSERT_EQ(m_log.Configure(L"Quillet", L"Trace.txt", 3, true, 0), 0);
    std::atomic<int> printing{kThreads - 1};
    InThreads([this, &printing](int thread) {
        if (thread == 0) {
            while (printing != 0) {
                m_log.Configure(L"Quillet", L"Trace.txt", 3, true, 0);
                CLumDebug copy(m_log);
                copy.PrintText(L"copy");
                m_log.GetCurrentLogLevel();
                m_log.IsConfigured();
            }
            return;
        }
        for (int line = 0; line < kLines; ++line) {
            m_log.Print(L"%d", line);
        }
        --printing;
    });
    std::size_t printed = 0;
    for (const TraceLine& line : Lines()) {
        printed += line.text != L"copy";
    }
    EXPECT_EQ(printed, std::size_t{(kThreads - 1) * kLines});
}

TEST_F(LumDebugThreadsTest, SafeCopyInAllThreads_InstallsTheHandlerOnce) {
    const TraceFile trace(2);
    const auto before = _set_invalid_parameter_handler(nullptr);
    InThreads([](int) {
        for (int line = 0; line < kLines; ++line) {
            wchar_t target[4];
            EXPECT_EQ(LumSafeCopy(L"f", 1, target, L"abc"), 0);
        }
    });
    _set_invalid_parameter_handler(before);
    // Threads that see each other's first use may each say so; nobody does later.
    const auto lines = trace.Lines();
    EXPECT_GE(lines.size(), 1u);
    EXPECT_LE(lines.size(), std::size_t{kThreads});
}

} // namespace
