// A directory for one test.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace quillet::tests {

/// A path from its text, whatever characters it has: the conversion of std::filesystem stops at those that
/// the C library's locale does not know.
std::filesystem::path PathOf(const std::wstring& text);

/// Makes an empty directory below the host's temporary one and removes it, with whatever it then holds, when
/// it goes.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const noexcept { return m_path; }
    /// The same as text, in the host's form and without a separator at its end.
    std::wstring Text() const;
    /// The path of a file in it.
    std::filesystem::path File(const std::wstring& name) const { return m_path / PathOf(name); }

  private:
    std::filesystem::path m_path;
};

/// All bytes of a file from an offset on; empty if there are none.
std::string ReadFile(const std::filesystem::path& file, std::uintmax_t offset = 0);

} // namespace quillet::tests
