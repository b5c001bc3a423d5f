// VariantChangeType: which value every type has as every other, what overflows and what does not convert.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

namespace {

constexpr VARTYPE kTargets[] = {VT_BOOL, VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4,
                                VT_UI4,  VT_I8, VT_UI8, VT_R4, VT_R8,  VT_BSTR};

VARIANT Of(VARTYPE type, LONGLONG value) {
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = type;
    // Little-endian on both hosts: the low bytes are the value of every integer type.
    V_I8(&variant) = value;
    return variant;
}

VARIANT Real(double value) {
    VARIANT variant = Of(VT_R8, 0);
    V_R8(&variant) = value;
    return variant;
}

VARIANT Single(float value) {
    VARIANT variant = Of(VT_R4, 0);
    V_R4(&variant) = value;
    return variant;
}

VARIANT Text(const wchar_t* text) {
    VARIANT variant = Of(VT_BSTR, 0);
    V_BSTR(&variant) = SysAllocString(text);
    return variant;
}

/// Not every SDK says that the source is only read.
HRESULT Change(VARIANT& target, const VARIANT& source, USHORT flags, VARTYPE type) {
    return VariantChangeType(&target, const_cast<VARIANT*>(&source), flags, type);
}

std::wstring Shown(const VARIANT& variant) {
    std::wostringstream shown;
    switch (V_VT(&variant)) {
    case VT_BOOL:
        shown << V_BOOL(&variant);
        break;
    case VT_I1:
        shown << static_cast<int>(static_cast<signed char>(V_I1(&variant)));
        break;
    case VT_UI1:
        shown << static_cast<int>(V_UI1(&variant));
        break;
    case VT_I2:
        shown << V_I2(&variant);
        break;
    case VT_UI2:
        shown << V_UI2(&variant);
        break;
    case VT_I4:
    case VT_INT:
        shown << V_I4(&variant);
        break;
    case VT_UI4:
    case VT_UINT:
        shown << V_UI4(&variant);
        break;
    case VT_I8:
        shown << V_I8(&variant);
        break;
    case VT_UI8:
        shown << V_UI8(&variant);
        break;
    case VT_R4:
        shown.precision(9);
        shown << V_R4(&variant);
        break;
    case VT_R8:
        shown.precision(15);
        shown << V_R8(&variant);
        break;
    case VT_BSTR:
        shown << std::wstring(V_BSTR(&variant), SysStringLen(V_BSTR(&variant)));
        break;
    default:
        shown << L"type " << V_VT(&variant);
        break;
    }
    return shown.str();
}

/// The value as the type, or "o" where it overflows, "m" where the types do not match.
std::wstring Converted(const VARIANT& source, VARTYPE type, USHORT flags = 0) {
    VARIANT target;
    VariantInit(&target);
    const HRESULT hr = Change(target, source, flags, type);
    std::wostringstream result;
    if (hr == DISP_E_OVERFLOW) {
        result << L"o";
    } else if (hr == DISP_E_TYPEMISMATCH) {
        result << L"m";
    } else if (hr != S_OK) {
        result << std::hex << hr;
    } else if (V_VT(&target) != type) {
        result << L"a value of type " << V_VT(&target);
    } else {
        result << Shown(target);
    }
    EXPECT_TRUE(hr == S_OK || V_VT(&target) == VT_EMPTY) << "a failure changes nothing";
    VariantClear(&target);
    return result.str();
}

std::wstring Row(const VARIANT& source) {
    std::wstring row;
    for (const VARTYPE type : kTargets) {
        if (type != VT_BSTR || V_VT(&source) != VT_BSTR) {
            row += (row.empty() ? L"" : L" ") + Converted(source, type);
        }
    }
    return row;
}

std::wstring AllMismatch() {
    return L"m m m m m m m m m m m m";
}

struct NumberRow {
    VARIANT source;
    const wchar_t* expected;
};

// As BOOL, I1, UI1, I2, UI2, I4, UI4, I8, UI8, R4, R8 and BSTR.
const NumberRow kNumbers[] = {
    {Of(VT_EMPTY, 0), L"0 0 0 0 0 0 0 0 0 0 0 "},
    {Of(VT_BOOL, -1), L"-1 -1 255 -1 65535 -1 4294967295 -1 18446744073709551615 -1 -1 -1"},
    {Of(VT_BOOL, 0), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Of(VT_I1, -1), L"-1 -1 255 -1 o -1 o -1 o -1 -1 -1"},
    {Of(VT_I1, -128), L"-1 -128 128 -128 o -128 o -128 o -128 -128 -128"},
    {Of(VT_I1, 127), L"-1 127 127 127 127 127 127 127 127 127 127 127"},
    {Of(VT_UI1, 0), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Of(VT_UI1, 128), L"-1 -128 128 128 128 128 128 128 128 128 128 128"},
    {Of(VT_UI1, 255), L"-1 -1 255 255 255 255 255 255 255 255 255 255"},
    {Of(VT_I2, -1), L"-1 -1 o -1 65535 -1 o -1 o -1 -1 -1"},
    {Of(VT_I2, 300), L"-1 o o 300 300 300 300 300 300 300 300 300"},
    {Of(VT_I2, -300), L"-1 o o -300 65236 -300 o -300 o -300 -300 -300"},
    {Of(VT_I2, -32768), L"-1 o o -32768 32768 -32768 o -32768 o -32768 -32768 -32768"},
    {Of(VT_UI2, 255), L"-1 o 255 255 255 255 255 255 255 255 255 255"},
    {Of(VT_UI2, 40000), L"-1 o o -25536 40000 40000 40000 40000 40000 40000 40000 40000"},
    {Of(VT_UI2, 65535), L"-1 o o -1 65535 65535 65535 65535 65535 65535 65535 65535"},
    {Of(VT_I4, 0), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Of(VT_I4, -1), L"-1 -1 o -1 o -1 4294967295 -1 o -1 -1 -1"},
    {Of(VT_I4, 40000), L"-1 o o o 40000 40000 40000 40000 40000 40000 40000 40000"},
    {Of(VT_I4, 70000), L"-1 o o o o 70000 70000 70000 70000 70000 70000 70000"},
    {Of(VT_I4, 2147483647),
     L"-1 o o o o 2147483647 2147483647 2147483647 2147483647 2.14748365e+09 2147483647 2147483647"},
    {Of(VT_I4, -2147483647 - 1),
     L"-1 o o o o -2147483648 2147483648 -2147483648 o -2.14748365e+09 -2147483648 -2147483648"},
    {Of(VT_UI4, 70000), L"-1 o o o o 70000 70000 70000 70000 70000 70000 70000"},
    {Of(VT_UI4, 2147483648),
     L"-1 o o o o -2147483648 2147483648 2147483648 2147483648 2.14748365e+09 2147483648 2147483648"},
    {Of(VT_UI4, 4294967295),
     L"-1 o o o o -1 4294967295 4294967295 4294967295 4.2949673e+09 4294967295 4294967295"},
    {Of(VT_I8, 0), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Of(VT_I8, -1), L"-1 -1 o -1 o -1 o -1 18446744073709551615 -1 -1 -1"},
    {Of(VT_I8, 5000000000), L"-1 o o o o o o 5000000000 5000000000 5e+09 5000000000 5000000000"},
    {Of(VT_I8, std::numeric_limits<LONGLONG>::min()),
     L"-1 o o o o o o -9223372036854775808 9223372036854775808 -9.22337204e+18 -9.22337203685478e+18 "
     L"-9223372036854775808"},
    {Of(VT_I8, 9223372036854775807), L"-1 o o o o o o 9223372036854775807 9223372036854775807 9.22337204e+18 "
                                     L"9.22337203685478e+18 9223372036854775807"},
    {Of(VT_UI8, 5), L"-1 5 5 5 5 5 5 5 5 5 5 5"},
    {Of(VT_UI8, static_cast<LONGLONG>(9223372036854775808ull)),
     L"-1 o o o o o o -9223372036854775808 9223372036854775808 9.22337204e+18 9.22337203685478e+18 "
     L"9223372036854775808"},
    {Of(VT_UI8, static_cast<LONGLONG>(18446744073709551615ull)),
     L"-1 o o o o o o -1 18446744073709551615 1.84467441e+19 1.84467440737096e+19 18446744073709551615"},
    {Real(0), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Real(0.5), L"-1 0 0 0 0 0 0 0 0 0.5 0.5 0.5"},
    {Real(1.5), L"-1 2 2 2 2 2 2 2 2 1.5 1.5 1.5"},
    {Real(2.5), L"-1 2 2 2 2 2 2 2 2 2.5 2.5 2.5"},
    {Real(-0.5), L"-1 0 0 0 0 0 0 0 0 -0.5 -0.5 -0.5"},
    {Real(-1.5), L"-1 -2 o -2 o -2 o -2 o -1.5 -1.5 -1.5"},
    {Real(-2.5), L"-1 -2 o -2 o -2 o -2 o -2.5 -2.5 -2.5"},
    {Real(127.5), L"-1 o 128 128 128 128 128 128 128 127.5 127.5 127.5"},
    {Real(255.5), L"-1 o o 256 256 256 256 256 256 255.5 255.5 255.5"},
    {Real(3.14159265358979), L"-1 3 3 3 3 3 3 3 3 3.14159274 3.14159265358979 3.14159265358979"},
    {Real(10000000000), L"-1 o o o o o o 10000000000 10000000000 1e+10 10000000000 10000000000"},
    {Real(1e+19), L"-1 o o o o o o o 10000000000000000000 9.99999998e+18 1e+19 1E+19"},
    {Real(1e+300), L"-1 o o o o o o o o o 1e+300 1E+300"},
    {Real(1e-300), L"-1 0 0 0 0 0 0 0 0 0 1e-300 1E-300"},
    {Real(1e+15), L"-1 o o o o o o 1000000000000000 1000000000000000 9.99999987e+14 1e+15 1E+15"},
    {Real(0.1), L"-1 0 0 0 0 0 0 0 0 0.100000001 0.1 0.1"},
    {Real(1e-05), L"-1 0 0 0 0 0 0 0 0 9.99999975e-06 1e-05 1E-05"},
    {Real(32767.5), L"-1 o o o 32768 32768 32768 32768 32768 32767.5 32767.5 32767.5"},
    {Real(32767.4), L"-1 o o 32767 32767 32767 32767 32767 32767 32767.4004 32767.4 32767.4"},
    {Real(-32768.5), L"-1 o o -32768 o -32768 o -32768 o -32768.5 -32768.5 -32768.5"},
    {Real(2147483647.5),
     L"-1 o o o o o 2147483648 2147483648 2147483648 2.14748365e+09 2147483647.5 2147483647.5"},
    {Real(-2147483648.5),
     L"-1 o o o o -2147483648 o -2147483648 o -2.14748365e+09 -2147483648.5 -2147483648.5"},
    {Single(0.0f), L"0 0 0 0 0 0 0 0 0 0 0 0"},
    {Single(0.5f), L"-1 0 0 0 0 0 0 0 0 0.5 0.5 0.5"},
    {Single(1.5f), L"-1 2 2 2 2 2 2 2 2 1.5 1.5 1.5"},
    {Single(0.100000001f), L"-1 0 0 0 0 0 0 0 0 0.100000001 0.100000001490116 0.1"},
    {Single(3.14159274f), L"-1 3 3 3 3 3 3 3 3 3.14159274 3.14159274101257 3.141593"},
    {Single(1e+10f), L"-1 o o o o o o 10000000000 10000000000 1e+10 10000000000 1E+10"},
    {Single(-7.25f), L"-1 -7 o -7 o -7 o -7 o -7.25 -7.25 -7.25"},
    {Single(9.99999968e+37f), L"-1 o o o o o o o o 9.99999968e+37 9.99999968028569e+37 1E+38"},
    {Single(16777216.0f), L"-1 o o o o 16777216 16777216 16777216 16777216 16777216 16777216 1.677722E+07"},
    {Single(1234567.0f), L"-1 o o o o 1234567 1234567 1234567 1234567 1234567 1234567 1234567"},
    {Single(12345678.0f), L"-1 o o o o 12345678 12345678 12345678 12345678 12345678 12345678 1.234568E+07"},
};

TEST(VariantChangeTypeTest, NumbersBecomeEveryOtherType) {
    for (const NumberRow& row : kNumbers) {
        EXPECT_EQ(Row(row.source), row.expected) << "type " << V_VT(&row.source) << ", " << Shown(row.source);
    }
}

struct TextRow {
    const wchar_t* text;
    const wchar_t* expected;
};

// As BOOL, I1, UI1, I2, UI2, I4, UI4, I8, UI8, R4 and R8.
const TextRow kTexts[] = {
    {L"", L"m m m m m m m m m m m"},
    {L"5", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"-5", L"-1 -5 o -5 o -5 o -5 o -5 -5"},
    {L"+5", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L" 5 ", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"-1", L"-1 -1 o -1 o -1 o -1 o -1 -1"},
    {L"&H10", L"-1 16 16 16 16 16 16 16 16 16 16"},
    {L"&HFF", L"-1 -1 255 255 255 255 255 255 255 255 255"},
    {L"&hff", L"-1 -1 255 255 255 255 255 255 255 255 255"},
    {L"&HFFFF", L"-1 o o -1 65535 65535 65535 65535 65535 65535 65535"},
    {L"&O17", L"-1 15 15 15 15 15 15 15 15 15 15"},
    {L"&H80000000", L"-1 o o o o -2147483648 2147483648 2147483648 2147483648 -2.14748365e+09 -2147483648"},
    {L"1,234", L"-1 o o 1234 1234 1234 1234 1234 1234 1234 1234"},
    {L"5,", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"1.5", L"-1 2 2 2 2 2 2 2 2 1.5 1.5"},
    {L"2.5", L"-1 2 2 2 2 2 2 2 2 2.5 2.5"},
    {L".5", L"-1 0 0 0 0 0 0 0 0 0.5 0.5"},
    {L"5.", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"0.5", L"-1 0 0 0 0 0 0 0 0 0.5 0.5"},
    {L"1e3", L"-1 o o 1000 1000 1000 1000 1000 1000 1000 1000"},
    {L"1e-3", L"-1 0 0 0 0 0 0 0 0 0.00100000005 0.001"},
    {L"1e400", L"o o o o o o o o o o o"},
    {L"1e-400", L"0 0 0 0 0 0 0 0 0 0 0"},
    {L"127", L"-1 127 127 127 127 127 127 127 127 127 127"},
    {L"128", L"-1 o 128 128 128 128 128 128 128 128 128"},
    {L"-128", L"-1 -128 o -128 o -128 o -128 o -128 -128"},
    {L"-129", L"-1 o o -129 o -129 o -129 o -129 -129"},
    {L"255", L"-1 o 255 255 255 255 255 255 255 255 255"},
    {L"256", L"-1 o o 256 256 256 256 256 256 256 256"},
    {L"32768", L"-1 o o o 32768 32768 32768 32768 32768 32768 32768"},
    {L"65535", L"-1 o o o 65535 65535 65535 65535 65535 65535 65535"},
    {L"65536", L"-1 o o o o 65536 65536 65536 65536 65536 65536"},
    {L"65535.4", L"-1 o o o 65535 65535 65535 65535 65535 65535.3984 65535.4"},
    {L"65535.5", L"-1 o o o o 65536 65536 65536 65536 65535.5 65535.5"},
    {L"2147483647", L"-1 o o o o 2147483647 2147483647 2147483647 2147483647 2.14748365e+09 2147483647"},
    {L"2147483648", L"-1 o o o o o 2147483648 2147483648 2147483648 2.14748365e+09 2147483648"},
    {L"-2147483648", L"-1 o o o o -2147483648 o -2147483648 o -2.14748365e+09 -2147483648"},
    {L"-2147483649", L"-1 o o o o o o -2147483649 o -2.14748365e+09 -2147483649"},
    {L"4294967295", L"-1 o o o o o 4294967295 4294967295 4294967295 4.2949673e+09 4294967295"},
    {L"4294967296", L"-1 o o o o o o 4294967296 4294967296 4.2949673e+09 4294967296"},
    {L"18446744073709551615", L"-1 o o o o o o o 18446744073709551615 1.84467441e+19 1.84467440737096e+19"},
    {L"18446744073709551616", L"-1 o o o o o o o o 1.84467441e+19 1.84467440737096e+19"},
    {L"(5)", L"-1 -5 o -5 o -5 o -5 o -5 -5"},
    {L"$5", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"-$5", L"-1 -5 o -5 o -5 o -5 o -5 -5"},
    {L"5-", L"-1 -5 o -5 o -5 o -5 o -5 -5"},
    {L"- 5", L"-1 -5 o -5 o -5 o -5 o -5 -5"},
    {L"--5", L"m m m m m m m m m m m"},
    {L"True", L"-1 m m m m m m m m m m"},
    {L"false", L"0 m m m m m m m m m m"},
    {L"TRUE", L"-1 m m m m m m m m m m"},
    {L"#TRUE#", L"-1 m m m m m m m m m m"},
    {L"#FALSE#", L"0 m m m m m m m m m m"},
    {L"#true#", L"m m m m m m m m m m m"},
    {L"1,234.5", L"-1 o o 1234 1234 1234 1234 1234 1234 1234.5 1234.5"},
    {L"00000000000000000000000000000005", L"-1 5 5 5 5 5 5 5 5 5 5"},
    {L"abc", L"m m m m m m m m m m m"},
    {L"5x", L"m m m m m m m m m m m"},
    {L"5 5", L"m m m m m m m m m m m"},
    {L"0x10", L"m m m m m m m m m m m"},
    {L"&H", L"m m m m m m m m m m m"},
    {L"&H1FFFFFFFFFFFFFFFF", L"o o o o o o o o o o o"},
    {L",5", L"m m m m m m m m m m m"},
    {L".", L"m m m m m m m m m m m"},
    {L"-", L"m m m m m m m m m m m"},
    {L"1e", L"m m m m m m m m m m m"},
    {L"1/2", L"m m m m m m m m m m m"},
    {L"5%", L"m m m m m m m m m m m"},
    {L"Yes", L"m m m m m m m m m m m"},
    {L" true", L"m m m m m m m m m m m"},
    {L"nan", L"m m m m m m m m m m m"},
};

TEST(VariantChangeTypeTest, TextsAreReadAsNumbers) {
    for (const TextRow& row : kTexts) {
        VARIANT source = Text(row.text);
        EXPECT_EQ(Row(source), row.expected) << '"' << std::wstring(row.text) << '"';
        VariantClear(&source);
    }
}

TEST(VariantChangeTypeTest, NullTextIsAnEmptyText) {
    const VARIANT source = Of(VT_BSTR, 0);
    EXPECT_EQ(Row(source), L"m m m m m m m m m m m");
    EXPECT_EQ(Converted(source, VT_BSTR), L"");
}

TEST(VariantChangeTypeTest, TextEndsAtItsFirstZero) {
    VARIANT source = Of(VT_BSTR, 0);
    V_BSTR(&source) = SysAllocStringLen(L"5\0x", 3);
    EXPECT_EQ(Converted(source, VT_I4), L"5");
    VariantClear(&source);
}

TEST(VariantChangeTypeTest, NullAndErrorAreNoNumbers) {
    EXPECT_EQ(Row(Of(VT_NULL, 0)), AllMismatch());
    EXPECT_EQ(Row(Of(VT_ERROR, E_FAIL)), AllMismatch());
    EXPECT_EQ(Row(Of(VT_UNKNOWN, 0)), AllMismatch());
}

TEST(VariantChangeTypeTest, IntAndUintAreTheirSizedForms) {
    for (const LONGLONG value : {0LL, -1LL, 40000LL, 70000LL, 2147483647LL}) {
        EXPECT_EQ(Row(Of(VT_INT, value)), Row(Of(VT_I4, value)));
        EXPECT_EQ(Row(Of(VT_UINT, value)), Row(Of(VT_UI4, value)));
    }
    for (const NumberRow& row : kNumbers) {
        EXPECT_EQ(Converted(row.source, VT_INT), Converted(row.source, VT_I4));
        EXPECT_EQ(Converted(row.source, VT_UINT), Converted(row.source, VT_UI4));
    }
}

VARIANT Decimal(ULONG high, ULONG middle, ULONG low, BYTE scale, bool negative = false) {
    VARIANT variant = Of(VT_DECIMAL, 0);
    DECIMAL& decimal = V_DECIMAL(&variant);
    decimal.Hi32 = high;
    decimal.Mid32 = middle;
    decimal.Lo32 = low;
    decimal.scale = scale;
    decimal.sign = negative ? DECIMAL_NEG : 0;
    return variant;
}

TEST(VariantChangeTypeTest, DecimalsAreNumbersToo) {
    EXPECT_EQ(Converted(Decimal(0, 0, 7, 0), VT_I4), L"7");
    EXPECT_EQ(Converted(Decimal(0, 0, 700, 2, true), VT_I2), L"-7");
    EXPECT_EQ(Converted(Decimal(0, 0, 25, 1), VT_I4), L"2");
    EXPECT_EQ(Converted(Decimal(0, 0, 35, 1), VT_I4), L"4");
    EXPECT_EQ(Converted(Decimal(0, 0, 0, 0), VT_BOOL), L"0");
    EXPECT_EQ(Converted(Decimal(0, 0, 5, 1), VT_BOOL), L"-1");
    EXPECT_EQ(Converted(Decimal(0, 0, 125, 2, true), VT_R8), L"-1.25");
    EXPECT_EQ(Converted(Decimal(0, ~0u, ~0u, 0), VT_UI8), L"18446744073709551615");
    EXPECT_EQ(Converted(Decimal(0, 0, 1, 0, true), VT_UI4), Converted(Of(VT_I8, -1), VT_UI4));
    EXPECT_EQ(Converted(Decimal(1, 0, 0, 0), VT_I8), Converted(Real(1e30), VT_I8));
}

TEST(VariantChangeTypeTest, DecimalsKeepTheirDigitsInText) {
    EXPECT_EQ(Converted(Decimal(0, 0, 12345, 2), VT_BSTR), L"123.45");
    EXPECT_EQ(Converted(Decimal(0, 0, 5, 3, true), VT_BSTR), L"-0.005");
    EXPECT_EQ(Converted(Decimal(~0u, ~0u, ~0u, 0), VT_BSTR), L"79228162514264337593543950335");
}

TEST(VariantChangeTypeTest, EmptyAndNullAreTargetsToo) {
    VARIANT target = Text(L"old");
    const VARIANT number = Of(VT_I4, 5);
    EXPECT_EQ(Change(target, number, 0, VT_EMPTY), S_OK);
    EXPECT_EQ(V_VT(&target), VT_EMPTY);
    EXPECT_EQ(Change(target, number, 0, VT_NULL), S_OK);
    EXPECT_EQ(V_VT(&target), VT_NULL);
    const VARIANT null = Of(VT_NULL, 0);
    EXPECT_EQ(Change(target, null, 0, VT_EMPTY), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Change(target, null, 0, VT_NULL), S_OK);
}

TEST(VariantChangeTypeTest, BooleansAreNumbersInTextUnlessAskedForWords) {
    EXPECT_EQ(Converted(Of(VT_BOOL, VARIANT_TRUE), VT_BSTR), L"-1");
    EXPECT_EQ(Converted(Of(VT_BOOL, VARIANT_TRUE), VT_BSTR, VARIANT_ALPHABOOL), L"True");
    EXPECT_EQ(Converted(Of(VT_BOOL, VARIANT_FALSE), VT_BSTR, VARIANT_ALPHABOOL), L"False");
}

TEST(VariantChangeTypeTest, WhatIsNeverConvertedDoesNotMatch) {
    VARIANT target;
    VariantInit(&target);
    const VARIANT number = Of(VT_I4, 5);
    const int never[] = {VT_ERROR, VT_UNKNOWN, VT_DISPATCH, VT_VARIANT, VT_I4 | VT_ARRAY, VT_I4 | VT_BYREF};
    for (const int type : never) {
        EXPECT_EQ(Change(target, number, 0, static_cast<VARTYPE>(type)), DISP_E_TYPEMISMATCH) << type;
    }
    for (const VARTYPE type : {VARTYPE{15}, VARTYPE{200}}) {
        EXPECT_EQ(Change(target, number, 0, type), DISP_E_BADVARTYPE) << type;
    }
    EXPECT_EQ(V_VT(&target), VT_EMPTY);
}

TEST(VariantChangeTypeTest, AnArrayIsNoNumber) {
    VARIANT source = Of(VT_ARRAY | VT_I4, 0);
    V_ARRAY(&source) = SafeArrayCreateVector(VT_I4, 0, 1);
    EXPECT_EQ(Row(source), AllMismatch());
    VARIANT same;
    VariantInit(&same);
    EXPECT_EQ(Change(same, source, 0, VT_ARRAY | VT_I4), S_OK);
    EXPECT_NE(V_ARRAY(&same), V_ARRAY(&source));
    VariantClear(&same);
    VariantClear(&source);
}

TEST(VariantChangeTypeTest, FollowsAReference) {
    LONG number = 321;
    VARIANT source = Of(VT_BYREF | VT_I4, 0);
    V_I4REF(&source) = &number;
    EXPECT_EQ(Converted(source, VT_BSTR), L"321");
    VARIANT inner = Of(VT_UI1, 7);
    VARIANT outer = Of(VT_BYREF | VT_VARIANT, 0);
    V_VARIANTREF(&outer) = &inner;
    EXPECT_EQ(Converted(outer, VT_I4), L"7");
}

TEST(VariantChangeTypeTest, MayConvertInPlace) {
    VARIANT variant = Text(L"77");
    EXPECT_EQ(Change(variant, variant, 0, VT_I4), S_OK);
    EXPECT_EQ(V_VT(&variant), VT_I4);
    EXPECT_EQ(V_I4(&variant), 77);
    EXPECT_EQ(Change(variant, variant, 0, VT_BSTR), S_OK);
    EXPECT_EQ(Shown(variant), L"77");
    EXPECT_EQ(Change(variant, variant, 0, VT_UNKNOWN), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(V_VT(&variant), VT_BSTR) << "a failure leaves the value alone";
    EXPECT_EQ(Shown(variant), L"77");
    VariantClear(&variant);
}

TEST(VariantChangeTypeTest, ReplacesWhatTheTargetHeld) {
    VARIANT target = Text(L"old");
    const VARIANT number = Of(VT_I4, 5);
    EXPECT_EQ(Change(target, number, 0, VT_BSTR), S_OK);
    EXPECT_EQ(Shown(target), L"5");
    const VARIANT bad = Of(VT_NULL, 0);
    EXPECT_EQ(Change(target, bad, 0, VT_I4), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Shown(target), L"5");
    VariantClear(&target);
}

} // namespace
