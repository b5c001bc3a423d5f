// Diagnostic tests that an adapter offers.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>

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
