// Fault rules: which call they hit, and what each effect does to it.
#include "ComFixture.h"

#include <chrono>
#include <stdexcept>

using ATL::CComPtr;

namespace {

constexpr LONG kForever = static_cast<LONG>(WBEM_INFINITE);
constexpr const wchar_t* kNetService = L"Zorel_NetService.Name=\"ZorelNetService\"";

class Fault : public ComTest {
  protected:
    FaultRule& Rule(Operation operation, Effect effect, const wchar_t* target = L"") {
        m_rule = FaultRule{};
        m_rule.operation = operation;
        m_rule.effect = effect;
        m_rule.target = target;
        return m_rule;
    }
    void Arm(Operation operation, Effect effect, const wchar_t* target = L"") {
        Arm(Rule(operation, effect, target));
    }
    void Arm(const FaultRule& rule) { machine->Rules().Add(rule); }

    _variant_t Damaged(Effect effect, const wchar_t* name) {
        machine->Rules().Clear();
        Arm(Operation::Get, effect, name);
        return Get(one, name);
    }

    CComPtr<IWbemClassObject> one = Object(kAll);

  private:
    FaultRule m_rule;
};

TEST_F(Fault, HitsTheNthCallOnly) {
    auto& rule = Rule(Operation::GetObject, Effect::Fail);
    rule.nth = 2;
    rule.code = HRESULT(WBEM_E_ACCESS_DENIED);
    Arm(rule);
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041003");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
    EXPECT_EQ(machine->Rules().Hits(), 1u);
}

TEST_F(Fault, HitsEveryLaterCallWhenItRepeats) {
    auto& rule = Rule(Operation::GetObject, Effect::Fail);
    rule.nth = 2;
    rule.repeat = true;
    Arm(rule);
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
    machine->Rules().Clear();
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
}

TEST_F(Fault, LooksOnlyAtCallsOnItsTarget) {
    Arm(Operation::GetObject, Effect::Fail, L"test_all");
    EXPECT_EQ(Code(GetStatus(L"Test_Lone=1")), "0x00000000");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
    Arm(Operation::GetObject, Effect::Fail, L"Test_All.Name=\"two\"");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
    EXPECT_EQ(Code(GetStatus(L"Test_All.Name=\"two\"")), "0x80041001");
    Arm(Operation::ExecQuery, Effect::Fail, L"Test_Lone");
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_All")), "0x00000000");
    EXPECT_EQ(Code(Query(L"REFERENCES OF {Test_Lone=1}")), "0x00000000");
    EXPECT_EQ(Code(Query(L"ASSOCIATORS OF {Test_All=\"one\"} WHERE ResultClass = Test_Lone")), "0x80041001");
    Arm(Operation::ExecQuery, Effect::Fail, L"Test_Lone");
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_Lone")), "0x80041001");
}

TEST_F(Fault, ACallOnWhatIsNoPathMeetsNoRuleForAClass) {
    Arm(Operation::GetObject, Effect::Fail, L"Test_All");
    EXPECT_EQ(Code(GetStatus(L"...")), "0x8004103A");
    EXPECT_EQ(machine->Rules().Hits(), 0u);
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
}

TEST_F(Fault, LooksOnlyAtCallsOfItsMethod) {
    auto& rule = Rule(Operation::ExecMethod, Effect::Fail, L"Zorel_NetService");
    rule.method = L"BeginApply";
    Arm(rule);
    const auto run = [this](const wchar_t* method) {
        return Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(method).GetBSTR(), 0,
                                         nullptr, nullptr, nullptr, nullptr));
    };
    EXPECT_EQ(run(L"GetKavlorWarnings"), "0x00000000");
    EXPECT_EQ(run(L"BeginApply"), "0x80041001");
    EXPECT_EQ(machine->OpenClientSet(), 0);
}

TEST_F(Fault, AFailedCallDoesNothing) {
    Arm(Operation::DeleteInstance, Effect::Fail);
    EXPECT_EQ(Code(services->DeleteInstance(_bstr_t(L"Test_Lone=1").GetBSTR(), 0, nullptr, nullptr)),
              "0x80041001");
    EXPECT_EQ(Code(GetStatus(L"Test_Lone=1")), "0x00000000");
}

