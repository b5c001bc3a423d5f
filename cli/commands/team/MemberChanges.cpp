// quilletctl team add, remove: the members of a team.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "changes/Wait.h"
#include "commands/team/TeamChange.h"
#include "commands/team/TeamChecks.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamVerbs.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace quilletctl {

namespace {

using MemberList = std::vector<quillet::TeamMember>;
using AdapterList = std::vector<ListedAdapter>;

bool Contains(const MemberList& members, const quillet::AdapterId& id) {
    return std::any_of(members.begin(), members.end(), [&](const auto& each) { return each.id == id; });
}

/// A command that changes the members of a team.
class ChangeMembers : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("team", m_team, "The team: its name, object ID or object path");
        syntax.Arguments("adapter", m_adapters, 1, 64,
                         "The adapters, by name, object ID, object path or pattern");
        m_wait.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) final {
        quillet::Session& session = run.Session();
        const quillet::Team team = FindTeam(session, m_team);
        const MemberList current = MembersOf(session, team);
        const AdapterList named = FindAdapters(
            session, m_adapters, [&](const ListedAdapter& each) { return Offers(current, each.id); });
        TeamProblems problems;
        const AdapterList changing = Changing(session, team, current, named, problems);
        if (problems.Any()) {
            return problems.Report(run);
        }
        if (!MayChange(run, team, changing)) {
            return ExitStatus::Done;
        }
        const std::vector<Watched> up = m_wait.Up(session, {StatusOf(team.id, "the team " + Called(team))});
        // One by one, so that it is known which ones were changed.
        std::vector<std::string> asked;
        for (const ListedAdapter& adapter : changing) {
            asked.push_back(Asked(team, adapter));
        }
        const ChangesInTurn changes =
            ChangeInTurn(run, asked, [&](std::size_t i) { Change(session, team, changing[i]); });
        changes.Settle(run);
        m_wait.Until(run, up);
        return Answer(run, team, changing, changes, current);
    }

  private:
    /// The named adapters that there is something to do with.
    virtual AdapterList Changing(quillet::Session& session, const quillet::Team& team,
                                 const MemberList& current, const AdapterList& named,
                                 TeamProblems& problems) const = 0;
    /// Whether a pattern can choose an adapter.
    virtual bool Offers(const MemberList&, const quillet::AdapterId&) const { return true; }
    /// Whether the person agrees, where that is asked.
    virtual bool MayChange(Invocation&, const quillet::Team&, const AdapterList&) const { return true; }
    /// What is done with an adapter; completes "could not …".
    virtual std::string Asked(const quillet::Team& team, const ListedAdapter& adapter) const = 0;
    virtual void Change(quillet::Session& session, const quillet::Team& team,
                        const ListedAdapter& adapter) const = 0;
    /// The members that there are to be when these adapters were changed.
    virtual std::vector<quillet::AdapterId> MembersAfter(const MemberList& before,
                                                         std::vector<quillet::AdapterId> changed) const = 0;
    /// What became of an adapter that was not changed: "not added".
    virtual const char* NotChanged() const = 0;

    ExitStatus Answer(Invocation& run, const quillet::Team& team, const AdapterList& changing,
                      const ChangesInTurn& changes, const MemberList& before) const {
        Json done = Json::array();
        Json notDone = Json::array();
        std::vector<quillet::AdapterId> changed;
        for (std::size_t i = 0; i < changing.size(); ++i) {
            const ListedAdapter& adapter = changing[i];
            if (i < changes.done) {
                changed.push_back(adapter.id);
                done.push_back(adapter.path);
                continue;
            }
            notDone.push_back(Json{{"path", adapter.path}, {"code", changes.CodeOf(i)}});
            if (!run.WantsJson()) {
                run.Out() << NotChanged() << ": " << Printable(adapter.Called()) << '\n';
            }
        }
        const std::vector<quillet::AdapterId> wanted = MembersAfter(before, std::move(changed));
        const Verification taken = Verification::By(
            [&](Verification& compare) { CompareMembers(compare, MembersOf(run.Session(), team), wanted); });
        return EndTeamChange(run, team, "change the members of " + Called(team),
                             Called(team) + " has " + std::to_string(wanted.size()) +
                                 (wanted.size() == 1 ? " member" : " members"),
                             changes.restartNeeded, taken,
                             Json{{"done", std::move(done)}, {"notDone", std::move(notDone)}});
    }

    std::string m_team;
    std::vector<std::string> m_adapters;
    WaitOption m_wait;
};

class AddToTeam final : public ChangeMembers {
    AdapterList Changing(quillet::Session& session, const quillet::Team& team, const MemberList& current,
                         const AdapterList& named, TeamProblems& problems) const override {
        // A member that is there already is no problem; the rest is for the provider to judge.
        AdapterList added = named;
        std::erase_if(added, [&](const ListedAdapter& each) { return Contains(current, each.id); });
        if (!added.empty()) {
            problems.Add(Attempt("check the adapters", [&] {
                return session.ValidateAddedMembers(team.id, current, IdsOf(added));
            }));
        }
        return added;
    }
    std::string Asked(const quillet::Team& team, const ListedAdapter& adapter) const override {
        return "add " + adapter.Called() + " to " + Called(team);
    }
    void Change(quillet::Session& session, const quillet::Team& team,
                const ListedAdapter& adapter) const override {
        session.AddMember(team.id, adapter.id);
    }
    std::vector<quillet::AdapterId> MembersAfter(const MemberList& before,
                                                 std::vector<quillet::AdapterId> changed) const override {
        for (const quillet::TeamMember& member : before) {
            changed.push_back(member.id);
        }
        return changed;
    }
    const char* NotChanged() const override { return "not added"; }
};

class RemoveMembers final : public ChangeMembers {
    AdapterList Changing(quillet::Session&, const quillet::Team& team, const MemberList& current,
                         const AdapterList& named, TeamProblems&) const override {
        for (const ListedAdapter& adapter : named) {
            if (!Contains(current, adapter.id)) {
                throw UsageError(adapter.Called() + " is no member of " + Called(team));
            }
        }
        return named;
    }
    bool Offers(const MemberList& current, const quillet::AdapterId& id) const override {
        return Contains(current, id);
    }
    bool MayChange(Invocation& run, const quillet::Team& team, const AdapterList& removed) const override {
        return run.ConfirmChange("Take " + std::to_string(removed.size()) +
                                 (removed.size() == 1 ? " adapter" : " adapters") + " out of " +
                                 Called(team) + "?");
    }
    std::string Asked(const quillet::Team& team, const ListedAdapter& adapter) const override {
        return "take " + adapter.Called() + " out of " + Called(team);
    }
    void Change(quillet::Session& session, const quillet::Team& team,
                const ListedAdapter& adapter) const override {
        session.RemoveMember(team.id, adapter.id);
    }
    std::vector<quillet::AdapterId> MembersAfter(const MemberList& before,
                                                 std::vector<quillet::AdapterId> changed) const override {
        std::vector<quillet::AdapterId> after;
        for (const quillet::TeamMember& member : before) {
            if (std::find(changed.begin(), changed.end(), member.id) == changed.end()) {
                after.push_back(member.id);
            }
        }
        return after;
    }
    const char* NotChanged() const override { return "not taken out"; }
};

} // namespace

void AddMemberChanges(CommandTree::Noun& team) {
    team.Verb("add", "Add adapters to a team", std::make_unique<AddToTeam>())
        .Verb("remove", "Take adapters out of a team", std::make_unique<RemoveMembers>());
}

} // namespace quilletctl
