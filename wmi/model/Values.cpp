// Values, and what fits which CIM type.
#include <quillet-wmi/Model.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace quillet::wmi {

namespace {

/// The range of an integer type.
struct Range {
    std::int64_t low;
    std::uint64_t high;
};

std::optional<Range> IntegerRange(CIMTYPE type) noexcept {
    switch (type) {
    case CIM_SINT8:
        return Range{INT8_MIN, INT8_MAX};
    case CIM_UINT8:
        return Range{0, UINT8_MAX};
    case CIM_SINT16:
        return Range{INT16_MIN, INT16_MAX};
    case CIM_UINT16:
    case CIM_CHAR16:
        return Range{0, UINT16_MAX};
    case CIM_SINT32:
        return Range{INT32_MIN, INT32_MAX};
    case CIM_UINT32:
        return Range{0, UINT32_MAX};
    case CIM_SINT64:
        return Range{INT64_MIN, INT64_MAX};
    case CIM_UINT64:
        return Range{0, UINT64_MAX};
    default:
        return std::nullopt;
    }
}

bool IsDigitOrOpen(wchar_t c) noexcept {
    return (c >= L'0' && c <= L'9') || c == L'*';
}

} // namespace

bool Fits(const Scalar& scalar, CIMTYPE type) noexcept {
    if (const std::optional<Range> range = IntegerRange(type)) {
        if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
            return *number >= range->low &&
                   (*number < 0 || static_cast<std::uint64_t>(*number) <= range->high);
        }
        const auto* number = std::get_if<std::uint64_t>(&scalar);
        return number != nullptr && *number <= range->high;
    }
    switch (type) {
    case CIM_BOOLEAN:
        return std::holds_alternative<bool>(scalar);
    case CIM_REAL32:
    case CIM_REAL64: {
        const auto* number = std::get_if<double>(&scalar);
        return number != nullptr && std::isfinite(*number) &&
               (type == CIM_REAL64 || std::fabs(*number) <= static_cast<double>(FLT_MAX));
    }
    case CIM_OBJECT:
        return std::holds_alternative<Embedded>(scalar);
    case CIM_STRING:
    case CIM_REFERENCE:
        return std::holds_alternative<std::wstring>(scalar);
    case CIM_DATETIME: {
        const auto* text = std::get_if<std::wstring>(&scalar);
        return text != nullptr && IsDateTime(*text);
    }
    default:
        return false;
    }
}

namespace {

Scalar NormalisedScalar(Scalar scalar, CIMTYPE type) {
    if (IntegerRange(type)) {
        const bool isSigned = IntegerRange(type)->low < 0;
        if (const auto* number = std::get_if<std::int64_t>(&scalar); number != nullptr && !isSigned) {
            return static_cast<std::uint64_t>(*number);
        }
        if (const auto* number = std::get_if<std::uint64_t>(&scalar); number != nullptr && isSigned) {
            return static_cast<std::int64_t>(*number);
        }
    } else if (type == CIM_REAL32) {
        return static_cast<double>(static_cast<float>(std::get<double>(scalar)));
    }
    return scalar;
}

/// The elements of an array of uint8; nothing when one of them is null.
std::optional<Value::Bytes> BytesOf(const Value::Array& array) {
    Value::Bytes bytes;
    bytes.reserve(array.size());
    for (const std::optional<Scalar>& scalar : array) {
        if (!scalar) {
            return std::nullopt;
        }
        bytes.push_back(
            static_cast<std::uint8_t>(std::get<std::uint64_t>(NormalisedScalar(*scalar, CIM_UINT8))));
    }
    return bytes;
}

} // namespace

Value::Array Value::Elements() const {
    if (const Array* array = AsArray()) {
        return *array;
    }
    Array elements;
    if (const Bytes* bytes = AsBytes()) {
        elements.reserve(bytes->size());
        for (const std::uint8_t byte : *bytes) {
            elements.emplace_back(Scalar(std::uint64_t{byte}));
        }
    }
    return elements;
}

std::size_t Value::Size() const noexcept {
    if (const Array* array = AsArray()) {
        return array->size();
    }
    const Bytes* bytes = AsBytes();
    return bytes != nullptr ? bytes->size() : 0;
}

bool operator==(const Embedded& left, const Embedded& right) {
    return left.object == right.object ||
           (left.object != nullptr && right.object != nullptr &&
            SameName(left.object->definition->name, right.object->definition->name) &&
            left.object->values == right.object->values);
}

bool operator==(const Value& left, const Value& right) {
    const Value::Bytes* leftBytes = left.AsBytes();
    const Value::Bytes* rightBytes = right.AsBytes();
    if (leftBytes != nullptr && rightBytes != nullptr) {
        return leftBytes == rightBytes || *leftBytes == *rightBytes;
    }
    if (leftBytes != nullptr || rightBytes != nullptr) {
        return left.IsArray() && right.IsArray() && left.Size() == right.Size() &&
               left.Elements() == right.Elements();
    }
    return left.m_payload == right.m_payload;
}