TEST_F(Fault, AnyProviderCallCanBeHit) {
    auto& rule = Rule(Operation::GetObject, Effect::Fail);
    rule.operation.reset();
    rule.nth = 2;
    Arm(rule);
    EXPECT_EQ(V_VT(&static_cast<const VARIANT&>(Get(one, L"S8"))), VT_I2);
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_All")), "0x00000000");
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
}

TEST_F(Fault, EveryProviderCallCanFail) {
    const auto fails = [this](Operation operation, auto call) {
        machine->Rules().Clear();
        Arm(operation, Effect::Fail);
        EXPECT_EQ(Code(call()), "0x80041001") << Narrow(OperationName(operation));
        EXPECT_EQ(Code(machine->Calls().Of(operation).back().result), "0x80041001");
    };
    _bstr_t text(L"Test_All");
    const BSTR name = text.GetBSTR();
    CComPtr<IEnumWbemClassObject> answer;
    CComPtr<IEnumWbemClassObject> none;
    CComPtr<IWbemCallResult> result;
    CComPtr<IWbemServices> other;
    CComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    LONG status = 0;
    ASSERT_EQ(services->CreateInstanceEnum(name, 0, nullptr, &answer), S_OK);
    ASSERT_EQ(services->GetObject(name, 0, nullptr, nullptr, &result), S_OK);
    fails(Operation::ConnectServer, [&] {
        return Locator()->ConnectServer(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), nullptr, nullptr, nullptr, 0,
                                        nullptr, nullptr, &other);
    });
    fails(Operation::OpenNamespace,
          [&] { return services->OpenNamespace(name, 0, nullptr, &other, nullptr); });
    fails(Operation::GetObject, [&] { return services->GetObject(name, 0, nullptr, &object, nullptr); });
    fails(Operation::CreateInstanceEnum,
          [&] { return services->CreateInstanceEnum(name, 0, nullptr, &none); });
    fails(Operation::CreateClassEnum, [&] { return services->CreateClassEnum(name, 0, nullptr, &none); });
    fails(Operation::ExecQuery, [&] { return Query(L"SELECT * FROM Test_All"); });
    fails(Operation::ExecMethod,
          [&] { return services->ExecMethod(name, name, 0, nullptr, nullptr, nullptr, nullptr); });
    fails(Operation::PutInstance, [&] { return services->PutInstance(one, 0, nullptr, nullptr); });
    fails(Operation::DeleteInstance, [&] { return services->DeleteInstance(name, 0, nullptr, nullptr); });
    fails(Operation::Next, [&] { return answer->Next(kForever, 1, &object, &returned); });
    fails(Operation::GetCallStatus, [&] { return result->GetCallStatus(kForever, &status); });
    fails(Operation::GetResultObject, [&] { return result->GetResultObject(kForever, &object); });
    fails(Operation::Unsupported, [&] { return services->DeleteClass(name, 0, nullptr, nullptr); });
    EXPECT_EQ(other.p, nullptr);
    EXPECT_EQ(none.p, nullptr);
    EXPECT_EQ(object.p, nullptr);
}

TEST_F(Fault, EveryLocalCallCanFail) {
    const auto fails = [this](Operation operation, auto call) {
        machine->Rules().Clear();
        Arm(operation, Effect::Fail);
        EXPECT_EQ(Code(call()), "0x80041001") << Narrow(OperationName(operation));
        EXPECT_NE(Code(call()), "0x80041001") << Narrow(OperationName(operation));
    };
    const auto definition = Object(L"Test_All");
    const auto context = Context();
    CComPtr<IWbemQualifierSet> set;
    ASSERT_EQ(definition->GetPropertyQualifierSet(L"State", &set), S_OK);
    _variant_t value(L"x");
    fails(Operation::CreateContext, [] {
        CComPtr<IWbemContext> made;
        return CoCreateInstance(CLSID_WbemContext, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemContext,
                                reinterpret_cast<void**>(&made));
    });
    fails(Operation::SetContextValue, [&] { return context->SetValue(L"A", 0, &value); });
    fails(Operation::SetBlanket, [&] { return SetBlanket(services); });
    fails(Operation::Get, [&] { return GetCode(one, L"S8"); });
    fails(Operation::Put, [&] { return Put(one, L"Caption", L"x"); });
    fails(Operation::GetMethod, [&] { return definition->GetMethod(L"Run", 0, nullptr, nullptr); });
    fails(Operation::SpawnInstance, [&] {
        CComPtr<IWbemClassObject> fresh;
        return definition->SpawnInstance(0, &fresh);
    });
    fails(Operation::GetQualifierSet, [&] {
        CComPtr<IWbemQualifierSet> other;
        return one->GetQualifierSet(&other);
    });
    fails(Operation::GetPropertyQualifierSet, [&] {
        CComPtr<IWbemQualifierSet> other;
        return one->GetPropertyQualifierSet(L"Name", &other);
    });
    fails(Operation::GetQualifier, [&] { return set->Get(L"ValueMap", 0, nullptr, nullptr); });
}

