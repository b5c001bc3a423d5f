// The apply transaction and the pending warnings.
#include "ProviderTest.h"

#include "machine/MachineState.h"

namespace {

using ATL::CComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr const char* kApplyClass = "GetObject Zorel_NetService -> 0x00000000";
constexpr ULONGLONG kBefore = 0xABCDEF;

class ApplyTest : public ProviderTest {
  protected:
    explicit ApplyTest(std::string_view mof = kNetServiceMof) : ProviderTest(mof) {}
    void SetUp() override { Connect(); }
    static std::string ExecLine(const char* method, int clientSet, const char* result = "0x00000000",
                                const char* note = "") {
        return std::string("ExecMethod ") + kNetService + ", " + method + " -> " + result + note +
               " {ClientSetId=" + std::to_string(clientSet) + "}";
    }
    /// The client set that a context handed out now carries.
    LONG ClientSetOfContext() {
        const CComPtr<IWbemContext> context = Access::GetContext(quillet);
        _variant_t value;
        EXPECT_TRUE(context && SUCCEEDED(context->GetValue(L"ClientSetId", 0, &value)));
        EXPECT_EQ(V_VT(&value), VT_I4);
        return V_I4(&value);
    }
    /// Makes a property of the out-parameters come as another type.
    void AnswerAs(const wchar_t* parameter, VARTYPE type) {
        FaultRule rule;
        rule.operation = Operation::Get;
        rule.target = parameter;
        rule.effect = Effect::WrongType;
        rule.vt = type;
        Inject(rule);
    }
};

// --- BeginApply ---

TEST_F(ApplyTest, BeginApply_TakesTheProvidersHandle) {
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_THAT(Traced(),
                ElementsAre("Enter CQuillet::BeginApply", "dwErrorCode: %l", "Exit CQuillet::BeginApply"));
    EXPECT_THAT(Called(), ElementsAre(kApplyClass, ExecLine("BeginApply()", 0)));
    EXPECT_NE(machine->OpenClientSet(), 0);
    EXPECT_EQ(Access::ClientSetId(quillet), machine->OpenClientSet());
    EXPECT_EQ(ClientSetOfContext(), machine->OpenClientSet());
}

TEST_F(ApplyTest, BeginApply_StepsAreInOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_THAT(
        Called(),
        ElementsAre("SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
                    "SetContextValue ClientSetId(ClientSetId=0) -> 0x00000000", kApplyClass,
                    "GetMethod Zorel_NetService, BeginApply -> 0x00000000", "Get __PATH -> 0x00000000",
                    ExecLine("BeginApply()", 0), "Get ClientSetHandle -> 0x00000000",
                    "SetContextValue ClientSetId(ClientSetId=1) -> 0x00000000"))
        << "no return value is read";
}

TEST_F(ApplyTest, BeginApply_Twice_ReplacesTheHandle) {
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const LONG first = Access::ClientSetId(quillet);
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_NE(Access::ClientSetId(quillet), first);
    EXPECT_EQ(ClientSetOfContext(), Access::ClientSetId(quillet));
    EXPECT_THAT(Called(), ElementsAre(kApplyClass, ExecLine("BeginApply()", 0), kApplyClass,
                                      ExecLine("BeginApply()", 1)));
}

TEST_F(ApplyTest, BeginApply_HandleOfAnotherType_LeavesTheSetAsItWas) {
    Access::ClientSetId(quillet) = 5;
    for (const VARTYPE type : {VT_UNKNOWN, VT_BSTR, VT_UI4, VT_I2}) {
        SCOPED_TRACE(type);
        AnswerAs(L"ClientSetHandle", type);
        EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
        EXPECT_EQ(Access::ClientSetId(quillet), 5);
        machine->Rules().Clear();
    }
    Spoil(Operation::Get, Effect::NullValue, L"ClientSetHandle");
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Access::ClientSetId(quillet), 5);
}

