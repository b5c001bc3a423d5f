// Finding the owner of settings, and reading them.
#include "names/SettingOwner.h"

#include "ending/Failure.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "names/VlanParent.h"
#include "texts/Nearest.h"
#include "texts/Text.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace quilletctl {

namespace {

using OwnerId = decltype(SettingOwner::id);

template <class Id>
OwnerId Make(std::wstring path) {
    return Id(std::move(path));
}

struct OwnerClass {
    SettingOwner::Kind kind;
    const char* name;
    const char* key;
    OwnerId (*idOf)(std::wstring path);
};

constexpr OwnerClass kClasses[] = {
    {SettingOwner::Kind::Adapter, "Zorel_PhysicalEthernetAdapter", "DeviceID", Make<quillet::AdapterId>},
    {SettingOwner::Kind::Team, "Zorel_TeamOfAdapters", "Name", Make<quillet::TeamId>},
    {SettingOwner::Kind::Vlan, "Zorel_VLAN", "Name", Make<quillet::VlanId>},
    {SettingOwner::Kind::BootAgent, "Zorel_BootAgent", "Name", Make<quillet::BootAgentId>},
};

const OwnerClass& ClassOf(SettingOwner::Kind kind) {
    return kClasses[static_cast<std::size_t>(kind)];
}

SettingOwner::Kind KindByWord(const std::string& word) {
    const auto& words = OwnerKindWords();
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? SettingOwner::Kind::Adapter
                                : static_cast<SettingOwner::Kind>(found - words.begin());
}

/// A GUID text in braces; empty when the text is none. The braces may be left out.
std::string ObjectIdFrom(std::string_view text) {
    if (text.size() > 2 && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, text.size() - 2);
    }
    constexpr std::string_view kShape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const bool isGuid =
        std::equal(text.begin(), text.end(), kShape.begin(), kShape.end(), [](char letter, char mark) {
            return mark == 'x'
                       ? std::string_view("0123456789abcdefABCDEF").find(letter) != std::string_view::npos
                       : letter == mark;
        });
    return isGuid ? '{' + std::string(text) + '}' : std::string();
}

/// An owner by its path.
SettingOwner Owner(SettingOwner::Kind kind, const std::string& path, const std::string& objectId,
                   const std::string& called) {
    return {ClassOf(kind).idOf(ToWide(path)), path, objectId, called};
}

SettingOwner OwnerAt(const std::string& path, const ObjectName& name, const std::string& kind) {
    for (const OwnerClass& each : kClasses) {
        if (SameIgnoringCase(each.name, name.className)) {
            if (!kind.empty() && KindByWord(kind) != each.kind) {
                throw UsageError(
                    std::string("the path is not that of a ").append(kind).append(": ").append(path));
            }
            return Owner(each.kind, path, name.key, path);
        }
    }
    throw UsageError("a " + name.className + " has no settings: " + path);
}

SettingOwner OwnerOf(const ListedAdapter& adapter, SettingOwner::Kind kind) {
    if (kind == SettingOwner::Kind::Adapter) {
        return {adapter.id, adapter.path, adapter.objectId, adapter.Called()};
    }
    const OwnerClass& agent = ClassOf(kind);
    return Owner(kind, PathOf(agent.name, agent.key, adapter.objectId), adapter.objectId,
                 "the boot agent of " + adapter.Called());
}

SettingOwner OwnerOf(const quillet::Team& team) {
    const std::string path = PathOf(team.id);
    return {team.id, path, NameInPath(path).key, Called(team)};
}

/// Owners that can be looked for, and their names.
struct Owners {
    std::vector<SettingOwner> owners;
    std::vector<Named> names;
};

Owners TeamOwners(quillet::Session& session) {
    const std::vector<quillet::Team> teams = ReadTeams(session);
    Owners all{{}, NamesOf(teams)};
    for (const quillet::Team& team : teams) {
        all.owners.push_back(OwnerOf(team));
    }
    return all;
}

/// The VLANs of all parents.
Owners VlanOwners(quillet::Session& session) {
    Owners all;
    for (const VlanParent& parent : ReadVlanParents(session)) {
        for (const quillet::Vlan& vlan : ReadVlans(session, parent)) {
            all.names.push_back(NamesOf(vlan, parent));
            all.owners.push_back(
                {vlan.id, PathOf(vlan.id), ToUtf8(vlan.objectId), Called(vlan) + " of " + parent.name});
        }
    }
    return all;
}

} // namespace

const std::vector<std::string>& OwnerKindWords() {
    static const std::vector<std::string> kWords{"adapter", "team", "vlan", "boot-agent"};
    return kWords;
}

