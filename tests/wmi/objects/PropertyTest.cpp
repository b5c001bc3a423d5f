// How CIM values become VARIANTs, and which VARIANTs a property takes.
#include "ComFixture.h"

using ATL::CComPtr;

namespace {

class Property : public ComTest {
  protected:
    CComPtr<IWbemClassObject> one = Object(kAll);
    CComPtr<IWbemClassObject> two = Object(L"Test_All.Name=\"two\"");

    std::string PutCode(const wchar_t* name, _variant_t value, CIMTYPE type = 0) {
        return Code(Put(two, name, value, type));
    }
    /// What a property holds after a successful put, as text.
    std::wstring After(const wchar_t* name, _variant_t value) {
        EXPECT_EQ(PutCode(name, value), "0x00000000") << Narrow(name);
        const auto held = Get(two, name);
        return V_VT(&held) == VT_NULL ? L"null" : std::wstring(_bstr_t(held));
    }
    CIMTYPE TypeOf(const wchar_t* name) {
        CIMTYPE type = 0;
        EXPECT_EQ(one->Get(name, 0, nullptr, &type, nullptr), S_OK) << Narrow(name);
        return type;
    }
};

struct Carried {
    const wchar_t* name;
    CIMTYPE type;
    VARTYPE vt;
    const wchar_t* text; ///< of the VARIANT
};

TEST_F(Property, ScalarsAreCarriedInTheirVariantType) {
    const Carried carried[] = {
        {L"S8", CIM_SINT8, VT_I2, L"-8"},
        {L"U8", CIM_UINT8, VT_UI1, L"200"},
        {L"S16", CIM_SINT16, VT_I2, L"-1600"},
        {L"U16", CIM_UINT16, VT_I4, L"65000"},
        {L"S32", CIM_SINT32, VT_I4, L"-320000"},
        {L"U32", CIM_UINT32, VT_I4, L"-294967296"},
        {L"S64", CIM_SINT64, VT_BSTR, L"-9000000000000000000"},
        {L"U64", CIM_UINT64, VT_BSTR, L"18446744073709551615"},
        {L"R32", CIM_REAL32, VT_R4, L"1.5"},
        {L"R64", CIM_REAL64, VT_R8, L"-2.25"},
        {L"Flag", CIM_BOOLEAN, VT_BOOL, L"-1"},
        {L"Letter", CIM_CHAR16, VT_I2, L"65"},
        {L"Stamp", CIM_DATETIME, VT_BSTR, L"20240229120000.000000+060"},
        {L"Caption", CIM_STRING, VT_BSTR, L"First"},
    };
    for (const auto& expected : carried) {
        SCOPED_TRACE(Narrow(expected.name));
        auto value = Get(one, expected.name);
        EXPECT_EQ(V_VT(&value), expected.vt);
        EXPECT_EQ(TypeOf(expected.name), expected.type);
        if (expected.vt != VT_BOOL) {
            _variant_t text;
            ASSERT_EQ(VariantChangeType(&text, &value, 0, VT_BSTR), S_OK);
            EXPECT_EQ(Narrow(V_BSTR(&text)), Narrow(expected.text));
        }
    }
    const auto flag = Get(one, L"Flag");
    EXPECT_EQ(V_BOOL(&flag), VARIANT_TRUE);
}

TEST_F(Property, AReferenceIsCarriedAsAPathOfItsObject) {
    const auto value = Get(one, L"Other");
    ASSERT_EQ(V_VT(&value), VT_BSTR);
    EXPECT_EQ(TypeOf(L"Other"), CIM_REFERENCE);
    EXPECT_TRUE(machine->Store().SameObject(V_BSTR(&value), L"Test_All.Name=\"two\""))
        << Narrow(V_BSTR(&value));
    EXPECT_TRUE(machine->Store().SameObject(After(L"Other", kAll), kAll));
}

TEST_F(Property, ArraysAreCarriedAsArraysOfThatType) {
    const std::pair<const wchar_t*, VARTYPE> carried[] = {
        {L"S8s", VT_I2},  {L"U8s", VT_UI1}, {L"S16s", VT_I2},    {L"U16s", VT_I4},
        {L"S32s", VT_I4}, {L"U32s", VT_I4}, {L"S64s", VT_BSTR},  {L"U64s", VT_BSTR},
        {L"R32s", VT_R4}, {L"R64s", VT_R8}, {L"Flags", VT_BOOL}, {L"Texts", VT_BSTR}};
    for (const auto& [name, vt] : carried) {
        SCOPED_TRACE(Narrow(name));
        const auto value = Get(one, name);
        ASSERT_EQ(V_VT(&value), VT_ARRAY | vt);
        LONG lower = 99;
        EXPECT_EQ(SafeArrayGetLBound(V_ARRAY(&value), 1, &lower), S_OK);
        EXPECT_EQ(lower, 0);
        EXPECT_NE(TypeOf(name) & CIM_FLAG_ARRAY, 0);
    }
}

TEST_F(Property, ArrayElementsAreRight) {
    const auto texts = Get(one, L"U64s");
    SAFEARRAY* copy = nullptr;
    ASSERT_EQ(SafeArrayCopy(V_ARRAY(&texts), &copy), S_OK);
    EXPECT_THAT(TakeNames(copy), testing::ElementsAre(L"0", L"18446744073709551615"));
    const auto numbers = Get(one, L"U32s");
    LONG index = 1;
    LONG number = 0;
    ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&numbers), &index, &number), S_OK);
    EXPECT_EQ(number, -1);
    const auto flags = Get(one, L"Flags");
    VARIANT_BOOL flag = VARIANT_TRUE;
    ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&flags), &index, &flag), S_OK);
    EXPECT_EQ(flag, VARIANT_FALSE);
    const auto bytes = Get(one, L"U8s");
    unsigned char octet = 0;
    ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&bytes), &index, &octet), S_OK);
    EXPECT_EQ(octet, 255);
}

