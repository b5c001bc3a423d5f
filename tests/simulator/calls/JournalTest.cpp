// The journal: what stands in it, in which order, and what never does.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

class Recorded : public ComTest {};

TEST_F(Recorded, ProviderCallsInTheirOrder) {
    const auto one = Object(kAll);
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_Lone", nullptr)), "0x00000000");
    std::vector<std::wstring> names;
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_Lone", &names)), "0x00000000");
    EXPECT_EQ(Code(GetStatus(L"None")), "0x80041002");
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(services->PutInstance(one, 0x20010, nullptr, &result), S_OK);
    LONG status = 0;
    ASSERT_EQ(result->GetCallStatus(static_cast<LONG>(WBEM_INFINITE), &status), S_OK);
    Begin();
    EXPECT_THAT(
        Lines(machine->Calls().ProviderCalls()),
        ElementsAre(
            "GetObject Test_All.Name=\"one\" -> 0x00000000",
            "ExecQuery SELECT * FROM Test_Lone -> 0x00000000",
            "ExecQuery SELECT * FROM Test_Lone -> 0x00000000", "Next SELECT * FROM Test_Lone -> 0x00000000",
            "Next SELECT * FROM Test_Lone -> 0x00000001", "GetObject None -> 0x80041002",
            "PutInstance \\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\", flags 0x20010 -> 0x00000000 "
            "(outside a client set)",
            "GetCallStatus \\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\" -> 0x00000000",
            "ExecMethod Zorel_NetService.Name=\"ZorelNetService\", BeginApply() -> 0x00000000"));
    EXPECT_EQ(machine->Calls().All().front().thread, GetCurrentThreadId());
    EXPECT_EQ(machine->Calls().Size(), 9u);
    EXPECT_EQ(machine->Calls().Of(Operation::Next).size(), 2u);
    const auto taken = machine->Calls().Take();
    ASSERT_EQ(taken.size(), 9u);
    EXPECT_EQ(Narrow(taken.front().Line()), "GetObject Test_All.Name=\"one\" -> 0x00000000");
    EXPECT_EQ(taken.back().method, L"BeginApply");
    EXPECT_EQ(machine->Calls().Size(), 0u);
}

TEST_F(Recorded, ParametersInTheOrderOfThePuts) {
    const auto in = InParameters(L"Test_All", L"Run");
    ASSERT_EQ(Put(in, L"Names", TextArray({L"a", L"b"})), S_OK);
    ASSERT_EQ(Put(in, L"Data", ByteArray({1, 2, 3, 4, 5, 6, 7, 8, 9, 10})), S_OK);
    ASSERT_EQ(Put(in, L"Count", I4(5)), S_OK);
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kAll).GetBSTR(), _bstr_t(L"Run").GetBSTR(), 0, nullptr, in,
                                        nullptr, nullptr)),
              "0x8004100C");
    const auto call = machine->Calls().All().back();
    EXPECT_EQ(Narrow(call.Line()), "ExecMethod Test_All.Name=\"one\", Run(Names={\"a\", \"b\"}, Data={1, 2, "
                                   "3, 4, 5, 6, 7, 8, \xE2\x80\xA6 10 "
                                   "elements}, Count=5) -> 0x8004100C");
    EXPECT_EQ(call.Argument(L"names")->vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(call.Argument(L"names")->type, CIM_STRING | CIM_FLAG_ARRAY);
    EXPECT_EQ(call.Argument(L"Count")->vt, VT_I4);
    EXPECT_EQ(call.Argument(L"Count")->value, Value::Signed(5));
    EXPECT_EQ(call.Argument(L"Password"), nullptr);
}

TEST_F(Recorded, SecretsNowhere) {
    machine->Calls().RecordLocal(true);
    const auto in = InParameters(L"Test_All", L"Run");
    ASSERT_EQ(Put(in, L"Password", L"open sesame"), S_OK);
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kAll).GetBSTR(), _bstr_t(L"Run").GetBSTR(), 0, nullptr, in,
                                        nullptr, nullptr)),
              "0x8004100C");
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"Password", L"open sesame"), S_OK);
    ASSERT_EQ(services->PutInstance(one, 0, nullptr, nullptr), S_OK);
    EXPECT_EQ(Get(Object(kAll), L"Password"), _variant_t(L"open sesame"));
    int masked = 0;
    for (const auto& call : machine->Calls().All()) {
        EXPECT_THAT(Narrow(call.Line()), testing::Not(testing::HasSubstr("sesame")));
        for (const auto& argument : call.arguments) {
            EXPECT_NE(argument.value, Value::Text(L"open sesame"));
            masked += argument.value == Value::Text(L"***") ? 1 : 0;
        }
    }
    EXPECT_EQ(masked, 4);
    EXPECT_EQ(Narrow(machine->Calls().Of(Operation::ExecMethod).back().Line()),
              "ExecMethod Test_All.Name=\"one\", Run(Password=***) -> 0x8004100C");
}

