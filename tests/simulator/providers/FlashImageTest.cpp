// Containers of boot images.
#include <quillet-simulator/FlashImage.h>
#include <quillet-simulator/Machine.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace quillet::simulator::tests {

namespace {

using Bytes = std::vector<std::uint8_t>;

std::vector<BootImage> Images() {
    return {{L"PXE", L"1.4.0", 0, 1, Bytes{1, 2, 3}},
            {L"iSCSI", L"", -2147483647 - 1, -1, Bytes{}},
            {L"Gerät", L"2.1", 7, 2147483647, Bytes(300, 0xA5)}};
}

TEST(FlashImage, Crc_IsTheUsualOne) {
    const std::string text = "123456789";
    EXPECT_EQ(Crc32(Bytes(text.begin(), text.end())), 0xCBF43926u);
    EXPECT_EQ(Crc32({}), 0u);
}

TEST(FlashImage, WhatIsWrittenReadsBack) {
    std::vector<BootImage> read;
    EXPECT_EQ(ReadFlashImage(WriteFlashImage(Images()), read), FlashCode::Good);
    EXPECT_EQ(read, Images());
    EXPECT_EQ(ReadFlashImage(WriteFlashImage(Images()), read, ImageContents::Leave), FlashCode::Good);
    EXPECT_TRUE(read[0].contents.empty());
    EXPECT_EQ(read[2].type, L"Gerät");
}

TEST(FlashImage, Layout_IsTheDocumentedOne) {
    const Bytes file = WriteFlashImage({{L"PXE", L"1.2", 3, -1, Bytes{0xAA, 0xBB}}});
    ASSERT_EQ(file.size(), 24u + 64u + 2u);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 8), "QLBOOTIM");
    EXPECT_EQ(Bytes(file.begin() + 8, file.begin() + 16), (Bytes{1, 0, 1, 0, 90, 0, 0, 0}));
    EXPECT_EQ(std::string(file.begin() + 24, file.begin() + 28), std::string("PXE\0", 4));
    EXPECT_EQ(std::string(file.begin() + 48, file.begin() + 52), std::string("1.2\0", 4));
    EXPECT_EQ(Bytes(file.begin() + 64, file.begin() + 80),
              (Bytes{3, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 88, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ(file[88], 0xAA);
}

TEST(FlashImage, EveryByteCounts) {
    const Bytes whole = WriteFlashImage(Images());
    std::vector<BootImage> images;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            Bytes file = whole;
            file[at] = static_cast<std::uint8_t>(file[at] ^ change);
            EXPECT_NE(ReadFlashImage(file, images), FlashCode::Good) << at;
        }
    }
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(ReadFlashImage(FlashBytes(whole).first(size), images), FlashCode::Good) << size;
    }
    Bytes longer = whole;
    longer.push_back(0);
    EXPECT_NE(ReadFlashImage(longer, images), FlashCode::Good);
    EXPECT_TRUE(images.empty()) << "nothing is handed out of a file that is wrong";
}

/// Puts right the two checksums of the header after a change.
Bytes Resealed(Bytes file, std::size_t tableSize) {
    const auto put = [&](std::size_t at, std::uint32_t number) {
        for (std::size_t i = 0; i < 4; ++i) {
            file[at + i] = static_cast<std::uint8_t>(number >> (8 * i));
        }
    };
    put(16, Crc32(FlashBytes(file).subspan(24, tableSize)));
    put(20, Crc32(FlashBytes(file).first(20)));
    return file;
}

