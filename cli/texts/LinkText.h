// The link of an adapter in words.
#pragma once

#include <quillet/client/Adapter.h>

#include <string>

namespace quilletctl {

/// "10 Gbit/s, full duplex" or, without a link, why there is none (UTF-8).
std::string LinkText(const quillet::AdapterState& state);

} // namespace quilletctl
