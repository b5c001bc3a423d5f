// quilletctl team: teams of adapters and their members.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "changes/Verification.h"
#include "commands/Commands.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/BitMask.h"
#include "texts/JsonParts.h"
#include "texts/ResultCodes.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

namespace quilletctl {

namespace {

/// A number of the provider's in words, or as itself where it has none.
std::string Words(LONG number, const std::wstring& text) {
    return text.empty() ? std::to_string(number) : ToUtf8(text);
}
std::string ModeText(LONG mode) {
    return Words(mode, CTeamTexts::TeamMode(mode));
}
/// The object that is asked about a team that is yet to be made: the class.
const std::wstring NEW_TEAM = L"Zorel_TeamOfAdapters";

/// What is proposed for a mode; its name does as well.
const std::vector<std::string> MODE_NUMBERS{"0", "1", "2", "3", "4", "5", "6"};

/// The mode that a word of the command line names, by its number or its text, which may have "team" behind
/// it, as in the provider's own descriptions. Throws UsageError.
CTeam::TeamMode ModeFrom(const std::string& word) {
    std::string known;
    for (LONG mode = CTeam::TeamMode0; mode <= CTeam::TeamMode6; ++mode) {
        if (word == std::to_string(mode) || SameIgnoringCase(word, ModeText(mode)) ||
            SameIgnoringCase(word, ModeText(mode) + " team")) {
            return static_cast<CTeam::TeamMode>(mode);
        }
        known += (known.empty() ? "" : ", ") + std::to_string(mode) + " (" + ModeText(mode) + ")";
    }
    throw UsageError("no team mode is called \"" + word + "\"; there are " + known);
}
std::string RoleText(LONG role) {
    return Words(role, CTeamTexts::MemberRole(role));
}
std::string MemberStatusText(LONG status) {
    return Words(status, CTeamTexts::MemberStatus(status));
}

/// A team's status; a team without its logical adapter has none, and is a team all the same.
struct TeamState {
    HRESULT result = S_OK;
    CTeam::TeamStatus status{};

    std::string Text() const {
        return SUCCEEDED(result) ? Words(status, CTeamTexts::TeamStatus(status))
                                 : "not told: " + ExplainResult(result);
    }
    Json AsJson() const { return SUCCEEDED(result) ? Coded(status, Text()) : Json(); }
};

TeamState StateOf(CQuillet& session, const CTeam& team) {
    TeamState state;
    state.result = session.GetTeamStatus(team.m_wsTeamID, state.status);
    return state;
}

CTeamedAdapters MembersOf(CQuillet& session, const CTeam& team) {
    CTeamedAdapters members;
    ThrowIfRefused(session.GetMemberAdapters(team.m_wsTeamID, members),
                   "list the members of " + Called(team));
    return members;
}

/// A member as the list of the adapters has it; one that is missing there has fewer names.
ListedAdapter Listed(const std::vector<ListedAdapter>& adapters, const CTeamedAdapter& member) {
    const std::string path = ToUtf8(member.m_wsAdapterID);
    const std::string id = NameInPath(path).key;
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(NameInPath(each.path).key, id);
    });
    return found != adapters.end()
               ? *found
               : ListedAdapter{path, id, {}, ToUtf8(member.m_wsDisplayName), ToUtf8(member.m_wsDeviceID)};
}

void Append(CAdapters& adapters, const std::wstring& path, const std::wstring& name = {}) {
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems.back()->m_wsAdapterID = path;
    adapters.m_vecItems.back()->m_wsName = name;
}

/// The adapters that words of the command line name. Throws UsageError, Refusal.
CAdapters NamedAdapters(CQuillet& session, const std::vector<std::string>& words,
                        const AdapterChoice& offered = {}) {
    CAdapters adapters;
    for (const ListedAdapter& adapter : FindAdapters(session, words, offered)) {
        Append(adapters, ToWide(adapter.path), ToWide(adapter.Called()));
    }
    return adapters;
}

