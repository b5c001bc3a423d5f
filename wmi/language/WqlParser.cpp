// From the words of a query to its tree.
#include <quillet-wmi/Wql.h>

#include <quillet-wmi/ObjectPath.h>
#include "language/WqlLexer.h"

namespace quillet::wmi {

namespace {

class Parser {
  public:
    explicit Parser(std::wstring_view text) : m_lexer(text) {}

    WqlQuery Run() {
        WqlQuery query;
        Advance();
        if (AcceptWord(L"SELECT")) {
            Select(query);
        } else if (IsWord(L"ASSOCIATORS")) {
            query.kind = WqlQuery::Kind::Associators;
            Associations(query);
        } else if (IsWord(L"REFERENCES")) {
            query.kind = WqlQuery::Kind::References;
            Associations(query);
        } else {
            Expected(L"SELECT, ASSOCIATORS OF or REFERENCES OF was expected");
        }
        if (m_token.kind != WqlToken::Kind::End) {
            Expected(L"the end of the query was expected");
        }
        return query;
    }

  private:
    using Condition = WqlCondition;
    using Operator = WqlCondition::Operator;

    void Advance() { m_token = m_lexer.Next(); }
    [[noreturn]] void Expected(std::wstring message) const {
        throw WqlFailure{m_token.position, std::move(message)};
    }
    bool IsWord(std::wstring_view word) const noexcept {
        return m_token.kind == WqlToken::Kind::Word && SameName(m_token.source, word);
    }
    bool AcceptWord(std::wstring_view word) {
        if (!IsWord(word)) {
            return false;
        }
        Advance();
        return true;
    }
    bool AcceptSymbol(std::wstring_view symbol) {
        if (m_token.kind != WqlToken::Kind::Symbol || m_token.source != symbol) {
            return false;
        }
        Advance();
        return true;
    }
    std::wstring Name(const wchar_t* message) {
        if (m_token.kind != WqlToken::Kind::Word) {
            Expected(message);
        }
        std::wstring name(m_token.source);
        Advance();
        return name;
    }

    void Select(WqlQuery& query) {
        if (!AcceptSymbol(L"*")) {
            do {
                query.properties.push_back(Name(L"a property name or '*' was expected"));
            } while (AcceptSymbol(L","));
        }
        if (!AcceptWord(L"FROM")) {
            Expected(L"FROM was expected");
        }
        query.className = Name(L"a class name was expected");
        if (AcceptWord(L"WHERE")) {
            query.where = Or(0);
        }
    }

    Condition Or(std::size_t depth) { return Chain(Condition::Kind::Or, L"OR", depth); }

    Condition Chain(Condition::Kind kind, std::wstring_view word, std::size_t depth) {
        const auto operand = [&] {
            return kind == Condition::Kind::Or ? Chain(Condition::Kind::And, L"AND", depth) : Unary(depth);
        };
        Condition first = operand();
        if (!IsWord(word)) {
            return first;
        }
        Condition chain;
        chain.kind = kind;
        chain.operands.push_back(std::move(first));
        while (AcceptWord(word)) {
            chain.operands.push_back(operand());
        }
        return chain;
    }

    Condition Unary(std::size_t depth) {
        // The limit stands between a hostile query and the end of the stack.
        if (depth == kMaximumWqlDepth) {
            Expected(L"the conditions are nested too deeply");
        }
        if (AcceptWord(L"NOT")) {
            return Negated(Unary(depth + 1));
        }
        if (AcceptSymbol(L"(")) {
            Condition inner = Or(depth + 1);
            if (!AcceptSymbol(L")")) {
                Expected(L"')' was expected");
            }
            return inner;
        }
        return Comparison();
    }

    static Condition Negated(Condition inner) {
        Condition negation;
        negation.kind = Condition::Kind::Not;
        negation.operands.push_back(std::move(inner));
        return negation;
    }

    bool AtLiteral() const noexcept {
        return m_token.kind == WqlToken::Kind::Text || m_token.kind == WqlToken::Kind::Number ||
               IsWord(L"TRUE") || IsWord(L"FALSE") || IsWord(L"NULL");
    }

    void Literal(Condition& condition) {
        if (!AtLiteral()) {
            Expected(L"a text, a number, TRUE, FALSE or NULL was expected");
        }
        if (m_token.kind == WqlToken::Kind::Text) {
            if (m_token.source.substr(0, 2) == L"\\\\" && ObjectPath::Parse(m_token.source)) {
                condition.pathAsWritten = m_token.source;
            }
            condition.literal = std::move(m_token.text);
        } else if (m_token.kind == WqlToken::Kind::Number) {
            condition.literal = m_token.number;
        } else if (!IsWord(L"NULL")) {
            condition.literal = IsWord(L"TRUE");
        }
        Advance();
    }

    Operator ComparisonOperator() {
        static constexpr std::pair<std::wstring_view, Operator> kOperators[] = {
            {L"=", Operator::Equal},        {L"<>", Operator::NotEqual}, {L"!=", Operator::NotEqual},
            {L"<=", Operator::LessOrEqual}, {L"<", Operator::Less},      {L">=", Operator::GreaterOrEqual},
            {L">", Operator::Greater},
        };
        for (const auto& [symbol, op] : kOperators) {
            if (AcceptSymbol(symbol)) {
                return op;
            }
        }
        Expected(L"a comparison, IS or LIKE was expected");
    }

