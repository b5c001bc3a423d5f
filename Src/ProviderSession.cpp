#include "ProviderSession.h"

#include "Trace.h"

ProviderSession::ProviderSession(CQuillet& quillet) : m_quillet(quillet) {
    m_service.Attach(quillet.GetWbemService());
    m_context.Attach(quillet.GetContext());
    if (FAILED(Result())) {
        TraceText(L"((pIWbemService == NULL) || (pIWbemContext == NULL))");
    }
}