TEST_F(ApplyTest, BeginApply_HandleCannotBeRead_ReturnsThatCode) {
    Fail(Operation::Get, WBEM_E_NOT_FOUND, L"ClientSetHandle");
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::BeginApply", "dwErrorCode: %l",
                                      "Get -> L_PARAM_NET_CLIENTSETHANDLE", "Exit CQuillet::BeginApply"));
    EXPECT_EQ(Access::ClientSetId(quillet), 0);
}

TEST_F(ApplyTest, BeginApply_NoOutParameters_Fails) {
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::BeginApply", "dwErrorCode: %l",
                                      "Get -> L_PARAM_NET_CLIENTSETHANDLE", "Exit CQuillet::BeginApply"));
}

TEST_F(ApplyTest, BeginApply_Refused_ReturnsTheProvidersCode) {
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041003");
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::BeginApply", "dwErrorCode: %l",
                                      "ExecMethod -> bstrObjectPath, L_METHOD_NET_APPLY_BEGIN",
                                      "Exit CQuillet::BeginApply"));
    EXPECT_EQ(Access::ClientSetId(quillet), 0);
}

TEST_F(ApplyTest, BeginApply_ContextRefusesTheHandle_IsTheResultButTheSetIsOpen) {
    Fail(Operation::SetContextValue, WBEM_E_OUT_OF_MEMORY, L"ClientSetId", 2);
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041006");
    EXPECT_EQ(Access::ClientSetId(quillet), machine->OpenClientSet());
}

TEST_F(ApplyTest, BeginApply_NoNetService_Fails) {
    UseText("");
    ASSERT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    Traced();
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::BeginApply", "dwErrorCode: %l",
                                      "GetNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))",
                                      "(pZorelService == NULL)", "Exit CQuillet::BeginApply"));
}

TEST_F(ApplyTest, BeginApply_EachProviderCallFails_ReturnsItsCodeAndSendsNothingMore) {
    FailEachProviderCall([this] { return quillet.BeginApply(); });
}

// --- ApplyDone ---

TEST_F(ApplyTest, ApplyDone_ClosesTheSet) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Calls();
    Traced();
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_FALSE(followup);
    EXPECT_THAT(Traced(),
                ElementsAre("Enter CQuillet::ApplyDone", "dwErrorCode: %l", "Exit CQuillet::ApplyDone"));
    EXPECT_THAT(Called(), ElementsAre(kApplyClass, ExecLine("Apply(ClientSetHandle=1)", 1)));
    EXPECT_EQ(machine->OpenClientSet(), 0);
    EXPECT_EQ(Access::ClientSetId(quillet), 0);
    EXPECT_EQ(ClientSetOfContext(), 0);
}

TEST_F(ApplyTest, ApplyDone_StepsAreInOrderAndTheHandleIsALong) {
    Access::ClientSetId(quillet) = 9;
    RecordLocalCalls();
    bool followup = false;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    std::vector<std::string> lines;
    for (const JournalEntry& call : calls) {
        lines.push_back(Describe(call));
    }
    EXPECT_THAT(
        lines,
        ElementsAre(
            "SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
            "SetContextValue ClientSetId(ClientSetId=9) -> 0x00000000", kApplyClass,
            "GetMethod Zorel_NetService, Apply -> 0x00000000", "SpawnInstance __PARAMETERS -> 0x00000000",
            "Put ClientSetHandle(ClientSetHandle=9) -> 0x00000000", "Get __PATH -> 0x00000000",
            ExecLine("Apply(ClientSetHandle=9)", 9, "0x00000000", " (client set 9 is not open)"),
            "Get FollowupAction -> 0x00000000", "SetContextValue ClientSetId(ClientSetId=0) -> 0x00000000"));
    ASSERT_EQ(calls.size(), 10u);
    EXPECT_EQ(calls[7].arguments.at(0).vt, VT_I4);
}

class FollowupTest : public ApplyTest, public testing::WithParamInterface<LONG> {};

