// Identifiers: which adapter, which team. One of another kind does not compile.
#pragma once

#include <compare>
#include <string>
#include <utility>
#include <variant>

namespace quillet {

/// What names one object of the provider's in every operation: its object path ("__PATH"). An identifier of
/// one kind does not convert to one of another, nor does a text, unless it is asked to.
template <class Kind>
class Id {
  public:
    /// Names nothing.
    Id() = default;
    /// @param path the object's path
    explicit Id(std::wstring path) : m_path(std::move(path)) {}

    /// The object's path.
    const std::wstring& Path() const noexcept { return m_path; }
    /// Whether it names nothing.
    bool IsEmpty() const noexcept { return m_path.empty(); }

    /// Compares the paths to the letter.
    friend bool operator==(const Id&, const Id&) = default;
    /// Orders by the paths, so that identifiers may be keys.
    friend std::strong_ordering operator<=>(const Id& left, const Id& right) noexcept {
        return left.m_path.compare(right.m_path) <=> 0;
    }

  private:
    std::wstring m_path;
};

/// A Zorel_PhysicalEthernetAdapter.
using AdapterId = Id<struct AdapterKind>;
/// A Zorel_TeamOfAdapters.
using TeamId = Id<struct TeamKind>;
/// A Zorel_VLAN.
using VlanId = Id<struct VlanKind>;
/// An instance of a class below Zorel_Setting.
using SettingId = Id<struct SettingKind>;
/// A Zorel_DiagTest.
using DiagnosticId = Id<struct DiagnosticKind>;
/// A Zorel_BootAgent.
using BootAgentId = Id<struct BootAgentKind>;

/// What carries a VLAN.
using VlanParentId = std::variant<AdapterId, TeamId>;

} // namespace quillet
