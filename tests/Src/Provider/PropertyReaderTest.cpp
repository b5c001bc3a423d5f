// The reader of properties: what it traces for each way a read can go, and that it stops at the first
// failure.
#include "ProviderTest.h"
#include "Provider/PropertyReader.h"
#include "Variants/SafeArrays.h"
#include "Provider/StubInstance.h"
#include "Variants/VariantValue.h"

namespace {

using ATL::CComBSTR;
using testing::ElementsAre;
using testing::IsEmpty;
using OnNull = PropertyReader::OnNull;

constexpr ProviderName FIRST{L"L_PROP_FIRST", L"First"};
constexpr ProviderName SECOND{L"L_PROP_SECOND", L"Second"};

class PropertyReaderTest : public testing::Test {
  protected:
    std::vector<std::string> Traced() {
        std::vector<std::string> lines;
        for (const std::wstring& text : m_trace.NewTexts()) {
            lines.push_back(Narrow(text));
        }
        return lines;
    }
    void Holds(const _variant_t& value) {
        instance.AnswerWith(
            [held = _variant_t(value)](VARIANT& target) mutable { return VariantCopy(&target, &held); });
    }
    void HoldsNothing() {
        instance.AnswerWith([](VARIANT& value) {
            V_VT(&value) = VT_NULL;
            return S_OK;
        });
    }
    void Fails(ResultCode code = WBEM_E_NOT_FOUND) {
        instance.AnswerWith([code](VARIANT&) { return code.value; });
    }

    StubInstance instance;

