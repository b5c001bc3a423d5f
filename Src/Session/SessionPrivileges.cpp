// The first step of a connection: the provider checks privileges that a process has but must enable.
#include <quillet/Quillet.h>

#include "Provider/ResultCodes.h"

#include <memory>
#include <new>

namespace {

/// A process token; closed with the object.
class ProcessToken {
  public:
    explicit ProcessToken(DWORD access) {
        if (!OpenProcessToken(GetCurrentProcess(), access, &m_token)) {
            m_token = nullptr;
        }
    }
    ~ProcessToken() {
        if (m_token) {
            CloseHandle(m_token);
        }
    }
    ProcessToken(const ProcessToken&) = delete;
    ProcessToken& operator=(const ProcessToken&) = delete;
    explicit operator bool() const { return m_token != nullptr; }
    HANDLE Get() const { return m_token; }

  private:
    HANDLE m_token = nullptr;
};

} // namespace

HRESULT CQuillet::SetInitialSecurityAttribute() {
    const ProcessToken token(TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY);
    if (!token) {
        return RESULT_WBEM_ACCESS_DENIED;
    }
    // The first query, into a buffer for one privilege, tells how long the list is.
    alignas(TOKEN_PRIVILEGES) BYTE probe[16];
    DWORD size = 0;
    if (!GetTokenInformation(token.Get(), TokenPrivileges, probe, sizeof(probe), &size) &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return RESULT_WBEM_ACCESS_DENIED;
    }
    const std::unique_ptr<BYTE[]> buffer(new (std::nothrow) BYTE[size]);
    if (!buffer) {
        return RESULT_WBEM_OUT_OF_MEMORY;
    }
    DWORD read = 0;
    if (!GetTokenInformation(token.Get(), TokenPrivileges, buffer.get(), size, &read)) {
        return RESULT_WBEM_ACCESS_DENIED;
    }
    auto* list = reinterpret_cast<TOKEN_PRIVILEGES*>(buffer.get());
    for (DWORD index = 0; index < list->PrivilegeCount; ++index) {
        list->Privileges[index].Attributes |= SE_PRIVILEGE_ENABLED;
    }
    if (!AdjustTokenPrivileges(token.Get(), FALSE, list, size, nullptr, nullptr)) {
        return RESULT_WBEM_ACCESS_DENIED;
    }
    return S_OK;
}
