// SVG of a layout.
#include "commands/report/Drawing.h"

#include "commands/report/Layout.h"
#include "commands/report/Markup.h"

namespace quilletctl {

namespace {

constexpr int kNameSize = 13;
constexpr int kDetailSize = 11;
constexpr int kPadding = 8;
constexpr int kSignWidth = 22;
/// Bold letters are wider: in a hundred units of a bold text there is room for so many of a usual one.
constexpr int kOfBold = 88;
constexpr const char* kStrong = "q-strong";
/// The part of a link that is straight, with its role.
constexpr int kRoleWidth = 92;

constexpr const char* kDrawingStyle = R"(
.q-drawing text { fill: var(--q-text); font: 13px system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
.q-drawing .q-small { fill: var(--q-muted); font-size: 11px; }
.q-drawing .q-strong { font-weight: 600; }
.q-drawing .q-paper { fill: var(--q-paper); }
.q-drawing .q-slot { fill: none; stroke: var(--q-line); stroke-dasharray: 4 3; }
.q-drawing .q-box { fill: var(--q-box); stroke: var(--q-line); }
.q-drawing .q-team { fill: var(--q-box); stroke: var(--q-accent); stroke-width: 2; }
.q-drawing .q-link { fill: none; stroke: var(--q-accent); stroke-width: 1.5; }
.q-drawing .q-primary { stroke-width: 3; }
.q-drawing .q-inactive { stroke: var(--q-line); stroke-dasharray: 6 4; }
.q-drawing .q-on { fill: var(--q-good); stroke: var(--q-good); }
.q-drawing .q-off { fill: none; stroke: var(--q-muted); stroke-width: 2; }
.q-drawing .q-bad { fill: none; stroke: var(--q-bad); stroke-width: 3; }
)";

std::string Number(int number) {
    return std::to_string(number);
}

/// Writes SVG elements.
class Canvas {
  public:
    void Rectangle(const Box& box, const char* look, int radius = 6) {
        m_svg += "<rect class=\"" + std::string(look) + "\" x=\"" + Number(box.x) + "\" y=\"" +
                 Number(box.y) + "\" width=\"" + Number(box.width) + "\" height=\"" + Number(box.height) +
                 "\" rx=\"" + Number(radius) + "\"/>\n";
    }
    /// @param room for the text, in the drawing's units
    void Text(int x, int y, const std::string& text, int room, const char* look = "", int size = kNameSize) {
        const std::string shown =
            ShortenedTo(text, room * (look == std::string_view(kStrong) ? kOfBold : 100) / size);
        m_svg += "<text class=\"" + std::string(look) + "\" x=\"" + Number(x) + "\" y=\"" + Number(y) +
                 "\">" + Escaped(shown) + "</text>\n";
    }
    void SmallText(int x, int y, const std::string& text, int room) {
        Text(x, y, text, room, "q-small", kDetailSize);
    }
    void Path(const std::string& path, const std::string& look) {
        m_svg += "<path class=\"" + look + "\" d=\"" + path + "\"/>\n";
    }
    void Circle(int x, int y, int radius, const char* look) {
        m_svg += "<circle class=\"" + std::string(look) + "\" cx=\"" + Number(x) + "\" cy=\"" + Number(y) +
                 "\" r=\"" + Number(radius) + "\"/>\n";
    }
    /// What is drawn until EndGroup() has this whole text, which may be shortened in it.
    void BeginGroup(const std::string& whole) { m_svg += "<g><title>" + Escaped(whole) + "</title>\n"; }
    void EndGroup() { m_svg += "</g>\n"; }
    const std::string& Svg() const noexcept { return m_svg; }

