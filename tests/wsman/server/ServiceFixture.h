// Requests as clients send them, to a simulated machine.
#pragma once

#include <server/Service.h>
#include <soap/ClassXml.h>
#include <soap/Names.h>
#include <soap/Values.h>

#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace quillet::tests {

using simulator::Machine;
using simulator::Operation;
using wmi::Value;
using wsman::Element;
using wsman::RequestHead;
using wsman::XmlDocument;

inline constexpr const char* kMachine = R"(
    instance of QuilletSimulator_Machine { Name = "lab"; ServerName = "SERVER12"; };
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Port <1> & \"more\""; Speed = 10000000000; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Port 2"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Name = "Port 3"; };
)";

inline const std::string kTransferUri = "http://schemas.xmlsoap.org/ws/2004/09/transfer/";
inline const std::string kEnumerationUri = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/";
inline const std::string kAdapters =
    "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/MarloLUM2/Zorel_PhysicalEthernetAdapter";

inline constexpr HRESULT Code(long long code) {
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

} // namespace quillet::tests