bool Fits(const Value& value, CIMTYPE type) noexcept {
    if (value.IsNull()) {
        return true;
    }
    const CIMTYPE element = ElementType(type);
    if (const Value::Bytes* bytes = value.AsBytes()) {
        const std::optional<Range> range = IntegerRange(element);
        return IsArray(type) && range &&
               (range->high >= UINT8_MAX ||
                std::all_of(bytes->begin(), bytes->end(),
                            [high = range->high](std::uint8_t byte) { return byte <= high; }));
    }
    if (const Value::Array* array = value.AsArray()) {
        return IsArray(type) &&
               std::all_of(array->begin(), array->end(), [element](const std::optional<Scalar>& scalar) {
                   return !scalar || Fits(*scalar, element);
               });
    }
    return !IsArray(type) && Fits(*value.AsScalar(), element);
}

Value Normalised(Value value, CIMTYPE type) {
    const CIMTYPE element = ElementType(type);
    if (const Scalar* scalar = value.AsScalar()) {
        if (std::holds_alternative<std::wstring>(*scalar)) {
            return value;
        }
        return Value(NormalisedScalar(*scalar, element));
    }
    if (value.AsBytes() != nullptr) {
        return element == CIM_UINT8 ? value : Normalised(Value(value.Elements()), type);
    }
    if (const Value::Array* array = value.AsArray(); array != nullptr) {
        if (!IntegerRange(element) && element != CIM_REAL32) {
            return value;
        }
        if (element == CIM_UINT8) {
            if (auto bytes = BytesOf(*array)) {
                return Value(*std::move(bytes));
            }
        }
        Value::Array result;
        result.reserve(array->size());
        for (const std::optional<Scalar>& scalar : *array) {
            result.push_back(scalar ? std::optional<Scalar>(NormalisedScalar(*scalar, element))
                                    : std::nullopt);
        }
        return Value(std::move(result));
    }
    return value;
}

const wchar_t* CimTypeName(CIMTYPE type) noexcept {
    switch (ElementType(type)) {
    case CIM_SINT8:
        return L"sint8";
    case CIM_UINT8:
        return L"uint8";
    case CIM_SINT16:
        return L"sint16";
    case CIM_UINT16:
        return L"uint16";
    case CIM_SINT32:
        return L"sint32";
    case CIM_UINT32:
        return L"uint32";
    case CIM_SINT64:
        return L"sint64";
    case CIM_UINT64:
        return L"uint64";
    case CIM_REAL32:
        return L"real32";
    case CIM_REAL64:
        return L"real64";
    case CIM_BOOLEAN:
        return L"boolean";
    case CIM_STRING:
        return L"string";
    case CIM_DATETIME:
        return L"datetime";
    case CIM_REFERENCE:
        return L"reference";
    case CIM_CHAR16:
        return L"char16";
    case CIM_OBJECT:
        return L"object";
    default:
        return nullptr;
    }
}

bool IsIntegerType(CIMTYPE type) noexcept {
    const CIMTYPE element = ElementType(type);
    return element != CIM_CHAR16 && IntegerRange(element).has_value();
}

bool IsDateTime(std::wstring_view text) noexcept {
    constexpr std::size_t kLength = 25;
    constexpr std::size_t kPoint = 14;
    constexpr std::size_t kSign = 21;
    if (text.size() != kLength || text[kPoint] != L'.') {
        return false;
    }
    for (std::size_t i = 0; i < kLength; ++i) {
        if (i != kPoint && i != kSign && !IsDigitOrOpen(text[i])) {
            return false;
        }
    }
    if (text[kSign] == L':') {
        return text.substr(kSign) == L":000";
    }
    return text[kSign] == L'+' || text[kSign] == L'-';
}

std::wstring CimTypeText(CIMTYPE type, std::wstring_view referenceClass) {
    // WMI has words of its own for two types; the others are called as MOF calls them.
    switch (ElementType(type)) {
    case CIM_REFERENCE:
        return referenceClass.empty() ? L"ref" : L"ref:" + std::wstring(referenceClass);
    case CIM_OBJECT:
        return referenceClass.empty() ? L"object" : L"object:" + std::wstring(referenceClass);
    default: {
        const wchar_t* name = CimTypeName(type);
        return name != nullptr ? name : L"string";
    }
    }
}

Value Integer(CIMTYPE type, std::int64_t number) {
    switch (ElementType(type)) {
    case CIM_UINT8:
    case CIM_UINT16:
    case CIM_UINT32:
    case CIM_UINT64:
    case CIM_CHAR16:
        return Value::Unsigned(static_cast<std::uint64_t>(number));
    case CIM_BOOLEAN:
        return Value::Bool(number != 0);
    default:
        return Value::Signed(number);
    }
}

} // namespace quillet::wmi
