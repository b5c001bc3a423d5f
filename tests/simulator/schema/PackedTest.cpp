// The packed schema and machines are what their texts compile to, and damaged ones are refused.
#include "CompiledSchema.h"

#include "packed/PackedMachines.h"
#include "packed/PackedReader.h"
#include "packed/PackedWriter.h"

#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Text.h>

#include <gtest/gtest.h>

namespace quillet::simulator::tests {

namespace {

// What an object is, as text, nothing left out.

std::string Described(const Value& value);
std::string Described(const Instance& instance) {
    std::string text = ToUtf8(instance.definition->name) + '(';
    for (const Value& value : instance.values) {
        text += Described(value) + ' ';
    }
    return text + ')';
}
std::string Described(const Scalar& scalar) {
    const std::string type = std::to_string(scalar.index()) + ':';
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        return type + std::to_string(*flag ? 1 : 0);
    }
    if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
        return type + std::to_string(*number);
    }
    if (const auto* magnitude = std::get_if<std::uint64_t>(&scalar)) {
        return type + std::to_string(*magnitude);
    }
    if (const auto* real = std::get_if<double>(&scalar)) {
        return type + ToUtf8(RealText(*real));
    }
    if (const auto* text = std::get_if<std::wstring>(&scalar)) {
        return type + '"' + ToUtf8(*text) + '"';
    }
    return type + Described(*std::get<Embedded>(scalar).object);
}
std::string Described(const Value& value) {
    if (const Scalar* scalar = value.AsScalar()) {
        return Described(*scalar);
    }
    if (value.IsNull()) {
        return "null";
    }
    std::string text = value.AsBytes() != nullptr ? "bytes{" : "{";
    for (const std::optional<Scalar>& element : value.Elements()) {
        text += (element ? Described(*element) : "null") + ' ';
    }
    return text + '}';
}
std::string Described(const Qualifiers& qualifiers) {
    std::string text = "[";
    for (const Qualifier& each : qualifiers.All()) {
        text += ToUtf8(each.name) + ' ' + std::to_string(each.type) + ' ' + Described(each.value) + ' ' +
                std::to_string(each.flavor) + (each.amended ? " amended" : "");
        for (const auto& [language, value] : each.localized) {
            text += ' ' + std::to_string(language) + '=' + Described(value);
        }
        text += "; ";
    }
    return text + ']';
}
std::string Described(const std::vector<Property>& properties) {
    std::string text;
    for (const Property& each : properties) {
        text += "\n  " + Described(each.qualifiers) + ' ' + std::to_string(each.type) + ' ' +
                ToUtf8(each.name) + '[' + std::to_string(each.arrayLimit) + "] of " + ToUtf8(each.origin) +
                " to " + ToUtf8(each.referenceClass) + (each.inherited ? ", inherited" : "") + " = " +
                Described(each.defaultValue);
    }
    return text;
}
std::string Described(const ClassDefinition& definition) {
    std::string text = Described(definition.qualifiers) + ' ' + ToUtf8(definition.name) + " : " +
                       ToUtf8(definition.superclass) + (definition.lacksKeys ? " without keys" : "");
    for (const std::wstring& ancestor : definition.ancestors) {
        text += " < " + ToUtf8(ancestor);
    }
    text += Described(definition.properties);
    for (const Method& each : definition.methods) {
        text += "\n " + Described(each.qualifiers) + ' ' + std::to_string(each.returnType) +
                (each.returnsVoid ? " void " : " ") + ToUtf8(each.name) + " of " + ToUtf8(each.origin) +
                (each.inherited ? ", inherited" : "") + "\n in" + Described(each.in) + "\n out" +
                Described(each.out);
    }
    return text;
}
std::string Described(const QualifierDeclaration& declaration) {
    return ToUtf8(declaration.name) + ' ' + std::to_string(declaration.type) + ' ' +
           Described(declaration.defaultValue) + ' ' + std::to_string(declaration.scope) + ' ' +
           std::to_string(declaration.flavor);
}

template <class Pointers>
void ExpectTheSame(const Pointers& expected, const Pointers& found) {
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        ASSERT_EQ(Described(*expected[index]), Described(*found[index]));
    }
}
/// Object by object, in their order, and how they are found.
void ExpectTheSame(const Repository& expected, const Repository& found) {
    const auto declared = expected.QualifierDeclarations();
    const auto declaredThere = found.QualifierDeclarations();
    ASSERT_EQ(declared.size(), declaredThere.size());
    for (std::size_t index = 0; index < declared.size(); ++index) {
        ASSERT_EQ(Described(declared[index]), Described(declaredThere[index]));
    }
    ExpectTheSame(expected.Classes(), found.Classes());
    const auto instances = expected.AllInstances();
    ExpectTheSame(instances, found.AllInstances());
    for (const InstancePtr& instance : instances) {
        const std::wstring path = RelativePath(*instance);
        const InstancePtr same = found.FindInstance(path);
        ASSERT_NE(same, nullptr) << ToUtf8(path);
        ASSERT_EQ(Described(*instance), Described(*same));
        const auto query = ParseWql(L"REFERENCES OF {" + path + L"}");
        ASSERT_TRUE(query) << ToUtf8(path);
        std::vector<InstancePtr> associations;
        std::vector<InstancePtr> associationsThere;
        ASSERT_EQ(expected.Associations(*query, associations), found.Associations(*query, associationsThere));
        ExpectTheSame(associations, associationsThere);
    }
}

