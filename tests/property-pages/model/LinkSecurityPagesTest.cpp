// Link security: authentication, keys, PAC files. No secret may come to light.
#include "model/KeysPage.h"
#include "model/LinkSecurityPage.h"
#include "model/ModelDesk.h"
#include "model/PacPage.h"

#include <quillet/client/Text.h>

namespace quillet::tests {

namespace {

using namespace pages;

enum SecureAdapters : std::size_t { kWithout = 0, kWith = 2, kWithPac = 4 };
constexpr const wchar_t* kSecret = L"correct horse 4711";

class LinkSecurityPagesTest : public testing::Test {
  protected:
    template <class Model>
    std::shared_ptr<Model> Open(std::size_t adapter = kWith) {
        Use([&](Session& session) { m_adapter = session.Adapters().at(adapter).id; });
        const auto page = std::make_shared<Model>(m_adapter);
        m_desk.Read(page);
        m_desk.Machine().Calls().Clear();
        return page;
    }
    void Use(const std::function<void(Session&)>& what) {
        EXPECT_EQ(m_desk.Do([&](Session& session, const Asking&) -> Answer {
            what(session);
            return nullptr;
        }),
                  L"");
    }
    /// Somebody else changes something.
    void Behind(const std::function<void(Session&)>& what) {
        Use([&](Session& session) {
            Transaction transaction(session);
            what(session);
            (void)transaction.Apply();
        });
    }
    Authentication ThereNow() {
        Authentication there;
        Use([&](Session& session) { there = session.ReadAuthentication(m_adapter); });
        return there;
    }
    ManualKeys KeysNow() {
        ManualKeys keys;
        Use([&](Session& session) { keys = session.ReadManualKeys(m_adapter); });
        return keys;
    }
    /// The lines of the journal, none of which may hold the secret.
    std::vector<std::wstring> Journal(const std::wstring& with) {
        std::vector<std::wstring> lines = m_desk.Calls(L"");
        std::erase_if(lines, [&](const std::wstring& line) {
            EXPECT_EQ(line.find(kSecret), std::wstring::npos);
            return line.find(with) == std::wstring::npos;
        });
        return lines;
    }
    void Refuse(const std::wstring& method) {
        m_desk.Machine().Rules().Add({.target = {}, .method = method, .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    }

    ModelDesk m_desk;
    AdapterId m_adapter;
};

TEST_F(LinkSecurityPagesTest, AnAdapterWithoutLinkSecuritySaysSo) {
    const auto authentication = Open<LinkSecurityPage>(kWithout);
    EXPECT_FALSE(authentication->IsThere());
    EXPECT_EQ(authentication->Status(), Say(TextId::NoLinkSecurity));
    EXPECT_EQ(authentication->Notice(), L"");
    const auto keys = Open<KeysPage>(kWithout);
    EXPECT_EQ(keys->WhyNot(), Say(TextId::NoLinkSecurity));
    EXPECT_FALSE(keys->IsChanged());
    const auto pac = Open<PacPage>(kWithout);
    EXPECT_FALSE(pac->IsThere());
    EXPECT_EQ(pac->Log(), Say(TextId::NoLinkSecurity));
}

TEST_F(LinkSecurityPagesTest, ShowsHowTheAdapterAuthenticates) {
    const auto page = Open<LinkSecurityPage>();
    EXPECT_TRUE(page->IsThere());
    EXPECT_EQ(page->Wanted().userName, L"netadmin");
    EXPECT_EQ(page->Wanted().methods.outer, 1);
    EXPECT_FALSE(page->UsesCredentials()) << "the first method needs none";
    EXPECT_FALSE(page->HasPassword());
    EXPECT_EQ(page->Saved(), Say(TextId::SavedWithout, {L"netadmin"}));
    EXPECT_EQ(page->OuterMethods(), (std::vector<std::int32_t>{1, 2, 3, 4}));
    EXPECT_FALSE(page->IsChanged());
    EXPECT_EQ(page->Mistake(), L"");
}

TEST_F(LinkSecurityPagesTest, WritesAuthenticationInOneSetAndForgetsThePassword) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) {
        of.methods.outer = 4;
        of.userName = L"operator";
        of.autoPac = false;
        of.pac = L"authority";
    });
    page->TypePassword(Secret(kSecret));
    page->TypeKeyKind(L"2");
    EXPECT_TRUE(page->IsChanged());
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(page->Notice(), L"");
    EXPECT_FALSE(page->IsPasswordTyped());
    EXPECT_FALSE(page->IsChanged());
    EXPECT_TRUE(page->HasPassword());
    EXPECT_TRUE(page->Wanted().password.IsEmpty()) << "no secret of the machine's gets into the page";
    EXPECT_EQ(page->Saved(), Say(TextId::SavedWith, {L"operator"}));
    EXPECT_EQ(Journal(L"Apply(").size(), 2U);
    const Authentication there = ThereNow();
    EXPECT_EQ(there.password, Secret(kSecret));
    EXPECT_EQ(there.pac, L"authority");
    EXPECT_EQ(there.methods.keySecurity, 2);
}

TEST_F(LinkSecurityPagesTest, APasswordThatIsNotTypedStays) {
    const auto first = Open<LinkSecurityPage>();
    first->Edit([](Authentication& of) { of.methods.outer = 2; });
    first->TypePassword(Secret(kSecret));
    EXPECT_TRUE(m_desk.Apply({first}).isDone);
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) { of.userName = L"operator"; });
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    const auto calls = Journal(L"SetLinksecParams");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls.front().find(L"LinksecCredPassword"), std::wstring::npos) << ToUtf8(calls.front());
    EXPECT_EQ(ThereNow().password, Secret(kSecret));
}

