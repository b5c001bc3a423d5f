// Arrays from a provider, whatever their type and bounds, and the array of texts that is put.
#include "Variants/SafeArray.h"
#include "Variants/SafeArrays.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using ATL::CComBSTR;

TEST(SafeArrayOf, ArrayOf_OwnedArray_IsThatArray) {
    const _variant_t value = NumberArray({1, 2});
    EXPECT_EQ(ArrayOf(value), V_ARRAY(&value));
    EXPECT_NE(ArrayOf(value), nullptr);
}

TEST(SafeArrayOf, ArrayOf_WhatIsNoOwnedArray_IsNull) {
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(ArrayOf(value), nullptr);
    V_VT(&value) = VT_I4;
    EXPECT_EQ(ArrayOf(value), nullptr);
    V_VT(&value) = VT_ARRAY | VT_I4;
    V_ARRAY(&value) = nullptr;
    EXPECT_EQ(ArrayOf(value), nullptr);
    V_VT(&value) = VT_ARRAY | VT_BYREF | VT_I4;
    V_BYREF(&value) = reinterpret_cast<void*>(static_cast<ULONG_PTR>(0x10));
    EXPECT_EQ(ArrayOf(value), nullptr) << "what it refers to is never followed";
}

TEST(SafeArrayElement, ReadElement_EveryNumberType_IsConverted) {
    struct Case {
        VARTYPE type;
        LONGLONG stored;
        LONG read;
    };
    for (const Case& one :
         {Case{VT_I1, -1, -1}, Case{VT_UI1, 255, 255}, Case{VT_I2, -1, -1}, Case{VT_UI2, 65535, 65535},
          Case{VT_BOOL, -1, -1}, Case{VT_I4, -1, -1}, Case{VT_UI4, 0xFFFFFFFF, -1}, Case{VT_INT, -1, -1},
          Case{VT_UINT, 7, 7}, Case{VT_I8, -9, -9}, Case{VT_UI8, 9, 9}}) {
        SCOPED_TRACE(one.type);
        OwnedArray array(SafeArrayCreateVector(one.type, 0, 3));
        // All hosts are little-endian: the low bytes are the number.
        LONG index = 1;
        LONGLONG stored = one.stored;
        ASSERT_TRUE(SUCCEEDED(SafeArrayPutElement(array.Get(), &index, &stored)));
        LONG element = 99;
        EXPECT_EQ(ReadElement(array.Get(), 1, element), S_OK);
        EXPECT_EQ(element, one.read);
        CComBSTR text;
        EXPECT_EQ(ReadElement(array.Get(), 1, text), DISP_E_TYPEMISMATCH);
    }
}

TEST(SafeArrayElement, ReadElement_RealNumbers_AreRounded) {
    OwnedArray array(SafeArrayCreateVector(VT_R8, 0, 2));
    LONG index = 0;
    double stored = 2.75;
    ASSERT_TRUE(SUCCEEDED(SafeArrayPutElement(array.Get(), &index, &stored)));
    LONG element = 0;
    EXPECT_EQ(ReadElement(array.Get(), 0, element), S_OK);
    EXPECT_EQ(element, 3);
    index = 1;
    stored = 1e300;
    ASSERT_TRUE(SUCCEEDED(SafeArrayPutElement(array.Get(), &index, &stored)));
    EXPECT_EQ(ReadElement(array.Get(), 1, element), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(element, 3);
}

TEST(SafeArrayElement, ReadElement_Texts_AreCopiedOrReadAsNumbers) {
    const _variant_t value = TextArray({L"12", std::wstring(L"a\0b", 3), L""});
    CComBSTR text;
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 1, text), S_OK);
    EXPECT_EQ(std::wstring(text, text.Length()), std::wstring(L"a\0b", 3));
    LONG number = 0;
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 0, number), S_OK);
    EXPECT_EQ(number, 12);
}