  private:
    std::string m_svg;
};

void DrawSign(Canvas& canvas, PortSign sign, int x, int y) {
    constexpr int kRadius = 5;
    switch (sign) {
    case PortSign::Linked:
        canvas.Circle(x, y, kRadius, "q-on");
        break;
    case PortSign::Unlinked:
        canvas.Circle(x, y, kRadius, "q-off");
        break;
    case PortSign::Trouble:
        canvas.Path("M" + Number(x - kRadius) + ' ' + Number(y - kRadius) + 'l' + Number(2 * kRadius) + ' ' +
                        Number(2 * kRadius) + 'm' + Number(-2 * kRadius) + " 0l" + Number(2 * kRadius) + ' ' +
                        Number(-2 * kRadius),
                    "q-bad");
        break;
    case PortSign::Untold:
        canvas.Text(x - kRadius + 1, y + kRadius, "?", kSignWidth, kStrong);
        break;
    }
}

void DrawSlot(Canvas& canvas, const SlotBox& slot) {
    constexpr int kFirstLine = 19;
    constexpr int kSecondLine = 36;
    canvas.Rectangle(slot.box, "q-slot");
    canvas.Text(slot.box.x + kPadding + 2, slot.box.y + kFirstLine, slot.name, slot.box.width - 2 * kPadding,
                kStrong);
    for (const PortBox& port : slot.ports) {
        const int x = port.box.x + kPadding + kSignWidth;
        const int room = port.box.width - 2 * kPadding - kSignWidth;
        canvas.BeginGroup(port.name);
        canvas.Rectangle(port.box, "q-box");
        DrawSign(canvas, port.sign, port.box.x + kPadding + kSignWidth / 2 - 3, port.box.Middle());
        canvas.Text(x, port.box.y + kFirstLine, port.name, room);
        canvas.SmallText(x, port.box.y + kSecondLine, port.detail, room);
        canvas.EndGroup();
    }
}

void DrawLink(Canvas& canvas, const Link& link) {
    constexpr int kBesideLine = 5;
    const int bend = link.fromX + kRoleWidth;
    const int halfway = (bend + link.toX) / 2;
    canvas.Path("M" + Number(link.fromX) + ' ' + Number(link.fromY) + 'H' + Number(bend) + 'C' +
                    Number(halfway) + ' ' + Number(link.fromY) + ' ' + Number(halfway) + ' ' +
                    Number(link.toY) + ' ' + Number(link.toX) + ' ' + Number(link.toY),
                std::string("q-link") + (link.isPrimary ? " q-primary" : "") +
                    (link.isActive ? "" : " q-inactive"));
    // Beside the frame of the slot, which ends where the port's does, but for a gap.
    const int x = link.fromX + 2 * kPadding;
    if (!link.role.empty()) {
        canvas.SmallText(x, link.fromY - kBesideLine, link.role, kRoleWidth - 2 * kPadding);
    }
    if (!link.status.empty()) {
        canvas.SmallText(x, link.fromY + kDetailSize + 3, link.status, kRoleWidth - 2 * kPadding);
    }
}

void DrawBand(Canvas& canvas, const Band& band) {
    constexpr int kLines[] = {22, 41, 58};
    if (!band.vlans.empty()) {
        canvas.Path("M" + Number(band.box.Right()) + ' ' + Number(band.box.Middle()) + 'H' +
                        Number(band.vlanBox.x),
                    "q-link");
        canvas.Rectangle(band.vlanBox, "q-box");
    }
    if (band.isTeam) {
        const int x = band.box.x + kPadding + 2;
        const int room = band.box.width - 2 * kPadding;
        canvas.BeginGroup(band.name);
        canvas.Rectangle(band.box, "q-team");
        canvas.Text(x, band.box.y + kLines[0], band.name, room, kStrong);
        canvas.SmallText(x, band.box.y + kLines[1], band.detail, room);
        canvas.SmallText(x, band.box.y + kLines[2], band.members, room);
        canvas.EndGroup();
    }
    for (const VlanCell& vlan : band.vlans) {
        constexpr int kLine = 15;
        const int numberWidth =
            vlan.number.empty() ? 0 : EstimatedWidth(vlan.number) * kNameSize / kOfBold + kPadding;
        canvas.BeginGroup("VLAN " + vlan.number + ' ' + vlan.name);
        canvas.Text(vlan.box.x + 2, vlan.box.y + kLine, vlan.number, vlan.box.width, kStrong);
        canvas.Text(vlan.box.x + 2 + numberWidth, vlan.box.y + kLine, vlan.name,
                    vlan.box.width - numberWidth - kPadding);
        canvas.EndGroup();
    }
}

std::string Counted(std::size_t count, const char* one, const char* several) {
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string Summary(const MachineFacts& facts, const Layout& layout) {
    std::size_t vlans = 0;
    for (const Band& band : layout.bands) {
        vlans += band.vlans.size();
    }
    return Counted(facts.adapters.value.size(), "adapter", "adapters") + ", " +
           Counted(facts.teams.value.size(), "team", "teams") + " and " + Counted(vlans, "VLAN", "VLANs");
}

} // namespace

const char* SharedStyle() {
    return R"(:root { color-scheme: light dark;
  --q-paper: #ffffff; --q-text: #1b1f24; --q-muted: #4d5761; --q-line: #7b8794; --q-box: #f2f5f8;
  --q-accent: #0b5cad; --q-good: #1a7f37; --q-bad: #b3261e; }
@media screen and (prefers-color-scheme: dark) { :root {
  --q-paper: #14181d; --q-text: #e8ecf1; --q-muted: #b2bcc7; --q-line: #76828f; --q-box: #20262d;
  --q-accent: #7cb7ff; --q-good: #57c773; --q-bad: #ff8a80; } }
)";
}

int DrawingWidth(const MachineFacts& facts) {
    return PlaceMachine(facts).width;
}

std::string DrawMachine(const MachineFacts& facts) {
    const Layout layout = PlaceMachine(facts);
    Canvas canvas;
    for (const Link& link : layout.links) {
        DrawLink(canvas, link);
    }
    for (const SlotBox& slot : layout.slots) {
        DrawSlot(canvas, slot);
    }
    for (const Band& band : layout.bands) {
        DrawBand(canvas, band);
    }
    if (layout.slots.empty()) {
        constexpr int kLine = 34;
        canvas.Text(2 * kPadding, kLine,
                    facts.adapters.failure.empty() ? "no adapters" : "the adapters were not told",
                    layout.width - 4 * kPadding);
    }
    const std::string width = Number(layout.width);
    const std::string height = Number(layout.height);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"q-drawing\" role=\"img\" "
           "aria-labelledby=\"q-title q-summary\" "
           "width=\"" +
           width + "\" height=\"" + height + "\" viewBox=\"0 0 " + width + ' ' + height +
           "\">\n<title id=\"q-title\">" + Escaped("Network adapters of " + facts.machine) +
           "</title>\n<desc id=\"q-summary\">" + Escaped(Summary(facts, layout)) + "</desc>\n<style>" +
           SharedStyle() + kDrawingStyle + "</style>\n" +
           "<rect class=\"q-paper\" width=\"100%\" height=\"100%\"/>\n" + canvas.Svg() + "</svg>\n";
}

} // namespace quilletctl
