// Every kind of bad MOF: where the error is, and what is said about it.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

struct BadMof {
    const char* text;
    std::size_t line;
    std::size_t column;
    const char* message; ///< stands somewhere in the message
};

void PrintTo(const BadMof& bad, std::ostream* out) {
    *out << '\'' << bad.text << '\'';
}

class MofErrors : public RepositoryFixture, public ::testing::WithParamInterface<BadMof> {};

TEST_P(MofErrors, NamePlaceAndReason) {
    const BadMof& bad = GetParam();
    try {
        CompileMof(m_repository, bad.text, "dir/bad.mof");
        FAIL() << "compiled: " << bad.text;
    } catch (const MofError& error) {
        EXPECT_EQ(error.File(), "dir/bad.mof");
        EXPECT_EQ(error.Line(), bad.line) << error.what();
        EXPECT_EQ(error.Column(), bad.column) << error.what();
        EXPECT_THAT(error.what(), ::testing::HasSubstr(bad.message));
        EXPECT_THAT(error.what(), ::testing::StartsWith("dir/bad.mof:" + std::to_string(bad.line) + ":" +
                                                        std::to_string(bad.column) + ": "));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Words, MofErrors,
    ::testing::Values(BadMof{"class A { string x = \"abc; };", 1, 22, "does not end"},
                      BadMof{"class A { string x = \"abc\n\"; };", 1, 22, "does not end"},
                      BadMof{"class A { string x = \"abc\\", 1, 26, "escape"},
                      BadMof{"class A { string x = \"a\\q\"; };", 1, 24, "escape"},
                      BadMof{"class A { string x = \"a\\xg\"; };", 1, 24, "hexadecimal"},
                      BadMof{"class A { char16 x = ''; };", 1, 22, "character is missing"},
                      BadMof{"class A { char16 x = 'ab'; };", 1, 22, "apostrophe"},
                      BadMof{"class A { char16 x = 'a", 1, 22, "apostrophe"},
                      BadMof{"/* never closed", 1, 1, "comment"}, BadMof{"\n\n  ?", 3, 3, "no place"},
                      BadMof{"class A { string x = \"\xC3\xA4\xC3\xB6\"; ? };", 1, 28, "no place"},
                      BadMof{"\xEF\xBB\xBF?", 1, 1, "no place"}, BadMof{"\r\n\t?", 2, 2, "no place"},
                      BadMof{"// \xFF", 1, 4, "UTF-8"}, BadMof{"\xFF\xFE", 1, 1, "UTF-16"},
                      BadMof{"#include \"x\"", 1, 1, "#pragma"}, BadMof{"#pragma", 1, 8, "name of a pragma"},
                      BadMof{"#pragma x (\"y\"", 1, 15, "')'"},
                      BadMof{"instance of T_Numbered as $ {};", 1, 27, "alias"},
                      BadMof{"class A { uint32 x = 09; };", 1, 22, "no number"},
                      BadMof{"class A { uint32 x = 102b; };", 1, 22, "no number"},
                      BadMof{"class A { uint32 x = 0x; };", 1, 22, "no number"},
                      BadMof{"class A { uint32 x = 5abc; };", 1, 22, "no number"},
                      BadMof{"class A { real64 x = 1.2.3; };", 1, 22, "no number"},
                      BadMof{"class A { real64 x = 1.0e999; };", 1, 22, "too large"},
                      BadMof{"class A { uint64 x = 18446744073709551616; };", 1, 22, "64 bits"},
                      BadMof{"class A { sint64 x = -9223372036854775809; };", 1, 22, "64 bits"}));

INSTANTIATE_TEST_SUITE_P(
    Values, MofErrors,
    ::testing::Values(BadMof{"class A { uint8 x = 300; };", 1, 21, "value 300 does not fit uint8"},
                      BadMof{"class A { uint8 x = -1; };", 1, 21, "value -1 does not fit uint8"},
                      BadMof{"class A { sint8 x = 128; };", 1, 21, "does not fit sint8"},
                      BadMof{"class A { sint64 x = 9223372036854775808; };", 1, 22, "does not fit sint64"},
                      BadMof{"class A { uint32 x = 1.5; };", 1, 22, "does not fit uint32"},
                      BadMof{"class A { real32 x = 1.0e300; };", 1, 22, "does not fit real32"},
                      BadMof{"class A { char16 x = '\xF0\x9F\x98\x80'; };", 1, 22, "does not fit char16"},
                      BadMof{"class A { uint32 x = \"5\"; };", 1, 22, "uint32 was expected"},
                      BadMof{"class A { string x = 5; };", 1, 22, "string was expected"},
                      BadMof{"class A { boolean x = 1; };", 1, 23, "boolean was expected"},
                      BadMof{"class A { string x = TRUE; };", 1, 22, "string was expected"},
                      BadMof{"class A { string x = 'a'; };", 1, 22, "string was expected"},
                      BadMof{"class A { datetime x = \"today\"; };", 1, 24, "datetime"},
                      BadMof{"class A { string x = {\"a\"}; };", 1, 22, "this is an array"},
                      BadMof{"class A { string x[] = \"a\"; };", 1, 24, "array in braces"},
                      BadMof{"class A { uint8 x[] = {1, 2, 256}; };", 1, 30, "value 256 does not fit uint8"},
                      BadMof{"class A { uint8 x[2] = {1, 2, 3}; };", 1, 31, "at most 2"},
                      BadMof{"class A { uint8 x[0]; };", 1, 19, "size"},
                      BadMof{"class A { uint8 x[] = {1, }; };", 1, 27, "value was expected"},
                      BadMof{"class A { uint8 x = ; };", 1, 21, "value was expected"},
                      BadMof{"class A { uint8 x = $A; };", 1, 21, "value was expected"}));

INSTANTIATE_TEST_SUITE_P(
    Classes, MofErrors,
    ::testing::Values(
        BadMof{"nonsense", 1, 1, "'class'"}, BadMof{"[Key] nonsense", 1, 7, "'class' or 'instance'"},
        BadMof{"class", 1, 6, "class name was expected, but the text ends here"},
        BadMof{"class A : X { };", 1, 11, "unknown superclass 'X'"}, BadMof{"class A { }", 1, 12, "';'"},
        BadMof{"class A { string x }; ", 1, 20, "';'"}, BadMof{"class A as $X { };", 1, 9, "alias"},
        BadMof{"class A { string x; uint32 X; };", 1, 1, "property 'X' is declared twice"},
        BadMof{"class A { uint32 F(); void f(); };", 1, 1, "method 'f' is declared twice"},
        BadMof{"class A { void F(uint8 x, uint8 X); };", 1, 1, "parameter 'X' is declared twice"},
        BadMof{"class T_Device { };", 1, 1, "exists already"},
        BadMof{"class A : T_Device { string Speed; };", 1, 1, "property 'Speed' is uint32"},
        BadMof{"class A : T_Device { [Key] string Name; };", 1, 1, "superclass has keys"},
        BadMof{"class A : T_Device { [Key] uint32 Speed; };", 1, 1, "cannot become a key"},
        BadMof{"class A : T_Device { [Key(false)] string DeviceID; };", 1, 1, "may not be changed"},
        BadMof{"[Q(TRUE) : DisableOverride] class A { };\n[Q(FALSE)] class B : A { };", 2, 12,
               "may not be changed in a subclass"},
        BadMof{"class A { [Q(1) : DisableOverride] void F(); };\nclass B : A { [Q(2)] void F(); };", 2, 1,
               "may not be changed in a subclass"},
        BadMof{"class A { [Key] real64 x; };", 1, 1, "cannot be a key"},
        BadMof{"class A { [Key] string x[]; };", 1, 1, "cannot be a key"},
        BadMof{"class A { strin x; };", 1, 11, "unknown type 'strin'"},
        BadMof{"class A { void x; };", 1, 11, "only a method"},
        BadMof{"class A { A REF x[]; };", 1, 18, "array of references"},
        BadMof{"class A { A REF x(); };", 1, 11, "return"},
        BadMof{"class A { B REF x; };", 1, 11, "unknown class 'B'"},
        BadMof{"class A { void F(B REF x); };", 1, 18, "unknown class 'B'"},
        BadMof{"class A { void F(void x); };", 1, 18, "unknown type 'void'"},
        BadMof{"class A { void F(uint8 x = 5); };", 1, 26, "')'"},
        BadMof{"class A { uint32 5; };", 1, 18, "name of a property"}));

INSTANTIATE_TEST_SUITE_P(
    QualifierTexts, MofErrors,
    ::testing::Values(
        BadMof{"class A { [Key(5)] string x; };", 1, 16, "boolean was expected"},
        BadMof{"class A { [Values(\"a\")] string x; };", 1, 19, "array in braces"},
        BadMof{"class A { [Key, key] string x; };", 1, 17, "stands twice"},
        BadMof{"class A { [Key string x; };", 1, 16, "']'"},
        BadMof{"class A { [] string x; };", 1, 12, "qualifier"},
        BadMof{"class A { [Key : Loud] string x; };", 1, 18, "unknown flavor 'Loud'"},
        BadMof{"class A { [Values_de_DE{\"a\"}] string x; };", 1, 12, "'Values', which does not stand here"},
        BadMof{"class A { [Values{\"a\"}, Values_xx_YY{\"a\"}] string x; };", 1, 25, "locale 'xx_YY'"},
        BadMof{"class A { [Values{\"a\"}, Values_de_DE(\"a\")] string x; };", 1, 38, "array in braces"},
        BadMof{"Qualifier Q : boolean, Scope(method);\nclass A { [Q] string x; };", 2, 12,
               "'Q' is not allowed on a property"},
        BadMof{"Qualifier Q : boolean, Scope(property);\nclass A { [Q] A REF x; };", 2, 12,
               "not allowed on a reference"},
        BadMof{"Qualifier Q : boolean, Scope(association);\n[Q] class A { };", 2, 2,
               "not allowed on a class"},
        BadMof{"Qualifier Q : uint8, Scope(any);\n[Q(256)] class A { };", 2, 4, "256 does not fit"},
        BadMof{"Qualifier Q : boolean, Scope(everything);", 1, 30, "scope"},
        BadMof{"Qualifier Q : boolean, Where(any);", 1, 24, "Scope or Flavor"},
        BadMof{"Qualifier Q : thing;", 1, 15, "unknown type 'thing'"}, BadMof{"Qualifier Q;", 1, 12, "':'"},
        BadMof{"Qualifier Q : boolean = 5;", 1, 25, "boolean"},
        BadMof{"Qualifier Q : boolean;\nQualifier q : string;", 2, 11, "another type"}));

INSTANTIATE_TEST_SUITE_P(
    Instances, MofErrors,
    ::testing::Values(
        BadMof{"instance T_Device { };", 1, 10, "'of'"},
        BadMof{"instance of X { };", 1, 13, "unknown class 'X'"},
        BadMof{"instance of T_Element { Caption = \"x\"; };", 1, 1, "abstract"},
        BadMof{"instance of T_Device { };", 1, 1, "key 'DeviceID' has no value"},
        BadMof{"class K { string x; };\ninstance of K { };", 2, 1, "no key"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; Y = 1; };", 1, 40,
               "property 'Y' is not in class 'T_Device'"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; deviceid = \"2\"; };", 1, 40, "given twice"},
        BadMof{"instance of T_FastDevice { DeviceID = \"1\"; Lanes = 65536; };", 1, 52,
               "value 65536 does not fit uint16"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; };\n  instance of T_Device { DeviceID = \"1\"; };",
               2, 3, "duplicate key"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; };\ninstance of T_FastDevice { DeviceID = \"1\"; };",
               2, 1, "has these keys already"},
        BadMof{"instance of T_Next { Id = \"1\"; };\ninstance of t_next { ID = \"1\"; };", 2, 1,
               "duplicate key"},
        BadMof{"instance of T_Member { Group = \"T_Device='1'\"; Part = \"T_Device='2'\"; };\n"
               "instance of T_Member { Part = \"T_Device.DeviceID='2'\"; Group = \"t_device='1'\"; };",
               2, 1, "duplicate key"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; Peer = $P; };", 1, 47, "unknown alias '$P'"},
        BadMof{"instance of T_Device { DeviceID = $P; };", 1, 35, "value was expected"},
        BadMof{"instance of T_Device as $A { DeviceID = \"1\"; };\n"
               "instance of T_Device as $a { DeviceID = \"2\"; };",
               2, 25, "stands for another"},
        BadMof{"instance of T_Service as $S { };\ninstance of T_Device { DeviceID = \"1\"; Peer = $S; };", 2,
               47, "T_Service"},
        BadMof{"instance of T_Member as $M { Group = $M; Part = $M; };", 1, 38, "itself"},
        BadMof{"instance of T_Device { DeviceID = \"1\"; Peer = \"not a path\"; };", 1, 47,
               "no object path: position 3"},
        BadMof{"instance of T_Device { DeviceID = \"1\" };", 1, 39, "';'"},
        BadMof{"instance of T_Device { DeviceID \"1\"; };", 1, 33, "'='"},
        BadMof{"instance of T_Device as Dev { };", 1, 25, "alias"},
        BadMof{"instance of T_Device { DeviceID = \"1\";", 1, 39, "but the text ends here"},
        BadMof{"#pragma include (\"other.mof\")", 1, 18, "not read from a file"},
        BadMof{"#pragma include (other)", 1, 18, "file in quotes"}));

