// The methods of a class, as IWbemClassObject tells them.
#include "objects/ClassObject.h"

#include "objects/QualifierSet.h"

#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

HRESULT ClassObject::HandOut(const Method& method, IWbemClassObject** inSignature,
                             IWbemClassObject** outSignature) {
    const auto hand = [this](ClassPtr signature, IWbemClassObject** object) {
        if (object != nullptr && signature != nullptr) {
            *object = new ClassObject(m_session, {std::move(signature), nullptr}, m_amended);
        }
    };
    hand(InSignature(method), inSignature);
    hand(OutSignature(method), outSignature);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                                                 IWbemClassObject** outSignature) {
    ClearOut(inSignature);
    ClearOut(outSignature);
    if (name == nullptr || flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    auto seen = Seen(Operation::GetMethod, m_definition->name);
    seen.method = name;
    const LocalCall call(m_session->observer, seen);
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    if (m_isInstance) {
        return call.Done(HRESULT(WBEM_E_ILLEGAL_OPERATION));
    }
    const auto* method = m_definition->FindMethod(name);
    if (method == nullptr) {
        return call.Done(HRESULT(WBEM_E_NOT_FOUND));
    }
    return call.Done(call.Withheld() ? HRESULT(S_OK) : HandOut(*method, inSignature, outSignature));
}

HRESULT STDMETHODCALLTYPE ClassObject::PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) {
    return HRESULT(WBEM_E_NOT_SUPPORTED);
}

HRESULT STDMETHODCALLTYPE ClassObject::DeleteMethod(LPCWSTR) {
    return HRESULT(WBEM_E_NOT_SUPPORTED);
}

HRESULT STDMETHODCALLTYPE ClassObject::BeginMethodEnumeration(LONG flags) {
    if (flags != 0 && flags != WBEM_FLAG_LOCAL_ONLY && flags != WBEM_FLAG_PROPAGATED_ONLY) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    if (m_isInstance) {
        return HRESULT(WBEM_E_ILLEGAL_OPERATION);
    }
    const std::lock_guard lock(m_mutex);
    m_methodPosition = 0;
    m_methodOrigin = flags;
    m_enumeratingMethods = true;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                                  IWbemClassObject** outSignature) {
    ClearOut(inSignature);
    ClearOut(outSignature);
    if (flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const std::lock_guard lock(m_mutex);
    if (!m_enumeratingMethods) {
        return HRESULT(WBEM_E_UNEXPECTED);
    }
    const auto& methods = m_definition->methods;
    const auto passes = [this](const Method& method) {
        const bool local = SameName(method.origin, m_definition->name);
        return m_methodOrigin == 0 || local == (m_methodOrigin == WBEM_FLAG_LOCAL_ONLY);
    };
    while (m_methodPosition < methods.size() && !passes(methods[m_methodPosition])) {
        ++m_methodPosition;
    }
    if (m_methodPosition == methods.size()) {
        return WBEM_S_NO_MORE_DATA;
    }
    const auto& method = methods[m_methodPosition];
    if (name != nullptr && (*name = MakeBstr(method.name)) == nullptr) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    ++m_methodPosition;
    return HandOut(method, inSignature, outSignature);
}

HRESULT STDMETHODCALLTYPE ClassObject::EndMethodEnumeration() {
    const std::lock_guard lock(m_mutex);
    m_enumeratingMethods = false;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetMethodQualifierSet(LPCWSTR name, IWbemQualifierSet** set) {
    if (!ClearOut(set) || name == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    if (m_isInstance) {
        return HRESULT(WBEM_E_ILLEGAL_OPERATION);
    }
    const auto* method = m_definition->FindMethod(name);
    if (method == nullptr) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    *set = MakeQualifierSet(m_session, Visible(method->qualifiers), m_definition);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetMethodOrigin(LPCWSTR name, BSTR* className) {
    if (!ClearOut(className) || name == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const auto* method = m_definition->FindMethod(name);
    if (method == nullptr) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    *className = MakeBstr(method->origin);
    return *className != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
}

} // namespace quillet::wmi
