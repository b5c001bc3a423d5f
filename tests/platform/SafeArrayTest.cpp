// SAFEARRAY: creation, bounds, elements of every ownership, locks, copies and bad arguments.
#include "ComObjects.h"

#include <windows.h>
#include <oleauto.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

using quillet::tests::AgileObject;

/// Destroys its array; a lock left on it is a failure of the test.
class Array {
  public:
    explicit Array(SAFEARRAY* array) : m_array(array) {}
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { EXPECT_EQ(SafeArrayDestroy(m_array), S_OK); }
    operator SAFEARRAY*() const { return m_array; }
    SAFEARRAY* operator->() const { return m_array; }

  private:
    SAFEARRAY* m_array;
};

LONG Lower(SAFEARRAY* array, UINT dimension = 1) {
    LONG bound = -999;
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), S_OK);
    return bound;
}

LONG Upper(SAFEARRAY* array, UINT dimension = 1) {
    LONG bound = -999;
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), S_OK);
    return bound;
}

TEST(SafeArrayTest, VectorHasItsBoundsTypeAndZeros) {
    const Array array(SafeArrayCreateVector(VT_I4, 0, 3));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    EXPECT_EQ(SafeArrayGetElemsize(array), 4u);
    EXPECT_EQ(Lower(array), 0);
    EXPECT_EQ(Upper(array), 2);
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK);
    EXPECT_EQ(type, VT_I4);
    for (LONG i = 0; i < 3; ++i) {
        LONG value = -1;
        EXPECT_EQ(SafeArrayGetElement(array, &i, &value), S_OK);
        EXPECT_EQ(value, 0);
    }
}

TEST(SafeArrayTest, TypesHaveTheSdkSizes) {
    const std::pair<VARTYPE, UINT> sizes[] = {{VT_I1, 1},
                                              {VT_UI1, 1},
                                              {VT_I2, 2},
                                              {VT_UI2, 2},
                                              {VT_BOOL, 2},
                                              {VT_I4, 4},
                                              {VT_UI4, 4},
                                              {VT_INT, 4},
                                              {VT_UINT, 4},
                                              {VT_ERROR, 4},
                                              {VT_R4, 4},
                                              {VT_R8, 8},
                                              {VT_CY, 8},
                                              {VT_DATE, 8},
                                              {VT_I8, 8},
                                              {VT_UI8, 8},
                                              {VT_BSTR, static_cast<UINT>(sizeof(BSTR))},
                                              {VT_UNKNOWN, static_cast<UINT>(sizeof(void*))},
                                              {VT_DISPATCH, static_cast<UINT>(sizeof(void*))},
                                              {VT_VARIANT, static_cast<UINT>(sizeof(VARIANT))},
                                              {VT_DECIMAL, 16}};
    for (const auto& [type, size] : sizes) {
        const Array array(SafeArrayCreateVector(type, 0, 2));
        ASSERT_NE(array, nullptr) << type;
        EXPECT_EQ(SafeArrayGetElemsize(array), size) << type;
        VARTYPE read = VT_EMPTY;
        EXPECT_EQ(SafeArrayGetVartype(array, &read), S_OK);
        EXPECT_EQ(read, type);
    }
}

TEST(SafeArrayTest, TypesWithoutArrayFormGiveNull) {
    SAFEARRAYBOUND bound = {1, 0};
    for (const VARTYPE type : {VT_EMPTY, VT_NULL, VARENUM(VT_I4 | VT_ARRAY), VARENUM(VT_I4 | VT_BYREF),
                               VARENUM(15), VT_ILLEGALMASKED}) {
        EXPECT_EQ(SafeArrayCreate(static_cast<VARTYPE>(type), 1, &bound), nullptr) << type;
    }
    EXPECT_EQ(SafeArrayCreate(VT_I4, 0, &bound), nullptr);
    EXPECT_EQ(SafeArrayCreate(VT_I4, 1, nullptr), nullptr);
}

TEST(SafeArrayTest, LayoutIsTheSdks) {
    EXPECT_EQ(offsetof(SAFEARRAY, cDims), 0u);
    EXPECT_EQ(offsetof(SAFEARRAY, fFeatures), 2u);
    EXPECT_EQ(offsetof(SAFEARRAY, cbElements), 4u);
    EXPECT_EQ(offsetof(SAFEARRAY, cLocks), 8u);
    EXPECT_EQ(offsetof(SAFEARRAY, pvData), 16u);
    EXPECT_EQ(offsetof(SAFEARRAY, rgsabound), 24u);
    EXPECT_EQ(sizeof(SAFEARRAYBOUND), 8u);
    EXPECT_EQ(sizeof(VARIANT), 24u);
    EXPECT_EQ(offsetof(VARIANT, vt), 0u);
    EXPECT_EQ(offsetof(VARIANT, lVal), 8u);
    EXPECT_EQ(offsetof(VARIANT, bstrVal), 8u);
    EXPECT_EQ(sizeof(DECIMAL), 16u);
    const Array array(SafeArrayCreateVector(VT_BSTR, 7, 2));
    EXPECT_EQ(array->cDims, 1);
    EXPECT_EQ(array->cLocks, 0u);
    EXPECT_EQ(array->rgsabound[0].cElements, 2u);
    EXPECT_EQ(array->rgsabound[0].lLbound, 7);
    EXPECT_NE(array->fFeatures & FADF_BSTR, 0);
    EXPECT_NE(array->fFeatures & FADF_HAVEVARTYPE, 0);
}

