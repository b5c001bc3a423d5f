// Checks of a setting across several adapters: mismatches, jumbo frames, and what a change of a team's
// members does to receive side scaling.
#include "ProviderTest.h"

#include <set>

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

constexpr unsigned kPool = 6;

// The pool that teams are made of. E1 and E2 have the setting enabled and the scalable networking pack, D has
// it disabled, N does not have it, T is another maker's and tells nothing, X is another maker's with the
// setting.
constexpr const char* kSettingChecksMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $E1 {
        DeviceID = "{E1}"; SlotID = "1"; AdapterStatus = 1; Capabilities = {47, 61}; };
    instance of Zorel_PhysicalEthernetAdapter as $E2 {
        DeviceID = "{E2}"; SlotID = "1"; AdapterStatus = 1; Capabilities = {46, 47, 61}; };
    instance of Zorel_PhysicalEthernetAdapter as $D {
        DeviceID = "{D}"; SlotID = "2"; AdapterStatus = 1; Capabilities = {47}; };
    instance of Zorel_PhysicalEthernetAdapter as $N {
        DeviceID = "{N}"; SlotID = "2"; AdapterStatus = 1; Capabilities = {61}; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{T}"; SlotID = "3"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{X}"; SlotID = "3"; AdapterStatus = 1; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*RSS"; ParentId = "{E1}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "RssMode"; ParentId = "{E2}"; ParentType = "NIC"; CurrentValue = 65535; DefaultValue = 0;
        PossibleValues = {"0", "65535"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*RSS"; ParentId = "{D}"; ParentType = "NIC"; CurrentValue = 0; DefaultValue = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*RSS"; ParentId = "{X}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{E1}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "MaxFrameSize"; ParentId = "{E2}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{D}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_TeamOfAdapters as $Whole { Name = "{WHOLE}"; Caption = "TEAM : whole"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $Whole; PartComponent = $E1; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $Whole; PartComponent = $E2; AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $Mixed { Name = "{MIXED}"; Caption = "TEAM : mixed"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $Mixed; PartComponent = $D; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $Mixed; PartComponent = $N; AdapterStatus = 1; };)";

constexpr const wchar_t* kNames[kPool] = {L"E1", L"E2", L"D", L"N", L"T", L"X"};

std::wstring Path(const std::wstring& name) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{)" + name + L"}\"";
}

using Names = std::vector<std::wstring>;

Names Paths(const Names& names) {
    Names paths;
    for (const std::wstring& name : names) {
        paths.push_back(Path(name));
    }
    return paths;
}

void Fill(CAdapters& adapters, const Names& names) {
    for (const std::wstring& name : names) {
        adapters.m_vecItems.push_back(new CAdapter);
        adapters.m_vecItems.back()->m_wsAdapterID = Path(name);
    }
}

void Fill(CTeamedAdapters& members, const Names& names) {
    for (const std::wstring& name : names) {
        members.m_vecItems.push_back(new CTeamedAdapter);
        members.m_vecItems.back()->m_wsAdapterID = Path(name);
    }
}

/// The lines of which each check of receive side scaling writes exactly one.
constexpr const char* kNotInstalled = "The Scalable Networking Pack is not installed!";
constexpr const char* kOnlyRemoving = "RSS_PrecheckOnTeamModify -> The user is only removing an adapter(s).";
constexpr const char* kOneAdapter =
    "RSS_PrecheckOnTeamModify -> The new Team only contains 1 adapter, returning success";
constexpr const char* kThirdParty =
    "CQuillet::RSS_PrecheckOnTeamModify() - adding a 3rd party NIC to RSS enabled Team.";
constexpr const char* kNonRss =
    "CQuillet::RSS_PrecheckOnTeamModify() - adding non RSS device to RSS enabled Team.";
constexpr const char* kDisabling = "The old team had RSS enabled and an adapter with RSS disabled was added, "
                                   "disabling RSS on the whole team.";
constexpr const char* kMvt = "CQuillet::RSS_PrecheckOnTeamModify() - adding RSS enabled NIC to MVT Team.";
constexpr const char* kUnsupported =
    "CQuillet::RSS_PrecheckOnTeamModify() - adding RSS enabled NIC to unsupported RSS Team.";
