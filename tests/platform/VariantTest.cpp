// VARIANT: clearing, copying and following references; _variant_t.
#include "ComObjects.h"

#include <windows.h>
#include <oleauto.h>
#include <comdef.h>
#include <comutil.h>

#include <gtest/gtest.h>
#include <string>

namespace {

using quillet::tests::AgileObject;

VARIANT Empty() {
    VARIANT variant;
    VariantInit(&variant);
    return variant;
}

VARIANT TextVariant(const wchar_t* text) {
    VARIANT variant = Empty();
    V_VT(&variant) = VT_BSTR;
    V_BSTR(&variant) = SysAllocString(text);
    return variant;
}

TEST(VariantTest, InitMakesItEmpty) {
    VARIANT variant;
    V_VT(&variant) = VT_BSTR;
    VariantInit(&variant);
    EXPECT_EQ(V_VT(&variant), VT_EMPTY);
}

TEST(VariantTest, ClearFreesTextsAndArraysAndInterfaces) {
    VARIANT text = TextVariant(L"freed");
    EXPECT_EQ(VariantClear(&text), S_OK);
    EXPECT_EQ(V_VT(&text), VT_EMPTY);

    VARIANT array = Empty();
    V_VT(&array) = VT_ARRAY | VT_BSTR;
    V_ARRAY(&array) = SafeArrayCreateVector(VT_BSTR, 0, 1);
    LONG index = 0;
    const BSTR element = SysAllocString(L"element");
    EXPECT_EQ(SafeArrayPutElement(V_ARRAY(&array), &index, element), S_OK);
    SysFreeString(element);
    EXPECT_EQ(VariantClear(&array), S_OK);
    EXPECT_EQ(V_VT(&array), VT_EMPTY);

    AgileObject object;
    VARIANT interfaceVariant = Empty();
    V_VT(&interfaceVariant) = VT_UNKNOWN;
    V_UNKNOWN(&interfaceVariant) = &object;
    object.AddRef();
    EXPECT_EQ(VariantClear(&interfaceVariant), S_OK);
    EXPECT_EQ(object.References(), 1u);
}

TEST(VariantTest, ClearTakesNullPayloads) {
    const int types[] = {VT_BSTR, VT_UNKNOWN, VT_DISPATCH, VT_ARRAY | VT_I4};
    for (const int type : types) {
        VARIANT variant = Empty();
        V_VT(&variant) = static_cast<VARTYPE>(type);
        V_BSTR(&variant) = nullptr;
        EXPECT_EQ(VariantClear(&variant), S_OK) << type;
        EXPECT_EQ(V_VT(&variant), VT_EMPTY);
    }
}

TEST(VariantTest, ClearLeavesReferencedValuesAlone) {
    BSTR text = SysAllocString(L"mine");
    VARIANT variant = Empty();
    V_VT(&variant) = VT_BYREF | VT_BSTR;
    V_BSTRREF(&variant) = &text;
    EXPECT_EQ(VariantClear(&variant), S_OK);
    EXPECT_EQ(V_VT(&variant), VT_EMPTY);
    EXPECT_STREQ(text, L"mine");
    SysFreeString(text);
}

TEST(VariantTest, ClearRefusesTypesThatAreNone) {
    for (const int type :
         {15, 200, VT_VECTOR | VT_I4, VT_RESERVED | VT_I4, VT_BYREF | VT_EMPTY, VT_BYREF | VT_NULL}) {
        VARIANT variant = Empty();
        V_VT(&variant) = static_cast<VARTYPE>(type);
        EXPECT_EQ(VariantClear(&variant), DISP_E_BADVARTYPE) << type;
    }
}

TEST(VariantTest, CopyIsDeep) {
    VARIANT source = Empty();
    V_VT(&source) = VT_BSTR;
    V_BSTR(&source) = SysAllocStringLen(L"a\0b", 3);
    VARIANT copy = TextVariant(L"overwritten");
    EXPECT_EQ(VariantCopy(&copy, &source), S_OK);
    EXPECT_NE(V_BSTR(&copy), V_BSTR(&source));
    EXPECT_EQ(SysStringLen(V_BSTR(&copy)), 3u);
    VariantClear(&source);
    EXPECT_EQ(std::wstring(V_BSTR(&copy), 3), std::wstring(L"a\0b", 3));
    VariantClear(&copy);
}

TEST(VariantTest, CopyOfAnArrayIsDeep) {
    VARIANT source = Empty();
    V_VT(&source) = VT_ARRAY | VT_UI1;
    V_ARRAY(&source) = SafeArrayCreateVector(VT_UI1, 0, 3);
    VARIANT copy = Empty();
    EXPECT_EQ(VariantCopy(&copy, &source), S_OK);
    EXPECT_EQ(V_VT(&copy), VT_ARRAY | VT_UI1);
    EXPECT_NE(V_ARRAY(&copy), V_ARRAY(&source));
    VariantClear(&source);
    LONG bound = 0;
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&copy), 1, &bound), S_OK);
    EXPECT_EQ(bound, 2);
    VariantClear(&copy);
}

