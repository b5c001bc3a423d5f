// Diagnostic tests: listing those of an adapter, starting one and stopping it.
#include <quillet/Quillet.h>

#include "Provider/MakeRecord.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Variants/VariantValue.h"
#include "Provider/Wql.h"

namespace {

/// Reads a test and appends it; a test that nobody could name in a call is left out.
HRESULT AppendTest(IWbemClassObject* instance, CDiagTests& tests) {
    PropertyReader read(instance, L"pIAdapterDiag_Instance");
    std::wstring path;
    if (read.String(L_ZOREL_PATH, path).Failed()) {
        return read.Result();
    }
    if (path.empty()) {
        TraceText(L"Error - unidentified/empty Diag Unique Id");
        return S_OK;
    }
    return AppendRecord<CDiagTest>(tests, L"(NULL == pDiagTest)", [&](CDiagTest& test) {
        read.String(L_ZOREL_PATH, test.m_wsUniqueID)
            .String(L_PROP_DIAG_NAME, test.m_wsName)
            .Int(L_PROP_DIAG_ID, test.m_lTestId)
            .Bool(L_PROP_DIAG_GROUPED, test.m_bGrouped);
        if (test.m_bGrouped) {
            read.Int(L_PROP_DIAG_GROUP_ID, test.m_lGroupId);
        }
        return read.Result();
    });
}

/// Finds the path of the first result that bears the name of a test.
HRESULT FindResult(const ProviderSession& session, const std::wstring& testName, std::wstring& path) {
    ProviderEnum results =
        session.Enumerate(L_CLASS_ZOREL_DIAGRESULT, L"CreateInstanceEnum -> L_CLASS_ZOREL_DIAGRESULT");
    if (results.Failed()) {
        return results.Result();
    }
    ATL::CComPtr<IWbemClassObject> instance;
    while (results.Next(instance)) {
        PropertyReader read(instance, L"pResultInstance");
        std::wstring name;
        if (read.String(L_PROP_DIAGRESULT_DIAGNOSTICNAME, name).Failed()) {
            return read.Result();
        }
        if (name.empty()) {
            TraceText(L"Error - unidentified/empty Diag name");
        } else if (name == testName) {
            return read.When(PropertyReader::OnNull::Fail).String(L_ZOREL_PATH, path).Result();
        }
    }
    const HRESULT result = results.End(L"pEnumResult -> Next");
    if (FAILED(result)) {
        return result;
    }
    // Without a result the provider could not tell what to stop.
    TraceText(L"(pResultInstance == NULL)");
    return RESULT_WBEM_FAILED;
}

Refusal NoTestOrAdapter(const std::wstring& diagId, const std::wstring& adapterId) {
    return {diagId.empty() || adapterId.empty(), L"((wsDiagID.empty()) || (wsAdapterID.empty()))"};
}

} // namespace

HRESULT CQuillet::EnumerateDiagnostics(const std::wstring& adapterId, CDiagTests& tests) {
    const OperationTrace trace(L"EnumerateDiagnostics");
    const ProviderSession session(*this, NoAdapter(adapterId));
    if (!adapterId.empty()) {
        tests.RemoveAll();
    }
    return session
        .Query(Wql::Associators(adapterId, L_CLASS_ZOREL_DIAGTEST.name),
               L"ExecQuery -> ASSOC RESULTCLASS = ZOREL_DIAGTEST")
        .ForEach(L"pEnumDiags -> Next",
                 [&](IWbemClassObject* instance) { return AppendTest(instance, tests); });
}

HRESULT CQuillet::RunDiagnostics(const std::wstring& diagId, const std::wstring& adapterId) {
    const OperationTrace trace(L"RunDiagnostics");
    const ProviderSession session(*this, NoTestOrAdapter(diagId, adapterId));
    LONG verdict = 0;
    const HRESULT result = ProviderMethod(session, L_CLASS_ZOREL_DIAGTEST, L_METHOD_DIAG_RUNTEST)
                               .Put(L_PARAM_DIAG_SYSTEMELEMENT, VariantOfText(adapterId))
                               .Exec(diagId)
                               .Read(L"pDiagOutParams")
                               .Long(L_METHOD_RETURN, verdict)
                               .Result();
    // A refused start shows in the state of the test, and only there.
    return SuccessOr(result);
}

HRESULT CQuillet::StopDiagnostics(const std::wstring& diagId, const std::wstring& adapterId) {
    const OperationTrace trace(L"StopDiagnostics");
    const ProviderSession session(*this, NoTestOrAdapter(diagId, adapterId));
    const ProviderInstance test(session, diagId, L"GetObject -> wsDiagID");
    std::wstring name;
    HRESULT result = test.Read(L"pInstanceHandle").String(L_PROP_DIAG_NAME, name).Result();
    if (FAILED(result)) {
        return result;
    }
    if (name.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"Unable to get Test ID of the adapter");
    }
    std::wstring resultPath;
    result = FindResult(session, name, resultPath);
    if (FAILED(result)) {
        return result;
    }
    bool stopped = false;
    LONG verdict = 0;
    result = ProviderMethod(session, L_CLASS_ZOREL_DIAGTEST, L_METHOD_DIAG_DISCONTINUETEST)
                 .Put(L_PARAM_DIAG_SYSTEMELEMENT, VariantOfText(adapterId))
                 .Put(L_PARAM_DIAG_RESULT, VariantOfText(resultPath))
                 .Exec(diagId)
                 .Read(L"pDiagOutParams")
                 .Bool(L_PARAM_DIAG_TESTINGSTOPPED, stopped)
                 .Long(L_METHOD_RETURN, verdict)
                 .Result();
    return SuccessOr(result);
}
