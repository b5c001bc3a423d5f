// UI languages, character conversion and text comparison.
#include "HostSettings.h"
#include "Text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

using quillet::platform::FoldCase;
using quillet::platform::HostSettings;
using quillet::platform::WithSettings;

BOOL WINAPI EnumUILanguagesW(UILANGUAGE_ENUMPROCW callback, DWORD flags, LONG_PTR parameter) {
    if (!callback) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (flags & ~MUI_LANGUAGE_ID) {
        SetLastError(ERROR_INVALID_FLAGS);
        return FALSE;
    }
    if (WithSettings([](const HostSettings& settings) { return settings.failEnumUiLanguages; })) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return FALSE;
    }
    // A copy, because the callback may call anything.
    auto languages = WithSettings([](const HostSettings& settings) { return settings.uiLanguages; });
    for (std::wstring& language : languages) {
        if (!callback(language.data(), parameter)) {
            break;
        }
    }
    return TRUE;
}

LANGID WINAPI GetUserDefaultUILanguage() noexcept {
    return WithSettings([](const HostSettings& settings) { return settings.userLanguage; });
}

LANGID WINAPI GetSystemDefaultUILanguage() noexcept {
    return GetUserDefaultUILanguage();
}

LCID WINAPI GetUserDefaultLCID() noexcept {
    return MAKELCID(GetUserDefaultUILanguage(), 0);
}

namespace {

/// Hands a converted text out, or its size for a size of 0.
template <class Character>
int Deliver(const std::basic_string<Character>& text, Character* buffer, int size) {
    const auto length = static_cast<int>(text.size());
    if (size == 0) {
        return length;
    }
    if (!buffer || size < 0 || size < length) {
        SetLastError(size < 0 || !buffer ? ERROR_INVALID_PARAMETER : ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(text.begin(), text.end(), buffer);
    return length;
}

int Refuse(DWORD error) {
    SetLastError(error);
    return 0;
}

bool IsKnownCodePage(UINT codePage) {
    return codePage == CP_UTF8 || codePage == CP_ACP;
}

} // namespace

int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR buffer, int size) {
    if (!IsKnownCodePage(codePage) || !text || length == 0 || length < -1) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    if (flags & ~(MB_ERR_INVALID_CHARS | MB_PRECOMPOSED)) {
        return Refuse(ERROR_INVALID_FLAGS);
    }
    const std::size_t bytes = length < 0 ? std::strlen(text) + 1 : static_cast<std::size_t>(length);
    bool invalid = false;
    const std::wstring wide = quillet::platform::WideFromUtf8({text, bytes}, &invalid);
    if (invalid && (flags & MB_ERR_INVALID_CHARS)) {
        return Refuse(ERROR_NO_UNICODE_TRANSLATION);
    }
    return Deliver(wide, buffer, size);
}

int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR buffer, int size,
                               LPCSTR defaultChar, LPBOOL usedDefault) {
    if (!IsKnownCodePage(codePage) || !text || length == 0 || length < -1 ||
        (codePage == CP_UTF8 && (defaultChar || usedDefault))) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    if (flags & ~WC_ERR_INVALID_CHARS) {
        return Refuse(ERROR_INVALID_FLAGS);
    }
    const std::size_t characters = length < 0 ? std::wcslen(text) + 1 : static_cast<std::size_t>(length);
    bool invalid = false;
    const std::string narrow = quillet::platform::Utf8FromWide({text, characters}, &invalid);
    if (invalid && (flags & WC_ERR_INVALID_CHARS)) {
        return Refuse(ERROR_NO_UNICODE_TRANSLATION);
    }
    if (usedDefault) {
        *usedDefault = FALSE;
    }
    return Deliver(narrow, buffer, size);
}

int WINAPI lstrlenW(LPCWSTR text) {
    return text ? static_cast<int>(std::wcslen(text)) : 0;
}

int WINAPI CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength,
                                BOOL ignoreCase) {
    if (!left || !right || leftLength < -1 || rightLength < -1) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto text = [](LPCWSTR characters, int length) {
        return length < 0 ? std::wstring_view(characters)
                          : std::wstring_view(characters, static_cast<std::size_t>(length));
    };
    const std::wstring_view a = text(left, leftLength);
    const std::wstring_view b = text(right, rightLength);
    const int order = ignoreCase ? FoldCase(a).compare(FoldCase(b)) : a.compare(b);
    return order < 0 ? CSTR_LESS_THAN : order > 0 ? CSTR_GREATER_THAN : CSTR_EQUAL;
}

int WINAPI lstrcmpW(LPCWSTR left, LPCWSTR right) {
    if (!left || !right) {
        return left ? 1 : right ? -1 : 0;
    }
    const int order = std::wcscmp(left, right);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right) {
    if (!left || !right) {
        return left ? 1 : right ? -1 : 0;
    }
    const int order = FoldCase(left).compare(FoldCase(right));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}
