// Bit masks for people: one line for each bit that is set.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// The positions of the bits that are set, lowest first.
std::vector<unsigned> SetBits(ULONGLONG mask);

/// "0x0000000000000005": 64 bits in hexadecimal, because not every reader of JSON keeps 64-bit numbers whole.
std::string HexMask(ULONGLONG mask);

} // namespace quilletctl
