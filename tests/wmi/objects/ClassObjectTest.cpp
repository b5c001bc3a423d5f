// IWbemClassObject besides values: system properties, names, enumeration, copies, methods.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

class ClassFace : public ComTest {
  protected:
    CComPtr<IWbemClassObject> one = Object(kAll);
    CComPtr<IWbemClassObject> definition = Object(L"Test_All");

    std::wstring Text(IWbemClassObject* object, const wchar_t* name) {
        const auto value = Get(object, name);
        return V_VT(&value) == VT_NULL ? L"null" : std::wstring(_bstr_t(value));
    }
    std::vector<std::wstring> Names(LONG flags, const wchar_t* qualifier = nullptr,
                                    VARIANT* value = nullptr) {
        SAFEARRAY* names = nullptr;
        EXPECT_EQ(Code(one->GetNames(qualifier, flags, value, &names)), "0x00000000");
        return TakeNames(names);
    }
};

TEST_F(ClassFace, AnInstanceHasItsSystemProperties) {
    EXPECT_EQ(Text(one, L"__PATH"), L"\\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\"");
    EXPECT_EQ(Text(one, L"__RELPATH"), L"Test_All.Name=\"one\"");
    EXPECT_EQ(Text(one, L"__CLASS"), L"Test_All");
    EXPECT_EQ(Text(one, L"__SUPERCLASS"), L"Test_Base");
    EXPECT_EQ(Text(one, L"__DYNASTY"), L"Test_Base");
    EXPECT_EQ(Text(one, L"__SERVER"), L"TESTHOST");
    EXPECT_EQ(Text(one, L"__NAMESPACE"), L"ROOT\\MarloLUM2");
    EXPECT_EQ(Text(one, L"__GENUS"), L"2");
    EXPECT_EQ(Text(one, L"__PROPERTY_COUNT"), L"30");
    auto derivation = Get(one, L"__DERIVATION");
    ASSERT_EQ(V_VT(&derivation), VT_ARRAY | VT_BSTR);
    EXPECT_THAT(TakeNames(V_ARRAY(&derivation)), ElementsAre(L"Test_Base"));
    V_VT(&derivation) = VT_EMPTY;
    LONG flavor = 0;
    CIMTYPE type = 0;
    EXPECT_EQ(one->Get(L"__GENUS", 0, nullptr, &type, &flavor), S_OK);
    EXPECT_EQ(type, CIM_SINT32);
    EXPECT_EQ(flavor, LONG{WBEM_FLAVOR_ORIGIN_SYSTEM});
}

TEST_F(ClassFace, AClassHasItsSystemProperties) {
    EXPECT_EQ(Text(definition, L"__PATH"), L"\\\\TESTHOST\\ROOT\\MarloLUM2:Test_All");
    EXPECT_EQ(Text(definition, L"__GENUS"), L"1");
    const auto root = Object(L"Test_Base");
    EXPECT_EQ(Text(root, L"__SUPERCLASS"), L"null");
    EXPECT_EQ(Text(root, L"__DYNASTY"), L"Test_Base");
    auto derivation = Get(root, L"__DERIVATION");
    EXPECT_THAT(TakeNames(V_ARRAY(&derivation)), ElementsAre());
    V_VT(&derivation) = VT_EMPTY;
}

TEST_F(ClassFace, AParameterObjectBelongsToNoNamespace) {
    const auto parameters = InParameters(L"Test_All", L"Run");
    EXPECT_EQ(Text(parameters, L"__CLASS"), L"__PARAMETERS");
    EXPECT_EQ(Text(parameters, L"__PATH"), L"null");
    EXPECT_EQ(Text(parameters, L"__SERVER"), L"null");
    EXPECT_EQ(Text(parameters, L"__GENUS"), L"2");
    EXPECT_EQ(Text(parameters, L"Count"), L"null");
}