TEST(VariantTest, CopyReferencesInterfaces) {
    AgileObject object;
    VARIANT source = Empty();
    V_VT(&source) = VT_UNKNOWN;
    V_UNKNOWN(&source) = &object;
    VARIANT copy = Empty();
    EXPECT_EQ(VariantCopy(&copy, &source), S_OK);
    EXPECT_EQ(object.References(), 2u);
    VariantClear(&copy);
    EXPECT_EQ(object.References(), 1u);
}

TEST(VariantTest, CopyOntoItselfKeepsIt) {
    VARIANT variant = TextVariant(L"same");
    EXPECT_EQ(VariantCopy(&variant, &variant), S_OK);
    EXPECT_STREQ(V_BSTR(&variant), L"same");
    VariantClear(&variant);
}

TEST(VariantTest, CopyRefusesTypesThatAreNone) {
    VARIANT source = Empty();
    V_VT(&source) = VT_VECTOR | VT_I4;
    VARIANT target = TextVariant(L"kept");
    EXPECT_EQ(VariantCopy(&target, &source), DISP_E_BADVARTYPE);
    EXPECT_EQ(V_VT(&target), VT_BSTR);
    VariantClear(&target);
}

TEST(VariantTest, CopyKeepsReferencesAsTheyAre) {
    LONG number = 5;
    VARIANT source = Empty();
    V_VT(&source) = VT_BYREF | VT_I4;
    V_I4REF(&source) = &number;
    VARIANT copy = Empty();
    EXPECT_EQ(VariantCopy(&copy, &source), S_OK);
    EXPECT_EQ(V_VT(&copy), VT_BYREF | VT_I4);
    EXPECT_EQ(V_I4REF(&copy), &number);
    VARIANT direct = Empty();
    EXPECT_EQ(VariantCopyInd(&direct, &source), S_OK);
    EXPECT_EQ(V_VT(&direct), VT_I4);
    EXPECT_EQ(V_I4(&direct), 5);
}

TEST(VariantTest, CopyIndCopiesWhatIsReferenced) {
    BSTR text = SysAllocString(L"referenced");
    VARIANT source = Empty();
    V_VT(&source) = VT_BYREF | VT_BSTR;
    V_BSTRREF(&source) = &text;
    VARIANT copy = Empty();
    EXPECT_EQ(VariantCopyInd(&copy, &source), S_OK);
    EXPECT_EQ(V_VT(&copy), VT_BSTR);
    EXPECT_NE(V_BSTR(&copy), text);
    EXPECT_STREQ(V_BSTR(&copy), L"referenced");
    VariantClear(&copy);
    SysFreeString(text);

    VARIANT inner = TextVariant(L"inner");
    VARIANT outer = Empty();
    V_VT(&outer) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&outer) = &inner;
    EXPECT_EQ(VariantCopyInd(&copy, &outer), S_OK);
    EXPECT_STREQ(V_BSTR(&copy), L"inner");
    VariantClear(&copy);
    VariantClear(&inner);
}

TEST(VariantTest, CopyIndFollowsOnlyTwoReferences) {
    VARIANT innermost = Empty();
    VARIANT middle = Empty();
    V_VT(&middle) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&middle) = &innermost;
    VARIANT outer = Empty();
    V_VT(&outer) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&outer) = &middle;
    VARIANT copy = Empty();
    EXPECT_EQ(VariantCopyInd(&copy, &outer), E_INVALIDARG);
    LONG number = 8;
    V_VT(&middle) = VT_BYREF | VT_I4;
    V_I4REF(&middle) = &number;
    EXPECT_EQ(VariantCopyInd(&copy, &outer), S_OK);
    EXPECT_EQ(V_VT(&copy), VT_I4);
    EXPECT_EQ(V_I4(&copy), 8);
}

// --- _variant_t ----------------------------------------------------------------------------------------

