// What the start window lists.
#include "model/MachineTree.h"

#include "model/VlanParent.h"
#include "model/Words.h"

#include <algorithm>
#include <cwctype>

namespace quillet::pages {

namespace {

bool IsSameText(const std::wstring& left, const std::wstring& right) {
    const auto lower = [](wchar_t character) { return std::towlower(static_cast<std::wint_t>(character)); };
    return std::ranges::equal(left, right, {}, lower, lower);
}

Node HeadingOf(TextId name) {
    return {.id = {}, .name = Say(name), .state = {}};
}

/// The VLANs of a parent, as nodes.
std::vector<Node> VlanNodes(Session& session, const VlanParentId& parent, std::wstring& notice) {
    const auto vlans = ReadIfThere([&] { return session.Vlans(parent); }, notice);
    std::vector<Node> nodes;
    for (const Vlan& vlan : vlans.value_or(std::vector<Vlan>())) {
        nodes.push_back({.id = vlan.id,
                         .name = VlanLabel(vlan),
                         .state = InOwnLanguage(Text(vlan.status)),
                         .parent = parent});
    }
    return nodes;
}

Node AdapterNode(Session& session, const AdapterOverview& overview, std::wstring& notice) {
    std::wstring state = ShortLinkWords(overview);
    if (!overview.teamName.empty()) {
        state += L", " + Say(TextId::MemberOf, {overview.teamName});
    }
    return {.id = overview.adapter.id,
            .name = AdapterLabel(overview),
            .state = state,
            .children = overview.team.IsEmpty() ? VlanNodes(session, overview.adapter.id, notice)
                                                : std::vector<Node>()};
}

Node TeamNode(Session& session, const Team& team, const std::vector<AdapterOverview>& adapters,
              std::wstring& notice) {
    const auto members = std::ranges::count(adapters, team.id, &AdapterOverview::team);
    return {.id = team.id,
            .name = team.name,
            .state =
                InOwnLanguage(Text(team.mode)) + L", " +
                Say(members == 1 ? TextId::OneMember : TextId::SeveralMembers, {std::to_wstring(members)}),
            .children = VlanNodes(session, team.id, notice)};
}

const Node* FindIn(const std::vector<Node>& nodes, const ObjectId& id) {
    for (const Node& node : nodes) {
        if (node.id == id) {
            return &node;
        }
        if (const Node* below = FindIn(node.children, id)) {
            return below;
        }
    }
    return nullptr;
}

} // namespace

Job MachineTree::Reading() {
    return [tree = Self<MachineTree>()](Session& session, const Asking& asking) -> Answer {
        std::wstring notice;
        const std::vector<AdapterOverview> adapters = ReadOverviews(session, notice);
        std::vector<Node> headings{HeadingOf(TextId::Adapters), HeadingOf(TextId::Teams)};
        std::vector<AdapterNames> names;
        for (const AdapterOverview& overview : adapters) {
            if (asking.Stop().stop_requested()) {
                return nullptr;
            }
            headings[0].children.push_back(AdapterNode(session, overview, notice));
            names.push_back({overview.adapter.id, overview.adapter.displayName,
                             overview.hardware ? overview.hardware->macAddress : std::wstring(),
                             overview.adapter.deviceId});
        }
        for (const Team& team : ReadWhatThereIs([&] { return session.Teams(); }, notice)) {
            headings[1].children.push_back(TeamNode(session, team, adapters, notice));
        }
        return [tree, headings = std::move(headings), names = std::move(names), notice] {
            tree->m_headings = headings;
            tree->m_names = names;
            tree->NoteRead(notice);
        };
    };
}

const Node* MachineTree::Find(const ObjectId& id) const {
    return std::holds_alternative<std::monostate>(id) ? nullptr : FindIn(m_headings, id);
}

const Node* MachineTree::FindAdapter(const std::wstring& name) const {
    for (const AdapterNames& names : m_names) {
        if (IsSameText(names.name, name) || IsSameText(names.macAddress, name) ||
            IsSameText(names.deviceId, name)) {
            return Find(names.id);
        }
    }
    return nullptr;
}

std::wstring MachineTree::Consequences(const Node& node) const {
    if (std::holds_alternative<VlanId>(node.id)) {
        return Say(TextId::DeletesVlan, {node.name});
    }
    if (!std::holds_alternative<TeamId>(node.id)) {
        return {};
    }
    std::wstring text = Say(TextId::DeletesTeam, {node.name});
    for (const Node& vlan : node.children) {
        text += L"\r\n    " + vlan.name;
    }
    return text;
}

Job MachineTree::Deleting(const ObjectId& id, std::function<void(bool restartNeeded)> done) const {
    return [id, done = std::move(done)](Session& session, const Asking&) -> Answer {
        Transaction transaction(session);
        if (const auto* team = std::get_if<TeamId>(&id)) {
            session.RemoveTeam(*team);
        } else if (const auto* vlan = std::get_if<VlanId>(&id)) {
            session.RemoveVlan(*vlan);
        }
        const Followup followup = transaction.Apply();
        return [done, followup] { done(followup.restartNeeded); };
    };
}

} // namespace quillet::pages
