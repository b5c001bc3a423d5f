// One machine: messages to it and its answers, and the classes that it has told.
#pragma once

#include "client/Http.h"
#include "soap/Envelope.h"
#include "soap/Values.h"

#include <quillet-wmi/Connection.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>

namespace quillet::wsman {

/// How the machine wants resources named; it depends on its age and kind.
enum class UriForm {
    Wmi, ///< "…/wmi/ROOT/MarloLUM2/Zorel_VLAN"
    Dmtf ///< "…/cim-schema/2/Zorel_VLAN", and the namespace as a selector
};

/// A machine's own refusal.
class FaultError : public RemoteError {
  public:
    FaultError(Fault fault, const std::string& host, const std::string& url)
        : RemoteError(fault.code, host + ": " + fault.reason + " (" + url + ")"), m_fault(std::move(fault)) {}
    const Fault& What() const noexcept { return m_fault; }

  private:
    Fault m_fault;
};

/// Classes themselves, as a resource.
Endpoint ClassEndpoint(const std::wstring& namespaceName, std::wstring_view className);

/// A request without what all requests have alike.
struct Message {
    std::string action;     ///< for a method: the name alone
    bool isMethod = false;  ///< whose action begins with its resource
    bool isOneForm = false; ///< its resource has one form only
    Endpoint endpoint{};    ///< in Wmi form
    std::string body{};     ///< for a method and an instance: see `bodyOf`
    /// Makes the body for the URI of the class, where it has to repeat that.
    std::function<std::string(const std::string& resource)> bodyOf{};
    const wmi::CallContext* context = nullptr;
    std::vector<wmi::NamedValue> options{}; ///< besides those of the context
    Repeatable repeatable = Repeatable::No;
    std::size_t mostAnswer = 0;            ///< bytes; 0: as many as there may be
    std::vector<std::string> byteArrays{}; ///< names of those that the answer may have
};

/// An answer, read.
class Answer {
  public:
    explicit Answer(std::string bytes) : m_document(std::move(bytes)), m_body(BodyOf(m_document.Root())) {}
    const Element& Body() const noexcept { return m_body; }
    const Element Root() const { return m_document.Root(); }

  private:
    XmlDocument m_document;
    Element m_body;
};

/// A request on its way.
class Call;

/// Safe for many threads.
class Peer {
  public:
    Peer(const RemoteOptions& options, const std::string& host);

    const std::string& Host() const noexcept { return m_host; }
    const RemoteOptions& Options() const noexcept { return m_options; }
    const std::string& Url() const noexcept { return m_http.Url(); }
    void Cancel() noexcept { m_http.Cancel(); }

    /// Throws RemoteError, with the machine and its URL in the text.
    [[noreturn]] void Fail(HRESULT code, const std::string& what) const;
    /// The same for an answer that cannot be read.
    [[noreturn]] void Unreadable(const std::string& why) const;

    /// Asks who is there. Throws RemoteError where nobody is who speaks WS-Management.
    void Identify();
    /// The name that the machine has itself, which is part of the object paths that its provider compares. It
    /// is asked for once; nothing for a machine that does not tell it. Throws RemoteError.
    std::wstring OwnName();
    /// Sends a message and waits for its answer. Throws RemoteError.
    std::unique_ptr<Answer> Ask(const Message& message);
    /// Sends a message.
    std::unique_ptr<Call> Begin(const Message& message);

    /// The class of a name in a namespace: told once, kept from then on. Null where there is none. Throws
    /// RemoteError.
    wmi::ClassPtr ClassOf(const std::wstring& namespaceName, std::wstring_view name,
                          const wmi::CallContext& context);
    /// Reads properties or parameters; see NullArrays.
    wmi::Instance Read(const wmi::ClassPtr& definition, const Element& holder, const Namespace& space);
    /// Keeps a class that was told otherwise.
    wmi::ClassPtr Keep(const std::wstring& namespaceName, LCID locale, wmi::ClassDefinition definition);

  private:
    friend class Call;

    RequestHead HeadOf(const Message& message, UriForm form) const;
    /// Reads an answer. Throws RemoteError; FaultError for one that is a fault.
    std::unique_ptr<Answer> Read(HttpAnswer answer, const RequestHead& head) const;
    void CheckStatus(const HttpAnswer& answer) const;
    wmi::ClassPtr FetchClass(const std::wstring& namespaceName, std::wstring_view name,
                             const wmi::CallContext& context);

    const RemoteOptions m_options;
    const std::string m_host;
    HttpClient m_http;
    std::atomic<UriForm> m_form{UriForm::Wmi};
    std::atomic<bool> m_isFormKnown{false};
    std::atomic<bool> m_tellsClasses{true};
    /// It tells what is null: an array that it does not tell is empty. Windows does, other servers do not.
    std::atomic<bool> m_tellsNulls{false};

    std::mutex m_nameMutex;
    std::optional<std::wstring> m_name; ///< see OwnName

    using ClassKey = std::tuple<std::wstring, std::wstring, LCID>; ///< namespace and name
    /// Without regard to case, also of names that are no keys.
    struct ClassKeyLess {
        using is_transparent = void;
        bool operator()(const auto& left, const auto& right) const noexcept {
            if (std::get<LCID>(left) != std::get<LCID>(right)) {
                return std::get<LCID>(left) < std::get<LCID>(right);
            }
            const int names = wmi::CompareNames(std::get<1>(left), std::get<1>(right));
            return names != 0 ? names < 0 : wmi::CompareNames(std::get<0>(left), std::get<0>(right)) < 0;
        }
    };
    std::mutex m_classesMutex;
    std::map<ClassKey, wmi::ClassPtr, ClassKeyLess> m_classes;
};

class Call {
  public:
    Call(Peer& peer, const Message& message);

    /// See HttpExchange::Wait. Throws RemoteError.
    bool Wait(LONG timeout);
    std::unique_ptr<Answer> Take() { return std::move(m_answer); }

  private:
    void Send();

    Peer& m_peer;
    const Message m_message;
    UriForm m_form;
    const bool m_mayChangeForm;
    RequestHead m_head;
    std::optional<FaultError> m_refused; ///< in the first form of the URI
    std::unique_ptr<HttpExchange> m_exchange;
    std::unique_ptr<Answer> m_answer;
};

} // namespace quillet::wsman
