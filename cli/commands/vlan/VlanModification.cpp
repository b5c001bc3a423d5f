// quilletctl vlan modify, remove: a VLAN that is there.
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

/// A command about a VLAN that is there, by its parent and its ID.
class ExistingVlan : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("parent", m_parent, "An adapter or a team: its name, object ID or object path");
        syntax.Argument("vlan", m_vlan,
                        "The VLAN: its ID (0 for the untagged one), name, caption, object ID or object path");
    }
    ExitStatus Run(Invocation& run) final {
        quillet::Session& session = run.Session();
        const VlanParent parent = FindVlanParent(session, m_parent);
        return RunFor(parent, FindVlan(session, parent, m_vlan), run);
    }

  private:
    virtual ExitStatus RunFor(const VlanParent& parent, const quillet::Vlan& vlan, Invocation& run) = 0;

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
    ExitStatus RunFor(const VlanParent& parent, const quillet::Vlan& vlan, Invocation& run) override {
        if (!m_name && !m_newId) {
            throw UsageError("a new name or a new ID is needed: --name, --id");
        }
        const quillet::NewVlan wanted{m_newId ? VlanNumberIn(*m_newId) : vlan.number,
                                      m_name ? ToWide(*m_name) : vlan.name};
        quillet::Session& session = run.Session();
        VlanFindings findings;
        // The untagged VLAN under a new name is in nobody's way: it would only meet itself.
        if (wanted.id != 0 || vlan.number != 0) {
            findings.Add(Attempt("check " + Called(wanted),
                                 [&] { return session.CheckVlanChange(parent.id, vlan, wanted); }));
        }
        if (!findings.sentences.empty()) {
            return EndUnchanged(run, parent, findings);
        }
        const std::string asked = "change " + Called(vlan) + " of " + parent.name;
        ClientSet set(run, {asked + " to " + Called(wanted)});
        Attempt(asked, [&] { session.ModifyVlan(vlan.id, wanted); });
        const std::optional<bool> restartNeeded = set.Close();
        // As it is now, for the provider may have taken it differently.
        quillet::Vlan now = vlan;
        now.number = wanted.id;
        now.name = wanted.name;
        const Verification taken = Verification::By([&](Verification& compare) {
            now = Attempt("read " + Called(wanted), [&] { return session.ReadVlan(vlan.id); });
            CompareVlan(compare, wanted, &now);
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
    ExitStatus RunFor(const VlanParent& parent, const quillet::Vlan& vlan, Invocation& run) override {
        if (!run.ConfirmChange("Remove " + Called(vlan) + " from " + parent.name + "?")) {
            return ExitStatus::Done;
        }
        quillet::Session& session = run.Session();
        const std::string asked = "remove " + Called(vlan) + " from " + parent.name;
        ClientSet set(run, {asked});
        Attempt(asked, [&] { session.RemoveVlan(vlan.id); });
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const std::vector<quillet::Vlan> vlans = ReadVlans(session, parent);
            if (const quillet::Vlan* now = VlanAt(vlan.id, vlans)) {
                compare.Add("number", Json(), now->number, Called(*now) + " is still there");
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

void AddVlanModification(CommandTree::Noun& vlan) {
    vlan.Verb("modify", "Change the name or the ID of a VLAN, unless something stands in the way",
              std::make_unique<ModifyVlan>())
        .Verb("remove", "Remove a VLAN", std::make_unique<RemoveVlan>());
}

} // namespace quilletctl
