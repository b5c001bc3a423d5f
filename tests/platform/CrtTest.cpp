// The run-time functions of Windows: bounds-checked copies with their handler, wide formatting, numbers in
// text.
#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

int g_reports = 0;

void CountReports(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {
    ++g_reports;
}

/// Installs a handler that only counts, so that misuse is survived.
class BoundsCheckedTest : public testing::Test {
  protected:
    void SetUp() override {
        g_reports = 0;
        m_before = _set_invalid_parameter_handler(CountReports);
        wcscpy_s(nullptr, 1, L"");
        m_heard = g_reports != 0;
        g_reports = 0;
    }
    void TearDown() override { _set_invalid_parameter_handler(m_before); }

    /// The handler was called that often since it was last asked. Some import libraries keep the handler to
    /// themselves, so that the run-time never hears of it: then it must not be called at all.
    void ExpectReports(int expected) const {
        EXPECT_EQ(g_reports, m_heard ? expected : 0);
        g_reports = 0;
    }

  private:
    _invalid_parameter_handler m_before = nullptr;
    bool m_heard = false;
};

TEST_F(BoundsCheckedTest, CopyTakesWhatFits) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(wcscpy_s(buffer, 6, L"12345"), 0);
    EXPECT_STREQ(buffer, L"12345");
    EXPECT_EQ(wcscpy_s(buffer, L""), 0);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(0);
}

TEST_F(BoundsCheckedTest, CopyThatDoesNotFitEmptiesTheTargetAndReports) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(wcscpy_s(buffer, 6, L"123456"), ERANGE);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, CopyRefusesNulls) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(wcscpy_s(nullptr, 6, L"1"), EINVAL);
    EXPECT_EQ(wcscpy_s(buffer, 0, L"1"), EINVAL);
    EXPECT_STREQ(buffer, L"xxxxx") << "a target of no size is not touched";
    EXPECT_EQ(wcscpy_s(buffer, 6, nullptr), EINVAL);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(3);
}

TEST_F(BoundsCheckedTest, AppendTakesWhatFits) {
    wchar_t buffer[8] = L"abc";
    EXPECT_EQ(wcscat_s(buffer, 8, L"defg"), 0);
    EXPECT_STREQ(buffer, L"abcdefg");
    ExpectReports(0);
    EXPECT_EQ(wcscat_s(buffer, 8, L"h"), ERANGE);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, AppendRefusesAnUnterminatedTarget) {
    wchar_t buffer[3] = {L'a', L'b', L'c'};
    EXPECT_NE(wcscat_s(buffer, 3, L"d"), 0);
    EXPECT_EQ(buffer[0], L'\0');
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, CountedCopyStopsAtTheCount) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"1234567", 3), 0);
    EXPECT_STREQ(buffer, L"123");
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"12", 5), 0);
    EXPECT_STREQ(buffer, L"12");
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"1234567", 0), 0);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(0);
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"1234567", 6), ERANGE);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, TruncatingCopyCutsWithoutReport) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"1234567", _TRUNCATE), STRUNCATE);
    EXPECT_STREQ(buffer, L"12345");
    EXPECT_EQ(wcsncpy_s(buffer, 6, L"12345", _TRUNCATE), 0);
    EXPECT_STREQ(buffer, L"12345");
    ExpectReports(0);
}

TEST_F(BoundsCheckedTest, CountedAppend) {
    wchar_t buffer[6] = L"ab";
    EXPECT_EQ(wcsncat_s(buffer, 6, L"cdef", 2), 0);
    EXPECT_STREQ(buffer, L"abcd");
    EXPECT_EQ(wcsncat_s(buffer, 6, L"efgh", _TRUNCATE), STRUNCATE);
    EXPECT_STREQ(buffer, L"abcde");
    ExpectReports(0);
    EXPECT_EQ(wcsncat_s(buffer, 6, L"f", 1), ERANGE);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, MemoryCopyClearsATargetThatIsTooSmall) {
    unsigned char target[4] = {1, 2, 3, 4};
    const unsigned char source[6] = {9, 8, 7, 6, 5, 4};
    EXPECT_EQ(memcpy_s(target, 4, source, 4), 0);
    EXPECT_EQ(std::memcmp(target, source, 4), 0);
    ExpectReports(0);
    EXPECT_EQ(memcpy_s(target, 4, source, 5), ERANGE);
    for (const unsigned char byte : target) {
        EXPECT_EQ(byte, 0);
    }
    ExpectReports(1);
    target[0] = 1;
    EXPECT_EQ(memcpy_s(target, 4, nullptr, 1), EINVAL);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(memcpy_s(nullptr, 4, source, 1), EINVAL);
    EXPECT_EQ(memcpy_s(nullptr, 0, nullptr, 0), 0) << "nothing to copy needs no place";
}