TEST_F(Property, NullIsCarriedAsNull) {
    for (const auto* name : {L"S8", L"U64", L"Flag", L"Stamp", L"U8s", L"Texts"}) {
        const auto value = Get(two, name);
        EXPECT_EQ(V_VT(&value), VT_NULL) << Narrow(name);
    }
}

TEST_F(Property, NumbersAreTakenFromEveryIntegerVariantThatFits) {
    for (const VARTYPE vt : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT}) {
        for (const auto* name :
             {L"S8", L"U8", L"S16", L"U16", L"S32", L"U32", L"S64", L"U64", L"Letter", L"R32"}) {
            EXPECT_EQ(After(name, NumberVariant(vt, 100)), L"100") << Narrow(name) << " from " << vt;
        }
    }
}

TEST_F(Property, NumbersOutOfRangeAreRefused) {
    EXPECT_EQ(PutCode(L"S8", NumberVariant(VT_I2, 128)), "0x80041005");
    EXPECT_EQ(PutCode(L"S8", NumberVariant(VT_I2, -129)), "0x80041005");
    EXPECT_EQ(PutCode(L"U8", NumberVariant(VT_I4, 256)), "0x80041005");
    EXPECT_EQ(PutCode(L"U8", NumberVariant(VT_I4, -1)), "0x80041005");
    EXPECT_EQ(PutCode(L"S16", NumberVariant(VT_I4, 32768)), "0x80041005");
    EXPECT_EQ(PutCode(L"U16", NumberVariant(VT_I4, 65536)), "0x80041005");
    EXPECT_EQ(PutCode(L"U16", NumberVariant(VT_I4, -1)), "0x80041005");
    EXPECT_EQ(PutCode(L"S32", NumberVariant(VT_UI4, 4294967295)), "0x80041005");
    EXPECT_EQ(PutCode(L"U64", NumberVariant(VT_I4, -1)), "0x80041005");
    EXPECT_EQ(After(L"S8", NumberVariant(VT_I2, -128)), L"-128");
    EXPECT_EQ(After(L"U8", NumberVariant(VT_I4, 255)), L"255");
    EXPECT_EQ(After(L"U16", NumberVariant(VT_I4, 65535)), L"65535");
}

