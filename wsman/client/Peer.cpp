// Sending messages and reading answers.
#include "client/Peer.h"

#include "soap/ClassXml.h"
#include "soap/Faults.h"
#include "soap/Languages.h"
#include "soap/Names.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

constexpr std::size_t kMostAnswer = std::size_t{384} << 20;
/// Images of flash memory come whole, with some thirty bytes of XML for each of theirs, which are not kept.
constexpr std::size_t kMostBytes = std::size_t{640} << 20;

/// Whether content is a message, whatever else is told of its type.
bool IsSoap(std::string_view type) {
    const auto begins = [type](std::string_view name) {
        return type.size() >= name.size() && wmi::SameName(Wide(type.substr(0, name.size())), Wide(name));
    };
    return begins("application/soap+xml") || begins("text/xml") || begins("application/xml");
}

/// The same resource as servers of the other kind name it.
Endpoint InDmtfForm(const Endpoint& endpoint) {
    if (!endpoint.resource.starts_with(kWmiClasses)) {
        return endpoint;
    }
    const Resource resource = ResourceOf(endpoint);
    Endpoint other = endpoint;
    other.resource = resource.className == L"*" ? std::string(kDmtfAllClasses)
                                                : std::string(kDmtfClasses) + wmi::ToUtf8(resource.className);
    for (Selector& selector : other.selectors) {
        if (selector.reference != nullptr) {
            selector.reference = std::make_shared<const Endpoint>(InDmtfForm(*selector.reference));
        }
    }
    if (other.Find(kNamespaceSelector) == nullptr) {
        other.selectors.push_back(
            {std::string(kNamespaceSelector), Wide(WithSlashes(resource.namespaceName))});
    }
    return other;
}

/// Whether a fault may mean that the server does not know this form of a URI. Nothing was done then.
bool MayBeForm(const Fault& fault) {
    if (fault.isCodeTold) { // WMI has seen it
        return false;
    }
    return fault.subcode.ends_with("DestinationUnreachable") ||
           fault.subcode.ends_with("ActionNotSupported") || fault.subcode.ends_with("InvalidSelectors");
}

/// Whether the server cannot tell classes, as opposed to having none of the name.
bool CannotTell(const Fault& fault) {
    return fault.subcode.ends_with("ActionNotSupported") || fault.subcode.ends_with("UnsupportedFeature") ||
           fault.subcode.ends_with("InvalidSelectors") || fault.subcode.ends_with("InvalidOptions");
}

} // namespace

Endpoint ClassEndpoint(const std::wstring& namespaceName, std::wstring_view className) {
    Endpoint endpoint{std::string(kClassesAsXml)};
    endpoint.selectors.push_back({std::string(kNamespaceSelector), Wide(WithSlashes(namespaceName))});
    if (!className.empty()) {
        endpoint.selectors.push_back({"ClassName", std::wstring(className)});
    }
    return endpoint;
}

Peer::Peer(const RemoteOptions& options, const std::string& host)
    : m_options(options), m_host(host), m_http(options, host) {}

void Peer::Fail(HRESULT code, const std::string& what) const {
    throw RemoteError(code, m_host + ": " + what + " (" + Url() + ")");
}

void Peer::Unreadable(const std::string& why) const {
    Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "the answer cannot be read: " + why);
}

void Peer::CheckStatus(const HttpAnswer& answer) const {
    const std::string number = "HTTP status " + std::to_string(answer.status);
    switch (answer.status) {
    case 401:
        Fail(E_ACCESSDENIED,
             m_options.authentication == Authentication::Negotiate
                 ? "it does not take the caller's ticket, or there is none"
                 : "it does not take this user and password, or not this way of proving them");
    case 403:
        Fail(E_ACCESSDENIED, "it refuses the request (" + number + ')');
    case 404:
    case 405:
        Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "there is no WS-Management here (" + number + ')');
    case 413:
        Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "the request is larger than it takes");
    default:
        break;
    }
    if (answer.status == 500 && answer.body.empty()) {
        Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE),
             "it refuses the request without a reason; unprotected messages are refused so");
    }
    if (!IsSoap(answer.type)) {
        Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "what answers is no WS-Management (" + number + ')');
    }
}

