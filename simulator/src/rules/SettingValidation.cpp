// "ValidateSetting" of teams and VLANs.
#include "rules/SettingValidation.h"

#include "rules/SettingRules.h"

namespace quillet::simulator {

namespace {

/// What speaks against the value on its own.
std::uint64_t Objections(const InstancePtr& setting, std::int64_t value) {
    if (setting == nullptr) {
        return kObjectionNoSuchSetting;
    }
    return (setting->Number(L"Writable") == 0 ? kObjectionReadOnly : 0) |
           (MayTake(*setting, value) ? 0 : kObjectionValue);
}

void Answer(MethodCall& call, std::uint64_t objections) {
    call.Answer(L"ValResult", static_cast<std::int64_t>(objections));
    call.Answer(L"ReturnValue", 0);
}

} // namespace

HRESULT ValidateSettingOnTeam(MethodCall& call) {
    const auto& store = call.request.Target().Store();
    const auto caption = call.in.Text(L"SettingName");
    const auto value = call.in.Number(L"Value");
    const auto asked = call.in.Text(L"Adapter");
    std::uint64_t objections = 0;
    bool isMember = false;
    for (const auto& membership : store.Instances(L"Zorel_TeamedMemberAdapter")) {
        const auto adapter = store.FindInstance(membership->Text(L"PartComponent"));
        if (adapter == nullptr ||
            !store.SameObject(membership->Text(L"GroupComponent"), RelativePath(*call.instance))) {
            continue;
        }
        const auto setting = FindSetting(store, L"Zorel_AdapterSetting", adapter->Text(L"DeviceID"), caption);
        if (store.SameObject(membership->Text(L"PartComponent"), asked)) {
            isMember = true;
            objections |= Objections(setting, value);
        } else if (setting == nullptr) {
            objections |= kObjectionMemberLacks;
        } else {
            objections |= (MayTake(*setting, value) ? 0 : kObjectionMemberValue) |
                          (setting->Number(L"CurrentValue", value) == value ? 0 : kObjectionMemberDiffers);
        }
    }
    if (!isMember) {
        return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }
    Answer(call, objections);
    return S_OK;
}

HRESULT ValidateSettingOnVlan(MethodCall& call) {
    if (call.instance == nullptr) {
        return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }
    const auto& store = call.request.Target().Store();
    const auto caption = call.in.Text(L"SettingName");
    const auto value = call.in.Number(L"Value");
    auto objections =
        Objections(FindSetting(store, L"Zorel_VLANSetting", call.instance->Text(L"Name"), caption), value);
    // A VLAN cannot carry larger frames than the team or adapter that carries it.
    if (SameName(caption, L"*JumboPacket")) {
        for (const auto* owners : {L"Zorel_TeamSetting", L"Zorel_AdapterSetting"}) {
            const auto parent = FindSetting(store, owners, call.instance->Text(L"ParentID"), caption);
            if (parent != nullptr && value > parent->Number(L"CurrentValue")) {
                objections |= kObjectionParentTooSmall;
            }
        }
    }
    Answer(call, objections);
    return S_OK;
}

} // namespace quillet::simulator
