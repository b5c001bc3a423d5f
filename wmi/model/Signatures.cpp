// The parameters of a method as classes of their own.
#include <quillet-wmi/Model.h>

namespace quillet::wmi {

namespace {

ClassPtr ParametersClass(std::vector<Property> parameters) {
    if (parameters.empty()) {
        return nullptr;
    }
    auto definition = std::make_shared<ClassDefinition>();
    definition->name = L"__PARAMETERS";
    definition->properties = std::move(parameters);
    for (auto& parameter : definition->properties) {
        parameter.origin = definition->name;
    }
    return definition;
}

} // namespace

ClassPtr InSignature(const Method& method) {
    return ParametersClass(method.in);
}

ClassPtr OutSignature(const Method& method) {
    if (method.returnsVoid) {
        return ParametersClass(method.out);
    }
    auto parameters = method.out;
    Property returned;
    returned.name = L"ReturnValue";
    returned.type = method.returnType;
    returned.qualifiers.Set({L"out", CIM_BOOLEAN, Value::Bool(true), 0, false, {}});
    parameters.push_back(std::move(returned));
    return ParametersClass(std::move(parameters));
}

} // namespace quillet::wmi
