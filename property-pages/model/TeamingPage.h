// What an adapter is to a team.
#pragma once

#include "model/Opinion.h"

namespace quillet::pages {

/// A team that an adapter may join.
struct TeamChoice {
    TeamId id; ///< empty: no team
    std::wstring name;
    friend bool operator==(const TeamChoice&, const TeamChoice&) = default;
};

/// A member of the adapter's team, as a list shows it.
struct MemberRow {
    std::wstring name;
    std::wstring link;
    std::wstring role;
    std::wstring status;
};

/// The page "Teaming" of an adapter.
class TeamingPage : public Page {
  public:
    explicit TeamingPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;
    Job Checking() override;
    std::wstring Remark() const override { return Mistake(); }

    const AdapterId& Adapter() const noexcept { return m_adapter; }
    /// Whether the adapter can be a team's member at all.
    bool CanBeTeamed() const noexcept { return m_canBeTeamed; }
    /// Whether it is one as far as the machine knows.
    bool IsTeamed() const noexcept { return !m_read.IsEmpty(); }
    /// No team, and the teams that there are.
    const std::vector<TeamChoice>& Teams() const noexcept { return m_teams; }
    /// The team that is wanted.
    const TeamId& Team() const noexcept { return m_wanted; }
    /// What it is to that team, or will be.
    MemberRole Role() const;
    /// Its status as a member.
    const std::wstring& Status() const noexcept { return m_status; }
    /// The members of the team that it is in.
    const std::vector<MemberRow>& Members() const noexcept { return m_members; }
    /// The modes that it can be teamed in, a line each.
    const std::wstring& Modes() const noexcept { return m_modes; }
    /// The ports of its board that are in teams, a line each.
    const std::wstring& Ports() const noexcept { return m_ports; }

    void PickTeam(const TeamId& team);
    void PickRole(MemberRole role);

  private:
    struct Read;
    struct Verdict {
        Flags<TeamProblem> problems;
        Flags<RssProblem> rss;
        bool leavesNobody = false;
    };

    void Take(const Read& read, std::wstring notice);
    std::wstring NameOf(const TeamId& team) const;
    static Verdict Judge(Session& session, const AdapterId& adapter, const TeamId& before,
                         const TeamId& wanted);

    AdapterId m_adapter;
    bool m_canBeTeamed = false;
    std::vector<TeamChoice> m_teams;
    std::vector<MemberRow> m_members;
    std::wstring m_status;
    std::wstring m_modes;
    std::wstring m_ports;
    TeamId m_read;
    TeamId m_wanted;
    MemberRole m_readRole{};
    std::optional<MemberRole> m_wantedRole;
    Opinion<TeamId, Verdict> m_opinion;
};

} // namespace quillet::pages
