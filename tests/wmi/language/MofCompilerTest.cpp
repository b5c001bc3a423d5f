// What MOF can say, construct by construct.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

class MofCompiler : public ::testing::Test {
  protected:
    void Compile(const std::string& text) { CompileMof(m_repository, text, "test.mof"); }
    ClassPtr Class(std::wstring_view name) const { return m_repository.FindClass(name); }
    InstancePtr Only(std::wstring_view className) const {
        const std::vector<InstancePtr> all = m_repository.Instances(className);
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? std::make_shared<Instance>() : all.front();
    }
    /// The default that `text` gives to a property of a fresh class.
    Value Default(const std::string& declaration) {
        const std::string name = "D" + std::to_string(++m_count);
        Compile("class " + name + " { " + declaration + " };");
        const ClassPtr definition = Class(std::wstring(name.begin(), name.end()));
        return definition && !definition->properties.empty() ? definition->properties[0].defaultValue
                                                             : Value();
    }

    Repository m_repository{L"HOST", L"ROOT\\Test"};
    int m_count = 0;
};

TEST_F(MofCompiler, TakesNothingABomAndComments) {
    Compile("");
    Compile("\xEF\xBB\xBF// line\r\n/* block\n * of lines **/ /**/");
    Compile("\xEF\xBB\xBF"
            "class A { };");
    EXPECT_TRUE(Class(L"a"));
}

TEST_F(MofCompiler, KnowsEveryType) {
    Compile("class A { uint8 a; SINT8 b; uint16 c; sint16 d; uint32 e; sint32 f; uint64 g; sint64 h;"
            " real32 i; real64 j; boolean k; string l; datetime m; char16 n; A REF o; };");
    const std::vector<CIMTYPE> expected = {CIM_UINT8,   CIM_SINT8,  CIM_UINT16,   CIM_SINT16, CIM_UINT32,
                                           CIM_SINT32,  CIM_UINT64, CIM_SINT64,   CIM_REAL32, CIM_REAL64,
                                           CIM_BOOLEAN, CIM_STRING, CIM_DATETIME, CIM_CHAR16, CIM_REFERENCE};
    std::vector<CIMTYPE> types;
    for (const Property& property : Class(L"A")->properties) {
        types.push_back(property.type);
        EXPECT_EQ(property.origin, L"A");
    }
    EXPECT_EQ(types, expected);
    EXPECT_EQ(Class(L"A")->FindProperty(L"o")->referenceClass, L"A");
}

TEST_F(MofCompiler, KnowsArrays) {
    Compile("class A { uint32 X[]; string Y[4] = {\"a\", NULL, \"b\"}; boolean Z[] = {}; };");
    const ClassPtr a = Class(L"A");
    EXPECT_EQ(a->properties[0].type, static_cast<CIMTYPE>(CIM_UINT32) | kArrayFlag);
    EXPECT_EQ(a->properties[0].arrayLimit, 0u);
    EXPECT_EQ(a->properties[1].arrayLimit, 4u);
    EXPECT_EQ(a->properties[1].defaultValue, Texts({L"a", nullptr, L"b"}));
    EXPECT_EQ(a->properties[2].defaultValue, Value(Value::Array{}));
}

TEST_F(MofCompiler, ReadsNumbersOfEveryBase) {
    EXPECT_EQ(Default("uint32 x = 0;"), Value::Unsigned(0));
    EXPECT_EQ(Default("uint32 x = 4294967295;"), Value::Unsigned(UINT32_MAX));
    EXPECT_EQ(Default("uint8 x = 0xfF;"), Value::Unsigned(255));
    EXPECT_EQ(Default("uint8 x = 0377;"), Value::Unsigned(255));
    EXPECT_EQ(Default("uint8 x = 10000001b;"), Value::Unsigned(129));
    EXPECT_EQ(Default("uint8 x = 1B;"), Value::Unsigned(1));
    EXPECT_EQ(Default("sint8 x = -128;"), Value::Signed(-128));
    EXPECT_EQ(Default("sint8 x = +127;"), Value::Signed(127));
    EXPECT_EQ(Default("sint64 x = -9223372036854775808;"), Value::Signed(INT64_MIN));
    EXPECT_EQ(Default("uint64 x = 18446744073709551615;"), Value::Unsigned(UINT64_MAX));
    EXPECT_EQ(Default("sint32 x = -0x10;"), Value::Signed(-16));
    EXPECT_EQ(Default("real64 x = 1.5;"), Value(Scalar(1.5)));
    EXPECT_EQ(Default("real64 x = -.25E+2;"), Value(Scalar(-25.0)));
    EXPECT_EQ(Default("real64 x = 3;"), Value(Scalar(3.0)));
    EXPECT_EQ(Default("real32 x = 0.1;"), Value(Scalar(static_cast<double>(0.1f))));
}

