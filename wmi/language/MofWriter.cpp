// Classes and instances as MOF text.
#include <quillet-wmi/Mof.h>

#include "language/MofQualifiers.h"

#include <quillet-wmi/Text.h>

namespace quillet::wmi {

namespace {

void AppendEscape(std::wstring& out, char32_t code) {
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    // Always four digits, so that no digit after it can be taken for one of the escape.
    out += L"\\x";
    for (int shift = 12; shift >= 0; shift -= 4) {
        out += kDigits[(code >> shift) & 0xF];
    }
}

void AppendString(std::wstring& out, std::wstring_view text) {
    out += L'"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        const auto code = static_cast<char32_t>(c) & (sizeof(wchar_t) == 2 ? 0xFFFFu : 0xFFFFFFFFu);
        const bool high = code >= 0xD800 && code <= 0xDBFF;
        const bool low = code >= 0xDC00 && code <= 0xDFFF;
        const bool pair = high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
        switch (c) {
        case L'"':
            out += L"\\\"";
            break;
        case L'\\':
            out += L"\\\\";
            break;
        case L'\n':
            out += L"\\n";
            break;
        case L'\r':
            out += L"\\r";
            break;
        case L'\t':
            out += L"\\t";
            break;
        default:
            if (pair) {
                out += c;
                out += text[++i];
            } else if (code < 0x20 || code == 0x7F || high || low) {
                AppendEscape(out, code);
            } else {
                // What lies above Unicode came from no text; it is written as the replacement character.
                out += code > 0x10FFFF ? static_cast<wchar_t>(0xFFFD) : c;
            }
        }
    }
    out += L'"';
}

void AppendValue(std::wstring& out, const Value& value);

void AppendObject(std::wstring& out, const Instance& object) {
    out += L"instance of " + object.definition->name + L" {";
    for (std::size_t i = 0; i < object.values.size(); ++i) {
        if (!object.values[i].IsNull()) {
            out += L' ' + object.definition->properties[i].name + L" = ";
            AppendValue(out, object.values[i]);
            out += L';';
        }
    }
    out += L" }";
}

void AppendScalar(std::wstring& out, const std::optional<Scalar>& scalar) {
    if (!scalar) {
        out += L"NULL";
    } else if (const auto* flag = std::get_if<bool>(&*scalar)) {
        out += *flag ? L"TRUE" : L"FALSE";
    } else if (const auto* number = std::get_if<std::int64_t>(&*scalar)) {
        out += std::to_wstring(*number);
    } else if (const auto* magnitude = std::get_if<std::uint64_t>(&*scalar)) {
        out += std::to_wstring(*magnitude);
    } else if (const auto* real = std::get_if<double>(&*scalar)) {
        out += RealText(*real);
    } else if (const auto* object = std::get_if<Embedded>(&*scalar)) {
        AppendObject(out, *object->object);
    } else {
        AppendString(out, std::get<std::wstring>(*scalar));
    }
}

void AppendValue(std::wstring& out, const Value& value) {
    if (const Value::Array* array = value.AsArray()) {
        out += L'{';
        const wchar_t* separator = L"";
        for (const std::optional<Scalar>& element : *array) {
            out += separator;
            AppendScalar(out, element);
            separator = L", ";
        }
        out += L'}';
        return;
    }
    if (const Value::Bytes* bytes = value.AsBytes()) {
        out.reserve(out.size() + bytes->size() * 5 + 2);
        out += L'{';
        for (std::size_t i = 0; i < bytes->size(); ++i) {
            out += i == 0 ? L"" : L", ";
            out += std::to_wstring((*bytes)[i]);
        }
        out += L'}';
        return;
    }
    AppendScalar(out, value.AsScalar() != nullptr ? std::optional<Scalar>(*value.AsScalar()) : std::nullopt);
}

void AppendQualifier(std::wstring& out, const std::wstring& name, const Qualifier& qualifier,
                     const Value& value) {
    out += name;
    if (value.IsArray()) {
        AppendValue(out, value);
    } else if (value != Value::Bool(true) && !(value.IsNull() && qualifier.type != CIM_BOOLEAN)) {
        out += L'(';
        AppendValue(out, value);
        out += L')';
    }
}

/// The qualifiers that stand on the element itself, with a blank or line end after them.
std::wstring QualifierList(const Qualifiers& qualifiers, const wchar_t* after) {
    std::wstring out;
    for (const Qualifier& qualifier : qualifiers.All()) {
        if ((qualifier.flavor & WBEM_FLAVOR_ORIGIN_PROPAGATED) != 0) {
            continue;
        }
        out += out.empty() ? L"[" : L", ";
        AppendQualifier(out, qualifier.name, qualifier, qualifier.value);
        std::wstring flavors;
        if (qualifier.amended) {
            flavors += L" Translatable";
        }
        if ((qualifier.flavor & WBEM_FLAVOR_NOT_OVERRIDABLE) != 0) {
            flavors += L" DisableOverride";
        }
        if ((qualifier.flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE) != 0) {
            flavors += L" ToInstance";
        }
        const bool toSubclass = (qualifier.flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS) != 0;
        flavors += toSubclass ? L"" : L" Restricted";
        out += flavors.empty() ? std::wstring() : L" :" + flavors;
        for (const auto& [language, text] : qualifier.localized) {
            if (const wchar_t* locale = LocaleOf(language)) {
                out += L", ";
                AppendQualifier(out, qualifier.name + L'_' + locale, qualifier, text);
            }
        }
    }
    return out.empty() ? out : out + L"]" + after;
}

std::wstring Declarator(const Property& property) {
    std::wstring out;
    if (ElementType(property.type) == CIM_REFERENCE) {
        out += property.referenceClass + L" REF ";
    } else {
        out += std::wstring(CimTypeName(property.type)) + L' ';
    }
    out += property.name;
    if (IsArray(property.type)) {
        out +=
            L'[' + (property.arrayLimit != 0 ? std::to_wstring(property.arrayLimit) : std::wstring()) + L']';
    }
    return out;
}

/// The parameters in one list again: those that are both In and Out stand in both lists.
std::vector<const Property*> Parameters(const Method& method) {
    std::vector<const Property*> parameters;
    for (const Property& parameter : method.in) {
        parameters.push_back(&parameter);
    }
    for (const Property& parameter : method.out) {
        bool isIn = false;
        for (const Property& other : method.in) {
            isIn = isIn || SameName(other.name, parameter.name);
        }
        if (!isIn) {
            parameters.push_back(&parameter);
        }
    }
    return parameters;
}

std::wstring MethodText(const Method& method) {
    std::wstring out = L"    " + QualifierList(method.qualifiers, L"\n    ");
    out += method.returnsVoid ? L"void" : CimTypeName(method.returnType);
    out += L' ' + method.name + L'(';
    const wchar_t* separator = L"";
    for (const Property* parameter : Parameters(method)) {
        out += separator;
        out += L"\n        " + QualifierList(parameter->qualifiers, L" ") + Declarator(*parameter);
        separator = L",";
    }
    return out + L");\n";
}

} // namespace

