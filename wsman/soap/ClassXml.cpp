// CIM-XML, out and in.
#include "soap/ClassXml.h"

#include "soap/Addressing.h"
#include "soap/Scalars.h"
#include "soap/Values.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>
#include <array>
#include <set>

namespace quillet::wsman {

namespace {

constexpr CIMTYPE kTypes[] = {CIM_SINT8,  CIM_UINT8,   CIM_SINT16,   CIM_UINT16, CIM_SINT32,
                              CIM_UINT32, CIM_SINT64,  CIM_UINT64,   CIM_REAL32, CIM_REAL64,
                              CIM_STRING, CIM_BOOLEAN, CIM_DATETIME, CIM_CHAR16};

/// The qualifiers that make a text an object, and say of which class.
constexpr std::array kEmbedded{L"EmbeddedInstance", L"EmbeddedObject"};

std::string TypeName(CIMTYPE type) {
    if (wmi::ElementType(type) == CIM_OBJECT) {
        return "string"; // as the qualifier beside it says otherwise
    }
    const wchar_t* name = wmi::CimTypeName(wmi::ElementType(type));
    return name == nullptr ? "string" : wmi::ToUtf8(name);
}

CIMTYPE TypeCalled(std::string_view name) {
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                     [&](CIMTYPE type) { return TypeName(type) == name; });
    if (found == std::end(kTypes)) {
        throw MessageError("a class has a type that there is not");
    }
    return *found;
}

void WriteClassValue(XmlWriter& xml, const wmi::Value& value) {
    if (value.IsNull()) {
        return;
    }
    if (const wmi::Scalar* scalar = value.AsScalar()) {
        xml.Leaf("VALUE", ScalarText(*scalar));
        return;
    }
    xml.Open("VALUE.ARRAY");
    for (const std::optional<wmi::Scalar>& element : value.Elements()) {
        if (element) {
            xml.Leaf("VALUE", ScalarText(*element));
        } else {
            xml.Open("VALUE.NULL").Close();
        }
    }
    xml.Close();
}

void WriteQualifiers(XmlWriter& xml, const wmi::Qualifiers& qualifiers, LCID locale) {
    for (const wmi::Qualifier& each : qualifiers.All()) {
        const auto localized = each.localized.find(locale);
        xml.Open("QUALIFIER")
            .Attribute("NAME", wmi::ToUtf8(each.name))
            .Attribute("TYPE", TypeName(each.type));
        if ((each.flavor & WBEM_FLAVOR_NOT_OVERRIDABLE) != 0) {
            xml.Attribute("OVERRIDABLE", "false");
        }
        if ((each.flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS) == 0) {
            xml.Attribute("TOSUBCLASS", "false");
        }
        if ((each.flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE) != 0) {
            xml.Attribute("TOINSTANCE", "true");
        }
        if (each.amended) {
            xml.Attribute("TRANSLATABLE", "true");
        }
        WriteClassValue(xml, localized != each.localized.end() ? localized->second : each.value);
        xml.Close();
    }
}

/// A property or a parameter, by the name of its element before its shape is added.
void WriteTyped(XmlWriter& xml, const std::string& kind, const wmi::Property& property, LCID locale) {
    const bool isReference = wmi::ElementType(property.type) == CIM_REFERENCE;
    const char* arrayOfReferences = kind == "PARAMETER" ? ".REFARRAY" : ".ARRAY";
    xml.Open(kind + (isReference ? (wmi::IsArray(property.type) ? arrayOfReferences : ".REFERENCE")
                                 : (wmi::IsArray(property.type) ? ".ARRAY" : "")));
    xml.Attribute("NAME", wmi::ToUtf8(property.name));
    if (isReference) {
        xml.Attribute("REFERENCECLASS", wmi::ToUtf8(property.referenceClass));
    } else {
        xml.Attribute("TYPE", TypeName(property.type));
    }
    if (property.arrayLimit != 0) {
        xml.Attribute("ARRAYSIZE", std::to_string(property.arrayLimit));
    }
    if (!property.origin.empty()) {
        xml.Attribute("CLASSORIGIN", wmi::ToUtf8(property.origin));
    }
    if (property.inherited) {
        xml.Attribute("PROPAGATED", "true");
    }
    WriteQualifiers(xml, property.qualifiers, locale);
    const auto isSaid = [&](const wchar_t* name) { return property.qualifiers.Find(name) != nullptr; };
    if (wmi::ElementType(property.type) == CIM_OBJECT &&
        std::none_of(kEmbedded.begin(), kEmbedded.end(), isSaid)) {
        const bool isAny = property.referenceClass.empty();
        xml.Open("QUALIFIER").Attribute("NAME", isAny ? "EmbeddedObject" : "EmbeddedInstance");
        xml.Attribute("TYPE", isAny ? "boolean" : "string");
        xml.Leaf("VALUE", isAny ? "true" : wmi::ToUtf8(property.referenceClass)).Close();
    }
    if (wmi::ElementType(property.type) != CIM_OBJECT) {
        WriteClassValue(xml, property.defaultValue);
    }
    xml.Close();
}

std::wstring NameIn(const Element& element, std::string_view attribute = "NAME") {
    std::optional<std::wstring> name = wmi::FromUtf8(element.Attribute(attribute).value_or(""));
    if (!name || !wmi::IsIdentifier(*name)) {
        throw MessageError("a class has a name that is none");
    }
    return std::move(*name);
}

bool IsTrue(const Element& element, std::string_view attribute, bool byDefault) {
    const std::string word = element.Attribute(attribute).value_or(byDefault ? "true" : "false");
    return word == "true" || word == "TRUE" || word == "1";
}

/// The value of a qualifier or a default, which stands in a "VALUE" or a "VALUE.ARRAY".
wmi::Value ReadClassValue(const Element& holder, CIMTYPE type) {
    wmi::Property property;
    property.name = L"VALUE";
    property.type = type;
    if (const Element array = holder.Child("VALUE.ARRAY")) {
        property.type = type | CIM_FLAG_ARRAY;
        const std::vector<Element> elements = array.Children();
        return elements.empty() ? wmi::Value(wmi::Value::Array()) : ReadValue(elements, property, {});
    }
    const Element value = holder.Child("VALUE");
    return value ? ReadValue({&value, 1}, property, {}) : wmi::Value();
}

wmi::Qualifiers ReadQualifiers(const Element& holder) {
    wmi::Qualifiers qualifiers;
    for (const Element& each : holder.Children()) {
        if (each.Name() != "QUALIFIER") {
            continue;
        }
        wmi::Qualifier qualifier;
        qualifier.name = NameIn(each);
        const CIMTYPE type = TypeCalled(each.Attribute("TYPE").value_or("string"));
        qualifier.value = ReadClassValue(each, type);
        qualifier.type = qualifier.value.IsArray() ? type | CIM_FLAG_ARRAY : type;
        qualifier.amended = IsTrue(each, "TRANSLATABLE", false);
        qualifier.flavor =
            (IsTrue(each, "OVERRIDABLE", true) ? 0 : LONG(WBEM_FLAVOR_NOT_OVERRIDABLE)) |
            (IsTrue(each, "TOSUBCLASS", true) ? LONG(WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS) : 0) |
            (IsTrue(each, "TOINSTANCE", false) ? LONG(WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE) : 0);
        qualifiers.Set(std::move(qualifier));
    }
    return qualifiers;
}

/// A property or a parameter; nothing for an element that is none.
std::optional<wmi::Property> ReadTyped(const Element& element, const std::string& kind) {
    const std::string name(element.Name());
    if (!name.starts_with(kind)) {
        return std::nullopt;
    }
    const std::string shape = name.substr(kind.size());
    const bool isReference =
        shape == ".REFERENCE" || shape == ".REFARRAY" || element.Attribute("REFERENCECLASS");
    if (!shape.empty() && shape != ".ARRAY" && !isReference) {
        return std::nullopt;
    }
    wmi::Property property;
    property.name = NameIn(element);
    property.type = isReference ? CIMTYPE(CIM_REFERENCE) : TypeCalled(element.Attribute("TYPE").value_or(""));
    property.type |= shape == ".ARRAY" || shape == ".REFARRAY" ? CIMTYPE(CIM_FLAG_ARRAY) : 0;
    property.referenceClass = wmi::FromUtf8(element.Attribute("REFERENCECLASS").value_or("")).value_or(L"");
    property.origin = wmi::FromUtf8(element.Attribute("CLASSORIGIN").value_or("")).value_or(L"");
    property.inherited = IsTrue(element, "PROPAGATED", false);
    property.arrayLimit =
        wmi::ParseDecimal(wmi::FromUtf8(element.Attribute("ARRAYSIZE").value_or("0")).value_or(L"0"))
            .value_or(wmi::TextNumber())
            .magnitude;
    property.qualifiers = ReadQualifiers(element);
    for (const wchar_t* mark : kEmbedded) {
        const wmi::Qualifier* said = property.qualifiers.Find(mark);
        if (said == nullptr || wmi::ElementType(property.type) != CIM_STRING) {
            continue;
        }
        property.type = CIMTYPE(CIM_OBJECT) | (property.type & CIMTYPE(CIM_FLAG_ARRAY));
        const wmi::Scalar* scalar = said->value.AsScalar();
        const auto* className = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr;
        property.referenceClass = className != nullptr ? *className : std::wstring();
        return property;
    }
    property.defaultValue = ReadClassValue(element, wmi::ElementType(property.type));
    return property;
}

wmi::Method ReadMethod(const Element& element) {
    wmi::Method method;
    method.name = NameIn(element);
    const std::optional<std::string> type = element.Attribute("TYPE");
    method.returnsVoid = !type || type->empty();
    method.returnType = method.returnsVoid ? CIMTYPE(CIM_UINT32) : TypeCalled(*type);
    method.origin = wmi::FromUtf8(element.Attribute("CLASSORIGIN").value_or("")).value_or(L"");
    method.inherited = IsTrue(element, "PROPAGATED", false);
    method.qualifiers = ReadQualifiers(element);
    for (const Element& each : element.Children()) {
        if (std::optional<wmi::Property> parameter = ReadTyped(each, "PARAMETER")) {
            const bool isOut = parameter->qualifiers.Has(L"out");
            if (!isOut || parameter->qualifiers.Has(L"in")) {
                method.in.push_back(*parameter);
            }
            if (isOut) {
                method.out.push_back(std::move(*parameter));
            }
        }
    }
    return method;
}

} // namespace

