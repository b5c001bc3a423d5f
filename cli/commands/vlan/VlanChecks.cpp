// Asking the checks, and answering with what they found.
#include "commands/vlan/VlanChecks.h"

#include "commands/vlan/VlanTexts.h"
#include "ending/Failure.h"
#include "texts/BitMask.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

std::int32_t VlanNumberIn(const std::string& text) {
    const std::optional<std::int32_t> number = NumberIn(text);
    if (!number) {
        throw UsageError("\"" + text +
                         "\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN");
    }
    return *number;
}

void VlanFindings::Add(quillet::Flags<quillet::VlanProblem> found) {
    problems |= found;
    for (const std::wstring& sentence : quillet::Texts(found)) {
        sentences.push_back(ToUtf8(sentence));
    }
}

Json VlanFindings::AsJson() const {
    return Json{{"mask", HexMask(problems.Mask())}, {"texts", sentences}};
}

void VlanFindings::Print(std::ostream& out) const {
    for (const std::string& sentence : sentences) {
        out << Printable(sentence) << '\n';
    }
}

void CheckParent(quillet::Session& session, const VlanParent& parent, VlanFindings& findings) {
    const quillet::VlanSupport support = Attempt("find out whether " + parent.name + " carries VLANs",
                                                 [&] { return session.SupportsVlans(parent.id); });
    if (support == quillet::VlanSupport::TeamMember) {
        findings.sentences.push_back(ToUtf8(quillet::Text(support)));
    } else if (support == quillet::VlanSupport::None) {
        findings.sentences.push_back(parent.name + " cannot carry VLANs");
    }
}

ExitStatus EndUnchanged(Invocation& run, const VlanParent& parent, const VlanFindings& findings) {
    if (run.WantsJson()) {
        run.Print(Json{{"parent", AsJson(parent)}, {"problems", findings.AsJson()}});
    } else {
        findings.Print(run.Out());
        run.Out() << "nothing was changed\n";
    }
    return ExitStatus::Findings;
}

} // namespace quilletctl
