// One client's connection to a machine.
#pragma once

#include <quillet-simulator/Machine.h>

namespace quillet::simulator {

/// Shared by everything that a connection hands out; it keeps the machine alive.
struct Session {
    std::shared_ptr<Machine> machine;
    LCID locale = 0; ///< the language of amended qualifiers; 0: the texts as the schema has them
};

using SessionPtr = std::shared_ptr<const Session>;

/// The language in a locale text such as "MS_407"; 0 when it is none.
LCID LocaleFromText(std::wstring_view text) noexcept;

} // namespace quillet::simulator
