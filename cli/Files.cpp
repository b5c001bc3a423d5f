// Reading and replacing files.
#include "Files.h"

#include "Failure.h"

#include <array>
#include <fstream>
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

void ReplaceFile(const std::string& file, std::string_view bytes, Access access) {
    const std::filesystem::path path = FilePath(file);
    const std::filesystem::path temporary = TemporaryNameBeside(path);
    const auto give_up = [&](const std::string& why) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        throw UsageError(file + ": cannot be written: " + why);
    };

    std::ofstream stream(temporary, std::ios::binary);
    if (!stream) {
        give_up("no file can be made in its folder");
    }
    std::error_code error;
    if (access == Access::OwnerOnly) {
        std::filesystem::permissions(
            temporary, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
    }
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        give_up("the disk is full or failing");
    }
    std::filesystem::rename(temporary, path, error);
    if (error) {
        give_up(error.message());
    }
}

} // namespace quilletctl
