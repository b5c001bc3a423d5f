// The test of a team's switch.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// The page "Switch test". It runs inside the provider; the window asks how far it is.
class SwitchTestPage : public Page {
  public:
    explicit SwitchTestPage(TeamId team) : m_team(std::move(team)) {}

    Job Reading() override;

    bool CanStart() const noexcept { return m_hasTest && !IsRunning(); }
    bool IsRunning() const noexcept { return m_test.status == SwitchTestStatus::Running; }
    /// How far it is, in words.
    std::wstring Status() const;
    const std::vector<SwitchTrouble>& Troubles() const noexcept { return m_test.troubles; }

    /// Starts, asks or stops it.
    Job Sending(SwitchCommand command);

  private:
    TeamId m_team;
    bool m_hasTest = false;
    SwitchTest m_test;
};

} // namespace quillet::pages
