// The six kinds of settings, and the look-up by caption.
#include <quillet/Setting.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

using Texts = std::vector<std::wstring>;

// What a class of the caller's own gets from the base alone.
struct Bare : CSetting {
    tagSettingType GetSettingType() const override { return tagSettingType(5); }
};

// Where a virtual operation stands in the table of its class, in pointers from the table's start.
template <class TFunction>
std::size_t Slot(TFunction CSetting::*pFunction) {
    std::size_t word = 0;
    std::memcpy(&word, &pFunction, sizeof(word));
    return (word - 1) / sizeof(void*);
}

TEST(Setting, StartsEmpty) {
    const Bare setting;
    EXPECT_EQ(setting.m_wsCaption + setting.m_wsMiniHelp + setting.m_wsDescription + setting.m_wsPath +
                  setting.m_wsExposeLevel + setting.m_wsExtra,
              L"");
    EXPECT_FALSE(setting.m_bWritable);
    EXPECT_FALSE(setting.m_bGrouped);
    EXPECT_EQ(setting.m_lGroupId, 0);
}

TEST(Setting, TypesHaveTheirNumbers) {
    EXPECT_EQ(CSettingInt().GetSettingType(), 0);
    EXPECT_EQ(CSettingEnum().GetSettingType(), 1);
    EXPECT_EQ(CSettingSlider().GetSettingType(), 2);
    EXPECT_EQ(CSettingString().GetSettingType(), 3);
    EXPECT_EQ(CSettingMultiSelection().GetSettingType(), 4);
    EXPECT_EQ(CSettingMultiString().GetSettingType(), 6);
}

TEST(Setting, VirtualOperationsStandInOrderAfterTheDestructor) {
    EXPECT_TRUE(std::is_abstract_v<CSetting>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CSetting>);
    const std::size_t first = 2; // the destructor takes two slots: destroy, and destroy and free
    EXPECT_EQ(Slot<bool(Texts&) const>(&CSetting::GetCurrentVal), first + 0);
    EXPECT_EQ(Slot<bool(LONG&) const>(&CSetting::GetCurrentVal), first + 1);
    EXPECT_EQ(Slot<bool(std::wstring&) const>(&CSetting::GetCurrentVal), first + 2);
    EXPECT_EQ(Slot(&CSetting::Copy), first + 3);
    EXPECT_EQ(Slot(&CSetting::CurrentValueToSTRING), first + 4);
    EXPECT_EQ(Slot(&CSetting::GetCurrentValue), first + 5);
    EXPECT_EQ(Slot<void(const CSetting*)>(&CSetting::SetCurrentValue), first + 6);
    EXPECT_EQ(Slot<void(const std::wstring&)>(&CSetting::SetCurrentValue), first + 7);
    EXPECT_EQ(Slot(&CSetting::GetExposeLevel), first + 8);
    EXPECT_EQ(Slot(&CSetting::ClearValues), first + 9);
    EXPECT_EQ(Slot(&CSetting::GetSettingType), first + 10);
}

TEST(Setting, TheBaseDoesNothing) {
    Bare setting;
    Texts texts{L"kept"};
    LONG lNumber = 5;
    std::wstring text = L"kept";
    EXPECT_FALSE(setting.GetCurrentVal(texts));
    EXPECT_FALSE(setting.GetCurrentVal(lNumber));
    EXPECT_FALSE(setting.GetCurrentVal(text));
    EXPECT_EQ(texts, Texts{L"kept"});
    EXPECT_EQ(lNumber, 5);
    EXPECT_EQ(text, L"kept");
    EXPECT_EQ(setting.Copy(), nullptr);
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"");
    EXPECT_EQ(setting.GetCurrentValue(), L"");
    setting.SetCurrentValue(std::wstring(L"7"));
    setting.SetCurrentValue(&setting);
    EXPECT_EQ(setting.GetCurrentValue(), L"");
    EXPECT_FALSE(setting.ClearValues());
}

