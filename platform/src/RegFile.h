// The export text of the registry ("Windows Registry Editor Version 5.00").
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillet::platform {

/// One step of a file, in its order.
struct RegOperation {
    enum class Kind { CreateKey, DeleteKey, SetValue, DeleteValue } kind;
    HKEY root;
    std::wstring path; ///< below the root
    std::wstring name; ///< of the value; empty for the default value
    DWORD type = REG_NONE;
    std::vector<BYTE> data; ///< as RegQueryValueExW delivers it: text is wchar_t
};

struct RegFileError {
    std::size_t line;
    std::string message;
};

/// Reads a whole file, in UTF-8 or, with a byte-order mark, in UTF-16LE. Either all of it is well formed, or
/// the first error is the result.
std::variant<std::vector<RegOperation>, RegFileError> ParseRegFile(std::string_view bytes);

} // namespace quillet::platform
