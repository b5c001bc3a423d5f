// The drawing of a machine.
#pragma once

#include "commands/report/MachineFacts.h"

#include <string>

namespace quilletctl {

/// An SVG (UTF-8) of slots, ports, teams and VLANs with what connects them. It stands by itself as well as in
/// a page.
std::string DrawMachine(const MachineFacts& facts);

/// How wide that is, in pixels.
int DrawingWidth(const MachineFacts& facts);

/// The colours and fonts of drawing and page, as CSS variables.
const char* SharedStyle();

} // namespace quilletctl
