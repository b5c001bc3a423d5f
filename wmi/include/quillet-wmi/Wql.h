// WQL: SELECT, ASSOCIATORS OF and REFERENCES OF, parsed into a tree that the repository evaluates.
#pragma once

#include <quillet-wmi/Model.h>

namespace quillet::simulator {

/// Why a query text is not WQL, and where.
struct WqlError {
    std::size_t position = 0; ///< zero-based character index
    std::wstring message;     ///< in words
};

/// One node of a WHERE clause.
struct WqlCondition {
    /// What the node says: a comparison of a property, or how its operands are joined.
    enum class Kind { Compare, IsNull, IsNotNull, Like, And, Or, Not };
    /// How a comparison compares.
    enum class Operator { Equal, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual };

    Kind kind = Kind::Compare;     ///< what the other members mean follows from it
    Operator op = Operator::Equal; ///< of a comparison
    std::wstring property;         ///< what is compared
    std::optional<Scalar> literal; ///< absent for the literal NULL
    /// The text between the quotes without reading escapes, where that is a path with a server. Clients put
    /// the paths they hold between quotes as they are; such a text means both.
    std::wstring pathAsWritten;
    std::vector<WqlCondition> operands; ///< of And, Or and Not
};

/// A parsed query.
struct WqlQuery {
    /// The three statements.
    enum class Kind { Select, Associators, References };

    Kind kind = Kind::Select; ///< which of the members that follow count
    // SELECT
    std::vector<std::wstring> properties; ///< empty for *
    std::wstring className;               ///< asked for, with its subclasses
    std::optional<WqlCondition> where;    ///< nothing without a WHERE
    // ASSOCIATORS OF and REFERENCES OF
    std::wstring objectPath;        ///< the text between the braces
    std::wstring resultClass;       ///< of a result; empty: any
    std::wstring assocClass;        ///< of the association (ASSOCIATORS OF); empty: any
    std::wstring role;              ///< the reference by which the association names the object; empty: any
    std::wstring resultRole;        ///< the reference by which it names a result; empty: any
    std::wstring requiredQualifier; ///< on the class of a result
    std::wstring requiredAssocQualifier; ///< on the class of an association (ASSOCIATORS OF)
    bool classDefsOnly = false;          ///< the classes of the results instead of the results
    bool keysOnly = false;               ///< of each result its keys alone
};

/// Parentheses and NOTs nested deeper than this are refused.
constexpr std::size_t kMaximumWqlDepth = 64;

/// Parses a query; nothing (and, if asked, the reason) when it is not WQL.
std::optional<WqlQuery> ParseWql(std::wstring_view text, WqlError* error = nullptr);

/// Whether an instance satisfies a condition; properties that do not exist compare as null. Null equals
/// NULL only and is neither less nor greater than anything; texts compare without regard to case; a text
/// and a number compare as numbers where the text says one. __CLASS and __SUPERCLASS may be asked for.
bool Matches(const WqlCondition& condition, const Instance& instance);

} // namespace quillet::simulator
