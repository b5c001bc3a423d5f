// The C library functions that only the Windows run-time has.
#include "Format.h"
#include "Text.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

using quillet::platform::FoldCase;
using quillet::platform::FormatWide;

// --- Invalid parameters --------------------------------------------------------------------------------

namespace {

std::atomic<_invalid_parameter_handler> g_invalidParameterHandler{nullptr};

/// Reports misuse and yields the error, if the handler lets the process live.
errno_t Misuse(errno_t error) {
    errno = error;
    const _invalid_parameter_handler handler = g_invalidParameterHandler.load();
    if (!handler) {
        std::fputs("An invalid parameter was passed to a C run-time function.\n", stderr);
        std::abort();
    }
    handler(nullptr, nullptr, nullptr, 0, 0);
    return error;
}

/// Misuse that also empties the destination.
errno_t MisuseOf(wchar_t* destination, errno_t error) {
    *destination = L'\0';
    return Misuse(error);
}

std::size_t BoundedLength(const wchar_t* text, std::size_t most) {
    std::size_t length = 0;
    while (length < most && text[length]) {
        ++length;
    }
    return length;
}

} // namespace

_invalid_parameter_handler _set_invalid_parameter_handler(_invalid_parameter_handler handler) noexcept {
    return g_invalidParameterHandler.exchange(handler);
}

_invalid_parameter_handler _get_invalid_parameter_handler() noexcept {
    return g_invalidParameterHandler.load();
}

// --- Bounds-checked text and memory --------------------------------------------------------------------

errno_t wcscpy_s(wchar_t* destination, std::size_t size, const wchar_t* source) {
    if (!destination || size == 0) {
        return Misuse(EINVAL);
    }
    if (!source) {
        return MisuseOf(destination, EINVAL);
    }
    const std::size_t length = BoundedLength(source, size);
    if (length == size) {
        return MisuseOf(destination, ERANGE);
    }
    std::wmemmove(destination, source, length + 1);
    return 0;
}

errno_t wcscat_s(wchar_t* destination, std::size_t size, const wchar_t* source) {
    if (!destination || size == 0) {
        return Misuse(EINVAL);
    }
    if (!source) {
        return MisuseOf(destination, EINVAL);
    }
    const std::size_t head = BoundedLength(destination, size);
    if (head == size) {
        return MisuseOf(destination, EINVAL);
    }
    const std::size_t tail = BoundedLength(source, size - head);
    if (tail == size - head) {
        return MisuseOf(destination, ERANGE);
    }
    std::wmemmove(destination + head, source, tail + 1);
    return 0;
}

namespace {

/// Puts at most `count` characters of `source` at `destination[at]`.
errno_t Append(wchar_t* destination, std::size_t at, std::size_t size, const wchar_t* source,
               std::size_t count) {
    const std::size_t room = size - at;
    const std::size_t length = BoundedLength(source, std::min(count, room));
    if (length == room) {
        if (count != _TRUNCATE) {
            return MisuseOf(destination, ERANGE);
        }
        std::wmemmove(destination + at, source, room - 1);
        destination[size - 1] = L'\0';
        return STRUNCATE;
    }
    std::wmemmove(destination + at, source, length);
    destination[at + length] = L'\0';
    return 0;
}

} // namespace

errno_t wcsncpy_s(wchar_t* destination, std::size_t size, const wchar_t* source, std::size_t count) {
    if (count == 0 && !destination && size == 0) {
        return 0;
    }
    if (!destination || size == 0) {
        return Misuse(EINVAL);
    }
    if (count == 0) {
        *destination = L'\0';
        return 0;
    }
    if (!source) {
        return MisuseOf(destination, EINVAL);
    }
    return Append(destination, 0, size, source, count);
}

errno_t wcsncat_s(wchar_t* destination, std::size_t size, const wchar_t* source, std::size_t count) {
    if (count == 0 && !destination && size == 0) {
        return 0;
    }
    if (!destination || size == 0) {
        return Misuse(EINVAL);
    }
    const std::size_t head = BoundedLength(destination, size);
    if (head == size) {
        return MisuseOf(destination, EINVAL);
    }
    if (count == 0) {
        return 0;
    }
    if (!source) {
        return MisuseOf(destination, EINVAL);
    }
    return Append(destination, head, size, source, count);
}

errno_t memcpy_s(void* destination, std::size_t size, const void* source, std::size_t count) {
    if (count == 0) {
        return 0;
    }
    if (!destination) {
        return Misuse(EINVAL);
    }
    if (!source || size < count) {
        std::memset(destination, 0, size);
        return Misuse(source ? ERANGE : EINVAL);
    }
    std::memcpy(destination, source, count);
    return 0;
}

