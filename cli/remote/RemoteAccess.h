// How a machine is reached over the network, as the command line says it.
#pragma once

#include "app/Syntax.h"

#include <optional>
#include <string>

namespace quilletctl {

struct GlobalOptions;

/// The options that go with --machine on a host that has no WMI. Texts are UTF-8.
struct RemoteAccess {
    std::optional<LONG> port;
    std::optional<std::string> authentication; ///< --auth
    std::optional<std::string> user;
    std::optional<LONG> passwordDescriptor; ///< --password-fd
    std::optional<std::string> credentials; ///< a file
    std::optional<std::string> authorities; ///< --ca, a file
    bool isUnverified = false;              ///< --insecure
    bool isPlain = false;                   ///< --plain-http

    void Declare(Syntax& syntax);
    /// The first option that was given; empty: none.
    std::string Given() const;
};

/// Refuses options that do not go together, or not on this host. Throws UsageError.
void CheckRemoteAccess(const GlobalOptions& options);

} // namespace quilletctl
