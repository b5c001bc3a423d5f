// IWbemClassObject.
#include "ClassObject.h"

#include "Calls.h"
#include "QualifierSet.h"
#include "VariantConversion.h"

#include <algorithm>
#include <array>

namespace quillet::simulator {

namespace {

constexpr std::array SystemNames{
    L"__GENUS",          L"__CLASS",      L"__SUPERCLASS", L"__DYNASTY",   L"__RELPATH",
    L"__PROPERTY_COUNT", L"__DERIVATION", L"__SERVER",     L"__NAMESPACE", L"__PATH"};

constexpr LONG OriginFlags = 0x70;
constexpr LONG ConditionFlags = 0x3;

bool IsSystemName(std::wstring_view name) noexcept {
    return name.substr(0, 2) == L"__";
}

Value TextOrNull(std::optional<std::wstring> text) {
    return text && !text->empty() ? Value::Text(*std::move(text)) : Value();
}

bool SameText(std::wstring_view left, std::wstring_view right, bool ignoreCase) {
    return ignoreCase ? SameName(left, right) : left == right;
}

bool SameScalar(const std::optional<Scalar>& left, const std::optional<Scalar>& right, bool ignoreCase) {
    if (left && right) {
        const auto* leftText = std::get_if<std::wstring>(&*left);
        const auto* rightText = std::get_if<std::wstring>(&*right);
        if (leftText != nullptr && rightText != nullptr) {
            return SameText(*leftText, *rightText, ignoreCase);
        }
    }
    return left == right;
}

bool SameValue(const Value& left, const Value& right, bool ignoreCase) {
    if (const auto* array = left.AsArray()) {
        const auto* other = right.AsArray();
        return other != nullptr && std::equal(array->begin(), array->end(), other->begin(), other->end(),
                                              [ignoreCase](const auto& one, const auto& two) {
                                                  return SameScalar(one, two, ignoreCase);
                                              });
    }
    const auto* scalar = left.AsScalar();
    const auto* other = right.AsScalar();
    if (scalar == nullptr || other == nullptr) {
        return left == right;
    }
    return SameScalar(*scalar, *other, ignoreCase);
}

/// The values of a class object are its defaults.
InstancePtr Defaults(const ClassPtr& definition) {
    return std::make_shared<const Instance>(definition);
}

} // namespace

ClassObject::ClassObject(SessionPtr session, ProvidedObject object, bool amended)
    : m_session(std::move(session)), m_definition(std::move(object.definition)),
      m_isInstance(object.instance != nullptr), m_amended(amended),
      m_shared(m_isInstance ? std::move(object.instance) : Defaults(m_definition)) {}

ComOwner<ClassObject> ClassObject::Behind(IWbemClassObject* object) {
    void* own = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(IID_SimulatedClassObject, &own))) {
        return nullptr;
    }
    return ComOwner<ClassObject>(static_cast<ClassObject*>(own));
}