errno_t memmove_s(void* destination, std::size_t size, const void* source, std::size_t count) {
    if (count == 0) {
        return 0;
    }
    if (!destination || !source) {
        return Misuse(EINVAL);
    }
    if (size < count) {
        return Misuse(ERANGE);
    }
    std::memmove(destination, source, count);
    return 0;
}

// --- Formatting ----------------------------------------------------------------------------------------

namespace {

int LengthResult(std::size_t length) {
    return length > INT_MAX ? -1 : static_cast<int>(length);
}

} // namespace

int _vscwprintf(const wchar_t* format, va_list arguments) {
    if (!format) {
        Misuse(EINVAL);
        return -1;
    }
    return LengthResult(FormatWide(nullptr, 0, format, arguments));
}

int _vsnwprintf(wchar_t* buffer, std::size_t count, const wchar_t* format, va_list arguments) {
    if (!format || (!buffer && count)) {
        Misuse(EINVAL);
        return -1;
    }
    const std::size_t length = FormatWide(buffer, count, format, arguments);
    if (!buffer) {
        return LengthResult(length);
    }
    if (length < count) {
        buffer[length] = L'\0';
    }
    return length <= count ? LengthResult(length) : -1;
}

int _vsnwprintf_s(wchar_t* buffer, std::size_t size, std::size_t count, const wchar_t* format,
                  va_list arguments) {
    if (format && !buffer && size == 0 && count == 0) {
        return 0;
    }
    if (!format || !buffer || size == 0) {
        Misuse(EINVAL);
        return -1;
    }
    const std::size_t most = std::min(count, size - 1);
    const std::size_t length = FormatWide(buffer, most, format, arguments);
    if (length > most && most < count && count != _TRUNCATE) {
        MisuseOf(buffer, ERANGE);
        return -1;
    }
    buffer[std::min(length, most)] = L'\0';
    return length > most ? -1 : LengthResult(length);
}

int vswprintf_s(wchar_t* buffer, std::size_t size, const wchar_t* format, va_list arguments) {
    if (!format || !buffer || size == 0) {
        Misuse(EINVAL);
        return -1;
    }
    const std::size_t length = FormatWide(buffer, size - 1, format, arguments);
    if (length >= size) {
        MisuseOf(buffer, ERANGE);
        return -1;
    }
    buffer[length] = L'\0';
    return LengthResult(length);
}

int _scwprintf(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = _vscwprintf(format, arguments);
    va_end(arguments);
    return length;
}

int _snwprintf(wchar_t* buffer, std::size_t count, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf(buffer, count, format, arguments);
    va_end(arguments);
    return length;
}

int _snwprintf_s(wchar_t* buffer, std::size_t size, std::size_t count, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf_s(buffer, size, count, format, arguments);
    va_end(arguments);
    return length;
}

int swprintf_s(wchar_t* buffer, std::size_t size, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = vswprintf_s(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

// --- Comparison and conversion -------------------------------------------------------------------------

int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const wchar_t a = FoldCase(left[i]);
        const wchar_t b = FoldCase(right[i]);
        if (a != b) {
            return a < b ? -1 : 1;
        }
        if (!a) {
            break;
        }
    }
    return 0;
}

int _wcsicmp(const wchar_t* left, const wchar_t* right) {
    return _wcsnicmp(left, right, static_cast<std::size_t>(-1));
}

int _stricmp(const char* left, const char* right) {
    for (;; ++left, ++right) {
        const wchar_t a = FoldCase(static_cast<wchar_t>(static_cast<unsigned char>(*left)));
        const wchar_t b = FoldCase(static_cast<wchar_t>(static_cast<unsigned char>(*right)));
        if (a != b || !a) {
            return a < b ? -1 : a > b ? 1 : 0;
        }
    }
}

long long _wcstoi64(const wchar_t* text, wchar_t** end, int base) {
    if (!text || base < 0 || base == 1 || base > 36) {
        if (end) {
            *end = const_cast<wchar_t*>(text);
        }
        Misuse(EINVAL);
        return 0;
    }
    return std::wcstoll(text, end, base);
}

unsigned long long _wcstoui64(const wchar_t* text, wchar_t** end, int base) {
    if (!text || base < 0 || base == 1 || base > 36) {
        if (end) {
            *end = const_cast<wchar_t*>(text);
        }
        Misuse(EINVAL);
        return 0;
    }
    return std::wcstoull(text, end, base);
}

long long _wtoi64(const wchar_t* text) {
    return _wcstoi64(text, nullptr, 10);
}