TEST_F(Property, AnUnsignedNumberTravelsAsTheBitsOfItsCarrier) {
    EXPECT_EQ(PutCode(L"U32", NumberVariant(VT_I4, -1)), "0x00000000");
    EXPECT_EQ(PutCode(L"Letter", NumberVariant(VT_I2, -1)), "0x00000000");
    ASSERT_EQ(services->PutInstance(two, 0, nullptr, nullptr), S_OK);
    const auto stored = machine->Store().FindInstance(L"Test_All.Name=\"two\"");
    EXPECT_EQ(*stored->Find(L"U32"), Value::Unsigned(4294967295u));
    EXPECT_EQ(*stored->Find(L"Letter"), Value::Unsigned(65535));
}

TEST_F(Property, WideNumbersAreTakenAsDecimalText) {
    EXPECT_EQ(After(L"U64", L"18446744073709551615"), L"18446744073709551615");
    EXPECT_EQ(After(L"U64", L"0"), L"0");
    EXPECT_EQ(After(L"S64", L"-9223372036854775808"), L"-9223372036854775808");
    EXPECT_EQ(After(L"S64", L"9223372036854775807"), L"9223372036854775807");
    for (const auto* text :
         {L"18446744073709551616", L"-1", L"", L" 1", L"0x10", L"1e3", L"99999999999999999999999"}) {
        EXPECT_EQ(PutCode(L"U64", text), "0x80041005") << Narrow(text);
    }
    for (const auto* text : {L"9223372036854775808", L"-9223372036854775809", L"-", L"--1", L"+1"}) {
        EXPECT_EQ(PutCode(L"S64", text), "0x80041005") << Narrow(text);
    }
    EXPECT_EQ(PutCode(L"U64", NumberVariant(VT_UI8, 1)), "0x80041005");
    EXPECT_EQ(PutCode(L"S64", NumberVariant(VT_I8, 1)), "0x80041005");
}

TEST_F(Property, BooleansAreTakenAsBooleansOrAsZeroAndOne) {
    const auto flag = [this] {
        const auto value = Get(two, L"Flag");
        EXPECT_EQ(V_VT(&value), VT_BOOL);
        return V_BOOL(&value) != VARIANT_FALSE;
    };
    EXPECT_EQ(PutCode(L"Flag", true), "0x00000000");
    EXPECT_TRUE(flag());
    EXPECT_EQ(PutCode(L"Flag", I4(0)), "0x00000000");
    EXPECT_FALSE(flag());
    EXPECT_EQ(PutCode(L"Flag", I4(1)), "0x00000000");
    EXPECT_TRUE(flag());
    EXPECT_EQ(PutCode(L"Flag", I4(2)), "0x80041005");
    EXPECT_EQ(PutCode(L"Flag", I4(-1)), "0x80041005");
    EXPECT_EQ(PutCode(L"Flag", L"true"), "0x80041005");
    EXPECT_EQ(PutCode(L"U32", true), "0x80041005");
}

TEST_F(Property, TextsAreTakenAsTextOnly) {
    EXPECT_EQ(After(L"Caption", L"Zw\u00F6lf"), L"Zw\u00F6lf");
    for (const auto* name : {L"Caption", L"Other", L"Stamp"}) {
        EXPECT_EQ(PutCode(name, I4(5)), "0x80041005") << Narrow(name);
    }
    for (const auto* name : {L"S32", L"U16", L"R64", L"Letter", L"Flag"}) {
        EXPECT_EQ(PutCode(name, L"5"), "0x80041005") << Narrow(name);
    }
    _variant_t empty;
    V_VT(&empty) = VT_BSTR;
    V_BSTR(&empty) = nullptr;
    EXPECT_EQ(After(L"Caption", empty), L"");
}

TEST_F(Property, RealsAreTakenFromReals) {
    EXPECT_EQ(PutCode(L"R64", 0.125), "0x00000000");
    const auto held = Get(two, L"R64");
    EXPECT_EQ(V_R8(&held), 0.125);
    EXPECT_EQ(PutCode(L"S32", 1.0), "0x80041005");
    _variant_t half;
    V_R4(&half) = 0.5F;
    V_VT(&half) = VT_R4;
    EXPECT_EQ(PutCode(L"R32", half), "0x00000000");
    EXPECT_EQ(PutCode(L"R64", half), "0x00000000");
    const auto narrow = Get(two, L"R32");
    const auto wide = Get(two, L"R64");
    EXPECT_EQ(V_R4(&narrow), 0.5F);
    EXPECT_EQ(V_R8(&wide), 0.5);
}

