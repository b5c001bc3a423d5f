// One VLAN: its ID and its name.
#pragma once

#include "model/Opinion.h"
#include "model/VlanParent.h"

namespace quillet::pages {

/// What the user has entered about a VLAN.
struct VlanEntry {
    std::wstring id;
    std::wstring name;
    bool isUntagged = false;
    friend bool operator==(const VlanEntry&, const VlanEntry&) = default;
};

/// A VLAN that is there, or one that is to be made.
class VlanPage : public Page {
  public:
    /// @param vlan which; empty: a new one
    explicit VlanPage(VlanParentId parent, VlanId vlan = {})
        : m_parentId(std::move(parent)), m_vlanId(std::move(vlan)) {}

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;
    void Settle() override;
    Job Checking() override;

    const VlanParent& Parent() const noexcept { return m_parent; }
    const VlanEntry& Entry() const noexcept { return m_wanted; }
    /// Of a VLAN that is there.
    const std::wstring& Status() const noexcept { return m_status; }
    /// Whether there is anything to enter at all.
    bool CanEdit() const noexcept { return IsRead() && m_parent.support == VlanSupport::Supported; }
    /// What is wrong with the ID, or with the name, in words; empty: nothing that is known.
    std::wstring IdProblem() const;
    std::wstring NameProblem() const;

    void TypeId(const std::wstring& text);
    void TypeName(const std::wstring& text);
    void MakeUntagged(bool isUntagged);

  private:
    bool IsNew() const noexcept { return m_vlanId.IsEmpty(); }
    std::int32_t Number() const;
    void Take(VlanParent parent, const Vlan& vlan, std::wstring notice);
    static Flags<VlanProblem> Check(Session& session, const VlanParentId& parent, const Vlan& before,
                                    const NewVlan& wanted);

    VlanParentId m_parentId;
    VlanId m_vlanId;
    VlanParent m_parent;
    Vlan m_vlan; ///< as it was read
    std::wstring m_status;
    VlanEntry m_read;
    VlanEntry m_wanted;
    Opinion<VlanEntry, Flags<VlanProblem>> m_opinion;
};

} // namespace quillet::pages
