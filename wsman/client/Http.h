// The way to one server over HTTP: connections that are kept, TLS, authentication, limits of time and size.
#pragma once

#include "soap/ByteRuns.h"

#include <quillet-wsman/Remote.h>

#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet::wsman {

/// RPC_S_SERVER_UNAVAILABLE as an HRESULT: nobody is there.
constexpr HRESULT kServerUnavailable = static_cast<HRESULT>(0x800706BAU);

/// A request that failed: the code that WMI would have given, and what happened.
class RemoteError : public std::runtime_error {
  public:
    RemoteError(HRESULT code, const std::string& what) : std::runtime_error(what), m_code(code) {}
    HRESULT Code() const noexcept { return m_code; }

  private:
    HRESULT m_code;
};

/// What a server answered.
struct HttpAnswer {
    long status = 0;
    std::string type; ///< of its content
    std::string body;
};

/// Whether a request may be sent again when it is not known what became of it.
enum class Repeatable { No, Yes };

/// One request on its way.
class HttpExchange;

/// Safe for many threads: each request has a connection of its own while it runs, which the next one uses.
class HttpClient {
  public:
    /// @param host as it was named; brackets are put around an IPv6 address
    HttpClient(const RemoteOptions& options, const std::string& host);
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    const std::string& Url() const noexcept { return m_url; }

    /// Begins a request. @param most bytes of the answer @param byteArrays names of the arrays of bytes that
    /// it may have
    std::unique_ptr<HttpExchange> Begin(std::string body, Repeatable repeatable, std::size_t most,
                                        std::vector<std::string> byteArrays = {});
    /// See Remote::Cancel.
    void Cancel() noexcept;

  private:
    friend class HttpExchange;
    /// A handle of libcurl with the connection that it keeps.
    struct Line;

    std::unique_ptr<Line> TakeLine();
    void GiveBack(std::unique_ptr<Line> line);
    void SetUp(Line& line) const;
    /// What a code of libcurl means. @param isSent whether the sending had begun @param hasAnswer whether an
    /// answer had
    RemoteError ErrorOf(int code, const char* detail, bool isSent, bool hasAnswer) const;

    const RemoteOptions m_options;
    const std::string m_host;
    const std::string m_url;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Line>> m_idle;
    std::vector<void*> m_busy; ///< handles of libcurl that wait
    std::atomic<bool> m_isCancelled{false};
};

class HttpExchange {
  public:
    HttpExchange(HttpClient& server, std::string body, Repeatable repeatable, std::size_t most,
                 std::vector<std::string> byteArrays);
    /// A request that still runs is broken off.
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    /// Waits for the answer; false when it did not come within so many milliseconds (WBEM_INFINITE: as long
    /// as a request may take). Throws RemoteError.
    bool Wait(LONG timeout);
    /// The answer, once it has come.
    HttpAnswer Take() { return std::move(m_answer); }

  private:
    friend class HttpClient;
    struct Callbacks;

    void Start();
    void Stop() noexcept;
    bool IsDone(int& code) const;

    HttpClient& m_server;
    const std::string m_body;
    const Repeatable m_repeatable;
    const std::size_t m_most;
    const std::vector<std::string> m_byteArrays;
    std::optional<ByteRuns> m_runs; ///< in the answer
    std::size_t m_received = 0;
    bool m_isSent = false;    ///< or about to be
    bool m_hasAnswer = false; ///< since the request was sent last
    bool m_isTooLarge = false;
    int m_attempts = 0;
    std::unique_ptr<HttpClient::Line> m_line;
    HttpAnswer m_answer;
};

} // namespace quillet::wsman
