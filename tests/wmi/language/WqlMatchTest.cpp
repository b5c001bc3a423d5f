// The truth of conditions, by CIM type.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

class WqlMatch : public RepositoryFixture {
  protected:
    WqlMatch() {
        m_device.Set(L"DeviceID", Value::Text(L"Port \xC4 1"));
        m_device.Set(L"Speed", Value::Unsigned(1000));
        m_device.Set(L"Offset", Value::Signed(-5));
        m_device.Set(L"Serial", Value::Unsigned(UINT64_MAX));
        m_device.Set(L"Enabled", Value::Bool(true));
        m_device.Set(L"Names", Texts({L"a", L"b"}));
        m_device.Set(L"Installed", Value::Text(L"20240301120000.000000+060"));
        m_device.Set(L"Load", Value(Scalar(0.5)));
        m_device.Set(L"Letter", Value::Unsigned(L'x'));
        m_device.Set(L"Peer", Value::Text(L"T_Device.DeviceID=\"p\""));
        m_device.Set(L"ParentId", Value::Text(L"12"));
    }

    bool Holds(const std::wstring& condition) const {
        const std::optional<WqlQuery> query = ParseWql(L"SELECT * FROM C WHERE " + condition);
        EXPECT_TRUE(query && query->where) << ToUtf8(condition);
        return query && query->where && Matches(*query->where, m_device);
    }

    Instance m_device = New(L"T_Device");
};

struct Truth {
    const wchar_t* condition;
    bool expected;
};

/// GoogleTest would show the bytes, those behind the last member included.
void PrintTo(const Truth& truth, std::ostream* out) {
    *out << (truth.expected ? "a true condition" : "a false condition");
}

class WqlTruth : public WqlMatch, public ::testing::WithParamInterface<Truth> {};

TEST_P(WqlTruth, IsAsWmiHasIt) {
    EXPECT_EQ(Holds(GetParam().condition), GetParam().expected) << ToUtf8(GetParam().condition);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WqlTruth,
    ::testing::Values(Truth{L"DeviceID = 'port \xE4 1'", true}, Truth{L"DEVICEID = 'Port \xC4 1'", true},
                      Truth{L"DeviceID = 'port'", false}, Truth{L"DeviceID <> 'port'", true},
                      Truth{L"DeviceID < 'q'", true}, Truth{L"DeviceID > 'O'", true},
                      Truth{L"DeviceID <= 'port \xC4 1'", true}, Truth{L"DeviceID = ''", false},
                      Truth{L"ParentId = 12", true}, Truth{L"ParentId = 12.0", true},
                      Truth{L"ParentId > 9", true}, Truth{L"ParentId > '9'", false},
                      Truth{L"DeviceID = 12", false}, Truth{L"DeviceID <> 12", true},
                      Truth{L"DeviceID > 12", false}, Truth{L"ParentId = TRUE", false}));
INSTANTIATE_TEST_SUITE_P(Integers, WqlTruth,
                         ::testing::Values(Truth{L"Speed = 1000", true}, Truth{L"Speed = '1000'", true},
                                           Truth{L"Speed = 1000.0", true}, Truth{L"Speed = '1e3'", true},
                                           Truth{L"Speed = 'fast'", false}, Truth{L"Speed <> 'fast'", true},
                                           Truth{L"Speed > 'fast'", false}, Truth{L"Speed < 1001", true},
                                           Truth{L"Speed <= 1000", true}, Truth{L"Speed >= 1001", false},
                                           Truth{L"999 < Speed", true}, Truth{L"Speed > -1", true},
                                           Truth{L"Offset = -5", true}, Truth{L"Offset < 0", true},
                                           Truth{L"Offset < 18446744073709551615", true},
                                           Truth{L"Serial = 18446744073709551615", true},
                                           Truth{L"Serial = '18446744073709551615'", true},
                                           Truth{L"Serial = -1", false},
                                           Truth{L"Serial > 9223372036854775807", true},
                                           Truth{L"Serial > 18446744073709551614", true}));
INSTANTIATE_TEST_SUITE_P(
    OtherTypes, WqlTruth,
    ::testing::Values(
        Truth{L"Enabled = TRUE", true}, Truth{L"Enabled = FALSE", false}, Truth{L"Enabled <> FALSE", true},
        Truth{L"Enabled = 1", true}, Truth{L"Enabled = 'true'", true}, Truth{L"Enabled = 'False'", false},
        Truth{L"Enabled <> 'FALSE'", true}, Truth{L"Enabled = '0'", false}, Truth{L"Enabled = 'yes'", false},
        Truth{L"Load = 0.5", true}, Truth{L"Load < 1", true}, Truth{L"Load = '0.5'", true},
        Truth{L"Letter = 'x'", true}, Truth{L"Letter = 120", true}, Truth{L"Letter = 'xy'", false},
        Truth{L"Installed = '20240301120000.000000+060'", true},
        Truth{L"Installed = '20240301110000.000000+000'", true},
        Truth{L"Installed > '20240229235959.000000+000'", true},
        Truth{L"Installed < '20240301110000.000001+000'", true},
        Truth{L"Installed > '20231231235959.999999-000'", true}, Truth{L"Installed = 'yesterday'", false},
        Truth{L"Names = 'a'", false}, Truth{L"Names <> 'a'", false}, Truth{L"Names IS NOT NULL", true}));
