// Drawing the bar.
#include "terminal/Progress.h"

#include "texts/Text.h"

#include <chrono>

namespace quilletctl {

namespace {

constexpr std::size_t kBar = 20;
constexpr std::size_t kBlock = 4;
constexpr auto kFrame = std::chrono::milliseconds(100);

} // namespace

std::string BarPicture(std::size_t frame) {
    // There and back again.
    constexpr std::size_t kWay = kBar - kBlock;
    const std::size_t step = frame % (2 * kWay);
    const std::size_t at = step <= kWay ? step : 2 * kWay - step;
    return "[" + std::string(at, ' ') + std::string(kBlock, '#') + std::string(kWay - at, ' ') + "]";
}

Progress::~Progress() {
    if (m_width > 0) {
        m_terminal.out << '\r' << std::string(m_width, ' ') << '\r' << std::flush;
    }
}

void Progress::Show(const std::string& text) {
    if (!m_terminal.outIsTerminal) {
        if (text != m_last) {
            m_terminal.out << Printable(text) << '\n' << std::flush;
            m_last = text;
        }
        return;
    }
    // A line that is full would break, and the next picture begin on another.
    const std::size_t room = m_terminal.width > 1 ? m_terminal.width - 1 : 1;
    const std::string line = Shortened(BarPicture(m_frame++) + " " + Printable(text), room);
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
