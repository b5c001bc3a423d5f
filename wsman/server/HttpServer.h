// Services behind HTTP, with TLS or without it.
#pragma once

#include "server/Passwords.h"
#include "server/Service.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quillet::wsman {

/// Files in PEM.
struct TlsFiles {
    std::string certificate; ///< with the chain
    std::string key;
};

/// What is said about a request; never its body, and no password.
struct LogLine {
    std::chrono::system_clock::time_point time;
    std::string user{}; ///< empty: nobody who is known
    std::string peer{}; ///< address and port
    std::string action{};
    std::string resource{};
    int status = 0; ///< of HTTP
    std::string result{};
    std::chrono::milliseconds duration{};

    /// "2024-03-01T12:00:00Z admin 127.0.0.1:50000 Get Zorel_VLAN 200 ok 3 ms". Whatever a peer made up has
    /// neither blanks nor control characters in it, and an end.
    std::string Text() const;
};

struct HttpOptions {
    std::string address = "127.0.0.1";
    int port = 0;                  ///< 0: any that is free
    std::optional<TlsFiles> tls{}; ///< nothing: without TLS
    Passwords users{};             ///< none: whoever comes may ask
    /// Called for each request, by many threads.
    std::function<void(const LogLine&)> log{};

    std::size_t mostConnections = 128;        ///< at a time; whoever comes then waits
    std::size_t mostRequests = 100'000;       ///< on one connection
    std::size_t maxHead = 16'384;             ///< the most bytes of a request's head
    std::size_t maxBody = 1'048'576;          ///< the most bytes of its body
    std::chrono::milliseconds idle{120'000};  ///< how long a connection waits for its next request
    std::chrono::milliseconds head{10'000};   ///< how long TLS may take to be agreed upon, and a head to come
    std::chrono::milliseconds body{60'000};   ///< how long a body may take
    std::chrono::milliseconds answer{60'000}; ///< how long an answer may take to go
    std::chrono::milliseconds patience{5'000}; ///< how long Stop waits for what is being answered
    /// From one wrong password to the next, whoever sends them.
    std::chrono::milliseconds afterFailure{100};
};

/// Whoever asks says who they are with each request ("Basic"); without TLS everybody on the way can read the
/// password.
class HttpServer {
  public:
    explicit HttpServer(HttpOptions options);
    /// Stops it.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Answers a request of a user, on many threads at a time; see Service::Answer.
    using Answers = std::function<Reply(std::string request, const std::string& user)>;

    /// What answers at a path ("/wsman"). Before Start.
    void Serve(const std::string& path, Answers answers);
    void Serve(const std::string& path, std::shared_ptr<Service> service);
    /// Serves from now on, on threads of its own; the port. Throws std::runtime_error: for an address that
    /// cannot be had, and a certificate or key that cannot be used.
    int Start();
    /// Requests that are there are answered, others are not. Comes back when all is over.
    void Stop();

  private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace quillet::wsman
