// What is shown of a team besides what it says of itself: its state, and its members with their links.
#pragma once

#include "names/AdapterLookup.h"
#include "terminal/Table.h"
#include "texts/Json.h"

#include <quillet/client/Session.h>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// A team's status; a team without its logical adapter has none, and is a team all the same.
class TeamState {
  public:
    TeamState(quillet::Session& session, const quillet::Team& team);

    Cell AsCell() const;
    Json AsJson() const;

  private:
    std::optional<quillet::StatusInfo> m_status;
    HRESULT m_refusal = S_OK;
};

/// A member of a team, and its adapter.
struct ShownMember {
    quillet::TeamMember member;
    ListedAdapter adapter; ///< with fewer names where the list of adapters does not have it
    std::optional<quillet::AdapterState> state;
};

/// The members of a team. Throws Refusal.
/// @param adapters those of the machine
std::vector<ShownMember> ReadShownMembers(quillet::Session& session, const quillet::Team& team,
                                          const std::vector<ListedAdapter>& adapters);

} // namespace quilletctl
