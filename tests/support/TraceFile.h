// What the process's trace log has written.
#pragma once

#include "RegistryScope.h"
#include "TemporaryDirectory.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace quillet::tests {

/// One line of a trace file, taken apart.
struct TraceLine {
    std::wstring process;
    unsigned pid = 0;
    unsigned tid = 0;
    std::wstring time;              ///< "hh:mm:ss.mmm"
    unsigned long long counter = 0; ///< of the performance counter
    std::wstring text;
};

/// Takes a trace file apart. A line without a head belongs to the text before it, behind a line feed: some
/// texts of the system end in a line of their own. Carriage returns before line feeds are the host's. A file
/// that begins with something else, or is no UTF-8, raises std::runtime_error.
std::vector<TraceLine> ParseTraceFile(const std::filesystem::path& file);

/// Points the process's trace log to a file in a directory of its own and reads what is written from then on.
/// When it goes, the log is off.
class TraceFile {
  public:
    /// @param level as of CLumDebug::Configure
    /// @param maxFileSize in bytes, 0 for no limit
    explicit TraceFile(unsigned level = 1, unsigned maxFileSize = 0);
    ~TraceFile();
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    std::filesystem::path Path() const;
    /// All lines so far.
    std::vector<TraceLine> Lines() const;
    /// The texts that were written since the last call, or since the log was pointed here.
    std::vector<std::wstring> NewTexts();

  private:
    TemporaryDirectory m_directory;
    RegistryScope m_registry;
    /// What was reported already, in bytes.
    std::uintmax_t m_seen = 0;
};

} // namespace quillet::tests
