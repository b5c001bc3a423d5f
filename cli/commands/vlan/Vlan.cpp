// quilletctl vlan: the VLANs of adapters and teams.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "changes/Verification.h"
#include "commands/Commands.h"
#include "commands/vlan/VlanTexts.h"
#include "names/ObjectPath.h"
#include "names/VlanParent.h"
#include "texts/BitMask.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <quillet/VLANTexts.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

namespace quilletctl {

namespace {

/// A VLAN ID as it was typed; whether it is in range is for the checks to say. Throws UsageError.
LONG NumberIn(const std::string& text) {
    LONG number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        throw UsageError("\"" + text +
                         "\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN");
    }
    return number;
}

class ListVlans final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("parent", m_parents, 0, 1,
                         "An adapter or a team: its name, object ID or object path; a pattern names several "
                         "(default: all)");
    }

    ExitStatus Run(Invocation& run) override {
        CQuillet& session = run.Session();
        const std::vector<VlanParent> parents =
            m_parents.empty() ? ReadVlanParents(session) : FindVlanParents(session, m_parents.front());
        Json list = Json::array();
        Table table({{"PARENT", Fit::MayShorten},
                     {"VLAN", Fit::Whole},
                     {"NAME", Fit::MayShorten},
                     {"STATUS", Fit::Whole},
                     {"OBJECT ID", Fit::Whole}});
        for (const VlanParent& parent : parents) {
            const CVLANs vlans = ReadVlans(session, parent);
            for (const CVLAN* vlan : vlans.m_vecItems) {
                Json entry{{"parent", AsJson(parent)}};
                entry.update(AsJson(*vlan));
                list.push_back(std::move(entry));
                table.AddRow({parent.name, NumberText(*vlan), ToUtf8(vlan->m_wsVLANName), StatusText(*vlan),
                              ToUtf8(vlan->m_wsName)});
            }
        }
        return AnswerList(run, Json{{"vlans", std::move(list)}}, table, "no VLANs");
    }

  private:
    std::vector<std::string> m_parents;
};

/// What stands in the way of a change.
struct Findings {
    ULONGLONG mask = 0;
    std::vector<std::string> sentences;

    void Add(ULONGLONG problems) {
        mask |= problems;
        for (const std::wstring& sentence : CVLANTexts::Problems(problems)) {
            sentences.push_back(ToUtf8(sentence));
        }
    }
    Json AsJson() const { return Json{{"mask", HexMask(mask)}, {"texts", sentences}}; }
    void Print(std::ostream& out) const {
        for (const std::string& sentence : sentences) {
            out << Printable(sentence) << '\n';
        }
    }
};

/// The end of a command that changes nothing because of what it found.
ExitStatus EndUnchanged(Invocation& run, const VlanParent& parent, const Findings& findings) {
    if (run.WantsJson()) {
        run.Print(Json{{"parent", AsJson(parent)}, {"problems", findings.AsJson()}});
    } else {
        findings.Print(run.Out());
        run.Out() << "nothing was changed\n";
    }
    return ExitStatus::Findings;
}

/// Whether the parent takes VLANs at all.
void CheckParent(CQuillet& session, const VlanParent& parent, Findings& findings) {
    const HRESULT result = session.ParentSupportingVLAN(ToWide(parent.path));
    if (result == CVLAN::ParentIsTeamMember) {
        findings.sentences.push_back(ToUtf8(CVLANTexts::ParentIsTeamMember()));
    } else if (result == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
        findings.sentences.push_back(parent.name + " cannot carry VLANs");
    } else {
        ThrowIfRefused(result, "find out whether " + parent.name + " carries VLANs");
    }
}

/// Checks one VLAN, tagged or not, beside those of its parent.
ULONGLONG CheckOne(CQuillet& session, const VlanParent& parent, const CVLAN& vlan) {
    const std::wstring path = ToWide(parent.path);
    if (vlan.m_lVLANNumber == 0) {
        return parent.isTeam ? session.CreateUnTaggedVLANTeamCheck(path, vlan)
                             : session.CreateUnTaggedVLANAdapterCheck(path, vlan);
    }
    return parent.isTeam ? session.CreateVLANTeamCheck(path, vlan)
                         : session.CreateVLANAdapterCheck(path, vlan);
}

