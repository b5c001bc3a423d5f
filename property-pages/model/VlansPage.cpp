// The VLANs of an adapter or a team.
#include "model/VlansPage.h"

#include <algorithm>

namespace quillet::pages {

Job VlansPage::Reading() {
    return [page = Self<VlansPage>(), id = m_parentId](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        VlanParent parent = ReadVlanParent(session, id, notice);
        std::ranges::sort(parent.vlans, {}, &Vlan::number);
        return [page, parent = std::move(parent), notice] {
            page->m_parent = parent;
            page->NoteRead(parent.WhyNot().empty() ? notice : parent.WhyNot());
        };
    };
}

const Vlan* VlansPage::At(int row) const noexcept {
    return row >= 0 && std::size_t(row) < m_parent.vlans.size() ? &m_parent.vlans[std::size_t(row)] : nullptr;
}

} // namespace quillet::pages
