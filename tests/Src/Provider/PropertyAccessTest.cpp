// The getters: what each type of VARIANT becomes, what a missing value is, and what is traced.
#include "ProviderTest.h"
#include "Variants/SafeArrays.h"
#include "Provider/StubInstance.h"
#include "Variants/VariantCases.h"

#include <limits>

namespace {

using ATL::CComBSTR;
using ATL::CComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr const wchar_t* NAME = L"Property";

class PropertyAccessTest : public testing::Test {
  protected:
    std::vector<std::string> Traced() {
        std::vector<std::string> lines;
        for (const std::wstring& text : m_trace.NewTexts()) {
            lines.push_back(Narrow(text));
        }
        return lines;
    }

  private:
    quillet::test::TraceFile m_trace;
};

/// An instance that answers with the VARIANT of a case, made anew for each Get.
class CaseInstance : public StubInstance {
  public:
    explicit CaseInstance(const VariantCase& variantCase)
        : StubInstance([make = variantCase.make](VARIANT& value) {
              value = make();
              return S_OK;
          }) {}
};

// --- every type, each accessor ---

class PropertyTypesTest : public PropertyAccessTest, public testing::WithParamInterface<VariantCase> {
  protected:
    void TearDown() override {
        EXPECT_EQ(CallsOfUncallableObject(), 0);
        EXPECT_EQ(ReferencesOfUncallableObject(), 0u) << "the VARIANT was not cleared";
        EXPECT_THAT(m_instance.Asked(), ElementsAre(NAME));
        EXPECT_TRUE(m_instance.AskedRightly());
        EXPECT_EQ(m_instance.References(), 1u);
    }
    CaseInstance m_instance{GetParam()};
};

TEST_P(PropertyTypesTest, GetPropertyAsBool) {
    bool value = true;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsBool(&m_instance, NAME, value, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(value, GetParam().asBool.value_or(true));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_P(PropertyTypesTest, GetPropertyAsInt) {
    int value = 4242;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsInt(&m_instance, NAME, value, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(value, static_cast<int>(GetParam().asLong.value_or(4242)));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_P(PropertyTypesTest, GetPropertyAsLong) {
    LONG value = 4242;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsLong(&m_instance, NAME, value, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(value, GetParam().asLong.value_or(4242));
    EXPECT_THAT(Traced(), ElementsAre("pInstance->Get() passed"));
}

TEST_P(PropertyTypesTest, GetPropertyAsUINT64) {
    ULONGLONG value = 4242;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsUINT64(&m_instance, NAME, value, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(value, GetParam().asUInt64.value_or(4242));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_P(PropertyTypesTest, GetPropertyAsString) {
    _bstr_t value(L"before");
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsString(&m_instance, NAME, value, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(std::wstring(value.length() ? value.GetBSTR() : L"", value.length()), GetParam().asText);
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_P(PropertyTypesTest, GetPropertyArray_OfWhatIsNoArray_Fails) {
    const VARTYPE type = [] {
        VARIANT made = GetParam().make();
        const VARTYPE vt = V_VT(&made);
        VariantClear(&made);
        return vt;
    }();
    std::vector<LONG> numbers{1};
    int count = 4242;
    const HRESULT result = Access::GetPropertyArray(&m_instance, NAME, numbers, &count);
    if ((type & VT_ARRAY) && !(type & VT_BYREF) && std::string(GetParam().name) != "ARRAY_null") {
        EXPECT_EQ(count, 2);
    } else {
        EXPECT_EQ(Code(result), "0x80004005");
        EXPECT_EQ(count, 4242);
        EXPECT_THAT(numbers, ElementsAre(1));
        EXPECT_THAT(Traced(), ElementsAre("GetPropertyArray -> pArrayValues == NULL"));
    }
}

INSTANTIATE_TEST_SUITE_P(Types, PropertyTypesTest, testing::ValuesIn(AllVariantCases()),
                         [](const testing::TestParamInfo<VariantCase>& test) { return test.param.name; });

// --- one behaviour, all accessors ---

/// What one getter did.
struct Outcome {
    std::string code;
    bool isNull = false;
    bool untouched = false;
    std::vector<std::string> trace;
};

class PropertyGettersTest : public PropertyAccessTest {
  protected:
    /// Runs the five getters, each on a value that it can tell from any answer.
    std::vector<Outcome> EachGetter(IWbemClassObject* instance, bool isNullBefore) {
        std::vector<Outcome> outcomes;
        {
            // A flag has but two values: it is untouched if both survive.
            bool no = false;
            bool yes = true;
            bool isNull = isNullBefore;
            Access::GetPropertyAsBool(instance, NAME, no, isNull);
            Traced();
            isNull = isNullBefore;
            const HRESULT result = Access::GetPropertyAsBool(instance, NAME, yes, isNull);
            outcomes.push_back({Code(result), isNull, !no && yes, Traced()});
        }
        {
            int value = 4242;
            bool isNull = isNullBefore;
            const HRESULT result = Access::GetPropertyAsInt(instance, NAME, value, isNull);
            outcomes.push_back({Code(result), isNull, value == 4242, Traced()});
        }
        {
            LONG value = 4242;
            bool isNull = isNullBefore;
            const HRESULT result = Access::GetPropertyAsLong(instance, NAME, value, isNull);
            outcomes.push_back({Code(result), isNull, value == 4242, Traced()});
        }
        {
            ULONGLONG value = 4242;
            bool isNull = isNullBefore;
            const HRESULT result = Access::GetPropertyAsUINT64(instance, NAME, value, isNull);
            outcomes.push_back({Code(result), isNull, value == 4242, Traced()});
        }
        {
            _bstr_t value(L"before");
            bool isNull = isNullBefore;
            const HRESULT result = Access::GetPropertyAsString(instance, NAME, value, isNull);
            outcomes.push_back({Code(result), isNull, value == _bstr_t(L"before"), Traced()});
        }
        return outcomes;
    }
};

TEST_F(PropertyGettersTest, Getters_PropertyIsNull_SucceedAndLeaveTheValue) {
    for (const VARTYPE type : {VT_NULL, VT_EMPTY}) {
        VARIANT nothing;
        VariantInit(&nothing);
        V_VT(&nothing) = type;
        StubInstance instance(nothing);
        const std::vector<Outcome> outcomes = EachGetter(&instance, false);
        for (std::size_t index = 0; index < outcomes.size(); ++index) {
            SCOPED_TRACE(index);
            EXPECT_EQ(outcomes[index].code, "0x00000000");
            EXPECT_TRUE(outcomes[index].isNull);
            EXPECT_TRUE(outcomes[index].untouched);
        }
        EXPECT_THAT(outcomes[0].trace, IsEmpty());
        EXPECT_THAT(outcomes[1].trace, IsEmpty());
        EXPECT_THAT(outcomes[2].trace, ElementsAre("pInstance->Get() passed", "variant is empty or null"));
        EXPECT_THAT(outcomes[3].trace, IsEmpty());
        EXPECT_THAT(outcomes[4].trace, IsEmpty());
    }
}

TEST_F(PropertyGettersTest, Getters_NoInstance_FailAndNameTheAccessor) {
    const std::vector<Outcome> outcomes = EachGetter(nullptr, true);
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
        SCOPED_TRACE(index);
        EXPECT_EQ(outcomes[index].code, "0x80004005");
        EXPECT_TRUE(outcomes[index].untouched);
    }
    EXPECT_THAT(outcomes[0].trace, ElementsAre("GetPropertyAsBool -> pInstance == NULL"));
    EXPECT_THAT(outcomes[1].trace, ElementsAre("GetPropertyAsInt -> pInstance == NULL"));
    EXPECT_THAT(outcomes[2].trace, ElementsAre("GetPropertyAsLong -> pInstance == NULL"));
    EXPECT_THAT(outcomes[3].trace, ElementsAre("GetPropertyAsInt -> pInstance == NULL"))
        << "the 64-bit form calls itself by the other name";
    EXPECT_THAT(outcomes[4].trace, ElementsAre("GetPropertyAsString -> pInstance == NULL"));
}

TEST_F(PropertyGettersTest, Getters_GetFails_ReturnItsCodeAndLeaveTheValue) {
    StubInstance instance([](VARIANT&) { return static_cast<HRESULT>(WBEM_E_NOT_FOUND); });
    for (const Outcome& outcome : EachGetter(&instance, true)) {
        EXPECT_EQ(outcome.code, "0x80041002");
        EXPECT_FALSE(outcome.isNull) << "it says nothing about a value";
        EXPECT_TRUE(outcome.untouched);
        EXPECT_THAT(outcome.trace, IsEmpty());
    }
}

TEST_F(PropertyGettersTest, Getters_GetFailsButFillsTheValue_LeaveItAndFreeIt) {
    StubInstance instance([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(L"17");
        return static_cast<HRESULT>(WBEM_E_FAILED);
    });
    for (const Outcome& outcome : EachGetter(&instance, false)) {
        EXPECT_EQ(outcome.code, "0x80041001");
        EXPECT_TRUE(outcome.untouched);
    }
}

TEST_F(PropertyGettersTest, Getters_NoMoreData_IsReturnedWithNothingWritten) {
    StubInstance instance([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(L"17");
        return static_cast<HRESULT>(WBEM_S_NO_MORE_DATA);
    });
    for (const Outcome& outcome : EachGetter(&instance, true)) {
        EXPECT_EQ(outcome.code, "0x00040005");
        EXPECT_FALSE(outcome.isNull);
        EXPECT_TRUE(outcome.untouched);
        EXPECT_THAT(outcome.trace, IsEmpty());
    }
}

TEST_F(PropertyGettersTest, Getters_OtherSuccessCodes_AreReturnedUnchanged) {
    StubInstance instance([](VARIANT& value) {
        V_VT(&value) = VT_I4;
        V_I4(&value) = 17;
        return S_FALSE;
    });
    LONG value = 0;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsLong(&instance, NAME, value, isNull)), "0x00000001");
    EXPECT_EQ(value, 17);
    EXPECT_FALSE(isNull);
}

TEST_F(PropertyGettersTest, GetPropertyAsUINT64_LargestNumberAsText_IsReadWhole) {
    StubInstance instance([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(L"18446744073709551615");
        return S_OK;
    });
    ULONGLONG value = 0;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsUINT64(&instance, NAME, value, isNull)), "0x00000000");
    EXPECT_EQ(value, std::numeric_limits<ULONGLONG>::max());
}

// --- arrays ---

class PropertyArrayTest : public PropertyAccessTest {
  protected:
    /// An instance whose property is this value. It can be read once.
    void Holds(_variant_t value) {
        m_instance.AnswerWith([value](VARIANT& target) mutable { return VariantCopy(&target, &value); });
    }
    HRESULT Read() { return Access::GetPropertyArray(&m_instance, NAME, m_numbers, &m_count); }
    HRESULT ReadTexts() {
        std::vector<CComBSTR> texts;
        const HRESULT result = Access::GetPropertyArray(&m_instance, NAME, texts, &m_count);
        for (const CComBSTR& text : texts) {
            m_texts.emplace_back(text.Length() ? text.m_str : L"", text.Length());
        }
        return result;
    }

    StubInstance m_instance;
    std::vector<LONG> m_numbers;
    std::vector<std::wstring> m_texts;
    int m_count = 4242;
};

TEST_F(PropertyArrayTest, GetPropertyArray_Numbers_AreAppendedInOrderAndTraced) {
    m_numbers = {99};
    Holds(NumberArray({3, -4, 5}));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(99, 3, -4, 5));
    EXPECT_EQ(m_count, 3);
    EXPECT_THAT(Traced(), ElementsAre("3", "-4", "5"));
}

TEST_F(PropertyArrayTest, GetPropertyArray_Texts_AreAppendedInOrderWithoutALine) {
    m_texts = {L"kept"};
    Holds(TextArray({L"first", L"", L"Z\u00fcrich %s"}));
    EXPECT_EQ(Code(ReadTexts()), "0x00000000");
    EXPECT_THAT(m_texts, ElementsAre(L"kept", L"first", L"", L"Z\u00fcrich %s"));
    EXPECT_EQ(m_count, 3);
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(PropertyArrayTest, GetPropertyArray_WithoutCount_IsFine) {
    Holds(NumberArray({3}));
    EXPECT_EQ(Code(Access::GetPropertyArray(&m_instance, NAME, m_numbers, nullptr)), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(3));
}

TEST_F(PropertyArrayTest, GetPropertyArray_OneOfFourElementsUnreadable_GivesThreeValuesAndACountOfFour) {
    Holds(MixedArray({_variant_t(LONG{1}), _variant_t(LONG{2}), _variant_t(), _variant_t(LONG{4})}));
    EXPECT_EQ(Code(Read()), "0x00000000") << "the last element was read";
    EXPECT_THAT(m_numbers, ElementsAre(1, 2, 4));
    EXPECT_EQ(m_count, 4);
}

TEST_F(PropertyArrayTest, GetPropertyArray_LastElementUnreadable_IsTheResult) {
    Holds(MixedArray({_variant_t(LONG{1}), _variant_t(LONG{2}), _variant_t(LONG{3}), _variant_t()}));
    EXPECT_EQ(Code(Read()), "0x80020005");
    EXPECT_THAT(m_numbers, ElementsAre(1, 2, 3));
    EXPECT_EQ(m_count, 4);
    EXPECT_THAT(Traced(), ElementsAre("1", "2", "3"));
}

TEST_F(PropertyArrayTest, GetPropertyArray_OneOfThreeTextsUnreadable_IsSkippedButCounted) {
    Holds(MixedArray({_variant_t(L"a"), _variant_t(LONG{2}), _variant_t(L"c")}));
    EXPECT_EQ(Code(ReadTexts()), "0x00000000");
    EXPECT_THAT(m_texts, ElementsAre(L"a", L"c"));
    EXPECT_EQ(m_count, 3);
}

TEST_F(PropertyArrayTest, GetPropertyArray_LowerBoundNotZero_ReadsFromThere) {
    Holds(NumberArray({7, 8}, 5));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(7, 8));
    EXPECT_EQ(m_count, 2);
}

TEST_F(PropertyArrayTest, GetPropertyArray_BoundsAtTheEndsOfTheRange_EndTheLoop) {
    Holds(NumberArray({8, 9}, std::numeric_limits<LONG>::min()));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(8, 9));
    EXPECT_EQ(m_count, 2);

    SAFEARRAYBOUND bound{1, std::numeric_limits<LONG>::max()};
    OwnedArray array(SafeArrayCreate(VT_I4, 1, &bound));
    ASSERT_NE(array.Get(), nullptr);
    void* data = nullptr;
    ASSERT_TRUE(SUCCEEDED(SafeArrayAccessData(array.Get(), &data)));
    *static_cast<LONG*>(data) = 7;
    ASSERT_TRUE(SUCCEEDED(SafeArrayUnaccessData(array.Get())));
    Holds(array.Release(VT_I4));
    m_numbers.clear();
    m_count = 4242;
    const HRESULT result = Read();
    EXPECT_EQ(m_count, 1);
    // Not every OLE can reach an element at the last index there is.
    if (result == S_OK) {
        EXPECT_THAT(m_numbers, ElementsAre(7));
    } else {
        EXPECT_EQ(Code(result), "0x8002000B");
        EXPECT_THAT(m_numbers, IsEmpty());
    }
}

TEST_F(PropertyArrayTest, GetPropertyArray_Empty_AppendsNothing) {
    Holds(NumberArray({}));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, IsEmpty());
    EXPECT_EQ(m_count, 0);
}

TEST_F(PropertyArrayTest, GetPropertyArray_AnotherNumberType_IsConverted) {
    OwnedArray array(SafeArrayCreateVector(VT_UI1, 0, 2));
    BYTE bytes[] = {1, 255};
    for (LONG index = 0; index < 2; ++index) {
        ASSERT_TRUE(SUCCEEDED(SafeArrayPutElement(array.Get(), &index, &bytes[index])));
    }
    Holds(array.Release(VT_UI1));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(1, 255));
}

TEST_F(PropertyArrayTest, GetPropertyArray_TextsAskedForAsNumbers_AreReadAsDecimals) {
    Holds(TextArray({L"12", L"no number"}));
    EXPECT_EQ(Code(Read()), "0x00000000");
    EXPECT_THAT(m_numbers, ElementsAre(12, 0));
}

TEST_F(PropertyArrayTest, GetPropertyArray_NumbersAskedForAsTexts_AreSkipped) {
    Holds(NumberArray({12, 13}));
    EXPECT_EQ(Code(ReadTexts()), "0x80020005");
    EXPECT_THAT(m_texts, IsEmpty());
    EXPECT_EQ(m_count, 2);
}

TEST_F(PropertyArrayTest, GetPropertyArray_OfObjects_HasNoReadableElement) {
    OwnedArray array(SafeArrayCreateVector(VT_UNKNOWN, 0, 2));
    LONG index = 1;
    ASSERT_TRUE(SUCCEEDED(SafeArrayPutElement(array.Get(), &index, UncallableObject())));
    const int callsToMakeIt = CallsOfUncallableObject();
    Holds(array.Release(VT_UNKNOWN));
    EXPECT_EQ(Code(Read()), "0x80020005");
    EXPECT_THAT(m_numbers, IsEmpty());
    EXPECT_EQ(m_count, 2);
    Holds(_variant_t());
    EXPECT_EQ(CallsOfUncallableObject(), callsToMakeIt);
    EXPECT_EQ(ReferencesOfUncallableObject(), 0u);
}

TEST_F(PropertyArrayTest, GetPropertyArray_TwoDimensions_HasNoReadableElement) {
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 0}};
    Holds(OwnedArray(SafeArrayCreate(VT_I4, 2, bounds)).Release(VT_I4));
    EXPECT_EQ(Code(Read()), "0x8002000B");
    EXPECT_THAT(m_numbers, IsEmpty());
}

