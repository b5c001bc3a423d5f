// Where the body of a request begins and ends.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quillet::wsman {

struct HttpFraming {
    bool isChunked = false;
    std::optional<std::size_t> length{}; ///< of the body; nothing: not told
};

/// Reads the head of a request as strictly as one can: what two programs could understand in two ways lets a
/// peer hide a request in the body of another one. Nothing for lines that do not end, begin or read as they
/// have to, for two lengths, for a length besides chunks, and for other encodings than those.
/// @param head from the request line to the empty one
std::optional<HttpFraming> FramingOf(std::string_view head);

} // namespace quillet::wsman
