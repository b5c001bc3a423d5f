// What a window looks like.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace quillet::tests {

/// Texts that do not fit into their controls, controls that lie on each other or stick out of their window.
/// Called on the window's own thread.
std::vector<std::wstring> FlawsOf(HWND window);
/// Writes a window, as it is on the screen, into a PNG file.
void SavePicture(HWND window, const std::wstring& file);

} // namespace quillet::tests