/// Throws Refusal unless the provider answered; its refusal may also be a number of its own, which is no
/// failure code.
void Ask(HRESULT result, const std::string& asked) {
    if (result != S_OK) {
        throw Refusal(asked, result);
    }
}

/// What the library's and the provider's checks found, each as a sentence.
class Problems {
  public:
    void Add(ULONGLONG mask) { m_mask |= mask; }
    bool Any() const noexcept { return m_mask != 0; }
    std::vector<std::string> Sentences() const {
        std::vector<std::string> sentences;
        for (const std::wstring& sentence : CTeamTexts::Problems(m_mask)) {
            sentences.push_back(ToUtf8(sentence));
        }
        return sentences;
    }
    /// Answers with the problems instead of the command's own answer.
    ExitStatus Report(Invocation& run) const {
        if (run.WantsJson()) {
            run.Print(Json{{"mask", HexMask(m_mask)}, {"problems", Sentences()}});
        } else {
            for (const std::string& sentence : Sentences()) {
                run.Out() << Printable(sentence) << '\n';
            }
        }
        return ExitStatus::Findings;
    }

  private:
    ULONGLONG m_mask = 0;
};

Json TeamAsJson(const CTeam& team) {
    return Json{{"path", ToUtf8(team.m_wsTeamID)},
                {"objectId", ToUtf8(team.m_wsName)},
                {"name", ToUtf8(team.m_wsCaption)},
                {"mode", Coded(team.m_eTeamMode, ModeText(team.m_eTeamMode))}};
}

/// The end of a command that changed a team; `more` stands behind what the answer of every such command
/// holds. Throws NotTaken or Refusal.
/// @param asked completes "could not …"; `done` says what was done where it took
ExitStatus EndChanged(Invocation& run, const CTeam& team, const std::string& asked, const std::string& done,
                      std::optional<bool> restartNeeded, const Verification& taken,
                      const Json& more = Json::object()) {
    if (run.WantsJson()) {
        Json json = TeamAsJson(team);
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

/// Name and mode of a team, to be compared.
std::vector<Field> FieldsOf(const CTeam& team) {
    return {{"name", "its name", ToUtf8(team.m_wsCaption)}, {"mode", "its mode", ModeText(team.m_eTeamMode)}};
}

CTeam ReadTeam(CQuillet& session, const CTeam& team) {
    CTeam read;
    ThrowIfRefused(session.GetTeamInfo(team.m_wsTeamID, read), "read the team " + Called(team));
    return read;
}

/// Compares the members of a team with those that it is to have.
void CompareMembers(Verification& taken, const CTeamedAdapters& members, const CAdapters& wanted) {
    const auto isAmong = [](const std::wstring& path, const auto& adapters) {
        return std::any_of(adapters.m_vecItems.begin(), adapters.m_vecItems.end(), [&](const auto* each) {
            return NameTheSameObject(ToUtf8(each->m_wsAdapterID), ToUtf8(path));
        });
    };
    for (const CAdapter* adapter : wanted.m_vecItems) {
        if (!isAmong(adapter->m_wsAdapterID, members)) {
            const std::string path = ToUtf8(adapter->m_wsAdapterID);
            taken.Add("members", path, Json(), NameInPath(path).key + " is no member");
        }
    }
    for (const CTeamedAdapter* member : members.m_vecItems) {
        if (!isAmong(member->m_wsAdapterID, wanted)) {
            taken.Add("members", Json(), ToUtf8(member->m_wsAdapterID),
                      ToUtf8(member->m_wsDisplayName) + " is still a member");
        }
    }
}

ExitStatus ListTeams(Invocation& run) {
    CQuillet& session = run.Session();
    const CTeams teams = ReadTeams(session);
    Json list = Json::array();
    Table table({{"NAME", Fit::MayShorten},
                 {"MODE", Fit::MayShorten},
                 {"STATUS", Fit::MayShorten},
                 {"MEMBERS", Fit::Whole},
                 {"OBJECT ID", Fit::Whole}});
    for (const CTeam* team : teams.m_vecItems) {
        const TeamState state = StateOf(session, *team);
        const std::size_t members = MembersOf(session, *team).m_vecItems.size();
        Json json = TeamAsJson(*team);
        json["status"] = state.AsJson();
        json["members"] = members;
        list.push_back(std::move(json));
        table.AddRow({Called(*team), ModeText(team->m_eTeamMode), state.Text(), std::to_string(members),
                      ToUtf8(team->m_wsName)});
    }
    return AnswerList(run, Json{{"teams", std::move(list)}}, table, "no teams");
}

/// A command about one team.
class TeamCommand : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("team", m_name, "The team: its name, object ID or object path");
    }
    ExitStatus Run(Invocation& run) final { return RunFor(FindTeam(run.Session(), m_name), run); }

  private:
    virtual ExitStatus RunFor(const CTeam& team, Invocation& run) = 0;

    std::string m_name;
};

