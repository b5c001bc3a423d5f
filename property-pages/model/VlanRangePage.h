// Several VLANs at once.
#pragma once

#include "model/Opinion.h"
#include "model/VlanParent.h"

namespace quillet::pages {

/// What the user has entered about several VLANs.
struct VlanRangeEntry {
    std::wstring first;
    std::wstring last;
    std::wstring pattern;
    friend bool operator==(const VlanRangeEntry&, const VlanRangeEntry&) = default;
};

/// New VLANs of consecutive IDs. They are made one after the other in one client set; that can be stopped.
class VlanRangePage : public Page {
  public:
    explicit VlanRangePage(VlanParentId parent) : m_parentId(std::move(parent)) {}

    Job Reading() override;
    std::wstring Mistake() const override;
    Job Checking() override;

    const VlanParent& Parent() const noexcept { return m_parent; }
    const VlanRangeEntry& Entry() const noexcept { return m_entry; }
    bool CanEdit() const noexcept {
        return IsRead() && !IsBusy() && m_parent.support == VlanSupport::Supported;
    }
    /// The VLANs that are asked for; none where the entry makes no sense.
    std::vector<NewVlan> Wanted() const;
    /// How many they are, and what the first and the last are called.
    std::wstring Preview() const;
    /// How many have been made, and of how many, while they are being made.
    std::size_t Done() const noexcept { return m_done; }
    std::size_t Total() const noexcept { return m_total; }
    bool IsBusy() const noexcept { return m_total > 0; }

    void TypeFirst(const std::wstring& text);
    void TypeLast(const std::wstring& text);
    void TypePattern(const std::wstring& text);

    /// How it went.
    struct Made {
        std::size_t count = 0;
        bool isAll = false;
        bool restartNeeded = false;
    };
    /// Makes them. Where not all of them are made, the entry becomes the rest, and the notice says why.
    Job Making(std::function<void(const Made&)> done);
    /// The machine could not even be asked.
    void NoteFailure(const std::wstring& reason);

  private:
    void Type(std::wstring& field, const std::wstring& text);
    void End(const Made& made, const std::wstring& reason);

    VlanParentId m_parentId;
    VlanParent m_parent;
    VlanRangeEntry m_entry;
    std::size_t m_done = 0;
    std::size_t m_total = 0;
    Opinion<VlanRangeEntry, Flags<VlanProblem>> m_opinion;
};

} // namespace quillet::pages