/// A command about new VLANs of one parent.
class NewVlans : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("parent", m_parent, "An adapter or a team: its name, object ID or object path");
        syntax.Argument("id", m_id, "The VLAN ID, 1 to 4094; 0 for the untagged VLAN");
        syntax.Argument("name", m_name, "The VLAN's name");
        syntax.Text("--through", m_through, "ID",
                    "Several VLANs, up to this ID; each is called by the name and its ID");
    }

    ExitStatus Run(Invocation& run) final {
        CVLANs wanted = Wanted();
        CQuillet& session = run.Session();
        const VlanParent parent = FindVlanParent(session, m_parent);
        return End(run, parent, wanted, Check(session, parent, wanted));
    }

  private:
    /// What is done once it is known what stands in the way.
    virtual ExitStatus End(Invocation& run, const VlanParent& parent, CVLANs& wanted,
                           const Findings& findings) = 0;

    /// What the command line asks for.
    CVLANs Wanted() const {
        const LONG first = NumberIn(m_id);
        const LONG last = m_through ? NumberIn(*m_through) : first;
        constexpr LONG MOST = 4095;
        if (last < first || last - first >= MOST) {
            throw UsageError("--through: an ID from " + m_id + " on is needed");
        }
        CVLANs wanted;
        for (LONG number = first; number <= last; ++number) {
            auto vlan = std::make_unique<CVLAN>();
            vlan->m_lVLANNumber = number;
            vlan->m_wsVLANName = ToWide(m_through ? m_name + ' ' + std::to_string(number) : m_name);
            wanted.m_vecItems.push_back(vlan.get());
            static_cast<void>(vlan.release()); // the list owns it
        }
        return wanted;
    }

    static Findings Check(CQuillet& session, const VlanParent& parent, const CVLANs& wanted) {
        Findings findings;
        CheckParent(session, parent, findings);
        if (wanted.m_vecItems.size() == 1) {
            findings.Add(CheckOne(session, parent, *wanted.m_vecItems.front()));
        } else {
            const std::wstring path = ToWide(parent.path);
            findings.Add(parent.isTeam ? session.CreateMultipleVLANTeamCheck(path, wanted)
                                       : session.CreateMultipleVLANAdapterCheck(path, wanted));
        }
        return findings;
    }

    std::string m_parent;
    std::string m_id;
    std::string m_name;
    std::optional<std::string> m_through;
};

class CheckVlans final : public NewVlans {
    ExitStatus End(Invocation& run, const VlanParent& parent, CVLANs&, const Findings& findings) override {
        if (run.WantsJson()) {
            run.Print(Json{{"parent", AsJson(parent)}, {"problems", findings.AsJson()}});
        } else if (findings.sentences.empty()) {
            run.Out() << "no problems\n";
        } else {
            findings.Print(run.Out());
        }
        return findings.sentences.empty() ? ExitStatus::Done : ExitStatus::Findings;
    }
};

class AddVlans final : public NewVlans {
    ExitStatus End(Invocation& run, const VlanParent& parent, CVLANs& wanted,
                   const Findings& findings) override {
        if (!findings.sentences.empty()) {
            return EndUnchanged(run, parent, findings);
        }
        CQuillet& session = run.Session();
        const CVLANs asked = wanted; // adding fills the records with what the provider made of them
        ChangesInTurn adding = ChangeInTurn(run, wanted.m_vecItems.size(), [&](std::size_t i) {
            Add(session, parent, *wanted.m_vecItems[i]);
        });
        if (adding.refusal && IsThere(run, parent, *wanted.m_vecItems[adding.done])) {
            ++adding.done;
        }
        adding.Settle(run);
        return Answer(run, parent, asked, wanted, adding);
    }

