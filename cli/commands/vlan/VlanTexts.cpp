// VLANs in words, in JSON, and held against what was asked for.
#include "commands/vlan/VlanTexts.h"

#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

std::string StatusText(const quillet::Vlan& vlan) {
    return InWords(vlan.status);
}

Json AsJson(const VlanParent& parent) {
    return Json{{"kind", parent.IsTeam() ? "team" : "adapter"},
                {"path", parent.path},
                {"objectId", TextOrNull(parent.objectId)},
                {"name", parent.name}};
}

Json AsJson(const quillet::Vlan& vlan) {
    return Json{{"path", PathOf(vlan.id)},         {"objectId", ToUtf8(vlan.objectId)},
                {"number", vlan.number},           {"name", ToUtf8(vlan.name)},
                {"caption", ToUtf8(vlan.caption)}, {"status", Coded(vlan.status)}};
}

void CompareVlan(Verification& taken, const quillet::NewVlan& wanted, const quillet::Vlan* now) {
    if (now == nullptr) {
        taken.Add("number", wanted.id, Json(), Called(wanted) + " is not there");
        return;
    }
    const auto fields = [](const quillet::NewVlan& vlan) {
        return std::vector<Field>{{"number", "the VLAN ID", vlan.id},
                                  {"name", "the name of VLAN " + std::to_string(vlan.id), ToUtf8(vlan.name)}};
    };
    taken.Compare(fields(wanted), fields({now->number, now->name}));
}

const quillet::Vlan* VlanAt(const quillet::VlanId& id, const std::vector<quillet::Vlan>& vlans) {
    const auto found = std::find_if(vlans.begin(), vlans.end(),
                                    [&](const auto& each) { return NameTheSameObject(each.id, id); });
    return found == vlans.end() ? nullptr : &*found;
}

} // namespace quilletctl