constexpr const char* kNowEnabled =
    "CQuillet::RSS_PrecheckOnTeamModify() - new Team now has RSS enabled, when it previously did not.";
constexpr const char* kNoChange =
    "CQuillet::RSS_PrecheckOnTeamModify() - Team + adapter will not change after adding to team.";

class SettingChecksTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kSettingChecksMachine);
        Connect();
    }

    struct Verdict {
        ULONGLONG warnings = 0;
        std::string line;
        friend bool operator==(const Verdict&, const Verdict&) = default;
        friend void PrintTo(const Verdict& verdict, std::ostream* out) {
            *out << std::hex << verdict.warnings << " \"" << verdict.line << '"';
        }
    };

    Verdict Precheck(const Names& current, const Names& wanted) {
        CTeamedAdapters members;
        CAdapters adapters;
        Fill(members, current);
        Fill(adapters, wanted);
        Verdict verdict;
        verdict.warnings = 0x55;
        Traced();
        EXPECT_EQ(Code(quillet.RSS_PrecheckOnTeamModify(members, adapters, verdict.warnings)), "0x00000000");
        for (const std::string& line : Traced()) {
            for (const char* known : {kNotInstalled, kOnlyRemoving, kOneAdapter, kThirdParty, kNonRss,
                                      kDisabling, kMvt, kUnsupported, kNowEnabled, kNoChange}) {
                if (line == known) {
                    EXPECT_EQ(verdict.line, "") << "a second verdict";
                    verdict.line = line;
                }
            }
        }
        return verdict;
    }

    static CSettings Numbers(std::initializer_list<LONG> values) {
        CSettings settings;
        for (const LONG value : values) {
            auto* setting = new CSettingEnum;
            setting->m_lCurrentValue = value;
            settings.m_vecItems.push_back(setting);
        }
        return settings;
    }
};

using Expected = std::pair<ULONGLONG, const char*>;

TEST_F(SettingChecksTest, Mismatch_NotExact_IsAValueBelowTheLastOne) {
    EXPECT_FALSE(QuilletTestAccess::CheckForValueMismatch(Numbers({5, 3, 4}), false));
    EXPECT_THAT(Traced(), Contains("CQuillet::CheckForValueMismatch - Settings do not match!"));
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(Numbers({5, 6, 4}), false));
    EXPECT_THAT(Traced(), Not(Contains("CQuillet::CheckForValueMismatch - Settings do not match!")));
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(Numbers({-1, -1}), false));
}

TEST_F(SettingChecksTest, Mismatch_Exact_IsAnyOtherValue) {
    EXPECT_FALSE(QuilletTestAccess::CheckForValueMismatch(Numbers({5, 6, 4}), true));
    EXPECT_FALSE(QuilletTestAccess::CheckForValueMismatch(Numbers({5, 4, 4}), true));
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(Numbers({4, 4, 4}), true));
}

TEST_F(SettingChecksTest, Mismatch_NothingAndNullEntries_Match) {
    CSettings settings;
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(settings, true));
    settings.m_vecItems.push_back(nullptr);
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(settings, false));
    CSettings mixed = Numbers({4});
    mixed.m_vecItems.push_back(nullptr);
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(mixed, true));
}

TEST_F(SettingChecksTest, Mismatch_Texts_AreComparedExactly) {
    CSettings settings;
    for (const wchar_t* text : {L"one", L"two"}) {
        auto* setting = new CSettingString;
        setting->m_wsCurrentValue = text;
        settings.m_vecItems.push_back(setting);
    }
    EXPECT_FALSE(QuilletTestAccess::CheckForValueMismatch(settings, true));
    EXPECT_TRUE(QuilletTestAccess::CheckForValueMismatch(settings, false)); // neither is a number
}

