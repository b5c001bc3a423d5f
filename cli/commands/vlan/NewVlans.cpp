// quilletctl vlan check, add: VLANs that are yet to be.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "changes/Verification.h"
#include "commands/vlan/VlanChecks.h"
#include "commands/vlan/VlanTexts.h"
#include "commands/vlan/VlanVerbs.h"
#include "names/VlanParent.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

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
                           const VlanFindings& findings) = 0;

    /// What the command line asks for.
    CVLANs Wanted() const {
        const LONG first = VlanNumberIn(m_id);
        const LONG last = m_through ? VlanNumberIn(*m_through) : first;
        constexpr LONG kMost = 4095;
        if (last < first || last - first >= kMost) {
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

    static VlanFindings Check(CQuillet& session, const VlanParent& parent, const CVLANs& wanted) {
        VlanFindings findings;
        CheckParent(session, parent, findings);
        if (wanted.m_vecItems.size() == 1) {
            findings.Add(CheckVlan(session, parent, *wanted.m_vecItems.front()));
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
    ExitStatus End(Invocation& run, const VlanParent& parent, CVLANs&,
                   const VlanFindings& findings) override {
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
                   const VlanFindings& findings) override {
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
                        {"problems", VlanFindings().AsJson()},
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

} // namespace

void AddNewVlans(CommandTree::Noun& vlan) {
    vlan.Query("check", "Say what stands in the way of new VLANs", std::make_unique<CheckVlans>())
        .Verb("add", "Add VLANs, unless something stands in the way", std::make_unique<AddVlans>());
}

} // namespace quilletctl
