// Link security: what an adapter keeps of it, and its PAC files.
#include "providers/LinkSecurity.h"

namespace quillet::simulator {

namespace {

/// The follow-up action of a change that the driver has not taken over yet.
constexpr LONG kRestart = 1;

std::wstring PortOf(const MethodCall& call) {
    return call.instance->Text(L"DeviceID");
}

ObjectPath PathOf(const wchar_t* className, const wchar_t* key, std::wstring value) {
    ObjectPath path;
    path.className = className;
    path.keys.push_back({key, std::move(value)});
    return path;
}

/// Null when the adapter can do no link security.
InstancePtr ConfigurationOf(const MethodCall& call) {
    return call.request.Target().Store().FindInstance(
        PathOf(L"Zorel_LinkSecConfiguration", L"DeviceID", PortOf(call)));
}

HRESULT Done(MethodCall& call) {
    call.Answer(L"ReturnValue", 0);
    return S_OK;
}

/// Every value of `from` that `to` has a place for and that is given.
void TakeOverFields(const Instance& from, Instance& to) {
    for (std::size_t index = 0; index < from.definition->properties.size(); ++index) {
        if (!from.values[index].IsNull()) {
            to.Set(from.definition->properties[index].name, from.values[index]);
        }
    }
}

/// Answers with the properties that bear the names of the out-parameters.
void Tell(MethodCall& call, const Instance& from) {
    for (const Property& parameter : call.out.definition->properties) {
        if (const Value* value = from.Find(parameter.name)) {
            call.out.Set(parameter.name, *value);
        }
    }
}

/// Changes what is given and leaves the rest. Unless the driver is reloaded, that takes a restart.
template <class Adjust>
HRESULT Change(MethodCall& call, Adjust adjust) {
    const InstancePtr configuration = ConfigurationOf(call);
    if (configuration == nullptr) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
        return allowed;
    }
    Instance changed(*configuration);
    TakeOverFields(call.in, changed);
    adjust(changed);
    const HRESULT stored =
        call.request.Target().Store().PutInstance(std::move(changed), WriteMode::UpdateOnly);
    if (FAILED(stored)) {
        return stored;
    }
    if (call.in.Number(L"bDriverReload") == 0) {
        call.request.RequireFollowup(kRestart);
    }
    return Done(call);
}

/// The last component of a path in either notation.
std::wstring FileNameOf(const std::wstring& path) {
    const auto separator = path.find_last_of(L"/\\");
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

ObjectPath PacPath(std::wstring port, std::wstring fileName) {
    ObjectPath path = PathOf(L"Zorel_PACFile", L"DeviceID", std::move(port));
    path.keys.push_back({L"FileName", std::move(fileName)});
    return path;
}

/// The file of that name on the simulated machine: one that only lies there, or else one that some port
/// imported. Null when there is none.
InstancePtr FileOnMachine(const Repository& store, const std::wstring& fileName) {
    InstancePtr found;
    for (const InstancePtr& file : store.Instances(L"Zorel_PACFile")) {
        if (!SameName(file->Text(L"FileName"), fileName)) {
            continue;
        }
        if (file->Text(L"DeviceID").empty()) {
            return file;
        }
        found = found != nullptr ? found : file;
    }
    return found;
}

/// A file without a password of its own opens with any.
bool Opens(const Instance& file, const std::wstring& password) {
    const Value* own = file.Find(L"PACFilePassword");
    return own == nullptr || own->IsNull() || file.Text(L"PACFilePassword") == password;
}

} // namespace

HRESULT TellLinkSecurity(MethodCall& call) {
    const InstancePtr configuration = ConfigurationOf(call);
    if (configuration == nullptr) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    Tell(call, *configuration);
    return Done(call);
}

HRESULT ChangeLinkSecurity(MethodCall& call) {
    return Change(call, [](Instance&) {});
}

HRESULT ChangeLinkSecurityAuthentication(MethodCall& call) {
    const auto outer = call.in.Number(L"OuterEAPType");
    if (outer < 1 || outer > 4) {
        return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }
    return Change(call, [&](Instance& configuration) {
        if (call.in.Number(L"bCredChanged") == 0) {
            return;
        }
        for (const auto& [parameter, saved] : {std::pair{L"LinksecCredUsername", L"strUsername"},
                                               std::pair{L"LinksecCredPassword", L"strPassword"}}) {
            if (const Value* value = call.in.Find(parameter); value != nullptr && !value->IsNull()) {
                configuration.Set(saved, *value);
            }
        }
    });
}

HRESULT ImportPacFile(MethodCall& call) {
    if (ConfigurationOf(call) == nullptr) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    auto& store = call.request.Target().Store();
    const InstancePtr file = FileOnMachine(store, FileNameOf(call.in.Text(L"PACPath")));
    if (file == nullptr) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    if (!Opens(*file, call.in.Text(L"PACFilePassword"))) {
        return HRESULT(WBEM_E_ACCESS_DENIED);
    }
    if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
        return allowed;
    }
    Instance imported(*file);
    imported.Set(L"DeviceID", Value::Text(PortOf(call)));
    if (const HRESULT stored = store.PutInstance(std::move(imported)); FAILED(stored)) {
        return stored;
    }
    if (call.in.Number(L"bReload") == 0) {
        call.request.RequireFollowup(kRestart);
    }
    return Done(call);
}

HRESULT DeletePacFile(MethodCall& call) {
    if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
        return allowed;
    }
    const HRESULT removed = call.request.Target().Store().DeleteInstance(
        PacPath(PortOf(call), call.in.Text(L"strPACFileDelete")));
    return FAILED(removed) ? removed : Done(call);
}

HRESULT TellPacFile(MethodCall& call) {
    const InstancePtr file =
        call.request.Target().Store().FindInstance(PacPath(PortOf(call), call.in.Text(L"strPACFile")));
    if (file == nullptr) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    Tell(call, *file);
    return Done(call);
}

} // namespace quillet::simulator
