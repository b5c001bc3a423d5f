// Diagnostic tests: listing those of an adapter, starting one and stopping it.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "ProviderInstance.h"
#include "ProviderMethod.h"
#include "Trace.h"
#include "VariantValue.h"
#include "Wql.h"

#include <memory>
#include <new>

using ATL::CComPtr;

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
    std::unique_ptr<CDiagTest> test(new (std::nothrow) CDiagTest);
    if (!test) {
        TraceText(L"(NULL == pDiagTest)");
        return E_FAIL;
    }
    read.String(L_ZOREL_PATH, test->m_wsUniqueID)
        .String(L_PROP_DIAG_NAME, test->m_wsName)
        .Int(L_PROP_DIAG_ID, test->m_lTestId)
        .Bool(L_PROP_DIAG_GROUPED, test->m_bGrouped);
    if (test->m_bGrouped) {
        read.Int(L_PROP_DIAG_GROUP_ID, test->m_lGroupId);
    }
    if (read.Failed()) {
        return read.Result();
    }
    AddRecord(tests, std::move(test));
    return S_OK;
}

/// Finds the path of the first result that bears the name of a test.
HRESULT FindResult(const ProviderSession& session, const std::wstring& testName, std::wstring& path) {
    ProviderEnum results;
    HRESULT result = session.Enumerate(L_CLASS_ZOREL_DIAGRESULT, results,
                                       L"CreateInstanceEnum -> L_CLASS_ZOREL_DIAGRESULT");
    CComPtr<IWbemClassObject> instance;
    while (SUCCEEDED(result) && results.Next(instance)) {
        PropertyReader read(instance, L"pResultInstance");
        std::wstring name;
        result = read.String(L_PROP_DIAGRESULT_DIAGNOSTICNAME, name).Result();
        if (FAILED(result)) {
            return result;
        }
        if (name.empty()) {
            TraceText(L"Error - unidentified/empty Diag name");
        } else if (name == testName) {
            return read.When(PropertyReader::OnNull::Fail).String(L_ZOREL_PATH, path).Result();
        }
    }
    if (FAILED(result)) {
        return result;
    }
    if (FAILED(results.Result())) {
        TraceText(L"pEnumResult -> Next");
        return results.Result();
    }
    // Without a result the provider could not tell what to stop.
    TraceText(L"(pResultInstance == NULL)");
    return RESULT_WBEM_FAILED;
}

constexpr const wchar_t* EMPTY_IDENTIFIERS = L"((wsDiagID.empty()) || (wsAdapterID.empty()))";

} // namespace

HRESULT CQuillet::EnumerateDiagnostics(const std::wstring& adapterId, CDiagTests& tests) {
    const OperationTrace trace(L"EnumerateDiagnostics");
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"(wsAdapterID.empty())");
    }
    tests.RemoveAll();
    const ProviderSession session(*this);
    ProviderEnum instances;
    HRESULT result = session.Query(Wql::Associators(adapterId, L_CLASS_ZOREL_DIAGTEST.name), instances,
                                   L"ExecQuery -> ASSOC RESULTCLASS = ZOREL_DIAGTEST");
    CComPtr<IWbemClassObject> instance;
    while (SUCCEEDED(result) && instances.Next(instance)) {
        result = AppendTest(instance, tests);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(instances.Result()) ? trace.Fail(instances.Result(), L"pEnumDiags -> Next") : S_OK;
}

HRESULT CQuillet::RunDiagnostics(const std::wstring& diagId, const std::wstring& adapterId) {
    const OperationTrace trace(L"RunDiagnostics");
    if (diagId.empty() || adapterId.empty()) {
        return trace.Fail(E_FAIL, EMPTY_IDENTIFIERS);
    }
    const ProviderSession session(*this);
    LONG verdict = 0;
    const HRESULT result = ProviderMethod(session, L_CLASS_ZOREL_DIAGTEST, L_METHOD_DIAG_RUNTEST)
                               .Put(L_PARAM_DIAG_SYSTEMELEMENT, VariantOfText(adapterId))
                               .Exec(diagId.c_str(), L"wsDiagID")
                               .Read(L"pDiagOutParams")
                               .Long(L_METHOD_RETURN, verdict)
                               .Result();
    // A refused start shows in the state of the test, and only there.
    return SuccessOr(result);
}

HRESULT CQuillet::StopDiagnostics(const std::wstring& diagId, const std::wstring& adapterId) {
    const OperationTrace trace(L"StopDiagnostics");
    if (diagId.empty() || adapterId.empty()) {
        return trace.Fail(E_FAIL, EMPTY_IDENTIFIERS);
    }
    const ProviderSession session(*this);
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
                 .Exec(diagId.c_str(), L"wsDiagID")
                 .Read(L"pDiagOutParams")
                 .Bool(L_PARAM_DIAG_TESTINGSTOPPED, stopped)
                 .Long(L_METHOD_RETURN, verdict)
                 .Result();
    return SuccessOr(result);
}
