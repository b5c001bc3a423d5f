// Values of every type, out and back.
#include "Sample.h"

#include <soap/Values.h>

#include <gtest/gtest.h>

#include <limits>

namespace quillet::tests {

namespace {

using wmi::Scalar;
using wmi::Value;
using wsman::DateTimeForm;
using wsman::MessageError;
using wsman::XmlDocument;
using wsman::XmlWriter;

Value ValueIn(const std::string& xml, CIMTYPE type) {
    const XmlDocument document(Rooted(xml));
    return wsman::ReadValue(document.Root().Children(), PropertyOf(L"V", type), SampleSpace());
}

std::string Written(const Value& value, CIMTYPE type, DateTimeForm form = DateTimeForm::Xml) {
    XmlWriter xml;
    wsman::WriteValue(xml, "p", PropertyOf(L"V", type), value, SampleSpace(), form);
    return xml.Take();
}

struct Kept {
    CIMTYPE type;
    Value value;
};

class KeptValuesTest : public testing::TestWithParam<Kept> {};

TEST_P(KeptValuesTest, GoOutAndComeBack) {
    const auto& [type, value] = GetParam();
    for (const DateTimeForm form : {DateTimeForm::Xml, DateTimeForm::Cim}) {
        EXPECT_TRUE(ValueIn(Written(value, type, form), type) == value) << Written(value, type, form);
    }
}

constexpr CIMTYPE kArray = CIM_FLAG_ARRAY;
Value Array(std::vector<std::optional<Scalar>> elements) {
    return Value(std::move(elements));
}

INSTANTIATE_TEST_SUITE_P(
    Values, KeptValuesTest,
    testing::Values(
        Kept{CIM_STRING, Value()}, Kept{CIM_STRING, Value::Text(L"")},
        Kept{CIM_STRING, Value::Text(L"  a\r\nb\t<&>\"' ")}, Kept{CIM_STRING, Value::Text(L"\u00FC \u6771")},
        Kept{CIM_BOOLEAN, Value::Bool(true)}, Kept{CIM_BOOLEAN, Value::Bool(false)},
        Kept{CIM_SINT8, Value::Signed(-128)}, Kept{CIM_UINT8, Value::Unsigned(255)},
        Kept{CIM_SINT16, Value::Signed(-32768)}, Kept{CIM_UINT16, Value::Unsigned(65535)},
        Kept{CIM_SINT32, Value::Signed(std::numeric_limits<std::int32_t>::min())},
        Kept{CIM_UINT32, Value::Unsigned(std::numeric_limits<std::uint32_t>::max())},
        Kept{CIM_SINT64, Value::Signed(std::numeric_limits<std::int64_t>::min())},
        Kept{CIM_UINT64, Value::Unsigned(std::numeric_limits<std::uint64_t>::max())},
        Kept{CIM_REAL64, Value(Scalar(-1.5e300))}, Kept{CIM_REAL32, Value(Scalar(0.25))},
        Kept{CIM_CHAR16, Value::Unsigned(L'x')}, Kept{CIM_CHAR16, Value::Unsigned(L'7')},
        Kept{CIM_DATETIME, Value::Text(L"20240403144550.468750+120")},
        Kept{CIM_DATETIME, Value::Text(L"00000001000000.000000:000")},
        Kept{CIM_REFERENCE, Value::Text(LR"(\\SERVER12\ROOT\MarloLUM2:T_Text.Name="a")")},
        Kept{CIM_STRING | kArray, Array({L"a", L"", L"c"})}, Kept{CIM_STRING | kArray, Array({L"one"})},
        Kept{CIM_UINT32 | kArray, Array({std::uint64_t{1}, std::nullopt, std::uint64_t{3}})},
        Kept{CIM_UINT8 | kArray, Value(Value::Bytes{0, 1, 255})}, Kept{CIM_BOOLEAN | kArray, Value()}));

TEST(ValuesTest, ForeignForms_AreRead) {
    EXPECT_TRUE(ValueIn("<x:V xmlns:x='urn:y'>TRUE</x:V>", CIM_BOOLEAN) == Value::Bool(true));
    EXPECT_TRUE(ValueIn("<V>0</V>", CIM_BOOLEAN) == Value::Bool(false));
    EXPECT_TRUE(ValueIn("<V>\n +12 </V>", CIM_UINT16) == Value::Unsigned(12));
    EXPECT_TRUE(ValueIn("<V xsi:type='cim:cimString'>x</V>", CIM_STRING) == Value::Text(L"x"));
    EXPECT_TRUE(ValueIn("<V>120</V>", CIM_CHAR16) == Value::Unsigned(L'x'));
    EXPECT_TRUE(ValueIn("<V><Datetime>2024-04-03T14:45:50Z</Datetime></V>", CIM_DATETIME) ==
                Value::Text(L"20240403144550.000000+000"));
    EXPECT_TRUE(ValueIn("<V>2024-04-03T14:45:50Z</V>", CIM_DATETIME) ==
                Value::Text(L"20240403144550.000000+000"));
    EXPECT_TRUE(ValueIn("<V>T_Text.Name=\"a\"</V>", CIM_REFERENCE) == Value::Text(L"T_Text.Name=\"a\""));
    // What is no number cannot stand in an instance here.
    EXPECT_THROW(ValueIn("<V>INF</V>", CIM_REAL64), MessageError);
    EXPECT_TRUE(ValueIn("<V xsi:nil='true'/>", CIM_STRING | kArray).IsNull());
}

TEST(ValuesTest, AReferenceThatIsNoPath_StaysTheTextThatItIs) {
    const Value text = Value::Text(L"no path..");
    EXPECT_TRUE(ValueIn(Written(text, CIM_REFERENCE), CIM_REFERENCE) == text);
}

TEST(ValuesTest, WhatIsNoneOfItsType_IsRefused) {
    EXPECT_THROW(ValueIn("<V>256</V>", CIM_UINT8), MessageError);
    EXPECT_THROW(ValueIn("<V>-1</V>", CIM_UINT32), MessageError);
    EXPECT_THROW(ValueIn("<V>18446744073709551616</V>", CIM_UINT64), MessageError);
    EXPECT_THROW(ValueIn("<V>1.5</V>", CIM_SINT32), MessageError);
    EXPECT_THROW(ValueIn("<V/>", CIM_SINT32), MessageError);
    EXPECT_THROW(ValueIn("<V>yes</V>", CIM_BOOLEAN), MessageError);
    EXPECT_THROW(ValueIn("<V>soon</V>", CIM_DATETIME), MessageError);
    EXPECT_THROW(ValueIn("<V>x</V>", CIM_REAL32), MessageError);
    EXPECT_THROW(ValueIn("<V>ab</V>", CIM_CHAR16), MessageError);
    EXPECT_THROW(ValueIn("<V>1</V><V>2</V>", CIM_UINT32), MessageError);
    EXPECT_THROW(ValueIn("<V>1</V><V>300</V>", CIM_UINT8 | kArray), MessageError);
}

TEST(ValuesTest, Properties_AreFoundWithoutRegardToOrderAndCase) {
    const wmi::ClassPtr definition =
        ClassOf(L"T", {PropertyOf(L"A", CIM_UINT32), PropertyOf(L"B", CIM_STRING | kArray),
                       PropertyOf(L"C", CIM_STRING)});
    const XmlDocument document(Rooted("<b>1</b><p:a>7</p:a><q:B xmlns:q='urn:q'>2</q:B>"));
    const wmi::Instance read =
        wsman::ReadProperties(definition, document.Root(), SampleSpace(), wsman::Unknown::Refused);
    EXPECT_EQ(read.Number(L"A"), 7);
    EXPECT_TRUE(read.values[1] == Array({L"1", L"2"}));
    EXPECT_TRUE(read.values[2].IsNull());
    const XmlDocument surplus(Rooted("<a>7</a><z>8</z>"));
    EXPECT_THROW(wsman::ReadProperties(definition, surplus.Root(), SampleSpace(), wsman::Unknown::Refused),
                 MessageError);
    EXPECT_EQ(wsman::ReadProperties(definition, surplus.Root(), SampleSpace(), wsman::Unknown::Ignored)
                  .Number(L"A"),
              7);
    XmlWriter xml;
    wsman::WriteProperties(xml, "p", read, SampleSpace(), DateTimeForm::Xml);
    EXPECT_EQ(xml.Take(), "<p:A>7</p:A><p:B>1</p:B><p:B>2</p:B><p:C xsi:nil=\"true\"/>");
}

} // namespace

} // namespace quillet::tests
