// The choice of the connection's locale, as far as the registry alone decides.
#include "ProviderTest.h"
#include "RegistryScope.h"

#include "Session/ConfigurationKeys.h"
#include "Session/SessionLocale.h"

namespace {

using quillet::test::RegistryScope;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

class SessionLocaleTest : public ProviderTest {
  protected:
    SessionLocaleTest() : ProviderTest(NET_SERVICE_MOF) {
        m_registry.RemoveValue(REGISTRY_LUM2, L"LCID");
        m_registry.RemoveValue(REGISTRY_ORBA, L"ForcedLanguage");
    }

    /// The locale that a connection is made with; nothing when it has none.
    std::optional<std::wstring> Locale() {
        EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::ConnectServer) {
                const NamedValue* locale = call.Argument(L"Locale");
                if (!locale || locale->value.IsNull()) {
                    return std::nullopt;
                }
                return std::get<std::wstring>(*locale->value.AsScalar());
            }
        }
        ADD_FAILURE() << "no connection";
        return std::nullopt;
    }

    RegistryScope m_registry;
};

struct Forced {
    DWORD language;
    const wchar_t* locale;
};

/// GoogleTest would show the bytes, those between the members included.
void PrintTo(const Forced& forced, std::ostream* out) {
    *out << forced.language << " as " << Narrow(forced.locale);
}

class ForcedLanguageTest : public SessionLocaleTest, public testing::WithParamInterface<Forced> {};

TEST_P(ForcedLanguageTest, InitQuillet_ForcedLanguage_IsTheLocale) {
    m_registry.SetDword(REGISTRY_ORBA, L"ForcedLanguage", GetParam().language);
    EXPECT_EQ(Locale(), GetParam().locale);
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("Locale: " + Narrow(GetParam().locale)));
    EXPECT_THAT(trace, Not(Contains(StartsWith("UI language"))))
        << "a forced language leaves nothing to be found out";
}

INSTANTIATE_TEST_SUITE_P(
    Languages, ForcedLanguageTest,
    testing::Values(Forced{1028, L"MS_404"}, Forced{1031, L"MS_407"}, Forced{1036, L"MS_40C"},
                    Forced{1040, L"MS_410"}, Forced{1041, L"MS_411"}, Forced{1042, L"MS_412"},
                    Forced{1046, L"MS_416"}, Forced{2052, L"MS_804"}, Forced{3082, L"MS_C0A"},
                    Forced{1033, L"MS_409"}, Forced{1234, L"MS_409"}, Forced{0, L"MS_409"},
                    Forced{0xFFFFFFFF, L"MS_409"}, Forced{2057, L"MS_409"}, Forced{1034, L"MS_409"}),
    [](const testing::TestParamInfo<Forced>& test) { return std::to_string(test.param.language); });

TEST_F(SessionLocaleTest, InitQuillet_ForcedLanguageInFourBytesOfAnotherType_IsTaken) {
    const BYTE german[] = {0x07, 0x04, 0, 0};
    m_registry.SetValue(REGISTRY_ORBA, L"ForcedLanguage", REG_BINARY, german, sizeof german);
    EXPECT_EQ(Locale(), L"MS_407");
}

TEST_F(SessionLocaleTest, InitQuillet_ForcedLanguageInTwoBytes_IsTaken) {
    const BYTE german[] = {0x07, 0x04};
    m_registry.SetValue(REGISTRY_ORBA, L"ForcedLanguage", REG_BINARY, german, sizeof german);
    EXPECT_EQ(Locale(), L"MS_407");
}

TEST_F(SessionLocaleTest, InitQuillet_ForcedLanguageLongerThanFourBytes_GivesTheUsersLanguage) {
    m_registry.SetString(REGISTRY_ORBA, L"ForcedLanguage", L"1031");
    wchar_t expected[16];
    swprintf_s(expected, 16, L"MS_%X", static_cast<unsigned>(ProviderLanguage(GetUserDefaultUILanguage())));
    EXPECT_EQ(Locale(), expected);
}

TEST_F(SessionLocaleTest, InitQuillet_ForcedLanguageAndLcid_TheForcedOneCounts) {
    m_registry.SetString(REGISTRY_LUM2, L"LCID", L"411");
    m_registry.SetDword(REGISTRY_ORBA, L"ForcedLanguage", 1031);
    EXPECT_EQ(Locale(), L"MS_407");
}

struct Mapping {
    LANGID user;
    DWORD provider;
};

void PrintTo(const Mapping& mapping, std::ostream* out) {
    *out << mapping.user << " as " << mapping.provider;
}

class ProviderLanguageTest : public testing::TestWithParam<Mapping> {};

TEST_P(ProviderLanguageTest, ProviderLanguage_MapsThePrimaryLanguage) {
    EXPECT_EQ(ProviderLanguage(GetParam().user), GetParam().provider);
}

constexpr LANGID Language(unsigned primary, unsigned sub) {
    return static_cast<LANGID>(sub << 10 | primary);
}

INSTANTIATE_TEST_SUITE_P(Languages, ProviderLanguageTest,
                         testing::Values(Mapping{Language(4, 1), 1028}, Mapping{Language(4, 2), 2052},
                                         Mapping{Language(4, 3), 1028}, Mapping{Language(4, 4), 1033},
                                         Mapping{Language(4, 5), 1033}, Mapping{Language(4, 0), 1033},
                                         Mapping{Language(7, 1), 1031}, Mapping{Language(7, 2), 1031},
                                         Mapping{Language(9, 1), 1033}, Mapping{Language(9, 2), 1033},
                                         Mapping{Language(10, 1), 3082}, Mapping{Language(10, 3), 3082},
                                         Mapping{Language(12, 1), 1036}, Mapping{Language(12, 4), 1036},
                                         Mapping{Language(16, 1), 1040}, Mapping{Language(17, 1), 1041},
                                         Mapping{Language(18, 1), 1042}, Mapping{Language(22, 1), 1046},
                                         Mapping{Language(22, 2), 1046}, Mapping{Language(25, 1), 1033},
                                         Mapping{0, 1033}, Mapping{0xFFFF, 1033}),
                         [](const testing::TestParamInfo<Mapping>& test) {
                             return std::to_string(test.param.user);
                         });

} // namespace
