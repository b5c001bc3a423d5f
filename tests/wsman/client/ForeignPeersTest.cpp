// Peers of another make.
#include "PeerWithT.h"

#include <gmock/gmock.h>

namespace quillet::tests {

namespace {

using testing::HasSubstr;
using wmi::Object;

TEST(ForeignPeersTest, Pages_GoByTheNewestContextWhateverTheirShape) {
    int pages = 0;
    ScriptedPeer peer(AfterIdentify([&pages](const PeerRequest& request) {
        if (!request.Has("n:Pull")) {
            // No page yet, and a context that changes.
            return SoapAnswer(request, "<n:EnumerateResponse><n:EnumerationContext>c0</n:EnumerationContext>"
                                       "</n:EnumerateResponse>");
        }
        EXPECT_EQ(request.TextOf("EnumerationContext"), "c" + std::to_string(pages));
        switch (++pages) {
        case 1: // a page without objects is no end
            return SoapAnswer(request, "<n:PullResponse><n:EnumerationContext>c1</n:EnumerationContext>"
                                       "</n:PullResponse>");
        case 2: // in the other namespace, with references in another order
            return SoapAnswer(
                request,
                "<n:PullResponse><w:Items><w:Item><a:EndpointReference><a:Address>http://elsewhere/"
                "</a:Address><a:ReferenceParameters><w:ResourceURI>http://schemas.dmtf.org/wbem/wscim/1/"
                "cim-schema/2/T</w:ResourceURI><w:SelectorSet><w:Selector Name='k'>a</w:Selector>"
                "<w:Selector Name='__cimnamespace'>root/MarloLUM2</w:Selector></w:SelectorSet>"
                "</a:ReferenceParameters></a:EndpointReference><p:T/></w:Item></w:Items>"
                "<n:EnumerationContext>c2</n:EnumerationContext></n:PullResponse>");
        default: // the end, with a context all the same
            return SoapAnswer(request,
                              "<n:PullResponse><n:EnumerationContext>c3</n:EnumerationContext><n:Items>" +
                                  Item("b") + "</n:Items><n:EndOfSequence/></n:PullResponse>");
        }
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "a b 0x00000001");
    found.reset();
    EXPECT_EQ(peer.Requests().size(), 4u) << "what is at its end is not released";
}

TEST(ForeignPeersTest, PagesThatAreTooLarge_AreAskedForSmaller) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        const int most = std::stoi(request.TextOf("MaxElements"));
        if (most > 4) {
            return FaultAnswer(request, "w:EncodingLimit");
        }
        return SoapAnswer(request, "<n:EnumerateResponse><w:Items>" + Item("a") +
                                       "</w:Items><w:EndOfSequence/></n:EnumerateResponse>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "a 0x00000001");
}

TEST(ForeignPeersTest, AnotherMake_IsReadAsItWrites) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest&) {
        // Other prefixes, no header, CDATA, blanks, capitals, a path as text, an array in pieces.
        return HttpAnswerOf(
            200, "text/xml; charset=\"utf-8\"",
            R"(<?xml version="1.0" encoding="utf-8"?><e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"
  xmlns:i="http://www.w3.org/2001/XMLSchema-instance"> <e:Body> <T xmlns="urn:whatever" i:type="T_Type">
   <Flag> TRUE </Flag> <Ports>+1</Ports><Number> 12 </Number><!-- now --><Ports> 2 </Ports>
   <Since>20240403144550.468750+120</Since><k><![CDATA[<a>]]> &amp; b</k><Owner i:nil="1"/><Surplus>1</Surplus>
 </T> </e:Body> </e:Envelope>)");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    Object found;
    ASSERT_EQ(CodeOf(Get(*connection, found)), "0x00000000") << wsman::LastFailure();
    EXPECT_EQ(found.instance->Text(L"K"), L"<a> & b");
    EXPECT_EQ(found.instance->Number(L"Number"), 12);
    EXPECT_EQ(*found.instance->Find(L"Flag"), wmi::Value::Bool(true));
    EXPECT_EQ(found.instance->Text(L"Since"), L"20240403144550.468750+120");
    EXPECT_EQ(found.instance->Find(L"Ports")->Size(), 2u);
    EXPECT_TRUE(found.instance->Find(L"Owner")->IsNull());
}

TEST(ForeignPeersTest, APeerThatTakesOnlyTheOtherForm_IsAskedInIt) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        if (request.Has("/wbem/wsman/1/wmi/")) {
            return FaultAnswer(request, "a:DestinationUnreachable",
                               R"(<f:WSManFault xmlns:f="x" Code="2150859065"/>)");
        }
        EXPECT_TRUE(request.Has("http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/T<"));
        EXPECT_TRUE(request.Has(R"(Name="__cimnamespace">ROOT/MarloLUM2<)"));
        return SoapAnswer(request, Item("a"));
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
    EXPECT_EQ(peer.Requests().size(), 3u) << "the form is found out once";
}

TEST(ForeignPeersTest, APeerThatTellsNoClasses_IsReadByTheKnownOnesOrAsTexts) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        if (request.Has("cim-xml")) {
            return FaultAnswer(request, "a:ActionNotSupported");
        }
        return SoapAnswer(request,
                          request.Has("wmi/ROOT/MarloLUM2/T<")
                              ? Item("a")
                              : "<p:Other><p:Name>x</p:Name><p:List>1</p:List><p:List>2</p:List></p:Other>");
    }));
    wsman::RemoteOptions options = KnowingT(peer.Port());
    options.isSchemaTrusted = false;
    const auto connection = ConnectTo(options);
    Object found;
    EXPECT_EQ(CodeOf(Get(*connection, found)), "0x00000000");
    EXPECT_EQ(found.definition->properties.size(), 6u);
    EXPECT_EQ(CodeOf(connection->GetObject({}, L"Other.Name=\"x\"", found).status), "0x00000000");
    EXPECT_EQ(found.instance->Text(L"Name"), L"x");
    EXPECT_EQ(found.instance->Find(L"List")->Size(), 2u);
    std::size_t classes = 0;
    for (const PeerRequest& request : peer.Requests()) {
        classes += request.Has("cim-xml") ? 1U : 0U;
    }
    EXPECT_EQ(classes, 1u) << "whoever cannot tell one is not asked again";
}