RequestHead Peer::HeadOf(const Message& message, UriForm form) const {
    RequestHead head;
    head.endpoint = form == UriForm::Dmtf ? InDmtfForm(message.endpoint) : message.endpoint;
    head.action = message.isMethod ? head.endpoint.resource + '/' + message.action : message.action;
    head.messageId = NewMessageId();
    head.to = Url();
    head.maxEnvelope = message.mostAnswer != 0      ? message.mostAnswer
                       : message.byteArrays.empty() ? kMostAnswer
                                                    : kMostBytes;
    head.timeout = m_options.timeout;
    if (message.context != nullptr) {
        head.locale = LanguageTag(message.context->locale);
        head.options = message.context->values;
    }
    head.options.insert(head.options.end(), message.options.begin(), message.options.end());
    if (message.endpoint.resource == kClassesAsXml) {
        head.transportOptions = {"IncludeQualifiers", "IncludeInheritedElements", "IncludeClassOrigin",
                                 "IncludeInheritanceHierarchy"};
        if (message.action == kEnumerate) {
            head.transportOptions.emplace_back(kIncludeSubClasses);
        }
    } else {
        head.transportOptions = {std::string(kPreciseArrays)};
    }
    return head;
}

std::unique_ptr<Answer> Peer::Read(HttpAnswer answer, const RequestHead& head) const {
    CheckStatus(answer);
    std::unique_ptr<Answer> read;
    std::optional<Fault> fault;
    try {
        read = std::make_unique<Answer>(std::move(answer.body));
        const std::string relatesTo = read->Root().Child("Header").Child("RelatesTo").Word();
        if (!relatesTo.empty() && relatesTo != head.messageId) {
            Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "the answer is one to another request");
        }
        if (const Element element = read->Body().Child("Fault")) {
            fault = ReadFault(element);
        }
    } catch (const XmlError& error) {
        Unreadable(error.what());
    } catch (const MessageError& error) {
        Unreadable(error.what());
    }
    if (!fault) {
        if (answer.status != 200) {
            Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE),
                 "what answers is no WS-Management (HTTP status " + std::to_string(answer.status) + ')');
        }
        return read;
    }
    throw FaultError(std::move(*fault), m_host, Url());
}

void Peer::Identify() {
    XmlWriter xml;
    xml.Open("s:Envelope").Declare("s", kSoap).Declare("wsmid", kIdentity);
    xml.Open("s:Header").Close().Open("s:Body").Open("wsmid:Identify").Close().Close().Close();
    const auto exchange = m_http.Begin(xml.Take(), Repeatable::Yes, kLeastEnvelope * 8);
    exchange->Wait(LONG(WBEM_INFINITE));
    const auto answer = Read(exchange->Take(), {});
    const Element identity = answer->Body().Child("IdentifyResponse");
    if (!identity) {
        Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE), "what answers is no WS-Management");
    }
    // "OS: 10.0.20348 SP: 0.0 Stack: 3.0"
    m_tellsNulls = identity.Child("ProductVersion").Word().find("Stack:") != std::string::npos;
}

std::wstring Peer::OwnName() {
    if (!m_options.serverName.empty()) {
        return m_options.serverName;
    }
    const std::lock_guard lock(m_nameMutex);
    if (!m_name) {
        Message message;
        message.action = std::string(kGet);
        message.endpoint.resource = std::string(kOperatingSystem);
        message.repeatable = Repeatable::Yes;
        message.isOneForm = true;
        try {
            const auto answer = Ask(message);
            m_name = answer->Body().First().Child("CSName").Text();
        } catch (const FaultError&) {
            m_name.emplace(); // no Windows, or no right to ask
        } catch (const XmlError& error) {
            Unreadable(error.what());
        }
        if (!wmi::ObjectPath::Parse(L"\\\\" + *m_name + L"\\ROOT:C")) {
            m_name.emplace();
        }
    }
    return *m_name;
}

std::unique_ptr<Answer> Peer::Ask(const Message& message) {
    const std::unique_ptr<Call> call = Begin(message);
    call->Wait(LONG(WBEM_INFINITE));
    return call->Take();
}

std::unique_ptr<Call> Peer::Begin(const Message& message) {
    return std::make_unique<Call>(*this, message);
}

