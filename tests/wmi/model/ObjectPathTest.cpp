// Every form of an object path, and what is none.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

Scalar Text(const wchar_t* text) {
    return std::wstring(text);
}

ObjectPath ParsedPath(std::wstring_view text) {
    std::wstring error;
    const std::optional<ObjectPath> path = ObjectPath::Parse(text, &error);
    EXPECT_TRUE(path) << ToUtf8(text) << ": " << ToUtf8(error);
    return path.value_or(ObjectPath());
}

TEST(ObjectPath, FullPathHasServerNamespaceClassAndKeys) {
    const ObjectPath path = ParsedPath(LR"(\\SERVER\ROOT\MarloLUM2:Zorel_VLAN.Name="{1}",Other=5)");
    EXPECT_EQ(path.server, L"SERVER");
    EXPECT_EQ(path.namespacePath, L"ROOT\\MarloLUM2");
    EXPECT_EQ(path.className, L"Zorel_VLAN");
    ASSERT_EQ(path.keys.size(), 2u);
    EXPECT_EQ(path.keys[0].name, L"Name");
    EXPECT_EQ(path.keys[0].value, Text(L"{1}"));
    EXPECT_EQ(path.keys[1].value, Scalar(std::int64_t{5}));
    EXPECT_FALSE(path.IsClass());
}

TEST(ObjectPath, ShortFormsLeaveOutWhatIsInFront) {
    EXPECT_EQ(ParsedPath(L"ROOT\\x:Class").namespacePath, L"ROOT\\x");
    EXPECT_EQ(ParsedPath(L"root:Class").namespacePath, L"root");
    EXPECT_EQ(ParsedPath(L"\\\\.\\root:Class").server, L".");
    EXPECT_EQ(ParsedPath(L"//10.0.0.1/root/x:Class").server, L"10.0.0.1");
    EXPECT_EQ(ParsedPath(L"//s/root/x:Class").namespacePath, L"root\\x");
    EXPECT_TRUE(ParsedPath(L"Class").IsClass());
    EXPECT_TRUE(ParsedPath(L"__Namespace").IsClass());
}

TEST(ObjectPath, SingletonsAndSingleKeys) {
    EXPECT_TRUE(ParsedPath(L"Class=@").singleton);
    EXPECT_FALSE(ParsedPath(L"Class=@").IsClass());
    const ObjectPath single = ParsedPath(L"Class=\"a\"");
    ASSERT_EQ(single.keys.size(), 1u);
    EXPECT_EQ(single.keys[0].name, L"");
    EXPECT_EQ(single.keys[0].value, Text(L"a"));
    EXPECT_EQ(ParsedPath(L"Class=7").keys[0].value, Scalar(std::int64_t{7}));
}

