// Teams in the repository: what belongs to a team, and what has to follow when a part of it changes.
#pragma once

#include <quillet-simulator/Repository.h>

#include <initializer_list>

namespace quillet::simulator {

/// The most members that a team can have.
inline constexpr std::size_t kMaximumTeamMembers = 8;
/// Team modes are numbered from 0 to this.
inline constexpr std::int64_t kLastTeamMode = 6;
/// "AdapterFunction" of a membership. A team has at most one primary and one secondary member.
inline constexpr std::int64_t kRoleNone = 0;
inline constexpr std::int64_t kRolePrimary = 1;
inline constexpr std::int64_t kRoleSecondary = 2;
/// "HardwareStatus" of an adapter.
inline constexpr std::int64_t kHardwareMissing = 0;
inline constexpr std::int64_t kLinkPresent = 3;

/// An instance of a class with some of its values.
Instance MakeInstance(const Repository& store, std::wstring_view className,
                      std::initializer_list<std::pair<const wchar_t*, Value>> values);
/// The adapter that a path names; null when it names none.
InstancePtr FindAdapter(const Repository& store, std::wstring_view path);

/// The memberships (Zorel_TeamedMemberAdapter) of a team or of an adapter, oldest first.
std::vector<InstancePtr> MembershipsOf(const Repository& store, const Instance& teamOrAdapter);
/// The members of a team, in the order of their memberships. Memberships that lead nowhere are left out.
std::vector<InstancePtr> MembersOf(const Repository& store, const Instance& team);
/// The logical adapter of a team; null when it has none.
InstancePtr LogicalAdapterOf(const Repository& store, const Instance& team);
/// Whether a team other than `except` (which may be null) has this caption.
bool IsTeamNameTaken(const Repository& store, std::wstring_view caption, const Instance* except);
/// Whether the adapter has a capability.
bool HasCapability(const Instance& adapter, std::int64_t code);
/// Whether the adapter supports a team mode.
bool SupportsMode(const Instance& adapter, std::int64_t mode);

/// The display name of a team's VLAN service.
std::wstring VlanServiceCaption(const std::wstring& team);

/// Makes a membership. @param role nothing: the first that is free
HRESULT AddMember(Repository& store, const Instance& team, const Instance& adapter,
                  std::optional<std::int64_t> role);
/// Gives a member a role. Who had it before gets the one that the member had.
HRESULT SetRole(Repository& store, const Instance& membership, std::int64_t role);
/// Removes a membership. A secondary member takes the place of the primary one.
HRESULT RemoveMember(Repository& store, const Instance& membership);
/// Brings the states of a team's members, and of its logical adapter, in line with the adapters.
void RefreshTeam(Repository& store, const Instance& team);
/// The same for the team of an adapter, if it is in one.
void RefreshTeamOf(Repository& store, const Instance& adapter);

/// Gives a team another caption, and to everything that bears it.
HRESULT RenameTeam(Repository& store, const Instance& team, const std::wstring& caption);
/// Removes a team and everything that depends on it: memberships, logical adapter, VLANs, VLAN service,
/// settings.
HRESULT RemoveTeamFrom(Repository& store, const Instance& team);

} // namespace quillet::simulator
