// The numbers of teams in words, and back.
#include "commands/team/TeamTexts.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

const std::vector<std::string>& TeamModeNumbers() {
    static const std::vector<std::string> kNumbers{"0", "1", "2", "3", "4", "5", "6"};
    return kNumbers;
}

quillet::TeamMode TeamModeFrom(const std::string& word) {
    std::string known;
    for (const std::string& number : TeamModeNumbers()) {
        const auto mode = static_cast<quillet::TeamMode>(number.front() - '0');
        const std::string name = InWords(mode);
        if (word == number || SameIgnoringCase(word, name) || SameIgnoringCase(word, name + " team")) {
            return mode;
        }
        known.append(known.empty() ? "" : ", ").append(number).append(" (").append(name).append(")");
    }
    throw UsageError("no team mode is called \"" + word + "\"; there are " + known);
}

Json AsJson(const quillet::Team& team) {
    return Json{{"path", PathOf(team.id)},
                {"objectId", ToUtf8(team.objectId)},
                {"name", ToUtf8(team.name)},
                {"mode", Coded(team.mode)}};
}

} // namespace quilletctl
