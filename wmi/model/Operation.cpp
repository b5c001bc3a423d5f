// The names of the calls.
#include <quillet-wmi/Model.h>
#include <quillet-wmi/Operation.h>

#include <algorithm>
#include <array>

namespace quillet::wmi {

namespace {

struct NamedOperation {
    Operation operation;
    const wchar_t* name;
};

constexpr std::array kOperations{
    NamedOperation{Operation::ConnectServer, L"ConnectServer"},
    NamedOperation{Operation::OpenNamespace, L"OpenNamespace"},
    NamedOperation{Operation::GetObject, L"GetObject"},
    NamedOperation{Operation::CreateInstanceEnum, L"CreateInstanceEnum"},
    NamedOperation{Operation::CreateClassEnum, L"CreateClassEnum"},
    NamedOperation{Operation::ExecQuery, L"ExecQuery"},
    NamedOperation{Operation::ExecMethod, L"ExecMethod"},
    NamedOperation{Operation::PutInstance, L"PutInstance"},
    NamedOperation{Operation::DeleteInstance, L"DeleteInstance"},
    NamedOperation{Operation::Next, L"Next"},
    NamedOperation{Operation::GetCallStatus, L"GetCallStatus"},
    NamedOperation{Operation::GetResultObject, L"GetResultObject"},
    NamedOperation{Operation::Unsupported, L"Unsupported"},
    NamedOperation{Operation::CreateContext, L"CreateContext"},
    NamedOperation{Operation::SetContextValue, L"SetContextValue"},
    NamedOperation{Operation::SetBlanket, L"SetBlanket"},
    NamedOperation{Operation::Get, L"Get"},
    NamedOperation{Operation::Put, L"Put"},
    NamedOperation{Operation::GetMethod, L"GetMethod"},
    NamedOperation{Operation::SpawnInstance, L"SpawnInstance"},
    NamedOperation{Operation::GetQualifierSet, L"GetQualifierSet"},
    NamedOperation{Operation::GetPropertyQualifierSet, L"GetPropertyQualifierSet"},
    NamedOperation{Operation::GetQualifier, L"GetQualifier"},
};

} // namespace

const wchar_t* OperationName(Operation operation) noexcept {
    const auto* found = std::find_if(kOperations.begin(), kOperations.end(),
                                     [operation](const auto& named) { return named.operation == operation; });
    return found != kOperations.end() ? found->name : L"";
}

std::optional<Operation> OperationByName(std::wstring_view name) noexcept {
    const auto* found = std::find_if(kOperations.begin(), kOperations.end(),
                                     [name](const auto& named) { return SameName(named.name, name); });
    return found != kOperations.end() ? std::optional<Operation>(found->operation) : std::nullopt;
}

bool IsProviderCall(Operation operation) noexcept {
    return operation < Operation::CreateContext;
}

} // namespace quillet::wmi
