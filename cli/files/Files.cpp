// Reading and replacing files.
#include "files/Files.h"

#include "ending/Failure.h"
#include "files/HostFiles.h"

#include <array>
#include <fstream>
#include <iostream>
#include <random>
#include <system_error>

namespace quilletctl {

namespace {

/// A name beside the file that nobody can have taken in advance.
std::filesystem::path TemporaryNameBeside(const std::filesystem::path& file) {
    std::random_device random;
    std::filesystem::path name = file;
    name += ".";
    name += std::to_string(random());
    name += std::to_string(random());
    name += ".tmp";
    return name;
}

/// A file that is to take another's place, with its rights, wherever links lead to it. It is gone again
/// unless it does.
class Replacement {
  public:
    /// Throws UsageError where the other file may not be written, or none may be made in its folder.
    Replacement(const std::string& file, Access access)
        : m_file(file), m_target(FollowLinks(FilePath(file))), m_temporary(TemporaryNameBeside(m_target)) {
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::status(m_target, error);
        const bool isThere = std::filesystem::exists(status);
        if (isThere && !std::filesystem::is_regular_file(status)) {
            throw UsageError(file + ": not a file");
        }
        if (isThere && !std::fstream(m_target, std::ios::binary | std::ios::in | std::ios::out)) {
            throw UsageError(file + ": cannot be written");
        }
        m_stream.open(m_temporary, std::ios::binary);
        if (!m_stream) {
            GiveUp("no file can be made in its folder");
        }
        if (isThere) {
            if (const std::error_code refused = TakeOverRights(m_target, m_temporary)) {
                GiveUp("its owner and rights cannot be kept: " + refused.message());
            }
        } else if (access == Access::OwnerOnly) {
            std::filesystem::permissions(
                m_temporary, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
        }
    }
    ~Replacement() { Remove(); }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// Throws UsageError.
    void Commit(std::string_view bytes) {
        m_stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        m_stream.close();
        if (!m_stream) {
            GiveUp("the disk is full or failing");
        }
        if (const std::error_code error = MoveOver(m_temporary, m_target)) {
            GiveUp(error.message());
        }
    }

  private:
    void Remove() noexcept {
        m_stream.close();
        std::error_code ignored;
        std::filesystem::remove(m_temporary, ignored);
    }
    [[noreturn]] void GiveUp(const std::string& why) {
        Remove();
        throw UsageError(m_file + ": cannot be written: " + why);
    }

    std::string m_file;
    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    std::ofstream m_stream;
};

} // namespace

std::filesystem::path FilePath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

bool FileExists(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(FilePath(file), ignored);
}

void CheckReadable(const std::string& file) {
    const std::filesystem::path path = FilePath(file);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        throw UsageError(file + ": no such file");
    }
    if (!std::filesystem::is_regular_file(path, error)) {
        throw UsageError(file + ": not a file");
    }
    if (!std::ifstream(path, std::ios::binary)) {
        throw UsageError(file + ": cannot be read");
    }
}

std::vector<std::uint8_t> ReadWholeFile(const std::string& file) {
    CheckReadable(file);
    std::ifstream stream(FilePath(file), std::ios::binary);
    // The stream catches what its buffer throws when a disk cannot be read; an iterator over the buffer would
    // not.
    std::vector<std::uint8_t> bytes;
    std::array<char, 1 << 16> part{};
    while (stream.read(part.data(), part.size()) || stream.gcount() != 0) {
        bytes.insert(bytes.end(), part.data(), part.data() + stream.gcount());
    }
    if (stream.bad()) {
        throw UsageError(file + ": cannot be read");
    }
    return bytes;
}

std::string ReadStandardInput(std::size_t most) {
    std::string text;
    std::array<char, 4096> part{};
    while (text.size() <= most && std::cin.read(part.data(), part.size()).gcount() > 0) {
        text.append(part.data(), static_cast<std::size_t>(std::cin.gcount()));
    }
    return text;
}

void CheckReplaceable(const std::string& file) {
    const Replacement tried(file, Access::OwnerOnly);
}

void ReplaceWholeFile(const std::string& file, std::string_view bytes, Access access) {
    Replacement(file, access).Commit(bytes);
}

} // namespace quilletctl
