// What the writer and the reader of packed machines agree upon.
#pragma once

#include <cstdint>

namespace quillet::simulator {

/// What the target was told.
enum class PackedCall : std::uint8_t { DeclareQualifier, AddClass, StoreInstance };

/// What follows as a value.
enum class PackedValue : std::uint8_t {
    Null,
    False,
    True,
    Signed,   ///< zigzag
    Unsigned, ///< a number
    Real,     ///< its eight bytes, the lowest first
    Text,     ///< its number among the texts
    Embedded, ///< an instance
    Array,    ///< how many elements, and these
    Bytes     ///< how many, and these
};

} // namespace quillet::simulator
