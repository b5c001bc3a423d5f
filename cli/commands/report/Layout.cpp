// Placing: slots one below the other, teams and VLANs in bands near their ports.
#include "commands/report/Layout.h"

#include "names/ObjectPath.h"
#include "texts/LinkText.h"
#include "texts/Text.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace quilletctl {

namespace {

constexpr int kMargin = 10;
constexpr int kSlotWidth = 310;
constexpr int kSlotHead = 28;
constexpr int kPortHeight = 46;
constexpr int kBoxGap = 10;
constexpr int kSlotGap = 18;
constexpr int kTeamX = 440;
constexpr int kTeamWidth = 210;
constexpr int kTeamHeight = 70;
constexpr int kVlanX = 690;
constexpr int kVlanWidth = 240;
constexpr int kVlanHeight = 22;
constexpr int kVlanPadding = 6;
constexpr std::size_t kVlansInAColumn = 8;
constexpr int kBandGap = 18;
constexpr int kLeastHeight = 60;

PortSign SignOf(const quillet::AdapterState& state) {
    const bool isTroubled = state.conditions.Has(quillet::AdapterCondition::DriverProblem) ||
                            state.conditions.Has(quillet::AdapterCondition::HardwareMissing) ||
                            state.hardware == quillet::HardwareStatus::Missing ||
                            state.hardware == quillet::HardwareStatus::DriverNotLoaded;
    if (isTroubled) {
        return PortSign::Trouble;
    }
    return state.hardware == quillet::HardwareStatus::LinkPresent ? PortSign::Linked : PortSign::Unlinked;
}

PortBox PortOf(const quillet::AdapterOverview& overview) {
    PortBox port{.name = NameOf(overview), .detail = "", .objectId = ToUtf8(overview.objectId)};
    const std::wstring number = overview.hardware ? overview.hardware->portNumber : std::wstring();
    port.detail = number.empty() ? std::string() : "port " + ToUtf8(number) + ": ";
    port.detail += overview.state ? LinkText(*overview.state) : "state not told";
    port.sign = overview.state ? SignOf(*overview.state) : PortSign::Untold;
    return port;
}

/// What a band needs to be placed: the ports that lead to it.
struct Planned {
    Band band;
    std::vector<std::pair<const PortBox*, Link>> ports{};

    int WantedMiddle() const {
        const int sum = std::accumulate(ports.begin(), ports.end(), 0, [](int before, const auto& each) {
            return before + each.first->box.Middle();
        });
        return ports.empty() ? 0 : sum / static_cast<int>(ports.size());
    }
};

class Placing {
  public:
    explicit Placing(const MachineFacts& facts) : m_facts(facts) {}

    Layout Run() {
        CollectSlots();
        PlaceSlots();
        for (const TeamFacts& team : m_facts.teams.value) {
            PlanTeam(team);
        }
        for (const AdapterFacts& adapter : m_facts.adapters.value) {
            PlanOwnVlans(adapter);
        }
        PlaceBands();
        SetSize();
        return std::move(m_layout);
    }

  private:
    void CollectSlots() {
        for (const AdapterFacts& adapter : m_facts.adapters.value) {
            const std::string slot = ToUtf8(adapter.overview.adapter.slot);
            SlotOf(slot.empty() ? "slot not told" : slot).ports.push_back(PortOf(adapter.overview));
        }
        // A team may have members that the machine does not list: of other makers, or long gone.
        for (const TeamFacts& team : m_facts.teams.value) {
            for (const quillet::TeamMember& member : team.members.value) {
                const std::string objectId = ObjectIdIn(member.id);
                if (PortOfId(objectId) == nullptr) {
                    SlotOf("not among the adapters")
                        .ports.push_back({.name = ToUtf8(member.displayName),
                                          .detail = ToUtf8(quillet::Text(member.status)),
                                          .objectId = objectId});
                }
            }
        }
    }
    SlotBox& SlotOf(const std::string& name) {
        const auto found = std::ranges::find(m_layout.slots, name, &SlotBox::name);
        return found != m_layout.slots.end() ? *found : m_layout.slots.emplace_back(SlotBox{.name = name});
    }
    const PortBox* PortOfId(const std::string& objectId) const {
        for (const SlotBox& slot : m_layout.slots) {
            for (const PortBox& port : slot.ports) {
                if (SameIgnoringCase(port.objectId, objectId)) {
                    return &port;
                }
            }
        }
        return nullptr;
    }

    void PlaceSlots() {
        int y = kMargin;
        for (SlotBox& slot : m_layout.slots) {
            slot.box = {kMargin, y, kSlotWidth, kSlotHead};
            for (PortBox& port : slot.ports) {
                port.box = {kMargin + kBoxGap, slot.box.Bottom(), kSlotWidth - 2 * kBoxGap, kPortHeight};
                slot.box.height += kPortHeight + kBoxGap;
            }
            y = slot.box.Bottom() + kSlotGap;
        }
    }

