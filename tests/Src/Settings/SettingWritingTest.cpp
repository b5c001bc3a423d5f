// Writing settings back, and asking teams and VLANs whether a value may be written.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// {A} and {B} are a team, {E} is alone; {A} has a setting of each kind.
constexpr const char* kSettingWritingMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $E { DeviceID = "{E}"; SlotID = "2"; AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; AdapterStatus = 1; };
    instance of Zorel_VLAN { Name = "{V}"; ParentID = "{T}"; VLANName = "Voice"; VLANNumber = 7; };
    instance of Zorel_AdapterSettingInt {
        Caption = "*TransmitBuffers"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 512; DefaultValue = 512;
        Max = 2048; Min = 80; Step = 8; Base = 10; Scale = 1; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "4088", "9014"}; DescriptionMap = {"Disabled", "4088 Bytes", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{B}"; ParentType = "NIC"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "4088"}; DescriptionMap = {"Disabled", "4088 Bytes"}; };
    instance of Zorel_AdapterSettingSlider {
        Caption = "*ReceiveBuffers"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 256; DefaultValue = 256;
        PossibleValues = {"128", "256"}; FirstLabel = "few"; LastLabel = "many"; };
    instance of Zorel_AdapterSettingString {
        Caption = "NetworkAddress"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = ""; DefaultValue = "";
        MaxLength = 12; };
    instance of Zorel_AdapterSettingMultiSelection {
        Caption = "WakeOnEvents"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1; DefaultValue = 1;
        PossibleValues = {"1", "2", "4"}; DescriptionMap = {"one", "two", "four"}; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "WakePatterns"; ParentId = "{A}"; ParentType = "NIC"; CurrentValues = {"x"}; DefaultValue = "";
        MaxLength = 4; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*VMQ"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; DefaultValue = 0;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; FollowupAction = 1; };
    instance of Zorel_AdapterSettingString {
        Caption = "DriverDate"; ParentId = "{A}"; ParentType = "NIC"; Writable = FALSE; CurrentValue = "2011";
        DefaultValue = ""; MaxLength = 10; };
    instance of Zorel_TeamSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{T}"; ParentType = "TEAM"; CurrentValue = 4088; DefaultValue = 1514;
        PossibleValues = {"1514", "4088", "9014"}; DescriptionMap = {"Disabled", "4088 Bytes", "9014 Bytes"}; };
    instance of Zorel_VLANSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{V}"; ParentType = "VLAN"; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "4088", "9014"}; DescriptionMap = {"Disabled", "4088 Bytes", "9014 Bytes"}; };)";

std::wstring AdapterPath(const wchar_t* id) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(id) +
           L"\"";
}

std::wstring SettingPath(const wchar_t* kind, const wchar_t* caption) {
    return L"Zorel_AdapterSetting" + std::wstring(kind) + L".Caption=\"" + caption +
           LR"(",ParentId="{A}",ParentType="NIC")";
}

class SettingWritingTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kSettingWritingMachine);
        Connect();
    }

    /// The one PutInstance since the last call.
    JournalEntry Put() {
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::PutInstance) {
                return call;
            }
        }
        ADD_FAILURE() << "nothing was put";
        return {};
    }

    void ExpectNumberWritten(const wchar_t* kind, const wchar_t* caption, const CSetting& setting,
                             LONG number) {
        SCOPED_TRACE(Narrow(caption));
        const std::wstring path = SettingPath(kind, caption);
        EXPECT_EQ(Code(quillet.SetSetting(path, setting)), "0x00000000");
        const JournalEntry put = Put();
        ASSERT_EQ(put.arguments.size(), 1u);
        EXPECT_EQ(put.arguments[0].name, L"CurrentValue");
        EXPECT_EQ(put.arguments[0].vt, VT_I4);
        EXPECT_EQ(put.flags, 0x20010);
        EXPECT_TRUE(put.hasContext);
        EXPECT_EQ(machine->Store().FindInstance(path)->Number(L"CurrentValue"), number);
    }

    const std::wstring kVlan = LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_VLAN.Name="{V}")";
    const std::wstring kA = AdapterPath(L"{A}");
    const std::wstring kE = AdapterPath(L"{E}");
    bool isTeamed = true;
    ULONGLONG warnings = 77;
};

TEST_F(SettingWritingTest, SetSetting_NumbersOfAllKinds_AreWrittenAs32Bits) {
    CSettingInt number;
    number.SetCurrentValue(LONG(520));
    ExpectNumberWritten(L"Int", L"*TransmitBuffers", number, 520);
    CSettingEnum choice;
    choice.SetCurrentValue(LONG(9014));
    ExpectNumberWritten(L"Enum", L"*JumboPacket", choice, 9014);
    CSettingSlider slider;
    slider.m_lCurrentValue = 128;
    ExpectNumberWritten(L"Slider", L"*ReceiveBuffers", slider, 128);
    CSettingMultiSelection several;
    several.m_lCurrentValue = 5;
    ExpectNumberWritten(L"MultiSelection", L"WakeOnEvents", several, 5);
}

