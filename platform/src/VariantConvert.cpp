// VariantChangeType: OLE's conversions between booleans, integers, reals and text.
#include "SafeArray.h"
#include "Text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>

namespace {

using quillet::platform::FoldCase;

/// A number on its way between two types. Integers are exact; text with a fraction or an exponent is a real.
struct Number {
    enum class Kind { Integer, Real, Bits } kind = Kind::Integer;
    bool negative = false;
    ULONGLONG magnitude = 0; ///< of an integer; the pattern itself of Bits ("&HFF")
    double real = 0;
    bool single = false; ///< a real of VT_R4, which is written with fewer digits
};

Number Integer(LONGLONG value) {
    Number number;
    number.negative = value < 0;
    number.magnitude = value < 0 ? 0ull - static_cast<ULONGLONG>(value) : static_cast<ULONGLONG>(value);
    return number;
}

Number Unsigned(ULONGLONG value) {
    Number number;
    number.magnitude = value;
    return number;
}

Number Real(double value, bool single = false) {
    Number number;
    number.kind = Number::Kind::Real;
    number.real = value;
    number.single = single;
    return number;
}

// --- Text to number ------------------------------------------------------------------------------------

/// Reads the text forms that OLE takes in US English: spaces around, a sign or parentheses, a currency sign,
/// thousands separators, a fraction, an exponent, and &H and &O for bit patterns.
class NumberText {
  public:
    explicit NumberText(std::wstring_view text) : m_text(text) {}

    HRESULT Read(Number& number) {
        if (!Lead() || !Body(number) || !Trail()) {
            return DISP_E_TYPEMISMATCH;
        }
        return Finish(number);
    }

  private:
    wchar_t Peek() const { return m_at < m_text.size() ? m_text[m_at] : L'\0'; }
    bool Accept(wchar_t character) {
        if (m_at < m_text.size() && m_text[m_at] == character) {
            ++m_at;
            return true;
        }
        return false;
    }
    bool AcceptSpace() {
        const wchar_t c = Peek();
        if (m_at < m_text.size() && (c == L' ' || (c >= L'\t' && c <= L'\r'))) {
            ++m_at;
            return true;
        }
        return false;
    }
    static bool IsDigit(wchar_t character) { return character >= L'0' && character <= L'9'; }

    bool Sign() {
        if (m_signed) {
            return false;
        }
        if (Accept(L'-')) {
            m_negative = m_signed = true;
        } else if (Accept(L'+')) {
            m_signed = true;
        } else {
            return false;
        }
        return true;
    }
    bool Currency() {
        if (m_currency || !Accept(L'$')) {
            return false;
        }
        m_currency = true;
        return true;
    }
    bool Lead() {
        for (;;) {
            if (AcceptSpace() || Sign() || Currency()) {
                continue;
            }
            if (!m_open && Accept(L'(')) {
                m_open = true;
                continue;
            }
            return true;
        }
    }
    bool Trail() {
        for (;;) {
            if (AcceptSpace() || Sign() || Currency()) {
                continue;
            }
            if (m_open && !m_closed && Accept(L')')) {
                m_closed = m_negative = true;
                continue;
            }
            break;
        }
        return m_at == m_text.size() && m_open == m_closed;
    }

