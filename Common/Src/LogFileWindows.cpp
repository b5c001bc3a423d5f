// The trace log's files on Windows.
#include "LogFile.h"

#include <io.h>
#include <share.h>

std::FILE* OpenLogFile(const std::wstring& path, bool append) {
    return _wfsopen(path.c_str(), append ? L"a+" : L"w", _SH_DENYNO);
}

void WriteLogLine(std::FILE* file, const char* bytes, std::size_t count) noexcept {
    std::fwrite(bytes, 1, count, file);
    std::fflush(file);
}

unsigned long long LogFileLength(std::FILE* file) noexcept {
    const long long length = _filelengthi64(_fileno(file));
    return length < 0 ? 0 : static_cast<unsigned long long>(length);
}
