// One owner of settings, or several.
#include "commands/setting/OwnersOption.h"

#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"

namespace quilletctl {

void OwnersOption::Declare(Syntax& syntax) {
    syntax.Flag("--all-adapters", m_allAdapters, "Every adapter, instead of an owner");
    syntax.Choice("--of", m_kind, OwnerKindWords(),
                  "What the owner is, where its path does not say (default: adapter)");
}

void OwnersOption::Take(std::vector<std::string>& words) {
    if (m_allAdapters && !m_kind.empty() && m_kind != WordFor(SettingOwner::Kind::Adapter)) {
        throw UsageError("--all-adapters: not together with --of " + m_kind);
    }
    if (m_allAdapters) {
        return;
    }
    if (words.empty()) {
        throw UsageError("an owner (or --all-adapters) is needed");
    }
    m_owner = words.front();
    words.erase(words.begin());
}

bool OwnersOption::AreSeveral() const {
    return m_allAdapters || (IsPattern(m_owner) && !IsObjectPath(m_owner));
}

std::vector<SettingOwner> OwnersOption::Find(quillet::Session& session) const {
    if (!m_allAdapters) {
        return FindSettingOwners(session, m_owner, m_kind);
    }
    std::vector<SettingOwner> owners;
    for (const ListedAdapter& adapter : ReadAdapters(session)) {
        owners.push_back({adapter.id, adapter.path, adapter.objectId, adapter.Called()});
    }
    return owners;
}

} // namespace quilletctl
