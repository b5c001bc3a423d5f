// What each type of VARIANT reads as, and the VARIANTs that are put.
#include "Variants/VariantCases.h"
#include "Variants/VariantValue.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

class VariantValueTest : public testing::TestWithParam<VariantCase> {
  protected:
    void TearDown() override {
        EXPECT_EQ(CallsOfUncallableObject(), 0);
        EXPECT_EQ(ReferencesOfUncallableObject(), 0u);
    }
};

/// Owns the case's VARIANT without copying it: types that cannot be cleared cannot be copied either.
class Owned {
  public:
    explicit Owned(const VariantCase& variantCase) : m_value(variantCase.make()) {}
    ~Owned() { VariantClear(&m_value); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    VARIANT& Get() { return m_value; }

  private:
    VARIANT m_value;
};

TEST_P(VariantValueTest, ReadVariant_AsBool) {
    Owned value(GetParam());
    for (const bool before : {false, true}) {
        bool result = before;
        EXPECT_EQ(ReadVariant(value.Get(), result), GetParam().asBool.has_value());
        EXPECT_EQ(result, GetParam().asBool.value_or(before));
    }
}

TEST_P(VariantValueTest, ReadVariant_AsLong) {
    Owned value(GetParam());
    LONG result = 77;
    EXPECT_EQ(ReadVariant(value.Get(), result), GetParam().asLong.has_value());
    EXPECT_EQ(result, GetParam().asLong.value_or(77));
}

TEST_P(VariantValueTest, ReadVariant_AsUInt64) {
    Owned value(GetParam());
    ULONGLONG result = 77;
    EXPECT_EQ(ReadVariant(value.Get(), result), GetParam().asUInt64.has_value());
    EXPECT_EQ(result, GetParam().asUInt64.value_or(77));
}

TEST_P(VariantValueTest, ReadVariant_AsText) {
    Owned value(GetParam());
    const VARTYPE type = V_VT(&value.Get());
    _bstr_t result(L"before");
    EXPECT_EQ(ReadVariant(value.Get(), result), type == VT_BSTR);
    EXPECT_EQ(std::wstring(result.length() ? result.GetBSTR() : L"", result.length()), GetParam().asText);
    if (type == VT_BSTR) {
        EXPECT_EQ(V_VT(&value.Get()), VT_EMPTY) << "the text is taken, not copied";
    }
}

INSTANTIATE_TEST_SUITE_P(Types, VariantValueTest, testing::ValuesIn(AllVariantCases()),
                         [](const testing::TestParamInfo<VariantCase>& test) { return test.param.name; });

TEST(VariantValue, HoldsNothing_EmptyAndNullOnly) {
    VARIANT value;
    VariantInit(&value);
    EXPECT_TRUE(HoldsNothing(value));
    V_VT(&value) = VT_NULL;
    EXPECT_TRUE(HoldsNothing(value));
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = nullptr;
    EXPECT_FALSE(HoldsNothing(value));
    V_VT(&value) = VT_I4;
    V_I4(&value) = 0;
    EXPECT_FALSE(HoldsNothing(value));
}

TEST(VariantValue, ReadVariant_Infinity_StaysUnread) {
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_R8;
    V_R8(&value) = std::numeric_limits<double>::infinity();
    LONG number = 5;
    ULONGLONG mask = 6;
    EXPECT_FALSE(ReadVariant(value, number));
    EXPECT_FALSE(ReadVariant(value, mask));
    EXPECT_EQ(number, 5);
    EXPECT_EQ(mask, 6u);
}

TEST(VariantValue, VariantOfLong_IsI4) {
    const _variant_t value = VariantOfLong(-3);
    EXPECT_EQ(V_VT(&value), VT_I4);
    EXPECT_EQ(V_I4(&value), -3);
}

TEST(VariantValue, VariantOfBool_IsVariantBool) {
    const _variant_t yes = VariantOfBool(true);
    EXPECT_EQ(V_VT(&yes), VT_BOOL);
    EXPECT_EQ(V_BOOL(&yes), VARIANT_TRUE);
    const _variant_t no = VariantOfBool(false);
    EXPECT_EQ(V_VT(&no), VT_BOOL);
    EXPECT_EQ(V_BOOL(&no), VARIANT_FALSE);
}

TEST(VariantValue, VariantOfText_IsBstr) {
    const _variant_t value = VariantOfText(L"Z\u00fcrich");
    EXPECT_EQ(V_VT(&value), VT_BSTR);
    EXPECT_STREQ(V_BSTR(&value), L"Z\u00fcrich");
    const _variant_t empty = VariantOfText(L"");
    EXPECT_EQ(V_VT(&empty), VT_BSTR);
    EXPECT_EQ(SysStringLen(V_BSTR(&empty)), 0u);
}

} // namespace