LONG _wtol(const wchar_t* text) {
    const long long value = _wtoi64(text);
    if (value > INT_MAX || value < INT_MIN) {
        errno = ERANGE;
    }
    return static_cast<LONG>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

int _wtoi(const wchar_t* text) {
    return _wtol(text);
}

namespace {

errno_t WriteNumber(unsigned long long magnitude, bool negative, wchar_t* buffer, std::size_t size,
                    int base) {
    if (!buffer || size == 0) {
        return Misuse(EINVAL);
    }
    if (base < 2 || base > 36) {
        return MisuseOf(buffer, EINVAL);
    }
    std::wstring text;
    do {
        text.push_back(L"0123456789abcdefghijklmnopqrstuvwxyz"[magnitude % static_cast<unsigned>(base)]);
        magnitude /= static_cast<unsigned>(base);
    } while (magnitude);
    if (negative) {
        text.push_back(L'-');
    }
    if (text.size() >= size) {
        return MisuseOf(buffer, ERANGE);
    }
    std::reverse_copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = L'\0';
    return 0;
}

} // namespace

errno_t _ui64tow_s(unsigned long long value, wchar_t* buffer, std::size_t size, int base) {
    return WriteNumber(value, false, buffer, size, base);
}

errno_t _i64tow_s(long long value, wchar_t* buffer, std::size_t size, int base) {
    const auto bits = static_cast<unsigned long long>(value);
    const bool negative = value < 0 && base == 10;
    return WriteNumber(negative ? 0 - bits : bits, negative, buffer, size, base);
}

errno_t _ultow_s(ULONG value, wchar_t* buffer, std::size_t size, int base) {
    return WriteNumber(value, false, buffer, size, base);
}

errno_t _ltow_s(LONG value, wchar_t* buffer, std::size_t size, int base) {
    return base == 10 ? _i64tow_s(value, buffer, size, base)
                      : WriteNumber(static_cast<ULONG>(value), false, buffer, size, base);
}

errno_t _itow_s(int value, wchar_t* buffer, std::size_t size, int base) {
    return _ltow_s(value, buffer, size, base);
}

wchar_t* _wcsdup(const wchar_t* text) {
    if (!text) {
        return nullptr;
    }
    const std::size_t bytes = (std::wcslen(text) + 1) * sizeof(wchar_t);
    auto* const copy = static_cast<wchar_t*>(std::malloc(bytes));
    if (copy) {
        std::memcpy(copy, text, bytes);
    }
    return copy;
}

errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* directory,
                      std::size_t directorySize, wchar_t* name, std::size_t nameSize, wchar_t* extension,
                      std::size_t extensionSize) {
    if (!path || (!drive != !driveSize) || (!directory != !directorySize) || (!name != !nameSize) ||
        (!extension != !extensionSize)) {
        return Misuse(EINVAL);
    }
    std::wstring_view rest = path;
    const std::size_t driveLength = rest.size() > 1 && rest[1] == L':' ? 2 : 0;
    const std::wstring_view drivePart = rest.substr(0, driveLength);
    rest.remove_prefix(driveLength);
    const std::size_t separator = rest.find_last_of(L"\\/");
    const std::size_t directoryLength = separator == std::wstring_view::npos ? 0 : separator + 1;
    const std::wstring_view directoryPart = rest.substr(0, directoryLength);
    rest.remove_prefix(directoryLength);
    const std::size_t dot = std::min(rest.rfind(L'.'), rest.size());
    const std::pair<wchar_t*, std::size_t> targets[] = {
        {drive, driveSize}, {directory, directorySize}, {name, nameSize}, {extension, extensionSize}};
    const std::wstring_view parts[] = {drivePart, directoryPart, rest.substr(0, dot), rest.substr(dot)};
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        if (targets[i].first && parts[i].size() >= targets[i].second) {
            for (const auto& [target, size] : targets) {
                if (target && size) {
                    *target = L'\0';
                }
            }
            return Misuse(ERANGE);
        }
    }
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        if (targets[i].first) {
            std::copy(parts[i].begin(), parts[i].end(), targets[i].first);
            targets[i].first[parts[i].size()] = L'\0';
        }
    }
    return 0;
}

// --- Files ---------------------------------------------------------------------------------------------

errno_t _wfopen_s(std::FILE** file, const wchar_t* name, const wchar_t* mode) {
    if (!file) {
        return Misuse(EINVAL);
    }
    *file = nullptr;
    if (!name || !mode) {
        return Misuse(EINVAL);
    }
    std::wstring_view plain = mode;
    plain = plain.substr(0, plain.find(L','));
    std::string narrow;
    for (const wchar_t character : plain) {
        // "t" and blanks mean nothing to this host.
        if (character != L't' && character != L' ') {
            narrow += quillet::platform::Utf8FromWide({&character, 1});
        }
    }
    *file = std::fopen(quillet::platform::Utf8FromWide(name).c_str(), narrow.c_str());
    return *file ? 0 : errno;
}

std::FILE* _wfopen(const wchar_t* name, const wchar_t* mode) {
    std::FILE* file = nullptr;
    _wfopen_s(&file, name, mode);
    return file;
}

int _wremove(const wchar_t* name) {
    return std::remove(quillet::platform::Utf8FromWide(name).c_str());
}
