// What the simulated provider lets a client write: settings of every kind, and power options; and what a team
// or a VLAN says before.
#include "ComFixture.h"

using ATL::CComPtr;

namespace {

constexpr const char* kMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
    instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; };
    instance of Zorel_PhysicalEthernetAdapter as $C { DeviceID = "{C}"; };
    instance of Zorel_PhysicalEthernetAdapter as $D { DeviceID = "{D}"; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $C; };
    instance of Zorel_VLAN { Name = "{V}"; ParentID = "{T}"; VLANName = "v"; VLANNumber = 7; };
    instance of Zorel_AdapterSettingInt {
        Caption = "Int"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 80; Max = 160; Min = 80; Step = 8; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "Enum"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; PossibleValues = {"0", "-3", "x"};
        FollowupAction = 2; };
    instance of Zorel_AdapterSettingSlider {
        Caption = "Slider"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 5; PossibleValues = {"5", "9"}; };
    instance of Zorel_AdapterSettingMultiSelection {
        Caption = "Several"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; PossibleValues = {"1", "4"}; };
    instance of Zorel_AdapterSettingString {
        Caption = "Text"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = ""; MaxLength = 3; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "Texts"; ParentId = "{A}"; ParentType = "NIC"; CurrentValues = {"a"}; MaxLength = 3; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "Fixed"; ParentId = "{A}"; ParentType = "NIC"; Writable = FALSE; CurrentValue = 0;
        PossibleValues = {"0", "1"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1514;
        PossibleValues = {"1514", "4088", "9014"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{B}"; ParentType = "NIC"; CurrentValue = 4088;
        PossibleValues = {"1514", "4088"}; };
    instance of Zorel_TeamSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{T}"; ParentType = "TEAM"; CurrentValue = 4088;
        PossibleValues = {"1514", "4088"}; };
    instance of Zorel_VLANSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{V}"; ParentType = "VLAN"; CurrentValue = 1514;
        PossibleValues = {"1514", "4088", "9014"}; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{A}"; SavePowerNowEnabled = 0; SmartPowerDown = 1; WakeOnMagicPacket = 0; };)";

class WrittenSettings : public ComTest {
  protected:
    void SetUp() override {
        Use(kMachine);
        Connect();
    }

    static std::wstring Path(const wchar_t* kind, const wchar_t* caption, const wchar_t* owner = L"{A}") {
        return L"Zorel_AdapterSetting" + std::wstring(kind) + L".Caption=\"" + caption + L"\",ParentId=\"" +
               owner + L"\",ParentType=\"NIC\"";
    }
    std::string Write(const std::wstring& path, const wchar_t* property, _variant_t value, LONG flags = 0) {
        const auto object = Object(path.c_str());
        EXPECT_EQ(Put(object, property, value), S_OK);
        return Code(services->PutInstance(object, flags, nullptr, nullptr));
    }
    static LONG Number(IWbemClassObject* object, const wchar_t* name) {
        const _variant_t value = Get(object, name);
        EXPECT_EQ(value.vt, VT_I4) << Narrow(name);
        return value.vt == VT_I4 ? V_I4(&value) : -99;
    }
    std::int64_t Stored(const std::wstring& path) {
        return machine->Store().FindInstance(path)->Number(L"CurrentValue", -99);
    }
    ULONGLONG Ask(const wchar_t* path, const wchar_t* className,
                  std::initializer_list<std::pair<const wchar_t*, _variant_t>> parameters,
                  const char* expected = "0x00000000") {
        const auto in = InParameters(className, L"ValidateSetting");
        for (const auto& [name, value] : parameters) {
            EXPECT_EQ(Put(in, name, value), S_OK);
        }
        EXPECT_EQ(ExecMethod(path, L"ValidateSetting", in, out), expected);
        return out ? std::wcstoull(_bstr_t(Get(out, L"ValResult")), nullptr, 10) : 0;
    }
    ULONGLONG AskTeam(const wchar_t* adapter, const wchar_t* caption, LONG value,
                      const char* expected = "0x00000000") {
        const std::wstring path =
            L"Zorel_PhysicalEthernetAdapter.DeviceID=\"" + std::wstring(adapter) + L"\"";
        return Ask(LR"(Zorel_TeamOfAdapters.Name="{T}")", L"Zorel_TeamOfAdapters",
                   {{L"Adapter", path.c_str()}, {L"SettingName", caption}, {L"Value", I4(value)}}, expected);
    }
    ULONGLONG AskVlan(const wchar_t* caption, LONG value) {
        return Ask(LR"(Zorel_VLAN.Name="{V}")", L"Zorel_VLAN",
                   {{L"SettingName", caption}, {L"Value", I4(value)}});
    }
    std::string Power(const wchar_t* adapter, const wchar_t* method,
                      std::initializer_list<std::pair<const wchar_t*, LONG>> parameters) {
        const std::wstring path =
            L"Zorel_PhysicalEthernetAdapter.DeviceID=\"" + std::wstring(adapter) + L"\"";
        CComPtr<IWbemClassObject> in;
        if (parameters.size() != 0) {
            in = InParameters(L"Zorel_PhysicalEthernetAdapter", method);
            for (const auto& [name, value] : parameters) {
                EXPECT_EQ(Put(in, name, I4(value)), S_OK);
            }
        }
        return ExecMethod(path.c_str(), method, in, out);
    }
    std::int64_t Option(const wchar_t* name) {
        return machine->Store().FindInstance(LR"(Zorel_PowerConfiguration.DeviceID="{A}")")->Number(name, -1);
    }

    CComPtr<IWbemClassObject> out;
};

TEST_F(WrittenSettings, AnInteger_KeepsItsBoundsAndSteps) {
    const auto path = Path(L"Int", L"Int");
    EXPECT_EQ(Write(path, L"CurrentValue", I4(160)), "0x00000000");
    for (const int value : {72, 79, 81, 168}) {
        EXPECT_EQ(Write(path, L"CurrentValue", I4(value)), "0x8004102B") << value;
    }
    EXPECT_EQ(Stored(path), 160);
    EXPECT_EQ(Write(path, L"CurrentValue", I4(88)), "0x00000000");
    EXPECT_EQ(Stored(path), 88);
}

TEST_F(WrittenSettings, AnEnumerationAndASlider_KnowTheirValues) {
    EXPECT_EQ(Write(Path(L"Enum", L"Enum"), L"CurrentValue", I4(-3)), "0x00000000");
    EXPECT_EQ(Write(Path(L"Enum", L"Enum"), L"CurrentValue", I4(3)), "0x8004102B");
    EXPECT_EQ(Stored(Path(L"Enum", L"Enum")), -3);
    EXPECT_EQ(Write(Path(L"Slider", L"Slider"), L"CurrentValue", I4(9)), "0x00000000");
    EXPECT_EQ(Write(Path(L"Slider", L"Slider"), L"CurrentValue", I4(7)), "0x8004102B");
    EXPECT_EQ(Stored(Path(L"Slider", L"Slider")), 9);
}

TEST_F(WrittenSettings, ASelection_TakesAnyOfItsBits) {
    const auto path = Path(L"MultiSelection", L"Several");
    for (const int bits : {0, 1, 4, 5}) {
        EXPECT_EQ(Write(path, L"CurrentValue", I4(bits)), "0x00000000") << bits;
    }
    for (const int bits : {2, 3, 8, -1}) {
        EXPECT_EQ(Write(path, L"CurrentValue", I4(bits)), "0x8004102B") << bits;
    }
    EXPECT_EQ(Stored(path), 5);
}

TEST_F(WrittenSettings, Texts_KeepTheirLength) {
    EXPECT_EQ(Write(Path(L"String", L"Text"), L"CurrentValue", L"abc"), "0x00000000");
    EXPECT_EQ(Write(Path(L"String", L"Text"), L"CurrentValue", L"abcd"), "0x8004102B");
    EXPECT_EQ(machine->Store().FindInstance(Path(L"String", L"Text"))->Text(L"CurrentValue"), L"abc");
    EXPECT_EQ(Write(Path(L"MultiString", L"Texts"), L"CurrentValues", TextArray({L"", L"abc"})),
              "0x00000000");
    EXPECT_EQ(Write(Path(L"MultiString", L"Texts"), L"CurrentValues", TextArray({L"a", L"abcd"})),
              "0x8004102B");
}

TEST_F(WrittenSettings, OneThatIsReadOnlyOrWithoutItsValue_IsRefused) {
    EXPECT_EQ(Write(Path(L"Enum", L"Fixed"), L"CurrentValue", I4(1)), "0x80041023");
    EXPECT_EQ(Stored(Path(L"Enum", L"Fixed")), 0);
    _variant_t null;
    null.vt = VT_NULL;
    EXPECT_EQ(Write(Path(L"Enum", L"Enum"), L"CurrentValue", null), "0x80041028");
}

TEST_F(WrittenSettings, NothingButTheValueMayChange) {
    const auto path = Path(L"Int", L"Int");
    const auto object = Object(path.c_str());
    EXPECT_EQ(Put(object, L"CurrentValue", I4(96)), S_OK);
    EXPECT_EQ(Put(object, L"Max", I4(100000)), S_OK);
    EXPECT_EQ(Code(services->PutInstance(object, 0, nullptr, nullptr)), "0x80041023");
    EXPECT_EQ(Stored(path), 80);
    EXPECT_EQ(machine->Store().FindInstance(path)->Number(L"Max"), 160);
}

TEST_F(WrittenSettings, NoneIsMadeOrRemovedByAClient) {
    const auto object = Object(Path(L"Int", L"Int").c_str());
    EXPECT_EQ(Code(services->PutInstance(object, WBEM_FLAG_CREATE_ONLY, nullptr, nullptr)), "0x80041019");
    EXPECT_EQ(Put(object, L"Caption", L"Other"), S_OK);
    EXPECT_EQ(Code(services->PutInstance(object, WBEM_FLAG_UPDATE_ONLY, nullptr, nullptr)), "0x80041002");
    EXPECT_EQ(Code(services->PutInstance(object, 0, nullptr, nullptr)), "0x80041024");
    EXPECT_EQ(
        Code(services->DeleteInstance(_bstr_t(Path(L"Int", L"Int").c_str()).GetBSTR(), 0, nullptr, nullptr)),
        "0x80041024");
    EXPECT_NE(machine->Store().FindInstance(Path(L"Int", L"Int")), nullptr);
}

TEST_F(WrittenSettings, AChangeLeavesItsFollowUp_TheSameValueDoesNot) {
    const auto followUp = [&] {
        const auto in = InParameters(L"Zorel_NetService", L"Apply");
        Put(in, L"ClientSetHandle", I4(0));
        CComPtr<IWbemClassObject> answer;
        EXPECT_EQ(Code(services->ExecMethod(_bstr_t(L"Zorel_NetService").GetBSTR(),
                                            _bstr_t(L"Apply").GetBSTR(), 0, nullptr, in, &answer, nullptr)),
                  "0x00000000");
        return Number(answer, L"FollowupAction");
    };
    EXPECT_EQ(Write(Path(L"Enum", L"Enum"), L"CurrentValue", I4(0)), "0x00000000");
    EXPECT_EQ(followUp(), 0);
    EXPECT_EQ(Write(Path(L"Enum", L"Enum"), L"CurrentValue", I4(-3)), "0x00000000");
    EXPECT_EQ(followUp(), 2);
    EXPECT_EQ(followUp(), 0);
}

TEST_F(WrittenSettings, ATeamSaysWhatSpeaksAgainstAMembersValue) {
    EXPECT_EQ(AskTeam(L"{A}", L"*JumboPacket", 4088), 0x8u) << "{C} has no such setting";
    EXPECT_EQ(AskTeam(L"{A}", L"*jumbopacket", 9014), 0x8u | 0x10 | 0x20) << "and {B} cannot have it";
    EXPECT_EQ(AskTeam(L"{A}", L"*JumboPacket", 5), 0x4u | 0x8 | 0x10 | 0x20);
    EXPECT_EQ(AskTeam(L"{C}", L"*JumboPacket", 4088), 0x1u | 0x20);
    EXPECT_EQ(AskTeam(L"{A}", L"Fixed", 1), 0x2u | 0x8);
    EXPECT_EQ(AskTeam(L"{D}", L"*JumboPacket", 1514, "0x8004102F"), 0u) << "no member";
    EXPECT_EQ(AskTeam(L"{A}", L"Text", 1), 0x4u | 0x8) << "a number is no text";
}

TEST_F(WrittenSettings, AVlanSaysWhatSpeaksAgainstItsValue) {
    EXPECT_EQ(AskVlan(L"*JumboPacket", 4088), 0u);
    EXPECT_EQ(AskVlan(L"*JumboPacket", 9014), 0x40u) << "larger than the team's";
    EXPECT_EQ(AskVlan(L"*JumboPacket", 5), 0x4u);
    EXPECT_EQ(AskVlan(L"Nothing", 1), 0x1u);
    Ask(L"Zorel_VLAN", L"Zorel_VLAN", {}, "0x8004102F");
    EXPECT_EQ(out.p, nullptr) << "the class has no settings";
}

TEST_F(WrittenSettings, AnEnumerationWithoutPossibleValuesTakesNone) {
    Use(std::string(kMachine) + R"(instance of Zorel_AdapterSettingEnum {
        Caption = "Unfinished"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; };)");
    Connect();
    EXPECT_EQ(Write(Path(L"Enum", L"Unfinished"), L"CurrentValue", I4(1)), "0x8004102B");
    EXPECT_EQ(Stored(Path(L"Enum", L"Unfinished")), 0);
}

