// Directories that no other test and no other test program has.
#include "TemporaryDirectory.h"

#include "LumText.h"

#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

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
    // By the block: thousands of runs read their trace, and a byte at a time takes a tenth of all their time.
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return std::move(bytes).str();
}

} // namespace quillet::tests