TEST_F(SettingChecksTest, Pack_NeedsBothCapabilitiesOnOneAdapter) {
    CAdapters none;
    Fill(none, {L"D", L"N", L"T"}); // each of the two, but never both
    EXPECT_FALSE(QuilletTestAccess::IsScalableNetworkingPackInstalled(quillet, none));
    EXPECT_THAT(Traced(), Not(Contains("CQuillet::IsScalableNetworkingPackInstalled - SNP is installed!")));
    CAdapters some;
    Fill(some, {L"T", L"E1", L"E2"});
    some.m_vecItems.insert(some.m_vecItems.begin(), nullptr);
    Called();
    EXPECT_TRUE(QuilletTestAccess::IsScalableNetworkingPackInstalled(quillet, some));
    EXPECT_THAT(Traced(), Contains("CQuillet::IsScalableNetworkingPackInstalled - SNP is installed!"));
    EXPECT_EQ(Called().size(), 2u) << "the first adapter that has it ends the search";
    EXPECT_EQ(some.m_vecItems[2]->m_pAdapterCapabilities, nullptr) << "the caller's record";
    EXPECT_FALSE(QuilletTestAccess::IsScalableNetworkingPackInstalled(quillet, CAdapters()));
}

TEST_F(SettingChecksTest, Jumbo_AdapterWithoutATeam_NeedsNothingMore) {
    bool onAll = false;
    bool isTeamed = true;
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(Path(L"T"), onAll, isTeamed)), "0x00000000");
    EXPECT_TRUE(onAll);
    EXPECT_FALSE(isTeamed);
    EXPECT_TRUE(CallsOf(Operation::CreateInstanceEnum).empty());
}

TEST_F(SettingChecksTest, Jumbo_Member_IsAboutAllMembersOfItsTeam) {
    bool onAll = false;
    bool isTeamed = false;
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(Path(L"E1"), onAll, isTeamed)), "0x00000000");
    EXPECT_TRUE(isTeamed);
    EXPECT_TRUE(onAll) << "under either keyword";
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(Path(L"D"), onAll, isTeamed)), "0x00000000");
    EXPECT_TRUE(isTeamed);
    EXPECT_FALSE(onAll) << "the other member has no such setting";
}

TEST_F(SettingChecksTest, Jumbo_Failures_AreNamedAndLeaveTheAnswerAsItIsForNoTeam) {
    bool onAll = false;
    bool isTeamed = false;
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(L"", onAll, isTeamed)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("EnumerateOtherPortOfAdapter() call FAILED"));
    EXPECT_TRUE(onAll);
    EXPECT_FALSE(isTeamed);
    FaultRule rule;
    rule.operation = Operation::ExecQuery;
    rule.target = L"ASSOCIATORS OF {" +
                  std::wstring(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name="{WHOLE}")") +
                  L"} WHERE ResultClass = Zorel_PhysicalEthernetAdapter";
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(Path(L"E1"), onAll, isTeamed)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetMemberAdapters() call FAILED"));
    EXPECT_TRUE(onAll);
    EXPECT_TRUE(isTeamed);
    machine->Rules().Clear();
    Fail(Operation::CreateInstanceEnum, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.JumboFramePrecheckSetSetting(Path(L"E1"), onAll, isTeamed)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetJumboFrameSettings Fail"));
}

TEST_F(SettingChecksTest, JumboSettings_AreThoseOfEitherKeyword) {
    CSettings settings;
    bool onAll = false;
    EXPECT_EQ(Code(QuilletTestAccess::GetJumboFrameSettings(quillet, Paths({L"E1", L"E2"}), settings, onAll)),
              "0x00000000");
    EXPECT_TRUE(onAll);
    EXPECT_EQ(settings.m_vecItems.size(), 2u);
}

TEST_F(SettingChecksTest, TeamCapable_AllEnabled_SaysBoth) {
    LONG capable = 9;
    LONG enabled = 9;
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"E2"}),
                                                                  SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 2);
    EXPECT_EQ(enabled, 2);
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("CQuillet::IsTeamCapableOfAdvancedSetting - all members are capable of the "
                                "setting."));
    EXPECT_THAT(trace, Contains("CQuillet::IsTeamCapableOfAdvancedSetting - all members have the setting "
                                "enabled."));
}