TEST_F(Fault, ObjectsHandedOutCanBeNull) {
    _bstr_t text(L"Test_All");
    const BSTR name = text.GetBSTR();
    CComPtr<IWbemClassObject> object;
    CComPtr<IWbemClassObject> second;
    CComPtr<IEnumWbemClassObject> answer;
    CComPtr<IWbemCallResult> result;
    CComPtr<IWbemServices> other;
    CComPtr<IWbemQualifierSet> set;
    CComPtr<IEnumWbemClassObject> walk;
    const auto definition = Object(L"Test_All");
    ASSERT_EQ(services->CreateInstanceEnum(name, 0, nullptr, &walk), S_OK);
    for (const auto operation :
         {Operation::ConnectServer, Operation::GetObject, Operation::CreateInstanceEnum, Operation::ExecQuery,
          Operation::ExecMethod, Operation::PutInstance, Operation::Next, Operation::GetMethod,
          Operation::SpawnInstance, Operation::GetQualifierSet, Operation::GetPropertyQualifierSet}) {
        auto& rule = Rule(operation, Effect::NullObject);
        rule.repeat = true;
        Arm(rule);
    }
    ULONG returned = 0;
    EXPECT_EQ(Code(Locator()->ConnectServer(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), nullptr, nullptr, nullptr,
                                            0, nullptr, nullptr, &other)),
              "0x00000000");
    EXPECT_EQ(Code(services->GetObject(name, 0, nullptr, &object, nullptr)), "0x00000000");
    EXPECT_EQ(Code(services->CreateInstanceEnum(name, 0, nullptr, &answer)), "0x00000000");
    EXPECT_EQ(Code(services->ExecQuery(_bstr_t(L"WQL").GetBSTR(),
                                       _bstr_t(L"SELECT * FROM Test_All").GetBSTR(), 0, nullptr, &answer)),
              "0x00000000");
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(L"BeginApply").GetBSTR(), 0,
                                        nullptr, nullptr, &object, nullptr)),
              "0x00000000");
    EXPECT_EQ(Code(services->PutInstance(one, 0x20010, nullptr, &result)), "0x00000000");
    EXPECT_EQ(Code(walk->Next(kForever, 1, &object, &returned)), "0x00000000");
    EXPECT_EQ(returned, 1u);
    EXPECT_EQ(Code(definition->GetMethod(L"Run", 0, &object, &second)), "0x00000000");
    EXPECT_EQ(Code(definition->SpawnInstance(0, &object)), "0x00000000");
    EXPECT_EQ(Code(definition->GetQualifierSet(&set)), "0x00000000");
    EXPECT_EQ(Code(definition->GetPropertyQualifierSet(L"Name", &set)), "0x00000000");
    EXPECT_EQ(object.p, nullptr);
    EXPECT_EQ(second.p, nullptr);
    EXPECT_EQ(answer.p, nullptr);
    EXPECT_EQ(result.p, nullptr);
    EXPECT_EQ(other.p, nullptr);
    EXPECT_EQ(set.p, nullptr);
}

TEST_F(Fault, OutParametersCanBeMissing) {
    Arm(Operation::ExecMethod, Effect::NoOutParameters);
    CComPtr<IWbemClassObject> out;
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(L"BeginApply").GetBSTR(), 0,
                                        nullptr, nullptr, &out, nullptr)),
              "0x00000000");
    EXPECT_EQ(out.p, nullptr);
    EXPECT_NE(machine->OpenClientSet(), 0);
}

