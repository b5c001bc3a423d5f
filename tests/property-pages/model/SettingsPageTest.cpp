// Advanced settings.
#include "model/ModelDesk.h"
#include "model/SettingsPage.h"

#include <algorithm>

namespace quillet::tests {

namespace {

using namespace pages;

/// The settings of the built-in machine's team: there is one of each kind.
class SettingsPageTest : public testing::Test {
  protected:
    SettingsPageTest() {
        EXPECT_EQ(m_desk.Do([this](Session& session, const Asking&) -> Answer {
            m_team = session.Teams().front().id;
            return nullptr;
        }),
                  L"");
        m_page = std::make_shared<SettingsPage>(m_team);
        m_desk.Read(m_page);
        m_desk.Machine().Calls().Clear();
    }

    void Choose(const std::wstring& keyword) const {
        const auto& settings = m_page->Settings();
        const auto found = std::ranges::find(settings, keyword, &Setting::keyword);
        ASSERT_NE(found, settings.end());
        m_page->Choose(std::size_t(found - settings.begin()));
    }
    std::wstring Value(const std::wstring& keyword) const {
        return m_page->ValueText(*FindSetting(m_page->Settings(), keyword));
    }
    /// Somebody else writes a setting.
    void WriteBehind(const std::wstring& keyword, std::int32_t value) {
        EXPECT_EQ(m_desk.Do([&](Session& session, const Asking&) -> Answer {
            std::vector<Setting> settings = session.Settings(m_team);
            Setting* setting = FindSetting(settings, keyword);
            std::visit(
                [value]<class Value>(Value& of) {
                    if constexpr (std::is_same_v<decltype(of.current), std::int32_t>) {
                        of.current = value;
                    }
                },
                setting->value);
            Transaction transaction(session);
            session.Write(*setting);
            (void)transaction.Apply();
            return nullptr;
        }),
                  L"");
    }

