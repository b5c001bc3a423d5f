// Which kind of setting a provider class is, by the words in its name, and the exact query for each owner.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

struct NamedKind {
    const char* ending; ///< behind "Zorel_AdapterSetting"
    LONG type;          ///< CSetting::tagSettingType; -1: none, the instance is skipped
};

void PrintTo(const NamedKind& kind, std::ostream* out) {
    *out << kind.ending;
}

class SettingKindTest : public ProviderTest, public testing::WithParamInterface<NamedKind> {};

TEST_P(SettingKindTest, ClassName_FirstWordInTheOrderOfTheKindsDecides) {
    // The class has the properties of every kind, so that whichever reader is chosen can read it.
    const std::string name = std::string("Zorel_AdapterSetting") + GetParam().ending;
    UseText("class " + name + R"( : Zorel_AdapterSetting {
                sint32 CurrentValue; sint32 DefaultValue; sint32 Max; sint32 Min; sint32 Step; sint32 Base;
                sint32 Scale; sint32 MaxLength; string DescriptionMap[]; string PossibleValues[];
                string CurrentValues[]; string FirstLabel; string LastLabel; };
            instance of Zorel_NetService { Name = "ZorelNetService"; };
            instance of )" +
            name + R"( { Caption = "First"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1;
                DescriptionMap = {"one"}; PossibleValues = {"1"}; CurrentValues = {"x"}; };
            instance of Zorel_AdapterSettingInt { Caption = "Second"; ParentId = "{A}"; ParentType = "NIC"; };)");
    Connect();
    CSettings settings;
    EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"Zorel_AdapterSetting", L"{A}", L"", settings)),
              "0x00000000");
    const std::vector<std::string> trace = Traced();
    if (GetParam().type < 0) {
        ASSERT_EQ(settings.m_vecItems.size(), 1u) << "skipped, and the query continues";
        EXPECT_EQ(settings.m_vecItems[0]->m_wsCaption, L"Second");
        EXPECT_THAT(trace, Contains("PROBLEM" + name));
        return;
    }
    ASSERT_EQ(settings.m_vecItems.size(), 2u);
    EXPECT_EQ(settings.m_vecItems[0]->m_wsCaption, L"First");
    EXPECT_EQ(settings.m_vecItems[0]->GetSettingType(), GetParam().type);
    EXPECT_THAT(trace, Not(Contains(testing::StartsWith("PROBLEM"))));
}

INSTANTIATE_TEST_SUITE_P(
    Names, SettingKindTest,
    testing::Values(
        // one word
        NamedKind{"Number_Int", CSetting::SettingTypeInt}, NamedKind{"_Enum", CSetting::SettingTypeEnum},
        NamedKind{"_Slider", CSetting::SettingTypeSlider}, NamedKind{"_String", CSetting::SettingTypeString},
        NamedKind{"_Multi", CSetting::SettingTypeMultiSelection},
        NamedKind{"_MultiString", CSetting::SettingTypeMultiString},
        // "Int" comes before all others, wherever it stands
        NamedKind{"EnumInt", CSetting::SettingTypeInt}, NamedKind{"IntEnum", CSetting::SettingTypeInt},
        NamedKind{"MultiStringInt", CSetting::SettingTypeInt},
        NamedKind{"IntervalString", CSetting::SettingTypeInt},
        NamedKind{"SliderInt", CSetting::SettingTypeInt}, NamedKind{"MultiInt", CSetting::SettingTypeInt},
        // then "MultiString", which holds two of the later words
        NamedKind{"EnumMultiString", CSetting::SettingTypeMultiString},
        NamedKind{"MultiStringSlider", CSetting::SettingTypeMultiString},
        // then "String"; "Multi" apart from it does not make it a list
        NamedKind{"EnumString", CSetting::SettingTypeString},
        NamedKind{"SliderString", CSetting::SettingTypeString},
        NamedKind{"StringMulti", CSetting::SettingTypeString},
        // then "Enum", "Slider" and "Multi"
        NamedKind{"SliderEnum", CSetting::SettingTypeEnum}, NamedKind{"MultiEnum", CSetting::SettingTypeEnum},
        NamedKind{"MultiSlider", CSetting::SettingTypeSlider},
        // capitals count
        NamedKind{"PrintEnum", CSetting::SettingTypeEnum}, NamedKind{"Points", -1}, NamedKind{"MULTI", -1},
        NamedKind{"Picture", -1}));

class SettingQueryTest : public ProviderTest {
  protected:
    SettingQueryTest() : ProviderTest(NET_SERVICE_MOF) {}
    void SetUp() override { Connect(); }
    std::vector<std::string> Queries() {
        std::vector<std::string> texts;
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::ExecQuery) {
                EXPECT_EQ(call.flags, 0);
                EXPECT_TRUE(call.hasContext);
                texts.push_back(Narrow(call.target));
            }
        }
        return texts;
    }
    CSettings settings;
};