TEST(Setting, GetExposeLevel_ReadsTheDecimalText) {
    CSettingString setting;
    EXPECT_EQ(setting.GetExposeLevel(), 0);
    setting.m_wsExposeLevel = L"3";
    EXPECT_EQ(setting.GetExposeLevel(), 3);
    setting.m_wsExposeLevel = L"-1";
    EXPECT_EQ(setting.GetExposeLevel(), -1);
    setting.m_wsExposeLevel = L"expert";
    EXPECT_EQ(setting.GetExposeLevel(), 0);
    setting.m_wsExposeLevel = L"99999999999999999999";
    EXPECT_EQ(setting.GetExposeLevel(), 2147483647);
}

void FillBase(CSetting& rSetting) {
    rSetting.m_wsCaption = L"*Keyword";
    rSetting.m_wsMiniHelp = L"help";
    rSetting.m_wsDescription = L"description";
    rSetting.m_wsPath = L"path";
    rSetting.m_wsExposeLevel = L"2";
    rSetting.m_bWritable = true;
    rSetting.m_bGrouped = true;
    rSetting.m_wsExtra = L"extra";
    rSetting.m_lGroupId = 4;
}

void ExpectBase(const CSetting& rSetting) {
    EXPECT_EQ(rSetting.m_wsCaption, L"*Keyword");
    EXPECT_EQ(rSetting.m_wsMiniHelp, L"help");
    EXPECT_EQ(rSetting.m_wsDescription, L"description");
    EXPECT_EQ(rSetting.m_wsPath, L"path");
    EXPECT_EQ(rSetting.m_wsExposeLevel, L"2");
    EXPECT_TRUE(rSetting.m_bWritable);
    EXPECT_TRUE(rSetting.m_bGrouped);
    EXPECT_EQ(rSetting.m_wsExtra, L"extra");
    EXPECT_EQ(rSetting.m_lGroupId, 4);
}

// One filled setting of each kind, and a check that a copy has everything of it.
void Fill(CSettingInt& r) {
    r.m_lBase = 10;
    r.m_lCurrentValue = 9014;
    r.m_lDefaultValue = 1514;
    r.m_lMax = 16128;
    r.m_lMin = 1;
    r.m_lStep = 2;
    r.m_lScale = 3;
}
void Expect(const CSettingInt& r) {
    EXPECT_EQ(r.m_lBase, 10);
    EXPECT_EQ(r.m_lCurrentValue, 9014);
    EXPECT_EQ(r.m_lDefaultValue, 1514);
    EXPECT_EQ(r.m_lMax, 16128);
    EXPECT_EQ(r.m_lMin, 1);
    EXPECT_EQ(r.m_lStep, 2);
    EXPECT_EQ(r.m_lScale, 3);
}
template <class TEnumLike>
void FillEnum(TEnumLike& r) {
    r.m_lCurrentValue = 3;
    r.m_lDefaultValue = 1;
    r.m_vecPossibleValues = {L"0", L"3"};
    r.m_vecDescriptionMap = {L"Disabled", L"Enabled"};
}
template <class TEnumLike>
void ExpectEnum(const TEnumLike& r) {
    EXPECT_EQ(r.m_lCurrentValue, 3);
    EXPECT_EQ(r.m_lDefaultValue, 1);
    EXPECT_EQ(r.m_vecPossibleValues, (Texts{L"0", L"3"}));
    EXPECT_EQ(r.m_vecDescriptionMap, (Texts{L"Disabled", L"Enabled"}));
}
void Fill(CSettingEnum& r) {
    FillEnum(r);
}
void Expect(const CSettingEnum& r) {
    ExpectEnum(r);
}
void Fill(CSettingMultiSelection& r) {
    FillEnum(r);
}
void Expect(const CSettingMultiSelection& r) {
    ExpectEnum(r);
}
void Fill(CSettingSlider& r) {
    r.m_lCurrentValue = 2;
    r.m_lDefaultValue = 1;
    r.m_wsFirstLabel = L"low";
    r.m_wsLastLabel = L"high";
    r.m_vecPossibleValues = {0, 1, 2};
}
void Expect(const CSettingSlider& r) {
    EXPECT_EQ(r.m_lCurrentValue, 2);
    EXPECT_EQ(r.m_lDefaultValue, 1);
    EXPECT_EQ(r.m_wsFirstLabel, L"low");
    EXPECT_EQ(r.m_wsLastLabel, L"high");
    EXPECT_EQ(r.m_vecPossibleValues, (std::vector<LONG>{0, 1, 2}));
}
void Fill(CSettingString& r) {
    r.m_wsCurrentValue = L"02AA00";
    r.m_wsDefaultValue = L"--";
    r.m_wsMaxLength = L"12";
}
void Expect(const CSettingString& r) {
    EXPECT_EQ(r.m_wsCurrentValue, L"02AA00");
    EXPECT_EQ(r.m_wsDefaultValue, L"--");
    EXPECT_EQ(r.m_wsMaxLength, L"12");
}
void Fill(CSettingMultiString& r) {
    r.m_vecCurrentValues = {L"a", L"b"};
    r.m_wsDefaultValue = L"--";
    r.m_wsMaxLength = L"12";
}
void Expect(const CSettingMultiString& r) {
    EXPECT_EQ(r.m_vecCurrentValues, (Texts{L"a", L"b"}));
    EXPECT_EQ(r.m_wsDefaultValue, L"--");
    EXPECT_EQ(r.m_wsMaxLength, L"12");
}

