// The query texts, letter by letter.
#include "Provider/Wql.h"

#include <gtest/gtest.h>

namespace {

TEST(WqlTest, SelectWhere_ComparesOnePropertyWithBlanksAroundTheEqualsSign) {
    EXPECT_EQ(wql::SelectWhere(L"Zorel_VLAN", L"Name", L"Guests"),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"Guests\"");
}

TEST(WqlTest, SelectWhere_QuoteAndBackslashInTheValue_AreEscaped) {
    EXPECT_EQ(wql::SelectWhere(L"Zorel_VLAN", L"Name", L"a\"b\\c"),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"a\\\"b\\\\c\"");
}

TEST(WqlTest, SelectWhere_ValueThatLooksLikeAQuery_StaysAValue) {
    EXPECT_EQ(wql::SelectWhere(L"Zorel_VLAN", L"Name", L"x\" OR Name <> \""),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"x\\\" OR Name <> \\\"\"");
}

TEST(WqlTest, SelectWhere_EmptyAndNonAsciiValues_StandAsTheyAre) {
    EXPECT_EQ(wql::SelectWhere(L"C", L"P", L""), L"SELECT * FROM C WHERE P = \"\"");
    EXPECT_EQ(wql::SelectWhere(L"C", L"P", L"Z\u00fcrich"), L"SELECT * FROM C WHERE P = \"Z\u00fcrich\"");
}

TEST(WqlTest, Settings_WithoutCaption_AsksForAllOfTheOwner) {
    EXPECT_EQ(wql::Settings(L"Zorel_AdapterSetting", L"{1}", L""),
              L"SELECT * FROM Zorel_AdapterSetting WHERE ParentId = \"{1}\"");
}

TEST(WqlTest, Settings_WithCaption_HasNoBlankBeforeTheSecondEqualsSign) {
    EXPECT_EQ(
        wql::Settings(L"Zorel_AdapterSetting", L"{1}", L"*Speed\"Duplex"),
        L"SELECT * FROM Zorel_AdapterSetting WHERE ParentId = \"{1}\" AND Caption= \"*Speed\\\"Duplex\"");
}

TEST(WqlTest, Associators_PutsThePathInBracesAsItIs) {
    EXPECT_EQ(wql::Associators(L"Zorel_TeamOfAdapters.Name=\"{1}\"", L"Zorel_VLAN"),
              L"ASSOCIATORS OF {Zorel_TeamOfAdapters.Name=\"{1}\"} WHERE ResultClass = Zorel_VLAN");
}

TEST(WqlTest, References_PutsThePathInBracesAsItIs) {
    EXPECT_EQ(wql::References(L"\\\\HOST\\ROOT\\MarloLUM2:Zorel_VLAN.Name=\"{1}\"", L"Zorel_VLANFor"),
              L"REFERENCES OF {\\\\HOST\\ROOT\\MarloLUM2:Zorel_VLAN.Name=\"{1}\"} WHERE ResultClass = "
              L"Zorel_VLANFor");
}

} // namespace
