// The trace log, directed into a file of the test's own.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Shows what has been traced since it was made. The log stays configured for the rest of the process.
class TraceFile {
  public:
    TraceFile();
    /// The texts of the lines since the last call, without the head that names process, thread and time.
    std::vector<std::string> NewLines();

  private:
    std::size_t m_seen = 0;
};