TEST_F(MofCompiler, ReadsTheOtherLiterals) {
    EXPECT_EQ(Default("boolean x = TRUE;"), Value::Bool(true));
    EXPECT_EQ(Default("boolean x = false;"), Value::Bool(false));
    EXPECT_EQ(Default("string x = NULL;"), Value());
    EXPECT_EQ(Default("char16 x = 'x';"), Value::Unsigned(L'x'));
    EXPECT_EQ(Default("char16 x = '\\'';"), Value::Unsigned(L'\''));
    EXPECT_EQ(Default("char16 x = '\\x263A';"), Value::Unsigned(0x263A));
    EXPECT_EQ(Default("char16 x = '\xC3\xA4';"), Value::Unsigned(0xE4));
    EXPECT_EQ(Default("char16 x = 65;"), Value::Unsigned(65));
    EXPECT_EQ(Default("datetime x = \"20240131235959.123456+060\";"),
              Value::Text(L"20240131235959.123456+060"));
}

TEST_F(MofCompiler, ReadsStringsWithEscapesAndInPieces) {
    EXPECT_EQ(Default(R"(string x = "a\tb\n\"q\"\\ \'\b\f\r";)"), Value::Text(L"a\tb\n\"q\"\\ '\b\f\r"));
    EXPECT_EQ(Default(R"(string x = "\x41\x00e4\X20AC!";)"), Value::Text(L"Aä€!"));
    EXPECT_EQ(Default(R"(string x = "\x00e41";)"), Value::Text(L"ä1"));
    EXPECT_EQ(Default("string x = \"one \" \"two\"\n  // between\n  \" three\" /* and */ \"\";"),
              Value::Text(L"one two three"));
    EXPECT_EQ(Default("string x = \"Gr\xC3\xB6\xC3\x9F"
                      "e \xF0\x9F\x98\x80\";"),
              Value::Text(L"Größe 😀"));
    EXPECT_EQ(Default(R"(string x = "\xD83D" "\xDE00";)"), Value::Text(L"😀"));
    EXPECT_EQ(Default(R"(string x = "// no comment /* none */";)"), Value::Text(L"// no comment /* none */"));
}

TEST_F(MofCompiler, InheritsPropertiesMethodsAndKeys) {
    Compile("class A { [Key] string Id; uint32 X = 1; uint32 Run(); };"
            "class B : A { uint32 Y; uint32 Stop(); };"
            "class C : b { uint32 X = 5; uint32 Run([In] uint32 How); };");
    const ClassPtr c = Class(L"C");
    ASSERT_EQ(c->properties.size(), 3u);
    EXPECT_EQ(c->superclass, L"B");
    EXPECT_THAT(c->ancestors, ::testing::ElementsAre(L"B", L"A"));
    EXPECT_TRUE(c->properties[0].IsKey());
    EXPECT_TRUE(c->properties[0].inherited);
    EXPECT_EQ(c->properties[0].origin, L"A");
    EXPECT_EQ(c->properties[1].name, L"X");
    EXPECT_EQ(c->properties[1].defaultValue, Value::Unsigned(5));
    EXPECT_EQ(c->properties[1].origin, L"A");
    EXPECT_FALSE(c->properties[1].inherited);
    EXPECT_EQ(Class(L"B")->properties[1].defaultValue, Value::Unsigned(1));
    ASSERT_EQ(c->methods.size(), 2u);
    EXPECT_EQ(c->methods[0].in.size(), 1u);
    EXPECT_EQ(c->methods[0].origin, L"C");
    EXPECT_EQ(c->methods[1].origin, L"B");
    EXPECT_TRUE(c->IsA(L"a"));
    EXPECT_FALSE(Class(L"A")->IsA(L"C"));
}

TEST_F(MofCompiler, PropagatesQualifiersByTheirFlavor) {
    Compile("Qualifier Deep : string = null, Scope(any), Flavor(ToSubclass);"
            "Qualifier Flat : string = null, Scope(any), Flavor(Restricted);"
            "[Abstract, Association, Deep(\"d\"), Flat(\"f\")] class A"
            "  { [Key, Deep(\"p\"), Flat(\"q\")] string Id; [Deep(\"m\"), Flat(\"n\")] uint32 Run(); };"
            "class B : A { };"
            "[Deep(\"changed\")] class C : A { [Deep(\"own\")] string Id; };");
    const ClassPtr b = Class(L"B");
    EXPECT_FALSE(b->qualifiers.Has(L"Abstract"));
    EXPECT_TRUE(b->IsAssociation());
    EXPECT_EQ(b->qualifiers.Find(L"Deep")->value, Value::Text(L"d"));
    EXPECT_NE(b->qualifiers.Find(L"Deep")->flavor & WBEM_FLAVOR_ORIGIN_PROPAGATED, 0);
    EXPECT_EQ(Class(L"A")->qualifiers.Find(L"Deep")->flavor & WBEM_FLAVOR_ORIGIN_PROPAGATED, 0);
    EXPECT_EQ(b->qualifiers.Find(L"Flat"), nullptr);
    EXPECT_EQ(b->properties[0].qualifiers.Find(L"Flat"), nullptr);
    EXPECT_EQ(b->properties[0].qualifiers.Find(L"Deep")->value, Value::Text(L"p"));
    EXPECT_EQ(b->methods[0].qualifiers.Find(L"Flat"), nullptr);
    const ClassPtr c = Class(L"C");
    EXPECT_EQ(c->qualifiers.Find(L"Deep")->value, Value::Text(L"changed"));
    EXPECT_EQ(c->properties[0].qualifiers.Find(L"Deep")->value, Value::Text(L"own"));
    EXPECT_TRUE(c->properties[0].IsKey());
}

TEST_F(MofCompiler, ReadsQualifierDeclarations) {
    Compile(
        "Qualifier Level : uint8[] = {1, 2}, Scope(property, method), Flavor(DisableOverride, ToSubclass);"
        "Qualifier Plain : boolean;");
    const auto level = m_repository.FindQualifierDeclaration(L"LEVEL");
    ASSERT_TRUE(level);
    EXPECT_EQ(level->type, static_cast<CIMTYPE>(CIM_UINT8) | kArrayFlag);
    EXPECT_EQ(level->defaultValue, Value(Value::Array{Scalar(std::uint64_t{1}), Scalar(std::uint64_t{2})}));
    EXPECT_EQ(level->scope, unsigned{ScopeProperty} | unsigned{ScopeMethod});
    EXPECT_NE(level->flavor & WBEM_FLAVOR_NOT_OVERRIDABLE, 0);
    Compile("class A { [Level{3}] string x; };");
    EXPECT_EQ(Class(L"A")->properties[0].qualifiers.Find(L"level")->value,
              Value(Value::Array{Scalar(std::uint64_t{3})}));
    EXPECT_FALSE(m_repository.FindQualifierDeclaration(L"Other"));
    ASSERT_EQ(m_repository.QualifierDeclarations().size(), 2u);
    EXPECT_EQ(m_repository.QualifierDeclarations()[1].name, L"Plain");
}

TEST_F(MofCompiler, InfersTheTypeOfAnUndeclaredQualifier) {
    Compile("[A, B(false), C(5), D(5000000000), E(\"t\"), F{\"a\",\"b\"}, G(1.5), H{1,2}, "
            "I(18446744073709551615)]"
            " class X { };");
    const Qualifiers& all = Class(L"X")->qualifiers;
    const auto type = [&all](const wchar_t* name) { return all.Find(name)->type; };
    EXPECT_EQ(type(L"A"), CIM_BOOLEAN);
    EXPECT_TRUE(all.Has(L"A"));
    EXPECT_FALSE(all.Has(L"B"));
    EXPECT_EQ(type(L"C"), CIM_SINT32);
    EXPECT_EQ(type(L"D"), CIM_SINT64);
    EXPECT_EQ(type(L"E"), CIM_STRING);
    EXPECT_EQ(type(L"F"), static_cast<CIMTYPE>(CIM_STRING) | kArrayFlag);
    EXPECT_EQ(type(L"G"), CIM_REAL64);
    EXPECT_EQ(type(L"H"), static_cast<CIMTYPE>(CIM_SINT32) | kArrayFlag);
    EXPECT_EQ(type(L"I"), CIM_UINT64);
}

TEST_F(MofCompiler, TakesFlavorsWhereAQualifierIsUsed) {
    Compile("[A : DisableOverride, B(\"x\") : Restricted ToInstance] class X { };");
    const Qualifiers& all = Class(L"X")->qualifiers;
    EXPECT_NE(all.Find(L"A")->flavor & WBEM_FLAVOR_NOT_OVERRIDABLE, 0);
    EXPECT_EQ(all.Find(L"B")->flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS, 0);
    EXPECT_NE(all.Find(L"B")->flavor & WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE, 0);
    EXPECT_FALSE(all.Find(L"B")->amended);
}

TEST_F(MofCompiler, KeepsTranslatedTextsByLanguage) {
    Compile("class A {"
            " [Values{\"Off\",\"On\"} : Translatable, Values_de_DE{\"Aus\",\"Ein\"},"
            "  Values_es_ES{\"No\",\"S\xC3\xAD\"}, ValueMap{\"0\",\"1\"}] uint8 State;"
            " [Description_fr_FR(\"Vitesse\"), Description(\"Speed\")] uint32 Speed;"
            " [Description(\"Amended\") : Amended] uint32 X;"
            " [Values{\"a\"}] uint32 Data; };");
    const Qualifier* values = Class(L"A")->FindProperty(L"State")->qualifiers.Find(L"Values");
    ASSERT_NE(values, nullptr);
    EXPECT_TRUE(values->amended);
    EXPECT_NE(values->flavor & WBEM_FLAVOR_AMENDED, 0);
    EXPECT_EQ(values->value, Texts({L"Off", L"On"}));
    EXPECT_EQ(values->localized.at(0x407), Texts({L"Aus", L"Ein"}));
    EXPECT_EQ(values->localized.at(0xC0A), Texts({L"No", L"Sí"}));
    EXPECT_EQ(values->localized.at(0x40A), Texts({L"No", L"Sí"}));
    EXPECT_EQ(Class(L"A")->FindProperty(L"State")->qualifiers.All().size(), 2u);
    const Qualifier* description = Class(L"A")->FindProperty(L"Speed")->qualifiers.Find(L"Description");
    EXPECT_TRUE(description->amended);
    EXPECT_EQ(description->localized.at(0x40C), Value::Text(L"Vitesse"));
    EXPECT_TRUE(Class(L"A")->FindProperty(L"X")->qualifiers.Find(L"Description")->amended);
    EXPECT_FALSE(Class(L"A")->FindProperty(L"Data")->qualifiers.Find(L"Values")->amended);
}

TEST_F(MofCompiler, DoesNotAmendWhatOnlyItsDeclarationCallsTranslatable) {
    Compile("Qualifier Values : string[], Scope(any), Flavor(Translatable);"
            "class A { [Values{\"x\"}] uint8 State; };");
    EXPECT_FALSE(Class(L"A")->properties[0].qualifiers.Find(L"Values")->amended);
}

struct LocaleCase {
    const char* locale;
    LCID language;
};

/// GoogleTest would show the bytes, those between the members included.
void PrintTo(const LocaleCase& locale, std::ostream* out) {
    *out << locale.locale << " as " << locale.language;
}

class MofLocale : public MofCompiler, public ::testing::WithParamInterface<LocaleCase> {};

TEST_P(MofLocale, HasItsWindowsLanguage) {
    Compile(std::string("[Description(\"x\"), Description_") + GetParam().locale + "(\"y\")] class A { };");
    EXPECT_EQ(Class(L"A")->qualifiers.Find(L"Description")->localized.count(GetParam().language), 1u);
}

INSTANTIATE_TEST_SUITE_P(Locales, MofLocale,
                         ::testing::Values(LocaleCase{"de_DE", 0x407}, LocaleCase{"fr_FR", 0x40C},
                                           LocaleCase{"it_IT", 0x410}, LocaleCase{"ja_JP", 0x411},
                                           LocaleCase{"ko_KR", 0x412}, LocaleCase{"pt_BR", 0x416},
                                           LocaleCase{"zh_CN", 0x804}, LocaleCase{"zh_TW", 0x404},
                                           LocaleCase{"es_ES", 0xC0A}, LocaleCase{"en_US", 0x409}));

TEST_F(MofCompiler, SortsParametersByDirection) {
    Compile("class A { [Static] uint32 Run([In] uint32 a, [Out] string b[], [In, Out] A REF c,"
            " [In(false), Out] uint8 d, uint16 e); void Stop(); boolean Is(); };");
    const Method* run = Class(L"A")->FindMethod(L"RUN");
    ASSERT_NE(run, nullptr);
    const auto names = [](const std::vector<Property>& parameters) {
        std::vector<std::wstring> result;
        for (const Property& parameter : parameters) {
            result.push_back(parameter.name);
        }
        return result;
    };
    EXPECT_THAT(names(run->in), ::testing::ElementsAre(L"a", L"c", L"e"));
    EXPECT_THAT(names(run->out), ::testing::ElementsAre(L"b", L"c", L"d"));
    EXPECT_EQ(run->out[0].type, static_cast<CIMTYPE>(CIM_STRING) | kArrayFlag);
    EXPECT_EQ(run->in[1].referenceClass, L"A");
    EXPECT_TRUE(run->qualifiers.Has(L"Static"));
    EXPECT_TRUE(Class(L"A")->FindMethod(L"Stop")->returnsVoid);
    EXPECT_EQ(Class(L"A")->FindMethod(L"Is")->returnType, CIM_BOOLEAN);
    EXPECT_FALSE(Class(L"A")->FindMethod(L"Is")->returnsVoid);
}

TEST_F(MofCompiler, MakesInstances) {
    Compile("class A { [Key] string Id; uint32 Speed = 10; string Names[]; boolean On = TRUE; };"
            "[Description(\"repeated\")] INSTANCE of a { ID = \"one\"; Names = {\"x\", NULL};"
            " [Key] On = NULL; };");
    const InstancePtr instance = Only(L"A");
    EXPECT_EQ(instance->Text(L"Id"), L"one");
    EXPECT_EQ(instance->Number(L"Speed"), 10);
    EXPECT_EQ(*instance->Find(L"Names"), Texts({L"x", nullptr}));
    EXPECT_TRUE(instance->Find(L"On")->IsNull());
}

constexpr const char* kGraph = "class N { [Key] string Id; N REF Next; };"
                               "[Association] class L { [Key] N REF From; [Key] N REF To; };"
                               "class M { [Key] L REF Link; };";

TEST_F(MofCompiler, ResolvesAliasesBackAndForth) {
    Compile(std::string(kGraph) + "instance of L { From = $a; To = $b; };"
                                  "instance of N as $a { Id = \"1\"; Next = $B; };"
                                  "instance of N as $b { Id = \"q\\\"2\"; Next = $b1; };"
                                  "instance of N as $b1 { Id = \"3\"; };");
    const InstancePtr link = Only(L"L");
    EXPECT_EQ(link->Text(L"From"), L"N.Id=\"1\"");
    EXPECT_EQ(link->Text(L"To"), L"N.Id=\"q\\\"2\"");
    EXPECT_EQ(m_repository.FindInstance(L"N='1'")->Text(L"Next"), L"N.Id=\"q\\\"2\"");
    EXPECT_TRUE(m_repository.FindInstance(link->Text(L"To")));
}

TEST_F(MofCompiler, ResolvesAliasesOfInstancesKeyedByAliases) {
    Compile(std::string(kGraph) + "instance of M { Link = $l; };"
                                  "instance of L as $l { From = $a; To = $a; };"
                                  "instance of N as $a { Id = \"1\"; };");
    EXPECT_TRUE(m_repository.FindInstance(Only(L"M")->Text(L"Link")));
}

TEST_F(MofCompiler, ResolvesInstancesThatReferToEachOther) {
    Compile(std::string(kGraph) + "instance of N as $a { Id = \"1\"; Next = $b; };"
                                  "instance of N as $b { Id = \"2\"; Next = $a; };"
                                  "instance of N as $c { Id = \"3\"; Next = $c; };");
    EXPECT_EQ(m_repository.FindInstance(L"N='1'")->Text(L"Next"), L"N.Id=\"2\"");
    EXPECT_EQ(m_repository.FindInstance(L"N='2'")->Text(L"Next"), L"N.Id=\"1\"");
    EXPECT_EQ(m_repository.FindInstance(L"N='3'")->Text(L"Next"), L"N.Id=\"3\"");
}

TEST_F(MofCompiler, TakesReferencesAsPathTexts) {
    Compile(std::string(kGraph) +
            R"(instance of L { From = "N.Id=\"1\""; To = "\\\\.\\root\\test:N='2'"; };)");
    EXPECT_EQ(Only(L"L")->Text(L"To"), L"\\\\.\\root\\test:N='2'");
}

