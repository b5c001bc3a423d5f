// Adapters and the records that describe them: capabilities, state, PCI identity, ports.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PerformanceProfile.h>
#include <quillet/PointerArray.h>
#include <quillet/Team.h>

#include <array>
#include <cstddef>
#include <string>

/// What an adapter can do: one flag for each code of its "Capabilities" array that the library knows.
class QUILLET_API CAdapterCapInfo {
  public:
    bool m_bCapability41 = false;    ///< code 41
    bool m_bCapability43 = false;    ///< code 43
    bool m_bCapability44 = false;    ///< code 44
    bool m_bServerAdapter = false;   ///< code 46: a server adapter; a team needs one
    bool m_bPowerManagement = false; ///< code 50
    bool m_bCapability3 = false;     ///< code 3
    bool m_bTeamModeOther = false;   ///< code 36: stands for team modes outside 0 to 6
    // The team modes keep the provider's own order, which is not that of their numbers.
    bool m_bTeamMode0 = false;    ///< code 4
    bool m_bTeamMode1 = false;    ///< code 5
    bool m_bTeamMode5 = false;    ///< code 12
    bool m_bTeamMode4 = false;    ///< code 10
    bool m_bTeamMode2 = false;    ///< code 9
    bool m_bTeamMode3 = false;    ///< code 8
    bool m_bTeamMode6 = false;    ///< code 68
    bool m_bCapability53 = false; ///< code 53
    bool m_bSpeed10Mb = false;    ///< code 32: 10 megabit
    bool m_bSpeed100Mb = false;   ///< code 33: 100 megabit
    bool m_bSpeed1Gb = false;     ///< code 34: 1 gigabit
    bool m_bSpeed10Gb = false;    ///< code 35: 10 gigabit
    bool m_bLinkSec = false;      ///< code 64: IEEE 802.1AE link security
    bool m_bVLAN = false;         ///< code 37: can carry IEEE 802.1Q VLANs
    bool m_bCapability39 = false; ///< code 39
    bool m_bCapability57 = false; ///< code 57
    bool m_bCapability60 = false; ///< code 60
    bool m_bCapability47 = false; ///< code 47: the speed flags count only with it
    bool m_bCapability54 = false; ///< code 54
    bool m_bCapability55 = false; ///< code 55
    bool m_bCapability52 = false; ///< code 52
    bool m_bCapability56 = false; ///< code 56
    bool m_bCapability61 = false; ///< code 61: with code 47, the scalable networking pack is installed
    bool m_bCapability62 = false; ///< code 62
    bool m_bCapability63 = false; ///< code 63
    bool m_bCapability65 = false; ///< code 65
    bool m_bCapability66 = false; ///< code 66

    /// A capability code of the provider's and the flag that it sets.
    struct Flag {
        LONG m_lCode;                   ///< of the "Capabilities" array
        bool CAdapterCapInfo::*m_pFlag; ///< what it sets
    };
    /// How many codes are known.
    static constexpr std::size_t FlagCount = 34;
    /// All flags in the order of the record, so that one can be found by its code or its position.
    static const std::array<Flag, FlagCount>& Flags() noexcept;

    /// A new copy that the caller owns.
    CAdapterCapInfo* Copy() const;
};

/// An adapter's link and state.
class QUILLET_API CAdapterDynamicInfo {
  public:
    /// Classes of "Speed".
    enum LinkSpeed : LONG {
        LinkSpeedNone = 0, ///< below 1 megabit per second, as without a link
        LinkSpeed1Mb = 1,
        LinkSpeed10Mb = 2,
        LinkSpeed100Mb = 3,
        LinkSpeed1Gb = 4,
        LinkSpeed10Gb = 5, ///< 10 gigabit, and any positive speed that is no other class
        LinkSpeedOther = 6 ///< the provider reported a negative speed
    };
    /// "FullDuplex", or that it has not been read.
    enum DuplexMode : LONG { DuplexUnknown = 0, DuplexHalf = 1, DuplexFull = 2 };
    /// "LinkSecStatus": the provider's numbers 0 to 9.
    enum LinkSecStatus : LONG {
        LinkSecStatus0 = 0,
        LinkSecStatusUnknown = 1, ///< also any number outside 0 to 9
        LinkSecStatus2 = 2,
        LinkSecStatus3 = 3,
        LinkSecStatus4 = 4,
        LinkSecStatus5 = 5,
        LinkSecStatus6 = 6,
        LinkSecStatus7 = 7,
        LinkSecStatus8 = 8,
        LinkSecStatus9 = 9
    };

    /// The class of "Speed".
    LinkSpeed m_eLinkSpeed = LinkSpeedNone;
    /// "FullDuplex".
    DuplexMode m_eDuplexMode = DuplexUnknown;
    /// "LinkSecStatus".
    LinkSecStatus m_eLinkSecStatus = LinkSecStatusUnknown;
    /// "AdapterStatus".
    LONG m_lAdapterStatus = 0;
    /// "StatusInfo".
    LONG m_lStatusInfo = 0;
    /// "Availability".
    LONG m_lAvailability = 0;
    /// "HardwareStatus".
    LONG m_lHardwareStatus = 0;
    /// The state in words ("Status").
    std::wstring m_wsStatus;

    CAdapterDynamicInfo() = default;
    CAdapterDynamicInfo(const CAdapterDynamicInfo&) = default;
    CAdapterDynamicInfo& operator=(const CAdapterDynamicInfo&) = default;
    virtual ~CAdapterDynamicInfo();
    /// A new copy that the caller owns.
    virtual CAdapterDynamicInfo* Copy() const;
};

