// quilletctl complete: what the scripts of the shells ask.
#pragma once

#include "app/CommandTree.h"
#include "terminal/Terminal.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quilletctl {

/// Tells what may stand at the cursor. Its first line is "files" where that may also be the name of a file,
/// else empty; then comes a line for each word, with a tab and a description unless it is for bash. A line
/// that makes no sense has no words. Machines over the network are not asked, for that may need a password.
/// What the library traces is the caller's to keep away.
/// @param arguments "--within=MS" ends the process when that time is over; then "--line=LINE" with bash's
/// line up to the cursor and "--breaks=COMP_WORDBREAKS", or "--current=WORD" at the cursor and the words
/// before it
ExitStatus Complete(CommandTree& tree, const std::vector<std::string>& arguments, Terminal& terminal);

/// The script of a shell; empty where there is none.
std::string CompletionScript(const std::string& shell);
/// The shells that have one.
const std::vector<std::string>& ShellsWithCompletion();

} // namespace quilletctl