std::wstring ObjectText(const Instance& instance) {
    if (!instance.definition) {
        return {};
    }
    const ClassDefinition& definition = *instance.definition;
    std::wstring out = L"instance of " + definition.name + L"\n{\n";
    for (std::size_t i = 0; i < definition.properties.size() && i < instance.values.size(); ++i) {
        const Property& property = definition.properties[i];
        if (property.IsKey() || instance.values[i] != property.defaultValue) {
            out += L"    " + property.name + L" = ";
            AppendValue(out, instance.values[i]);
            out += L";\n";
        }
    }
    return out + L"};\n";
}

std::wstring ObjectText(const ClassDefinition& definition) {
    std::wstring out = QualifierList(definition.qualifiers, L"\n") + L"class " + definition.name;
    if (!definition.superclass.empty()) {
        out += L" : " + definition.superclass;
    }
    out += L"\n{\n";
    for (const Property& property : definition.properties) {
        if (property.inherited) {
            continue;
        }
        out += L"    " + QualifierList(property.qualifiers, L" ") + Declarator(property);
        if (!property.defaultValue.IsNull()) {
            out += L" = ";
            AppendValue(out, property.defaultValue);
        }
        out += L";\n";
    }
    for (const Method& method : definition.methods) {
        if (!method.inherited) {
            out += MethodText(method);
        }
    }
    return out + L"};\n";
}

std::string WriteInstancesAsMof(const std::vector<InstancePtr>& instances) {
    std::string out;
    for (const InstancePtr& instance : instances) {
        out += ToUtf8(ObjectText(*instance));
        out += '\n';
    }
    return out;
}

} // namespace quillet::wmi
