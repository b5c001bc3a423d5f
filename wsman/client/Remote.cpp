// Machines behind CLSID_WbemLocator.
#include <quillet-wsman/Remote.h>

#include "client/Failures.h"
#include "client/RemoteConnection.h"

#include <quillet-wmi/Registration.h>
#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

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

class RemoteHost final : public wmi::Host {
  public:
    explicit RemoteHost(RemoteOptions options) : m_options(std::move(options)) {}

    wmi::Outcome Connect(const wmi::CallContext&, const wmi::ConnectArguments& arguments,
                         std::shared_ptr<wmi::Connection>& connection) override {
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
            connection = std::make_shared<RemoteConnection>(peer, std::move(serverName),
                                                            std::move(place.namespaceName));
        });
    }

    void Cancel() noexcept {
        const std::lock_guard lock(m_mutex);
        m_isCancelled = true;
        for (const auto& peer : m_peers) {
            peer->Cancel();
        }
    }

  private:
    /// The machine of a server's name; the one that the options name, for a name that means this computer.
    std::string HostOf(const std::wstring& server) const {
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

    std::shared_ptr<Peer> PeerOf(const std::string& host, const wmi::ConnectArguments& arguments) {
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

    const RemoteOptions m_options;
    std::mutex m_mutex;
    std::vector<std::shared_ptr<Peer>> m_peers; ///< one for each host and whoever asks it
    bool m_isCancelled = false;
};

std::shared_ptr<RemoteHost> Make(RemoteOptions options) {
    if (options.authentication != Authentication::Negotiate && options.user.empty()) {
        throw std::invalid_argument("this way of authentication needs a user");
    }
    if (!options.host.empty()) {
        if (!IsHost(options.host)) {
            throw std::invalid_argument("this is no name and no address of a machine");
        }
        CheckProtection(options, options.host);
    }
    if (options.port < 0 || options.port > 65535) {
        throw std::invalid_argument("this is no port");
    }
    return std::make_shared<RemoteHost>(std::move(options));
}

} // namespace

bool IsThisComputer(std::string_view host) {
    return host == "localhost" || host == "::1" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string_view::npos);
}

Password::Password(std::string_view text) : m_text(text) {}

Password::Password(const Password& other) = default;

Password::Password(Password&& other) noexcept {
    m_text.swap(other.m_text);
    // A short one was copied out of the other's own memory, which has it still.
    other.m_text.assign(other.m_text.capacity(), '\0');
    other.m_text.clear();
}

Password& Password::operator=(Password other) noexcept {
    m_text.swap(other.m_text);
    return *this;
}

Password::~Password() {
    // Not to be left out as a write that nobody reads.
    volatile char* place = m_text.data();
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        place[i] = '\0';
    }
}

std::shared_ptr<wmi::Host> MakeRemoteHost(RemoteOptions options) {
    return Make(std::move(options));
}

struct Remote::State {
    explicit State(RemoteOptions options) : host(Make(std::move(options))), registration(host) {}
    const std::shared_ptr<wmi::Host> host; ///< a RemoteHost
    wmi::ClassRegistration registration;
};

Remote::Remote(RemoteOptions options) : m_state(std::make_unique<State>(std::move(options))) {}

Remote::~Remote() = default;

HRESULT Remote::Result() const noexcept {
    return m_state->registration.Result();
}

void Remote::Cancel() noexcept {
    static_cast<RemoteHost&>(*m_state->host).Cancel();
}

void RememberFailure(std::string text) {
    g_lastFailure = std::move(text);
}

std::string LastFailure() {
    return g_lastFailure;
}

} // namespace quillet::wsman
