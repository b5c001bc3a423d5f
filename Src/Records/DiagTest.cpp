// Diagnostic tests and their results.
#include <quillet/DiagTest.h>

CDiagTest::~CDiagTest() = default;

CDiagResult::CDiagResult() = default;
CDiagResult::CDiagResult(const CDiagResult& rOther) = default;
CDiagResult::CDiagResult(CDiagResult&& rOther) noexcept = default;
CDiagResult& CDiagResult::operator=(const CDiagResult& rOther) = default;
CDiagResult& CDiagResult::operator=(CDiagResult&& rOther) noexcept = default;
CDiagResult::~CDiagResult() = default;