class ShowTeam final : public TeamCommand {
    ExitStatus RunFor(const CTeam& found, Invocation& run) override {
        CQuillet& session = run.Session();
        CTeam team;
        ThrowIfRefused(session.GetTeamInfo(found.m_wsTeamID, team), "read the team " + Called(found));
        const TeamState state = StateOf(session, team);
        const CTeamedAdapters members = MembersOf(session, team);
        const std::vector<ListedAdapter> adapters = ReadAdapters(session);
        int enabled = 0;
        ThrowIfRefused(session.GetNumberEnabledMembers(team.m_wsTeamID, enabled),
                       "count the members of " + Called(team));
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const CTeamedAdapter* member : members.m_vecItems) {
                const ListedAdapter adapter = Listed(adapters, *member);
                list.push_back(Json{
                    {"path", ToUtf8(member->m_wsAdapterID)},
                    {"objectId", TextOrNull(adapter.objectId)},
                    {"deviceId", ToUtf8(member->m_wsDeviceID)},
                    {"name", adapter.name},
                    {"displayName", ToUtf8(member->m_wsDisplayName)},
                    {"caption", ToUtf8(member->m_wsCaption)},
                    {"role", Coded(member->m_lMemberRole, RoleText(member->m_lMemberRole))},
                    {"status", Coded(member->m_lMemberStatus, MemberStatusText(member->m_lMemberStatus))}});
            }
            Json json = TeamAsJson(team);
            json["status"] = state.AsJson();
            json["macAddress"] = ToUtf8(team.m_wsTeamMacAddress);
            json["mfo"] = team.m_bMFOEnabled;
            json["linkSecurity"] = team.m_bLinkSecEnabled;
            json["boundToHyperV"] = team.m_bBoundToHyperV;
            json["enabledMembers"] = enabled;
            json["members"] = std::move(list);
            run.Print(json);
            return ExitStatus::Done;
        }
        Sheet()
            .Add("Name", ToUtf8(team.m_wsCaption))
            .Add("Object ID", ToUtf8(team.m_wsName))
            .Add("Mode", ModeText(team.m_eTeamMode))
            .Add("Status", state.Text())
            .Add("MAC address", ToUtf8(team.m_wsTeamMacAddress))
            .Add("Adapters of other makers", YesOrNo(team.m_bMFOEnabled))
            .Add("Link security", YesOrNo(team.m_bLinkSecEnabled))
            .Add("Bound to Hyper-V", YesOrNo(team.m_bBoundToHyperV))
            .Add("Enabled members",
                 std::to_string(enabled) + " of " + std::to_string(members.m_vecItems.size()))
            .Print(run.Screen());
        if (!members.m_vecItems.empty()) {
            run.Out() << '\n';
            Table table({{"MEMBER", Fit::MayShorten},
                         {"ROLE", Fit::MayShorten},
                         {"STATUS", Fit::MayShorten},
                         {"OBJECT ID", Fit::Whole}});
            for (const CTeamedAdapter* member : members.m_vecItems) {
                const ListedAdapter adapter = Listed(adapters, *member);
                table.AddRow({adapter.Called(), RoleText(member->m_lMemberRole),
                              MemberStatusText(member->m_lMemberStatus), adapter.objectId});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }
};

