// The words of documents for the provider's numbers.
#pragma once

#include <quillet-state/Document.h>

#include <quillet/client/Boot.h>
#include <quillet/client/Team.h>

#include <optional>
#include <string>
#include <string_view>

namespace quillet::state {

/// The mode that a document names by number or text; nothing where it names none.
std::optional<TeamMode> ModeFrom(const Json& named);
/// As documents have a mode: by its text, else its number.
Json AsJson(TeamMode mode);

/// "primary", "secondary" or "off"; nothing for any other word.
std::optional<IscsiStatus> IscsiFrom(std::string_view word);
/// The word; nothing for a number that has none.
std::optional<std::string> IscsiWord(IscsiStatus status);

} // namespace quillet::state
