// Boot agents, flash images and booting from iSCSI as values.
#pragma once

#include <quillet/client/Id.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillet {

/// The boot agent of an adapter (Zorel_BootAgent).
struct BootAgent {
    BootAgentId id;
    std::wstring version;                 ///< for display ("Version")
    std::int32_t versionNumber = 0;       ///< "VersionNumber"
    bool updateAvailable = false;         ///< "UpdateAvailable"
    std::int32_t imageType = 0;           ///< the kind of the image in flash ("FlashImageType")
    std::wstring imageTypeText;           ///< the same in the language of the connection
    std::int32_t iscsiStatus = 0;         ///< "iSCSI_Status"
    std::int32_t installedImageTypes = 0; ///< "InstalledFlashImageTypes"
};

/// An image in an image file.
struct FlashImage {
    std::wstring type; ///< what it is asked for by
    std::wstring version;
    std::int32_t group = 0;
    std::wstring exposeLevel; ///< as decimal text
};

/// What the provider says to an image file. It is a verdict, not a failure.
struct [[nodiscard]] FlashVerdict {
    int code = 0; ///< 0 where it is right, or was written

    /// Whether the provider is content.
    bool IsGood() const noexcept { return code == 0; }
    /// Whether it could make sense of the file at all.
    bool IsReadable() const noexcept { return (code & 1) == 0; }
};

/// The images in an image file.
struct FlashContents {
    FlashVerdict verdict;
    std::vector<FlashImage> images; ///< empty for a file that cannot be read
};

/// Where writing the flash memory stands.
enum class FlashStage { Verifying, Writing, ReadingBack };

/// How writing the flash memory went.
struct [[nodiscard]] FlashOutcome {
    FlashVerdict verdict; ///< of the check or, where that was good, of the writing
    bool written = false; ///< whether the flash memory holds the image, byte for byte
};

/// The part that an adapter plays in booting from iSCSI ("iSCSI_Status"). Others may come.
enum class IscsiStatus : std::int32_t {
    NotBootPort = 0,  ///< the machine does not boot through this port
    PrimaryPort = 1,  ///< it tries this port first
    SecondaryPort = 2 ///< it tries this port when the primary one fails
};

/// An adapter whose boot agent can boot from an iSCSI target (Zorel_BootAgent_iSCSI_Adapters).
struct IscsiAdapter {
    BootAgentId bootAgent;    ///< the instance's path ("__PATH"), for `Session::SetIscsiStatus`
    std::wstring objectId;    ///< the boot agent's, taken from it; the adapter's is the same
    std::wstring adapterName; ///< "AdapterName"
    IscsiStatus status{};
};

/// Whether iSCSI boot is enabled on an adapter and possible on its machine.
struct IscsiSupport {
    std::int32_t status = 0;        ///< "iSCSIStatus"
    bool byOperatingSystem = false; ///< whether the operating system can boot from iSCSI
    bool patchPresent = false;      ///< whether the patch that it needs is there
    bool hotFixPresent = false;     ///< whether the hot fix that it needs is there
};

/// @name Words for people, in English
/// @{
/// The part that an adapter plays; empty for a number without a word.
std::wstring Text(IscsiStatus status);
/// The kinds of images in a mask of them (`BootAgent::installedImageTypes`).
std::vector<std::wstring> ImageTypes(std::int32_t mask);
/// @}

} // namespace quillet
