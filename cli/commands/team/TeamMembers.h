// The members of a team: those that it has, and those that it is to have.
#pragma once

#include "changes/Verification.h"
#include "names/AdapterLookup.h"

#include <quillet/Quillet.h>

#include <string>
#include <vector>

namespace quilletctl {

/// Throws Refusal.
CTeamedAdapters MembersOf(CQuillet& session, const CTeam& team);

/// The adapters that words of the command line name. Throws UsageError, Refusal.
/// @param offered what a pattern chooses among
CAdapters NamedAdapters(CQuillet& session, const std::vector<std::string>& words,
                        const AdapterChoice& offered = {});
void AppendAdapter(CAdapters& adapters, const std::wstring& path, const std::wstring& name = {});

/// Compares the members of a team with those that it is to have.
void CompareMembers(Verification& taken, const CTeamedAdapters& members, const CAdapters& wanted);

} // namespace quilletctl
