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

constexpr ProviderName kFirst{L"L_PROP_FIRST", L"First"};
constexpr ProviderName kSecond{L"L_PROP_SECOND", L"Second"};

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
    quillet::tests::TraceFile m_trace;
};

TEST_F(PropertyReaderTest, Reads_InOrder_FillWhatTheyAreGiven) {
    Holds(_variant_t(L"12"));
    std::wstring text;
    LONG number = 0;
    int integer = 0;
    ULONGLONG mask = 0;
    bool flag = false;
    PropertyReader read(&instance, L"pInstance");
    read.String(kFirst, text).Int(kSecond, integer).UInt64(kFirst, mask).Bool(kSecond, flag);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_FALSE(read.Failed());
    EXPECT_TRUE(read.Found());
    EXPECT_THAT(Traced(), IsEmpty());
    read.Long(kFirst, number);
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
    read.String(kFirst, text)
        .Long(kSecond, number)
        .Int(kSecond, integer)
        .UInt64(kSecond, mask)
        .Bool(kSecond, flag)
        .Array(kSecond, numbers)
        .Array(kSecond, texts)
        .Plain(kSecond, plain);
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
    fresh().String(kFirst, text);
    fresh().Long(kFirst, number);
    fresh().Int(kFirst, integer);
    fresh().UInt64(kFirst, mask);
    fresh().Bool(kFirst, flag);
    fresh().Plain(kFirst, plain);
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsLong -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsInt -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsUINT64 -> pInstance, L_PROP_FIRST",
                                      "GetPropertyAsBool -> pInstance, L_PROP_FIRST", "Get -> L_PROP_FIRST"));
    fresh().Array(kFirst, numbers);
    fresh().Array(kFirst, texts);
    EXPECT_THAT(Traced(),
                ElementsAre("GetPropertyArray -> Get", "GetPropertyArray -> pInstance, L_PROP_FIRST",
                            "GetPropertyArray -> Get", "GetPropertyArray -> pInstance, L_PROP_FIRST"));
}

TEST_F(PropertyReaderTest, FailedRead_WithPrefix_StartsWithIt) {
    Fails();
    LONG number = 0;
    PropertyReader(&instance, L"pOut", L"Op() - ").Long(kFirst, number);
    EXPECT_THAT(Traced(), ElementsAre("Op() - GetPropertyAsLong -> pOut, L_PROP_FIRST"));
}

TEST_F(PropertyReaderTest, FailedRead_WithATextOfItsOwn_TracesThat) {
    Fails();
    LONG number = 0;
    PropertyReader(&instance, L"pOut", L"Op() - ").Long(kFirst, number, L"100% wrong %s");
    EXPECT_THAT(Traced(), ElementsAre("100% wrong %s"));
}