TEST_F(SettingChecksTest, TeamCapable_OwnerIsTheParentId_WhateverThePathSays) {
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"__PATH";
    rule.effect = Effect::NullValue;
    rule.repeat = true;
    Inject(rule);
    LONG capable = 9;
    LONG enabled = 9;
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"E2"}),
                                                                  SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 2);
    EXPECT_EQ(enabled, 2);
    machine->Rules().Clear();
    // An identifier is the same in whatever case it is written.
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"e1", L"e2"}),
                                                                  SettingName::RssMode, capable, enabled));
    EXPECT_EQ(enabled, 2);
}

TEST_F(SettingChecksTest, TeamCapable_NotAllEnabled_IsCapableAllTheSame) {
    LONG capable = 9;
    LONG enabled = 9;
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"D"}),
                                                                  SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 2);
    EXPECT_EQ(enabled, 1);
    EXPECT_THAT(Traced(), Not(Contains("CQuillet::IsTeamCapableOfAdvancedSetting - all members have the "
                                       "setting enabled.")));
}

TEST_F(SettingChecksTest, TeamCapable_MemberWithoutTheSetting_GivesItsCode) {
    LONG capable = 9;
    LONG enabled = 9;
    EXPECT_FALSE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"N", L"D"}),
                                                                   SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 2);
    EXPECT_EQ(enabled, 1);
    EXPECT_THAT(Traced(), Contains("CQuillet::IsTeamCapableOfAdvancedSetting - at least one adapter does not "
                                   "support the setting."));
}

TEST_F(SettingChecksTest, TeamCapable_ThirdPartyMember_WinsOverOneWithoutTheSetting) {
    LONG capable = 9;
    LONG enabled = 9;
    EXPECT_FALSE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"N", L"T"}),
                                                                   SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 3);
    EXPECT_EQ(enabled, 1);
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("CQuillet::IsTeamCapableOfAdvancedSetting - at least one adapter is a 3rd "
                                "party."));
    EXPECT_THAT(trace,
                Not(Contains("CQuillet::IsTeamCapableOfAdvancedSetting - at least one adapter does not "
                             "support the setting.")));
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"X"}),
                                                                  SettingName::RssMode, capable, enabled))
        << "a third party with the setting is capable";
    EXPECT_TRUE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Names{Path(L"E1"), L"{E2}"},
                                                                  SettingName::RssMode, capable, enabled))
        << "an object identifier alone is no path to an adapter, but finds its settings";
}

TEST_F(SettingChecksTest, TeamCapable_SettingsUnreadable_IsFalseWithBothCountsZero) {
    LONG capable = 9;
    LONG enabled = 9;
    Fail(Operation::CreateInstanceEnum, WBEM_E_FAILED);
    EXPECT_FALSE(QuilletTestAccess::IsTeamCapableOfAdvancedSetting(quillet, Paths({L"E1", L"E2"}),
                                                                   SettingName::RssMode, capable, enabled));
    EXPECT_EQ(capable, 0);
    EXPECT_EQ(enabled, 0);
}

TEST_F(SettingChecksTest, OldTeamCapable_IsTracedWhenItIs) {
    CTeamedAdapters able;
    Fill(able, {L"E1", L"D"});
    EXPECT_TRUE(QuilletTestAccess::IsOldTeamCapableOfSetting(quillet, able, SettingName::RssMode));
    EXPECT_THAT(Traced(), Contains("IsOldTeamCapableOfSetting - Old team is capable of the setting."));
    CTeamedAdapters unable;
    Fill(unable, {L"E1", L"N"});
    EXPECT_FALSE(QuilletTestAccess::IsOldTeamCapableOfSetting(quillet, unable, SettingName::RssMode));
    EXPECT_THAT(Traced(), Not(Contains("IsOldTeamCapableOfSetting - Old team is capable of the setting.")));
}

struct RssCase {
    const char* name;
    Names current;
    Names wanted;
    ULONGLONG warnings;
    const char* line;
};

void PrintTo(const RssCase& tested, std::ostream* out) {
    *out << tested.name;
}

