// Directories that no other test and no other test program has.
#include "TemporaryDirectory.h"

#include "LumText.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace quillet::tests {

std::filesystem::path PathOf(const std::wstring& text) {
    const std::string bytes = ToUtf8(text);
    return std::u8string(bytes.begin(), bytes.end());
}

TemporaryDirectory::TemporaryDirectory() {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        m_path = std::filesystem::temp_directory_path() / ("quillet-test-" + std::to_string(random()));
        if (std::filesystem::create_directory(m_path)) {
            return;
        }
    }
    throw std::runtime_error("no temporary directory can be made");
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::wstring TemporaryDirectory::Text() const {
    return m_path.wstring();
}

std::string ReadFile(const std::filesystem::path& file, std::uintmax_t offset) {
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(offset));
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace quillet::tests
