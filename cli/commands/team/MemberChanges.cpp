// quilletctl team add, remove: the members of a team.
#include "app/Command.h"
#include "changes/ClientSet.h"
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

/// A command that changes the members of a team.
class ChangeMembers : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("team", m_team, "The team: its name, object ID or object path");
        syntax.Arguments("adapter", m_adapters, 1, 64,
                         "The adapters, by name, object ID, object path or pattern");
    }

    ExitStatus Run(Invocation& run) final {
        CQuillet& session = run.Session();
        const CTeam team = FindTeam(session, m_team);
        const CTeamedAdapters current = MembersOf(session, team);
        const CAdapters named = NamedAdapters(session, m_adapters, [&](const ListedAdapter& each) {
            return Offers(current, ToWide(each.path));
        });
        TeamProblems problems;
        const CAdapters changing = Changing(session, team, current, named, problems);
        if (problems.Any()) {
            return problems.Report(run);
        }
        if (!MayChange(run, team, changing)) {
            return ExitStatus::Done;
        }
        // One by one, so that it is known which ones were changed.
        const ChangesInTurn changes = ChangeInTurn(run, changing.m_vecItems.size(), [&](std::size_t i) {
            Change(session, team, *changing.m_vecItems[i]);
        });
        changes.Settle(run);
        return Answer(run, team, changing, changes, current);
    }

  protected:
    static bool Contains(const CTeamedAdapters& members, const std::wstring& path) {
        return std::any_of(members.m_vecItems.begin(), members.m_vecItems.end(),
                           [&](const CTeamedAdapter* each) { return each->m_wsAdapterID == path; });
    }
    static bool Contains(const CAdapters& adapters, const std::wstring& path) {
        return std::any_of(adapters.m_vecItems.begin(), adapters.m_vecItems.end(),
                           [&](const CAdapter* each) { return each->m_wsAdapterID == path; });
    }
    static std::string NameOf(const CAdapter& adapter) { return ToUtf8(adapter.m_wsName); }

  private:
    /// The named adapters that there is something to do with, each once.
    virtual CAdapters Changing(CQuillet& session, const CTeam& team, const CTeamedAdapters& current,
                               const CAdapters& named, TeamProblems& problems) const = 0;
    /// Whether a pattern can choose an adapter.
    virtual bool Offers(const CTeamedAdapters&, const std::wstring&) const { return true; }
    /// Whether the person agrees, where that is asked.
    virtual bool MayChange(Invocation&, const CTeam&, const CAdapters&) const { return true; }
    virtual void Change(CQuillet& session, const CTeam& team, const CAdapter& adapter) const = 0;
    /// The members that there are to be when these adapters were changed.
    virtual CAdapters MembersAfter(const CTeamedAdapters& before, const CAdapters& changed) const = 0;
    /// What became of an adapter that was not changed: "not added".
    virtual const char* NotChanged() const = 0;

    ExitStatus Answer(Invocation& run, const CTeam& team, const CAdapters& changing,
                      const ChangesInTurn& changes, const CTeamedAdapters& before) const {
        Json done = Json::array();
        Json notDone = Json::array();
        for (std::size_t i = 0; i < changing.m_vecItems.size(); ++i) {
            const CAdapter& adapter = *changing.m_vecItems[i];
            if (i < changes.done) {
                done.push_back(ToUtf8(adapter.m_wsAdapterID));
                continue;
            }
            notDone.push_back(Json{{"path", ToUtf8(adapter.m_wsAdapterID)}, {"code", changes.CodeOf(i)}});
            if (!run.WantsJson()) {
                run.Out() << NotChanged() << ": " << Printable(NameOf(adapter)) << '\n';
            }
        }
        CAdapters changed;
        for (std::size_t i = 0; i < changes.done; ++i) {
            AppendAdapter(changed, changing.m_vecItems[i]->m_wsAdapterID);
        }
        const CAdapters wanted = MembersAfter(before, changed);
        const Verification taken = Verification::By(
            [&](Verification& compare) { CompareMembers(compare, MembersOf(run.Session(), team), wanted); });
        const std::size_t count = wanted.m_vecItems.size();
        return EndTeamChange(
            run, team, "change the members of " + Called(team),
            Called(team) + " has " + std::to_string(count) + (count == 1 ? " member" : " members"),
            changes.restartNeeded, taken, Json{{"done", std::move(done)}, {"notDone", std::move(notDone)}});
    }

    std::string m_team;
    std::vector<std::string> m_adapters;
};

