// Names and addresses as people type them: is this one at all?
#pragma once

#include <string_view>

namespace quilletctl {

/// Whether a text (UTF-8) can be the name of a machine, or its IPv4 or IPv6 address. What looks like an IPv4
/// address must be one.
bool IsHostName(std::string_view text);
/// Four numbers from 0 to 255 with dots between them.
bool IsIPv4Address(std::string_view text);
/// Twelve hexadecimal digits, as the provider keeps a MAC address.
bool IsMacAddress(std::string_view text);

} // namespace quilletctl
