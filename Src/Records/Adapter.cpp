// Adapters and their records: what is copied, what is only viewed, and what is deleted.
#include <quillet/Adapter.h>

#include <memory>
#include <utility>

namespace {

// A record pointer of an adapter and its partner that says whether the record is another adapter's.
template <class T>
struct RecordSlot {
    T*& m_rpRecord;
    const T*& m_rpShared;

    void Release() {
        if (m_rpRecord != m_rpShared) {
            delete m_rpRecord;
        }
    }

    void View(T* pRecord) {
        if (m_rpRecord != pRecord) {
            Release();
            m_rpRecord = pRecord;
            m_rpShared = pRecord;
        }
    }

    void Take(RecordSlot<T> from) {
        const bool bOwned = from.m_rpRecord != from.m_rpShared;
        View(from.m_rpRecord);
        if (bOwned) {
            m_rpShared = nullptr;
        }
        from.m_rpRecord = nullptr;
        from.m_rpShared = nullptr;
    }

    // The slot views the original until its copy is there.
    void Detach() {
        if (m_rpRecord != nullptr) {
            m_rpRecord = m_rpRecord->Copy();
        }
        m_rpShared = nullptr;
    }
};

template <class T>
RecordSlot(T*&, const T*&) -> RecordSlot<T>;

} // namespace

const std::array<CAdapterCapInfo::Flag, CAdapterCapInfo::FlagCount>& CAdapterCapInfo::Flags() noexcept {
    static constexpr std::array<Flag, FlagCount> flags{{
        {41, &CAdapterCapInfo::m_bCapability41},
        {43, &CAdapterCapInfo::m_bCapability43},
        {44, &CAdapterCapInfo::m_bCapability44},
        {46, &CAdapterCapInfo::m_bServerAdapter},
        {50, &CAdapterCapInfo::m_bPowerManagement},
        {3, &CAdapterCapInfo::m_bCapability3},
        {36, &CAdapterCapInfo::m_bTeamModeOther},
        {4, &CAdapterCapInfo::m_bTeamMode0},
        {5, &CAdapterCapInfo::m_bTeamMode1},
        {12, &CAdapterCapInfo::m_bTeamMode5},
        {10, &CAdapterCapInfo::m_bTeamMode4},
        {9, &CAdapterCapInfo::m_bTeamMode2},
        {8, &CAdapterCapInfo::m_bTeamMode3},
        {68, &CAdapterCapInfo::m_bTeamMode6},
        {53, &CAdapterCapInfo::m_bCapability53},
        {32, &CAdapterCapInfo::m_bSpeed10Mb},
        {33, &CAdapterCapInfo::m_bSpeed100Mb},
        {34, &CAdapterCapInfo::m_bSpeed1Gb},
        {35, &CAdapterCapInfo::m_bSpeed10Gb},
        {64, &CAdapterCapInfo::m_bLinkSec},
        {37, &CAdapterCapInfo::m_bVLAN},
        {39, &CAdapterCapInfo::m_bCapability39},
        {57, &CAdapterCapInfo::m_bCapability57},
        {60, &CAdapterCapInfo::m_bCapability60},
        {47, &CAdapterCapInfo::m_bCapability47},
        {54, &CAdapterCapInfo::m_bCapability54},
        {55, &CAdapterCapInfo::m_bCapability55},
        {52, &CAdapterCapInfo::m_bCapability52},
        {56, &CAdapterCapInfo::m_bCapability56},
        {61, &CAdapterCapInfo::m_bCapability61},
        {62, &CAdapterCapInfo::m_bCapability62},
        {63, &CAdapterCapInfo::m_bCapability63},
        {65, &CAdapterCapInfo::m_bCapability65},
        {66, &CAdapterCapInfo::m_bCapability66},
    }};
    return flags;
}

CAdapterCapInfo* CAdapterCapInfo::Copy() const {
    return new CAdapterCapInfo(*this);
}

CAdapterDynamicInfo::~CAdapterDynamicInfo() = default;

CAdapterDynamicInfo* CAdapterDynamicInfo::Copy() const {
    return new CAdapterDynamicInfo(*this);
}

