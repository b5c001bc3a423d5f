// The call of a provider method, step by step: what is sent in which order, and that nothing is sent after
// the step that failed.
#include "Provider/ProviderMethod.h"
#include "ProviderTest.h"
#include "Variants/VariantValue.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;
using ClassFetch = ProviderMethod::ClassFetch;

constexpr ProviderName kNoSuchClass{L"L_CLASS_NONE", L"Zorel_NoSuchClass"};
constexpr ProviderName kNoSuchMethod{L"L_METHOD_NONE", L"NoSuchMethod"};
constexpr ProviderName kNoSuchParameter{L"L_PARAM_NONE", L"NoSuchParameter"};

constexpr const char* kClass = "GetObject Zorel_NetService -> 0x00000000";
constexpr const char* kClassWithContext = "GetObject Zorel_NetService -> 0x00000000 {ClientSetId=0}";

class ProviderMethodTest : public ProviderTest {
  protected:
    ProviderMethodTest() : ProviderTest(kNetServiceMof) {}
    void SetUp() override { Connect(); }
    /// The usual call: a method of the network service with one parameter.
    HRESULT Apply() {
        const ProviderSession session(quillet);
        ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_DONE,
                              ClassFetch::WithoutContext);
        method.Put(L_PARAM_NET_CLIENTSETHANDLE, VariantOfLong(7)).ExecOnNetService();
        return method.Result();
    }
    static std::string ExecLine(const char* method, const char* result = "0x00000000",
                                const char* note = "") {
        return std::string("ExecMethod ") + kNetService + ", " + method + " -> " + result + note +
               " {ClientSetId=0}";
    }
};

TEST_F(ProviderMethodTest, Call_WithoutParameters_PassesNone) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN,
                          ClassFetch::WithoutContext);
    LONG handle = 0;
    LONG returned = 5;
    EXPECT_EQ(Code(method.ExecOnNetService()
                       .Read(L"pOut")
                       .Long(L_PARAM_NET_CLIENTSETHANDLE, handle)
                       .Long(L_METHOD_RETURN, returned)
                       .Result()),
              "0x00000000");
    EXPECT_NE(handle, 0);
    EXPECT_EQ(returned, 0);
    EXPECT_THAT(Called(), ElementsAre(kClass, ExecLine("BeginApply()")));
}

TEST_F(ProviderMethodTest, Call_StepsAndLocalCalls_AreInOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(Apply()), "0x00000000");
    EXPECT_THAT(
        Called(),
        ElementsAre("SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
                    "SetContextValue ClientSetId(ClientSetId=0) -> 0x00000000", kClass,
                    "GetMethod Zorel_NetService, Apply -> 0x00000000",
                    "SpawnInstance __PARAMETERS -> 0x00000000",
                    "Put ClientSetHandle(ClientSetHandle=7) -> 0x00000000", "Get __PATH -> 0x00000000",
                    ExecLine("Apply(ClientSetHandle=7)", "0x00000000", " (client set 7 is not open)")));
}

TEST_F(ProviderMethodTest, Call_ClassFetchWithContext_PassesIt) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
    method.ExecOnNetService();
    EXPECT_EQ(Code(method.Result()), "0x00000000");
    EXPECT_THAT(Called(), ElementsAre(kClassWithContext, ExecLine("BeginApply()")));
}

TEST_F(ProviderMethodTest, Put_SeveralParameters_ArriveInTheirOrderWithTheirTypes) {
    constexpr ProviderName kService{L"L_CLASS_VLANSERVICE", L"Zorel_802dot1QVLANService"};
    constexpr ProviderName kCreate{L"L_METHOD_CREATEVLAN", L"CreateVLAN"};
    constexpr ProviderName kNumber{L"L_PARAM_VLANNUMBER", L"VLANNumber"};
    constexpr ProviderName kNameParameter{L"L_PARAM_NAME", L"Name"};
    for (const bool nameFirst : {false, true}) {
        const ProviderSession session(quillet);
        ProviderMethod method(session, kService, kCreate);
        if (nameFirst) {
            method.Put(kNameParameter, VariantOfText(L"Guests")).Put(kNumber, VariantOfLong(12));
        } else {
            method.Put(kNumber, VariantOfLong(12)).Put(kNameParameter, VariantOfText(L"Guests"));
        }
        EXPECT_EQ(Code(method.Result()), "0x00000000");
        // There is no such service; the call counts, not its answer.
        method.Exec(L"Zorel_802dot1QVLANService.Name=\"none\"", L"bstrServicePath");
        const std::vector<JournalEntry> calls = Calls();
        ASSERT_EQ(calls.size(), 2u);
        ASSERT_EQ(calls[1].arguments.size(), 2u);
        EXPECT_EQ(calls[1].arguments[nameFirst ? 0 : 1].name, L"Name");
        EXPECT_EQ(calls[1].arguments[nameFirst ? 0 : 1].vt, VT_BSTR);
        EXPECT_EQ(calls[1].arguments[nameFirst ? 1 : 0].name, L"VLANNumber");
        EXPECT_EQ(calls[1].arguments[nameFirst ? 1 : 0].vt, VT_I4);
    }
}

