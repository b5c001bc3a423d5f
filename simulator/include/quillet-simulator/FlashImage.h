// Flash images as the simulated boot agents take them: a small container of boot images. Its format is in
// docs/flash-image.md.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quillet::simulator {

/// The bytes of a file or of a flash memory.
using FlashBytes = std::span<const std::uint8_t>;

/// One boot image of a container.
struct BootImage {
    std::wstring type;                  ///< "PXE" and so on; at most 23 bytes of UTF-8, not empty
    std::wstring version;               ///< for display, "1.3.72"; at most 15 bytes of UTF-8
    std::int32_t group = 0;             ///< where it belongs; the boot agent hands it on
    std::int32_t exposeLevel = 0;       ///< whom it is shown to; handed on likewise
    std::vector<std::uint8_t> contents; ///< the image itself

    /// Compares everything, the contents too.
    friend bool operator==(const BootImage&, const BootImage&) = default;
};

/// What a boot agent says of an image; its bits may stand together. Bit 0 marks a file that cannot be read.
enum class FlashCode : std::int32_t {
    Good = 0,
    NoImage = 1,     ///< not such a container at all
    BadChecksum = 3, ///< damaged: what a checksum covers, or how long something is, has changed
    BadTable = 5,    ///< its table contradicts itself
    TypeMissing = 8, ///< readable, but without one of the types asked for
};

/// Writes a container. Throws std::invalid_argument when an image does not fit into one.
std::vector<std::uint8_t> WriteFlashImage(const std::vector<BootImage>& images);

/// Whether images come with their contents, or only with what the table says.
enum class ImageContents { Copy, Leave };

/// Reads a container: `images` is filled only when the result is Good. Every byte of the file is covered by a
/// checksum or compared.
FlashCode ReadFlashImage(FlashBytes file, std::vector<BootImage>& images,
                         ImageContents wanted = ImageContents::Copy);

/// CRC-32 with the polynomial 0xEDB88320, as in many archive formats.
std::uint32_t Crc32(FlashBytes bytes) noexcept;

} // namespace quillet::simulator
