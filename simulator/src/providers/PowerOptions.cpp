// The power-saving and wake-on-LAN options of a port.
#include "providers/PowerOptions.h"

namespace quillet::simulator {

namespace {

/// The options of the port; null for a port without power management.
InstancePtr OptionsOf(const MethodCall& call) {
    ObjectPath path;
    path.className = L"Zorel_PowerConfiguration";
    path.keys.push_back({L"DeviceID", call.instance->Text(L"DeviceID")});
    return call.request.Target().Store().FindInstance(path);
}

} // namespace

HRESULT TellPowerOptions(MethodCall& call) {
    if (const auto options = OptionsOf(call)) {
        for (const auto& parameter : call.out.definition->properties) {
            if (const Value* option = options->Find(parameter.name)) {
                call.out.Set(parameter.name, *option);
            }
        }
    }
    call.Answer(L"ReturnValue", 0);
    return S_OK;
}

HRESULT ChangePowerOptions(MethodCall& call) {
    const auto options = OptionsOf(call);
    if (options == nullptr) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    Instance changed = *options;
    for (const auto& parameter : call.in.definition->properties) {
        const Value& given = *call.in.Find(parameter.name);
        if (given.IsNull()) {
            continue;
        }
        const std::int64_t most = SameName(parameter.name, L"SavePowerNowEnabled") ? 2 : 1;
        const Value* option = options->Find(parameter.name);
        if (option == nullptr || option->IsNull() || call.in.Number(parameter.name) > most) {
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        changed.Set(parameter.name, given);
    }
    if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
        return allowed;
    }
    const HRESULT stored = call.request.Target().Store().PutInstance(changed, WriteMode::UpdateOnly);
    if (SUCCEEDED(stored)) {
        call.request.Changed(*changed.definition);
    }
    call.Answer(L"ReturnValue", 0);
    return stored;
}

HRESULT ApplyPowerCapabilities(MethodCall& call) {
    if (OptionsOf(call) == nullptr) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
        return allowed;
    }
    call.Answer(L"ReturnValue", 0);
    return S_OK;
}

} // namespace quillet::simulator