TEST_F(ClassFace, AnInstanceWithoutItsKeyHasNoPath) {
    CComPtr<IWbemClassObject> fresh;
    ASSERT_EQ(Object(L"Test_Lone")->SpawnInstance(0, &fresh), S_OK);
    EXPECT_EQ(Text(fresh, L"__PATH"), L"null");
    EXPECT_EQ(Text(fresh, L"__RELPATH"), L"null");
    ASSERT_EQ(Put(fresh, L"Number", I4(5)), S_OK);
    EXPECT_EQ(Text(fresh, L"__RELPATH"), L"Test_Lone.Number=5");
}

TEST_F(ClassFace, AnInstanceOfAClassWithoutKeysHasNoPath) {
    Use("class Test_Keyless { string Text; };");
    Connect();
    CComPtr<IWbemClassObject> fresh;
    ASSERT_EQ(Object(L"Test_Keyless")->SpawnInstance(0, &fresh), S_OK);
    EXPECT_EQ(Text(fresh, L"__PATH"), L"null");
    EXPECT_EQ(Text(fresh, L"__RELPATH"), L"null");
    EXPECT_EQ(Text(fresh, L"__CLASS"), L"Test_Keyless");
}

TEST_F(ClassFace, NamesComeByOriginAndKind) {
    EXPECT_EQ(Names(WBEM_FLAG_ALWAYS).size(), 40u);
    EXPECT_EQ(Names(WBEM_FLAG_NONSYSTEM_ONLY).size(), 30u);
    EXPECT_EQ(Names(WBEM_FLAG_SYSTEM_ONLY).size(), 10u);
    EXPECT_THAT(Names(WBEM_FLAG_KEYS_ONLY), ElementsAre(L"Name"));
    EXPECT_THAT(Names(WBEM_FLAG_REFS_ONLY), ElementsAre(L"Other"));
    EXPECT_THAT(Names(WBEM_FLAG_PROPAGATED_ONLY), ElementsAre(L"State"));
    EXPECT_EQ(Names(WBEM_FLAG_LOCAL_ONLY).size(), 29u);
    EXPECT_THAT(Names(WBEM_FLAG_LOCAL_ONLY), testing::Not(testing::Contains(L"State")));
    SAFEARRAY* names = nullptr;
    EXPECT_EQ(definition->GetNames(nullptr, WBEM_FLAG_PROPAGATED_ONLY, nullptr, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre(L"Name", L"Caption"));
    EXPECT_EQ(definition->GetNames(nullptr, WBEM_FLAG_LOCAL_ONLY, nullptr, &names), S_OK);
    const auto own = TakeNames(names);
    EXPECT_EQ(own.size(), 28u);
    EXPECT_THAT(own, testing::Not(testing::Contains(L"Caption")));
}

TEST_F(ClassFace, NamesComeByQualifier) {
    EXPECT_THAT(Names(WBEM_FLAG_ONLY_IF_TRUE | WBEM_FLAG_NONSYSTEM_ONLY, L"secret"),
                ElementsAre(L"Password"));
    EXPECT_EQ(Names(WBEM_FLAG_ONLY_IF_FALSE | WBEM_FLAG_NONSYSTEM_ONLY, L"Secret").size(), 29u);
    _variant_t yes(true);
    EXPECT_THAT(Names(WBEM_FLAG_ONLY_IF_IDENTICAL, L"Key", &yes), ElementsAre(L"Name"));
    _variant_t no(false);
    EXPECT_THAT(Names(WBEM_FLAG_ONLY_IF_IDENTICAL, L"Key", &no), ElementsAre());
    SAFEARRAY* names = nullptr;
    EXPECT_EQ(Code(one->GetNames(nullptr, WBEM_FLAG_ONLY_IF_TRUE, nullptr, &names)), "0x80041008");
    EXPECT_EQ(Code(one->GetNames(L"Key", WBEM_FLAG_ONLY_IF_IDENTICAL, nullptr, &names)), "0x80041008");
    EXPECT_EQ(Code(one->GetNames(nullptr, 0, nullptr, nullptr)), "0x80041008");
}

TEST_F(ClassFace, EnumeratesItsProperties) {
    BSTR name = nullptr;
    _variant_t value;
    EXPECT_EQ(Code(one->Next(0, &name, &value, nullptr, nullptr)), "0x8004101D");
    ASSERT_EQ(one->BeginEnumeration(WBEM_FLAG_NONSYSTEM_ONLY), S_OK);
    CIMTYPE type = 0;
    LONG flavor = 99;
    ASSERT_EQ(one->Next(0, &name, &value, &type, &flavor), S_OK);
    EXPECT_STREQ(name, L"Name");
    EXPECT_EQ(value, _variant_t(L"one"));
    EXPECT_EQ(type, CIM_STRING);
    EXPECT_EQ(flavor, LONG{WBEM_FLAVOR_ORIGIN_LOCAL});
    SysFreeString(name);
    int count = 1;
    while (one->Next(0, nullptr, nullptr, nullptr, nullptr) == S_OK) {
        ++count;
    }
    EXPECT_EQ(count, 30);
    EXPECT_EQ(Code(one->Next(0, nullptr, nullptr, nullptr, nullptr)), "0x00040005");
    EXPECT_EQ(one->EndEnumeration(), S_OK);
    EXPECT_EQ(Code(one->Next(0, nullptr, nullptr, nullptr, nullptr)), "0x8004101D");
    EXPECT_EQ(Code(one->Next(1, nullptr, nullptr, nullptr, nullptr)), "0x80041008");
    EXPECT_EQ(Code(one->BeginEnumeration(WBEM_FLAG_ONLY_IF_TRUE)), "0x80041008");
    ASSERT_EQ(one->BeginEnumeration(WBEM_FLAG_SYSTEM_ONLY), S_OK);
    value.Clear();
    ASSERT_EQ(one->Next(0, &name, &value, nullptr, &flavor), S_OK);
    EXPECT_STREQ(name, L"__GENUS");
    EXPECT_EQ(flavor, LONG{WBEM_FLAVOR_ORIGIN_SYSTEM});
    SysFreeString(name);
}

TEST_F(ClassFace, ACloneIsIndependent) {
    CComPtr<IWbemClassObject> copy;
    ASSERT_EQ(one->Clone(&copy), S_OK);
    EXPECT_EQ(Code(one->CompareTo(0, copy)), "0x00000000");
    ASSERT_EQ(Put(copy, L"Caption", L"changed"), S_OK);
    EXPECT_EQ(Text(one, L"Caption"), L"First");
    CComPtr<IWbemClassObject> second;
    ASSERT_EQ(copy->Clone(&second), S_OK);
    EXPECT_EQ(Text(second, L"Caption"), L"changed");
    EXPECT_EQ(Code(one->Clone(nullptr)), "0x80041008");
}

TEST_F(ClassFace, ChangesStayLocalUntilTheyArePut) {
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    EXPECT_EQ(Text(Object(kAll), L"Caption"), L"First");
}

TEST_F(ClassFace, Compares) {
    const auto two = Object(L"Test_All.Name=\"two\"");
    EXPECT_EQ(Code(one->CompareTo(0, two)), "0x00040003");
    EXPECT_EQ(Code(one->CompareTo(0, definition)), "0x00040003");
    EXPECT_EQ(Code(one->CompareTo(0, nullptr)), "0x80041008");
    CComPtr<IWbemClassObject> copy;
    ASSERT_EQ(one->Clone(&copy), S_OK);
    ASSERT_EQ(Put(copy, L"Caption", L"FIRST"), S_OK);
    EXPECT_EQ(Code(one->CompareTo(0, copy)), "0x00040003");
    EXPECT_EQ(Code(one->CompareTo(WBEM_FLAG_IGNORE_CASE, copy)), "0x00000000");
    CComPtr<IWbemClassObject> changed;
    ASSERT_EQ(definition->Clone(&changed), S_OK);
    ASSERT_EQ(Put(changed, L"Caption", L"other"), S_OK);
    EXPECT_EQ(Code(definition->CompareTo(0, changed)), "0x00040003");
    EXPECT_EQ(Code(definition->CompareTo(WBEM_FLAG_IGNORE_DEFAULT_VALUES, changed)), "0x00000000");
}

TEST_F(ClassFace, ObjectsOfDifferentClassesDiffer) {
    Use("class Test_Same { [Key] uint32 Number; string Text; };"
        "class Test_Other { [Key] uint32 Number; string Story; };"
        "instance of Test_Same { Number = 1; Text = \"alone\"; };"
        "instance of Test_Other { Number = 1; Story = \"alone\"; };");
    Connect();
    const auto lone = Object(L"Test_Lone=1");
    const auto same = Object(L"Test_Same=1");
    const auto other = Object(L"Test_Other=1");
    EXPECT_EQ(Code(lone->CompareTo(0, same)), "0x00040003");
    EXPECT_EQ(Code(lone->CompareTo(WBEM_FLAG_IGNORE_CLASS, same)), "0x00000000");
    EXPECT_EQ(Code(lone->CompareTo(WBEM_FLAG_IGNORE_CLASS, other)), "0x00040003") << "other properties";
    EXPECT_EQ(Code(lone->CompareTo(WBEM_FLAG_IGNORE_CLASS, Object(kAll))), "0x00040003") << "more of them";
}

TEST_F(ClassFace, SpawnsInstancesWithDefaults) {
    CComPtr<IWbemClassObject> fresh;
    ASSERT_EQ(Code(definition->SpawnInstance(0, &fresh)), "0x00000000");
    EXPECT_EQ(Text(fresh, L"Caption"), L"none");
    EXPECT_EQ(Text(fresh, L"State"), L"1");
    EXPECT_EQ(Text(fresh, L"Name"), L"null");
    CComPtr<IWbemClassObject> again;
    EXPECT_EQ(Code(fresh->SpawnInstance(0, &again)), "0x8004101E");
    EXPECT_EQ(Code(definition->SpawnInstance(1, &again)), "0x80041008");
    EXPECT_EQ(Code(definition->SpawnInstance(0, nullptr)), "0x80041008");
    EXPECT_EQ(Code(definition->SpawnDerivedClass(0, &again)), "0x8004100C");
    ASSERT_EQ(Put(definition, L"Caption", L"given"), S_OK);
    ASSERT_EQ(definition->SpawnInstance(0, &again), S_OK);
    EXPECT_EQ(Text(again, L"Caption"), L"given");
}

TEST_F(ClassFace, DeleteResetsToTheDefault) {
    EXPECT_EQ(Code(one->Delete(L"Caption")), "0x00040002");
    EXPECT_EQ(Text(one, L"Caption"), L"none");
    EXPECT_EQ(Code(one->Delete(L"Nothing")), "0x80041002");
    EXPECT_EQ(Code(one->Delete(L"__PATH")), "0x80041030");
    EXPECT_EQ(Code(one->Delete(nullptr)), "0x80041008");
    EXPECT_EQ(Code(definition->Delete(L"Caption")), "0x8004100C");
}

TEST_F(ClassFace, TellsOriginsAndAncestors) {
    BSTR origin = nullptr;
    ASSERT_EQ(one->GetPropertyOrigin(L"Name", &origin), S_OK);
    EXPECT_STREQ(origin, L"Test_Base");
    SysFreeString(origin);
    ASSERT_EQ(one->GetPropertyOrigin(L"S8", &origin), S_OK);
    EXPECT_STREQ(origin, L"Test_All");
    SysFreeString(origin);
    ASSERT_EQ(one->GetPropertyOrigin(L"__PATH", &origin), S_OK);
    EXPECT_STREQ(origin, L"___SYSTEM");
    SysFreeString(origin);
    EXPECT_EQ(Code(one->GetPropertyOrigin(L"Nothing", &origin)), "0x80041002");
    EXPECT_EQ(Code(one->GetPropertyOrigin(L"__NOTHING", &origin)), "0x80041002");
    ASSERT_EQ(definition->GetMethodOrigin(L"Hello", &origin), S_OK);
    EXPECT_STREQ(origin, L"Test_Base");
    SysFreeString(origin);
    EXPECT_EQ(Code(definition->GetMethodOrigin(L"Nothing", &origin)), "0x80041002");
    EXPECT_EQ(Code(definition->GetMethodOrigin(nullptr, &origin)), "0x80041008");
    EXPECT_EQ(Code(definition->GetMethodOrigin(L"Hello", nullptr)), "0x80041008");
    EXPECT_EQ(Code(one->GetPropertyOrigin(nullptr, &origin)), "0x80041008");
    EXPECT_EQ(Code(one->GetPropertyOrigin(L"Name", nullptr)), "0x80041008");
    EXPECT_EQ(Code(one->InheritsFrom(L"test_base")), "0x00000000");
    EXPECT_EQ(Code(one->InheritsFrom(L"Test_All")), "0x00000000");
    EXPECT_EQ(Code(one->InheritsFrom(L"Test_Lone")), "0x00000001");
    EXPECT_EQ(Code(one->InheritsFrom(nullptr)), "0x80041008");
}

TEST_F(ClassFace, GivesItsText) {
    BSTR text = nullptr;
    ASSERT_EQ(one->GetObjectText(0, &text), S_OK);
    EXPECT_THAT(Narrow(text), testing::HasSubstr("instance of Test_All"));
    SysFreeString(text);
    ASSERT_EQ(definition->GetObjectText(0, &text), S_OK);
    EXPECT_THAT(Narrow(text), testing::HasSubstr("class Test_All"));
    SysFreeString(text);
    EXPECT_EQ(Code(one->GetObjectText(2, &text)), "0x80041008");
    EXPECT_EQ(Code(one->GetObjectText(0, nullptr)), "0x80041008");
}

TEST_F(ClassFace, HandsOutSignatures) {
    CComPtr<IWbemClassObject> in;
    CComPtr<IWbemClassObject> out;
    ASSERT_EQ(Code(definition->GetMethod(L"run", 0, &in, &out)), "0x00000000");
    SAFEARRAY* names = nullptr;
    ASSERT_EQ(in->GetNames(nullptr, WBEM_FLAG_NONSYSTEM_ONLY, nullptr, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre(L"Count", L"Password", L"Data", L"Names"));
    ASSERT_EQ(out->GetNames(nullptr, WBEM_FLAG_NONSYSTEM_ONLY, nullptr, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre(L"Total", L"ReturnValue"));
    CIMTYPE type = 0;
    EXPECT_EQ(out->Get(L"ReturnValue", 0, nullptr, &type, nullptr), S_OK);
    EXPECT_EQ(type, CIM_UINT32);
    EXPECT_EQ(Code(definition->GetMethod(L"Run", 0, nullptr, nullptr)), "0x00000000");
}

TEST_F(ClassFace, AMethodWithoutInParametersHasNoInSignature) {
    CComPtr<IWbemClassObject> in;
    CComPtr<IWbemClassObject> out;
    ASSERT_EQ(definition->GetMethod(L"Tell", 0, &in, &out), S_OK);
    EXPECT_EQ(in.p, nullptr);
    ASSERT_NE(out.p, nullptr);
    CIMTYPE type = 0;
    EXPECT_EQ(out->Get(L"ReturnValue", 0, nullptr, &type, nullptr), S_OK);
    EXPECT_EQ(type, CIM_STRING);
}

TEST_F(ClassFace, AMethodThatReturnsNothingHasNoReturnValue) {
    Use("class Test_Quiet { void Forget([In] string Name, [In(false), Out] uint32 Left); void Sleep(); };");
    Connect();
    const auto quiet = Object(L"Test_Quiet");
    CComPtr<IWbemClassObject> out;
    ASSERT_EQ(quiet->GetMethod(L"Forget", 0, nullptr, &out), S_OK);
    SAFEARRAY* names = nullptr;
    ASSERT_EQ(out->GetNames(nullptr, WBEM_FLAG_NONSYSTEM_ONLY, nullptr, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre(L"Left"));
    out.Release();
    ASSERT_EQ(quiet->GetMethod(L"Sleep", 0, nullptr, &out), S_OK);
    EXPECT_EQ(out.p, nullptr);
}

TEST_F(ClassFace, OnlyAClassHasMethods) {
    CComPtr<IWbemClassObject> in;
    CComPtr<IWbemQualifierSet> qualifiers;
    EXPECT_EQ(Code(one->GetMethod(L"Run", 0, &in, nullptr)), "0x8004101E");
    EXPECT_EQ(Code(one->BeginMethodEnumeration(0)), "0x8004101E");
    EXPECT_EQ(Code(one->GetMethodQualifierSet(L"Run", &qualifiers)), "0x8004101E");
    EXPECT_EQ(Code(definition->GetMethod(L"Nothing", 0, &in, nullptr)), "0x80041002");
    EXPECT_EQ(Code(definition->GetMethod(nullptr, 0, &in, nullptr)), "0x80041008");
    EXPECT_EQ(Code(definition->GetMethod(L"Run", 1, &in, nullptr)), "0x80041008");
    EXPECT_EQ(Code(definition->GetMethodQualifierSet(L"Nothing", &qualifiers)), "0x80041002");
    EXPECT_EQ(Code(definition->GetMethodQualifierSet(nullptr, &qualifiers)), "0x80041008");
    EXPECT_EQ(Code(definition->GetMethodQualifierSet(L"Run", nullptr)), "0x80041008");
    EXPECT_EQ(qualifiers.p, nullptr);
    EXPECT_EQ(Code(definition->PutMethod(L"New", 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(definition->DeleteMethod(L"Run")), "0x8004100C");
}

TEST_F(ClassFace, EnumeratesMethods) {
    const auto walk = [this](LONG flags) {
        std::vector<std::wstring> names;
        EXPECT_EQ(definition->BeginMethodEnumeration(flags), S_OK);
        for (;;) {
            BSTR name = nullptr;
            CComPtr<IWbemClassObject> in;
            CComPtr<IWbemClassObject> out;
            const HRESULT result = definition->NextMethod(0, &name, &in, &out);
            if (result != S_OK) {
                EXPECT_EQ(Code(result), "0x00040005");
                break;
            }
            EXPECT_NE(out.p, nullptr);
            names.emplace_back(name);
            SysFreeString(name);
        }
        EXPECT_EQ(definition->EndMethodEnumeration(), S_OK);
        return names;
    };
    EXPECT_THAT(walk(0), testing::UnorderedElementsAre(L"Hello", L"Run", L"Tell"));
    EXPECT_THAT(walk(WBEM_FLAG_LOCAL_ONLY), ElementsAre(L"Run", L"Tell"));
    EXPECT_THAT(walk(WBEM_FLAG_PROPAGATED_ONLY), ElementsAre(L"Hello"));
    EXPECT_EQ(Code(definition->NextMethod(0, nullptr, nullptr, nullptr)), "0x8004101D");
    EXPECT_EQ(Code(definition->BeginMethodEnumeration(4)), "0x80041008");
    ASSERT_EQ(definition->BeginMethodEnumeration(0), S_OK);
    EXPECT_EQ(Code(definition->NextMethod(1, nullptr, nullptr, nullptr)), "0x80041008");
}

} // namespace
