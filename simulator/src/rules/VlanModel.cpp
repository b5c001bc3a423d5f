// The VLANs of a machine: what may stand beside what, and what comes and goes with a VLAN.
#include "rules/VlanModel.h"

#include "repository/StoreQueries.h"

#include <quillet-wmi/Mof.h>
#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr std::int64_t kLastNumber = 4094;
constexpr std::size_t kMostVlans = 64;
constexpr std::int64_t kEnabled = 3;

/// The settings of a new VLAN, as the shipped machines have them. The untagged VLAN has no priority: its
/// frames carry none to set.
std::string SettingsOf(const std::string& vlanId, bool isTagged) {
    const std::string owner =
        "ParentId = \"" + vlanId + "\"; ParentType = \"VLAN\"; Writable = TRUE; Grouped = FALSE; ";
    std::string mof = "instance of Zorel_VLANSettingEnum { " + owner +
                      R"(ExposeLevel = 1; Caption = "*JumboPacket"; Description = "Jumbo Packet";
                         MiniHelp = "Sets the largest frame of the VLAN."; CurrentValue = 1514; DefaultValue = 1514;
                         DescriptionMap = {"Disabled", "4088 Bytes", "9014 Bytes"};
                         PossibleValues = {"1514", "4088", "9014"}; };)";
    if (isTagged) {
        mof += "instance of Zorel_VLANSettingInt { " + owner +
               R"(ExposeLevel = 1; Caption = "VLANPriority"; Description = "Default Priority";
                  MiniHelp = "Sets the priority of frames that carry none."; CurrentValue = 0; DefaultValue = 0;
                  Max = 7; Min = 0; Step = 1; Base = 10; Scale = 1; };)";
    }
    return mof + "instance of Zorel_VLANSettingString { " + owner +
           R"(ExposeLevel = 2; Caption = "NetworkAddress"; Description = "Locally Administered Address";
              MiniHelp = "Replaces the VLAN's address."; CurrentValue = ""; DefaultValue = "";
              MaxLength = 12; };)"
           "instance of Zorel_VLANSettingSlider { " +
           owner +
           R"(ExposeLevel = 2; Caption = "TrafficShare"; Description = "Traffic Share";
              MiniHelp = "Sets how many percent of the link the VLAN may take."; CurrentValue = 100;
              DefaultValue = 100; PossibleValues = {"10", "25", "50", "75", "100"};
              FirstLabel = "10 %"; LastLabel = "100 %"; };)"
           "instance of Zorel_VLANSettingMultiSelection { " +
           owner +
           R"(ExposeLevel = 2; Caption = "CarriedProtocols"; Description = "Carried Protocols";
              MiniHelp = "Sets which protocols the VLAN carries."; CurrentValue = 3; DefaultValue = 3;
              DescriptionMap = {"IPv4", "IPv6", "FCoE"}; PossibleValues = {"1", "2", "4"}; };)"
           "instance of Zorel_VLANSettingMultiString { " +
           owner +
           R"(ExposeLevel = 2; Caption = "MulticastGroups"; Description = "Multicast Groups";
              MiniHelp = "Groups that are received whether or not anyone joined them.";
              CurrentValues = {"01-00-5E-00-00-01", "01-00-5E-00-00-FB"}; DefaultValue = ""; MaxLength = 17; };)";
}

HRESULT DeletePart(Repository& store, const Instance& instance) {
    const auto path = ObjectPath::Parse(RelativePath(instance));
    return path ? store.DeleteInstance(*path) : HRESULT(WBEM_E_INVALID_OBJECT_PATH);
}

void RemoveSettings(Repository& store, const std::wstring& vlanId) {
    for (const auto& setting : InstancesWhere(store, L"Zorel_VLANSetting", L"ParentId", vlanId)) {
        DeletePart(store, *setting);
    }
}

} // namespace

std::vector<InstancePtr> VlansOf(const Repository& store, const std::wstring& parentId) {
    return InstancesWhere(store, L"Zorel_VLAN", L"ParentID", parentId);
}

HRESULT MayHaveVlan(const Repository& store, const std::wstring& parentId, std::int64_t number,
                    const std::wstring& name, const std::wstring& self) {
    if (number < 0 || number > kLastNumber) {
        return HRESULT(WBEM_E_VALUE_OUT_OF_RANGE);
    }
    if (name.empty()) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const auto siblings = VlansOf(store, parentId);
    if (self.empty() && siblings.size() >= kMostVlans) {
        return HRESULT(WBEM_E_QUOTA_VIOLATION);
    }
    const bool isTaken = std::any_of(siblings.begin(), siblings.end(), [&](const InstancePtr& other) {
        return !SameName(other->Text(L"Name"), self) &&
               (other->Number(L"VLANNumber") == number || CompareFolded(other->Text(L"VLANName"), name) == 0);
    });
    return isTaken ? HRESULT(WBEM_E_ALREADY_EXISTS) : S_OK;
}

std::wstring VlanCaption(const Repository& store, const std::wstring& parentId, const std::wstring& name) {
    std::wstring own = L"VLAN : " + name;
    for (const auto& path : {PathByKey(L"Zorel_TeamOfAdapters", L"Name", parentId),
                             PathByKey(L"Zorel_PhysicalEthernetAdapter", L"DeviceID", parentId)}) {
        const auto parent = store.FindInstance(path);
        if (parent != nullptr && !parent->Text(L"Caption").empty()) {
            return parent->Text(L"Caption") + L" - " + own;
        }
    }
    return own;
}

HRESULT AddVlan(Repository& store, const std::wstring& parentId, std::int64_t number,
                const std::wstring& name, std::wstring& path) {
    const auto id = NewObjectId(store, L"Zorel_VLAN", L"Name", parentId + L'/' + std::to_wstring(number));
    Instance vlan(store.FindClass(L"Zorel_VLAN"));
    vlan.Set(L"Name", Value::Text(id));
    vlan.Set(L"Caption", Value::Text(VlanCaption(store, parentId, name)));
    vlan.Set(L"ParentID", Value::Text(parentId));
    vlan.Set(L"VLANName", Value::Text(name));
    vlan.Set(L"VLANNumber", Value::Signed(number));
    vlan.Set(L"StatusInfo", Value::Signed(kEnabled));
    if (const HRESULT put = store.PutInstance(vlan, WriteMode::CreateOnly); FAILED(put)) {
        return put;
    }
    // A machine file may hold settings of a VLAN that it does not have.
    RemoveSettings(store, id);
    CompileMof(store, SettingsOf(ToUtf8(id), number != 0), "settings of a VLAN");
    path = store.FullPath(vlan);
    return S_OK;
}

HRESULT RemoveVlan(Repository& store, const Instance& vlan) {
    RemoveSettings(store, vlan.Text(L"Name"));
    return DeletePart(store, vlan);
}

void RemoveVlansOf(Repository& store, const std::wstring& parentId) {
    for (const auto& vlan : VlansOf(store, parentId)) {
        RemoveVlan(store, *vlan);
    }
}

} // namespace quillet::simulator
