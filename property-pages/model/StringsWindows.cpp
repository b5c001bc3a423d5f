// Texts from the program's resources.
#include "model/LanguageResources.h"
#include "model/Strings.h"

namespace quillet::pages {

namespace {

/// Texts are stored in blocks of sixteen, each behind its length.
constexpr unsigned kBlock = 16;

} // namespace

WORD ResourceLanguage() noexcept {
    switch (SpokenLanguage()) {
    case Language::German:
        return MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN);
    case Language::French:
        return MAKELANGID(LANG_FRENCH, SUBLANG_FRENCH);
    case Language::English:
        break;
    }
    return MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
}

const void* FindResourceOf(const wchar_t* type, unsigned number) noexcept {
    const HMODULE module = GetModuleHandleW(nullptr);
    const HRSRC found = FindResourceExW(module, type, MAKEINTRESOURCEW(number), ResourceLanguage());
    const HGLOBAL loaded = found != nullptr ? LoadResource(module, found) : nullptr;
    return loaded != nullptr ? LockResource(loaded) : nullptr;
}

Language UserLanguage() noexcept {
    switch (PRIMARYLANGID(GetUserDefaultUILanguage())) {
    case LANG_GERMAN:
        return Language::German;
    case LANG_FRENCH:
        return Language::French;
    default:
        return Language::English;
    }
}

std::wstring Say(TextId id) {
    const auto number = static_cast<unsigned>(id);
    const auto* text = static_cast<const wchar_t*>(FindResourceOf(RT_STRING, number / kBlock + 1));
    if (text == nullptr) {
        return {};
    }
    for (unsigned before = number % kBlock; before > 0; --before) {
        text += 1 + *text;
    }
    return {text + 1, std::size_t(*text)};
}

} // namespace quillet::pages
