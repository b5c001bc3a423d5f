// Link security (IEEE 802.1AE) of an adapter: manually entered keys, authentication, protected access
// credentials (PACs), the pairwise master key (PMK) and saved credentials.
#pragma once

#include <windows.h>

#include <quillet/Export.h>

#include <string>

// A record that holds a secret belongs to the caller, and so does the secret in it. Clear() overwrites it;
// the destructor does so by itself, and an assignment overwrites what was there before. A text that the
// caller copies out of a record, or moves into one, is the caller's to overwrite.

/// The manually entered secure associations of an adapter.
class QUILLET_API CAdapterManualAuthInfo {
  public:
    /// The key for outgoing frames, as text. A secret.
    std::wstring m_sTXSAKey;
    /// The first association number for outgoing frames.
    LONG m_nTXAssocNum1 = 0;
    /// The second association number for outgoing frames.
    LONG m_nTXAssocNum2 = 0;
    /// Whether outgoing frames carry the secure channel identifier.
    bool m_bIncludeSCIOnTX = false;
    /// The secure channel identifier for outgoing frames.
    std::wstring m_sTXSCI;
    /// The key for incoming frames, as text. A secret.
    std::wstring m_sRXSAKey;
    /// The first association number for incoming frames.
    LONG m_nRXAssocNum1 = 0;
    /// The second association number for incoming frames.
    LONG m_nRXAssocNum2 = 0;
    /// The secure channel identifier for incoming frames.
    std::wstring m_sRXSCI;
    /// Whether frames are encrypted and not only authenticated.
    bool m_bUseEncryption = false;

    CAdapterManualAuthInfo();
    /// Copies the keys, too.
    CAdapterManualAuthInfo(const CAdapterManualAuthInfo& other);
    /// Overwrites the keys that it replaces.
    CAdapterManualAuthInfo& operator=(const CAdapterManualAuthInfo& other);
    ~CAdapterManualAuthInfo();

    /// Overwrites both keys and empties them; the other members stay.
    void Clear() noexcept;
    /// Whether all ten members are equal, texts to the letter: whether a user changed anything.
    bool operator==(const CAdapterManualAuthInfo& other) const = default;
};

/// How an adapter authenticates for link security.
class QUILLET_API CAdapterAuthTypeInfo {
  public:
    /// The outer EAP method: the provider's number, unchanged; 1 to 4 can be set.
    enum OuterEAP : LONG {};
    /// The inner EAP method: the provider's number, unchanged; 1 to 3 are known.
    enum InnerEAP : LONG {};
    /// How the keys come about: the provider's number, unchanged.
    enum KeySecType : LONG {};

    /// "OuterEAPType".
    OuterEAP m_eOuterEAP = OuterEAP(0);
    /// "InnerEAPType".
    InnerEAP m_InnerEAP = InnerEAP(0);
    /// "LinksecCredUsername".
    std::wstring m_sUserName;
    /// "LinksecCredPassword". A secret.
    std::wstring m_sPassword;
    /// "MachineNameDomainName"; only read.
    std::wstring m_sMachineDomainName;
    /// Whether the PAC is obtained automatically ("bAutoPAC").
    bool m_bUseAutoPAC = false;
    /// The PAC's file or authority ("PACPath").
    std::wstring m_sPACAuthority;
    /// Whether the machine's credentials are used ("bMachineCred").
    bool m_bMachineCred = false;
    /// Which kind of credentials changed ("TypeOfCredsChanged"); only written.
    LONG m_nTypeOfCredsChanged = 0;
    /// Non-zero to use the credentials of the user who is logged on ("WindowsCreds").
    LONG m_bUseWindowsCreds = 0;
    /// "KeySecType".
    KeySecType m_eKeySecType = KeySecType(0);
    /// Whether a random MAC address is used ("bRandMACAddress").
    bool m_bRandMACAddress = false;

    CAdapterAuthTypeInfo();
    /// Copies the password, too.
    CAdapterAuthTypeInfo(const CAdapterAuthTypeInfo& other);
    /// Overwrites the password that it replaces.
    CAdapterAuthTypeInfo& operator=(const CAdapterAuthTypeInfo& other);
    ~CAdapterAuthTypeInfo();

