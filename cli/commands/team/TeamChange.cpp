// Reading a team back, and telling what became of the change.
#include "commands/team/TeamChange.h"

#include "changes/ClientSet.h"
#include "commands/team/TeamTexts.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

std::vector<Field> FieldsOf(const quillet::Team& team) {
    return {{"name", "its name", ToUtf8(team.name)}, {"mode", "its mode", InWords(team.mode)}};
}

quillet::Team ReadTeam(quillet::Session& session, const quillet::Team& team) {
    return Attempt("read the team " + Called(team), [&] { return session.ReadTeam(team.id); });
}

ExitStatus EndTeamChange(Invocation& run, const quillet::Team& team, const std::string& asked,
                         const std::string& done, std::optional<bool> restartNeeded,
                         const Verification& taken, const Json& more) {
    if (run.WantsJson()) {
        Json json = AsJson(team);
        json["restartNeeded"] = RestartJson(restartNeeded);
        json.update(more);
        taken.AddTo(json);
        run.Print(json);
    } else {
        run.Out() << Printable(taken.Text(done)) << ": " << RestartText(restartNeeded) << '\n';
    }
    taken.End(asked);
    return ExitStatus::Done;
}

} // namespace quilletctl
