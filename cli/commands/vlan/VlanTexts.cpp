// VLANs in words, in JSON, and held against what was asked for.
#include "commands/vlan/VlanTexts.h"

#include "names/ObjectPath.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <quillet/VLANTexts.h>

#include <algorithm>

namespace quilletctl {

std::string StatusText(const CVLAN& vlan) {
    const std::wstring text = CVLANTexts::Status(vlan.m_eStatus);
    return text.empty() ? "code " + std::to_string(vlan.m_eStatus) : ToUtf8(text);
}

Json AsJson(const VlanParent& parent) {
    return Json{{"kind", parent.isTeam ? "team" : "adapter"},
                {"path", parent.path},
                {"objectId", TextOrNull(parent.objectId)},
                {"name", parent.name}};
}

Json AsJson(const CVLAN& vlan) {
    return Json{{"path", ToUtf8(vlan.m_wsVLANID)},     {"objectId", ToUtf8(vlan.m_wsName)},
                {"number", vlan.m_lVLANNumber},        {"name", ToUtf8(vlan.m_wsVLANName)},
                {"caption", ToUtf8(vlan.m_wsCaption)}, {"status", Coded(vlan.m_eStatus, StatusText(vlan))}};
}

void CompareVlan(Verification& taken, const CVLAN& wanted, const CVLAN* now) {
    if (now == nullptr) {
        taken.Add("number", wanted.m_lVLANNumber, Json(), Called(wanted) + " is not there");
        return;
    }
    const auto fields = [](const CVLAN& vlan) {
        return std::vector<Field>{
            {"number", "the VLAN ID", vlan.m_lVLANNumber},
            {"name", "the name of VLAN " + std::to_string(vlan.m_lVLANNumber), ToUtf8(vlan.m_wsVLANName)}};
    };
    taken.Compare(fields(wanted), fields(*now));
}

const CVLAN* VlanAt(const std::wstring& path, const CVLANs& vlans) {
    const auto found = std::find_if(vlans.m_vecItems.begin(), vlans.m_vecItems.end(), [&](const CVLAN* each) {
        return NameTheSameObject(ToUtf8(each->m_wsVLANID), ToUtf8(path));
    });
    return found == vlans.m_vecItems.end() ? nullptr : *found;
}

} // namespace quilletctl
