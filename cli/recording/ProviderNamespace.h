// A provider's namespace as every client of WMI sees it, whatever machine answers.
#pragma once

#include <windows.h>
#include <wbemidl.h>
#include <atlbase.h>

#include <functional>
#include <string>

namespace quilletctl {

class ProviderNamespace {
  public:
    /// Connects. COM must be there, and whatever stands in WMI's place. Throws Refusal.
    /// @param resource "\\host\namespace"
    explicit ProviderNamespace(const std::wstring& resource);

    /// Hands over the instances of a class, one after the other. 0, or why there are no more.
    /// @param flags WBEM_FLAG_DEEP or WBEM_FLAG_SHALLOW: with or without those of the classes below it
    HRESULT ForEachInstance(const std::wstring& className, LONG flags,
                            const std::function<void(IWbemClassObject&)>& take);

  private:
    ATL::CComPtr<IWbemServices> m_services;
};

} // namespace quilletctl
