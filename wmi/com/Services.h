// IWbemServices: a client's proxy of a connection.
#pragma once

#include "connection/Session.h"

namespace quillet::wmi {

/// A proxy whose blanket is not set yet.
IWbemServices* MakeServices(SessionPtr session);

} // namespace quillet::wmi
