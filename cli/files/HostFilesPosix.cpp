// Files on a POSIX host.
#include "files/HostFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quilletctl {

namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

} // namespace

std::filesystem::path FollowLinks(const std::filesystem::path& file) {
    // As many as the system itself follows; whoever opens the end of a longer chain is told.
    constexpr int kMost = 40;
    std::filesystem::path path = file;
    std::error_code error;
    for (int i = 0; i < kMost && std::filesystem::is_symlink(path, error); ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(path, error);
        if (error) {
            break;
        }
        path = path.parent_path() / next; // which is `next` alone where that begins at the root
    }
    return path;
}

std::error_code TakeOverRights(const std::filesystem::path& from, const std::filesystem::path& to) {
    struct stat wanted = {};
    struct stat present = {};
    if (stat(from.c_str(), &wanted) != 0 || stat(to.c_str(), &present) != 0) {
        return LastError();
    }
    const bool isForeign = wanted.st_uid != present.st_uid || wanted.st_gid != present.st_gid;
    if (isForeign && chown(to.c_str(), wanted.st_uid, wanted.st_gid) != 0) {
        return LastError();
    }
    constexpr mode_t kRights = 07777;
    return chmod(to.c_str(), wanted.st_mode & kRights) == 0 ? std::error_code() : LastError();
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    return error;
}

std::shared_ptr<void> KeepInPlace(const std::filesystem::path&) {
    return nullptr;
}

} // namespace quilletctl
