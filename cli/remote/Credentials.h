// A user and a password: from a prompt, a descriptor or a file, never from the command line.
#pragma once

#include "remote/RemoteAccess.h"

#include <quillet-wsman/Remote.h>

#include <string>

namespace quilletctl {

struct Credentials {
    std::string user; ///< empty: whoever holds the Kerberos ticket
    quillet::wsman::Password password;
};

/// The credentials that the options, or the file that the environment's QUILLET_CREDENTIALS names, tell.
/// Throws UsageError.
Credentials ReadCredentials(const RemoteAccess& access, const std::string& machine);

} // namespace quilletctl
