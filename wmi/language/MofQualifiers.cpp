// Tables of standard qualifiers and of locales.
#include "language/MofQualifiers.h"

namespace quillet::simulator {

namespace {

constexpr LONG kToSubclass = WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS;
constexpr LONG kFixed = kToSubclass | WBEM_FLAVOR_NOT_OVERRIDABLE;
constexpr LONG kRestricted = 0;
constexpr CIMTYPE kStrings = static_cast<CIMTYPE>(CIM_STRING) | static_cast<CIMTYPE>(CIM_FLAG_ARRAY);

struct Standard {
    const wchar_t* name;
    CIMTYPE type;
    LONG flavor;
};

constexpr Standard kStandard[] = {
    {L"Abstract", CIM_BOOLEAN, kRestricted},
    {L"Aggregate", CIM_BOOLEAN, kFixed},
    {L"Aggregation", CIM_BOOLEAN, kFixed},
    {L"Association", CIM_BOOLEAN, kFixed},
    {L"BitMap", kStrings, kToSubclass},
    {L"BitValues", kStrings, kToSubclass},
    {L"Deprecated", kStrings, kRestricted},
    {L"Description", CIM_STRING, kToSubclass},
    {L"DisplayName", CIM_STRING, kToSubclass},
    {L"Experimental", CIM_BOOLEAN, kRestricted},
    {L"In", CIM_BOOLEAN, kFixed},
    {L"Indication", CIM_BOOLEAN, kFixed},
    {L"Key", CIM_BOOLEAN, kFixed},
    {L"MappingStrings", kStrings, kToSubclass},
    {L"Max", CIM_UINT32, kToSubclass},
    {L"MaxLen", CIM_UINT32, kToSubclass},
    {L"MaxValue", CIM_SINT64, kToSubclass},
    {L"Min", CIM_UINT32, kToSubclass},
    {L"MinLen", CIM_UINT32, kToSubclass},
    {L"MinValue", CIM_SINT64, kToSubclass},
    {L"ModelCorrespondence", kStrings, kToSubclass},
    {L"Out", CIM_BOOLEAN, kFixed},
    {L"Override", CIM_STRING, kRestricted},
    {L"Read", CIM_BOOLEAN, kToSubclass},
    {L"Required", CIM_BOOLEAN, kToSubclass},
    {L"Singleton", CIM_BOOLEAN, kToSubclass},
    {L"Static", CIM_BOOLEAN, kFixed},
    {L"Terminal", CIM_BOOLEAN, kRestricted},
    {L"Units", CIM_STRING, kToSubclass},
    {L"ValueMap", kStrings, kToSubclass},
    {L"Values", kStrings, kToSubclass},
    {L"Version", CIM_STRING, kRestricted},
    {L"Write", CIM_BOOLEAN, kToSubclass},
};

struct Locale {
    const wchar_t* name;
    LCID language;
};

constexpr Locale kLocales[] = {
    {L"cs_CZ", 0x405},
    {L"da_DK", 0x406},
    {L"de_AT", 0xC07},
    {L"de_CH", 0x807},
    {L"de_DE", 0x407},
    {L"en_GB", 0x809},
    {L"en_US", 0x409},
    // Windows has two languages for Spanish: modern and traditional sorting.
    {L"es_ES", 0xC0A},
    {L"es_ES", 0x40A},
    {L"fi_FI", 0x40B},
    {L"fr_CA", 0xC0C},
    {L"fr_FR", 0x40C},
    {L"hu_HU", 0x40E},
    {L"it_IT", 0x410},
    {L"ja_JP", 0x411},
    {L"ko_KR", 0x412},
    {L"nb_NO", 0x414},
    {L"nl_NL", 0x413},
    {L"pl_PL", 0x415},
    {L"pt_BR", 0x416},
    {L"pt_PT", 0x816},
    {L"ru_RU", 0x419},
    {L"sv_SE", 0x41D},
    {L"tr_TR", 0x41F},
    {L"zh_CN", 0x804},
    {L"zh_TW", 0x404},
};

constexpr bool IsLower(wchar_t c) noexcept {
    return c >= L'a' && c <= L'z';
}
constexpr bool IsUpper(wchar_t c) noexcept {
    return c >= L'A' && c <= L'Z';
}

} // namespace

std::optional<Repository::QualifierDeclaration> StandardQualifier(std::wstring_view name) {
    for (const Standard& standard : kStandard) {
        if (SameName(standard.name, name)) {
            Repository::QualifierDeclaration declaration;
            declaration.name = standard.name;
            declaration.type = standard.type;
            declaration.flavor = standard.flavor;
            return declaration;
        }
    }
    return std::nullopt;
}

std::optional<LocalisedName> SplitLocale(std::wstring_view name) {
    constexpr std::size_t kSuffix = 6; // _ll_CC
    if (name.size() <= kSuffix) {
        return std::nullopt;
    }
    const std::wstring_view suffix = name.substr(name.size() - kSuffix);
    if (suffix[0] != L'_' || !IsLower(suffix[1]) || !IsLower(suffix[2]) || suffix[3] != L'_' ||
        !IsUpper(suffix[4]) || !IsUpper(suffix[5])) {
        return std::nullopt;
    }
    LocalisedName result{name.substr(0, name.size() - kSuffix), suffix.substr(1), {}};
    for (const Locale& locale : kLocales) {
        if (result.locale == locale.name) {
            result.languages.push_back(locale.language);
        }
    }
    return result;
}

const wchar_t* LocaleOf(LCID language) noexcept {
    const Locale* previous = nullptr;
    for (const Locale& locale : kLocales) {
        if (locale.language == language) {
            const bool shared = previous != nullptr && std::wstring_view(previous->name) == locale.name;
            return shared ? nullptr : locale.name;
        }
        previous = &locale;
    }
    return nullptr;
}

} // namespace quillet::simulator
