// A team: its name, its mode, its members.
#include "model/TeamPage.h"

#include "model/TeamWords.h"

#include <algorithm>
#include <iterator>

namespace quillet::pages {

struct TeamPage::Read {
    Team team;
    std::wstring status;
    std::vector<TeamMember> members;
    std::vector<AdapterOverview> adapters;
};

namespace {

/// Those of the first that are not among the second; both in order.
std::vector<AdapterId> Difference(const std::vector<AdapterId>& first, const std::vector<AdapterId>& second) {
    std::vector<AdapterId> rest;
    std::ranges::set_difference(first, second, std::back_inserter(rest));
    return rest;
}

TeamRow RowOf(const AdapterOverview& adapter, const TeamId& team, const std::vector<TeamMember>& members) {
    TeamRow row{.id = adapter.adapter.id,
                .name = AdapterRowLabel(adapter),
                .link = ShortLinkWords(adapter),
                .status = {}};
    const auto member = std::ranges::find(members, row.id, &TeamMember::id);
    row.isFree = adapter.team.IsEmpty() || adapter.team == team;
    if (member != members.end()) {
        row.status = InOwnLanguage(Text(member->status));
    } else if (!row.isFree) {
        row.status = Say(TextId::MemberOf, {adapter.teamName});
    }
    return row;
}

} // namespace

Job TeamPage::Reading() {
    return [page = Self<TeamPage>(), id = m_team](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        read.team = session.ReadTeam(id);
        if (const auto status = ReadIfThere([&] { return session.ReadStatus(id); }, notice)) {
            read.status = InOwnLanguage(Text(*status));
        }
        read.members = ReadWhatThereIs([&] { return session.Members(id); }, notice);
        read.adapters = ReadOverviews(session, notice);
        return [page, read = std::move(read), notice] { page->Take(read, notice); };
    };
}

void TeamPage::Take(const Read& read, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    const auto note = [&](bool isDisputed, TextId field, const std::wstring& value) {
        if (isDisputed) {
            NoteDispute();
            notice = Say(TextId::ChangedMeanwhile, {Say(field), value});
        }
    };
    TeamEntry now{read.team.name, read.team.mode, {}};
    std::map<AdapterId, MemberRole> roles;
    std::wstring names;
    for (const TeamMember& member : read.members) {
        now.members.push_back(member.id);
        roles[member.id] = member.role;
        names += (names.empty() ? L"" : L", ") + member.displayName;
    }
    std::ranges::sort(now.members);
    note(TakeOver(m_read.name, m_wanted.name, now.name), TextId::FieldName, now.name);
    note(TakeOver(m_read.mode, m_wanted.mode, now.mode), TextId::FieldMode, InOwnLanguage(Text(now.mode)));
    note(TakeOver(m_read.members, m_wanted.members, now.members), TextId::FieldMembers, names);
    std::erase_if(m_wantedRoles, [&](const auto& wanted) {
        const auto role = roles.find(wanted.first);
        return (role != roles.end() && role->second == wanted.second) || !IsMember(wanted.first);
    });
    m_read = now;
    m_readRoles = roles;
    m_macAddress = read.team.macAddress;
    m_status = read.status;
    m_rows.clear();
    for (const AdapterOverview& adapter : read.adapters) {
        m_rows.push_back(RowOf(adapter, m_team, read.members));
    }
    std::stable_partition(m_rows.begin(), m_rows.end(),
                          [&](const TeamRow& row) { return roles.contains(row.id); });
    m_opinion.Forget();
    NoteRead(std::move(notice));
}

bool TeamPage::IsMember(const AdapterId& id) const {
    return std::ranges::binary_search(m_wanted.members, id);
}

MemberRole TeamPage::RoleOf(const AdapterId& id) const {
    const auto read = [this](const AdapterId& member) {
        const auto found = m_readRoles.find(member);
        return found != m_readRoles.end() ? found->second : MemberRole::NotAssigned;
    };
    if (const auto wanted = m_wantedRoles.find(id); wanted != m_wantedRoles.end()) {
        return wanted->second;
    }
    const MemberRole role = read(id);
    for (const auto& [other, wanted] : m_wantedRoles) {
        if (wanted == role && role != MemberRole::NotAssigned) {
            return read(other); // who gives a role away gets that of who takes it
        }
    }
    return role;
}

bool TeamPage::IsChanged() const {
    return !(m_wanted == m_read) || !m_wantedRoles.empty();
}

std::wstring TeamPage::Mistake() const {
    if (m_wanted.name.empty() && IsRead()) {
        return Say(TextId::NameNeeded);
    }
    const Verdict* verdict = m_opinion.Of(m_wanted);
    return verdict != nullptr ? TextsOf(verdict->problems) : std::wstring();
}

TeamPage::Verdict TeamPage::Judge(Session& session, const TeamId& team, const TeamEntry& before,
                                  const TeamEntry& wanted) {
    Verdict verdict;
    if (!wanted.members.empty()) {
        verdict.modes = BestFirst(session.CommonTeamModes(wanted.members));
    }
    if (wanted.name != before.name) {
        verdict.problems |= session.ValidateTeamName(wanted.name, team);
    }
    if (wanted.mode != before.mode) {
        verdict.problems |= session.ValidateTeamMode(wanted.mode, team);
    }
    if (wanted.members != before.members) {
        const std::vector<TeamMember> members = session.Members(team);
        const std::vector<AdapterId> added = Difference(wanted.members, before.members);
        if (!added.empty()) {
            verdict.problems |= session.ValidateAddedMembers(team, members, added);
        }
        verdict.rss = session.CheckRss(members, wanted.members);
    }
    return verdict;
}

Job TeamPage::Checking() {
    if (!IsRead() || m_wanted.name.empty()) {
        return nullptr;
    }
    return m_opinion.Question(shared_from_this(), m_wanted,
                              [team = m_team, before = m_read](Session& session, const TeamEntry& wanted) {
                                  return Judge(session, team, before, wanted);
                              });
}

Change TeamPage::Changes() const {
    Change change;
    for (const AdapterId& id : Difference(m_read.members, m_wanted.members)) {
        const auto row = std::ranges::find(m_rows, id, &TeamRow::id);
        change.warnings.push_back(Say(TextId::LeavesTeam, {row != m_rows.end() ? row->name : id.Path()}));
    }
    if (m_wanted.members.empty()) {
        change.warnings.push_back(Say(TextId::TeamWithoutMembers));
    }
    if (const Verdict* verdict = m_opinion.Of(m_wanted)) {
        for (const std::wstring& text : Texts(verdict->rss)) {
            change.warnings.push_back(InOwnLanguage(text));
        }
    }
    change.write = [team = m_team, before = m_read, wanted = m_wanted,
                    roles = m_wantedRoles](Session& session) {
        if (wanted.members != before.members) {
            session.SetMembers(team, session.Members(team), wanted.members);
        }
        if (wanted.name != before.name || wanted.mode != before.mode) {
            session.ModifyTeam(team, wanted.name, wanted.mode);
        }
        for (const auto& [member, role] : roles) {
            session.SetRole(member, role);
        }
    };
    change.check = [team = m_team, before = m_read, wanted = m_wanted](Session& session) {
        return TextsOf(Judge(session, team, before, wanted).problems);
    };
    return change;
}

std::vector<TeamMode> TeamPage::Modes() const {
    std::vector<TeamMode> modes = m_opinion.Last().modes;
    if (std::ranges::find(modes, m_wanted.mode) == modes.end()) {
        modes.push_back(m_wanted.mode);
    }
    return modes;
}

std::wstring TeamPage::About() const {
    return m_best.empty() ? AboutMode(m_wanted.mode) : m_best;
}

void TeamPage::TypeName(const std::wstring& name) {
    m_wanted.name = name;
    SetNotice({}); // it was about what was entered before
}

void TeamPage::PickMode(TeamMode mode) {
    m_wanted.mode = mode;
    m_best.clear();
    SetNotice({}); // it was about what was entered before
}

void TeamPage::Tick(const AdapterId& id, bool isMember) {
    const auto row = std::ranges::find(m_rows, id, &TeamRow::id);
    if (isMember && !IsMember(id) && row != m_rows.end() && row->isFree) {
        m_wanted.members.insert(std::ranges::upper_bound(m_wanted.members, id), id);
    } else if (!isMember) {
        std::erase(m_wanted.members, id);
        m_wantedRoles.erase(id);
    }
    SetNotice({}); // it was about what was entered before
}

void TeamPage::SetRole(const AdapterId& id, MemberRole role) {
    if (!IsMember(id)) {
        return;
    }
    if (role != MemberRole::NotAssigned) {
        std::erase_if(m_wantedRoles, [role](const auto& wanted) { return wanted.second == role; });
    }
    m_wantedRoles.erase(id);
    if (RoleOf(id) != role) {
        m_wantedRoles[id] = role;
    }
    SetNotice({}); // it was about what was entered before
}

Job TeamPage::FindingBest() {
    return [page = Self<TeamPage>(), id = m_team](Session& session, const Asking&) -> Answer {
        const BestTeamMode found = session.FindBestTeamMode(id);
        return [page, found] {
            const std::wstring coverage = std::to_wstring(found.coverage);
            page->m_isSearching = found.status == AutoDetectStatus::Running;
            if (found.status == AutoDetectStatus::Completed) {
                page->PickMode(found.best.mode);
                page->m_best = Say(TextId::BestModeFound, {InOwnLanguage(Text(found.best.mode)), coverage}) +
                               L"\r\n" + AboutMode(found.best.mode);
            } else {
                page->m_best = page->m_isSearching ? Say(TextId::BestModeRunning, {coverage})
                                                   : Say(TextId::BestModeUnknown);
            }
            page->NoteChange();
        };
    };
}

} // namespace quillet::pages
