// The export text that fills the registry: every kind of value, and what becomes of a file that is malformed.
#include <quillet-platform/TestHooks.h>

#include "TemporaryDirectory.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using quillet::platform::ResetRegistry;
using quillet::tests::TemporaryDirectory;

constexpr char kHeader[] = "Windows Registry Editor Version 5.00\r\n\r\n";

struct Value {
    LSTATUS status = ERROR_SUCCESS;
    DWORD type = REG_NONE;
    std::vector<BYTE> data;

    std::wstring Text() const {
        std::wstring text(data.size() / sizeof(wchar_t), L'\0');
        if (!text.empty()) {
            std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
        }
        return text;
    }
    DWORD Number() const {
        DWORD number = 0;
        EXPECT_EQ(data.size(), sizeof number);
        if (data.size() == sizeof number) {
            std::memcpy(&number, data.data(), sizeof number);
        }
        return number;
    }
};

Value Read(HKEY root, const wchar_t* path, const wchar_t* name) {
    Value value;
    HKEY key = nullptr;
    value.status = RegOpenKeyExW(root, path, 0, KEY_READ, &key);
    if (value.status != ERROR_SUCCESS) {
        return value;
    }
    DWORD size = 0;
    value.status = RegQueryValueExW(key, name, nullptr, &value.type, nullptr, &size);
    if (value.status == ERROR_SUCCESS) {
        value.data.resize(size + 1);
        value.status = RegQueryValueExW(key, name, nullptr, &value.type, value.data.data(), &size);
        value.data.resize(size);
    }
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    return value;
}

bool KeyExists(HKEY root, const wchar_t* path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    return true;
}

class RegFileTest : public testing::Test {
  protected:
    void TearDown() override { ResetRegistry(); }

    std::string Path() const { return m_directory.File(L"test.reg").string(); }

    /// Fills the registry from the bytes and returns what was reported on standard error.
    std::string LoadBytes(const std::string& bytes) {
        std::ofstream(Path(), std::ios::binary) << bytes;
        testing::internal::CaptureStderr();
        ResetRegistry(Path());
        return testing::internal::GetCapturedStderr();
    }
    std::string Load(const std::string& body) { return LoadBytes(kHeader + body); }

    static Value Local(const wchar_t* name) { return Read(HKEY_LOCAL_MACHINE, L"SOFTWARE\\T", name); }

    TemporaryDirectory m_directory;
};

