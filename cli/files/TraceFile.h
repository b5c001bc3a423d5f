// Where the library writes its trace.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

struct TraceFile {
    std::filesystem::path path;
    std::vector<std::string> lines; ///< the last ones, UTF-8, without line ends
};

/// The trace file of this process and its last lines; nothing when the process writes none.
std::optional<TraceFile> ReadTraceFile(std::size_t lineCount);

} // namespace quilletctl
