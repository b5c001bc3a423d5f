// The results of diagnostic tests, and of packages of tests.
#include <quillet/Quillet.h>

#include "Provider/ProviderInstance.h"
#include "Diagnostics/QualifierTexts.h"
#include "Variants/SafeArray.h"
#include "Variants/VariantValue.h"
#include "Provider/Wql.h"

#include <algorithm>
#include <new>
#include <utility>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

constexpr const wchar_t* RESULT_INSTANCE = L"pResultInstance";
constexpr const wchar_t* RESULTS_QUERY_FAILED = L"ASSOC RESULTCLASS = L_CLASS_ZOREL_DIAGRESULT";
constexpr const wchar_t* RESULTS_BROKE_OFF = L"pEnumResult -> Next";
constexpr const wchar_t* PACKAGE_FAILED = L"GetDiagnosticsPackageResults failed";

/// The members that the result of a test and that of a package's member have in common.
HRESULT ReadOutcome(IWbemClassObject* instance, CDiagResult& result) {
    return PropertyReader(instance, RESULT_INSTANCE)
        .String(L_ZOREL_PATH, result.m_sUniqueID)
        .String(L_PROP_DIAGRESULT_DIAGNOSTICNAME, result.m_wsDiagnosticName)
        .String(L_PROP_DIAGRESULT_PACKAGENAME, result.m_wsPackageName)
        .String(L_PROP_DIAGRESULT_TITLE, result.m_wsTitle)
        .String(L_PROP_DIAGRESULT_RESULT, result.m_wsResult)
        .Int(L_PROP_DIAGRESULT_RESULTCODE, result.m_lResultCode)
        .String(L_PROP_DIAGRESULT_DESCRIPTION, result.m_wsDescription)
        .Bool(L_PROP_DIAGRESULT_ISPACKAGE, result.m_bIsPackage)
        .Result();
}

/// The packages from the outermost to the one that is being read. A provider that puts a package into itself,
/// directly or through others, must not keep its client busy for ever, nor use up its stack.
class PackagePath {
  public:
    bool Contains(const std::wstring& package) const {
        return std::find(m_names.begin(), m_names.end(), package) != m_names.end();
    }
    bool IsTooDeep() const { return m_names.size() >= MOST; }

    class Step {
      public:
        Step(PackagePath& path, const std::wstring& package) : m_path(path) {
            m_path.m_names.push_back(package);
        }
        ~Step() { m_path.m_names.pop_back(); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        PackagePath& m_path;
    };

  private:
    /// Far more than tests can be nested in earnest, and far less than a stack holds.
    static constexpr std::size_t MOST = 256;

    std::vector<std::wstring> m_names;
};

HRESULT ReadPackage(const ProviderSession& session, PackagePath& path, const std::wstring& package,
                    CDiagResult& result);

/// The results of a package are values and no records of a collection, but find no memory alike.
HRESULT AddResult(CDiagResult& package, CDiagResult&& member) {
    try {
        package.m_vecPackageResults.push_back(std::move(member));
        return S_OK;
    } catch (const std::bad_alloc&) {
        TraceText(L"pDiagResult == NULL");
        return E_FAIL;
    }
}

/// Reads the results of a member that is itself a package. What goes wrong there is not the package's fault.
void ReadInnerPackage(const ProviderSession& session, PackagePath& path, CDiagResult& member) {
    // A package bears its own name, or that of the package it belongs to, which is being read already.
    const bool named = !path.Contains(member.m_wsPackageName);
    const std::wstring& package = named ? member.m_wsPackageName : member.m_wsDiagnosticName;
    if (!named && path.Contains(package)) {
        TraceText(L"GetDiagnosticsPackageResults -> the package contains itself");
        return;
    }
    if (path.IsTooDeep() || FAILED(ReadPackage(session, path, package, member))) {
        TraceText(PACKAGE_FAILED);
    }
}

/// A record that was never read belongs to no package.
HRESULT CheckRecord(const CDiagResult& result) {
    if (result.m_sUniqueID.empty()) {
        TraceText(L"(rDiagResult.m_sUniqueID.empty())");
        return E_FAIL;
    }
    return S_OK;
}

/// Fills the package results of a record with the members of the package of this name.
HRESULT ReadMembers(const ProviderSession& session, PackagePath& path, const std::wstring& package,
                    CDiagResult& result) {
    const PackagePath::Step step(path, package);
    result.m_vecPackageResults.clear();
    return session
        .Query(Wql::MembersOfPackage(L_CLASS_ZOREL_DIAGRESULT.name, L_PROP_DIAGRESULT_PACKAGENAME.name,
                                     L_PROP_DIAGRESULT_DIAGNOSTICNAME.name, package),
               RESULTS_QUERY_FAILED)
        .ForEach(RESULTS_BROKE_OFF, [&](IWbemClassObject* instance) {
            CDiagResult member;
            const HRESULT code = ReadOutcome(instance, member);
            if (FAILED(code)) {
                return code;
            }
            if (member.m_bIsPackage) {
                ReadInnerPackage(session, path, member);
            }
            return AddResult(result, std::move(member));
        });
}

/// The operation for packages, on the session of the operation that it is part of.
HRESULT ReadPackage(const ProviderSession& session, PackagePath& path, const std::wstring& package,
                    CDiagResult& result) {
    const OperationTrace trace(L"GetDiagnosticsPackageResults");
    const HRESULT code = CheckRecord(result);
    return FAILED(code) ? code : ReadMembers(session, path, package, result);
}

/// Which of the texts stands for a state.
LONG TextIndex(LONG state) {
    // State 1 has always been shown with the text of state 2; users know it so.
    return state == 1 ? 2 : state;
}

/// The text of a state in the connection's language. A state without a text keeps the one of the record; only
/// a list of texts that cannot be read is a failure.
HRESULT ReadStateText(const ProviderSession& session, LONG state, std::wstring& text) {
    CComPtr<IWbemQualifierSet> qualifiers;
    if (FAILED(
            PropertyQualifiers(session, L_CLASS_ZOREL_DIAGRESULT, L_PROP_DIAGRESULT_TESTSTATE, qualifiers))) {
        return S_OK;
    }
    _variant_t values;
    if (FAILED(qualifiers->Get(L"Values", 0, &values, nullptr)) || !(values.vt & VT_ARRAY)) {
        TraceText(L"Get -> Values");
        return S_OK;
    }
    SAFEARRAY* texts = ArrayOf(values);
    LONG upper = 0;
    HRESULT result = SafeArrayGetUBound(texts, 1, &upper);
    if (FAILED(result)) {
        TraceText(L"hRes = SafeArrayGetUBound(vValues.parray, 1, &lUBoundValues);");
        return result;
    }
    const LONG index = TextIndex(state);
    if (index > upper) {
        TraceText(L"Values -> no text for the TestState");
        return S_OK;
    }
    CComBSTR element;
    result = ReadElement(texts, index, element);
    if (FAILED(result)) {
        TraceText(L"hRes = SafeArrayGetElement(vValues.parray, (long*)&lValue, &bstrData);");
        return result;
    }
    text = TextOf(element);
    return S_OK;
}

/// Replaces a list of numbers; one that cannot be read is an empty list.
void ReadNumbers(IWbemClassObject* instance, const ProviderName& property, std::vector<LONG>& numbers) {
    numbers.clear();
    if (PropertyReader(instance, RESULT_INSTANCE).Array(property, numbers).Failed()) {
        numbers.clear();
    }
}

} // namespace