/// An adapter's identity on its bus and on the network, as texts for display.
class QUILLET_API CPCIInfo {
  public:
    /// "ControllerID".
    std::wstring m_wsControllerID;
    /// "MediaType".
    std::wstring m_wsMediaType;
    /// "NegotiatedLinkWidth"; empty on a bus other than PCI Express.
    std::wstring m_wsNegotiatedLinkWidth;
    /// "PortNumber".
    std::wstring m_wsPortNumber;
    /// "PartNumber".
    std::wstring m_wsPartNumber;
    /// The MAC address.
    std::wstring m_wsMacAddress;
    /// "EEPROMVersion".
    std::wstring m_wsEEPROMVersion;
    /// The storage MAC address ("SanMacAddress").
    std::wstring m_wsSanMacAddress;
    /// "PCIDeviceID".
    std::wstring m_wsPCIDeviceID;
};

/// An adapter's data-center bridging (DCB).
class QUILLET_API CDataCenter {
  public:
    /// The provider's numbers 0 to 3.
    enum DCBStatus : LONG {
        DCBStatus0 = 0,
        DCBStatusUnknown = 1, ///< also any number outside 0 to 3
        DCBStatus2 = 2,
        DCBStatus3 = 3
    };

    /// Whether data-center bridging is at work.
    DCBStatus m_eDCBStatus = DCBStatus0;
};

/// Another port of an adapter's board, and the team it is in.
class QUILLET_API CAdapterPort {
  public:
    /// The port's adapter identifier (object path).
    std::wstring m_wsAdapterID;
    /// Whether the port is a member of a team.
    bool m_bTeamed = false;
    /// The team's identifier, when it is.
    std::wstring m_wsTeamID;
};

/// The ports of an adapter's board.
class QUILLET_API CAdapterPorts : public CPointerArray<CAdapterPort*> {};

/// One adapter, an instance of "Zorel_PhysicalEthernetAdapter", and the records that were read for it.
///
/// A copy made by the copy constructor or by assignment shares the records of its source. A record is deleted
/// with the last adapter that points to it, so that either may go first, or be given another record. Copies
/// may be used in several threads as long as nobody changes a record that they share, or their pointers to
/// it. `Copy()` makes an adapter with records of its own.
class QUILLET_API CAdapter {
  public:
    /// The adapter's identifier in every operation: its object path ("__PATH").
    std::wstring m_wsAdapterID;
    /// The adapter's own name ("OriginalDisplayName").
    std::wstring m_wsDisplayName;
    /// "Name".
    std::wstring m_wsName;
    /// "DeviceID".
    std::wstring m_wsDeviceID;
    /// The slot of the adapter's board, shared by its ports ("SlotID"); `GetAdapterBasicInfo` fills it.
    std::wstring m_wsSlotID;
    /// Part of the basic information; no property of the provider's feeds it, so it is 0 unless the caller
    /// sets it.
    LONG m_lBasicInfo = 0;
    /// Null until `GetAdapterCapabilities` fills it.
    CAdapterCapInfo* m_pAdapterCapabilities = nullptr;
    /// Null until `GetAdapterDynamicInfo` or `GetAdapterStatus` fills it.
    CAdapterDynamicInfo* m_pAdapterDynamicInfo = nullptr;
    /// Null until `GetAdapterTeamModes` fills it.
    CTeamWizTeamModes* m_pTeamModes = nullptr;
    /// The adapter's performance profiles; null until the caller attaches them.
    CPerformanceProfiles* m_pPerformanceProfiles = nullptr;
    /// Whether the adapter is a member of a team; `GetTeamableAdapters` sets it.
    bool m_bTeamed = false;
    /// For the caller's own choice among adapters; no operation reads or sets it.
    bool m_bSelected = false;

    CAdapter();
    /// Shares the other adapter's records.
    CAdapter(const CAdapter& rOther);
    /// Takes the other adapter's records over, and its place among those that share them.
    CAdapter(CAdapter&& rOther) noexcept;
    /// Deletes the records that only this adapter has, then shares the other's.
    CAdapter& operator=(const CAdapter& rOther);
    /// Deletes the records that only this adapter has, then takes the other's over.
    CAdapter& operator=(CAdapter&& rOther) noexcept;
    /// Deletes the records that no other adapter shares.
    ~CAdapter();
    /// A new adapter, owned by the caller, with copies of all records.
    CAdapter* Copy() const;

  private:
    // The public pointers that were copied from one another stand in a ring, and the last of them that points
    // to a record deletes it. It looks at the others as they are then: a caller may have changed any of them.
    template <class TRecord>
    struct Sharer {
        explicit Sharer(TRecord*& rpRecord) noexcept : m_rpRecord(rpRecord) {}
        ~Sharer() {
            if (!Leave()) {
                delete m_rpRecord;
            }
        }
        Sharer(const Sharer&) = delete;
        Sharer& operator=(const Sharer&) = delete;
        void Join(const Sharer& rOther) noexcept;
        bool Leave() noexcept; // whether another one points to the record

        TRecord*& m_rpRecord;
        mutable const Sharer* m_pNext = this;
    };

    void Share(const CAdapter& rOther) noexcept;
    void Take(CAdapter& rOther) noexcept;

    Sharer<CAdapterCapInfo> m_capabilities{m_pAdapterCapabilities};
    Sharer<CAdapterDynamicInfo> m_dynamicInfo{m_pAdapterDynamicInfo};
    Sharer<CTeamWizTeamModes> m_teamModes{m_pTeamModes};
    Sharer<CPerformanceProfiles> m_performanceProfiles{m_pPerformanceProfiles};
};

/// The adapters of a machine. Its elements own their records, also in a copy.
class QUILLET_API CAdapters : public CPointerArray<CAdapter*> {
  public:
    /// A new deep copy that the caller owns; null for a null collection (see `CPointerArray`).
    CAdapters* Copy() const;
};
