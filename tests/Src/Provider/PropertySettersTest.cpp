// The setters: what goes over the wire, with which flags and context, and what each failing step leaves
// undone.
#include "ProviderTest.h"
#include "Provider/StubInstance.h"

namespace {

using ATL::CComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr const char* kLongDisconnected =
    "SetPropertyAsLong -> ((pIWbemService == NULL) || (pIWbemContext == NULL))";
constexpr const char* kTextDisconnected =
    "SetPropertyAsString -> ((pIWbemService == NULL) || (pIWbemContext == NULL))";
constexpr const char* kPropertySettersPath =
    R"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{64D1BF82-B507-5E42-AED2-547CA8AAC36A}")";

class PropertySettersTest : public ProviderTest {
  protected:
    PropertySettersTest()
        : ProviderTest(std::string(kNetServiceMof) + R"(
            instance of Zorel_PhysicalEthernetAdapter {
                DeviceID = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
                Name = "One";
                PHYDevice = 5;
                NetworkAddresses = {"02-00-5E-00-00-01"};
            };)") {}
    void SetUp() override {
        Connect();
        // What a setter writes belongs to a client set, as it would in a client.
        ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
        const CComPtr<IWbemServices> service = Access::GetWbemService(quillet);
        ASSERT_TRUE(service);
        ASSERT_EQ(Code(service->GetObject(_bstr_t(L"Zorel_PhysicalEthernetAdapter.DeviceID="
                                                  L"\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\""),
                                          0, nullptr, &m_adapter, nullptr)),
                  "0x00000000");
        Calls();
        Traced();
    }

    /// The value that the provider keeps.
    quillet::simulator::Value Stored(const wchar_t* property) {
        const auto instance = machine->Store().FindInstance(
            L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\"");
        const auto* value = instance ? instance->Find(property) : nullptr;
        return value ? *value : quillet::simulator::Value();
    }
    static std::string PutLine(const char* arguments, const char* result = "0x00000000") {
        return std::string("PutInstance ") + kPropertySettersPath + "(" + arguments + "), flags 0x20010 -> " +
               result + " {ClientSetId=1}";
    }
    static std::string StatusLine(const char* result = "0x00000000", const char* note = "") {
        return std::string("GetCallStatus ") + kPropertySettersPath + " -> " + result + note;
    }

    CComPtr<IWbemClassObject> m_adapter;
};

