// Masks of the provider's and of the library's checks.
#pragma once

#include <cstdint>
#include <vector>

namespace quillet {

/// Any number of bits of one enumeration. Bits that have no name are kept as well, for a later provider may
/// know more.
template <class Bit>
class Flags {
  public:
    /// No bit.
    constexpr Flags() noexcept = default;
    /// One bit.
    constexpr Flags(Bit bit) noexcept : m_mask(static_cast<std::uint64_t>(bit)) {}
    /// The bits of a number.
    static constexpr Flags FromMask(std::uint64_t mask) noexcept {
        Flags flags;
        flags.m_mask = mask;
        return flags;
    }

    /// The bits as a number.
    constexpr std::uint64_t Mask() const noexcept { return m_mask; }
    /// Whether there is any.
    constexpr bool Any() const noexcept { return m_mask != 0; }
    /// Whether a bit is among them.
    constexpr bool Has(Bit bit) const noexcept { return (m_mask & static_cast<std::uint64_t>(bit)) != 0; }
    /// Every bit by itself, the lowest first.
    std::vector<Bit> Each() const {
        std::vector<Bit> bits;
        for (std::uint64_t rest = m_mask; rest != 0; rest &= rest - 1) {
            bits.push_back(static_cast<Bit>(rest & (~rest + 1)));
        }
        return bits;
    }

    /// Adds bits.
    constexpr Flags& operator|=(Flags other) noexcept {
        m_mask |= other.m_mask;
        return *this;
    }
    /// The bits of both.
    friend constexpr Flags operator|(Flags left, Flags right) noexcept { return left |= right; }
    /// Whether the bits are the same.
    friend constexpr bool operator==(Flags, Flags) = default;

  private:
    std::uint64_t m_mask = 0;
};

/// A bit whose meaning is the provider's own.
enum class ProviderBit : std::uint64_t {};

} // namespace quillet
