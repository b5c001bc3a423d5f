// What every page looks like, in every language.
#include "FreshMachine.h"
#include "window/Desk.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;

struct Seen {
    const wchar_t* line;    ///< of the tree
    const wchar_t* picture; ///< the beginning of its pictures' names
};
constexpr Seen kSeen[] = {{L"Zorel Quad", L"adapter"}, {L"TEAM", L"team"}, {L"VLAN 340", L"vlan"}};

class LooksTest : public testing::TestWithParam<Language> {
  protected:
    static std::wstring Suffix() {
        static constexpr const wchar_t* kSuffixes[] = {L"en", L"de", L"fr"};
        return kSuffixes[static_cast<int>(GetParam())];
    }
    static void Look(const Desk& desk, HWND window, HWND controls, const std::wstring& name) {
        desk.Photograph(window, name + L"-" + Suffix());
        for (const std::wstring& flaw : desk.Flaws(controls)) {
            ADD_FAILURE() << testing::PrintToString(name) << ": " << testing::PrintToString(flaw);
        }
    }
};

TEST_P(LooksTest, TheStartWindowIsWhole) {
    const Desk desk(FreshMachine(), GetParam());
    desk.ChooseLine(L"TEAM");
    Look(desk, desk.Start(), desk.Start(), L"start");
}

TEST_P(LooksTest, EachPageIsWhole) {
    const Desk desk(FreshMachine(), GetParam());
    for (const Seen& seen : kSeen) {
        desk.Open(seen.line);
        int number = 0;
        for (const std::wstring& tab : desk.Tabs()) {
            desk.Turn(tab);
            Look(desk, desk.Sheet(), desk.Page(), seen.picture + std::to_wstring(++number));
        }
        desk.CloseSheet();
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, LooksTest,
                         testing::Values(Language::English, Language::German, Language::French));

} // namespace

} // namespace quillet::tests
