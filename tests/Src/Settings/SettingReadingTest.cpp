// Reading advanced settings: the queries, the kinds, and the single settings that are looked up by name.
#include "ProviderTest.h"

#include <LumString.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// One setting of each kind in the order of the readers, with two odd classes: one whose name holds two of the
// kinds, and one of no kind that is known.
constexpr const char* kSettings = R"(
    class Zorel_AdapterSettingIntEnum : Zorel_AdapterSetting {
        sint32 CurrentValue; sint32 DefaultValue; sint32 Max; sint32 Min; sint32 Step; sint32 Base; sint32 Scale;
        string DescriptionMap[]; string PossibleValues[]; };
    class Zorel_AdapterSettingPicture : Zorel_AdapterSetting { string CurrentValue; };
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
    instance of Zorel_AdapterSettingInt {
        Caption = "Padding"; ParentId = "{A}"; ParentType = "NIC"; Description = "Padding bytes"; MiniHelp = "Help";
        ExposeLevel = 3; Writable = TRUE; Grouped = TRUE; GroupId = 7;
        CurrentValue = -5; DefaultValue = 2; Max = 30; Min = -10; Step = 5; Base = 10; Scale = 1; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "Patterns"; ParentId = "{A}"; ParentType = "NIC"; Writable = FALSE; Grouped = FALSE; GroupId = 9;
        CurrentValues = {"x", "", "z"}; DefaultValue = "d"; MaxLength = 64; };
    instance of Zorel_AdapterSettingPicture { Caption = "Picture"; ParentId = "{A}"; ParentType = "NIC"; };
    instance of Zorel_AdapterSettingString {
        Caption = "NetworkAddress"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = "02"; DefaultValue = "";
        MaxLength = 12; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*SpeedDuplex"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 4; DefaultValue = 0;
        PossibleValues = {"0", "4"}; DescriptionMap = {"Auto", "100 full"}; };
    instance of Zorel_AdapterSettingSlider {
        Caption = "*ReceiveBuffers"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 256; DefaultValue = 128;
        PossibleValues = {"80", "256", "many"}; FirstLabel = "few"; LastLabel = "many"; };
    instance of Zorel_AdapterSettingMultiSelection {
        Caption = "Offloads"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 3; DefaultValue = 1;
        PossibleValues = {"1", "2"}; DescriptionMap = {"one", "two"}; };
    instance of Zorel_AdapterSettingIntEnum {
        Caption = "Both"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1; Max = 1; Min = 1;
        Step = 1; Base = 10; Scale = 1; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{B}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514"}; DescriptionMap = {"Off"}; };)";
constexpr const wchar_t* kSettingReadingAdapter =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";

class SettingReadingTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kSettings);
        Connect();
    }
    /// The query texts since the last call.
    std::vector<std::string> Queries() {
        std::vector<std::string> texts;
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::ExecQuery) {
                texts.push_back(Narrow(call.target));
            }
        }
        return texts;
    }
    template <class Setting>
    const Setting& At(std::size_t index) const {
        return dynamic_cast<const Setting&>(*settings.m_vecItems.at(index));
    }

    CSettings settings;
};