HRESULT STDMETHODCALLTYPE ClassObject::QueryInterface(REFIID iid, void** object) {
    if (object != nullptr && IsEqualGUID(iid, IID_SimulatedClassObject)) {
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
    if (m_path && !m_own) {
        return m_path;
    }
    const auto relative = RelativePath();
    if (!relative) {
        return std::nullopt;
    }
    const auto& store = m_session->machine->Store();
    std::wstring path = L"\\\\" + store.ServerName() + L'\\' + store.NamespaceName() + L':' + *relative;
    if (!m_own) {
        m_path = path;
    }
    return path;
}

Instance& ClassObject::Writable() {
    if (!m_own) {
        m_own = std::make_unique<Instance>(*m_shared);
    }
    return *m_own;
}

ClassObject* ClassObject::Copy() const {
    const std::lock_guard lock(m_mutex);
    ProvidedObject object{m_definition, m_isInstance ? m_shared : nullptr};
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
    if (IsParameters()) {
        return std::nullopt;
    }
    if (!m_isInstance) {
        return m_definition->name;
    }
    const auto& data = Data();
    bool hasKey = false;
    for (std::size_t index = 0; index < m_definition->properties.size(); ++index) {
        if (m_definition->properties[index].IsKey()) {
            hasKey = true;
            if (data.values[index].IsNull()) {
                return std::nullopt;
            }
        }
    }
    // A SELECT with a list may have left keys out.
    const auto whole = m_session->machine->Store().FindClass(m_definition->name);
    if (whole != m_definition && whole != nullptr) {
        for (const auto& property : whole->properties) {
            if (property.IsKey() && m_definition->FindProperty(property.name) == nullptr) {
                return std::nullopt;
            }
        }
    }
    if (!hasKey && !m_definition->qualifiers.Has(L"singleton")) {
        return std::nullopt;
    }
    return m_session->machine->Store().RelativePath(data);
}

std::optional<ClassObject::SystemProperty> ClassObject::System(std::wstring_view name) const {
    const auto& store = m_session->machine->Store();
    const auto is = [name](const wchar_t* system) { return SameName(name, system); };
    // What clients read of every object comes first.
    if (is(L"__PATH")) {
        return SystemProperty{CIM_STRING, TextOrNull(FullPath())};
    }
    if (is(L"__CLASS")) {
        return SystemProperty{CIM_STRING, Value::Text(m_definition->name)};
    }
    if (is(L"__GENUS")) {
        return SystemProperty{CIM_SINT32,
                              Value::Signed(m_isInstance ? WBEM_GENUS_INSTANCE : WBEM_GENUS_CLASS)};
    }
    if (is(L"__SUPERCLASS")) {
        return SystemProperty{CIM_STRING, TextOrNull(m_definition->superclass)};
    }
    if (is(L"__DYNASTY")) {
        return SystemProperty{CIM_STRING,
                              Value::Text(m_definition->ancestors.empty() ? m_definition->name
                                                                          : m_definition->ancestors.back())};
    }
    if (is(L"__RELPATH")) {
        return SystemProperty{CIM_STRING, TextOrNull(RelativePath())};
    }
    if (is(L"__PROPERTY_COUNT")) {
        return SystemProperty{CIM_SINT32,
                              Value::Signed(static_cast<std::int64_t>(m_definition->properties.size()))};
    }
    if (is(L"__DERIVATION")) {
        Value::Array ancestors(m_definition->ancestors.begin(), m_definition->ancestors.end());
        return SystemProperty{CIM_STRING | CIM_FLAG_ARRAY, Value(std::move(ancestors))};
    }
    if (is(L"__SERVER")) {
        return SystemProperty{CIM_STRING, IsParameters() ? Value() : Value::Text(store.ServerName())};
    }
    if (is(L"__NAMESPACE")) {
        return SystemProperty{CIM_STRING, IsParameters() ? Value() : Value::Text(store.NamespaceName())};
    }
    return std::nullopt;
}

LONG ClassObject::FlavorOf(std::size_t index) const {
    const auto& property = m_definition->properties[index];
    const bool local = m_isInstance
                           ? Data().values[index] != property.defaultValue
                           : property.origin.empty() || SameName(property.origin, m_definition->name);
    return local ? LONG(WBEM_FLAVOR_ORIGIN_LOCAL) : LONG(WBEM_FLAVOR_ORIGIN_PROPAGATED);
}

HRESULT ClassObject::Read(std::wstring_view name, const FaultRule* rule, VARIANT* value, CIMTYPE* type,
                          LONG* flavor) const {
    const Value* found = nullptr;
    CIMTYPE foundType = CIM_STRING;
    LONG foundFlavor = WBEM_FLAVOR_ORIGIN_SYSTEM;
    std::optional<SystemProperty> system;
    if (IsSystemName(name)) {
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
            reference = Value::Text(m_session->machine->Store().ReferenceText(*path));
            found = &reference;
        }
    }
    if (value != nullptr) {
        const HRESULT filled = rule != nullptr ? ToDamagedVariant(*found, foundType, *rule, value)
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
    const LocalCall call(*m_session->machine, Operation::Get, name, m_definition->name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    if (call.Has(Effect::Absent)) {
        return call.Done(HRESULT(WBEM_E_NOT_FOUND));
    }
    HRESULT result = S_OK;
    {
        const std::lock_guard lock(m_mutex);
        result = Read(name, call.Fault(), value, type, flavor);
    }
    return call.Done(result);
}

HRESULT STDMETHODCALLTYPE ClassObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
    if (name == nullptr || value == nullptr || flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(*m_session->machine, Operation::Put, name, m_definition->name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
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
    if (const HRESULT converted = FromVariant(*value, property.type, read); FAILED(converted)) {
        return call.Done(converted);
    }
    auto put = ForJournal(property, V_VT(value), read);
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

bool ClassObject::Passes(std::size_t index, LONG flags) const {
    const auto& property = m_definition->properties[index];
    if ((flags & WBEM_FLAG_KEYS_ONLY) != 0 && !property.IsKey()) {
        return false;
    }
    if ((flags & WBEM_FLAG_REFS_ONLY) != 0 && (property.type & ~CIM_FLAG_ARRAY) != CIM_REFERENCE) {
        return false;
    }
    switch (flags & OriginFlags) {
    case WBEM_FLAG_LOCAL_ONLY:
        return FlavorOf(index) == WBEM_FLAVOR_ORIGIN_LOCAL;
    case WBEM_FLAG_PROPAGATED_ONLY:
        return FlavorOf(index) == WBEM_FLAVOR_ORIGIN_PROPAGATED;
    case WBEM_FLAG_SYSTEM_ONLY:
        return false;
    default:
        return true;
    }
}

std::vector<std::wstring> ClassObject::Names(LONG flags) const {
    std::vector<std::wstring> names;
    const LONG origin = flags & OriginFlags;
    if ((flags & (WBEM_FLAG_KEYS_ONLY | WBEM_FLAG_REFS_ONLY)) == 0 &&
        (origin == 0 || origin == WBEM_FLAG_SYSTEM_ONLY)) {
        names.assign(SystemNames.begin(), SystemNames.end());
    }
    for (std::size_t index = 0; index < m_definition->properties.size(); ++index) {
        if (Passes(index, flags)) {
            names.push_back(m_definition->properties[index].name);
        }
    }
    return names;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetNames(LPCWSTR qualifier, LONG flags, VARIANT* qualifierValue,
                                                SAFEARRAY** names) {
    const LONG condition = flags & ConditionFlags;
    if (names == nullptr || (condition != WBEM_FLAG_ALWAYS && qualifier == nullptr) ||
        (condition == WBEM_FLAG_ONLY_IF_IDENTICAL && qualifierValue == nullptr)) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    std::vector<std::wstring> list;
    {
        const std::lock_guard lock(m_mutex);
        list = Names(flags);
    }
    if (condition != WBEM_FLAG_ALWAYS) {
        const auto fails = [&](const std::wstring& name) {
            const auto* property = m_definition->FindProperty(name);
            const auto* held = property != nullptr ? property->qualifiers.Find(qualifier) : nullptr;
            if (condition == WBEM_FLAG_ONLY_IF_IDENTICAL) {
                Value wanted;
                return held == nullptr || FAILED(FromVariant(*qualifierValue, held->type, wanted)) ||
                       !(wanted == held->value);
            }
            return (held != nullptr) != (condition == WBEM_FLAG_ONLY_IF_TRUE);
        };
        list.erase(std::remove_if(list.begin(), list.end(), fails), list.end());
    }
    *names = MakeNameArray(list);
    return *names != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
}

HRESULT STDMETHODCALLTYPE ClassObject::BeginEnumeration(LONG flags) {
    if ((flags & ConditionFlags) != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const std::lock_guard lock(m_mutex);
    m_enumerated = Names(flags);
    m_position = 0;
    m_enumerating = true;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                            LONG* flavor) {
    if (flags != 0) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const std::lock_guard lock(m_mutex);
    if (!m_enumerating) {
        return HRESULT(WBEM_E_UNEXPECTED);
    }
    if (m_position == m_enumerated.size()) {
        return WBEM_S_NO_MORE_DATA;
    }
    const auto& current = m_enumerated[m_position];
    if (const HRESULT read = Read(current, nullptr, value, type, flavor); FAILED(read)) {
        return read;
    }
    if (name != nullptr && (*name = MakeBstr(current)) == nullptr) {
        if (value != nullptr) {
            VariantClear(value);
        }
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    ++m_position;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::EndEnumeration() {
    const std::lock_guard lock(m_mutex);
    m_enumerating = false;
    return S_OK;
}

std::vector<Qualifier> ClassObject::Seen(const Qualifiers& qualifiers) const {
    return VisibleQualifiers(qualifiers, m_session->locale, {m_amended, m_isInstance});
}

HRESULT STDMETHODCALLTYPE ClassObject::GetQualifierSet(IWbemQualifierSet** set) {
    if (!ClearOut(set)) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(*m_session->machine, Operation::GetQualifierSet, m_definition->name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    if (!call.Has(Effect::NullObject)) {
        *set = MakeQualifierSet(m_session, Seen(m_definition->qualifiers), m_definition->name);
    }
    return call.Done(S_OK);
}

HRESULT STDMETHODCALLTYPE ClassObject::GetPropertyQualifierSet(LPCWSTR property, IWbemQualifierSet** set) {
    if (!ClearOut(set) || property == nullptr) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const LocalCall call(*m_session->machine, Operation::GetPropertyQualifierSet, property,
                         m_definition->name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    if (IsSystemName(property)) {
        return call.Done(HRESULT(WBEM_E_SYSTEM_PROPERTY));
    }
    const auto* found = m_definition->FindProperty(property);
    if (found == nullptr) {
        return call.Done(HRESULT(WBEM_E_NOT_FOUND));
    }
    if (!call.Has(Effect::NullObject)) {
        Qualifiers all = found->qualifiers;
        if (all.Find(L"CIMTYPE") == nullptr) {
            all.Set({L"CIMTYPE",
                     CIM_STRING,
                     Value::Text(CimTypeText(found->type, found->referenceClass)),
                     WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE | WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS,
                     false,
                     {}});
        }
        *set = MakeQualifierSet(m_session, Seen(all), m_definition->name);
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
    const LocalCall call(*m_session->machine, Operation::SpawnInstance, m_definition->name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    if (m_isInstance) {
        return call.Done(HRESULT(WBEM_E_ILLEGAL_OPERATION));
    }
    if (!call.Has(Effect::NullObject)) {
        const std::lock_guard lock(m_mutex);
        *newInstance =
            new ClassObject(m_session, {m_definition, std::make_shared<const Instance>(Data())}, m_amended);
    }
    return call.Done(S_OK);
}

HRESULT STDMETHODCALLTYPE ClassObject::CompareTo(LONG flags, IWbemClassObject* compared) {
    const auto other = Behind(compared);
    if (!other) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const bool ignoreCase = (flags & WBEM_FLAG_IGNORE_CASE) != 0;
    const auto mine = Values();
    const auto theirs = other->Values();
    if (m_isInstance != other->m_isInstance) {
        return WBEM_S_DIFFERENT;
    }
    if ((flags & WBEM_FLAG_IGNORE_CLASS) == 0 && !SameName(m_definition->name, other->m_definition->name)) {
        return WBEM_S_DIFFERENT;
    }
    if ((flags & WBEM_FLAG_IGNORE_DEFAULT_VALUES) != 0 && !m_isInstance) {
        return WBEM_S_SAME;
    }
    if (mine.values.size() != theirs.values.size()) {
        return WBEM_S_DIFFERENT;
    }
    for (std::size_t index = 0; index < mine.values.size(); ++index) {
        const auto* value = theirs.Find(m_definition->properties[index].name);
        if (value == nullptr || !SameValue(mine.values[index], *value, ignoreCase)) {
            return WBEM_S_DIFFERENT;
        }
    }
    return WBEM_S_SAME;
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
    const LocalCall call(*m_session->machine, Operation::GetMethod, m_definition->name, m_definition->name,
                         name);
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    if (m_isInstance) {
        return call.Done(HRESULT(WBEM_E_ILLEGAL_OPERATION));
    }
    const auto* method = m_definition->FindMethod(name);
    if (method == nullptr) {
        return call.Done(HRESULT(WBEM_E_NOT_FOUND));
    }
    return call.Done(call.Has(Effect::NullObject) ? HRESULT(S_OK)
                                                  : HandOut(*method, inSignature, outSignature));
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
    *set = MakeQualifierSet(m_session, Seen(method->qualifiers), m_definition->name);
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

} // namespace quillet::simulator
