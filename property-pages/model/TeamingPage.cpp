// What an adapter is to a team.
#include "model/TeamingPage.h"

#include "model/TeamWords.h"

#include <algorithm>

namespace quillet::pages {

struct TeamingPage::Read {
    std::vector<TeamChoice> teams;
    TeamId team;
    MemberRole role{};
    std::wstring status;
    std::vector<MemberRow> members;
    std::wstring modes;
    std::wstring ports;
    bool canBeTeamed = true;
};

namespace {

using Overviews = std::vector<AdapterOverview>;

const AdapterOverview* Find(const Overviews& adapters, const AdapterId& id) {
    const auto found =
        std::ranges::find_if(adapters, [&](const AdapterOverview& each) { return each.adapter.id == id; });
    return found != adapters.end() ? &*found : nullptr;
}

void AppendLine(std::wstring& text, const std::wstring& line) {
    text += (text.empty() ? L"" : L"\r\n") + line;
}

std::wstring ModesOf(Session& session, const AdapterId& adapter, std::wstring& notice) {
    std::wstring lines;
    const auto offered = ReadIfThere([&] { return session.TeamModes(adapter); }, notice);
    for (const TeamMode mode : BestFirst(offered.value_or(std::vector<OfferedTeamMode>()))) {
        AppendLine(lines, InOwnLanguage(Text(mode)));
    }
    return lines;
}

std::wstring PortsOf(Session& session, const AdapterId& adapter, const Overviews& adapters,
                     std::wstring& notice) {
    std::wstring lines;
    const auto ports = ReadIfThere([&] { return session.TeamedPorts(adapter); }, notice);
    for (const TeamedPort& port : ports.value_or(std::vector<TeamedPort>())) {
        const AdapterOverview* found = Find(adapters, port.id);
        if (found != nullptr && port.id != adapter) {
            AppendLine(lines, AdapterLabel(*found) + L": " + found->teamName);
        }
    }
    return lines;
}

MemberRow RowOf(const TeamMember& member, const Overviews& adapters) {
    const AdapterOverview* adapter = Find(adapters, member.id);
    return {.name = adapter != nullptr ? AdapterRowLabel(*adapter) : member.displayName,
            .link = adapter != nullptr ? ShortLinkWords(*adapter) : Say(TextId::Unknown),
            .role = InOwnLanguage(Text(member.role)),
            .status = InOwnLanguage(Text(member.status))};
}

std::vector<AdapterId> IdsOf(const std::vector<TeamMember>& members) {
    std::vector<AdapterId> ids;
    std::ranges::transform(members, std::back_inserter(ids), &TeamMember::id);
    return ids;
}

} // namespace

Job TeamingPage::Reading() {
    return [page = Self<TeamingPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        const Overviews adapters = ReadOverviews(session, notice);
        if (const auto known = ReadIfThere([&] { return session.Capabilities(id); }, notice)) {
            read.canBeTeamed = std::ranges::find(*known, Capability::Teaming) != known->end();
        }
        for (const quillet::Team& team : ReadWhatThereIs([&] { return session.Teams(); }, notice)) {
            read.teams.push_back({team.id, team.name});
        }
        if (const AdapterOverview* own = Find(adapters, id); own != nullptr && !own->team.IsEmpty()) {
            read.team = own->team;
            read.role = own->role;
            for (const TeamMember& member :
                 ReadWhatThereIs([&] { return session.Members(own->team); }, notice)) {
                read.members.push_back(RowOf(member, adapters));
                if (member.id == id) {
                    read.status = read.members.back().status;
                }
            }
        }
        read.modes = ModesOf(session, id, notice);
        read.ports = PortsOf(session, id, adapters, notice);
        return [page, read = std::move(read), notice] { page->Take(read, notice); };
    };
}

void TeamingPage::Take(const Read& read, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    m_canBeTeamed = read.canBeTeamed || !read.team.IsEmpty();
    m_teams = {{TeamId(), Say(TextId::NoTeam)}};
    m_teams.insert(m_teams.end(), read.teams.begin(), read.teams.end());
    m_members = read.members;
    m_status = read.status;
    m_modes = read.modes;
    m_ports = read.ports;
    if (TakeOver(m_read, m_wanted, read.team)) {
        NoteDispute();
        notice = Say(TextId::ChangedMeanwhile, {Say(TextId::FieldTeam), NameOf(read.team)});
    }
    m_read = read.team;
    m_readRole = read.role;
    if (m_wanted.IsEmpty() || (m_wanted == m_read && m_wantedRole == m_readRole)) {
        m_wantedRole.reset();
    }
    if (std::ranges::find(m_teams, m_wanted, &TeamChoice::id) == m_teams.end()) {
        m_wanted = m_read; // somebody else has deleted it
    }
    m_opinion.Forget();
    NoteRead(m_canBeTeamed ? std::move(notice) : Say(TextId::AdapterCannotBeTeamed));
}

std::wstring TeamingPage::NameOf(const TeamId& team) const {
    const auto found = std::ranges::find(m_teams, team, &TeamChoice::id);
    return found != m_teams.end() ? found->name : team.Path();
}

MemberRole TeamingPage::Role() const {
    return m_wantedRole.value_or(m_wanted == m_read ? m_readRole : MemberRole::NotAssigned);
}

bool TeamingPage::IsChanged() const {
    return m_wanted != m_read || m_wantedRole.has_value();
}

TeamingPage::Verdict TeamingPage::Judge(Session& session, const AdapterId& adapter, const TeamId& before,
                                        const TeamId& wanted) {
    Verdict verdict;
    if (!before.IsEmpty()) {
        verdict.leavesNobody = session.Members(before).size() == 1;
    }
    if (!wanted.IsEmpty()) {
        const std::vector<TeamMember> members = session.Members(wanted);
        verdict.problems = session.ValidateAddedMembers(wanted, members, {&adapter, 1});
        if (!before.IsEmpty()) {
            verdict.problems = Without(verdict.problems, {TeamProblem::AlreadyTeamed}); // it leaves first
        }
        std::vector<AdapterId> all = IdsOf(members);
        all.push_back(adapter);
        verdict.rss = session.CheckRss(members, all);
    }
    return verdict;
}

Job TeamingPage::Checking() {
    if (m_wanted == m_read) {
        return nullptr;
    }
    return m_opinion.Question(shared_from_this(), m_wanted,
                              [adapter = m_adapter, before = m_read](Session& session, const TeamId& wanted) {
                                  return Judge(session, adapter, before, wanted);
                              });
}

std::wstring TeamingPage::Mistake() const {
    const Verdict* verdict = m_wanted == m_read ? nullptr : m_opinion.Of(m_wanted);
    return verdict != nullptr ? TextsOf(verdict->problems) : std::wstring();
}

Change TeamingPage::Changes() const {
    Change change;
    if (m_wanted != m_read && !m_read.IsEmpty()) {
        change.warnings.push_back(Say(TextId::LeavesNamedTeam, {NameOf(m_read)}));
    }
    if (const Verdict* verdict = m_wanted == m_read ? nullptr : m_opinion.Of(m_wanted)) {
        if (verdict->leavesNobody) {
            change.warnings.push_back(Say(TextId::TeamWithoutMembers));
        }
        for (const std::wstring& text : Texts(verdict->rss)) {
            change.warnings.push_back(InOwnLanguage(text));
        }
    }
    change.write = [adapter = m_adapter, before = m_read, wanted = m_wanted,
                    role = m_wantedRole](Session& session) {
        if (wanted != before && !before.IsEmpty()) {
            session.RemoveMember(before, adapter);
        }
        if (wanted != before && !wanted.IsEmpty()) {
            session.AddMember(wanted, adapter);
        }
        if (role) {
            session.SetRole(adapter, *role);
        }
    };
    change.check = [adapter = m_adapter, before = m_read, wanted = m_wanted](Session& session) {
        return wanted != before ? TextsOf(Judge(session, adapter, before, wanted).problems) : std::wstring();
    };
    return change;
}

void TeamingPage::PickTeam(const TeamId& team) {
    m_wanted = team;
    m_wantedRole.reset();
    SetNotice({}); // it was about what was entered before
}

void TeamingPage::PickRole(MemberRole role) {
    m_wantedRole.reset();
    if (!m_wanted.IsEmpty() && role != Role()) {
        m_wantedRole = role;
    }
    SetNotice({}); // it was about what was entered before
}

} // namespace quillet::pages
