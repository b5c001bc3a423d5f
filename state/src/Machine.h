// What is read of a machine, when it is first asked for.
#pragma once

#include <quillet-state/Document.h>

#include <quillet/client/Session.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillet::state {

/// Whose settings.
using Owner = std::variant<AdapterId, TeamId, VlanId>;

/// Where an adapter is, and by which address the network knows it (UTF-8).
struct Place {
    std::string slot;
    std::string port;
    std::string mac;
};

struct TeamFacts {
    Team team;
    std::vector<TeamMember> members;

    /// The member of a role; null where there is none.
    const TeamMember* Holder(MemberRole role) const;
};

/// A machine as it was when each part of it was first asked for. All questions throw Error where the provider
/// does not answer.
class Machine {
  public:
    explicit Machine(Session& session) : m_session(session) {}

    Session& Asked() noexcept { return m_session; }

    const std::vector<Adapter>& Adapters();
    const Place& PlaceOf(std::size_t adapter);
    const std::vector<Setting>& Settings(const Owner& owner);
    const PowerOptions& Power(std::size_t adapter);
    const WakeOptions& Wake(std::size_t adapter);
    /// An adapter's part in booting from iSCSI; null for one that cannot.
    const IscsiAdapter* Iscsi(std::size_t adapter);
    const std::vector<TeamFacts>& Teams();
    /// The VLANs of an adapter or a team; none for one that carries none.
    const std::vector<Vlan>& Vlans(const VlanParentId& parent);

    /// The adapters that a selector names, by their places in the list.
    std::vector<std::size_t> Select(const Selector& selector);
    /// The adapter with an identifier; nothing for one that is not in the list.
    std::optional<std::size_t> Find(const AdapterId& id);
    /// The team that an adapter is a member of, by its place in the list.
    std::optional<std::size_t> TeamOf(std::size_t adapter);
    /// The teams of a name: to the letter, else whatever the case.
    std::vector<std::size_t> TeamsCalled(const std::string& name);
    /// What names an adapter alone: its name or, where others have it too, its object ID (UTF-8).
    std::string NameOf(std::size_t adapter);

  private:
    std::vector<std::size_t> Named(const std::string& text);
    std::vector<std::size_t> WithMac(const std::string& digits);

    Session& m_session;
    std::optional<std::vector<Adapter>> m_adapters;
    std::map<std::size_t, Place> m_places;
    std::map<std::wstring, std::vector<Setting>> m_settings;
    std::map<std::size_t, PowerOptions> m_power;
    std::map<std::size_t, WakeOptions> m_wake;
    std::optional<std::vector<IscsiAdapter>> m_iscsi;
    std::optional<std::vector<TeamFacts>> m_teams;
    std::map<std::wstring, std::vector<Vlan>> m_vlans;
};

/// The object path of an owner or a parent.
template <class Ids>
const std::wstring& PathOf(const Ids& id) {
    return std::visit([](const auto& each) -> const std::wstring& { return each.Path(); }, id);
}

} // namespace quillet::state
