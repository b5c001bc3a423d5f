// Listing teams, and finding one.
#include "names/TeamLookup.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "texts/Text.h"

namespace quilletctl {

CTeams ReadTeams(CQuillet& session) {
    CTeams teams;
    ThrowIfRefused(session.EnumerateTeams(teams), "list the teams");
    return teams;
}

std::vector<Named> NamesOf(const CTeams& teams) {
    std::vector<Named> names;
    for (const CTeam* team : teams.m_vecItems) {
        const std::string objectId = ToUtf8(team->m_wsName);
        const std::string path = ToUtf8(team->m_wsTeamID);
        // A display name stands where an adapter has its name: the two are looked for side by side.
        names.push_back({objectId, Called(*team), {path, objectId, {}, ToUtf8(team->m_wsCaption)}});
    }
    return names;
}

std::optional<CTeam> TeamAtPath(CQuillet& session, const CTeams& teams, const std::string& path) {
    const ObjectName name = NameInPath(path);
    if (!SameIgnoringCase(name.className, "Zorel_TeamOfAdapters")) {
        return std::nullopt;
    }
    for (const CTeam* team : teams.m_vecItems) {
        if (SameIgnoringCase(NameInPath(ToUtf8(team->m_wsTeamID)).key, name.key)) {
            return *team;
        }
    }
    // The provider may know the team in another form, and tells what there is to know of it.
    CTeam team;
    ThrowIfRefused(session.GetTeamInfo(ToWide(path), team), "read the team " + path);
    return team;
}

CTeam FindTeam(CQuillet& session, const std::string& text) {
    if (text.empty()) {
        throw UsageError("a team is needed: its name, object ID or path");
    }
    const CTeams teams = ReadTeams(session);
    if (const std::optional<CTeam> team = TeamAtPath(session, teams, text)) {
        return *team;
    }
    if (const std::optional<std::size_t> found = FindOneNamed(NamesOf(teams), text, "teams")) {
        return *teams.m_vecItems[*found];
    }
    throw UsageError("no team is called \"" + text + "\"; see quilletctl team list");
}

std::string Called(const CTeam& team) {
    return ToUtf8(team.m_wsCaption.empty() ? team.m_wsTeamID : team.m_wsCaption);
}

} // namespace quilletctl