template <class TSetting>
struct SettingKind : testing::Test {};
using AllKinds = testing::Types<CSettingInt, CSettingEnum, CSettingSlider, CSettingString,
                                CSettingMultiSelection, CSettingMultiString>;
TYPED_TEST_SUITE(SettingKind, AllKinds);

TYPED_TEST(SettingKind, CopyAssignmentAndCopy_TakeEveryFieldAndKeepTheKind) {
    auto source = std::make_unique<TypeParam>();
    FillBase(*source);
    Fill(*source);
    const TypeParam copy(*source);
    TypeParam assigned;
    assigned = *source;
    const std::unique_ptr<const CSetting> pCopy(static_cast<const CSetting&>(*source).Copy());
    source.reset();
    ASSERT_NE(dynamic_cast<const TypeParam*>(pCopy.get()), nullptr);
    for (const TypeParam* p :
         {&copy, static_cast<const TypeParam*>(&assigned), dynamic_cast<const TypeParam*>(pCopy.get())}) {
        ExpectBase(*p);
        Expect(*p);
    }
}

TYPED_TEST(SettingKind, SetCurrentValue_FromNullOrAnotherKind_ChangesNothing) {
    TypeParam setting;
    Fill(setting);
    CSettingInt number;
    CSettingEnum choice;
    CSettingSlider slider;
    CSettingString text;
    CSettingMultiSelection choices;
    CSettingMultiString texts;
    setting.SetCurrentValue(static_cast<const CSetting*>(nullptr));
    for (const CSetting* pOther :
         std::initializer_list<const CSetting*>{&number, &choice, &slider, &text, &choices, &texts}) {
        if (pOther->GetSettingType() != setting.GetSettingType()) {
            setting.SetCurrentValue(pOther);
        }
    }
    Expect(setting);
}

TYPED_TEST(SettingKind, SetCurrentValue_FromItsOwnKind_TakesTheCurrentValueOnly) {
    TypeParam source;
    Fill(source);
    FillBase(source);
    TypeParam target;
    target.SetCurrentValue(&source);
    EXPECT_EQ(target.GetCurrentValue(), source.GetCurrentValue());
    EXPECT_NE(target.GetCurrentValue(), TypeParam().GetCurrentValue());
    EXPECT_EQ(target.m_wsCaption, L"");
    target.SetCurrentValue(&target);
    EXPECT_EQ(target.GetCurrentValue(), source.GetCurrentValue());
}

TYPED_TEST(SettingKind, GetCurrentValue_IsTheCurrentValueAsText) {
    TypeParam setting;
    Fill(setting);
    EXPECT_EQ(setting.GetCurrentValue(), setting.CurrentValueToSTRING());
    EXPECT_NE(setting.GetCurrentValue(), L"");
}

