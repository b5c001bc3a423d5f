#include "Session/SessionLocale.h"

#include "Session/ConfigurationKeys.h"
#include "LumRegistry.h"
#include "Provider/Trace.h"

#include <algorithm>
#include <array>

namespace {

constexpr DWORD ENGLISH = 1033;

/// The languages that the provider's texts exist in, English apart.
constexpr std::array<DWORD, 9> TRANSLATED{1028, 1031, 1036, 1040, 1041, 1042, 1046, 2052, 3082};

std::wstring LocaleOf(DWORD language) {
    constexpr const wchar_t* digits = L"0123456789ABCDEF";
    std::wstring text;
    do {
        text.insert(text.begin(), digits[language % 16]);
        language /= 16;
    } while (language != 0);
    return L"MS_" + text;
}

BOOL CALLBACK CountLanguage(LPWSTR language, LONG_PTR parameter) {
    int& count = *reinterpret_cast<int*>(parameter);
    ++count;
    LumTrace().Print(L"UI language: %s", language ? language : L"");
    // The second one settles it.
    return count < 2;
}

bool IsMultiLanguageSystem() {
    int count = 0;
    // An enumeration that the callback ends early may report failure; what was counted decides first.
    const BOOL enumerated = EnumUILanguagesW(CountLanguage, 0, reinterpret_cast<LONG_PTR>(&count));
    if (count >= 2) {
        TraceText(L"MUI System");
        return true;
    }
    TraceText(enumerated ? L"Not a MUI System" : L"EnumUILanguages Failed");
    return false;
}

/// Version 5.0 on the NT platform and nothing else. Later multi-language systems pick their texts by
/// themselves, so the narrow rule is kept.
bool IsFirstMultiLanguageVersion() {
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXW);
    if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version))) {
        version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
        if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version))) {
            return false;
        }
    }
    return version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion == 5 &&
           version.dwMinorVersion == 0;
}

std::optional<std::wstring> ChooseLocale() {
    const LumRegistryKey orba(REGISTRY_ORBA);
    if (orba.Has(L"ForcedLanguage")) {
        if (const std::optional<DWORD> forced = orba.ReadFourBytes(L"ForcedLanguage")) {
            const bool translated =
                std::find(TRANSLATED.begin(), TRANSLATED.end(), *forced) != TRANSLATED.end();
            return LocaleOf(translated ? *forced : ENGLISH);
        }
        // Forced to something unreadable: the user's language is the next best.
        return LocaleOf(ProviderLanguage(GetUserDefaultUILanguage()));
    }
    if (IsMultiLanguageSystem()) {
        if (IsFirstMultiLanguageVersion()) {
            return LocaleOf(ProviderLanguage(GetUserDefaultUILanguage()));
        }
        return std::nullopt;
    }
    constexpr std::size_t lcidBuffer = 260 / sizeof(wchar_t);
    if (const std::optional<std::wstring> lcid =
            LumRegistryKey(REGISTRY_LUM2).ReadString(L"LCID", lcidBuffer)) {
        return L"MS_" + *lcid;
    }
    return std::nullopt;
}

} // namespace

DWORD ProviderLanguage(LANGID userLanguage) {
    switch (PRIMARYLANGID(userLanguage)) {
    case 4: // Chinese: 1 and 3 write traditional characters, 2 simplified ones
        switch (SUBLANGID(userLanguage)) {
        case 1:
        case 3:
            return 1028;
        case 2:
            return 2052;
        default:
            return ENGLISH;
        }
    case 7:
        return 1031;
    case 10:
        return 3082;
    case 12:
        return 1036;
    case 16:
        return 1040;
    case 17:
        return 1041;
    case 18:
        return 1042;
    case 22:
        return 1046;
    default:
        return ENGLISH;
    }
}

std::optional<std::wstring> ChooseConnectionLocale() {
    std::optional<std::wstring> locale = ChooseLocale();
    if (locale) {
        LumTrace().Print(L"Locale: %s", locale->c_str());
    }
    return locale;
}
