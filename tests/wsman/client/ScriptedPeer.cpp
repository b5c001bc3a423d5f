// Sockets, and envelopes for people in a hurry.
#include "ScriptedPeer.h"

#include <array>
#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillet::tests {

const std::string ScriptedPeer::kSilence = "silence";

std::string PeerRequest::TextOf(const std::string& element) const {
    const std::size_t name = body.find(':' + element);
    const std::size_t begin = name == std::string::npos ? name : body.find('>', name);
    return begin == std::string::npos ? std::string()
                                      : body.substr(begin + 1, body.find('<', begin) - begin - 1);
}

ScriptedPeer::ScriptedPeer(Script script) : m_script(std::move(script)) {
    m_listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        listen(m_listener, 16) != 0 ||
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("no socket to listen on");
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Run(); });
}

ScriptedPeer::~ScriptedPeer() {
    m_isOver = true;
    m_thread.join();
    close(m_listener);
}

std::vector<PeerRequest> ScriptedPeer::Requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void ScriptedPeer::Run() {
    std::vector<std::thread> threads;
    for (int connection = 0; !m_isOver;) {
        pollfd waiting{m_listener, POLLIN, 0};
        if (poll(&waiting, 1, 5) == 1) {
            const int socket = accept(m_listener, nullptr, nullptr);
            threads.emplace_back([this, socket, number = ++connection] { Serve(socket, number); });
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void ScriptedPeer::Serve(int socket, int connection) {
    std::string read;
    std::array<char, 65'536> bytes{};
    const auto receive = [&] {
        pollfd waiting{socket, POLLIN, 0};
        while (!m_isOver && poll(&waiting, 1, 5) == 0) {
        }
        const ssize_t got = m_isOver ? 0 : recv(socket, bytes.data(), bytes.size(), 0);
        read.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return got > 0;
    };
    while (true) {
        std::size_t end = 0;
        bool isThere = true;
        while (isThere && (end = read.find("\r\n\r\n")) == std::string::npos) {
            isThere = receive();
        }
        if (!isThere) {
            break;
        }
        PeerRequest request{read.substr(0, end + 4), {}, connection};
        const std::size_t length = request.head.find("Content-Length: ");
        const std::size_t size =
            length == std::string::npos ? 0 : std::stoul(request.head.substr(length + 16));
        while (isThere && read.size() < end + 4 + size) {
            isThere = receive();
        }
        request.body = read.substr(end + 4, size);
        read.erase(0, end + 4 + size);
        if (!request.Has(":Identify") && !request.Has("Win32_OperatingSystem")) {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(request);
        }
        const std::string answer = m_script(request);
        while (answer == kSilence && !m_isOver) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        if (answer.empty() || answer == kSilence) {
            break;
        }
        for (std::size_t sent = 0; sent < answer.size() && !m_isOver;) {
            pollfd ready{socket, POLLOUT, 0};
            if (poll(&ready, 1, 5) == 0) {
                continue;
            }
            const ssize_t count =
                send(socket, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0) {
                break;
            }
            sent += static_cast<std::size_t>(count);
        }
        if (answer.find("Connection: close") != std::string::npos) {
            break;
        }
    }
    close(socket);
}

std::string HttpAnswerOf(int status, const std::string& type, const std::string& body) {
    return "HTTP/1.1 " + std::to_string(status) + " X\r\n" +
           (type.empty() ? "" : "Content-Type: " + type + "\r\n") +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string SoapAnswer(const PeerRequest& request, const std::string& body, int status) {
    return HttpAnswerOf(status, "application/soap+xml;charset=UTF-8",
                        R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope" )"
                        R"(xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing" )"
                        R"(xmlns:w="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd" )"
                        R"(xmlns:n="http://schemas.xmlsoap.org/ws/2004/09/enumeration" )"
                        R"(xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" )"
                        R"(xmlns:p="http://schemas.microsoft.com/wbem/wsman/1/wmi/ROOT/MarloLUM2/T">)"
                        "<s:Header><a:RelatesTo>" +
                            request.TextOf("MessageID") + "</a:RelatesTo></s:Header><s:Body>" + body +
                            "</s:Body></s:Envelope>");
}

std::string FaultAnswer(const PeerRequest& request, const std::string& subcode, const std::string& detail) {
    return SoapAnswer(
        request,
        "<s:Fault><s:Code><s:Value>s:Sender</s:Value><s:Subcode><s:Value>" + subcode +
            "</s:Value></s:Subcode></s:Code><s:Reason><s:Text>No.</s:Text></s:Reason><s:Detail>" + detail +
            "</s:Detail></s:Fault>",
        500);
}

ScriptedPeer::Script AfterIdentify(ScriptedPeer::Script script) {
    return [script = std::move(script)](const PeerRequest& request) {
        if (request.Has("Win32_OperatingSystem")) {
            return FaultAnswer(request, "a:DestinationUnreachable");
        }
        if (!request.Has("wsmid:Identify")) {
            return script(request);
        }
        return SoapAnswer(
            request,
            R"(<i:IdentifyResponse xmlns:i="http://schemas.dmtf.org/wbem/wsman/identity/1/wsmanidentity.xsd">)"
            "<i:ProductVersion>OS: 10.0.1 SP: 0.0 Stack: 3.0</i:ProductVersion></i:IdentifyResponse>");
    };
}

wsman::RemoteOptions OptionsFor(int port) {
    wsman::RemoteOptions options;
    options.host = "127.0.0.1";
    options.port = port;
    options.isPlain = true;
    options.authentication = wsman::Authentication::Basic;
    options.user = "admin";
    options.password = wsman::Password("secret");
    options.connectTimeout = std::chrono::milliseconds(30000);
    options.timeout = std::chrono::milliseconds(30000);
    return options;
}

std::shared_ptr<wmi::Connection> ConnectTo(const wsman::RemoteOptions& options, HRESULT expected,
                                           const std::shared_ptr<wmi::Host>& host) {
    std::shared_ptr<wmi::Connection> connection;
    wmi::ConnectArguments arguments;
    arguments.resource = L"\\\\.\\ROOT\\MarloLUM2";
    const wmi::Outcome outcome =
        (host != nullptr ? host : wsman::MakeRemoteHost(options))->Connect({}, arguments, connection);
    EXPECT_EQ(CodeOf(outcome.status), CodeOf(expected)) << wsman::LastFailure();
    return connection;
}

std::string CodeOf(long long code) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(code));
    return text.data();
}

} // namespace quillet::tests
