// Boot agents, image files, the place among the ports that boot from iSCSI.
#include "model/BootPage.h"
#include "model/ModelDesk.h"
#include "model/SettingsPage.h"

#include <quillet-simulator/FlashImage.h>
#include <quillet/client/Text.h>

#include <filesystem>
#include <fstream>

namespace quillet::tests {

namespace {

using namespace pages;

enum BootAdapters : std::size_t { kPrimary = 0, kNoBootPort = 2, kNoIscsi = 8, kNoAgent = 9 };

class BootPageTest : public testing::Test {
  protected:
    BootPageTest() { std::filesystem::create_directories(m_folder); }
    ~BootPageTest() override { std::filesystem::remove_all(m_folder); }

    std::shared_ptr<BootPage> Open(std::size_t adapter) {
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            m_adapter = session.Adapters().at(adapter).id;
            return nullptr;
        });
        const auto page = std::make_shared<BootPage>(m_adapter);
        m_desk.Read(page);
        m_desk.Machine().Calls().Clear();
        return page;
    }
    std::wstring File(const std::string& name) const { return FromUtf8((m_folder / name).string()); }
    std::wstring Write(const std::string& name, const std::vector<std::uint8_t>& bytes) const {
        std::ofstream(m_folder / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return File(name);
    }
    std::wstring GoodImage() const {
        return Write("good.bin", simulator::WriteFlashImage({{L"PXE", L"1.4.0", 0, 0, {1, 2, 3}},
                                                             {L"iSCSI", L"2.1.7", 1, 3, {4, 5, 6}}}));
    }
    void Open(const std::shared_ptr<BootPage>& page, const std::wstring& file) {
        EXPECT_EQ(m_desk.Do(page->Opening(file)), L"");
    }
    /// As the window does.
    void Program(const std::shared_ptr<BootPage>& page) {
        m_desk.Worker().Ask(page, page->Writing(), [page](const std::wstring& why) { page->Fail(why); });
        EXPECT_TRUE(page->MustNotBeLeft());
        EXPECT_FALSE(page->CanWrite());
        m_desk.Settle();
        EXPECT_FALSE(page->MustNotBeLeft());
    }
    std::vector<std::byte> Flash() {
        std::vector<std::byte> flash;
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            flash = session.ReadFlash(session.ReadBootAgent(m_adapter).id);
            return nullptr;
        });
        return flash;
    }
    IscsiStatus PlaceOf(std::size_t adapter) { return Open(adapter)->Place(); }

    ModelDesk m_desk;
    AdapterId m_adapter;
    std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() /
        ("quillet-boot-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};

TEST_F(BootPageTest, ShowsTheBootAgentAndItsPlace) {
    const auto page = Open(kPrimary);
    EXPECT_EQ(page->Notice(), L"");
    ASSERT_FALSE(page->Facts().empty());
    EXPECT_EQ(page->Facts().front(), (Fact{Say(TextId::BootVersion), L"1.3.72"}));
    EXPECT_EQ(page->Facts().at(2), (Fact{Say(TextId::BootInstalled), L"PXE, iSCSI"}));
    EXPECT_EQ(page->Place(), IscsiStatus::PrimaryPort);
    EXPECT_EQ(page->WhyNoIscsi(), L"");
    EXPECT_FALSE(page->CanWrite()) << "no file is open";
}

TEST_F(BootPageTest, WithoutAgentOrIscsiTheReasonIsTold) {
    const auto without = Open(kNoAgent);
    EXPECT_FALSE(without->HasAgent());
    EXPECT_EQ(without->WhyNoIscsi(), Say(TextId::BootNone));
    EXPECT_EQ(without->Notice(), L"");
    const auto plain = Open(kNoIscsi);
    EXPECT_TRUE(plain->HasAgent());
    EXPECT_FALSE(plain->HasIscsi());
    EXPECT_EQ(plain->WhyNoIscsi(), Say(TextId::IscsiNone));
    plain->SetPlace(IscsiStatus::PrimaryPort);
    EXPECT_FALSE(plain->IsChanged());
}

TEST_F(BootPageTest, ThePlaceIsWrittenInOneSetAndTheRivalIsTold) {
    const auto page = Open(kNoBootPort);
    page->SetPlace(IscsiStatus::SecondaryPort);
    EXPECT_TRUE(page->Changes().warnings.empty());
    page->SetPlace(IscsiStatus::PrimaryPort);
    ASSERT_EQ(page->Changes().warnings.size(), 1U);
    const Applied applied = m_desk.Apply({page});
    EXPECT_TRUE(applied.isDone);
    EXPECT_TRUE(applied.restartNeeded);
    EXPECT_EQ(m_desk.Calls(L"Apply").size(), 2U);
    EXPECT_EQ(PlaceOf(kNoBootPort), IscsiStatus::PrimaryPort);
    EXPECT_EQ(PlaceOf(kPrimary), IscsiStatus::NotBootPort);
}

TEST_F(BootPageTest, AVerdictAgainstThePlaceIsARefusal) {
    const auto page = Open(kNoBootPort);
    page->SetPlace(static_cast<IscsiStatus>(7));
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_NE(page->Notice().find(Say(TextId::IscsiRefused, {L"1"})), std::wstring::npos);
    EXPECT_TRUE(page->IsChanged());
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0);
}