    void PlanTeam(const TeamFacts& team) {
        Planned planned;
        planned.band.isTeam = true;
        planned.band.name = ToUtf8(team.team.name);
        planned.band.detail = ToUtf8(quillet::Text(team.team.mode));
        std::size_t active = 0;
        for (const quillet::TeamMember& member : team.members.value) {
            const bool isActive = member.status == quillet::MemberStatus::Active;
            active += isActive ? 1U : 0U;
            const PortBox* port = PortOfId(ObjectIdIn(member.id));
            planned.ports.emplace_back(port,
                                       Link{.role = member.role == quillet::MemberRole::NotAssigned
                                                        ? "member"
                                                        : ToUtf8(quillet::Text(member.role)),
                                            .status = isActive ? "" : ToUtf8(quillet::Text(member.status)),
                                            .isPrimary = member.role == quillet::MemberRole::Primary,
                                            .isActive = isActive});
        }
        planned.band.members = team.members.failure.empty()
                                   ? std::to_string(active) + " of " +
                                         std::to_string(team.members.value.size()) + " members active"
                                   : "members not told";
        AddVlans(planned.band, team.vlans);
        m_planned.push_back(std::move(planned));
    }

    void PlanOwnVlans(const AdapterFacts& adapter) {
        if (adapter.vlans.value.empty()) {
            return;
        }
        Planned planned;
        AddVlans(planned.band, adapter.vlans);
        if (const PortBox* port = PortOfId(ToUtf8(adapter.overview.objectId))) {
            planned.ports.emplace_back(port, Link{});
        }
        m_planned.push_back(std::move(planned));
    }

    static void AddVlans(Band& band, const Told<std::vector<quillet::Vlan>>& vlans) {
        for (const quillet::Vlan& vlan : vlans.value) {
            band.vlans.push_back(
                {{}, vlan.number == 0 ? "untagged" : std::to_string(vlan.number), ToUtf8(vlan.name)});
        }
        if (!vlans.failure.empty()) {
            band.vlans.push_back({{}, "", band.vlans.empty() ? "VLANs not told" : "others not told"});
        }
    }

    void PlaceBands() {
        std::ranges::stable_sort(m_planned, {}, &Planned::WantedMiddle);
        int y = kMargin;
        for (Planned& planned : m_planned) {
            Band& band = planned.band;
            const int columns = band.vlans.size() > kVlansInAColumn ? 2 : 1;
            const int rows = (static_cast<int>(band.vlans.size()) + columns - 1) / columns;
            const int vlanHeight = rows == 0 ? 0 : rows * kVlanHeight + 2 * kVlanPadding;
            const int height = std::max(band.isTeam ? kTeamHeight : 0, vlanHeight);
            y = std::max(y, planned.WantedMiddle() - height / 2);
            const int middle = y + height / 2;
            if (band.isTeam) {
                band.box = {kTeamX, middle - kTeamHeight / 2, kTeamWidth, kTeamHeight};
            } else {
                band.box = {kTeamX, middle, 0, 0};
            }
            if (rows > 0) {
                band.vlanBox = {kVlanX, middle - vlanHeight / 2, kVlanWidth, vlanHeight};
                PlaceVlans(band, columns, rows);
            }
            PlaceLinks(planned);
            y += height + kBandGap;
            m_layout.bands.push_back(std::move(band));
        }
    }

    /// Column after column, as one reads them.
    static void PlaceVlans(Band& band, int columns, int rows) {
        const int width = (kVlanWidth - 2 * kVlanPadding) / columns;
        for (int i = 0; i < static_cast<int>(band.vlans.size()); ++i) {
            band.vlans[static_cast<std::size_t>(i)].box = {
                kVlanX + kVlanPadding + i / rows * width,
                band.vlanBox.y + kVlanPadding + i % rows * kVlanHeight, width, kVlanHeight};
        }
    }

    /// The lines arrive in the order in which they leave, so that they do not cross before one team.
    void PlaceLinks(Planned& planned) {
        std::erase_if(planned.ports, [](const auto& each) { return each.first == nullptr; });
        std::ranges::stable_sort(planned.ports, {},
                                 [](const auto& each) { return each.first->box.Middle(); });
        const int count = static_cast<int>(planned.ports.size());
        for (int i = 0; i < count; ++i) {
            auto& [port, link] = planned.ports[static_cast<std::size_t>(i)];
            link.fromX = port->box.Right();
            link.fromY = port->box.Middle();
            link.toX = kTeamX;
            link.toY = planned.band.box.y + planned.band.box.height * (i + 1) / (count + 1);
            m_layout.links.push_back(std::move(link));
        }
    }

    void SetSize() {
        m_layout.width = kMargin + kSlotWidth + kMargin;
        m_layout.height =
            m_layout.slots.empty() ? kLeastHeight : m_layout.slots.back().box.Bottom() + kMargin;
        for (const Band& band : m_layout.bands) {
            m_layout.width =
                std::max({m_layout.width, band.box.Right() + kMargin, band.vlanBox.Right() + kMargin});
            m_layout.height =
                std::max({m_layout.height, band.box.Bottom() + kMargin, band.vlanBox.Bottom() + kMargin});
        }
    }

    const MachineFacts& m_facts;
    std::vector<Planned> m_planned;
    Layout m_layout;
};

} // namespace

Layout PlaceMachine(const MachineFacts& facts) {
    return Placing(facts).Run();
}

} // namespace quilletctl
