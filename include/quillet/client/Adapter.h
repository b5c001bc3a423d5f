// Adapters as values.
#pragma once

#include <quillet/client/Flags.h>
#include <quillet/client/Id.h>

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

namespace quillet {

/// One adapter (Zorel_PhysicalEthernetAdapter) by its names.
struct Adapter {
    AdapterId id;             ///< its object path
    std::wstring name;        ///< "Name"
    std::wstring displayName; ///< "OriginalDisplayName"
    std::wstring deviceId;    ///< "DeviceID"
    /// "SlotID": of its board, shared by the board's ports. `Session::ReadAdapter` fills it, a list does not.
    std::wstring slot;
};

/// Classes of "Speed".
enum class LinkSpeed : std::int32_t {
    None = 0,       ///< as without a link
    Megabit1 = 1,   ///< 1 Mbit/s
    Megabit10 = 2,  ///< 10 Mbit/s
    Megabit100 = 3, ///< 100 Mbit/s
    Gigabit1 = 4,   ///< 1 Gbit/s
    Gigabit10 = 5,  ///< 10 Gbit/s, and any speed that is no other class
    Other = 6       ///< the provider reported a negative speed
};

/// "FullDuplex".
enum class Duplex : std::int32_t { Unknown = 0, Half = 1, Full = 2 };

/// "LinkSecStatus".
enum class LinkSecurityStatus : std::int32_t {
    Unknown = 0,
    NotSupported = 1, ///< also any number outside 0 to 9
    Disabled = 2,
    Enabled = 3,
    Authenticating = 4,
    Authenticated = 5,
    AuthenticationFailed = 6,
    Secured = 7,
    SecuredWithEncryption = 8,
    KeyAgreementFailed = 9
};

/// "AdapterStatus", bit by bit.
enum class AdapterCondition : std::uint64_t { Enabled = 1, DriverProblem = 2, HardwareMissing = 4 };

/// "HardwareStatus".
enum class HardwareStatus : std::int32_t {
    Missing = 0,
    DriverNotLoaded = 1,
    CableRemoved = 2,
    LinkPresent = 3
};

/// "StatusInfo", as the CIM schema has it: of an adapter, a team or a VLAN.
enum class StatusInfo : std::int32_t { Other = 1, Unknown = 2, Enabled = 3, Disabled = 4, NotApplicable = 5 };

/// "Availability", as the CIM schema has it.
enum class Availability : std::int32_t {
    Other = 1,
    Unknown = 2,
    Running = 3,
    Warning = 4,
    InTest = 5,
    NotApplicable = 6,
    PowerOff = 7,
    OffLine = 8,
    OffDuty = 9,
    Degraded = 10,
    NotInstalled = 11,
    InstallError = 12,
    PowerSaveUnknown = 13,
    PowerSaveLowPower = 14,
    PowerSaveStandby = 15,
    PowerCycle = 16,
    PowerSaveWarning = 17,
    Paused = 18,
    NotReady = 19,
    NotConfigured = 20,
    Quiesced = 21
};

/// An adapter's link and state.
struct AdapterState {
    LinkSpeed speed{};                  ///< the class of "Speed"
    Duplex duplex{};                    ///< "FullDuplex"
    LinkSecurityStatus linkSecurity{};  ///< "LinkSecStatus"
    Flags<AdapterCondition> conditions; ///< "AdapterStatus"
    StatusInfo statusInfo{};            ///< "StatusInfo"
    Availability availability{};        ///< "Availability"
    HardwareStatus hardware{};          ///< "HardwareStatus"
    std::wstring text;                  ///< the state in the provider's words ("Status")
};

/// An adapter's identity on its bus and on the network, as texts for display.
struct AdapterHardware {
    std::wstring controllerId;        ///< "ControllerID"
    std::wstring mediaType;           ///< "MediaType"
    std::wstring negotiatedLinkWidth; ///< "NegotiatedLinkWidth"; empty on a bus other than PCI Express
    std::wstring portNumber;          ///< "PortNumber"
    std::wstring partNumber;          ///< "PartNumber"
    std::wstring macAddress;          ///< the MAC address
    std::wstring eepromVersion;       ///< "EEPROMVersion"
    std::wstring sanMacAddress;       ///< the storage MAC address ("SanMacAddress")
    std::wstring pciDeviceId;         ///< "PCIDeviceID"
};

/// What an adapter can do: the codes of "Capabilities" that the library knows.
enum class Capability : std::int32_t {
    Teaming = 3,
    FaultToleranceTeam = 4,
    AdaptiveLoadBalancingTeam = 5,
    GigabitLinkAggregationTeam = 8,
    StaticLinkAggregationTeam = 9,
    DynamicLinkAggregationTeam = 10,
    SwitchFaultToleranceTeam = 12,
    Speed10Megabit = 32,
    Speed100Megabit = 33,
    Speed1Gigabit = 34,
    Speed10Gigabit = 35,
    TeamingWithOtherMakers = 36,
    Vlan = 37,
    PriorityTagging = 39,
    BootAgent = 41,
    WakeOnLan = 43,
    Diagnostics = 44,
    ServerAdapter = 46, ///< a team needs one
    SpeedsReported = 47,
    PowerManagement = 50,
    CableTest = 52,
    FibreMedium = 53,
    TcpSegmentationOffload = 54,
    ChecksumOffload = 55,
    JumboFrames = 56,
    AdapterIdentification = 57,
    ReceiveSideScaling = 60,
    ScalableNetworking = 61,
    DirectCacheAccess = 62,
    VirtualMachineQueues = 63,
    LinkSecurity = 64,
    IscsiBoot = 65,
    DataCentreBridging = 66,
    VirtualMachineLoadBalancingTeam = 68
};

/// A port of an adapter's board that is a member of a team.
struct TeamedPort {
    AdapterId id;        ///< the port
    bool teamed = false; ///< whether the provider names a team
    TeamId team;         ///< which
};

/// The NDIS version of a driver; both -1 when it cannot be read.
struct NdisVersion {
    int major = -1;
    int minor = -1;
};

enum class MemberRole : std::int32_t; // in Team.h

/// What a list of adapters shows of one. What an adapter cannot tell must not hide the others: it is missing
/// here, and `failure` says why the first of it is.
struct AdapterOverview {
    Adapter adapter;                         ///< with its slot
    std::wstring objectId;                   ///< the GUID text in its path; empty where there is none
    std::optional<AdapterState> state;       ///< link, duplex, speed
    std::optional<AdapterHardware> hardware; ///< MAC address, port
    TeamId team;                             ///< empty for an adapter that is in no team
    std::wstring teamName;                   ///< the team's display name
    MemberRole role{};                       ///< what it is to its team
    std::error_code failure;
};

/// @name Words for people, in English
/// A number that has no word is `UnknownNumber`.
/// @{
std::wstring Text(LinkSpeed speed);
std::wstring Text(Duplex duplex);
std::wstring Text(LinkSecurityStatus status);
std::wstring Text(HardwareStatus status);
std::wstring Text(StatusInfo status);
std::wstring Text(Availability availability);
std::wstring Text(Capability capability);
/// The conditions, separated by commas; "nothing reported" for none.
std::wstring Text(Flags<AdapterCondition> conditions);
/// @}

} // namespace quillet
