// Requests by libcurl.
#include "client/Http.h"

#include <curl/curl.h>
#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

/// Seconds after which a connection is not used again: less than servers wait.
constexpr long kLongestIdle = 45;
constexpr int kAttempts = 2;
constexpr std::size_t kMostKept = std::size_t{64} << 20; // bytes of an answer whose runs are folded
constexpr std::size_t kMostIdle = 8;

/// libcurl wants to be told once, before any thread uses it.
void InitialiseOnce() {
    static const CURLcode kResult = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (kResult != CURLE_OK) {
        throw RemoteError(HRESULT(WBEM_E_TRANSPORT_FAILURE), "libcurl cannot be used");
    }
}

std::string UrlOf(const RemoteOptions& options, const std::string& host) {
    const int port = options.port != 0 ? options.port : options.isPlain ? 5985 : 5986;
    std::string url = options.isPlain ? "http://" : "https://";
    if (host.find(':') == std::string::npos) {
        url += host;
    } else {
        // The zone of an address stands behind a percent sign of its own.
        const std::size_t zone = host.find('%');
        url += '[' + host.substr(0, zone);
        url += (zone == std::string::npos ? "" : "%25" + host.substr(zone + 1)) + ']';
    }
    return url + ':' + std::to_string(port) + "/wsman";
}

} // namespace

struct HttpClient::Line {
    Line() : multi(curl_multi_init()), easy(curl_easy_init()) {
        if (multi == nullptr || easy == nullptr) {
            throw std::bad_alloc();
        }
    }
    ~Line() {
        curl_easy_cleanup(easy);
        curl_multi_cleanup(multi);
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    struct ListDeleter {
        void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
    };

    CURLM* const multi;
    CURL* const easy;
    std::unique_ptr<curl_slist, ListDeleter> headers;
    char detail[CURL_ERROR_SIZE] = {};
};

/// What libcurl calls while a request runs. Nothing may be thrown through it.
struct HttpExchange::Callbacks {
    /// The request is about to be sent: for the first time, for the next step of an authentication, which the
    /// server has asked for, or because the connection broke before there was any answer. In the last case
    /// the server may have done already what was asked.
    static int Before(void* of, char*, char*, int, int) noexcept {
        auto& self = *static_cast<HttpExchange*>(of);
        if (self.m_isSent && !self.m_hasAnswer && self.m_repeatable == Repeatable::No) {
            return CURL_PREREQFUNC_ABORT;
        }
        self.m_isSent = true;
        self.m_hasAnswer = false;
        return CURL_PREREQFUNC_OK;
    }
    static std::size_t Header(char*, std::size_t size, std::size_t count, void* of) noexcept {
        static_cast<HttpExchange*>(of)->m_hasAnswer = true;
        return size * count;
    }
    static std::size_t Write(char* bytes, std::size_t size, std::size_t count, void* of) noexcept {
        auto& self = *static_cast<HttpExchange*>(of);
        const std::size_t length = size * count;
        std::string& body = self.m_answer.body;
        self.m_received += length;
        if (self.m_received > self.m_most || body.size() > kMostKept) {
            self.m_isTooLarge = true;
            return 0;
        }
        try {
            if (body.empty() && self.m_byteArrays.empty()) { // what nothing comes for is never touched
                curl_off_t whole = 0;
                curl_easy_getinfo(self.m_line->easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &whole);
                const auto told = static_cast<std::size_t>(std::max<curl_off_t>(whole, 0));
                body.reserve(std::min({told, self.m_most, kMostKept})); // a peer may tell anything
            }
            self.m_runs->Append({bytes, length}, body);
        } catch (const std::exception&) {
            self.m_isTooLarge = true;
            return 0;
        }
        return length;
    }
};

HttpClient::HttpClient(const RemoteOptions& options, const std::string& host)
    : m_options(options), m_host(host), m_url(UrlOf(options, host)) {
    InitialiseOnce();
}

HttpClient::~HttpClient() = default;

std::unique_ptr<HttpExchange> HttpClient::Begin(std::string body, Repeatable repeatable, std::size_t most,
                                                std::vector<std::string> byteArrays) {
    return std::make_unique<HttpExchange>(*this, std::move(body), repeatable, most, std::move(byteArrays));
}

void HttpClient::Cancel() noexcept {
    m_isCancelled = true;
    const std::lock_guard lock(m_mutex);
    for (void* multi : m_busy) {
        curl_multi_wakeup(multi);
    }
}

std::unique_ptr<HttpClient::Line> HttpClient::TakeLine() {
    std::unique_ptr<Line> line;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_idle.empty()) {
            line = std::move(m_idle.back());
            m_idle.pop_back();
        }
    }
    if (line == nullptr) {
        line = std::make_unique<Line>();
        SetUp(*line);
    }
    const std::lock_guard lock(m_mutex);
    m_busy.push_back(line->multi);
    return line;
}

