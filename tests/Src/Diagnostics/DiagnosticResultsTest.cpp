// Reading the results of diagnostic tests and of packages of tests.
#include "ProviderTest.h"

namespace {

using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A package that holds a test and a package of its own, and a test without any result.
constexpr const char* kDiagnosticResultsMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_DiagTest { Name = "All"; TestId = 7; };
    instance of Zorel_DiagTest { Name = "Link \"2\""; TestId = 4; };
    instance of Zorel_DiagTest { Name = "Never run"; TestId = 9; };
    instance of Zorel_DiagResult {
        Name = "{1}"; DiagnosticName = "All"; PackageName = "All"; Title = "Everything"; Result = "Done.";
        ResultCode = 3; Description = "Two tests."; IsPackage = TRUE; TestState = 3;
        TestResultIds = {700, 701}; TestResultsAttr = {1, 2}; };
    instance of Zorel_DiagResult {
        Name = "{2}"; DiagnosticName = "Registers"; PackageName = "All"; Title = "R"; Result = "Fine.";
        ResultCode = 1; Description = "d"; TestState = 2; TestResultIds = {100}; };
    instance of Zorel_DiagResult {
        Name = "{3}"; DiagnosticName = "Cables"; PackageName = "All"; IsPackage = TRUE; TestState = 2; };
    instance of Zorel_DiagResult { Name = "{4}"; DiagnosticName = "Pair A"; PackageName = "Cables"; };
    instance of Zorel_DiagResult { Name = "{5}"; DiagnosticName = "Pair B"; PackageName = "Cables"; };
    instance of Zorel_DiagResult {
        Name = "{6}"; DiagnosticName = "Link \"2\""; Title = "first"; TestState = 0; TestResultIds = {1};
        TestResultsAttr = {2}; };
    instance of Zorel_DiagResult { Name = "{7}"; DiagnosticName = "Link \"2\""; Title = "second"; };)";

constexpr const char* kDiagnosticResultsMissing = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
constexpr const char* kQueryFailed = "ASSOC RESULTCLASS = L_CLASS_ZOREL_DIAGRESULT";

class DiagnosticResultsTest : public ProviderTest {
  protected:
    DiagnosticResultsTest() : ProviderTest(kDiagnosticResultsMachine) {}
    void SetUp() override { Connect(); }

    /// Changes a property of a result in the machine.
    void Set(const wchar_t* name, const wchar_t* property, Value value) {
        auto& store = machine->Store();
        quillet::simulator::Instance changed =
            *store.FindInstance(std::wstring(L"Zorel_DiagResult.Name=\"") + name + L"\"");
        ASSERT_TRUE(changed.Set(property, std::move(value)));
        ASSERT_TRUE(SUCCEEDED(store.PutInstance(changed)));
    }
    std::wstring StateTextOf(std::int64_t state) {
        Set(L"{6}", L"TestState", Value::Signed(state));
        CDiagResult read;
        read.m_wsStateText = L"kept";
        EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, read)), "0x00000000");
        EXPECT_EQ(read.m_lTestState, state);
        return read.m_wsStateText;
    }

    CDiagResult result;
    const std::wstring kAll = LR"(Zorel_DiagTest.Name="All")";
    const std::wstring kLink = LR"(Zorel_DiagTest.Name="Link \"2\"")";
    const std::wstring kNeverRun = LR"(Zorel_DiagTest.Name="Never run")";
};

TEST(DiagResultTest, CopiesCarryEveryMember) {
    CDiagResult one;
    EXPECT_EQ(one.m_lTestId, 0);
    EXPECT_EQ(one.m_dwReserved, 0u);
    EXPECT_FALSE(one.m_bIsPackage);
    one.m_lTestId = 1;
    one.m_wsDiagnosticName = L"n";
    one.m_sUniqueID = L"u";
    one.m_wsStateText = L"s";
    one.m_lTestState = 2;
    one.m_vecTestResultIds = {3};
    one.m_vecTestResultAttributes = {4};
    one.m_dwReserved = 5;
    one.m_bIsPackage = true;
    one.m_vecPackageResults.resize(2);
    one.m_vecPackageResults[1].m_vecPackageResults.resize(1);
    one.m_lResultCode = 6;
    one.m_wsPackageName = L"p";
    one.m_wsTitle = L"t";
    one.m_wsResult = L"r";
    one.m_wsDescription = L"d";
    const CDiagResult copied(one);
    CDiagResult assigned;
    assigned = one;
    for (const CDiagResult& each : {copied, assigned}) {
        EXPECT_EQ(each.m_lTestId, 1);
        EXPECT_EQ(each.m_wsDiagnosticName, L"n");
        EXPECT_EQ(each.m_sUniqueID, L"u");
        EXPECT_EQ(each.m_wsStateText, L"s");
        EXPECT_EQ(each.m_lTestState, 2);
        EXPECT_EQ(each.m_vecTestResultIds, std::vector<LONG>{3});
        EXPECT_EQ(each.m_vecTestResultAttributes, std::vector<LONG>{4});
        EXPECT_EQ(each.m_dwReserved, 5u);
        EXPECT_TRUE(each.m_bIsPackage);
        ASSERT_EQ(each.m_vecPackageResults.size(), 2u);
        EXPECT_EQ(each.m_vecPackageResults[1].m_vecPackageResults.size(), 1u);
        EXPECT_EQ(each.m_lResultCode, 6);
        EXPECT_EQ(each.m_wsPackageName, L"p");
        EXPECT_EQ(each.m_wsTitle, L"t");
        EXPECT_EQ(each.m_wsResult, L"r");
        EXPECT_EQ(each.m_wsDescription, L"d");
    }
}

