// The VLANs of an adapter or a team.
#pragma once

#include "model/VlanParent.h"

namespace quillet::pages {

/// The page "VLANs". What is done here is done at once, by dialogs of their own.
class VlansPage : public Page {
  public:
    explicit VlansPage(VlanParentId parent) : m_parentId(std::move(parent)) {}

    Job Reading() override;

    const VlanParentId& ParentId() const noexcept { return m_parentId; }
    const VlanParent& Parent() const noexcept { return m_parent; }
    bool CanAdd() const noexcept { return IsRead() && m_parent.support == VlanSupport::Supported; }
    /// The VLAN in a row of the list; null where there is none.
    const Vlan* At(int row) const noexcept;

  private:
    VlanParentId m_parentId;
    VlanParent m_parent;
};

} // namespace quillet::pages
