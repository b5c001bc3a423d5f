// Diagnostic results: what they copy and move, also from and into a result of their own package.
#include <quillet/DiagTest.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

// A text that no string holds within itself.
std::wstring Long(const std::wstring& rwsText) {
    return rwsText + L" and more than a string holds within itself";
}

// A result in which every member tells the number.
CDiagResult Result(LONG lNumber) {
    CDiagResult result;
    const std::wstring text = Long(std::to_wstring(lNumber));
    result.m_lTestId = lNumber;
    result.m_wsDiagnosticName = L"name " + text;
    result.m_sUniqueID = L"path " + text;
    result.m_wsStateText = L"state " + text;
    result.m_lTestState = lNumber + 1;
    result.m_vecTestResultIds = {lNumber, 2, 3};
    result.m_vecTestResultAttributes = {lNumber, 5};
    result.m_dwReserved = static_cast<DWORD>(lNumber) + 2;
    result.m_bIsPackage = true;
    result.m_lResultCode = lNumber + 3;
    result.m_wsPackageName = L"package " + text;
    result.m_wsTitle = L"title " + text;
    result.m_wsResult = L"result " + text;
    result.m_wsDescription = L"description " + text;
    return result;
}

// 1, whose package holds 10 and 11, and 10's package 100.
CDiagResult Tree() {
    CDiagResult tree = Result(1);
    tree.m_vecPackageResults = {Result(10), Result(11)};
    tree.m_vecPackageResults[0].m_vecPackageResults = {Result(100)};
    return tree;
}

void ExpectResult(const CDiagResult& rResult, LONG lNumber, std::size_t nPackage) {
    const CDiagResult expected = Result(lNumber);
    EXPECT_EQ(rResult.m_lTestId, expected.m_lTestId);
    EXPECT_EQ(rResult.m_wsDiagnosticName, expected.m_wsDiagnosticName);
    EXPECT_EQ(rResult.m_sUniqueID, expected.m_sUniqueID);
    EXPECT_EQ(rResult.m_wsStateText, expected.m_wsStateText);
    EXPECT_EQ(rResult.m_lTestState, expected.m_lTestState);
    EXPECT_EQ(rResult.m_vecTestResultIds, expected.m_vecTestResultIds);
    EXPECT_EQ(rResult.m_vecTestResultAttributes, expected.m_vecTestResultAttributes);
    EXPECT_EQ(rResult.m_dwReserved, expected.m_dwReserved);
    EXPECT_EQ(rResult.m_bIsPackage, expected.m_bIsPackage);
    EXPECT_EQ(rResult.m_lResultCode, expected.m_lResultCode);
    EXPECT_EQ(rResult.m_wsPackageName, expected.m_wsPackageName);
    EXPECT_EQ(rResult.m_wsTitle, expected.m_wsTitle);
    EXPECT_EQ(rResult.m_wsResult, expected.m_wsResult);
    EXPECT_EQ(rResult.m_wsDescription, expected.m_wsDescription);
    EXPECT_EQ(rResult.m_vecPackageResults.size(), nPackage);
}

TEST(DiagResult, CopyAndAssignment_TakeEveryMember) {
    const CDiagResult tree = Tree();
    const CDiagResult copy(tree);
    CDiagResult assigned = Result(7);
    assigned = tree;
    for (const CDiagResult* p : {&copy, static_cast<const CDiagResult*>(&assigned)}) {
        ExpectResult(*p, 1, 2);
        ExpectResult(p->m_vecPackageResults[0], 10, 1);
        ExpectResult(p->m_vecPackageResults[0].m_vecPackageResults[0], 100, 0);
    }
    ExpectResult(tree, 1, 2);
}

TEST(DiagResult, Move_TakesEveryMember) {
    CDiagResult tree = Tree();
    CDiagResult moved(std::move(tree));
    ExpectResult(moved, 1, 2);
    CDiagResult assigned = Tree();
    assigned = std::move(moved);
    ExpectResult(assigned, 1, 2);
    ExpectResult(assigned.m_vecPackageResults[1], 11, 0);
}

TEST(DiagResult, AssignedToItself_IsUnchanged) {
    CDiagResult tree = Tree();
    const CDiagResult& rSame = tree;
    tree = rSame;
    ExpectResult(tree, 1, 2);
    CDiagResult& rMoved = tree;
    tree = std::move(rMoved);
    ExpectResult(tree, 1, 2);
}

TEST(DiagResult, AssignedFromAResultOfItsPackage_BecomesThat) {
    CDiagResult tree = Tree();
    tree = tree.m_vecPackageResults[0];
    ExpectResult(tree, 10, 1);
    ExpectResult(tree.m_vecPackageResults[0], 100, 0);
    tree = Tree();
    tree = tree.m_vecPackageResults[0].m_vecPackageResults[0];
    ExpectResult(tree, 100, 0);
}

TEST(DiagResult, MovedFromAResultOfItsPackage_BecomesThat) {
    CDiagResult tree = Tree();
    tree = std::move(tree.m_vecPackageResults[0]);
    ExpectResult(tree, 10, 1);
    ExpectResult(tree.m_vecPackageResults[0], 100, 0);
    tree = Tree();
    tree = std::move(tree.m_vecPackageResults[0].m_vecPackageResults[0]);
    ExpectResult(tree, 100, 0);
}

TEST(DiagResult, AssignedToAResultOfItsPackage_IsThereWhole) {
    for (const bool bMove : {false, true}) {
        CDiagResult tree = Tree();
        CDiagResult& rPart = tree.m_vecPackageResults[0].m_vecPackageResults[0];
        if (bMove) {
            rPart = std::move(tree);
        } else {
            rPart = tree;
        }
        ExpectResult(rPart, 1, 2);
        ExpectResult(rPart.m_vecPackageResults[0], 10, 1);
        ExpectResult(rPart.m_vecPackageResults[0].m_vecPackageResults[0], 100, 0);
    }
}

TEST(DiagResult, SwappedWithAResultOfItsPackage_BecomesThat) {
    CDiagResult tree = Tree();
    std::swap(tree, tree.m_vecPackageResults[0]);
    ExpectResult(tree, 10, 1);
    tree = Tree();
    std::swap(tree.m_vecPackageResults[0], tree);
    ExpectResult(tree, 10, 1);
}

TEST(DiagResult, PackageThatIsReordered_KeepsItsResults) {
    CDiagResult tree = Tree();
    std::swap(tree.m_vecPackageResults[0], tree.m_vecPackageResults[1]);
    ExpectResult(tree.m_vecPackageResults[1], 10, 1);
    tree.m_vecPackageResults.insert(tree.m_vecPackageResults.begin(), tree.m_vecPackageResults[1]);
    ExpectResult(tree.m_vecPackageResults[0], 10, 1);
    tree.m_vecPackageResults.erase(tree.m_vecPackageResults.begin());
    ExpectResult(tree.m_vecPackageResults[0], 11, 0);
}

} // namespace
