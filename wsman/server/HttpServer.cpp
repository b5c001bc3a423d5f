// HTTP around services. The library reads and writes it; which requests it gets to see, and for how long, is
// decided here, before it reads a body.
#include "server/HttpServer.h"

#include "server/HttpInput.h"
#include "server/Listener.h"
#include "server/PeerStream.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <map>
#include <mutex>

namespace quillet::wsman {

namespace {

constexpr const char* kSoapType = "application/soap+xml;charset=UTF-8";
/// The most bytes that somebody unknown may ask with, and that are read for nothing to keep a connection.
constexpr std::size_t kStrangersBody = 8'192;

/// Whether a "Content-Type" is one of SOAP's.
bool IsSoap(std::string type) {
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
    type.resize(std::min(type.find_first_of("; \t"), type.size()));
    return type == "application/soap+xml" || type == "text/xml";
}

} // namespace

class HttpServer::Implementation : public httplib::Server {
  public:
    explicit Implementation(HttpOptions options);
    ~Implementation() override { Stop(); }

    void Add(const std::string& path, Answers answers) {
        m_answers.insert_or_assign(path, std::move(answers));
    }
    int Start();
    void Stop();

  private:
    /// One request and its answer.
    struct Exchange {
        Wire& wire;
        const HttpFraming framing;
        const HttpInput& input;
        const Answers* answers = nullptr;
        bool isHandedOver = false; ///< the library took the head for one, too
        bool isWelcome = false;    ///< it is one to be answered
        bool isStranger = false;   ///< who has not said who they are
        bool mustClose = false;    ///< what comes next need not be a request
        LogLine line{};            ///< with the status, once it is known
        Wire::Clock::time_point since = Wire::Clock::now();
    };

    void ServePeer(Wire& wire);
    /// False: it was the last one.
    bool ServeRequest(Wire& wire, HttpInput& input, std::size_t count, bool& isWelcome);
    bool ReadHead(Wire& wire, HttpInput& input, std::chrono::milliseconds patience, HttpFraming& framing);
    void Prepare(httplib::Request& request, Exchange& exchange, HttpInput& input);
    /// What is wrong with a request that is not worth its body; 0: nothing.
    int Check(const httplib::Request& request, Exchange& exchange);
    int CheckUser(const httplib::Request& request, Exchange& exchange);
    void Answer(httplib::Response& response, const httplib::ContentReader& read);
    std::size_t MostOf(const Exchange& exchange) const {
        return exchange.isStranger ? kStrangersBody : m_options.maxBody;
    }
    /// The body, or the status for why there is none.
    static int ReadBody(const httplib::ContentReader& read, std::size_t most, std::string& body);
    /// What goes with a status that refuses.
    static void Refuse(httplib::Response& response, int status);
    /// Puts wrong passwords some time apart, whatever connection they come on.
    void WaitAfterFailure();
    void Log(Exchange& exchange) const;

    /// The handlers of the library know the request only. A thread has one at a time.
    static thread_local Exchange* g_exchange;

    const HttpOptions m_options;
    std::map<std::string, Answers> m_answers;
    std::mutex m_mutex;
    std::condition_variable m_stopping;
    std::atomic<bool> m_isStopping = false;
    Wire::Clock::time_point m_nextFailure{};
    std::optional<Listener> m_listener;
};

thread_local HttpServer::Implementation::Exchange* HttpServer::Implementation::g_exchange = nullptr;

HttpServer::Implementation::Implementation(HttpOptions options) : m_options(std::move(options)) {
    set_keep_alive_timeout(std::chrono::duration_cast<std::chrono::seconds>(m_options.idle).count());
    set_keep_alive_max_count(m_options.mostRequests);
    set_pre_routing_handler([](const httplib::Request&, httplib::Response& response) {
        const int status = g_exchange->line.status;
        Refuse(response, status);
        return status == 0 ? HandlerResponse::Unhandled : HandlerResponse::Handled;
    });
    set_expect_100_continue_handler([](const httplib::Request&, httplib::Response& response) {
        Refuse(response, g_exchange->line.status);
        return g_exchange->line.status == 0 ? 100 : g_exchange->line.status;
    });
    Post(".*", [this](const httplib::Request&, httplib::Response& response,
                      const httplib::ContentReader& read) { Answer(response, read); });
}

int HttpServer::Implementation::Start() {
    m_listener.emplace([this](Wire& wire) { ServePeer(wire); },
                       m_options.tls ? TlsOf(m_options.tls->certificate, m_options.tls->key) : nullptr,
                       m_options.mostConnections);
    return m_listener->Start(m_options.address, m_options.port);
}

void HttpServer::Implementation::Stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_stopping.notify_all();
    if (m_listener) {
        m_listener->Stop(m_options.patience);
    }
}

