// The schema against what clients rely on.
#include "CompiledSchema.h"
#include "ExpectedSchema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace quillet::simulator::tests {

namespace {

/// What is wrong with a property or parameter, or nothing.
std::string Difference(const ExpectedElement& expected, const Property& actual) {
    std::string difference;
    if (actual.type != expected.type) {
        difference +=
            " type is " + std::to_string(actual.type) + ", not " + std::to_string(expected.type) + ";";
    }
    if (expected.type == CIM_REFERENCE && !SameName(actual.referenceClass, expected.reference)) {
        difference += " refers to " + Narrow(actual.referenceClass) + ";";
    }
    if (actual.IsKey() != expected.key) {
        difference += expected.key ? " is no key;" : " is a key;";
    }
    if (actual.qualifiers.Has(L"Write") != expected.write) {
        difference += expected.write ? " cannot be written;" : " can be written;";
    }
    if (actual.qualifiers.Has(L"Secret") != expected.secret) {
        difference += expected.secret ? " is no secret;" : " is a secret;";
    }
    if (actual.name != expected.name) {
        difference += " is spelt " + Narrow(actual.name) + ";";
    }
    return difference;
}

void ExpectParameters(const std::string& where, const std::vector<ExpectedElement>& expected,
                      const std::vector<Property>& actual) {
    ASSERT_EQ(expected.size(), actual.size()) << where;
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ("", Difference(expected[index], actual[index]))
            << where << " " << Narrow(expected[index].name);
    }
}

const Property& PropertyOf(std::wstring_view className, std::wstring_view name) {
    const auto cls = Schema().FindClass(className);
    const Property* property = cls ? cls->FindProperty(name) : nullptr;
    if (property == nullptr) {
        throw std::logic_error("no property " + Narrow(className) + "." + Narrow(name));
    }
    return *property;
}

} // namespace

TEST(Schema, HasEveryPropertyThatClientsRelyOn) {
    std::size_t checked = 0;
    for (const auto& expected : ExpectedClasses()) {
        const auto cls = Schema().FindClass(expected.name);
        ASSERT_NE(nullptr, cls) << Narrow(expected.name);
        EXPECT_TRUE(cls->name == expected.name) << Narrow(cls->name);
        for (const auto& property : expected.properties) {
            const Property* actual = cls->FindProperty(property.name);
            ASSERT_NE(nullptr, actual) << Narrow(expected.name + L"." + property.name);
            EXPECT_EQ("", Difference(property, *actual)) << Narrow(expected.name + L"." + property.name);
            ++checked;
        }
    }
    EXPECT_EQ(432u, checked);
}

TEST(Schema, HasEveryMethodThatClientsCall) {
    std::size_t methods = 0;
    std::size_t parameters = 0;
    for (const auto& expected : ExpectedClasses()) {
        const auto cls = Schema().FindClass(expected.name);
        ASSERT_NE(nullptr, cls) << Narrow(expected.name);
        EXPECT_EQ(expected.methods.size(), cls->methods.size()) << Narrow(expected.name);
        for (const auto& method : expected.methods) {
            const auto where = Narrow(expected.name + L"." + method.name);
            const Method* actual = cls->FindMethod(method.name);
            ASSERT_NE(nullptr, actual) << where;
            EXPECT_TRUE(actual->name == method.name) << where;
            EXPECT_EQ(CIM_UINT32, actual->returnType) << where;
            EXPECT_FALSE(actual->returnsVoid) << where;
            ExpectParameters(where + " in", method.in, actual->in);
            ExpectParameters(where + " out", method.out, actual->out);
            ++methods;
            parameters += method.in.size() + method.out.size();
        }
    }
    EXPECT_EQ(44u, methods);
    EXPECT_EQ(166u, parameters);
}

TEST(Schema, HasNoPropertyBeyondTheTableButTheProvidersOwnState) {
    std::set<std::wstring, NameLess> known;
    for (const auto& name : ProviderState()) {
        EXPECT_TRUE(known.insert(name).second) << Narrow(name);
    }
    std::set<std::wstring, NameLess> used;
    for (const auto& expected : ExpectedClasses()) {
        const auto cls = Schema().FindClass(expected.name);
        ASSERT_NE(nullptr, cls) << Narrow(expected.name);
        for (const auto& property : cls->properties) {
            if (std::ranges::none_of(
                    expected.properties,
                    [&](const ExpectedElement& element) { return SameName(element.name, property.name); }) &&
                !SameName(property.name, L"PartialDataMask") && !SameName(property.name, L"FollowupAction")) {
                const auto name = expected.name + L"." + property.name;
                EXPECT_TRUE(known.count(name) == 1) << Narrow(name);
                used.insert(name);
            }
        }
    }
    EXPECT_EQ(known.size(), used.size()) << "the list of state names something that is not there";
}

