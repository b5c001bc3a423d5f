// What has to be changed so that a machine is as a document says: the differences, in the order of the work.
#pragma once

#include <quillet-state/Document.h>

#include <quillet/client/Session.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace quillet::state {

/// What a step changes. Steps are made in this order: what is in the way goes first, members come before the
/// mode that they must fit, VLANs after their team, and last what decides how the machine starts.
enum class StepKind {
    TeamDeleted,
    VlanRemoved,
    MemberRemoved,
    Profile, ///< before the settings, of which it may change several
    Setting,
    Power,
    WakeOnLan,
    TeamMade,
    EarlyMode, ///< of a team that in its present mode cannot have as many members as it is to get
    MemberAdded,
    LastMemberRemoved, ///< of a team whose members are all replaced
    Mode,
    Role,
    VlanRenamed,
    VlanAdded,
    UntaggedVlanAdded, ///< which no parent has alone
    NewSetting,        ///< of a team or a VLAN that is made by another step
    IscsiOff,
    Iscsi
};

/// What the steps of a run hand to each other.
struct Work {
    Session& session;
    std::map<std::string, TeamId> teams{}; ///< those that were made, by name
};

/// One change.
struct Step {
    StepKind kind{};
    std::string subject;             ///< whom it concerns: "team Front"
    std::string what;                ///< what of it: "mode", "VLAN 100", a caption
    Json now;                        ///< null: it is not there
    Json wanted;                     ///< null: it goes
    std::string words;               ///< "set *JumboPacket of adapter X to 9014 Bytes (9014)"
    std::function<void(Work&)> make; ///< Throws Error.
};

/// The way from what a machine is to what a document says. Nothing has been changed yet.
struct Plan {
    std::vector<Step> steps{};           ///< in their order
    std::vector<std::string> problems{}; ///< why it cannot be gone: nothing is changed where there is any
    std::vector<std::string> warnings{}; ///< what the provider has against it
    std::vector<std::string> losses{};   ///< what going back would not bring back
};

/// The steps in words, in their order.
std::vector<std::string> WordsOf(const Plan& plan);

/// Whether the provider is asked what it thinks of the steps.
enum class Checks { All, None };

/// Compares a machine with a document. Reads what the document mentions, and no more. Throws Error.
Plan MakePlan(Session& session, const Document& document, Checks checks = Checks::All);

} // namespace quillet::state
