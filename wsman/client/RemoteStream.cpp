// Pages of objects.
#include "client/RemoteStream.h"

#include "client/Failures.h"
#include "soap/ClassXml.h"
#include "soap/Names.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <chrono>
#include <utility>

namespace quillet::wsman {

namespace {

constexpr unsigned kMostEmptyPages = 100; // one after the other
constexpr std::size_t kMostPage = std::size_t{4} << 20;

bool IsEncodingLimit(const FaultError& error) {
    return error.What().subcode.ends_with("EncodingLimit");
}

} // namespace

RemoteStream::RemoteStream(const RemoteConnection& connection, const wmi::CallContext& context, Asked asked)
    : m_connection(connection), m_context(context), m_asked(std::move(asked)),
      m_pageSize(std::max(1U, connection.Machine().Options().pageSize)) {
    Begin();
}

RemoteStream::~RemoteStream() {
    Release();
}

Message RemoteStream::MessageOf(std::string_view action, std::string body) const {
    Message message;
    message.action = std::string(action);
    message.endpoint = m_asked.endpoint;
    message.body = std::move(body);
    message.context = &m_context;
    message.mostAnswer = kMostPage;
    return message;
}

std::string RemoteStream::EnumerateBody() const {
    XmlWriter xml;
    xml.Open("n:Enumerate").Open("w:OptimizeEnumeration").Close();
    xml.Leaf("w:MaxElements", std::to_string(m_pageSize));
    if (!m_asked.isOfClasses) {
        xml.Leaf("w:EnumerationMode", "EnumerateObjectAndEPR");
    }
    if (!m_asked.query.empty()) {
        xml.Open("w:Filter").Attribute("Dialect", kWqlDialect).Text(wmi::ToUtf8(m_asked.query)).Close();
    }
    return xml.Close().Take();
}

void RemoteStream::Begin() {
    constexpr unsigned kSmaller = 16;
    for (;; m_pageSize = std::max(1U, m_pageSize / kSmaller)) {
        Message message = MessageOf(kEnumerate, EnumerateBody());
        message.repeatable = Repeatable::Yes; // an enumeration that nobody goes on with is forgotten
        try {
            Take(m_connection.Machine().Ask(message));
            return;
        } catch (const FaultError& error) {
            if (!IsEncodingLimit(error) || m_pageSize == 1) {
                throw;
            }
        }
    }
}

void RemoteStream::Take(std::unique_ptr<Answer> answer) {
    const Element response = answer->Body().First();
    m_item = response.Child("Items").First();
    m_id = response.Child("EnumerationContext").Word();
    m_isEnd = static_cast<bool>(response.Child("EndOfSequence")) || m_id.empty();
    m_emptyPages = m_item ? 0 : m_emptyPages + 1;
    m_page = std::move(answer);
}

void RemoteStream::BeginPull() {
    XmlWriter xml;
    xml.Open("n:Pull").Leaf("n:EnumerationContext", m_id);
    xml.Leaf("n:MaxElements", std::to_string(m_pageSize)).Close();
    m_pull = m_connection.Machine().Begin(MessageOf(kPull, xml.Take()));
}

bool RemoteStream::Pull(LONG timeout) {
    if (m_emptyPages >= kMostEmptyPages) {
        m_connection.Machine().Fail(HRESULT(WBEM_E_TRANSPORT_FAILURE),
                                    "the enumeration does not come to an end");
    }
    if (m_pull == nullptr) {
        BeginPull();
    }
    try {
        if (!m_pull->Wait(timeout)) {
            return false;
        }
    } catch (const FaultError& error) {
        m_pull.reset();
        // An object that found no place waits for the next answer.
        if (!IsEncodingLimit(error) || m_pageSize == 1) {
            throw;
        }
        m_pageSize /= 2;
        return true;
    }
    Take(m_pull->Take());
    m_pull.reset();
    return true;
}

std::optional<wmi::Object> RemoteStream::ClassOf(const Element& element) const {
    wmi::ClassDefinition definition = ReadClass(element);
    if (m_asked.isShallow && !wmi::SameName(definition.superclass, m_asked.superclass)) {
        return std::nullopt;
    }
    if (!m_asked.superclass.empty() &&
        (wmi::SameName(definition.name, m_asked.superclass) || !definition.IsA(m_asked.superclass))) {
        return std::nullopt;
    }
    return wmi::Object{
        m_connection.Machine().Keep(m_connection.NamespaceName(), m_context.locale, std::move(definition)),
        nullptr};
}

std::optional<wmi::Object> RemoteStream::ObjectOf(const Element& item) const {
    if (m_asked.isOfClasses) {
        return ClassOf(item);
    }
    const Element reference = item.Child("EndpointReference");
    const bool isPair = item.Name() == "Item" && (reference || item.Space() == kWsman);
    if (isPair && !item.HasChildren()) {
        return wmi::Object(); // said to be there, and not handed out
    }
    const Element element = isPair && item.First().Name() == "EndpointReference" ? item.First().Next()
                            : isPair                                             ? item.First()
                                                                                 : item;
    if (!element || element.Name() == "EndpointReference") {
        throw MessageError("an object was asked for, and none is there");
    }
    if (element.Name() == "CLASS") {
        return wmi::Object{std::make_shared<wmi::ClassDefinition>(ReadClass(element)), nullptr};
    }
    if (!m_asked.only.empty() && !wmi::SameName(Wide(element.Name()), m_asked.only)) {
        return std::nullopt;
    }
    const bool isPart = m_asked.parsed && !m_asked.parsed->properties.empty();
    return isPart ? m_connection.ProjectionOf(m_context, element, *m_asked.parsed)
                  : m_connection.ObjectOf(m_context, element,
                                          isPair && reference ? ReadEndpoint(reference) : Endpoint());
}

HRESULT RemoteStream::Next(LONG timeout, std::span<wmi::Object> objects, ULONG& returned) {
    using Clock = std::chrono::steady_clock;
    returned = 0;
    if (objects.empty() || timeout < wmi::kInfiniteTimeout) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    if (FAILED(m_failure)) {
        RememberFailure(m_failureText);
        return m_failure;
    }
    const Clock::time_point begin = Clock::now();
    bool isLate = false;
    const wmi::Outcome outcome = m_connection.Ask([&] {
        while (returned < objects.size() && !isLate) {
            if (m_item) {
                const Element item = m_item;
                m_item = item.Next();
                if (std::optional<wmi::Object> object = ObjectOf(item)) {
                    objects[returned++] = std::move(*object);
                }
                // Whoever takes a second object goes on: the machine makes the next page while this one is
                // read.
                if (std::exchange(m_isRead, true) && !m_isEnd && m_pull == nullptr && m_pageSize > 1) {
                    BeginPull();
                }
            } else if (m_isEnd) {
                return;
            } else {
                const auto spent =
                    std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
                const LONG left = timeout == wmi::kInfiniteTimeout
                                      ? timeout
                                      : static_cast<LONG>(std::max<long long>(0, timeout - spent.count()));
                isLate = !Pull(left);
            }
        }
    });
    if (FAILED(outcome.status)) {
        m_failure = outcome.status;
        m_failureText = LastFailure();
        m_pull.reset();
        return m_failure;
    }
    if (isLate) {
        return WBEM_S_TIMEDOUT;
    }
    return returned == objects.size() ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE);
}

HRESULT RemoteStream::Reset() {
    Release();
    m_failure = S_OK;
    m_isRead = false;
    m_emptyPages = 0;
    return m_connection.Ask([this] { Begin(); }).status;
}

void RemoteStream::Release() noexcept {
    constexpr LONG kPatience = 2000; // milliseconds: the machine forgets it by itself, too
    const std::unique_ptr<Call> pull = std::move(m_pull);
    if (m_isEnd || m_id.empty() || FAILED(m_failure)) {
        return;
    }
    try {
        if (pull != nullptr) { // its answer has the name that the enumeration goes by
            if (!pull->Wait(kPatience)) {
                return;
            }
            Take(pull->Take());
            if (m_isEnd) {
                return;
            }
        }
        XmlWriter xml;
        xml.Open("n:Release").Leaf("n:EnumerationContext", m_id).Close();
        m_connection.Machine().Begin(MessageOf(kRelease, xml.Take()))->Wait(kPatience);
    } catch (const std::exception&) {
        // Whoever gives an enumeration up does not want to know.
    }
    m_id.clear();
}

} // namespace quillet::wsman