constexpr const wchar_t* kNamespace = L"ROOT\\MarloLUM2";

/// The texts in the order in which the build packs them.
Repository FromTexts(const char* machine) {
    Repository repository(L"RACK12", kNamespace);
    const std::filesystem::path folder = SchemaFile().parent_path();
    std::set<std::filesystem::path> provider;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().filename().string().rfind("zorel-", 0) == 0) {
            provider.insert(file.path());
        }
    }
    CompileMofFile(repository, folder / "qualifiers.mof");
    for (const std::filesystem::path& file : provider) {
        CompileMofFile(repository, file);
    }
    CompileMofFile(repository, folder / "simulator.mof");
    if (machine != nullptr) {
        CompileMofFile(repository, MachineFile(machine));
    }
    return repository;
}

/// Everything that a text can say of types and qualifiers.
constexpr const char* kEverything = R"(
    Qualifier Level : sint32 = -3, Scope(property, class), Flavor(DisableOverride, ToSubclass);
    [Abstract, Level(-7)]
    class T_Base {
        [Key] uint32 Number;
        [Values{"on", "off"} : Translatable, Values_de_DE{"an", "aus"}] uint16 State = 1;
        [Static] uint32 Run([In] string Text, [In, Out] uint8 Bytes[], [Out] boolean Done);
        void Stop();
    };
    class T_All : T_Base {
        boolean Yes = TRUE;
        sint64 Least = -9223372036854775808;
        uint64 Most = 18446744073709551615;
        real64 Half = 0.5;
        real32 Quarter = -0.25;
        char16 Letter = 'x';
        datetime When = "20240229120000.000000+060";
        string Texts[4] = {"Zürich", NULL, "\x20AC", "😀"};
        uint8 Bytes[] = {0, 127, 128, 255};
        sint8 Small[] = {-128, NULL, 127};
        string Empty = "";
        string Nothing;
    };
    [Association] class T_Link { [Key] T_Base REF From; [Key] T_Base REF To; };
    instance of T_Link { From = $Second; To = "T_All.Number=1"; };
    instance of T_All { Number = 1; };
    instance of T_All as $Second { Number = 2; Bytes = {}; Texts = {}; Half = 1.0e300; Yes = FALSE; };
)";

std::string Packed(const std::string& text) {
    PackedWriter writer;
    CompileMof(writer, text, "everything.mof");
    return writer.Packed();
}

} // namespace

TEST(PackedMachinesTest, AreWhatTheirTextsCompileTo) {
    MachineOptions options;
    options.serverName = L"RACK12";
    Repository schema(L"RACK12", kNamespace);
    ReadPacked(schema, PackedSchema());
    EXPECT_GT(schema.Classes().size(), 40u);
    ExpectTheSame(FromTexts(nullptr), schema);
    ExpectTheSame(FromTexts("empty.mof"), Machine::Empty(options)->Store());
    const auto builtIn = Machine::BuiltIn(options);
    EXPECT_GT(builtIn->Store().AllInstances().size(), 400u);
    ExpectTheSame(FromTexts("builtin.mof"), builtIn->Store());
}

TEST(PackedMachinesTest, KeepEverythingThatATextCanSay) {
    Repository compiled(L"A", L"ROOT\\T");
    CompileMof(compiled, std::string(kEverything), "everything.mof");
    Repository read(L"A", L"ROOT\\T");
    ReadPacked(read, Packed(std::string(kEverything)));
    ExpectTheSame(compiled, read);
}

