// Display texts out of the qualifiers of a property.
#include "Session/ConfigurationKeys.h"
#include "Provider/ProviderNames.h"
#include "ProviderTest.h"
#include "RegistryScope.h"

#include <quillet/ValueTexts.h>

namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr ProviderName kClass{L"L_CLASS_TEST", L"Test_Texts"};
constexpr ProviderName kIndexed{L"L_PROP_INDEXED", L"Indexed"};
constexpr ProviderName kMapped{L"L_PROP_MAPPED", L"Mapped"};
constexpr ProviderName kUneven{L"L_PROP_UNEVEN", L"Uneven"};
constexpr ProviderName kPlain{L"L_PROP_PLAIN", L"Plain"};

class QualifierTextsTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(R"(
            class Test_Texts {
                [Key] string Name;
                [Values{"zero", "one", "two"}] uint16 Indexed;
                [ValueMap{"10", "20", "-3"}, Values{"ten", "twenty", "minus three"}] sint16 Mapped;
                [ValueMap{"1", "2"}, Values{"first"}] uint16 Uneven;
                uint16 Plain;
            };
            instance of Zorel_NetService { Name = "ZorelNetService"; };)");
        Connect();
    }
    std::wstring ByPosition(const ProviderName& property, LONG code) {
        std::wstring text = L"before";
        EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValues(quillet, kClass, property, code, text)),
                  "0x00000000");
        return text;
    }
    std::wstring ByMap(const ProviderName& property, LONG code) {
        std::wstring text = L"before";
        EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValueMap(quillet, kClass, property, code, text)),
                  "0x00000000");
        return text;
    }
};

TEST_F(QualifierTextsTest, Values_TheCodeIsThePosition) {
    EXPECT_EQ(ByPosition(kIndexed, 0), L"zero");
    EXPECT_EQ(ByPosition(kIndexed, 2), L"two");
    EXPECT_EQ(ByPosition(kMapped, 1), L"twenty");
}

TEST_F(QualifierTextsTest, Values_CodeWithoutAText_IsAnEmptyTextAndSuccess) {
    EXPECT_EQ(ByPosition(kIndexed, 3), L"");
    EXPECT_EQ(ByPosition(kIndexed, -1), L"");
    EXPECT_EQ(ByPosition(kPlain, 0), L"");
}

TEST_F(QualifierTextsTest, ValueMap_FindsThePositionOfTheCode) {
    EXPECT_EQ(ByMap(kMapped, 10), L"ten");
    EXPECT_EQ(ByMap(kMapped, 20), L"twenty");
    EXPECT_EQ(ByMap(kMapped, -3), L"minus three");
}

TEST_F(QualifierTextsTest, ValueMap_CodeWithoutAText_IsAnEmptyTextAndSuccess) {
    EXPECT_EQ(ByMap(kMapped, 1), L"");
    EXPECT_EQ(ByMap(kUneven, 2), L"");
    EXPECT_EQ(ByMap(kPlain, 0), L"");
}

TEST_F(QualifierTextsTest, ValueMap_PropertyWithoutOne_TakesThePosition) {
    EXPECT_EQ(ByMap(kIndexed, 1), L"one");
    EXPECT_EQ(ByMap(kIndexed, 7), L"");
}

TEST_F(QualifierTextsTest, Class_IsFetchedOnceWithAmendedQualifiersAndTheContext) {
    EXPECT_EQ(ByMap(kMapped, 10), L"ten");
    EXPECT_THAT(Called(), ElementsAre("GetObject Test_Texts, flags 0x20000 -> 0x00000000 {ClientSetId=0}"));
}

TEST_F(QualifierTextsTest, ValueTexts_FetchEachClassOnce) {
    CValueTexts texts(quillet);
    const auto text = [&](const wchar_t* property, LONG code) {
        std::wstring found = L"before";
        EXPECT_EQ(Code(texts.GetText(L"Test_Texts", property, code, found)), "0x00000000");
        return found;
    };
    EXPECT_THAT(Called(), testing::IsEmpty());
    EXPECT_EQ(text(L"Mapped", 20), L"twenty");
    EXPECT_EQ(text(L"Mapped", 1), L"");
    EXPECT_EQ(text(L"Indexed", 2), L"two");
    EXPECT_EQ(text(L"Plain", 0), L"");
    EXPECT_THAT(Called(), ElementsAre("GetObject Test_Texts, flags 0x20000 -> 0x00000000 {ClientSetId=0}"));
    std::wstring none = L"before";
    EXPECT_EQ(Code(texts.GetText(L"Test_Texts", L"Nothing", 1, none)), "0x80041002");
    EXPECT_EQ(none, L"");
}

