// What is watched of a machine, at one moment.
#pragma once

#include <quillet/client/Session.h>

#include <cstddef>
#include <map>
#include <string>
#include <tuple>

namespace quilletctl {

/// One watched thing by its kind and what identifies it, in the order in which changes are told.
struct WatchedKey {
    /// As programs call it.
    enum class Kind { Adapter, Link, Team, Member, Vlan };
    Kind kind{};
    std::string id{};

    friend bool operator<(const WatchedKey& left, const WatchedKey& right) noexcept {
        return std::tie(left.kind, left.id) < std::tie(right.kind, right.id);
    }
};

/// What there is to tell of it. Texts are UTF-8.
struct WatchedThing {
    std::string name{}; ///< of the adapter, the team, the member; of a VLAN its number and name
    std::string of{};   ///< of which team or adapter; empty: of none
    std::string state{};
};

struct Snapshot {
    std::map<WatchedKey, WatchedThing> things;
    std::size_t calls = 0; ///< to the provider, that such a round takes
};

/// Throws quillet::Error. What is gone when its turn comes is left out.
Snapshot TakeSnapshot(quillet::Session& session);

} // namespace quilletctl