TEST_F(LinkSecurityPagesTest, WhatTheMethodDoesNotTakeIsNoChange) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) { of.methods.outer = 2; });
    page->Edit([](Authentication& of) { of.userName = L"operator"; });
    page->Edit([](Authentication& of) { of.methods.outer = 1; });
    EXPECT_FALSE(page->IsChanged());
    page->TypePassword(Secret(kSecret));
    EXPECT_FALSE(page->IsChanged());
}

TEST_F(LinkSecurityPagesTest, MistakesAreTold) {
    const auto page = Open<LinkSecurityPage>();
    page->TypeKeyKind(L"two");
    EXPECT_TRUE(page->IsChanged());
    EXPECT_EQ(page->Mistake(), Say(TextId::NoNumber, {L"two"}));
    page->TypeKeyKind(L"1");
    EXPECT_FALSE(page->IsChanged());
    page->Edit([](Authentication& of) { of.methods.outer = 2; });
    page->Edit([](Authentication& of) { of.userName.clear(); });
    EXPECT_EQ(page->Mistake(), Say(TextId::UserStays));
    page->Edit([](Authentication& of) { of.methods.outer = 9; });
    EXPECT_EQ(page->Mistake(), Say(TextId::NoOuter));
}

TEST_F(LinkSecurityPagesTest, ReloadingTheDriverIsToldBeforeAndAsksForNoRestart) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) { of.methods.randomMac = true; });
    EXPECT_TRUE(page->Changes().warnings.empty());
    page->SetReload(true);
    EXPECT_EQ(page->Changes().warnings, std::vector<std::wstring>{Say(TextId::ReloadInterrupts)});
    const Applied applied = m_desk.Apply({page});
    EXPECT_TRUE(applied.isDone);
    EXPECT_FALSE(applied.restartNeeded);
}

TEST_F(LinkSecurityPagesTest, WhatSomebodyElseChangedIsTold) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) {
        of.methods.outer = 2;
        of.userName = L"operator";
    });
    Behind([this](Session& session) {
        Authentication other = session.ReadAuthentication(m_adapter);
        other.methods.outer = 3;
        other.userName = L"somebody";
        session.SetAuthentication(m_adapter, other, Reload::No);
    });
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(page->Notice(), Say(TextId::SomethingChanged));
    EXPECT_EQ(page->Wanted().userName, L"operator");
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(ThereNow().userName, L"operator");
}

TEST_F(LinkSecurityPagesTest, ARefusalKeepsWhatWasTypedAndTellsNoSecret) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) { of.methods.outer = 2; });
    page->TypePassword(Secret(kSecret));
    Refuse(L"SetLinksecParams");
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(page->Notice().find(kSecret), std::wstring::npos);
    EXPECT_TRUE(page->IsPasswordTyped());
    Journal(L"");
}

TEST_F(LinkSecurityPagesTest, WhatCannotBeReadAgainKeepsWhatWasTyped) {
    const auto page = Open<LinkSecurityPage>();
    page->Edit([](Authentication& of) { of.methods.outer = 3; });
    const auto keys = Open<KeysPage>();
    keys->Type(KeysPage::OutChannel, L"0102");
    Refuse(L"GetLinksecParams");
    Refuse(L"GetLinksecManualCfgKeys");
    m_desk.Read(page);
    m_desk.Read(keys);
    EXPECT_NE(page->Notice(), L"");
    EXPECT_EQ(page->Wanted().methods.outer, 3);
    EXPECT_TRUE(page->IsChanged());
    EXPECT_NE(keys->Notice(), L"");
    EXPECT_EQ(keys->TextOf(KeysPage::OutChannel), L"0102");
}