class MofHostile : public RepositoryFixture {
  protected:
    void ExpectError(const std::string& text) { EXPECT_THROW(Compile(text), MofError); }
};

TEST_F(MofHostile, DeepAndLongTextsEndInAnError) {
    ExpectError(std::string(1 << 20, '['));
    ExpectError(std::string(1 << 20, '{'));
    ExpectError("class A { string x = " + std::string(1 << 20, '{'));
    ExpectError("class A { uint32 x = " + std::string(1 << 20, '9') + "; };");
    ExpectError("class A { string x = \"" + std::string(1 << 20, 'x'));
    ExpectError(std::string(1 << 16, '\0'));
    ExpectError("class A { string x = \"a\" " + std::string(1 << 16, '/'));
}

TEST_F(MofHostile, EveryPrefixOfAGoodTextIsHarmless) {
    const std::string good =
        "Qualifier Q : string[] = {\"x\"}, Scope(any), Flavor(Restricted);\n"
        "[Q{\"a\", \"\\x41\"} : Translatable] class G : T_Device { [In] uint32 F([Out] char16 c);"
        " char16 Z[3] = {'a', NULL}; };\n"
        "instance of G as $G { DeviceID = \"1\" /* c */ \"2\"; Peer = $G; Load = -1.5e3; };";
    for (std::size_t length = 0; length < good.size(); ++length) {
        Repository repository(L"HOST", L"ROOT\\Test");
        CompileMof(repository, kSchema, "schema.mof");
        try {
            CompileMof(repository, good.substr(0, length), "prefix.mof");
        } catch (const MofError& error) {
            EXPECT_GE(error.Line(), 1u);
            EXPECT_GE(error.Column(), 1u);
        }
    }
    Compile(good);
    EXPECT_TRUE(m_repository.FindInstance(L"G.DeviceID=\"12\""));
}

TEST_F(MofHostile, ManyPropertiesAndInstancesStayQuick) {
    std::string text = "class Wide { [Key] string Id; ";
    for (int i = 0; i < 2000; ++i) {
        text += "uint32 p" + std::to_string(i) + "; ";
    }
    text += "};";
    for (int i = 0; i < 2000; ++i) {
        text += "instance of T_Device { DeviceID = \"" + std::to_string(i) + "\"; };\n";
    }
    Compile(text);
    EXPECT_EQ(m_repository.Instances(L"T_Device").size(), 2000u);
}

} // namespace
} // namespace quillet::tests