TEST_P(FollowupTest, ApplyDone_FollowupAction_IsNeededWhenItIsNotZero) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    machine->RequireFollowup(GetParam());
    bool followup = GetParam() == 0;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_EQ(followup, GetParam() != 0);
}

INSTANTIATE_TEST_SUITE_P(Actions, FollowupTest, testing::Values(0, 1, 2),
                         [](const testing::TestParamInfo<LONG>& test) { return std::to_string(test.param); });

TEST_F(ApplyTest, ApplyDone_FollowupWithoutAValueOrOfNoNumberType_IsNotNeeded) {
    machine->RequireFollowup(1);
    Spoil(Operation::Get, Effect::NullValue, L"FollowupAction");
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_FALSE(followup);
    machine->Rules().Clear();

    machine->RequireFollowup(1);
    AnswerAs(L"FollowupAction", VT_UNKNOWN);
    followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_FALSE(followup);
}

TEST_F(ApplyTest, ApplyDone_Refused_KeepsTheSetAndTracesWithoutAComma) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Traced();
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041003");
    EXPECT_FALSE(followup);
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::ApplyDone", "dwErrorCode: %l",
                                      "ExecMethod -> bstrObjectPath L_METHOD_NET_APPLY_DONE",
                                      "Exit CQuillet::ApplyDone"));
    EXPECT_EQ(Access::ClientSetId(quillet), 1);
    EXPECT_EQ(ClientSetOfContext(), 1);
}

TEST_F(ApplyTest, ApplyDone_HandleCannotBePut_ReturnsThatCode) {
    Fail(Operation::Put, WBEM_E_TYPE_MISMATCH);
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041005");
    EXPECT_FALSE(followup);
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::ApplyDone", "dwErrorCode: %l",
                                      "Put -> L_PARAM_NET_CLIENTSETHANDLE", "Exit CQuillet::ApplyDone"));
    EXPECT_THAT(Called(), ElementsAre(kApplyClass));
}

TEST_F(ApplyTest, ApplyDone_FollowupCannotBeRead_KeepsTheSet) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Traced();
    Fail(Operation::Get, WBEM_E_NOT_FOUND, L"FollowupAction");
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041002");
    EXPECT_FALSE(followup);
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::ApplyDone", "dwErrorCode: %l",
                                      "Get -> L_PARAM_NET_FOLLOWUPACTION", "Exit CQuillet::ApplyDone"));
    EXPECT_EQ(Access::ClientSetId(quillet), 1);
}

TEST_F(ApplyTest, ApplyDone_ContextRefusesTheZero_IsTheResultButTheSetIsClosed) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    machine->RequireFollowup(1);
    Fail(Operation::SetContextValue, WBEM_E_OUT_OF_MEMORY, L"ClientSetId", 2);
    bool followup = false;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041006");
    EXPECT_TRUE(followup);
    EXPECT_EQ(Access::ClientSetId(quillet), 0);
}

TEST_F(ApplyTest, ApplyDone_NotConnected_SaysThatNoFollowupIsNeeded) {
    quillet.UninitQuillet();
    Traced();
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041001");
    EXPECT_FALSE(followup);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(ApplyTest, ApplyDone_EachProviderCallFails_ReturnsItsCodeAndSendsNothingMore) {
    FailEachProviderCall([this] {
        bool followup = true;
        const HRESULT result = quillet.ApplyDone(followup);
        EXPECT_FALSE(followup);
        return result;
    });
}

TEST_F(ApplyTest, Transaction_OnAStrictMachine_IsAccepted) {
    MachineOptions options = Options();
    options.strict = true;
    UseText(kNetServiceMof, options);
    ASSERT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041008") << "there is no set to close";
}

// --- GetWarnings ---

/// A network service that refuses whatever it is asked, with a value in its out-parameters all the same.
class RefusingService : public quillet::simulator::ClassProvider {
  public:
    HRESULT ExecMethod(quillet::simulator::MethodCall& call) override {
        call.Answer(L"Warnings", 99);
        call.Answer(L"ReturnValue", 1);
        return S_OK;
    }
};

class WarningsTest : public ApplyTest {
  protected:
    WarningsTest()
        : ApplyTest(R"(instance of Zorel_NetService {
              Name = "ZorelNetService"; Warnings = 18446744073709551615;
          };)") {}
};