TEST_F(SettingReadingTest, AdapterSettings_ReadsEveryKindInTheProvidersOrder) {
    EXPECT_EQ(Code(quillet.GetAdapterSettings(kSettingReadingAdapter, settings)), "0x00000000");
    ASSERT_EQ(settings.m_vecItems.size(), 7u);

    const auto& number = At<CSettingInt>(0);
    EXPECT_EQ(number.m_wsCaption, L"Padding");
    EXPECT_EQ(number.m_wsDescription, L"Padding bytes");
    EXPECT_EQ(number.m_wsMiniHelp, L"Help");
    EXPECT_EQ(number.m_wsExposeLevel, L"3");
    EXPECT_TRUE(number.m_bWritable);
    EXPECT_TRUE(number.m_bGrouped);
    EXPECT_EQ(number.m_lGroupId, 7);
    EXPECT_THAT(Narrow(number.m_wsPath),
                testing::StartsWith(R"(\\TESTHOST\ROOT\MarloLUM2:Zorel_AdapterSettingInt.)"));
    EXPECT_EQ(number.m_lCurrentValue, -5);
    EXPECT_EQ(number.m_lDefaultValue, 2);
    EXPECT_EQ(number.m_lMax, 30);
    EXPECT_EQ(number.m_lMin, -10);
    EXPECT_EQ(number.m_lStep, 5);
    EXPECT_EQ(number.m_lBase, 10);
    EXPECT_EQ(number.m_lScale, 1);

    const auto& list = At<CSettingMultiString>(1);
    EXPECT_THAT(list.m_vecCurrentValues, ElementsAre(L"x", L"", L"z"));
    EXPECT_EQ(list.m_wsDefaultValue, L"d");
    EXPECT_EQ(list.m_wsMaxLength, L"64");
    EXPECT_FALSE(list.m_bWritable);
    EXPECT_EQ(list.m_lGroupId, 0); // not grouped: the number is not read

    const auto& text = At<CSettingString>(2);
    EXPECT_EQ(text.m_wsCurrentValue, L"02");
    EXPECT_EQ(text.m_wsDefaultValue, L"");
    EXPECT_EQ(text.m_wsMaxLength, L"12");

    const auto& choice = At<CSettingEnum>(3);
    EXPECT_EQ(choice.m_lCurrentValue, 4);
    EXPECT_THAT(choice.m_vecPossibleValues, ElementsAre(L"0", L"4"));
    EXPECT_THAT(choice.m_vecDescriptionMap, ElementsAre(L"Auto", L"100 full"));

    const auto& slider = At<CSettingSlider>(4);
    EXPECT_EQ(slider.m_lCurrentValue, 256);
    EXPECT_EQ(slider.m_lDefaultValue, 128);
    EXPECT_THAT(slider.m_vecPossibleValues, ElementsAre(80, 256, 0));
    EXPECT_EQ(slider.m_wsFirstLabel, L"few");
    EXPECT_EQ(slider.m_wsLastLabel, L"many");

    const auto& several = At<CSettingMultiSelection>(5);
    EXPECT_EQ(several.m_lCurrentValue, 3);
    EXPECT_THAT(several.m_vecPossibleValues, ElementsAre(L"1", L"2"));
    EXPECT_THAT(several.m_vecDescriptionMap, ElementsAre(L"one", L"two"));

    EXPECT_EQ(At<CSettingInt>(6).m_wsCaption, L"Both"); // "Int" comes first
    EXPECT_THAT(Traced(), Contains("PROBLEMZorel_AdapterSettingPicture"));
}

TEST_F(SettingReadingTest, AdapterSettings_QueryTextAndContext_AreExact) {
    EXPECT_EQ(Code(quillet.GetAdapterSettings(kSettingReadingAdapter, settings)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[0].operation, Operation::ExecQuery);
    EXPECT_EQ(calls[0].target, LR"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}")");
    EXPECT_EQ(calls[0].flags, 0);
    ASSERT_NE(calls[0].ContextValue(L"Zorel_PartialData"), nullptr);
    EXPECT_EQ(calls[0].ContextValue(L"Zorel_PartialData")->value, quillet::simulator::Value::Signed(-1));
    EXPECT_THAT(Traced(), Contains(R"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}")"));
}

TEST_F(SettingReadingTest, AdapterVmqSettings_AsksForThatSubset) {
    EXPECT_EQ(Code(quillet.GetAdapterVmqSettings(CLumString(kSettingReadingAdapter), settings)),
              "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls[0].ContextValue(L"Zorel_PartialData")->value, quillet::simulator::Value::Signed(256));
}

TEST_F(SettingReadingTest, GenericQuery_WithACaption_AddsTheClauseWithItsOwnBlanks) {
    EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"Zorel_AdapterSetting", L"{A}", L"*SpeedDuplex",
                                                        settings)),
              "0x00000000");
    EXPECT_THAT(
        Queries(),
        ElementsAre(
            R"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}" AND Caption= "*SpeedDuplex")"));
    ASSERT_EQ(settings.m_vecItems.size(), 1u);
    EXPECT_EQ(settings.m_vecItems[0]->m_wsCaption, L"*SpeedDuplex");
}

TEST_F(SettingReadingTest, GenericQuery_EmptyClassOrParent_IsRefusedWithoutACall) {
    EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"", L"{A}", L"", settings)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"Zorel_AdapterSetting", L"", L"", settings)),
              "0x80004005");
    EXPECT_THAT(Traced(), Contains("FillSettings -> Parameter Invalid"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingReadingTest, GenericQuery_ReaderFailsOnTheThird_KeepsTheFirstTwo) {
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"Caption", 3);
    EXPECT_EQ(Code(quillet.GetAdapterSettings(kSettingReadingAdapter, settings)), "0x80041003");
    EXPECT_EQ(settings.m_vecItems.size(), 2u);
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("GetStringSetting"));
    EXPECT_THAT(trace, Contains("Error for -> L_CLASS_ZOREL_ADAPTER_SETTING"));
}

