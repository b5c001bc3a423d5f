// Diagnostic tests over simulated time.
#include "MethodCalls.h"

namespace quillet::simulator::tests {

namespace {

using namespace std::chrono_literals;

constexpr const char* kDiagnosticRunsMachine = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; };
    instance of Zorel_DiagTest as $T1 { Name = "one"; TestId = 1; };
    instance of Zorel_DiagTest as $T2 { Name = "two"; TestId = 2; };
    instance of Zorel_DiagTest as $T3 { Name = "three"; TestId = 3; };
    instance of Zorel_DiagTest as $P { Name = "package"; TestId = 7; };
    instance of Zorel_DiagTest as $O { Name = "outer"; TestId = 8; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $T1; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $T2; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $T3; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $P; Dependent = $A; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $O; Dependent = $A; };
    instance of QuilletSimulator_DiagnosticTest { Name = "two"; Milliseconds = 500; TestState = 3; ResultCode = 4;
        Title = "T"; Result = "No link."; Description = "D"; TestResultIds = {400, 402}; TestResultsAttr = {0, 1}; };
    instance of QuilletSimulator_DiagnosticTest { Name = "three"; Milliseconds = 100; };
    instance of QuilletSimulator_DiagnosticTest { Name = "package"; Members = {"one", "three", "nowhere", "one"}; };
    instance of QuilletSimulator_DiagnosticTest { Name = "outer"; Members = {"package", "two", "outer"}; };)";

enum { Done, NotOfThisAdapter, RunsAlready, NotItsResult, DoesNotRun };
enum { Unknown = 0, Passed = 2, Failed = 3, InProgress = 4, Stopped = 5 };

class DiagnosticRunsTest : public MethodCalls {
  protected:
    void SetUp() override { Use(kDiagnosticRunsMachine); }

    static std::wstring TestPath(const std::wstring& name) {
        return L"Zorel_DiagTest.Name=\"" + name + L"\"";
    }
    std::int64_t Run(const std::wstring& name, const wchar_t* adapter = L"{A}") {
        const auto out = Call(TestPath(name), L"RunTest", {{L"SystemElement", AdapterPath(adapter)}});
        EXPECT_EQ(result, S_OK);
        return out->Number(L"ReturnValue");
    }
    std::int64_t Stop(const std::wstring& name, const std::wstring& resultPath, bool& stopped) {
        const auto out =
            Call(TestPath(name), L"DiscontinueTest",
                 {{L"SystemElement", AdapterPath(L"{A}")}, {L"Result", Value::Text(resultPath)}});
        stopped = out->Number(L"TestingStopped") != 0;
        return out->Number(L"ReturnValue");
    }
    static Value AdapterPath(const wchar_t* adapter) {
        return Value::Text(std::wstring(L"Zorel_PhysicalEthernetAdapter.DeviceID=\"") + adapter + L"\"");
    }
    /// The result as a client finds it.
    InstancePtr Result(const std::wstring& name) {
        std::vector<Object> found;
        Dispatcher(*machine).Query(L"SELECT * FROM Zorel_DiagResult WHERE DiagnosticName = \"" + name + L"\"",
                                   found);
        return found.empty() ? nullptr : found.front().instance;
    }
    std::int64_t State(const std::wstring& name) { return Result(name)->Number(L"TestState"); }
};

TEST_F(DiagnosticRunsTest, ATest_RunsAndEndsAsItIsTold) {
    EXPECT_EQ(Result(L"two"), nullptr);
    EXPECT_EQ(Run(L"two"), Done);
    EXPECT_EQ(State(L"two"), InProgress);
    EXPECT_EQ(Result(L"two")->Text(L"Title"), L"T");
    EXPECT_EQ(Result(L"two")->Text(L"Result"), L"");
    machine->Advance(499ms);
    EXPECT_EQ(State(L"two"), InProgress);
    machine->Advance(1ms);
    const auto ended = Result(L"two");
    EXPECT_EQ(ended->Number(L"TestState"), Failed);
    EXPECT_EQ(ended->Number(L"ResultCode"), 4);
    EXPECT_EQ(ended->Text(L"Result"), L"No link.");
    EXPECT_EQ(ended->Text(L"Description"), L"D");
    EXPECT_EQ(ended->Find(L"TestResultIds")->Size(), 2u);
    EXPECT_EQ(ended->Find(L"TestResultsAttr")->Size(), 2u);
    EXPECT_TRUE(ended->Find(L"PackageName")->IsNull());
}

