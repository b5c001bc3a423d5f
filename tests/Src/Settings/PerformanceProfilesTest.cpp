// Performance profiles: the list, the two questions about it, and leaving the one for virtual machines.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// {A} and {C} have the profile for virtual machines, {B} another one, {N} has none at all.
constexpr const char* kPerformanceProfilesMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "A"; OriginalDisplayName = "A"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "B"; OriginalDisplayName = "B"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{N}"; Name = "N"; OriginalDisplayName = "N"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Name = "C"; OriginalDisplayName = "C"; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 5; DefaultValue = 2;
        PossibleValues = {"1", "2", "5"}; DescriptionMap = {"Custom", "Standard", "Virtualization"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{B}"; ParentType = "NIC"; CurrentValue = 2; DefaultValue = 2;
        PossibleValues = {"1", "2", "5"}; DescriptionMap = {"Custom", "Standard", "Virtualization"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{C}"; ParentType = "NIC"; CurrentValue = 5; DefaultValue = 2;
        FollowupAction = 1; PossibleValues = {"6", "5", "2"};
        DescriptionMap = {"Low latency", "Virtual machines", "Standard"}; };)";
constexpr const char* kFailedToRefresh =
    "ChangeAllAdapterProfilesFromHyperV() - error calling GetAdapterSettingAsync()";
constexpr const char* kFound =
    "ChangeAllAdapterProfilesFromHyperV - found hyper-v profie ... seting it to standard";
constexpr auto kStandard = static_cast<ePERFORMANCE_PROFILE>(2);

std::wstring ProfilePath(const wchar_t* id) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(id) +
           L"\"";
}

class PerformanceProfilesTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kPerformanceProfilesMachine);
        Connect();
    }
    LONG CurrentOf(const wchar_t* id) const {
        return static_cast<LONG>(machine->Store()
                                     .FindInstance(L"Zorel_AdapterSettingEnum.Caption=\"PerformanceProfile\","
                                                   L"ParentId=\"" +
                                                   std::wstring(id) + L"\",ParentType=\"NIC\"")
                                     ->Number(L"CurrentValue"));
    }
    /// The methods and writes since the last call, by what they are.
    std::vector<std::string> Changes() {
        std::vector<std::string> changes;
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::ExecMethod) {
                changes.push_back(Narrow(call.method));
            } else if (call.operation == Operation::PutInstance) {
                changes.push_back("Put");
            }
        }
        return changes;
    }
    static void Add(CPerformanceProfiles& list, LONG number, bool current) {
        auto* profile = new CPerformanceProfile;
        profile->m_eProfile = static_cast<ePERFORMANCE_PROFILE>(number);
        profile->m_bIsCurrent = current;
        list.m_vecItems.push_back(profile);
    }
    static void Add(CAdapters& list, const wchar_t* id) {
        list.m_vecItems.push_back(new CAdapter);
        list.m_vecItems.back()->m_wsAdapterID = ProfilePath(id);
    }
    CPerformanceProfiles profiles;
};

TEST_F(PerformanceProfilesTest, Get_OneRecordForEachValue_CurrentOnlyOnTheCurrentOne) {
    Add(profiles, 9, true); // goes
    EXPECT_EQ(Code(quillet.GetAdapterProfiles(ProfilePath(L"{B}"), profiles)), "0x00000000");
    ASSERT_EQ(profiles.m_vecItems.size(), 3u);
    const LONG numbers[] = {1, 2, 5};
    const wchar_t* texts[] = {L"Custom", L"Standard", L"Virtualization"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(static_cast<LONG>(profiles.m_vecItems[i]->m_eProfile), numbers[i]);
        EXPECT_EQ(profiles.m_vecItems[i]->m_wsDescription, texts[i]);
        EXPECT_EQ(profiles.m_vecItems[i]->m_lReserved, 0);
        EXPECT_EQ(profiles.m_vecItems[i]->m_bIsCurrent, i == 1);
    }
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls[0].target,
              L"Zorel_AdapterSettingEnum.Caption='PerformanceProfile',ParentId='{B}',ParentType='NIC'");
}

TEST_F(PerformanceProfilesTest, Get_ClosingLine_IsThatOfTheEntry) {
    quillet.GetAdapterProfiles(ProfilePath(L"{B}"), profiles);
    const std::vector<std::string> trace = Traced();
    ASSERT_FALSE(trace.empty());
    EXPECT_EQ(trace.front(), "Entering CQuillet::GetAdapterProfiles");
    EXPECT_EQ(trace.back(), "Entering CQuillet::GetAdapterProfiles");
    EXPECT_EQ(std::count(trace.begin(), trace.end(), "Entering CQuillet::GetAdapterProfiles"), 2);
    EXPECT_THAT(trace, Not(Contains("Exiting CQuillet::GetAdapterProfiles")));
}

