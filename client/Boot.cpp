// Boot agents, flash images, booting from iSCSI.
#include "Operations.h"

#include <array>

#include <algorithm>
#include <limits>

namespace quillet {

namespace {

/// The library hands out a buffer of `operator new`'s.
struct ReleaseBytes {
    void operator()(unsigned char* bytes) const noexcept { ::operator delete(bytes); }
};

/// An image on its way into the library, which takes the bytes as something that it could change, and does
/// not.
struct Image {
    Image(const char* operation, const BootAgentId& bootAgent, std::span<const std::byte> file)
        : size(static_cast<LONG>(file.size())),
          bytes(const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(file.data()))) {
        if (file.size() > static_cast<std::size_t>(std::numeric_limits<LONG>::max())) {
            throw Error(E_INVALIDARG, operation, bootAgent.Path());
        }
    }

    LONG size;
    unsigned char* bytes;
};

CSettings TypesOf(std::span<const std::wstring> types) {
    CSettings records;
    records.m_vecItems.reserve(types.size());
    for (const std::wstring& type : types) {
        records.m_vecItems.push_back(new CSettingString);
        records.m_vecItems.back()->m_wsCaption = type;
    }
    return records;
}

} // namespace

BootAgent Session::ReadBootAgent(const AdapterId& adapter) {
    CBootAgent record;
    Do("GetAdapterBootAgentInfo", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterBootAgentInfo(adapter.Path(), record); });
    return {BootAgentId(record.m_wsBootAgentID),
            record.m_wsVersion,
            record.m_lVersionNumber,
            record.m_bUpdateAvailable,
            record.m_lFlashImageType,
            record.m_wsFlashImageType,
            record.m_lISCSIStatus,
            record.m_lInstalledFlashImageTypes};
}

std::vector<std::byte> Session::ReadFlash(const BootAgentId& bootAgent) {
    LONG size = 0;
    unsigned char* data = nullptr;
    Do("ReadBootAgentFlash", bootAgent.Path(),
       [&] { return m_state->quillet.ReadBootAgentFlash(bootAgent.Path(), size, &data); });
    const std::unique_ptr<unsigned char, ReleaseBytes> owner(data);
    const auto* bytes = reinterpret_cast<const std::byte*>(data);
    return bytes == nullptr ? std::vector<std::byte>() : std::vector<std::byte>(bytes, bytes + size);
}

FlashContents Session::ReadImageFile(const BootAgentId& bootAgent, std::span<const std::byte> file) {
    const Image image("ReadBootAgentImageFile", bootAgent, file);
    CSettings images;
    FlashContents contents;
    Do("ReadBootAgentImageFile", bootAgent.Path(), [&] {
        return m_state->quillet.ReadBootAgentImageFile(bootAgent.Path(), image.size, image.bytes, images,
                                                       contents.verdict.code);
    });
    contents.images = Values(std::move(images), [](CSetting&& record) {
        return FlashImage{std::move(record.m_wsCaption), record.GetCurrentValue(), record.m_lGroupId,
                          std::move(record.m_wsExposeLevel)};
    });
    return contents;
}

FlashVerdict Session::VerifyImages(const BootAgentId& bootAgent, std::span<const std::byte> file,
                                   std::span<const std::wstring> types) {
    const Image image("VerifyImageType", bootAgent, file);
    CSettings records = TypesOf(types);
    FlashVerdict verdict;
    Do("VerifyImageType", bootAgent.Path(), [&] {
        return m_state->quillet.VerifyImageType(bootAgent.Path(), image.size, image.bytes, records,
                                                verdict.code);
    });
    return verdict;
}

FlashVerdict Session::WriteFlash(const BootAgentId& bootAgent, std::span<const std::byte> file,
                                 std::span<const std::wstring> types) {
    const Image image("WriteBootAgentFlash", bootAgent, file);
    CSettings records = TypesOf(types);
    FlashVerdict verdict;
    Do("WriteBootAgentFlash", bootAgent.Path(), [&] {
        return m_state->quillet.WriteBootAgentFlash(bootAgent.Path(), image.size, image.bytes, records,
                                                    verdict.code);
    });
    return verdict;
}

FlashOutcome Session::ProgramFlash(const BootAgentId& bootAgent, std::span<const std::byte> file,
                                   std::span<const std::wstring> types,
                                   const std::function<void(FlashStage)>& progress) {
    const auto tell = [&progress](FlashStage stage) {
        if (progress) {
            progress(stage);
        }
    };
    tell(FlashStage::Verifying);
    FlashOutcome outcome{VerifyImages(bootAgent, file, types)};
    if (outcome.verdict.IsGood()) {
        tell(FlashStage::Writing);
        outcome.verdict = WriteFlash(bootAgent, file, types);
        tell(FlashStage::ReadingBack);
        const std::vector<std::byte> now = ReadFlash(bootAgent);
        outcome.written = std::ranges::equal(now, file);
    }
    return outcome;
}

std::vector<IscsiAdapter> Session::IscsiAdapters() {
    return ReadList<CISCSIAdapters>(
        "EnumerateISCSIAdapters", {},
        [&](CISCSIAdapters& adapters) { return m_state->quillet.EnumerateISCSIAdapters(adapters); },
        [](CISCSIAdapter&& record) {
            return IscsiAdapter{BootAgentId(std::move(record.m_wsPath)), std::move(record.m_wsBootAgentID),
                                std::move(record.m_wsAdapterName),
                                static_cast<IscsiStatus>(record.m_eStatus)};
        });
}

unsigned Session::SetIscsiStatus(const BootAgentId& bootAgent, IscsiStatus status) {
    unsigned verdict = 0;
    Do("SetiSCSIStatus", bootAgent.Path(), [&] {
        return m_state->quillet.SetiSCSIStatus(bootAgent.Path(),
                                               static_cast<CISCSIAdapter::iSCSIStatus>(status), verdict);
    });
    return verdict;
}

IscsiSupport Session::ReadIscsiSupport(const AdapterId& adapter) {
    CiSCSI record;
    Do("GetiSCSI_Info", adapter.Path(),
       [&] { return m_state->quillet.GetiSCSI_Info(adapter.Path(), record); });
    return {record.m_lStatus, record.m_bOSSupported, record.m_bPatchPresent, record.m_bHotFixPresent};
}

std::wstring Text(IscsiStatus status) {
    switch (status) {
    case IscsiStatus::NotBootPort:
        return L"off";
    case IscsiStatus::PrimaryPort:
        return L"primary";
    case IscsiStatus::SecondaryPort:
        return L"secondary";
    }
    return {};
}

std::vector<std::wstring> ImageTypes(std::int32_t mask) {
    static constexpr std::array kTypes{L"PXE", L"EFI", L"iSCSI"};
    std::vector<std::wstring> types;
    for (std::size_t bit = 0; bit < 32; ++bit) {
        if ((static_cast<std::uint32_t>(mask) >> bit & 1U) != 0) {
            types.push_back(bit < kTypes.size() ? std::wstring(kTypes[bit])
                                                : UnknownNumber(static_cast<std::int64_t>(bit), L"type"));
        }
    }
    return types;
}

} // namespace quillet
