// Names, values and the look-ups of class definitions and instances.
#include <quillet-wmi/Model.h>

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace quillet::simulator {

namespace {

constexpr CIMTYPE kArray = CIM_FLAG_ARRAY;

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

bool FitsScalar(const Scalar& scalar, CIMTYPE type) noexcept {
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

bool IsDigitOrOpen(wchar_t c) noexcept {
    return (c >= L'0' && c <= L'9') || c == L'*';
}

} // namespace

int CompareNames(std::wstring_view left, std::wstring_view right) noexcept {
    return CompareFolded(left, right);
}

const Qualifier* Qualifiers::Find(std::wstring_view name) const noexcept {
    for (const Qualifier& qualifier : m_all) {
        if (SameName(qualifier.name, name)) {
            return &qualifier;
        }
    }
    return nullptr;
}

bool Qualifiers::Has(std::wstring_view name) const noexcept {
    const Qualifier* qualifier = Find(name);
    if (qualifier == nullptr) {
        return false;
    }
    const Scalar* scalar = qualifier->value.AsScalar();
    const bool* flag = scalar != nullptr ? std::get_if<bool>(scalar) : nullptr;
    return flag == nullptr || *flag;
}

void Qualifiers::Set(Qualifier qualifier) {
    for (Qualifier& present : m_all) {
        if (SameName(present.name, qualifier.name)) {
            present = std::move(qualifier);
            return;
        }
    }
    m_all.push_back(std::move(qualifier));
}

bool Qualifiers::Remove(std::wstring_view name) {
    return std::erase_if(m_all, [name](const Qualifier& q) { return SameName(q.name, name); }) != 0;
}

std::optional<std::size_t> ClassDefinition::PropertyIndex(std::wstring_view wanted) const noexcept {
    for (std::size_t i = 0; i < properties.size(); ++i) {
        if (SameName(properties[i].name, wanted)) {
            return i;
        }
    }
    return std::nullopt;
}

const Property* ClassDefinition::FindProperty(std::wstring_view wanted) const noexcept {
    const std::optional<std::size_t> index = PropertyIndex(wanted);
    return index ? &properties[*index] : nullptr;
}

const Method* ClassDefinition::FindMethod(std::wstring_view wanted) const noexcept {
    for (const Method& method : methods) {
        if (SameName(method.name, wanted)) {
            return &method;
        }
    }
    return nullptr;
}

bool ClassDefinition::IsA(std::wstring_view className) const noexcept {
    return SameName(name, className) ||
           std::any_of(ancestors.begin(), ancestors.end(),
                       [className](const std::wstring& ancestor) { return SameName(ancestor, className); });
}

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

Instance::Instance(ClassPtr cls) : definition(std::move(cls)) {
    if (definition) {
        values.reserve(definition->properties.size());
        for (const Property& property : definition->properties) {
            values.push_back(property.defaultValue);
        }
    }
}

const Value* Instance::Find(std::wstring_view property) const noexcept {
    if (!definition) {
        return nullptr;
    }
    const std::optional<std::size_t> index = definition->PropertyIndex(property);
    return index && *index < values.size() ? &values[*index] : nullptr;
}

bool Instance::Set(std::wstring_view property, Value value) {
    if (!definition) {
        return false;
    }
    const std::optional<std::size_t> index = definition->PropertyIndex(property);
    if (!index || *index >= values.size()) {
        return false;
    }
    const CIMTYPE type = definition->properties[*index].type;
    if (Fits(value, type)) {
        value = Normalised(std::move(value), type);
    }
    values[*index] = std::move(value);
    return true;
}

std::wstring Instance::Text(std::wstring_view property) const {
    const Value* value = Find(property);
    const Scalar* scalar = value != nullptr ? value->AsScalar() : nullptr;
    const auto* text = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr;
    return text != nullptr ? *text : std::wstring();
}

std::int64_t Instance::Number(std::wstring_view property, std::int64_t fallback) const {
    const Value* value = Find(property);
    const Scalar* scalar = value != nullptr ? value->AsScalar() : nullptr;
    if (scalar == nullptr) {
        return fallback;
    }
    if (const auto* number = std::get_if<std::int64_t>(scalar)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::uint64_t>(scalar)) {
        return static_cast<std::int64_t>(*number);
    }
    if (const auto* flag = std::get_if<bool>(scalar)) {
        return *flag ? 1 : 0;
    }
    return fallback;
}

bool Fits(const Value& value, CIMTYPE type) noexcept {
    if (value.IsNull()) {
        return true;
    }
    const CIMTYPE element = type & ~kArray;
    if (const Value::Bytes* bytes = value.AsBytes()) {
        const std::optional<Range> range = IntegerRange(element);
        return (type & kArray) != 0 && range &&
               (range->high >= UINT8_MAX ||
                std::all_of(bytes->begin(), bytes->end(),
                            [high = range->high](std::uint8_t byte) { return byte <= high; }));
    }
    if (const Value::Array* array = value.AsArray()) {
        return (type & kArray) != 0 &&
               std::all_of(array->begin(), array->end(), [element](const std::optional<Scalar>& scalar) {
                   return !scalar || FitsScalar(*scalar, element);
               });
    }
    return (type & kArray) == 0 && FitsScalar(*value.AsScalar(), element);
}

Value Normalised(Value value, CIMTYPE type) {
    const CIMTYPE element = type & ~kArray;
    if (const Scalar* scalar = value.AsScalar()) {
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
    switch (type & ~kArray) {
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
    default:
        return nullptr;
    }
}

bool IsIntegerType(CIMTYPE type) noexcept {
    const CIMTYPE element = type & ~kArray;
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

bool IsIdentifierStart(wchar_t character) noexcept {
    // What is not ASCII is a letter, whether the host's wchar_t is signed or not.
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z') ||
           character == L'_' || static_cast<char32_t>(character) >= 0x80;
}

bool IsIdentifierCharacter(wchar_t character) noexcept {
    return IsIdentifierStart(character) || (character >= L'0' && character <= L'9');
}

bool IsIdentifier(std::wstring_view text) noexcept {
    return !text.empty() && IsIdentifierStart(text.front()) &&
           std::all_of(text.begin(), text.end(), IsIdentifierCharacter);
}

} // namespace quillet::simulator
