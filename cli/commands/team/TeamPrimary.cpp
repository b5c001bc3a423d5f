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
        CQuillet& session = run.Session();
        const ListedAdapter adapter = FindAdapter(session, m_adapter);
        const LONG role = m_none ? 0 : m_secondary ? 2 : kPrimary;
        const std::string asked = "change the role of " + adapter.Called();
        ClientSet set(run);
        const HRESULT result = session.SetTeamedAdapterPriority(ToWide(adapter.path), role);
        if (FAILED(result)) {
            const bool isUnexplained = result == static_cast<HRESULT>(WBEM_E_FAILED);
            throw Refusal(asked, result,
                          isUnexplained && !IsInTeam(session, adapter) ? "the adapter is in no team" : "");
        }
        const std::optional<bool> restartNeeded = set.Close();
        std::optional<LONG> now;
        const Verification taken = Verification::By([&](Verification& compare) {
            now = RoleOf(session, adapter);
            compare.Compare({{"role", "its role", MemberRoleText(role)}},
                            {{"role", "", now ? Json(MemberRoleText(*now)) : Json()}});
        });
        if (run.WantsJson()) {
            const LONG told = now.value_or(role);
            Json answer{{"path", adapter.path},
                        {"role", Coded(told, MemberRoleText(told))},
                        {"primary", now ? Json(*now == kPrimary) : Json()},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called() + ": " + taken.Text(MemberRoleText(role))) << ": "
                      << RestartText(restartNeeded) << '\n';
        }
        taken.End(asked);
        return ExitStatus::Done;
    }

  private:
    static constexpr LONG kPrimary = 1;

    /// What cannot be read counts as yes: it must not be told as the reason of something.
    static bool IsInTeam(CQuillet& session, const ListedAdapter& adapter) {
        CAdapters one;
        AppendAdapter(one, ToWide(adapter.path));
        return FAILED(session.GetTeamableAdapters(one)) || one.m_vecItems.front()->m_bTeamed;
    }

    /// Nothing for an adapter that is in no team any more.
    static std::optional<LONG> RoleOf(CQuillet& session, const ListedAdapter& adapter) {
        const CTeams teams = ReadTeams(session);
        for (const CTeam* team : teams.m_vecItems) {
            const CTeamedAdapters members = MembersOf(session, *team);
            for (const CTeamedAdapter* member : members.m_vecItems) {
                if (NameTheSameObject(ToUtf8(member->m_wsAdapterID), adapter.path)) {
                    return member->m_lMemberRole;
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
