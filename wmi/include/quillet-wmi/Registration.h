// Putting a host behind the class identifiers by which every client of WMI comes in.
#pragma once

#include <quillet-wmi/Connection.h>

namespace quillet::wmi {

/// Puts a host behind CLSID_WbemLocator (and CLSID_WbemContext) for this process while it lives.
/// COM looks class objects up by apartment on some hosts: make one on every thread that connects, but only
/// one at a time in an apartment, where a second one may share the registration of the first. COM must have
/// been initialised on the thread.
class ClassRegistration {
  public:
    /// Registers the host on this thread's apartment; see Result.
    explicit ClassRegistration(std::shared_ptr<Host> host);
    ~ClassRegistration();
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;
    /// S_OK, or why COM did not take the registration.
    HRESULT Result() const noexcept { return m_result; }

  private:
    HRESULT m_result = E_FAIL;
    DWORD m_locator = 0;
    DWORD m_context = 0;
};

/// COM objects of this layer that are alive in the process, of all hosts.
long LiveObjectCount() noexcept;

} // namespace quillet::wmi
