// Machines as a host of connections.
#pragma once

#include "client/Peer.h"

#include <quillet-wsman/Remote.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quillet::wsman {

/// Connects to whatever machine a session names. Safe for many threads.
class RemoteHost final : public wmi::Host {
  public:
    /// Throws std::invalid_argument; see MakeRemoteHost.
    explicit RemoteHost(RemoteOptions options);

    wmi::Outcome Connect(const wmi::CallContext& context, const wmi::ConnectArguments& arguments,
                         std::shared_ptr<wmi::Connection>& connection) override;
    /// See Remote::Cancel.
    void Cancel() noexcept;

  private:
    /// The machine of a server's name; the one that the options name, for a name that means this computer.
    std::string HostOf(const std::wstring& server) const;
    std::shared_ptr<Peer> PeerOf(const std::string& host, const wmi::ConnectArguments& arguments);

    const RemoteOptions m_options;
    std::mutex m_mutex;
    std::vector<std::shared_ptr<Peer>> m_peers; ///< one for each host and whoever asks it
    bool m_isCancelled = false;
};

} // namespace quillet::wsman
