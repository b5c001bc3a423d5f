// The members of a team: those that it has, and those that it is to have.
#pragma once

#include "changes/Verification.h"
#include "names/AdapterLookup.h"

#include <quillet/client/Session.h>

#include <string>
#include <vector>

namespace quilletctl {

/// Throws Refusal.
std::vector<quillet::TeamMember> MembersOf(quillet::Session& session, const quillet::Team& team);

std::vector<quillet::AdapterId> IdsOf(const std::vector<ListedAdapter>& adapters);

/// Compares the members of a team with those that it is to have.
void CompareMembers(Verification& taken, const std::vector<quillet::TeamMember>& members,
                    const std::vector<quillet::AdapterId>& wanted);

} // namespace quilletctl