    bool Body(Number& number) {
        if (Accept(L'&')) {
            return Pattern(number);
        }
        bool any = false;
        while (m_at < m_text.size()) {
            if (IsDigit(Peek())) {
                Digit(any);
            } else if (!any || !Accept(L',')) {
                break;
            }
        }
        if (Accept(L'.')) {
            m_real = true;
            while (IsDigit(Peek())) {
                Digit(any);
                --m_scale;
            }
        }
        return any && Exponent();
    }
    void Digit(bool& any) {
        any = true;
        if (!m_digits.empty() || Peek() != L'0') {
            m_digits.push_back(static_cast<char>(Peek()));
        }
        ++m_at;
    }
    bool Exponent() {
        if (!Accept(L'e') && !Accept(L'E')) {
            return true;
        }
        m_real = true;
        const bool negative = Accept(L'-');
        if (!negative) {
            Accept(L'+');
        }
        if (!IsDigit(Peek())) {
            return false;
        }
        long exponent = 0;
        while (IsDigit(Peek())) {
            if (exponent < kMaxExponent) {
                exponent = exponent * 10 + (Peek() - L'0');
            }
            ++m_at;
        }
        m_scale += negative ? -exponent : exponent;
        return true;
    }
    bool Pattern(Number& number) {
        unsigned shift = 0;
        if (Accept(L'H') || Accept(L'h')) {
            shift = 4;
        } else if (Accept(L'O') || Accept(L'o')) {
            shift = 3;
        } else {
            return false;
        }
        number.kind = Number::Kind::Bits;
        bool any = false;
        for (;; ++m_at) {
            const wchar_t c = FoldCase(Peek());
            unsigned digit = 0;
            if (IsDigit(c) && c < L'0' + (1 << shift)) {
                digit = static_cast<unsigned>(c - L'0');
            } else if (shift == 4 && c >= L'a' && c <= L'f') {
                digit = static_cast<unsigned>(c - L'a') + 10;
            } else {
                return any;
            }
            any = true;
            if (number.magnitude >> (64 - shift)) {
                m_overflow = true;
            }
            number.magnitude = (number.magnitude << shift) | digit;
        }
    }

    HRESULT Finish(Number& number) {
        if (m_overflow) {
            return DISP_E_OVERFLOW;
        }
        if (number.kind == Number::Kind::Bits) {
            return S_OK;
        }
        number.negative = m_negative;
        if (!m_real &&
            std::from_chars(m_digits.data(), m_digits.data() + m_digits.size(), number.magnitude).ec !=
                std::errc::result_out_of_range) {
            return S_OK;
        }
        if (m_digits.empty()) {
            m_digits = "0";
        }
        const std::string text = m_digits + "e" + std::to_string(m_scale);
        number.kind = Number::Kind::Real;
        const auto read = std::from_chars(text.data(), text.data() + text.size(), number.real);
        if (read.ec == std::errc::result_out_of_range) {
            // The number of digits before the point tells too great from too small.
            if (static_cast<long>(m_digits.size()) + m_scale > 0) {
                return DISP_E_OVERFLOW;
            }
            number.real = 0;
        }
        if (m_negative) {
            number.real = -number.real;
        }
        return S_OK;
    }

    static constexpr long kMaxExponent = 100000000;

