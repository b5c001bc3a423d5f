// The keywords of the well-known settings.
#include <quillet/SettingNames.h>

#include <array>
#include <cstddef>

namespace {

struct Keywords {
    const wchar_t* standard;
    const wchar_t* older; // null: there is none
};

constexpr std::array<Keywords, 10> kEywordsOf{{
    {L"*SpeedDuplex", L"SpeedDuplex"},
    {L"*FlowControl", L"FlowControl"},
    {L"*JumboPacket", L"MaxFrameSize"},
    {L"*RSS", L"RssMode"},
    {L"*TransmitBuffers", L"NumTxDescriptors"},
    {L"*ReceiveBuffers", L"NumRxDescriptors"},
    {L"*LsoV1IPv4", L"TcpSegmentation"},
    {L"*LsoV2IPv4", nullptr},
    {L"*LsoV2IPv6", nullptr},
    {L"*IPsecOffloadV2", L"IPSecEnabled"},
}};

// Null for a number that is no setting.
const Keywords* Find(SettingName eName) {
    // A negative number becomes a large one, so that one comparison rules out both ends.
    const auto index = static_cast<std::size_t>(static_cast<DWORD>(eName));
    return index < kEywordsOf.size() ? &kEywordsOf[index] : nullptr;
}

// Drivers of older systems know large send offload by its older keyword only.
bool HasStandardLargeSendKeyword() {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    return GetVersionExW(&version) && version.dwPlatformId == VER_PLATFORM_WIN32_NT &&
           version.dwMajorVersion >= 6;
}

} // namespace

CAdvancedSettingNames::CAdvancedSettingNames(bool bUseStandardKeywords)
    : m_bUseStandardKeywords(bUseStandardKeywords) {}

CAdvancedSettingNames::~CAdvancedSettingNames() = default;

std::wstring CAdvancedSettingNames::GetSettingName(SettingName eName) const {
    const Keywords* pKeywords = Find(eName);
    if (pKeywords == nullptr) {
        return L"None";
    }
    if (m_bUseStandardKeywords && (eName != SettingName::TcpSegmentation || HasStandardLargeSendKeyword())) {
        return pKeywords->standard;
    }
    return pKeywords->older != nullptr ? pKeywords->older : L"SettingNameUnknown";
}

bool CAdvancedSettingNames::IsSettingName(SettingName eName, const std::wstring& rwsKeyword) const {
    const Keywords* pKeywords = Find(eName);
    return pKeywords != nullptr && (rwsKeyword == pKeywords->standard ||
                                    (pKeywords->older != nullptr && rwsKeyword == pKeywords->older));
}
