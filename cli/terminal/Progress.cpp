// Drawing the bar.
#include "terminal/Progress.h"

#include "texts/Text.h"

#include <algorithm>
#include <cmath>

namespace quilletctl {

namespace {

constexpr std::size_t kBar = 20;
constexpr std::size_t kBlock = 4;
constexpr auto kFrame = std::chrono::milliseconds(100);

/// "12 s", "3 min 5 s".
std::string DurationText(std::chrono::seconds duration) {
    constexpr long long kMinute = 60;
    const long long seconds = duration.count();
    return (seconds < kMinute ? "" : std::to_string(seconds / kMinute) + " min ") +
           std::to_string(seconds % kMinute) + " s";
}

} // namespace

std::string BarPicture(std::size_t frame) {
    // There and back again.
    constexpr std::size_t kWay = kBar - kBlock;
    const std::size_t step = frame % (2 * kWay);
    const std::size_t at = step <= kWay ? step : 2 * kWay - step;
    return "[" + std::string(at, ' ') + std::string(kBlock, '#') + std::string(kWay - at, ' ') + "]";
}

std::string BarPicture(Pieces pieces) {
    const std::size_t full = pieces.all == 0 ? 0 : std::min(kBar, kBar * pieces.done / pieces.all);
    return "[" + std::string(full, '#') + std::string(kBar - full, ' ') + "]";
}

std::string TimeText(std::chrono::seconds gone, std::optional<Pieces> pieces) {
    constexpr std::chrono::seconds kEnough{2};
    std::string text = DurationText(gone);
    if (pieces && pieces->done > 0 && pieces->done < pieces->all && gone >= kEnough) {
        const double pace = static_cast<double>(gone.count()) / static_cast<double>(pieces->done);
        const auto left = std::llround(pace * static_cast<double>(pieces->all - pieces->done));
        text += ", about " + DurationText(std::chrono::seconds(left)) + " left";
    }
    return text;
}

Progress::~Progress() {
    if (m_width > 0) {
        m_terminal.out << '\r' << std::string(m_width, ' ') << '\r' << std::flush;
    }
}

void Progress::Show(const std::string& text, std::optional<Pieces> pieces) {
    if (!m_terminal.outIsTerminal) {
        if (text != m_last) {
            m_terminal.out << Printable(text) << '\n' << std::flush;
            m_last = text;
        }
        return;
    }
    // A line that is full would break, and the next picture begin on another.
    const std::size_t room = m_terminal.width > 1 ? m_terminal.width - 1 : 1;
    const auto gone =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - m_start);
    const std::string bar = pieces ? BarPicture(*pieces) : BarPicture(m_frame++);
    const std::string line = Shortened(bar + " " + Printable(text) + "  " + TimeText(gone, pieces), room);
    const std::size_t width = DisplayWidth(line);
    m_terminal.out << '\r' << line << std::string(m_width > width ? m_width - width : 0, ' ') << std::flush;
    m_width = width;
}

ProgressWhileBusy::ProgressWhileBusy(const Terminal& terminal, std::string text)
    : m_progress(terminal), m_text(std::move(text)) {
    m_progress.Show(m_text);
    if (terminal.outIsTerminal) {
        m_thread = std::thread([this] {
            std::unique_lock lock(m_mutex);
            while (!m_changed.wait_for(lock, kFrame, [this] { return m_done; })) {
                m_progress.Show(m_text);
            }
        });
    }
}

ProgressWhileBusy::~ProgressWhileBusy() {
    if (m_thread.joinable()) {
        {
            const std::lock_guard lock(m_mutex);
            m_done = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }
}

} // namespace quilletctl
