// IWbemQualifierSet: who sees which qualifier, in which language.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

constexpr LONG kAmended = WBEM_FLAG_USE_AMENDED_QUALIFIERS;

class QualifierFace : public ComTest {
  protected:
    CComPtr<IWbemQualifierSet> Of(const wchar_t* path, const wchar_t* property, LONG flags = 0) {
        CComPtr<IWbemQualifierSet> set;
        EXPECT_EQ(Code(Object(path, flags)->GetPropertyQualifierSet(property, &set)), "0x00000000");
        return set;
    }
    std::vector<std::wstring> Names(IWbemQualifierSet* set, LONG flags = 0) {
        SAFEARRAY* names = nullptr;
        EXPECT_EQ(set->GetNames(flags, &names), S_OK);
        return TakeNames(names);
    }
    std::vector<std::wstring> Texts(IWbemQualifierSet* set, const wchar_t* name) {
        _variant_t value;
        EXPECT_EQ(Code(set->Get(name, 0, &value, nullptr)), "0x00000000");
        if (V_VT(&value) != (VT_ARRAY | VT_BSTR)) {
            ADD_FAILURE() << "no array of texts";
            return {};
        }
        V_VT(&value) = VT_EMPTY;
        return TakeNames(V_ARRAY(&value));
    }
    std::vector<std::wstring> StateTexts(LONG flags = kAmended) {
        return Texts(Of(L"Test_All", L"State", flags), L"Values");
    }
};

TEST_F(QualifierFace, AmendedOnesAreSeenOnlyWhenAskedFor) {
    EXPECT_THAT(Names(Of(L"Test_All", L"State")), ElementsAre(L"ValueMap", L"CIMTYPE"));
    EXPECT_THAT(Names(Of(L"Test_All", L"State", kAmended)),
                ElementsAre(L"Description", L"ValueMap", L"Values", L"CIMTYPE"));
    _variant_t value;
    EXPECT_EQ(Code(Of(L"Test_All", L"State")->Get(L"Values", 0, &value, nullptr)), "0x80041002");
    LONG flavor = 0;
    EXPECT_EQ(Of(L"Test_All", L"State", kAmended)->Get(L"Values", 0, nullptr, &flavor), S_OK);
    EXPECT_NE(flavor & WBEM_FLAVOR_AMENDED, 0);
}

TEST_F(QualifierFace, TextsComeInTheLanguageOfTheConnection) {
    EXPECT_THAT(StateTexts(), ElementsAre(L"Off", L"On"));
    Connect(L"MS_407");
    EXPECT_THAT(StateTexts(), ElementsAre(L"Aus", L"Ein"));
    Connect(L"ms_0407");
    EXPECT_THAT(StateTexts(), ElementsAre(L"Aus", L"Ein"));
    for (const auto* locale : {L"MS_409", L"MS_411", L"MS_", L"407", L"MS_4G7", L"MS_123456789", L""}) {
        Connect(locale);
        EXPECT_THAT(StateTexts(), ElementsAre(L"Off", L"On")) << Narrow(locale);
    }
}

TEST_F(QualifierFace, TheShippedSchemaSpeaksGerman) {
    Connect(L"MS_407");
    EXPECT_EQ(Texts(Of(L"Zorel_DiagResult", L"TestState", kAmended), L"Values").at(2), L"Bestanden");
}

TEST_F(QualifierFace, EnumeratedClassesCarryTheRequest) {
    CComPtr<IEnumWbemClassObject> answer;
    ASSERT_EQ(services->CreateClassEnum(_bstr_t(L"Test_Base").GetBSTR(), kAmended, nullptr, &answer), S_OK);
    CComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    ASSERT_EQ(answer->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned), S_OK);
    CComPtr<IWbemQualifierSet> set;
    ASSERT_EQ(object->GetPropertyQualifierSet(L"State", &set), S_OK);
    EXPECT_THAT(Texts(set, L"Values"), ElementsAre(L"Off", L"On"));
}

TEST_F(QualifierFace, AnInstanceHasOnlyThoseThatPassOn) {
    EXPECT_THAT(Names(Of(kAll, L"Name", kAmended)), testing::UnorderedElementsAre(L"Key", L"CIMTYPE"));
    EXPECT_THAT(Names(Of(kAll, L"State", kAmended)), ElementsAre(L"CIMTYPE"));
    LONG flavor = 0;
    EXPECT_EQ(Of(kAll, L"Name")->Get(L"key", 0, nullptr, &flavor), S_OK);
    EXPECT_EQ(flavor & WBEM_FLAVOR_MASK_ORIGIN, LONG{WBEM_FLAVOR_ORIGIN_PROPAGATED});
}

TEST_F(QualifierFace, EveryPropertyTellsItsType) {
    const std::pair<const wchar_t*, const wchar_t*> types[] = {
        {L"S8", L"sint8"},       {L"U8", L"uint8"},
        {L"S16", L"sint16"},     {L"U16", L"uint16"},
        {L"S32", L"sint32"},     {L"U32", L"uint32"},
        {L"S64", L"sint64"},     {L"U64", L"uint64"},
        {L"R32", L"real32"},     {L"R64", L"real64"},
        {L"Flag", L"boolean"},   {L"Letter", L"char16"},
        {L"Stamp", L"datetime"}, {L"Other", L"ref:Test_Base"},
        {L"Texts", L"string"}};
    for (const auto& [property, type] : types) {
        _variant_t value;
        EXPECT_EQ(Of(L"Test_All", property)->Get(L"CIMTYPE", 0, &value, nullptr), S_OK);
        EXPECT_EQ(value, _variant_t(type)) << Narrow(property);
    }
}

