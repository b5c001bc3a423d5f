// quilletctl team create: checking and making a team.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "changes/Wait.h"
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
        m_wait.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        quillet::Session& session = run.Session();
        quillet::NewTeam wanted;
        const std::vector<ListedAdapter> members = FindAdapters(session, m_adapters);
        wanted.members = IdsOf(members);
        wanted.mode = TeamModeFrom(m_mode.value_or("1"));
        wanted.name = Name(session);
        wanted.profile = static_cast<quillet::Profile>(m_profile);
        wanted.multiVendor = m_mfo;
        wanted.linkSecurity = m_linkSecurity;
        if (!m_force) {
            const TeamProblems problems = Check(session, wanted);
            if (problems.Any()) {
                return problems.Report(run);
            }
        }
        const std::string asked = "create the team " + ToUtf8(wanted.name);
        ClientSet set(run, {asked + " of " + NamesIn(members) + " in the mode " + InWords(wanted.mode)});
        const quillet::Team team = Attempt(asked, [&] {
            try {
                return session.CreateTeam(wanted);
            } catch (const quillet::PartialError<quillet::Team>& failure) {
                if (failure.Read().id.IsEmpty()) {
                    throw;
                }
                run.FailAfterAnswer({asked, failure.Code()}); // it was made, and could not be read
                return failure.Read();
            }
        });
        const std::optional<bool> restartNeeded = set.Close();
        m_wait.Until(run, {StatusOf(team.id, "the team " + ToUtf8(wanted.name))});
        const Verification taken = Verification::By([&](Verification& compare) {
            const quillet::Team now = ReadTeam(session, team);
            compare.Compare(FieldsOf(team), FieldsOf(now));
            // What nobody asked for may be as the provider likes it.
            compare.Compare({{"mfo", "adapters of other makers", m_mfo ? Json(true) : Json()},
                             {"linkSecurity", "link security", m_linkSecurity ? Json(true) : Json()}},
                            {{"mfo", "", now.multiVendor}, {"linkSecurity", "", now.linkSecurity}});
            CompareMembers(compare, MembersOf(session, team), wanted.members);
        });
        return EndTeamChange(run, team, asked, "created the team " + ToUtf8(wanted.name), restartNeeded,
                             taken);
    }

  private:
    std::wstring Name(quillet::Session& session) const {
        if (m_name.empty()) {
            throw UsageError("a name is needed");
        }
        const std::wstring prefix =
            m_prefix ? Attempt("read the prefix of team names", [&] { return session.TeamNamePrefix(); })
                     : std::wstring();
        return prefix + ToWide(m_name);
    }

    static std::string NamesIn(const std::vector<ListedAdapter>& members) {
        std::string names;
        for (const ListedAdapter& member : members) {
            names += (names.empty() ? "" : ", ") + member.Called();
        }
        return names;
    }

    /// The library's own check, and then the provider's.
    static TeamProblems Check(quillet::Session& session, const quillet::NewTeam& team) {
        TeamProblems problems;
        problems.Add(Attempt("check the team", [&] { return session.CheckNewTeam(team); }));
        problems.Add(Attempt("check the name", [&] { return session.ValidateTeamName(team.name); }));
        problems.Add(Attempt("check the mode", [&] { return session.ValidateTeamMode(team.mode); }));
        problems.Add(Attempt("check the members",
                             [&] { return session.ValidateNewMembers(team.members, team.mode); }));
        problems.Add(Attempt("check the members' settings",
                             [&] { return session.ValidateMemberSettings(team.members); }));
        return problems;
    }

    std::string m_name;
    std::vector<std::string> m_adapters;
    std::optional<std::string> m_mode;
    std::uint32_t m_profile = static_cast<std::uint32_t>(quillet::Profile::Custom);
    bool m_prefix = false;
    bool m_mfo = false;
    bool m_linkSecurity = false;
    bool m_force = false;
    WaitOption m_wait;
};

} // namespace

void AddTeamCreation(CommandTree::Noun& team) {
    team.Verb("create", "Check and make a team", std::make_unique<CreateTeam>());
}

} // namespace quilletctl
