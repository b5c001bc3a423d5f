// Files with images for the flash memory of a boot agent, and what the provider finds in them.
#pragma once

#include "texts/Json.h"

#include <quillet/Quillet.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quilletctl {

/// An image file and what the provider finds in it.
struct ImageFile {
    std::vector<std::uint8_t> bytes;
    CSettings images;
    int code = 0;

    LONG Size() const { return static_cast<LONG>(bytes.size()); }
};

/// Throws UsageError where there is no such file, and Refusal.
ImageFile ReadImageFile(CQuillet& session, const CBootAgent& agent, const std::string& name);

/// The images of the file that are asked for; all of them when none is named.
CSettings ChooseImages(const ImageFile& file, const std::vector<std::string>& names);
/// The provider's verdict on these images of the file. Throws Refusal.
int VerifyImages(CQuillet& session, const CBootAgent& agent, ImageFile& file, CSettings& types);
std::string VerdictText(int code);

std::string ImageNames(const CSettings& types);
Json ImageNamesJson(const CSettings& types);

} // namespace quilletctl
