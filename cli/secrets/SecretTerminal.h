// The prompt on a POSIX terminal, which a test can hand in.
#pragma once

#include <string>

namespace quilletctl {

/// Shows a prompt on a terminal and reads a line from it without echo. False at the end of its input.
bool AskOnTerminal(int terminal, const std::string& prompt, std::wstring& secret);

} // namespace quilletctl