TEST_F(MofCompiler, LetsALaterTextReplaceAnInstanceButNotTheSame) {
    Compile("class A { [Key] string Id; uint32 X; };");
    Compile("instance of A { Id = \"1\"; X = 1; };");
    Compile("instance of A { Id = \"1\"; X = 2; };");
    EXPECT_EQ(Only(L"A")->Number(L"X"), 2);
    EXPECT_THROW(Compile("instance of A { Id = \"1\"; }; instance of A { Id = \"1\"; };"), MofError);
}

TEST_F(MofCompiler, IgnoresPragmasItDoesNotNeed) {
    Compile("#pragma namespace (\"\\\\\\\\.\\\\root\\\\other\")\n#pragma locale (\"en_US\")\n"
            "#pragma instancelocale(\"de_DE\")\n#pragma source (\"x\")\n#pragma autorecover\n"
            "#pragma deleteclass(\"X\", NOFAIL)\n#PRAGMA unheard (\"y\" 5)\nclass A { };");
    EXPECT_TRUE(Class(L"A"));
}

TEST_F(MofCompiler, KeepsWhatStoodBeforeAnError) {
    EXPECT_THROW(Compile("class A { [Key] string Id; }; instance of A { Id = \"1\"; }; nonsense"), MofError);
    EXPECT_EQ(m_repository.Instances(L"A").size(), 1u);
}