TEST_F(PropertySettersTest, SetPropertyAsLong_WritesAndCommits) {
    EXPECT_EQ(Code(Access::SetPropertyAsLong(quillet, m_adapter, L"PHYDevice", 17)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(Describe(calls[0]), PutLine("PHYDevice=17"));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_I4);
    EXPECT_EQ(Describe(calls[1]), StatusLine());
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l"));
    ASSERT_TRUE(Stored(L"PHYDevice").AsScalar());
    LONG number = 0;
    bool isNull = true;
    Access::GetPropertyAsLong(m_adapter, L"PHYDevice", number, isNull);
    EXPECT_EQ(number, 17);
}

TEST_F(PropertySettersTest, SetPropertyAsInt_WritesALong) {
    EXPECT_EQ(Code(Access::SetPropertyAsInt(quillet, m_adapter, L"PHYDevice", 18)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(Describe(calls[0]), PutLine("PHYDevice=18"));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_I4);
}

TEST_F(PropertySettersTest, SetPropertyAsBool_WritesTheLongOneOrZero) {
    EXPECT_EQ(Code(Access::SetPropertyAsBool(quillet, m_adapter, L"PHYDevice", true)), "0x00000000");
    EXPECT_EQ(Code(Access::SetPropertyAsBool(quillet, m_adapter, L"PHYDevice", false)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(Describe(calls[0]), PutLine("PHYDevice=1"));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_I4);
    EXPECT_EQ(Describe(calls[2]), PutLine("PHYDevice=0"));
    EXPECT_EQ(calls[2].arguments.at(0).vt, VT_I4);
}

TEST_F(PropertySettersTest, SetPropertyAsString_WritesText) {
    EXPECT_EQ(Code(Access::SetPropertyAsString(quillet, m_adapter, L"Name", L"Z\u00fcrich 1")), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(Describe(calls[0]), PutLine("Name=\"Z\u00fcrich 1\""));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_BSTR);
    EXPECT_EQ(Stored(L"Name"), quillet::simulator::Value::Text(L"Z\u00fcrich 1"));
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l"));
}

TEST_F(PropertySettersTest, SetPropertyAsString_EmptyText_IsWrittenAsSuch) {
    EXPECT_EQ(Code(Access::SetPropertyAsString(quillet, m_adapter, L"Name", L"")), "0x00000000");
    EXPECT_THAT(Called(), ElementsAre(PutLine("Name=\"\""), StatusLine()));
}

TEST_F(PropertySettersTest, SetPropertyAsMultiString_WritesOneElementPerText) {
    EXPECT_EQ(Code(Access::SetPropertyAsMultiString(quillet, m_adapter, L"NetworkAddresses",
                                                    {L"first", L"", L"third"})),
              "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(Describe(calls[0]), PutLine(R"(NetworkAddresses={"first", "", "third"})"));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_ARRAY | VT_BSTR);
}

TEST_F(PropertySettersTest, SetPropertyAsMultiString_NoTexts_WritesAnEmptyArray) {
    EXPECT_EQ(Code(Access::SetPropertyAsMultiString(quillet, m_adapter, L"NetworkAddresses", {})),
              "0x00000000");
    EXPECT_THAT(Called(), ElementsAre(PutLine("NetworkAddresses={}"), StatusLine()));
}

/// Runs each setter and yields what it returned and traced.
struct WriteOutcome {
    std::string code;
    std::vector<std::string> trace;
};

class EachSetterTest : public PropertySettersTest {
  protected:
    std::vector<WriteOutcome> EachSetter(IWbemClassObject* instance) {
        std::vector<WriteOutcome> outcomes;
        const auto add = [this, &outcomes](HRESULT result) { outcomes.push_back({Code(result), Traced()}); };
        add(Access::SetPropertyAsLong(quillet, instance, L"PHYDevice", 1));
        add(Access::SetPropertyAsInt(quillet, instance, L"PHYDevice", 1));
        add(Access::SetPropertyAsBool(quillet, instance, L"PHYDevice", true));
        add(Access::SetPropertyAsString(quillet, instance, L"Name", L"x"));
        add(Access::SetPropertyAsMultiString(quillet, instance, L"NetworkAddresses", {L"x"}));
        return outcomes;
    }
    /// Makes every call of an operation do the same.
    void Always(Operation operation, Effect effect, ResultCode code = WBEM_E_FAILED) {
        FaultRule rule;
        rule.operation = operation;
        rule.effect = effect;
        rule.code = code.value;
        rule.repeat = true;
        Inject(rule);
    }
};

TEST_F(EachSetterTest, Setters_NotConnected_FailAndSendNothing) {
    quillet.UninitQuillet();
    Traced();
    const std::vector<WriteOutcome> outcomes = EachSetter(m_adapter);
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
        SCOPED_TRACE(index);
        EXPECT_EQ(outcomes[index].code, "0x80041001");
        EXPECT_THAT(outcomes[index].trace,
                    ElementsAre("GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                index < 3 ? kLongDisconnected : kTextDisconnected));
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(EachSetterTest, Setters_NoContext_Fail) {
    Access::RevokeWbemContext(quillet);
    const std::vector<WriteOutcome> outcomes = EachSetter(m_adapter);
    for (const WriteOutcome& outcome : outcomes) {
        EXPECT_EQ(outcome.code, "0x80041001");
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(EachSetterTest, Setters_NoInstance_FailAndSendNothing) {
    for (const WriteOutcome& outcome : EachSetter(nullptr)) {
        EXPECT_EQ(outcome.code, "0x80004005");
        EXPECT_THAT(outcome.trace,
                    ElementsAre("dwErrorCode: %l", "SetPropertyAsString -> pInstance == NULL"));
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(EachSetterTest, Setters_PutFails_ReturnItsCodeAndSendNothing) {
    Always(Operation::Put, Effect::Fail, WBEM_E_TYPE_MISMATCH);
    for (const WriteOutcome& outcome : EachSetter(m_adapter)) {
        EXPECT_EQ(outcome.code, "0x80041005");
        EXPECT_THAT(outcome.trace,
                    ElementsAre("dwErrorCode: %l", "SetPropertyAsString -> pInstance->Put, rbstrName"));
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(EachSetterTest, Setters_PutInstanceFails_ReturnItsCodeAndDoNotWait) {
    Always(Operation::PutInstance, Effect::Fail, WBEM_E_ACCESS_DENIED);
    for (const WriteOutcome& outcome : EachSetter(m_adapter)) {
        EXPECT_EQ(outcome.code, "0x80041003");
        EXPECT_THAT(outcome.trace, ElementsAre("dwErrorCode: %l"));
    }
    for (const JournalEntry& call : Calls()) {
        EXPECT_EQ(call.operation, Operation::PutInstance);
    }
}

TEST_F(EachSetterTest, Setters_NoCallResult_Fail) {
    Always(Operation::PutInstance, Effect::NullObject);
    for (const WriteOutcome& outcome : EachSetter(m_adapter)) {
        EXPECT_EQ(outcome.code, "0x80041001");
        EXPECT_THAT(outcome.trace, ElementsAre("dwErrorCode: %l", "PutInstance -> pWbemCallResult -> NULL"));
    }
}

TEST_F(EachSetterTest, Setters_CallFailsLate_ReturnItsFinalStatus) {
    Always(Operation::PutInstance, Effect::FailStatus, WBEM_E_READ_ONLY);
    for (const WriteOutcome& outcome : EachSetter(m_adapter)) {
        EXPECT_EQ(outcome.code, Code(WBEM_E_READ_ONLY));
        EXPECT_THAT(outcome.trace, ElementsAre("dwErrorCode: %l"));
    }
    EXPECT_NE(Stored(L"Name"), quillet::simulator::Value::Text(L"x"));
}

TEST_F(EachSetterTest, Setters_StatusCannotBeAsked_ReturnThatCode) {
    Always(Operation::GetCallStatus, Effect::Fail, WBEM_E_TRANSPORT_FAILURE);
    for (const WriteOutcome& outcome : EachSetter(m_adapter)) {
        EXPECT_EQ(outcome.code, Code(WBEM_E_TRANSPORT_FAILURE));
    }
}

TEST_F(EachSetterTest, Setters_BlanketRefused_FailAndSendNothing) {
    Always(Operation::SetBlanket, Effect::Fail, E_ACCESSDENIED);
    const std::vector<WriteOutcome> outcomes = EachSetter(m_adapter);
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
        SCOPED_TRACE(index);
        EXPECT_EQ(outcomes[index].code, "0x80041001");
        EXPECT_THAT(outcomes[index].trace, ElementsAre("Could not set proxy blanket.", "dwErrorCode: %l",
                                                       index < 3 ? kLongDisconnected : kTextDisconnected));
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(PropertySettersTest, SetPropertyAsString_UnknownProperty_IsThePutsCode) {
    EXPECT_EQ(Code(Access::SetPropertyAsString(quillet, m_adapter, L"NoSuchProperty", L"x")), "0x80041002");
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(PropertySettersTest, SetPropertyAsString_ProviderRefusesTheInstance_IsItsCode) {
    StubInstance foreign;
    // Somebody else's object takes the Put; what to make of it is the provider's to decide.
    EXPECT_EQ(Code(Access::SetPropertyAsString(quillet, &foreign, L"Name", L"x")), "0x80004001");
    EXPECT_THAT(Called(), IsEmpty()) << "its Put is not implemented";
    EXPECT_EQ(foreign.References(), 1u);
}

// --- partial retrieval ---

class ChangeContextTest : public ProviderTest {
  protected:
    ChangeContextTest() : ProviderTest(kNetServiceMof) {}
    void SetUp() override {
        Connect();
        m_context = Access::GetContext(quillet);
        ASSERT_TRUE(m_context);
        Traced();
        RecordLocalCalls();
    }
    CComPtr<IWbemContext> m_context;
};

TEST_F(ChangeContextTest, ChangeContext_MinusOne_SetsFourValues) {
    EXPECT_EQ(Code(Access::ChangeContext(m_context, -1)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("CQuillet::ChangeContext", " Unset Partial Retrieval!!"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[0].target, L"GET_EXT_CLIENT_REQUEST");
    EXPECT_EQ(calls[1].target, L"GET_EXTENSIONS");
    EXPECT_EQ(calls[2].target, L"GET_EXT_KEYS_ONLY");
    EXPECT_EQ(calls[3].target, L"Zorel_PartialData");
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(calls[index].arguments.at(0).vt, VT_BOOL);
        EXPECT_EQ(calls[index].arguments.at(0).value, quillet::simulator::Value::Bool(false));
    }
    EXPECT_EQ(calls[3].arguments.at(0).vt, VT_I4);
    EXPECT_EQ(calls[3].arguments.at(0).value, quillet::simulator::Value::Signed(-1));
}

TEST_F(ChangeContextTest, ChangeContext_Null_OnlyTraces) {
    EXPECT_EQ(Code(Access::ChangeContext(nullptr, 5)), "0x00000000");
    EXPECT_EQ(Code(Access::ChangeContext(nullptr, -1)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("CQuillet::ChangeContext", "CQuillet::ChangeContext"));
}

TEST_F(ChangeContextTest, ChangeContext_ContextRefusesEveryValue_StillSucceeds) {
    FaultRule rule;
    rule.operation = Operation::SetContextValue;
    rule.repeat = true;
    Inject(rule);
    EXPECT_EQ(Code(Access::ChangeContext(m_context, 5)), "0x00000000");
    EXPECT_EQ(Code(Access::ChangeContext(m_context, -1)), "0x00000000");
    EXPECT_EQ(Calls().size(), 7u) << "a refused value does not keep the others from being set";
}

class PartialModeTest : public ChangeContextTest, public testing::WithParamInterface<LONG> {};

TEST_P(PartialModeTest, ChangeContext_LowByteBelow128_SetsThePartialData) {
    EXPECT_EQ(Code(Access::ChangeContext(m_context, GetParam())), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("CQuillet::ChangeContext", "Setting for partial data!!",
                                      "Else Partial Retrieval!!"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].target, L"GET_EXT_CLIENT_REQUEST");
    EXPECT_EQ(calls[0].arguments.at(0).value, quillet::simulator::Value::Bool(true));
    EXPECT_EQ(calls[0].arguments.at(0).vt, VT_BOOL);
    EXPECT_EQ(calls[1].target, L"GET_EXTENSIONS");
    EXPECT_EQ(calls[1].arguments.at(0).value, quillet::simulator::Value::Bool(true));
    EXPECT_EQ(calls[2].target, L"Zorel_PartialData");
    EXPECT_EQ(calls[2].arguments.at(0).vt, VT_I4);
    EXPECT_EQ(calls[2].arguments.at(0).value, quillet::simulator::Value::Signed(GetParam()));
}

std::string ModeName(const testing::TestParamInfo<LONG>& test) {
    return (test.param < 0 ? "minus_" : "") + std::to_string(test.param < 0 ? -test.param : test.param);
}

INSTANTIATE_TEST_SUITE_P(Modes, PartialModeTest, testing::Values(5, 0, 1, 127, 256, -256, 0x17F), ModeName);

class KeysOnlyModeTest : public ChangeContextTest, public testing::WithParamInterface<LONG> {};

TEST_P(KeysOnlyModeTest, ChangeContext_LowByteFrom128_AsksForKeysOnly) {
    EXPECT_EQ(Code(Access::ChangeContext(m_context, GetParam())), "0x00000000");
    EXPECT_THAT(Traced(),
                ElementsAre("CQuillet::ChangeContext", "Setting for partial data!!", "Keys only!!"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].target, L"GET_EXT_CLIENT_REQUEST");
    EXPECT_EQ(calls[1].target, L"GET_EXTENSIONS");
    EXPECT_EQ(calls[2].target, L"GET_EXT_KEYS_ONLY");
    EXPECT_EQ(calls[2].arguments.at(0).vt, VT_BOOL);
    EXPECT_EQ(calls[2].arguments.at(0).value, quillet::simulator::Value::Bool(true));
}

INSTANTIATE_TEST_SUITE_P(Modes, KeysOnlyModeTest, testing::Values(-2, -128, 128, 255, 0x1FF), ModeName);

} // namespace