TEST_F(BootPageTest, WhatSomebodyElseMadeOfThePlaceIsTold) {
    const auto page = Open(kNoBootPort);
    page->SetPlace(IscsiStatus::SecondaryPort);
    const auto other = Open(kNoBootPort);
    other->SetPlace(IscsiStatus::PrimaryPort);
    EXPECT_TRUE(m_desk.Apply({other}).isDone);
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_NE(page->Notice().find(Say(TextId::IscsiPrimary)), std::wstring::npos);
    EXPECT_EQ(page->Place(), IscsiStatus::SecondaryPort);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
}

TEST_F(BootPageTest, AFileIsLookedIntoAndChecked) {
    const auto page = Open(kNoBootPort);
    Open(page, GoodImage());
    ASSERT_EQ(page->Images().size(), 2U);
    EXPECT_EQ(page->Images()[1].image.version, L"2.1.7");
    EXPECT_EQ(page->Notice(), L"");
    EXPECT_TRUE(page->CanWrite());
    EXPECT_EQ(m_desk.Do(page->Verifying()), L"");
    EXPECT_EQ(page->Notice(), Say(TextId::FlashGood));
    page->Want(0, false);
    page->Want(1, false);
    EXPECT_FALSE(page->CanWrite());
    EXPECT_FALSE(page->IsChanged()) << "a file is nothing to apply";
}

TEST_F(BootPageTest, AFileThatIsNoImageIsTold) {
    const auto page = Open(kNoBootPort);
    Open(page, Write("bad.bin", {1, 2, 3, 4}));
    EXPECT_EQ(page->Notice(), Say(TextId::FlashUnreadable, {L"1"}));
    EXPECT_TRUE(page->Images().empty());
    EXPECT_FALSE(page->CanWrite());
    EXPECT_NE(m_desk.Do(page->Opening(Write("empty.bin", {}))), L"");
    EXPECT_NE(m_desk.Do(page->Opening(File("missing.bin"))), L"");
}

TEST_F(BootPageTest, AFileThatIsTooLongIsNotRead) {
    const auto page = Open(kNoBootPort);
    const std::wstring file = Write("long.bin", {1});
    std::filesystem::resize_file(m_folder / "long.bin", (64U << 20U) + 1U);
    EXPECT_EQ(m_desk.Do(page->Opening(file)), Say(TextId::FlashNoImage));
    EXPECT_TRUE(m_desk.Calls(L"ReadImageFile").empty());
}

TEST_F(BootPageTest, WritesTheFlashMemoryAndOffersARestart) {
    const auto page = Open(kNoBootPort);
    Open(page, GoodImage());
    std::vector<std::wstring> told;
    int restarts = 0;
    page->changed = [&] { told.push_back(page->Notice()); };
    page->restartNeeded = [&restarts] { ++restarts; };
    m_desk.Machine().Calls().Clear();
    Program(page);
    EXPECT_EQ(page->Notice(), Say(TextId::FlashWritten));
    EXPECT_EQ(restarts, 1);
    for (const TextId stage : {TextId::FlashChecking, TextId::FlashWriting, TextId::FlashReadingBack}) {
        EXPECT_NE(std::ranges::find(told, Say(stage)), told.end());
    }
    EXPECT_EQ(page->Facts().front().value, L"1.4.0") << "what is there now is read";
    EXPECT_EQ(m_desk.Calls(L"Apply").size(), 2U);
    EXPECT_EQ(Flash().size(), std::filesystem::file_size(m_folder / "good.bin"));
}

TEST_F(BootPageTest, ARefusalBeforeTheWritingLeavesTheMemoryAsItWas) {
    const auto page = Open(kNoBootPort);
    const auto before = Flash();
    Open(page, GoodImage());
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"VerifyImageType", .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    Program(page);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(Flash(), before);
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0);
    EXPECT_TRUE(page->CanWrite()) << "it can be tried again";
}

TEST_F(BootPageTest, APowerCutDuringTheWritingIsTold) {
    const auto page = Open(kNoBootPort);
    Open(page, GoodImage());
    m_desk.Machine().Rules().Add(
        {.target = {}, .method = L"ProgramFlashEx", .effect = simulator::Effect::PowerCut});
    Program(page);
    EXPECT_NE(page->Notice().find(Say(TextId::FlashUnknown, {L""}).substr(0, 30)), std::wstring::npos)
        << ToUtf8(page->Notice());
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0);
}

TEST_F(BootPageTest, SavesTheFlashMemory) {
    const auto page = Open(kNoBootPort);
    EXPECT_EQ(m_desk.Do(page->Saving(File("saved.bin"))), L"");
    EXPECT_EQ(page->Notice(), Say(TextId::FlashSaved, {File("saved.bin"), std::to_wstring(Flash().size())}));
    EXPECT_EQ(std::filesystem::file_size(m_folder / "saved.bin"), Flash().size());
    EXPECT_NE(m_desk.Do(page->Saving(File("no/such/folder.bin"))), L"");
}

TEST_F(BootPageTest, TheAgentsSettingsAreFoundByItsAdapter) {
    Open(kPrimary);
    const auto settings = std::make_shared<SettingsPage>(BootAgentOf{m_adapter});
    m_desk.Read(settings);
    EXPECT_FALSE(settings->Settings().empty());
    EXPECT_EQ(settings->Notice(), L"");
    Open(kNoAgent);
    const auto none = std::make_shared<SettingsPage>(BootAgentOf{m_adapter});
    m_desk.Read(none);
    EXPECT_EQ(none->Notice(), Say(TextId::BootNone));
}

} // namespace

} // namespace quillet::tests
