// One call of IWbemServices.
#pragma once

#include "com/Blanket.h"
#include "com/Context.h"
#include "connection/Session.h"

namespace quillet::wmi {

/// One call on a proxy until it reaches the connection.
struct ServiceCall {
    ServiceCall(const Session& of, Operation operation, std::wstring_view target, LONG flags = 0,
                IWbemContext* values = nullptr, bool callResult = false, std::wstring_view method = {})
        : session(of) {
        context.flags = flags;
        context.hasContext = values != nullptr;
        context.values = ContextValues(values);
        context.locale = of.locale;
        context.callResult = callResult;
        seen.operation = operation;
        seen.target = target;
        seen.method = method;
        seen.context = &context;
    }
    ServiceCall(const ServiceCall&) = delete;
    ServiceCall& operator=(const ServiceCall&) = delete;

    /// E_ACCESSDENIED for a proxy without its blanket, then WBEM_E_INVALID_PARAMETER.
    HRESULT Admit(const Blanket& blanket, bool argumentsValid,
                  const std::vector<NamedValue>& arguments = {}) const {
        if (!blanket.Suffices()) {
            return Refuse(E_ACCESSDENIED, arguments);
        }
        return argumentsValid ? HRESULT(S_OK) : Refuse(HRESULT(WBEM_E_INVALID_PARAMETER), arguments);
    }
    HRESULT Refuse(HRESULT code, const std::vector<NamedValue>& arguments = {}) const {
        return Refused(session.observer, seen, code, arguments);
    }
    Connection& To() const { return *session.connection; }

    const Session& session;
    CallContext context;
    ObservedCall seen;
};

} // namespace quillet::wmi