TEST_F(PerformanceProfilesTest, Get_BadIdentifiers_AreNamed) {
    Add(profiles, 9, true);
    EXPECT_EQ(Code(quillet.GetAdapterProfiles(L"", profiles)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))"));
    EXPECT_EQ(profiles.m_vecItems.size(), 1u) << "the list is emptied only afterwards";
    EXPECT_EQ(Code(quillet.GetAdapterProfiles(L"no path", profiles)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetAdapterProfiles() - error getting the adapter guid"));
    EXPECT_TRUE(profiles.m_vecItems.empty());
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(PerformanceProfilesTest, Get_NoSettingOrARefusal_IsOneCode) {
    EXPECT_EQ(Code(quillet.GetAdapterProfiles(ProfilePath(L"{N}"), profiles)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetAdapterProfiles() - error calling GetAdapterSettingAsync()"));
    FailEachProviderCall([&] { return quillet.GetAdapterProfiles(ProfilePath(L"{A}"), profiles); },
                         [](const JournalEntry&, HRESULT) { return static_cast<HRESULT>(WBEM_E_FAILED); });
}

TEST_F(PerformanceProfilesTest, Get_FewerTextsThanValues_EndsWithTheRecordsSoFar) {
    UseText(R"(instance of Zorel_NetService { Name = "ZorelNetService"; };
        instance of Zorel_AdapterSettingEnum { Caption = "PerformanceProfile"; ParentId = "{S}"; ParentType = "NIC";
            CurrentValue = 2; PossibleValues = {"1", "2", "5"}; DescriptionMap = {"Custom", "Standard"}; };)");
    quillet.UninitQuillet();
    Connect();
    EXPECT_EQ(Code(quillet.GetAdapterProfiles(ProfilePath(L"{S}"), profiles)), "0x80004005");
    ASSERT_EQ(profiles.m_vecItems.size(), 2u);
    EXPECT_TRUE(profiles.m_vecItems[1]->m_bIsCurrent);
    EXPECT_THAT(Traced(), Contains("GetAdapterProfiles() - DescriptionMap is shorter than PossibleValues"));
}

TEST_F(PerformanceProfilesTest, Supported_DependsOnTheFirstRecordOnly) {
    EXPECT_FALSE(QuilletTestAccess::IsPerformanceProfileSupported(nullptr));
    EXPECT_FALSE(QuilletTestAccess::IsPerformanceProfileSupported(&profiles));
    Add(profiles, 0, false);
    Add(profiles, 2, true);
    EXPECT_FALSE(QuilletTestAccess::IsPerformanceProfileSupported(&profiles));
    EXPECT_THAT(Traced(), Contains("Exit CQuillet::IsPerformanceProfileSupported()=0"));
    std::swap(profiles.m_vecItems[0], profiles.m_vecItems[1]);
    EXPECT_TRUE(QuilletTestAccess::IsPerformanceProfileSupported(&profiles));
    EXPECT_THAT(Traced(), ElementsAre("Entry CQuillet::IsPerformanceProfileSupported()",
                                      "Exit CQuillet::IsPerformanceProfileSupported()=1"));
}

TEST_F(PerformanceProfilesTest, Custom_IsThatProfileBeingCurrent) {
    EXPECT_FALSE(QuilletTestAccess::IsCurrentPerformanceProfileCustom(nullptr));
    Add(profiles, 2, false);
    Add(profiles, 1, false);
    EXPECT_FALSE(QuilletTestAccess::IsCurrentPerformanceProfileCustom(&profiles));
    EXPECT_THAT(Traced(), Contains("Exit CQuillet::IsPerformanceProfileCustom()=0"));
    profiles.m_vecItems[1]->m_bIsCurrent = true;
    EXPECT_TRUE(QuilletTestAccess::IsCurrentPerformanceProfileCustom(&profiles));
    EXPECT_THAT(Traced(), ElementsAre("Entry CQuillet::IsPerformanceProfileCustom()",
                                      "Entry CQuillet::IsPerformanceProfileSupported()",
                                      "Exit CQuillet::IsPerformanceProfileSupported()=1",
                                      "Exit CQuillet::IsPerformanceProfileCustom()=1"));
    profiles.m_vecItems[0]->m_eProfile = PERFORMANCE_PROFILE_NOT_SUPPORTED;
    EXPECT_FALSE(QuilletTestAccess::IsCurrentPerformanceProfileCustom(&profiles)) << "not supported";
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_ChangesThoseThatHaveItInOneSet) {
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x00000000");
    EXPECT_EQ(CurrentOf(L"{A}"), 2);
    EXPECT_EQ(CurrentOf(L"{B}"), 2);
    EXPECT_EQ(CurrentOf(L"{C}"), 2);
    EXPECT_THAT(Changes(), ElementsAre("BeginApply", "Put", "Put", "Apply"));
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(std::count(trace.begin(), trace.end(), kFound), 2);
    EXPECT_EQ(std::count(trace.begin(), trace.end(), kFailedToRefresh), 1) << "the adapter without profiles";
    EXPECT_THAT(trace, Contains("CAdvSettingPage::ChangeAllAdapterProfilesFromHyperV() bReboot 1"));
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_WithoutSuchAnAdapter_OpensNoSet) {
    ASSERT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x00000000");
    Changes();
    Traced();
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x00000000");
    EXPECT_THAT(Changes(), IsEmpty());
    EXPECT_THAT(Traced(), Not(Contains(testing::HasSubstr("bReboot"))));
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_AdaptersUnlisted_ReturnsThatCode) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("EnumerateAdapters failed"));
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_SetCannotBeOpened_WritesNothing) {
    FaultRule rule;
    rule.operation = Operation::ExecMethod;
    rule.method = L"BeginApply";
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x80041003");
    EXPECT_THAT(Changes(), ElementsAre("BeginApply"));
    EXPECT_EQ(CurrentOf(L"{A}"), 5);
    EXPECT_THAT(Traced(), Contains(testing::AllOf(testing::StartsWith(R"(.\Src\Quillet ()"),
                                                  testing::EndsWith("): BeginApply() call FAILED"))));
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_OneWriteFails_GoesOnAndReturnsTheFirstFailure) {
    Fail(Operation::PutInstance, WBEM_E_ACCESS_DENIED, L"", 1);
    Fail(Operation::ExecMethod, WBEM_E_INVALID_PARAMETER, L"", 2);
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x80041003");
    EXPECT_THAT(Changes(), ElementsAre("BeginApply", "Put", "Put", "Apply"));
    EXPECT_EQ(CurrentOf(L"{A}"), 5);
    EXPECT_EQ(CurrentOf(L"{C}"), 2);
}

TEST_F(PerformanceProfilesTest, LeaveHyperV_SetCannotBeClosed_IsTheResult) {
    Fail(Operation::ExecMethod, WBEM_E_INVALID_PARAMETER, L"", 2);
    EXPECT_EQ(Code(quillet.ChangeAllAdapterProfilesFromHyperV(kStandard)), "0x80041008");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains(testing::AllOf(testing::StartsWith(R"(.\Src\Quillet ()"),
                                               testing::EndsWith("): ApplyDone() call FAILED"))));
    EXPECT_THAT(trace, Contains("CAdvSettingPage::ChangeAllAdapterProfilesFromHyperV() bReboot 0"));
}

TEST_F(PerformanceProfilesTest, Compatible_IsWhatAllOfferInTheOrderOfTheFirst) {
    CAdapters adapters;
    Add(adapters, L"{A}");
    Add(adapters, L"{C}");
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x00000000");
    ASSERT_EQ(profiles.m_vecItems.size(), 2u);
    EXPECT_EQ(static_cast<LONG>(profiles.m_vecItems[0]->m_eProfile), 2);
    EXPECT_FALSE(profiles.m_vecItems[0]->m_bIsCurrent);
    EXPECT_EQ(static_cast<LONG>(profiles.m_vecItems[1]->m_eProfile), 5);
    EXPECT_TRUE(profiles.m_vecItems[1]->m_bIsCurrent) << "current on both";
    EXPECT_EQ(profiles.m_vecItems[1]->m_wsDescription, L"Virtualization") << "the first one's words";
    Add(adapters, L"{B}");
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x00000000");
    ASSERT_EQ(profiles.m_vecItems.size(), 2u);
    EXPECT_FALSE(profiles.m_vecItems[1]->m_bIsCurrent) << "not current on the third";
}

TEST_F(PerformanceProfilesTest, Compatible_OfOneAdapter_IsWhatItOffers) {
    CAdapters adapters;
    Add(adapters, L"{A}");
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x00000000");
    EXPECT_EQ(profiles.m_vecItems.size(), 3u);
}

TEST_F(PerformanceProfilesTest, Compatible_WithAnAdapterWithoutProfiles_IsEmpty) {
    CAdapters adapters;
    Add(adapters, L"{A}");
    Add(adapters, L"{N}");
    Add(profiles, 9, true);
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x00000000");
    EXPECT_TRUE(profiles.m_vecItems.empty());
}

TEST_F(PerformanceProfilesTest, Compatible_WithoutAdaptersOrReadableProfiles_Fails) {
    CAdapters adapters;
    Add(profiles, 9, true);
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x80004005");
    EXPECT_TRUE(profiles.m_vecItems.empty());
    Add(adapters, L"{A}");
    Add(adapters, L"{B}");
    FailEachProviderCall([&] { return quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles); });
    adapters.m_vecItems.push_back(nullptr);
    EXPECT_EQ(Code(quillet.GetCompatibleTeamProfilesWithAdapters(adapters, profiles)), "0x80004005");
    EXPECT_TRUE(profiles.m_vecItems.empty());
}

} // namespace
