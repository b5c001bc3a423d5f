// Passwords on their way in.
#pragma once

#include "Options.h"

#include <server/Passwords.h>

namespace quillet::serving {

/// The users of the options, with their passwords out of files that are their owner's alone, or a descriptor.
/// Throws Mistake; a password is in none of its texts.
wsman::Passwords ReadUsers(const Options& options);

} // namespace quillet::serving
