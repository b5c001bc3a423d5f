// Bit masks.
#include "texts/BitMask.h"

#include <array>
#include <cstdio>

namespace quilletctl {

std::vector<unsigned> SetBits(ULONGLONG mask) {
    std::vector<unsigned> bits;
    for (unsigned bit = 0; bit < 64; ++bit) {
        if ((mask >> bit) & 1U) {
            bits.push_back(bit);
        }
    }
    return bits;
}

std::string HexMask(ULONGLONG mask) {
    std::array<char, 24> hex{};
    std::snprintf(hex.data(), hex.size(), "0x%08X%08X", static_cast<unsigned>(mask >> 32),
                  static_cast<unsigned>(mask & 0xFFFFFFFFU));
    return hex.data();
}

} // namespace quilletctl
