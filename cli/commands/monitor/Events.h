// What changed, and how it is told.
#pragma once

#include "commands/monitor/Snapshot.h"
#include "terminal/Terminal.h"
#include "texts/Json.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// Texts are UTF-8.
struct Event {
    enum class Kind { Started, Changed, Appeared, Disappeared, Gone, Back };
    Kind kind{};
    std::string thing{};    ///< as programs call it: "adapter", "link", "team", "member", "vlan", "machine"
    std::string objectId{}; ///< of a member: its adapter's; empty: it has none
    std::string name{};
    std::string of{};                   ///< of which team or adapter; empty: of none
    std::optional<std::string> from{};  ///< nothing: it was not there
    std::optional<std::string> to{};    ///< nothing: it is not there any more
    std::optional<unsigned> interval{}; ///< of `Started`: seconds
    std::optional<std::size_t> calls{}; ///< of `Started`: to the provider, in a round
};

/// What differs between two rounds. A new name is a change as well.
std::vector<Event> Compare(const Snapshot& before, const Snapshot& now);

using Moment = std::chrono::system_clock::time_point;

/// A line for programs.
Json AsJson(const Event& event, Moment when);
/// A line for people, without its end. On a terminal, long names give way so that it fits.
std::string AsText(const Event& event, Moment when, const Terminal& screen);

} // namespace quilletctl