TEST_F(LinkSecurityPagesTest, WritesKeysAndForgetsThem) {
    const auto page = Open<KeysPage>();
    EXPECT_EQ(page->KeyWords(KeysPage::OutKey), Say(TextId::SecretNotSet));
    EXPECT_TRUE(page->FlagOf(KeysPage::Encryption));
    page->Type(KeysPage::OutKey, Secret(kSecret));
    page->Type(KeysPage::OutSecond, L"3");
    page->Tick(KeysPage::IncludeChannel, false);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_FALSE(page->IsTyped(KeysPage::OutKey));
    EXPECT_FALSE(page->IsChanged());
    EXPECT_EQ(page->KeyWords(KeysPage::OutKey), Say(TextId::SecretSet));
    EXPECT_EQ(page->KeyWords(KeysPage::InKey), Say(TextId::SecretNotSet));
    EXPECT_TRUE(Journal(L"SetLinksecManualPMKeys").empty()) << "the master key is not concerned";
    const ManualKeys there = KeysNow();
    EXPECT_EQ(there.outgoing.key, Secret(kSecret));
    EXPECT_EQ(there.outgoing.secondNumber, 3);
    EXPECT_FALSE(there.includeChannelId);
}

TEST_F(LinkSecurityPagesTest, AKeyThatIsNotTypedStays) {
    const auto first = Open<KeysPage>();
    first->Type(KeysPage::OutKey, Secret(kSecret));
    first->Type(KeysPage::Master, Secret(kSecret));
    EXPECT_TRUE(m_desk.Apply({first}).isDone);
    const auto page = Open<KeysPage>();
    page->Type(KeysPage::InChannel, L"0102030405060708");
    page->Tick(KeysPage::RandomMac, true);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(KeysNow().outgoing.key, Secret(kSecret));
    EXPECT_EQ(KeysNow().incoming.channelId, L"0102030405060708");
    Use([this](Session& session) {
        const MasterKey master = session.ReadMasterKey(m_adapter);
        EXPECT_EQ(master.key, Secret(kSecret));
        EXPECT_TRUE(master.randomMac);
    });
    Journal(L"");
}

TEST_F(LinkSecurityPagesTest, KeysAreCheckedDisputedAndRefused) {
    const auto page = Open<KeysPage>();
    page->Type(KeysPage::InFirst, L"x");
    EXPECT_EQ(page->Mistake(), Say(TextId::NoNumber, {L"x"}));
    page->Type(KeysPage::InFirst, L"5");
    EXPECT_EQ(page->Mistake(), L"");
    Behind([this](Session& session) {
        ManualKeys keys = session.ReadManualKeys(m_adapter);
        keys.incoming.firstNumber = 6;
        session.SetManualKeys(m_adapter, keys, Reload::No);
    });
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_EQ(page->Notice(), Say(TextId::SomethingChanged));
    page->Type(KeysPage::Master, Secret(kSecret));
    Refuse(L"SetLinksecManualPMKeys");
    EXPECT_FALSE(m_desk.Apply({page}).isDone);
    EXPECT_NE(page->Notice().find(L"access is denied"), std::wstring::npos);
    EXPECT_TRUE(page->IsTyped(KeysPage::Master));
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    Journal(L"");
}

TEST_F(LinkSecurityPagesTest, APacIsImportedShownAndDeleted) {
    const auto page = Open<PacPage>();
    EXPECT_NE(page->Log().find(L"InPktsOK"), std::wstring::npos);
    int restarts = 0;
    page->restartNeeded = [&restarts] { ++restarts; };
    page->TypePassword(Secret(kSecret));
    EXPECT_EQ(m_desk.Do(page->Importing(L"C:\\pac\\netadmin.pac", Reload::No)), L"");
    EXPECT_EQ(page->Notice(), Say(TextId::PacImported, {L"netadmin.pac"}));
    EXPECT_EQ(page->Imported(), L"netadmin.pac");
    EXPECT_FALSE(page->IsPasswordTyped());
    EXPECT_EQ(restarts, 1);
    EXPECT_EQ(Journal(L"Apply(").size(), 2U);
    EXPECT_EQ(m_desk.Do(page->Looking(L"netadmin.pac")), L"");
    EXPECT_NE(page->Contents().find(L"Tunnel PAC"), std::wstring::npos);
    EXPECT_NE(page->Contents().find(L"Example authentication server"), std::wstring::npos);
    EXPECT_EQ(m_desk.Do(page->Deleting(L"netadmin.pac")), L"");
    EXPECT_EQ(page->Contents(), L"");
    EXPECT_NE(m_desk.Do(page->Looking(L"netadmin.pac")), L"");
    EXPECT_NE(m_desk.Do(page->Deleting(L"netadmin.pac")), L"");
    EXPECT_EQ(m_desk.Machine().OpenClientSet(), 0);
}

TEST_F(LinkSecurityPagesTest, AnImportThatFailsTellsNoSecret) {
    const auto page = Open<PacPage>();
    page->TypePassword(Secret(kSecret));
    const std::wstring failure = m_desk.Do(page->Importing(L"no.pac", Reload::Driver));
    EXPECT_NE(failure, L"");
    EXPECT_EQ(failure.find(kSecret), std::wstring::npos);
    EXPECT_TRUE(page->IsPasswordTyped()) << "nobody must type it again";
    Journal(L"");
}

} // namespace

} // namespace quillet::tests
