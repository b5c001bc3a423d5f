// XML as peers send it, and as they must not.
#include <soap/XmlReader.h>
#include <soap/XmlWriter.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using wsman::Element;
using wsman::XmlDocument;
using wsman::XmlError;
using wsman::XmlWriter;

std::wstring TextOf(const std::string& xml) {
    const XmlDocument document(xml);
    return document.Root().Text();
}

TEST(XmlReaderTest, Names_AreFoundWhateverTheirPrefix) {
    const XmlDocument document(
        R"(<q:a xmlns:q="urn:one" xmlns="urn:two"><b/><z:c xmlns:z="urn:three" z:lang="x"/></q:a>)");
    const Element root = document.Root();
    EXPECT_TRUE(root.Is("urn:one", "a"));
    EXPECT_TRUE(root.Child("b").Is("urn:two", "b"));
    EXPECT_EQ(root.Child("c").Space(), "urn:three");
    EXPECT_EQ(root.Child("c").Attribute("lang"), "x");
    EXPECT_FALSE(root.Child("d"));
    EXPECT_TRUE(root.Child("d").Child("e").Children().empty());
    EXPECT_EQ(XmlDocument("<undeclared:a/>").Root().Space(), "");
}

TEST(XmlReaderTest, Text_IsPutTogetherFromAllItsPieces) {
    EXPECT_EQ(TextOf("<a>1<![CDATA[<2>]]>3<!-- not this -->4&amp;&#x20AC;</a>"), L"1<2>34&\u20AC");
    EXPECT_EQ(TextOf("<a>  </a>"), L"  ");
    EXPECT_EQ(TextOf("<a/>"), L"");
    EXPECT_EQ(XmlDocument("<a>\r\n 12 \t</a>").Root().Word(), "12");
}

TEST(XmlReaderTest, OtherEncodings_AreRead) {
    EXPECT_EQ(TextOf("\xEF\xBB\xBF<a>\xC3\xBC</a>"), L"\u00FC");
    const std::string little("<\0a\0>\0\xFC\0<\0/\0a\0>\0", 16);
    EXPECT_EQ(TextOf(little), L"\u00FC");
    EXPECT_EQ(TextOf("\xFF\xFE" + little), L"\u00FC");
    EXPECT_EQ(TextOf(std::string("\xFE\xFF\0<\0a\0>\0\xFC\0<\0/\0a\0>", 18)), L"\u00FC");
}

TEST(XmlReaderTest, Nil_IsToldApartFromEmpty) {
    const XmlDocument document(R"(<a xmlns:xsi="urn:x"><b xsi:nil="true"/><c xsi:nil="1"/><d/></a>)");
    EXPECT_TRUE(document.Root().Child("b").IsNil());
    EXPECT_TRUE(document.Root().Child("c").IsNil());
    EXPECT_FALSE(document.Root().Child("d").IsNil());
}

class RefusedXmlTest : public testing::TestWithParam<std::string> {};

TEST_P(RefusedXmlTest, IsAnError) {
    EXPECT_THROW(XmlDocument{GetParam()}, XmlError);
}

std::string Nested(std::size_t depth) {
    std::string xml;
    for (std::size_t i = 0; i < depth; ++i) {
        xml += "<a>";
    }
    for (std::size_t i = 0; i < depth; ++i) {
        xml += "</a>";
    }
    return xml;
}

std::string WithAttributes(int count) {
    std::string xml = "<a";
    for (int i = 0; i < count; ++i) {
        xml += " b" + std::to_string(i) + "=''";
    }
    return xml + "/>";
}

INSTANTIATE_TEST_SUITE_P(
    Xml, RefusedXmlTest,
    testing::Values("", "   ", "text", "<a>", "<a></b>", "<a/><b/>", "<a/>behind", "before<a/>",
                    "<a b='1' b='2'/>", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>", "<?php echo ?><a/>",
                    "<a><?x y?></a>", "<a>&#0;</a>", "<a>&#x0;</a>", "<a>&#1;</a>", "<a>&#xD800;</a>",
                    "<a>&#x110000;</a>", "<a>&#99999999999;</a>", "<a>&#;</a>", "<a>&#12</a>", "<a>\x01</a>",
                    "<a>\xFF</a>", "<a>\xC0\x80</a>", "<a>\xED\xA0\x80</a>", "<a>\xEF\xBF\xBF</a>",
                    std::string("<a>\0</a>", 8), Nested(200'000), Nested(65), WithAttributes(65)));

TEST(XmlReaderTest, WhatIsJustNotTooMuch_IsRead) {
    EXPECT_TRUE(XmlDocument(Nested(64)).Root());
    EXPECT_TRUE(XmlDocument(WithAttributes(64)).Root());
    EXPECT_EQ(TextOf("<?xml version='1.0' encoding='utf-8'?>\n<!-- c --><a>&#9;&#xFFFD;</a>\n"), L"\t\uFFFD");
}

TEST(XmlWriterTest, WhateverATextHolds_StaysAText) {
    const std::string text = "<a b=\"c\">&amp;\r\n\t]]>";
    const std::string xml = XmlWriter()
                                .Open("p:a")
                                .Declare("p", "urn:\"x\"")
                                .Attribute("b", text)
                                .Leaf("p:c", text)
                                .Close()
                                .Take();
    const XmlDocument document(xml);
    EXPECT_EQ(document.Root().Space(), "urn:\"x\"");
    EXPECT_EQ(document.Root().Attribute("b"), text);
    EXPECT_EQ(document.Root().Child("c").Text(), std::wstring(text.begin(), text.end()));
}

TEST(XmlWriterTest, WhatXmlCannotHold_IsAQuestionMark) {
    EXPECT_EQ(XmlWriter().Leaf("a", std::string("\0\x01\x1F\xEF\xBF\xBF|", 7)).Take(), "<a>????|</a>");
    EXPECT_EQ(XmlWriter().Open("a").Close().Take(), "<a/>");
}

} // namespace

} // namespace quillet::tests