    std::wstring_view m_text;
    std::size_t m_at = 0;
    bool m_signed = false;
    bool m_negative = false;
    bool m_currency = false;
    bool m_open = false;
    bool m_closed = false;
    bool m_real = false;
    bool m_overflow = false;
    long m_scale = 0;
    std::string m_digits;
};

/// The text as the conversions see it, which ends at the first zero.
std::wstring_view TextOf(const VARIANT& source) {
    return V_BSTR(&source) ? V_BSTR(&source) : L"";
}

/// A decimal number as it is written, without zeros at the end of its fraction.
std::wstring DecimalText(const DECIMAL& decimal) {
    ULONG limbs[] = {decimal.Hi32, decimal.Mid32, decimal.Lo32};
    std::wstring digits; // the last one first
    while (limbs[0] != 0 || limbs[1] != 0 || limbs[2] != 0 || digits.size() <= decimal.scale) {
        ULONGLONG rest = 0;
        for (ULONG& limb : limbs) {
            rest = rest << 32 | limb;
            limb = static_cast<ULONG>(rest / 10);
            rest %= 10;
        }
        digits.push_back(static_cast<wchar_t>(L'0' + rest));
    }
    std::wstring fraction(digits.begin(), digits.begin() + decimal.scale);
    fraction.erase(0, fraction.find_first_not_of(L'0'));
    std::wstring text(digits.rbegin(), digits.rend() - decimal.scale);
    if (!fraction.empty()) {
        text.append(1, L'.').append(fraction.rbegin(), fraction.rend());
    }
    return (decimal.sign & DECIMAL_NEG) != 0 && text != L"0" ? L'-' + text : text;
}

HRESULT ReadNumber(const VARIANT& source, Number& number) {
    switch (V_VT(&source)) {
    case VT_EMPTY:
        number = Integer(0);
        return S_OK;
    case VT_BOOL:
    case VT_I2:
        number = Integer(V_I2(&source));
        return S_OK;
    case VT_I1:
        number = Integer(static_cast<signed char>(V_I1(&source)));
        return S_OK;
    case VT_UI1:
        number = Unsigned(V_UI1(&source));
        return S_OK;
    case VT_UI2:
        number = Unsigned(V_UI2(&source));
        return S_OK;
    case VT_I4:
    case VT_INT:
        number = Integer(V_I4(&source));
        return S_OK;
    case VT_UI4:
    case VT_UINT:
        number = Unsigned(V_UI4(&source));
        return S_OK;
    case VT_I8:
        number = Integer(V_I8(&source));
        return S_OK;
    case VT_UI8:
        number = Unsigned(V_UI8(&source));
        return S_OK;
    case VT_R4:
        number = Real(static_cast<double>(V_R4(&source)), true);
        return S_OK;
    case VT_R8:
    case VT_DATE:
        number = Real(V_R8(&source));
        return S_OK;
    case VT_CY:
        number = Real(static_cast<double>(V_CY(&source).int64) / 10000.0);
        return S_OK;
    case VT_DECIMAL:
        return NumberText(DecimalText(V_DECIMAL(&source))).Read(number);
    case VT_BSTR:
        return NumberText(TextOf(source)).Read(number);
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

// --- Number to number ----------------------------------------------------------------------------------

/// The nearest integer, halves to the even neighbour; false if it has more than 64 bits.
bool RoundToInteger(double value, Number& number) {
    if (!std::isfinite(value)) {
        return false;
    }
    // Decides the halves itself, as the thread's rounding mode is not ours.
    double whole = std::floor(value);
    const double rest = value - whole;
    if (rest > 0.5 || (!(rest < 0.5) && std::fmod(whole, 2.0) != 0.0)) {
        whole += 1;
    }
    if (std::fabs(whole) >= 18446744073709551616.0) {
        return false;
    }
    number = Unsigned(static_cast<ULONGLONG>(std::fabs(whole)));
    number.negative = whole < 0;
    return true;
}

template <class Target>
HRESULT ToInteger(Number number, Target& target) {
    using Limits = std::numeric_limits<Target>;
    if (number.kind == Number::Kind::Real && !RoundToInteger(number.real, number)) {
        return DISP_E_OVERFLOW;
    }
    if (number.kind == Number::Kind::Bits) {
        // A pattern of the full width may set the sign.
        if (sizeof(Target) < sizeof number.magnitude && number.magnitude >> (8 * sizeof(Target) % 64)) {
            return DISP_E_OVERFLOW;
        }
        target = static_cast<Target>(number.magnitude);
        return S_OK;
    }
    constexpr auto kGreatest = static_cast<ULONGLONG>(Limits::max());
    constexpr ULONGLONG kLeast = std::is_signed_v<Target> ? kGreatest + 1 : 0;
    if (number.magnitude > (number.negative ? kLeast : kGreatest)) {
        return DISP_E_OVERFLOW;
    }
    target = static_cast<Target>(number.negative ? 0ull - number.magnitude : number.magnitude);
    return S_OK;
}

/// Whether the integer types are the signed and the unsigned form of one width.
bool SameWidth(VARTYPE left, VARTYPE right) {
    const auto width = [](VARTYPE type) -> ULONG {
        switch (type) {
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_I8:
        case VT_UI8:
            return quillet::platform::ElementSize(type);
        default:
            return 0;
        }
    };
    return width(left) != 0 && width(left) == width(right);
}

/// To an integer type by its bits where OLE does so: between the two forms of one width, and from a boolean,
/// which is all ones in an unsigned type.
template <class Target>
HRESULT ToIntegerType(const VARIANT& source, const Number& number, VARTYPE type, Target& target) {
    if ((V_VT(&source) == VT_BOOL && std::is_unsigned_v<Target>) || SameWidth(V_VT(&source), type)) {
        target = static_cast<Target>(number.negative ? 0ull - number.magnitude : number.magnitude);
        return S_OK;
    }
    return ToInteger(number, target);
}

HRESULT ToReal(const Number& number, double& target) {
    switch (number.kind) {
    case Number::Kind::Real:
        target = number.real;
        break;
    case Number::Kind::Integer:
        target = static_cast<double>(number.magnitude);
        if (number.negative) {
            target = -target;
        }
        break;
    case Number::Kind::Bits:
        if (number.magnitude > ~0u) {
            return DISP_E_OVERFLOW;
        }
        target = static_cast<double>(static_cast<LONG>(number.magnitude));
        break;
    }
    return S_OK;
}

HRESULT ToSingle(const Number& number, float& target) {
    double value = 0;
    const HRESULT hr = ToReal(number, value);
    if (FAILED(hr)) {
        return hr;
    }
    if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        return DISP_E_OVERFLOW;
    }
    target = static_cast<float>(value);
    return S_OK;
}

bool IsNonZero(const Number& number) {
    return number.kind == Number::Kind::Real ? std::fpclassify(number.real) != FP_ZERO
                                             : number.magnitude != 0;
}

// --- Number to text ------------------------------------------------------------------------------------

std::wstring RealText(double value, bool single) {
    if (std::fpclassify(value) == FP_ZERO) {
        return L"0";
    }
    char buffer[40];
    const auto written =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, single ? 7 : 15);
    std::wstring text;
    // The exponent's letter and what is not a number are written in capitals.
    for (const char* at = buffer; at != written.ptr; ++at) {
        text.push_back(static_cast<wchar_t>(*at >= 'a' && *at <= 'z' ? *at - 'a' + 'A' : *at));
    }
    return text;
}

std::wstring NumberAsText(const VARIANT& source, const Number& number, USHORT flags) {
    if (V_VT(&source) == VT_BOOL && (flags & (VARIANT_ALPHABOOL | VARIANT_LOCALBOOL))) {
        return V_BOOL(&source) ? L"True" : L"False";
    }
    if (V_VT(&source) == VT_EMPTY) {
        return {};
    }
    if (number.kind == Number::Kind::Real) {
        return RealText(number.real, number.single);
    }
    return (number.negative ? L"-" : L"") + std::to_wstring(number.magnitude);
}

HRESULT ToText(const VARIANT& source, USHORT flags, BSTR& target) {
    // The text form of a date depends on settings that this host does not have.
    if (V_VT(&source) == VT_DATE) {
        return DISP_E_TYPEMISMATCH;
    }
    Number number;
    const HRESULT hr = ReadNumber(source, number);
    if (FAILED(hr)) {
        return hr;
    }
    // More digits than a real keeps.
    const std::wstring text =
        V_VT(&source) == VT_DECIMAL ? DecimalText(V_DECIMAL(&source)) : NumberAsText(source, number, flags);
    target = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return target ? S_OK : E_OUTOFMEMORY;
}

HRESULT ToBoolean(const VARIANT& source, VARIANT_BOOL& target) {
    if (V_VT(&source) == VT_BSTR) {
        const std::wstring_view text = TextOf(source);
        const std::wstring folded = FoldCase(text);
        if (folded == L"true" || text == L"#TRUE#") {
            target = VARIANT_TRUE;
            return S_OK;
        }
        if (folded == L"false" || text == L"#FALSE#") {
            target = VARIANT_FALSE;
            return S_OK;
        }
    }
    Number number;
    HRESULT hr = ReadNumber(source, number);
    double real = 0;
    if (SUCCEEDED(hr)) {
        hr = ToReal(number, real);
    }
    if (SUCCEEDED(hr)) {
        target = IsNonZero(number) ? VARIANT_TRUE : VARIANT_FALSE;
    }
    return hr;
}

// --- The whole -----------------------------------------------------------------------------------------

HRESULT ToNumberType(const VARIANT& source, VARTYPE type, VARIANT& target) {
    if (type == VT_ERROR || type == VT_VARIANT || type == VT_DATE || type == VT_CY || type == VT_DECIMAL) {
        return DISP_E_TYPEMISMATCH;
    }
    Number number;
    const HRESULT hr = ReadNumber(source, number);
    if (FAILED(hr)) {
        return hr;
    }
    switch (type) {
    case VT_I1: {
        // The member is a char, which some hosts have unsigned.
        signed char value = 0;
        const HRESULT converted = ToIntegerType(source, number, type, value);
        V_I1(&target) = static_cast<CHAR>(value);
        return converted;
    }
    case VT_UI1:
        return ToIntegerType(source, number, type, V_UI1(&target));
    case VT_I2:
        return ToIntegerType(source, number, type, V_I2(&target));
    case VT_UI2:
        return ToIntegerType(source, number, type, V_UI2(&target));
    case VT_I4:
    case VT_INT:
        return ToIntegerType(source, number, type, V_I4(&target));
    case VT_UI4:
    case VT_UINT:
        return ToIntegerType(source, number, type, V_UI4(&target));
    case VT_I8:
        return ToIntegerType(source, number, type, V_I8(&target));
    case VT_UI8:
        return ToIntegerType(source, number, type, V_UI8(&target));
    case VT_R4:
        return ToSingle(number, V_R4(&target));
    case VT_R8:
        return ToReal(number, V_R8(&target));
    default:
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT ToInterface(const VARIANT& source, VARTYPE type, VARIANT& target) {
    if (V_VT(&source) != VT_UNKNOWN && V_VT(&source) != VT_DISPATCH) {
        return DISP_E_TYPEMISMATCH;
    }
    V_UNKNOWN(&target) = nullptr;
    if (!V_UNKNOWN(&source)) {
        return S_OK;
    }
    const HRESULT hr = V_UNKNOWN(&source)->QueryInterface(type == VT_UNKNOWN ? IID_IUnknown : IID_IDispatch,
                                                          reinterpret_cast<void**>(&V_UNKNOWN(&target)));
    return SUCCEEDED(hr) ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT Convert(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& target) {
    if (V_VT(&source) == type) {
        return VariantCopy(&target, &source);
    }
    if ((V_VT(&source) | type) & (VT_ARRAY | VT_BYREF)) {
        return DISP_E_TYPEMISMATCH;
    }
    switch (type) {
    case VT_EMPTY:
        return V_VT(&source) == VT_NULL || V_VT(&source) == VT_ERROR ? DISP_E_TYPEMISMATCH : S_OK;
    case VT_NULL:
        return V_VT(&source) == VT_ERROR ? DISP_E_TYPEMISMATCH : S_OK;
    case VT_BOOL:
        return ToBoolean(source, V_BOOL(&target));
    case VT_BSTR:
        return ToText(source, flags, V_BSTR(&target));
    case VT_UNKNOWN:
    case VT_DISPATCH:
        return ToInterface(source, type, target);
    default:
        return ToNumberType(source, type, target);
    }
}

} // namespace

HRESULT WINAPI VariantChangeType(VARIANTARG* destination, const VARIANTARG* source, USHORT flags,
                                 VARTYPE type) {
    return VariantChangeTypeEx(destination, source, LOCALE_USER_DEFAULT, flags, type);
}

HRESULT WINAPI VariantChangeTypeEx(VARIANTARG* destination, const VARIANTARG* source, LCID, USHORT flags,
                                   VARTYPE type) {
    const auto base = static_cast<VARTYPE>(type & VT_TYPEMASK);
    if (base > VT_NULL && quillet::platform::ElementSize(base) == 0) {
        return DISP_E_BADVARTYPE;
    }
    VARIANT direct;
    VARIANT converted;
    VariantInit(&direct);
    VariantInit(&converted);
    HRESULT hr = VariantCopyInd(&direct, source);
    if (FAILED(hr)) {
        return hr;
    }
    hr = Convert(direct, flags, type, converted);
    VariantClear(&direct);
    if (FAILED(hr)) {
        return hr;
    }
    V_VT(&converted) = type;
    hr = VariantClear(destination);
    if (FAILED(hr)) {
        VariantClear(&converted);
        return hr;
    }
    *destination = converted;
    return S_OK;
}