/// The modes that adapters can be teamed in, or the one that suits a team best.
class ListModes final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, 64,
            "The adapters, by name, object ID, object path or pattern; none: all that are in no team");
        syntax.Text("--team", m_team, "TEAM", "Ask which mode suits this team best instead");
    }

    ExitStatus Run(Invocation& run) override {
        if (m_team && !m_adapters.empty()) {
            throw UsageError("--team: not together with adapters");
        }
        return m_team ? Best(run) : Compatible(run);
    }

  private:
    ExitStatus Compatible(Invocation& run) {
        CQuillet& session = run.Session();
        const CAdapters adapters = m_adapters.empty() ? Free(session) : NamedAdapters(session, m_adapters);
        CTeamWizTeamModes modes;
        if (!adapters.m_vecItems.empty()) {
            ThrowIfRefused(session.GetCompatibleTeamModesWithAdapters(adapters, modes, true),
                           "find the modes of the adapters");
        }
        Json list = Json::array();
        Table table({{"MODE", Fit::Whole}, {"NAME", Fit::MayShorten}, {"DESCRIPTION", Fit::MayShorten}});
        for (const CTeamWizTeamMode* mode : modes.m_vecItems) {
            const std::string description = ToUtf8(mode->m_wsDescription);
            list.push_back(Coded(mode->m_lTeamMode, description));
            table.AddRow({std::to_string(mode->m_lTeamMode), ModeText(mode->m_lTeamMode), description});
        }
        return AnswerList(run, Json{{"adapters", adapters.m_vecItems.size()}, {"modes", std::move(list)}},
                          table, "these adapters cannot be teamed in any mode");
    }

    static CAdapters Free(CQuillet& session) {
        CAdapters all;
        ThrowIfRefused(session.EnumerateAdapters(all), "list the adapters");
        ThrowIfRefused(session.GetTeamableAdapters(all), "find the adapters that are in no team");
        CAdapters free;
        for (const CAdapter* adapter : all.m_vecItems) {
            if (!adapter->m_bTeamed) {
                Append(free, adapter->m_wsAdapterID);
            }
        }
        return free;
    }

    ExitStatus Best(Invocation& run) {
        CQuillet& session = run.Session();
        const CTeam team = FindTeam(session, *m_team);
        CTeamWizTeamMode mode;
        CTeam::TeamAutoDetectStatus status{};
        unsigned int coverage = 0;
        Ask(session.GetBestTeamMode(team.m_wsTeamID, mode, status, coverage),
            "find the best mode for " + Called(team));
        const std::string statusText = Words(status, CTeamTexts::AutoDetectStatus(status));
        if (run.WantsJson()) {
            run.Print(Json{{"path", ToUtf8(team.m_wsTeamID)},
                           {"status", Coded(status, statusText)},
                           {"coverage", coverage},
                           {"mode", Coded(mode.m_lTeamMode, ToUtf8(mode.m_wsDescription))}});
        } else {
            Sheet()
                .Add("Detection", statusText)
                .Add("Coverage", std::to_string(coverage) + " %")
                .Add("Best mode",
                     ToUtf8(mode.m_wsDescription) + " (" + std::to_string(mode.m_lTeamMode) + ")")
                .Print(run.Screen());
        }
        return ExitStatus::Done;
    }

    std::vector<std::string> m_adapters;
    std::optional<std::string> m_team;
};

