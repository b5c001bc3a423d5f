// Asking the checks, and answering with what they found.
#include "commands/vlan/VlanChecks.h"

#include "commands/vlan/VlanTexts.h"
#include "ending/Failure.h"
#include "texts/BitMask.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <charconv>

namespace quilletctl {

LONG VlanNumberIn(const std::string& text) {
    LONG number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        throw UsageError("\"" + text +
                         "\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN");
    }
    return number;
}

void VlanFindings::Add(ULONGLONG problems) {
    mask |= problems;
    for (const std::wstring& sentence : CVLANTexts::Problems(problems)) {
        sentences.push_back(ToUtf8(sentence));
    }
}

Json VlanFindings::AsJson() const {
    return Json{{"mask", HexMask(mask)}, {"texts", sentences}};
}

void VlanFindings::Print(std::ostream& out) const {
    for (const std::string& sentence : sentences) {
        out << Printable(sentence) << '\n';
    }
}

void CheckParent(CQuillet& session, const VlanParent& parent, VlanFindings& findings) {
    const HRESULT result = session.ParentSupportingVLAN(ToWide(parent.path));
    if (result == CVLAN::ParentIsTeamMember) {
        findings.sentences.push_back(ToUtf8(CVLANTexts::ParentIsTeamMember()));
    } else if (result == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
        findings.sentences.push_back(parent.name + " cannot carry VLANs");
    } else {
        ThrowIfRefused(result, "find out whether " + parent.name + " carries VLANs");
    }
}

ULONGLONG CheckVlan(CQuillet& session, const VlanParent& parent, const CVLAN& vlan) {
    const std::wstring path = ToWide(parent.path);
    if (vlan.m_lVLANNumber == 0) {
        return parent.isTeam ? session.CreateUnTaggedVLANTeamCheck(path, vlan)
                             : session.CreateUnTaggedVLANAdapterCheck(path, vlan);
    }
    return parent.isTeam ? session.CreateVLANTeamCheck(path, vlan)
                         : session.CreateVLANAdapterCheck(path, vlan);
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