TEST(SafeArrayElement, ReadElement_NullText_IsAnEmptyOne) {
    OwnedArray array(SafeArrayCreateVector(VT_BSTR, 0, 1));
    CComBSTR text(L"before");
    EXPECT_TRUE(SUCCEEDED(ReadElement(array.Get(), 0, text)));
    EXPECT_EQ(text.Length(), 0u);
    LONG number = 5;
    EXPECT_TRUE(SUCCEEDED(ReadElement(array.Get(), 0, number)));
    EXPECT_EQ(number, 0);
}

TEST(SafeArrayElement, ReadElement_Variants_AreReadByTheirOwnType) {
    const _variant_t value = MixedArray({_variant_t(LONG{7}), _variant_t(L"text"), _variant_t()});
    LONG number = 0;
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 0, number), S_OK);
    EXPECT_EQ(number, 7);
    CComBSTR text;
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 1, text), S_OK);
    EXPECT_STREQ(text.m_str, L"text");
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 0, text), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 2, number), DISP_E_TYPEMISMATCH)
        << "an empty VARIANT is no element";
    EXPECT_EQ(number, 7);
}

TEST(SafeArrayElement, ReadElement_ObjectsAndDecimals_AreNoElements) {
    for (const VARTYPE type : {VT_UNKNOWN, VT_DISPATCH, VT_DECIMAL, VT_CY, VT_DATE, VT_ERROR}) {
        SCOPED_TRACE(type);
        OwnedArray array(SafeArrayCreateVector(type, 0, 1));
        ASSERT_NE(array.Get(), nullptr);
        LONG number = 5;
        EXPECT_EQ(ReadElement(array.Get(), 0, number), DISP_E_TYPEMISMATCH);
        EXPECT_EQ(number, 5);
        CComBSTR text;
        EXPECT_EQ(ReadElement(array.Get(), 0, text), DISP_E_TYPEMISMATCH);
    }
}

TEST(SafeArrayElement, ReadElement_OutsideTheBounds_IsABadIndex) {
    const _variant_t value = NumberArray({1, 2, 3}, 5);
    LONG number = 0;
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 4, number), DISP_E_BADINDEX);
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 8, number), DISP_E_BADINDEX);
    EXPECT_EQ(ReadElement(V_ARRAY(&value), std::numeric_limits<LONG>::min(), number), DISP_E_BADINDEX);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(ReadElement(V_ARRAY(&value), 5, number), S_OK);
    EXPECT_EQ(number, 1);
}

TEST(SafeArrayElement, ReadElement_TwoDimensions_IsABadIndex) {
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    OwnedArray array(SafeArrayCreate(VT_I4, 2, bounds));
    ASSERT_NE(array.Get(), nullptr);
    LONG number = 5;
    EXPECT_EQ(ReadElement(array.Get(), 0, number), DISP_E_BADINDEX);
    EXPECT_EQ(number, 5);
}

TEST(SafeArrayMake, MakeTextArray_HasOneElementPerTextFromZero) {
    _variant_t value;
    ASSERT_TRUE(MakeTextArray({L"first", L"", L"Z\u00fcrich", std::wstring(L"a\0b", 3)}, value));
    EXPECT_EQ(V_VT(&value), VT_ARRAY | VT_BSTR);
    SAFEARRAY* array = V_ARRAY(&value);
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    LONG lower = -1;
    LONG upper = -1;
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, 3);
    CComBSTR text;
    EXPECT_EQ(ReadElement(array, 2, text), S_OK);
    EXPECT_STREQ(text.m_str, L"Z\u00fcrich");
    EXPECT_EQ(ReadElement(array, 3, text), S_OK);
    EXPECT_EQ(text.Length(), 3u) << "a zero inside a text is part of it";
}

TEST(SafeArrayMake, MakeTextArray_NoTexts_IsAnEmptyArray) {
    _variant_t value(L"replaced");
    ASSERT_TRUE(MakeTextArray({}, value));
    LONG lower = -1;
    LONG upper = -2;
    EXPECT_EQ(SafeArrayGetLBound(V_ARRAY(&value), 1, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &upper), S_OK);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, -1);
}

} // namespace
