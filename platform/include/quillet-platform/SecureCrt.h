// The C library functions that only the Windows run-time has: bounds-checked strings, wide formatting with
// the Windows meaning of the conversions, wide file names.
//
// Formatting: in these functions %s and %c take wide text and %S, %C, %hs, %hc narrow text (UTF-8), whatever
// the host's own wprintf does. `l` before an integer conversion names a LONG, so %ld, %lu and %lx read 32
// bits; %lld and %I64d read 64. A conversion that does not exist prints its own character.
#pragma once

#include <windef.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

using errno_t = int;

#define _TRUNCATE (static_cast<std::size_t>(-1))

#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

#pragma GCC visibility push(default)

// --- Invalid parameters --------------------------------------------------------------------------------
/// Called when a bounds-checked function is given what it can not work with. The texts are null and the line
/// is 0, as in the release run-time.
using _invalid_parameter_handler = void(__cdecl*)(const wchar_t* expression, const wchar_t* function,
                                                  const wchar_t* file, unsigned int line,
                                                  std::uintptr_t reserved);
/// Installs the process's handler and returns the previous one; null restores the default, which ends the
/// process.
_invalid_parameter_handler _set_invalid_parameter_handler(_invalid_parameter_handler handler) noexcept;
_invalid_parameter_handler _get_invalid_parameter_handler() noexcept;

// --- Bounds-checked text and memory --------------------------------------------------------------------
// All return 0, EINVAL (a null argument, a size of 0, an unterminated destination) or ERANGE (the result does
// not fit); on failure the destination, if there is one, becomes an empty text.
errno_t wcscpy_s(wchar_t* destination, std::size_t size, const wchar_t* source);
errno_t wcscat_s(wchar_t* destination, std::size_t size, const wchar_t* source);
/// With `count` _TRUNCATE a text that does not fit is cut and STRUNCATE (80) returned.
errno_t wcsncpy_s(wchar_t* destination, std::size_t size, const wchar_t* source, std::size_t count);
errno_t wcsncat_s(wchar_t* destination, std::size_t size, const wchar_t* source, std::size_t count);
errno_t memcpy_s(void* destination, std::size_t size, const void* source, std::size_t count);
errno_t memmove_s(void* destination, std::size_t size, const void* source, std::size_t count);
#define STRUNCATE 80

template <std::size_t N>
errno_t wcscpy_s(wchar_t (&destination)[N], const wchar_t* source) {
    return wcscpy_s(destination, N, source);
}
template <std::size_t N>
errno_t wcscat_s(wchar_t (&destination)[N], const wchar_t* source) {
    return wcscat_s(destination, N, source);
}
template <std::size_t N>
errno_t wcsncpy_s(wchar_t (&destination)[N], const wchar_t* source, std::size_t count) {
    return wcsncpy_s(destination, N, source, count);
}

// --- Formatting ----------------------------------------------------------------------------------------
/// The length that the formatted text would have.
int _vscwprintf(const wchar_t* format, va_list arguments);
int _scwprintf(const wchar_t* format, ...);
/// At most `count` characters; a text that does not fit is cut and the result is -1. No terminator is written
/// when the text fills the buffer.
int _vsnwprintf(wchar_t* buffer, std::size_t count, const wchar_t* format, va_list arguments);
int _snwprintf(wchar_t* buffer, std::size_t count, const wchar_t* format, ...);
/// At most `count` characters of the text, always terminated; -1 when it was cut. If less than `count`
/// characters fit the buffer and the text is longer, the invalid-parameter handler is called and the buffer
/// emptied; `count` _TRUNCATE cuts to the buffer instead.
int _vsnwprintf_s(wchar_t* buffer, std::size_t size, std::size_t count, const wchar_t* format,
                  va_list arguments);
int _snwprintf_s(wchar_t* buffer, std::size_t size, std::size_t count, const wchar_t* format, ...);
/// The whole text or nothing: one that does not fit calls the invalid-parameter handler, empties the buffer
/// and gives -1.
int vswprintf_s(wchar_t* buffer, std::size_t size, const wchar_t* format, va_list arguments);
int swprintf_s(wchar_t* buffer, std::size_t size, const wchar_t* format, ...);

template <std::size_t N>
int vswprintf_s(wchar_t (&buffer)[N], const wchar_t* format, va_list arguments) {
    return vswprintf_s(buffer, N, format, arguments);
}
template <std::size_t N>
int swprintf_s(wchar_t (&buffer)[N], const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vswprintf_s(buffer, N, format, arguments);
    va_end(arguments);
    return length;
}

// --- Comparison and conversion -------------------------------------------------------------------------
int _wcsicmp(const wchar_t* left, const wchar_t* right);
int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count);
/// Decimal text to a number: leading space and a sign are taken, the rest ends at the first other character.
/// Values out of range become the nearest limit.
int _wtoi(const wchar_t* text);
LONG _wtol(const wchar_t* text);
long long _wtoi64(const wchar_t* text);
long long _wcstoi64(const wchar_t* text, wchar_t** end, int base);
unsigned long long _wcstoui64(const wchar_t* text, wchar_t** end, int base);
errno_t _itow_s(int value, wchar_t* buffer, std::size_t size, int base);
errno_t _ltow_s(LONG value, wchar_t* buffer, std::size_t size, int base);
errno_t _ultow_s(ULONG value, wchar_t* buffer, std::size_t size, int base);
errno_t _i64tow_s(long long value, wchar_t* buffer, std::size_t size, int base);
errno_t _ui64tow_s(unsigned long long value, wchar_t* buffer, std::size_t size, int base);
wchar_t* _wcsdup(const wchar_t* text);
int _stricmp(const char* left, const char* right);

/// Splits a path at '\\' or '/'; a null part with size 0 is skipped.
errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* directory,
                      std::size_t directorySize, wchar_t* name, std::size_t nameSize, wchar_t* extension,
                      std::size_t extensionSize);

// --- Files ---------------------------------------------------------------------------------------------
/// Opens a file by its wide name (UTF-8 on the file system). A ", ccs=..." of the mode is ignored.
std::FILE* _wfopen(const wchar_t* name, const wchar_t* mode);
errno_t _wfopen_s(std::FILE** file, const wchar_t* name, const wchar_t* mode);
int _wremove(const wchar_t* name);

#pragma GCC visibility pop
