// Requests as clients send them, to a simulated machine.
#include <server/Service.h>
#include <soap/ClassXml.h>
#include <soap/Names.h>
#include <soap/Values.h>

#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <gtest/gtest.h>

#include <thread>

namespace quillet::tests {

namespace {

using simulator::Machine;
using simulator::Operation;
using wmi::Value;
using wsman::Element;
using wsman::RequestHead;
using wsman::XmlDocument;

constexpr const char* kMachine = R"(
    instance of QuilletSimulator_Machine { Name = "lab"; ServerName = "SERVER12"; };
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Port <1> & \"more\""; Speed = 10000000000; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Port 2"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Name = "Port 3"; };
)";

const std::string kTransferUri = "http://schemas.xmlsoap.org/ws/2004/09/transfer/";
const std::string kEnumerationUri = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/";
const std::string kAdapters =
    "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/MarloLUM2/Zorel_PhysicalEthernetAdapter";

constexpr HRESULT Code(long long code) {
    return static_cast<HRESULT>(static_cast<std::uint32_t>(code));
}

/// An answer, parsed.
struct Answer {
    explicit Answer(wsman::Reply reply) : status(reply.status), document(std::move(reply.body)) {}

    Element Body() const { return wsman::BodyOf(document.Root()); }
    std::string Action() const { return document.Root().Child("Header").Child("Action").Word(); }
    wsman::Fault Fault() const { return wsman::ReadFault(Body().Child("Fault")); }

    int status;
    XmlDocument document;
};

class ServiceTest : public testing::Test {
  protected:
    explicit ServiceTest(wsman::ServiceOptions options = {})
        : m_machine(Machine::FromText(kMachine, "test.mof")) {
        std::shared_ptr<wmi::Connection> connection;
        wmi::ConnectArguments arguments;
        arguments.resource = L"ROOT\\MarloLUM2";
        const wmi::Outcome outcome = simulator::HostOf(m_machine)->Connect({}, arguments, connection);
        EXPECT_EQ(outcome.status, S_OK);
        m_machine->Calls().Clear();
        m_service.emplace(
            std::move(connection),
            [machine = m_machine](std::wstring_view name) { return machine->Store().FindClass(name); },
            options);
    }

    static RequestHead Head(const std::string& action, const std::string& resource,
                            const std::string& key = {}) {
        RequestHead head;
        head.action = action;
        head.messageId = "uuid:1";
        head.to = "https://server12:5986/wsman";
        head.endpoint.resource = resource;
        if (!key.empty()) {
            head.endpoint.selectors.push_back({"DeviceID", *wmi::FromUtf8(key)});
        }
        return head;
    }

    Answer Send(const RequestHead& head, const std::string& body = {}, const std::string& user = "admin") {
        return Answer(m_service->Answer(wsman::WriteRequest(head, body), user));
    }

    Answer Enumerate(const std::string& inside, const std::string& resource = kAdapters,
                     std::size_t most = 512'000) {
        RequestHead head = Head(kEnumerationUri + "Enumerate", resource);
        head.maxEnvelope = most;
        return Send(head, "<n:Enumerate>" + inside + "</n:Enumerate>");
    }

    Answer Pull(const std::string& context, const std::string& user = "admin") {
        return Send(Head(kEnumerationUri + "Pull", kAdapters),
                    "<n:Pull><n:EnumerationContext>" + context +
                        "</n:EnumerationContext><n:MaxElements>2</n:MaxElements></n:Pull>",
                    user);
    }

    void SetCaptions(const std::wstring& text) {
        for (const wmi::InstancePtr& each : m_machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter")) {
            wmi::Instance changed = *each;
            changed.Set(L"Caption", Value::Text(text));
            ASSERT_EQ(m_machine->Store().PutInstance(changed), S_OK);
        }
    }

    std::vector<std::wstring> Lines() const {
        std::vector<std::wstring> lines;
        for (const auto& call : m_machine->Calls().ProviderCalls()) {
            lines.push_back(call.Line());
        }
        return lines;
    }

