// Listing, starting and stopping diagnostic tests.
#include "ProviderTest.h"

namespace {

using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr const char* kMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; };
    instance of Zorel_DiagTest as $Link { Name = "Link test"; TestId = 4; Grouped = TRUE; GroupId = 2; };
    instance of Zorel_DiagTest as $Call { Name = "Connection test"; TestId = 6; Grouped = FALSE; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $Link; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $Call; Dependent = $A; };
    instance of Zorel_DiagResult { Name = "{1}"; DiagnosticName = "Link test"; TestState = 2; };
    instance of Zorel_DiagResult { Name = "{2}"; DiagnosticName = "link test"; TestState = 2; };
    instance of Zorel_DiagResult { Name = "{3}"; DiagnosticName = "Link test"; TestState = 2; };)";

constexpr const char* kMissing = "((pIWbemService == NULL) || (pIWbemContext == NULL))";

std::wstring Path(const wchar_t* classAndKey, const wchar_t* value) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:)" + std::wstring(classAndKey) + L"=\"" + value + L"\"";
}

class DiagnosticsTest : public ProviderTest {
  protected:
    DiagnosticsTest() : ProviderTest(kMachine) {}
    void SetUp() override { Connect(); }

    std::int64_t StateOf(const wchar_t* result) {
        return machine->Store().FindInstance(Path(L"Zorel_DiagResult.Name", result))->Number(L"TestState");
    }

    CDiagTests tests;
    const std::wstring kA = Path(L"Zorel_PhysicalEthernetAdapter.DeviceID", L"{A}");
    const std::wstring kB = Path(L"Zorel_PhysicalEthernetAdapter.DeviceID", L"{B}");
    const std::wstring kLink = Path(L"Zorel_DiagTest.Name", L"Link test");
    const std::wstring kCall = Path(L"Zorel_DiagTest.Name", L"Connection test");
};

TEST_F(DiagnosticsTest, Enumerate_FillsTheTestsInTheProvidersOrder) {
    tests.m_vecItems.push_back(new CDiagTest);
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x00000000");
    ASSERT_EQ(tests.m_vecItems.size(), 2u);
    const CDiagTest& link = *tests.m_vecItems[0];
    EXPECT_EQ(link.m_wsName, L"Link test");
    EXPECT_EQ(link.m_lTestId, 4);
    EXPECT_EQ(link.m_wsUniqueID, kLink);
    EXPECT_TRUE(link.m_bGrouped);
    EXPECT_EQ(link.m_lGroupId, 2);
    const CDiagTest& call = *tests.m_vecItems[1];
    EXPECT_EQ(call.m_wsUniqueID, kCall);
    EXPECT_FALSE(call.m_bGrouped);
    EXPECT_EQ(call.m_lGroupId, 0);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateDiagnostics", "dwErrorCode: %l",
                                      "Exiting CQuillet::EnumerateDiagnostics"));
    EXPECT_THAT(Called(),
                ElementsAre("ExecQuery ASSOCIATORS OF {" + Narrow(kA) +
                                "} WHERE ResultClass = Zorel_DiagTest -> 0x00000000 {ClientSetId=0}",
                            StartsWith("Next"), StartsWith("Next"), StartsWith("Next")));
}

TEST_F(DiagnosticsTest, Enumerate_AdapterWithoutTests_IsAnEmptyListAndNoFailure) {
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kB, tests)), "0x00000000");
    EXPECT_TRUE(tests.m_vecItems.empty());
}

TEST_F(DiagnosticsTest, Enumerate_UngroupedTest_IsNotAskedForItsGroup) {
    RecordLocalCalls();
    quillet.EnumerateDiagnostics(kA, tests);
    unsigned asked = 0;
    for (const JournalEntry& call : Calls()) {
        asked += call.operation == Operation::Get && call.target == L"GroupId" ? 1u : 0u;
    }
    EXPECT_EQ(asked, 1u);
}

