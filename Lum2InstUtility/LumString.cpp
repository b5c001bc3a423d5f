// Formatting of any length.
#include "LumString.h"

#include <windows.h>

#include <cstdarg>
#include <cwchar>

int CLumString::FormatString(const wchar_t* format, ...) {
    if (format == nullptr) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, format);
    va_list counted;
    va_copy(counted, arguments);
    const int length = _vscwprintf(format, counted);
    va_end(counted);
    int written = -1;
    if (length >= 0) {
        // Built aside: an argument may point into the present text.
        std::wstring formatted(static_cast<std::size_t>(length) + 1, L'\0');
        written = _vsnwprintf_s(formatted.data(), formatted.size(), _TRUNCATE, format, arguments);
        if (written >= 0) {
            formatted.resize(static_cast<std::size_t>(written));
            m_text.swap(formatted);
        }
    }
    va_end(arguments);
    return written;
}
