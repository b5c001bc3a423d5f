// Files with images for the flash memory of a boot agent, and what the provider finds in them.
#pragma once

#include "texts/Json.h"

#include <quillet/client/Session.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quilletctl {

/// An image file and what the provider finds in it.
struct ImageFile {
    std::vector<std::uint8_t> bytes;
    quillet::FlashContents contents;

    std::span<const std::byte> Bytes() const noexcept { return std::as_bytes(std::span(bytes)); }
};

/// Throws UsageError where there is no such file, and Refusal.
ImageFile ReadImageFile(quillet::Session& session, const quillet::BootAgent& agent, const std::string& name);

/// The types of the images that are asked for; all of the file's when none is named.
std::vector<std::wstring> ChooseImages(const ImageFile& file, const std::vector<std::string>& names);
/// The provider's verdict on these images of the file. Throws Refusal.
quillet::FlashVerdict VerifyImages(quillet::Session& session, const quillet::BootAgent& agent,
                                   const ImageFile& file, const std::vector<std::wstring>& types);
std::string VerdictText(quillet::FlashVerdict verdict);

std::string ImageNames(const std::vector<std::wstring>& types);
Json ImageNamesJson(const std::vector<std::wstring>& types);

} // namespace quilletctl
