// What a service answers.
#include "ServiceFixture.h"

namespace quillet::tests {

namespace {

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
