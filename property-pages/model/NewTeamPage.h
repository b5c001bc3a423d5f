// A team that is to be made, step by step.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// An adapter that may become a member, or cannot.
struct Candidate {
    AdapterId id;
    std::wstring name; ///< with slot and port
    std::wstring link;
    std::wstring whyNot; ///< in words; empty where it can
};

/// What the New Team wizard shows on all of its pages. The team is made when it is applied.
class NewTeamPage : public Page {
  public:
    enum class Step { Name, Members, Mode, Summary };

    /// @param first an adapter that becomes a member if it can; empty: none
    explicit NewTeamPage(AdapterId first = {}) : m_first(std::move(first)) {}

    Job Reading() override;
    bool IsChanged() const override { return !m_isMade; }
    Change Changes() const override;
    void Settle() override { m_isMade = true; }

    const NewTeam& Wanted() const noexcept { return m_wanted; }
    const std::vector<Candidate>& Candidates() const noexcept { return m_candidates; }
    bool IsMember(const AdapterId& id) const;
    /// The members in the order of their list; the primary one is the first of `Wanted().members`.
    std::vector<Candidate> Members() const;
    /// The modes that the members have in common, the best first.
    const std::vector<TeamMode>& Modes() const noexcept { return m_modes; }
    /// What will be done, in words.
    std::wstring Summary() const;
    /// Whether a step is being checked, or the team is being made.
    bool IsBusy() const noexcept { return m_isBusy; }

    void TypeName(const std::wstring& name);
    void Tick(const AdapterId& id, bool isMember);
    void MakePrimary(const AdapterId& id);
    void PickMode(TeamMode mode);
    void AllowOtherMakers(bool isAllowed);
    void SecureLink(bool isSecured);

    /// Checks what a step has asked for. What is wrong is told in the notice, and the user stays there.
    Job Verifying(Step step, std::function<void()> good);
    /// Verifying failed: the machine could not be asked.
    void NoteFailure(const std::wstring& reason);

  private:
    struct Findings;
    static Findings Check(Session& session, Step step, NewTeam wanted);
    void Take(Step step, const Findings& found, const std::function<void()>& good);
    /// Takes away the members that somebody else has made something of.
    /// @returns who, in words; empty: nobody
    std::wstring DropWhoCannot();

    AdapterId m_first;
    NewTeam m_wanted;
    std::vector<Candidate> m_candidates;
    std::vector<TeamMode> m_modes;
    std::wstring m_consequences; ///< as the last step was checked
    bool m_isBusy = false;
    bool m_isMade = false;
};

} // namespace quillet::pages