    std::shared_ptr<Machine> m_machine;
    std::optional<wsman::Service> m_service;
};

TEST_F(ServiceTest, Identify_NeedsNoHead) {
    const Answer answer(m_service->Answer(
        R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Header/><s:Body>)"
        R"(<i:Identify xmlns:i="http://schemas.dmtf.org/wbem/wsman/identity/1/wsmanidentity.xsd"/></s:Body></s:Envelope>)",
        ""));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Body().Child("IdentifyResponse").Child("ProtocolVersion").Word(), wsman::kWsman);
    EXPECT_TRUE(Lines().empty());
}

TEST_F(ServiceTest, Get_YieldsAllProperties) {
    const Answer answer = Send(Head(kTransferUri + "Get", kAdapters, "{A}"));
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(answer.Action(), kTransferUri + "GetResponse");
    EXPECT_EQ(answer.document.Root().Child("Header").Child("RelatesTo").Word(), "uuid:1");
    const Element adapter = answer.Body().First();
    EXPECT_EQ(adapter.Name(), "Zorel_PhysicalEthernetAdapter");
    EXPECT_EQ(adapter.Space(),
              "http://schemas.microsoft.com/wbem/wsman/1/wmi/ROOT/MarloLUM2/Zorel_PhysicalEthernetAdapter");
    EXPECT_EQ(adapter.Child("Name").Text(), L"Port <1> & \"more\"");
    EXPECT_EQ(adapter.Child("Speed").Word(), "10000000000");
    EXPECT_TRUE(adapter.Child("Caption").IsNil());
    EXPECT_EQ(Lines().size(), 1u);
}

