// The performance profile of an adapter.
#include "model/ModelDesk.h"
#include "model/SettingsPage.h"

namespace quillet::tests {

namespace {

using namespace pages;

class ProfileTest : public testing::Test {
  protected:
    std::shared_ptr<SettingsPage> Open() {
        m_desk.Do([&](Session& session, const Asking&) -> Answer {
            m_adapter = session.Adapters().front().id;
            return nullptr;
        });
        auto page = std::make_shared<SettingsPage>(m_adapter);
        m_desk.Read(page);
        return page;
    }
    /// Gives the adapter's setting of the profile other values.
    void Offer(const std::vector<std::wstring>& values) {
        const auto& store = m_desk.Machine().Store();
        for (const simulator::InstancePtr& each : store.Instances(L"Zorel_AdapterSettingEnum")) {
            if (each->Text(L"Caption") == L"PerformanceProfile") {
                simulator::Instance changed(*each);
                simulator::Value::Array possible;
                for (const std::wstring& value : values) {
                    possible.emplace_back(simulator::Scalar(value));
                }
                changed.Set(L"PossibleValues", simulator::Value(possible));
                m_desk.Machine().Store().PutInstance(std::move(changed));
            }
        }
    }

    ModelDesk m_desk;
    AdapterId m_adapter;
};

TEST_F(ProfileTest, IsOfferedAndWrittenAsASetting) {
    const auto page = Open();
    ASSERT_NE(page->Profile(), nullptr);
    EXPECT_EQ(page->ValueText(*page->Profile()), L"Storage Server");
    page->PickProfile(1);
    EXPECT_EQ(page->Chosen(), page->Profile()) << "its help is shown";
    EXPECT_EQ(page->ValueText(*page->Profile()), L"Standard Server");
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    m_desk.Do([&](Session& session, const Asking&) -> Answer {
        for (const OfferedProfile& profile : session.Profiles(m_adapter)) {
            EXPECT_EQ(profile.isCurrent, profile.description == L"Standard Server");
        }
        return nullptr;
    });
}

TEST_F(ProfileTest, AnAdapterThatHasNoneSaysSoByItsFirstValue) {
    Offer({L"0"});
    EXPECT_EQ(Open()->Profile(), nullptr);
    Offer({});
    EXPECT_EQ(Open()->Profile(), nullptr);
}

TEST_F(ProfileTest, TheOneForHostsOfVirtualMachinesIsReplacedOnAllAdapters) {
    auto page = Open();
    EXPECT_FALSE(page->HasHyperVProfile());
    page->PickProfile(4);
    EXPECT_TRUE(m_desk.Apply({page}).isDone);
    EXPECT_TRUE(page->HasHyperVProfile());
    EXPECT_EQ(page->Replacement(), nullptr) << "another one must be chosen first";
    page->PickProfile(1);
    ASSERT_NE(page->Replacement(), nullptr);
    EXPECT_NE(page->ReplacementQuestion().find(L"Standard Server"), std::wstring::npos);
    m_desk.Machine().Calls().Clear();
    EXPECT_EQ(m_desk.Do(page->ReplacingEverywhere()), L"");
    EXPECT_EQ(page->Notice(), Say(TextId::ProfileReplaced));
    EXPECT_FALSE(page->HasHyperVProfile());
    EXPECT_FALSE(page->IsChanged());
    EXPECT_EQ(m_desk.Calls(L"Apply(").size(), 2U);
}

TEST_F(ProfileTest, ATeamHasNone) {
    TeamId team;
    m_desk.Do([&](Session& session, const Asking&) -> Answer {
        team = session.Teams().front().id;
        return nullptr;
    });
    const auto page = std::make_shared<SettingsPage>(team);
    m_desk.Read(page);
    EXPECT_FALSE(page->Settings().empty());
    EXPECT_EQ(page->Profile(), nullptr);
    page->PickProfile(0);
    EXPECT_FALSE(page->IsChanged());
}

} // namespace

} // namespace quillet::tests
