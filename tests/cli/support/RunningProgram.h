// The program itself in a process of its own, which a test sends signals to. For POSIX hosts.
#pragma once

#include "support/RunCommandLine.h"

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quillet::tests {

class RunningProgram {
  public:
    /// Where the program reads and writes: pipes, or a terminal of its own, 70 columns wide.
    enum class Ends { Pipes, Terminal };

    /// Starts it in a folder, where it also writes its trace.
    RunningProgram(const std::filesystem::path& folder, std::vector<std::string> arguments,
                   Ends ends = Ends::Pipes);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Waits until the library has traced a text this many times, within half a minute.
    void WaitForTrace(const std::string& text, std::size_t count = 1) const;
    /// Waits until this was written to the terminal.
    void WaitForScreen(const std::string& text);
    void Signal(int signal) const;
    void Type(const std::string& text) const;
    /// Whether what is typed on the terminal shows.
    bool Echoes() const;

    /// Waits for its end. The status is negative where a signal ended it. A terminal's output is all in
    /// `out`.
    Outcome Finish();

  private:
    std::filesystem::path m_folder;
    pid_t m_process = -1;
    int m_out = -1; ///< or the other side of the terminal
    int m_err = -1;
    Outcome m_outcome;
};

} // namespace quillet::tests