TEST_F(DiagnosticResultsTest, Result_FillsEveryMemberOfAPackage) {
    result.m_vecTestResultIds = {9};
    result.m_vecTestResultAttributes = {9};
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_EQ(result.m_lTestId, 7);
    EXPECT_EQ(result.m_wsDiagnosticName, L"All");
    EXPECT_EQ(result.m_sUniqueID, LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_DiagResult.Name="{1}")");
    EXPECT_EQ(result.m_wsPackageName, L"All");
    EXPECT_EQ(result.m_wsTitle, L"Everything");
    EXPECT_EQ(result.m_wsResult, L"Done.");
    EXPECT_EQ(result.m_lResultCode, 3);
    EXPECT_EQ(result.m_wsDescription, L"Two tests.");
    EXPECT_TRUE(result.m_bIsPackage);
    EXPECT_EQ(result.m_lTestState, 3);
    EXPECT_EQ(result.m_wsStateText, L"Failed");
    EXPECT_EQ(result.m_vecTestResultIds, (std::vector<LONG>{700, 701}));
    EXPECT_EQ(result.m_vecTestResultAttributes, (std::vector<LONG>{1, 2}));
    EXPECT_EQ(result.m_dwReserved, 0u);

    ASSERT_EQ(result.m_vecPackageResults.size(), 2u) << "the package does not list itself";
    const CDiagResult& registers = result.m_vecPackageResults[0];
    EXPECT_EQ(registers.m_sUniqueID, LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_DiagResult.Name="{2}")");
    EXPECT_EQ(registers.m_wsDiagnosticName, L"Registers");
    EXPECT_EQ(registers.m_wsPackageName, L"All");
    EXPECT_EQ(registers.m_wsTitle, L"R");
    EXPECT_EQ(registers.m_wsResult, L"Fine.");
    EXPECT_EQ(registers.m_lResultCode, 1);
    EXPECT_EQ(registers.m_wsDescription, L"d");
    EXPECT_FALSE(registers.m_bIsPackage);
    EXPECT_EQ(registers.m_lTestId, 0);
    EXPECT_EQ(registers.m_lTestState, 0) << "members carry no state";
    EXPECT_EQ(registers.m_wsStateText, L"");
    EXPECT_TRUE(registers.m_vecTestResultIds.empty());

    const CDiagResult& cables = result.m_vecPackageResults[1];
    EXPECT_TRUE(cables.m_bIsPackage);
    ASSERT_EQ(cables.m_vecPackageResults.size(), 2u) << "the inner package's members are nested in it";
    EXPECT_EQ(cables.m_vecPackageResults[0].m_wsDiagnosticName, L"Pair A");
    EXPECT_EQ(cables.m_vecPackageResults[1].m_wsDiagnosticName, L"Pair B");
}

TEST_F(DiagnosticResultsTest, Result_AsksWithTheseQueriesAndForAmendedQualifiers) {
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    std::vector<std::string> queries;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::ExecQuery) {
            EXPECT_EQ(call.flags, 0);
            EXPECT_TRUE(call.hasContext);
            queries.push_back(Narrow(call.target));
        } else if (call.operation == Operation::GetObject && call.target == L"Zorel_DiagResult") {
            EXPECT_EQ(call.flags, 0x20000);
        }
    }
    EXPECT_THAT(
        queries,
        ElementsAre(
            R"(SELECT * FROM Zorel_DiagResult WHERE DiagnosticName = "All")",
            R"(SELECT * FROM Zorel_DiagResult WHERE PackageName = "All" AND NOT DiagnosticName = "All")",
            R"(SELECT * FROM Zorel_DiagResult WHERE PackageName = "Cables" AND NOT DiagnosticName = "Cables")"));
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "Entering CQuillet::GetDiagnosticsPackageResults"), 2);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "Exiting CQuillet::GetDiagnosticsPackageResults"), 2);
    EXPECT_EQ(trace.front(), "Entering CQuillet::GetDiagnosticsResult");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::GetDiagnosticsResult");
}

