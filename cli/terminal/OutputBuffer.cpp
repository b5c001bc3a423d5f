// Collecting and handing on.
#include "terminal/OutputBuffer.h"

#include <utility>

namespace quilletctl {

OutputBuffer::OutputBuffer(std::function<Written(std::string_view)> write) : m_write(std::move(write)) {}

OutputBuffer::~OutputBuffer() {
    OutputBuffer::sync();
}

OutputBuffer::int_type OutputBuffer::overflow(int_type character) {
    const char byte = traits_type::to_char_type(character);
    const bool isByte = !traits_type::eq_int_type(character, traits_type::eof());
    return isByte && xsputn(&byte, 1) != 1 ? traits_type::eof() : traits_type::not_eof(character);
}

std::streamsize OutputBuffer::xsputn(const char* bytes, std::streamsize count) {
    constexpr std::size_t kMost = 1U << 16;
    m_pending.append(bytes, static_cast<std::size_t>(count));
    return m_pending.size() >= kMost && sync() != 0 ? 0 : count;
}

int OutputBuffer::sync() {
    const std::string bytes = std::exchange(m_pending, {});
    if (bytes.empty() || !m_hasReader) {
        return 0;
    }
    const Written written = m_write(bytes);
    m_hasReader = written != Written::ReaderLeft;
    return written == Written::Failed ? -1 : 0;
}

} // namespace quilletctl
