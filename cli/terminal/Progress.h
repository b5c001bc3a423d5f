// Long work as a person watches it: a bar that moves on a terminal, plain lines elsewhere.
#pragma once

#include "terminal/Terminal.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace quilletctl {

/// Tells what is going on. How far the work has come is not known, so the bar shows only that it goes on.
class Progress {
  public:
    explicit Progress(const Terminal& terminal) : m_terminal(terminal) {}
    /// Wipes the bar.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// On a terminal the next picture of the bar, with the text (UTF-8) beside it; elsewhere a line, when the
    /// text is another than before.
    void Show(const std::string& text);

  private:
    const Terminal& m_terminal;
    std::string m_last;
    std::size_t m_frame = 0;
    std::size_t m_width = 0; ///< of what stands on the terminal's line
};

/// The bar at a moment: "[  ####              ]".
std::string BarPicture(std::size_t frame);

/// Keeps the bar moving while a call does not return. Nothing else may write to the terminal meanwhile.
class ProgressWhileBusy {
  public:
    ProgressWhileBusy(const Terminal& terminal, std::string text);
    ~ProgressWhileBusy();
    ProgressWhileBusy(const ProgressWhileBusy&) = delete;
    ProgressWhileBusy& operator=(const ProgressWhileBusy&) = delete;

  private:
    Progress m_progress;
    std::string m_text;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
    std::thread m_thread;
};

} // namespace quilletctl
