// Numbers and bits of the provider's for which nobody has a word.
#pragma once

#include <quillet/client/Flags.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

/// What a number that has no word is shown as: "code 7 (unknown)".
std::wstring UnknownNumber(std::int64_t number, const std::wstring& what = L"code");
/// The same of each bit that is set, by its place: "warning 3 (unknown)".
std::vector<std::wstring> UnknownBits(Flags<ProviderBit> bits, const std::wstring& what);

} // namespace quillet