void HttpClient::GiveBack(std::unique_ptr<Line> line) {
    const std::lock_guard lock(m_mutex);
    std::erase(m_busy, line->multi);
    if (m_idle.size() < kMostIdle) {
        m_idle.push_back(std::move(line));
    }
}

void HttpClient::SetUp(Line& line) const {
    const auto set = [&line](CURLoption option, auto value) {
        if (curl_easy_setopt(line.easy, option, value) != CURLE_OK) {
            throw RemoteError(HRESULT(WBEM_E_TRANSPORT_FAILURE), "libcurl lacks something that is needed");
        }
    };
    set(CURLOPT_URL, m_url.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_ERRORBUFFER, line.detail);
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_PROTOCOLS_STR, m_options.isPlain ? "http" : "https");
    set(CURLOPT_PROXY, ""); // a machine is reached directly, whatever the environment says
    set(CURLOPT_NETRC, long(CURL_NETRC_IGNORED));
    set(CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1)); // NTLM and Negotiate know no other
    set(CURLOPT_MAXAGE_CONN, kLongestIdle);
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, long(m_options.connectTimeout.count()));
    // The machine's own limit comes first, and says more.
    constexpr std::chrono::milliseconds kNetwork{5'000};
    set(CURLOPT_TIMEOUT_MS, long((m_options.timeout + std::min(kNetwork, m_options.timeout)).count()));

    set(CURLOPT_SSLVERSION, long(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, m_options.isUnverified ? 0L : 1L);
    set(CURLOPT_SSL_VERIFYHOST, m_options.isUnverified ? 0L : 2L);
    if (!m_options.authorities.empty()) {
        set(CURLOPT_CAINFO, m_options.authorities.c_str());
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }

    // One scheme only: with several, libcurl would send the whole message first to see which are taken.
    switch (m_options.authentication) {
    case Authentication::Negotiate:
        set(CURLOPT_HTTPAUTH, long(CURLAUTH_NEGOTIATE));
        set(CURLOPT_USERNAME, ""); // whoever holds the ticket
        break;
    case Authentication::Ntlm:
    case Authentication::Basic:
        set(CURLOPT_HTTPAUTH,
            long(m_options.authentication == Authentication::Ntlm ? CURLAUTH_NTLM : CURLAUTH_BASIC));
        set(CURLOPT_USERNAME, m_options.user.c_str());
        set(CURLOPT_PASSWORD, m_options.password.Reveal().c_str());
        break;
    }

    curl_slist* list = nullptr;
    // No answer is asked for in several parts, and none compressed.
    for (const char* header :
         {"Content-Type: application/soap+xml;charset=UTF-8", "Expect:", "User-Agent: Quillet", "Accept:"}) {
        curl_slist* longer = curl_slist_append(list, header);
        if (longer == nullptr) {
            curl_slist_free_all(list);
            throw std::bad_alloc();
        }
        list = longer;
    }
    line.headers.reset(list);
    set(CURLOPT_HTTPHEADER, list);
    set(CURLOPT_POST, 1L);
    set(CURLOPT_PREREQFUNCTION, &HttpExchange::Callbacks::Before);
    set(CURLOPT_HEADERFUNCTION, &HttpExchange::Callbacks::Header);
    set(CURLOPT_WRITEFUNCTION, &HttpExchange::Callbacks::Write);
}

RemoteError HttpClient::ErrorOf(int code, const char* detail, bool isSent, bool hasAnswer) const {
    const std::string cause = *detail != '\0' ? detail : curl_easy_strerror(static_cast<CURLcode>(code));
    const auto error = [&](HRESULT result, const std::string& what) {
        return RemoteError(result, m_host + ": " + what + ": " + cause + " (" + m_url + ")");
    };
    constexpr HRESULT kFailure = HRESULT(WBEM_E_TRANSPORT_FAILURE);
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return error(kServerUnavailable, "there is no machine of this name");
    case CURLE_COULDNT_CONNECT:
        return error(kServerUnavailable, "nobody answers at this port");
    case CURLE_OPERATION_TIMEDOUT:
        return !isSent ? error(kServerUnavailable, "no connection came about in time")
                       : error(HRESULT(WBEM_E_TIMED_OUT),
                               hasAnswer ? "the answer did not come to its end in time"
                                         : "no answer came in time; whether it was done is not known");
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CERTPROBLEM:
        return error(kFailure, "its certificate is not trusted");
    case CURLE_SSL_CACERT_BADFILE:
        return error(kFailure, "the file of certificates " + m_options.authorities + " cannot be used");
    case CURLE_SSL_CONNECT_ERROR:
        return error(kFailure, "there is no TLS at this port");
    case CURLE_ABORTED_BY_CALLBACK:
    case CURLE_GOT_NOTHING:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
        return error(kFailure,
                     "the connection broke before the answer had come; whether it was done is not known");
    default:
        return error(kFailure, "the request failed");
    }
}

