// Looking until something is up.
#include "changes/Wait.h"

#include "terminal/Progress.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace quilletctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kInterval = std::chrono::milliseconds(250);
/// A driver may take its link down only some time after the change.
constexpr int kLooksThatAreEnough = 3;

bool IsBack(quillet::Session& session, const Watched& watched) {
    try {
        return watched.isUp(session);
    } catch (const quillet::Error&) {
        return false;
    }
}

/// Counts for each at how many looks in a row it was up; whether that is enough for all.
bool AreUp(quillet::Session& session, const std::vector<Watched>& all, std::vector<int>& looks) {
    for (std::size_t i = 0; i < all.size(); ++i) {
        looks[i] = IsBack(session, all[i]) ? looks[i] + 1 : 0;
    }
    return std::all_of(looks.begin(), looks.end(), [](int each) { return each >= kLooksThatAreEnough; });
}

template <class Id>
Watched Status(const Id& id, const std::string& called) {
    return {called + " enabled", [id](quillet::Session& session) {
                return session.ReadStatus(id) == quillet::StatusInfo::Enabled;
            }};
}

} // namespace

Watched LinkOf(const quillet::AdapterId& adapter, const std::string& called) {
    return {"the link of " + called + " up", [adapter](quillet::Session& session) {
                return session.ReadState(adapter).hardware == quillet::HardwareStatus::LinkPresent;
            }};
}

Watched StatusOf(const quillet::TeamId& team, const std::string& called) {
    return Status(team, called);
}

Watched StatusOf(const quillet::VlanId& vlan, const std::string& called) {
    return Status(vlan, called);
}

void WaitOption::Declare(Syntax& syntax) {
    constexpr LONG kMostSeconds = 3600;
    syntax.Number("--wait", m_seconds, 1, kMostSeconds,
                  "After the change wait up to so many seconds until what it took down is up again");
}

std::vector<Watched> WaitOption::Up(quillet::Session& session, const std::vector<Watched>& all) const {
    std::vector<Watched> up;
    for (const Watched& each : all) {
        if (m_seconds && IsBack(session, each)) {
            up.push_back(each);
        }
    }
    return up;
}

void WaitOption::Until(Invocation& run, const std::vector<Watched>& all) const {
    if (!m_seconds || all.empty()) {
        return;
    }
    std::optional<ProgressWhileBusy> progress;
    if (!run.WantsJson()) {
        progress.emplace(run.Screen(), "Waiting for the change to settle");
    }
    const auto until = Clock::now() + std::chrono::seconds(*m_seconds);
    std::vector<int> looks(all.size());
    while (run.MayGoOn() && !AreUp(run.Session(), all, looks)) {
        if (Clock::now() >= until) {
            TellDown(run, all, looks);
            return;
        }
        std::this_thread::sleep_for(kInterval);
    }
}

void WaitOption::TellDown(Invocation& run, const std::vector<Watched>& all,
                          const std::vector<int>& looks) const {
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (looks[i] < kLooksThatAreEnough) {
            run.FailAfterAnswer({"see " + all[i].what + " within " + std::to_string(*m_seconds) +
                                     (*m_seconds == 1 ? " second" : " seconds"),
                                 static_cast<HRESULT>(WBEM_E_TIMED_OUT)});
        }
    }
}

} // namespace quilletctl