TEST_F(QualifierFace, ClassesAndMethodsHaveThem) {
    CComPtr<IWbemQualifierSet> set;
    ASSERT_EQ(Object(L"Test_Base")->GetQualifierSet(&set), S_OK);
    _variant_t value;
    ASSERT_EQ(set->Get(L"description", 0, &value, nullptr), S_OK);
    EXPECT_EQ(value, _variant_t(L"Everything begins here."));
    CComPtr<IWbemQualifierSet> method;
    ASSERT_EQ(Object(L"Test_Base")->GetMethodQualifierSet(L"Hello", &method), S_OK);
    value.Clear();
    ASSERT_EQ(method->Get(L"Description", 0, &value, nullptr), S_OK);
    EXPECT_EQ(value, _variant_t(L"Says hello."));
}

TEST_F(QualifierFace, Enumerates) {
    const auto set = Of(L"Test_All", L"State", kAmended);
    BSTR name = nullptr;
    _variant_t value;
    LONG flavor = 0;
    EXPECT_EQ(Code(set->Next(0, &name, &value, &flavor)), "0x8004101D");
    ASSERT_EQ(set->BeginEnumeration(0), S_OK);
    ASSERT_EQ(set->Next(0, &name, &value, &flavor), S_OK);
    EXPECT_STREQ(name, L"Description");
    EXPECT_EQ(value, _variant_t(L"State"));
    SysFreeString(name);
    EXPECT_EQ(set->Next(0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(set->Next(0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(set->Next(0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(Code(set->Next(0, nullptr, nullptr, nullptr)), "0x00040005");
    EXPECT_EQ(set->EndEnumeration(), S_OK);
    EXPECT_EQ(Code(set->Next(0, nullptr, nullptr, nullptr)), "0x8004101D");
    const auto passedOn = Of(kAll, L"Name");
    EXPECT_THAT(Names(passedOn, WBEM_FLAG_LOCAL_ONLY), ElementsAre());
    EXPECT_EQ(Names(passedOn, WBEM_FLAG_PROPAGATED_ONLY).size(), 2u);
}

TEST_F(QualifierFace, EnumeratesByOrigin) {
    const auto walk = [](IWbemQualifierSet* set, LONG origin) {
        std::vector<std::wstring> names;
        EXPECT_EQ(set->BeginEnumeration(origin), S_OK);
        for (BSTR name = nullptr; set->Next(0, &name, nullptr, nullptr) == S_OK;) {
            names.emplace_back(name);
            SysFreeString(name);
        }
        return names;
    };
    // What a property inherits as it is, its qualifiers inherit, too.
    const auto own = Of(L"Test_All", L"State");
    EXPECT_THAT(walk(own, 0), testing::UnorderedElementsAreArray(Names(own)));
    for (const LONG origin : {LONG{WBEM_FLAG_LOCAL_ONLY}, LONG{WBEM_FLAG_PROPAGATED_ONLY}}) {
        EXPECT_THAT(walk(own, origin), testing::ElementsAreArray(Names(own, origin)));
    }
    EXPECT_THAT(walk(own, WBEM_FLAG_LOCAL_ONLY), testing::Contains(L"ValueMap"));
    const auto passedOn = Of(kAll, L"Name");
    EXPECT_THAT(walk(passedOn, WBEM_FLAG_LOCAL_ONLY), ElementsAre());
    EXPECT_THAT(walk(passedOn, WBEM_FLAG_PROPAGATED_ONLY), testing::UnorderedElementsAre(L"Key", L"CIMTYPE"));
}

TEST_F(QualifierFace, ArgumentsAreCheckedAndChangesRefused) {
    const auto set = Of(L"Test_All", L"State");
    _variant_t value(true);
    EXPECT_EQ(Code(set->Get(nullptr, 0, &value, nullptr)), "0x80041008");
    EXPECT_EQ(Code(set->Get(L"Key", 1, &value, nullptr)), "0x80041008");
    EXPECT_EQ(Code(set->Get(L"Key", 0, &value, nullptr)), "0x80041002");
    EXPECT_EQ(Code(set->Put(L"Key", &value, 0)), "0x8004100C");
    EXPECT_EQ(Code(set->Delete(L"ValueMap")), "0x8004100C");
    EXPECT_EQ(Code(set->GetNames(0, nullptr)), "0x80041008");
    EXPECT_EQ(Code(set->BeginEnumeration(1)), "0x80041008");
    EXPECT_EQ(Code(set->Next(1, nullptr, nullptr, nullptr)), "0x80041008");
    const auto object = Object(kAll);
    CComPtr<IWbemQualifierSet> other;
    EXPECT_EQ(Code(object->GetQualifierSet(nullptr)), "0x80041008");
    EXPECT_EQ(Code(object->GetPropertyQualifierSet(L"Nothing", &other)), "0x80041002");
    EXPECT_EQ(Code(object->GetPropertyQualifierSet(L"__PATH", &other)), "0x80041030");
    EXPECT_EQ(Code(object->GetPropertyQualifierSet(nullptr, &other)), "0x80041008");
    EXPECT_EQ(other.p, nullptr);
}

} // namespace