  private:
    quillet::test::TraceFile m_trace;
};

TEST_F(PropertyReaderTest, Reads_InOrder_FillWhatTheyAreGiven) {
    Holds(_variant_t(L"12"));
    std::wstring text;
    LONG number = 0;
    int integer = 0;
    ULONGLONG mask = 0;
    bool flag = false;
    PropertyReader read(&instance, L"pInstance");
    read.String(FIRST, text).Int(SECOND, integer).UInt64(FIRST, mask).Bool(SECOND, flag);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_FALSE(read.Failed());
    EXPECT_TRUE(read.Found());
    EXPECT_THAT(Traced(), IsEmpty());
    read.Long(FIRST, number);
    EXPECT_THAT(Traced(), ElementsAre("pInstance->Get() passed"));
    EXPECT_EQ(text, L"12");
    EXPECT_EQ(number, 12);
    EXPECT_EQ(integer, 12);
    EXPECT_EQ(mask, 12u);
    EXPECT_TRUE(flag);
    EXPECT_THAT(instance.Asked(), ElementsAre(L"First", L"Second", L"First", L"Second", L"First"));
    EXPECT_EQ(instance.References(), 1u);
}

TEST_F(PropertyReaderTest, Reads_AfterAFailure_AskNothingMore) {
    Fails();
    std::wstring text = L"before";
    LONG number = 5;
    int integer = 6;
    ULONGLONG mask = 7;
    bool flag = true;
    std::vector<LONG> numbers;
    std::vector<CComBSTR> texts;
    _variant_t plain;
    PropertyReader read(&instance, L"pInstance");
    read.String(FIRST, text)
        .Long(SECOND, number)
        .Int(SECOND, integer)
        .UInt64(SECOND, mask)
        .Bool(SECOND, flag)
        .Array(SECOND, numbers)
        .Array(SECOND, texts)
        .Plain(SECOND, plain);
    EXPECT_EQ(Code(read.Result()), "0x80041002");
    EXPECT_TRUE(read.Failed());
    EXPECT_FALSE(read.Found());
    EXPECT_THAT(instance.Asked(), ElementsAre(L"First"));
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_FIRST"));
    EXPECT_EQ(text, L"before");
    EXPECT_EQ(number, 5);
    EXPECT_EQ(integer, 6);
    EXPECT_EQ(mask, 7u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(V_VT(&plain), VT_EMPTY);
}

TEST_F(PropertyReaderTest, FailedReads_NameAccessorVariableAndSymbol) {
    Fails();
    std::wstring text;
    LONG number = 0;
    int integer = 0;
    ULONGLONG mask = 0;
    bool flag = false;
    std::vector<LONG> numbers;
    std::vector<CComBSTR> texts;
    _variant_t plain;
    const auto fresh = [this] { return PropertyReader(&instance, L"pInstance"); };
    fresh().String(FIRST, text);
    fresh().Long(FIRST, number);
    fresh().Int(FIRST, integer);
    fresh().UInt64(FIRST, mask);
    fresh().Bool(FIRST, flag);
    fresh().Plain(FIRST, plain);
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsLong -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsInt -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsUINT64 -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsBool -> pInstance, L_PROP_FIRST", "Get -> L_PROP_FIRST"));
    fresh().Array(FIRST, numbers);
    fresh().Array(FIRST, texts);
    EXPECT_THAT(Traced(),
                ElementsAre("GetPropertyArray -> Get", "GetPropertyArray -> pInstance, L_PROP_FIRST",
                            "GetPropertyArray -> Get", "GetPropertyArray -> pInstance, L_PROP_FIRST"));
}

TEST_F(PropertyReaderTest, FailedRead_WithPrefix_StartsWithIt) {
    Fails();
    LONG number = 0;
    PropertyReader(&instance, L"pOut", L"Op() - ").Long(FIRST, number);
    EXPECT_THAT(Traced(), ElementsAre("Op() - GetPropertyAsLong -> pOut, L_PROP_FIRST"));
}

TEST_F(PropertyReaderTest, FailedRead_WithATextOfItsOwn_TracesThat) {
    Fails();
    LONG number = 0;
    PropertyReader(&instance, L"pOut", L"Op() - ").Long(FIRST, number, L"100% wrong %s");
    EXPECT_THAT(Traced(), ElementsAre("100% wrong %s"));
}

TEST_F(PropertyReaderTest, MissingValue_Kept_IsNoFailureAndNoLine) {
    HoldsNothing();
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.String(FIRST, text);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_FALSE(read.Found());
    EXPECT_EQ(text, L"before");
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(PropertyReaderTest, MissingValue_Noted_TracesAndGoesOn) {
    HoldsNothing();
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.When(OnNull::Note);
    read.String(FIRST, text);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_FALSE(read.Found());
    Holds(_variant_t(L"after"));
    read.String(SECOND, text);
    EXPECT_TRUE(read.Found());
    EXPECT_EQ(text, L"after");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_FIRST -> NULL"));
}

TEST_F(PropertyReaderTest, MissingValue_AsAFailure_TracesAndStops) {
    HoldsNothing();
    std::wstring text = L"before";
    bool flag = true;
    PropertyReader read(&instance, L"pInstance");
    read.When(OnNull::Fail);
    read.Bool(FIRST, flag).String(SECOND, text);
    EXPECT_EQ(Code(read.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsBool -> pInstance, L_PROP_FIRST -> NULL"));
    EXPECT_THAT(instance.Asked(), ElementsAre(L"First"));
    EXPECT_TRUE(flag);
}

TEST_F(PropertyReaderTest, MissingValue_WithATextOfItsOwn_TracesThatAndNull) {
    HoldsNothing();
    std::wstring text;
    PropertyReader(&instance, L"pInstance").When(OnNull::Note).String(FIRST, text, L"own text");
    EXPECT_THAT(Traced(), ElementsAre("own text -> NULL"));
}

TEST_F(PropertyReaderTest, When_ChangesWhatAMissingValueMeans) {
    HoldsNothing();
    std::wstring text;
    PropertyReader read(&instance, L"pInstance");
    read.String(FIRST, text).When(OnNull::Fail).String(SECOND, text);
    EXPECT_EQ(Code(read.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_SECOND -> NULL"));
}

TEST_F(PropertyReaderTest, After_AFailedStep_ReadsNothing) {
    Holds(_variant_t(L"12"));
    LONG number = 5;
    PropertyReader read(&instance, L"pInstance");
    read.After(ResultCode(WBEM_E_ACCESS_DENIED).value).Long(FIRST, number);
    EXPECT_EQ(Code(read.Result()), "0x80041003");
    EXPECT_THAT(instance.Asked(), IsEmpty());
    EXPECT_THAT(Traced(), IsEmpty());
    EXPECT_EQ(number, 5);
}

TEST_F(PropertyReaderTest, NoInstance_IsAFailedRead) {
    LONG number = 5;
    _variant_t plain;
    EXPECT_EQ(Code(PropertyReader(nullptr, L"pOut").Long(FIRST, number).Result()), "0x80004005");
    EXPECT_EQ(Code(PropertyReader(nullptr, L"pOut").Plain(FIRST, plain).Result()), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsLong -> pInstance == NULL",
                                      "GetPropertyAsLong -> pOut, L_PROP_FIRST", "Get -> L_PROP_FIRST"));
}

TEST_F(PropertyReaderTest, String_NoMoreData_LeavesTheText) {
    instance.AnswerWith([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocString(L"not to be taken");
        return static_cast<HRESULT>(WBEM_S_NO_MORE_DATA);
    });
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.String(FIRST, text);
    EXPECT_EQ(Code(read.Result()), "0x00040005");
    EXPECT_EQ(text, L"before");
}

TEST_F(PropertyReaderTest, SuccessWithoutData_IsNotFoundAndNoNull) {
    instance.AnswerWith([](VARIANT& value) {
        V_VT(&value) = VT_I4;
        V_I4(&value) = 9;
        return static_cast<HRESULT>(WBEM_S_NO_MORE_DATA);
    });
    LONG number = 5;
    PropertyReader read(&instance, L"pInstance");
    read.When(OnNull::Fail).Long(FIRST, number);
    EXPECT_EQ(Code(read.Result()), "0x00040005");
    EXPECT_FALSE(read.Found());
    EXPECT_FALSE(read.IsNull());
    EXPECT_EQ(number, 5);
}

TEST_F(PropertyReaderTest, ValueOfATypeThatDoesNotConvert_IsNotFound) {
    Holds(NumberArray({3, 4}));
    LONG number = 5;
    PropertyReader read(&instance, L"pInstance");
    EXPECT_EQ(Code(read.Long(FIRST, number).Result()), "0x00000000");
    EXPECT_FALSE(read.Found());
    EXPECT_EQ(number, 5);
}

TEST_F(PropertyReaderTest, Code_ConvertsOnlyWhatWasRead) {
    enum Kind : LONG { None = 0, Seven = 7 };
    Holds(VariantOfLong(7));
    Kind kind = None;
    Kind other = None;
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.Code(FIRST, kind).IntCode(FIRST, other).Code(FIRST, text, [](LONG number) {
        return std::to_wstring(number);
    });
    EXPECT_EQ(kind, Seven);
    EXPECT_EQ(other, Seven);
    EXPECT_EQ(text, L"7");
    HoldsNothing();
    read.Code(FIRST, kind).IntCode(FIRST, other).Code(FIRST, text, [](LONG) { return L"not asked"; });
    EXPECT_EQ(kind, Seven);
    EXPECT_EQ(other, Seven);
    EXPECT_EQ(text, L"7");
}

TEST_F(PropertyReaderTest, String_NullText_IsAnEmptyOne) {
    instance.AnswerWith([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = nullptr;
        return S_OK;
    });
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.When(OnNull::Fail);
    read.String(FIRST, text);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_TRUE(read.Found());
    EXPECT_EQ(text, L"");
}

TEST_F(PropertyReaderTest, String_EmbeddedZero_IsKept) {
    instance.AnswerWith([](VARIANT& value) {
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = SysAllocStringLen(L"a\0b", 3);
        return S_OK;
    });
    std::wstring text;
    PropertyReader(&instance, L"pInstance").String(FIRST, text);
    EXPECT_EQ(text, std::wstring(L"a\0b", 3));
}

TEST_F(PropertyReaderTest, Array_AppendsItsElements) {
    Holds(NumberArray({3, 4}));
    std::vector<LONG> numbers{2};
    PropertyReader read(&instance, L"pInstance");
    read.Array(FIRST, numbers);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_TRUE(read.Found());
    EXPECT_THAT(numbers, ElementsAre(2, 3, 4));
    Holds(TextArray({L"a", L"b"}));
    std::vector<CComBSTR> texts;
    read.Array(SECOND, texts);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_STREQ(texts[1].m_str, L"b");
}

TEST_F(PropertyReaderTest, Array_Missing_IsAFailure) {
    HoldsNothing();
    std::vector<LONG> numbers;
    PropertyReader read(&instance, L"pInstance");
    read.Array(FIRST, numbers, PropertyReader::Gaps::Skip, L"own text");
    EXPECT_EQ(Code(read.Result()), "0x80004005");
    EXPECT_FALSE(read.Found());
    EXPECT_THAT(
        Traced(),
        ElementsAre("GetPropertyArray -> ((vValues.vt == VT_EMPTY) || (vValues.vt == VT_NULL))", "own text"));
}

TEST_F(PropertyReaderTest, Plain_HandsOutTheValueAsItCame) {
    Holds(_variant_t(static_cast<BYTE>(7)));
    _variant_t value;
    PropertyReader read(&instance, L"pInstance");
    read.Plain(FIRST, value);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_EQ(V_VT(&value), VT_UI1);
    EXPECT_EQ(V_UI1(&value), 7);
    EXPECT_THAT(Traced(), IsEmpty());
}

} // namespace