TEST_F(DiagnosticResultsTest, Result_ReadAgainIntoTheSameRecord_HoldsTheMembersOnce) {
    quillet.GetDiagnosticsResult(kAll, result);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_EQ(result.m_vecPackageResults.size(), 2u);
    EXPECT_EQ(result.m_vecTestResultIds.size(), 2u);
    Set(L"{6}", L"IsPackage", Value::Bool(false));
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x00000000");
    EXPECT_TRUE(result.m_vecPackageResults.empty()) << "another test's members are not shown";
}

TEST_F(DiagnosticResultsTest, Result_OfSeveralWithTheName_ReadsTheFirst) {
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x00000000");
    EXPECT_EQ(result.m_wsTitle, L"first");
    EXPECT_THAT(Called(), Contains(HasSubstr(R"(WHERE DiagnosticName = "Link \"2\"")")))
        << "a quote in the name does not end it";
}

TEST_F(DiagnosticResultsTest, Result_TestWithoutId_IsSuccessAndLeavesTheRecord) {
    result.m_lTestId = 42;
    result.m_wsTitle = L"kept";
    Spoil(Operation::Get, Effect::NullValue, L"TestId");
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetDiagnosticsResult", "dwErrorCode: %l",
                            "Unable to get Diag ID of the test", "Exiting CQuillet::GetDiagnosticsResult"));
    EXPECT_EQ(result.m_lTestId, 42);
    EXPECT_EQ(result.m_wsTitle, L"kept");
    EXPECT_EQ(Called().size(), 1u);
}

TEST_F(DiagnosticResultsTest, Result_TestThatNeverRan_ReturnsTheEndOfTheDataAndItsId) {
    result.m_wsTitle = L"kept";
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kNeverRun, result)), "0x00000001");
    EXPECT_THAT(Traced(), Contains("pEnumResult -> Next"));
    EXPECT_EQ(result.m_lTestId, 9);
    EXPECT_EQ(result.m_wsTitle, L"kept");
}

TEST_F(DiagnosticResultsTest, Result_NullProperties_KeepTheMembers) {
    result.m_wsPackageName = L"package";
    result.m_wsResult = L"result";
    result.m_lResultCode = 12;
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x00000000");
    EXPECT_EQ(result.m_wsPackageName, L"package");
    EXPECT_EQ(result.m_wsResult, L"result");
    EXPECT_EQ(result.m_lResultCode, 12);
    EXPECT_EQ(result.m_wsTitle, L"first");
}

TEST_F(DiagnosticResultsTest, StateText_OfStateOne_IsThatOfStateTwo) {
    EXPECT_EQ(StateTextOf(0), L"Unknown");
    EXPECT_EQ(StateTextOf(1), L"Passed");
    EXPECT_EQ(StateTextOf(2), L"Passed");
    EXPECT_EQ(StateTextOf(3), L"Failed");
    EXPECT_EQ(StateTextOf(4), L"In Progress");
    EXPECT_EQ(StateTextOf(5), L"Stopped");
}

TEST_F(DiagnosticResultsTest, StateText_OfAStateWithoutOne_StaysAndIsNoFailure) {
    EXPECT_EQ(StateTextOf(6), L"kept");
    EXPECT_THAT(Traced(), Contains("Values -> no text for the TestState"));
    EXPECT_EQ(StateTextOf(65535), L"kept");
}

TEST_F(DiagnosticResultsTest, StateText_IsInTheLanguageOfTheConnection) {
    quillet.UninitQuillet();
    quillet::tests::RegistryScope registry;
    registry.SetDword(quillet::tests::kOrbaKey, L"ForcedLanguage", 0x407);
    Connect();
    EXPECT_EQ(StateTextOf(4), L"L\u00E4uft");
}