TEST_F(Property, ArraysAreTakenElementByElement) {
    EXPECT_EQ(PutCode(L"Texts", TextArray({L"x", L"", L"z"})), "0x00000000");
    auto texts = Get(two, L"Texts");
    EXPECT_THAT(TakeNames(V_ARRAY(&texts)), testing::ElementsAre(L"x", L"", L"z"));
    V_VT(&texts) = VT_EMPTY;
    EXPECT_EQ(PutCode(L"U8s", ByteArray({1, 2, 255})), "0x00000000");
    EXPECT_EQ(PutCode(L"U8s", ByteArray({})), "0x00000000");
    const auto none = Get(two, L"U8s");
    ASSERT_EQ(V_VT(&none), VT_ARRAY | VT_UI1);
    LONG upper = 99;
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&none), 1, &upper), S_OK);
    EXPECT_EQ(upper, -1);
    EXPECT_EQ(PutCode(L"U64s", TextArray({L"1", L"18446744073709551615"})), "0x00000000");
    EXPECT_EQ(PutCode(L"U64s", TextArray({L"1", L"x"})), "0x80041005");
    EXPECT_EQ(PutCode(L"S32s", ByteArray({1, 2})), "0x00000000");
    EXPECT_EQ(PutCode(L"S32s", TextArray({L"1"})), "0x80041005");
}

TEST_F(Property, ArraysOfEveryElementTypeAreTaken) {
    const auto array = [](VARTYPE vt, auto first, auto second) {
        _variant_t variant;
        V_ARRAY(&variant) = SafeArrayCreateVector(vt, 0, 2);
        V_VT(&variant) = static_cast<VARTYPE>(VT_ARRAY | vt);
        LONG index = 0;
        EXPECT_EQ(SafeArrayPutElement(V_ARRAY(&variant), &index, &first), S_OK);
        index = 1;
        EXPECT_EQ(SafeArrayPutElement(V_ARRAY(&variant), &index, &second), S_OK);
        return variant;
    };
    EXPECT_EQ(PutCode(L"S16s", array(VT_I2, SHORT{-3}, SHORT{4})), "0x00000000");
    EXPECT_EQ(PutCode(L"S64s", array(VT_I2, SHORT{-3}, SHORT{4})), "0x00000000");
    EXPECT_EQ(PutCode(L"Flags", array(VT_BOOL, VARIANT_BOOL{VARIANT_TRUE}, VARIANT_BOOL{VARIANT_FALSE})),
              "0x00000000");
    EXPECT_EQ(PutCode(L"R32s", array(VT_R4, 0.5F, -1.5F)), "0x00000000");
    EXPECT_EQ(PutCode(L"R64s", array(VT_R8, 0.25, -1e300)), "0x00000000");
    EXPECT_EQ(PutCode(L"R32s", array(VT_R8, 0.25, -1e300)), "0x80041005") << "too large for a real32";
    ASSERT_EQ(services->PutInstance(two, 0, nullptr, nullptr), S_OK);
    const auto stored = machine->Store().FindInstance(L"Test_All.Name=\"two\"");
    const auto elements = [](auto first, auto second) {
        return Value(Value::Array{Scalar(first), Scalar(second)});
    };
    EXPECT_EQ(*stored->Find(L"S16s"), elements(std::int64_t{-3}, std::int64_t{4}));
    EXPECT_EQ(*stored->Find(L"S64s"), elements(std::int64_t{-3}, std::int64_t{4}));
    EXPECT_EQ(*stored->Find(L"Flags"), elements(true, false));
    EXPECT_EQ(*stored->Find(L"R32s"), elements(0.5, -1.5));
    EXPECT_EQ(*stored->Find(L"R64s"), elements(0.25, -1e300));
}

