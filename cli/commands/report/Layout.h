// Where slots, ports, teams and VLANs stand in the drawing.
#pragma once

#include "commands/report/MachineFacts.h"

#include <string>
#include <vector>

namespace quilletctl {

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int Right() const noexcept { return x + width; }
    int Bottom() const noexcept { return y + height; }
    int Middle() const noexcept { return y + height / 2; }
};

/// What a port's sign shows; its text says the same.
enum class PortSign { Linked, Unlinked, Trouble, Untold };

/// Texts are UTF-8 here and below.
struct PortBox {
    Box box{};
    std::string name;
    std::string detail;
    PortSign sign = PortSign::Untold;
    std::string objectId{};
};

struct SlotBox {
    Box box{};
    std::string name;
    std::vector<PortBox> ports{};
};

struct VlanCell {
    Box box;
    std::string number;
    std::string name;
};

/// A team, or the place where a port's own VLANs leave it.
struct Band {
    bool isTeam = false;
    Box box{}; ///< of the team; without a size where it is none
    std::string name{};
    std::string detail{};
    std::string members{};
    Box vlanBox{}; ///< around the VLANs; without a size where there are none
    std::vector<VlanCell> vlans{};
};

/// From a port to its team, or to its VLANs.
struct Link {
    int fromX = 0;
    int fromY = 0;
    int toX = 0;
    int toY = 0;
    std::string role{};   ///< above its beginning
    std::string status{}; ///< below it
    bool isPrimary = false;
    bool isActive = true;
};

struct Layout {
    int width = 0;
    int height = 0;
    std::vector<SlotBox> slots;
    std::vector<Band> bands;
    std::vector<Link> links;
};

/// The columns, from the left: slots with their ports, teams, VLANs. Nothing covers anything else.
Layout PlaceMachine(const MachineFacts& facts);

} // namespace quilletctl