TEST(Schema, AllClassesAreTheProvidersAndDescribed) {
    std::size_t described = 0;
    for (const auto& cls : Schema().Classes()) {
        EXPECT_EQ(0u, cls->name.rfind(L"Zorel_", 0)) << Narrow(cls->name);
        EXPECT_NE(nullptr, cls->qualifiers.Find(L"Description")) << Narrow(cls->name);
        for (const auto& property : cls->properties) {
            EXPECT_NE(nullptr, property.qualifiers.Find(L"Description"))
                << Narrow(cls->name + L"." + property.name);
            ++described;
        }
        for (const auto& method : cls->methods) {
            EXPECT_NE(nullptr, method.qualifiers.Find(L"Description"))
                << Narrow(cls->name + L"." + method.name);
            ++described;
        }
    }
    EXPECT_EQ(47u, Schema().Classes().size());
    EXPECT_GT(described, 500u);
}

TEST(Schema, ConcreteClassesHaveKeys) {
    for (const auto& cls : Schema().Classes()) {
        const auto keys = std::ranges::count_if(cls->properties, &Property::IsKey);
        if (!cls->qualifiers.Has(L"Abstract")) {
            EXPECT_GT(keys, 0) << Narrow(cls->name);
        }
    }
    for (const wchar_t* name :
         {L"Zorel_EthernetAdapter", L"Zorel_Setting", L"Zorel_AdapterSetting", L"Zorel_TeamSetting",
          L"Zorel_VLANSetting", L"Zorel_BootAgentSetting", L"Zorel_NetworkBoot"}) {
        const auto cls = Schema().FindClass(name);
        ASSERT_NE(nullptr, cls) << Narrow(name);
        EXPECT_TRUE(cls->qualifiers.Has(L"Abstract")) << Narrow(name);
    }
    // Abstract is the class's own: what derives from it can have instances.
    EXPECT_FALSE(Schema().FindClass(L"Zorel_PhysicalEthernetAdapter")->qualifiers.Has(L"Abstract"));
    EXPECT_FALSE(Schema().FindClass(L"Zorel_AdapterSettingEnum")->qualifiers.Has(L"Abstract"));
}

TEST(Schema, AssociationsJoinTwoReferences) {
    std::set<std::wstring> associations;
    for (const auto& cls : Schema().Classes()) {
        const auto references = std::ranges::count_if(
            cls->properties, [](const Property& property) { return property.type == CIM_REFERENCE; });
        EXPECT_EQ(cls->IsAssociation() ? 2 : 0, references) << Narrow(cls->name);
        if (cls->IsAssociation()) {
            associations.insert(cls->name);
        }
    }
    EXPECT_EQ((std::set<std::wstring>{L"Zorel_DiagTestForAdapter", L"Zorel_NetworkVirtualAdapter",
                                      L"Zorel_TeamedMemberAdapter"}),
              associations);
}

TEST(Schema, SettingClassNamesTellTheirKind) {
    // As clients search the names, the first hit deciding; how such names end; a property that the kind has.
    const struct {
        const wchar_t* sought;
        const wchar_t* ending;
        const wchar_t* property;
    } kinds[] = {
        {L"Int", L"SettingInt", L"Scale"},
        {L"MultiString", L"SettingMultiString", L"CurrentValues"},
        {L"String", L"SettingString", L"MaxLength"},
        {L"Enum", L"SettingEnum", L"DescriptionMap"},
        {L"Slider", L"SettingSlider", L"FirstLabel"},
        {L"Multi", L"SettingMultiSelection", L"DescriptionMap"},
    };
    std::map<std::wstring, int> found;
    for (const auto& cls : Schema().ClassAndSubclasses(L"Zorel_Setting")) {
        if (cls->qualifiers.Has(L"Abstract")) {
            continue;
        }
        const auto* kind = std::ranges::find_if(
            kinds, [&](const auto& entry) { return cls->name.find(entry.sought) != std::wstring::npos; });
        ASSERT_NE(std::end(kinds), kind) << Narrow(cls->name);
        EXPECT_TRUE(cls->name.ends_with(kind->ending)) << Narrow(cls->name);
        EXPECT_NE(nullptr, cls->FindProperty(kind->property)) << Narrow(cls->name);
        ++found[kind->sought];
    }
    EXPECT_EQ(6u, found.size());
    for (const auto& [kind, count] : found) {
        EXPECT_EQ(4, count) << Narrow(kind);
    }
}

TEST(Schema, NoOtherClassNameReadsAsAnInteger) {
    for (const auto& cls : Schema().Classes()) {
        const bool integer = cls->name.find(L"Int") != std::wstring::npos;
        EXPECT_EQ(cls->FindProperty(L"Scale") != nullptr, integer) << Narrow(cls->name);
    }
}

