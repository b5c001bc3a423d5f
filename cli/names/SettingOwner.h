// Whose settings a command is about: an adapter, a team, a VLAN or a boot agent.
#pragma once

#include "names/NameLookup.h"

#include <quillet/client/Session.h>

#include <string>
#include <variant>
#include <vector>

namespace quilletctl {

struct SettingOwner {
    /// In the order of what may stand in `id`.
    enum class Kind { Adapter, Team, Vlan, BootAgent };

    std::variant<quillet::AdapterId, quillet::TeamId, quillet::VlanId, quillet::BootAgentId> id;
    std::string path;     ///< the same as text (UTF-8)
    std::string objectId; ///< empty when the path holds none
    std::string called;   ///< what messages call it
};

/// The words for the kinds on the command line and in JSON, in the order of the enumeration.
const std::vector<std::string>& OwnerKindWords();
const std::string& WordFor(SettingOwner::Kind kind);
const std::string& WordFor(const SettingOwner& owner);

/// The owner that a text names. An object path says itself what it is a path of. Otherwise `kind` (one of the
/// words; empty: adapter) does: adapters, and boot agents by their adapter, go by every name of
/// FindAdapter(), teams by every name of FindTeam(), VLANs by every name of
/// NamesOf(). Throws UsageError, Refusal.
SettingOwner FindSettingOwner(quillet::Session& session, const std::string& text, const std::string& kind);

/// The same, but a pattern names several.
std::vector<SettingOwner> FindSettingOwners(quillet::Session& session, const std::string& text,
                                            const std::string& kind);

/// All settings of an owner. Throws Refusal.
std::vector<quillet::Setting> ReadSettings(quillet::Session& session, const SettingOwner& owner);
/// Those of an adapter's virtual machine queues. Throws Refusal.
std::vector<quillet::Setting> ReadQueueSettings(quillet::Session& session, const quillet::AdapterId& adapter,
                                                const std::string& called);

/// The settings as things with names: path, caption, description.
std::vector<Named> NamesOf(const std::vector<quillet::Setting>& settings);
/// The setting that a text names: by path, caption, or description where only one has it. Null where there is
/// none; throws UsageError where it names several.
const quillet::Setting* LookForSetting(const std::vector<quillet::Setting>& settings,
                                       const std::string& text);
/// The same; throws UsageError where there is none.
const quillet::Setting& FindSetting(const std::vector<quillet::Setting>& settings, const std::string& text,
                                    const SettingOwner& owner);

} // namespace quilletctl
