// Inheritance of properties, methods and qualifiers.
#include <quillet-wmi/ClassMerge.h>

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <set>

namespace quillet::wmi {

namespace {

constexpr LONG kNotOverridable = WBEM_FLAVOR_NOT_OVERRIDABLE;

/// What propagates comes first, as the superclass has it; what stands here replaces it or follows.
bool MergeQualifiers(Qualifiers& own, const Qualifiers& inherited, std::wstring_view element,
                     std::wstring& reason) {
    Qualifiers merged = inherited.Inherited();
    for (const Qualifier& qualifier : own.All()) {
        const Qualifier* present = merged.Find(qualifier.name);
        if (present != nullptr && (present->flavor & kNotOverridable) != 0 &&
            !(present->value == qualifier.value)) {
            reason = L"qualifier " + Quoted(qualifier.name) + L" of " + Quoted(element) +
                     L" may not be changed in a subclass";
            return false;
        }
        merged.Set(qualifier);
    }
    own = std::move(merged);
    return true;
}

bool CheckProperty(const Property& property, std::wstring& reason) {
    if (!IsIdentifier(property.name)) {
        reason = Quoted(property.name) + L" is no property name";
        return false;
    }
    if (CimTypeName(property.type) == nullptr) {
        reason = L"property " + Quoted(property.name) + L" has no CIM type";
        return false;
    }
    if (!Fits(property.defaultValue, property.type)) {
        reason = L"the default of property " + Quoted(property.name) + L" does not fit its type";
        return false;
    }
    const bool real = property.type == CIM_REAL32 || property.type == CIM_REAL64;
    if (property.IsKey() && ((property.type & CIM_FLAG_ARRAY) != 0 || real)) {
        reason = L"property " + Quoted(property.name) + L" cannot be a key: its type is " +
                 (real ? std::wstring(CimTypeName(property.type)) : std::wstring(L"an array"));
        return false;
    }
    return true;
}

template <class Element>
bool HasDuplicate(const std::vector<Element>& elements, const wchar_t* kind, std::wstring& reason) {
    std::set<std::wstring_view, NameLess> names;
    for (const Element& element : elements) {
        if (!names.insert(element.name).second) {
            reason = kind + (L" " + Quoted(element.name)) + L" is declared twice";
            return true;
        }
    }
    return false;
}

bool MergeProperties(ClassDefinition& definition, const ClassDefinition* superclass, std::wstring& reason) {
    if (HasDuplicate(definition.properties, L"property", reason)) {
        return false;
    }
    std::vector<Property> merged;
    bool inheritsKeys = false;
    if (superclass != nullptr) {
        merged.reserve(superclass->properties.size() + definition.properties.size());
        for (const Property& property : superclass->properties) {
            inheritsKeys = inheritsKeys || property.IsKey();
            merged.push_back({.name = property.name,
                              .type = property.type,
                              .referenceClass = property.referenceClass,
                              .defaultValue = property.defaultValue,
                              .qualifiers = property.qualifiers.Inherited(),
                              .origin = property.origin,
                              .arrayLimit = property.arrayLimit,
                              .inherited = true});
        }
    }
    for (Property& property : definition.properties) {
        const Property* overridden =
            superclass != nullptr ? superclass->FindProperty(property.name) : nullptr;
        property.inherited = false;
        property.defaultValue = Fits(property.defaultValue, property.type)
                                    ? Normalised(property.defaultValue, property.type)
                                    : property.defaultValue;
        if (overridden == nullptr) {
            if (inheritsKeys && property.IsKey()) {
                reason = L"property " + Quoted(property.name) + L" cannot be a key: the superclass has keys";
                return false;
            }
            property.origin = definition.name;
            merged.push_back(std::move(property));
        } else {
            const Property& base = *overridden;
            if (base.type != property.type) {
                reason = L"property " + Quoted(property.name) + L" is " + CimTypeName(base.type) +
                         ((base.type & CIM_FLAG_ARRAY) != 0 ? L"[]" : L"") + L" in the superclass";
                return false;
            }
            if (!MergeQualifiers(property.qualifiers, base.qualifiers, property.name, reason)) {
                return false;
            }
            if (property.IsKey() && !base.IsKey()) {
                reason = L"property " + Quoted(property.name) + L" cannot become a key in a subclass";
                return false;
            }
            property.origin = base.origin;
            merged[static_cast<std::size_t>(overridden - superclass->properties.data())] =
                std::move(property);
        }
    }
    definition.properties = std::move(merged);
    return std::all_of(definition.properties.begin(), definition.properties.end(),
                       [&reason](const Property& property) { return CheckProperty(property, reason); });
}

bool CheckParameters(const std::vector<Property>& parameters, std::wstring& reason) {
    return !HasDuplicate(parameters, L"parameter", reason) &&
           std::all_of(parameters.begin(), parameters.end(),
                       [&reason](const Property& parameter) { return CheckProperty(parameter, reason); });
}

bool MergeMethods(ClassDefinition& definition, const ClassDefinition* superclass, std::wstring& reason) {
    if (HasDuplicate(definition.methods, L"method", reason)) {
        return false;
    }
    std::vector<Method> merged;
    if (superclass != nullptr) {
        merged = superclass->methods;
        for (Method& method : merged) {
            method.inherited = true;
            method.qualifiers = method.qualifiers.Inherited();
        }
    }
    for (Method& method : definition.methods) {
        if (!IsIdentifier(method.name)) {
            reason = Quoted(method.name) + L" is no method name";
            return false;
        }
        if (!CheckParameters(method.in, reason) || !CheckParameters(method.out, reason)) {
            reason.insert(0, L"method " + Quoted(method.name) + L": ");
            return false;
        }
        method.inherited = false;
        method.origin = definition.name;
        const auto base = std::find_if(merged.begin(), merged.end(), [&method](const Method& other) {
            return SameName(other.name, method.name);
        });
        if (base == merged.end()) {
            merged.push_back(std::move(method));
        } else {
            if (!MergeQualifiers(method.qualifiers, base->qualifiers, method.name, reason)) {
                return false;
            }
            *base = std::move(method);
        }
    }
    definition.methods = std::move(merged);
    return true;
}

} // namespace

bool MergeClass(ClassDefinition& definition, const ClassDefinition* superclass, std::wstring& reason) {
    if (!IsIdentifier(definition.name)) {
        reason = Quoted(definition.name) + L" is no class name";
        return false;
    }
    definition.ancestors.clear();
    if (superclass != nullptr) {
        definition.superclass = superclass->name;
        definition.ancestors.push_back(superclass->name);
        definition.ancestors.insert(definition.ancestors.end(), superclass->ancestors.begin(),
                                    superclass->ancestors.end());
    }
    if (superclass != nullptr &&
        !MergeQualifiers(definition.qualifiers, superclass->qualifiers, definition.name, reason)) {
        return false;
    }
    return MergeProperties(definition, superclass, reason) && MergeMethods(definition, superclass, reason);
}

} // namespace quillet::wmi
