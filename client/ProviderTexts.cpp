// The provider's texts of its numbers.
#include <quillet/client/ProviderTexts.h>

#include "Operations.h"

#include <quillet/ValueTexts.h>

namespace quillet {

struct ProviderTexts::State {
    CValueTexts texts;
};

ProviderTexts::ProviderTexts(Session& session) : m_state(new State{CValueTexts(session.m_state->quillet)}) {}

ProviderTexts::~ProviderTexts() = default;

std::wstring ProviderTexts::Of(const ValueSource& source, std::int32_t number) {
    std::wstring text;
    if (source.className == nullptr) {
        return text;
    }
    try {
        Do("GetValueText", source.className,
           [&] { return m_state->texts.GetText(source.className, source.property, number, text); });
    } catch (const Error&) {
        // The number is shown without a word then.
        text.clear();
    }
    return text;
}

} // namespace quillet
