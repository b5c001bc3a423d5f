// IWbemServices: a client's proxy of the provider.
#pragma once

#include "Session.h"

namespace quillet::simulator {

/// A proxy whose blanket is not set yet.
IWbemServices* MakeServices(SessionPtr session);

/// Whether a namespace path, absolute with or without a server, names the machine's namespace.
bool NamesNamespace(std::wstring_view path, const Repository& store);

} // namespace quillet::simulator
