// Words for links.
#include "texts/LinkText.h"

#include "texts/Text.h"

namespace quilletctl {

std::string LinkText(const quillet::AdapterState& state) {
    if (state.hardware != quillet::HardwareStatus::LinkPresent) {
        return ToUtf8(quillet::Text(state.hardware));
    }
    return ToUtf8(quillet::Text(state.speed)) + ", " + ToUtf8(quillet::Text(state.duplex));
}

} // namespace quilletctl