CAdapter::CAdapter(const CAdapter& rOther)
    : m_wsAdapterID(rOther.m_wsAdapterID), m_wsDisplayName(rOther.m_wsDisplayName), m_wsName(rOther.m_wsName),
      m_wsDeviceID(rOther.m_wsDeviceID), m_wsSlotID(rOther.m_wsSlotID), m_lBasicInfo(rOther.m_lBasicInfo),
      m_pAdapterCapabilities(rOther.m_pAdapterCapabilities),
      m_pAdapterDynamicInfo(rOther.m_pAdapterDynamicInfo), m_pTeamModes(rOther.m_pTeamModes),
      m_pPerformanceProfiles(rOther.m_pPerformanceProfiles), m_bTeamed(rOther.m_bTeamed),
      m_bSelected(rOther.m_bSelected), m_pSharedCapabilities(rOther.m_pAdapterCapabilities),
      m_pSharedDynamicInfo(rOther.m_pAdapterDynamicInfo), m_pSharedTeamModes(rOther.m_pTeamModes),
      m_pSharedProfiles(rOther.m_pPerformanceProfiles) {}

CAdapter::CAdapter(CAdapter&& rOther) noexcept {
    *this = std::move(rOther);
}

CAdapter& CAdapter::operator=(const CAdapter& rOther) {
    if (this != &rOther) {
        // Texts first: only their copies can fail, and no record may have changed hands then.
        m_wsAdapterID = rOther.m_wsAdapterID;
        m_wsDisplayName = rOther.m_wsDisplayName;
        m_wsName = rOther.m_wsName;
        m_wsDeviceID = rOther.m_wsDeviceID;
        m_wsSlotID = rOther.m_wsSlotID;
        m_lBasicInfo = rOther.m_lBasicInfo;
        m_bTeamed = rOther.m_bTeamed;
        m_bSelected = rOther.m_bSelected;
        RecordSlot{m_pAdapterCapabilities, m_pSharedCapabilities}.View(rOther.m_pAdapterCapabilities);
        RecordSlot{m_pAdapterDynamicInfo, m_pSharedDynamicInfo}.View(rOther.m_pAdapterDynamicInfo);
        RecordSlot{m_pTeamModes, m_pSharedTeamModes}.View(rOther.m_pTeamModes);
        RecordSlot{m_pPerformanceProfiles, m_pSharedProfiles}.View(rOther.m_pPerformanceProfiles);
    }
    return *this;
}

CAdapter& CAdapter::operator=(CAdapter&& rOther) noexcept {
    if (this != &rOther) {
        m_wsAdapterID = std::move(rOther.m_wsAdapterID);
        m_wsDisplayName = std::move(rOther.m_wsDisplayName);
        m_wsName = std::move(rOther.m_wsName);
        m_wsDeviceID = std::move(rOther.m_wsDeviceID);
        m_wsSlotID = std::move(rOther.m_wsSlotID);
        m_lBasicInfo = rOther.m_lBasicInfo;
        m_bTeamed = rOther.m_bTeamed;
        m_bSelected = rOther.m_bSelected;
        RecordSlot{m_pAdapterCapabilities, m_pSharedCapabilities}.Take(
            {rOther.m_pAdapterCapabilities, rOther.m_pSharedCapabilities});
        RecordSlot{m_pAdapterDynamicInfo, m_pSharedDynamicInfo}.Take(
            {rOther.m_pAdapterDynamicInfo, rOther.m_pSharedDynamicInfo});
        RecordSlot{m_pTeamModes, m_pSharedTeamModes}.Take({rOther.m_pTeamModes, rOther.m_pSharedTeamModes});
        RecordSlot{m_pPerformanceProfiles, m_pSharedProfiles}.Take(
            {rOther.m_pPerformanceProfiles, rOther.m_pSharedProfiles});
    }
    return *this;
}

CAdapter::~CAdapter() {
    RecordSlot{m_pAdapterCapabilities, m_pSharedCapabilities}.Release();
    RecordSlot{m_pAdapterDynamicInfo, m_pSharedDynamicInfo}.Release();
    RecordSlot{m_pTeamModes, m_pSharedTeamModes}.Release();
    RecordSlot{m_pPerformanceProfiles, m_pSharedProfiles}.Release();
}

CAdapter* CAdapter::Copy() const {
    auto copy = std::make_unique<CAdapter>(*this);
    RecordSlot{copy->m_pAdapterCapabilities, copy->m_pSharedCapabilities}.Detach();
    RecordSlot{copy->m_pAdapterDynamicInfo, copy->m_pSharedDynamicInfo}.Detach();
    RecordSlot{copy->m_pTeamModes, copy->m_pSharedTeamModes}.Detach();
    RecordSlot{copy->m_pPerformanceProfiles, copy->m_pSharedProfiles}.Detach();
    return copy.release();
}