TEST_F(DiagnosticsTest, Enumerate_GroupedTestWithoutGroup_FailsWithTheReadsCode) {
    Spoil(Operation::Get, Effect::Absent, L"GroupId");
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsInt -> pIAdapterDiag_Instance, L_PROP_DIAG_GROUP_ID"));
    EXPECT_TRUE(tests.m_vecItems.empty());
}

TEST_F(DiagnosticsTest, Enumerate_TestWithoutPath_IsLeftOut) {
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x00000000");
    EXPECT_THAT(Traced(), Contains("Error - unidentified/empty Diag Unique Id"));
    ASSERT_EQ(tests.m_vecItems.size(), 1u);
    EXPECT_EQ(tests.m_vecItems[0]->m_wsUniqueID, kCall);
}

TEST_F(DiagnosticsTest, Enumerate_UnreadableProperty_IsNamedAndTheTestsBeforeItStay) {
    struct Case {
        const wchar_t* property;
        unsigned nth; ///< of the reads of that property, so that it is one of the second test
        const char* line;
    };
    for (const Case& each : {
             Case{L"__PATH", 3, "GetPropertyAsString -> pIAdapterDiag_Instance, L_ZOREL_PATH"},
             Case{L"__PATH", 4, "GetPropertyAsString -> pIAdapterDiag_Instance, L_ZOREL_PATH"},
             Case{L"Name", 2, "GetPropertyAsString -> pIAdapterDiag_Instance, L_PROP_DIAG_NAME"},
             Case{L"TestId", 2, "GetPropertyAsInt -> pIAdapterDiag_Instance, L_PROP_DIAG_ID"},
             Case{L"Grouped", 2, "GetPropertyAsBool -> pIAdapterDiag_Instance, L_PROP_DIAG_GROUPED"},
         }) {
        SCOPED_TRACE(each.line);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, each.property, each.nth);
        EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x80041003");
        EXPECT_THAT(Traced(), Contains(each.line));
        EXPECT_EQ(tests.m_vecItems.size(), 1u);
        machine->Rules().Clear();
    }
}

TEST_F(DiagnosticsTest, Enumerate_FailedQuery_IsNamed) {
    Fail(Operation::ExecQuery, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecQuery -> ASSOC RESULTCLASS = ZOREL_DIAGTEST"));
}

TEST_F(DiagnosticsTest, Enumerate_BrokenOff_IsNotAShorterList) {
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x80041015");
    EXPECT_THAT(Traced(), Contains("pEnumDiags -> Next"));
    EXPECT_EQ(tests.m_vecItems.size(), 1u);
}

TEST_F(DiagnosticsTest, Enumerate_EmptyIdentifier_IsRefusedBeforeTheListIsTouched) {
    tests.m_vecItems.push_back(new CDiagTest);
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(L"", tests)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateDiagnostics", "(wsAdapterID.empty())",
                                      "Exiting CQuillet::EnumerateDiagnostics"));
    EXPECT_EQ(tests.m_vecItems.size(), 1u);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(DiagnosticsTest, Run_StartsTheTestOnTheAdapter) {
    EXPECT_EQ(Code(quillet.RunDiagnostics(kLink, kA)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::RunDiagnostics", "dwErrorCode: %l",
                                      "pInstance->Get() passed", "Exiting CQuillet::RunDiagnostics"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].target, L"Zorel_DiagTest");
    EXPECT_TRUE(calls[0].hasContext);
    EXPECT_EQ(calls[1].target, kLink);
    EXPECT_EQ(calls[1].method, L"RunTest");
    ASSERT_EQ(calls[1].arguments.size(), 1u);
    EXPECT_EQ(calls[1].arguments[0].name, L"SystemElement");
    EXPECT_EQ(calls[1].arguments[0].vt, VT_BSTR);
    EXPECT_EQ(calls[1].arguments[0].value, Value::Text(kA));
    EXPECT_EQ(StateOf(L"{1}"), 4);
    machine->Advance(2s);
    EXPECT_EQ(StateOf(L"{1}"), 2);
}