TEST_F(WarningsTest, GetWarnings_ReadsTheWholeMask) {
    ULONGLONG warnings = 0;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0xFFFFFFFFFFFFFFFFu);
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetWarnings", "dwErrorCode: %l",
                                      "pInstance->Get() passed", "Exit CQuillet::GetWarnings"));
    EXPECT_THAT(Called(), ElementsAre(kApplyClass, ExecLine("GetKavlorWarnings()", 0)));
}

TEST_F(WarningsTest, GetWarnings_InsideATransaction_CarriesItsSet) {
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Calls();
    ULONGLONG warnings = 0;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x00000000");
    EXPECT_THAT(Called(), ElementsAre(kApplyClass, ExecLine("GetKavlorWarnings()", 1)));
}

TEST_F(WarningsTest, GetWarnings_ProviderRefuses_SucceedsWithoutTouchingTheMask) {
    machine->Internals().providers[L"Zorel_NetService"] = std::make_unique<RefusingService>();
    ULONGLONG warnings = kBefore;
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x00000000");
    EXPECT_EQ(warnings, kBefore);
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetWarnings", "dwErrorCode: %l", "pInstance->Get() passed",
                            "GetWarnings() -> unable to retrieve warnings", "Exit CQuillet::GetWarnings"));
    EXPECT_EQ(Called().back(), "Get ReturnValue -> 0x00000000") << "nothing is read after a refusal";
}

TEST_F(WarningsTest, GetWarnings_ReturnValueCannotBeRead_ReturnsThatCode) {
    Fail(Operation::Get, WBEM_E_NOT_FOUND, L"ReturnValue");
    ULONGLONG warnings = kBefore;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x80041002");
    EXPECT_EQ(warnings, kBefore);
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetWarnings", "dwErrorCode: %l",
                            "GetWarnings() - GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN",
                            "Exit CQuillet::GetWarnings"));
}

TEST_F(WarningsTest, GetWarnings_NoOutParameters_Fails) {
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    ULONGLONG warnings = kBefore;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x80004005");
    EXPECT_EQ(warnings, kBefore);
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::GetWarnings", "dwErrorCode: %l",
                            "GetPropertyAsLong -> pInstance == NULL",
                            "GetWarnings() - GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN",
                            "Exit CQuillet::GetWarnings"));
}

TEST_F(WarningsTest, GetWarnings_MaskCannotBeRead_ReturnsThatCode) {
    Fail(Operation::Get, WBEM_E_NOT_FOUND, L"Warnings");
    ULONGLONG warnings = kBefore;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x80041002");
    EXPECT_EQ(warnings, kBefore);
    EXPECT_THAT(
        Traced(),
        ElementsAre("Entering CQuillet::GetWarnings", "dwErrorCode: %l", "pInstance->Get() passed",
                    "GetWarnings() - GetPropertyAsUINT64 failed -> pAdapter_OutParams, L_PARAM_ALLWARNINGS",
                    "Exit CQuillet::GetWarnings"));
}

TEST_F(WarningsTest, GetWarnings_MaskIsNull_SucceedsWithoutTouchingIt) {
    Spoil(Operation::Get, Effect::NullValue, L"Warnings");
    ULONGLONG warnings = kBefore;
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x00000000");
    EXPECT_EQ(warnings, kBefore);
}

TEST_F(WarningsTest, GetWarnings_EachProviderCallFails_ReturnsItsCodeAndSendsNothingMore) {
    FailEachProviderCall([this] {
        ULONGLONG warnings = 0;
        return quillet.GetWarnings(warnings);
    });
}

} // namespace
