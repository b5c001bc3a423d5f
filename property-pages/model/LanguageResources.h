// The program's resources in the language that the user chose. Windows only.
#pragma once

#include <windows.h>

namespace quillet::pages {

/// The language of the resources.
WORD ResourceLanguage() noexcept;
/// A resource in that language; null where there is none.
const void* FindResourceOf(const wchar_t* type, unsigned number) noexcept;

} // namespace quillet::pages