TEST_F(DiagnosticRunsTest, ATestThatNothingIsSaidOf_PassesAfterTwoSeconds) {
    EXPECT_EQ(Run(L"one"), Done);
    machine->Advance(1999ms);
    EXPECT_EQ(State(L"one"), InProgress);
    machine->Advance(1ms);
    EXPECT_EQ(State(L"one"), Passed);
    EXPECT_EQ(Result(L"one")->Text(L"Result"), L"The test passed.");
}

TEST_F(DiagnosticRunsTest, ATest_EndsAsItDidTheLastTime) {
    Use(std::string(kDiagnosticRunsMachine) +
        R"(instance of Zorel_DiagResult { Name = "{R}"; DiagnosticName = "one"; Title = "Old";
        Result = "Broken."; ResultCode = 9; TestState = 3; TestResultIds = {5}; };)");
    EXPECT_EQ(Run(L"one"), Done);
    EXPECT_EQ(Result(L"one")->Number(L"ResultCode"), 0);
    machine->Advance(2s);
    EXPECT_EQ(State(L"one"), Failed);
    EXPECT_EQ(Result(L"one")->Text(L"Result"), L"Broken.");
    EXPECT_EQ(Result(L"one")->Number(L"ResultCode"), 9);
    EXPECT_EQ(Result(L"one")->Text(L"Name"), L"{R}") << "there is one result for each test";
}

TEST_F(DiagnosticRunsTest, ATestThatRuns_IsNotStartedAgain) {
    EXPECT_EQ(Run(L"two"), Done);
    machine->Advance(400ms);
    EXPECT_EQ(Run(L"two"), RunsAlready);
    EXPECT_EQ(Run(L"outer"), RunsAlready) << "its package cannot start, either";
    EXPECT_EQ(Result(L"package"), nullptr);
    machine->Advance(100ms);
    EXPECT_EQ(State(L"two"), Failed);
    EXPECT_EQ(Run(L"two"), Done);
}

TEST_F(DiagnosticRunsTest, ATest_RunsOnlyOnAnAdapterThatOffersIt) {
    EXPECT_EQ(Run(L"two", L"{B}"), NotOfThisAdapter);
    EXPECT_EQ(Run(L"two", L"{nobody}"), NotOfThisAdapter);
    EXPECT_EQ(Result(L"two"), nullptr);
    const auto out = Call(TestPath(L"two"), L"RunTest", {});
    EXPECT_EQ(out->Number(L"ReturnValue"), NotOfThisAdapter);
}

TEST_F(DiagnosticRunsTest, APackage_RunsItsTestsOneAfterTheOther) {
    EXPECT_EQ(Run(L"package"), Done);
    EXPECT_EQ(State(L"package"), InProgress);
    EXPECT_EQ(State(L"one"), InProgress);
    EXPECT_EQ(State(L"three"), Unknown) << "its turn has not come";
    EXPECT_EQ(Result(L"three")->Text(L"PackageName"), L"package");
    EXPECT_EQ(Result(L"package")->Text(L"PackageName"), L"package");
    EXPECT_EQ(Result(L"package")->Number(L"IsPackage"), 1);
    machine->Advance(2s);
    EXPECT_EQ(State(L"one"), Passed);
    EXPECT_EQ(State(L"three"), InProgress);
    EXPECT_EQ(State(L"package"), InProgress);
    machine->Advance(100ms);
    EXPECT_EQ(State(L"three"), Passed);
    EXPECT_EQ(State(L"package"), Passed);
    EXPECT_EQ(Result(L"nowhere"), nullptr);
}

TEST_F(DiagnosticRunsTest, APackageWithAFailedTest_Fails) {
    EXPECT_EQ(Run(L"outer"), Done);
    EXPECT_EQ(Result(L"package")->Text(L"PackageName"), L"outer") << "a package within a package";
    EXPECT_EQ(Result(L"package")->Number(L"IsPackage"), 1);
    EXPECT_EQ(Result(L"one")->Text(L"PackageName"), L"package");
    machine->Advance(10s);
    EXPECT_EQ(State(L"package"), Passed);
    EXPECT_EQ(State(L"two"), Failed);
    EXPECT_EQ(State(L"outer"), Failed);
    EXPECT_EQ(Result(L"outer")->Number(L"ResultCode"), 1);
    EXPECT_EQ(Result(L"outer")->Text(L"Result"), L"The test failed.");
}