class CreateTeam final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("name", m_name, "The new team's name");
        syntax.Arguments(
            "adapter", m_adapters, 1, 64,
            "The members, by name, object ID, object path or pattern; the first becomes primary");
        syntax.Text("--mode", m_mode, "MODE", "The team mode, by number or name (default: 1); see team modes",
                    MODE_NUMBERS);
        syntax.Number("--profile", m_profile, 0, 0x7FFFFFFF, "The performance profile");
        syntax.Flag("--prefix", m_prefix, "Put the prefix that the provider proposes before the name");
        syntax.Flag("--mfo", m_mfo, "Allow adapters of other makers");
        syntax.Flag("--link-security", m_linkSecurity, "Secure the team's link");
        syntax.Flag("--force", m_force, "Make it whatever the checks find");
    }

    ExitStatus Run(Invocation& run) override {
        CQuillet& session = run.Session();
        const CAdapters members = NamedAdapters(session, m_adapters);
        const CTeam::TeamMode mode = ModeFrom(m_mode.value_or("1"));
        const std::wstring name = Name(session);
        if (!m_force) {
            const Problems problems = Check(session, name, mode, members);
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
        return EndChanged(run, team, asked, "created the team " + ToUtf8(name), restartNeeded, taken);
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
    static Problems Check(CQuillet& session, const std::wstring& name, CTeam::TeamMode mode,
                          const CAdapters& members) {
        constexpr int NAME_AND_MEMBERS = 3;
        Problems problems;
        problems.Add(session.CreateTeamCheck(mode, name, members, NAME_AND_MEMBERS));
        DWORD word = 0;
        Ask(session.ValidateTeamName(name, NEW_TEAM, word), "check the name");
        problems.Add(word);
        Ask(session.ValidateTeamMode(mode, NEW_TEAM, word), "check the mode");
        problems.Add(word);
        ULONGLONG words = 0;
        Ask(session.ValidateNewTeamMembers(members, mode, words), "check the members");
        problems.Add(words);
        Ask(session.ValidateSettingsOnNewTeam(members, words), "check the members' settings");
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
        Problems problems;
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
                               const CAdapters& named, Problems& problems) const = 0;
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
            Append(changed, changing.m_vecItems[i]->m_wsAdapterID);
        }
        const CAdapters wanted = MembersAfter(before, changed);
        const Verification taken = Verification::By(
            [&](Verification& compare) { CompareMembers(compare, MembersOf(run.Session(), team), wanted); });
        const std::size_t count = wanted.m_vecItems.size();
        return EndChanged(
            run, team, "change the members of " + Called(team),
            Called(team) + " has " + std::to_string(count) + (count == 1 ? " member" : " members"),
            changes.restartNeeded, taken, Json{{"done", std::move(done)}, {"notDone", std::move(notDone)}});
    }

    std::string m_team;
    std::vector<std::string> m_adapters;
};

