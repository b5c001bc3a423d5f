// Reading requests.
#include "server/HttpInput.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace quillet::wsman {

bool HttpInput::Fill() {
    std::array<char, 4096> bytes; // NOLINT(*-member-init): about to be read
    const ssize_t read = m_wire.Read(bytes.data(), bytes.size());
    if (read > 0) {
        m_pending.append(bytes.data(), static_cast<std::size_t>(read));
    }
    return read > 0;
}

std::string_view HttpInput::ReadHead(std::size_t most) {
    m_pending.erase(0, std::exchange(m_place, 0));
    for (;;) {
        const std::size_t end = m_pending.find("\r\n\r\n");
        if (end != std::string::npos && end + 4 <= most) {
            return std::string_view(m_pending).substr(0, end + 4);
        }
        if (m_pending.size() > most || !Fill()) {
            return {};
        }
    }
}

ssize_t HttpInput::Read(char* bytes, std::size_t size) {
    size = std::min(size, m_left);
    if (size == 0) {
        return -1;
    }
    ssize_t read = 0;
    if (m_place < m_pending.size()) {
        size = std::min(size, m_pending.size() - m_place);
        std::memcpy(bytes, m_pending.data() + m_place, size);
        m_place += size;
        read = static_cast<ssize_t>(size);
    } else {
        read = m_wire.Read(bytes, size);
    }
    if (read > 0) {
        const std::size_t got = static_cast<std::size_t>(read);
        m_left -= got;
        m_last.append(bytes + got - std::min<std::size_t>(got, 4), std::min<std::size_t>(got, 4));
        m_last.erase(0, m_last.size() - std::min<std::size_t>(m_last.size(), 4));
    }
    return read;
}

bool HttpInput::Discard() {
    std::array<char, 4096> bytes; // NOLINT(*-member-init): about to be read
    while (m_left > 0) {
        if (Read(bytes.data(), bytes.size()) <= 0) {
            return false;
        }
    }
    return true;
}

} // namespace quillet::wsman
