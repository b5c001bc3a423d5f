// Listing teams, and finding one.
#include "TeamLookup.h"

#include "Invocation.h"
#include "ObjectPath.h"
#include "Text.h"

#include <string_view>

namespace quilletctl {

namespace {

std::string_view WithoutBraces(std::string_view id) {
    return id.size() > 2 && id.front() == '{' && id.back() == '}' ? id.substr(1, id.size() - 2) : id;
}

} // namespace

CTeams ReadTeams(CQuillet& session) {
    CTeams teams;
    Invocation::Check(session.EnumerateTeams(teams), "list the teams");
    return teams;
}

std::optional<CTeam> LookForTeam(CQuillet& session, const std::string& text) {
    const CTeams teams = ReadTeams(session);
    std::vector<const CTeam*> named;
    for (const CTeam* team : teams.m_vecItems) {
        const std::string objectId = ToUtf8(team->m_wsName);
        if (SameIgnoringCase(ToUtf8(team->m_wsTeamID), text) ||
            SameIgnoringCase(WithoutBraces(objectId), WithoutBraces(text))) {
            return *team; // these name one team only
        }
        if (SameIgnoringCase(ToUtf8(team->m_wsCaption), text)) {
            named.push_back(team);
        }
    }
    if (named.size() > 1) {
        std::string ids;
        for (const CTeam* team : named) {
            ids += (ids.empty() ? "" : ", ") + ToUtf8(team->m_wsName);
        }
        throw UsageError("several teams are called \"" + text + "\": " + ids);
    }
    if (!named.empty()) {
        return *named.front();
    }
    const ObjectName inPath = NameInPath(text);
    if (SameIgnoringCase(inPath.className, "Zorel_TeamOfAdapters")) {
        // The provider may know the team in another form, and tells what there is to know of it.
        CTeam team;
        Invocation::Check(session.GetTeamInfo(ToWide(text), team), "read the team " + text);
        return team;
    }
    return std::nullopt;
}

CTeam FindTeam(CQuillet& session, const std::string& text) {
    if (text.empty()) {
        throw UsageError("a team is needed: its name, object ID or path");
    }
    std::optional<CTeam> team = LookForTeam(session, text);
    if (!team) {
        throw UsageError("no team is called \"" + text + "\"; see quilletctl team list");
    }
    return *std::move(team);
}

std::string Called(const CTeam& team) {
    return ToUtf8(team.m_wsCaption.empty() ? team.m_wsTeamID : team.m_wsCaption);
}

} // namespace quilletctl