TYPED_TEST(SettingKind, GetCurrentVal_OfTheWrongType_IsFalseAndLeavesTheArgument) {
    TypeParam setting;
    Fill(setting);
    Texts texts{L"kept"};
    LONG lNumber = -77;
    std::wstring text = L"kept";
    const bool bTexts = setting.GetCurrentVal(texts);
    const bool bNumber = setting.GetCurrentVal(lNumber);
    const bool bText = setting.GetCurrentVal(text);
    EXPECT_EQ(bTexts + bNumber + bText, 1);
    EXPECT_EQ(bTexts, texts != Texts{L"kept"});
    EXPECT_EQ(bNumber, lNumber != -77);
    EXPECT_EQ(bText, text != L"kept");
}

// The four kinds with a number as their value.
template <class TSetting>
struct NumberKind : testing::Test {};
using NumberKinds = testing::Types<CSettingInt, CSettingEnum, CSettingSlider, CSettingMultiSelection>;
TYPED_TEST_SUITE(NumberKind, NumberKinds);

TYPED_TEST(NumberKind, GetCurrentVal_GivesTheNumber) {
    TypeParam setting;
    setting.m_lCurrentValue = -5;
    LONG lNumber = 0;
    EXPECT_TRUE(setting.GetCurrentVal(lNumber));
    EXPECT_EQ(lNumber, -5);
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"-5");
}

TYPED_TEST(NumberKind, SetCurrentValue_FromText_ParsesDecimal) {
    TypeParam setting;
    setting.SetCurrentValue(std::wstring(L"65535"));
    EXPECT_EQ(setting.m_lCurrentValue, 65535);
    setting.SetCurrentValue(std::wstring(L"-3 frames"));
    EXPECT_EQ(setting.m_lCurrentValue, -3);
    setting.SetCurrentValue(std::wstring(L"none"));
    EXPECT_EQ(setting.m_lCurrentValue, 0);
    setting.SetCurrentValue(std::wstring(L"4294967295"));
    EXPECT_EQ(setting.m_lCurrentValue, 2147483647);
}

TEST(SettingInt, SetCurrentValue_StoresANumber) {
    CSettingInt setting;
    setting.SetCurrentValue(LONG{12});
    EXPECT_EQ(setting.m_lCurrentValue, 12);
    CSettingEnum choice;
    choice.SetCurrentValue(LONG{-12});
    EXPECT_EQ(choice.m_lCurrentValue, -12);
}

TEST(SettingInt, ClearValues_KeepsTheNumbersAndReturnsFalse) {
    CSettingInt setting;
    Fill(setting);
    EXPECT_FALSE(setting.ClearValues());
    Expect(setting);
}

template <class TEnumLike>
void TestClearValues() {
    TEnumLike setting;
    FillBase(setting);
    Fill(setting);
    EXPECT_TRUE(setting.ClearValues());
    EXPECT_EQ(setting.m_lCurrentValue, 0);
    EXPECT_EQ(setting.m_lDefaultValue, 0);
    EXPECT_TRUE(setting.m_vecPossibleValues.empty());
    EXPECT_TRUE(setting.m_vecDescriptionMap.empty());
    ExpectBase(setting);
}

TEST(SettingEnum, ClearValues_EmptiesTheValuesAndKeepsTheRest) {
    TestClearValues<CSettingEnum>();
}

TEST(SettingMultiSelection, ClearValues_EmptiesTheValuesAndKeepsTheRest) {
    TestClearValues<CSettingMultiSelection>();
}

TEST(SettingSlider, ClearValues_EmptiesTheValuesAndKeepsTheRest) {
    CSettingSlider setting;
    FillBase(setting);
    Fill(setting);
    EXPECT_TRUE(setting.ClearValues());
    EXPECT_EQ(setting.m_lCurrentValue, 0);
    EXPECT_EQ(setting.m_lDefaultValue, 0);
    EXPECT_EQ(setting.m_wsFirstLabel + setting.m_wsLastLabel, L"");
    EXPECT_TRUE(setting.m_vecPossibleValues.empty());
    ExpectBase(setting);
}