TEST_F(Property, ArraysOfOtherShapesAreRefused) {
    EXPECT_EQ(PutCode(L"Texts", L"x"), "0x80041005");
    EXPECT_EQ(PutCode(L"Caption", TextArray({L"x"})), "0x80041005");
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    _variant_t square;
    V_ARRAY(&square) = SafeArrayCreate(VT_UI1, 2, bounds);
    V_VT(&square) = VT_ARRAY | VT_UI1;
    EXPECT_EQ(PutCode(L"U8s", square), "0x80041005");
    _variant_t variants;
    V_ARRAY(&variants) = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    V_VT(&variants) = VT_ARRAY | VT_VARIANT;
    EXPECT_EQ(PutCode(L"S32s", variants), "0x80041005");
    VARIANT null;
    VariantInit(&null);
    V_VT(&null) = VT_ARRAY | VT_UI1;
    V_ARRAY(&null) = nullptr;
    EXPECT_EQ(Code(two->Put(L"U8s", 0, &null, 0)), "0x80041005");
    BYTE octet = 1;
    VARIANT reference;
    VariantInit(&reference);
    V_VT(&reference) = VT_BYREF | VT_UI1;
    V_UI1REF(&reference) = &octet;
    EXPECT_EQ(Code(two->Put(L"U8", 0, &reference, 0)), "0x80041005");
}

TEST_F(Property, ALowerBoundIsNoMatter) {
    _variant_t shifted;
    V_ARRAY(&shifted) = SafeArrayCreateVector(VT_I4, 5, 2);
    V_VT(&shifted) = VT_ARRAY | VT_I4;
    LONG number = 42;
    LONG index = 6;
    ASSERT_EQ(SafeArrayPutElement(V_ARRAY(&shifted), &index, &number), S_OK);
    EXPECT_EQ(PutCode(L"S32s", shifted), "0x00000000");
    const auto held = Get(two, L"S32s");
    index = 1;
    number = 0;
    ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&held), &index, &number), S_OK);
    EXPECT_EQ(number, 42);
}

TEST_F(Property, NullResets) {
    _variant_t null;
    V_VT(&null) = VT_NULL;
    EXPECT_EQ(After(L"Caption", L"set"), L"set");
    EXPECT_EQ(After(L"Caption", null), L"null");
    EXPECT_EQ(PutCode(L"Caption", _variant_t()), "0x80041005");
}

TEST_F(Property, TheTypeArgumentMustBeTheProperty) {
    EXPECT_EQ(PutCode(L"S32", I4(5), CIM_SINT32), "0x00000000");
    EXPECT_EQ(PutCode(L"S32", I4(5), CIM_UINT32), "0x80041005");
    EXPECT_EQ(PutCode(L"Texts", TextArray({L"x"}), CIM_STRING), "0x80041005");
    EXPECT_EQ(PutCode(L"Texts", TextArray({L"x"}), CIM_STRING | CIM_FLAG_ARRAY), "0x00000000");
}

TEST_F(Property, ArgumentsAreChecked) {
    _variant_t value = I4(1);
    EXPECT_EQ(Code(one->Get(nullptr, 0, &value, nullptr, nullptr)), "0x80041008");
    EXPECT_EQ(Code(one->Get(L"S32", 1, &value, nullptr, nullptr)), "0x80041008");
    EXPECT_EQ(Code(one->Get(L"Nothing", 0, &value, nullptr, nullptr)), "0x80041002");
    EXPECT_EQ(Code(one->Get(L"__NOTHING", 0, &value, nullptr, nullptr)), "0x80041002");
    EXPECT_EQ(Code(one->Put(nullptr, 0, &value, 0)), "0x80041008");
    EXPECT_EQ(Code(one->Put(L"S32", 0, nullptr, 0)), "0x80041008");
    EXPECT_EQ(Code(one->Put(L"S32", 1, &value, 0)), "0x80041008");
    EXPECT_EQ(Code(one->Put(L"Nothing", 0, &value, 0)), "0x80041002");
    EXPECT_EQ(Code(one->Put(L"__PATH", 0, &value, 0)), "0x80041023");
    EXPECT_EQ(Code(Object(L"Test_All")->Put(L"New", 0, &value, 0)), "0x8004100C");
}

TEST_F(Property, NamesIgnoreCase) {
    EXPECT_EQ(Get(one, L"cAPTION"), _variant_t(L"First"));
    EXPECT_EQ(Get(one, L"__class"), _variant_t(L"Test_All"));
}

} // namespace
