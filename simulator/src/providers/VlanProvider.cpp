// VLANs and the services that make them.
#include "providers/ClassProvider.h"
#include "rules/SettingValidation.h"
#include "repository/StoreQueries.h"
#include "rules/VlanModel.h"

namespace quillet::simulator {

namespace {

class VlanServiceProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        return SameName(call.method.name, L"CreateVLAN") ? CreateVlan(call) : ClassProvider::ExecMethod(call);
    }

  private:
    static HRESULT CreateVlan(MethodCall& call) {
        if (call.instance == nullptr) {
            // The class has no parent to put a VLAN on.
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
            return allowed;
        }
        auto& store = call.request.Target().Store();
        const auto parentId = call.instance->Text(L"Name");
        const auto adapter = PathByKey(L"Zorel_PhysicalEthernetAdapter", L"DeviceID", parentId);
        if (!ReferencesTo(store, adapter, L"Zorel_TeamedMemberAdapter").empty()) {
            // A member's frames are its team's, and so are the VLANs.
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const auto number = call.in.Number(L"VLANNumber", -1);
        const auto name = call.in.Text(L"Name");
        if (const HRESULT may = MayHaveVlan(store, parentId, number, name, {}); FAILED(may)) {
            return may;
        }
        std::wstring path;
        if (const HRESULT added = AddVlan(store, parentId, number, name, path); FAILED(added)) {
            return added;
        }
        call.request.Changed(*store.FindClass(L"Zorel_VLAN"));
        call.out.Set(L"VLANPath", Value::Text(path));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }
};

class VlanProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        return SameName(call.method.name, L"ValidateSetting") ? ValidateSettingOnVlan(call)
                                                              : ClassProvider::ExecMethod(call);
    }

    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) override {
        auto& store = request.Target().Store();
        const auto current = store.FindInstance(RelativePath(instance));
        if (current == nullptr) {
            // Only its parent's service makes a VLAN.
            return HRESULT(mode == WriteMode::UpdateOnly ? WBEM_E_NOT_FOUND : WBEM_E_PROVIDER_NOT_CAPABLE);
        }
        if (mode == WriteMode::CreateOnly) {
            return HRESULT(WBEM_E_ALREADY_EXISTS);
        }
        for (const auto& property : instance.definition->properties) {
            if (!property.qualifiers.Has(L"Write") &&
                !(*instance.Find(property.name) == *current->Find(property.name))) {
                return HRESULT(WBEM_E_READ_ONLY);
            }
        }
        const auto parentId = current->Text(L"ParentID");
        const auto name = instance.Text(L"VLANName");
        if (const HRESULT may = MayHaveVlan(store, parentId, instance.Number(L"VLANNumber", -1), name,
                                            current->Text(L"Name"));
            FAILED(may)) {
            return may;
        }
        Instance changed = instance;
        changed.Set(L"Caption", Value::Text(VlanCaption(store, parentId, name)));
        return store.PutInstance(std::move(changed), WriteMode::UpdateOnly);
    }

    HRESULT DeleteInstance(Request& request, const ObjectPath&, const Instance& instance) override {
        return RemoveVlan(request.Target().Store(), instance);
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeVlanServiceProvider() {
    return std::make_unique<VlanServiceProvider>();
}

std::unique_ptr<ClassProvider> MakeVlanProvider() {
    return std::make_unique<VlanProvider>();
}

} // namespace quillet::simulator