TEST(SettingString, ValueIsTheTextItself) {
    CSettingString setting;
    setting.SetCurrentValue(std::wstring(L"fe80::1, up"));
    EXPECT_EQ(setting.m_wsCurrentValue, L"fe80::1, up");
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"fe80::1, up");
    std::wstring text;
    EXPECT_TRUE(setting.GetCurrentVal(text));
    EXPECT_EQ(text, L"fe80::1, up");
    setting.SetCurrentValue(setting.m_wsCurrentValue);
    EXPECT_EQ(setting.m_wsCurrentValue, L"fe80::1, up");
}

TEST(SettingString, ClearValues_EmptiesAllThreeTexts) {
    CSettingString setting;
    FillBase(setting);
    Fill(setting);
    EXPECT_TRUE(setting.ClearValues());
    EXPECT_EQ(setting.m_wsCurrentValue + setting.m_wsDefaultValue + setting.m_wsMaxLength, L"");
    ExpectBase(setting);
}

TEST(SettingMultiString, CurrentValueToSTRING_JoinsWithCommaOnly) {
    CSettingMultiString setting;
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"");
    setting.m_vecCurrentValues = {L"a"};
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"a");
    setting.m_vecCurrentValues = {L"a", L"b"};
    EXPECT_EQ(setting.CurrentValueToSTRING(), L"a,b");
    setting.m_vecCurrentValues = {L"", L"", L""};
    EXPECT_EQ(setting.CurrentValueToSTRING(), L",,");
}

TEST(SettingMultiString, SetCurrentValue_WithoutASeparator_LeavesTheListEmpty) {
    CSettingMultiString setting;
    setting.m_vecCurrentValues = {L"old", L"values"};
    setting.SetCurrentValue(std::wstring(L"a"));
    EXPECT_TRUE(setting.m_vecCurrentValues.empty());
    setting.m_vecCurrentValues = {L"old", L"values"};
    setting.SetCurrentValue(std::wstring());
    EXPECT_TRUE(setting.m_vecCurrentValues.empty());
}

TEST(SettingMultiString, SetCurrentValue_KeepsEveryPieceEmptyOnesIncluded) {
    CSettingMultiString setting;
    setting.SetCurrentValue(std::wstring(L"a,b,"));
    EXPECT_EQ(setting.m_vecCurrentValues, (Texts{L"a", L"b", L""}));
    setting.SetCurrentValue(std::wstring(L"a,b"));
    EXPECT_EQ(setting.m_vecCurrentValues, (Texts{L"a", L"b"}));
    setting.SetCurrentValue(std::wstring(L","));
    EXPECT_EQ(setting.m_vecCurrentValues, (Texts{L"", L""}));
    setting.SetCurrentValue(std::wstring(L",, x"));
    EXPECT_EQ(setting.m_vecCurrentValues, (Texts{L"", L"", L" x"}));
}

TEST(SettingMultiString, SetCurrentValue_FromOneOfItsOwnTexts) {
    CSettingMultiString setting;
    setting.m_vecCurrentValues = {L"some longer text, in two pieces"};
    setting.SetCurrentValue(setting.m_vecCurrentValues[0]);
    EXPECT_EQ(setting.m_vecCurrentValues, (Texts{L"some longer text", L" in two pieces"}));
}

TEST(SettingMultiString, SetCurrentValue_FromAnother_TakesTheWholeList) {
    CSettingMultiString source;
    source.m_vecCurrentValues = {L"single"};
    CSettingMultiString target;
    target.SetCurrentValue(&source);
    EXPECT_EQ(target.m_vecCurrentValues, Texts{L"single"});
    Texts texts{L"replaced"};
    EXPECT_TRUE(target.GetCurrentVal(texts));
    EXPECT_EQ(texts, Texts{L"single"});
}