TEST_F(SettingWritingTest, SetSetting_Text_IsWrittenAsText) {
    CSettingString text;
    text.m_wsCurrentValue = L"02005E001122";
    const std::wstring path = SettingPath(L"String", L"NetworkAddress");
    EXPECT_EQ(Code(quillet.SetSetting(path, text)), "0x00000000");
    const JournalEntry put = Put();
    ASSERT_EQ(put.arguments.size(), 1u);
    EXPECT_EQ(put.arguments[0].name, L"CurrentValue");
    EXPECT_EQ(put.arguments[0].vt, VT_BSTR);
    EXPECT_EQ(machine->Store().FindInstance(path)->Text(L"CurrentValue"), L"02005E001122");
}

TEST_F(SettingWritingTest, SetSetting_ListOfTexts_IsWrittenAsArrayOfCurrentValues) {
    CSettingMultiString list;
    list.m_vecCurrentValues = {L"aa", L"", L"b"};
    const std::wstring path = SettingPath(L"MultiString", L"WakePatterns");
    EXPECT_EQ(Code(quillet.SetSetting(path, list)), "0x00000000");
    const JournalEntry put = Put();
    ASSERT_EQ(put.arguments.size(), 1u);
    EXPECT_EQ(put.arguments[0].name, L"CurrentValues");
    EXPECT_EQ(put.arguments[0].vt, VT_ARRAY | VT_BSTR);
    CSettings read;
    ASSERT_EQ(Code(quillet.GetAdapterSettings(kA, read)), "0x00000000");
    const auto* stored = dynamic_cast<const CSettingMultiString*>(read.GetSettingByCaption(L"WakePatterns"));
    ASSERT_NE(stored, nullptr);
    EXPECT_THAT(stored->m_vecCurrentValues, ElementsAre(L"aa", L"", L"b"));
}

TEST_F(SettingWritingTest, SetSetting_StepsAreInOrder) {
    CSettingEnum choice;
    choice.SetCurrentValue(LONG(4088));
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    Called();
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), choice)), "0x00000000");
    const std::vector<std::string> calls = Called();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_THAT(calls[0], StartsWith("GetObject Zorel_AdapterSettingEnum.Caption=\"*JumboPacket\""));
    EXPECT_THAT(calls[0], testing::EndsWith("{ClientSetId=1}"));
    EXPECT_THAT(calls[1], StartsWith("PutInstance "));
    EXPECT_THAT(calls[1], testing::HasSubstr("(CurrentValue=4088)"));
    EXPECT_THAT(calls[1], testing::EndsWith("{ClientSetId=1}"));
    EXPECT_THAT(calls[2], StartsWith("GetCallStatus "));
    EXPECT_THAT(Traced(), testing::AllOf(Contains("Entering CQuillet::SetSetting"),
                                         Contains("Exiting CQuillet::SetSetting")));
}

TEST_F(SettingWritingTest, SetSetting_EmptyPath_IsRefusedWithoutACall) {
    EXPECT_EQ(Code(quillet.SetSetting(L"", CSettingInt())), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsSettingID.empty())"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingWritingTest, SetSetting_NotConnected_Fails) {
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), CSettingEnum())), "0x80041001");
    EXPECT_THAT(Traced(), Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
}

TEST_F(SettingWritingTest, SetSetting_NoSuchInstance_ReturnsTheProvidersCode) {
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*Nothing"), CSettingEnum())), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsSettingID"));
}

/// A setting of a type that no class has.
class SettingOfTypeFive : public CSetting {
  public:
    tagSettingType GetSettingType() const override { return static_cast<tagSettingType>(5); }
};

/// A setting that has no value of the type that it claims.
class SettingWithoutValue : public CSetting {
  public:
    explicit SettingWithoutValue(tagSettingType type) : m_type(type) {}
    tagSettingType GetSettingType() const override { return m_type; }

  private:
    tagSettingType m_type;
};

TEST_F(SettingWritingTest, SetSetting_TypeFive_WritesNothing) {
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), SettingOfTypeFive())),
              "0x80041001");
    EXPECT_TRUE(CallsOf(Operation::PutInstance).empty());
}

TEST_F(SettingWritingTest, SetSetting_WithoutAValueOfItsType_WritesNothing) {
    for (const auto type : {CSetting::SettingTypeInt, CSetting::SettingTypeEnum, CSetting::SettingTypeSlider,
                            CSetting::SettingTypeString, CSetting::SettingTypeMultiSelection,
                            CSetting::SettingTypeMultiString}) {
        EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), SettingWithoutValue(type))),
                  "0x80041001");
        EXPECT_THAT(Traced(), Contains("(rSetting.GetCurrentVal(wsCurrVal))"));
    }
    EXPECT_TRUE(CallsOf(Operation::PutInstance).empty());
}