TEST_F(ServiceTest, WhatIsNotThere_IsWmisOwnCode) {
    EXPECT_EQ(Send(Head(kTransferUri + "Get", kAdapters, "{Z}")).Fault().code, Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(Send(Head(kTransferUri + "Get", kAdapters + "s", "{A}")).Fault().code,
              Code(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(Send(Head(kTransferUri + "Get", kAdapters)).status, 500);
    EXPECT_EQ(
        Send(Head(kTransferUri + "Get", "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/cimv2/X", "{A}"))
            .Fault()
            .code,
        Code(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(Send(Head(kTransferUri + "Dance", kAdapters, "{A}")).Fault().subcode, "a:ActionNotSupported");
    EXPECT_EQ(Enumerate("", kAdapters + "s").Fault().code, Code(WBEM_E_INVALID_CLASS));
}

TEST_F(ServiceTest, AFaultOfTheMachine_ComesThrough) {
    simulator::FaultRule rule;
    rule.operation = Operation::GetObject;
    rule.code = Code(0x8004A5F7);
    m_machine->Rules().Add(rule);
    EXPECT_EQ(Send(Head(kTransferUri + "Get", kAdapters, "{A}")).Fault().code, Code(0x8004A5F7));
}

TEST_F(ServiceTest, AClass_IsTold) {
    RequestHead head = Head(kTransferUri + "Get", std::string(wsman::kClassesAsXml));
    head.endpoint.selectors = {{"__cimnamespace", L"root/MarloLUM2"}, {"ClassName", L"Zorel_VLAN"}};
    const Answer answer = Send(head);
    ASSERT_EQ(answer.status, 200);
    const wmi::ClassDefinition read = wsman::ReadClass(answer.Body().First());
    EXPECT_EQ(read.name, L"Zorel_VLAN");
    EXPECT_NE(read.FindProperty(L"VLANNumber"), nullptr);
    head.endpoint.selectors.pop_back();
    EXPECT_EQ(Send(head).Fault().subcode, "w:InvalidSelectors");
}

TEST_F(ServiceTest, AnEnumeration_GoesOnUntilItsEnd) {
    const Answer first = Enumerate("<w:OptimizeEnumeration/><w:MaxElements>1</w:MaxElements>"
                                   "<w:EnumerationMode>EnumerateObjectAndEPR</w:EnumerationMode>");
    const Element begun = first.Body().Child("EnumerateResponse");
    ASSERT_EQ(begun.Child("Items").Children().size(), 1u);
    const Element item = begun.Child("Items").First();
    EXPECT_EQ(item.Child("Zorel_PhysicalEthernetAdapter").Child("DeviceID").Text(), L"{A}");
    EXPECT_EQ(wsman::ReadEndpoint(item).Find("DeviceID")->value, L"{A}");
    EXPECT_FALSE(begun.Child("EndOfSequence"));
    const std::string context = begun.Child("EnumerationContext").Word();
    EXPECT_EQ(Pull(context, "somebody").Fault().subcode, "n:InvalidEnumerationContext");
    const Answer second = Pull(context);
    EXPECT_EQ(second.Body().Child("PullResponse").Child("Items").Children().size(), 2u);
    EXPECT_EQ(Pull(context).Fault().subcode, "n:InvalidEnumerationContext") << "an identifier serves once";
    const std::string next = second.Body().Child("PullResponse").Child("EnumerationContext").Word();
    const Answer third = Pull(next);
    EXPECT_TRUE(third.Body().Child("PullResponse").Child("EndOfSequence"));
    EXPECT_TRUE(third.Body().Child("PullResponse").Child("EnumerationContext").Word().empty());
    EXPECT_TRUE(third.Body().Child("PullResponse").Child("Items").Children().empty());
}

TEST_F(ServiceTest, AnEnumeration_MayBeReleased) {
    const Answer begun = Enumerate("");
    const std::string context = begun.Body().Child("EnumerateResponse").Child("EnumerationContext").Word();
    EXPECT_FALSE(context.empty());
    const std::string release =
        "<n:Release><n:EnumerationContext>" + context + "</n:EnumerationContext></n:Release>";
    EXPECT_EQ(Send(Head(kEnumerationUri + "Release", kAdapters), release).status, 200);
    EXPECT_EQ(Pull(context).status, 500);
}

TEST_F(ServiceTest, AQuery_FindsObjectsOrParts) {
    const std::string all = "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/MarloLUM2/*";
    const auto ask = [&](const std::string& query) {
        return Enumerate("<w:OptimizeEnumeration/><w:MaxElements>50</w:MaxElements><w:Filter Dialect='"
                         "http://schemas.microsoft.com/wbem/wsman/1/WQL'>" +
                             query + "</w:Filter>",
                         all);
    };
    const Answer whole = ask("SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE Name = 'Port 2'");
    const Element items = whole.Body().Child("EnumerateResponse").Child("Items");
    ASSERT_EQ(items.Children().size(), 1u);
    EXPECT_EQ(items.First().Child("DeviceID").Text(), L"{B}");
    EXPECT_TRUE(whole.Body().Child("EnumerateResponse").Child("EndOfSequence"));
    const Answer part = ask("SELECT Name FROM Zorel_PhysicalEthernetAdapter");
    const Element fragment = part.Body().Child("EnumerateResponse").Child("Items").First();
    EXPECT_EQ(fragment.Name(), "XmlFragment");
    EXPECT_EQ(fragment.First().Name(), "Name");
    EXPECT_EQ(ask("SELECT nonsense").Fault().code, Code(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(Enumerate("<w:Filter Dialect='urn:other'>x</w:Filter>", all).Fault().subcode,
              "n:FilterDialectRequestedUnavailable");
}

TEST_F(ServiceTest, AMethod_GetsItsParametersAndTheContext) {
    RequestHead head = Head(kAdapters + "/IdentifyAdapter", kAdapters, "{B}");
    head.options = {{L"ClientSetHandle", VT_I4, CIM_SINT32, Value::Signed(7)}};
    const Answer answer = Send(head, "<p:IdentifyAdapter_INPUT xmlns:p='" + kAdapters +
                                         "'><p:nSeconds>12</p:nSeconds></p:IdentifyAdapter_INPUT>");
    ASSERT_EQ(answer.status, 200) << answer.Fault().reason;
    EXPECT_EQ(answer.Body().First().Name(), "IdentifyAdapter_OUTPUT");
    EXPECT_EQ(answer.Body().First().Child("ReturnValue").Word(), "0");
    EXPECT_EQ(answer.Action(), kAdapters + "/IdentifyAdapterResponse");
    EXPECT_GT(m_machine->BlinksFor(L"{B}").count(), 0);
    const auto calls = m_machine->Calls().ProviderCalls();
    ASSERT_EQ(calls.size(), 1u);
    ASSERT_NE(calls[0].ContextValue(L"ClientSetHandle"), nullptr);
    EXPECT_TRUE(calls[0].ContextValue(L"ClientSetHandle")->value == Value::Signed(7));
    EXPECT_EQ(Send(Head(kAdapters + "/Dance", kAdapters, "{B}")).Fault().code, Code(WBEM_E_INVALID_METHOD));
    EXPECT_EQ(Send(Head(kAdapters + "/a><b/><a", kAdapters, "{B}")).Fault().subcode, "a:ActionNotSupported");
    EXPECT_EQ(Send(head, "<x><unknown>1</unknown></x>").Fault().subcode, "w:SchemaValidationError");
    EXPECT_EQ(Send(head, "<x><nSeconds>soon</nSeconds></x>").Fault().subcode, "w:SchemaValidationError");
}

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

class ChangesTest : public testing::Test {
  protected:
    ChangesTest() {
        std::shared_ptr<wmi::Connection> connection;
        wmi::ConnectArguments arguments;
        arguments.resource = L"ROOT\\MarloLUM2";
        EXPECT_EQ(simulator::HostOf(m_machine)->Connect({}, arguments, connection).status, S_OK);
        m_space.server = connection->ServerName();
        m_space.name = connection->NamespaceName();
        m_space.classOf = [this](std::wstring_view name) { return m_machine->Store().FindClass(name); };
        m_service.emplace(std::move(connection), m_space.classOf);
    }

    Answer Send(const std::string& verb, const wmi::Instance& instance, const std::string& body) {
        RequestHead head;
        head.action = kTransferUri + verb;
        head.messageId = "uuid:1";
        head.endpoint = wsman::EndpointOf(wmi::RelativePath(instance), m_space);
        if (verb == "Create") {
            head.endpoint.selectors.clear();
        }
        return Answer(m_service->Answer(wsman::WriteRequest(head, body), "admin"));
    }

    std::string BodyWith(const wmi::Instance& instance) const {
        wsman::XmlWriter xml;
        xml.Open("p:X").Declare("p", "urn:p");
        wsman::WriteProperties(xml, "p", instance, m_space, wsman::DateTimeForm::Cim);
        xml.Close();
        return xml.Take();
    }

    std::shared_ptr<Machine> m_machine = Machine::BuiltIn();
    wsman::Namespace m_space;
    std::optional<wsman::Service> m_service;
};

TEST_F(ChangesTest, Put_WritesAWholeInstance) {
    const auto settings = m_machine->Store().Instances(L"Zorel_AdapterSettingInt");
    ASSERT_FALSE(settings.empty());
    wmi::Instance changed = *settings.front();
    const std::int64_t wanted = changed.Number(L"DefaultValue") == changed.Number(L"CurrentValue")
                                    ? changed.Number(L"Min")
                                    : changed.Number(L"DefaultValue");
    changed.Set(L"CurrentValue", Value::Signed(wanted));
    const Answer answer = Send("Put", changed, BodyWith(changed));
    ASSERT_EQ(answer.status, 200) << answer.Fault().reason;
    const auto path = wmi::ObjectPath::Parse(wmi::RelativePath(changed));
    EXPECT_EQ(m_machine->Store().FindInstance(*path)->Number(L"CurrentValue"), wanted);
    EXPECT_EQ(Send("Put", changed, "").Fault().subcode, "w:SchemaValidationError");
    EXPECT_EQ(Send("Put", changed, "<p:X xmlns:p='urn:p'><p:Unknown>1</p:Unknown></p:X>").Fault().subcode,
              "w:SchemaValidationError");
}

TEST_F(ChangesTest, Delete_TakesAnInstanceAway) {
    const auto vlans = m_machine->Store().Instances(L"Zorel_VLAN");
    ASSERT_FALSE(vlans.empty());
    const wmi::Instance vlan = *vlans.back();
    const Answer answer = Send("Delete", vlan, "");
    EXPECT_EQ(answer.status, 200) << answer.Fault().reason;
    EXPECT_EQ(Send("Delete", vlan, "").Fault().code, Code(WBEM_E_NOT_FOUND));
}

TEST_F(ChangesTest, Create_RefusesWhatIsThere) {
    const auto vlans = m_machine->Store().Instances(L"Zorel_VLAN");
    ASSERT_FALSE(vlans.empty());
    EXPECT_EQ(Send("Create", *vlans.back(), BodyWith(*vlans.back())).status, 500);
}

} // namespace

} // namespace quillet::tests
