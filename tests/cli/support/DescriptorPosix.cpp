#include "support/Descriptor.h"

#include <unistd.h>

#include <stdexcept>

namespace quillet::tests {

Descriptor::Descriptor(const std::string& text) {
    int ends[2];
    if (pipe(ends) != 0 || write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("no pipe can be made");
    }
    close(ends[1]);
    m_descriptor = ends[0];
}

Descriptor::~Descriptor() {
    close(m_descriptor);
}

std::string Descriptor::Rest() {
    std::string rest;
    for (char byte = '\0'; read(m_descriptor, &byte, 1) == 1;) {
        rest += byte;
    }
    return rest;
}

} // namespace quillet::tests