TEST_F(PropertyReaderTest, MissingValue_Kept_IsNoFailureAndNoLine) {
    HoldsNothing();
    std::wstring text = L"before";
    PropertyReader read(&instance, L"pInstance");
    read.String(kFirst, text);
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
    read.String(kFirst, text);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_FALSE(read.Found());
    Holds(_variant_t(L"after"));
    read.String(kSecond, text);
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
    read.Bool(kFirst, flag).String(kSecond, text);
    EXPECT_EQ(Code(read.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsBool -> pInstance, L_PROP_FIRST -> NULL"));
    EXPECT_THAT(instance.Asked(), ElementsAre(L"First"));
    EXPECT_TRUE(flag);
}

TEST_F(PropertyReaderTest, MissingValue_WithATextOfItsOwn_TracesThatAndNull) {
    HoldsNothing();
    std::wstring text;
    PropertyReader(&instance, L"pInstance").When(OnNull::Note).String(kFirst, text, L"own text");
    EXPECT_THAT(Traced(), ElementsAre("own text -> NULL"));
}

TEST_F(PropertyReaderTest, When_ChangesWhatAMissingValueMeans) {
    HoldsNothing();
    std::wstring text;
    PropertyReader read(&instance, L"pInstance");
    read.String(kFirst, text).When(OnNull::Fail).String(kSecond, text);
    EXPECT_EQ(Code(read.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetPropertyAsString -> pInstance, L_PROP_SECOND -> NULL"));
}

TEST_F(PropertyReaderTest, After_AFailedStep_ReadsNothing) {
    Holds(_variant_t(L"12"));
    LONG number = 5;
    PropertyReader read(&instance, L"pInstance");
    read.After(ResultCode(WBEM_E_ACCESS_DENIED).value).Long(kFirst, number);
    EXPECT_EQ(Code(read.Result()), "0x80041003");
    EXPECT_THAT(instance.Asked(), IsEmpty());
    EXPECT_THAT(Traced(), IsEmpty());
    EXPECT_EQ(number, 5);
}

TEST_F(PropertyReaderTest, NoInstance_IsAFailedRead) {
    LONG number = 5;
    _variant_t plain;
    EXPECT_EQ(Code(PropertyReader(nullptr, L"pOut").Long(kFirst, number).Result()), "0x80004005");
    EXPECT_EQ(Code(PropertyReader(nullptr, L"pOut").Plain(kFirst, plain).Result()), "0x80004005");
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
    read.String(kFirst, text);
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
    read.When(OnNull::Fail).Long(kFirst, number);
    EXPECT_EQ(Code(read.Result()), "0x00040005");
    EXPECT_FALSE(read.Found());
    EXPECT_FALSE(read.IsNull());
    EXPECT_EQ(number, 5);
}

TEST_F(PropertyReaderTest, ValueOfATypeThatDoesNotConvert_IsNotFound) {
    Holds(NumberArray({3, 4}));
    LONG number = 5;
    PropertyReader read(&instance, L"pInstance");
    EXPECT_EQ(Code(read.Long(kFirst, number).Result()), "0x00000000");
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
    read.Code(kFirst, kind).IntCode(kFirst, other).Code(kFirst, text, [](LONG number) {
        return std::to_wstring(number);
    });
    EXPECT_EQ(kind, Seven);
    EXPECT_EQ(other, Seven);
    EXPECT_EQ(text, L"7");
    HoldsNothing();
    read.Code(kFirst, kind).IntCode(kFirst, other).Code(kFirst, text, [](LONG) { return L"not asked"; });
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
    read.String(kFirst, text);
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
    PropertyReader(&instance, L"pInstance").String(kFirst, text);
    EXPECT_EQ(text, std::wstring(L"a\0b", 3));
}

TEST_F(PropertyReaderTest, Array_AppendsItsElements) {
    Holds(NumberArray({3, 4}));
    std::vector<LONG> numbers{2};
    PropertyReader read(&instance, L"pInstance");
    read.Array(kFirst, numbers);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_TRUE(read.Found());
    EXPECT_THAT(numbers, ElementsAre(2, 3, 4));
    Holds(TextArray({L"a", L"b"}));
    std::vector<CComBSTR> texts;
    read.Array(kSecond, texts);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_STREQ(texts[1].m_str, L"b");
}

TEST_F(PropertyReaderTest, Array_Missing_IsAFailure) {
    HoldsNothing();
    std::vector<LONG> numbers;
    PropertyReader read(&instance, L"pInstance");
    read.Array(kFirst, numbers, PropertyReader::Gaps::Skip, L"own text");
    EXPECT_EQ(Code(read.Result()), "0x80004005");
    EXPECT_FALSE(read.Found());
    EXPECT_THAT(
        Traced(),
        ElementsAre("GetPropertyArray -> ((vValues.vt == VT_EMPTY) || (vValues.vt == VT_NULL))", "own text"));
}

TEST_F(PropertyReaderTest, Texts_OfAnArrayOfTexts_ReplaceWhatWasThere) {
    Holds(TextArray({L"a", L"", std::wstring(L"b\0c", 3)}, 5));
    std::vector<std::wstring> texts{L"old"};
    EXPECT_TRUE(PropertyReader(&instance, L"pInstance").Texts(kFirst, texts).Found());
    EXPECT_THAT(texts, ElementsAre(L"a", L"", std::wstring(L"b\0c", 3)));
    Holds(TextArray({}));
    EXPECT_TRUE(PropertyReader(&instance, L"pInstance").Texts(kFirst, texts).Found());
    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(PropertyReaderTest, Texts_OfMixedElements_LeavesOutWhatIsNoText) {
    Holds(MixedArray({_variant_t(L"a"), _variant_t(LONG{2}), _variant_t(L"c")}));
    std::vector<std::wstring> texts{L"old"};
    EXPECT_TRUE(PropertyReader(&instance, L"pInstance").Texts(kFirst, texts).Found());
    EXPECT_THAT(texts, ElementsAre(L"a", L"c"));
}

TEST_F(PropertyReaderTest, Texts_OfNumbersThatAreCalledTexts_AreNotFollowed) {
    _variant_t lie = NumberArray({1, 2});
    V_VT(&lie) = VT_ARRAY | VT_BSTR;
    instance.AnswerWith([&lie](VARIANT& target) {
        std::swap(target, static_cast<VARIANT&>(lie));
        return S_OK;
    });
    std::vector<std::wstring> texts{L"old"};
    PropertyReader read(&instance, L"pInstance");
    EXPECT_EQ(Code(read.Texts(kFirst, texts).Result()), "0x80020005");
    EXPECT_THAT(texts, ElementsAre(L"old"));
}

TEST_F(PropertyReaderTest, Text_IsTakenAsItIs_AndAnythingElseIsEmpty) {
    CComBSTR text(L"old");
    Holds(_variant_t(L"new"));
    EXPECT_TRUE(PropertyReader(&instance, L"pInstance").Text(kFirst, text).Found());
    EXPECT_STREQ(text.m_str, L"new");
    Holds(_variant_t(LONG{7}));
    PropertyReader read(&instance, L"pInstance");
    EXPECT_FALSE(read.Text(kFirst, text).Found());
    EXPECT_FALSE(read.Failed());
    EXPECT_EQ(text.Length(), 0u);
}

TEST_F(PropertyReaderTest, Plain_HandsOutTheValueAsItCame) {
    Holds(_variant_t(static_cast<BYTE>(7)));
    _variant_t value;
    PropertyReader read(&instance, L"pInstance");
    read.Plain(kFirst, value);
    EXPECT_EQ(Code(read.Result()), "0x00000000");
    EXPECT_EQ(V_VT(&value), VT_UI1);
    EXPECT_EQ(V_UI1(&value), 7);
    EXPECT_THAT(Traced(), IsEmpty());
}

} // namespace