    static void Add(CQuillet& session, const VlanParent& parent, CVLAN& vlan) {
        const std::wstring path = ToWide(parent.path);
        ThrowIfRefused(parent.isTeam ? session.AddVLANToTeam(path, vlan)
                                     : session.AddVLANToAdapter(path, vlan),
                       "add " + Called(vlan) + " to " + parent.name);
    }

    /// Whether a VLAN that was refused was made all the same, and could only not be read. Then reads it.
    static bool IsThere(Invocation& run, const VlanParent& parent, CVLAN& vlan) {
        try {
            const std::optional<CVLAN> there = LookForVlan(run.Session(), parent, vlan.m_lVLANNumber);
            vlan = there.value_or(vlan);
            return there.has_value();
        } catch (const Refusal& unknown) {
            run.FailAfterAnswer(unknown);
            return false;
        }
    }

    /// @param asked what was to be added; `made` holds what the provider told of it
    static ExitStatus Answer(Invocation& run, const VlanParent& parent, const CVLANs& asked,
                             const CVLANs& made, const ChangesInTurn& adding) {
        CVLANs there = made;
        const Verification taken = Verification::By([&](Verification& compare) {
            const CVLANs now = ReadVlans(run.Session(), parent);
            there.RemoveAll();
            for (std::size_t i = 0; i < made.m_vecItems.size(); ++i) {
                const CVLAN* vlan = i < adding.done ? VlanAt(made.m_vecItems[i]->m_wsVLANID, now) : nullptr;
                if (i < adding.done) {
                    CompareVlan(compare, *asked.m_vecItems[i], vlan);
                }
                there.m_vecItems.push_back(vlan == nullptr ? nullptr : new CVLAN(*vlan));
            }
        });
        Json added = Json::array();
        Json missing = Json::array();
        std::string lines;
        for (std::size_t i = 0; i < there.m_vecItems.size(); ++i) {
            if (i >= adding.done) {
                const CVLAN& vlan = *asked.m_vecItems[i];
                missing.push_back(Json{{"number", vlan.m_lVLANNumber},
                                       {"name", ToUtf8(vlan.m_wsVLANName)},
                                       {"code", adding.CodeOf(i)}});
                lines += Printable("not added: " + Called(vlan)) + '\n';
            } else if (const CVLAN* vlan = there.m_vecItems[i]) {
                added.push_back(AsJson(*vlan));
                lines += Printable("added " + Called(*vlan) + " to " + parent.name) + '\n';
            }
        }
        if (run.WantsJson()) {
            Json answer{{"parent", AsJson(parent)},
                        {"problems", Findings().AsJson()},
                        {"vlans", std::move(added)},
                        {"notAdded", std::move(missing)},
                        {"restartNeeded", RestartJson(adding.restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            if (taken.Took() != true) {
                lines += Printable(taken.Text({})) + '\n';
            }
            run.Out() << lines << RestartText(adding.restartNeeded) << '\n';
        }
        taken.End("add VLANs to " + parent.name);
        return ExitStatus::Done;
    }
};

/// A command about a VLAN that is there, by its parent and its ID.
class ExistingVlan : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("parent", m_parent, "An adapter or a team: its name, object ID or object path");
        syntax.Argument("vlan", m_vlan,
                        "The VLAN: its ID (0 for the untagged one), name, caption, object ID or object path");
    }
    ExitStatus Run(Invocation& run) final {
        CQuillet& session = run.Session();
        const VlanParent parent = FindVlanParent(session, m_parent);
        return RunFor(parent, FindVlan(session, parent, m_vlan), run);
    }

  private:
    virtual ExitStatus RunFor(const VlanParent& parent, const CVLAN& vlan, Invocation& run) = 0;

    std::string m_parent;
    std::string m_vlan;
};

class ModifyVlan final : public ExistingVlan {
  public:
    void Declare(Syntax& syntax) override {
        ExistingVlan::Declare(syntax);
        syntax.Text("--name", m_name, "NAME", "Its new name");
        syntax.Text("--id", m_newId, "ID", "Its new VLAN ID");
    }