TEST_F(DiagnosticResultsTest, StateText_WithoutClassOrQualifier_StaysAndTheRestIsRead) {
    struct Case {
        Operation operation;
        Effect effect;
        const wchar_t* target;
        const char* line;
    };
    for (const Case& each : {
             Case{Operation::GetObject, Effect::Fail, L"Zorel_DiagResult",
                  "GetObject -> L_CLASS_ZOREL_DIAGRESULT"},
             Case{Operation::GetObject, Effect::NullObject, L"Zorel_DiagResult",
                  "GetObject -> L_CLASS_ZOREL_DIAGRESULT -> NULL"},
             Case{Operation::GetPropertyQualifierSet, Effect::Fail, L"",
                  "GetPropertyQualifierSet -> L_PROP_DIAGRESULT_TESTSTATE"},
             Case{Operation::GetPropertyQualifierSet, Effect::NullObject, L"",
                  "GetPropertyQualifierSet -> L_PROP_DIAGRESULT_TESTSTATE -> NULL"},
             Case{Operation::GetQualifier, Effect::Fail, L"", "Get -> Values"},
             Case{Operation::GetQualifier, Effect::WrongType, L"", "Get -> Values"},
         }) {
        SCOPED_TRACE(each.line);
        result = {};
        result.m_wsStateText = L"kept";
        Spoil(each.operation, each.effect, each.target);
        EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x00000000");
        EXPECT_THAT(Traced(), Contains(each.line));
        EXPECT_EQ(result.m_wsStateText, L"kept");
        EXPECT_EQ(result.m_vecTestResultIds, std::vector<LONG>{1});
        machine->Rules().Clear();
    }
}

TEST_F(DiagnosticResultsTest, StateText_UnreadableList_IsNamedAndReturned) {
    Spoil(Operation::GetQualifier, Effect::NullArray);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80070057");
    EXPECT_THAT(Traced(), Contains("hRes = SafeArrayGetUBound(vValues.parray, 1, &lUBoundValues);"));
    machine->Rules().Clear();
    const char* element = "hRes = SafeArrayGetElement(vValues.parray, (long*)&lValue, &bstrData);";
    Spoil(Operation::GetQualifier, Effect::UnreadableElement);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80020005");
    EXPECT_THAT(Traced(), Contains(element));
    machine->Rules().Clear();
    // The texts at 5 to 10: there is none at 0.
    Spoil(Operation::GetQualifier, Effect::ShiftedArray);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x8002000B");
    EXPECT_THAT(Traced(), Contains(element));
}

TEST_F(DiagnosticResultsTest, Numbers_WhateverTheBounds_AreReadInOrder) {
    Spoil(Operation::Get, Effect::ShiftedArray, L"TestResultIds");
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_EQ(result.m_vecTestResultIds, (std::vector<LONG>{700, 701}));
    machine->Rules().Clear();
    Spoil(Operation::Get, Effect::EmptyArray, L"TestResultIds");
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_TRUE(result.m_vecTestResultIds.empty());
    EXPECT_EQ(result.m_vecTestResultAttributes, (std::vector<LONG>{1, 2}));
}

TEST_F(DiagnosticResultsTest, Numbers_Unreadable_AreEmptyAndNoFailure) {
    for (const wchar_t* property : {L"TestResultIds", L"TestResultsAttr"}) {
        result.m_vecTestResultIds = {9};
        result.m_vecTestResultAttributes = {9};
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, property);
        EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
        machine->Rules().Clear();
        const bool ids = property == std::wstring(L"TestResultIds");
        EXPECT_EQ(result.m_vecTestResultIds.size(), ids ? 0u : 2u);
        EXPECT_EQ(result.m_vecTestResultAttributes.size(), ids ? 2u : 0u);
    }
}

TEST_F(DiagnosticResultsTest, Result_UnreadableProperty_IsNamedAndReturned) {
    struct Case {
        const wchar_t* property;
        const char* line;
    };
    for (const Case& each : {
             Case{L"TestId", "GetPropertyAsInt -> pInstanceHandle, L_PROP_DIAG_ID"},
             Case{L"Name", "GetPropertyAsString -> pInstanceHandle, L_PROP_DIAG_NAME"},
             Case{L"__PATH", "GetPropertyAsString -> pResultInstance, L_ZOREL_PATH"},
             Case{L"DiagnosticName",
                  "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_DIAGNOSTICNAME"},
             Case{L"PackageName", "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_PACKAGENAME"},
             Case{L"Title", "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_TITLE"},
             Case{L"Result", "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_RESULT"},
             Case{L"ResultCode", "GetPropertyAsInt -> pResultInstance, L_PROP_DIAGRESULT_RESULTCODE"},
             Case{L"Description", "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_DESCRIPTION"},
             Case{L"IsPackage", "GetPropertyAsBool -> pResultInstance, L_PROP_DIAGRESULT_ISPACKAGE"},
             Case{L"TestState", "GetPropertyAsLong -> pResultInstance, L_PROP_DIAGRESULT_TESTSTATE"},
         }) {
        SCOPED_TRACE(each.line);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, each.property);
        EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80041003");
        EXPECT_THAT(Traced(), Contains(each.line));
        machine->Rules().Clear();
    }
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsDiagID"));
    machine->Rules().Clear();
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80041003");
    EXPECT_THAT(Traced(), Contains(kQueryFailed));
    machine->Rules().Clear();
    Fail(Operation::Next, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kLink, result)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("pEnumResult -> Next"));
}

