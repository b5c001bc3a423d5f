// WQL: SELECT, ASSOCIATORS OF and REFERENCES OF, parsed into a tree that the repository evaluates.
#pragma once

#include <quillet-simulator/Model.h>

namespace quillet::simulator {

/// Why a query text is not WQL, and where.
struct WqlError {
    std::size_t position = 0; ///< zero-based character index
    std::wstring message;
};

/// One node of a WHERE clause.
struct WqlCondition {
    enum class Kind { Compare, IsNull, IsNotNull, Like, And, Or, Not };
    enum class Operator { Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual };

    Kind kind = Kind::Compare;
    Operator op = Operator::Equal;
    std::wstring property;
    std::optional<Scalar> literal; ///< absent for the literal NULL
    std::vector<WqlCondition> operands;
};

/// A parsed query.
struct WqlQuery {
    enum class Kind { Select, Associators, References };

    Kind kind = Kind::Select;
    // SELECT
    std::vector<std::wstring> properties; ///< empty for *
    std::wstring className;
    std::optional<WqlCondition> where;
    // ASSOCIATORS OF and REFERENCES OF
    std::wstring objectPath; ///< the text between the braces
    std::wstring resultClass;
    std::wstring assocClass;
    std::wstring role;
    std::wstring resultRole;
    bool classDefsOnly = false;
};

/// Parses a query; nothing (and, if asked, the reason) when it is not WQL.
std::optional<WqlQuery> ParseWql(std::wstring_view text, WqlError* error = nullptr);

/// Whether an instance satisfies a condition; properties that do not exist compare as null.
bool Matches(const WqlCondition& condition, const Instance& instance);

} // namespace quillet::simulator
