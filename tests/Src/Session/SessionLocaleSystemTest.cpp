// The choice of the connection's locale, as far as the system decides: its languages and its version.
#include "ProviderTest.h"
#include "RegistryScope.h"

#include "Session/ConfigurationKeys.h"
#include "Session/SessionLocale.h"

#include <quillet-platform/TestHooks.h>

namespace {

using quillet::tests::RegistryScope;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;
namespace platform = quillet::platform;

class SessionLocaleSystemTest : public testing::Test {
  protected:
    SessionLocaleSystemTest() {
        m_registry.SetString(kRegistryLum2, L"LCID", L"411");
        m_registry.RemoveValue(kRegistryOrba, L"ForcedLanguage");
    }
    ~SessionLocaleSystemTest() override { platform::ResetHooks(); }
    std::vector<std::wstring> Traced() { return m_trace.NewTexts(); }

    RegistryScope m_registry;
    quillet::tests::TraceFile m_trace;
};

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_SeveralLanguagesOnVersionFive_IsTheUsersLanguage) {
    platform::SetUiLanguages({L"0409", L"0407"}, 0x0807);
    platform::SetOsVersion(5, 0);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_407");
    EXPECT_THAT(Traced(),
                ElementsAre(L"UI language: 0409", L"UI language: 0407", L"MUI System", L"Locale: MS_407"));
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_TraditionalAndSimplifiedChinese_AreToldApart) {
    platform::SetUiLanguages({L"0409", L"0404"}, 0x0404);
    platform::SetOsVersion(5, 0);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_404");
    platform::SetUiLanguages({L"0409", L"0804"}, 0x0804);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_804");
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_ManyLanguages_StopsAfterTheSecond) {
    platform::SetUiLanguages({L"0409", L"0407", L"040c", L"0411"}, 0x0409);
    platform::SetOsVersion(5, 0);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_409");
    EXPECT_THAT(Traced(),
                ElementsAre(L"UI language: 0409", L"UI language: 0407", L"MUI System", L"Locale: MS_409"));
}

struct Version {
    DWORD major;
    DWORD minor;
    DWORD platformId;
};

class OtherVersionTest : public SessionLocaleSystemTest, public testing::WithParamInterface<Version> {};

TEST_P(OtherVersionTest, ChooseConnectionLocale_SeveralLanguagesOnAnyOtherVersion_IsNone) {
    platform::SetUiLanguages({L"0409", L"0407"}, 0x0407);
    platform::SetOsVersion(GetParam().major, GetParam().minor, GetParam().platformId);
    EXPECT_EQ(ChooseConnectionLocale(), std::nullopt) << "also with an LCID in the registry";
    EXPECT_THAT(Traced(), ElementsAre(L"UI language: 0409", L"UI language: 0407", L"MUI System"));
}

INSTANTIATE_TEST_SUITE_P(Versions, OtherVersionTest,
                         testing::Values(Version{5, 1, VER_PLATFORM_WIN32_NT},
                                         Version{4, 0, VER_PLATFORM_WIN32_NT},
                                         Version{6, 0, VER_PLATFORM_WIN32_NT},
                                         Version{6, 1, VER_PLATFORM_WIN32_NT},
                                         Version{10, 0, VER_PLATFORM_WIN32_NT}, Version{5, 0, 1}),
                         [](const testing::TestParamInfo<Version>& test) {
                             return std::to_string(test.param.major) + "_" +
                                    std::to_string(test.param.minor) + "_platform" +
                                    std::to_string(test.param.platformId);
                         });

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_OnlyTheBasicVersionStructure_IsEnough) {
    platform::SetUiLanguages({L"0409", L"0407"}, 0x0410);
    platform::SetOsVersion(5, 0);
    platform::FailExtendedVersion(true);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_410");
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_LanguagesCannotBeListed_FallsBackToTheRegistry) {
    platform::FailEnumUiLanguages(true);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_411");
    EXPECT_THAT(Traced(), ElementsAre(L"EnumUILanguages Failed", L"Locale: MS_411"));
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_OneLanguage_AsksNoVersion) {
    platform::SetUiLanguages({L"0407"}, 0x0407);
    platform::SetOsVersion(5, 0);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_411");
    EXPECT_THAT(Traced(), ElementsAre(L"UI language: 0407", L"Not a MUI System", L"Locale: MS_411"));
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_NoLanguageAtAll_FallsBackToTheRegistry) {
    platform::SetUiLanguages({}, 0x0407);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_411");
    EXPECT_THAT(Traced(), Contains(L"Locale: MS_411"));
}

TEST_F(SessionLocaleSystemTest, ChooseConnectionLocale_UnreadableForcedLanguage_IsTheUsersOnAnySystem) {
    const BYTE eight[8] = {};
    m_registry.SetValue(kRegistryOrba, L"ForcedLanguage", REG_BINARY, eight, sizeof eight);
    platform::SetUiLanguages({L"0409"}, 0x0416);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_416");
    platform::SetUiLanguages({L"0409", L"0407"}, 0x0412);
    platform::SetOsVersion(10, 0);
    EXPECT_EQ(ChooseConnectionLocale(), L"MS_412");
}

/// What a connection on a system of one language is made with.
class OneLanguageTest : public ProviderTest {
  protected:
    OneLanguageTest() : ProviderTest(kNetServiceMof) {
        m_registry.RemoveValue(kRegistryLum2, L"LCID");
        m_registry.RemoveValue(kRegistryOrba, L"ForcedLanguage");
    }
    ~OneLanguageTest() override { platform::ResetHooks(); }
    std::optional<std::wstring> Locale() {
        EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
        const std::vector<JournalEntry> connections = CallsOf(Operation::ConnectServer);
        EXPECT_EQ(connections.size(), 1u);
        const NamedValue* locale = connections.empty() ? nullptr : connections[0].Argument(L"Locale");
        if (!locale || locale->value.IsNull()) {
            return std::nullopt;
        }
        return std::get<std::wstring>(*locale->value.AsScalar());
    }

    RegistryScope m_registry;
};

TEST_F(OneLanguageTest, InitQuillet_OneLanguageAndLcid_IsTheLocale) {
    m_registry.SetString(kRegistryLum2, L"LCID", L"409");
    EXPECT_EQ(Locale(), L"MS_409");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("Not a MUI System"));
    EXPECT_THAT(trace, Contains("Locale: MS_409"));
}

TEST_F(OneLanguageTest, InitQuillet_OneLanguageAndOddLcid_IsTakenAsStored) {
    m_registry.SetString(kRegistryLum2, L"LCID", L"00c0a %s");
    EXPECT_EQ(Locale(), L"MS_00c0a %s");
    EXPECT_THAT(Traced(), Contains("Locale: MS_00c0a %s"));
}

TEST_F(OneLanguageTest, InitQuillet_OneLanguageAndNoLcid_HasNoLocale) {
    EXPECT_EQ(Locale(), std::nullopt);
    EXPECT_THAT(Traced(), Not(Contains(StartsWith("Locale"))));
}

TEST_F(OneLanguageTest, InitQuillet_LcidIsANumber_HasNoLocale) {
    m_registry.SetDword(kRegistryLum2, L"LCID", 0x409);
    EXPECT_EQ(Locale(), std::nullopt);
}

TEST_F(OneLanguageTest, InitQuillet_LcidLongerThanItsBuffer_HasNoLocale) {
    m_registry.SetString(kRegistryLum2, L"LCID", std::wstring(260, L'4'));
    EXPECT_EQ(Locale(), std::nullopt);
}

} // namespace