TEST_F(DiagnosticsTest, Run_RefusedByTheProvider_IsStillSuccess) {
    EXPECT_EQ(Code(quillet.RunDiagnostics(kLink, kB)), "0x00000000");
    EXPECT_EQ(StateOf(L"{1}"), 2);
}

TEST_F(DiagnosticsTest, Stop_NamesTheFirstResultOfTheTestsName) {
    quillet.RunDiagnostics(kLink, kA);
    ForgetCalls();
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x00000000");
    EXPECT_EQ(StateOf(L"{1}"), 5);
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls[0].target, kLink);
    EXPECT_EQ(calls[1].operation, Operation::CreateInstanceEnum);
    EXPECT_EQ(calls[1].flags, 0);
    EXPECT_EQ(calls[2].operation, Operation::Next);
    EXPECT_EQ(calls[3].target, L"Zorel_DiagTest");
    EXPECT_EQ(calls[4].target, kLink);
    EXPECT_EQ(calls[4].method, L"DiscontinueTest");
    ASSERT_EQ(calls[4].arguments.size(), 2u);
    EXPECT_EQ(calls[4].arguments[0].name, L"SystemElement");
    EXPECT_EQ(calls[4].arguments[0].value, Value::Text(kA));
    EXPECT_EQ(calls[4].arguments[1].name, L"Result");
    EXPECT_EQ(calls[4].arguments[1].vt, VT_BSTR);
    EXPECT_EQ(calls[4].arguments[1].value, Value::Text(Path(L"Zorel_DiagResult.Name", L"{1}")));
}

TEST_F(DiagnosticsTest, Stop_ComparesNamesWithRegardToCaseAndSkipsResultsWithoutOne) {
    Spoil(Operation::Get, Effect::NullValue, L"DiagnosticName");
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x00000000");
    EXPECT_THAT(Traced(), Contains("Error - unidentified/empty Diag name"));
    const std::vector<JournalEntry> calls = Calls();
    EXPECT_EQ(calls.back().Argument(L"Result")->value, Value::Text(Path(L"Zorel_DiagResult.Name", L"{3}")));
}

TEST_F(DiagnosticsTest, Stop_TestThatDoesNotRun_IsStillSuccess) {
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x00000000");
    EXPECT_EQ(StateOf(L"{1}"), 2);
}

