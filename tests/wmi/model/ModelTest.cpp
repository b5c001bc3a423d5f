// Names, values, qualifiers, and the look-ups of classes and instances.
#include "SmallSchema.h"

#include <cfloat>
#include <limits>

namespace quillet::tests {
namespace {

TEST(Names, KnowNoCase) {
    EXPECT_TRUE(SameName(L"DeviceID", L"DEVICEid"));
    EXPECT_FALSE(SameName(L"DeviceID", L"DeviceI"));
    std::map<std::wstring, int, NameLess> map{{L"Caption", 1}};
    EXPECT_NE(map.find(std::wstring_view(L"CAPTION")), map.end());
}

TEST(Names, IdentifiersBeginWithALetterOrUnderscore) {
    for (const wchar_t* name : {L"a", L"_x", L"Zorel_VLAN", L"__CLASS", L"a1", L"größe"}) {
        EXPECT_TRUE(IsIdentifier(name)) << ToUtf8(name);
    }
    for (const wchar_t* name : {L"", L"1a", L"a b", L"a-b", L"a.b", L"$a"}) {
        EXPECT_FALSE(IsIdentifier(name)) << ToUtf8(name);
    }
}

struct RangeCase {
    CIMTYPE type;
    std::int64_t low;
    std::uint64_t high;
};

/// GoogleTest would show the bytes, those between the members included.
void PrintTo(const RangeCase& range, std::ostream* out) {
    *out << "type " << range.type << " from " << range.low << " to " << range.high;
}

class IntegerRange : public ::testing::TestWithParam<RangeCase> {};

TEST_P(IntegerRange, FitsExactlyItsLimits) {
    const auto [type, low, high] = GetParam();
    EXPECT_TRUE(Fits(Value::Signed(low), type));
    EXPECT_TRUE(Fits(Value::Unsigned(high), type));
    if (low > INT64_MIN) {
        EXPECT_FALSE(Fits(Value::Signed(low - 1), type));
    }
    if (high < UINT64_MAX) {
        EXPECT_FALSE(Fits(Value::Unsigned(high + 1), type));
    }
    EXPECT_FALSE(Fits(Value::Text(L"1"), type));
    EXPECT_FALSE(Fits(Value::Bool(true), type));
    EXPECT_FALSE(Fits(Value(Scalar(1.0)), type));
    EXPECT_TRUE(Fits(Value(), type));
}

INSTANTIATE_TEST_SUITE_P(AllIntegers, IntegerRange,
                         ::testing::Values(RangeCase{CIM_SINT8, -128, 127}, RangeCase{CIM_UINT8, 0, 255},
                                           RangeCase{CIM_SINT16, -32768, 32767},
                                           RangeCase{CIM_UINT16, 0, 65535}, RangeCase{CIM_CHAR16, 0, 65535},
                                           RangeCase{CIM_SINT32, INT32_MIN, INT32_MAX},
                                           RangeCase{CIM_UINT32, 0, UINT32_MAX},
                                           RangeCase{CIM_SINT64, INT64_MIN, INT64_MAX},
                                           RangeCase{CIM_UINT64, 0, UINT64_MAX}));

TEST(Fits, TellsTheOtherTypesApart) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(Fits(Value::Bool(false), CIM_BOOLEAN));
    EXPECT_FALSE(Fits(Value::Signed(1), CIM_BOOLEAN));
    EXPECT_TRUE(Fits(Value::Text(L"x"), CIM_STRING));
    EXPECT_FALSE(Fits(Value::Signed(1), CIM_STRING));
    EXPECT_TRUE(Fits(Value::Text(L"A.b=1"), CIM_REFERENCE));
    EXPECT_TRUE(Fits(Value(Scalar(1e300)), CIM_REAL64));
    EXPECT_FALSE(Fits(Value(Scalar(1e300)), CIM_REAL32));
    EXPECT_TRUE(Fits(Value(Scalar(static_cast<double>(FLT_MAX))), CIM_REAL32));
    EXPECT_FALSE(Fits(Value(Scalar(infinity)), CIM_REAL64));
    EXPECT_FALSE(Fits(Value::Text(L"x"), CIM_OBJECT));
    EXPECT_FALSE(Fits(Value::Text(L"x"), CIM_EMPTY));
}

TEST(Fits, WantsTheShapeOfTheType) {
    const CIMTYPE strings = CIM_STRING | kArrayFlag;
    EXPECT_TRUE(Fits(Texts({L"a", nullptr, L""}), strings));
    EXPECT_TRUE(Fits(Value(Value::Array{}), strings));
    EXPECT_FALSE(Fits(Texts({L"a"}), CIM_STRING));
    EXPECT_FALSE(Fits(Value::Text(L"a"), strings));
    EXPECT_FALSE(Fits(Value(Value::Array{Scalar(std::int64_t{1}), Scalar(std::wstring(L"x"))}),
                      CIM_SINT32 | kArrayFlag));
}

TEST(DateTime, HasOneOfTwoForms) {
    for (const wchar_t* text : {L"20240131235959.123456+060", L"20240131235959.123456-480",
                                L"00000007120000.000000:000", L"2024****235959.******+000"}) {
        EXPECT_TRUE(IsDateTime(text)) << ToUtf8(text);
        EXPECT_TRUE(Fits(Value::Text(text), CIM_DATETIME)) << ToUtf8(text);
    }
    for (const wchar_t* text :
         {L"", L"2024-01-31", L"20240131235959.123456+06", L"20240131235959.123456+0600",
          L"20240131235959,123456+060", L"00000007120000.000000:001", L"20240131235959.12345x+060",
          L"20240131235959.123456 060"}) {
        EXPECT_FALSE(IsDateTime(text)) << ToUtf8(text);
        EXPECT_FALSE(Fits(Value::Text(text), CIM_DATETIME)) << ToUtf8(text);
    }
}

TEST(Normalised, BringsNumbersIntoTheSignednessOfTheType) {
    EXPECT_EQ(Normalised(Value::Signed(5), CIM_UINT32), Value::Unsigned(5));
    EXPECT_EQ(Normalised(Value::Unsigned(5), CIM_SINT8), Value::Signed(5));
    EXPECT_EQ(Normalised(Value(Scalar(0.1)), CIM_REAL32), Value(Scalar(static_cast<double>(0.1f))));
    EXPECT_EQ(Normalised(Value(Value::Array{Scalar(std::int64_t{1}), std::nullopt}), CIM_UINT8 | kArrayFlag),
              Value(Value::Array{Scalar(std::uint64_t{1}), std::nullopt}));
    EXPECT_EQ(Normalised(Value::Text(L"x"), CIM_STRING), Value::Text(L"x"));
    EXPECT_TRUE(Normalised(Value(), CIM_UINT32).IsNull());
}

TEST(QualifierList, FindsReplacesAndRemovesWithoutCase) {
    Qualifiers qualifiers;
    qualifiers.Set({L"Key", CIM_BOOLEAN, Value::Bool(true), 0, false, {}});
    qualifiers.Set({L"Values", CIM_STRING | kArrayFlag, Texts({L"a"}), 0, false, {}});
    qualifiers.Set({L"KEY", CIM_BOOLEAN, Value::Bool(false), 0, false, {}});
    ASSERT_EQ(qualifiers.All().size(), 2u);
    EXPECT_EQ(qualifiers.All()[0].value, Value::Bool(false));
    EXPECT_FALSE(qualifiers.Has(L"key"));
    EXPECT_TRUE(qualifiers.Has(L"VALUES"));
    EXPECT_FALSE(qualifiers.Has(L"other"));
    EXPECT_TRUE(qualifiers.Remove(L"values"));
    EXPECT_FALSE(qualifiers.Remove(L"values"));
    EXPECT_EQ(qualifiers.Find(L"values"), nullptr);
}

class InstanceTest : public RepositoryFixture {};

TEST(FitsTest, BytesFitSignedNumbersUpTo127) {
    EXPECT_TRUE(Fits(Value(Value::Bytes{0, 127}), static_cast<CIMTYPE>(CIM_SINT8) | kArrayFlag));
    EXPECT_FALSE(Fits(Value(Value::Bytes{0, 128}), static_cast<CIMTYPE>(CIM_SINT8) | kArrayFlag));
    EXPECT_TRUE(Fits(Value(Value::Bytes{0, 255}), static_cast<CIMTYPE>(CIM_SINT16) | kArrayFlag));
    EXPECT_FALSE(Fits(Value(Value::Bytes{0}), CIM_SINT8)) << "an array is no scalar";
    EXPECT_FALSE(Fits(Value(Value::Bytes{0}), static_cast<CIMTYPE>(CIM_STRING) | kArrayFlag));
}

TEST_F(InstanceTest, BeginsWithTheDefaultsOfItsClass) {
    const Instance device = New(L"T_FastDevice");
    EXPECT_EQ(device.Number(L"speed"), 1000);
    EXPECT_EQ(device.Number(L"Enabled"), 1);
    EXPECT_TRUE(device.Find(L"DeviceID")->IsNull());
    EXPECT_EQ(device.Find(L"Nothing"), nullptr);
}

TEST_F(InstanceTest, ReadsAndWritesByName) {
    Instance device = New(L"T_Device");
    EXPECT_TRUE(device.Set(L"SPEED", Value::Signed(100)));
    EXPECT_EQ(*device.Find(L"Speed"), Value::Unsigned(100));
    EXPECT_TRUE(device.Set(L"Offset", Value::Unsigned(7)));
    EXPECT_EQ(*device.Find(L"Offset"), Value::Signed(7));
    EXPECT_FALSE(device.Set(L"Nothing", Value()));
    EXPECT_TRUE(device.Set(L"Caption", Value::Text(L"x")));
    EXPECT_EQ(device.Text(L"caption"), L"x");
    EXPECT_EQ(device.Text(L"Speed"), L"");
    EXPECT_EQ(device.Text(L"Nothing"), L"");
    EXPECT_EQ(device.Number(L"Caption", -1), -1);
    EXPECT_EQ(device.Number(L"Serial", -1), -1);
}

TEST_F(InstanceTest, KeepsAValueThatDoesNotFitForTheRepositoryToRefuse) {
    Instance device = New(L"T_Device");
    EXPECT_TRUE(device.Set(L"Speed", Value::Text(L"fast")));
    EXPECT_EQ(*device.Find(L"Speed"), Value::Text(L"fast"));
}

TEST(InstanceWithoutClass, AnswersNothing) {
    Instance instance;
    EXPECT_EQ(instance.Find(L"x"), nullptr);
    EXPECT_FALSE(instance.Set(L"x", Value()));
    EXPECT_EQ(instance.Text(L"x"), L"");
    EXPECT_EQ(instance.Number(L"x", 3), 3);
    EXPECT_TRUE(Instance(nullptr).values.empty());
}

} // namespace
} // namespace quillet::tests
