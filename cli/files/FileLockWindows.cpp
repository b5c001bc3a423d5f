// A lock on Windows: a mutex that is called like the file. One on the file itself would be in the way of its
// readers, and of the file that takes its place.
#include "files/FileLock.h"

#include <windows.h>

#include <string>
#include <system_error>

namespace quilletctl {

struct FileLock::State {
    ~State() {
        if (isTaken) {
            ReleaseMutex(mutex);
        }
        if (mutex != nullptr) {
            CloseHandle(mutex);
        }
    }
    HANDLE mutex = nullptr;
    bool isTaken = false;
};

namespace {

[[noreturn]] void ThrowLastError() {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

/// What names a file whatever way leads to it: its folder's number, and its own name, whose case does not
/// count.
std::wstring MutexName(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : L".";
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(folder.c_str(), 0, kShared, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        ThrowLastError();
    }
    BY_HANDLE_FILE_INFORMATION information{};
    const BOOL isKnown = GetFileInformationByHandle(handle, &information);
    CloseHandle(handle);
    if (!isKnown) {
        ThrowLastError();
    }
    std::wstring name = file.filename().wstring();
    CharLowerBuffW(name.data(), static_cast<DWORD>(name.size()));
    return L"Global\\quilletctl " + std::to_wstring(information.dwVolumeSerialNumber) + L' ' +
           std::to_wstring(information.nFileIndexHigh) + L' ' + std::to_wstring(information.nFileIndexLow) +
           L' ' + name;
}

} // namespace

FileLock::FileLock(const std::filesystem::path& file) : m_state(std::make_unique<State>()) {
    // Everybody may wait for it: who may write the file is for the file's rights to say.
    SECURITY_DESCRIPTOR anybody{};
    InitializeSecurityDescriptor(&anybody, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&anybody, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, &anybody, FALSE};
    m_state->mutex = CreateMutexW(&attributes, FALSE, MutexName(file).c_str());
    if (m_state->mutex == nullptr) {
        ThrowLastError();
    }
    // A process that died with it has left the file whole.
    const DWORD outcome = WaitForSingleObject(m_state->mutex, INFINITE);
    if (outcome != WAIT_OBJECT_0 && outcome != WAIT_ABANDONED) {
        ThrowLastError();
    }
    m_state->isTaken = true;
}

FileLock::~FileLock() = default;

} // namespace quilletctl