void HttpServer::Implementation::ServePeer(Wire& wire) {
    wire.SetDeadline(m_options.head);
    if (!wire.Handshake()) {
        return;
    }
    HttpInput input(wire);
    bool isWelcome = false; // whoever is refused may not keep others waiting for their connection
    for (std::size_t count = 1; count <= m_options.mostRequests && !m_isStopping; ++count) {
        if (!ServeRequest(wire, input, count, isWelcome)) {
            break;
        }
    }
    wire.Finish();
}

bool HttpServer::Implementation::ServeRequest(Wire& wire, HttpInput& input, std::size_t count,
                                              bool& isWelcome) {
    HttpFraming framing;
    if (!ReadHead(wire, input, isWelcome ? m_options.idle : m_options.head, framing)) {
        return false;
    }
    Exchange exchange{wire, framing, input};
    g_exchange = &exchange;
    PeerStream stream(wire, input);
    bool isClosed = false;
    const bool isAnswered =
        process_request(stream, count == m_options.mostRequests, isClosed,
                        [&](httplib::Request& request) { Prepare(request, exchange, input); }) &&
        stream.Flush();
    g_exchange = nullptr;
    Log(exchange);
    isWelcome = exchange.isWelcome;
    if (!isAnswered || isClosed || exchange.mustClose || !exchange.isHandedOver) {
        return false;
    }
    return input.Discard();
}

bool HttpServer::Implementation::ReadHead(Wire& wire, HttpInput& input, std::chrono::milliseconds patience,
                                          HttpFraming& framing) {
    wire.SetDeadline(patience);
    if (!input.HasMore()) {
        return false;
    }
    wire.SetDeadline(m_options.head);
    const std::string_view head = input.ReadHead(m_options.maxHead);
    const std::optional<HttpFraming> read = head.empty() ? std::nullopt : FramingOf(head);
    if (read) {
        framing = *read;
        input.Allow(head.size());
        return true;
    }
    if (!head.empty() || input.HasTooMuch(m_options.maxHead)) {
        Exchange exchange{wire, {}, input};
        exchange.line.status = head.empty() ? 431 : 400;
        const std::string answer =
            "HTTP/1.1 " +
            std::string(head.empty() ? "431 Request Header Fields Too Large" : "400 Bad Request") +
            "\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
        wire.Write(answer.data(), answer.size());
        Log(exchange);
    }
    return false;
}

void HttpServer::Implementation::Prepare(httplib::Request& request, Exchange& exchange, HttpInput& input) {
    exchange.isHandedOver = true;
    exchange.line.status = Check(request, exchange);
    exchange.isWelcome = exchange.line.status == 0;
    const std::size_t length = exchange.framing.length.value_or(0);
    // The library does not look closely at where chunks end. Whoever expects to be asked for the body may
    // send it all the same, or not.
    exchange.mustClose =
        exchange.framing.isChunked ||
        (exchange.line.status != 0 && (length > kStrangersBody || request.has_header("Expect")));
    input.Allow(exchange.framing.isChunked ? 2 * m_options.maxBody : length);
    exchange.wire.SetDeadline(m_options.body);
    request.ranges.clear(); // of an answer there are no parts
    if (exchange.mustClose) {
        request.headers.erase("Connection");
        request.set_header("Connection", "close");
    }
}

int HttpServer::Implementation::Check(const httplib::Request& request, Exchange& exchange) {
    const auto found = m_answers.find(request.path);
    if (found == m_answers.end()) {
        return 404;
    }
    exchange.answers = &found->second;
    if (request.method != "POST") {
        return 405;
    }
    if (const int status = CheckUser(request, exchange); status != 0) {
        return status;
    }
    const std::string encoding = request.get_header_value("Content-Encoding");
    if (!IsSoap(request.get_header_value("Content-Type")) || (!encoding.empty() && encoding != "identity")) {
        return 415;
    }
    if (!exchange.framing.isChunked && !exchange.framing.length) {
        return 411;
    }
    return exchange.framing.length.value_or(0) > MostOf(exchange) ? 413 : 0;
}