    static Operator Mirrored(Operator op) noexcept {
        switch (op) {
        case Operator::Less:
            return Operator::Greater;
        case Operator::Greater:
            return Operator::Less;
        case Operator::LessOrEqual:
            return Operator::GreaterOrEqual;
        case Operator::GreaterOrEqual:
            return Operator::LessOrEqual;
        default:
            return op;
        }
    }

    Condition Comparison() {
        Condition condition;
        if (AtLiteral()) {
            Literal(condition);
            const std::size_t position = m_token.position;
            condition.op = Mirrored(ComparisonOperator());
            condition.property = Property();
            CheckNull(condition, position);
            return condition;
        }
        condition.property = Property();
        if (AcceptWord(L"IS")) {
            const bool negative = AcceptWord(L"NOT");
            if (!AcceptWord(L"NULL")) {
                Expected(L"NULL was expected");
            }
            condition.kind = negative ? Condition::Kind::IsNotNull : Condition::Kind::IsNull;
            return condition;
        }
        const bool negative = IsWord(L"NOT");
        if (negative) {
            Advance();
        }
        if (AcceptWord(L"LIKE")) {
            if (m_token.kind != WqlToken::Kind::Text) {
                Expected(L"a pattern in quotes was expected");
            }
            condition.kind = Condition::Kind::Like;
            condition.literal = std::move(m_token.text);
            Advance();
            return negative ? Negated(std::move(condition)) : condition;
        }
        if (negative) {
            Expected(L"LIKE was expected");
        }
        const std::size_t position = m_token.position;
        condition.op = ComparisonOperator();
        Literal(condition);
        CheckNull(condition, position);
        return condition;
    }

    static void CheckNull(const Condition& condition, std::size_t position) {
        if (!condition.literal && condition.op != Operator::Equal && condition.op != Operator::NotEqual) {
            throw WqlFailure{position, L"NULL is only compared with '=' and '<>'"};
        }
    }

    std::wstring Property() {
        for (const wchar_t* keyword : {L"AND", L"OR", L"NOT", L"IS", L"LIKE", L"WHERE", L"FROM", L"SELECT"}) {
            if (IsWord(keyword)) {
                Expected(L"a property name was expected");
            }
        }
        return Name(L"a property name was expected");
    }

    void Associations(WqlQuery& query) {
        // The path in braces is not made of tokens: take it before the next one is read.
        Advance();
        if (!IsWord(L"OF")) {
            Expected(L"OF was expected");
        }
        query.objectPath = m_lexer.Braces();
        Advance();
        if (!AcceptWord(L"WHERE")) {
            return;
        }
        if (m_token.kind == WqlToken::Kind::End) {
            Expected(L"a condition was expected");
        }
        while (m_token.kind != WqlToken::Kind::End) {
            AssociationCondition(query);
        }
    }

    void AssociationCondition(WqlQuery& query) {
        const bool associators = query.kind == WqlQuery::Kind::Associators;
        struct Flag {
            const wchar_t* name;
            bool& value;
        };
        for (const Flag& flag :
             {Flag{L"ClassDefsOnly", query.classDefsOnly}, Flag{L"KeysOnly", query.keysOnly}}) {
            if (AcceptWord(flag.name)) {
                flag.value = true;
                return;
            }
        }
        struct Setting {
            const wchar_t* name;
            std::wstring& value;
            bool associatorsOnly;
        };
        for (const Setting& setting :
             {Setting{L"ResultClass", query.resultClass, false},
              Setting{L"AssocClass", query.assocClass, true}, Setting{L"Role", query.role, false},
              Setting{L"ResultRole", query.resultRole, true},
              Setting{L"RequiredQualifier", query.requiredQualifier, false},
              Setting{L"RequiredAssocQualifier", query.requiredAssocQualifier, true}}) {
            if (!IsWord(setting.name)) {
                continue;
            }
            if (setting.associatorsOnly && !associators) {
                Expected(std::wstring(setting.name) + L" belongs to ASSOCIATORS OF only");
            }
            if (!setting.value.empty()) {
                Expected(std::wstring(setting.name) + L" stands twice");
            }
            Advance();
            if (!AcceptSymbol(L"=")) {
                Expected(L"'=' was expected");
            }
            setting.value = Name(L"a name was expected");
            return;
        }
        if (IsWord(L"AND")) {
            Expected(L"these conditions follow one another without AND");
        }
        Expected(L"this condition is not known here");
    }

    WqlLexer m_lexer;
    WqlToken m_token;
};

} // namespace

std::optional<WqlQuery> ParseWql(std::wstring_view text, WqlError* error) {
    try {
        return Parser(text).Run();
    } catch (WqlFailure& failure) {
        if (error != nullptr) {
            *error = {failure.position, std::move(failure.message)};
        }
        return std::nullopt;
    }
}

} // namespace quillet::wmi
