// IWbemClassObject.
#include "objects/ClassObject.h"

#include "objects/EmbeddedObjects.h"
#include "objects/QualifierSet.h"

#include <quillet-wmi/Mof.h>
#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

namespace {

bool IsSystemName(std::wstring_view name) noexcept {
    return name.substr(0, 2) == L"__";
}

/// The values of a class object are its defaults.
InstancePtr Defaults(const ClassPtr& definition) {
    return std::make_shared<const Instance>(definition);
}

} // namespace

ClassObject::ClassObject(SessionPtr session, Object object, bool amended)
    : m_session(std::move(session)), m_definition(std::move(object.definition)),
      m_isInstance(object.instance != nullptr), m_amended(amended),
      m_shared(m_isInstance ? std::move(object.instance) : Defaults(m_definition)) {}

ComOwner<ClassObject> ClassObject::Behind(IWbemClassObject* object) {
    void* own = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(IID_OwnClassObject, &own))) {
        return nullptr;
    }
    return ComOwner<ClassObject>(static_cast<ClassObject*>(own));
}

HRESULT STDMETHODCALLTYPE ClassObject::QueryInterface(REFIID iid, void** object) {
    if (object != nullptr && IsEqualGUID(iid, IID_OwnClassObject)) {
        *object = this;
        AddRef();
        return S_OK;
    }
    return ComObject::QueryInterface(iid, object);
}

Instance ClassObject::Values() const {
    const std::lock_guard lock(m_mutex);
    return Data();
}

std::vector<NamedValue> ClassObject::Puts() const {
    const std::lock_guard lock(m_mutex);
    return m_puts;
}

void ClassObject::ForgetPuts() {
    const std::lock_guard lock(m_mutex);
    m_puts.clear();
}

std::optional<std::wstring> ClassObject::Path() const {
    const std::lock_guard lock(m_mutex);
    return FullPath();
}

std::optional<std::wstring> ClassObject::FullPath() const {
    const auto relative = RelativePath();
    return relative ? std::optional(FullPathOf(*m_session->connection, *relative)) : std::nullopt;
}

