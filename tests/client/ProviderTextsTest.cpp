// The provider's texts of its numbers, and that ours say the same.
#include "ProviderTest.h"

#include <quillet/client.h>

#include <cwctype>

namespace quillet::tests {

namespace {

class ProviderTextsTest : public ProviderTest {};

/// The letters and digits alone, for the provider writes "Running/Full Power" and we "running, full power".
std::wstring Letters(const std::wstring& text) {
    std::wstring letters;
    for (const wchar_t each : text) {
        if (std::iswalnum(static_cast<wint_t>(each)) != 0) {
            letters += static_cast<wchar_t>(std::towlower(static_cast<wint_t>(each)));
        }
    }
    return letters;
}

/// The numbers for which the provider has a text, and those of them for which we have another.
struct Compared {
    int told = 0;
    std::vector<std::string> different{};
};

template <class Number>
Compared CompareTexts(ProviderTexts& texts) {
    constexpr int kLast = 100;
    Compared compared;
    for (int number = 0; number <= kLast; ++number) {
        const std::wstring told = texts.Of(kValueSource<Number>, number);
        if (told.empty()) {
            continue;
        }
        ++compared.told;
        const std::wstring ours = Text(static_cast<Number>(number));
        if (Letters(ours) != Letters(told)) {
            compared.different.push_back(std::to_string(number) + ": " + Narrow(told) + ", " + Narrow(ours));
        }
    }
    return compared;
}

TEST_F(ProviderTextsTest, OurTextsAreTheProvidersTexts) {
    Session session;
    ProviderTexts texts(session);
    const auto expect = [](const Compared& compared, int told,
                           const std::vector<std::string>& different = {}) {
        EXPECT_EQ(compared.told, told);
        EXPECT_EQ(compared.different, different);
    };
    expect(CompareTexts<StatusInfo>(texts), 5);
    expect(CompareTexts<Availability>(texts), 6);
    expect(CompareTexts<HardwareStatus>(texts), 4);
    expect(CompareTexts<LinkSecurityStatus>(texts), 10);
    expect(CompareTexts<TeamMode>(texts), 7);
    expect(CompareTexts<MemberRole>(texts), 3);
    expect(CompareTexts<MemberStatus>(texts), 3);
    // What the port does, not what is done to it.
    expect(CompareTexts<IscsiStatus>(texts), 3, {"0: Disabled, off"});
    const Compared capabilities = CompareTexts<Capability>(texts);
    EXPECT_EQ(capabilities.told, 69);
    for (const std::string& each : capabilities.different) {
        EXPECT_NE(each.find(": Reserved, code "), std::string::npos) << each;
    }
}

TEST_F(ProviderTextsTest, AClassIsFetchedWhenATextOfItIsFirstWanted) {
    Session session;
    Calls();
    ProviderTexts texts(session);
    EXPECT_TRUE(Calls().empty());
    EXPECT_EQ(texts.Of(kValueSource<HardwareStatus>, 2), L"Cable Removed");
    EXPECT_EQ(texts.Of(kValueSource<StatusInfo>, 3), L"Enabled");
    EXPECT_EQ(texts.Of(kValueSource<StatusInfo>, 77), L"");
    EXPECT_EQ(Calls().size(), 1U);
    EXPECT_EQ(texts.Of(kValueSource<Duplex>, 1), L"") << "the provider has no texts for it";
    EXPECT_TRUE(Calls().empty());
}

TEST_F(ProviderTextsTest, AProviderThatDoesNotTell_IsNoFailure) {
    Session session;
    Fail(Operation::GetObject, static_cast<HRESULT>(WBEM_E_ACCESS_DENIED));
    ProviderTexts texts(session);
    EXPECT_EQ(texts.Of(kValueSource<HardwareStatus>, 2), L"");
}

} // namespace

} // namespace quillet::tests
