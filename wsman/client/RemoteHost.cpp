// The host of connections to machines.
#include "client/RemoteHost.h"

#include "client/Failures.h"
#include "client/RemoteConnection.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace quillet::wsman {

namespace {

thread_local std::string g_lastFailure;

/// Whether a name can stand in a URL as the name of a machine and as nothing else.
bool IsHost(std::string_view host) {
    constexpr std::size_t kLongest = 255;
    return !host.empty() && host.size() <= kLongest && std::all_of(host.begin(), host.end(), [](char each) {
        const auto byte = static_cast<unsigned char>(each);
        return byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
               (byte >= 'A' && byte <= 'Z') || std::string_view("-_.:%").find(each) != std::string_view::npos;
    });
}

void CheckProtection(const RemoteOptions& options, const std::string& host) {
    if (options.isPlain && options.authentication == Authentication::Basic && !IsThisComputer(host)) {
        throw std::invalid_argument("a password does not go to " + host + " without TLS");
    }
}

/// What a resource names: "\\server\ROOT\MarloLUM2".
struct Place {
    std::wstring server;
    std::wstring namespaceName;
};

Place PlaceOf(std::wstring_view resource) {
    std::wstring text(resource);
    std::replace(text.begin(), text.end(), L'/', L'\\');
    if (text.substr(0, 2) != L"\\\\") {
        return {L"", text};
    }
    const std::size_t end = std::min(text.find(L'\\', 2), text.size());
    return {text.substr(2, end - 2), text.substr(std::min(end + 1, text.size()))};
}

/// Whether a namespace can stand in a URI as it is: names with backslashes between them.
bool IsNamespace(std::wstring_view name) {
    while (true) {
        const std::size_t end = name.find(L'\\');
        if (!wmi::IsIdentifier(name.substr(0, end))) {
            return false;
        }
        if (end == std::wstring_view::npos) {
            return true;
        }
        name.remove_prefix(end + 1);
    }
}

} // namespace

RemoteHost::RemoteHost(RemoteOptions options) : m_options(std::move(options)) {
    if (m_options.authentication != Authentication::Negotiate && m_options.user.empty()) {
        throw std::invalid_argument("this way of authentication needs a user");
    }
    if (!m_options.host.empty()) {
        if (!IsHost(m_options.host)) {
            throw std::invalid_argument("this is no name and no address of a machine");
        }
        CheckProtection(m_options, m_options.host);
    }
    if (m_options.port < 0 || m_options.port > 65535) {
        throw std::invalid_argument("this is no port");
    }
}

wmi::Outcome RemoteHost::Connect(const wmi::CallContext&, const wmi::ConnectArguments& arguments,
                                 std::shared_ptr<wmi::Connection>& connection) {
    return Guarded([&] {
        Place place = PlaceOf(arguments.resource);
        if (!IsNamespace(place.namespaceName)) {
            throw RemoteError(HRESULT(WBEM_E_INVALID_NAMESPACE), "this is no namespace");
        }
        const std::string host = HostOf(place.server);
        const std::shared_ptr<Peer> peer = PeerOf(host, arguments);
        peer->Identify();
        std::wstring serverName = peer->OwnName();
        serverName = serverName.empty() ? Wide(host) : serverName;
        connection =
            std::make_shared<RemoteConnection>(peer, std::move(serverName), std::move(place.namespaceName));
    });
}

void RemoteHost::Cancel() noexcept {
    const std::lock_guard lock(m_mutex);
    m_isCancelled = true;
    for (const auto& peer : m_peers) {
        peer->Cancel();
    }
}

std::string RemoteHost::HostOf(const std::wstring& server) const {
    const bool isOwn = server.empty() || server == L"." || wmi::SameName(server, ThisComputer());
    std::string host = isOwn && !m_options.host.empty() ? m_options.host : wmi::ToUtf8(server);
    if (host.empty() || host == ".") {
        throw RemoteError(kServerUnavailable, "no machine is named");
    }
    if (!IsHost(host)) {
        throw RemoteError(kServerUnavailable, "this is no name and no address of a machine");
    }
    return host;
}

std::shared_ptr<Peer> RemoteHost::PeerOf(const std::string& host, const wmi::ConnectArguments& arguments) {
    RemoteOptions options = m_options;
    if (arguments.user && !arguments.user->empty()) {
        options.user = wmi::ToUtf8(*arguments.user);
        options.password = Password(wmi::ToUtf8(arguments.password.value_or(L"")));
        if (options.authentication == Authentication::Negotiate) {
            options.authentication = Authentication::Ntlm;
        }
    }
    try {
        CheckProtection(options, host);
    } catch (const std::invalid_argument& error) {
        throw RemoteError(E_ACCESSDENIED, error.what());
    }
    const std::lock_guard lock(m_mutex);
    const auto known = std::find_if(m_peers.begin(), m_peers.end(), [&](const auto& each) {
        // Whoever comes with another password has to show that it is right.
        return each->Host() == host && each->Options().user == options.user &&
               each->Options().password.Reveal() == options.password.Reveal();
    });
    std::shared_ptr<Peer> peer =
        known != m_peers.end() ? *known : m_peers.emplace_back(std::make_shared<Peer>(options, host));
    if (m_isCancelled) {
        peer->Cancel();
    }
    return peer;
}

bool IsThisComputer(std::string_view host) {
    return host == "localhost" || host == "::1" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string_view::npos);
}

std::shared_ptr<wmi::Host> MakeRemoteHost(RemoteOptions options) {
    return std::make_shared<RemoteHost>(std::move(options));
}

void RememberFailure(std::string text) {
    g_lastFailure = std::move(text);
}

std::string LastFailure() {
    return g_lastFailure;
}

} // namespace quillet::wsman