  private:
    ExitStatus RunFor(const VlanParent& parent, const CVLAN& vlan, Invocation& run) override {
        if (!m_name && !m_newId) {
            throw UsageError("a new name or a new ID is needed: --name, --id");
        }
        CVLAN changed = vlan;
        changed.m_wsVLANName = m_name ? ToWide(*m_name) : vlan.m_wsVLANName;
        changed.m_lVLANNumber = m_newId ? NumberIn(*m_newId) : vlan.m_lVLANNumber;
        CQuillet& session = run.Session();
        Findings findings;
        // The untagged VLAN under a new name is in nobody's way: it would only meet itself.
        if (changed.m_lVLANNumber != 0 || vlan.m_lVLANNumber != 0) {
            session.SetVlanIsModify(true);
            findings.Add(CheckOne(session, parent, changed));
            session.SetVlanIsModify(false);
        }
        if (!findings.sentences.empty()) {
            return EndUnchanged(run, parent, findings);
        }
        const std::string asked = "change " + Called(vlan) + " of " + parent.name;
        ClientSet set(run);
        ThrowIfRefused(session.ModifyVLANProperty(vlan.m_wsVLANID, changed), asked);
        const std::optional<bool> restartNeeded = set.Close();
        // As it is now, for the provider may have taken it differently.
        CVLAN now = changed;
        const Verification taken = Verification::By([&](Verification& compare) {
            CVLAN read;
            ThrowIfRefused(session.GetVLANInfo(vlan.m_wsVLANID, read), "read " + Called(changed));
            now = read;
            CompareVlan(compare, changed, &now);
        });
        if (run.WantsJson()) {
            Json answer{{"parent", AsJson(parent)},
                        {"problems", findings.AsJson()},
                        {"vlan", AsJson(now)},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(taken.Text("changed " + Called(vlan) + " of " + parent.name + " to " +
                                              Called(now)))
                      << '\n'
                      << RestartText(restartNeeded) << '\n';
        }
        taken.End(asked);
        return ExitStatus::Done;
    }

    std::optional<std::string> m_name;
    std::optional<std::string> m_newId;
};

class RemoveVlan final : public ExistingVlan {
    ExitStatus RunFor(const VlanParent& parent, const CVLAN& vlan, Invocation& run) override {
        if (!run.ConfirmChange("Remove " + Called(vlan) + " from " + parent.name + "?")) {
            return ExitStatus::Done;
        }
        CQuillet& session = run.Session();
        const std::string asked = "remove " + Called(vlan) + " from " + parent.name;
        ClientSet set(run);
        ThrowIfRefused(session.RemoveVLAN(vlan.m_wsVLANID), asked);
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CVLANs vlans = ReadVlans(session, parent);
            if (const CVLAN* now = VlanAt(vlan.m_wsVLANID, vlans)) {
                compare.Add("number", Json(), now->m_lVLANNumber, Called(*now) + " is still there");
            }
        });
        if (run.WantsJson()) {
            Json answer{{"parent", AsJson(parent)},
                        {"vlan", AsJson(vlan)},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(taken.Text("removed " + Called(vlan) + " from " + parent.name)) << '\n'
                      << RestartText(restartNeeded) << '\n';
        }
        taken.End(asked);
        return ExitStatus::Done;
    }
};

} // namespace

void AddVlanCommands(CommandTree& tree) {
    tree.AddNoun("vlan", "The VLANs of adapters and teams")
        .Query("list", "List the VLANs", std::make_unique<ListVlans>())
        .Query("check", "Say what stands in the way of new VLANs", std::make_unique<CheckVlans>())
        .Verb("add", "Add VLANs, unless something stands in the way", std::make_unique<AddVlans>())
        .Verb("modify", "Change the name or the ID of a VLAN, unless something stands in the way",
              std::make_unique<ModifyVlan>())
        .Verb("remove", "Remove a VLAN", std::make_unique<RemoveVlan>());
}

} // namespace quilletctl
