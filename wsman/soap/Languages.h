// Languages as Windows numbers them and as messages name them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace quillet::wsman {

/// "de-DE" for 0x407; empty for a number that is not known, and for 0.
std::string LanguageTag(LCID locale);
/// The other way round, without regard to case; a language without a country is that of its greatest one. 0
/// for a tag that is not known.
LCID LanguageOf(std::string_view tag);

} // namespace quillet::wsman
