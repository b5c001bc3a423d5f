// Names, and the look-ups of class definitions and instances.
#include <quillet-wmi/Model.h>

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::wmi {

int CompareNames(std::wstring_view left, std::wstring_view right) noexcept {
    return CompareFolded(left, right);
}

const Qualifier* Qualifiers::Find(std::wstring_view name) const noexcept {
    for (const Qualifier& qualifier : m_all) {
        if (SameName(qualifier.name, name)) {
            return &qualifier;
        }
    }
    return nullptr;
}

bool Qualifiers::Has(std::wstring_view name) const noexcept {
    const Qualifier* qualifier = Find(name);
    if (qualifier == nullptr) {
        return false;
    }
    const Scalar* scalar = qualifier->value.AsScalar();
    const bool* flag = scalar != nullptr ? std::get_if<bool>(scalar) : nullptr;
    return flag == nullptr || *flag;
}

void Qualifiers::Set(Qualifier qualifier) {
    for (Qualifier& present : m_all) {
        if (SameName(present.name, qualifier.name)) {
            present = std::move(qualifier);
            return;
        }
    }
    m_all.push_back(std::move(qualifier));
}

Qualifiers Qualifiers::Inherited() const {
    Qualifiers taken;
    taken.m_all.reserve(m_all.size());
    for (const Qualifier& qualifier : m_all) {
        if ((qualifier.flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS) != 0) {
            taken.m_all.push_back(qualifier);
            taken.m_all.back().flavor |= WBEM_FLAVOR_ORIGIN_PROPAGATED;
        }
    }
    return taken;
}

bool Qualifiers::Remove(std::wstring_view name) {
    return std::erase_if(m_all, [name](const Qualifier& q) { return SameName(q.name, name); }) != 0;
}

std::optional<std::size_t> ClassDefinition::PropertyIndex(std::wstring_view wanted) const noexcept {
    for (std::size_t i = 0; i < properties.size(); ++i) {
        if (SameName(properties[i].name, wanted)) {
            return i;
        }
    }
    return std::nullopt;
}

const Property* ClassDefinition::FindProperty(std::wstring_view wanted) const noexcept {
    const std::optional<std::size_t> index = PropertyIndex(wanted);
    return index ? &properties[*index] : nullptr;
}

const Method* ClassDefinition::FindMethod(std::wstring_view wanted) const noexcept {
    for (const Method& method : methods) {
        if (SameName(method.name, wanted)) {
            return &method;
        }
    }
    return nullptr;
}

bool ClassDefinition::IsA(std::wstring_view className) const noexcept {
    return SameName(name, className) ||
           std::any_of(ancestors.begin(), ancestors.end(),
                       [className](const std::wstring& ancestor) { return SameName(ancestor, className); });
}

Instance::Instance(ClassPtr cls) : definition(std::move(cls)) {
    if (definition) {
        values.reserve(definition->properties.size());
        for (const Property& property : definition->properties) {
            values.push_back(property.defaultValue);
        }
    }
}

const Value* Instance::Find(std::wstring_view property) const noexcept {
    if (!definition) {
        return nullptr;
    }
    const std::optional<std::size_t> index = definition->PropertyIndex(property);
    return index && *index < values.size() ? &values[*index] : nullptr;
}

bool Instance::Set(std::wstring_view property, Value value) {
    if (!definition) {
        return false;
    }
    const std::optional<std::size_t> index = definition->PropertyIndex(property);
    if (!index || *index >= values.size()) {
        return false;
    }
    const CIMTYPE type = definition->properties[*index].type;
    if (Fits(value, type)) {
        value = Normalised(std::move(value), type);
    }
    values[*index] = std::move(value);
    return true;
}

std::wstring Instance::Text(std::wstring_view property) const {
    const Value* value = Find(property);
    const Scalar* scalar = value != nullptr ? value->AsScalar() : nullptr;
    const auto* text = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr;
    return text != nullptr ? *text : std::wstring();
}

std::int64_t Instance::Number(std::wstring_view property, std::int64_t fallback) const {
    const Value* value = Find(property);
    const Scalar* scalar = value != nullptr ? value->AsScalar() : nullptr;
    if (scalar == nullptr) {
        return fallback;
    }
    if (const auto* number = std::get_if<std::int64_t>(scalar)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::uint64_t>(scalar)) {
        return static_cast<std::int64_t>(*number);
    }
    if (const auto* flag = std::get_if<bool>(scalar)) {
        return *flag ? 1 : 0;
    }
    return fallback;
}

bool IsIdentifierStart(wchar_t character) noexcept {
    // What is not ASCII is a letter, whether the host's wchar_t is signed or not.
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z') ||
           character == L'_' || static_cast<char32_t>(character) >= 0x80;
}

bool IsIdentifierCharacter(wchar_t character) noexcept {
    return IsIdentifierStart(character) || (character >= L'0' && character <= L'9');
}

bool IsIdentifier(std::wstring_view text) noexcept {
    return !text.empty() && IsIdentifierStart(text.front()) &&
           std::all_of(text.begin(), text.end(), IsIdentifierCharacter);
}

ClassPtr Project(const ClassDefinition& definition, const std::vector<std::wstring>& names) {
    auto projected = std::make_shared<ClassDefinition>(definition);
    const auto asked = [&](const Property& property) {
        return std::any_of(names.begin(), names.end(),
                           [&](const std::wstring& name) { return SameName(name, property.name); });
    };
    auto& properties = projected->properties;
    projected->lacksKeys = std::any_of(properties.begin(), properties.end(), [&](const Property& property) {
        return property.IsKey() && !asked(property);
    });
    properties.erase(std::remove_if(properties.begin(), properties.end(),
                                    [&](const Property& property) { return !asked(property); }),
                     properties.end());
    return projected;
}

} // namespace quillet::wmi