TEST_F(QualifierTextsTest, ValueTexts_OfAClassThatCannotBeFetched_AreNotAskedForAgain) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Test_Texts");
    CValueTexts texts(quillet);
    std::wstring found = L"before";
    EXPECT_EQ(Code(texts.GetText(L"Test_Texts", L"Mapped", 20, found)), "0x80041003");
    EXPECT_EQ(found, L"");
    EXPECT_EQ(Code(texts.GetText(L"Test_Texts", L"Indexed", 2, found)), "0x80041003");
    EXPECT_EQ(Called().size(), 1U);
    EXPECT_THAT(Traced(), Contains("GetObject -> Test_Texts"));
    Spoil(Operation::GetObject, Effect::NullObject, L"Test_Texts");
    CValueTexts others(quillet);
    EXPECT_EQ(Code(others.GetText(L"Test_Texts", L"Mapped", 20, found)), "0x80041001");
    CQuillet unconnected;
    CValueTexts nowhere(unconnected);
    EXPECT_EQ(Code(nowhere.GetText(L"Test_Texts", L"Mapped", 20, found)), "0x80041001");
}

TEST_F(QualifierTextsTest, UnknownClassOrProperty_IsNamedAndEmptiesTheText) {
    const ProviderName noClass{L"L_CLASS_NONE", L"Test_None"};
    const ProviderName noProperty{L"L_PROP_NONE", L"None"};
    std::wstring text = L"before";
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValues(quillet, noClass, kIndexed, 0, text)), "0x80041002");
    EXPECT_EQ(text, L"");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_NONE"));
    text = L"before";
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValueMap(quillet, kClass, noProperty, 0, text)),
              "0x80041002");
    EXPECT_EQ(text, L"");
    EXPECT_THAT(Traced(), Contains("GetPropertyQualifierSet -> L_PROP_NONE"));
}

TEST_F(QualifierTextsTest, QualifierThatCannotBeRead_IsItsCodeAndALine) {
    for (const wchar_t* qualifier : {L"ValueMap", L"Values"}) {
        Traced();
        Fail(Operation::GetQualifier, WBEM_E_ACCESS_DENIED, qualifier);
        std::wstring text = L"before";
        EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValueMap(quillet, kClass, kMapped, 10, text)),
                  "0x80041003");
        EXPECT_EQ(text, L"");
        EXPECT_THAT(Traced(), Contains("Get -> " + Narrow(qualifier)));
        machine->Rules().Clear();
    }
    Fail(Operation::GetQualifier, WBEM_E_TRANSPORT_FAILURE, L"Values");
    std::wstring text = L"before";
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValues(quillet, kClass, kIndexed, 1, text)),
              Code(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_EQ(text, L"");
}

TEST_F(QualifierTextsTest, QualifierThatIsAbsentOrNoList_IsAnEmptyTextAndSuccess) {
    Spoil(Operation::GetQualifier, Effect::Absent, L"Values");
    EXPECT_EQ(ByPosition(kIndexed, 1), L"");
    machine->Rules().Clear();
    Spoil(Operation::GetQualifier, Effect::NullValue, L"Values");
    EXPECT_EQ(ByPosition(kIndexed, 1), L"");
    machine->Rules().Clear();
    Spoil(Operation::GetQualifier, Effect::UnreadableElement, L"Values");
    EXPECT_EQ(ByPosition(kIndexed, 0), L"") << "this one is no text";
    EXPECT_EQ(ByPosition(kIndexed, 1), L"one") << "and the others keep their places";
}

TEST_F(QualifierTextsTest, NotConnected_Fails) {
    quillet.UninitQuillet();
    std::wstring text = L"before";
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValues(quillet, kClass, kIndexed, 0, text)), "0x80041001");
    EXPECT_EQ(text, L"");
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValueMap(quillet, kClass, kMapped, 10, text)), "0x80041001");
    EXPECT_THAT(Called(), testing::IsEmpty());
}

TEST_F(QualifierTextsTest, ConnectionInGerman_TellsGermanTexts) {
    quillet::tests::RegistryScope registry;
    registry.SetDword(kRegistryOrba, L"ForcedLanguage", 1031);
    Connect();
    const ProviderName capabilities{L"L_PROP_ETHERNETADAPTER_CAPABILITIES", L"Capabilities"};
    std::wstring text;
    EXPECT_EQ(Code(QuilletTestAccess::GetDataFromValues(quillet, L_CLASS_ZOREL_ETHERNETADAPTER, capabilities,
                                                        46, text)),
              "0x00000000");
    EXPECT_EQ(text, L"Serveradapter");
}

} // namespace