void WriteClass(XmlWriter& xml, const wmi::ClassDefinition& definition, LCID locale) {
    xml.Open("CLASS").Attribute("NAME", wmi::ToUtf8(definition.name));
    if (!definition.superclass.empty()) {
        xml.Attribute("SUPERCLASS", wmi::ToUtf8(definition.superclass));
        std::string derivation;
        for (const std::wstring& ancestor : definition.ancestors) {
            derivation += (derivation.empty() ? "" : ",") + wmi::ToUtf8(ancestor);
        }
        xml.Attribute("DERIVATION", derivation);
    }
    WriteQualifiers(xml, definition.qualifiers, locale);
    for (const wmi::Property& property : definition.properties) {
        WriteTyped(xml, "PROPERTY", property, locale);
    }
    for (const wmi::Method& method : definition.methods) {
        xml.Open("METHOD").Attribute("NAME", wmi::ToUtf8(method.name));
        if (!method.returnsVoid) {
            xml.Attribute("TYPE", TypeName(method.returnType));
        }
        xml.Attribute("CLASSORIGIN", wmi::ToUtf8(method.origin));
        if (method.inherited) {
            xml.Attribute("PROPAGATED", "true");
        }
        WriteQualifiers(xml, method.qualifiers, locale);
        std::set<std::wstring, wmi::NameLess> written;
        for (const wmi::Property& parameter : method.in) {
            written.insert(parameter.name);
            WriteTyped(xml, "PARAMETER", parameter, locale);
        }
        for (const wmi::Property& parameter : method.out) {
            if (written.insert(parameter.name).second) {
                WriteTyped(xml, "PARAMETER", parameter, locale);
            }
        }
        xml.Close();
    }
    xml.Close();
}

wmi::ClassDefinition ReadClass(const Element& element) {
    wmi::ClassDefinition definition;
    definition.name = NameIn(element);
    if (element.Attribute("SUPERCLASS")) {
        definition.superclass = NameIn(element, "SUPERCLASS");
        std::string ancestors = element.Attribute("DERIVATION").value_or("");
        ancestors = ancestors.empty() ? wmi::ToUtf8(definition.superclass) : ancestors;
        for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
            end = ancestors.find(',', begin);
            const std::string_view piece =
                std::string_view(ancestors).substr(begin, end == std::string::npos ? end : end - begin);
            definition.ancestors.push_back(wmi::FromUtf8(piece).value_or(L""));
        }
    }
    definition.qualifiers = ReadQualifiers(element);
    std::set<std::wstring, wmi::NameLess> names;
    for (const Element& each : element.Children()) {
        if (std::optional<wmi::Property> property = ReadTyped(each, "PROPERTY")) {
            if (!names.insert(property->name).second) {
                throw MessageError("a class has a property twice");
            }
            definition.properties.push_back(std::move(*property));
        } else if (each.Name() == "METHOD") {
            definition.methods.push_back(ReadMethod(each));
        }
    }
    return definition;
}

} // namespace quillet::wsman
