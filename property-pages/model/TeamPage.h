// A team: its name, its mode, its members.
#pragma once

#include "model/Opinion.h"

#include <map>

namespace quillet::pages {

/// What the user wants of a team, apart from roles.
struct TeamEntry {
    std::wstring name;
    TeamMode mode{};
    std::vector<AdapterId> members; ///< in the order of their identifiers
    friend bool operator==(const TeamEntry&, const TeamEntry&) = default;
};

/// An adapter that is a member, or could be one.
struct TeamRow {
    AdapterId id;
    std::wstring name;   ///< behind slot and port
    std::wstring link;   ///< in words
    std::wstring status; ///< of a member; of another team's: which
    bool isFree = false; ///< whether it may become a member, or is one
};

/// The page "Team".
class TeamPage : public Page {
  public:
    explicit TeamPage(TeamId team) : m_team(std::move(team)) {}

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;
    Job Checking() override;
    std::wstring Remark() const override { return Mistake(); }

    const TeamEntry& Entry() const noexcept { return m_wanted; }
    const std::wstring& MacAddress() const noexcept { return m_macAddress; }
    const std::wstring& Status() const noexcept { return m_status; }
    const std::vector<TeamRow>& Rows() const noexcept { return m_rows; }
    bool IsMember(const AdapterId& id) const;
    /// What a member will be to the team. Two cannot be the same but "not assigned".
    MemberRole RoleOf(const AdapterId& id) const;
    /// The modes that the members have in common, the best first; the mode that it has is always among them.
    std::vector<TeamMode> Modes() const;
    /// About the mode that is chosen, and about the search for the best one.
    std::wstring About() const;

    void TypeName(const std::wstring& name);
    void PickMode(TeamMode mode);
    void Tick(const AdapterId& id, bool isMember);
    void SetRole(const AdapterId& id, MemberRole role);

    /// Asks for the mode that suits the team best, and chooses it.
    Job FindingBest();
    /// Whether it is still looking for it: ask again.
    bool IsSearching() const noexcept { return m_isSearching; }

  private:
    struct Read;
    struct Verdict {
        Flags<TeamProblem> problems;
        Flags<RssProblem> rss;
        std::vector<TeamMode> modes;
    };

    void Take(const Read& read, std::wstring notice);
    static Verdict Judge(Session& session, const TeamId& team, const TeamEntry& before,
                         const TeamEntry& wanted);

    TeamId m_team;
    std::wstring m_macAddress;
    std::wstring m_status;
    std::vector<TeamRow> m_rows;
    TeamEntry m_read;
    TeamEntry m_wanted;
    std::map<AdapterId, MemberRole> m_readRoles;
    std::map<AdapterId, MemberRole> m_wantedRoles; ///< those that the user chose
    std::wstring m_best;
    bool m_isSearching = false;
    Opinion<TeamEntry, Verdict> m_opinion;
};

} // namespace quillet::pages