TEST_F(ProviderMethodTest, Exec_OnAPath_FailsWithTheVariablesName) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
    Traced();
    method.Exec(L"Zorel_NetService.Name=\"none\"", L"bstrServicePath");
    EXPECT_EQ(Code(method.Result()), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("ExecMethod -> bstrServicePath, L_METHOD_NET_APPLY_BEGIN"));
}

TEST_F(ProviderMethodTest, Call_NoConnection_SendsNothing) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                      "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                      "((pIWbemService == NULL) || (pIWbemContext == NULL))"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(ProviderMethodTest, Call_ClassCannotBeFetched_NamesItAndStops) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Apply()), "0x80041003");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "GetObject -> L_CLASS_ZOREL_CORESERVICE"));
    EXPECT_THAT(Called(), ElementsAre("GetObject Zorel_NetService -> 0x80041003"));
}

TEST_F(ProviderMethodTest, Call_UnknownClass_IsTheProvidersCode) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, kNoSuchClass, L_METHOD_NET_APPLY_BEGIN);
    EXPECT_EQ(Code(method.ExecOnNetService().Result()), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "GetObject -> L_CLASS_NONE"));
}

TEST_F(ProviderMethodTest, Call_ClassIsNull_NamesItAndStops) {
    Spoil(Operation::GetObject, Effect::NullObject);
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "GetObject -> L_CLASS_ZOREL_CORESERVICE -> NULL"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Call_ClassFailsLate_IsANullClass) {
    FaultRule rule;
    rule.operation = Operation::GetObject;
    rule.effect = Effect::FailStatus;
    rule.code = ResultCode(WBEM_E_TRANSPORT_FAILURE).value;
    Inject(rule);
    const HRESULT result = Apply();
    EXPECT_TRUE(FAILED(result)) << "whoever asks for no call result learns at once";
    EXPECT_EQ(Calls().size(), 1u);
}

TEST_F(ProviderMethodTest, Call_MethodUnknown_NamesItAndStops) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, kNoSuchMethod);
    EXPECT_EQ(Code(method.Put(L_PARAM_NET_CLIENTSETHANDLE, VariantOfLong(7)).ExecOnNetService().Result()),
              "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "GetMethod -> L_METHOD_NONE"));
    EXPECT_THAT(Called(), ElementsAre(kClassWithContext));
}

TEST_F(ProviderMethodTest, Call_GetMethodFails_ReturnsItsCode) {
    Fail(Operation::GetMethod, WBEM_E_FAILED, L"Zorel_NetService");
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "GetMethod -> L_METHOD_NET_APPLY_DONE"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Put_NoSignature_CannotBeMade) {
    Spoil(Operation::GetMethod, Effect::NullObject);
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "SpawnInstance -> L_METHOD_NET_APPLY_DONE"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Put_OnAMethodThatTakesNothing_CannotBeMade) {
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
    EXPECT_EQ(Code(method.Put(L_PARAM_NET_CLIENTSETHANDLE, VariantOfLong(7)).ExecOnNetService().Result()),
              "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "SpawnInstance -> L_METHOD_NET_APPLY_BEGIN"));
}

TEST_F(ProviderMethodTest, Call_NoSignatureAndNoParameters_NeedsNone) {
    Spoil(Operation::GetMethod, Effect::NullObject);
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
    EXPECT_EQ(Code(method.ExecOnNetService().Result()), "0x00000000");
}

TEST_F(ProviderMethodTest, Put_ParametersCannotBeMade_NamesTheMethodAndStops) {
    Fail(Operation::SpawnInstance, WBEM_E_OUT_OF_MEMORY);
    EXPECT_EQ(Code(Apply()), "0x80041006");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "SpawnInstance -> L_METHOD_NET_APPLY_DONE"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Put_ParametersAreNull_NamesTheMethodAndStops) {
    Spoil(Operation::SpawnInstance, Effect::NullObject);
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "SpawnInstance -> L_METHOD_NET_APPLY_DONE"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Put_Fails_NamesTheParameterAndStops) {
    Fail(Operation::Put, WBEM_E_TYPE_MISMATCH);
    EXPECT_EQ(Code(Apply()), "0x80041005");
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l", "Put -> L_PARAM_NET_CLIENTSETHANDLE"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, Put_FirstOfTwoFails_LeavesTheSecondOut) {
    RecordLocalCalls();
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_DONE);
    Traced();
    Calls();
    method.Put(kNoSuchParameter, VariantOfLong(1)).Put(L_PARAM_NET_CLIENTSETHANDLE, VariantOfLong(7));
    EXPECT_EQ(Code(method.Result()), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("Put -> L_PARAM_NONE"));
    EXPECT_THAT(Called(),
                ElementsAre("SpawnInstance __PARAMETERS -> 0x00000000", "Put NoSuchParameter -> 0x80041002"));
}

