// The table of languages.
#include "soap/Languages.h"

#include "soap/Addressing.h"

#include <quillet-wmi/Text.h>

namespace quillet::wsman {

namespace {

struct Language {
    LCID id;
    std::string_view tag;
};

// The first of a language is the one that is meant where no country is named.
constexpr Language kLanguages[] = {
    {0x409, "en-US"},  {0x809, "en-GB"}, {0xC09, "en-AU"}, {0x1009, "en-CA"}, {0x407, "de-DE"},
    {0x807, "de-CH"},  {0xC07, "de-AT"}, {0x40C, "fr-FR"}, {0x80C, "fr-BE"},  {0xC0C, "fr-CA"},
    {0x100C, "fr-CH"}, {0x410, "it-IT"}, {0x810, "it-CH"}, {0xC0A, "es-ES"},  {0x40A, "es-ES_tradnl"},
    {0x80A, "es-MX"},  {0x416, "pt-BR"}, {0x816, "pt-PT"}, {0x413, "nl-NL"},  {0x813, "nl-BE"},
    {0x406, "da-DK"},  {0x41D, "sv-SE"}, {0x414, "nb-NO"}, {0x40B, "fi-FI"},  {0x415, "pl-PL"},
    {0x405, "cs-CZ"},  {0x41B, "sk-SK"}, {0x40E, "hu-HU"}, {0x418, "ro-RO"},  {0x402, "bg-BG"},
    {0x408, "el-GR"},  {0x41F, "tr-TR"}, {0x419, "ru-RU"}, {0x422, "uk-UA"},  {0x40D, "he-IL"},
    {0x401, "ar-SA"},  {0x404, "zh-TW"}, {0x804, "zh-CN"}, {0xC04, "zh-HK"},  {0x411, "ja-JP"},
    {0x412, "ko-KR"},  {0x41E, "th-TH"}, {0x42A, "vi-VN"}, {0x424, "sl-SI"},  {0x41A, "hr-HR"},
    {0x425, "et-EE"},  {0x426, "lv-LV"}, {0x427, "lt-LT"}, {0x421, "id-ID"},
};

} // namespace

std::string LanguageTag(LCID locale) {
    for (const Language& each : kLanguages) {
        if (each.id == locale) {
            return std::string(each.tag);
        }
    }
    return {};
}

LCID LanguageOf(std::string_view tag) {
    const auto wide = wmi::FromUtf8(tag);
    if (!wide || wide->empty()) {
        return 0;
    }
    const std::wstring_view language = std::wstring_view(*wide).substr(0, wide->find(L'-'));
    LCID alike = 0;
    for (const Language& each : kLanguages) {
        const std::wstring known = Wide(each.tag);
        if (wmi::SameName(known, *wide)) {
            return each.id;
        }
        if (alike == 0 && wmi::SameName(std::wstring_view(known).substr(0, known.find(L'-')), language)) {
            alike = each.id;
        }
    }
    return alike;
}

} // namespace quillet::wsman
