// Power saving and wake-on-LAN.
#include "model/ModelDesk.h"
#include "model/PowerPage.h"
#include "model/Words.h"

#include <quillet/client/Text.h>

namespace quillet::tests {

namespace {

using namespace pages;

/// Which adapter of the built-in machine.
enum Adapters : std::size_t { kTenGigabit = 0, kQuad = 2, kWithoutPower = 9 };

class PowerPageTest : public testing::Test {
  protected:
    std::shared_ptr<PowerPage> Open(std::size_t adapter) {
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            m_adapter = session.Adapters().at(adapter).id;
            return nullptr;
        });
        const auto page = std::make_shared<PowerPage>(m_adapter);
        m_desk.Read(page);
        m_desk.Machine().Calls().Clear();
        return page;
    }
    /// Somebody else changes the options.
    void WriteBehind(const PowerOptions& power, const WakeOptions& wake) {
        EXPECT_EQ(m_desk.Do([&](Session& session, const Asking&) -> Answer {
            Transaction transaction(session);
            session.SetPower(m_adapter, power);
            session.SetWake(m_adapter, wake);
            (void)transaction.Apply();
            return nullptr;
        }),
                  L"");
    }
    /// What is on the machine now.
    std::pair<PowerOptions, WakeOptions> There() {
        std::pair<PowerOptions, WakeOptions> there;
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            there = {session.ReadPower(m_adapter), session.ReadWake(m_adapter)};
            return nullptr;
        });
        return there;
    }

    ModelDesk m_desk;
    AdapterId m_adapter;
};

TEST_F(PowerPageTest, ShowsWhatTheAdapterHasAndSaysWhatItHasNot) {
    const auto page = Open(kTenGigabit);
    EXPECT_EQ(page->Power().smartPowerDown, false);
    EXPECT_EQ(page->Power().enhancedAspm, true);
    EXPECT_EQ(page->Power().autoPowerSave, std::nullopt);
    EXPECT_EQ(page->Wake().onMagicPacket, true);
    EXPECT_EQ(page->Wake().onLink, std::nullopt);
    EXPECT_TRUE(page->HasModes());
    EXPECT_EQ(page->Modes(), (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(page->WhyNotAll(), Say(TextId::PowerNotAll));
    EXPECT_FALSE(page->IsChanged());
    page->Set(&PowerOptions::autoPowerSave, true);
    page->Set(&WakeOptions::onLink, true);
    EXPECT_FALSE(page->IsChanged()) << "an option that is not there cannot be switched";
}

TEST_F(PowerPageTest, WritesTheModeAndWhatWasChangedInOneSet) {
    const auto page = Open(kQuad);
    page->SetMode(2);
    page->Set(&PowerOptions::reduceSpeed, false);
    page->Set(&WakeOptions::onLink, true);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_FALSE(page->IsChanged());
    EXPECT_EQ(page->Notice(), L"");
    const auto calls = m_desk.Calls(L"ExecMethod");
    std::vector<std::wstring> changes;
    for (const std::wstring& call : calls) {
        if (call.find(L"Set") != std::wstring::npos || call.find(L"Apply") != std::wstring::npos) {
            changes.push_back(call);
        }
    }
    ASSERT_EQ(changes.size(), 4U);
    EXPECT_NE(changes[0].find(L"BeginApply"), std::wstring::npos);
    EXPECT_NE(changes[1].find(L"SetPowerUsageOptions(SavePowerNowEnabled=2, ReduceSpeedOnPowerDown=0)"),
              std::wstring::npos)
        << ToUtf8(changes[1]);
    EXPECT_NE(changes[2].find(L"SetWakeOnLanPowerOptions(WakeOnLink=1)"), std::wstring::npos)
        << ToUtf8(changes[2]);
    EXPECT_NE(changes[3].find(L"Apply("), std::wstring::npos);
    const auto [power, wake] = There();
    EXPECT_EQ(power.mode, 2U);
    EXPECT_EQ(power.reduceSpeed, false);
    EXPECT_EQ(wake.onLink, true);
}

TEST_F(PowerPageTest, WhatIsAsItWasIsNotWritten) {
    const auto page = Open(kQuad);
    page->Set(&WakeOptions::onLink, true);
    EXPECT_TRUE(page->IsChanged());
    page->Set(&WakeOptions::onLink, false);
    EXPECT_FALSE(page->IsChanged());
    page->Set(&WakeOptions::onPattern, false);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_TRUE(m_desk.Calls(L"SetPowerUsageOptions").empty());
}

TEST_F(PowerPageTest, TellsWhatSomebodyElseChangedMeanwhile) {
    const auto page = Open(kQuad);
    page->SetMode(2);
    WriteBehind({.mode = 1}, {});
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(page->Notice(), Say(TextId::ChangedMeanwhile, {Say(TextId::PowerModeName), L"1"}));
    EXPECT_EQ(page->Power().mode, 2U) << "what was chosen stays";
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(There().first.mode, 2U);
}

TEST_F(PowerPageTest, TakesOverWhatSomebodyElseChangedBesides) {
    const auto page = Open(kQuad);
    page->Set(&WakeOptions::onLink, true);
    WriteBehind({.smartPowerDown = true}, {.onMagicPacket = false});
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(page->Power().smartPowerDown, true);
    EXPECT_EQ(There().second.onMagicPacket, false);
    EXPECT_EQ(There().second.onLink, true);
}

TEST_F(PowerPageTest, ARefusalKeepsWhatWasChosen) {
    const auto page = Open(kQuad);
    page->Set(&WakeOptions::onLink, true);
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"SetWakeOnLanPowerOptions", .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(page->Wake().onLink, true);
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0);
}

TEST_F(PowerPageTest, WhatCannotBeReadIsToldAndNotWritten) {
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"GetPowerUsageOptions", .repeat = true, .code = HRESULT(WBEM_E_FAILED)});
    const auto page = Open(kQuad);
    EXPECT_NE(page->Notice(), L"");
    EXPECT_FALSE(page->HasModes());
    page->SetMode(1);
    page->Set(&WakeOptions::onLink, true);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_TRUE(m_desk.Calls(L"SetPowerUsageOptions").empty());
    m_desk.Machine().Rules().Clear();
    EXPECT_EQ(There().second.onLink, true);
}

TEST_F(PowerPageTest, ReappliesInASetOfItsOwn) {
    const auto page = Open(kQuad);
    int restarts = 0;
    page->restartNeeded = [&restarts] { ++restarts; };
    EXPECT_EQ(m_desk.Do(page->Reapplying()), L"");
    EXPECT_EQ(page->Notice(), Say(TextId::PowerReapplied));
    EXPECT_EQ(restarts, 0);
    EXPECT_EQ(m_desk.Calls(L"Apply").size(), 2U);
    m_desk.Machine().RequireFollowup(1);
    EXPECT_EQ(m_desk.Do(page->Reapplying()), L"");
    EXPECT_EQ(restarts, 1);
}

TEST_F(PowerPageTest, AnAdapterWithoutOptionsSaysSo) {
    const auto page = Open(kWithoutPower);
    for (const auto& option : kPowerOptions) {
        EXPECT_EQ(page->Power().*option.value, std::nullopt);
    }
    EXPECT_NE(page->WhyNotAll(), L"");
}

} // namespace

} // namespace quillet::tests
