// Reading, naming and comparing members.
#include "commands/team/TeamMembers.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

CTeamedAdapters MembersOf(CQuillet& session, const CTeam& team) {
    CTeamedAdapters members;
    ThrowIfRefused(session.GetMemberAdapters(team.m_wsTeamID, members),
                   "list the members of " + Called(team));
    return members;
}

CAdapters NamedAdapters(CQuillet& session, const std::vector<std::string>& words,
                        const AdapterChoice& offered) {
    CAdapters adapters;
    for (const ListedAdapter& adapter : FindAdapters(session, words, offered)) {
        AppendAdapter(adapters, ToWide(adapter.path), ToWide(adapter.Called()));
    }
    return adapters;
}

void AppendAdapter(CAdapters& adapters, const std::wstring& path, const std::wstring& name) {
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems.back()->m_wsAdapterID = path;
    adapters.m_vecItems.back()->m_wsName = name;
}

void CompareMembers(Verification& taken, const CTeamedAdapters& members, const CAdapters& wanted) {
    const auto isAmong = [](const std::wstring& path, const auto& adapters) {
        return std::any_of(adapters.m_vecItems.begin(), adapters.m_vecItems.end(), [&](const auto* each) {
            return NameTheSameObject(ToUtf8(each->m_wsAdapterID), ToUtf8(path));
        });
    };
    for (const CAdapter* adapter : wanted.m_vecItems) {
        if (!isAmong(adapter->m_wsAdapterID, members)) {
            const std::string path = ToUtf8(adapter->m_wsAdapterID);
            taken.Add("members", path, Json(), NameInPath(path).key + " is no member");
        }
    }
    for (const CTeamedAdapter* member : members.m_vecItems) {
        if (!isAmong(member->m_wsAdapterID, wanted)) {
            taken.Add("members", Json(), ToUtf8(member->m_wsAdapterID),
                      ToUtf8(member->m_wsDisplayName) + " is still a member");
        }
    }
}

} // namespace quilletctl
