// The provider's own words for numbers.
#pragma once

#include <quillet/client/ProviderTexts.h>

#include <cstdint>
#include <string>

namespace quilletctl {

/// While one lives, the provider is asked for the words of numbers for which the program has none. One at a
/// time, and for the thread that it began on.
class ProviderWords {
  public:
    explicit ProviderWords(quillet::Session& session);
    ~ProviderWords();
    ProviderWords(const ProviderWords&) = delete;
    ProviderWords& operator=(const ProviderWords&) = delete;

    /// The words (UTF-8); empty where there are none, or nobody to ask.
    static std::string Of(const quillet::ValueSource& source, std::int32_t number);

  private:
    quillet::ProviderTexts m_texts;
};

} // namespace quilletctl