TEST(FlashImage, TablesThatContradictThemselves_AreRefusedAlthoughTheChecksumsAreRight) {
    const Bytes whole =
        WriteFlashImage({{L"PXE", L"1.2", 0, 1, Bytes(10, 1)}, {L"EFI", L"1", 0, 1, Bytes(5, 2)}});
    struct Case {
        std::size_t at;
        std::uint8_t value;
        const char* what;
    };
    std::vector<BootImage> images;
    for (const Case& each : {
             Case{8, 2, "another version of the format"},
             Case{10, 0, "no image"},
             Case{11, 1, "257 images"},
             Case{24, 0, "a type that is empty"},
             Case{40, 'x', "text behind the end of the type"},
             Case{24, 0xFF, "a type that is no UTF-8"},
             Case{24 + 48, 1, "contents that overlap the table"},
             Case{24 + 52 + 3, 0x7F, "contents longer than the file"},
             Case{24 + 60, 1, "the reserved field"},
         }) {
        Bytes file = whole;
        file[each.at] = each.value;
        EXPECT_EQ(ReadFlashImage(Resealed(file, 128), images), FlashCode::BadTable) << each.what;
    }
    EXPECT_EQ(ReadFlashImage(Resealed(whole, 128), images), FlashCode::Good)
        << "resealing alone changes nothing";
    Bytes longer = whole;
    longer.push_back(0);
    longer[12] = static_cast<std::uint8_t>(longer.size());
    EXPECT_EQ(ReadFlashImage(Resealed(longer, 128), images), FlashCode::BadTable)
        << "a byte behind the last image";
    Bytes text = whole;
    for (std::size_t at = 24; at < 48; ++at) {
        text[at] = 'x';
    }
    EXPECT_EQ(ReadFlashImage(Resealed(text, 128), images), FlashCode::BadTable) << "a type without an end";
}

TEST(FlashImage, WhatDoesNotFit_IsRefused) {
    EXPECT_THROW(WriteFlashImage({}), std::invalid_argument);
    EXPECT_THROW(WriteFlashImage(std::vector<BootImage>(65, Images()[0])), std::invalid_argument);
    EXPECT_NO_THROW(WriteFlashImage(std::vector<BootImage>(64, Images()[0])));
    EXPECT_THROW(WriteFlashImage({{L"", L"", 0, 0, {}}}), std::invalid_argument);
    EXPECT_NO_THROW(WriteFlashImage({{std::wstring(23, L'x'), std::wstring(15, L'y'), 0, 0, {}}}));
    EXPECT_THROW(WriteFlashImage({{std::wstring(24, L'x'), L"", 0, 0, {}}}), std::invalid_argument);
    EXPECT_THROW(WriteFlashImage({{L"x", std::wstring(16, L'y'), 0, 0, {}}}), std::invalid_argument);
    EXPECT_THROW(WriteFlashImage({{std::wstring(L"a\0b", 3), L"", 0, 0, {}}}), std::invalid_argument);
}

TEST(FlashImage, WhatTheToolWrites_ReadsAndIsByteForByteTheSame) {
    std::ifstream stream(QUILLET_FLASH_IMAGE, std::ios::binary);
    const Bytes file{std::istreambuf_iterator<char>(stream), {}};
    ASSERT_FALSE(file.empty()) << QUILLET_FLASH_IMAGE;
    std::vector<BootImage> images;
    ASSERT_EQ(ReadFlashImage(file, images), FlashCode::Good);
    ASSERT_EQ(images.size(), 3u);
    EXPECT_EQ(images[0].type, L"PXE");
    EXPECT_EQ(images[0].contents.size(), 1024u);
    EXPECT_EQ(images[1].version, L"2.1.7");
    EXPECT_EQ(images[1].group, 1);
    EXPECT_EQ(images[1].exposeLevel, 3);
    EXPECT_EQ(images[2].group, -2);
    EXPECT_EQ(images[2].contents.size(), 7u);
    EXPECT_EQ(WriteFlashImage(images), file);
}

TEST(FlashImage, TheBuiltInMachinesFlashMemories_HoldImagesAsTheirBootAgentsSay) {
    const auto machine = Machine::BuiltIn();
    const auto agents = machine->Store().Instances(L"Zorel_BootAgent");
    ASSERT_FALSE(agents.empty());
    for (const auto& agent : agents) {
        std::vector<BootImage> images;
        const Value* flash = agent->Find(L"FlashImage");
        ASSERT_NE(flash->AsBytes(), nullptr);
        ASSERT_EQ(ReadFlashImage(*flash->AsBytes(), images), FlashCode::Good);
        EXPECT_EQ(images.size(), agent->Number(L"InstalledFlashImageTypes") == 5 ? 2u : 1u);
        EXPECT_EQ(images[0].version, agent->Text(L"Version"));
        EXPECT_EQ(WriteFlashImage(images), *flash->AsBytes());
    }
}

} // namespace

} // namespace quillet::simulator::tests
