// Advanced settings: a write is checked, stays written, and may leave a follow-up action.
#include "providers/ClassProvider.h"
#include "rules/SettingRules.h"

namespace quillet::simulator {

namespace {

class SettingProvider final : public ClassProvider {
  public:
    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) override {
        auto& store = request.Target().Store();
        const auto found = store.FindInstance(RelativePath(instance));
        if (found == nullptr) {
            // Which settings there are is the driver's to say.
            return HRESULT(mode == WriteMode::UpdateOnly ? WBEM_E_NOT_FOUND : WBEM_E_PROVIDER_NOT_CAPABLE);
        }
        if (mode == WriteMode::CreateOnly) {
            return HRESULT(WBEM_E_ALREADY_EXISTS);
        }
        Instance changed = *found;
        if (const HRESULT taken = TakeOver(changed, instance); FAILED(taken)) {
            return taken;
        }
        if (changed.values == found->values) {
            return S_OK;
        }
        const HRESULT stored = store.PutInstance(changed, WriteMode::UpdateOnly);
        if (SUCCEEDED(stored)) {
            request.RequireFollowup(static_cast<LONG>(found->Number(L"FollowupAction")));
        }
        return stored;
    }

    HRESULT DeleteInstance(Request&, const ObjectPath&, const Instance&) override {
        return HRESULT(WBEM_E_PROVIDER_NOT_CAPABLE);
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeSettingProvider() {
    return std::make_unique<SettingProvider>();
}

} // namespace quillet::simulator
