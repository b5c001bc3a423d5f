// Object paths as texts: class and key out of one, and one out of both.
#include <names/ObjectPath.h>

#include <gtest/gtest.h>

namespace {

using quilletctl::IsObjectPath;
using quilletctl::NameInPath;

TEST(ObjectPathTest, FullAndRelativePathsNameTheSame) {
    for (const char* path : {R"(\\HOST\ROOT\MarloLUM2:Zorel_VLAN.Name="{1}")", R"(Zorel_VLAN.Name="{1}")",
                             R"(//host.lab.example/root/MarloLUM2:Zorel_VLAN.Name='{1}')"}) {
        EXPECT_EQ(NameInPath(path).className, "Zorel_VLAN") << path;
        EXPECT_EQ(NameInPath(path).key, "{1}") << path;
    }
}

TEST(ObjectPathTest, QuotesAndBackslashesInAKeyAreUnescaped) {
    EXPECT_EQ(NameInPath(R"(C.K="a\"b\\c")").key, R"(a"b\c)");
}

TEST(ObjectPathTest, OfSeveralKeysTheFirstIsTold) {
    EXPECT_EQ(NameInPath("C.Caption='*RSS',ParentId='{1}'").key, "*RSS");
}

TEST(ObjectPathTest, NamesAreNoPaths) {
    for (const char* text : {"", "=", ".=", "Zorel 10G", "a.b", "a=b", ".K=\"x\"", "C.K=", "C.K=5",
                             "C.K=\"never closed", "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}", ":.K=\"x\""}) {
        EXPECT_FALSE(IsObjectPath(text)) << text;
        EXPECT_EQ(NameInPath(text).key, "") << text;
    }
}

TEST(ObjectPathTest, AMadePathReadsBack) {
    const std::string path = quilletctl::PathOf("Zorel_VLAN", "Name", R"(a"b\c)");
    EXPECT_EQ(path, R"(Zorel_VLAN.Name="a\"b\\c")");
    EXPECT_EQ(NameInPath(path).className, "Zorel_VLAN");
    EXPECT_EQ(NameInPath(path).key, R"(a"b\c)");
}

} // namespace