TEST_F(PropertyArrayTest, GetPropertyArray_NoInstance_Fails) {
    EXPECT_EQ(Code(Access::GetPropertyArray(nullptr, NAME, m_numbers, &m_count)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyArray -> pIWbemClassObject == NULL"));
    EXPECT_EQ(m_count, 4242);
}

TEST_F(PropertyArrayTest, GetPropertyArray_GetFails_ReturnsItsCode) {
    m_instance.AnswerWith([](VARIANT&) { return static_cast<HRESULT>(WBEM_E_NOT_FOUND); });
    EXPECT_EQ(Code(ReadTexts()), "0x80041002");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyArray -> Get"));
    EXPECT_EQ(m_count, 4242);
}

TEST_F(PropertyArrayTest, GetPropertyArray_NoValue_Fails) {
    for (const VARTYPE type : {VT_NULL, VT_EMPTY}) {
        m_instance.AnswerWith([type](VARIANT& value) {
            V_VT(&value) = type;
            return S_OK;
        });
        EXPECT_EQ(Code(Read()), "0x80004005");
        EXPECT_THAT(Traced(),
                    ElementsAre("GetPropertyArray -> ((vValues.vt == VT_EMPTY) || (vValues.vt == VT_NULL))"));
        EXPECT_EQ(m_count, 4242);
    }
}

TEST_F(PropertyArrayTest, GetPropertyArray_ArrayWithoutDimensions_FailsAtItsLowerBound) {
    // A descriptor that no automation function would make.
    SAFEARRAY broken{};
    broken.fFeatures = FADF_AUTO | FADF_STATIC | FADF_FIXEDSIZE;
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_ARRAY | VT_I4;
    V_ARRAY(&value) = &broken;
    StubInstance instance([&value](VARIANT& target) {
        target = value;
        return S_OK;
    });
    // Locked, so that clearing the VARIANT does not free what is this function's own.
    SafeArrayLock(&broken);
    EXPECT_EQ(Code(Access::GetPropertyArray(&instance, NAME, m_numbers, &m_count)), "0x8002000B");
    EXPECT_THAT(
        Traced(),
        ElementsAre("GetPropertyArray -> hRes = SafeArrayGetLBound(pArrayValues , 1, &lLBoundValues);"));
    EXPECT_THAT(m_numbers, IsEmpty());
    EXPECT_EQ(m_count, 4242);
}

// --- damage, through the simulated provider ---

class DamagedPropertyTest : public ProviderTest {
  protected:
    DamagedPropertyTest()
        : ProviderTest(std::string(NET_SERVICE_MOF) + R"(
            instance of Zorel_PhysicalEthernetAdapter {
                DeviceID = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
                Name = "One";
                Speed = 10000000000;
                Capabilities = {3, 4, 5, 8};
                NetworkAddresses = {"02-00-5E-00-00-01", "02-00-5E-00-00-02"};
            };)") {}
    void SetUp() override {
        Connect();
        const CComPtr<IWbemServices> service = Access::GetWbemService(quillet);
        ASSERT_TRUE(service);
        ASSERT_EQ(Code(service->GetObject(_bstr_t(L"Zorel_PhysicalEthernetAdapter.DeviceID="
                                                  L"\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\""),
                                          0, nullptr, &m_adapter, nullptr)),
                  "0x00000000");
    }

    CComPtr<IWbemClassObject> m_adapter;
};

TEST_F(DamagedPropertyTest, GetPropertyAsUINT64_SixtyFourBitProperty_ArrivesAsText) {
    ULONGLONG speed = 0;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsUINT64(m_adapter, L"Speed", speed, isNull)), "0x00000000");
    EXPECT_EQ(speed, 10000000000u);
    LONG low = 0;
    EXPECT_EQ(Code(Access::GetPropertyAsLong(m_adapter, L"Speed", low, isNull)), "0x00000000");
    EXPECT_EQ(low, std::numeric_limits<LONG>::max()) << "text that does not fit 32 bits saturates";
}

