// Link security (IEEE 802.1AE) of an adapter as values.
#pragma once

#include <quillet/client/Secret.h>

#include <cstdint>
#include <string>

namespace quillet {

/// The manually entered secure associations of one direction.
struct SecureAssociation {
    Secret key;
    std::int32_t firstNumber = 0;  ///< the first association number
    std::int32_t secondNumber = 0; ///< the second association number
    std::wstring channelId;        ///< the secure channel identifier
    friend bool operator==(const SecureAssociation&, const SecureAssociation&) = default;
};

/// The manually entered keys of an adapter and their parameters.
struct ManualKeys {
    SecureAssociation outgoing;
    SecureAssociation incoming;
    bool includeChannelId = false; ///< whether outgoing frames carry the secure channel identifier
    bool encryption = false;       ///< whether frames are encrypted and not only authenticated
    friend bool operator==(const ManualKeys&, const ManualKeys&) = default;
};

/// The authentication methods of an adapter, without credentials: the provider's numbers.
struct AuthenticationMethods {
    std::int32_t outer = 0;       ///< the outer EAP method ("OuterEAPType"); 1 to 4 can be set
    std::int32_t inner = 0;       ///< the inner EAP method ("InnerEAPType"); 1 to 3 are known
    std::int32_t keySecurity = 0; ///< how the keys come about ("KeySecType")
    bool randomMac = false;       ///< whether a random MAC address is used ("bRandMACAddress")
    friend bool operator==(const AuthenticationMethods&, const AuthenticationMethods&) = default;
};

/// How an adapter authenticates for link security.
struct Authentication {
    AuthenticationMethods methods;
    std::wstring userName;
    Secret password;
    std::wstring machineDomainName;      ///< only read
    bool autoPac = false;                ///< whether the PAC is obtained automatically
    std::wstring pac;                    ///< the PAC's file or authority ("PACPath")
    bool machineCredentials = false;     ///< whether the machine's credentials are used
    std::int32_t changedCredentials = 0; ///< which kind of credentials changed; only written
    std::int32_t windowsCredentials = 0; ///< non-zero: those of the user who is logged on
    friend bool operator==(const Authentication&, const Authentication&) = default;
};

/// A PAC file to import.
struct PacFile {
    std::wstring path{};  ///< on the managed machine
    Secret password{};    ///< opens the file
    bool changed = false; ///< whether the file or its password changed
};

/// What an imported PAC file holds. None of it is secret.
struct PacContents {
    std::int32_t type = 0; ///< the provider's number for the kind of the PAC
    std::wstring description;
    std::wstring authority;     ///< the identifier of its authority
    std::wstring authorityText; ///< the description of its authority
    std::wstring issuedTo;
    std::int32_t expires = 0; ///< in the provider's units
    friend bool operator==(const PacContents&, const PacContents&) = default;
};

/// A manually entered pairwise master key.
struct MasterKey {
    Secret key;
    bool randomMac = false; ///< whether a random MAC address is used
    friend bool operator==(const MasterKey&, const MasterKey&) = default;
};

/// The credentials that an adapter has saved.
struct SavedCredentials {
    std::wstring userName;
    Secret password;
    bool machineCredentials = false; ///< whether they are the machine's own
    std::wstring machineDomainName;
};

/// Whether the driver is reloaded, so that a change takes effect at once.
enum class Reload : bool { No = false, Driver = true };

} // namespace quillet
