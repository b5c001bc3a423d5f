// A class of every type, and what is needed to read and write its instances.
#pragma once

#include <soap/Values.h>

#include <quillet-wmi/Model.h>

#include <string>

namespace quillet::tests {

/// A property by its type; a key where it is said so.
inline wmi::Property PropertyOf(const wchar_t* name, CIMTYPE type, bool isKey = false) {
    wmi::Property property;
    property.name = name;
    property.type = type;
    if (isKey) {
        property.qualifiers.Set({L"key", CIM_BOOLEAN, wmi::Value::Bool(true), 0, false, {}});
    }
    return property;
}

inline wmi::ClassPtr ClassOf(const wchar_t* name, std::vector<wmi::Property> properties) {
    auto definition = std::make_shared<wmi::ClassDefinition>();
    definition->name = name;
    definition->properties = std::move(properties);
    return definition;
}

/// A namespace of three classes: keys that are texts, numbers and references.
inline wsman::Namespace SampleSpace() {
    wsman::Namespace space;
    space.server = L"SERVER12";
    space.name = L"ROOT\\MarloLUM2";
    space.classOf = [](std::wstring_view name) -> wmi::ClassPtr {
        static const wmi::ClassPtr kText = ClassOf(L"T_Text", {PropertyOf(L"Name", CIM_STRING, true)});
        static const wmi::ClassPtr kNumbers = ClassOf(
            L"T_Numbers", {PropertyOf(L"Slot", CIM_UINT32, true), PropertyOf(L"On", CIM_BOOLEAN, true),
                           PropertyOf(L"Offset", CIM_SINT32, true)});
        static const wmi::ClassPtr kLink = ClassOf(
            L"T_Link", {PropertyOf(L"From", CIM_REFERENCE, true), PropertyOf(L"To", CIM_REFERENCE, true)});
        for (const wmi::ClassPtr& each : {kText, kNumbers, kLink}) {
            if (wmi::SameName(each->name, name)) {
                return each;
            }
        }
        return nullptr;
    };
    return space;
}

/// A document whose root declares the prefixes that the wire uses here.
inline std::string Rooted(const std::string& xml) {
    return R"(<r xmlns:p="urn:p" xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
           R"( xmlns:w="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd")"
           R"( xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common")"
           R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">)" +
           xml + "</r>";
}

} // namespace quillet::tests
