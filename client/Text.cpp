// Through the system's own conversion.
#include <quillet/client/Text.h>

#include <windows.h>

namespace quillet {

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int needed =
        length == 0 ? 0 : WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    if (needed != 0) {
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), needed, nullptr, nullptr);
    }
    return utf8;
}

std::wstring FromUtf8(std::string_view utf8) {
    const int length = static_cast<int>(utf8.size());
    const int needed = length == 0 ? 0 : MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(needed), L'\0');
    if (needed != 0) {
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), needed);
    }
    return text;
}

} // namespace quillet
