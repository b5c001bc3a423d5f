// The truth of WQL conditions: comparisons by CIM type, LIKE, null.
#include <quillet-wmi/WqlMatch.h>

#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include <algorithm>
#include <compare>
#include <string>

namespace quillet::wmi {

namespace {

using Operator = WqlCondition::Operator;
using ConditionKind = WqlCondition::Kind;

/// A number of any kind on its way to a comparison.
struct Number {
    enum class Form { Signed, Unsigned, Real } form = Form::Signed;
    std::int64_t signedValue = 0;
    std::uint64_t unsignedValue = 0;
    double real = 0;

    static Number Of(std::int64_t value) { return {Form::Signed, value, 0, static_cast<double>(value)}; }
    static Number Of(std::uint64_t value) {
        if (value <= static_cast<std::uint64_t>(INT64_MAX)) {
            return Of(static_cast<std::int64_t>(value));
        }
        return {Form::Unsigned, 0, value, static_cast<double>(value)};
    }
    static Number Of(double value) { return {Form::Real, 0, 0, value}; }
};

std::partial_ordering Compare(const Number& left, const Number& right) noexcept {
    if (left.form == Number::Form::Real || right.form == Number::Form::Real) {
        return left.real <=> right.real;
    }
    if (left.form == right.form) {
        return left.form == Number::Form::Signed ? left.signedValue <=> right.signedValue
                                                 : left.unsignedValue <=> right.unsignedValue;
    }
    // Only numbers above the signed range are held unsigned.
    return left.form == Number::Form::Unsigned ? std::partial_ordering::greater : std::partial_ordering::less;
}

std::optional<Number> NumberOfText(std::wstring_view text) {
    if (const std::optional<TextNumber> number = ParseDecimal(text)) {
        return number->negative ? Number::Of(static_cast<std::int64_t>(0 - number->magnitude))
                                : Number::Of(number->magnitude);
    }
    if (const std::optional<double> number = ParseReal(text)) {
        return Number::Of(*number);
    }
    return std::nullopt;
}

std::optional<bool> FlagOfText(std::wstring_view text) noexcept {
    if (SameName(text, L"TRUE")) {
        return true;
    }
    if (SameName(text, L"FALSE")) {
        return false;
    }
    return std::nullopt;
}

std::optional<Number> NumberOf(const Scalar& scalar) {
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        return Number::Of(std::int64_t{*flag ? 1 : 0});
    }
    if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
        return Number::Of(*number);
    }
    if (const auto* number = std::get_if<std::uint64_t>(&scalar)) {
        return Number::Of(*number);
    }
    if (const auto* number = std::get_if<double>(&scalar)) {
        return Number::Of(*number);
    }
    const auto* text = std::get_if<std::wstring>(&scalar);
    return text != nullptr ? NumberOfText(*text) : std::nullopt; // an object is no number
}

/// The moment of a datetime in microseconds, brought to UTC; nothing for intervals and open digits.
std::optional<std::int64_t> Moment(std::wstring_view text) noexcept {
    if (!IsDateTime(text) || text[21] == L':' || text.find(L'*') != std::wstring_view::npos) {
        return std::nullopt;
    }
    const auto field = [text](std::size_t start, std::size_t length) {
        return static_cast<std::int64_t>(ParseDecimal(text.substr(start, length))->magnitude);
    };
    // Days since 0000-03-01 by the civil calendar, counted in years that begin in March.
    const std::int64_t month = field(4, 2);
    const std::int64_t year = field(0, 4) - (month <= 2 ? 1 : 0);
    const std::int64_t shifted = month + (month > 2 ? -3 : 9);
    const std::int64_t days =
        year * 365 + year / 4 - year / 100 + year / 400 + (153 * shifted + 2) / 5 + field(6, 2) - 1;
    const std::int64_t offset = field(22, 3) * (text[21] == L'-' ? -1 : 1);
    const std::int64_t minutes = (days * 24 + field(8, 2)) * 60 + field(10, 2) - offset;
    return (minutes * 60 + field(12, 2)) * 1'000'000 + field(15, 6);
}

std::partial_ordering CompareTexts(std::wstring_view left, std::wstring_view right) noexcept {
    return CompareFolded(left, right) <=> 0;
}

std::partial_ordering CompareNumbers(const Scalar& value, const Scalar& literal) {
    const std::optional<Number> left = NumberOf(value);
    const std::optional<Number> right = NumberOf(literal);
    return left && right ? Compare(*left, *right) : std::partial_ordering::unordered;
}

std::partial_ordering CompareFlag(bool value, const Scalar& literal) {
    if (const auto* text = std::get_if<std::wstring>(&literal)) {
        if (const std::optional<bool> flag = FlagOfText(*text)) {
            return value <=> *flag;
        }
    }
    return CompareNumbers(Scalar(value), literal);
}