TEST_F(WrittenSettings, PowerOptionsAreToldAndWhatAPortLacksIsNull) {
    EXPECT_EQ(Power(L"{A}", L"GetPowerUsageOptions", {}), "0x00000000");
    EXPECT_EQ(Number(out, L"SmartPowerDown"), 1);
    EXPECT_EQ(Get(out, L"ACBSMode").vt, VT_NULL);
    EXPECT_EQ(Number(out, L"ReturnValue"), 0);
    EXPECT_EQ(Power(L"{B}", L"GetWakeOnLanPowerOptions", {}), "0x00000000");
    EXPECT_EQ(Get(out, L"WakeOnMagicPacket").vt, VT_NULL);
}

TEST_F(WrittenSettings, PowerOptionsChangeWholeOrNotAtAll) {
    EXPECT_EQ(Power(L"{A}", L"SetPowerUsageOptions", {{L"SavePowerNowEnabled", 2}, {L"SmartPowerDown", 0}}),
              "0x00000000");
    EXPECT_EQ(Option(L"SavePowerNowEnabled"), 2);
    EXPECT_EQ(Option(L"SmartPowerDown"), 0);
    EXPECT_EQ(Power(L"{A}", L"SetPowerUsageOptions", {{L"SmartPowerDown", 1}, {L"ACBSMode", 1}}),
              "0x8004102F");
    EXPECT_EQ(Option(L"SmartPowerDown"), 0);
    EXPECT_EQ(Power(L"{A}", L"SetPowerUsageOptions", {{L"SavePowerNowEnabled", 3}}), "0x8004102F");
    EXPECT_EQ(Power(L"{A}", L"SetWakeOnLanPowerOptions", {{L"WakeOnMagicPacket", 2}}), "0x8004102F");
    EXPECT_EQ(Power(L"{A}", L"SetWakeOnLanPowerOptions", {{L"WakeOnMagicPacket", 1}}), "0x00000000");
    EXPECT_EQ(Option(L"WakeOnMagicPacket"), 1);
    EXPECT_EQ(Power(L"{B}", L"SetWakeOnLanPowerOptions", {{L"WakeOnMagicPacket", 1}}), "0x8004100C");
}

TEST_F(WrittenSettings, PowerCapabilitiesNeedPowerManagement) {
    EXPECT_EQ(Power(L"{A}", L"SetPowerMgmtCapabilities", {}), "0x00000000");
    EXPECT_EQ(Power(L"{B}", L"SetPowerMgmtCapabilities", {}), "0x8004100C");
}

TEST_F(WrittenSettings, AStrictMachineTakesChangesOnlyInsideASet) {
    Use(kMachine, Options(true));
    Connect();
    EXPECT_EQ(Write(Path(L"Int", L"Int"), L"CurrentValue", I4(88)), "0x80041003");
    EXPECT_EQ(Power(L"{A}", L"SetPowerUsageOptions", {{L"SmartPowerDown", 0}}), "0x80041003");
    EXPECT_EQ(Power(L"{A}", L"SetPowerMgmtCapabilities", {}), "0x80041003");
    EXPECT_EQ(Option(L"SmartPowerDown"), 1);
}

} // namespace
