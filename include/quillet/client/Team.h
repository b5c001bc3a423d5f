// Teams of adapters as values, and the checks of new ones.
#pragma once

#include <quillet/client/Adapter.h>
#include <quillet/client/Flags.h>
#include <quillet/client/Id.h>
#include <quillet/client/Setting.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

/// How a team shares its traffic ("TeamingMode").
enum class TeamMode : std::int32_t {
    FaultTolerance = 0,
    AdaptiveLoadBalancing = 1,
    StaticLinkAggregation = 2, ///< its members must share a speed
    GigabitLinkAggregation = 3,
    DynamicLinkAggregation = 4, ///< IEEE 802.3ad; needs the switch's cooperation
    SwitchFaultTolerance = 5,   ///< needs the switch's cooperation; two members
    VirtualMachineLoadBalancing = 6,
    Unknown = 255 ///< any other number of the provider's
};

/// The most members that a team has.
inline constexpr std::size_t kMostTeamMembers = 8;

/// One team (Zorel_TeamOfAdapters).
struct Team {
    TeamId id;
    std::wstring objectId; ///< "Name"
    std::wstring name;     ///< the display name ("Caption")
    TeamMode mode{};
    bool multiVendor = false;   ///< whether adapters of other makers are allowed ("MFOEnabled")
    bool linkSecurity = false;  ///< "LinksecEnabled"
    std::wstring macAddress;    ///< "TeamMacAddress"; only `Session::ReadTeam` fills it
    bool boundToHyperV = false; ///< "BoundToHyperV"; only `Session::ReadTeam` fills it
};

/// What a member is to its team ("AdapterFunction"): its priority.
enum class MemberRole : std::int32_t { NotAssigned = 0, Primary = 1, Secondary = 2 };
/// "AdapterStatus" of a member, put right by the state of its adapter.
enum class MemberStatus : std::int32_t {
    Unknown = 0,
    Active = 1,
    Inactive = 3,
    Missing = 4 ///< the adapter's hardware is absent
};

/// One member of a team (Zorel_TeamedMemberAdapter).
struct TeamMember {
    AdapterId id;
    std::wstring displayName; ///< the adapter's ("OriginalDisplayName"); "Not Available" where it has none
    std::wstring deviceId;    ///< the adapter's "DeviceID"
    std::wstring caption;     ///< the adapter's "Caption"
    MemberRole role{};
    MemberStatus status{};
    TeamId team;
    std::wstring teamName; ///< the team's display name
};

/// What the checks of a team find. The bits between those with a name of the library's occur in the
/// provider's words only.
enum class TeamProblem : std::uint64_t {
    TooManyMembers = 0x1,
    UnknownAdapter = 0x2,
    ModeNotSupported = 0x4,
    NoVlans = 0x8,
    NoServerAdapter = 0x10,
    AlreadyTeamed = 0x20,
    CarriesVlans = 0x40,
    NameTaken = 0x80,
    NoName = 0x100,
    MoreThanTwo = 0x200,
    NoSuchMode = 0x400,
    SettingsDiffer = 0x800,
    NoSharedSpeed = 0x4000,
    MixedSpeeds = 0x8000
};
/// The problems as sentences without a full stop, the lowest bit first. A bit that has no sentence is "the
/// provider's reason 9 (unknown)", with its number.
std::vector<std::wstring> Texts(Flags<TeamProblem> problems);

/// What `Session::CheckNewTeam` looks at.
enum class TeamCheck { Name, Members, NameAndMembers };

/// A team that is to be made.
struct NewTeam {
    std::wstring name{};
    TeamMode mode = TeamMode::AdaptiveLoadBalancing;
    std::vector<AdapterId> members{}; ///< the first becomes the primary one
    Profile profile = Profile::Custom;
    bool multiVendor = false;  ///< allow adapters of other makers
    bool linkSecurity = false; ///< secure the team's link
};

/// A mode that adapters can be teamed in.
struct OfferedTeamMode {
    TeamMode mode{};
    std::wstring description; ///< in the provider's words, in the connection's language
};

/// How far the search for the best mode of a team is.
enum class AutoDetectStatus : std::int32_t { NotStarted = 0, Running = 1, Completed = 2, Failed = 3 };

/// The mode that the provider recommends for a team.
struct BestTeamMode {
    OfferedTeamMode best;
    AutoDetectStatus status{};
    unsigned coverage = 0; ///< how much of the network the search has seen, in per cent
};

/// What to do about the test of a team's switch.
enum class SwitchCommand : std::int32_t { Start = 0, Query = 1, Stop = 2 };
/// How far a switch test has come.
enum class SwitchTestStatus : std::int32_t {
    NotStarted = 0,
    Running = 1,
    Passed = 2,
    Failed = 3,
    Stopped = 4
};

/// What a switch test found to be wrong, and what to do about it.
struct SwitchTrouble {
    std::wstring cause;
    std::wstring solution;
    int causeId = 0;
    int solutionId = 0;
};
/// Where a switch test stands.
struct SwitchTest {
    SwitchTestStatus status{};
    std::vector<SwitchTrouble> troubles; ///< in the provider's order
};

/// @name Words for people, in English
/// Empty for a number without a word.
/// @{
std::wstring Text(TeamMode mode);
std::wstring Text(MemberRole role);
std::wstring Text(MemberStatus status);
std::wstring Text(AutoDetectStatus status);
std::wstring Text(SwitchTestStatus status);
/// @}

/// Whether a mode needs the switch's cooperation, and so has a switch test.
bool HasSwitchTest(TeamMode mode);

} // namespace quillet
