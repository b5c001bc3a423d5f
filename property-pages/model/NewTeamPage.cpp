// A team that is to be made, step by step.
#include "model/NewTeamPage.h"

#include "model/TeamWords.h"

#include <algorithm>

namespace quillet::pages {

namespace {

/// Why an adapter can become no member; what the machine does not tell is no reason.
std::wstring WhyNot(Session& session, const AdapterOverview& adapter, std::wstring& notice) {
    if (!adapter.team.IsEmpty()) {
        return Say(TextId::MemberOf, {adapter.teamName});
    }
    if (adapter.state && adapter.state->hardware == HardwareStatus::Missing) {
        return InOwnLanguage(Text(HardwareStatus::Missing));
    }
    const auto capabilities = ReadIfThere([&] { return session.Capabilities(adapter.adapter.id); }, notice);
    if (capabilities && std::ranges::find(*capabilities, Capability::Teaming) == capabilities->end()) {
        return Say(TextId::CannotBeTeamed);
    }
    const auto vlans = ReadIfThere([&] { return session.Vlans(adapter.adapter.id); }, notice);
    return vlans && !vlans->empty() ? Say(TextId::HasVlansOfItsOwn) : std::wstring();
}

/// What the choice of a mode may cause: it can be mended where the mode is chosen.
constexpr std::initializer_list<TeamProblem> kOfTheMode = {TeamProblem::ModeNotSupported,
                                                           TeamProblem::MoreThanTwo, TeamProblem::NoSuchMode,
                                                           TeamProblem::NoSharedSpeed};

std::wstring Line(TextId id, const std::wstring& value) {
    return Say(id, {value}) + L"\r\n";
}

} // namespace

struct NewTeamPage::Findings {
    Flags<TeamProblem> problems;
    bool canCarryVlans = true;
    Flags<RssProblem> rss;
    std::vector<TeamMode> modes;
};

Job NewTeamPage::Reading() {
    return [page = Self<NewTeamPage>(), isNamed = !m_wanted.name.empty()](Session& session,
                                                                          const Asking&) -> Answer {
        std::wstring notice;
        std::vector<Candidate> candidates;
        for (const AdapterOverview& adapter : ReadOverviews(session, notice)) {
            candidates.push_back({.id = adapter.adapter.id,
                                  .name = AdapterLabel(adapter),
                                  .link = ShortLinkWords(adapter),
                                  .whyNot = WhyNot(session, adapter, notice)});
        }
        std::wstring prefix;
        if (!isNamed) {
            prefix = ReadIfThere([&] { return session.TeamNamePrefix(); }, notice).value_or(L"");
        }
        return [page, candidates = std::move(candidates), prefix, notice] {
            page->m_candidates = candidates;
            const std::wstring gone = page->DropWhoCannot();
            if (!page->IsRead()) {
                if (page->m_wanted.name.empty()) {
                    page->m_wanted.name = prefix;
                }
                page->Tick(page->m_first, true);
            }
            page->NoteRead(gone.empty() ? notice : gone);
        };
    };
}

std::wstring NewTeamPage::DropWhoCannot() {
    std::wstring notice;
    for (const Candidate& candidate : m_isMade ? std::vector<Candidate>() : Members()) {
        if (!candidate.whyNot.empty()) {
            std::erase(m_wanted.members, candidate.id);
            NoteDispute(); // or a smaller team would be made than the user saw
            notice = Say(TextId::NoMemberAnyMore, {candidate.name, candidate.whyNot});
        }
    }
    return notice;
}

bool NewTeamPage::IsMember(const AdapterId& id) const {
    return std::ranges::find(m_wanted.members, id) != m_wanted.members.end();
}

std::vector<Candidate> NewTeamPage::Members() const {
    std::vector<Candidate> members;
    std::ranges::copy_if(m_candidates, std::back_inserter(members),
                         [this](const Candidate& candidate) { return IsMember(candidate.id); });
    return members;
}

void NewTeamPage::TypeName(const std::wstring& name) {
    m_wanted.name = name;
}

void NewTeamPage::Tick(const AdapterId& id, bool isMember) {
    const auto candidate = std::ranges::find(m_candidates, id, &Candidate::id);
    if (isMember && !IsMember(id) && candidate != m_candidates.end() && candidate->whyNot.empty()) {
        m_wanted.members.push_back(id);
    } else if (!isMember) {
        std::erase(m_wanted.members, id);
    }
    NoteChange();
}

void NewTeamPage::MakePrimary(const AdapterId& id) {
    if (IsMember(id)) {
        std::erase(m_wanted.members, id);
        m_wanted.members.insert(m_wanted.members.begin(), id);
    }
    NoteChange();
}

void NewTeamPage::PickMode(TeamMode mode) {
    m_wanted.mode = mode;
    NoteChange();
}

void NewTeamPage::AllowOtherMakers(bool isAllowed) {
    m_wanted.multiVendor = isAllowed;
    NoteChange();
}

void NewTeamPage::SecureLink(bool isSecured) {
    m_wanted.linkSecurity = isSecured;
    NoteChange();
}

NewTeamPage::Findings NewTeamPage::Check(Session& session, Step step, NewTeam wanted) {
    Findings found;
    if (step == Step::Name) {
        found.problems =
            session.CheckNewTeam(wanted, TeamCheck::Name) | session.ValidateTeamName(wanted.name);
        return found;
    }
    if (wanted.members.empty()) {
        return found;
    }
    found.modes = BestFirst(session.CommonTeamModes(wanted.members));
    const bool isOffered = std::ranges::find(found.modes, wanted.mode) != found.modes.end();
    if (!isOffered && !found.modes.empty()) {
        wanted.mode = found.modes.front();
    }
    const Flags<TeamProblem> members = session.CheckNewTeam(wanted, TeamCheck::Members);
    found.canCarryVlans = !members.Has(TeamProblem::NoVlans);
    found.problems = Without(members, {TeamProblem::NoVlans}) |
                     session.ValidateNewMembers(wanted.members, wanted.mode) |
                     session.ValidateMemberSettings(wanted.members);
    if (step == Step::Members) {
        found.problems = Without(found.problems, kOfTheMode);
    } else {
        found.problems |= session.ValidateTeamMode(wanted.mode);
        found.rss = session.CheckRss({}, wanted.members);
    }
    return found;
}

Job NewTeamPage::Verifying(Step step, std::function<void()> good) {
    m_isBusy = true;
    SetNotice(Say(TextId::Checking));
    return [page = Self<NewTeamPage>(), step, good = std::move(good),
            wanted = m_wanted](Session& session, const Asking&) -> Answer {
        return [page, step, good, found = Check(session, step, wanted)] { page->Take(step, found, good); };
    };
}

void NewTeamPage::Take(Step step, const Findings& found, const std::function<void()>& good) {
    m_isBusy = false;
    std::wstring notice = TextsOf(found.problems);
    if (step != Step::Name) {
        m_modes = found.modes;
        if (std::ranges::find(m_modes, m_wanted.mode) == m_modes.end() && !m_modes.empty()) {
            m_wanted.mode = m_modes.front();
        }
        m_consequences = (found.canCarryVlans ? std::wstring() : TextsOf(TeamProblem::NoVlans) + L"\r\n") +
                         InOwnLanguage(Texts(found.rss));
        if (m_wanted.members.empty()) {
            notice = Say(TextId::MembersNeeded);
        } else if (m_modes.empty() && notice.empty()) {
            notice = Say(TextId::NoCommonMode);
        }
    }
    SetNotice(notice);
    if (notice.empty()) {
        good();
    }
}

void NewTeamPage::NoteFailure(const std::wstring& reason) {
    m_isBusy = false;
    SetNotice(Say(TextId::NotChecked, {reason}));
}

std::wstring NewTeamPage::Summary() const {
    std::wstring text = Line(TextId::SummaryName, m_wanted.name);
    text += Line(TextId::SummaryMode, InOwnLanguage(Text(m_wanted.mode)));
    text += Line(TextId::SummaryMembers, std::to_wstring(m_wanted.members.size()));
    for (const AdapterId& id : m_wanted.members) {
        const auto candidate = std::ranges::find(m_candidates, id, &Candidate::id);
        if (candidate != m_candidates.end()) {
            const bool isPrimary = id == m_wanted.members.front();
            text += L"    " + (isPrimary ? Say(TextId::SummaryPrimary, {candidate->name}) : candidate->name) +
                    L"\r\n";
        }
    }
    if (m_wanted.multiVendor) {
        text += Say(TextId::SummaryOtherMakers) + L"\r\n";
    }
    if (m_wanted.linkSecurity) {
        text += Say(TextId::SummaryLinkSecurity) + L"\r\n";
    }
    text += L"\r\n" + Say(TextId::SummaryInterruption) + L"\r\n" + m_consequences;
    return text;
}

Change NewTeamPage::Changes() const {
    return {.write =
                [wanted = m_wanted](Session& session) {
                    try {
                        session.CreateTeam(wanted);
                    } catch (const PartialError<Team>& failure) {
                        if (failure.Read().id.IsEmpty()) {
                            throw;
                        }
                        // It was made, and could only not be read.
                    }
                },
            .check =
                [wanted = m_wanted](Session& session) {
                    // Somebody else may have changed the machine since the steps were checked.
                    const Flags<TeamProblem> name = Check(session, Step::Name, wanted).problems;
                    return TextsOf(name | Check(session, Step::Mode, wanted).problems);
                }};
}

} // namespace quillet::pages