TEST_F(RegFileTest, EveryKindOfValueIsRead) {
    EXPECT_EQ(Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n"
                   "@=\"default\"\r\n"
                   "\"text\"=\"plain\"\r\n"
                   "\"empty\"=\"\"\r\n"
                   "\"number\"=dword:0000002a\r\n"
                   "\"short number\"=dword:F\r\n"
                   "\"binary\"=hex:01,02,ff\r\n"
                   "\"no bytes\"=hex:\r\n"
                   "\"expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                   "\"multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                   "\"wide\"=hex(1):ac,20,3d,d8,0c,dd,00,00\r\n"
                   "\"quad\"=hex(b):08,07,06,05,04,03,02,01\r\n"
                   "\"none\"=hex(0):aa\r\n"
                   "\"strange\"=hex(1234):bb\r\n"),
              "");
    EXPECT_EQ(Local(L"").Text(), std::wstring(L"default\0", 8));
    EXPECT_EQ(Local(L"text").type, DWORD{REG_SZ});
    EXPECT_EQ(Local(L"text").Text(), std::wstring(L"plain\0", 6));
    EXPECT_EQ(Local(L"empty").Text(), std::wstring(L"\0", 1));
    EXPECT_EQ(Local(L"number").type, DWORD{REG_DWORD});
    EXPECT_EQ(Local(L"number").Number(), 42u);
    EXPECT_EQ(Local(L"short number").Number(), 15u);
    EXPECT_EQ(Local(L"binary").type, DWORD{REG_BINARY});
    EXPECT_EQ(Local(L"binary").data, (std::vector<BYTE>{1, 2, 255}));
    EXPECT_TRUE(Local(L"no bytes").data.empty());
    EXPECT_EQ(Local(L"expand").type, DWORD{REG_EXPAND_SZ});
    EXPECT_EQ(Local(L"expand").Text(), std::wstring(L"%A%\0", 4));
    EXPECT_EQ(Local(L"multi").type, DWORD{REG_MULTI_SZ});
    EXPECT_EQ(Local(L"multi").Text(), std::wstring(L"a\0b\0\0", 5));
    EXPECT_EQ(Local(L"wide").Text(), std::wstring(L"\u20ac\U0001f50c\0", 3));
    EXPECT_EQ(Local(L"quad").type, DWORD{REG_QWORD});
    EXPECT_EQ(Local(L"quad").data, (std::vector<BYTE>{8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(Local(L"none").type, DWORD{REG_NONE});
    EXPECT_EQ(Local(L"strange").type, 0x1234u);
}

TEST_F(RegFileTest, QuotedTextsHaveEscapes) {
    EXPECT_EQ(Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n"
                   "\"a\\\"b\\\\c\"=\"C:\\\\Dir\\\\ \\\"quoted\\\"\"\n"
                   "\"x=hex\"=\"ends with a backslash \\\\\"\n"
                   "\"y=hex:\"=\"z\" ; a comment that ends in a backslash \\\n"
                   "\"next\"=\"still a line of its own\"\n"),
              "");
    EXPECT_EQ(Local(L"a\"b\\c").Text(), std::wstring(L"C:\\Dir\\ \"quoted\"\0", 17));
    EXPECT_EQ(Local(L"x=hex").Text(), std::wstring(L"ends with a backslash \\\0", 24));
    EXPECT_EQ(Local(L"next").status, ERROR_SUCCESS);
}

TEST_F(RegFileTest, BytesGoOnBehindABackslash) {
    EXPECT_EQ(Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n"
                   "\"long\"=hex:01,02,\\\r\n"
                   "  03,04,\\  \r\n"
                   "  05\r\n"
                   "@ = hex(3): 06,\\\n"
                   "\t07\n"
                   "\"behind\"=dword:1\r\n"),
              "");
    EXPECT_EQ(Local(L"long").data, (std::vector<BYTE>{1, 2, 3, 4, 5}));
    EXPECT_EQ(Local(L"").data, (std::vector<BYTE>{6, 7}));
    EXPECT_EQ(Local(L"behind").Number(), 1u);
}

TEST_F(RegFileTest, KeysAndValuesAreDeletedInTheOrderOfTheFile) {
    EXPECT_EQ(Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n"
                   "\"a\"=dword:1\n"
                   "\"b\"=dword:2\n"
                   "\"A\"=-\n"
                   "@=-\n"
                   "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone\\Below]\n"
                   "\"x\"=dword:1\n"
                   "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone]\n"
                   "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Never]\n"
                   "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Again]\n"
                   "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Again]\n"
                   "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Again]\n"),
              "");
    EXPECT_EQ(Local(L"a").status, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Local(L"b").Number(), 2u);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Gone"));
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Again"));
}

TEST_F(RegFileTest, EveryRootIsKnownInAnyCase) {
    EXPECT_EQ(
        Load("[HKEY_LOCAL_MACHINE\\A]\n[hkey_current_user\\B]\n[HKEY_CLASSES_ROOT\\C]\n[HKEY_USERS\\D]\n"
             "[HKEY_CURRENT_CONFIG\\E]\n[HKEY_CURRENT_USER]\n\"v\"=dword:5\n"),
        "");
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, L"A"));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, L"B"));
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, L"C"));
    EXPECT_TRUE(KeyExists(HKEY_USERS, L"D"));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_CONFIG, L"E"));
    EXPECT_EQ(Read(HKEY_CURRENT_USER, L"", L"v").Number(), 5u);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"B"));
}

