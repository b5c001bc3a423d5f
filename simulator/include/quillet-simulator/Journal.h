// The journal: every call that a client makes, in order, as a test or a person wants to read it.
#pragma once

#include <quillet-simulator/Model.h>

#include <mutex>

namespace quillet::simulator {

/// What a client can call. The first group reaches the provider (on a real machine a remote round trip),
/// the second stays with the object in the client's hands.
enum class Operation {
    ConnectServer,
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
/// Whether the operation is a round trip to the provider.
bool IsProviderCall(Operation operation) noexcept;

/// One named value of a call: an in-parameter or a context value.
struct NamedValue {
    std::wstring name;
    VARTYPE vt = VT_EMPTY; ///< the VARIANT type that the client put
    CIMTYPE type = 0;      ///< the CIM type of the parameter or property
    Value value;
};

/// One call.
struct JournalEntry {
    Operation operation = Operation::GetObject;
    std::wstring target;               ///< class name, object path, query text or property name
    std::wstring method;               ///< ExecMethod and GetMethod
    std::vector<NamedValue> arguments; ///< in-parameters, or the properties put, in the order of the puts
    std::vector<NamedValue> context;   ///< the context's values at the time of the call, by name
    bool hasContext = false;           ///< whether a context was passed at all
    LONG flags = 0;
    DWORD thread = 0;
    HRESULT result = 0;

    const NamedValue* Argument(std::wstring_view name) const noexcept;
    const NamedValue* ContextValue(std::wstring_view name) const noexcept;
    /// One line for people: "ExecMethod \\…:Zorel_NetService…, Apply(ClientSetHandle=7) -> 0x00000000".
    /// Parameters and properties marked as secrets in the schema print as ***.
    std::wstring Line() const;
};

/// Safe for many threads.
class Journal {
  public:
    void Add(JournalEntry entry);
    void Clear();
    /// Everything, in order.
    std::vector<JournalEntry> All() const;
    /// Only what reached the provider.
    std::vector<JournalEntry> ProviderCalls() const;
    /// Only the calls of one operation.
    std::vector<JournalEntry> Of(Operation operation) const;
    /// How many entries there are, cheaply.
    std::size_t Size() const;

  private:
    mutable std::mutex m_mutex;
    std::vector<JournalEntry> m_entries;
};

} // namespace quillet::simulator
