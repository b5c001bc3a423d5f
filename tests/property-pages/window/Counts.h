// What a process holds, counted where Windows itself keeps it: Wine answers the usual questions with 0.
#pragma once

#include <cstddef>

namespace quillet::tests {

std::size_t CountHandles();        ///< of the kernel's objects
std::size_t CountDrawingObjects(); ///< fonts, bitmaps, brushes, device contexts
std::size_t CountWindows();        ///< those that nobody sees included

} // namespace quillet::tests
