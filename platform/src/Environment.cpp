// Environment variables with Windows' rules for their names.
#include "Text.h"

#include <windows.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace {

using quillet::platform::FoldCase;

// The C library does not guard its list against changes; this at least orders the calls made through here.
std::mutex& Lock() {
    static std::mutex lock;
    return lock;
}

struct Variable {
    std::string name;
    std::string value;
};

std::optional<Variable> Find(const std::wstring& name) {
    const std::string exact = quillet::platform::Utf8FromWide(name);
    if (const char* const value = std::getenv(exact.c_str())) {
        return Variable{exact, value};
    }
    const std::wstring folded = FoldCase(name);
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view line = *entry;
        const std::size_t end = line.find('=');
        if (end != std::string_view::npos &&
            FoldCase(quillet::platform::WideFromUtf8(line.substr(0, end))) == folded) {
            return Variable{std::string(line.substr(0, end)), std::string(line.substr(end + 1))};
        }
    }
    return std::nullopt;
}

std::optional<Variable> FindOrDefault(const std::wstring& name) {
    auto found = Find(name);
    const std::wstring folded = FoldCase(name);
    if (!found && (folded == L"temp" || folded == L"tmp")) {
        found = Find(L"TMPDIR");
        if (!found || found->value.empty()) {
            found = Variable{{}, "/tmp"};
        }
    }
    return found;
}

} // namespace

DWORD WINAPI GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size) {
    const std::lock_guard guard(Lock());
    const auto found = name ? FindOrDefault(name) : std::nullopt;
    if (!found) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    const std::wstring value = quillet::platform::WideFromUtf8(found->value);
    if (!buffer || size <= value.size()) {
        return static_cast<DWORD>(value.size() + 1);
    }
    std::copy(value.begin(), value.end(), buffer);
    buffer[value.size()] = L'\0';
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(value.size());
}

BOOL WINAPI SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value) {
    if (!name || !*name || std::wstring_view(name).find(L'=') != std::wstring_view::npos) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::lock_guard guard(Lock());
    const auto found = Find(name);
    const std::string target = found ? found->name : quillet::platform::Utf8FromWide(name);
    if (!value) {
        unsetenv(target.c_str());
        return TRUE;
    }
    return setenv(target.c_str(), quillet::platform::Utf8FromWide(value).c_str(), 1) == 0 ? TRUE : FALSE;
}