const std::string& WordFor(SettingOwner::Kind kind) {
    return OwnerKindWords()[static_cast<std::size_t>(kind)];
}

const std::string& WordFor(const SettingOwner& owner) {
    return OwnerKindWords()[owner.id.index()];
}

SettingOwner FindSettingOwner(quillet::Session& session, const std::string& text, const std::string& kind) {
    const ObjectName name = NameInPath(text);
    const SettingOwner::Kind wanted = KindByWord(kind);
    const bool isOfAdapter = wanted == SettingOwner::Kind::Adapter || wanted == SettingOwner::Kind::BootAgent;
    // The path of an adapter stands for its boot agent as well.
    const bool isAdapterPath = SameIgnoringCase(name.className, ClassOf(SettingOwner::Kind::Adapter).name);
    if (!name.className.empty() && !(isOfAdapter && isAdapterPath)) {
        return OwnerAt(text, name, kind);
    }
    if (isOfAdapter) {
        return OwnerOf(FindAdapter(session, text), wanted);
    }
    if (wanted == SettingOwner::Kind::Team) {
        return OwnerOf(FindTeam(session, text));
    }
    const std::string objectId = ObjectIdFrom(text);
    if (!objectId.empty()) {
        return Owner(wanted, PathOf(ClassOf(wanted).name, ClassOf(wanted).key, objectId), objectId, objectId);
    }
    const Owners vlans = VlanOwners(session);
    if (const std::optional<std::size_t> found = FindOneNamed(vlans.names, text, "VLANs")) {
        return vlans.owners[*found];
    }
    throw UsageError("no VLAN is called \"" + text + '"' + MeantOrListed(vlans.names, text, "vlan list"));
}

std::vector<SettingOwner> FindSettingOwners(quillet::Session& session, const std::string& text,
                                            const std::string& kind) {
    if (!IsPattern(text) || IsObjectPath(text)) {
        return {FindSettingOwner(session, text, kind)};
    }
    std::vector<SettingOwner> owners;
    const SettingOwner::Kind wanted = KindByWord(kind);
    if (wanted == SettingOwner::Kind::Adapter || wanted == SettingOwner::Kind::BootAgent) {
        for (const ListedAdapter& adapter : FindAdapters(session, {text})) {
            owners.push_back(OwnerOf(adapter, wanted));
        }
        return owners;
    }
    const Owners all = wanted == SettingOwner::Kind::Team ? TeamOwners(session) : VlanOwners(session);
    std::vector<std::size_t> found = FindNamed(all.names, text, Match::Whole);
    if (found.empty()) {
        found = FindNamed(all.names, text, Match::Pattern);
    }
    for (const std::size_t i : found) {
        owners.push_back(all.owners[i]);
    }
    return owners.empty() ? std::vector{FindSettingOwner(session, text, kind)} : owners;
}

std::vector<quillet::Setting> ReadSettings(quillet::Session& session, const SettingOwner& owner) {
    return Attempt("read the settings of " + owner.called, [&] {
        return std::visit([&](const auto& id) { return session.Settings(id); }, owner.id);
    });
}

std::vector<quillet::Setting> ReadQueueSettings(quillet::Session& session, const quillet::AdapterId& adapter,
                                                const std::string& called) {
    return Attempt("read the queue settings of " + called, [&] { return session.QueueSettings(adapter); });
}

std::vector<Named> NamesOf(const std::vector<quillet::Setting>& settings) {
    std::vector<Named> names;
    for (const quillet::Setting& setting : settings) {
        const std::string caption = ToUtf8(setting.keyword);
        const std::string path = PathOf(setting.id);
        names.push_back({path, caption, {path, caption, ToUtf8(setting.description)}});
    }
    return names;
}

const quillet::Setting* LookForSetting(const std::vector<quillet::Setting>& settings,
                                       const std::string& text) {
    const std::optional<std::size_t> found = FindOneNamed(NamesOf(settings), text, "settings");
    return found ? &settings[*found] : nullptr;
}

const quillet::Setting& FindSetting(const std::vector<quillet::Setting>& settings, const std::string& text,
                                    const SettingOwner& owner) {
    const quillet::Setting* setting = LookForSetting(settings, text);
    if (setting == nullptr) {
        std::vector<std::string> names;
        for (const quillet::Setting& each : settings) {
            names.push_back(ToUtf8(each.keyword));
            names.push_back(ToUtf8(each.description));
        }
        throw UsageError(owner.called + " has no setting \"" + text + '"' +
                         DidYouMeanOr(text, names, "; see quilletctl setting list"));
    }
    return *setting;
}

} // namespace quilletctl
