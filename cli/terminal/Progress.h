// Long work as a person watches it: a bar that moves on a terminal, plain lines elsewhere.
#pragma once

#include "terminal/Terminal.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace quilletctl {

/// How far work has come that is done piece by piece.
struct Pieces {
    std::size_t done = 0;
    std::size_t all = 0;
};

/// Tells what is going on, and for how long. Where nobody knows how far the work has come, the bar shows only
/// that it goes on; where pieces are counted, how much is done, and how long the rest may take.
class Progress {
  public:
    explicit Progress(const Terminal& terminal) : m_terminal(terminal) {}
    /// Wipes the bar.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// On a terminal the next picture of the bar, with the text (UTF-8) beside it; elsewhere a line, when the
    /// text is another than before.
    void Show(const std::string& text, std::optional<Pieces> pieces = {});

  private:
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    const Terminal& m_terminal;
    std::string m_last;
    std::size_t m_frame = 0;
    std::size_t m_width = 0; ///< of what stands on the terminal's line
};

/// The bar at a moment: "[  ####              ]".
std::string BarPicture(std::size_t frame);
/// The bar of work of which a part is done: "[#####               ]".
std::string BarPicture(Pieces pieces);
/// "12 s", or "12 s, about 36 s left" where that can be told: at first it would be a guess.
std::string TimeText(std::chrono::seconds gone, std::optional<Pieces> pieces);

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
