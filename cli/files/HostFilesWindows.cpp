// Files on Windows.
#include "files/HostFiles.h"

#include <windows.h>

#include <string>
#include <vector>

namespace quilletctl {

namespace {

std::error_code LastError() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

/// Tries something until nobody else is in the way: whoever reads or replaces a file does it in no time.
template <class Attempt>
std::error_code UnlessInUse(Attempt attempt) {
    constexpr int kTries = 100;
    constexpr DWORD kPause = 20;
    for (int i = 0; !attempt(); ++i) {
        const std::error_code error = LastError();
        const bool isInUse = error.value() == ERROR_SHARING_VIOLATION || error.value() == ERROR_ACCESS_DENIED;
        if (!isInUse || i == kTries) {
            return error;
        }
        Sleep(kPause);
    }
    return {};
}

} // namespace

std::filesystem::path FollowLinks(const std::filesystem::path& file) {
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(file.c_str(), 0, kShared, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return file; // not there yet, or whoever opens it will be told
    }
    std::wstring name(GetFinalPathNameByHandleW(handle, nullptr, 0, 0), L'\0');
    name.resize(GetFinalPathNameByHandleW(handle, name.data(), static_cast<DWORD>(name.size()), 0));
    CloseHandle(handle);
    return name.empty() ? file : std::filesystem::path(name);
}

std::error_code TakeOverRights(const std::filesystem::path& from, const std::filesystem::path& to) {
    // The owner stays whoever writes: an administrator's files belong to all administrators anyway.
    constexpr SECURITY_INFORMATION kRights = DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    GetFileSecurityW(from.c_str(), kRights, nullptr, 0, &size);
    std::vector<BYTE> descriptor(size);
    const bool isDone = size != 0 &&
                        GetFileSecurityW(from.c_str(), kRights, descriptor.data(), size, &size) &&
                        SetFileSecurityW(to.c_str(), kRights, descriptor.data());
    return isDone ? std::error_code() : LastError();
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    return UnlessInUse([&] { return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0; });
}

std::shared_ptr<void> KeepInPlace(const std::filesystem::path& file) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored)) {
        return nullptr; // nor will it ever be readable
    }
    HANDLE handle = INVALID_HANDLE_VALUE;
    UnlessInUse([&] {
        handle = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        return handle != INVALID_HANDLE_VALUE;
    });
    return handle == INVALID_HANDLE_VALUE ? nullptr : std::shared_ptr<void>(handle, CloseHandle);
}

} // namespace quilletctl
