// Texts where there are no resources: from the same file.
#include "model/Strings.h"

#include <map>

namespace quillet::pages {

namespace {

struct Translations {
    const wchar_t* english;
    const wchar_t* german;
    const wchar_t* french;
};

const std::map<TextId, Translations>& Table() {
    static const std::map<TextId, Translations> kTable{
#define QUILLET_TEXT(name, english, german, french) {TextId::name, {L##english, L##german, L##french}},
#include "resources/Strings.inc"
#undef QUILLET_TEXT
    };
    return kTable;
}

} // namespace

Language UserLanguage() noexcept {
    return Language::English;
}

std::wstring Say(TextId id) {
    const Translations& texts = Table().at(id);
    switch (SpokenLanguage()) {
    case Language::German:
        return texts.german;
    case Language::French:
        return texts.french;
    case Language::English:
        break;
    }
    return texts.english;
}

} // namespace quillet::pages
