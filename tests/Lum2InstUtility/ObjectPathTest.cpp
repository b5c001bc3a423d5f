// Taking object paths apart: every form, and texts that are none.
#include "LumWmiObjectPath.h"

#include <windows.h>
#include <wbemidl.h>

#include <gtest/gtest.h>
#include <string>

namespace {

using Path = CLumWmiAutoParsedObjectPath;

std::wstring Key(const Path& path, const wchar_t* name) {
    const std::wstring* value = path.FindKey(name);
    return value == nullptr ? L"(none)" : *value;
}

TEST(ObjectPathTest, NewObject_IsEmpty) {
    const Path path;
    EXPECT_FALSE(path.IsParsed());
    EXPECT_EQ(path.KeyCount(), 0u);
    EXPECT_EQ(path.FindKey(L"any"), nullptr);
    EXPECT_FALSE(path.IsOfClass(L"Zorel_VLAN"));
}

TEST(ObjectPathTest, FullPath_HasAllParts) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(\\LAB-7\ROOT\MarloLUM2:Zorel_VLAN.Name="{1}")"), 0);
    EXPECT_TRUE(path.IsParsed());
    EXPECT_EQ(path.Server(), L"LAB-7");
    EXPECT_EQ(path.Namespace(), L"ROOT\\MarloLUM2");
    EXPECT_EQ(path.ClassName(), L"Zorel_VLAN");
    EXPECT_EQ(path.KeyCount(), 1u);
    EXPECT_EQ(Key(path, L"Name"), L"{1}");
    EXPECT_FALSE(path.IsSingleton());
}

TEST(ObjectPathTest, Server_MayBeAnAddressOrTheDot) {
    Path path;
    for (const std::wstring server : {L".", L"127.0.0.1", L"host.example.net", L"my_host-2", L"größe"}) {
        ASSERT_EQ(path.Parse((L"\\\\" + server + L"\\ROOT:C").c_str()), 0) << server;
        EXPECT_EQ(path.Server(), server);
        EXPECT_EQ(path.Namespace(), L"ROOT");
    }
}

TEST(ObjectPathTest, Slashes_SeparateAsBackslashesDo) {
    Path path;
    ASSERT_EQ(path.Parse(L"//host/root/MarloLUM2/sub:C.K=1"), 0);
    EXPECT_EQ(path.Server(), L"host");
    EXPECT_EQ(path.Namespace(), L"root\\MarloLUM2\\sub");
}

TEST(ObjectPathTest, NamespaceWithoutServer_IsOne) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(ROOT\MarloLUM2:Zorel_VLAN.Name="x")"), 0);
    EXPECT_EQ(path.Server(), L"");
    EXPECT_EQ(path.Namespace(), L"ROOT\\MarloLUM2");
    EXPECT_EQ(path.ClassName(), L"Zorel_VLAN");
}

TEST(ObjectPathTest, RelativePath_HasNeither) {
    Path path;
    ASSERT_EQ(path.Parse(L"Zorel_VLAN.Name='x'"), 0);
    EXPECT_EQ(path.Server(), L"");
    EXPECT_EQ(path.Namespace(), L"");
    EXPECT_EQ(Key(path, L"Name"), L"x");
}

TEST(ObjectPathTest, ColonInAKeyValue_EndsNoNamespace) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(C.K="a:b\\c")"), 0);
    EXPECT_EQ(path.Namespace(), L"");
    EXPECT_EQ(path.ClassName(), L"C");
    ASSERT_EQ(path.Parse(L"C='a:b'"), 0);
    EXPECT_EQ(path.ClassName(), L"C");
    EXPECT_EQ(Key(path, L"any"), L"a:b");
}

TEST(ObjectPathTest, ClassAlone_IsAPathWithoutKeys) {
    Path path;
    ASSERT_EQ(path.Parse(L"__NAMESPACE"), 0);
    EXPECT_EQ(path.ClassName(), L"__NAMESPACE");
    EXPECT_EQ(path.KeyCount(), 0u);
    EXPECT_FALSE(path.IsSingleton());
}

TEST(ObjectPathTest, Singleton_IsToldFromAClass) {
    Path path;
    ASSERT_EQ(path.Parse(L"Zorel_NetService=@"), 0);
    EXPECT_TRUE(path.IsSingleton());
    EXPECT_EQ(path.KeyCount(), 0u);
}

TEST(ObjectPathTest, UnnamedKey_HasAnyName) {
    Path path;
    ASSERT_EQ(path.Parse(L"Zorel_VLAN=\"x\""), 0);
    EXPECT_EQ(path.KeyCount(), 1u);
    EXPECT_EQ(Key(path, L"Name"), L"x");
    EXPECT_EQ(Key(path, L"Other"), L"x");
}

