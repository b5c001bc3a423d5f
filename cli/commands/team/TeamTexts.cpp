// The numbers of teams in words, and back.
#include "commands/team/TeamTexts.h"

#include "ending/Failure.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

std::string NumberInWords(LONG number, const std::wstring& text) {
    return text.empty() ? std::to_string(number) : ToUtf8(text);
}
std::string TeamModeText(LONG mode) {
    return NumberInWords(mode, CTeamTexts::TeamMode(mode));
}

std::string MemberRoleText(LONG role) {
    return NumberInWords(role, CTeamTexts::MemberRole(role));
}
std::string MemberStatusText(LONG status) {
    return NumberInWords(status, CTeamTexts::MemberStatus(status));
}

const std::vector<std::string>& TeamModeNumbers() {
    static const std::vector<std::string> kNumbers{"0", "1", "2", "3", "4", "5", "6"};
    return kNumbers;
}

CTeam::TeamMode TeamModeFrom(const std::string& word) {
    std::string known;
    for (LONG mode = CTeam::TeamMode0; mode <= CTeam::TeamMode6; ++mode) {
        if (word == std::to_string(mode) || SameIgnoringCase(word, TeamModeText(mode)) ||
            SameIgnoringCase(word, TeamModeText(mode) + " team")) {
            return static_cast<CTeam::TeamMode>(mode);
        }
        known += (known.empty() ? "" : ", ") + std::to_string(mode) + " (" + TeamModeText(mode) + ")";
    }
    throw UsageError("no team mode is called \"" + word + "\"; there are " + known);
}

Json AsJson(const CTeam& team) {
    return Json{{"path", ToUtf8(team.m_wsTeamID)},
                {"objectId", ToUtf8(team.m_wsName)},
                {"name", ToUtf8(team.m_wsCaption)},
                {"mode", Coded(team.m_eTeamMode, TeamModeText(team.m_eTeamMode))}};
}

} // namespace quilletctl