TEST_F(DiagnosticRunsTest, APackage_IsKnownByItsEarlierResults) {
    const auto builtIn = Machine::BuiltIn();
    const std::wstring adapter = L" - Zorel 10G Dual Port Server Adapter";
    machine = builtIn;
    const auto port = builtIn->Store().Instances(L"Zorel_PhysicalEthernetAdapter").front();
    const auto out = Call(TestPath(L"Hardware tests" + adapter), L"RunTest",
                          {{L"SystemElement", Value::Text(builtIn->Store().FullPath(*port))}});
    EXPECT_EQ(out->Number(L"ReturnValue"), Done);
    EXPECT_EQ(State(L"Register test" + adapter), InProgress);
    EXPECT_EQ(State(L"Loopback test" + adapter), Unknown);
    machine->Advance(6s);
    EXPECT_EQ(State(L"Hardware tests" + adapter), Passed);
    EXPECT_EQ(Result(L"Loopback test" + adapter)->Text(L"Result"), L"1000 frames came back.");
}

TEST_F(DiagnosticRunsTest, Stop_EndsATestAndAllOfAPackageThatHaveNotEnded) {
    Run(L"outer");
    machine->Advance(2s);
    bool stopped = false;
    EXPECT_EQ(Stop(L"outer", machine->Store().FullPath(*Result(L"outer")), stopped), Done);
    EXPECT_TRUE(stopped);
    EXPECT_EQ(State(L"one"), Passed) << "it had ended";
    EXPECT_EQ(State(L"three"), Stopped);
    EXPECT_EQ(State(L"package"), Stopped);
    EXPECT_EQ(State(L"two"), Stopped);
    EXPECT_EQ(State(L"outer"), Stopped);
    machine->Advance(10s);
    EXPECT_EQ(State(L"outer"), Stopped);
    EXPECT_EQ(Run(L"outer"), Done) << "and can be started again";
}

TEST_F(DiagnosticRunsTest, Stop_OfAMember_LetsThePackageFail) {
    Run(L"package");
    bool stopped = false;
    EXPECT_EQ(Stop(L"one", machine->Store().FullPath(*Result(L"one")), stopped), Done);
    machine->Advance(10s);
    EXPECT_EQ(State(L"one"), Stopped);
    EXPECT_EQ(State(L"three"), Passed);
    EXPECT_EQ(State(L"package"), Failed);
}

TEST_F(DiagnosticRunsTest, Stop_OfWhatDoesNotRunOrWithAnotherResult_IsRefused) {
    Run(L"two");
    machine->Advance(1s);
    bool stopped = true;
    EXPECT_EQ(Stop(L"two", machine->Store().FullPath(*Result(L"two")), stopped), DoesNotRun);
    EXPECT_FALSE(stopped);
    Run(L"two");
    EXPECT_EQ(Stop(L"two", L"Zorel_DiagResult.Name=\"nothing\"", stopped), NotItsResult);
    EXPECT_EQ(Stop(L"two", L"no path", stopped), NotItsResult);
    EXPECT_FALSE(stopped);
    EXPECT_EQ(State(L"two"), InProgress);
}

TEST_F(DiagnosticRunsTest, Methods_NeedAnInstance) {
    Request request(*machine, CallContext());
    InstancePtr out;
    EXPECT_EQ(Dispatcher(*machine).ExecMethod(request, L"Zorel_DiagTest", L"RunTest", nullptr, out),
              HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS));
}

TEST_F(DiagnosticRunsTest, Time_CanFollowTheRealClock) {
    machine->FollowRealTime(true);
    EXPECT_EQ(Run(L"three"), Done);
    while (State(L"three") == InProgress) {
    }
    EXPECT_EQ(State(L"three"), Passed);
    EXPECT_GE(machine->Now(), 100ms);
}

TEST_F(DiagnosticRunsTest, ASavedMachine_HoldsTheResultsAsTheyStand) {
    Run(L"three");
    machine->Advance(100ms);
    const std::string saved = machine->Save();
    Use(saved);
    EXPECT_EQ(State(L"three"), Passed);
}

} // namespace

} // namespace quillet::simulator::tests
