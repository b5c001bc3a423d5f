// The trace log's files on POSIX hosts. The Temp directory is everybody's there, so a file is private to its
// owner and is never reached through a link that somebody else may have put in its place.
#include "LogFile.h"

#include "LumText.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The same file under a number that no standard stream has. Where one of these is closed, a file that is
/// opened takes its place, and what the client prints would get into the trace.
int BesideStandardStreams(int descriptor) {
    if (descriptor < 0 || descriptor > STDERR_FILENO) {
        return descriptor;
    }
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(descriptor);
    return moved;
}

} // namespace

std::FILE* OpenLogFile(const std::wstring& path, bool append) {
    std::string name = ToUtf8(path);
    std::replace(name.begin(), name.end(), '\\', '/');
    // O_NONBLOCK: a pipe under that name must not hold the client up. It means nothing to a regular file.
    const int common = O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
    const int descriptor =
        BesideStandardStreams(open(name.c_str(), common | (append ? O_RDWR | O_APPEND : O_WRONLY), 0600));
    if (descriptor < 0) {
        return nullptr;
    }
    // What the file holds is given up only after it is known to be a file.
    struct stat status {};
    std::FILE* stream = nullptr;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
        (append || ftruncate(descriptor, 0) == 0)) {
        stream = fdopen(descriptor, append ? "a+" : "w");
    }
    if (stream == nullptr) {
        close(descriptor);
    }
    return stream;
}

void WriteLogLine(std::FILE* file, const char* bytes, std::size_t count) noexcept {
    fwrite_unlocked(bytes, 1, count, file);
    fflush_unlocked(file);
}

unsigned long long LogFileLength(std::FILE* file) noexcept {
    struct stat status {};
    return fstat(fileno(file), &status) == 0 ? static_cast<unsigned long long>(status.st_size) : 0;
}