TEST_F(Fault, AMethodCanBeRefusedByItsVerdict) {
    auto& rule = Rule(Operation::ExecMethod, Effect::Verdict);
    rule.verdict = 17;
    Arm(rule);
    CComPtr<IWbemClassObject> out;
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(L"BeginApply").GetBSTR(), 0,
                                        nullptr, nullptr, &out, nullptr)),
              "0x00000000");
    ASSERT_NE(out.p, nullptr);
    _variant_t answered;
    EXPECT_EQ(out->Get(L"ReturnValue", 0, &answered, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_I4(&answered), 17);
    EXPECT_EQ(machine->OpenClientSet(), 0) << "the method was run all the same";
}

TEST_F(Fault, AnEnumerationCanEndEarly) {
    CComPtr<IEnumWbemClassObject> answer;
    ASSERT_EQ(services->CreateInstanceEnum(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &answer), S_OK);
    auto& rule = Rule(Operation::Next, Effect::EndOfData, L"Test_All");
    rule.nth = 2;
    Arm(rule);
    ULONG returned = 0;
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, &returned)), "0x00000000");
    object.Release();
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, &returned)), "0x00000001");
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, &returned)), "0x00000001");
}

TEST_F(Fault, AStatusCanFailLater) {
    auto& rule = Rule(Operation::PutInstance, Effect::FailStatus);
    rule.code = HRESULT(WBEM_E_PROVIDER_FAILURE);
    rule.repeat = true;
    Arm(rule);
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    CComPtr<IWbemCallResult> result;
    LONG status = 0;
    ASSERT_EQ(Code(services->PutInstance(one, 0x20010, nullptr, &result)), "0x00000000");
    ASSERT_EQ(result->GetCallStatus(kForever, &status), S_OK);
    EXPECT_EQ(Code(status), "0x80041004");
    EXPECT_EQ(machine->Store().FindInstance(kAll)->Text(L"Caption"), L"First");
    EXPECT_EQ(Code(services->PutInstance(one, 0, nullptr, nullptr)), "0x80041004");
    machine->Rules().Clear();
    Arm(Operation::GetCallStatus, Effect::FailStatus);
    result.Release();
    ASSERT_EQ(Code(services->PutInstance(one, 0x20010, nullptr, &result)), "0x00000000");
    ASSERT_EQ(result->GetCallStatus(kForever, &status), S_OK);
    EXPECT_EQ(Code(status), "0x80041001");
}

TEST_F(Fault, ARemovalCanFailLater) {
    Arm(Operation::DeleteInstance, Effect::FailStatus);
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->DeleteInstance(_bstr_t(L"Test_Lone=1").GetBSTR(), WBEM_FLAG_RETURN_IMMEDIATELY,
                                            nullptr, &result)),
              "0x00000000");
    LONG status = 0;
    ASSERT_EQ(result->GetCallStatus(kForever, &status), S_OK);
    EXPECT_EQ(Code(status), "0x80041001");
    EXPECT_EQ(Code(GetStatus(L"Test_Lone=1")), "0x00000000") << "it was removed all the same";
}

TEST_F(Fault, AValueCanBeNullOrAbsent) {
    EXPECT_EQ(V_VT(&static_cast<const VARIANT&>(Damaged(Effect::NullValue, L"Caption"))), VT_NULL);
    machine->Rules().Clear();
    Arm(Operation::Get, Effect::Absent, L"Caption");
    EXPECT_EQ(Code(GetCode(one, L"Name")), "0x00000000");
    EXPECT_EQ(Code(GetCode(one, L"Caption")), "0x80041002");
    EXPECT_EQ(Code(GetCode(one, L"Caption")), "0x00000000");
    Arm(Operation::Get, Effect::Absent, L"Test_All");
    EXPECT_EQ(Code(GetCode(one, L"__PATH")), "0x80041002");
}

