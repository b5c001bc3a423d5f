// Runs another program and waits for it; one implementation per host.
#pragma once

#include <filesystem>

/// @return its exit status; -1 if it could not be run or did not end by itself
int RunProgram(const std::filesystem::path& program);
