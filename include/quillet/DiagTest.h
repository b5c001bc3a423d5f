// Diagnostic tests that an adapter offers, and what came out of them.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>
#include <vector>

/// One test, an instance of "Zorel_DiagTest".
class QUILLET_API CDiagTest {
  public:
    /// The display name, which also links a test to its results ("Name").
    std::wstring m_wsName;
    /// The provider's number for the test ("TestId").
    LONG m_lTestId = 0;
    /// The test's identifier in every operation: its object path ("__PATH").
    std::wstring m_wsUniqueID;
    /// Whether the test belongs to a group of tests ("Grouped").
    bool m_bGrouped = false;
    /// The group's number, meaningful only for a grouped test ("GroupId").
    LONG m_lGroupId = 0;

    CDiagTest() = default;
    CDiagTest(const CDiagTest&) = default;
    CDiagTest& operator=(const CDiagTest&) = default;
    virtual ~CDiagTest();
};

/// The tests of an adapter.
class QUILLET_API CDiagTests : public CPointerArray<CDiagTest*> {};

/// What is known of a test while it runs and after it has ended, an instance of "Zorel_DiagResult".
class QUILLET_API CDiagResult {
  public:
    /// The provider's number for the test ("TestId" of the test).
    LONG m_lTestId = 0;
    /// The name of the test ("DiagnosticName").
    std::wstring m_wsDiagnosticName;
    /// The result's object path ("__PATH").
    std::wstring m_sUniqueID;
    /// The state for display, in the language of the connection ("Values" of "TestState").
    std::wstring m_wsStateText;
    /// The state: the provider's number, unchanged ("TestState").
    LONG m_lTestState = 0;
    /// The numbers of the outcome's messages ("TestResultIds").
    std::vector<LONG> m_vecTestResultIds;
    /// The attributes of the messages, in the same order ("TestResultsAttr").
    std::vector<LONG> m_vecTestResultAttributes;
    /// Travels with the result; no operation fills it.
    DWORD m_dwReserved = 0;
    /// Whether the result stands for the results of a package of tests ("IsPackage").
    bool m_bIsPackage = false;
    /// The results of the package. They have no test identifier, state or message numbers.
    std::vector<CDiagResult> m_vecPackageResults;
    /// The outcome as a number ("ResultCode").
    LONG m_lResultCode = 0;
    /// The package that the result belongs to ("PackageName").
    std::wstring m_wsPackageName;
    /// A heading ("Title").
    std::wstring m_wsTitle;
    /// The outcome in words ("Result").
    std::wstring m_wsResult;
    /// Details of the outcome ("Description").
    std::wstring m_wsDescription;

    CDiagResult();
    /// Copies the results of the package, too.
    CDiagResult(const CDiagResult& rOther);
    /// Takes the texts and results over.
    CDiagResult(CDiagResult&& rOther) noexcept;
    /// Copies the results of the package, too.
    CDiagResult& operator=(const CDiagResult& rOther);
    /// Takes the texts and results over.
    CDiagResult& operator=(CDiagResult&& rOther) noexcept;
    virtual ~CDiagResult();
};