TEST(VariantOwnerTest, TakesEveryNumberAsItsOwnType) {
    EXPECT_EQ(V_VT(&static_cast<const VARIANT&>(_variant_t())), VT_EMPTY);
    EXPECT_EQ(_variant_t(SHORT{-2}).vt, VT_I2);
    EXPECT_EQ(_variant_t(LONG{-2}).vt, VT_I4);
    EXPECT_EQ(_variant_t(ULONG{2}).vt, VT_UI4);
    EXPECT_EQ(_variant_t(LONGLONG{2}).vt, VT_I8);
    EXPECT_EQ(_variant_t(ULONGLONG{2}).vt, VT_UI8);
    EXPECT_EQ(_variant_t(BYTE{2}).vt, VT_UI1);
    EXPECT_EQ(_variant_t(USHORT{2}).vt, VT_UI2);
    EXPECT_EQ(_variant_t(2.5f).vt, VT_R4);
    EXPECT_EQ(_variant_t(2.5).vt, VT_R8);
    EXPECT_EQ(_variant_t(true).vt, VT_BOOL);
    EXPECT_EQ(_variant_t(true).boolVal, VARIANT_TRUE);
    EXPECT_EQ(_variant_t(false).boolVal, VARIANT_FALSE);
    EXPECT_EQ(_variant_t(SHORT{5}, VT_BOOL).boolVal, VARIANT_TRUE);
    EXPECT_EQ(_variant_t(LONG{-2}).lVal, -2);
}

TEST(VariantOwnerTest, OwnsTexts) {
    _variant_t text(L"owned");
    EXPECT_EQ(text.vt, VT_BSTR);
    EXPECT_STREQ(text.bstrVal, L"owned");
    const _variant_t copy(text);
    EXPECT_NE(copy.bstrVal, text.bstrVal);
    text = L"changed";
    EXPECT_STREQ(text.bstrVal, L"changed");
    EXPECT_STREQ(copy.bstrVal, L"owned");
    const _variant_t fromOwner(_bstr_t(L"from a text"));
    EXPECT_STREQ(fromOwner.bstrVal, L"from a text");
}

TEST(VariantOwnerTest, AttachAndDetachPassOwnership) {
    VARIANT raw = TextVariant(L"passed");
    const BSTR text = V_BSTR(&raw);
    _variant_t owner(L"before");
    owner.Attach(raw);
    EXPECT_EQ(V_VT(&raw), VT_EMPTY);
    EXPECT_EQ(owner.bstrVal, text);
    VARIANT detached = owner.Detach();
    EXPECT_EQ(owner.vt, VT_EMPTY);
    EXPECT_EQ(V_BSTR(&detached), text);
    const _variant_t taken(detached, false);
    EXPECT_EQ(taken.bstrVal, text);
    EXPECT_EQ(V_VT(&detached), VT_EMPTY);
}

TEST(VariantOwnerTest, ConvertsWhenRead) {
    const _variant_t text(L"-7");
    EXPECT_EQ(static_cast<LONG>(text), -7);
    EXPECT_EQ(static_cast<SHORT>(text), -7);
    EXPECT_TRUE(static_cast<bool>(_variant_t(LONG{3})));
    EXPECT_STREQ(static_cast<const wchar_t*>(static_cast<_bstr_t>(_variant_t(LONG{3}))), L"3");
}

TEST(VariantOwnerTest, RaisesWhatDoesNotConvert) {
    const auto code = [](auto read) {
        try {
            static_cast<void>(read());
        } catch (const _com_error& error) {
            return error.Error();
        }
        return S_OK;
    };
    const _variant_t word(L"word");
    EXPECT_EQ(code([&] { return static_cast<LONG>(word); }), DISP_E_TYPEMISMATCH);
    const _variant_t great(LONG{70000});
    EXPECT_EQ(code([&] { return static_cast<SHORT>(great); }), DISP_E_OVERFLOW);
    EXPECT_EQ(code([&] { return static_cast<LONG>(great); }), S_OK);
}

TEST(VariantOwnerTest, ChangesItsType) {
    _variant_t value(L"12");
    value.ChangeType(VT_UI1);
    EXPECT_EQ(value.vt, VT_UI1);
    EXPECT_EQ(value.bVal, 12);
    const _variant_t other(LONG{99});
    value.ChangeType(VT_BSTR, &other);
    EXPECT_STREQ(value.bstrVal, L"99");
}

TEST(VariantOwnerTest, ComparesTypeAndValue) {
    EXPECT_TRUE(_variant_t(LONG{5}) == static_cast<const VARIANT&>(_variant_t(LONG{5})));
    EXPECT_FALSE(_variant_t(LONG{5}) == static_cast<const VARIANT&>(_variant_t(SHORT{5})));
    EXPECT_TRUE(_variant_t(L"a") == static_cast<const VARIANT&>(_variant_t(L"a")));
    EXPECT_TRUE(_variant_t(L"a") != static_cast<const VARIANT&>(_variant_t(L"b")));
}

TEST(VariantOwnerTest, ReferencesInterfaces) {
    AgileObject object;
    {
        const _variant_t owner(static_cast<IUnknown*>(&object));
        EXPECT_EQ(object.References(), 2u);
        const _variant_t copy(owner);
        EXPECT_EQ(object.References(), 3u);
        object.AddRef();
        const _variant_t adopted(static_cast<IUnknown*>(&object), false);
        EXPECT_EQ(object.References(), 4u);
    }
    EXPECT_EQ(object.References(), 1u);
}

} // namespace