TEST_F(Recorded, LocalCallsOnlyWhenAskedFor) {
    const auto one = Object(kAll);
    Get(one, L"Name");
    EXPECT_EQ(machine->Calls().Size(), 1u);
    machine->Calls().RecordLocal(true);
    machine->Calls().Clear();
    Get(one, L"Name");
    EXPECT_EQ(Code(GetCode(one, L"Nothing")), "0x80041002");
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    ASSERT_EQ(SetBlanket(services), S_OK);
    const auto context = Context();
    _variant_t value = I4(7);
    ASSERT_EQ(context->SetValue(L"ClientSetId", 0, &value), S_OK);
    InParameters(L"Zorel_NetService", L"Apply");
    EXPECT_THAT(
        Lines(machine->Calls().All()),
        ElementsAre("Get Name -> 0x00000000", "Get Nothing -> 0x80041002",
                    "Put Caption(Caption=\"changed\") -> 0x00000000",
                    "SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000",
                    "CreateContext IWbemContext -> 0x00000000",
                    "SetContextValue ClientSetId(ClientSetId=7) -> 0x00000000",
                    "GetObject Zorel_NetService -> 0x00000000",
                    "GetMethod Zorel_NetService, Apply -> 0x00000000",
                    "SpawnInstance __PARAMETERS -> 0x00000000"));
    EXPECT_THAT(Lines(machine->Calls().ProviderCalls()),
                ElementsAre("GetObject Zorel_NetService -> 0x00000000"));
}

TEST_F(Recorded, PutsOnlyUntilTheyArrived) {
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"Caption", L"a"), S_OK);
    ASSERT_EQ(services->PutInstance(one, 0, nullptr, nullptr), S_OK);
    ASSERT_EQ(Put(one, L"U8", I4(1)), S_OK);
    ASSERT_EQ(services->PutInstance(one, 0, nullptr, nullptr), S_OK);
    const auto calls = machine->Calls().Of(Operation::PutInstance);
    ASSERT_EQ(calls.size(), 2u);
    ASSERT_EQ(calls[1].arguments.size(), 1u);
    EXPECT_EQ(calls[1].arguments[0].name, L"U8");
}

TEST_F(Recorded, ALineIsALine) {
    JournalEntry entry;
    entry.operation = Operation::GetObject;
    entry.target = L"A.B=\"x\ny\"";
    entry.arguments = {{L"T", VT_BSTR, CIM_STRING, Value::Text(std::wstring(200, L'x') + L"\r\n")},
                       {L"N", VT_NULL, CIM_STRING, Value()},
                       {L"B", VT_BOOL, CIM_BOOLEAN, Value::Bool(true)}};
    entry.result = E_ACCESSDENIED;
    EXPECT_EQ(Narrow(entry.Line()), "GetObject A.B=\"x?y\"(T=\"" + std::string(120, 'x') +
                                        "\xE2\x80\xA6\", N=null, B=true) -> 0x80070005");
}

TEST_F(Recorded, RealsAndMissingElementsAreShown) {
    machine->Calls().RecordLocal(true);
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"R64", 0.125), S_OK);
    EXPECT_EQ(Narrow(machine->Calls().All().back().Line()), "Put R64(R64=0.125000) -> 0x00000000");
    JournalEntry entry;
    entry.operation = Operation::PutInstance;
    entry.target = L"A";
    entry.arguments = {{L"T", VT_ARRAY | VT_BSTR, CIM_STRING | CIM_FLAG_ARRAY,
                        Value(Value::Array{std::nullopt, Scalar(std::wstring(L"x"))})}};
    EXPECT_EQ(Narrow(entry.Line()), "PutInstance A(T={null, \"x\"}) -> 0x00000000");
}

TEST_F(Recorded, OperationsHaveNames) {
    for (int number = 0; number <= static_cast<int>(Operation::GetQualifier); ++number) {
        const auto operation = static_cast<Operation>(number);
        EXPECT_STRNE(OperationName(operation), L"");
        EXPECT_EQ(OperationByName(OperationName(operation)), operation);
    }
    EXPECT_STREQ(OperationName(Operation::GetObject), L"GetObject");
    EXPECT_FALSE(OperationByName(L"Explode"));
    EXPECT_TRUE(IsProviderCall(Operation::GetResultObject));
    EXPECT_FALSE(IsProviderCall(Operation::SetBlanket));
}

} // namespace