TEST_F(RegFileTest, CommentsAndBlankLinesAreSkipped) {
    EXPECT_EQ(Load("; first\n\n  \t \n  [HKEY_LOCAL_MACHINE\\SOFTWARE\\T]   ; behind a key\n"
                   "  \"a\" = dword:7 ; behind a value\n;\"b\"=dword:8\n\"c\"=\"text\" ; \"quoted\"\n"),
              "");
    EXPECT_EQ(Local(L"a").Number(), 7u);
    EXPECT_EQ(Local(L"b").status, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Local(L"c").Text(), std::wstring(L"text\0", 5));
}

TEST_F(RegFileTest, TheLastLineNeedsNoEnd) {
    EXPECT_EQ(Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n\"a\"=dword:7"), "");
    EXPECT_EQ(Local(L"a").Number(), 7u);
}

std::string Utf16(const std::u16string& text) {
    std::string bytes = "\xff\xfe";
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xff);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

TEST_F(RegFileTest, Utf16WithAMarkIsRead) {
    EXPECT_EQ(
        LoadBytes(Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n"
                        u"\"Gr\u00f6\u00dfe\"=\"\u20ac \U0001f50c\"\r\n")),
        "");
    EXPECT_EQ(Local(L"GR\u00d6\u00dfE").Text(), std::wstring(L"\u20ac \U0001f50c\0", 4));
}

TEST_F(RegFileTest, Utf8IsReadWithAndWithoutAMark) {
    const std::string body = std::string(kHeader) + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n"
                                                    "\"Gr\xc3\xb6\xc3\x9f"
                                                    "e\"=\"\xe2\x82\xac \xf0\x9f\x94\x8c\"\r\n";
    for (const std::string mark : {"", "\xef\xbb\xbf"}) {
        EXPECT_EQ(LoadBytes(mark + body), "");
        EXPECT_EQ(Local(L"gr\u00f6\u00dfe").Text(), std::wstring(L"\u20ac \U0001f50c\0", 4));
    }
}

// --- Malformed files -----------------------------------------------------------------------------------

struct BadFile {
    const char* name;
    std::string bytes;
    int line;
};

void PrintTo(const BadFile& file, std::ostream* stream) {
    *stream << file.name;
}

class MalformedRegFileTest : public RegFileTest, public testing::WithParamInterface<BadFile> {};

TEST_P(MalformedRegFileTest, IsReportedWithItsLineAndNothingOfItIsTaken) {
    Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Before]\n");
    const std::string report = LoadBytes(GetParam().bytes);
    const std::string start = Path() + ":" + std::to_string(GetParam().line) + ": ";
    EXPECT_EQ(report.substr(0, start.size()), start) << report;
    EXPECT_EQ(report.find('\n'), report.size() - 1) << "one line: " << report;
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE")) << "the registry is empty";
}

/// A well-formed beginning of four lines, and what is wrong on the fifth.
std::string Fifth(const std::string& rest) {
    return std::string(kHeader) + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n\"good\"=dword:1\r\n" + rest;
}

