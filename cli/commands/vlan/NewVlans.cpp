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
        const std::vector<quillet::NewVlan> wanted = Wanted();
        quillet::Session& session = run.Session();
        const VlanParent parent = FindVlanParent(session, m_parent);
        return End(run, parent, wanted, Check(session, parent, wanted));
    }

  private:
    /// What is done once it is known what stands in the way.
    virtual ExitStatus End(Invocation& run, const VlanParent& parent,
                           const std::vector<quillet::NewVlan>& wanted, const VlanFindings& findings) = 0;

    /// What the command line asks for.
    std::vector<quillet::NewVlan> Wanted() const {
        const std::int32_t first = VlanNumberIn(m_id);
        const std::int32_t last = m_through ? VlanNumberIn(*m_through) : first;
        constexpr std::int32_t kMost = 4095;
        if (last < first || last - first >= kMost) {
            throw UsageError("--through: an ID from " + m_id + " on is needed");
        }
        std::vector<quillet::NewVlan> wanted;
        for (std::int32_t number = first; number <= last; ++number) {
            wanted.push_back({number, ToWide(m_through ? m_name + ' ' + std::to_string(number) : m_name)});
        }
        return wanted;
    }

    static VlanFindings Check(quillet::Session& session, const VlanParent& parent,
                              const std::vector<quillet::NewVlan>& wanted) {
        VlanFindings findings;
        CheckParent(session, parent, findings);
        findings.Add(Attempt("check the VLANs of " + parent.name, [&] {
            return wanted.size() == 1 ? session.CheckVlan(parent.id, wanted.front())
                                      : session.CheckVlans(parent.id, wanted);
        }));
        return findings;
    }

    std::string m_parent;
    std::string m_id;
    std::string m_name;
    std::optional<std::string> m_through;
};

class CheckVlans final : public NewVlans {
    ExitStatus End(Invocation& run, const VlanParent& parent, const std::vector<quillet::NewVlan>&,
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
    ExitStatus End(Invocation& run, const VlanParent& parent, const std::vector<quillet::NewVlan>& wanted,
                   const VlanFindings& findings) override {
        if (!findings.sentences.empty()) {
            return EndUnchanged(run, parent, findings);
        }
        std::vector<quillet::Vlan> made;
        std::vector<std::string> asked;
        asked.reserve(wanted.size());
        for (const quillet::NewVlan& vlan : wanted) {
            asked.push_back("add " + Called(vlan) + " to " + parent.name);
        }
        ChangesInTurn adding = ChangeInTurn(
            run, asked, [&](std::size_t i) { made.push_back(run.Session().AddVlan(parent.id, wanted[i])); });
        if (adding.refusal) {
            if (const auto there = Look(run, parent, wanted[adding.done].id)) {
                made.push_back(*there);
                ++adding.done;
            }
        }
        adding.Settle(run);
        return Answer(run, parent, wanted, made, adding);
    }

    /// A VLAN that was refused, where it was made all the same, and could only not be read.
    static std::optional<quillet::Vlan> Look(Invocation& run, const VlanParent& parent, std::int32_t number) {
        try {
            return LookForVlan(run.Session(), parent, number);
        } catch (const Refusal& unknown) {
            run.FailAfterAnswer(unknown);
            return std::nullopt;
        }
    }

    /// @param wanted what was to be added; `made` holds what the provider told of the first ones, which were
    static ExitStatus Answer(Invocation& run, const VlanParent& parent,
                             const std::vector<quillet::NewVlan>& wanted,
                             const std::vector<quillet::Vlan>& made, const ChangesInTurn& adding) {
        std::vector<quillet::Vlan> there = made;
        const Verification taken = Verification::By([&](Verification& compare) {
            const std::vector<quillet::Vlan> now = ReadVlans(run.Session(), parent);
            there.clear();
            for (std::size_t i = 0; i < made.size(); ++i) {
                const quillet::Vlan* vlan = VlanAt(made[i].id, now);
                CompareVlan(compare, wanted[i], vlan);
                if (vlan != nullptr) {
                    there.push_back(*vlan);
                }
            }
        });
        Json added = Json::array();
        Json missing = Json::array();
        std::string lines;
        for (const quillet::Vlan& vlan : there) {
            added.push_back(AsJson(vlan));
            lines += Printable("added " + Called(vlan) + " to " + parent.name) + '\n';
        }
        for (std::size_t i = adding.done; i < wanted.size(); ++i) {
            missing.push_back(
                Json{{"number", wanted[i].id}, {"name", ToUtf8(wanted[i].name)}, {"code", adding.CodeOf(i)}});
            lines += Printable("not added: " + Called(wanted[i])) + '\n';
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