TEST_F(BoundsCheckedTest, MemoryMoveTakesOverlaps) {
    char text[8] = "abcdefg";
    EXPECT_EQ(memmove_s(text + 2, 6, text, 5), 0);
    EXPECT_STREQ(text, "ababcde");
    EXPECT_EQ(memmove_s(text, 3, text + 1, 4), ERANGE);
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, FormattingThatDoesNotFitEmptiesTheTargetAndReports) {
    wchar_t buffer[6] = L"xxxxx";
    EXPECT_EQ(swprintf_s(buffer, 6, L"%d", 12345), 5);
    EXPECT_STREQ(buffer, L"12345");
    ExpectReports(0);
    EXPECT_EQ(swprintf_s(buffer, 6, L"%d", 123456), -1);
    EXPECT_STREQ(buffer, L"");
    ExpectReports(1);
}

TEST_F(BoundsCheckedTest, CountedFormattingCutsAtTheCount) {
    wchar_t buffer[8] = L"xxxxxxx";
    EXPECT_EQ(_snwprintf_s(buffer, 8, 3, L"%s", L"abcdef"), -1);
    EXPECT_STREQ(buffer, L"abc");
    EXPECT_EQ(_snwprintf_s(buffer, 8, _TRUNCATE, L"%s", L"abcdefghij"), -1);
    EXPECT_STREQ(buffer, L"abcdefg");
    EXPECT_EQ(_snwprintf_s(buffer, 8, _TRUNCATE, L"%s", L"abc"), 3);
    EXPECT_STREQ(buffer, L"abc");
    ExpectReports(0);
}

TEST_F(BoundsCheckedTest, UncheckedFormattingLeavesNoTerminatorWhenFull) {
    wchar_t buffer[4] = {L'x', L'x', L'x', L'x'};
    EXPECT_EQ(_snwprintf(buffer, 3, L"%s", L"abc"), 3);
    EXPECT_EQ(std::wstring(buffer, 4), L"abcx");
    EXPECT_EQ(_snwprintf(buffer, 3, L"%s", L"abcd"), -1);
    EXPECT_EQ(std::wstring(buffer, 4), L"abcx");
    EXPECT_EQ(_snwprintf(buffer, 4, L"%s", L"ab"), 2);
    EXPECT_STREQ(buffer, L"ab");
}

TEST_F(BoundsCheckedTest, NumbersIntoTextCheckTheirBuffer) {
    wchar_t buffer[5] = L"xxxx";
    EXPECT_EQ(_itow_s(-123, buffer, 5, 10), 0);
    EXPECT_STREQ(buffer, L"-123");
    EXPECT_EQ(_itow_s(255, buffer, 5, 16), 0);
    EXPECT_STREQ(buffer, L"ff");
    ExpectReports(0);
    EXPECT_EQ(_itow_s(12345, buffer, 5, 10), ERANGE);
    EXPECT_EQ(buffer[0], L'\0');
    ExpectReports(1);
    EXPECT_EQ(_itow_s(1, buffer, 5, 37), EINVAL);
    ExpectReports(1);
    wchar_t wide[32];
    EXPECT_EQ(_i64tow_s(LLONG_MIN, wide, 32, 10), 0);
    EXPECT_STREQ(wide, L"-9223372036854775808");
    EXPECT_EQ(_ui64tow_s(ULLONG_MAX, wide, 32, 10), 0);
    EXPECT_STREQ(wide, L"18446744073709551615");
    EXPECT_EQ(_ultow_s(0xffffffffu, wide, 32, 10), 0);
    EXPECT_STREQ(wide, L"4294967295");
    EXPECT_EQ(_ltow_s(-1, wide, 32, 16), 0);
    EXPECT_STREQ(wide, L"ffffffff");
}

