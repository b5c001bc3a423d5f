// A lock on a POSIX host: that of the file itself, or of its folder as long as there is no file. The system
// gives it up with the process that has it.
#include "files/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace quilletctl {

struct FileLock::State {
    ~State() {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    int descriptor = -1;
};

namespace {

[[noreturn]] void ThrowLastError() {
    throw std::system_error(errno, std::generic_category());
}

bool IsSame(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

} // namespace

FileLock::FileLock(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    for (;;) {
        m_state = std::make_unique<State>();
        int& descriptor = m_state->descriptor;
        descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC);
        const bool isFolder = descriptor < 0 && errno == ENOENT;
        if (isFolder) {
            descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        }
        // A signal that somebody handles ends the waiting.
        if (descriptor < 0 || flock(descriptor, LOCK_EX) != 0) {
            ThrowLastError();
        }
        // Whoever had the lock before may have put another file in this one's place, or the first one. Then
        // it is that file's lock that counts.
        struct stat locked = {};
        struct stat present = {};
        if (fstat(descriptor, &locked) != 0) {
            ThrowLastError();
        }
        const bool isThere = stat(file.c_str(), &present) == 0;
        if (isFolder ? !isThere : isThere && IsSame(locked, present)) {
            return;
        }
    }
}

FileLock::~FileLock() = default;

} // namespace quilletctl
