// What fails when a text can not be allocated, and that nothing is left or changed by it.
#include "AllocationFailures.h"

#include <quillet-platform/TestHooks.h>

#include <windows.h>
#include <oleauto.h>
#include <comdef.h>
#include <comutil.h>

#include <functional>
#include <gtest/gtest.h>
#include <thread>

namespace {

using quillet::platform::BstrAllocations;
using quillet::platform::FailBstrAllocation;
using quillet::platform::Live;

class AllocationFailureTest : public testing::Test {
  protected:
    void TearDown() override { FailBstrAllocation(0); }
};

TEST_F(AllocationFailureTest, HitsTheNthAllocationFromNowOn) {
    const unsigned long before = BstrAllocations();
    FailBstrAllocation(3);
    const BSTR first = SysAllocString(L"1");
    const BSTR second = SysAllocStringLen(L"2", 1);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(SysAllocStringByteLen("3", 1), nullptr);
    const BSTR fourth = SysAllocString(L"4");
    EXPECT_NE(fourth, nullptr) << "only that one fails";
    EXPECT_EQ(BstrAllocations(), before + 4) << "the failed one counts";
    for (const BSTR text : {first, second, fourth}) {
        SysFreeString(text);
    }
}

TEST_F(AllocationFailureTest, CanBeDisarmed) {
    FailBstrAllocation(1);
    FailBstrAllocation(0);
    const BSTR text = SysAllocString(L"made");
    EXPECT_NE(text, nullptr);
    SysFreeString(text);
    FailBstrAllocation(1);
    quillet::platform::ResetHooks();
    const BSTR other = SysAllocString(L"made");
    EXPECT_NE(other, nullptr);
    SysFreeString(other);
}

TEST_F(AllocationFailureTest, IsOneThreadsMatter) {
    FailBstrAllocation(1);
    std::thread([] {
        const BSTR text = SysAllocString(L"other thread");
        EXPECT_NE(text, nullptr);
        SysFreeString(text);
    }).join();
    EXPECT_EQ(SysAllocString(L"mine"), nullptr);
}

TEST_F(AllocationFailureTest, ReallocationKeepsTheOldText) {
    BSTR text = SysAllocString(L"kept");
    FailBstrAllocation(1);
    EXPECT_FALSE(SysReAllocString(&text, L"another"));
    EXPECT_STREQ(text, L"kept");
    FailBstrAllocation(1);
    EXPECT_FALSE(SysReAllocStringLen(&text, L"another", 7));
    EXPECT_STREQ(text, L"kept");
    SysFreeString(text);
}

TEST_F(AllocationFailureTest, AbsurdLengthsCountAsAllocations) {
    FailBstrAllocation(2);
    EXPECT_EQ(SysAllocStringLen(nullptr, ~0u), nullptr);
    EXPECT_EQ(SysAllocString(L"the second"), nullptr);
}

TEST_F(AllocationFailureTest, VariantCopyReportsIt) {
    VARIANT source;
    VariantInit(&source);
    V_VT(&source) = VT_BSTR;
    V_BSTR(&source) = SysAllocString(L"text");
    VARIANT copy;
    VariantInit(&copy);
    const auto before = Live();
    FailBstrAllocation(1);
    EXPECT_EQ(VariantCopy(&copy, &source), E_OUTOFMEMORY);
    EXPECT_EQ(V_VT(&copy), VT_EMPTY);
    FailBstrAllocation(1);
    EXPECT_EQ(VariantCopyInd(&copy, &source), E_OUTOFMEMORY);
    EXPECT_EQ(V_VT(&copy), VT_EMPTY);
    FailBstrAllocation(1);
    EXPECT_EQ(VariantChangeType(&copy, &source, 0, VT_BSTR), E_OUTOFMEMORY);
    EXPECT_TRUE(Live() == before);
    VariantClear(&source);
}

TEST_F(AllocationFailureTest, NumberToTextReportsItAndKeepsTheTarget) {
    VARIANT number;
    VariantInit(&number);
    V_VT(&number) = VT_I4;
    V_I4(&number) = 5;
    FailBstrAllocation(1);
    EXPECT_EQ(VariantChangeType(&number, &number, 0, VT_BSTR), E_OUTOFMEMORY);
    EXPECT_EQ(V_VT(&number), VT_I4);
    EXPECT_EQ(V_I4(&number), 5);
}

TEST_F(AllocationFailureTest, ArrayElementsReportIt) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 3);
    const BSTR text = SysAllocString(L"element");
    for (LONG i = 0; i < 3; ++i) {
        ASSERT_EQ(SafeArrayPutElement(array, &i, text), S_OK);
    }
    const auto before = Live();
    LONG index = 0;
    BSTR got = nullptr;
    FailBstrAllocation(1);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), E_OUTOFMEMORY);
    EXPECT_EQ(got, nullptr);
    FailBstrAllocation(1);
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), E_OUTOFMEMORY);
    SAFEARRAY* copy = nullptr;
    for (unsigned long nth = 1; nth <= 3; ++nth) {
        FailBstrAllocation(nth);
        EXPECT_EQ(SafeArrayCopy(array, &copy), E_OUTOFMEMORY) << nth;
        EXPECT_EQ(copy, nullptr);
    }
    FailBstrAllocation(0);
    EXPECT_TRUE(Live() == before);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK) << "the old element is still there";
    EXPECT_STREQ(got, L"element");
    SysFreeString(got);
    SysFreeString(text);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST_F(AllocationFailureTest, VariantElementsReportIt) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
    VARIANT value;
    VariantInit(&value);
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = SysAllocString(L"inner");
    LONG index = 0;
    FailBstrAllocation(1);
    EXPECT_EQ(SafeArrayPutElement(array, &index, &value), E_OUTOFMEMORY);
    EXPECT_EQ(SafeArrayPutElement(array, &index, &value), S_OK);
    VARIANT read;
    VariantInit(&read);
    FailBstrAllocation(1);
    EXPECT_EQ(SafeArrayGetElement(array, &index, &read), E_OUTOFMEMORY);
    EXPECT_EQ(V_VT(&read), VT_EMPTY);
    VariantClear(&value);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST_F(AllocationFailureTest, TheOwnersRaiseIt) {
    const _bstr_t text(L"text");
    const _variant_t variant(L"variant");
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"wide", [] { _bstr_t made(L"x"); }},
        {"narrow", [] { _bstr_t made("x"); }},
        {"copied", [&] { _bstr_t made(static_cast<const wchar_t*>(text)); }},
        {"of a variant", [&] { _bstr_t made(variant); }},
        {"copy", [&] { SysFreeString(text.copy()); }},
        {"assigned",
         [&] {
             _bstr_t made;
             made = L"x";
         }},
        {"concatenated", [&] { const _bstr_t made = text + text; }},
        {"given",
         [&] {
             _bstr_t made;
             made.Assign(static_cast<BSTR>(text));
         }},
        {"variant of text", [] { _variant_t made(L"x"); }},
        {"variant of narrow text", [] { _variant_t made("x"); }},
        {"variant of an owner", [&] { _variant_t made(text); }},
        {"variant of a variant", [&] { _variant_t made(variant); }},
        {"variant assigned",
         [&] {
             _variant_t made;
             made = variant;
         }},
        {"variant assigned a text",
         [] {
             _variant_t made;
             made = L"x";
         }},
        {"number as text", [] { const _bstr_t made = static_cast<_bstr_t>(_variant_t(LONG{5})); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        FailEachStringAllocation([&operation = operation] {
            operation();
            return S_OK;
        });
    }
}

TEST_F(AllocationFailureTest, AFailedAssignmentKeepsTheOldText) {
    _bstr_t text(L"kept");
    FailBstrAllocation(1);
    EXPECT_THROW(text = L"another", _com_error);
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"kept");
    FailBstrAllocation(1);
    EXPECT_THROW(text += L" and more", _com_error);
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"kept");
    _variant_t variant(L"kept");
    FailBstrAllocation(1);
    EXPECT_THROW(variant = L"another", _com_error);
    EXPECT_STREQ(variant.bstrVal, L"kept");
}

} // namespace
