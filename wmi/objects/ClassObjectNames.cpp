// The names of what an object has, its system properties among them, and going through them one by one.
#include "objects/ClassObject.h"

#include <quillet-wmi/Variant.h>

#include <algorithm>
#include <array>

namespace quillet::wmi {

namespace {

constexpr std::array kSystemNames{
    L"__GENUS",          L"__CLASS",      L"__SUPERCLASS", L"__DYNASTY",   L"__RELPATH",
    L"__PROPERTY_COUNT", L"__DERIVATION", L"__SERVER",     L"__NAMESPACE", L"__PATH"};

constexpr LONG kOriginFlags = 0x70;
constexpr LONG kConditionFlags = 0x3;

Value TextOrNull(std::optional<std::wstring> text) {
    return text && !text->empty() ? Value::Text(*std::move(text)) : Value();
}

} // namespace

std::optional<ClassObject::SystemProperty> ClassObject::System(std::wstring_view name) const {
    const auto& connection = *m_session->connection;
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
        return SystemProperty{CIM_STRING, IsParameters() ? Value() : Value::Text(connection.ServerName())};
    }
    if (is(L"__NAMESPACE")) {
        return SystemProperty{CIM_STRING, IsParameters() ? Value() : Value::Text(connection.NamespaceName())};
    }
    return std::nullopt;
}

bool ClassObject::Passes(std::size_t index, LONG flags) const {
    const auto& property = m_definition->properties[index];
    if ((flags & WBEM_FLAG_KEYS_ONLY) != 0 && !property.IsKey()) {
        return false;
    }
    if ((flags & WBEM_FLAG_REFS_ONLY) != 0 && (property.type & ~CIM_FLAG_ARRAY) != CIM_REFERENCE) {
        return false;
    }
    switch (flags & kOriginFlags) {
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
    const LONG origin = flags & kOriginFlags;
    if ((flags & (WBEM_FLAG_KEYS_ONLY | WBEM_FLAG_REFS_ONLY)) == 0 &&
        (origin == 0 || origin == WBEM_FLAG_SYSTEM_ONLY)) {
        names.assign(kSystemNames.begin(), kSystemNames.end());
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
    const LONG condition = flags & kConditionFlags;
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
    if ((flags & kConditionFlags) != 0) {
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

} // namespace quillet::wmi
