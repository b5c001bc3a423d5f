// What happens to the process's trace log when the library is loaded.
#pragma once

#include "LumDebug.h"

#include <string>

/// Whether the library stays silent in a process of this executable: the provider's own host and the service
/// host.
bool IsSilentTraceHost(const std::wstring& hostExecutablePath);

/// What the load routine does: switches the trace log on with its usual file, unless the host is a silent
/// one.
/// @return what Configure returned; -1 for a silent host, whose log is left as it is
LONG ConfigureTraceAtLoad(const std::wstring& hostExecutablePath) noexcept;

/// The full path of the program that this process runs; empty if the system does not tell.
std::wstring HostExecutablePath();
