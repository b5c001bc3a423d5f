// Whether a thread may use COM.
#pragma once

namespace quillet::platform {

/// The calling thread has initialised COM more often than it has given it up, or belongs to the multithreaded
/// apartment that somebody keeps alive.
bool IsComInitialised() noexcept;

} // namespace quillet::platform
