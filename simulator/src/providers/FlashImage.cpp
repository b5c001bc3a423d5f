// Reading and writing containers of boot images.
#include <quillet-simulator/FlashImage.h>

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace quillet::simulator {

namespace {

constexpr std::string_view kMagic = "QLBOOTIM";
constexpr std::uint16_t kFormatVersion = 1;
constexpr std::size_t kMostImages = 64;

// The header.
constexpr std::size_t kVersionAt = 8;
constexpr std::size_t kCountAt = 10;
constexpr std::size_t kLengthAt = 12;
constexpr std::size_t kTableCrcAt = 16;
constexpr std::size_t kHeaderCrcAt = 20;
constexpr std::size_t kHeaderSize = 24;

// An entry of the table.
constexpr std::size_t kTypeSize = 24;
constexpr std::size_t kImageVersionAt = 24;
constexpr std::size_t kImageVersionSize = 16;
constexpr std::size_t kGroupAt = 40;
constexpr std::size_t kExposeLevelAt = 44;
constexpr std::size_t kOffsetAt = 48;
constexpr std::size_t kSizeAt = 52;
constexpr std::size_t kCrcAt = 56;
constexpr std::size_t kReservedAt = 60;
constexpr std::size_t kEntrySize = 64;

std::uint32_t Number(FlashBytes bytes, std::size_t at, std::size_t size = 4) noexcept {
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- > 0;) {
        number = number << 8 | bytes[at + i];
    }
    return number;
}

void PutNumber(std::vector<std::uint8_t>& bytes, std::size_t at, std::uint32_t number, std::size_t size = 4) {
    for (std::size_t i = 0; i < size; ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
}

/// A text in a field, at the end of which at least one zero stands, and only zeros behind the first.
std::optional<std::wstring> ReadText(FlashBytes field) {
    const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
    if (end == field.end() || std::any_of(end, field.end(), [](std::uint8_t byte) { return byte != 0; })) {
        return std::nullopt;
    }
    return wmi::FromUtf8(std::string(field.begin(), end));
}

void PutText(std::vector<std::uint8_t>& bytes, std::size_t at, const std::wstring& text, std::size_t size) {
    const std::string utf8 = wmi::ToUtf8(text);
    if (utf8.size() >= size || utf8.find('\0') != std::string::npos) {
        throw std::invalid_argument("a text of the image does not fit: " + utf8);
    }
    std::copy(utf8.begin(), utf8.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

} // namespace

std::uint32_t Crc32(FlashBytes bytes) noexcept {
    static constexpr auto kTable = [] {
        std::array<std::uint32_t, 256> table{};
        for (std::uint32_t index = 0; index < table.size(); ++index) {
            std::uint32_t value = index;
            for (int bit = 0; bit < 8; ++bit) {
                value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320u : value >> 1;
            }
            table[index] = value;
        }
        return table;
    }();
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const std::uint8_t byte : bytes) {
        crc = crc >> 8 ^ kTable[(crc ^ byte) & 0xFF];
    }
    return ~crc;
}

std::vector<std::uint8_t> WriteFlashImage(const std::vector<BootImage>& images) {
    if (images.empty() || images.size() > kMostImages) {
        throw std::invalid_argument("a container holds 1 to 64 images");
    }
    const std::size_t tableEnd = kHeaderSize + images.size() * kEntrySize;
    std::vector<std::uint8_t> file(tableEnd);
    std::copy(kMagic.begin(), kMagic.end(), file.begin());
    for (std::size_t i = 0; i < images.size(); ++i) {
        const BootImage& image = images[i];
        const std::size_t entry = kHeaderSize + i * kEntrySize;
        if (image.type.empty()) {
            throw std::invalid_argument("an image needs a type");
        }
        if (file.size() + image.contents.size() >
            static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
            throw std::invalid_argument("the container is too long");
        }
        PutText(file, entry, image.type, kTypeSize);
        PutText(file, entry + kImageVersionAt, image.version, kImageVersionSize);
        PutNumber(file, entry + kGroupAt, static_cast<std::uint32_t>(image.group));
        PutNumber(file, entry + kExposeLevelAt, static_cast<std::uint32_t>(image.exposeLevel));
        PutNumber(file, entry + kOffsetAt, static_cast<std::uint32_t>(file.size()));
        PutNumber(file, entry + kSizeAt, static_cast<std::uint32_t>(image.contents.size()));
        PutNumber(file, entry + kCrcAt, Crc32(image.contents));
        file.insert(file.end(), image.contents.begin(), image.contents.end());
    }
    PutNumber(file, kVersionAt, kFormatVersion, 2);
    PutNumber(file, kCountAt, static_cast<std::uint32_t>(images.size()), 2);
    PutNumber(file, kLengthAt, static_cast<std::uint32_t>(file.size()));
    const FlashBytes written(file);
    PutNumber(file, kTableCrcAt, Crc32(written.subspan(kHeaderSize, tableEnd - kHeaderSize)));
    PutNumber(file, kHeaderCrcAt, Crc32(written.first(kHeaderCrcAt)));
    return file;
}

FlashCode ReadFlashImage(FlashBytes file, std::vector<BootImage>& images, ImageContents wanted) {
    if (file.size() < kHeaderSize ||
        !std::equal(kMagic.begin(), kMagic.end(), file.begin(),
                    [](char c, std::uint8_t b) { return static_cast<std::uint8_t>(c) == b; })) {
        return FlashCode::NoImage;
    }
    if (Number(file, kHeaderCrcAt) != Crc32(file.first(kHeaderCrcAt)) ||
        Number(file, kLengthAt) != file.size()) {
        return FlashCode::BadChecksum;
    }
    const std::size_t count = Number(file, kCountAt, 2);
    if (Number(file, kVersionAt, 2) != kFormatVersion || count == 0 || count > kMostImages ||
        file.size() < kHeaderSize + count * kEntrySize) {
        return FlashCode::BadTable;
    }
    const FlashBytes table = file.subspan(kHeaderSize, count * kEntrySize);
    if (Number(file, kTableCrcAt) != Crc32(table)) {
        return FlashCode::BadChecksum;
    }
    std::vector<BootImage> found;
    std::size_t next = kHeaderSize + table.size();
    for (std::size_t i = 0; i < count; ++i) {
        const FlashBytes entry = table.subspan(i * kEntrySize, kEntrySize);
        const auto type = ReadText(entry.first(kTypeSize));
        const auto version = ReadText(entry.subspan(kImageVersionAt, kImageVersionSize));
        const std::size_t size = Number(entry, kSizeAt);
        // The contents lie one behind the other, so that there is no byte that nobody looks at.
        if (!type || type->empty() || !version || Number(entry, kOffsetAt) != next ||
            size > file.size() - next || Number(entry, kReservedAt) != 0) {
            return FlashCode::BadTable;
        }
        const FlashBytes contents = file.subspan(next, size);
        if (Number(entry, kCrcAt) != Crc32(contents)) {
            return FlashCode::BadChecksum;
        }
        next += size;
        BootImage& image = found.emplace_back();
        image.type = *type;
        image.version = *version;
        image.group = static_cast<std::int32_t>(Number(entry, kGroupAt));
        image.exposeLevel = static_cast<std::int32_t>(Number(entry, kExposeLevelAt));
        if (wanted == ImageContents::Copy) {
            image.contents.assign(contents.begin(), contents.end());
        }
    }
    if (next != file.size()) {
        return FlashCode::BadTable;
    }
    images = std::move(found);
    return FlashCode::Good;
}

} // namespace quillet::simulator