TEST(ForeignPeersTest, Faults_GiveTheCodeThatWmiWouldGive) {
    const struct {
        const char* subcode;
        const char* detail;
        long long code;
    } cases[] = {
        {"a:DestinationUnreachable", "", 0x80041002},
        {"w:AccessDenied", R"(<f:WSManFault xmlns:f="x" Code="5"/>)", 0x80070005},
        {"w:InternalError", "<p:MSFT_WmiError><p:error_Code>2147749889</p:error_Code></p:MSFT_WmiError>",
         0x80041001},
        {"w:InternalError", "<p:OMI_Error><p:MessageID>HRESULT 0x80041033</p:MessageID></p:OMI_Error>",
         0x80041033},
        {"w:InternalError",
         R"(<f:WSManFault xmlns:f="x" Code="2150858752"><f:Message><f:ProviderFault><f:WSManFault Code="2147749890"/>)"
         "</f:ProviderFault></f:Message></f:WSManFault>",
         0x80041002},
        {"w:TimedOut", R"(<f:WSManFault xmlns:f="x" Code="2150858793"/>)", 0x80041069},
        {"nonsense", "", 0x80041001},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.subcode) + each.detail);
        ScriptedPeer peer(AfterIdentify(
            [&](const PeerRequest& request) { return FaultAnswer(request, each.subcode, each.detail); }));
        const auto connection = ConnectTo(KnowingT(peer.Port()));
        EXPECT_EQ(CodeOf(Get(*connection)), CodeOf(each.code));
        EXPECT_THAT(wsman::LastFailure(), HasSubstr("127.0.0.1: No."));
    }
}

} // namespace

} // namespace quillet::tests
