// Answers requests of WS-Management for one namespace of one machine, whatever brings them.
#pragma once

#include "server/Enumerations.h"
#include "server/Workers.h"
#include "soap/Envelope.h"

#include <quillet-wmi/Connection.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillet::wsman {

class Request;

struct ServiceOptions {
    std::size_t maxEnvelope = 512'000;          ///< the most bytes of an answer
    std::size_t maxItems = 32'000;              ///< the most objects of one
    std::size_t maxEnumerations = 1'500;        ///< begun at a time
    std::chrono::seconds idleEnumeration{60};   ///< how long one waits for its next request
    std::chrono::milliseconds longest{600'000}; ///< the most that a client may let an answer take
    std::size_t maxLate = 64;                   ///< the most calls that go on after their answer
};

/// An answer with the status of HTTP that goes with it, and what a log can say about it. All of what was
/// asked is the peer's text.
struct Reply {
    int status = 200;
    std::string body{};
    std::string action{};   ///< of the request, as far as it could be read
    std::string resource{}; ///< without the selectors, which name things
    std::string result{};   ///< "ok", or the subcode and the code of the fault
};

/// Safe for many threads.
class Service {
  public:
    /// The class of a name; null where there is none. Asked without the provider's noticing.
    using Schema = std::function<wmi::ClassPtr(std::wstring_view)>;

    /// @param connection the namespace that it answers for @param schema its classes
    Service(std::shared_ptr<wmi::Connection> connection, Schema schema, ServiceOptions options = {});

    /// Answers one message, within the time that it leaves: what takes longer goes on, and its outcome is
    /// lost.
    ///  @param user who sent it, to whom what it begins belongs
    Reply Answer(std::string request, const std::string& user);
    /// Answers somebody unknown: "Identify" only, which tells nothing about the machine. Nothing for all
    /// else.
    static std::optional<Reply> AnswerStranger(std::string request);

  private:
    friend class Request;

    /// A request that was read.
    struct Asked {
        explicit Asked(std::string request) : document(std::move(request)) {}
        XmlDocument document;
        RequestHead head;
    };

    Reply AnswerWith(RequestHead& head, std::string request, const std::string& user);
    /// An answer; in place of what it throws the fault, for nothing thrown goes from thread to thread.
    Reply WithFaults(const RequestHead& head, const std::function<Reply()>& answer) const;
    Reply AnswerInTime(std::shared_ptr<Asked> asked, const std::string& user);
    Reply AnswerWholly(const Asked& asked, const std::string& user);
    /// Whether there is room for a call that may go on after its answer.
    bool HasRoom();

    const std::shared_ptr<wmi::Connection> m_connection;
    const Schema m_schema;
    const ServiceOptions m_options;
    Enumerations m_enumerations;
    std::mutex m_mutex;
    std::vector<std::future<Reply>> m_late; ///< what still runs
    Workers m_workers;                      ///< the last one: it goes first, and waits for what runs
};

} // namespace quillet::wsman
