// quilletctl monitor: tells what changes until somebody ends it.
#include "commands/Commands.h"
#include "commands/monitor/Events.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <thread>

namespace quilletctl {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::seconds;

/// A machine that restarts is back after minutes, and must not be asked all the time.
constexpr Seconds kLongestPause{60};
constexpr LONG kMost = 1'000'000;

class Watching {
  public:
    Watching(Invocation& run, Seconds interval, std::optional<Clock::time_point> end,
             std::optional<LONG> count)
        : m_run(run), m_interval(interval), m_end(end), m_left(count) {}

    void Run() {
        // What fails at first fails for good: a name that is wrong does not come back.
        Snapshot before = Attempt("watch " + Machine(), [&] { return TakeSnapshot(m_run.Session()); });
        Tell({.kind = Event::Kind::Started,
              .thing = "machine",
              .name = Machine(),
              .interval = static_cast<unsigned>(m_interval.count()),
              .calls = before.calls},
             false);
        while (Rest(m_pause.value_or(m_interval))) {
            std::optional<Snapshot> now = TryRound();
            if (!now) {
                continue;
            }
            for (const Event& event : Compare(before, *now)) {
                if (!MayTellMore()) {
                    return;
                }
                Tell(event);
            }
            before = *std::move(now);
        }
    }

  private:
    std::string Machine() const { return m_run.MachineName().empty() ? "this machine" : m_run.MachineName(); }

    /// Nothing where the machine does not answer.
    std::optional<Snapshot> TryRound() {
        const bool isAnew = m_pause || m_run.IsOutdated();
        std::string why;
        try {
            Snapshot now = TakeSnapshot(isAnew ? m_run.Reconnect() : m_run.Session());
            if (m_pause) {
                m_pause.reset();
                Tell({.kind = Event::Kind::Back, .thing = "machine", .name = Machine()});
            }
            return now;
        } catch (const quillet::Error& failure) {
            why = ExplainResult(failure.Code(), RemoteReason(failure.Code()));
        } catch (const Refusal& refusal) {
            why = refusal.what();
        } catch (const UsageError& mistake) {
            why = mistake.what(); // somebody spoiled the file of a simulated machine
        }
        if (!m_pause) {
            Tell({.kind = Event::Kind::Gone, .thing = "machine", .name = Machine(), .to = why});
        }
        m_pause = std::min(kLongestPause, m_pause ? 2 * *m_pause : m_interval);
        return std::nullopt;
    }

    bool MayTellMore() const { return !m_left || *m_left > 0; }

    /// False where the time is over, or enough was told.
    bool Rest(Seconds pause) const {
        if (!MayTellMore()) {
            return false;
        }
        const auto until = Clock::now() + pause;
        if (m_end && *m_end < until) {
            std::this_thread::sleep_until(*m_end);
            return false;
        }
        std::this_thread::sleep_until(until);
        return true;
    }

    void Tell(const Event& event, bool counts = true) {
        const Moment now = std::chrono::system_clock::now();
        if (m_run.WantsJson()) {
            m_run.PrintLine(AsJson(event, now));
        } else {
            m_run.Out() << AsText(event, now, m_run.Screen()) << '\n';
        }
        m_run.Out().flush();
        if (counts && m_left) {
            --*m_left;
        }
    }

    Invocation& m_run;
    Seconds m_interval;
    std::optional<Clock::time_point> m_end;
    std::optional<LONG> m_left;       ///< how many lines may be told
    std::optional<Seconds> m_pause{}; ///< before the machine is tried again; nothing while it answers
};

class MonitorMachine final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        constexpr std::uint32_t kDay = 86400;
        syntax.Number("--interval", m_interval, 1, kDay, "Seconds from one round to the next");
        syntax.Number("--for", m_seconds, 1, kMost, "End after so many seconds");
        syntax.Number("--count", m_count, 1, kMost, "End after so many changes");
    }

    ExitStatus Run(Invocation& run) override {
        std::optional<Clock::time_point> end;
        if (m_seconds) {
            end = Clock::now() + Seconds(*m_seconds);
        }
        Watching(run, Seconds(m_interval), end, m_count).Run();
        return ExitStatus::Done;
    }

  private:
    std::uint32_t m_interval = 2;
    std::optional<LONG> m_seconds;
    std::optional<LONG> m_count;
};

} // namespace

void AddMonitorCommand(CommandTree& tree) {
    tree.AddCommand("monitor", "Tell changes of links, teams, members and VLANs as they happen",
                    CommandTree::Group::Diagnostics, std::make_unique<MonitorMachine>());
}

} // namespace quilletctl