class RssPrecheckTest : public SettingChecksTest, public testing::WithParamInterface<RssCase> {};

TEST_P(RssPrecheckTest, TheFirstCaseThatAppliesDecides) {
    const auto& tested = GetParam();
    EXPECT_EQ(Precheck(tested.current, tested.wanted),
              (SettingChecksTest::Verdict{tested.warnings, tested.line}));
}

const RssCase kRssCases[] = {
    {"PackNotInstalled", {L"E1", L"E2"}, {L"D", L"N"}, 0, kNotInstalled},
    {"PackNotInstalled_WinsOverThirdParty", {L"E1"}, {L"D", L"T"}, 0, kNotInstalled},
    {"PackNotInstalled_NothingWanted", {L"E1"}, {}, 0, kNotInstalled},
    {"NothingAdded", {L"E1", L"E2", L"N"}, {L"E1", L"E2"}, 0, kOnlyRemoving},
    {"NothingAdded_WinsOverOneAdapter", {L"E1", L"E2"}, {L"E2"}, 0, kOnlyRemoving},
    {"NothingAdded_SameMembers", {L"E1", L"E2"}, {L"E2", L"E1"}, 0, kOnlyRemoving},
    {"OneAdapter", {L"D", L"N"}, {L"E1"}, 0, kOneAdapter},
    {"OneAdapter_WinsOverMixedTeam", {L"T", L"N"}, {L"E1"}, 0, kOneAdapter},
    {"ThirdPartyAdded", {L"E1", L"E2"}, {L"E1", L"E2", L"T"}, 0x8, kThirdParty},
    {"ThirdPartyAdded_WinsOverIncapableAndDisabled",
     {L"E1", L"E2"},
     {L"E1", L"E2", L"N", L"D", L"T"},
     0x8,
     kThirdParty},
    {"ThirdPartyAdded_WithTheSetting", {L"E1"}, {L"E1", L"X"}, 0x8, kThirdParty},
    {"ThirdPartyAdded_ToATeamWithoutRss", {L"D"}, {L"D", L"T", L"E1"}, 0, kNoChange},
    {"IncapableAdded", {L"E1"}, {L"E1", L"N"}, 0x4, kNonRss},
    {"IncapableAdded_WinsOverDisabled", {L"E1", L"E2"}, {L"E1", L"E2", L"D", L"N"}, 0x4, kNonRss},
    {"DisabledAdded", {L"E1", L"E2"}, {L"E1", L"E2", L"D"}, 0x2, kDisabling},
    {"DisabledAdded_WinsOverEnabledIntoMixedTeam", {L"X"}, {L"X", L"D", L"E1"}, 0x2, kDisabling},
    {"EnabledAddedToMixedTeam", {L"T", L"D"}, {L"T", L"D", L"E1"}, 0x20, kMvt},
    {"EnabledAddedToMixedTeam_WinsOverIncapableTeam", {L"T", L"N"}, {L"T", L"N", L"E1"}, 0x20, kMvt},
    {"EnabledAddedToMixedTeam_ThatHasItEnabled", {L"X"}, {L"X", L"E1"}, 0x20, kMvt},
    {"EnabledAddedToIncapableTeam", {L"N", L"D"}, {L"N", L"D", L"E1"}, 0x10, kUnsupported},
    {"EnabledAddedToIncapableTeam_WinsOverTeamGaining", {L"N"}, {L"E1", L"E2"}, 0x10, kUnsupported},
    {"TeamGainsRss", {L"E1", L"D"}, {L"E1", L"E2"}, 0x1, kNowEnabled},
    {"TeamGainsRss_FromNoTeam", {}, {L"E1", L"E2"}, 0x1, kNowEnabled},
    {"NoChange_WasAndStaysEnabled", {L"E1"}, {L"E1", L"E2"}, 0, kNoChange},
    {"NoChange_WasAndStaysDisabled", {L"D"}, {L"D", L"E1", L"E2"}, 0, kNoChange},
    {"NoChange_IncapableIntoTeamWithoutRss", {L"D", L"E1"}, {L"D", L"E1", L"N"}, 0, kNoChange},
};

