// Writing MOF back: what is written compiles into the same again.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

class MofWriter : public RepositoryFixture {
  protected:
    /// The instances after a trip through text, in a repository with the same schema.
    std::unique_ptr<Repository> Again() const {
        auto again = std::make_unique<Repository>(L"OTHER", L"ROOT\\Test");
        CompileMof(*again, kSchema, "schema.mof");
        CompileMof(*again, WriteInstancesAsMof(m_repository.AllInstances()), "again.mof");
        return again;
    }
    void ExpectSameAfterRoundTrip() const {
        const std::unique_ptr<Repository> again = Again();
        const std::vector<InstancePtr> before = m_repository.AllInstances();
        const std::vector<InstancePtr> after = again->AllInstances();
        ASSERT_EQ(before.size(), after.size());
        for (std::size_t i = 0; i < before.size(); ++i) {
            EXPECT_EQ(before[i]->definition->name, after[i]->definition->name);
            EXPECT_EQ(before[i]->values, after[i]->values);
        }
        EXPECT_EQ(WriteInstancesAsMof(again->AllInstances()),
                  WriteInstancesAsMof(m_repository.AllInstances()));
    }
};

TEST_F(MofWriter, WritesWhatDiffersFromTheDefaults) {
    Compile("instance of T_Device { DeviceID = \"1\"; Speed = 1000; Enabled = NULL; Serial = 5; Caption = "
            "\"x\"; };");
    EXPECT_EQ(WriteInstancesAsMof(m_repository.AllInstances()), "instance of T_Device\n{\n"
                                                                "    Caption = \"x\";\n"
                                                                "    DeviceID = \"1\";\n"
                                                                "    Serial = 5;\n"
                                                                "    Enabled = NULL;\n"
                                                                "};\n\n");
}

TEST_F(MofWriter, RoundTripsEveryType) {
    Compile(R"(
        instance of T_Device as $one
        {
            DeviceID = "1"; Caption = "tab\t nl\n cr\r \"q\" \\ \x0001\x007F\x0000"; Speed = NULL; Offset = -9223372036854775808;
            Serial = 18446744073709551615; Enabled = FALSE; Names = {"a", NULL, "", "\"\\"}; Load = -0.1;
            Installed = "20240131235959.123456+060"; Letter = '\xFFFF'; Peer = $one;
        };
        instance of T_FastDevice { DeviceID = "2"; Lanes = 65535; Names = {}; Load = 1.0e300; };
        instance of T_Numbered { Number = 4294967295; Flag = FALSE; };
        instance of T_Service { State = ""; };
        instance of T_Member { Group = "T_Device='1'"; Part = "\\\\HOST\\ROOT\\Test:T_Device.DeviceID=\"2\""; };
    )");
    EXPECT_EQ(m_repository.AllInstances().size(), 5u);
    ExpectSameAfterRoundTrip();
}

TEST_F(MofWriter, RoundTripsTextBeyondAscii) {
    Compile("instance of T_Device { DeviceID = \"Gr\xC3\xB6\xC3\x9F"
            "e \xE6\xBC\xA2 \xF0\x9F\x98\x80\"; };");
    EXPECT_THAT(WriteInstancesAsMof(m_repository.AllInstances()),
                ::testing::HasSubstr("\"Gr\xC3\xB6\xC3\x9F"
                                     "e \xE6\xBC\xA2 \xF0\x9F\x98\x80\""));
    ExpectSameAfterRoundTrip();
}

TEST_F(MofWriter, WritesSurrogatesThatBelongTogetherAsOneCharacter) {
    Instance device = New(L"T_Device");
    device.Set(L"DeviceID",
               Value::Text(std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}));
    ASSERT_EQ(m_repository.PutInstance(device), 0);
    EXPECT_THAT(WriteInstancesAsMof(m_repository.AllInstances()),
                ::testing::HasSubstr("\"\xF0\x9F\x98\x80\""));
}

TEST_F(MofWriter, RoundTripsLoneSurrogates) {
    Instance device = New(L"T_Device");
    device.Set(L"DeviceID", Value::Text(std::wstring{static_cast<wchar_t>(0xDC00), L'0',
                                                     static_cast<wchar_t>(0xD800), L'A'}));
    ASSERT_EQ(m_repository.PutInstance(device), 0);
    EXPECT_THAT(WriteInstancesAsMof(m_repository.AllInstances()),
                ::testing::HasSubstr(R"("\xDC000\xD800A")"));
    ExpectSameAfterRoundTrip();
}