TEST_F(SettingWritingTest, SetSetting_RefusedValues_AreNamedByTheirKindOfWrite) {
    CSettingEnum choice;
    choice.SetCurrentValue(LONG(9000));
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), choice)), "0x8004102B");
    EXPECT_THAT(Traced(), Contains("SetPropertyAsLong -> pSettingInstance, L_PROP_SETTING_CURRENT_VALUE"));
    CSettingString text;
    text.m_wsCurrentValue = L"0123456789ABC";
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"String", L"NetworkAddress"), text)), "0x8004102B");
    EXPECT_THAT(Traced(), Contains("SetPropertyAsString -> pSettingInstance, L_PROP_SETTING_CURRENT_VALUE"));
    CSettingMultiString list;
    list.m_vecCurrentValues = {L"12345"};
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"MultiString", L"WakePatterns"), list)), "0x8004102B");
    EXPECT_THAT(Traced(), Contains("SetPropertyAsString -> pSettingInstance, L_PROP_SETTING_CURRENT_VALUE"));
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"String", L"DriverDate"), text)), "0x80041023");
}

TEST_F(SettingWritingTest, SetSetting_EachProviderCallFails_ReturnsItsCode) {
    CSettingEnum choice;
    choice.SetCurrentValue(LONG(9014));
    FailEachProviderCall([&] { return quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), choice); });
}

TEST_F(SettingWritingTest, SetSetting_OfASettingThatNeedsARestart_IsReportedByItsSet) {
    CSettingEnum choice;
    choice.SetCurrentValue(LONG(4088));
    bool restart = true;
    quillet.BeginApply();
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*JumboPacket"), choice)), "0x00000000");
    EXPECT_EQ(Code(quillet.ApplyDone(restart)), "0x00000000");
    EXPECT_FALSE(restart);
    choice.SetCurrentValue(LONG(1));
    quillet.BeginApply();
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*VMQ"), choice)), "0x00000000");
    EXPECT_EQ(Code(quillet.ApplyDone(restart)), "0x00000000");
    EXPECT_TRUE(restart);
    quillet.BeginApply();
    EXPECT_EQ(Code(quillet.SetSetting(SettingPath(L"Enum", L"*VMQ"), choice)), "0x00000000");
    EXPECT_EQ(Code(quillet.ApplyDone(restart)), "0x00000000");
    EXPECT_FALSE(restart) << "the value did not change";
}

TEST_F(SettingWritingTest, Validate_AdapterWithoutATeam_SucceedsWithoutAskingTheProvider) {
    EXPECT_EQ(Code(quillet.ValidateSetSetting(kE, isTeamed, L"*JumboPacket", 9014, warnings)), "0x00000000");
    EXPECT_FALSE(isTeamed);
    EXPECT_EQ(warnings, 0u);
    EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
}

TEST_F(SettingWritingTest, Validate_Member_AsksItsTeamWithTheParametersInOrder) {
    isTeamed = false;
    EXPECT_EQ(Code(quillet.ValidateSetSetting(kA, isTeamed, L"*JumboPacket", 9014, warnings)), "0x00000000");
    EXPECT_TRUE(isTeamed);
    EXPECT_EQ(warnings, 0x30u) << "the other member cannot have the value, and has another one";
    const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].target, LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name="{T}")");
    EXPECT_EQ(calls[0].method, L"ValidateSetting");
    ASSERT_EQ(calls[0].arguments.size(), 3u);
    EXPECT_EQ(calls[0].arguments[0].name, L"Adapter");
    EXPECT_EQ(calls[0].arguments[0].vt, VT_BSTR);
    EXPECT_EQ(calls[0].arguments[0].value, quillet::simulator::Value::Text(kA));
    EXPECT_EQ(calls[0].arguments[1].name, L"SettingName");
    EXPECT_EQ(calls[0].arguments[1].vt, VT_BSTR);
    EXPECT_EQ(calls[0].arguments[1].value, quillet::simulator::Value::Text(L"*JumboPacket"));
    EXPECT_EQ(calls[0].arguments[2].name, L"Value");
    EXPECT_EQ(calls[0].arguments[2].vt, VT_I4);
    EXPECT_EQ(calls[0].arguments[2].value, quillet::simulator::Value::Signed(9014));
}

