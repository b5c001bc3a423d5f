// Listing teams, and finding one.
#include "names/TeamLookup.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "texts/Text.h"

namespace quilletctl {

std::vector<quillet::Team> ReadTeams(quillet::Session& session) {
    return Attempt("list the teams", [&] { return session.Teams(); });
}

std::vector<Named> NamesOf(const std::vector<quillet::Team>& teams) {
    std::vector<Named> names;
    for (const quillet::Team& team : teams) {
        const std::string objectId = ToUtf8(team.objectId);
        // A display name stands where an adapter has its name: the two are looked for side by side.
        names.push_back({objectId, Called(team), {PathOf(team.id), objectId, {}, ToUtf8(team.name)}});
    }
    return names;
}

std::optional<quillet::Team> TeamAtPath(quillet::Session& session, const std::vector<quillet::Team>& teams,
                                        const std::string& path) {
    const ObjectName name = NameInPath(path);
    if (!SameIgnoringCase(name.className, "Zorel_TeamOfAdapters")) {
        return std::nullopt;
    }
    for (const quillet::Team& team : teams) {
        if (SameIgnoringCase(NameInPath(PathOf(team.id)).key, name.key)) {
            return team;
        }
    }
    // The provider may know the team in another form, and tells what there is to know of it.
    return Attempt("read the team " + path, [&] { return session.ReadTeam(quillet::TeamId(ToWide(path))); });
}

quillet::Team FindTeam(quillet::Session& session, const std::string& text) {
    if (text.empty()) {
        throw UsageError("a team is needed: its name, object ID or path");
    }
    const std::vector<quillet::Team> teams = ReadTeams(session);
    if (const std::optional<quillet::Team> team = TeamAtPath(session, teams, text)) {
        return *team;
    }
    const std::vector<Named> names = NamesOf(teams);
    if (const std::optional<std::size_t> found = FindOneNamed(names, text, "teams")) {
        return teams[*found];
    }
    throw UsageError("no team is called \"" + text + '"' + MeantOrListed(names, text, "team list"));
}

std::string Called(const quillet::Team& team) {
    return ToUtf8(team.name.empty() ? team.id.Path() : team.name);
}

} // namespace quilletctl