    /// Overwrites the password and empties it; the other members stay.
    void Clear() noexcept;
};

/// The authentication methods of an adapter alone, without credentials.
class QUILLET_API CAdapterEAPInfo {
  public:
    /// "OuterEAPType".
    CAdapterAuthTypeInfo::OuterEAP m_eOuterEAP = CAdapterAuthTypeInfo::OuterEAP(0);
    /// "InnerEAPType".
    CAdapterAuthTypeInfo::InnerEAP m_InnerEAP = CAdapterAuthTypeInfo::InnerEAP(0);
    /// "KeySecType".
    CAdapterAuthTypeInfo::KeySecType m_eKeySecType = CAdapterAuthTypeInfo::KeySecType(0);
    /// "bRandMACAddress".
    bool m_bRandMACAddress = false;
};

/// A PAC file to import.
class QUILLET_API CAdapterPACInfo {
  public:
    /// The file's path on the managed machine ("PACPath").
    std::wstring m_sPACPath;
    /// The password that opens the file ("PACFilePassword"). A secret.
    std::wstring m_sPACFilePassword;
    /// Whether the file or its password changed ("bPACInfoChanged").
    bool m_bPACInfoChanged = false;

    CAdapterPACInfo();
    /// Copies the password, too.
    CAdapterPACInfo(const CAdapterPACInfo& other);
    /// Overwrites the password that it replaces.
    CAdapterPACInfo& operator=(const CAdapterPACInfo& other);
    ~CAdapterPACInfo();

    /// Overwrites the password and empties it; the other members stay.
    void Clear() noexcept;
};

/// What an imported PAC file holds. None of it is secret.
class QUILLET_API CAdapterPacFileInfo {
  public:
    /// The name of the file to ask about; filled in by the caller ("strPACFile").
    std::wstring m_sPACFileName;
    /// The provider's number for the kind of the PAC ("PACFileType").
    LONG m_lPacType = 0;
    /// The PAC's description ("strPACFileInfo").
    std::wstring m_sinfo;
    /// The identifier of its authority ("strPACFileAid").
    std::wstring m_saId;
    /// The description of its authority ("strPACFileAidInfo").
    std::wstring m_saIdInfo;
    /// Whom it was issued to ("strPACFileIid").
    std::wstring m_sIId;
    /// When it expires, in the provider's units ("PACFileExpiryTime").
    LONG m_lExpiryTime = 0;
    /// Nothing fills these two; they stay empty.
    std::wstring m_sReserved1;
    /// As the one before.
    std::wstring m_sReserved2;
};

/// A manually entered pairwise master key.
class QUILLET_API CAdapterManualPMKInfo {
  public:
    /// The key as text ("strManualPMKey"). A secret.
    std::wstring m_sManualPMKKey;
    /// Whether a random MAC address is used ("bRandMACAddress"); only written.
    bool m_bRandMACAddress = false;

    CAdapterManualPMKInfo();
    /// Copies the key, too.
    CAdapterManualPMKInfo(const CAdapterManualPMKInfo& other);
    /// Overwrites the key that it replaces.
    CAdapterManualPMKInfo& operator=(const CAdapterManualPMKInfo& other);
    ~CAdapterManualPMKInfo();

    /// Overwrites the key and empties it; the other member stays.
    void Clear() noexcept;
};

/// The credentials that an adapter has saved.
class QUILLET_API CAdapterLinksecSavedCredInfo {
  public:
    /// "strUsername".
    std::wstring m_sUserName;
    /// "strPassword". A secret.
    std::wstring m_sPassword;
    /// Whether they are the machine's own ("bMachineCred").
    bool m_bMachineCred = false;
    /// "strMachineDomainName".
    std::wstring m_sMachineDomainName;

    CAdapterLinksecSavedCredInfo();
    /// Copies the password, too.
    CAdapterLinksecSavedCredInfo(const CAdapterLinksecSavedCredInfo& other);
    /// Overwrites the password that it replaces.
    CAdapterLinksecSavedCredInfo& operator=(const CAdapterLinksecSavedCredInfo& other);
    ~CAdapterLinksecSavedCredInfo();

    /// Overwrites the password and empties it; the other members stay.
    void Clear() noexcept;
};