TEST_F(SettingWritingTest, Validate_Failures_AreNamed) {
    struct {
        Operation operation;
        const wchar_t* target;
        unsigned nth;
        const char* line;
    } const steps[] = {
        {Operation::ExecQuery, L"", 1, "EnumerateOtherPortOfAdapter() call FAILED"},
        {Operation::GetObject, L"Zorel_TeamOfAdapters", 1, "GetObject -> L_CLASS_ZOREL_TEAMOFADAPTERS"},
        {Operation::GetMethod, L"", 1, "GetMethod -> L_METHOD_TEAMOFADAPTERS_VALIDATESETTING"},
        {Operation::Put, L"Adapter", 1, "Put -> L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_ADAPTERID"},
        {Operation::Put, L"SettingName", 1, "Put -> L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGNAME"},
        {Operation::Put, L"Value", 1, "Put -> L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGVALUE"},
        {Operation::ExecMethod, L"", 1, "ExecMethod -> wsTeamID, L_METHOD_TEAMOFADAPTERS_VALIDATESETTING"},
        {Operation::Get, L"ValResult", 1,
         "GetPropertyAsLong -> pWbemClassObject_OutParams, L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_RESULT"},
    };
    for (const auto& step : steps) {
        Fail(step.operation, WBEM_E_ACCESS_DENIED, step.target, step.nth);
        EXPECT_EQ(Code(quillet.ValidateSetSetting(kA, isTeamed, L"*JumboPacket", 9014, warnings)),
                  "0x80041003")
            << step.line;
        EXPECT_EQ(warnings, 0u) << step.line;
        EXPECT_THAT(Traced(), Contains(step.line));
        machine->Rules().Clear();
    }
    FailEachProviderCall(
        [&] { return quillet.ValidateSetSetting(kA, isTeamed, L"*JumboPacket", 9014, warnings); });
}

TEST_F(SettingWritingTest, Validate_EmptyIdentifierOrNoConnection_Fails) {
    EXPECT_EQ(Code(quillet.ValidateSetSetting(L"", isTeamed, L"*JumboPacket", 9014, warnings)), "0x80004005");
    EXPECT_FALSE(isTeamed);
    EXPECT_EQ(warnings, 0u);
    EXPECT_THAT(Traced(), Contains("EnumerateOtherPortOfAdapter() call FAILED"));
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.ValidateSetSetting(kA, isTeamed, L"*JumboPacket", 9014, warnings)), "0x80041001");
}

TEST_F(SettingWritingTest, ValidateOnVlan_Path_IsAskedWithTheParametersInOrder) {
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 9014, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0x40u) << "larger than the team's";
    const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].target, kVlan);
    EXPECT_EQ(calls[0].method, L"ValidateSetting");
    ASSERT_EQ(calls[0].arguments.size(), 2u);
    EXPECT_EQ(calls[0].arguments[0].name, L"SettingName");
    EXPECT_EQ(calls[0].arguments[0].vt, VT_BSTR);
    EXPECT_EQ(calls[0].arguments[0].value, quillet::simulator::Value::Text(L"*JumboPacket"));
    EXPECT_EQ(calls[0].arguments[1].name, L"Value");
    EXPECT_EQ(calls[0].arguments[1].vt, VT_I4);
    EXPECT_EQ(calls[0].arguments[1].value, quillet::simulator::Value::Signed(9014));
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 4088, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0u);
}

TEST_F(SettingWritingTest, ValidateOnVlan_ObjectId_IsTheVlanOfThatIdOnThisComputer) {
    quillet.UninitQuillet();
    UseText(kSettingWritingMachine, {});
    Connect();
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(L"{V}", L"*JumboPacket", 9014, warnings)), "0x00000000");
    EXPECT_EQ(warnings, 0x40u);
    const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].target,
              L"\\\\" + machine->Store().ServerName() + LR"(\ROOT\MarloLUM2:Zorel_VLAN.Name="{V}")");
}

TEST_F(SettingWritingTest, ValidateOnVlan_EmptyId_IsRefusedInTheWordsForAnAdapter) {
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(L"", L"*JumboPacket", 1514, warnings)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("(wsAdapterID.empty())"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SettingWritingTest, ValidateOnVlan_NoOutParameters_IsNamed) {
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 1514, warnings)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("Outparam of method is NULL"));
}

TEST_F(SettingWritingTest, ValidateOnVlan_Failures_AreNamed) {
    FailEachProviderCall(
        [&] { return quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 1514, warnings); });
    Fail(Operation::ExecMethod, WBEM_E_FAILED);
    quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 1514, warnings);
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsVlanID, L_METHOD_VLAN_VALIDATESETTING"));
    machine->Rules().Clear();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"ValResult");
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 1514, warnings)), "0x80041003");
    EXPECT_THAT(
        Traced(),
        Contains("GetPropertyAsUINT64 -> pWbemClassObject_OutParams, L_PARAM_VLAN_VALIDATESETTING_RESULT"));
    machine->Rules().Clear();
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.ValidateSetSettingOnVlan(kVlan, L"*JumboPacket", 1514, warnings)), "0x80041001");
}

} // namespace
