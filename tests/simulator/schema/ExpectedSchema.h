// What clients rely on: the provider's classes, properties, methods and parameters, as a table of text.
#pragma once

#include <wbemidl.h>

#include <string>
#include <vector>

namespace quillet::simulator::tests {

/// One property or parameter.
struct ExpectedElement {
    std::wstring name;
    CIMTYPE type = CIM_STRING; ///< with CIM_FLAG_ARRAY for lists
    std::wstring reference;    ///< the class of a reference
    bool key = false;
    bool write = false;
    bool secret = false;
};

struct ExpectedMethod {
    std::wstring name;
    std::vector<ExpectedElement> in;
    std::vector<ExpectedElement> out;
};

struct ExpectedClass {
    std::wstring name;
    std::vector<ExpectedElement> properties;
    std::vector<ExpectedMethod> methods;
};

/// The table, read. What a class inherits is listed with it.
const std::vector<ExpectedClass>& ExpectedClasses();

/// Properties beyond the table, "Class.Property": what a machine keeps for the provider's own use.
const std::vector<std::wstring>& ProviderState();

} // namespace quillet::simulator::tests