TEST_F(MofCompiler, TakesKeywordsAndNamesInAnyCase) {
    Compile("QUALIFIER q : BOOLEAN = True, SCOPE(ANY), FLAVOR(enableoverride);"
            "CLASS a { [KEY] STRING id; A ref other; }; INSTANCE OF A AS $x { ID = \"1\"; OTHER = $X; };");
    EXPECT_EQ(Only(L"A")->Text(L"Other"), L"a.id=\"1\"");
}

TEST_F(MofCompiler, InfersTheTypeOfAQualifierThatIsNotDeclared) {
    Compile("[Small(5), Large(9000000000), Huge(18446744073709551615), Broken(1.5), Letter('x'), Yes(TRUE),"
            " Word(\"w\"), Words{\"a\", NULL}, Letters{'x', 'y'}] class A { };");
    const ClassPtr a = Class(L"A");
    const auto type = [&](const wchar_t* name) { return a->qualifiers.Find(name)->type; };
    EXPECT_EQ(type(L"Small"), CIM_SINT32);
    EXPECT_EQ(type(L"Large"), CIM_SINT64);
    EXPECT_EQ(type(L"Huge"), CIM_UINT64);
    EXPECT_EQ(type(L"Broken"), CIM_REAL64);
    EXPECT_EQ(type(L"Letter"), CIM_CHAR16);
    EXPECT_EQ(type(L"Yes"), CIM_BOOLEAN);
    EXPECT_EQ(type(L"Word"), CIM_STRING);
    EXPECT_EQ(type(L"Words"), static_cast<CIMTYPE>(CIM_STRING) | kArrayFlag);
    EXPECT_EQ(type(L"Letters"), static_cast<CIMTYPE>(CIM_CHAR16) | kArrayFlag);
    EXPECT_EQ(a->qualifiers.Find(L"Letter")->value, Value::Unsigned(L'x'));
}

TEST_F(MofCompiler, AnIndicationTakesTheQualifiersOfIndications) {
    Compile("Qualifier Alarm : boolean, Scope(indication); [Indication, Alarm] class A { };");
    EXPECT_TRUE(Class(L"A")->qualifiers.Has(L"Alarm"));
    EXPECT_THROW(Compile("[Alarm] class B { };"), MofError);
}

} // namespace
} // namespace quillet::tests