    ModelDesk m_desk;
    TeamId m_team;
    std::shared_ptr<SettingsPage> m_page;
};

TEST_F(SettingsPageTest, EachKindHasItsEditor) {
    const std::pair<const wchar_t*, Editor> kEditors[] = {
        {L"*JumboPacket", Editor::Choice},  {L"ActivationDelay", Editor::Number},
        {L"CheckTimeout", Editor::Slider},  {L"NetworkAddress", Editor::Text},
        {L"ProbeTypes", Editor::Selection}, {L"ProbeBurstTargets", Editor::Lines}};
    for (const auto& [keyword, editor] : kEditors) {
        Choose(keyword);
        EXPECT_EQ(m_page->ChosenEditor(), editor) << std::string(keyword, keyword + std::wcslen(keyword));
    }
    EXPECT_FALSE(m_page->IsChanged());
}

TEST_F(SettingsPageTest, ANumberIsCheckedAsItIsTypedAndNothingTypedIsLost) {
    Choose(L"ActivationDelay");
    const auto number = std::get<NumberValue>(m_page->Chosen()->value);
    m_page->Type(std::to_wstring(number.maximum));
    EXPECT_TRUE(m_page->IsChanged());
    EXPECT_EQ(m_page->Mistake(), L"");
    for (const std::wstring& bad :
         {std::to_wstring(std::int64_t{number.maximum} + 1), std::wstring(L"x"), std::wstring(),
          std::wstring(L"99999999999999999999"), std::wstring(L"1x")}) {
        m_page->Type(bad);
        EXPECT_NE(m_page->Mistake(), L"");
        EXPECT_EQ(m_page->TypedText(), bad);
    }
    m_page->Type(std::to_wstring(number.current));
    EXPECT_EQ(m_page->Mistake(), L"");
    EXPECT_FALSE(m_page->IsChanged()) << "as it was is no change";
}

TEST_F(SettingsPageTest, ChoicesSlidersSelectionsAndLinesAreWritten) {
    Choose(L"*JumboPacket");
    m_page->Pick(1);
    Choose(L"CheckTimeout");
    const auto& slider = std::get<SliderValue>(m_page->Chosen()->value);
    const auto other = slider.possible[0] == slider.current ? 1U : 0U;
    m_page->Pick(other);
    const std::wstring slid = Value(L"CheckTimeout");
    Choose(L"ProbeTypes");
    const auto before = std::get<SelectionValue>(m_page->Chosen()->value).current;
    m_page->Tick(0, true);
    m_page->Tick(1, true);
    if (std::get<SelectionValue>(m_page->Chosen()->value).current == before) {
        m_page->Tick(0, false);
    }
    const std::wstring ticked = Value(L"ProbeTypes");
    Choose(L"ProbeBurstTargets");
    m_page->Type(L"10.0.0.1\r\n\r\n10.0.0.2");
    EXPECT_TRUE(m_desk.Apply({m_page}).isDone);
    EXPECT_EQ(m_page->Notice(), L"");
    EXPECT_FALSE(m_page->IsChanged());
    EXPECT_EQ(m_desk.Calls(L"BeginApply").size(), 1U);

    const auto again = std::make_shared<SettingsPage>(m_team);
    m_desk.Read(again);
    EXPECT_EQ(again->ValueText(*FindSetting(again->Settings(), L"CheckTimeout")), slid);
    EXPECT_EQ(again->ValueText(*FindSetting(again->Settings(), L"ProbeTypes")), ticked);
    EXPECT_EQ(again->ValueText(*FindSetting(again->Settings(), L"ProbeBurstTargets")), L"10.0.0.1, 10.0.0.2");
}

TEST_F(SettingsPageTest, DefaultsAreSetAndTold) {
    Choose(L"ActivationDelay");
    m_page->Type(L"?");
    m_page->Default();
    EXPECT_EQ(m_page->Mistake(), L"") << "what was mistyped is gone";
    m_page->DefaultAll();
    for (const Setting& setting : m_page->Settings()) {
        EXPECT_TRUE(!setting.writable || SettingsPage::IsStandard(setting));
    }
}

TEST_F(SettingsPageTest, WhatSomebodyElseChangedMeanwhileIsToldOnce) {
    Choose(L"ActivationDelay");
    const auto number = std::get<NumberValue>(m_page->Chosen()->value);
    ASSERT_GT(number.maximum - number.minimum, 2 * number.step);
    const std::int32_t wanted =
        number.current == number.minimum ? number.minimum + number.step : number.minimum;
    ASSERT_NE(number.current, number.maximum);
    m_page->Type(std::to_wstring(wanted));
    WriteBehind(L"ActivationDelay", number.maximum);
    EXPECT_FALSE(m_desk.Apply({m_page}).isDone);
    EXPECT_NE(m_page->Notice().find(std::to_wstring(number.maximum)), std::wstring::npos);
    EXPECT_EQ(m_page->TypedText(), std::to_wstring(wanted)) << "what was typed is still there";
    EXPECT_TRUE(m_desk.Apply({m_page}).isDone) << "the user knows now";
    EXPECT_EQ(Value(L"ActivationDelay"), std::to_wstring(wanted));
}

TEST_F(SettingsPageTest, WhatSomebodyElseChangedBesidesIsTakenOver) {
    Choose(L"*JumboPacket");
    m_page->Pick(1);
    const auto number = std::get<NumberValue>(FindSetting(m_page->Settings(), L"ActivationDelay")->value);
    WriteBehind(L"ActivationDelay", number.maximum);
    EXPECT_TRUE(m_desk.Apply({m_page}).isDone);
    EXPECT_EQ(Value(L"ActivationDelay"), std::to_wstring(number.maximum));
}

TEST_F(SettingsPageTest, ARefusalKeepsWhatWasTyped) {
    Choose(L"ActivationDelay");
    const auto number = std::get<NumberValue>(m_page->Chosen()->value);
    m_page->Type(std::to_wstring(number.maximum));
    m_desk.Machine().Rules().Add({.operation = simulator::Operation::PutInstance,
                                  .target = {},
                                  .method = {},
                                  .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    EXPECT_FALSE(m_desk.Apply({m_page}).isDone);
    EXPECT_NE(m_page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(m_page->TypedText(), std::to_wstring(number.maximum));
    EXPECT_TRUE(m_page->IsChanged());
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0) << "no set stays open";
    EXPECT_TRUE(m_desk.Apply({m_page}).isDone);
}

TEST_F(SettingsPageTest, ARestartThatIsNeededIsTold) {
    Choose(L"*JumboPacket");
    m_page->Pick(1);
    m_desk.Machine().RequireFollowup(1);
    EXPECT_TRUE(m_desk.Apply({m_page}).restartNeeded);
}

TEST_F(SettingsPageTest, AListThatBreaksOffShowsWhatThereIs) {
    m_desk.Machine().Rules().Add({.operation = simulator::Operation::Next,
                                  .target = {},
                                  .method = {},
                                  .nth = 3,
                                  .code = HRESULT(WBEM_E_FAILED)});
    const auto page = std::make_shared<SettingsPage>(m_team);
    m_desk.Read(page);
    EXPECT_NE(page->Notice(), L"");
    EXPECT_LT(page->Settings().size(), m_page->Settings().size());
}

} // namespace

} // namespace quillet::tests