TEST_F(BoundsCheckedTest, PathsAreSplit) {
    wchar_t drive[_MAX_DRIVE];
    wchar_t directory[_MAX_DIR];
    wchar_t name[_MAX_FNAME];
    wchar_t extension[_MAX_EXT];
    const auto split = [&](const wchar_t* path) {
        EXPECT_EQ(_wsplitpath_s(path, drive, _MAX_DRIVE, directory, _MAX_DIR, name, _MAX_FNAME, extension,
                                _MAX_EXT),
                  0);
        return std::tuple<std::wstring, std::wstring, std::wstring, std::wstring>(drive, directory, name,
                                                                                  extension);
    };
    EXPECT_EQ(split(L"C:\\Program Files\\a.b\\LUM2Prov.exe"),
              std::make_tuple(L"C:", L"\\Program Files\\a.b\\", L"LUM2Prov", L".exe"));
    EXPECT_EQ(split(L"/usr/bin/program"), std::make_tuple(L"", L"/usr/bin/", L"program", L""));
    EXPECT_EQ(split(L"name.tar.gz"), std::make_tuple(L"", L"", L"name.tar", L".gz"));
    EXPECT_EQ(split(L""), std::make_tuple(L"", L"", L"", L""));
    EXPECT_EQ(_wsplitpath_s(L"/usr/name.txt", nullptr, 0, nullptr, 0, name, _MAX_FNAME, nullptr, 0), 0);
    EXPECT_STREQ(name, L"name");
    ExpectReports(0);
    EXPECT_EQ(_wsplitpath_s(L"/usr/name.txt", nullptr, 0, nullptr, 0, name, 4, nullptr, 0), ERANGE);
    EXPECT_STREQ(name, L"");
}

// --- Formatting ----------------------------------------------------------------------------------------

template <class... Arguments>
std::wstring Formatted(const wchar_t* format, Arguments... arguments) {
    wchar_t buffer[256];
    const int length = _snwprintf(buffer, 256, format, arguments...);
    return length < 0 ? L"(failed)" : std::wstring(buffer, static_cast<std::size_t>(length));
}

TEST(FormattingTest, TextIsWideAndNarrowAsOnWindows) {
    EXPECT_EQ(Formatted(L"%s", L"wide"), L"wide");
    EXPECT_EQ(Formatted(L"%S", "narrow"), L"narrow");
    EXPECT_EQ(Formatted(L"%ls|%hs|%hS|%lS|%ws", L"w", "n", "n", L"w", L"w"), L"w|n|n|w|w");
    EXPECT_EQ(Formatted(L"%10s|%-10s|", L"right", L"left"), L"     right|left      |");
    EXPECT_EQ(Formatted(L"%.3s|%.3S|%.0s|", L"abcdef", "abcdef", L"x"), L"abc|abc||");
    EXPECT_EQ(Formatted(L"%8.3s|%-8.3s|", L"abcdef", L"abcdef"), L"     abc|abc     |");
    EXPECT_EQ(Formatted(L"%*s|%.*s|%-*s|", 4, L"a", 1, L"bc", 3, L"d"), L"   a|b|d  |");
    EXPECT_EQ(Formatted(L"%s", L""), L"");
    EXPECT_EQ(Formatted(L"%05s|%05S|", L"ab", "cd"), L"000ab|000cd|");
}

