// quilletctl team create: checking and making a team.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "commands/team/TeamChange.h"
#include "commands/team/TeamChecks.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

/// The object that is asked about a team that is yet to be made: the class.
const std::wstring kNewTeam = L"Zorel_TeamOfAdapters";

class CreateTeam final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("name", m_name, "The new team's name");
        syntax.Arguments(
            "adapter", m_adapters, 1, 64,
            "The members, by name, object ID, object path or pattern; the first becomes primary");
        syntax.Text("--mode", m_mode, "MODE", "The team mode, by number or name (default: 1); see team modes",
                    TeamModeNumbers());
        syntax.Number("--profile", m_profile, 0, 0x7FFFFFFF, "The performance profile");
        syntax.Flag("--prefix", m_prefix, "Put the prefix that the provider proposes before the name");
        syntax.Flag("--mfo", m_mfo, "Allow adapters of other makers");
        syntax.Flag("--link-security", m_linkSecurity, "Secure the team's link");
        syntax.Flag("--force", m_force, "Make it whatever the checks find");
    }

    ExitStatus Run(Invocation& run) override {
        CQuillet& session = run.Session();
        const CAdapters members = NamedAdapters(session, m_adapters);
        const CTeam::TeamMode mode = TeamModeFrom(m_mode.value_or("1"));
        const std::wstring name = Name(session);
        if (!m_force) {
            const TeamProblems problems = Check(session, name, mode, members);
            if (problems.Any()) {
                return problems.Report(run);
            }
        }
        const std::string asked = "create the team " + ToUtf8(name);
        ClientSet set(run);
        CTeam team;
        const HRESULT result = session.CreateTeam(
            mode, name, members, team, static_cast<ePERFORMANCE_PROFILE>(m_profile), m_mfo, m_linkSecurity);
        if (FAILED(result)) {
            const Refusal refusal(asked, result);
            if (team.m_wsTeamID.empty()) {
                throw Refusal(refusal);
            }
            run.FailAfterAnswer(refusal); // it was made, and could not be read
        }
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CTeam now = ReadTeam(session, team);
            compare.Compare(FieldsOf(team), FieldsOf(now));
            // What nobody asked for may be as the provider likes it.
            compare.Compare({{"mfo", "adapters of other makers", m_mfo ? Json(true) : Json()},
                             {"linkSecurity", "link security", m_linkSecurity ? Json(true) : Json()}},
                            {{"mfo", "", now.m_bMFOEnabled}, {"linkSecurity", "", now.m_bLinkSecEnabled}});
            CompareMembers(compare, MembersOf(session, team), members);
        });
        return EndTeamChange(run, team, asked, "created the team " + ToUtf8(name), restartNeeded, taken);
    }

  private:
    std::wstring Name(CQuillet& session) const {
        if (m_name.empty()) {
            throw UsageError("a name is needed");
        }
        std::wstring prefix;
        if (m_prefix) {
            ThrowIfRefused(session.GetTeamNamePrefix(prefix), "read the prefix of team names");
        }
        return prefix + ToWide(m_name);
    }

    /// The library's own check, and then the provider's.
    static TeamProblems Check(CQuillet& session, const std::wstring& name, CTeam::TeamMode mode,
                              const CAdapters& members) {
        constexpr int kNameAndMembers = 3;
        TeamProblems problems;
        problems.Add(session.CreateTeamCheck(mode, name, members, kNameAndMembers));
        DWORD word = 0;
        ThrowUnlessAnswered(session.ValidateTeamName(name, kNewTeam, word), "check the name");
        problems.Add(word);
        ThrowUnlessAnswered(session.ValidateTeamMode(mode, kNewTeam, word), "check the mode");
        problems.Add(word);
        ULONGLONG words = 0;
        ThrowUnlessAnswered(session.ValidateNewTeamMembers(members, mode, words), "check the members");
        problems.Add(words);
        ThrowUnlessAnswered(session.ValidateSettingsOnNewTeam(members, words), "check the members' settings");
        problems.Add(words);
        return problems;
    }

    std::string m_name;
    std::vector<std::string> m_adapters;
    std::optional<std::string> m_mode;
    std::uint32_t m_profile = PERFORMANCE_PROFILE_CUSTOM;
    bool m_prefix = false;
    bool m_mfo = false;
    bool m_linkSecurity = false;
    bool m_force = false;
};

} // namespace

void AddTeamCreation(CommandTree::Noun& team) {
    team.Verb("create", "Check and make a team", std::make_unique<CreateTeam>());
}

} // namespace quilletctl