TEST(ObjectPathTest, Keys_AreFoundInAnyOrderAndCase) {
    Path path;
    for (const wchar_t* text : {LR"(S.Caption="c",ParentId='p',ParentType="NIC")",
                                LR"(S.ParentType='NIC',Caption="c",ParentId="p")"}) {
        ASSERT_EQ(path.Parse(text), 0);
        EXPECT_EQ(path.KeyCount(), 3u);
        EXPECT_EQ(Key(path, L"Caption"), L"c");
        EXPECT_EQ(Key(path, L"PARENTID"), L"p");
        EXPECT_EQ(Key(path, L"parenttype"), L"NIC");
        EXPECT_EQ(path.FindKey(L"Parent"), nullptr);
    }
}

TEST(ObjectPathTest, BothQuoteCharacters_HoldTheOther) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(C.A="it's",B='say "x"')"), 0);
    EXPECT_EQ(Key(path, L"A"), L"it's");
    EXPECT_EQ(Key(path, L"B"), L"say \"x\"");
}

TEST(ObjectPathTest, Escapes_StandForTheirCharacter) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(C.A="a\"b",B='a\'b',D="a\\b\\",E='\"\\\'',F="\'")"), 0);
    EXPECT_EQ(Key(path, L"A"), L"a\"b");
    EXPECT_EQ(Key(path, L"B"), L"a'b");
    EXPECT_EQ(Key(path, L"D"), L"a\\b\\");
    EXPECT_EQ(Key(path, L"E"), L"\"\\'");
    EXPECT_EQ(Key(path, L"F"), L"'");
}

TEST(ObjectPathTest, BackslashBeforeAnotherCharacter_IsOrdinary) {
    Path path;
    ASSERT_EQ(path.Parse(LR"(C.K="C:\temp\n")"), 0);
    EXPECT_EQ(Key(path, L"K"), L"C:\\temp\\n");
}

TEST(ObjectPathTest, KeyValueThatIsAPath_IsTakenOutWhole) {
    Path path;
    ASSERT_EQ(
        path.Parse(
            LR"(A.GroupComponent="\\\\H\\ROOT\\M:T.Name=\"{1}\"",PartComponent='\\\\H\\ROOT\\M:P.ID="{2}"')"),
        0);
    EXPECT_EQ(Key(path, L"GroupComponent"), LR"(\\H\ROOT\M:T.Name="{1}")");
    EXPECT_EQ(Key(path, L"PartComponent"), LR"(\\H\ROOT\M:P.ID="{2}")");
}

TEST(ObjectPathTest, NumbersAndTruthValues_AreKeptAsWritten) {
    Path path;
    ASSERT_EQ(path.Parse(L"C.A=0,B=-15,D=+7,E=0x1F,F=TRUE,G=false"), 0);
    EXPECT_EQ(Key(path, L"A"), L"0");
    EXPECT_EQ(Key(path, L"B"), L"-15");
    EXPECT_EQ(Key(path, L"D"), L"+7");
    EXPECT_EQ(Key(path, L"E"), L"0x1F");
    EXPECT_EQ(Key(path, L"F"), L"TRUE");
    EXPECT_EQ(Key(path, L"G"), L"false");
}

TEST(ObjectPathTest, EmptyAndNonAsciiValues_AreValues) {
    Path path;
    ASSERT_EQ(path.Parse(L"C.A=\"\",B=\"網路卡 \U0001F600\""), 0);
    EXPECT_EQ(Key(path, L"A"), L"");
    EXPECT_EQ(Key(path, L"B"), L"網路卡 \U0001F600");
}

TEST(ObjectPathTest, VeryLongValue_IsKeptWhole) {
    Path path;
    const std::wstring value(1'000'000, L'v');
    ASSERT_EQ(path.Parse((L"C.K=\"" + value + L"\"").c_str()), 0);
    EXPECT_EQ(Key(path, L"K"), value);
}

TEST(ObjectPathTest, Keys_AreLimitedInNumber) {
    const auto withKeys = [](int count) {
        std::wstring text = L"C.";
        for (int i = 0; i < count; ++i) {
            text += (i == 0 ? L"K" : L",K") + std::to_wstring(i) + L"=1";
        }
        return text;
    };
    Path path;
    EXPECT_EQ(path.Parse(withKeys(256).c_str()), 0);
    EXPECT_NE(path.Parse(withKeys(257).c_str()), 0);
}

class NoObjectPathTest : public testing::TestWithParam<const wchar_t*> {};

