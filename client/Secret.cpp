// Overwriting.
#include <quillet/client/Secret.h>

#include <algorithm>
#include <utility>

namespace quillet {

Secret::Secret(std::wstring_view text)
    : m_text(text.empty() ? nullptr : new wchar_t[text.size()]), m_length(text.size()) {
    std::copy(text.begin(), text.end(), m_text);
}

Secret::Secret(const Secret& other) : Secret(other.Reveal()) {}

Secret::Secret(Secret&& other) noexcept
    : m_text(std::exchange(other.m_text, nullptr)), m_length(std::exchange(other.m_length, 0)) {}

Secret& Secret::operator=(Secret other) noexcept {
    std::swap(m_text, other.m_text);
    std::swap(m_length, other.m_length);
    return *this;
}

Secret::~Secret() {
    Clear();
}

void Secret::Clear() noexcept {
    // Through volatile, or the compiler sees that nobody reads it any more.
    volatile wchar_t* place = m_text;
    for (std::size_t i = 0; i < m_length; ++i) {
        place[i] = L'\0';
    }
    delete[] m_text;
    m_text = nullptr;
    m_length = 0;
}

bool operator==(const Secret& left, const Secret& right) noexcept {
    if (left.m_length != right.m_length) {
        return false;
    }
    unsigned difference = 0;
    for (std::size_t i = 0; i < left.m_length; ++i) {
        difference |= static_cast<unsigned>(left.m_text[i] ^ right.m_text[i]);
    }
    return difference == 0;
}

} // namespace quillet
