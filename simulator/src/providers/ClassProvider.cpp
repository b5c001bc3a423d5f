// What a class does that has no behaviour of its own, and the client set of a change.
#include "providers/ClassProvider.h"

#include "machine/MachineState.h"

namespace quillet::simulator {

Request::Request(Machine& machine, const CallContext& context) : m_machine(machine) {
    if (const auto* set = FindNamed(context.values, L"ClientSetId")) {
        if (const auto* scalar = set->value.AsScalar()) {
            if (const auto* handle = std::get_if<std::int64_t>(scalar)) {
                m_clientSet = static_cast<LONG>(*handle);
            }
        }
    }
}

HRESULT Request::Change() {
    auto& internals = m_machine.Internals();
    if (internals.sets.IsOpen(m_clientSet)) {
        return S_OK;
    }
    if (internals.strict) {
        return HRESULT(WBEM_E_ACCESS_DENIED);
    }
    Note(L"outside a client set");
    return S_OK;
}

void Request::RequireFollowup(LONG action) {
    m_machine.Internals().sets.Require(m_clientSet, action);
}

void Request::Changed(const ClassDefinition& definition) {
    for (const auto& [className, action] : m_machine.Internals().followUps) {
        if (definition.IsA(className)) {
            RequireFollowup(action);
        }
    }
}

void MethodCall::Answer(std::wstring_view name, std::int64_t number) {
    if (out.definition == nullptr) {
        return;
    }
    if (const auto* parameter = out.definition->FindProperty(name)) {
        out.Set(name, Integer(parameter->type, number));
    }
}

HRESULT ClassProvider::ExecMethod(MethodCall&) {
    return HRESULT(WBEM_E_NOT_SUPPORTED);
}

std::chrono::milliseconds ClassProvider::Duration(const MethodCall&) const {
    return {};
}

HRESULT ClassProvider::PutInstance(Request& request, const Instance& instance, WriteMode mode) {
    return request.Target().Store().PutInstance(instance, mode);
}

HRESULT ClassProvider::DeleteInstance(Request& request, const ObjectPath& path, const Instance&) {
    return request.Target().Store().DeleteInstance(path);
}

} // namespace quillet::simulator
