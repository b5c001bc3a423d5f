// Adapters and their records: what is copied, what is shared, and what is deleted.
#include <quillet/Adapter.h>

#include <memory>
#include <mutex>
#include <tuple>
#include <utility>

namespace {

// Adapters that share a record may be copied and go in different threads.
std::mutex g_ringMutex;

// What a copy takes as it is; the records are the rest.
template <class TAdapter>
auto Values(TAdapter& rAdapter) {
    return std::tie(rAdapter.m_wsAdapterID, rAdapter.m_wsDisplayName, rAdapter.m_wsName,
                    rAdapter.m_wsDeviceID, rAdapter.m_wsSlotID, rAdapter.m_lBasicInfo, rAdapter.m_bTeamed,
                    rAdapter.m_bSelected);
}

template <class TRecord>
TRecord* CopyOf(const TRecord* pRecord) {
    return pRecord == nullptr ? nullptr : pRecord->Copy();
}

} // namespace

const std::array<CAdapterCapInfo::Flag, CAdapterCapInfo::FlagCount>& CAdapterCapInfo::Flags() noexcept {
    static constexpr std::array<Flag, FlagCount> kFlags{{
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
    return kFlags;
}

CAdapterCapInfo* CAdapterCapInfo::Copy() const {
    return new CAdapterCapInfo(*this);
}

CAdapterDynamicInfo::~CAdapterDynamicInfo() = default;

CAdapterDynamicInfo* CAdapterDynamicInfo::Copy() const {
    return new CAdapterDynamicInfo(*this);
}

template <class TRecord>
void CAdapter::Sharer<TRecord>::Join(const Sharer& rOther) noexcept {
    Leave();
    m_rpRecord = rOther.m_rpRecord;
    if (m_rpRecord != nullptr) {
        const std::lock_guard lock(g_ringMutex);
        m_pNext = std::exchange(rOther.m_pNext, this);
    }
}

template <class TRecord>
bool CAdapter::Sharer<TRecord>::Leave() noexcept {
    const std::lock_guard lock(g_ringMutex);
    bool bShared = false;
    const Sharer* pBefore = this;
    while (pBefore->m_pNext != this) {
        pBefore = pBefore->m_pNext;
        bShared = bShared || pBefore->m_rpRecord == m_rpRecord;
    }
    pBefore->m_pNext = m_pNext;
    m_pNext = this;
    return bShared;
}

CAdapter::CAdapter() = default;

CAdapter::CAdapter(const CAdapter& rOther) : CAdapter() {
    Values(*this) = Values(rOther);
    Share(rOther);
}

CAdapter::CAdapter(CAdapter&& rOther) noexcept : CAdapter() {
    Take(rOther);
}

CAdapter& CAdapter::operator=(const CAdapter& rOther) {
    return *this = CAdapter(rOther);
}

CAdapter& CAdapter::operator=(CAdapter&& rOther) noexcept {
    if (this != &rOther) {
        // What this adapter had goes last: the other one may be a part of it.
        const CAdapter before(std::move(*this));
        Take(rOther);
    }
    return *this;
}

CAdapter::~CAdapter() = default;

CAdapter* CAdapter::Copy() const {
    auto copy = std::make_unique<CAdapter>();
    Values(*copy) = Values(*this);
    copy->m_pAdapterCapabilities = CopyOf(m_pAdapterCapabilities);
    copy->m_pAdapterDynamicInfo = CopyOf(m_pAdapterDynamicInfo);
    copy->m_pTeamModes = CopyOf(m_pTeamModes);
    copy->m_pPerformanceProfiles = CopyOf(m_pPerformanceProfiles);
    return copy.release();
}

void CAdapter::Share(const CAdapter& rOther) noexcept {
    m_capabilities.Join(rOther.m_capabilities);
    m_dynamicInfo.Join(rOther.m_dynamicInfo);
    m_teamModes.Join(rOther.m_teamModes);
    m_performanceProfiles.Join(rOther.m_performanceProfiles);
}

void CAdapter::Take(CAdapter& rOther) noexcept {
    auto mine = Values(*this);
    auto others = Values(rOther);
    mine.swap(others);
    Share(rOther);
    rOther.Share(CAdapter());
}
