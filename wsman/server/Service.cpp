// From a message to its answer.
#include "server/Service.h"

#include "server/Request.h"
#include "soap/Names.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

/// The action of a fault, which goes by the prefix of its subcode.
std::string_view FaultAction(std::string_view subcode) {
    struct Row {
        std::string_view prefix;
        std::string_view action;
    };
    constexpr Row kRows[] = {{"w:", "http://schemas.dmtf.org/wbem/wsman/1/wsman/fault"},
                             {"n:", "http://schemas.xmlsoap.org/ws/2004/09/enumeration/fault"},
                             {"x:", "http://schemas.xmlsoap.org/ws/2004/09/transfer/fault"}};
    for (const Row& row : kRows) {
        if (subcode.starts_with(row.prefix)) {
            return row.action;
        }
    }
    return "http://schemas.xmlsoap.org/ws/2004/08/addressing/fault";
}

/// Who is there: the same for everybody, and of every machine.
Reply Identity() {
    XmlWriter xml;
    xml.Open("wsmid:IdentifyResponse").Declare("wsmid", kIdentity);
    xml.Leaf("wsmid:ProtocolVersion", kWsman).Leaf("wsmid:ProductVendor", "Marlo Works");
    xml.Leaf("wsmid:ProductVersion", "OS: 0.0.0 SP: 0.0 Stack: 3.0").Close();
    return {200, WriteResponse({}, {}, xml.Written()), {}, {}, "ok"};
}

Reply ReplyWith(const Fault& fault, const std::string& relatesTo, const std::string& machine,
                const std::string& notUnderstood = {}) {
    XmlWriter body;
    WriteFault(body, fault, machine);
    Reply reply{500, WriteResponse(FaultAction(fault.subcode), relatesTo, body.Written(), notUnderstood)};
    reply.result = (fault.subcode.empty() ? "s:MustUnderstand" : fault.subcode) + ' ' + CodeText(fault.code);
    return reply;
}

bool IsIdentify(const RequestHead& head, const Element& envelope) {
    return head.action.empty() && BodyOf(envelope).First().Name() == "Identify";
}

/// Whether the head has what every request must have. Throws Failed.
void CheckHead(const RequestHead& head) {
    if (!head.notUnderstood.empty()) {
        throw Failed{{HRESULT(WBEM_E_INVALID_PARAMETER), "", false, "",
                      "The header " + head.notUnderstood + " must be understood, and is not."}};
    }
    if (head.messageId.empty() || head.action.empty() || !head.hasReplyTo) {
        Fail("a:MessageInformationHeaderRequired", "Action, MessageID and ReplyTo are needed.");
    }
    if (!head.isReplyAnonymous) {
        Fail("w:UnsupportedFeature", "An answer goes back the way its request came.", "AddressingMode");
    }
    if (head.isLocaleForced) {
        Fail("w:UnsupportedFeature", "No language is a must.", "Locale");
    }
    if (head.maxEnvelope < kLeastEnvelope) {
        Fail("w:EncodingLimit", "Answers of this size have no room for an object.", "MinimumEnvelopeLimit");
    }
    if (head.endpoint.resource.empty()) {
        Fail("a:DestinationUnreachable", "A resource URI is needed.", "InvalidResourceURI");
    }
}

} // namespace

Service::Service(std::shared_ptr<wmi::Connection> connection, Schema schema, ServiceOptions options)
    : m_connection(std::move(connection)), m_schema(std::move(schema)), m_options(options),
      m_enumerations(options.maxEnumerations, options.idleEnumeration) {}

Reply Service::Answer(std::string request, const std::string& user) {
    RequestHead head;
    Reply reply = AnswerWith(head, std::move(request), user);
    reply.action = std::move(head.action);
    reply.resource = std::move(head.endpoint.resource);
    return reply;
}

Reply Service::AnswerWith(RequestHead& head, std::string request, const std::string& user) {
    return WithFaults(head, [&] {
        const auto asked = std::make_shared<Asked>(std::move(request));
        asked->head = ReadRequestHead(asked->document.Root());
        head = asked->head;
        if (IsIdentify(head, asked->document.Root())) {
            head.action = "Identify";
            return Identity();
        }
        CheckHead(head);
        return AnswerInTime(asked, user);
    });
}

Reply Service::WithFaults(const RequestHead& head, const std::function<Reply()>& answer) const {
    const std::string machine = wmi::ToUtf8(m_connection->ServerName());
    try {
        return answer();
    } catch (const Failed& failed) {
        return ReplyWith(failed.fault, head.messageId, machine, head.notUnderstood);
    } catch (const MessageError& error) {
        return ReplyWith({HRESULT(WBEM_E_INVALID_PARAMETER), "w:SchemaValidationError", false, "",
                          std::string("The message cannot be read: ") + error.what() + '.'},
                         head.messageId, machine);
    } catch (const XmlError& error) {
        return {400, std::string("The message cannot be read: ") + error.what() + ".\n", {}, {}, "no XML"};
    }
}

Reply Service::AnswerInTime(std::shared_ptr<Asked> asked, const std::string& user) {
    if (!HasRoom()) {
        Fail(HRESULT(WBEM_E_SERVER_TOO_BUSY), "Too many calls take longer than their clients waited.");
    }
    const auto patience = std::clamp(asked->head.timeout, std::chrono::milliseconds(0), m_options.longest);
    const auto task = std::make_shared<std::packaged_task<Reply()>>(
        [this, asked, user] { return WithFaults(asked->head, [&] { return AnswerWholly(*asked, user); }); });
    std::future<Reply> answer = task->get_future();
    m_workers.Run([task] { (*task)(); });
    if (answer.wait_for(patience) == std::future_status::ready) {
        return answer.get();
    }
    {
        const std::lock_guard lock(m_mutex);
        m_late.push_back(std::move(answer));
    }
    Fail(HRESULT(WBEM_E_TIMED_OUT), "The call takes longer than the request allows, and goes on.");
}

Reply Service::AnswerWholly(const Asked& asked, const std::string& user) {
    const RequestHead& head = asked.head;
    const std::string body = Request(*this, asked.document.Root(), head, user).Answer();
    Reply reply{200, WriteResponse(head.action + "Response", head.messageId, body)};
    if (reply.body.size() > std::min(head.maxEnvelope, m_options.maxEnvelope)) {
        Fail("w:EncodingLimit", "The answer is larger than it may be.", "MaxEnvelopeSizeExceeded");
    }
    reply.result = "ok";
    return reply;
}

bool Service::HasRoom() {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_late, [](const std::future<Reply>& each) {
        return each.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
    return m_late.size() < m_options.maxLate;
}

std::optional<Reply> Service::AnswerStranger(std::string request) {
    try {
        const XmlDocument document(std::move(request));
        if (IsIdentify(ReadRequestHead(document.Root()), document.Root())) {
            return Identity();
        }
    } catch (const std::runtime_error&) {
        // Whoever asks for something else, and however, hears the same.
    }
    return std::nullopt;
}

} // namespace quillet::wsman