HRESULT CQuillet::GetDiagnosticsResult(const std::wstring& diagId, CDiagResult& result) {
    const OperationTrace trace(L"GetDiagnosticsResult");
    const ProviderSession session(*this, {diagId.empty(), L"(wsDiagID.empty())"});
    const ProviderInstance test(session, diagId, L"GetObject -> wsDiagID");
    PropertyReader read = test.Read(L"pInstanceHandle");
    LONG testId = result.m_lTestId;
    if (read.Int(L_PROP_DIAG_ID, testId).Failed()) {
        return read.Result();
    }
    if (read.IsNull()) {
        // A test that has no number yet is no error: there is just nothing to tell.
        TraceText(L"Unable to get Diag ID of the test");
        return S_OK;
    }
    result.m_lTestId = testId;
    std::wstring name;
    if (read.String(L_PROP_DIAG_NAME, name).Failed()) {
        return read.Result();
    }

    ProviderEnum results = session.Query(
        Wql::SelectWhere(L_CLASS_ZOREL_DIAGRESULT.name, L_PROP_DIAGRESULT_DIAGNOSTICNAME.name, name),
        RESULTS_QUERY_FAILED);
    if (results.Failed()) {
        return results.Result();
    }
    CComPtr<IWbemClassObject> instance;
    if (!results.Next(instance)) {
        return trace.Fail(results.Result(), RESULTS_BROKE_OFF);
    }
    HRESULT code = ReadOutcome(instance, result);
    if (FAILED(code)) {
        return code;
    }
    // A record that is read again must not show the members of an earlier package.
    result.m_vecPackageResults.clear();
    PackagePath path;
    if (result.m_bIsPackage && FAILED(ReadPackage(session, path, result.m_wsPackageName, result))) {
        TraceText(PACKAGE_FAILED);
    }
    code = PropertyReader(instance, RESULT_INSTANCE)
               .Long(L_PROP_DIAGRESULT_TESTSTATE, result.m_lTestState)
               .Result();
    if (SUCCEEDED(code)) {
        code = ReadStateText(session, result.m_lTestState, result.m_wsStateText);
    }
    if (FAILED(code)) {
        return code;
    }
    ReadNumbers(instance, L_PROP_DIAGRESULT_TESTRESULTIDS, result.m_vecTestResultIds);
    ReadNumbers(instance, L_PROP_DIAGRESULT_TESTRESULTSATTR, result.m_vecTestResultAttributes);
    return S_OK;
}

HRESULT CQuillet::GetDiagnosticsPackageResults(const std::wstring&, CDiagResult& result) {
    const OperationTrace trace(L"GetDiagnosticsPackageResults");
    const HRESULT code = CheckRecord(result);
    if (FAILED(code)) {
        return code;
    }
    const ProviderSession session(*this);
    PackagePath path;
    return ReadMembers(session, path, result.m_wsPackageName, result);
}
