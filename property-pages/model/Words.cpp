// The library's words in the language of the pages.
#include "model/Words.h"

#include <map>

namespace quillet::pages {

namespace {

/// Numbers of the texts that stand for words of the library's, by those words.
const std::map<std::wstring_view, TextId>& LibraryWords() {
    static const std::map<std::wstring_view, TextId> kWords{
#define QUILLET_TEXT(name, english, german, french)
#define QUILLET_WORD(name, english, german, french) {L##english, TextId::name},
#include "resources/Strings.inc"
#undef QUILLET_WORD
#undef QUILLET_TEXT
    };
    return kWords;
}

/// The adapter's name alone where its board has no slot, or the port no number.
std::wstring LabelOf(const AdapterOverview& overview, TextId id) {
    const std::wstring& name = overview.adapter.displayName;
    if (overview.adapter.slot.empty() || !overview.hardware || overview.hardware->portNumber.empty()) {
        return name;
    }
    return Say(id, {name, overview.adapter.slot, overview.hardware->portNumber});
}

} // namespace

std::wstring InOwnLanguage(const std::wstring& english) {
    const auto found = LibraryWords().find(english);
    return found == LibraryWords().end() ? english : Say(found->second);
}

std::wstring InOwnLanguage(const std::vector<std::wstring>& english) {
    std::wstring lines;
    for (const std::wstring& text : english) {
        lines += (lines.empty() ? L"" : L"\r\n") + InOwnLanguage(text);
    }
    return lines;
}

std::wstring AdapterLabel(const AdapterOverview& overview) {
    return LabelOf(overview, TextId::AdapterAtPort);
}

std::wstring AdapterRowLabel(const AdapterOverview& overview) {
    return LabelOf(overview, TextId::PortOfAdapter);
}

std::wstring LinkWords(const AdapterOverview& overview) {
    return overview.state ? LinkWords(*overview.state) : Say(TextId::Unknown);
}

std::wstring ShortLinkWords(const AdapterOverview& overview) {
    if (!overview.state || overview.state->hardware != HardwareStatus::LinkPresent) {
        return LinkWords(overview);
    }
    const std::wstring speed = InOwnLanguage(Text(overview.state->speed));
    const Duplex duplex = overview.state->duplex;
    return duplex == Duplex::Half ? speed + L", " + InOwnLanguage(Text(duplex)) : speed;
}

std::wstring WithoutMnemonic(std::wstring label) {
    std::erase(label, L'&');
    return label;
}

std::wstring LinkWords(const AdapterState& state) {
    if (state.hardware != HardwareStatus::LinkPresent) {
        return Say(TextId::LinkDown);
    }
    std::wstring words = Say(TextId::LinkUp) + L", " + InOwnLanguage(Text(state.speed));
    if (state.duplex != Duplex::Unknown) {
        words += L", " + InOwnLanguage(Text(state.duplex));
    }
    return words;
}

} // namespace quillet::pages
