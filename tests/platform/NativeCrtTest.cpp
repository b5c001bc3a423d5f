// What our own run-time functions decide: the handler, hostile formats, UTF-8, files by wide names.
#include "TemporaryDirectory.h"

#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace {

using quillet::tests::ReadFile;
using quillet::tests::TemporaryDirectory;

int g_reports = 0;

void CountReports(const wchar_t* expression, const wchar_t* function, const wchar_t* file, unsigned int line,
                  std::uintptr_t reserved) {
    EXPECT_EQ(expression, nullptr);
    EXPECT_EQ(function, nullptr);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(line, 0u);
    EXPECT_EQ(reserved, 0u);
    ++g_reports;
}

class HandlerTest : public testing::Test {
  protected:
    void SetUp() override {
        g_reports = 0;
        m_before = _set_invalid_parameter_handler(CountReports);
    }
    void TearDown() override { _set_invalid_parameter_handler(m_before); }
    _invalid_parameter_handler m_before = nullptr;
};

TEST_F(HandlerTest, IsCalledOnceForEachMisuse) {
    EXPECT_EQ(_get_invalid_parameter_handler(), CountReports);
    wchar_t buffer[4] = L"abc";
    EXPECT_EQ(wcscpy_s(buffer, 4, L"too long"), ERANGE);
    EXPECT_EQ(g_reports, 1);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(wcscpy_s(nullptr, 4, L"x"), EINVAL);
    EXPECT_EQ(g_reports, 2);
    EXPECT_EQ(errno, EINVAL);
    wchar_t unterminated[3] = {L'a', L'b', L'c'};
    EXPECT_EQ(wcscat_s(unterminated, 3, L"d"), EINVAL);
    EXPECT_EQ(unterminated[0], L'\0');
    EXPECT_EQ(g_reports, 3);
    EXPECT_EQ(swprintf_s(buffer, 4, L"%s", L"long text"), -1);
    EXPECT_EQ(g_reports, 4);
    EXPECT_EQ(_snwprintf_s(buffer, 4, 9, L"%s", L"long text"), -1);
    EXPECT_STREQ(buffer, L"");
    EXPECT_EQ(g_reports, 5);
    EXPECT_EQ(swprintf_s(buffer, 4, nullptr), -1);
    EXPECT_EQ(_scwprintf(nullptr), -1);
    EXPECT_EQ(_snwprintf(nullptr, 4, L"x"), -1);
    EXPECT_EQ(g_reports, 8);
    FILE* file = stderr;
    EXPECT_EQ(_wfopen_s(&file, nullptr, L"r"), EINVAL);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(g_reports, 9);
}

TEST(HandlerDeathTest, WithoutOneTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ASSERT_EQ(_get_invalid_parameter_handler(), nullptr);
    wchar_t buffer[4];
    EXPECT_DEATH(wcscpy_s(buffer, 4, L"too long"), "invalid parameter");
}

// --- Formatting ----------------------------------------------------------------------------------------

template <class... Arguments>
std::wstring Formatted(const wchar_t* format, Arguments... arguments) {
    wchar_t buffer[256];
    const int length = _snwprintf(buffer, 256, format, arguments...);
    return length < 0 ? L"(failed)" : std::wstring(buffer, static_cast<std::size_t>(length));
}

TEST(NativeFormattingTest, HostileWidthsCostNothing) {
    wchar_t buffer[8];
    EXPECT_EQ(_snwprintf_s(buffer, 8, _TRUNCATE, L"%999999999d", 1), -1);
    EXPECT_STREQ(buffer, L"       ");
    EXPECT_EQ(_scwprintf(L"%200000000s", L"x"), 200000000);
    EXPECT_GT(_scwprintf(L"%99999999999999999999d", 1), 0);
    EXPECT_EQ(
        _scwprintf(L"%999999999.999999999d%999999999d%999999999d%999999999d%999999999d%999999999d%999999999d"
                   L"%999999999d%999999999d",
                   1, 1, 1, 1, 1, 1, 1, 1, 1),
        -1)
        << "a length that no int can tell";
    EXPECT_EQ(_snwprintf_s(buffer, 8, _TRUNCATE, L"%*d", INT_MIN, 1), -1);
    EXPECT_STREQ(buffer, L"1      ");
    EXPECT_GT(_scwprintf(L"%.999999999f %999999999.9f %0999999999f", 1.0, 1e308, -1e308), 0);
}

TEST(NativeFormattingTest, SmallIntegersAreCut) {
    EXPECT_EQ(Formatted(L"%hhd %hhu", 300, 300), L"44 44");
    EXPECT_EQ(Formatted(L"%zd %jd %td", 7ll, -8ll, 9ll), L"7 -8 9");
}

TEST(NativeFormattingTest, PercentTakesItsFlagsWithIt) {
    EXPECT_EQ(Formatted(L"a%5%b"), L"a%b");
    EXPECT_EQ(Formatted(L"a%-%b"), L"a%b");
}

TEST(NativeFormattingTest, NothingIsEverWrittenThroughAnArgument) {
    int target = 12345;
    EXPECT_EQ(Formatted(L"abc%n|%d", &target, 6), L"abc|6");
    EXPECT_EQ(target, 12345);
}

TEST(NativeFormattingTest, NarrowTextIsUtf8) {
    EXPECT_EQ(Formatted(L"%S", "Gr\xc3\xb6\xc3\x9f"
                               "e"),
              L"Gr\u00f6\u00dfe");
    EXPECT_EQ(Formatted(L"%S", "\xff"), L"\ufffd");
    EXPECT_EQ(Formatted(L"%6S|", "\xe2\x82\xac"), L"     \u20ac|") << "the width counts characters";
}

TEST(NativeFormattingTest, PrecisionSparesTheTerminator) {
    const wchar_t wide[2] = {L'a', L'b'};
    const char narrow[2] = {'c', 'd'};
    EXPECT_EQ(Formatted(L"%.2s%.2S", wide, narrow), L"abcd");
}

TEST(NativeFormattingTest, NullBufferLearnsTheLength) {
    EXPECT_EQ(_snwprintf(nullptr, 0, L"%d", 1234), 4);
    EXPECT_EQ(_snwprintf_s(nullptr, 0, 0, L"%d", 1234), 0);
}

// --- Files ---------------------------------------------------------------------------------------------

TEST(WideFilesTest, HaveUtf8Names) {
    const TemporaryDirectory directory;
    const std::wstring name = directory.Text() + L"/Gr\u00f6\u00dfe \u20ac.txt";
    FILE* file = nullptr;
    ASSERT_EQ(_wfopen_s(&file, name.c_str(), L"wt, ccs=UTF-8"), 0);
    std::fputs("content", file);
    EXPECT_EQ(std::fclose(file), 0);
    EXPECT_EQ(ReadFile(directory.File(L"Gr\u00f6\u00dfe \u20ac.txt")), "content");
    file = _wfopen(name.c_str(), L"rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fclose(file), 0);
    EXPECT_EQ(_wremove(name.c_str()), 0);
    EXPECT_EQ(_wfopen(name.c_str(), L"r"), nullptr);
    EXPECT_EQ(_wfopen_s(&file, name.c_str(), L"r"), ENOENT);
    EXPECT_EQ(file, nullptr);
    EXPECT_NE(_wremove(name.c_str()), 0);
}

} // namespace
