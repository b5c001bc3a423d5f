#include "support/Descriptor.h"

#include <fcntl.h>
#include <io.h>

#include <stdexcept>

namespace quillet::tests {

Descriptor::Descriptor(const std::string& text) {
    int ends[2];
    if (_pipe(ends, 1 << 16, _O_BINARY) != 0 ||
        _write(ends[1], text.data(), static_cast<unsigned>(text.size())) != static_cast<int>(text.size())) {
        throw std::runtime_error("no pipe can be made");
    }
    _close(ends[1]);
    m_descriptor = ends[0];
}

Descriptor::~Descriptor() {
    _close(m_descriptor);
}

std::string Descriptor::Rest() {
    std::string rest;
    for (char byte = '\0'; _read(m_descriptor, &byte, 1) == 1;) {
        rest += byte;
    }
    return rest;
}

} // namespace quillet::tests
