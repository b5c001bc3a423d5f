// Trace lines of the operations. What an operation writes is a fixed text or built from fixed texts; a text
// that came from a provider is only ever an argument, never a format.
#pragma once

#include "LumDebug.h"
#include "Provider/ProviderNames.h"
#include "TraceAtLoad.h"

/// Writes a text as it stands, per cent signs included.
inline void TraceText(const wchar_t* text) {
    LumTrace().PrintText(text);
}

/// Writes a text followed by another: "GetObject -> " and a symbol, for example.
inline void TraceText(const wchar_t* text, const wchar_t* more) {
    LumTrace().Print(L"%s%s", text, more);
}

/// The entry and exit lines of one operation. The usual pair is "Entering CQuillet::<Operation>" and
/// "Exiting CQuillet::<Operation>"; an operation whose lines differ passes both texts.
class OperationTrace {
  public:
    explicit OperationTrace(const wchar_t* operation) : m_operation(operation) {
        LumTrace().Print(L"Entering CQuillet::%s", operation);
    }
    OperationTrace(const wchar_t* entry, const wchar_t* exit) : m_exit(exit) { TraceText(entry); }
    ~OperationTrace() {
        if (m_operation) {
            LumTrace().Print(L"Exiting CQuillet::%s", m_operation);
        } else if (m_exit) {
            TraceText(m_exit);
        }
    }
    OperationTrace(const OperationTrace&) = delete;
    OperationTrace& operator=(const OperationTrace&) = delete;

    /// Traces a failed step and yields its code, so that a failure is one line of an operation.
    HRESULT Fail(HRESULT code, const wchar_t* text) const {
        TraceText(text);
        return code;
    }

  private:
    const wchar_t* m_operation = nullptr;
    const wchar_t* m_exit = nullptr;
};