TEST(ObjectPath, KeyValuesMayBeQuotedEitherWay) {
    EXPECT_EQ(ParsedPath(LR"(C.k="it's")").keys[0].value, Text(L"it's"));
    EXPECT_EQ(ParsedPath(LR"(C.k='say "x"')").keys[0].value, Text(L"say \"x\""));
    EXPECT_EQ(ParsedPath(LR"(C.k="a\"b\\c\'d")").keys[0].value, Text(L"a\"b\\c'd"));
    EXPECT_EQ(ParsedPath(LR"(C.k='a\'b')").keys[0].value, Text(L"a'b"));
    EXPECT_EQ(ParsedPath(LR"(C.k="")").keys[0].value, Text(L""));
    EXPECT_EQ(ParsedPath(LR"(C.k=" , = : . { } ")").keys[0].value, Text(L" , = : . { } "));
}

TEST(ObjectPath, KeyValuesMayBePathsInQuotes) {
    const ObjectPath path = ParsedPath(LR"(M.Group="\\\\H\\ROOT\\x:T.Name=\"{1}\"",Part='P.Id="2"')");
    EXPECT_EQ(path.keys[0].value, Text(LR"(\\H\ROOT\x:T.Name="{1}")"));
    EXPECT_EQ(path.keys[1].value, Text(LR"(P.Id="2")"));
}

TEST(ObjectPath, NumbersAndFlags) {
    EXPECT_EQ(ParsedPath(L"C.k=-5").keys[0].value, Scalar(std::int64_t{-5}));
    EXPECT_EQ(ParsedPath(L"C.k=-9223372036854775808").keys[0].value, Scalar(INT64_MIN));
    EXPECT_EQ(ParsedPath(L"C.k=18446744073709551615").keys[0].value, Scalar(UINT64_MAX));
    EXPECT_EQ(ParsedPath(L"C.k=0x1fF").keys[0].value, Scalar(std::int64_t{0x1FF}));
    EXPECT_EQ(ParsedPath(L"C.k=TRUE").keys[0].value, Scalar(true));
    EXPECT_EQ(ParsedPath(L"C.k=false").keys[0].value, Scalar(false));
}

TEST(ObjectPath, FormatsBackToWhatItWas) {
    for (const wchar_t* text : {LR"(\\H\ROOT\x:C.a="1",b=2,c=TRUE,d=FALSE,e=-3)", L"ROOT\\x:C", L"C", L"C=@",
                                LR"(C="x\\y\"z")", LR"(\\.\root:C=@)", L"C.k=18446744073709551615"}) {
        EXPECT_EQ(ParsedPath(text).Text(), text);
        EXPECT_EQ(ParsedPath(ParsedPath(text).Text()), ParsedPath(text));
    }
    EXPECT_EQ(ParsedPath(L"C.k='v'").Full(L"S", L"N\\M"), LR"(\\S\N\M:C.k="v")");
    EXPECT_EQ(ParsedPath(LR"(\\S\n:C.k='v')").Relative(), LR"(C.k="v")");
}

TEST(ObjectPath, ARealNumberIsKeptAsText) {
    ObjectPath path;
    path.className = L"C";
    path.keys.push_back({L"k", Scalar(1.5)});
    EXPECT_EQ(path.Relative(), L"C.k=\"1.5\"");
    EXPECT_EQ(ParsedPath(path.Relative()).keys[0].value, Text(L"1.5"));
}

struct BadPath {
    const wchar_t* text;
    std::size_t position;
};

class ObjectPathError : public ::testing::TestWithParam<BadPath> {};

TEST_P(ObjectPathError, NamesItsPosition) {
    std::wstring error;
    EXPECT_FALSE(ObjectPath::Parse(GetParam().text, &error)) << ToUtf8(GetParam().text);
    const std::wstring prefix = L"position " + std::to_wstring(GetParam().position) + L": ";
    EXPECT_EQ(error.substr(0, prefix.size()), prefix) << ToUtf8(GetParam().text) << ": " << ToUtf8(error);
    EXPECT_GT(error.size(), prefix.size());
    EXPECT_FALSE(ObjectPath::Parse(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ObjectPathError,
    ::testing::Values(BadPath{L"", 0}, BadPath{L" C", 0}, BadPath{L"C ", 1}, BadPath{L"\\C", 0},
                      BadPath{L"\\\\", 2}, BadPath{L"\\\\S", 3}, BadPath{L"\\\\S\\", 4},
                      BadPath{L"\\\\S\\root", 8}, BadPath{L"\\\\S\\root\\:C", 9}, BadPath{L"\\\\S:C", 3},
                      BadPath{L"root:", 5}, BadPath{L"1C", 0}, BadPath{L"C.", 2}, BadPath{L"C.k", 3},
                      BadPath{L"C.k=", 4}, BadPath{L"C.k=\"x", 4}, BadPath{L"C.k=\"x\\", 4},
                      BadPath{L"C.k='x\"", 4}, BadPath{L"C.k=x", 4}, BadPath{L"C.k =1", 3},
                      BadPath{L"C.k= 1", 4}, BadPath{L"C.k=1,", 6}, BadPath{L"C.k=1 ", 5},
                      BadPath{L"C.k=1;j=2", 5}, BadPath{L"C.k=1,K=2", 6}, BadPath{L"C=", 2},
                      BadPath{L"C=@x", 3}, BadPath{L"C=1,k=2", 3}, BadPath{L"C.k=-", 5},
                      BadPath{L"C.k=0x", 6}, BadPath{L"C.k=18446744073709551616", 4},
                      BadPath{L"C.k=-9223372036854775809", 4}, BadPath{L"C.k=1.5", 5}, BadPath{L"C:", 2},
                      BadPath{L"C.1k=1", 2}, BadPath{L"a.b:C", 3}, BadPath{L"{1234}", 0}));

TEST(ObjectPath, RefusesMoreKeysThanAnyClassHas) {
    std::wstring text = L"C.k0=1";
    for (std::size_t i = 1; i < ObjectPath::kMaximumKeys; ++i) {
        text += L",k" + std::to_wstring(i) + L"=1";
    }
    EXPECT_EQ(ParsedPath(text).keys.size(), ObjectPath::kMaximumKeys);
    EXPECT_FALSE(ObjectPath::Parse(text + L",more=1"));
}

TEST(ObjectPath, SurvivesHugeAndBinaryTexts) {
    EXPECT_EQ(
        std::get<std::wstring>(ParsedPath(L"C.k=\"" + std::wstring(1 << 20, L'x') + L"\"").keys[0].value)
            .size(),
        std::size_t{1} << 20);
    EXPECT_FALSE(ObjectPath::Parse(std::wstring(1 << 20, L'\\')));
    EXPECT_FALSE(ObjectPath::Parse(std::wstring(3, L'\0')));
    EXPECT_FALSE(ObjectPath::Parse(std::wstring(L"C.k=\"a\"\0", 8)));
    EXPECT_EQ(ParsedPath(std::wstring(L"C.k=\"a\0b\"", 9)).keys[0].value, Scalar(std::wstring(L"a\0b", 3)));
}

} // namespace
} // namespace quillet::tests