INSTANTIATE_TEST_SUITE_P(
    Table, MalformedRegFileTest,
    testing::Values(
        BadFile{"Empty", "", 1},
        BadFile{"OtherHeader", "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n", 1},
        BadFile{"BlankBeforeHeader", "\r\n" + Fifth(""), 1},
        BadFile{"HeaderCase", "windows registry editor version 5.00\r\n", 1},
        BadFile{"KeyNotClosed", Fifth("[HKEY_LOCAL_MACHINE\\SOFTWARE\r\n"), 5},
        BadFile{"TextBehindKey", Fifth("[HKEY_LOCAL_MACHINE\\SOFTWARE] x\r\n"), 5},
        BadFile{"UnknownRoot", Fifth("[HKLM\\SOFTWARE]\r\n"), 5}, BadFile{"NoRoot", Fifth("[]\r\n"), 5},
        BadFile{"EmptyKeyName", Fifth("[HKEY_LOCAL_MACHINE\\\\SOFTWARE]\r\n"), 5},
        BadFile{"KeyEndsInBackslash", Fifth("[HKEY_LOCAL_MACHINE\\SOFTWARE\\]\r\n"), 5},
        BadFile{"RootAloneWithBackslash", Fifth("[HKEY_LOCAL_MACHINE\\]\r\n"), 5},
        BadFile{"DeletesARoot", Fifth("[-HKEY_LOCAL_MACHINE]\r\n"), 5},
        BadFile{"ValueUnderDeletedKey", Fifth("[-HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n\"a\"=dword:1\r\n"), 6},
        BadFile{"ValueBeforeKey", std::string(kHeader) + "\"a\"=dword:1\r\n", 3},
        BadFile{"NoQuotes", Fifth("a=dword:1\r\n"), 5}, BadFile{"NameNotClosed", Fifth("\"a=dword:1\r\n"), 5},
        BadFile{"NoEquals", Fifth("\"a\" dword:1\r\n"), 5}, BadFile{"NoValue", Fifth("\"a\"=\r\n"), 5},
        BadFile{"OnlyName", Fifth("\"a\"\r\n"), 5}, BadFile{"TextNotClosed", Fifth("\"a\"=\"text\r\n"), 5},
        BadFile{"BadEscape", Fifth("\"a\"=\"C:\\n\"\r\n"), 5},
        BadFile{"EscapeAtEnd", Fifth("\"a\"=\"C:\\"), 5},
        BadFile{"TextBehindText", Fifth("\"a\"=\"text\" x\r\n"), 5},
        BadFile{"UnknownKind", Fifth("\"a\"=word:1\r\n"), 5},
        BadFile{"KindCase", Fifth("\"a\"=DWORD:1\r\n"), 5},
        BadFile{"NumberWithoutDigits", Fifth("\"a\"=dword:\r\n"), 5},
        BadFile{"NumberOfNineDigits", Fifth("\"a\"=dword:123456789\r\n"), 5},
        BadFile{"NumberWithLetters", Fifth("\"a\"=dword:12xy\r\n"), 5},
        BadFile{"NegativeNumber", Fifth("\"a\"=dword:-1\r\n"), 5},
        BadFile{"TextBehindDeletion", Fifth("\"a\"=-x\r\n"), 5},
        BadFile{"BytesWithoutComma", Fifth("\"a\"=hex:01 02\r\n"), 5},
        BadFile{"BytesOfThreeDigits", Fifth("\"a\"=hex:012\r\n"), 5},
        BadFile{"BytesWithLetters", Fifth("\"a\"=hex:0g\r\n"), 5},
        BadFile{"BytesWithTwoCommas", Fifth("\"a\"=hex:01,,02\r\n"), 5},
        BadFile{"TypeNotClosed", Fifth("\"a\"=hex(2:01\r\n"), 5},
        BadFile{"TypeEmpty", Fifth("\"a\"=hex():01\r\n"), 5},
        BadFile{"TypeTooGreat", Fifth("\"a\"=hex(123456789):01\r\n"), 5},
        BadFile{"TextOfOddBytes", Fifth("\"a\"=hex(2):41,00,00\r\n"), 5},
        BadFile{"ContinuationAtEnd", Fifth("\"a\"=hex:01,\\\r\n"), 5},
        BadFile{"BadByteInContinuation", Fifth("\"a\"=hex:01,\\\r\n  02,\\\r\n  zz\r\n"), 5},
        BadFile{"BadLineBehindContinuation", Fifth("\"a\"=hex:01,\\\r\n  02\r\nbad\r\n"), 7},
        BadFile{"ZeroCharacter", Fifth(std::string("\"a\"=\"x\0y\"\r\n", 11)), 5},
        BadFile{"NotUtf8", Fifth("\"a\"=\"\xff\"\r\n"), 5},
        BadFile{"OverlongUtf8", Fifth("\"a\"=\"\xc0\xaf\"\r\n"), 5},
        BadFile{"CutUtf8", Fifth("\"a\"=\"\xe2\x82"), 5},
        BadFile{"SurrogateInUtf8", Fifth("; \xed\xa0\x80\r\n"), 5},
        BadFile{"Latin1",
                std::string(kHeader) + "; Gr\xf6\xdf"
                                       "e\r\n",
                3},
        BadFile{"OddUtf16", Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n") + "x", 3},
        BadFile{
            "LoneSurrogateInUtf16",
            Utf16(std::u16string(u"Windows Registry Editor Version 5.00\r\n; ") + char16_t{0xd800} + u"\r\n"),
            2},
        BadFile{"Utf16BigEndian", std::string("\xfe\xff\0W\0i", 6), 1},
        BadFile{"Utf16WithoutMark", std::string("W\0i\0n\0", 6), 1},
        BadFile{"Garbage",
                "\x7f"
                "ELF\x02\x01\x01",
                1}),
    [](const testing::TestParamInfo<BadFile>& file) { return std::string(file.param.name); });

TEST_F(RegFileTest, AMissingFileLeavesTheRegistryEmpty) {
    testing::internal::CaptureStderr();
    ResetRegistry(Path() + ".missing");
    const std::string report = testing::internal::GetCapturedStderr();
    EXPECT_NE(report.find(Path() + ".missing"), std::string::npos) << report;
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE"));
}

TEST_F(RegFileTest, ADirectoryIsNoFile) {
    testing::internal::CaptureStderr();
    ResetRegistry(m_directory.Path().string());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot be read"), std::string::npos);
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE"));
}

TEST_F(RegFileTest, ResetEndsOpenHandles) {
    Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n\"a\"=dword:1\n");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\T", 0, KEY_READ, &key), ERROR_SUCCESS);
    ResetRegistry();
    EXPECT_EQ(RegQueryValueExW(key, L"a", nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

TEST_F(RegFileTest, ALongListOfBytesIsReadInReasonableTime) {
    std::string body = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\r\n\"big\"=hex:00";
    constexpr std::size_t kLines = 20000;
    for (std::size_t i = 0; i < kLines; ++i) {
        body += ",\\\r\n  01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10";
    }
    EXPECT_EQ(Load(body + "\r\n"), "");
    EXPECT_EQ(Local(L"big").data.size(), kLines * 16 + 1);
}

// --- The environment variable --------------------------------------------------------------------------

/// The hive is filled once in a process, so each case has one of its own.
class RegistryVariableDeathTest : public RegFileTest {
  protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process with 0 if the value is what is expected.
    [[noreturn]] static void EndWithResult(const std::string& file, DWORD expected) {
        setenv("QUILLET_REGISTRY", file.c_str(), 1);
        const Value value = Local(L"number");
        std::exit(expected == 0 ? (value.status == ERROR_SUCCESS ? 1 : 0)
                                : (value.status == ERROR_SUCCESS && value.Number() == expected ? 0 : 1));
    }
    void Write(const std::string& bytes) { std::ofstream(Path(), std::ios::binary) << bytes; }
};

TEST_F(RegistryVariableDeathTest, NamesTheFileThatFillsTheRegistry) {
    Write(std::string(kHeader) + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n\"number\"=dword:2a\n");
    EXPECT_EXIT(EndWithResult(Path(), 42), testing::ExitedWithCode(0), "^$");
}

TEST_F(RegistryVariableDeathTest, MalformedFileIsReportedAndIgnored) {
    Write(std::string(kHeader) + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\T]\n\"number\"=dword:2a\nbad\n");
    EXPECT_EXIT(EndWithResult(Path(), 0), testing::ExitedWithCode(0), "test.reg:5: ");
}

TEST_F(RegistryVariableDeathTest, EmptyMeansNoFile) {
    EXPECT_EXIT(EndWithResult("", 0), testing::ExitedWithCode(0), "^$");
}

} // namespace