TEST_F(Fault, AValueCanHaveAnyOtherType) {
    for (const VARTYPE vt : {VT_EMPTY, VT_I2, VT_I4, VT_R8, VT_BOOL, VT_DATE, VT_ERROR, VT_UNKNOWN,
                             VT_DISPATCH, VT_BSTR, VT_UI8}) {
        auto& rule = Rule(Operation::Get, Effect::WrongType, L"Caption");
        rule.vt = static_cast<VARTYPE>(vt);
        Arm(rule);
        const auto value = Get(one, L"Caption");
        EXPECT_EQ(V_VT(&value), vt);
        if (vt == VT_UNKNOWN || vt == VT_DISPATCH) {
            EXPECT_EQ(V_UNKNOWN(&value), nullptr);
        }
    }
    for (const int vt : {VT_ARRAY | VT_I4, VT_ARRAY | VT_BSTR, VT_ARRAY | VT_VARIANT, VT_ARRAY | VT_UI1}) {
        auto& rule = Rule(Operation::Get, Effect::WrongType, L"Caption");
        rule.vt = static_cast<VARTYPE>(vt);
        Arm(rule);
        const auto value = Get(one, L"Caption");
        ASSERT_EQ(V_VT(&value), vt);
        LONG upper = 99;
        EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
        EXPECT_EQ(upper, 0);
    }
}

TEST_F(Fault, AnArrayOfATypeThatNoPropertyHasHoldsAnEmptyElement) {
    for (const VARTYPE element : {VT_DATE, VT_UI8, VT_ERROR, VT_UNKNOWN, VT_DISPATCH}) {
        auto& rule = Rule(Operation::Get, Effect::WrongType, L"Caption");
        rule.vt = static_cast<VARTYPE>(VT_ARRAY | element);
        Arm(rule);
        const auto value = Get(one, L"Caption");
        ASSERT_EQ(V_VT(&value), rule.vt);
        LONG index = 0;
        ULONGLONG held = 99;
        EXPECT_EQ(SafeArrayGetElement(V_ARRAY(&value), &index, &held), S_OK);
        EXPECT_EQ(element == VT_ERROR ? static_cast<ULONG>(held) : held, 0u) << element;
    }
}

TEST_F(Fault, AnArrayCanBeShifted) {
    const auto value = Damaged(Effect::ShiftedArray, L"S32s");
    ASSERT_EQ(V_VT(&value), VT_ARRAY | VT_I4);
    LONG lower = 0;
    LONG upper = 0;
    EXPECT_EQ(SafeArrayGetLBound(V_ARRAY(&value), 1, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
    EXPECT_EQ(lower, 5);
    EXPECT_EQ(upper, 6);
    LONG number = 0;
    EXPECT_EQ(SafeArrayGetElement(V_ARRAY(&value), &upper, &number), S_OK);
    EXPECT_EQ(number, 70000);
}

TEST_F(Fault, AnArrayCanBeEmptyOrMissing) {
    const auto empty = Damaged(Effect::EmptyArray, L"Texts");
    ASSERT_EQ(V_VT(&empty), VT_ARRAY | VT_BSTR);
    LONG lower = 99;
    LONG upper = 99;
    EXPECT_EQ(SafeArrayGetLBound(V_ARRAY(&empty), 1, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&empty), 1, &upper), S_OK);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, -1);
    VARIANT missing;
    machine->Rules().Clear();
    Arm(Operation::Get, Effect::NullArray, L"Texts");
    ASSERT_EQ(GetCode(one, L"Texts", &missing), S_OK);
    EXPECT_EQ(V_VT(&missing), VT_ARRAY | VT_BSTR);
    EXPECT_EQ(V_ARRAY(&missing), nullptr);
}

TEST_F(Fault, AnElementCanBeUnreadable) {
    auto& rule = Rule(Operation::Get, Effect::UnreadableElement, L"Texts");
    rule.element = 1;
    Arm(rule);
    const auto value = Get(one, L"Texts");
    ASSERT_EQ(V_VT(&value), VT_ARRAY | VT_VARIANT);
    LONG upper = 0;
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
    EXPECT_EQ(upper, 2);
    std::vector<std::wstring> read;
    for (LONG index = 0; index <= upper; ++index) {
        _variant_t element;
        EXPECT_EQ(SafeArrayGetElement(V_ARRAY(&value), &index, &element), S_OK);
        _variant_t text;
        if (SUCCEEDED(VariantChangeType(&text, &element, 0, VT_BSTR))) {
            read.emplace_back(V_BSTR(&text));
        } else {
            EXPECT_EQ(index, 1);
        }
    }
    EXPECT_THAT(read, testing::ElementsAre(L"a", L"c"));
}

