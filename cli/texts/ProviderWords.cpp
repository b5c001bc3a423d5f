// Asking the provider for words.
#include "texts/ProviderWords.h"

#include "texts/Text.h"

namespace quilletctl {

namespace {

thread_local ProviderWords* g_words = nullptr;

} // namespace

ProviderWords::ProviderWords(quillet::Session& session) : m_texts(session) {
    g_words = this;
}

ProviderWords::~ProviderWords() {
    g_words = nullptr;
}

std::string ProviderWords::Of(const quillet::ValueSource& source, std::int32_t number) {
    return g_words == nullptr ? std::string() : ToUtf8(g_words->m_texts.Of(source, number));
}

} // namespace quilletctl