TEST_F(DiagnosticResultsTest, Result_PackageThatCannotBeRead_IsTracedAndOtherwiseIgnored) {
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains(kQueryFailed));
    EXPECT_THAT(trace, Contains("GetDiagnosticsPackageResults failed"));
    EXPECT_TRUE(result.m_vecPackageResults.empty());
    EXPECT_EQ(result.m_lTestState, 3);
    machine->Rules().Clear();

    // The inner one.
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED, L"", 3);
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    EXPECT_THAT(Traced(), Contains("GetDiagnosticsPackageResults failed"));
    ASSERT_EQ(result.m_vecPackageResults.size(), 2u);
    EXPECT_TRUE(result.m_vecPackageResults[1].m_vecPackageResults.empty());
}

TEST_F(DiagnosticResultsTest, Package_MemberThatCannotBeRead_EndsItAndKeepsThoseBefore) {
    result.m_sUniqueID = L"any";
    result.m_wsPackageName = L"All";
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"Title", 2);
    EXPECT_EQ(Code(quillet.GetDiagnosticsPackageResults(kAll, result)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_TITLE"));
    ASSERT_EQ(result.m_vecPackageResults.size(), 1u);
    EXPECT_EQ(result.m_vecPackageResults[0].m_wsDiagnosticName, L"Registers");
    machine->Rules().Clear();
    Fail(Operation::Next, WBEM_E_ACCESS_DENIED, L"", 2);
    EXPECT_EQ(Code(quillet.GetDiagnosticsPackageResults(kAll, result)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("pEnumResult -> Next"));
    EXPECT_EQ(result.m_vecPackageResults.size(), 1u);
}

TEST_F(DiagnosticResultsTest, Package_RecordWithoutPath_IsRefused) {
    EXPECT_EQ(Code(quillet.GetDiagnosticsPackageResults(kAll, result)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetDiagnosticsPackageResults",
                                      "(rDiagResult.m_sUniqueID.empty())",
                                      "Exiting CQuillet::GetDiagnosticsPackageResults"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(DiagnosticResultsTest, Package_WithinItself_IsEnteredOnce) {
    // "Cables" belongs to "All" and "All" to "Cables".
    Set(L"{1}", L"PackageName", Value::Text(L"Cables"));
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x00000000");
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(
        std::count(trace.begin(), trace.end(), "GetDiagnosticsPackageResults -> the package contains itself"),
        1);
    EXPECT_LE(Called().size(), 20u);
}

TEST_F(DiagnosticResultsTest, Package_NestedVeryDeep_IsReadAsFarAsIsSensible) {
    constexpr int kDepth = 1200;
    std::string mof = kNetServiceMof;
    mof += R"(instance of Zorel_DiagTest { Name = "P0"; TestId = 1; };)";
    for (int level = 0; level < kDepth; ++level) {
        const std::string name = "P" + std::to_string(level);
        const std::string package = "P" + std::to_string(level == 0 ? 0 : level - 1);
        mof += "instance of Zorel_DiagResult { Name = \"{" + name + "}\"; DiagnosticName = \"" + name +
               "\"; PackageName = \"" + package + "\"; IsPackage = TRUE; TestState = 2; };";
    }
    UseText(mof);
    Connect();
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(LR"(Zorel_DiagTest.Name="P0")", result)), "0x00000000");
    int depth = 0;
    for (const CDiagResult* at = &result; !at->m_vecPackageResults.empty();
         at = &at->m_vecPackageResults[0]) {
        ++depth;
    }
    EXPECT_EQ(depth, 256);
    EXPECT_THAT(Traced(), Contains("GetDiagnosticsPackageResults failed"));
}

TEST_F(DiagnosticResultsTest, EmptyIdentifierAndNoConnection_AreRefused) {
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(L"", result)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetDiagnosticsResult", "(wsDiagID.empty())",
                                      "Exiting CQuillet::GetDiagnosticsResult"));
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(quillet.GetDiagnosticsResult(kAll, result)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kDiagnosticResultsMissing));
    result.m_sUniqueID = L"any";
    EXPECT_EQ(Code(quillet.GetDiagnosticsPackageResults(kAll, result)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kDiagnosticResultsMissing));
}

} // namespace
