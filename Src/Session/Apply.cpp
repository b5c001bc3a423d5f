// The apply transaction, which groups a client's changes, and the provider's pending warnings.
#include <quillet/Quillet.h>

#include "Provider/ProviderMethod.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

namespace {

HRESULT SetClientSet(const ProviderSession& session, LONG clientSet) {
    _variant_t value = VariantOfLong(clientSet);
    return session.Context()->SetValue(CONTEXT_CLIENT_SET_ID, 0, &value);
}

} // namespace

HRESULT CQuillet::BeginApply() {
    const OperationTrace trace(L"Enter CQuillet::BeginApply", L"Exit CQuillet::BeginApply");
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN,
                          ProviderMethod::ClassFetch::WithoutContext);
    _variant_t handle;
    const HRESULT result =
        method.ExecOnNetService().Read(L"pOutParams").Plain(L_PARAM_NET_CLIENTSETHANDLE, handle).Result();
    if (FAILED(result)) {
        return result;
    }
    if (handle.vt != VT_I4) {
        return S_OK;
    }
    m_lClientSetId = V_I4(&handle);
    return SetClientSet(session, m_lClientSetId);
}

HRESULT CQuillet::ApplyDone(bool& followupNeeded) {
    const OperationTrace trace(L"Enter CQuillet::ApplyDone", L"Exit CQuillet::ApplyDone");
    followupNeeded = false;
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_DONE,
                          ProviderMethod::ClassFetch::WithoutContext);
    _variant_t action;
    const HRESULT result =
        method.Put(L_PARAM_NET_CLIENTSETHANDLE, VariantOfLong(m_lClientSetId))
            .ExecOnNetService(
                L"ExecMethod -> bstrObjectPath L_METHOD_NET_APPLY_DONE") // no comma, unlike others
            .Read(L"pOutParams")
            .Plain(L_PARAM_NET_FOLLOWUPACTION, action)
            .Result();
    if (FAILED(result)) {
        return result;
    }
    m_lClientSetId = 0;
    LONG followup = 0;
    ReadVariant(action, followup);
    followupNeeded = followup != 0;
    return SetClientSet(session, 0);
}

HRESULT CQuillet::GetWarnings(ULONGLONG& warnings) {
    const OperationTrace trace(L"Entering CQuillet::GetWarnings", L"Exit CQuillet::GetWarnings");
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_GETALLWARNINGS,
                          ProviderMethod::ClassFetch::WithoutContext);
    LONG refused = 0;
    PropertyReader read = method.ExecOnNetService().Read(L"pAdapter_OutParams", L"GetWarnings() - ");
    if (read.Long(L_METHOD_RETURN, refused).Failed()) {
        return read.Result();
    }
    if (refused != 0) {
        // A provider that will not tell is no error for a caller that only wants to show what there is.
        TraceText(L"GetWarnings() -> unable to retrieve warnings");
        return S_OK;
    }
    return read
        .UInt64(L_PARAM_ALLWARNINGS, warnings,
                L"GetWarnings() - GetPropertyAsUINT64 failed -> pAdapter_OutParams, L_PARAM_ALLWARNINGS")
        .Result();
}
