// CLumDebug's lines: which of them are written, and how they look.
#include "LumDebug.h"
#include "RegistryScope.h"
#include "TemporaryDirectory.h"
#include "TraceFile.h"

#include <cstdint>
#include <fstream>
#include <gmock/gmock.h>

using namespace quillet::tests;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr wchar_t kLumDebugLinesFile[] = L"Trace.txt";

class LumDebugLinesTest : public testing::Test {
  protected:
    LumDebugLinesTest() { m_registry.SetString(kLum2Key, L"InstalledDir", m_directory.Text()); }

    void Open(unsigned level, bool append = false, unsigned maxFileSize = 0,
              const wchar_t* process = L"Quillet") {
        ASSERT_EQ(m_log.Configure(process, kLumDebugLinesFile, level, append, maxFileSize), 0);
    }
    std::filesystem::path Path() const { return m_directory.File(kLumDebugLinesFile); }
    std::vector<TraceLine> Lines() const { return ParseTraceFile(Path()); }
    std::vector<std::wstring> Texts() const {
        std::vector<std::wstring> texts;
        for (const TraceLine& line : Lines()) {
            texts.push_back(line.text);
        }
        return texts;
    }
    /// Opens a file that holds so many bytes already.
    void OpenHolding(std::size_t bytes, unsigned maxFileSize, unsigned level = 3) {
        std::ofstream(Path(), std::ios::binary) << std::string(bytes, 'x');
        Open(level, true, maxFileSize);
    }
    std::uintmax_t Size() const { return file_size(Path()); }

    TemporaryDirectory m_directory;
    RegistryScope m_registry;
    CLumDebug m_log;
};

/// An argument that can not be read: whoever formats it is found out.
const wchar_t* Unreadable() {
    return reinterpret_cast<const wchar_t*>(std::uintptr_t{64});
}

TEST_F(LumDebugLinesTest, Head_NamesProcessThreadTimeAndCounter) {
    Open(1);
    SYSTEMTIME before{};
    GetLocalTime(&before);
    LARGE_INTEGER first{};
    QueryPerformanceCounter(&first);
    m_log.Print(L"text");
    LARGE_INTEGER last{};
    QueryPerformanceCounter(&last);
    SYSTEMTIME after{};
    GetLocalTime(&after);

    const auto lines = Lines();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].process, L"Quillet");
    EXPECT_EQ(lines[0].pid, GetCurrentProcessId());
    EXPECT_EQ(lines[0].tid, GetCurrentThreadId());
    EXPECT_GE(lines[0].counter, static_cast<unsigned long long>(first.QuadPart));
    EXPECT_LE(lines[0].counter, static_cast<unsigned long long>(last.QuadPart));
    const auto milliseconds = [](int h, int m, int s, int ms) { return ((h * 60 + m) * 60 + s) * 1000 + ms; };
    const std::wstring& time = lines[0].time;
    const int written = milliseconds(std::stoi(time.substr(0, 2)), std::stoi(time.substr(3, 2)),
                                     std::stoi(time.substr(6, 2)), std::stoi(time.substr(9, 3)));
    const auto ofDay = [&](const SYSTEMTIME& t) {
        return milliseconds(t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
    };
    if (ofDay(before) <= ofDay(after)) { // not at midnight
        EXPECT_GE(written, ofDay(before));
        EXPECT_LE(written, ofDay(after));
    }
}

TEST_F(LumDebugLinesTest, Line_IsTheHeadTheTextAndOneLineFeed) {
    Open(1);
    m_log.Print(L"text");
    const std::string bytes = ReadFile(Path());
    EXPECT_THAT(bytes, StartsWith("Quillet\tPID:"));
    EXPECT_THAT(bytes, EndsWith("\n"));
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 1);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\t'), 5);
}