TEST_F(DamagedPropertyTest, GetPropertyAsString_NullValue_IsNull) {
    Spoil(Operation::Get, Effect::NullValue, L"Name");
    _bstr_t name(L"before");
    bool isNull = false;
    EXPECT_EQ(Code(Access::GetPropertyAsString(m_adapter, L"Name", name, isNull)), "0x00000000");
    EXPECT_TRUE(isNull);
    EXPECT_STREQ(static_cast<const wchar_t*>(name), L"before");
}

TEST_F(DamagedPropertyTest, GetPropertyAsString_AbsentProperty_Fails) {
    Spoil(Operation::Get, Effect::Absent, L"Name");
    _bstr_t name(L"before");
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsString(m_adapter, L"Name", name, isNull)), "0x80041002");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(Code(Access::GetPropertyAsString(m_adapter, L"NoSuchProperty", name, isNull)), "0x80041002");
}

TEST_F(DamagedPropertyTest, GetPropertyAsString_ObjectInsteadOfText_IsEmpty) {
    Spoil(Operation::Get, Effect::WrongType, L"Name");
    _bstr_t name(L"before");
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsString(m_adapter, L"Name", name, isNull)), "0x00000000");
    EXPECT_FALSE(isNull);
    EXPECT_EQ(name.length(), 0u);
}

