// VLANs as people and programs read them, and whether they are as they were asked for.
#pragma once

#include "changes/Verification.h"
#include "names/VlanParent.h"

#include <string>

namespace quilletctl {

std::string StatusText(const quillet::Vlan& vlan);
Json AsJson(const VlanParent& parent);
Json AsJson(const quillet::Vlan& vlan);

/// The VLAN of a path among others; null where there is none.
const quillet::Vlan* VlanAt(const quillet::VlanId& id, const std::vector<quillet::Vlan>& vlans);
/// Holds a VLAN against what is there; null where nothing is.
void CompareVlan(Verification& taken, const quillet::NewVlan& wanted, const quillet::Vlan* now);

} // namespace quilletctl