TEST(SettingMultiString, ClearValues_EmptiesListAndTexts) {
    CSettingMultiString setting;
    FillBase(setting);
    Fill(setting);
    EXPECT_TRUE(setting.ClearValues());
    EXPECT_TRUE(setting.m_vecCurrentValues.empty());
    EXPECT_EQ(setting.m_wsDefaultValue + setting.m_wsMaxLength, L"");
    ExpectBase(setting);
}

TEST(SettingSetCurrentValue, FromAClassOfTheCallersOwn_GoesThroughItsAccessor) {
    struct Pretender : CSetting {
        using CSetting::GetCurrentVal;
        bool GetCurrentVal(LONG& rlValue) const override {
            rlValue = 11;
            return true;
        }
        tagSettingType GetSettingType() const override { return SettingTypeInt; }
    };
    struct Silent : CSetting {
        tagSettingType GetSettingType() const override { return SettingTypeInt; }
    };
    CSettingInt setting;
    const Pretender pretender;
    setting.SetCurrentValue(&pretender);
    EXPECT_EQ(setting.m_lCurrentValue, 11);
    const Silent silent;
    setting.SetCurrentValue(&silent);
    EXPECT_EQ(setting.m_lCurrentValue, 11);
}

CSetting* NewWithCaption(CSetting* pSetting, const wchar_t* caption) {
    pSetting->m_wsCaption = caption;
    return pSetting;
}

TEST(Settings, GetSettingByCaption_IgnoresCaseAndReturnsTheFirst) {
    CSettings settings;
    settings.m_vecItems = {NewWithCaption(new CSettingInt, L"*JumboPacket"), nullptr,
                           NewWithCaption(new CSettingEnum, L"*RSS"),
                           NewWithCaption(new CSettingInt, L"*rss")};
    EXPECT_EQ(settings.GetSettingByCaption(L"*rss"), settings.m_vecItems[2]);
    EXPECT_EQ(settings.GetSettingByCaption(L"*JUMBOPACKET"), settings.m_vecItems[0]);
    EXPECT_EQ(settings.GetSettingByCaption(L"RSS"), nullptr);
    EXPECT_EQ(settings.GetSettingByCaption(L""), nullptr);
}

TEST(Settings, GetSettingByCaption_InAnEmptyCollection_IsNull) {
    EXPECT_EQ(CSettings().GetSettingByCaption(L"*RSS"), nullptr);
}

TEST(Settings, Copies_KeepTheKindOfEverySetting) {
    auto source = std::make_unique<CSettings>();
    source->m_vecItems = {new CSettingInt,    new CSettingEnum,           new CSettingSlider,
                          new CSettingString, new CSettingMultiSelection, new CSettingMultiString};
    const CSettings copy(*source);
    const std::unique_ptr<const CSettings> pCopy(source->Copy());
    source.reset();
    for (const CSettings* p : {&copy, pCopy.get()}) {
        ASSERT_EQ(p->m_vecItems.size(), 6u);
        EXPECT_NE(dynamic_cast<CSettingInt*>(p->m_vecItems[0]), nullptr);
        EXPECT_NE(dynamic_cast<CSettingEnum*>(p->m_vecItems[1]), nullptr);
        EXPECT_NE(dynamic_cast<CSettingSlider*>(p->m_vecItems[2]), nullptr);
        EXPECT_NE(dynamic_cast<CSettingString*>(p->m_vecItems[3]), nullptr);
        EXPECT_NE(dynamic_cast<CSettingMultiSelection*>(p->m_vecItems[4]), nullptr);
        EXPECT_NE(dynamic_cast<CSettingMultiString*>(p->m_vecItems[5]), nullptr);
    }
}

TEST(Settings, Copies_OfASettingThatCanNotBeCopied_HaveANullEntry) {
    CSettings settings;
    settings.m_vecItems = {new Bare, new CSettingInt};
    const std::unique_ptr<CSettings> pCopy(settings.Copy());
    ASSERT_EQ(pCopy->m_vecItems.size(), 2u);
    EXPECT_EQ(pCopy->m_vecItems[0], nullptr);
    EXPECT_NE(pCopy->m_vecItems[1], nullptr);
}

} // namespace
