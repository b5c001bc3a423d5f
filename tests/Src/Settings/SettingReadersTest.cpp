// The readers of the kinds of settings, without an instance or without a place to read to, and what each
// reads.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr const char* MISSING = "GetSetting -> ((pIWbemSetting == NULL) || (pSetting == NULL))";

class SettingReadersTest : public ProviderTest {
  protected:
    SettingReadersTest() : ProviderTest(NET_SERVICE_MOF) {}
};

TEST_F(SettingReadersTest, EveryReader_WithoutAnInstance_FailsAndNamesIt) {
    CSettingInt number;
    CSettingString text;
    CSettingEnum choice;
    CSettingSlider slider;
    CSettingMultiSelection several;
    CSettingMultiString list;
    for (const std::function<HRESULT()>& read : std::vector<std::function<HRESULT()>>{
             [&] { return QuilletTestAccess::GetSetting(nullptr, &number); },
             [&] { return QuilletTestAccess::GetIntSetting(nullptr, &number); },
             [&] { return QuilletTestAccess::GetStringSetting(nullptr, &text); },
             [&] { return QuilletTestAccess::GetEnumSetting(nullptr, &choice); },
             [&] { return QuilletTestAccess::GetSliderSetting(nullptr, &slider); },
             [&] { return QuilletTestAccess::GetMultiSetting(nullptr, &several); },
             [&] { return QuilletTestAccess::GetMultiStringSetting(nullptr, &list); }}) {
        EXPECT_EQ(Code(read()), "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre(MISSING));
    }
}

TEST_F(SettingReadersTest, EveryReader_WithoutATarget_FailsAndReadsNothing) {
    Connect();
    ATL::CComPtr<IWbemServices> service = QuilletTestAccess::GetWbemService(quillet);
    ATL::CComPtr<IWbemClassObject> instance;
    ASSERT_EQ(Code(service->GetObject(_bstr_t(L"Zorel_AdapterSettingInt"), 0, nullptr, &instance, nullptr)),
              "0x00000000");
    RecordLocalCalls();
    Calls();
    Traced();
    for (const std::function<HRESULT()>& read : std::vector<std::function<HRESULT()>>{
             [&] { return QuilletTestAccess::GetSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetIntSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetStringSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetEnumSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetSliderSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetMultiSetting(instance, nullptr); },
             [&] { return QuilletTestAccess::GetMultiStringSetting(instance, nullptr); }}) {
        EXPECT_EQ(Code(read()), "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre(MISSING));
    }
    EXPECT_THAT(Called(), testing::IsEmpty());
}

/// What a query for one setting reads, in its order.
class SettingReadOrderTest : public ProviderTest {
  protected:
    std::vector<std::string> ReadOf(const std::string& kind, const std::string& properties) {
        UseText(std::string(NET_SERVICE_MOF) + "instance of Zorel_AdapterSetting" + kind +
                " { Caption = \"C\"; ParentId = \"{A}\"; ParentType = \"NIC\"; " + properties + " };");
        Connect();
        RecordLocalCalls();
        Calls();
        CSettings settings;
        EXPECT_EQ(Code(quillet.GetSettingFromClassOnAdapter(L"Zorel_AdapterSetting", L"{A}", L"", settings)),
                  "0x00000000");
        EXPECT_EQ(settings.m_vecItems.size(), 1u);
        std::vector<std::string> read;
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::Get) {
                read.push_back(Narrow(call.target));
            }
        }
        return read;
    }
    static std::vector<std::string> Base(const std::vector<std::string>& more) {
        std::vector<std::string> all{"__CLASS", "__PATH",      "Caption",  "Description", "MiniHelp",
                                     "__PATH",  "ExposeLevel", "Writable", "Grouped"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
};

TEST_F(SettingReadOrderTest, EachKind_ReadsItsPropertiesInOrder) {
    const std::string lists = "PossibleValues = {\"1\"}; DescriptionMap = {\"one\"};";
    EXPECT_EQ(ReadOf("Int", ""),
              Base({"CurrentValue", "DefaultValue", "Max", "Min", "Step", "Base", "Scale"}));
    EXPECT_EQ(ReadOf("String", ""), Base({"CurrentValue", "DefaultValue", "MaxLength"}));
    EXPECT_EQ(ReadOf("Enum", lists),
              Base({"CurrentValue", "DefaultValue", "DescriptionMap", "PossibleValues"}));
    EXPECT_EQ(ReadOf("MultiSelection", lists),
              Base({"CurrentValue", "DefaultValue", "DescriptionMap", "PossibleValues"}));
    EXPECT_EQ(ReadOf("Slider", "PossibleValues = {\"1\"};"),
              Base({"CurrentValue", "DefaultValue", "PossibleValues", "FirstLabel", "LastLabel"}));
    EXPECT_EQ(ReadOf("MultiString", "CurrentValues = {\"x\"};"),
              Base({"CurrentValues", "DefaultValue", "MaxLength"}));
}

TEST_F(SettingReadOrderTest, GroupId_IsReadOnlyOfAGroupedSetting) {
    const std::vector<std::string> read = ReadOf("String", "Grouped = TRUE; GroupId = 3;");
    EXPECT_EQ(read[9], "GroupId");
    EXPECT_EQ(read.size(), 13u);
    EXPECT_THAT(ReadOf("String", "Grouped = FALSE; GroupId = 3;"), testing::Not(Contains("GroupId")));
}

} // namespace