class AddMembers final : public ChangeMembers {
    CAdapters Changing(CQuillet& session, const CTeam& team, const CTeamedAdapters& current,
                       const CAdapters& named, Problems& problems) const override {
        CAdapters added;
        for (const CAdapter* adapter : named.m_vecItems) {
            if (!Contains(current, adapter->m_wsAdapterID) && !Contains(added, adapter->m_wsAdapterID)) {
                Append(added, adapter->m_wsAdapterID, adapter->m_wsName);
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
        Append(added, adapter.m_wsAdapterID);
        ThrowIfRefused(session.ModifyMemberList(team.m_wsTeamID, CTeamedAdapters(), added),
                       "add " + NameOf(adapter) + " to " + Called(team));
    }
    CAdapters MembersAfter(const CTeamedAdapters& before, const CAdapters& changed) const override {
        CAdapters after = changed;
        for (const CTeamedAdapter* member : before.m_vecItems) {
            Append(after, member->m_wsAdapterID);
        }
        return after;
    }
    const char* NotChanged() const override { return "not added"; }
};

class RemoveMembers final : public ChangeMembers {
    CAdapters Changing(CQuillet&, const CTeam& team, const CTeamedAdapters& current, const CAdapters& named,
                       Problems&) const override {
        CAdapters removed;
        for (const CAdapter* adapter : named.m_vecItems) {
            if (!Contains(current, adapter->m_wsAdapterID)) {
                throw UsageError(NameOf(*adapter) + " is no member of " + Called(team));
            }
            if (!Contains(removed, adapter->m_wsAdapterID)) {
                Append(removed, adapter->m_wsAdapterID, adapter->m_wsName);
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
                Append(after, member->m_wsAdapterID);
            }
        }
        return after;
    }
    const char* NotChanged() const override { return "not taken out"; }
};

class ModifyTeam final : public TeamCommand {
  public:
    void Declare(Syntax& syntax) override {
        TeamCommand::Declare(syntax);
        syntax.Text("--name", m_newName, "NAME", "The team's new name");
        syntax.Text("--mode", m_mode, "MODE", "The team's new mode, by number or name", MODE_NUMBERS);
    }

  private:
    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        if (!m_newName && !m_mode) {
            throw UsageError("nothing to change: --name or --mode is needed");
        }
        CQuillet& session = run.Session();
        CTeam changed = team;
        Problems problems;
        DWORD word = 0;
        if (m_newName) {
            changed.m_wsCaption = ToWide(*m_newName);
            Ask(session.ValidateTeamName(changed.m_wsCaption, team.m_wsTeamID, word), "check the name");
            problems.Add(word);
        }
        if (m_mode) {
            changed.m_eTeamMode = ModeFrom(*m_mode);
            Ask(session.ValidateTeamMode(changed.m_eTeamMode, team.m_wsTeamID, word), "check the mode");
            problems.Add(word);
        }
        if (problems.Any()) {
            return problems.Report(run);
        }
        const std::string asked = "change " + Called(team);
        ClientSet set(run);
        ThrowIfRefused(session.ModifyTeamInfo(team.m_wsTeamID, changed), asked);
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CTeam now = ReadTeam(session, team);
            compare.Compare(FieldsOf(changed), FieldsOf(now));
            changed.m_wsCaption = now.m_wsCaption;
            changed.m_eTeamMode = now.m_eTeamMode;
        });
        return EndChanged(run, changed, asked, "changed " + Called(team), restartNeeded, taken);
    }

    std::optional<std::string> m_newName;
    std::optional<std::string> m_mode;
};

