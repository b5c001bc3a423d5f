// Boot agents: the network boot firmware in the flash memory of an adapter.
#pragma once

#include <windows.h>

#include <quillet/Export.h>

#include <string>

/// The boot agent of one adapter, an instance of "Zorel_BootAgent".
class QUILLET_API CBootAgent {
  public:
    /// The boot agent's identifier in every operation: its object path ("__PATH").
    std::wstring m_wsBootAgentID;
    /// The version for display ("Version").
    std::wstring m_wsVersion;
    /// The version as a number ("VersionNumber").
    LONG m_lVersionNumber = 0;
    /// Whether a newer image is available ("UpdateAvailable").
    bool m_bUpdateAvailable = false;
    /// The kind of the image in flash: the provider's number, unchanged ("FlashImageType").
    LONG m_lFlashImageType = 0;
    /// The same for display, in the language of the connection.
    std::wstring m_wsFlashImageType;
    /// "iSCSI_Status"; see `CISCSIAdapter::iSCSIStatus`.
    LONG m_lISCSIStatus = 0;
    /// The provider's number, unchanged ("InstalledFlashImageTypes").
    LONG m_lInstalledFlashImageTypes = 0;
};
