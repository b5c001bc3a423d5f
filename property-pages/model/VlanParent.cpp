// What carries VLANs, as the pages of VLANs see it.
#include "model/VlanParent.h"

#include "model/Words.h"

namespace quillet::pages {

std::wstring VlanParent::WhyNot() const {
    return support == VlanSupport::Supported ? std::wstring()
                                             : Say(TextId::NoVlansHere, {name, InOwnLanguage(Text(support))});
}

VlanParent ReadVlanParent(Session& session, const VlanParentId& id, std::wstring& notice) {
    VlanParent parent;
    if (const auto* team = std::get_if<TeamId>(&id)) {
        parent.name = session.ReadTeam(*team).name;
    } else {
        parent.name = session.ReadAdapter(*std::get_if<AdapterId>(&id)).displayName;
    }
    parent.support = session.SupportsVlans(id);
    if (parent.support == VlanSupport::Supported) {
        parent.vlans = ReadWhatThereIs([&] { return session.Vlans(id); }, notice);
    }
    return parent;
}

std::optional<std::int32_t> ToVlanNumber(const std::wstring& text) {
    constexpr std::size_t kMostDigits = 6; // more than any VLAN ID has: the checks say that it is too great
    if (text.empty() || text.size() > kMostDigits ||
        text.find_first_not_of(L"0123456789") != std::wstring::npos) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(std::stol(text));
}

std::wstring VlanLabel(const Vlan& vlan) {
    return vlan.number == 0 ? Say(TextId::UntaggedVlan)
                            : Say(TextId::VlanNode, {std::to_wstring(vlan.number) + L" " + vlan.name});
}

} // namespace quillet::pages