TEST_F(DiagnosticsTest, Stop_NothingIsExecutedWithoutNameResultOrPath) {
    // Without a name.
    Spoil(Operation::Get, Effect::NullValue, L"Name");
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("Unable to get Test ID of the adapter"));
    machine->Rules().Clear();
    // Without a result of that name.
    EXPECT_EQ(Code(quillet.StopDiagnostics(kCall, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(pResultInstance == NULL)"));
    // Without the result's path.
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pResultInstance, L_ZOREL_PATH -> NULL"));
    EXPECT_THAT(Called(), Not(Contains(HasSubstr("ExecMethod"))));
}

TEST_F(DiagnosticsTest, RunAndStop_FailedSteps_AreNamedAndReturned) {
    struct Case {
        Operation operation;
        const wchar_t* target;
        const char* line;
        bool stops;
    };
    for (const Case& each : {
             Case{Operation::GetObject, L"Zorel_DiagTest", "GetObject -> L_CLASS_ZOREL_DIAGTEST", false},
             Case{Operation::GetMethod, L"", "GetMethod -> L_METHOD_DIAG_RUNTEST", false},
             Case{Operation::SpawnInstance, L"", "SpawnInstance -> L_METHOD_DIAG_RUNTEST", false},
             Case{Operation::Put, L"SystemElement", "Put -> L_PARAM_DIAG_SYSTEMELEMENT", false},
             Case{Operation::ExecMethod, L"", "ExecMethod -> bstrObjectPath, L_METHOD_DIAG_RUNTEST", false},
             Case{Operation::Get, L"ReturnValue", "GetPropertyAsLong -> pDiagOutParams, L_METHOD_RETURN",
                  false},
             Case{Operation::GetObject, L"", "GetObject -> wsDiagID", true},
             Case{Operation::Get, L"Name", "GetPropertyAsString -> pInstanceHandle, L_PROP_DIAG_NAME", true},
             Case{Operation::CreateInstanceEnum, L"", "CreateInstanceEnum -> L_CLASS_ZOREL_DIAGRESULT", true},
             Case{Operation::Next, L"", "pEnumResult -> Next", true},
             Case{Operation::Get, L"DiagnosticName",
                  "GetPropertyAsString -> pResultInstance, L_PROP_DIAGRESULT_DIAGNOSTICNAME", true},
             Case{Operation::Get, L"__PATH", "GetPropertyAsString -> pResultInstance, L_ZOREL_PATH", true},
             Case{Operation::GetMethod, L"", "GetMethod -> L_METHOD_DIAG_DISCONTINUETEST", true},
             Case{Operation::Put, L"SystemElement", "Put -> L_PARAM_DIAG_SYSTEMELEMENT", true},
             Case{Operation::Put, L"Result", "Put -> L_PARAM_DIAG_RESULT", true},
             Case{Operation::ExecMethod, L"", "ExecMethod -> bstrObjectPath, L_METHOD_DIAG_DISCONTINUETEST",
                  true},
             Case{Operation::Get, L"TestingStopped",
                  "GetPropertyAsBool -> pDiagOutParams, L_PARAM_DIAG_TESTINGSTOPPED", true},
             Case{Operation::Get, L"ReturnValue", "GetPropertyAsLong -> pDiagOutParams, L_METHOD_RETURN",
                  true},
         }) {
        SCOPED_TRACE(each.line);
        Fail(each.operation, WBEM_E_ACCESS_DENIED, each.target);
        EXPECT_EQ(Code(each.stops ? quillet.StopDiagnostics(kLink, kA) : quillet.RunDiagnostics(kLink, kA)),
                  "0x80041003");
        EXPECT_THAT(Traced(), Contains(each.line));
        machine->Rules().Clear();
    }
}

TEST_F(DiagnosticsTest, RunAndStop_NullClassObject_Fails) {
    Spoil(Operation::GetObject, Effect::NullObject, L"Zorel_DiagTest");
    EXPECT_EQ(Code(quillet.RunDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_ZOREL_DIAGTEST -> NULL"));
    machine->Rules().Clear();
    Spoil(Operation::GetObject, Effect::NullObject, L"", 2);
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_ZOREL_DIAGTEST -> NULL"));
}

TEST_F(DiagnosticsTest, RunAndStop_EmptyIdentifiers_AreRefusedWithoutACall) {
    const char* line = "((wsDiagID.empty()) || (wsAdapterID.empty()))";
    EXPECT_EQ(Code(quillet.RunDiagnostics(L"", kA)), "0x80004005");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::RunDiagnostics", line, "Exiting CQuillet::RunDiagnostics"));
    EXPECT_EQ(Code(quillet.RunDiagnostics(kLink, L"")), "0x80004005");
    EXPECT_THAT(Traced(), Contains(line));
    EXPECT_EQ(Code(quillet.StopDiagnostics(L"", kA)), "0x80004005");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::StopDiagnostics", line, "Exiting CQuillet::StopDiagnostics"));
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, L"")), "0x80004005");
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(DiagnosticsTest, NotConnected_FailsWithALine) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(quillet.EnumerateDiagnostics(kA, tests)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
    EXPECT_EQ(Code(quillet.RunDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
    EXPECT_EQ(Code(quillet.StopDiagnostics(kLink, kA)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(kMissing));
}

TEST_F(DiagnosticsTest, EachCallFailing_ReturnsItsCode) {
    FailEachProviderCall([&] { return quillet.EnumerateDiagnostics(kA, tests); });
    FailEachProviderCall([&] { return quillet.RunDiagnostics(kLink, kA); });
    FailEachProviderCall([&] { return quillet.StopDiagnostics(kLink, kA); });
}

} // namespace