TEST_F(SettingQueryTest, EachOwner_AsksItsOwnClassLetterByLetterAndTracesTheText) {
    EXPECT_EQ(Code(quillet.GetAdapterSettings(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")", settings)),
              "0x00000000");
    EXPECT_EQ(Code(quillet.GetTeamSettings(LR"(Zorel_TeamOfAdapters.Name="{T}")", settings)), "0x00000000");
    EXPECT_EQ(Code(quillet.GetVlanSettings(LR"(Zorel_VLAN.Name='{V}')", settings)), "0x00000000");
    EXPECT_EQ(
        Code(quillet.GetBootAgentSettings(LR"(\\H\ROOT\MarloLUM2:Zorel_BootAgent.Name="{B}")", settings)),
        "0x00000000");
    const std::vector<std::string> queries = Queries();
    EXPECT_THAT(queries, ElementsAre(R"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}")",
                                     R"(SELECT * FROM Zorel_TeamSetting WHERE ParentId = "{T}")",
                                     R"(SELECT * FROM Zorel_VLANSetting WHERE ParentId = "{V}")",
                                     R"(SELECT * FROM Zorel_BootAgentSetting WHERE ParentId = "{B}")"));
    const std::vector<std::string> trace = Traced();
    for (const std::string& query : queries) {
        EXPECT_THAT(trace, Contains(query));
    }
}

TEST_F(SettingQueryTest, PathOfAnotherKind_IsRefusedWithoutACall) {
    const std::wstring adapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
    const std::wstring team = LR"(Zorel_TeamOfAdapters.Name="{T}")";
    EXPECT_EQ(Code(quillet.GetAdapterSettings(team, settings)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetTeamSettings(adapter, settings)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetVlanSettings(team, settings)), "0x80004005");
    EXPECT_EQ(Code(quillet.GetBootAgentSettings(team, settings)), "0x80004005");
    EXPECT_THAT(Called(), testing::IsEmpty());
}

TEST_F(SettingQueryTest, SpeedDuplex_AsksForTheKeywordOfTheCallersChoice) {
    CSettingEnum setting;
    const std::wstring adapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(adapter, setting, true)), "0x80041002");
    EXPECT_EQ(Code(quillet.GetSpeedDuplexSetting(adapter, setting, false)), "0x80041002");
    EXPECT_THAT(
        Queries(),
        ElementsAre(
            R"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}" AND Caption= "*SpeedDuplex")",
            R"(SELECT * FROM Zorel_AdapterSetting WHERE ParentId = "{A}" AND Caption= "SpeedDuplex")"));
}

TEST_F(SettingQueryTest, Selector_IsTheContextsPartialData_AndOverloadsWithoutItAskForAll) {
    const std::wstring adapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
    EXPECT_EQ(Code(quillet.GetAdapterSettings(adapter, settings, 5)), "0x00000000");
    EXPECT_EQ(Code(quillet.GetAdapterSettings(adapter, settings, 0xFFFFFFFE)), "0x00000000");
    EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"Zorel_VLANSetting", L"{V}", L"", settings)),
              "0x00000000");
    std::vector<std::string> contexts;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::ExecQuery) {
            const std::string line = Describe(call);
            contexts.push_back(line.substr(line.rfind('{')));
        }
    }
    EXPECT_THAT(
        contexts,
        ElementsAre(
            "{ClientSetId=0, GET_EXT_CLIENT_REQUEST=true, GET_EXTENSIONS=true, Zorel_PartialData=5}",
            "{ClientSetId=0, GET_EXT_CLIENT_REQUEST=true, GET_EXT_KEYS_ONLY=true, GET_EXTENSIONS=true}",
            "{ClientSetId=0, GET_EXT_CLIENT_REQUEST=false, GET_EXT_KEYS_ONLY=false, "
            "GET_EXTENSIONS=false, Zorel_PartialData=-1}"));
}

class VmqSettingsTest : public ProviderTest {};

TEST_F(VmqSettingsTest, ShippedMachine_TellsOnlyTheSettingsOfTheQueues) {
    Connect();
    CSettings settings;
    EXPECT_EQ(Code(quillet.GetAdapterSettings(
                  LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{64D1BF82-B507-5E42-AED2-547CA8AAC36A}")",
                  settings, 256)),
              "0x00000000");
    std::vector<std::wstring> captions;
    for (const CSetting* setting : settings.m_vecItems) {
        captions.push_back(setting->m_wsCaption);
    }
    EXPECT_THAT(captions, testing::UnorderedElementsAre(L"*VMQ", L"*MaxVmqQueues"));
}

} // namespace
