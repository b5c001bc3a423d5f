// Watching, and disturbing, the calls that never reach a Connection: they end with the objects in the
// client's hands.
#pragma once

#include <quillet-wmi/Connection.h>
#include <quillet-wmi/Operation.h>

#include <functional>

namespace quillet::wmi {

/// A call that ends in the client's own process: on an object that it holds, or refused before it was sent.
struct ObservedCall {
    Operation operation = Operation::Get; ///< what was called
    std::wstring_view target;             ///< a property, a qualifier, a context value, a class, a path
    std::wstring_view method;             ///< GetMethod, and the name of an unsupported call
    const ClassDefinition* definition = nullptr; ///< the class of the object, where there is one
    const CallContext* context = nullptr;        ///< of a service call that was refused
    LONG timeout = kInfiniteTimeout; ///< GetCallStatus and GetResultObject: how long the client waits
    unsigned* owed =
        nullptr; ///< for the same two: milliseconds that the answer still takes, kept from call to call
};

/// What an observer does to a call.
struct Interference {
    std::optional<HRESULT> result; ///< the call does nothing and returns this
    std::optional<HRESULT> status; ///< GetCallStatus: the status that it tells
    bool withhold = false;         ///< success, but the object handed out is null
    /// Fills the VARIANT that is handed out in place of the right one.
    std::function<HRESULT(const Value& value, CIMTYPE type, VARIANT* variant)> fill;
};

/// Watches the calls of all clients of a connection. Safe for many threads.
class CallObserver {
  public:
    CallObserver() = default;
    virtual ~CallObserver() = default;
    CallObserver(const CallObserver&) = delete;
    CallObserver& operator=(const CallObserver&) = delete;

    /// Whether Before may have anything to say, cheaply.
    virtual bool Interferes() const noexcept = 0;
    /// Asked before a call; takes the time that the call is to take.
    virtual Interference Before(const ObservedCall& call) = 0;
    /// Whether After wants to be told of an operation, cheaply.
    virtual bool Records(Operation operation) const noexcept = 0;
    /// Told after a call.
    /// @param arguments the values that the client gave: in-parameters, properties, the value of a context
    /// @param status    GetCallStatus: what the client was told
    virtual void After(const ObservedCall& call, HRESULT result, std::vector<NamedValue> arguments,
                       HRESULT status) = 0;
};

} // namespace quillet::wmi