TEST(SafeArrayTest, LowerBoundFiveCountsFromFive) {
    const Array array(SafeArrayCreateVector(VT_I2, 5, 2));
    EXPECT_EQ(Lower(array), 5);
    EXPECT_EQ(Upper(array), 6);
    for (LONG i = 5; i <= 6; ++i) {
        SHORT value = static_cast<SHORT>(i * 10);
        EXPECT_EQ(SafeArrayPutElement(array, &i, &value), S_OK);
    }
    for (LONG i = 5; i <= 6; ++i) {
        SHORT value = 0;
        EXPECT_EQ(SafeArrayGetElement(array, &i, &value), S_OK);
        EXPECT_EQ(value, i * 10);
    }
    for (LONG i : {LONG{0}, LONG{4}, LONG{7}, LONG{-1}}) {
        SHORT value = 77;
        EXPECT_EQ(SafeArrayGetElement(array, &i, &value), DISP_E_BADINDEX) << i;
        EXPECT_EQ(SafeArrayPutElement(array, &i, &value), DISP_E_BADINDEX) << i;
        EXPECT_EQ(value, 77);
    }
}

TEST(SafeArrayTest, NegativeLowerBoundWorks) {
    const Array array(SafeArrayCreateVector(VT_UI1, -3, 3));
    EXPECT_EQ(Upper(array), -1);
    LONG index = -1;
    BYTE value = 9;
    EXPECT_EQ(SafeArrayPutElement(array, &index, &value), S_OK);
    index = -3;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &value), S_OK);
    EXPECT_EQ(value, 0);
    index = 0;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &value), DISP_E_BADINDEX);
}

TEST(SafeArrayTest, EmptyVectorHasAnUpperBoundBelowTheLower) {
    const Array array(SafeArrayCreateVector(VT_BSTR, 0, 0));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(Lower(array), 0);
    EXPECT_EQ(Upper(array), -1);
    LONG index = 0;
    BSTR text = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &text), DISP_E_BADINDEX);
}

TEST(SafeArrayTest, TextElementsAreCopiedBothWays) {
    const Array array(SafeArrayCreateVector(VT_BSTR, 0, 2));
    LONG index = 1;
    const BSTR put = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(SafeArrayPutElement(array, &index, put), S_OK);
    SysFreeString(put);
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_EQ(std::wstring(got, SysStringLen(got)), std::wstring(L"a\0b", 3));
    SysFreeString(got);
    BSTR again = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &again), S_OK);
    EXPECT_EQ(SysStringLen(again), 3u);
    SysFreeString(again);
    index = 0;
    got = reinterpret_cast<BSTR>(&index);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_EQ(got, nullptr) << "an element never put is null";
}

TEST(SafeArrayTest, PuttingATextReplacesTheOldOne) {
    const Array array(SafeArrayCreateVector(VT_BSTR, 0, 1));
    LONG index = 0;
    for (const wchar_t* word : {L"first", L"second"}) {
        const BSTR text = SysAllocString(word);
        EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
        SysFreeString(text);
    }
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_STREQ(got, L"second");
    SysFreeString(got);
    EXPECT_EQ(SafeArrayPutElement(array, &index, nullptr), S_OK);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_EQ(SysStringLen(got), 0u) << "a null text is an empty one";
    SysFreeString(got);
}

TEST(SafeArrayTest, VariantElementsAreDeepCopies) {
    const Array array(SafeArrayCreateVector(VT_VARIANT, 0, 2));
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = SysAllocString(L"inner");
    LONG index = 0;
    EXPECT_EQ(SafeArrayPutElement(array, &index, &value), S_OK);
    const BSTR original = V_BSTR(&value);
    VARIANT read;
    VariantInit(&read);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &read), S_OK);
    EXPECT_EQ(V_VT(&read), VT_BSTR);
    EXPECT_NE(V_BSTR(&read), original);
    EXPECT_STREQ(V_BSTR(&read), L"inner");
    VariantClear(&value);
    VariantClear(&read);
    index = 1;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &read), S_OK);
    EXPECT_EQ(V_VT(&read), VT_EMPTY);
}

TEST(SafeArrayTest, InterfaceElementsAreReferenced) {
    AgileObject object;
    {
        const Array array(SafeArrayCreateVector(VT_UNKNOWN, 0, 1));
        LONG index = 0;
        EXPECT_EQ(SafeArrayPutElement(array, &index, static_cast<IUnknown*>(&object)), S_OK);
        EXPECT_EQ(object.References(), 2u);
        IUnknown* got = nullptr;
        EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
        EXPECT_EQ(got, &object);
        EXPECT_EQ(object.References(), 3u);
        got->Release();
        SAFEARRAY* copy = nullptr;
        EXPECT_EQ(SafeArrayCopy(array, &copy), S_OK);
        EXPECT_EQ(object.References(), 3u);
        EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
    }
    EXPECT_EQ(object.References(), 1u);
}

