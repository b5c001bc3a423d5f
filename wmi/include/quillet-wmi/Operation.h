// What a client of WMI can call.
#pragma once

#include <optional>
#include <string_view>

namespace quillet::wmi {

/// The calls. The first group reaches the provider (on a real machine a remote round trip), the second stays
/// with the object in the client's hands.
enum class Operation {
    ConnectServer,
    OpenNamespace,
    GetObject,
    CreateInstanceEnum,
    CreateClassEnum,
    ExecQuery,
    ExecMethod,
    PutInstance,
    DeleteInstance,
    Next,
    GetCallStatus,
    GetResultObject,
    Unsupported, ///< a service call that is not done; the method's name tells which
    // local to the client
    CreateContext,
    SetContextValue,
    SetBlanket,
    Get,
    Put,
    GetMethod,
    SpawnInstance,
    GetQualifierSet,
    GetPropertyQualifierSet,
    GetQualifier,
};

/// "ExecMethod" and so on.
const wchar_t* OperationName(Operation operation) noexcept;
/// The operation of that name, without regard to case; nothing when there is none.
std::optional<Operation> OperationByName(std::wstring_view name) noexcept;
/// Whether the operation is a round trip to the provider.
bool IsProviderCall(Operation operation) noexcept;

} // namespace quillet::wmi