std::partial_ordering CompareText(std::wstring_view value, CIMTYPE type, const WqlCondition& condition,
                                  const ObjectIdentity& identity) {
    const Scalar& literal = *condition.literal;
    if (const auto* flag = std::get_if<bool>(&literal)) {
        const std::optional<bool> own = FlagOfText(value);
        return own ? *own <=> *flag : std::partial_ordering::unordered;
    }
    const auto* text = std::get_if<std::wstring>(&literal);
    if (text == nullptr) {
        return CompareNumbers(Scalar(std::wstring(value)), literal);
    }
    if (!condition.pathAsWritten.empty() && CompareFolded(value, condition.pathAsWritten) == 0) {
        return std::partial_ordering::equivalent;
    }
    if (type == CIM_DATETIME) {
        const std::optional<std::int64_t> left = Moment(value);
        const std::optional<std::int64_t> right = Moment(*text);
        if (left && right) {
            return *left <=> *right;
        }
    }
    if (type == CIM_REFERENCE) {
        const std::wstring own = identity(value);
        if (own == identity(*text) ||
            (!condition.pathAsWritten.empty() && own == identity(condition.pathAsWritten))) {
            return std::partial_ordering::equivalent;
        }
    }
    return CompareTexts(value, *text);
}

std::partial_ordering CompareScalar(const Scalar& value, CIMTYPE type, const WqlCondition& condition,
                                    const ObjectIdentity& identity) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        return CompareFlag(*flag, *condition.literal);
    }
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        return CompareText(*text, type, condition, identity);
    }
    if (type == CIM_CHAR16) {
        const auto* text = std::get_if<std::wstring>(&*condition.literal);
        if (text != nullptr && text->size() == 1) {
            return CompareNumbers(value, Scalar(std::uint64_t{static_cast<std::uint16_t>(text->front())}));
        }
    }
    return CompareNumbers(value, *condition.literal);
}

bool Holds(Operator op, std::partial_ordering order) noexcept {
    switch (op) {
    case Operator::Equal:
        return std::is_eq(order);
    case Operator::NotEqual:
        return std::is_neq(order);
    case Operator::Less:
        return std::is_lt(order);
    case Operator::Greater:
        return std::is_gt(order);
    case Operator::LessOrEqual:
        return std::is_lteq(order);
    case Operator::GreaterOrEqual:
        return std::is_gteq(order);
    }
    return false;
}

struct Operand {
    const Value* value = nullptr; ///< never null; a null value where there is no such property
    CIMTYPE type = CIM_STRING;
};

/// What a condition compares; `storage` keeps a value that the instance does not hold as a property.
Operand OperandOf(const Instance& instance, std::wstring_view property, Value& storage) {
    if (instance.definition) {
        const ClassDefinition& definition = *instance.definition;
        const std::optional<std::size_t> index = definition.PropertyIndex(property);
        if (index && *index < instance.values.size()) {
            return {&instance.values[*index], definition.properties[*index].type};
        }
        if (SameName(property, L"__CLASS")) {
            storage = Value::Text(definition.name);
        } else if (SameName(property, L"__SUPERCLASS") && !definition.superclass.empty()) {
            storage = Value::Text(definition.superclass);
        }
    }
    return {&storage, CIM_STRING};
}

bool MatchesComparison(const WqlCondition& condition, const Operand& operand,
                       const ObjectIdentity& identity) {
    const bool null = operand.value->IsNull();
    if (null || !condition.literal) {
        const bool bothNull = null && !condition.literal;
        return condition.op == Operator::Equal ? bothNull : condition.op == Operator::NotEqual && !bothNull;
    }
    const Scalar* scalar = operand.value->AsScalar();
    return scalar != nullptr &&
           Holds(condition.op, CompareScalar(*scalar, operand.type, condition, identity));
}

/// A path's identity as far as it shows without knowing the classes: the order of keys, quotes, case and
/// what stands before the class do not matter.
std::wstring PlainIdentity(std::wstring_view text) {
    std::optional<ObjectPath> path = ObjectPath::Parse(text);
    if (!path) {
        return Folded(text);
    }
    std::sort(path->keys.begin(), path->keys.end(), [](const ObjectPath::Key& left, const auto& right) {
        return CompareNames(left.name, right.name) < 0;
    });
    return Folded(path->Relative());
}

/// One step of a pattern at `position`: matches one character or not, and tells where the next step is.
bool MatchesOne(wchar_t c, std::wstring_view pattern, std::size_t& position) noexcept {
    const wchar_t step = pattern[position];
    if (step == L'_') {
        ++position;
        return true;
    }
    const std::size_t close = step == L'[' ? pattern.find(L']', position + 2) : std::wstring_view::npos;
    if (close == std::wstring_view::npos) {
        ++position;
        return FoldCase(step) == FoldCase(c);
    }
    std::wstring_view set = pattern.substr(position + 1, close - position - 1);
    position = close + 1;
    const bool negated = set.size() > 1 && set.front() == L'^';
    if (negated) {
        set.remove_prefix(1);
    }
    const wchar_t wanted = FoldCase(c);
    bool found = false;
    for (std::size_t i = 0; i < set.size(); ++i) {
        if (i + 2 < set.size() && set[i + 1] == L'-') {
            found = found || (FoldCase(set[i]) <= wanted && wanted <= FoldCase(set[i + 2]));
            i += 2;
        } else {
            found = found || FoldCase(set[i]) == wanted;
        }
    }
    return found != negated;
}

} // namespace

