// Diagnostic tests and their results.
#include <quillet/DiagTest.h>

#include "Records/SwapMembers.h"

#include <algorithm>
#include <utility>

namespace {

auto Members(CDiagResult& r) {
    return std::tie(r.m_lTestId, r.m_wsDiagnosticName, r.m_sUniqueID, r.m_wsStateText, r.m_lTestState,
                    r.m_vecTestResultIds, r.m_vecTestResultAttributes, r.m_dwReserved, r.m_bIsPackage,
                    r.m_vecPackageResults, r.m_lResultCode, r.m_wsPackageName, r.m_wsTitle, r.m_wsResult,
                    r.m_wsDescription);
}

bool Holds(const CDiagResult& rWhole, const CDiagResult* pPart) {
    return std::any_of(
        rWhole.m_vecPackageResults.begin(), rWhole.m_vecPackageResults.end(),
        [pPart](const CDiagResult& rResult) { return &rResult == pPart || Holds(rResult, pPart); });
}

} // namespace

CDiagTest::~CDiagTest() = default;

CDiagResult::CDiagResult() = default;
CDiagResult::CDiagResult(const CDiagResult& rOther) = default;
CDiagResult::CDiagResult(CDiagResult&& rOther) noexcept = default;
CDiagResult::~CDiagResult() = default;

// What a result had goes last: the other one may be a part of it.
CDiagResult& CDiagResult::operator=(const CDiagResult& rOther) {
    CDiagResult copy(rOther);
    quillet::SwapMembers(Members(*this), Members(copy));
    return *this;
}

CDiagResult& CDiagResult::operator=(CDiagResult&& rOther) noexcept {
    if (Holds(rOther, this)) {
        return *this = rOther; // a part that took the whole over would own itself, and nobody would free it
    }
    CDiagResult taken(std::move(rOther));
    quillet::SwapMembers(Members(*this), Members(taken));
    return *this;
}