INSTANTIATE_TEST_SUITE_P(Cases, RssPrecheckTest, testing::ValuesIn(kRssCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(SettingChecksTest, RssPrecheck_EveryOldAndNewTeamOfThePool_AgreesWithTheTable) {
    // What the table says, from what is known of the pool; bits of a team are its members.
    constexpr unsigned kEnabled = 0b100011, CARRIES = 0b100111, THIRD = 0b110000, PACK = 0b000011;
    const auto expected = [](unsigned before, unsigned after) -> Expected {
        const unsigned added = after & ~before;
        const bool oldEnabled = before != 0 && (before & ~kEnabled) == 0;
        const bool oldCapable = (before & ~CARRIES) == 0;
        if ((after & PACK) == 0) {
            return {0, kNotInstalled};
        }
        if (added == 0) {
            return {0, kOnlyRemoving};
        }
        if ((after & (after - 1)) == 0) {
            return {0, kOneAdapter};
        }
        if (oldEnabled && (added & THIRD)) {
            return {0x8, kThirdParty};
        }
        if (oldEnabled && (added & ~CARRIES)) {
            return {0x4, kNonRss};
        }
        if (oldEnabled && (added & CARRIES & ~kEnabled)) {
            return {0x2, kDisabling};
        }
        if ((added & kEnabled) && (before & THIRD)) {
            return {0x20, kMvt};
        }
        if ((added & kEnabled) && !oldCapable) {
            return {0x10, kUnsupported};
        }
        if ((after & ~kEnabled) == 0 && !oldEnabled) {
            return {0x1, kNowEnabled};
        }
        return {0, kNoChange};
    };
    const auto names = [](unsigned members) {
        Names list;
        for (unsigned i = 0; i < kPool; ++i) {
            if (members & (1u << i)) {
                list.emplace_back(kNames[i]);
            }
        }
        return list;
    };
    std::set<std::string> met;
    for (unsigned before = 0; before < 1u << kPool; ++before) {
        for (unsigned after = 0; after < 1u << kPool; ++after) {
            const auto [warnings, line] = expected(before, after);
            const auto verdict = Precheck(names(before), names(after));
            ASSERT_EQ(verdict, (SettingChecksTest::Verdict{warnings, line})) << before << " -> " << after;
            met.insert(line);
        }
        ForgetCalls();
    }
    EXPECT_EQ(met.size(), 10u) << "every case was met";
}

TEST_F(SettingChecksTest, RssPrecheck_NullEntries_AreNoAdapters) {
    CTeamedAdapters members;
    members.m_vecItems.push_back(nullptr);
    CAdapters wanted;
    Fill(wanted, {L"E1", L"E2"});
    ULONGLONG warnings = 0;
    EXPECT_EQ(Code(quillet.RSS_PrecheckOnTeamModify(members, wanted, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0x1u);
}

TEST_F(SettingChecksTest, RssPrecheck_OneAdapterBesideNullEntries_IsOne) {
    CAdapters wanted;
    wanted.m_vecItems.push_back(nullptr);
    Fill(wanted, {L"E1"});
    wanted.m_vecItems.push_back(nullptr);
    ULONGLONG warnings = 7;
    EXPECT_EQ(Code(quillet.RSS_PrecheckOnTeamModify(CTeamedAdapters(), wanted, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0u);
    EXPECT_THAT(Traced(), Contains(kOneAdapter));
}

TEST_F(SettingChecksTest, RssPrecheck_SettingsUnreadableOrNotConnected_Fails) {
    CTeamedAdapters members;
    CAdapters wanted;
    Fill(members, {L"E1"});
    Fill(wanted, {L"E1", L"N"});
    ULONGLONG warnings = 0x55;
    Fail(Operation::CreateInstanceEnum, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.RSS_PrecheckOnTeamModify(members, wanted, warnings)), "0x80041003");
    EXPECT_EQ(warnings, 0u);
    EXPECT_THAT(Traced(), Contains("GetSettingOnTeamOrAdapter() call FAILED"));
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.RSS_PrecheckOnTeamModify(members, wanted, warnings)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
}

} // namespace
