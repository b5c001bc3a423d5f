// A boot agent's flash memory, full.
#pragma once

#include "Bench.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillet::bench {

/// The boot agent of the first adapter.
inline constexpr const wchar_t* kBootAgent = L"Zorel_BootAgent.Name=\"{A1}\"";

/// An image of this size, to the byte.
std::vector<std::uint8_t> FlashImage(std::size_t size);
/// Gives one to the boot agent; whether that is done.
bool WriteFlash(CQuillet& quillet, std::size_t size);

} // namespace quillet::bench