TEST_F(SettingReadingTest, GenericQuery_ClassOrPathUnreadable_EndsWithThatCode) {
    for (const wchar_t* property : {L"__CLASS", L"__PATH"}) {
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, property);
        EXPECT_EQ(Code(quillet.GetAdapterSettings(kSettingReadingAdapter, settings)), "0x80041003")
            << Narrow(property);
        EXPECT_TRUE(settings.m_vecItems.empty());
        machine->Rules().Clear();
    }
}

TEST_F(SettingReadingTest, GenericQuery_Refused_IsTraced) {
    Fail(Operation::ExecQuery, WBEM_E_INVALID_QUERY);
    EXPECT_EQ(Code(quillet.GetAdapterSettings(kSettingReadingAdapter, settings)), "0x80041017");
    EXPECT_THAT(Traced(), Contains("Failed ExecQuery:"));
}

TEST_F(SettingReadingTest, Owners_EachCallFailing_ReturnsItsCode) {
    FailEachProviderCall([&] { return quillet.GetAdapterSettings(kSettingReadingAdapter, settings); });
}

TEST_F(SettingReadingTest, Owners_EmptyIdentifier_IsRefusedWithItsOwnText) {
    EXPECT_EQ(Code(quillet.GetAdapterSettings(L"", settings)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsAdapterID.empty())"));
    EXPECT_EQ(Code(quillet.GetTeamSettings(L"", settings)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsTeamID.empty())"));
    EXPECT_EQ(Code(quillet.GetVlanSettings(L"", settings)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsVlanID.empty())"));
    EXPECT_EQ(Code(quillet.GetBootAgentSettings(L"", settings)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsBootAgentID.empty())"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingReadingTest, Owners_TextThatIsNoPath_IsRefusedAfterEmptyingTheCollection) {
    settings.m_vecItems.push_back(new CSettingInt);
    EXPECT_EQ(Code(quillet.GetAdapterSettings(L"no path", settings)), "0x80004005");
    EXPECT_TRUE(settings.m_vecItems.empty());
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingReadingTest, Owners_OfTheShippedMachine_ReadTheirOwnClass) {
    Use(Machine::BuiltIn(Options()));
    Connect();
    using Read = std::function<HRESULT(const std::wstring&, CSettings&)>;
    const struct {
        const wchar_t* ownerClass;
        const wchar_t* settingClass;
        const wchar_t* key;
        Read read;
    } owners[] = {
        {L"Zorel_PhysicalEthernetAdapter", L"Zorel_AdapterSetting", L"DeviceID",
         [this](const std::wstring& id, CSettings& all) { return quillet.GetAdapterSettings(id, all); }},
        {L"Zorel_TeamOfAdapters", L"Zorel_TeamSetting", L"Name",
         [this](const std::wstring& id, CSettings& all) { return quillet.GetTeamSettings(id, all); }},
        {L"Zorel_VLAN", L"Zorel_VLANSetting", L"Name",
         [this](const std::wstring& id, CSettings& all) { return quillet.GetVlanSettings(id, all); }},
        {L"Zorel_BootAgent", L"Zorel_BootAgentSetting", L"Name",
         [this](const std::wstring& id, CSettings& all) { return quillet.GetBootAgentSettings(id, all); }},
    };
    for (const auto& owner : owners) {
        const auto instances = machine->Store().Instances(owner.ownerClass);
        ASSERT_FALSE(instances.empty()) << Narrow(owner.ownerClass);
        std::size_t expected = 0;
        for (const auto& setting : machine->Store().Instances(owner.settingClass)) {
            if (setting->Text(L"ParentId") == instances[0]->Text(owner.key)) {
                ++expected;
            }
        }
        EXPECT_GT(expected, 0u);
        EXPECT_EQ(Code(owner.read(machine->Store().FullPath(*instances[0]), settings)), "0x00000000");
        EXPECT_EQ(settings.m_vecItems.size(), expected) << Narrow(owner.settingClass);
    }
}

TEST_F(SettingReadingTest, SpeedDuplex_CopiesTheFoundSetting) {
    CSettingEnum setting;
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(kSettingReadingAdapter, setting, true)), "0x00000000");
    EXPECT_EQ(setting.m_wsCaption, L"*SpeedDuplex");
    EXPECT_EQ(setting.m_lCurrentValue, 4);
    EXPECT_EQ(setting.m_vecPossibleValues.size(), 2u);
}

TEST_F(SettingReadingTest, SpeedDuplex_NoSuchSetting_IsNotFoundAndLeavesTheEmptiedOutput) {
    CSettingEnum setting;
    setting.m_wsCaption = L"old";
    setting.m_lGroupId = 4;
    setting.m_bWritable = true;
    setting.m_lCurrentValue = 9;
    setting.m_vecPossibleValues = {L"9"};
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(kSettingReadingAdapter, setting, false)), "0x80041002");
    EXPECT_EQ(setting.m_wsCaption, L"");
    EXPECT_EQ(setting.m_lGroupId, 0);
    EXPECT_FALSE(setting.m_bWritable);
    EXPECT_EQ(setting.m_lCurrentValue, 0);
    EXPECT_THAT(setting.m_vecPossibleValues, ElementsAre(L"9"));
}

