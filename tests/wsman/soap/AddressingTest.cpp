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
