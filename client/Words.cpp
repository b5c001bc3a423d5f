// What is shown where there is no word.
#include <quillet/client/Words.h>

#include <bit>

namespace quillet {

std::wstring UnknownNumber(std::int64_t number, const std::wstring& what) {
    return what + L' ' + std::to_wstring(number) + L" (unknown)";
}

std::vector<std::wstring> UnknownBits(Flags<ProviderBit> bits, const std::wstring& what) {
    std::vector<std::wstring> texts;
    for (const ProviderBit bit : bits.Each()) {
        texts.push_back(UnknownNumber(std::countr_zero(static_cast<std::uint64_t>(bit)), what));
    }
    return texts;
}

} // namespace quillet
