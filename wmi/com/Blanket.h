// The security blanket of a proxy: what IClientSecurity sets and tells.
#pragma once

#include <windows.h>
#include <wbemidl.h>

#include <mutex>

namespace quillet::wmi {

/// Safe for many threads. A new proxy has none.
class Blanket {
  public:
    void Set(DWORD authenticationService, DWORD authorisationService, DWORD authenticationLevel,
             DWORD impersonationLevel, DWORD capabilities) {
        const std::lock_guard lock(m_mutex);
        m_authenticationService = authenticationService;
        m_authorisationService = authorisationService;
        m_authenticationLevel = authenticationLevel;
        m_impersonationLevel = impersonationLevel;
        m_capabilities = capabilities;
    }

    /// Tells what whoever asks has a place for.
    void Tell(DWORD* authenticationService, DWORD* authorisationService, DWORD* authenticationLevel,
              DWORD* impersonationLevel, DWORD* capabilities) const {
        const std::lock_guard lock(m_mutex);
        const auto tell = [](DWORD* place, DWORD value) {
            if (place != nullptr) {
                *place = value;
            }
        };
        tell(authenticationService, m_authenticationService);
        tell(authorisationService, m_authorisationService);
        tell(authenticationLevel, m_authenticationLevel);
        tell(impersonationLevel, m_impersonationLevel);
        tell(capabilities, m_capabilities);
    }

    /// Whether a provider lets calls of this proxy in.
    bool Suffices() const {
        const std::lock_guard lock(m_mutex);
        return m_authenticationLevel >= RPC_C_AUTHN_LEVEL_CALL &&
               m_impersonationLevel >= RPC_C_IMP_LEVEL_IMPERSONATE;
    }

  private:
    mutable std::mutex m_mutex;
    DWORD m_authenticationService = 0;
    DWORD m_authorisationService = 0;
    DWORD m_authenticationLevel = 0;
    DWORD m_impersonationLevel = 0;
    DWORD m_capabilities = 0;
};

} // namespace quillet::wmi