class DeleteTeam final : public TeamCommand {
    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        if (!run.ConfirmChange("Delete the team " + Called(team) + " and its VLANs?")) {
            return ExitStatus::Done;
        }
        CQuillet& session = run.Session();
        const std::string asked = "delete " + Called(team);
        ClientSet set(run);
        ThrowIfRefused(session.RemoveTeam(team.m_wsTeamID), asked);
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CTeams teams = ReadTeams(session);
            for (const CTeam* each : teams.m_vecItems) {
                if (NameTheSameObject(ToUtf8(each->m_wsTeamID), ToUtf8(team.m_wsTeamID))) {
                    compare.Add("path", Json(), ToUtf8(each->m_wsTeamID), "the team is still there");
                }
            }
        });
        return EndChanged(run, team, asked, "deleted " + Called(team), restartNeeded, taken);
    }
};

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
        const LONG role = m_none ? 0 : m_secondary ? 2 : PRIMARY;
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
            compare.Compare({{"role", "its role", RoleText(role)}},
                            {{"role", "", now ? Json(RoleText(*now)) : Json()}});
        });
        if (run.WantsJson()) {
            const LONG told = now.value_or(role);
            Json answer{{"path", adapter.path},
                        {"role", Coded(told, RoleText(told))},
                        {"primary", now ? Json(*now == PRIMARY) : Json()},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called() + ": " + taken.Text(RoleText(role))) << ": "
                      << RestartText(restartNeeded) << '\n';
        }
        taken.End(asked);
        return ExitStatus::Done;
    }

  private:
    static constexpr LONG PRIMARY = 1;

    /// What cannot be read counts as yes: it must not be told as the reason of something.
    static bool IsInTeam(CQuillet& session, const ListedAdapter& adapter) {
        CAdapters one;
        Append(one, ToWide(adapter.path));
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

class TestSwitch final : public TeamCommand {
  public:
    void Declare(Syntax& syntax) override {
        TeamCommand::Declare(syntax);
        syntax.Number("--timeout", m_seconds, 1, 3600, "For how many seconds to wait for the result");
    }

  private:
    struct Result {
        CTeam::SwitchCmdStatus status{};
        std::vector<std::wstring> causes, solutions;
        std::vector<int> causeIds, solutionIds;
    };

    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        CQuillet& session = run.Session();
        if (session.TestSwitchSupport(team.m_eTeamMode) == 0) {
            throw UsageError(Called(team) + ": " + ModeText(team.m_eTeamMode) +
                             " asks nothing of the switch, so there is nothing to test");
        }
        run.HoldInterrupts();
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(m_seconds);
        Result result = Send(session, team, CTeam::SwitchCmdStart);
        while (result.status == CTeam::SwitchCmdStatusRunning) {
            if (!run.MayGoOn()) {
                result = Send(session, team, CTeam::SwitchCmdStop);
                break;
            }
            if (std::chrono::steady_clock::now() >= until) {
                Send(session, team, CTeam::SwitchCmdStop);
                throw Refusal("test the switch of " + Called(team) + " in time",
                              static_cast<HRESULT>(WBEM_E_TIMED_OUT));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            result = Send(session, team, CTeam::SwitchCmdQuery);
        }
        Print(run, team, result);
        return result.status == CTeam::SwitchCmdStatusPassed ? ExitStatus::Done : ExitStatus::Findings;
    }

    static Result Send(CQuillet& session, const CTeam& team, CTeam::SwitchCmd command) {
        Result result;
        ThrowIfRefused(session.TestSwitchConfiguration(team.m_wsTeamID, command, result.status, result.causes,
                                                       result.solutions, result.causeIds, result.solutionIds),
                       "test the switch of " + Called(team));
        return result;
    }

    /// The text or number at a place; lists of the provider's need not be of one length.
    template <class Value>
    static Value At(const std::vector<Value>& values, std::size_t place) {
        return place < values.size() ? values[place] : Value();
    }

    static void Print(Invocation& run, const CTeam& team, const Result& result) {
        const std::string status = Words(result.status, CTeamTexts::SwitchCmdStatus(result.status));
        const std::size_t count = std::max(result.causes.size(), result.solutions.size());
        if (run.WantsJson()) {
            Json troubles = Json::array();
            for (std::size_t i = 0; i < count; ++i) {
                troubles.push_back(Json{{"cause", ToUtf8(At(result.causes, i))},
                                        {"causeId", At(result.causeIds, i)},
                                        {"solution", ToUtf8(At(result.solutions, i))},
                                        {"solutionId", At(result.solutionIds, i)}});
            }
            run.Print(Json{{"path", ToUtf8(team.m_wsTeamID)},
                           {"status", Coded(result.status, status)},
                           {"troubles", std::move(troubles)}});
            return;
        }
        run.Out() << "the test of the switch: " << status << '\n';
        for (std::size_t i = 0; i < count; ++i) {
            run.Out() << Printable(ToUtf8(At(result.causes, i))) << '\n'
                      << "  " << Printable(ToUtf8(At(result.solutions, i))) << '\n';
        }
    }

    std::uint32_t m_seconds = 60;
};

} // namespace

void AddTeamCommands(CommandTree& tree) {
    tree.AddNoun("team", "Teams of adapters")
        .Query("list", "List the teams", ListTeams)
        .Query("show", "What is known of a team, and its members", std::make_unique<ShowTeam>())
        .Query("modes", "The modes that adapters can be teamed in", std::make_unique<ListModes>())
        .Verb("create", "Check and make a team", std::make_unique<CreateTeam>())
        .Verb("add", "Add adapters to a team", std::make_unique<AddMembers>())
        .Verb("remove", "Take adapters out of a team", std::make_unique<RemoveMembers>())
        .Verb("modify", "Change a team's name or mode", std::make_unique<ModifyTeam>())
        .Verb("delete", "Remove a team and its VLANs", std::make_unique<DeleteTeam>())
        .Verb("primary", "Make an adapter the primary member of its team", std::make_unique<MakePrimary>())
        .Verb("switch-test", "Test whether the switch is set up for a team", std::make_unique<TestSwitch>());
}

} // namespace quilletctl
