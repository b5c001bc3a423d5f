// Whose settings a command is about: an adapter, a team, a VLAN or a boot agent.
#pragma once

#include <quillet/Quillet.h>

#include <string>
#include <vector>

namespace quilletctl {

struct SettingOwner {
    enum class Kind { Adapter, Team, Vlan, BootAgent };

    Kind kind = Kind::Adapter;
    std::string path;     ///< the owner's object path (UTF-8)
    std::string objectId; ///< empty when the path holds none
    std::string called;   ///< what messages call it
};

/// The words for the kinds on the command line and in JSON, in the order of the enumeration.
const std::vector<std::string>& OwnerKindWords();
const std::string& WordFor(SettingOwner::Kind kind);

/// The owner that a text names. An object path says itself what it is a path of. Otherwise `kind` (one of the
/// words; empty: adapter) does: adapters, and boot agents by their adapter, go by every name of
/// FindAdapter(), teams by every name of FindTeam(), VLANs by every name of
/// NamesOf(). Throws UsageError, Refusal.
SettingOwner FindSettingOwner(CQuillet& session, const std::string& text, const std::string& kind);

/// All settings of an owner. Throws Refusal.
void ReadSettings(CQuillet& session, const SettingOwner& owner, CSettings& settings);
/// Those of an adapter's virtual machine queues. Throws Refusal.
void ReadVmqSettings(CQuillet& session, const SettingOwner& adapter, CSettings& settings);

/// The setting that a text names: by path, caption, or description where only one has it. Null where there is
/// none; throws UsageError where it names several.
const CSetting* LookForSetting(const CSettings& settings, const std::string& text);
/// The same; throws UsageError where there is none.
const CSetting& FindSetting(const CSettings& settings, const std::string& text, const SettingOwner& owner);

} // namespace quilletctl