TEST(PackedMachinesTest, KeepInstancesWithinInstances) {
    const std::string text = "class T_Inner { [Key] uint32 Number; string Text; };";
    ClassDefinition outer;
    outer.name = L"T_Outer";
    outer.properties.resize(2);
    outer.properties[0].name = L"Inner";
    outer.properties[0].type = CIM_OBJECT;
    outer.properties[0].referenceClass = L"T_Inner";
    outer.properties[1].name = L"All";
    outer.properties[1].type = static_cast<CIMTYPE>(CIM_OBJECT) | static_cast<CIMTYPE>(CIM_FLAG_ARRAY);
    Qualifier singleton;
    singleton.name = L"Singleton";
    singleton.value = Value::Bool(true);
    outer.qualifiers.Set(singleton);
    const auto fill = [&](MofTarget& target) {
        CompileMof(target, text, "inner.mof");
        ASSERT_EQ(target.AddClass(outer, nullptr), 0);
        Instance inner(target.FindClass(L"T_Inner"));
        inner.Set(L"Number", Value::Unsigned(7));
        const Scalar embedded = Embedded{std::make_shared<const Instance>(inner)};
        Instance instance(target.FindClass(L"T_Outer"));
        instance.Set(L"Inner", Value(embedded));
        instance.Set(L"All", Value(Value::Array{embedded, std::nullopt}));
        InstancePtr kept;
        ASSERT_EQ(target.StoreInstance(instance, WriteMode::CreateOnly, kept, nullptr), 0);
    };
    PackedWriter writer;
    fill(writer);
    Repository filled(L"A", L"ROOT\\T");
    fill(filled);
    Repository read(L"A", L"ROOT\\T");
    ReadPacked(read, writer.Packed());
    ExpectTheSame(filled, read);
    ASSERT_EQ(read.AllInstances().size(), 1u);
    EXPECT_NE(Described(*read.AllInstances()[0]).find("T_Inner(2:7 null )"), std::string::npos);
}

// Each of these texts differs from the other in what one part of the comparison looks at.
TEST(PackedMachinesTest, AreComparedInEverything) {
    const std::pair<const char*, const char*> changes[] = {
        {"Level(-7)", "Level(-8)"},
        {"DisableOverride", "EnableOverride"},
        {"Scope(property, ", "Scope("},
        {"sint32 = -3", "sint32 = -4"},
        {"{\"an\", ", "{\"Ein\", "},
        {"} : Translatable, Values_de_DE{\"an\", \"aus\"}", "}"},
        {"[In] string", "[Out] string"},
        {"void Stop", "uint32 Stop"},
        {"sint64 Least", "string S; sint64 Least"},
        {"Texts[4]", "Texts[5]"},
        {"0.5", "0.25"},
        {"128, 255}", "128, 254}"},
        {"Half = 1.0", "Half = 2.0"},
        {"T_Base REF To", "T_All REF To"},
        {"\"\";", "NULL;"},
        {"Number=1", "Number=2"},
    };
    const auto described = [](const std::string& text) {
        Repository read(L"A", L"ROOT\\T");
        ReadPacked(read, Packed(text));
        std::string all;
        for (const auto& declaration : read.QualifierDeclarations()) {
            all += Described(declaration);
        }
        for (const auto& definition : read.Classes()) {
            all += Described(*definition);
        }
        for (const auto& instance : read.AllInstances()) {
            all += Described(*instance);
        }
        return all;
    };
    const std::string original = described(std::string(kEverything));
    for (const auto& [before, after] : changes) {
        std::string text = std::string(kEverything);
        ASSERT_NE(text.find(before), std::string::npos) << before;
        text.replace(text.find(before), std::string_view(before).size(), after);
        EXPECT_NE(described(text), original) << before;
    }
}

TEST(PackedMachinesTest, WithoutTheirEndAreRefused) {
    const std::string whole = Packed("class T_A { [Key] uint32 Number; string Text = \"Zürich\"; };");
    Repository taken(L"A", L"ROOT\\T");
    ReadPacked(taken, whole);
    EXPECT_EQ(taken.Classes().size(), 1u);
    std::size_t refusals = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Repository repository(L"A", L"ROOT\\T");
        try {
            ReadPacked(repository, std::string_view(whole).substr(0, size));
        } catch (const std::runtime_error& refused) {
            EXPECT_STREQ(refused.what(), "a packed machine is damaged");
            ++refusals;
        }
        EXPECT_TRUE(repository.Classes().empty()) << size;
    }
    EXPECT_EQ(refusals, whole.size() - 1); // the texts alone are whole
}

TEST(PackedMachinesTest, WithAnyByteChangedEndOrAreRefused) {
    const std::string whole = Packed(std::string(kEverything));
    std::size_t refusals = 0;
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (const int bits : {0x01, 0x80, 0xFF}) {
            std::string changed = whole;
            changed[place] = static_cast<char>(changed[place] ^ bits);
            Repository repository(L"A", L"ROOT\\T");
            try {
                ReadPacked(repository, changed);
            } catch (const std::runtime_error&) {
                ++refusals;
            }
        }
    }
    EXPECT_GT(refusals, whole.size());
}

TEST(PackedMachinesTest, RefuseTextsThatAreNoUnicode) {
    PackedWriter writer;
    CompileMof(writer, R"(class T_A { [Key] uint32 Number; string Text = "\xD800"; };)", "a.mof");
    EXPECT_THROW(writer.Packed(), std::invalid_argument);
}

} // namespace quillet::simulator::tests