wmi::ClassPtr Peer::ClassOf(const std::wstring& namespaceName, std::wstring_view name,
                            const wmi::CallContext& context) {
    {
        const std::tuple<std::wstring_view, std::wstring_view, LCID> wanted(namespaceName, name,
                                                                            context.locale);
        const std::lock_guard lock(m_classesMutex);
        if (const auto found = m_classes.find(wanted); found != m_classes.end()) {
            return found->second;
        }
    }
    wmi::ClassPtr fetched = FetchClass(namespaceName, name, context);
    if (fetched == nullptr) {
        return nullptr;
    }
    // Of two threads that asked at the same time the first one's stays: an instance is compared with others
    // by the class that it points to.
    const std::lock_guard lock(m_classesMutex);
    return m_classes.emplace(ClassKey(namespaceName, name, context.locale), std::move(fetched)).first->second;
}

wmi::Instance Peer::Read(const wmi::ClassPtr& definition, const Element& holder, const Namespace& space) {
    if (!m_tellsNulls && MarksNullArrays(holder)) {
        m_tellsNulls = true;
    }
    return ReadProperties(definition, holder, space, Unknown::Ignored,
                          m_tellsNulls ? NullArrays::Marked : NullArrays::LikeScalars);
}

wmi::ClassPtr Peer::Keep(const std::wstring& namespaceName, LCID locale, wmi::ClassDefinition definition) {
    const ClassKey key(namespaceName, definition.name, locale);
    const std::lock_guard lock(m_classesMutex);
    const auto found = m_classes.find(key);
    return found != m_classes.end()
               ? found->second
               : m_classes.emplace(key, std::make_shared<wmi::ClassDefinition>(std::move(definition)))
                     .first->second;
}

wmi::ClassPtr Peer::FetchClass(const std::wstring& namespaceName, std::wstring_view name,
                               const wmi::CallContext& context) {
    const auto known = [&]() { return m_options.schema ? m_options.schema(name) : nullptr; };
    if (wmi::ClassPtr trusted = m_options.isSchemaTrusted || !m_tellsClasses ? known() : nullptr) {
        return trusted;
    }
    if (!m_tellsClasses) {
        return nullptr;
    }
    wmi::CallContext plain; // what a context asks for is none of the classes' business
    plain.locale = context.locale;
    Message message;
    message.action = std::string(kGet);
    message.endpoint = ClassEndpoint(namespaceName, name);
    message.context = &plain;
    message.repeatable = Repeatable::Yes;
    message.mostAnswer = std::size_t{16} << 20;
    try {
        const auto answer = Ask(message);
        const Element element = answer->Body().First();
        return std::make_shared<wmi::ClassDefinition>(ReadClass(element));
    } catch (const MessageError& error) {
        Unreadable(error.what());
    } catch (const FaultError& error) {
        if (CannotTell(error.What())) {
            m_tellsClasses = false;
            return known();
        }
        if (error.What().subcode.ends_with("DestinationUnreachable")) {
            // Without such a class, or without a way to tell classes: servers answer both so.
            return known();
        }
        throw;
    }
}

Call::Call(Peer& peer, const Message& message)
    : m_peer(peer), m_message(message), m_form(peer.m_form),
      m_mayChangeForm(!peer.m_isFormKnown && !message.isOneForm &&
                      message.endpoint.resource.starts_with(kWmiClasses)) {
    Send();
}

void Call::Send() {
    m_head = m_peer.HeadOf(m_message, m_form);
    const std::string body = m_message.bodyOf ? m_message.bodyOf(m_head.endpoint.resource) : m_message.body;
    m_exchange = m_peer.m_http.Begin(WriteRequest(m_head, body), m_message.repeatable,
                                     m_head.maxEnvelope + kLeastEnvelope, m_message.byteArrays);
}

bool Call::Wait(LONG timeout) {
    while (m_answer == nullptr) {
        if (!m_exchange->Wait(timeout)) {
            return false;
        }
        const bool mayChange = m_mayChangeForm && m_form == UriForm::Wmi;
        try {
            m_answer = m_peer.Read(m_exchange->Take(), m_head);
        } catch (const FaultError& error) {
            if (m_refused) { // the first form's reason says more
                throw FaultError(*m_refused);
            }
            if (!mayChange || !MayBeForm(error.What())) {
                throw;
            }
            m_refused = error;
            m_form = UriForm::Dmtf;
            Send();
            continue;
        }
        if (m_mayChangeForm) {
            m_peer.m_form = m_form;
            m_peer.m_isFormKnown = true;
        }
    }
    return true;
}

} // namespace quillet::wsman
