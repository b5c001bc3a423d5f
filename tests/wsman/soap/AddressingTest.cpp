// Object paths as resource URIs and selectors.
#include "Sample.h"

#include <soap/Addressing.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using wsman::Endpoint;
using wsman::MessageError;
using wsman::XmlDocument;
using wsman::XmlWriter;

std::wstring Back(const std::wstring& path) {
    XmlWriter xml;
    xml.Open("x");
    wsman::WriteEndpoint(xml, wsman::EndpointOf(path, SampleSpace()));
    xml.Close();
    const XmlDocument document(Rooted(xml.Take()));
    return wsman::PathOf(wsman::ReadEndpoint(document.Root().Child("x")), SampleSpace()).Text();
}

const std::wstring kWhole = LR"(\\SERVER12\ROOT\MarloLUM2:)";

TEST(AddressingTest, Paths_GoOutAndComeBackAsTheMachinesOwn) {
    EXPECT_EQ(Back(LR"(T_Text.Name="one")"), kWhole + LR"(T_Text.Name="one")");
    EXPECT_EQ(Back(LR"(\\ELSEWHERE\root\marlolum2:t_text.name="one")"), kWhole + LR"(T_Text.Name="one")");
    EXPECT_EQ(Back(LR"(T_Text="one")"), kWhole + LR"(T_Text.Name="one")");
    EXPECT_EQ(Back(LR"(T_Text.Name="a \"b\" c:\\d <e> & f")"),
              kWhole + LR"(T_Text.Name="a \"b\" c:\\d <e> & f")");
    EXPECT_EQ(Back(LR"(T_Text.Name="  ")"), kWhole + LR"(T_Text.Name="  ")");
    EXPECT_EQ(Back(L"T_Text"), kWhole + L"T_Text");
}

TEST(AddressingTest, Keys_AreOfTheTypesAndInTheOrderOfTheirClass) {
    EXPECT_EQ(Back(L"T_Numbers.Offset=-3,On=TRUE,Slot=12"), kWhole + L"T_Numbers.Slot=12,On=TRUE,Offset=-3");
    EXPECT_EQ(Back(LR"(Unknown.B="1",A=2)"), kWhole + LR"(Unknown.B="1",A="2")");
}

TEST(AddressingTest, Classes_AreAskedForOnlyWhereAPathCannotBeUnderstoodWithoutThem) {
    std::vector<std::wstring> asked;
    wsman::Namespace space = SampleSpace();
    space.classOf = [&](std::wstring_view name) {
        asked.emplace_back(name);
        return SampleSpace().classOf(name);
    };
    EXPECT_EQ(wsman::EndpointOf(LR"(T_Numbers.Slot=12,On=TRUE,Offset=-3)", space).Find("On")->value, L"true");
    EXPECT_EQ(wsman::EndpointOf(LR"(T_Text.Name="one")", space).Find("Name")->value, L"one");
    EXPECT_TRUE(asked.empty());
    EXPECT_NE(wsman::EndpointOf(LR"(T_Text="one")", space).Find("Name"), nullptr) << "which key it is";
    EXPECT_EQ(wsman::EndpointOf(LR"(T_Text.Name="a=b")", space).Find("Name")->reference, nullptr)
        << "whether it is a reference";
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"T_Text", L"T_Text"}));
}

TEST(AddressingTest, Instances_HaveTheEndpointsOfTheirPaths) {
    wmi::Instance link(SampleSpace().classOf(L"T_Link"));
    link.Set(L"From", wmi::Value::Text(LR"(T_Text.Name="a")"));
    link.Set(L"To", wmi::Value::Text(LR"(T_Numbers.Slot=1,On=FALSE,Offset=0)"));
    const auto written = [](const Endpoint& endpoint) {
        XmlWriter xml;
        wsman::WriteEndpoint(xml, endpoint);
        return xml.Take();
    };
    EXPECT_EQ(written(wsman::EndpointOf(link, SampleSpace())),
              written(wsman::EndpointOf(wmi::RelativePath(link), SampleSpace())));
    link.Set(L"To", wmi::Value());
    EXPECT_EQ(wsman::EndpointOf(link, SampleSpace()).selectors.size(), 1u) << "a key that is null is none";
}

