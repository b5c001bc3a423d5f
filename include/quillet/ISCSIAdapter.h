// iSCSI boot: the adapters that can do it, and what the operating system allows.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>

/// An adapter whose boot agent can boot from an iSCSI target, an instance of
/// "Zorel_BootAgent_iSCSI_Adapters".
class QUILLET_API CISCSIAdapter {
  public:
    /// "iSCSI_Status" of the adapter: the provider's number, unchanged; one that has no name here is carried
    /// as it is.
    enum iSCSIStatus : LONG {
        NotBootPort = 0,  ///< the machine does not boot through this port
        PrimaryPort = 1,  ///< it tries this port first
        SecondaryPort = 2 ///< it tries this port when the primary one fails
    };

    /// The instance's object path ("__PATH").
    std::wstring m_wsPath;
    /// The boot agent's identifier, taken from the path.
    std::wstring m_wsBootAgentID;
    /// "AdapterName".
    std::wstring m_wsAdapterName;
    /// "iSCSI_Status".
    iSCSIStatus m_eStatus = NotBootPort;
};

/// The adapters of a machine that can boot from an iSCSI target.
class QUILLET_API CISCSIAdapters : public CPointerArray<CISCSIAdapter*> {};

/// Whether iSCSI boot is enabled on an adapter and possible on its machine.
class QUILLET_API CiSCSI {
  public:
    /// The out-parameter "iSCSIStatus".
    LONG m_lStatus = 0;
    /// Whether the operating system can boot from iSCSI ("bIsiSCSIOS").
    bool m_bOSSupported = false;
    /// Whether the patch that it needs is there ("bIsiSCSIPatch").
    bool m_bPatchPresent = false;
    /// Whether the hot fix that it needs is there ("bIsiSCSIHotFix").
    bool m_bHotFixPresent = false;
};
