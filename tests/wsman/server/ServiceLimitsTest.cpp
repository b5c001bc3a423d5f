// What a service refuses, and where it stops.
#include "ServiceFixture.h"

namespace quillet::tests {

namespace {

TEST_F(ServiceTest, HeadsThatLackSomething_AreRefused) {
    RequestHead head = Head(kTransferUri + "Get", kAdapters, "{A}");
    head.messageId.clear();
    EXPECT_EQ(Send(head).Fault().subcode, "a:MessageInformationHeaderRequired");
    head = Head(kTransferUri + "Get", kAdapters, "{A}");
    head.maxEnvelope = 8191;
    EXPECT_EQ(Send(head).Fault().detail, "MinimumEnvelopeLimit");
    head.maxEnvelope = 8192;
    EXPECT_EQ(Send(head).status, 200);
    std::string request = wsman::WriteRequest(Head(kTransferUri + "Get", kAdapters, "{A}"), {});
    request.insert(request.find("<a:To>"), "<q:Odd xmlns:q='urn:q' s:mustUnderstand='true'/>");
    const Answer odd(m_service->Answer(request, "admin"));
    EXPECT_EQ(odd.Body().Child("Fault").Child("Code").Child("Value").Word(), "s:MustUnderstand");
    EXPECT_EQ(odd.document.Root().Child("Header").Child("NotUnderstood").Attribute("qname"), "Odd");
    EXPECT_EQ(m_service->Answer("<a>", "admin").status, 400);
    EXPECT_EQ(Answer(m_service->Answer("<a/>", "admin")).Fault().subcode, "w:SchemaValidationError");
    EXPECT_EQ(Lines().size(), 1u);
}

wsman::ServiceOptions Forgetful() {
    wsman::ServiceOptions options;
    options.idleEnumeration = std::chrono::seconds(0);
    return options;
}

wsman::ServiceOptions OfTwo() {
    wsman::ServiceOptions options;
    options.maxEnumerations = 2;
    return options;
}

class ForgetfulServiceTest : public ServiceTest {
  protected:
    ForgetfulServiceTest() : ServiceTest(Forgetful()) {}
};

TEST_F(ForgetfulServiceTest, AnIdleEnumeration_IsForgotten) {
    const Answer begun = Enumerate("");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(Pull(begun.Body().Child("EnumerateResponse").Child("EnumerationContext").Word()).status, 500);
}

class CrowdedServiceTest : public ServiceTest {
  protected:
    CrowdedServiceTest() : ServiceTest(OfTwo()) {}
};

TEST_F(CrowdedServiceTest, TooManyEnumerations_AreRefused) {
    EXPECT_EQ(Enumerate("").status, 200);
    EXPECT_EQ(Enumerate("").status, 200);
    EXPECT_EQ(Enumerate("").Fault().subcode, "w:QuotaLimit");
}

TEST_F(ServiceTest, AnswersStayWithinTheirEnvelope) {
    SetCaptions(std::wstring(2000, L'x'));
    const std::string asked = "<w:OptimizeEnumeration/><w:MaxElements>50</w:MaxElements>";
    const Answer answer = Enumerate(asked, kAdapters, 8192);
    const std::size_t items = answer.Body().Child("EnumerateResponse").Child("Items").Children().size();
    EXPECT_GE(items, 1u);
    EXPECT_LT(items, 3u);
    EXPECT_FALSE(answer.Body().Child("EnumerateResponse").Child("EndOfSequence"));
    RequestHead head = Head(kEnumerationUri + "Enumerate", kAdapters);
    head.maxEnvelope = 8192;
    EXPECT_LE(
        m_service->Answer(wsman::WriteRequest(head, "<n:Enumerate>" + asked + "</n:Enumerate>"), "admin")
            .body.size(),
        8192u);
}

TEST_F(ServiceTest, AnObjectThatFitsNoAnswer_IsSaidToBeSo) {
    SetCaptions(std::wstring(20'000, L'x'));
    EXPECT_EQ(Enumerate("<w:OptimizeEnumeration/><w:MaxElements>1</w:MaxElements>", kAdapters, 8192)
                  .Fault()
                  .subcode,
              "w:EncodingLimit");
    RequestHead head = Head(kTransferUri + "Get", kAdapters, "{A}");
    head.maxEnvelope = 8192;
    EXPECT_EQ(Send(head).Fault().subcode, "w:EncodingLimit");
}

TEST_F(ServiceTest, AnObjectThatDidNotFit_IsThereForMoreRoom) {
    SetCaptions(std::wstring(20'000, L'x'));
    const std::string context =
        Enumerate("").Body().Child("EnumerateResponse").Child("EnumerationContext").Word();
    RequestHead head = Head(kEnumerationUri + "Pull", kAdapters);
    head.maxEnvelope = 8192;
    const std::string pull = "<n:Pull><n:EnumerationContext>" + context + "</n:EnumerationContext></n:Pull>";
    EXPECT_EQ(Send(head, pull).Fault().subcode, "w:EncodingLimit");
    EXPECT_EQ(Send(head, pull + "<!-- again -->").Fault().subcode, "w:EncodingLimit");
    EXPECT_EQ(Pull(context, "somebody").Fault().subcode, "n:InvalidEnumerationContext");
    EXPECT_EQ(Pull(context).Body().Child("PullResponse").Child("Items").Children().size(), 2u);
}

TEST_F(ServiceTest, ANumberOfObjectsThatIsNone_LosesNothing) {
    const std::string context =
        Enumerate("").Body().Child("EnumerateResponse").Child("EnumerationContext").Word();
    EXPECT_EQ(Send(Head(kEnumerationUri + "Pull", kAdapters),
                   "<n:Pull><n:EnumerationContext>" + context +
                       "</n:EnumerationContext><n:MaxElements>0</n:MaxElements></n:Pull>")
                  .Fault()
                  .subcode,
              "w:InvalidParameter");
    EXPECT_EQ(Pull(context).status, 200);
}

TEST_F(ServiceTest, AFault_HasTheActionOfItsKind) {
    EXPECT_EQ(Pull("nonsense").Action(), kEnumerationUri + "fault");
    EXPECT_EQ(Send(Head(kTransferUri + "Get", kAdapters, "{Z}")).Action(),
              "http://schemas.xmlsoap.org/ws/2004/08/addressing/fault");
    EXPECT_EQ(Send(Head(kTransferUri + "Put", kAdapters, "{A}")).Action(),
              "http://schemas.dmtf.org/wbem/wsman/1/wsman/fault");
}

TEST_F(ServiceTest, AReply_SaysWhatWasAskedAndHowItEnded) {
    const wsman::Reply found =
        m_service->Answer(wsman::WriteRequest(Head(kTransferUri + "Get", kAdapters, "{A}"), {}), "admin");
    EXPECT_EQ(found.action, kTransferUri + "Get");
    EXPECT_EQ(found.resource, kAdapters);
    EXPECT_EQ(found.result, "ok");
    EXPECT_EQ(
        m_service->Answer(wsman::WriteRequest(Head(kTransferUri + "Get", kAdapters, "{Z}"), {}), "admin")
            .result,
        "a:DestinationUnreachable 0x80041002");
}

void MakeSlow(Machine& machine, unsigned time) {
    simulator::FaultRule rule;
    rule.operation = Operation::GetObject;
    rule.effect = simulator::Effect::Delay;
    rule.milliseconds = time;
    rule.repeat = true;
    machine.Rules().Add(rule);
}

wsman::ServiceOptions Impatient() {
    wsman::ServiceOptions options;
    options.longest = std::chrono::milliseconds(50);
    options.maxLate = 2;
    return options;
}

TEST_F(ServiceTest, WhatTakesLongerThanTheClientWaits_TimesOutAndGoesOn) {
    MakeSlow(*m_machine, 200);
    m_machine->FollowRealTime(true);
    RequestHead head = Head(kTransferUri + "Get", kAdapters, "{A}");
    head.timeout = std::chrono::milliseconds(20);
    const auto start = std::chrono::steady_clock::now();
    const Answer late = Send(head);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(190));
    EXPECT_EQ(late.Fault().subcode, "w:TimedOut");
    EXPECT_TRUE(late.Fault().isOurs);
    EXPECT_EQ(late.document.Root().Child("Header").Child("RelatesTo").Word(), "uuid:1");
    head.timeout = std::chrono::seconds(30);
    EXPECT_EQ(Send(head).status, 200);
    m_service.reset(); // waits for the late one
    EXPECT_EQ(Lines().size(), 2u);
}

class ImpatientServiceTest : public ServiceTest {
  protected:
    ImpatientServiceTest() : ServiceTest(Impatient()) {}
};

TEST_F(ImpatientServiceTest, LateCalls_AreNotWithoutNumber) {
    MakeSlow(*m_machine, 400);
    m_machine->FollowRealTime(true);
    const RequestHead head = Head(kTransferUri + "Get", kAdapters, "{A}");
    EXPECT_EQ(Send(head).Fault().subcode, "w:TimedOut");
    EXPECT_EQ(Send(head).Fault().subcode, "w:TimedOut");
    EXPECT_EQ(Send(head).Fault().subcode, "w:QuotaLimit");
}

} // namespace

} // namespace quillet::tests
