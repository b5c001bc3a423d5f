// What the trace log needs of the host's files; one implementation per host.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

/// Opens the file for text, "a+" if `append`, else "w"; null when it can not be opened. Other processes may
/// read the file meanwhile. The path may have backslashes on every host.
std::FILE* OpenLogFile(const std::wstring& path, bool append);

/// Writes a line and hands it to the system. The caller sees to it that nobody else writes to the stream
/// meanwhile.
void WriteLogLine(std::FILE* file, const char* bytes, std::size_t count) noexcept;

/// Bytes in the file now, whoever wrote them; 0 when that can not be told.
unsigned long long LogFileLength(std::FILE* file) noexcept;