INSTANTIATE_TEST_SUITE_P(
    References, WqlTruth,
    ::testing::Values(Truth{L"Peer = 'T_Device.DeviceID=\"p\"'", true},
                      Truth{L"Peer = \"t_device.deviceid='P'\"", true},
                      Truth{L"Peer = 'T_Device.DeviceID=\"q\"'", false},
                      Truth{LR"(Peer = '\\HOST\ROOT\Test:T_Device.DeviceID="p"')", true},
                      Truth{LR"(Peer = '\\\\HOST\\ROOT\\Test:T_Device.DeviceID="p"')", true},
                      Truth{LR"(Peer <> '\\HOST\ROOT\Test:T_Device.DeviceID="p"')", false}));
INSTANTIATE_TEST_SUITE_P(Null, WqlTruth,
                         ::testing::Values(Truth{L"Caption IS NULL", true},
                                           Truth{L"Caption IS NOT NULL", false},
                                           Truth{L"Caption = NULL", true}, Truth{L"Caption <> NULL", false},
                                           Truth{L"NULL = Caption", true}, Truth{L"Speed = NULL", false},
                                           Truth{L"Speed <> NULL", true}, Truth{L"Caption = 'x'", false},
                                           Truth{L"Caption <> 'x'", true}, Truth{L"Caption < 'x'", false},
                                           Truth{L"Caption > 'x'", false}, Truth{L"Caption LIKE '%'", false},
                                           Truth{L"NOT Caption = 'x'", true}, Truth{L"Unheard IS NULL", true},
                                           Truth{L"Unheard = 5", false}));
INSTANTIATE_TEST_SUITE_P(Logic, WqlTruth,
                         ::testing::Values(Truth{L"Speed = 1 OR Offset = -5", true},
                                           Truth{L"Speed = 1 AND Offset = -5", false},
                                           Truth{L"NOT Speed = 1 AND Offset = -5", true},
                                           Truth{L"NOT (Speed = 1 OR Offset = -5)", false},
                                           Truth{L"Speed = 1 AND Offset = 1 OR Enabled = TRUE", true},
                                           Truth{L"Speed = 1 AND (Offset = 1 OR Enabled = TRUE)", false},
                                           Truth{L"NOT NOT Enabled = TRUE", true}));
INSTANTIATE_TEST_SUITE_P(
    Like, WqlTruth,
    ::testing::Values(Truth{L"DeviceID LIKE 'port%'", true}, Truth{L"DeviceID LIKE '%1'", true},
                      Truth{L"DeviceID LIKE '%\xE4%'", true}, Truth{L"DeviceID LIKE 'port'", false},
                      Truth{L"DeviceID LIKE 'port _ _'", true}, Truth{L"DeviceID LIKE 'port _'", false},
                      Truth{L"DeviceID LIKE '[o-q]ort%'", true}, Truth{L"DeviceID LIKE '[^o-q]ort%'", false},
                      Truth{L"DeviceID LIKE '[xyP]ort%'", true}, Truth{L"DeviceID LIKE '[%]ort%'", false},
                      Truth{L"DeviceID LIKE '%%%%1'", true}, Truth{L"DeviceID LIKE ''", false},
                      Truth{L"DeviceID LIKE '[port%'", false}, Truth{L"DeviceID NOT LIKE 'port%'", false},
                      Truth{L"DeviceID LIKE '%p%o%r%t%1%'", true}, Truth{L"DeviceID LIKE '%p%t%o%'", false},
                      Truth{L"Speed LIKE '1%'", false}));
INSTANTIATE_TEST_SUITE_P(System, WqlTruth,
                         ::testing::Values(Truth{L"__CLASS = 't_device'", true},
                                           Truth{L"__CLASS = 'T_FastDevice'", false},
                                           Truth{L"__SUPERCLASS = 'T_Element'", true}));

TEST_F(WqlMatch, AReferenceMayNameItsKeysInAnyOrder) {
    m_device.Set(L"Peer", Value::Text(L"T_Numbered.Number=1,Flag=TRUE"));
    EXPECT_TRUE(Holds(L"Peer = 'T_Numbered.Flag=TRUE,Number=1'"));
    EXPECT_FALSE(Holds(L"Peer = 'T_Numbered.Flag=FALSE,Number=1'"));
}

TEST_F(WqlMatch, PatternsOfManyPercentSignsStayQuick) {
    m_device.Set(L"DeviceID", Value::Text(std::wstring(5000, L'a')));
    std::wstring pattern;
    for (int i = 0; i < 200; ++i) {
        pattern += L"a%";
    }
    EXPECT_FALSE(Holds(L"DeviceID LIKE '" + pattern + L"b'"));
    EXPECT_TRUE(Holds(L"DeviceID LIKE '" + pattern + L"a'"));
}

} // namespace
} // namespace quillet::tests