int HttpServer::Implementation::CheckUser(const httplib::Request& request, Exchange& exchange) {
    if (m_options.users.IsEmpty()) {
        return 0;
    }
    if (!request.has_header("Authorization")) {
        exchange.isStranger = request.get_header_value("WSMANIDENTIFY") == "unauthenticated";
        return exchange.isStranger ? 0 : 401;
    }
    const std::optional<std::string> user =
        request.get_header_value_count("Authorization") == 1
            ? m_options.users.UserOf(request.get_header_value("Authorization"))
            : std::nullopt;
    if (!user) {
        WaitAfterFailure();
        return 401;
    }
    exchange.line.user = *user;
    return 0;
}

void HttpServer::Implementation::WaitAfterFailure() {
    std::unique_lock lock(m_mutex);
    m_nextFailure = std::max(m_nextFailure, Wire::Clock::now()) + m_options.afterFailure;
    m_stopping.wait_until(lock, m_nextFailure, [this] { return m_isStopping.load(); });
}

void HttpServer::Implementation::Refuse(httplib::Response& response, int status) {
    if (status == 0) {
        return;
    }
    response.status = status;
    if (status == 401) {
        response.set_header("WWW-Authenticate", "Basic realm=\"WSMAN\"");
    } else if (status == 405) {
        response.set_header("Allow", "POST");
    }
}

void HttpServer::Implementation::Answer(httplib::Response& response, const httplib::ContentReader& read) {
    Exchange& exchange = *g_exchange;
    LogLine& line = exchange.line;
    std::string body;
    line.status = ReadBody(read, MostOf(exchange), body);
    if (line.status == 0 && exchange.framing.isChunked && !exchange.input.HasReadEnd()) {
        line.status = 400;
    }
    if (line.status != 0) {
        exchange.mustClose = true;
        response.set_header("Connection", "close");
        Refuse(response, line.status);
        return;
    }
    std::optional<Reply> reply;
    try {
        if (exchange.isStranger) {
            reply = Service::AnswerStranger(std::move(body));
        } else {
            reply = (*exchange.answers)(std::move(body), line.user);
        }
    } catch (const std::exception&) { // out of memory or threads; what exactly is nobody's business
        reply = Reply{500, {}, {}, {}, "failed"};
    }
    exchange.wire.SetDeadline(m_options.answer);
    line.status = reply ? reply->status : 401;
    if (!reply) {
        Refuse(response, line.status);
        return;
    }
    line.action = exchange.isStranger ? "Identify" : std::move(reply->action);
    line.resource = std::move(reply->resource);
    line.result = std::move(reply->result);
    response.status = reply->status;
    response.body = std::move(reply->body);
    response.set_header("Content-Type", reply->status == 400 ? "text/plain;charset=UTF-8" : kSoapType);
}

int HttpServer::Implementation::ReadBody(const httplib::ContentReader& read, std::size_t most,
                                         std::string& body) {
    bool isTooLarge = false;
    const bool isWhole = read([&](const char* bytes, std::size_t size) {
        isTooLarge = size > most - body.size();
        if (!isTooLarge) {
            body.append(bytes, size);
        }
        return !isTooLarge;
    });
    return isTooLarge ? 413 : isWhole ? 0 : 400;
}

void HttpServer::Implementation::Log(Exchange& exchange) const {
    if (!m_options.log) {
        return;
    }
    LogLine& line = exchange.line;
    line.time = std::chrono::system_clock::now();
    line.peer = exchange.wire.Peer();
    line.duration =
        std::chrono::duration_cast<std::chrono::milliseconds>(Wire::Clock::now() - exchange.since);
    m_options.log(line);
}

HttpServer::HttpServer(HttpOptions options)
    : m_implementation(std::make_unique<Implementation>(std::move(options))) {}

HttpServer::~HttpServer() = default;

void HttpServer::Serve(const std::string& path, Answers answers) {
    m_implementation->Add(path, std::move(answers));
}

void HttpServer::Serve(const std::string& path, std::shared_ptr<Service> service) {
    Serve(path, [service = std::move(service)](std::string request, const std::string& user) {
        return service->Answer(std::move(request), user);
    });
}

int HttpServer::Start() {
    return m_implementation->Start();
}

void HttpServer::Stop() {
    m_implementation->Stop();
}

} // namespace quillet::wsman