TEST_F(DamagedPropertyTest, GetPropertyAsString_HugeText_IsTakenWhole) {
    Spoil(Operation::Get, Effect::HugeString, L"Name");
    _bstr_t name;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsString(m_adapter, L"Name", name, isNull)), "0x00000000");
    EXPECT_EQ(name.length(), 1u << 20);
}

TEST_F(DamagedPropertyTest, GetPropertyArray_UnreadableElement_IsSkippedButCounted) {
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"Capabilities";
    rule.effect = Effect::UnreadableElement;
    rule.element = 1;
    Inject(rule);
    std::vector<LONG> capabilities;
    int count = 0;
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"Capabilities", capabilities, &count)), "0x00000000");
    EXPECT_THAT(capabilities, ElementsAre(3, 5, 8));
    EXPECT_EQ(count, 4);
}

TEST_F(DamagedPropertyTest, GetPropertyArray_ShiftedBounds_AreFollowed) {
    Spoil(Operation::Get, Effect::ShiftedArray, L"Capabilities");
    std::vector<LONG> capabilities;
    int count = 0;
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"Capabilities", capabilities, &count)), "0x00000000");
    EXPECT_THAT(capabilities, ElementsAre(3, 4, 5, 8));
    EXPECT_EQ(count, 4);
}

TEST_F(DamagedPropertyTest, GetPropertyArray_EmptyNullAndWrong_AppendNothing) {
    std::vector<CComBSTR> addresses;
    int count = 4242;
    Spoil(Operation::Get, Effect::EmptyArray, L"NetworkAddresses", 1);
    Spoil(Operation::Get, Effect::NullArray, L"NetworkAddresses", 2);
    Spoil(Operation::Get, Effect::WrongType, L"NetworkAddresses", 3);
    Spoil(Operation::Get, Effect::NullValue, L"NetworkAddresses", 4);
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"NetworkAddresses", addresses, &count)),
              "0x00000000");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"NetworkAddresses", addresses, &count)),
              "0x80004005");
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"NetworkAddresses", addresses, &count)),
              "0x80004005");
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"NetworkAddresses", addresses, &count)),
              "0x80004005");
    EXPECT_THAT(addresses, IsEmpty());
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Code(Access::GetPropertyArray(m_adapter, L"NetworkAddresses", addresses, &count)),
              "0x00000000");
    EXPECT_EQ(addresses.size(), 2u);
}

} // namespace