TEST_P(NoObjectPathTest, IsRefusedAndLeavesTheObjectEmpty) {
    Path path;
    ASSERT_EQ(path.Parse(L"C.K='v'"), 0);
    EXPECT_EQ(path.Parse(GetParam()), static_cast<int>(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_FALSE(path.IsParsed());
    EXPECT_EQ(path.KeyCount(), 0u);
    EXPECT_EQ(path.Server(), L"");
    EXPECT_EQ(path.Namespace(), L"");
}

INSTANTIATE_TEST_SUITE_P(Empty, NoObjectPathTest,
                         testing::Values(L"", L" ", L".", L":", L"=", L"@", L",", L"\\", L"\\\\", L"/", L"//",
                                         L"\"", L"'", L"\"x\"", L"{3F2504E0-4F89-11D3-9A0C-0305E82C3301}",
                                         L"not a path", L"42", L"1C.K=1", L"-", L"*"));
INSTANTIATE_TEST_SUITE_P(Location, NoObjectPathTest,
                         testing::Values(L"\\\\host", L"\\\\host\\", L"\\\\host\\root", L"\\\\host\\root:",
                                         L"\\\\host:C", L"\\\\\\root:C", L"\\\\host\\\\root:C",
                                         L"\\\\host\\root\\:C", L"\\host\\root:C", L":C", L"root\\:C",
                                         L"\\root:C", L"root\\\\sub:C", L"root:sub:C", L"\\\\ho st\\root:C",
                                         L"\\\\host\\ro ot:C", L"\\\\host\\1:C", L"\\\\host\\root.C",
                                         L"root\\sub", L"\\\\host\\root:C:D"));
INSTANTIATE_TEST_SUITE_P(Keys, NoObjectPathTest,
                         testing::Values(L"C.", L"C.K", L"C.K=", L"C.=1", L"C.K=1,", L"C.K=1,,L=2", L"C.,K=1",
                                         L"C.K=1L=2", L"C.K=1;L=2", L"C.K=1 ", L" C.K=1", L"C .K=1",
                                         L"C. K=1", L"C.K =1", L"C.K= 1", L"C.K=1, L=2", L"C.K=1,K=2",
                                         L"C.K=1,k=2", L"C.1=1", L"C.K==1", L"C..K=1", L"C.K=1.L=2",
                                         L"C.\"K\"=1", L"C=", L"C=@x", L"C=@,K=1", L"C=1,K=2", L"C='x'y",
                                         L"C@", L"C,K=1", L"C!K=1"));
INSTANTIATE_TEST_SUITE_P(Values, NoObjectPathTest,
                         testing::Values(L"C.K=\"", L"C.K='", L"C.K=\"x", L"C.K='x", L"C.K=\"x'", L"C.K='x\"",
                                         L"C.K=\"x\\\"", L"C.K=\"\\", L"C.K=x", L"C.K=TRUTH", L"C.K=TRUEx",
                                         L"C.K=1x", L"C.K=0x", L"C.K=0xG", L"C.K=--1", L"C.K=1-1", L"C.K=-",
                                         L"C.K=+", L"C.K=1.5", L"C.K=NULL", L"C.K={1}", L"C.K=\"x\"\"y\"",
                                         L"C.K=\"x\"y", L"C.K=\"x\"\"", L"C.K=(1)"));

TEST(ObjectPathTest, Null_IsAnInvalidArgument) {
    Path path;
    ASSERT_EQ(path.Parse(L"C"), 0);
    EXPECT_EQ(path.Parse(nullptr), static_cast<int>(WBEM_E_INVALID_PARAMETER));
    EXPECT_FALSE(path.IsParsed());
}

TEST(ObjectPathTest, EveryBeginningOfAPath_IsParsedOrRefused) {
    const std::wstring whole =
        LR"(\\H\ROOT\M:Zorel_TeamedMemberAdapter.GroupComponent="\\\\H\\ROOT\\M:T.Name=\"{1}\"",N=-5,B=TRUE)";
    Path path;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const int result = path.Parse(whole.substr(0, length).c_str());
        EXPECT_EQ(result == 0, path.IsParsed()) << length;
    }
    EXPECT_EQ(path.Parse(whole.c_str()), 0);
}

TEST(ObjectPathTest, ClassNames_AreComparedWithoutRegardToCase) {
    Path path;
    ASSERT_EQ(path.Parse(L"zorel_vlan=1"), 0);
    EXPECT_TRUE(path.IsOfClass(L"Zorel_VLAN"));
    EXPECT_FALSE(path.IsOfClass(L"Zorel_VLAN2"));
    EXPECT_FALSE(path.IsOfClass(L"Zorel_VLA"));
    EXPECT_FALSE(path.IsOfClass(L""));
}

TEST(ObjectPathTest, KeptTexts_LiveUntilTheNextParse) {
    Path path;
    ASSERT_EQ(path.Parse(L"C.K='value'"), 0);
    wchar_t* const first = path.Keep(L"one");
    wchar_t* const second = path.Keep(L"two");
    EXPECT_STREQ(first, L"one");
    EXPECT_STREQ(second, L"two");
    EXPECT_EQ(path.Keep(L"one"), first);
    // Parsing what it has handed out itself is the hardest case.
    wchar_t* const own = path.Keep(L"D.K='other'");
    EXPECT_EQ(path.Parse(own), 0);
    EXPECT_EQ(Key(path, L"K"), L"other");
}

} // namespace
