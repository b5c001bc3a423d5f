// The pages' own words.
#include "model/Strings.h"

#include <atomic>

namespace quillet::pages {

namespace {

std::atomic<Language> g_language{Language::English};

} // namespace

void Speak(Language language) noexcept {
    g_language = language;
}

Language SpokenLanguage() noexcept {
    return g_language;
}

std::wstring Say(TextId id, std::initializer_list<std::wstring_view> arguments) {
    const std::wstring text = Say(id);
    std::wstring said;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const std::size_t number = position + 1 < text.size() ? std::size_t(text[position + 1] - L'1') : 9;
        if (text[position] == L'%' && number < arguments.size()) {
            said += arguments.begin()[number];
            ++position;
        } else {
            said += text[position];
        }
    }
    return said;
}

} // namespace quillet::pages
