// A class "T", which the peers of the tests have instances of.
#pragma once

#include "ScriptedPeer.h"

#include <string>

namespace quillet::tests {

/// A class "T" with a key "K", as a schema that is known here.
inline wmi::ClassPtr ClassT() {
    auto definition = std::make_shared<wmi::ClassDefinition>();
    definition->name = L"T";
    const auto add = [&](const wchar_t* name, CIMTYPE type) -> wmi::Property& {
        wmi::Property property;
        property.name = name;
        property.type = type;
        property.origin = L"T";
        definition->properties.push_back(std::move(property));
        return definition->properties.back();
    };
    wmi::Qualifier key;
    key.name = L"key";
    key.value = wmi::Value::Bool(true);
    add(L"K", CIM_STRING).qualifiers.Set(key);
    add(L"Number", CIM_UINT32);
    add(L"Flag", CIM_BOOLEAN);
    add(L"Since", CIM_DATETIME);
    add(L"Ports", CIM_UINT16 | CIM_FLAG_ARRAY);
    add(L"Owner", CIM_REFERENCE);
    wmi::Method method;
    method.name = L"Do";
    definition->methods.push_back(method);
    return definition;
}

inline wsman::RemoteOptions KnowingT(int port) {
    wsman::RemoteOptions options = OptionsFor(port);
    options.schema = [](std::wstring_view name) { return name == L"T" ? ClassT() : nullptr; };
    options.isSchemaTrusted = true;
    return options;
}

inline std::string Item(const std::string& key) {
    return "<p:T><p:K>" + key + "</p:K></p:T>";
}

/// The names of all objects that a stream has, and how it ended.
inline std::string Drain(wmi::ObjectStream& stream) {
    std::string names;
    for (;;) {
        wmi::Object object;
        ULONG returned = 0;
        const HRESULT result = stream.Next(wmi::kInfiniteTimeout, {&object, 1}, returned);
        if (returned == 0) {
            return names + CodeOf(result);
        }
        const std::wstring key = object.instance->Text(L"K");
        names += std::string(key.begin(), key.end()) + ' ';
    }
}

inline HRESULT Get(wmi::Connection& connection, wmi::Object& found) {
    return connection.GetObject({}, L"T.K=\"a\"", found).status;
}
inline HRESULT Get(wmi::Connection& connection) {
    wmi::Object found;
    return Get(connection, found);
}
inline HRESULT Do(wmi::Connection& connection) {
    wmi::InstancePtr out;
    return connection.ExecMethod({}, L"T.K=\"a\"", L"Do", nullptr, out).status;
}

} // namespace quillet::tests