HttpExchange::HttpExchange(HttpClient& server, std::string body, Repeatable repeatable, std::size_t most,
                           std::vector<std::string> byteArrays)
    : m_server(server), m_body(std::move(body)), m_repeatable(repeatable), m_most(most),
      m_byteArrays(std::move(byteArrays)) {
    Start();
}

HttpExchange::~HttpExchange() {
    Stop();
}

void HttpExchange::Start() {
    ++m_attempts;
    m_isSent = false;
    m_hasAnswer = false;
    m_answer = {};
    m_received = 0;
    m_runs.emplace(m_byteArrays);
    m_line = m_server.TakeLine();
    CURL* const easy = m_line->easy;
    m_line->detail[0] = '\0';
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, m_body.data());
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_multi_add_handle(m_line->multi, easy);
    int running = 0;
    curl_multi_perform(m_line->multi, &running); // over a connection that is there it goes out at once
}

void HttpExchange::Stop() noexcept {
    if (m_line != nullptr) {
        curl_multi_remove_handle(m_line->multi, m_line->easy);
        m_server.GiveBack(std::move(m_line));
    }
}

bool HttpExchange::IsDone(int& code) const {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_line->multi, &left)) {
        if (message->msg == CURLMSG_DONE) {
            code = message->data.result;
            return true;
        }
    }
    return false;
}

bool HttpExchange::Wait(LONG timeout) {
    using Clock = std::chrono::steady_clock;
    const bool isEndless = timeout == LONG(WBEM_INFINITE);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(isEndless ? 0 : timeout);
    while (m_line != nullptr) {
        if (m_server.m_isCancelled ||
            (m_server.m_options.isInterrupted && m_server.m_options.isInterrupted())) {
            Stop();
            throw RemoteError(HRESULT(WBEM_E_CALL_CANCELLED),
                              m_server.m_host + ": the request was cancelled");
        }
        int running = 0;
        curl_multi_perform(m_line->multi, &running);
        int code = CURLE_OK;
        if (IsDone(code)) {
            const std::string detail = m_line->detail;
            if (code == CURLE_OK) {
                m_runs->Finish(m_answer.body);
                const char* type = nullptr;
                curl_easy_getinfo(m_line->easy, CURLINFO_RESPONSE_CODE, &m_answer.status);
                curl_easy_getinfo(m_line->easy, CURLINFO_CONTENT_TYPE, &type);
                m_answer.type = type != nullptr ? type : "";
            }
            Stop();
            if (code == CURLE_OK) {
                return true;
            }
            if (m_isTooLarge) {
                throw RemoteError(HRESULT(WBEM_E_TRANSPORT_FAILURE),
                                  m_server.m_host + ": the answer is larger than it may be (" +
                                      m_server.Url() + ")");
            }
            const bool isBroken = code == CURLE_GOT_NOTHING || code == CURLE_RECV_ERROR ||
                                  code == CURLE_SEND_ERROR || code == CURLE_PARTIAL_FILE;
            if (!isBroken || m_repeatable == Repeatable::No || m_attempts == kAttempts) {
                throw m_server.ErrorOf(code, detail.c_str(), m_isSent, m_hasAnswer);
            }
            Start();
            continue;
        }
        const int longest = m_server.m_options.isInterrupted ? 100 : 60'000;
        int wait = longest;
        if (!isEndless) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
            if (left <= 0) {
                return false;
            }
            wait = static_cast<int>(std::min<long long>(left, longest));
        }
        curl_multi_poll(m_line->multi, nullptr, 0, wait, nullptr);
    }
    return true;
}

} // namespace quillet::wsman
