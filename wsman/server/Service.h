// Answers requests of WS-Management for one namespace of one machine, whatever brings them.
#pragma once

#include "server/Enumerations.h"
#include "soap/Envelope.h"

#include <quillet-wmi/Connection.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace quillet::wsman {

class Request;

struct ServiceOptions {
    std::size_t maxEnvelope = 512'000;        ///< the most bytes of an answer
    std::size_t maxItems = 32'000;            ///< the most objects of one
    std::size_t maxEnumerations = 1'500;      ///< begun at a time
    std::chrono::seconds idleEnumeration{60}; ///< how long one waits for its next request
};

/// An answer with the status of HTTP that goes with it.
struct Reply {
    int status = 200;
    std::string body;
};

/// Safe for many threads.
class Service {
  public:
    /// The class of a name; null where there is none. Asked without the provider's noticing.
    using Schema = std::function<wmi::ClassPtr(std::wstring_view)>;

    /// @param connection the namespace that it answers for @param schema its classes
    Service(std::shared_ptr<wmi::Connection> connection, Schema schema, ServiceOptions options = {});

    /// Answers one message. @param user who sent it, to whom what it begins belongs
    Reply Answer(std::string request, const std::string& user);

  private:
    friend class Request;

    const std::shared_ptr<wmi::Connection> m_connection;
    const Schema m_schema;
    const ServiceOptions m_options;
    Enumerations m_enumerations;
};

} // namespace quillet::wsman