class AddMembers final : public ChangeMembers {
    CAdapters Changing(CQuillet& session, const CTeam& team, const CTeamedAdapters& current,
                       const CAdapters& named, TeamProblems& problems) const override {
        CAdapters added;
        for (const CAdapter* adapter : named.m_vecItems) {
            if (!Contains(current, adapter->m_wsAdapterID) && !Contains(added, adapter->m_wsAdapterID)) {
                AppendAdapter(added, adapter->m_wsAdapterID, adapter->m_wsName);
            }
        }
        // A member that is there already is no problem; the rest is for the provider to judge.
        ULONGLONG word = 0;
        if (!added.m_vecItems.empty()) {
            ThrowIfRefused(session.ValidateAddAdapters(team.m_wsTeamID, current, added, word),
                           "check the adapters");
        }
        problems.Add(word);
        return added;
    }
    void Change(CQuillet& session, const CTeam& team, const CAdapter& adapter) const override {
        CAdapters added;
        AppendAdapter(added, adapter.m_wsAdapterID);
        ThrowIfRefused(session.ModifyMemberList(team.m_wsTeamID, CTeamedAdapters(), added),
                       "add " + NameOf(adapter) + " to " + Called(team));
    }
    CAdapters MembersAfter(const CTeamedAdapters& before, const CAdapters& changed) const override {
        CAdapters after = changed;
        for (const CTeamedAdapter* member : before.m_vecItems) {
            AppendAdapter(after, member->m_wsAdapterID);
        }
        return after;
    }
    const char* NotChanged() const override { return "not added"; }
};

class RemoveMembers final : public ChangeMembers {
    CAdapters Changing(CQuillet&, const CTeam& team, const CTeamedAdapters& current, const CAdapters& named,
                       TeamProblems&) const override {
        CAdapters removed;
        for (const CAdapter* adapter : named.m_vecItems) {
            if (!Contains(current, adapter->m_wsAdapterID)) {
                throw UsageError(NameOf(*adapter) + " is no member of " + Called(team));
            }
            if (!Contains(removed, adapter->m_wsAdapterID)) {
                AppendAdapter(removed, adapter->m_wsAdapterID, adapter->m_wsName);
            }
        }
        return removed;
    }
    bool Offers(const CTeamedAdapters& current, const std::wstring& path) const override {
        return Contains(current, path);
    }
    bool MayChange(Invocation& run, const CTeam& team, const CAdapters& removed) const override {
        const std::size_t count = removed.m_vecItems.size();
        return run.ConfirmChange("Take " + std::to_string(count) + (count == 1 ? " adapter" : " adapters") +
                                 " out of " + Called(team) + "?");
    }
    void Change(CQuillet& session, const CTeam& team, const CAdapter& adapter) const override {
        CTeamedAdapters removed;
        removed.m_vecItems.push_back(new CTeamedAdapter);
        removed.m_vecItems.back()->m_wsAdapterID = adapter.m_wsAdapterID;
        ThrowIfRefused(session.ModifyMemberList(team.m_wsTeamID, removed, CAdapters()),
                       "take " + NameOf(adapter) + " out of " + Called(team));
    }
    CAdapters MembersAfter(const CTeamedAdapters& before, const CAdapters& changed) const override {
        CAdapters after;
        for (const CTeamedAdapter* member : before.m_vecItems) {
            if (!Contains(changed, member->m_wsAdapterID)) {
                AppendAdapter(after, member->m_wsAdapterID);
            }
        }
        return after;
    }
    const char* NotChanged() const override { return "not taken out"; }
};

} // namespace

void AddMemberChanges(CommandTree::Noun& team) {
    team.Verb("add", "Add adapters to a team", std::make_unique<AddMembers>())
        .Verb("remove", "Take adapters out of a team", std::make_unique<RemoveMembers>());
}

} // namespace quilletctl