TEST(FormattingTest, NullTextIsNamed) {
    EXPECT_EQ(Formatted(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)");
    EXPECT_EQ(Formatted(L"%S", static_cast<const char*>(nullptr)), L"(null)");
    EXPECT_EQ(Formatted(L"%.2s", static_cast<const wchar_t*>(nullptr)), L"(n");
}

TEST(FormattingTest, Characters) {
    EXPECT_EQ(Formatted(L"%c%C", L'x', 'y'), L"xy");
    EXPECT_EQ(Formatted(L"%hc%lc%hC%lC%wc", 'a', L'b', 'c', L'd', L'e'), L"abcde");
    EXPECT_EQ(Formatted(L"%c", 0x20ac), L"\x20ac");
    EXPECT_EQ(Formatted(L"%3c|%-3c|", L'a', L'b'), L"  a|b  |");
    EXPECT_EQ(Formatted(L"%c", 0), std::wstring(1, L'\0'));
}

TEST(FormattingTest, DecimalIntegers) {
    EXPECT_EQ(Formatted(L"%d %i %u", -5, 6, 7u), L"-5 6 7");
    EXPECT_EQ(Formatted(L"%ld %lu", LONG{-1}, ULONG{0xffffffff}), L"-1 4294967295");
    EXPECT_EQ(Formatted(L"%ld %ld", LONG{-2147483647 - 1}, LONG{3}), L"-2147483648 3");
    EXPECT_EQ(Formatted(L"%hd %hu", 70000, 70000), L"4464 4464");
    EXPECT_EQ(Formatted(L"%5d|%-5d|%05d|%+d|% d", 42, 42, -42, 42, 42), L"   42|42   |-0042|+42| 42");
    EXPECT_EQ(Formatted(L"%-05d|%-+5d|%+-5d|", 5, 3, 3), L"5    |+3   |+3   |");
    EXPECT_EQ(Formatted(L"%*d|%*d|", 4, 5, -4, 5), L"   5|5   |");
}

TEST(FormattingTest, PrecisionOfIntegers) {
    EXPECT_EQ(Formatted(L"%02.2d:%02.2d:%03.3d", 5, 12, 7), L"05:12:007");
    EXPECT_EQ(Formatted(L"%02.2d %03.3d", 123, 1234), L"123 1234");
    EXPECT_EQ(Formatted(L"%03.3d", -5), L"-005");
    EXPECT_EQ(Formatted(L"%6.3d|%-6.3d|", 5, 5), L"   005|005   |");
    EXPECT_EQ(Formatted(L"%.0d|%.d|%5.0d|", 0, 0, 0), L"||     |");
    EXPECT_EQ(Formatted(L"%.*d|%.*d|", 3, 5, -1, 5), L"005|5|");
}

TEST(FormattingTest, HexadecimalAndOctal) {
    EXPECT_EQ(Formatted(L"%x %X %o", 255, 255, 8), L"ff FF 10");
    EXPECT_EQ(Formatted(L"%08x|%08lX|%lx", 0xabcu, ULONG{0x80041001}, LONG{-1}),
              L"00000abc|80041001|ffffffff");
    EXPECT_EQ(Formatted(L"%#x %#X %#x %#o", 255, 255, 0, 8), L"0xff 0XFF 0 010");
    EXPECT_EQ(Formatted(L"0x%.8X", 0x1f), L"0x0000001F");
}

TEST(FormattingTest, SixtyFourBits) {
    EXPECT_EQ(Formatted(L"%I64X", 0xABCDEF0123456789ull), L"ABCDEF0123456789");
    EXPECT_EQ(Formatted(L"%I64d %I64u", LLONG_MIN, ULLONG_MAX), L"-9223372036854775808 18446744073709551615");
    EXPECT_EQ(Formatted(L"%lld %llu %llx", -1ll, 5ull, 1ull << 40), L"-1 5 10000000000");
    EXPECT_EQ(Formatted(L"%016I64X|%.16I64x", 0x1full, 0x1full), L"000000000000001F|000000000000001f");
    EXPECT_EQ(Formatted(L"%I32d %d", -7, 8), L"-7 8");
    EXPECT_EQ(Formatted(L"%Id %Iu", static_cast<INT_PTR>(-9), static_cast<UINT_PTR>(9)), L"-9 9");
    EXPECT_EQ(Formatted(L"%I64d %d %s", 1ll, 2, L"three"), L"1 2 three")
        << "what follows is read in its place";
}

TEST(FormattingTest, PointersHaveAllTheirDigits) {
    EXPECT_EQ(Formatted(L"%p", reinterpret_cast<void*>(0x1234abcd)), L"000000001234ABCD");
    EXPECT_EQ(Formatted(L"%p", static_cast<void*>(nullptr)), L"0000000000000000");
    EXPECT_EQ(Formatted(L"%20p|%-20p|", reinterpret_cast<void*>(0x12), reinterpret_cast<void*>(0x34)),
              L"    0000000000000012|0000000000000034    |");
}

TEST(FormattingTest, Reals) {
    EXPECT_EQ(Formatted(L"%f|%.2f|%5.1f|%-8.1f|%+.1f|%05.1f", 1.5, 2.25, 3.5, 2.5, 2.0, 2.5),
              L"1.500000|2.25|  3.5|2.5     |+2.0|002.5");
    EXPECT_EQ(Formatted(L"%g %g", 0.0001, 100000.0), L"0.0001 100000");
    EXPECT_EQ(Formatted(L"%.0f %#.0f", 2.0, 2.0), L"2 2.");
    EXPECT_EQ(Formatted(L"%.1f%% of %d", 12.5, 3), L"12.5% of 3");
}

TEST(FormattingTest, PercentAndTextAround) {
    EXPECT_EQ(Formatted(L"100%%"), L"100%");
    EXPECT_EQ(Formatted(L"%%d"), L"%d");
    EXPECT_EQ(Formatted(L""), L"");
    EXPECT_EQ(Formatted(L"no conversion"), L"no conversion");
}

TEST(FormattingTest, UnfinishedConversionPrintsNothing) {
    for (const wchar_t* format :
         {L"a%", L"a%l", L"a%ll", L"a%I64", L"a%5", L"a%-", L"a%.", L"a%.3", L"a%h", L"a%w"}) {
        EXPECT_EQ(Formatted(format, 1), L"a") << std::wstring(format);
    }
    EXPECT_EQ(Formatted(L"a%*", 3), L"a");
}

TEST(FormattingTest, UnknownConversionPrintsItsOwnCharacter) {
    EXPECT_EQ(Formatted(L"a%qb", 1), L"aqb");
    EXPECT_EQ(Formatted(L"a%yb", 1), L"ayb");
    EXPECT_EQ(Formatted(L"a%5yb", 1), L"ayb");
    EXPECT_EQ(Formatted(L"a%lyb", 1), L"ayb");
    EXPECT_EQ(Formatted(L"a% b", 1), L"ab");
    EXPECT_EQ(Formatted(L"a%!b", 1), L"a!b");
    EXPECT_EQ(Formatted(L"a%I6d", 1), L"aI6d");
    EXPECT_EQ(Formatted(L"a%I", 1), L"aI");
    EXPECT_EQ(Formatted(L"a%k%d", 7), L"ak7") << "it takes no argument";
}

TEST(FormattingTest, LengthIsToldWithoutABuffer) {
    EXPECT_EQ(_scwprintf(L"%s-%05d", L"abc", 42), 9);
    EXPECT_EQ(_scwprintf(L""), 0);
}

// --- Comparison and conversion -------------------------------------------------------------------------

TEST(WideTextTest, ComparesWithoutRegardToCase) {
    EXPECT_EQ(_wcsicmp(L"Zorel_NetService", L"ZOREL_netservice"), 0);
    EXPECT_LT(_wcsicmp(L"abc", L"ABD"), 0);
    EXPECT_GT(_wcsicmp(L"abcd", L"ABC"), 0);
    EXPECT_EQ(_wcsicmp(L"", L""), 0);
    EXPECT_EQ(_wcsnicmp(L"prefix-one", L"PREFIX-two", 7), 0);
    EXPECT_NE(_wcsnicmp(L"prefix-one", L"PREFIX-two", 8), 0);
    EXPECT_EQ(_stricmp("Services", "SERVICES"), 0);
    EXPECT_LT(_stricmp("a", "B"), 0);
}

TEST(WideTextTest, NumbersEndAtTheFirstOtherCharacter) {
    EXPECT_EQ(_wtoi(L"42"), 42);
    EXPECT_EQ(_wtoi(L"  -42abc"), -42);
    EXPECT_EQ(_wtoi(L"+7"), 7);
    EXPECT_EQ(_wtoi(L""), 0);
    EXPECT_EQ(_wtoi(L"abc"), 0);
    EXPECT_EQ(_wtol(L"2147483647"), 2147483647);
    EXPECT_EQ(_wtoi64(L"-9223372036854775808"), LLONG_MIN);
    wchar_t* end = nullptr;
    EXPECT_EQ(_wcstoui64(L"ff g", &end, 16), 255u);
    EXPECT_STREQ(end, L" g");
    EXPECT_EQ(_wcstoui64(L"18446744073709551615", nullptr, 10), ULLONG_MAX);
    EXPECT_EQ(_wcstoi64(L"-12", &end, 10), -12);
    EXPECT_EQ(*end, L'\0');
}

TEST(WideTextTest, DuplicateIsFreedByTheCaller) {
    wchar_t* const copy = _wcsdup(L"copy");
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, L"copy");
    std::free(copy);
}

} // namespace