HRESULT ClassObject::ReadPath(VARIANT* value, CIMTYPE* type, LONG* flavor) const {
    if (!m_path) {
        m_path = FullPath();
    }
    V_VT(value) = m_path ? VT_BSTR : VT_NULL;
    V_BSTR(value) = m_path ? MakeBstr(*m_path) : nullptr;
    if (m_path && V_BSTR(value) == nullptr) {
        V_VT(value) = VT_EMPTY;
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    if (type != nullptr) {
        *type = CIM_STRING;
    }
    if (flavor != nullptr) {
        *flavor = WBEM_FLAVOR_ORIGIN_SYSTEM;
    }
    return S_OK;
}

Instance& ClassObject::Writable() {
    if (!m_own) {
        m_own = std::make_unique<Instance>(*m_shared);
    }
    return *m_own;
}

ClassObject* ClassObject::Copy() const {
    const std::lock_guard lock(m_mutex);
    Object object{m_definition, m_isInstance ? m_shared : nullptr};
    auto* copy = new ClassObject(m_session, std::move(object), m_amended);
    if (m_own) {
        copy->m_own = std::make_unique<Instance>(*m_own);
    }
    copy->m_puts = m_puts;
    return copy;
}

IUnknown* ClassObject::CopyForRetrieval() {
    return static_cast<IWbemClassObject*>(Copy());
}

bool ClassObject::IsParameters() const noexcept {
    return SameName(m_definition->name, L"__PARAMETERS");
}

std::optional<std::wstring> ClassObject::RelativePath() const {
    if (!m_isInstance) {
        return IsParameters() ? std::nullopt : std::optional(m_definition->name);
    }
    return AddressOf(Data());
}

LONG ClassObject::FlavorOf(std::size_t index) const {
    const auto& property = m_definition->properties[index];
    const bool local = m_isInstance
                           ? Data().values[index] != property.defaultValue
                           : property.origin.empty() || SameName(property.origin, m_definition->name);
    return local ? LONG(WBEM_FLAVOR_ORIGIN_LOCAL) : LONG(WBEM_FLAVOR_ORIGIN_PROPAGATED);
}

HRESULT ClassObject::Read(std::wstring_view name, const LocalCall* call, VARIANT* value, CIMTYPE* type,
                          LONG* flavor) const {
    const Value* found = nullptr;
    CIMTYPE foundType = CIM_STRING;
    LONG foundFlavor = WBEM_FLAVOR_ORIGIN_SYSTEM;
    std::optional<SystemProperty> system;
    if (IsSystemName(name)) {
        if (!m_own && value != nullptr && (call == nullptr || !call->Damages()) &&
            (name == L"__PATH" || SameName(name, L"__PATH"))) {
            return ReadPath(value, type, flavor);
        }
        system = System(name);
        if (!system) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        found = &system->value;
        foundType = system->type;
    } else {
        const auto index = m_definition->PropertyIndex(name);
        if (!index) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        found = &Data().values[*index];
        foundType = m_definition->properties[*index].type;
        foundFlavor = FlavorOf(*index);
    }
    // A machine's text may write a reference in any form; a client gets the whole path, which it can compare
    // with a __PATH.
    Value reference;
    if (foundType == CIM_REFERENCE && m_isInstance && !IsParameters()) {
        const auto* scalar = found->AsScalar();
        if (const auto* path = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr) {
            reference = Value::Text(m_session->connection->WholePath(*path));
            found = &reference;
        }
    }
    if (value != nullptr) {
        const HRESULT filled = IsObjectType(foundType) ? FillObjects(m_session, m_amended, *found, value)
                               : call != nullptr       ? call->Fill(*found, foundType, value)
                                                       : ToVariant(*found, foundType, value);
        if (FAILED(filled)) {
            return filled;
        }
    }
    if (type != nullptr) {
        *type = foundType;
    }
    if (flavor != nullptr) {
        *flavor = foundFlavor;
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                           LONG* flavor) {
    if (name == nullptr || flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(m_session->observer, Seen(Operation::Get, name));
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    HRESULT result = S_OK;
    {
        const std::lock_guard lock(m_mutex);
        result = Read(name, &call, value, type, flavor);
    }
    return call.Done(result);
}

HRESULT STDMETHODCALLTYPE ClassObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
    if (name == nullptr || value == nullptr || flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(m_session->observer, Seen(Operation::Put, name));
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    if (IsSystemName(name)) {
        return call.Done(HRESULT(WBEM_E_READ_ONLY));
    }
    const auto index = m_definition->PropertyIndex(name);
    if (!index) {
        // On a class this would add a property, and the schema is not the client's to change.
        return call.Done(m_isInstance ? HRESULT(WBEM_E_NOT_FOUND) : HRESULT(WBEM_E_NOT_SUPPORTED));
    }
    const auto& property = m_definition->properties[*index];
    if (type != 0 && type != property.type) {
        return call.Done(HRESULT(WBEM_E_TYPE_MISMATCH));
    }
    Value read;
    const HRESULT converted = IsObjectType(property.type) ? FromObjects(*value, property.type, read)
                                                          : FromVariant(*value, property.type, read);
    if (FAILED(converted)) {
        return call.Done(converted);
    }
    NamedValue put{property.name, V_VT(value), property.type, read};
    std::vector<NamedValue> recorded;
    if (call.Recorded()) {
        recorded.push_back(put);
    }
    {
        const std::lock_guard lock(m_mutex);
        Writable().values[*index] = std::move(read);
        m_puts.push_back(std::move(put));
    }
    return call.Done(S_OK, std::move(recorded));
}

HRESULT STDMETHODCALLTYPE ClassObject::Delete(LPCWSTR name) {
    if (name == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    if (IsSystemName(name)) {
        return HRESULT(WBEM_E_SYSTEM_PROPERTY);
    }
    const auto index = m_definition->PropertyIndex(name);
    if (!index) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    if (!m_isInstance) {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }
    const std::lock_guard lock(m_mutex);
    Writable().values[*index] = m_definition->properties[*index].defaultValue;
    return WBEM_S_RESET_TO_DEFAULT;
}

ObservedCall ClassObject::Seen(Operation operation, std::wstring_view target) const {
    ObservedCall seen;
    seen.operation = operation;
    seen.target = target;
    seen.definition = m_definition.get();
    return seen;
}

std::vector<Qualifier> ClassObject::Visible(const Qualifiers& qualifiers) const {
    return VisibleQualifiers(qualifiers, m_session->locale, {m_amended, m_isInstance});
}

HRESULT STDMETHODCALLTYPE ClassObject::GetQualifierSet(IWbemQualifierSet** set) {
    if (!ClearOut(set)) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(m_session->observer, Seen(Operation::GetQualifierSet, m_definition->name));
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    if (!call.Withheld()) {
        *set = MakeQualifierSet(m_session, Visible(m_definition->qualifiers), m_definition);
    }
    return call.Done(S_OK);
}

HRESULT STDMETHODCALLTYPE ClassObject::GetPropertyQualifierSet(LPCWSTR property, IWbemQualifierSet** set) {
    if (!ClearOut(set) || property == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(m_session->observer, Seen(Operation::GetPropertyQualifierSet, property));
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    if (IsSystemName(property)) {
        return call.Done(HRESULT(WBEM_E_SYSTEM_PROPERTY));
    }
    const auto* found = m_definition->FindProperty(property);
    if (found == nullptr) {
        return call.Done(HRESULT(WBEM_E_NOT_FOUND));
    }
    if (!call.Withheld()) {
        Qualifiers all = found->qualifiers;
        if (all.Find(L"CIMTYPE") == nullptr) {
            all.Set({L"CIMTYPE",
                     CIM_STRING,
                     Value::Text(CimTypeText(found->type, found->referenceClass)),
                     WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE | WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS,
                     false,
                     {}});
        }
        *set = MakeQualifierSet(m_session, Visible(all), m_definition);
    }
    return call.Done(S_OK);
}

HRESULT STDMETHODCALLTYPE ClassObject::Clone(IWbemClassObject** copy) {
    if (!ClearOut(copy)) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    *copy = Copy();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetObjectText(LONG flags, BSTR* text) {
    if (!ClearOut(text) || (flags & ~LONG(WBEM_FLAG_NO_FLAVORS)) != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const std::lock_guard lock(m_mutex);
    *text = MakeBstr(m_isInstance ? ObjectText(Data()) : ObjectText(*m_definition));
    return *text != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
}

HRESULT STDMETHODCALLTYPE ClassObject::SpawnDerivedClass(LONG, IWbemClassObject** newClass) {
    return ClearOut(newClass) ? HRESULT(WBEM_E_NOT_SUPPORTED) : HRESULT(WBEM_E_INVALID_PARAMETER);
}

HRESULT STDMETHODCALLTYPE ClassObject::SpawnInstance(LONG flags, IWbemClassObject** newInstance) {
    if (!ClearOut(newInstance) || flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(m_session->observer, Seen(Operation::SpawnInstance, m_definition->name));
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    if (m_isInstance) {
        return call.Done(HRESULT(WBEM_E_ILLEGAL_OPERATION));
    }
    if (!call.Withheld()) {
        const std::lock_guard lock(m_mutex);
        *newInstance =
            new ClassObject(m_session, {m_definition, std::make_shared<const Instance>(Data())}, m_amended);
    }
    return call.Done(S_OK);
}

HRESULT STDMETHODCALLTYPE ClassObject::GetPropertyOrigin(LPCWSTR name, BSTR* className) {
    if (!ClearOut(className) || name == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    if (IsSystemName(name)) {
        const std::lock_guard lock(m_mutex);
        if (!System(name)) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        *className = MakeBstr(L"___SYSTEM");
    } else {
        const auto* property = m_definition->FindProperty(name);
        if (property == nullptr) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        *className = MakeBstr(property->origin);
    }
    return *className != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
}

HRESULT STDMETHODCALLTYPE ClassObject::InheritsFrom(LPCWSTR ancestor) {
    if (ancestor == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    return m_definition->IsA(ancestor) ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE);
}

} // namespace quillet::wmi