TEST(SafeArrayTest, TwoDimensionsKeepTheFirstTogether) {
    SAFEARRAYBOUND bounds[] = {{2, 1}, {3, 10}};
    const Array array(SafeArrayCreate(VT_I4, 2, bounds));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(SafeArrayGetDim(array), 2u);
    EXPECT_EQ(Lower(array, 1), 1);
    EXPECT_EQ(Upper(array, 1), 2);
    EXPECT_EQ(Lower(array, 2), 10);
    EXPECT_EQ(Upper(array, 2), 12);
    for (LONG second = 10; second <= 12; ++second) {
        for (LONG first = 1; first <= 2; ++first) {
            LONG indices[] = {first, second};
            LONG value = first * 100 + second;
            EXPECT_EQ(SafeArrayPutElement(array, indices, &value), S_OK);
        }
    }
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
    const auto* const cells = static_cast<const LONG*>(data);
    EXPECT_EQ(std::vector<LONG>(cells, cells + 6), (std::vector<LONG>{110, 210, 111, 211, 112, 212}));
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    LONG outside[] = {2, 13};
    LONG value = 0;
    EXPECT_EQ(SafeArrayGetElement(array, outside, &value), DISP_E_BADINDEX);
    LONG swapped[] = {10, 1};
    EXPECT_EQ(SafeArrayGetElement(array, swapped, &value), DISP_E_BADINDEX);
}

TEST(SafeArrayTest, BadDimensionIsABadIndex) {
    const Array array(SafeArrayCreateVector(VT_I4, 0, 1));
    LONG bound = 0;
    EXPECT_EQ(SafeArrayGetLBound(array, 0, &bound), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayGetLBound(array, 2, &bound), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayGetUBound(array, 2, &bound), DISP_E_BADINDEX);
}

TEST(SafeArrayTest, NullArgumentsAreInvalid) {
    const Array array(SafeArrayCreateVector(VT_I4, 0, 1));
    LONG index = 0;
    LONG value = 0;
    void* data = nullptr;
    EXPECT_EQ(SafeArrayGetLBound(nullptr, 1, &value), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetElement(nullptr, &index, &value), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetElement(array, nullptr, &value), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetElement(array, &index, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayPutElement(nullptr, &index, &value), E_INVALIDARG);
    EXPECT_EQ(SafeArrayAccessData(nullptr, &data), E_INVALIDARG);
    EXPECT_EQ(SafeArrayAccessData(array, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayLock(nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayUnlock(nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayGetDim(nullptr), 0u);
    EXPECT_EQ(SafeArrayGetElemsize(nullptr), 0u);
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
    EXPECT_EQ(SafeArrayCopy(array, nullptr), E_INVALIDARG);
}

TEST(SafeArrayTest, LocksAreCountedAndKeepItAlive) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 1);
    LONG index = 0;
    const BSTR text = SysAllocString(L"kept");
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
    SysFreeString(text);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(array->cLocks, 2u);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_STREQ(got, L"kept");
    SysFreeString(got);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
    EXPECT_EQ(array->cLocks, 0u);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, AccessDataLocksAndPointsAtTheElements) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, 4);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
    EXPECT_EQ(data, array->pvData);
    EXPECT_EQ(array->cLocks, 1u);
    static_cast<BYTE*>(data)[2] = 42;
    EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    LONG index = 2;
    BYTE value = 0;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &value), S_OK);
    EXPECT_EQ(value, 42);
    void* place = nullptr;
    EXPECT_EQ(SafeArrayPtrOfIndex(array, &index, &place), S_OK);
    EXPECT_EQ(place, static_cast<BYTE*>(array->pvData) + 2);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, CopyIsIndependent) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 5, 2);
    LONG index = 6;
    const BSTR text = SysAllocStringLen(L"x\0y", 3);
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
    SysFreeString(text);
    SAFEARRAY* copied = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copied), S_OK);
    const Array copy(copied);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    EXPECT_EQ(Lower(copy), 5);
    EXPECT_EQ(Upper(copy), 6);
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(copy, &index, &got), S_OK);
    EXPECT_EQ(SysStringLen(got), 3u);
    SysFreeString(got);
}

TEST(SafeArrayTest, CopyOfALockedArrayIsNotLocked) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_I4, 0, 1);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    SAFEARRAY* copied = nullptr;
    ASSERT_EQ(SafeArrayCopy(array, &copied), S_OK);
    EXPECT_EQ(copied->cLocks, 0u);
    EXPECT_EQ(SafeArrayDestroy(copied), S_OK);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, CopyOfNullIsNull) {
    SAFEARRAY* copy = reinterpret_cast<SAFEARRAY*>(&copy);
    EXPECT_EQ(SafeArrayCopy(nullptr, &copy), S_OK);
    EXPECT_EQ(copy, nullptr);
}

} // namespace