TEST_F(Fault, ATextCanBeHuge) {
    const auto value = Damaged(Effect::HugeString, L"Caption");
    ASSERT_EQ(V_VT(&value), VT_BSTR);
    EXPECT_EQ(SysStringLen(V_BSTR(&value)), 1u << 20);
}

TEST_F(Fault, AQualifierCanBeDamagedAsAValueCan) {
    CComPtr<IWbemQualifierSet> set;
    ASSERT_EQ(Object(L"Test_All")->GetPropertyQualifierSet(L"State", &set), S_OK);
    Arm(Operation::GetQualifier, Effect::EmptyArray, L"ValueMap");
    _variant_t value;
    ASSERT_EQ(set->Get(L"ValueMap", 0, &value, nullptr), S_OK);
    LONG upper = 99;
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
    EXPECT_EQ(upper, -1);
    Arm(Operation::GetQualifier, Effect::Absent, L"ValueMap");
    EXPECT_EQ(Code(set->Get(L"ValueMap", 0, nullptr, nullptr)), "0x80041002");
}

TEST_F(Fault, ADelayTakesRealAndSimulatedTime) {
    auto& rule = Rule(Operation::GetObject, Effect::Delay);
    rule.milliseconds = 30;
    Arm(rule);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    EXPECT_EQ(machine->Now(), std::chrono::milliseconds(30));
}

TEST_F(Fault, ADelayedValueIsTheRightOne) {
    auto& rule = Rule(Operation::Get, Effect::Delay, L"Caption");
    rule.milliseconds = 5;
    Arm(rule);
    EXPECT_EQ(Get(one, L"Caption"), _variant_t(L"First"));
    EXPECT_EQ(machine->Now(), std::chrono::milliseconds(5));
}

TEST_F(Fault, ADelayComesOnTopOfAnotherFault) {
    auto& slow = Rule(Operation::GetObject, Effect::Delay);
    slow.milliseconds = 5;
    Arm(slow);
    auto& failing = Rule(Operation::GetObject, Effect::Fail);
    failing.milliseconds = 7;
    Arm(failing);
    EXPECT_EQ(Code(GetStatus(kAll)), "0x80041001");
    EXPECT_EQ(machine->Now(), std::chrono::milliseconds(12));
    EXPECT_EQ(machine->Rules().Hits(), 1u);
}

TEST_F(Fault, ARuleThatMeansNothingIsRejected) {
    EXPECT_THROW(Arm(Operation::Get, Effect::NoOutParameters), std::invalid_argument);
    EXPECT_THROW(Arm(Operation::GetObject, Effect::NullValue), std::invalid_argument);
    EXPECT_THROW(Arm(Operation::Get, Effect::EndOfData), std::invalid_argument);
    EXPECT_THROW(Arm(Operation::Put, Effect::NullObject), std::invalid_argument);
    EXPECT_THROW(Arm(Operation::Next, Effect::FailStatus), std::invalid_argument);
    auto& never = Rule(Operation::Get, Effect::Fail);
    never.nth = 0;
    EXPECT_THROW(Arm(never), std::invalid_argument);
    auto& any = Rule(Operation::Get, Effect::NullObject);
    any.operation.reset();
    EXPECT_THROW(Arm(any), std::invalid_argument);
    EXPECT_FALSE(machine->Rules().Armed());
}

TEST_F(Fault, NamesAreReadBack) {
    for (const auto effect :
         {Effect::Fail, Effect::FailStatus, Effect::NullObject, Effect::Verdict, Effect::NoOutParameters,
          Effect::NullValue, Effect::Absent, Effect::WrongType, Effect::ShiftedArray, Effect::EmptyArray,
          Effect::NullArray, Effect::UnreadableElement, Effect::HugeString, Effect::EndOfData,
          Effect::Delay}) {
        EXPECT_EQ(EffectByName(EffectName(effect)), effect);
    }
    EXPECT_EQ(EffectByName(L"nullvalue"), Effect::NullValue);
    EXPECT_FALSE(EffectByName(L"Explode"));
}

} // namespace
