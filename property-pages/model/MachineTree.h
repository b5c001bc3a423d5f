// What the start window lists: adapters, teams, VLANs.
#pragma once

#include "model/Page.h"

#include <variant>

namespace quillet::pages {

/// Which object a line of the tree stands for; nothing for a heading.
using ObjectId = std::variant<std::monostate, AdapterId, TeamId, VlanId>;

/// A line of the tree.
struct Node {
    ObjectId id;
    std::wstring name;     ///< of the object
    std::wstring state;    ///< in words; empty: there is nothing to say
    VlanParentId parent{}; ///< of a VLAN
    std::vector<Node> children{};

    /// Name and state.
    std::wstring Line() const { return state.empty() ? name : name + L" — " + state; }
};

/// The tree. It is a page of no sheet, and read as one.
class MachineTree : public Page {
  public:
    Job Reading() override;

    /// Two headings: adapters and teams, each with its VLANs.
    const std::vector<Node>& Headings() const noexcept { return m_headings; }
    /// The node of an object; null where there is none any more.
    const Node* Find(const ObjectId& id) const;
    /// The adapter of that display name, MAC address or device identifier, without regard to case; null where
    /// there is none.
    const Node* FindAdapter(const std::wstring& name) const;
    /// What goes with an object that is deleted, in words; empty for one that cannot be.
    std::wstring Consequences(const Node& node) const;
    /// Removes a team or a VLAN, in a client set of its own. The answer reads the tree again.
    Job Deleting(const ObjectId& id, std::function<void(bool restartNeeded)> done) const;

  private:
    struct AdapterNames {
        AdapterId id;
        std::wstring name;
        std::wstring macAddress;
        std::wstring deviceId;
    };
    struct Read;

    std::vector<Node> m_headings;
    std::vector<AdapterNames> m_names;
};

} // namespace quillet::pages
