// The page "Boot", as a user works it.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <quillet-simulator/FlashImage.h>
#include <quillet/client/Text.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace quillet::tests {

namespace {

using pages::FileUse;
using pages::Language;
using pages::Say;
using pages::TextId;

/// An image file, and the user's choice of it.
class ImageToChoose {
  public:
    explicit ImageToChoose(const Desk& desk)
        : m_file(std::filesystem::temp_directory_path() / L"quillet.bin") {
        const std::vector<std::uint8_t> bytes = simulator::WriteFlashImage(
            {{L"PXE", L"1.4.0", 0, 0, {1, 2, 3}}, {L"iSCSI", L"2.1.7", 1, 3, {4, 5, 6}}});
        std::ofstream(m_file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        desk.OnWindows([&] {
            desk.Program().chooseFile = [file = m_file.wstring()](HWND, FileUse use) {
                return use == FileUse::Read ? file : file + L".saved";
            };
        });
    }
    ~ImageToChoose() {
        std::filesystem::remove(m_file);
        std::filesystem::remove(Saved());
    }
    ImageToChoose(const ImageToChoose&) = delete;
    ImageToChoose& operator=(const ImageToChoose&) = delete;

    std::filesystem::path Saved() const { return m_file.wstring() + L".saved"; }

  private:
    std::filesystem::path m_file;
};

TEST(BootViewTest, FitsInEachLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        const ImageToChoose image(desk);
        desk.Open(L"Zorel 10G");
        desk.Turn(Say(TextId::PageBootSettings));
        desk.Photograph(desk.Sheet(), L"boot-settings-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
        desk.Turn(Say(TextId::PageBoot));
        desk.Press(desk.Page(), ID_BOOT_CHOOSE);
        desk.Press(desk.Page(), ID_BOOT_CHECK);
        desk.Photograph(desk.Sheet(), L"boot-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
    }
}

TEST(BootViewTest, WritesWhatIsTickedAfterAQuestionAndSavesIt) {
    const Desk desk(FreshMachine());
    const ImageToChoose image(desk);
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Boot");
    const HWND page = desk.Page();
    EXPECT_FALSE(Desk::IsEnabled(page, ID_BOOT_WRITE));
    desk.Press(page, ID_BOOT_CHOOSE);
    EXPECT_EQ(desk.Rows(page, ID_BOOT_IMAGES),
              (std::vector<std::wstring>{L"[x] PXE | 1.4.0", L"[x] iSCSI | 2.1.7"}));
    desk.Click(page, ID_BOOT_WRITE);
    HWND box = desk.Box(L"PXE, iSCSI");
    desk.Click(box, IDNO);
    desk.AwaitGone(box);
    desk.Settle();
    EXPECT_EQ(desk.Rows(page, ID_BOOT_FACTS).front(), L"Version of the boot agent | 1.3.72");
    desk.Click(page, ID_BOOT_WRITE);
    box = desk.Box(L"overwritten");
    desk.Click(box, IDYES);
    desk.AwaitGone(box);
    box = desk.Box(L"restarted");
    desk.Click(box, IDNO);
    desk.AwaitGone(box);
    desk.Settle();
    EXPECT_EQ(desk.Restarts(), 0);
    EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::FlashWritten));
    EXPECT_EQ(desk.Rows(page, ID_BOOT_FACTS).front(), L"Version of the boot agent | 1.4.0");
    desk.Press(page, ID_BOOT_SAVE);
    EXPECT_TRUE(std::filesystem::exists(image.Saved()));
}

TEST(BootViewTest, TheSheetStaysOpenWhileTheMemoryIsWritten) {
    const Desk desk(FreshMachine());
    const ImageToChoose image(desk);
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Boot");
    const HWND sheet = desk.Sheet();
    const HWND page = desk.Page();
    desk.Press(page, ID_BOOT_CHOOSE);
    desk.Machine().Rules().Add({.target = {},
                                .method = L"ProgramFlashEx",
                                .effect = simulator::Effect::Delay,
                                .milliseconds = 2000});
    desk.Click(page, ID_BOOT_WRITE);
    const HWND question = desk.Box(L"overwritten");
    desk.Click(question, IDYES);
    desk.AwaitGone(question);
    // Nothing from here on waits for the worker, as a picture would: it writes.
    for (int left = 500; left > 0 && Desk::TextOf(page, ID_NOTICE) != Say(TextId::FlashWriting); --left) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::FlashWriting));
    EXPECT_FALSE(Desk::IsEnabled(page, ID_BOOT_WRITE));
    desk.Click(sheet, IDCANCEL);
    desk.Click(sheet, IDOK);
    const HWND restart = desk.Box(L"restarted");
    EXPECT_NE(IsWindowVisible(sheet), FALSE);
    desk.Click(restart, IDNO);
    desk.AwaitGone(restart);
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::FlashWritten));
    desk.Click(sheet, IDCANCEL);
    desk.AwaitGone(sheet);
    desk.Settle(); // the tree is read again
}

TEST(BootViewTest, APlaceIsAppliedWithTheSheet) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Boot");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_BOOT_PLACE), L"off");
    desk.Pick(desk.Page(), ID_BOOT_PLACE, L"primary");
    const HWND sheet = desk.Sheet();
    desk.Click(sheet, IDOK);
    HWND box = desk.Box(L"primary port");
    desk.Click(box, IDYES);
    desk.AwaitGone(box);
    box = desk.Box(L"restarted");
    desk.Click(box, IDYES);
    desk.AwaitGone(sheet);
    desk.Settle(); // the tree is read again
    EXPECT_EQ(desk.Restarts(), 1);
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Boot");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_BOOT_PLACE), L"primary port");
}

} // namespace

} // namespace quillet::tests