TEST(Schema, CapabilityTextsStandAtTheirCodes) {
    const auto& property = PropertyOf(L"Zorel_PhysicalEthernetAdapter", L"Capabilities");
    const Qualifier* values = property.qualifiers.Find(L"Values");
    ASSERT_NE(nullptr, values);
    const auto texts = Texts(values->value);
    ASSERT_EQ(69u, texts.size());
    EXPECT_EQ(L"Fault tolerance team", texts[4]);
    EXPECT_EQ(L"Virtual machine load balancing team", texts[68]);
    // A capability that clients act on has a text of its own.
    std::set<std::wstring> distinct;
    for (const std::size_t code :
         {4u, 5u, 8u, 9u, 10u, 12u, 32u, 33u, 34u, 35u, 36u, 37u, 46u, 47u, 50u, 61u, 64u, 68u}) {
        EXPECT_NE(L"Reserved", texts[code]) << code;
        EXPECT_TRUE(distinct.insert(texts[code]).second) << code;
    }
    const Qualifier* codes = property.qualifiers.Find(L"ValueMap");
    ASSERT_NE(nullptr, codes);
    const auto numbers = Texts(codes->value);
    ASSERT_EQ(texts.size(), numbers.size());
    for (std::size_t code = 0; code < numbers.size(); ++code) {
        EXPECT_EQ(std::to_wstring(code), numbers[code]);
    }
}

TEST(Schema, DisplayTextsSpeakGermanAndFrench) {
    const struct {
        const wchar_t* cls;
        const wchar_t* property;
        std::size_t index;
        const wchar_t* english;
        const wchar_t* german;
        const wchar_t* french;
    } cases[] = {
        {L"Zorel_DiagResult", L"TestState", 2, L"Passed", L"Bestanden", L"R\u00E9ussi"},
        {L"Zorel_TeamOfAdapters", L"TeamingMode", 0, L"Fault Tolerance", L"Fehlertoleranz",
         L"Tol\u00E9rance de pannes"},
        {L"Zorel_PhysicalEthernetAdapter", L"Capabilities", 46, L"Server adapter", L"Serveradapter",
         L"Carte serveur"},
        {L"Zorel_BootAgent", L"FlashImageType", 4, L"PXE and iSCSI", L"PXE und iSCSI", L"PXE et iSCSI"},
    };
    for (const auto& expected : cases) {
        const auto where = Narrow(expected.cls) + "." + Narrow(expected.property);
        const Qualifier* values = PropertyOf(expected.cls, expected.property).qualifiers.Find(L"Values");
        ASSERT_NE(nullptr, values) << where;
        EXPECT_TRUE(values->amended) << where;
        const auto texts = Texts(values->value);
        ASSERT_GT(texts.size(), expected.index) << where;
        EXPECT_EQ(expected.english, texts[expected.index]) << where;
        for (const auto& [language, text] :
             {std::pair{0x407u, expected.german}, std::pair{0x40Cu, expected.french}}) {
            const auto found = values->localized.find(language);
            ASSERT_NE(values->localized.end(), found) << where << " " << language;
            const auto translated = Texts(found->second);
            ASSERT_EQ(texts.size(), translated.size()) << where << " " << language;
            EXPECT_EQ(text, translated[expected.index]) << where << " " << language;
        }
    }
}

TEST(Schema, TeamPrefixIsVisibleWithoutAskingForDisplayTexts) {
    const Qualifier* values = PropertyOf(L"Zorel_TeamOfAdapters", L"TeamPrefix").qualifiers.Find(L"Values");
    ASSERT_NE(nullptr, values);
    EXPECT_FALSE(values->amended);
    EXPECT_EQ(std::vector<std::wstring>{L"TEAM : "}, Texts(values->value));
}

TEST(Schema, CredentialsAreSecretsWhereverTheyStand) {
    const std::set<std::wstring, NameLess> credentials = {
        L"LinksecCredPassword", L"PACFilePassword", L"strManualPMKey",
        L"strTXSAKey",          L"strRXSAKey",      L"strPassword",
    };
    std::size_t properties = 0;
    std::size_t parameters = 0;
    const auto check = [&](const Property& property, std::size_t& count) {
        EXPECT_EQ(credentials.count(property.name) == 1, property.qualifiers.Has(L"Secret"))
            << Narrow(property.name);
        count += property.qualifiers.Has(L"Secret") ? 1u : 0u;
    };
    for (const auto& cls : Schema().Classes()) {
        for (const auto& property : cls->properties) {
            check(property, properties);
        }
        for (const auto& method : cls->methods) {
            for (const auto& parameter : method.in) {
                check(parameter, parameters);
            }
            for (const auto& parameter : method.out) {
                check(parameter, parameters);
            }
        }
    }
    EXPECT_EQ(6u, properties);
    EXPECT_EQ(10u, parameters);
}

TEST(Schema, MethodsThatMakeThingsAreCalledOnTheClass) {
    for (const auto& [cls, method] :
         {std::pair{L"Zorel_TeamOfAdapters", L"CreateTeam"},
          std::pair{L"Zorel_TeamOfAdapters", L"ValidateNewTeamMembers"},
          std::pair{L"Zorel_PhysicalEthernetAdapter", L"ValidateSettingOnNewTeam"}}) {
        const auto definition = Schema().FindClass(cls);
        ASSERT_NE(nullptr, definition);
        const Method* found = definition->FindMethod(method);
        ASSERT_NE(nullptr, found) << Narrow(method);
        EXPECT_TRUE(found->qualifiers.Has(L"Static")) << Narrow(method);
    }
}

} // namespace quillet::simulator::tests
