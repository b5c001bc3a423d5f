// The heads of messages.
#include "Sample.h"

#include <soap/Envelope.h>

#include <gtest/gtest.h>

#include <set>

namespace quillet::tests {

namespace {

using namespace std::chrono_literals;
using wmi::Value;
using wsman::MessageError;
using wsman::RequestHead;
using wsman::XmlDocument;

RequestHead Head(const std::string& blocks) {
    const XmlDocument document(R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
                               R"( xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
                               R"( xmlns:w="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"><s:Header>)" +
                               blocks + "</s:Header><s:Body/></s:Envelope>");
    return wsman::ReadRequestHead(document.Root());
}

TEST(EnvelopeTest, ARequest_ComesBack) {
    RequestHead head;
    head.action = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Get";
    head.messageId = wsman::NewMessageId();
    head.to = "https://server12:5986/wsman";
    head.endpoint = wsman::EndpointOf(LR"(T_Text.Name="one")", SampleSpace());
    head.maxEnvelope = 150'000;
    head.timeout = 1500ms;
    head.locale = "de-DE";
    head.options = {{L"ClientSetId", VT_BSTR, CIM_STRING, Value::Text(L"{1}")},
                    {L"Number", VT_I4, CIM_SINT32, Value::Signed(-7)},
                    {L"Flag", VT_BOOL, CIM_BOOLEAN, Value::Bool(true)},
                    {L"List", VT_ARRAY | VT_I4, CIM_SINT32 | CIM_FLAG_ARRAY,
                     Value(Value::Array{std::int64_t{1}, std::int64_t{2}})}};
    head.transportOptions = {"msftwinrm:UsePreciseArrays"};
    const XmlDocument document(wsman::WriteRequest(head, "<body/>"));
    const RequestHead read = wsman::ReadRequestHead(document.Root());
    EXPECT_EQ(read.action, head.action);
    EXPECT_EQ(read.messageId, head.messageId);
    EXPECT_EQ(read.to, head.to);
    EXPECT_EQ(wsman::PathOf(read.endpoint, SampleSpace()).Text(),
              LR"(\\SERVER12\ROOT\MarloLUM2:T_Text.Name="one")");
    EXPECT_EQ(read.maxEnvelope, 150'000u);
    EXPECT_EQ(read.timeout, 1500ms);
    EXPECT_EQ(read.locale, "de-DE");
    EXPECT_EQ(read.transportOptions, head.transportOptions);
    EXPECT_TRUE(read.isReplyAnonymous);
    EXPECT_EQ(read.notUnderstood, "");
    ASSERT_EQ(read.options.size(), head.options.size());
    for (std::size_t i = 0; i < read.options.size(); ++i) {
        EXPECT_EQ(read.options[i].name, head.options[i].name);
        EXPECT_EQ(read.options[i].vt, head.options[i].vt);
        EXPECT_TRUE(read.options[i].value == head.options[i].value) << i;
    }
    EXPECT_TRUE(wsman::BodyOf(document.Root()).Child("body"));
}

TEST(EnvelopeTest, WhatMustBeUnderstoodAndIsNot_IsNamed) {
    EXPECT_EQ(Head("<q:Surprise xmlns:q='urn:q' s:mustUnderstand='true'/>").notUnderstood, "Surprise");
    EXPECT_EQ(Head("<q:Surprise xmlns:q='urn:q' s:mustUnderstand='false'/><q:Other xmlns:q='urn:q'/>")
                  .notUnderstood,
              "");
    EXPECT_EQ(Head("<q:To xmlns:q='urn:q' s:mustUnderstand='1'/>").notUnderstood, "To");
}

TEST(EnvelopeTest, Options_AreTakenWithoutTheirPrefixesDeclared) {
    const RequestHead head =
        Head("<w:OptionSet><w:Option Name='wmi:A' Type='xs:int'>3</w:Option>"
             "<w:Option Name='wmi:B'>text</w:Option><w:Option Name='other'>x</w:Option></w:OptionSet>");
    ASSERT_EQ(head.options.size(), 2u);
    EXPECT_TRUE(head.options[0].value == Value::Signed(3));
    EXPECT_TRUE(head.options[1].value == Value::Text(L"text"));
    EXPECT_EQ(head.transportOptions, std::vector<std::string>{"other"});
}

TEST(EnvelopeTest, BadHeads_AreRefused) {
    EXPECT_THROW(Head("<w:OptionSet><w:Option Name='wmi:A' Type='xs:int'>three</w:Option></w:OptionSet>"),
                 MessageError);
    EXPECT_THROW(Head("<w:OptionSet><w:Option Name='wmi:'/></w:OptionSet>"), MessageError);
    EXPECT_THROW(Head("<w:MaxEnvelopeSize>many</w:MaxEnvelopeSize>"), MessageError);
    EXPECT_THROW(Head("<w:OperationTimeout>soon</w:OperationTimeout>"), MessageError);
    EXPECT_THROW(Head("<a:MessageID>" + std::string(3000, 'x') + "</a:MessageID>"), MessageError);
    EXPECT_THROW(Head("<w:ResourceURI/>"), MessageError);
    std::string many;
    for (int i = 0; i < 257; ++i) {
        many += "<w:Option Name='wmi:A" + std::to_string(i) + "'/>";
    }
    EXPECT_THROW(Head("<w:OptionSet>" + many + "</w:OptionSet>"), MessageError);
    const XmlDocument old(
        R"(<s:Envelope xmlns:s="http://schemas.xmlsoap.org/soap/envelope/"><s:Body/></s:Envelope>)");
    EXPECT_THROW(wsman::ReadRequestHead(old.Root()), MessageError);
    EXPECT_THROW(wsman::BodyOf(old.Root()), MessageError);
}

TEST(EnvelopeTest, AnAnswer_NamesItsRequest) {
    const XmlDocument document(wsman::WriteResponse("urn:action", "uuid:<1>", "<n:PullResponse/>"));
    const wsman::Element header = document.Root().Child("Header");
    EXPECT_EQ(header.Child("RelatesTo").Word(), "uuid:<1>");
    EXPECT_EQ(header.Child("Action").Word(), "urn:action");
    EXPECT_TRUE(wsman::BodyOf(document.Root())
                    .First()
                    .Is("http://schemas.xmlsoap.org/ws/2004/09/enumeration", "PullResponse"));
}

TEST(EnvelopeTest, Identifiers_AreAllDifferent) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(seen.insert(wsman::NewMessageId()).second);
    }
    EXPECT_EQ(seen.begin()->size(), std::string("uuid:6B1D8E0C-4C1E-4B5B-9C3E-2F6A0D7715A1").size());
}

TEST(EnvelopeTest, Durations_AreReadAndWritten) {
    EXPECT_EQ(wsman::DurationText(60'000ms), "PT60.000S");
    EXPECT_EQ(wsman::ReadDuration("PT60.000S"), 60'000ms);
    EXPECT_EQ(wsman::ReadDuration("PT0.5S"), 500ms);
    EXPECT_EQ(wsman::ReadDuration("P1DT1H"), 90'000'000ms);
    EXPECT_EQ(wsman::ReadDuration("60"), std::nullopt);
    EXPECT_EQ(wsman::ReadDuration("2024-04-03T14:45:50Z"), std::nullopt);
}

} // namespace

} // namespace quillet::tests