bool MatchesPattern(std::wstring_view text, std::wstring_view pattern) noexcept {
    // Going back to the last '%' is enough: what an earlier one could take, the last one can take too.
    std::size_t at = 0;
    std::size_t step = 0;
    std::size_t retryStep = std::wstring_view::npos;
    std::size_t retryAt = 0;
    while (at < text.size()) {
        if (step < pattern.size() && pattern[step] == L'%') {
            retryStep = ++step;
            retryAt = at;
            continue;
        }
        if (step < pattern.size() && MatchesOne(text[at], pattern, step)) {
            ++at;
            continue;
        }
        if (retryStep == std::wstring_view::npos) {
            return false;
        }
        step = retryStep;
        at = ++retryAt;
    }
    while (step < pattern.size() && pattern[step] == L'%') {
        ++step;
    }
    return step == pattern.size();
}

bool Matches(const WqlCondition& condition, const Instance& instance, const ObjectIdentity& identity) {
    const auto holds = [&](const WqlCondition& operand) { return Matches(operand, instance, identity); };
    Value storage;
    switch (condition.kind) {
    case ConditionKind::And:
        return std::all_of(condition.operands.begin(), condition.operands.end(), holds);
    case ConditionKind::Or:
        return std::any_of(condition.operands.begin(), condition.operands.end(), holds);
    case ConditionKind::Not:
        return !std::any_of(condition.operands.begin(), condition.operands.end(), holds);
    case ConditionKind::IsNull:
        return OperandOf(instance, condition.property, storage).value->IsNull();
    case ConditionKind::IsNotNull:
        return !OperandOf(instance, condition.property, storage).value->IsNull();
    case ConditionKind::Compare:
        return MatchesComparison(condition, OperandOf(instance, condition.property, storage), identity);
    case ConditionKind::Like: {
        const Scalar* scalar = OperandOf(instance, condition.property, storage).value->AsScalar();
        const auto* text = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr;
        const auto* pattern = condition.literal ? std::get_if<std::wstring>(&*condition.literal) : nullptr;
        return text != nullptr && pattern != nullptr && MatchesPattern(*text, *pattern);
    }
    }
    return false;
}

bool Matches(const WqlCondition& condition, const Instance& instance) {
    return Matches(condition, instance, PlainIdentity);
}

std::optional<std::wstring> IndexKey(const Value& value, CIMTYPE type, const ObjectIdentity& identity) {
    const Scalar* scalar = value.AsScalar();
    if (scalar == nullptr) {
        return std::nullopt;
    }
    if (IsIntegerType(type)) {
        const auto* number = std::get_if<std::int64_t>(scalar);
        return L'n' + (number != nullptr ? std::to_wstring(*number)
                                         : std::to_wstring(std::get<std::uint64_t>(*scalar)));
    }
    if (type == CIM_BOOLEAN) {
        return std::get<bool>(*scalar) ? L"b1" : L"b0";
    }
    if (type == CIM_STRING) {
        return L's' + Folded(std::get<std::wstring>(*scalar));
    }
    if (type == CIM_REFERENCE) {
        return L'r' + identity(std::get<std::wstring>(*scalar));
    }
    return std::nullopt;
}

std::optional<std::vector<std::wstring>> IndexKeys(const WqlCondition& condition, CIMTYPE type,
                                                   const ObjectIdentity& identity) {
    if (condition.kind != ConditionKind::Compare || condition.op != Operator::Equal || !condition.literal) {
        return std::nullopt;
    }
    const Scalar& literal = *condition.literal;
    const auto* text = std::get_if<std::wstring>(&literal);
    if (type == CIM_STRING || type == CIM_REFERENCE) {
        if (text == nullptr) {
            return std::nullopt;
        }
        std::vector<std::wstring> keys{*IndexKey(Value(literal), type, identity)};
        if (!condition.pathAsWritten.empty()) {
            keys.push_back(*IndexKey(Value::Text(condition.pathAsWritten), type, identity));
        }
        return keys;
    }
    if (type == CIM_BOOLEAN) {
        const auto* flag = std::get_if<bool>(&literal);
        return flag != nullptr ? std::optional(std::vector<std::wstring>{*flag ? L"b1" : L"b0"})
                               : std::nullopt;
    }
    if (!IsIntegerType(type) || std::holds_alternative<double>(literal)) {
        return std::nullopt;
    }
    const std::optional<Number> number = NumberOf(literal);
    if (!number || number->form == Number::Form::Real) {
        return std::nullopt;
    }
    return std::vector<std::wstring>{L'n' + (number->form == Number::Form::Signed
                                                 ? std::to_wstring(number->signedValue)
                                                 : std::to_wstring(number->unsignedValue))};
}

} // namespace quillet::wmi