TEST_F(LumDebugLinesTest, EveryLine_IsInTheFileAtOnce) {
    Open(1);
    for (std::size_t i = 1; i <= 3; ++i) {
        m_log.Print(L"%d", static_cast<int>(i));
        EXPECT_THAT(Lines(), SizeIs(i));
    }
}

TEST_F(LumDebugLinesTest, Print_FormatsAsWindowsDoes) {
    Open(1);
    m_log.Print(L"%s|%S|%d|%u|%x|%I64X|%ld|%c|%5.3d|%%", L"wide", "narrow", -7, 7u, 0xBEEFu,
                0x123456789ABCDEFull, LONG{-1}, L'c', 7);
    EXPECT_THAT(Texts(), ElementsAre(L"wide|narrow|-7|7|beef|123456789ABCDEF|-1|c|  007|%"));
}

TEST_F(LumDebugLinesTest, LevelsZeroAndTwo_PrintNothingAndFormatNothing) {
    m_log.Print(L"%s", Unreadable());
    m_log.PrintText(Unreadable());
    Open(2);
    m_log.Print(L"%s", Unreadable());
    m_log.PrintText(Unreadable());
    m_log.PrintLastError(5);
    m_log.Configure(L"Quillet", kLumDebugLinesFile, 0, false, 0);
    m_log.Print(L"%s", Unreadable());
    m_log.Error(L"f", 1, L"%s", Unreadable());
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(LumDebugLinesTest, LevelsOneThreeAndFour_PrintEverything) {
    for (const unsigned level : {1u, 3u, 4u}) {
        Open(level);
        m_log.Print(L"%s", L"printed");
        m_log.PrintText(L"as it is");
        m_log.Error(L"f", 1, L"error");
        EXPECT_THAT(Texts(), ElementsAre(L"printed", L"as it is", L"f (1): error")) << level;
        EXPECT_EQ(m_log.GetCurrentLogLevel(), level);
    }
}

TEST_F(LumDebugLinesTest, LevelTwo_OnlyErrorsReachTheFile) {
    Open(2);
    m_log.Print(L"before");
    m_log.Error(L"..\\Src\\file.cpp", 196, L"%s: %d", L"text", 5);
    m_log.Print(L"after");
    EXPECT_THAT(Texts(), ElementsAre(L"..\\Src\\file.cpp (196): text: 5"));
    EXPECT_EQ(m_log.GetCurrentLogLevel(), 2u);
}

TEST_F(LumDebugLinesTest, LevelZero_ErrorsAreNotWrittenEither) {
    Open(1);
    m_log.Configure(L"Quillet", kLumDebugLinesFile, 0, false, 0);
    m_log.Error(L"f", 1, L"error");
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(LumDebugLinesTest, ErrorWithoutSourceFile_HasAnEmptyOne) {
    Open(1);
    m_log.Error(nullptr, 0, L"text");
    EXPECT_THAT(Texts(), ElementsAre(L" (0): text"));
}

TEST_F(LumDebugLinesTest, PercentInAnErrorsText_IsNotFormattedTwice) {
    Open(1);
    m_log.Error(L"f%n", 3, L"%s", L"100%s%n");
    EXPECT_THAT(Texts(), ElementsAre(L"f%n (3): 100%s%n"));
}

TEST_F(LumDebugLinesTest, PrintText_TakesPercentSignsAsTheyAre) {
    Open(1);
    m_log.PrintText(L"dwErrorCode: %l");
    m_log.PrintText(L"%s%n%");
    EXPECT_THAT(Texts(), ElementsAre(L"dwErrorCode: %l", L"%s%n%"));
}

TEST_F(LumDebugLinesTest, FormatThatIsNone_StillMakesALine) {
    Open(1);
    m_log.Print(L"dwErrorCode: %l");
    m_log.Print(nullptr);
    m_log.PrintText(nullptr);
    m_log.Print(L"next");
    const auto texts = Texts();
    ASSERT_THAT(texts, SizeIs(4));
    EXPECT_THAT(texts[0], StartsWith(L"dwErrorCode: "));
    EXPECT_EQ(texts[1], L"");
    EXPECT_EQ(texts[2], L"");
    EXPECT_EQ(texts[3], L"next");
}

TEST_F(LumDebugLinesTest, TextOf1023Characters_IsTheLongest) {
    Open(1);
    const std::wstring whole(1023, L'a');
    for (const std::size_t length : {std::size_t{1022}, std::size_t{1023}}) {
        m_log.Print(L"%s", std::wstring(length, L'a').c_str());
        EXPECT_EQ(Texts().back().size(), length);
    }
    for (const std::size_t length : {std::size_t{1024}, std::size_t{1152}, std::size_t{100000}}) {
        const std::wstring text(length, L'a');
        m_log.Print(L"%s", text.c_str());
        EXPECT_EQ(Texts().back(), whole) << length;
        m_log.Print(text.c_str());
        EXPECT_EQ(Texts().back(), whole) << length;
        m_log.PrintText(text.c_str());
        EXPECT_EQ(Texts().back(), whole) << length;
    }
    // The file was parsed to its end each time: every line has its line feed.
    EXPECT_THAT(Lines(), SizeIs(11));
}

TEST_F(LumDebugLinesTest, LongErrorText_IsCutWithItsPosition) {
    Open(1);
    m_log.Error(L"file", 12, L"%s", std::wstring(5000, L'e').c_str());
    const std::wstring text = Texts().at(0);
    EXPECT_EQ(text.size(), 1023u);
    EXPECT_EQ(text, L"file (12): " + std::wstring(1023 - 11, L'e'));
}

TEST_F(LumDebugLinesTest, LongProcessName_LeavesTheLineWhole) {
    Open(1, false, 0, std::wstring(3000, L'p').c_str());
    m_log.Print(L"text");
    m_log.PrintText(L"text");
    std::string bytes = ReadFile(Path());
    bytes.erase(std::remove(bytes.begin(), bytes.end(), '\r'), bytes.end());
    const std::string line = std::string(1150, 'p') + '\n';
    EXPECT_EQ(bytes, line + line);
}

TEST_F(LumDebugLinesTest, CharactersThatNoCodePageHas_AreWrittenAsUtf8) {
    Open(1);
    m_log.Print(L"%s", L"Karta sieciowa „Zażółć” 網路卡 Ωμ \U0001F600");
    m_log.PrintText(L"\U0001F600 é");
    EXPECT_THAT(Texts(), ElementsAre(L"Karta sieciowa „Zażółć” 網路卡 Ωμ \U0001F600", L"\U0001F600 é"));
    EXPECT_THAT(ReadFile(Path()), testing::HasSubstr("\xF0\x9F\x98\x80 \xC3\xA9"));
}

TEST_F(LumDebugLinesTest, WhatIsNoCharacter_BecomesTheReplacementCharacter) {
    Open(1);
    const wchar_t half[] = {L'a', static_cast<wchar_t>(0xD83D), L'b', static_cast<wchar_t>(0xDE00), L'\0'};
    m_log.PrintText(half);
    EXPECT_THAT(Texts(), ElementsAre(L"a\uFFFDb\uFFFD"));
}

TEST_F(LumDebugLinesTest, FileAtItsMaximumSize_DropsTheLine) {
    OpenHolding(100, 100);
    m_log.Print(L"dropped");
    m_log.PrintText(L"dropped");
    m_log.Error(L"f", 1, L"dropped");
    m_log.PrintLastError(5);
    EXPECT_EQ(Size(), 100u);
}

TEST_F(LumDebugLinesTest, FileOneByteBelowItsMaximumSize_TakesOneMoreLine) {
    OpenHolding(100, 101);
    m_log.Print(L"taken");
    const auto size = Size();
    EXPECT_GT(size, 101u);
    m_log.Print(L"dropped");
    m_log.Error(L"f", 1, L"dropped");
    EXPECT_EQ(Size(), size);
}

TEST_F(LumDebugLinesTest, FileOneByteBelowItsMaximumSize_TakesOneMoreError) {
    OpenHolding(100, 101, 2);
    m_log.Error(L"f", 1, L"taken");
    const auto size = Size();
    EXPECT_GT(size, 101u);
    m_log.Error(L"f", 1, L"dropped");
    EXPECT_EQ(Size(), size);
}

TEST_F(LumDebugLinesTest, MaximumSizeZero_IsNoLimit) {
    Open(1);
    for (int i = 0; i < 200; ++i) {
        m_log.PrintText(L"0123456789012345678901234567890123456789");
    }
    EXPECT_THAT(Lines(), SizeIs(200));
}

std::wstring SystemText(DWORD code) {
    wchar_t text[1024] = L"";
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, 1024, nullptr);
    std::wstring line(text, length);
    line.erase(std::remove(line.begin(), line.end(), L'\r'), line.end());
    return line;
}

TEST_F(LumDebugLinesTest, PrintLastError_WritesTheSystemsText) {
    Open(1);
    m_log.PrintLastError(ERROR_ACCESS_DENIED);
    ASSERT_THAT(SystemText(ERROR_ACCESS_DENIED), testing::Not(IsEmpty()));
    EXPECT_THAT(Texts(), ElementsAre(SystemText(ERROR_ACCESS_DENIED)));
}

TEST_F(LumDebugLinesTest, PrintLastErrorOfZero_MeansTheLastError) {
    Open(1);
    SetLastError(ERROR_FILE_NOT_FOUND);
    m_log.PrintLastError(0);
    EXPECT_THAT(Texts(), ElementsAre(SystemText(ERROR_FILE_NOT_FOUND)));
}

TEST_F(LumDebugLinesTest, PrintLastErrorOfACodeWithoutText_WritesNothing) {
    Open(1);
    ASSERT_THAT(SystemText(0x2FFFFFFF), IsEmpty());
    m_log.PrintLastError(0x2FFFFFFF);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(LumDebugLinesTest, Copy_SharesTheFileUntilTheLastOneGoes) {
    Open(3);
    {
        CLumDebug copy(m_log);
        EXPECT_TRUE(copy.IsConfigured());
        EXPECT_EQ(copy.GetCurrentLogLevel(), 3u);
        copy.PrintText(L"from the copy");
    }
    m_log.PrintText(L"from the original");
    CLumDebug assigned;
    assigned = m_log;
    m_log = CLumDebug();
    EXPECT_FALSE(m_log.IsConfigured());
    m_log.PrintText(L"nowhere");
    assigned.PrintText(L"from the last");
    EXPECT_THAT(Texts(), ElementsAre(L"from the copy", L"from the original", L"from the last"));
}

TEST_F(LumDebugLinesTest, Copy_HasALevelOfItsOwn) {
    Open(3);
    CLumDebug copy(m_log);
    copy.Configure(L"Quillet", kLumDebugLinesFile, 0, false, 0);
    copy.PrintText(L"off");
    m_log.PrintText(L"on");
    EXPECT_THAT(Texts(), ElementsAre(L"on"));
}

TEST_F(LumDebugLinesTest, AssignmentToItself_ChangesNothing) {
    Open(3);
    CLumDebug& same = m_log;
    m_log = same;
    m_log.PrintText(L"still open");
    EXPECT_THAT(Texts(), ElementsAre(L"still open"));
}

TEST_F(LumDebugLinesTest, DerivedObject_IsDestroyedThroughItsBase) {
    struct Derived : CLumDebug {
        explicit Derived(bool& goneFlag) : gone(goneFlag) {}
        ~Derived() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    { const std::unique_ptr<CLumDebug> log = std::make_unique<Derived>(gone); }
    EXPECT_TRUE(gone);
}

} // namespace
