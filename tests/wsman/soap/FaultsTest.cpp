// Faults as this side writes them, and as others do.
#include "Sample.h"

#include <soap/Faults.h>

#include <wbemidl.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using wsman::Fault;
using wsman::XmlDocument;
using wsman::XmlWriter;

Fault FaultIn(const std::string& body) {
    const XmlDocument document(R"(<s:Body xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Fault>)" +
                               body + "</s:Fault></s:Body>");
    return wsman::ReadFault(document.Root().Child("Fault"));
}

constexpr HRESULT Code(long long code) {
    return static_cast<HRESULT>(static_cast<std::uint32_t>(code));
}

class FaultCodesTest : public testing::TestWithParam<HRESULT> {};

TEST_P(FaultCodesTest, ComeBack) {
    XmlWriter xml;
    xml.Open("x").Declare("xsi", "urn:xsi");
    wsman::WriteFault(xml, wsman::FaultFor(GetParam(), "No such thing <here>."), "lab");
    xml.Close();
    const XmlDocument document(Rooted(xml.Take()));
    const Fault fault = wsman::ReadFault(document.Root().Child("x").Child("Fault"));
    EXPECT_EQ(fault.code, GetParam());
    EXPECT_EQ(fault.reason, "No such thing <here>.");
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultCodesTest,
                         testing::Values(Code(WBEM_E_FAILED), Code(WBEM_E_NOT_FOUND),
                                         Code(WBEM_E_ACCESS_DENIED), Code(WBEM_E_INVALID_CLASS),
                                         Code(WBEM_E_INVALID_NAMESPACE), Code(WBEM_E_PROVIDER_FAILURE),
                                         Code(WBEM_E_TYPE_MISMATCH), Code(WBEM_E_INVALID_METHOD),
                                         Code(WBEM_E_SHUTTING_DOWN), Code(WBEM_E_VALUE_OUT_OF_RANGE),
                                         E_ACCESSDENIED, E_NOTIMPL, Code(0x8004A5F7), Code(0x80070020)));

TEST(FaultsTest, OfANestedKind_TellTheInnermostCode) {
    const Fault fault =
        FaultIn("<s:Code><s:Value>s:Receiver</s:Value><s:Subcode><s:Value>w:InternalError</s:Value></"
                "s:Subcode></s:Code>"
                "<s:Reason><s:Text xml:lang='de-DE'>Kaputt.</s:Text></s:Reason>"
                "<s:Detail><f:WSManFault Code='2150859011'><f:Message><f:ProviderFault><f:WSManFault "
                "Code='2147749905'>"
                "<f:Message>inside</f:Message></f:WSManFault><f:ExtendedError><p:StatusCode xsi:nil='true'/>"
                "</f:ExtendedError></f:ProviderFault></f:Message></f:WSManFault></s:Detail>");
    EXPECT_EQ(fault.code, Code(WBEM_E_PROVIDER_NOT_FOUND));
    EXPECT_TRUE(fault.isOurs);
    EXPECT_EQ(fault.reason, "Kaputt.");
}

TEST(FaultsTest, OfTheOtherKind_TellWmisCode) {
    const Fault fault =
        FaultIn("<s:Code><s:Subcode><s:Value>w:InternalError</s:Value></s:Subcode></s:Code><s:Detail>"
                "<p:MSFT_WmiError><p:MessageID>HRESULT 0x80041001</p:MessageID>"
                "<p:Message>Generic failure</p:Message>"
                "<p:error_Code>2147749891</p:error_Code></p:MSFT_WmiError></s:Detail>");
    EXPECT_EQ(fault.code, Code(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(fault.reason, "Generic failure");
}

TEST(FaultsTest, OfTheTransportOnly_MeanWhatTheirSubcodeDoes) {
    const auto meaning = [](const std::string& subcode, const std::string& detail = {}) {
        return FaultIn("<s:Code><s:Subcode><s:Value>" + subcode +
                       "</s:Value></s:Subcode></s:Code><s:Detail>" + detail +
                       "<f:WSManFault Code='2150858752'/></s:Detail>")
            .code;
    };
    EXPECT_EQ(meaning("wsa:DestinationUnreachable"), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(meaning("wsa:DestinationUnreachable",
                      "<FaultDetail>urn:x/faultDetail/InvalidNamespace</FaultDetail>"),
              Code(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(meaning("wsman:AccessDenied"), Code(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(meaning("wsen:CannotProcessFilter"), Code(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(meaning("wsman:TimedOut"), Code(WBEM_E_TIMED_OUT));
    EXPECT_EQ(meaning("x:Anything"), Code(WBEM_E_FAILED));
    EXPECT_EQ(FaultIn("").code, Code(WBEM_E_FAILED));
}

TEST(FaultsTest, SmallNumbersAreWindowsOwn_AndTextsAreShort) {
    EXPECT_EQ(FaultIn("<s:Detail><f:WSManFault Code='5'/></s:Detail>").code, E_ACCESSDENIED);
    EXPECT_EQ(
        FaultIn("<s:Reason><s:Text>unknown error: HRESULT 0x80041033 (shutting down)</s:Text></s:Reason>")
            .code,
        Code(WBEM_E_SHUTTING_DOWN));
    EXPECT_EQ(
        FaultIn("<s:Reason><s:Text>" + std::string(100'000, 'x') + "</s:Text></s:Reason>").reason.size(),
        500u);
    EXPECT_EQ(FaultIn("<s:Reason><s:Text>two\nlines\there</s:Text></s:Reason>").reason, "two lines here");
}

} // namespace

} // namespace quillet::tests
