// Finding and reading the trace file.
#include "files/TraceFile.h"

#include "texts/Text.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <deque>
#include <fstream>
#include <iterator>

namespace quilletctl {

namespace {

constexpr const wchar_t* kSettingsKey = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
constexpr const wchar_t* kTraceFileName = L"\\Gui_Quillet.txt";

/// "InstalledDir" of the machine's registry; empty where the key has no such value, nothing without the key.
std::optional<std::wstring> InstalledDirectory() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::array<wchar_t, 512> text{};
    auto size = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
    DWORD type = REG_NONE;
    const LONG result =
        RegQueryValueExW(key, L"InstalledDir", nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
    RegCloseKey(key);
    const bool isText = result == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ);
    return isText ? std::wstring(text.data()) : std::wstring();
}

/// "Temp" of the environment, as the library asks for it; every host has a default.
std::wstring TemporaryDirectory() {
    std::wstring directory(GetEnvironmentVariableW(L"Temp", nullptr, 0), L'\0');
    directory.resize(
        GetEnvironmentVariableW(L"Temp", directory.data(), static_cast<DWORD>(directory.size())));
    return directory;
}

std::filesystem::path HostPath(std::wstring path) {
    // Every host takes the slash.
    std::replace(path.begin(), path.end(), L'\\', L'/');
    const std::string utf8 = ToUtf8(path);
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

/// Every line of a file names the process that wrote it, behind the process's name.
bool IsOfThisProcess(const std::string& line) {
    std::array<char, 32> mark{};
    std::snprintf(mark.data(), mark.size(), "\tPID:%lx\t", static_cast<unsigned long>(GetCurrentProcessId()));
    return line.find(mark.data()) != std::string::npos;
}

std::optional<TraceFile> Read(const std::filesystem::path& path, std::size_t lineCount) {
    std::ifstream stream(path, std::ios::binary);
    std::deque<std::string> last;
    bool ours = false;
    for (std::string line; std::getline(stream, line);) {
        ours = ours || IsOfThisProcess(line);
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        last.push_back(std::move(line));
        if (last.size() > lineCount) {
            last.pop_front();
        }
    }
    if (!ours) {
        return std::nullopt;
    }
    return TraceFile{path, {std::make_move_iterator(last.begin()), std::make_move_iterator(last.end())}};
}

} // namespace

std::optional<TraceFile> ReadTraceFile(std::size_t lineCount) {
    // The library falls back to the temporary directory when the first place cannot be written.
    std::vector<std::wstring> directories;
    if (std::optional<std::wstring> installed = InstalledDirectory()) {
        directories.push_back(*std::move(installed));
    }
    directories.push_back(TemporaryDirectory());
    for (const std::wstring& directory : directories) {
        if (std::optional<TraceFile> trace = Read(HostPath(directory + kTraceFileName), lineCount)) {
            return trace;
        }
    }
    return std::nullopt;
}

} // namespace quilletctl