TEST_F(MofWriter, RoundTripsThroughUpdatesInTheOrderOfCreation) {
    Compile("instance of T_Device { DeviceID = \"b\"; }; instance of T_FastDevice { DeviceID = \"a\"; };"
            "instance of T_Device { DeviceID = \"c\"; };");
    Compile("instance of T_Device { DeviceID = \"b\"; Speed = 5; };");
    const std::unique_ptr<Repository> again = Again();
    std::vector<std::wstring> ids;
    for (const InstancePtr& instance : again->AllInstances()) {
        ids.push_back(instance->Text(L"DeviceID"));
    }
    EXPECT_THAT(ids, ::testing::ElementsAre(L"b", L"a", L"c"));
    ExpectSameAfterRoundTrip();
}

TEST_F(MofWriter, WritesNothingForNothing) {
    EXPECT_EQ(WriteInstancesAsMof(m_repository.AllInstances()), "");
    EXPECT_EQ(ObjectText(Instance()), L"");
}

TEST_F(MofWriter, WritesClassesThatCompileIntoTheSame) {
    const char* source = R"(
        [Abstract, Description("base \"x\"") : Translatable, Description_de_DE("Basis")]
        class W_Base { [Key] string Id; [Values{"Off", "On"}, ValueMap{"0", "1"}] uint8 State = 1; uint32 Run(); };
        class W_Derived : W_Base
        {
            uint8 State = 0;
            string Names[3] = {"a", NULL};
            real64 Load = 0.5;
            W_Base REF Peer;
            [Static] void Go([In] uint32 How, [In(false), Out] string Lines[], [In, Out] W_Base REF Which);
            uint32 Run([In] uint32 Speed);
        };
    )";
    Compile(source);
    std::wstring text;
    Repository again(L"HOST", L"ROOT\\Test");
    for (const wchar_t* name : {L"W_Base", L"W_Derived"}) {
        const std::wstring one = ObjectText(*m_repository.FindClass(name));
        CompileMof(again, ToUtf8(one), "again.mof");
        EXPECT_EQ(ObjectText(*again.FindClass(name)), one);
    }
    const ClassPtr base = again.FindClass(L"W_Base");
    EXPECT_EQ(base->qualifiers.Find(L"Description")->localized.at(0x407), Value::Text(L"Basis"));
    EXPECT_TRUE(base->qualifiers.Find(L"Description")->amended);
    const ClassPtr derived = again.FindClass(L"W_Derived");
    EXPECT_FALSE(derived->qualifiers.Has(L"Abstract"));
    EXPECT_EQ(derived->FindProperty(L"State")->defaultValue, Value::Unsigned(0));
    EXPECT_EQ(derived->FindProperty(L"Names")->arrayLimit, 3u);
    EXPECT_EQ(derived->FindMethod(L"Go")->in.size(), 2u);
    EXPECT_EQ(derived->FindMethod(L"Go")->out.size(), 2u);
    EXPECT_EQ(derived->FindMethod(L"Run")->in.size(), 1u);
    EXPECT_TRUE(derived->FindMethod(L"Go")->returnsVoid);
}

TEST_F(MofWriter, WritesTheFlavorsOfQualifiers) {
    Compile("[Abstract] class F_Flavors { [Remark(\"x\") : ToInstance] string A; [Fixed : DisableOverride] "
            "string B;"
            " [Own : Restricted] string C; };");
    const std::wstring text = ObjectText(*m_repository.FindClass(L"F_Flavors"));
    EXPECT_THAT(ToUtf8(text), ::testing::HasSubstr("Remark(\"x\") : ToInstance]"));
    Repository again(L"HOST", L"ROOT\\Test");
    CompileMof(again, ToUtf8(text), "again.mof");
    const ClassPtr definition = again.FindClass(L"F_Flavors");
    const auto flavor = [&](const wchar_t* property, const wchar_t* qualifier) {
        return definition->FindProperty(property)->qualifiers.Find(qualifier)->flavor;
    };
    EXPECT_NE(flavor(L"A", L"Remark") & WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE, 0);
    EXPECT_NE(flavor(L"B", L"Fixed") & WBEM_FLAVOR_NOT_OVERRIDABLE, 0);
    EXPECT_EQ(flavor(L"C", L"Own") & WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS, 0);
}

TEST_F(MofWriter, LeavesOutTextsInLanguagesThatMofHasNoNameFor) {
    ClassDefinition definition;
    definition.name = L"L_Spoken";
    Qualifier description;
    description.name = L"Description";
    description.type = CIM_STRING;
    description.value = Value::Text(L"base");
    description.amended = true;
    description.localized = {{0x407, Value::Text(L"Basis")}, {0x7FFF, Value::Text(L"nowhere")}};
    definition.qualifiers.Set(description);
    ASSERT_EQ(m_repository.AddClass(definition), 0);
    const std::string text = ToUtf8(ObjectText(*m_repository.FindClass(L"L_Spoken")));
    EXPECT_THAT(text, ::testing::HasSubstr("Description_de_DE(\"Basis\")"));
    EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("nowhere")));
}

} // namespace
} // namespace quillet::tests