TEST_F(SettingReadingTest, SpeedDuplex_BadIdentifiersAndFailedQuery_AreNamed) {
    CSettingEnum setting;
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(L"", setting, true)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetSpeedDuplexSetting() - adapter guid is invalid."));
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(L"no path", setting, true)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetSpeedDuplexSetting() - unable to get the device's guid."));
    Fail(Operation::ExecQuery, WBEM_E_FAILED);
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(kSettingReadingAdapter, setting, true)), "0x80041001");
    EXPECT_THAT(Traced(),
                Contains("GetSpeedDuplexSetting() - call to GetSettingFromClassOnAdapter() failed."));
}

TEST_F(SettingReadingTest, Refresh_ReadsTheSettingAgainInPlace) {
    CSettingEnum setting;
    setting.m_wsCaption = L"*SpeedDuplex";
    setting.m_vecPossibleValues = {L"stale"};
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), &setting)), "0x00000000");
    EXPECT_EQ(setting.m_lCurrentValue, 4);
    EXPECT_THAT(setting.m_vecPossibleValues, ElementsAre(L"0", L"4"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls[0].operation, Operation::GetObject);
    EXPECT_EQ(calls[0].target,
              L"Zorel_AdapterSettingEnum.Caption='*SpeedDuplex',ParentId='{A}',ParentType='NIC'");
    EXPECT_EQ(calls[0].flags, 0);
}

TEST_F(SettingReadingTest, Refresh_BadArguments_FailWithoutTouchingTheProvider) {
    CSettingInt number;
    CSettingEnum unnamed;
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), nullptr)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetAdapterSettingAsync() -> setting is invalid"));
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L""), &unnamed)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetAdapterSettingAsync() -> adapter guid is invalid"));
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), &number)), "0x80004005");
    EXPECT_THAT(Traced(),
                Contains("GetAdapterSettingAsync() -> this function currenlty only support ENUM settings."));
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), &unnamed)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetAdapterSettingAsync() -> setting name is invalid."));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingReadingTest, Refresh_NotConnectedOrRefused_IsNamed) {
    CSettingEnum setting;
    setting.m_wsCaption = L"Nobody";
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), &setting)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetAdapterSettingAsync() -> call to GetObject failed."));
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.GetAdapterSettingAsync(CLumString(L"{A}"), &setting)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetAdapterSettingAsync() - IWbemServices or IWbemContext is invalid"));
}

TEST_F(SettingReadingTest, OnTeamOrAdapter_CollectsTheSettingOfTheListedAdapters) {
    bool onAll = true;
    EXPECT_EQ(Code(QuilletTestAccess::GetSettingOnTeamOrAdapter(quillet, {kSettingReadingAdapter, L"{B}"},
                                                                settings, onAll, SettingName::SpeedDuplex)),
              "0x00000000");
    EXPECT_FALSE(onAll); // only one of the two has it
    ASSERT_EQ(settings.m_vecItems.size(), 1u);
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("Pass 1"));
    EXPECT_THAT(trace, Contains("Pass count"));

    settings.RemoveAll();
    EXPECT_EQ(Code(QuilletTestAccess::GetSettingOnTeamOrAdapter(quillet, {kSettingReadingAdapter}, settings,
                                                                onAll, SettingName::SpeedDuplex)),
              "0x00000000");
    EXPECT_TRUE(onAll);
}

TEST_F(SettingReadingTest, OnTeamOrAdapter_NotConnected_Fails) {
    quillet.UninitQuillet();
    bool onAll = true;
    EXPECT_EQ(Code(QuilletTestAccess::GetSettingOnTeamOrAdapter(quillet, {kSettingReadingAdapter}, settings,
                                                                onAll, SettingName::RssMode)),
              "0x80041001");
    EXPECT_FALSE(onAll);
}

} // namespace