TEST(AddressingTest, References_AreEndpointsInEndpoints) {
    const std::wstring link = LR"(T_Link.From="T_Text.Name=\"a\"",To="T_Numbers.Slot=1,On=FALSE,Offset=0")";
    EXPECT_EQ(Back(link), kWhole +
                              LR"(T_Link.From="\\\\SERVER12\\ROOT\\MarloLUM2:T_Text.Name=\"a\"",)"
                              LR"(To="\\\\SERVER12\\ROOT\\MarloLUM2:T_Numbers.Slot=1,On=FALSE,Offset=0")");
    const Endpoint endpoint = wsman::EndpointOf(link, SampleSpace());
    ASSERT_NE(endpoint.Find("from"), nullptr);
    ASSERT_NE(endpoint.Find("from")->reference, nullptr);
    EXPECT_EQ(endpoint.Find("from")->reference->resource,
              "http://schemas.microsoft.com/wbem/wsman/1/wmi/ROOT/MarloLUM2/T_Text");
}

TEST(AddressingTest, Endpoints_AreReadInAllTheirForms) {
    const auto path = [](const std::string& xml) {
        const XmlDocument document(Rooted(xml));
        return wsman::PathOf(wsman::ReadEndpoint(document.Root()), SampleSpace()).Text();
    };
    const std::string dmtf =
        "<w:ResourceURI> http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/T_Text </w:ResourceURI>"
        "<w:SelectorSet><w:Selector Name='__cimnamespace'>root/MarloLUM2</w:Selector>"
        "<w:Selector Name='Name'>one</w:Selector></w:SelectorSet>";
    const std::wstring one = kWhole + LR"(T_Text.Name="one")";
    EXPECT_EQ(path(dmtf), one);
    EXPECT_EQ(path("<a:Address>urn:x</a:Address><a:ReferenceParameters>" + dmtf + "</a:ReferenceParameters>"),
              one);
    EXPECT_EQ(path("<a:EndpointReference><a:Address/><a:ReferenceParameters>" + dmtf +
                   "</a:ReferenceParameters></a:EndpointReference>"),
              one);
    EXPECT_EQ(
        path(
            "<w:ResourceURI>http://schemas.microsoft.com/wbem/wsman/1/wmi/root/other/T_Text</w:ResourceURI>"),
        LR"(\\SERVER12\root\other:T_Text)");
    EXPECT_EQ(path("<w:ResourceURI>http://maker.example/wbem/T_Text</w:ResourceURI>"), kWhole + L"T_Text");
}

TEST(AddressingTest, WhatIsNoEndpoint_IsRefused) {
    const auto read = [](const std::string& xml) {
        const XmlDocument document(Rooted(xml));
        return wsman::PathOf(wsman::ReadEndpoint(document.Root()), SampleSpace()).Text();
    };
    const std::string uri =
        "<w:ResourceURI>http://schemas.microsoft.com/wbem/wsman/1/wmi/root/x/T_Text</w:ResourceURI>";
    EXPECT_THROW(read(""), MessageError);
    EXPECT_THROW(read("<w:ResourceURI/>"), MessageError);
    EXPECT_THROW(read("<w:ResourceURI>nonsense</w:ResourceURI>"), MessageError);
    EXPECT_THROW(read("<w:ResourceURI>http://x/T Text</w:ResourceURI>"), MessageError);
    EXPECT_THROW(read("<w:ResourceURI>http://schemas.microsoft.com/wbem/wsman/1/wmi/T_Text</w:ResourceURI>"),
                 MessageError);
    EXPECT_THROW(read(uri + "<w:SelectorSet><w:Selector>x</w:Selector></w:SelectorSet>"), MessageError);
    EXPECT_THROW(read(uri +
                      "<w:SelectorSet><w:Selector Name='A'>x</w:Selector><w:Selector Name='a'>y</w:Selector>"
                      "</w:SelectorSet>"),
                 MessageError);
    std::string many;
    for (int i = 0; i < 65; ++i) {
        many += "<w:Selector Name='K" + std::to_string(i) + "'>x</w:Selector>";
    }
    EXPECT_THROW(read(uri + "<w:SelectorSet>" + many + "</w:SelectorSet>"), MessageError);
    std::string nested = uri;
    for (int i = 0; i < 6; ++i) {
        nested = uri + "<w:SelectorSet><w:Selector Name='K'><a:EndpointReference><a:ReferenceParameters>" +
                 nested + "</a:ReferenceParameters></a:EndpointReference></w:Selector></w:SelectorSet>";
    }
    EXPECT_THROW(read(nested), MessageError);
    EXPECT_THROW(wsman::EndpointOf(L"no path at all..", SampleSpace()), MessageError);
}

} // namespace

} // namespace quillet::tests
