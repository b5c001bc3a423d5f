// The query texts, letter by letter.
#include "Provider/Wql.h"

#include <gtest/gtest.h>

namespace {

TEST(Wql, SelectWhere_ComparesOnePropertyWithBlanksAroundTheEqualsSign) {
    EXPECT_EQ(Wql::SelectWhere(L"Zorel_VLAN", L"Name", L"Guests"),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"Guests\"");
}

TEST(Wql, SelectWhere_QuoteAndBackslashInTheValue_AreEscaped) {
    EXPECT_EQ(Wql::SelectWhere(L"Zorel_VLAN", L"Name", L"a\"b\\c"),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"a\\\"b\\\\c\"");
}

TEST(Wql, SelectWhere_ValueThatLooksLikeAQuery_StaysAValue) {
    EXPECT_EQ(Wql::SelectWhere(L"Zorel_VLAN", L"Name", L"x\" OR Name <> \""),
              L"SELECT * FROM Zorel_VLAN WHERE Name = \"x\\\" OR Name <> \\\"\"");
}

TEST(Wql, SelectWhere_EmptyAndNonAsciiValues_StandAsTheyAre) {
    EXPECT_EQ(Wql::SelectWhere(L"C", L"P", L""), L"SELECT * FROM C WHERE P = \"\"");
    EXPECT_EQ(Wql::SelectWhere(L"C", L"P", L"Z\u00fcrich"), L"SELECT * FROM C WHERE P = \"Z\u00fcrich\"");
}

TEST(Wql, Settings_WithoutCaption_AsksForAllOfTheOwner) {
    EXPECT_EQ(Wql::Settings(L"Zorel_AdapterSetting", L"{1}", L""),
              L"SELECT * FROM Zorel_AdapterSetting WHERE ParentId = \"{1}\"");
}

TEST(Wql, Settings_WithCaption_HasNoBlankBeforeTheSecondEqualsSign) {
    EXPECT_EQ(
        Wql::Settings(L"Zorel_AdapterSetting", L"{1}", L"*Speed\"Duplex"),
        L"SELECT * FROM Zorel_AdapterSetting WHERE ParentId = \"{1}\" AND Caption= \"*Speed\\\"Duplex\"");
}

TEST(Wql, Associators_PutsThePathInBracesAsItIs) {
    EXPECT_EQ(Wql::Associators(L"Zorel_TeamOfAdapters.Name=\"{1}\"", L"Zorel_VLAN"),
              L"ASSOCIATORS OF {Zorel_TeamOfAdapters.Name=\"{1}\"} WHERE ResultClass = Zorel_VLAN");
}

TEST(Wql, References_PutsThePathInBracesAsItIs) {
    EXPECT_EQ(Wql::References(L"\\\\HOST\\ROOT\\MarloLUM2:Zorel_VLAN.Name=\"{1}\"", L"Zorel_VLANFor"),
              L"REFERENCES OF {\\\\HOST\\ROOT\\MarloLUM2:Zorel_VLAN.Name=\"{1}\"} WHERE ResultClass = "
              L"Zorel_VLANFor");
}

} // namespace
