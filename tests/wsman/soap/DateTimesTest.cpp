// Datetimes in all their forms.
#include <soap/DateTimes.h>

#include <gtest/gtest.h>

#include <string>

namespace quillet::tests {

namespace {

struct Form {
    const wchar_t* cim;
    const char* element;
    const char* xml;
};

class DateTimeFormsTest : public testing::TestWithParam<Form> {};

TEST_P(DateTimeFormsTest, GoOutAndComeBack) {
    const wsman::XmlDateTime written = wsman::ToXmlDateTime(GetParam().cim);
    EXPECT_EQ(written.element, GetParam().element);
    EXPECT_EQ(written.text, GetParam().xml);
    EXPECT_EQ(wsman::FromXmlDateTime(written.text), GetParam().cim);
    const std::wstring cim = GetParam().cim;
    EXPECT_EQ(wsman::FromXmlDateTime(std::string(cim.begin(), cim.end())), cim);
}

INSTANTIATE_TEST_SUITE_P(
    DateTimes, DateTimeFormsTest,
    testing::Values(Form{L"20240403144550.468750+120", "Datetime", "2024-04-03T14:45:50.468750+02:00"},
                    Form{L"19991224120000.000123-330", "Datetime", "1999-12-24T12:00:00.000123-05:30"},
                    Form{L"20240403144550.000000+000", "Datetime", "2024-04-03T14:45:50.000000Z"},
                    Form{L"00000000000140.000000:000", "Interval", "P0DT0H1M40S"},
                    Form{L"11111111223344.555000:000", "Interval", "P11111111DT22H33M44.555000S"},
                    Form{L"20240403******.******+000", "CIM_DateTime", "20240403******.******+000"}));

TEST(DateTimesTest, OtherForms_AreRead) {
    EXPECT_EQ(wsman::FromXmlDateTime("2024-04-03T14:45:50Z"), L"20240403144550.000000+000");
    EXPECT_EQ(wsman::FromXmlDateTime("2024-04-03T14:45:50"), L"20240403144550.000000+000");
    EXPECT_EQ(wsman::FromXmlDateTime("2024-04-03T14:45:50.46875012+02:00"), L"20240403144550.468750+120");
    EXPECT_EQ(wsman::FromXmlDateTime("1999-12-24Z"), L"19991224******.******+000");
    EXPECT_EQ(wsman::FromXmlDateTime("PT90M"), L"00000000013000.000000:000");
    EXPECT_EQ(wsman::FromXmlDateTime("PT60.000S"), L"00000000000100.000000:000");
    EXPECT_EQ(wsman::FromXmlDateTime("P2D"), L"00000002000000.000000:000");
}

TEST(DateTimesTest, WhatIsNone_IsRefused) {
    for (const char* text :
         {"", "now", "P", "P1Y", "P1M", "PT", "P1D1H", "PT1", "PT1.S", "P999999999D", "2024-4-3",
          "2024-04-03T14:45", "2024-04-03T14:45:50+99:00", "2024-04-03T14:45:50 ", "2024-13-03T14:45:50Z",
          "20240403144550.468750+12", "xxxxxxxxxxxxxx.xxxxxx+xxx"}) {
        EXPECT_FALSE(wsman::FromXmlDateTime(text)) << text;
    }
}

} // namespace

} // namespace quillet::tests
