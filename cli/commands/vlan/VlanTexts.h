// VLANs as people and programs read them, and whether they are as they were asked for.
#pragma once

#include "changes/Verification.h"
#include "names/VlanParent.h"

#include <string>

namespace quilletctl {

std::string StatusText(const CVLAN& vlan);
Json AsJson(const VlanParent& parent);
Json AsJson(const CVLAN& vlan);

/// The VLAN of a path among others; null where there is none.
const CVLAN* VlanAt(const std::wstring& path, const CVLANs& vlans);
/// Holds a VLAN against what is there; null where nothing is.
void CompareVlan(Verification& taken, const CVLAN& wanted, const CVLAN* now);

} // namespace quilletctl