TEST_F(ProviderMethodTest, ExecOnNetService_NoNetService_Fails) {
    Access::RevokeNetService(quillet);
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(),
                ElementsAre("dwErrorCode: %l", "GetNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))",
                            "(pZorelService == NULL)"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, ExecOnNetService_PathCannotBeRead_ReturnsThatCode) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"__PATH");
    EXPECT_EQ(Code(Apply()), "0x80041003");
    EXPECT_THAT(Traced(),
                ElementsAre("dwErrorCode: %l", "GetPropertyAsString -> pZorelService, L_ZOREL_PATH"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, ExecOnNetService_PathIsNull_Fails) {
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(Apply()), "0x80041001");
    EXPECT_THAT(Traced(),
                ElementsAre("dwErrorCode: %l", "GetPropertyAsString -> pZorelService, L_ZOREL_PATH -> NULL"));
    EXPECT_THAT(Called(), ElementsAre(kClass));
}

TEST_F(ProviderMethodTest, ExecOnNetService_Refused_NamesTheMethod) {
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Apply()), "0x80041003");
    EXPECT_THAT(Traced(),
                ElementsAre("dwErrorCode: %l", "ExecMethod -> bstrObjectPath, L_METHOD_NET_APPLY_DONE"));
    EXPECT_THAT(Called(), ElementsAre(kClass, ExecLine("Apply(ClientSetHandle=7)", "0x80041003")));
}

TEST_F(ProviderMethodTest, Read_NoOutParameters_FailsAtTheFirstRead) {
    for (const Effect effect : {Effect::NoOutParameters, Effect::NullObject, Effect::FailStatus}) {
        SCOPED_TRACE(Narrow(quillet::simulator::EffectName(effect)));
        Spoil(Operation::ExecMethod, effect);
        const ProviderSession session(quillet);
        ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
        Traced();
        LONG returned = 5;
        LONG handle = 6;
        EXPECT_EQ(Code(method.ExecOnNetService()
                           .Read(L"pOut", L"Op() - ")
                           .Long(L_METHOD_RETURN, returned)
                           .Long(L_PARAM_NET_CLIENTSETHANDLE, handle)
                           .Result()),
                  "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsLong -> pInstance == NULL",
                                          "Op() - GetPropertyAsLong -> pOut, L_METHOD_RETURN"));
        EXPECT_EQ(returned, 5);
        EXPECT_EQ(handle, 6);
        machine->Rules().Clear();
    }
}

TEST_F(ProviderMethodTest, Read_AfterAFailedCall_ReadsNothingAndKeepsTheCode) {
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    const ProviderSession session(quillet);
    ProviderMethod method(session, L_CLASS_ZOREL_CORESERVICE, L_METHOD_NET_APPLY_BEGIN);
    Traced();
    LONG returned = 5;
    EXPECT_EQ(Code(method.ExecOnNetService().Read(L"pOut").Long(L_METHOD_RETURN, returned).Result()),
              "0x80041003");
    EXPECT_THAT(Traced(), ElementsAre("ExecMethod -> bstrObjectPath, L_METHOD_NET_APPLY_BEGIN"));
}

TEST_F(ProviderMethodTest, Call_EachProviderCallFails_ReturnsItsCodeAndSendsNothingMore) {
    FailEachProviderCall([this] { return Apply(); });
}

} // namespace
