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

constexpr std::string_view Magic = "QLBOOTIM";
constexpr std::uint16_t FormatVersion = 1;
constexpr std::size_t MostImages = 64;

// The header.
constexpr std::size_t VersionAt = 8;
constexpr std::size_t CountAt = 10;
constexpr std::size_t LengthAt = 12;
constexpr std::size_t TableCrcAt = 16;
constexpr std::size_t HeaderCrcAt = 20;
constexpr std::size_t HeaderSize = 24;

// An entry of the table.
constexpr std::size_t TypeSize = 24;
constexpr std::size_t ImageVersionAt = 24;
constexpr std::size_t ImageVersionSize = 16;
constexpr std::size_t GroupAt = 40;
constexpr std::size_t ExposeLevelAt = 44;
constexpr std::size_t OffsetAt = 48;
constexpr std::size_t SizeAt = 52;
constexpr std::size_t CrcAt = 56;
constexpr std::size_t ReservedAt = 60;
constexpr std::size_t EntrySize = 64;

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
    return FromUtf8(std::string(field.begin(), end));
}

void PutText(std::vector<std::uint8_t>& bytes, std::size_t at, const std::wstring& text, std::size_t size) {
    const std::string utf8 = ToUtf8(text);
    if (utf8.size() >= size || utf8.find('\0') != std::string::npos) {
        throw std::invalid_argument("a text of the image does not fit: " + utf8);
    }
    std::copy(utf8.begin(), utf8.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

} // namespace

std::uint32_t Crc32(FlashBytes bytes) noexcept {
    static constexpr auto Table = [] {
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
        crc = crc >> 8 ^ Table[(crc ^ byte) & 0xFF];
    }
    return ~crc;
}

std::vector<std::uint8_t> WriteFlashImage(const std::vector<BootImage>& images) {
    if (images.empty() || images.size() > MostImages) {
        throw std::invalid_argument("a container holds 1 to 64 images");
    }
    const std::size_t tableEnd = HeaderSize + images.size() * EntrySize;
    std::vector<std::uint8_t> file(tableEnd);
    std::copy(Magic.begin(), Magic.end(), file.begin());
    for (std::size_t i = 0; i < images.size(); ++i) {
        const BootImage& image = images[i];
        const std::size_t entry = HeaderSize + i * EntrySize;
        if (image.type.empty()) {
            throw std::invalid_argument("an image needs a type");
        }
        if (file.size() + image.contents.size() >
            static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
            throw std::invalid_argument("the container is too long");
        }
        PutText(file, entry, image.type, TypeSize);
        PutText(file, entry + ImageVersionAt, image.version, ImageVersionSize);
        PutNumber(file, entry + GroupAt, static_cast<std::uint32_t>(image.group));
        PutNumber(file, entry + ExposeLevelAt, static_cast<std::uint32_t>(image.exposeLevel));
        PutNumber(file, entry + OffsetAt, static_cast<std::uint32_t>(file.size()));
        PutNumber(file, entry + SizeAt, static_cast<std::uint32_t>(image.contents.size()));
        PutNumber(file, entry + CrcAt, Crc32(image.contents));
        file.insert(file.end(), image.contents.begin(), image.contents.end());
    }
    PutNumber(file, VersionAt, FormatVersion, 2);
    PutNumber(file, CountAt, static_cast<std::uint32_t>(images.size()), 2);
    PutNumber(file, LengthAt, static_cast<std::uint32_t>(file.size()));
    const FlashBytes written(file);
    PutNumber(file, TableCrcAt, Crc32(written.subspan(HeaderSize, tableEnd - HeaderSize)));
    PutNumber(file, HeaderCrcAt, Crc32(written.first(HeaderCrcAt)));
    return file;
}

FlashCode ReadFlashImage(FlashBytes file, std::vector<BootImage>& images, ImageContents wanted) {
    if (file.size() < HeaderSize ||
        !std::equal(Magic.begin(), Magic.end(), file.begin(),
                    [](char c, std::uint8_t b) { return static_cast<std::uint8_t>(c) == b; })) {
        return FlashCode::NoImage;
    }
    if (Number(file, HeaderCrcAt) != Crc32(file.first(HeaderCrcAt)) ||
        Number(file, LengthAt) != file.size()) {
        return FlashCode::BadChecksum;
    }
    const std::size_t count = Number(file, CountAt, 2);
    if (Number(file, VersionAt, 2) != FormatVersion || count == 0 || count > MostImages ||
        file.size() < HeaderSize + count * EntrySize) {
        return FlashCode::BadTable;
    }
    const FlashBytes table = file.subspan(HeaderSize, count * EntrySize);
    if (Number(file, TableCrcAt) != Crc32(table)) {
        return FlashCode::BadChecksum;
    }
    std::vector<BootImage> found;
    std::size_t next = HeaderSize + table.size();
    for (std::size_t i = 0; i < count; ++i) {
        const FlashBytes entry = table.subspan(i * EntrySize, EntrySize);
        const auto type = ReadText(entry.first(TypeSize));
        const auto version = ReadText(entry.subspan(ImageVersionAt, ImageVersionSize));
        const std::size_t size = Number(entry, SizeAt);
        // The contents lie one behind the other, so that there is no byte that nobody looks at.
        if (!type || type->empty() || !version || Number(entry, OffsetAt) != next ||
            size > file.size() - next || Number(entry, ReservedAt) != 0) {
            return FlashCode::BadTable;
        }
        const FlashBytes contents = file.subspan(next, size);
        if (Number(entry, CrcAt) != Crc32(contents)) {
            return FlashCode::BadChecksum;
        }
        next += size;
        BootImage& image = found.emplace_back();
        image.type = *type;
        image.version = *version;
        image.group = static_cast<std::int32_t>(Number(entry, GroupAt));
        image.exposeLevel = static_cast<std::int32_t>(Number(entry, ExposeLevelAt));
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
