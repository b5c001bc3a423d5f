// quilletctl team primary: the role of a member.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

using quillet::MemberRole;

class MakePrimary final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("adapter", m_adapter, "The member: its name, object ID or object path");
        syntax.Flag("--secondary", m_secondary, "Make it the secondary member instead");
        syntax.Flag("--none", m_none, "Take its role away instead");
    }

    ExitStatus Run(Invocation& run) override {
        if (m_secondary && m_none) {
            throw UsageError("--secondary: not together with --none");
        }
        quillet::Session& session = run.Session();
        const ListedAdapter adapter = FindAdapter(session, m_adapter);
        const MemberRole role = m_none        ? MemberRole::NotAssigned
                                : m_secondary ? MemberRole::Secondary
                                              : MemberRole::Primary;
        const std::string asked = "change the role of " + adapter.Called();
        ClientSet set(run, {asked + " to " + InWords(role)});
        try {
            session.SetRole(adapter.id, role);
        } catch (const quillet::Error& failure) {
            const bool isUnexplained = failure.Code() == static_cast<HRESULT>(WBEM_E_FAILED);
            throw Refusal(asked, failure.Code(),
                          isUnexplained && !IsInTeam(session, adapter) ? "the adapter is in no team" : "");
        }
        const std::optional<bool> restartNeeded = set.Close();
        std::optional<MemberRole> now;
        const Verification taken = Verification::By([&](Verification& compare) {
            now = RoleOf(session, adapter);
            compare.Compare({{"role", "its role", InWords(role)}},
                            {{"role", "", now ? Json(InWords(*now)) : Json()}});
        });
        if (run.WantsJson()) {
            Json answer{{"path", adapter.path},
                        {"role", Coded(now.value_or(role))},
                        {"primary", now ? Json(*now == MemberRole::Primary) : Json()},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called() + ": " + taken.Text(InWords(role))) << ": "
                      << RestartText(restartNeeded) << '\n';
        }
        taken.End(asked);
        return ExitStatus::Done;
    }

  private:
    /// What cannot be read counts as yes: it must not be told as the reason of something.
    static bool IsInTeam(quillet::Session& session, const ListedAdapter& adapter) {
        try {
            return session.AreTeamed({&adapter.id, 1}).front();
        } catch (const quillet::Error&) {
            return true;
        }
    }

    /// Nothing for an adapter that is in no team any more.
    static std::optional<MemberRole> RoleOf(quillet::Session& session, const ListedAdapter& adapter) {
        for (const quillet::Team& team : ReadTeams(session)) {
            for (const quillet::TeamMember& member : MembersOf(session, team)) {
                if (NameTheSameObject(member.id, adapter.id)) {
                    return member.role;
                }
            }
        }
        return std::nullopt;
    }

    std::string m_adapter;
    bool m_secondary = false;
    bool m_none = false;
};

} // namespace

void AddTeamPrimary(CommandTree::Noun& team) {
    team.Verb("primary", "Make an adapter the primary member of its team", std::make_unique<MakePrimary>());
}

} // namespace quilletctl
