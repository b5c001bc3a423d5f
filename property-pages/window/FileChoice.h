// Asking for the name of a file.
#pragma once

#include <windows.h>

#include <string>

namespace quillet::pages {

/// What a file is wanted for. One that is there is overwritten only after a question.
enum class FileUse { Read, Write };

/// Shows the system's dialog for image files.
/// @returns the file's path; empty where none was chosen
std::wstring ChooseFile(HWND owner, FileUse use);

} // namespace quillet::pages
