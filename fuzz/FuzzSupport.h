// What the harnesses share: inputs as text, and a check that no build switches off.
#pragma once

#include <quillet-simulator/Repository.h>
#include <quillet-wmi/Text.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace quillet::simulator::fuzz {

/// The input as UTF-8 or, where it is none, byte by byte, so that no input is wasted.
inline std::wstring WideInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    if (std::optional<std::wstring> text = FromUtf8(bytes)) {
        return std::move(*text);
    }
    return {data, data + size};
}

/// Ends the run when a property does not hold.
inline void Require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "property violated: %s\n", property);
        std::abort();
    }
}

} // namespace quillet::simulator::fuzz
