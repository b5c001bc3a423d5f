// What stands in the way of a change to VLANs.
#pragma once

#include "app/Invocation.h"
#include "names/VlanParent.h"
#include "texts/Json.h"

#include <quillet/client/Session.h>

#include <ostream>
#include <string>
#include <vector>

namespace quilletctl {

/// A VLAN ID as it was typed; whether it is in range is for the checks to say. Throws UsageError.
std::int32_t VlanNumberIn(const std::string& text);

/// What was found, each as a sentence.
struct VlanFindings {
    quillet::Flags<quillet::VlanProblem> problems;
    std::vector<std::string> sentences;

    void Add(quillet::Flags<quillet::VlanProblem> found);
    Json AsJson() const;
    void Print(std::ostream& out) const;
};

/// Whether the parent takes VLANs at all. Throws Refusal.
void CheckParent(quillet::Session& session, const VlanParent& parent, VlanFindings& findings);

/// The end of a command that changes nothing because of what it found.
ExitStatus EndUnchanged(Invocation& run, const VlanParent& parent, const VlanFindings& findings);

} // namespace quilletctl
