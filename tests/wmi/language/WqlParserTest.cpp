// From query text to tree, and the errors with their positions.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

using Kind = WqlCondition::Kind;
using Operator = WqlCondition::Operator;

WqlQuery Parsed(std::wstring_view text) {
    WqlError error;
    std::optional<WqlQuery> query = ParseWql(text, &error);
    EXPECT_TRUE(query) << ToUtf8(text) << " at " << error.position << ": " << ToUtf8(error.message);
    return query ? std::move(*query) : WqlQuery();
}

WqlCondition Where(const std::wstring& condition) {
    return Parsed(L"SELECT * FROM C WHERE " + condition).where.value_or(WqlCondition());
}

TEST(WqlSelect, TakesAllOrAListOfProperties) {
    EXPECT_TRUE(Parsed(L"SELECT * FROM Zorel_VLAN").properties.empty());
    EXPECT_EQ(Parsed(L"SELECT * FROM Zorel_VLAN").className, L"Zorel_VLAN");
    EXPECT_FALSE(Parsed(L"SELECT * FROM Zorel_VLAN").where);
    const WqlQuery query = Parsed(L"  select Name,__PATH , Caption\tfrom\r\nC  ");
    EXPECT_THAT(query.properties, ::testing::ElementsAre(L"Name", L"__PATH", L"Caption"));
}

TEST(WqlSelect, KnowsEveryComparison) {
    const std::pair<const wchar_t*, Operator> operators[] = {
        {L"=", Operator::Equal},          {L"<>", Operator::NotEqual}, {L"!=", Operator::NotEqual},
        {L"<", Operator::Less},           {L">", Operator::Greater},   {L"<=", Operator::LessOrEqual},
        {L">=", Operator::GreaterOrEqual}};
    for (const auto& [symbol, op] : operators) {
        const WqlCondition condition = Where(std::wstring(L"Speed") + symbol + L"5");
        EXPECT_EQ(condition.kind, Kind::Compare);
        EXPECT_EQ(condition.op, op) << ToUtf8(symbol);
        EXPECT_EQ(condition.property, L"Speed");
        EXPECT_EQ(condition.literal, Scalar(std::int64_t{5}));
    }
}

TEST(WqlSelect, TurnsALiteralOnTheLeftRound) {
    EXPECT_EQ(Where(L"5 < Speed").op, Operator::Greater);
    EXPECT_EQ(Where(L"5 >= Speed").op, Operator::LessOrEqual);
    EXPECT_EQ(Where(L"5 > Speed").op, Operator::Less);
    EXPECT_EQ(Where(L"5 <= Speed").op, Operator::GreaterOrEqual);
    EXPECT_EQ(Where(L"'x' <> Name").op, Operator::NotEqual);
    EXPECT_EQ(Where(L"'x' = Name").property, L"Name");
    EXPECT_FALSE(Where(L"NULL = Name").literal);
}

TEST(WqlSelect, ReadsLiterals) {
    const auto literal = [](const wchar_t* text) { return Where(std::wstring(L"a = ") + text).literal; };
    EXPECT_EQ(literal(L"\"it's\""), Scalar(std::wstring(L"it's")));
    EXPECT_EQ(literal(L"'say \"x\"'"), Scalar(std::wstring(L"say \"x\"")));
    EXPECT_EQ(literal(LR"("a\"b\\c")"), Scalar(std::wstring(L"a\"b\\c")));
    EXPECT_EQ(literal(LR"("C:\temp")"), Scalar(std::wstring(L"C:\\temp")));
    EXPECT_EQ(literal(L"-7"), Scalar(std::int64_t{-7}));
    EXPECT_EQ(literal(L"18446744073709551615"), Scalar(UINT64_MAX));
    EXPECT_EQ(literal(L"-9223372036854775808"), Scalar(INT64_MIN));
    EXPECT_EQ(literal(L"1.5"), Scalar(1.5));
    EXPECT_EQ(literal(L"-2.5e-1"), Scalar(-0.25));
    EXPECT_EQ(literal(L"True"), Scalar(true));
    EXPECT_EQ(literal(L"FALSE"), Scalar(false));
    EXPECT_EQ(literal(L"null"), std::nullopt);
}

TEST(WqlSelect, KeepsAPathThatWasNotEscaped) {
    EXPECT_EQ(Where(LR"(SameElement = '\\H\ROOT\x:C.Name="{1}"')").pathAsWritten,
              LR"(\\H\ROOT\x:C.Name="{1}")");
    EXPECT_EQ(Where(LR"(SameElement = '\\\\H\\ROOT\\x:C.Name="{1}"')").pathAsWritten, L"");
    EXPECT_EQ(Where(LR"(Name = "plain\\text")").pathAsWritten, L"");
}

TEST(WqlSelect, BindsNotBeforeAndBeforeOr) {
    const WqlCondition condition = Where(L"a=1 OR b=2 AND NOT c=3 AND d=4");
    ASSERT_EQ(condition.kind, Kind::Or);
    ASSERT_EQ(condition.operands.size(), 2u);
    EXPECT_EQ(condition.operands[0].property, L"a");
    const WqlCondition& conjunction = condition.operands[1];
    ASSERT_EQ(conjunction.kind, Kind::And);
    ASSERT_EQ(conjunction.operands.size(), 3u);
    ASSERT_EQ(conjunction.operands[1].kind, Kind::Not);
    EXPECT_EQ(conjunction.operands[1].operands[0].property, L"c");
}

TEST(WqlSelect, ParenthesesBindFirst) {
    const WqlCondition condition = Where(L"(a=1 or b=2)and(not(c=3))");
    ASSERT_EQ(condition.kind, Kind::And);
    EXPECT_EQ(condition.operands[0].kind, Kind::Or);
    EXPECT_EQ(condition.operands[1].kind, Kind::Not);
}

TEST(WqlSelect, KnowsNullAndLike) {
    EXPECT_EQ(Where(L"a IS NULL").kind, Kind::IsNull);
    EXPECT_EQ(Where(L"a is not null").kind, Kind::IsNotNull);
    EXPECT_EQ(Where(L"a LIKE '%x%'").kind, Kind::Like);
    EXPECT_EQ(Where(L"a LIKE '%x%'").literal, Scalar(std::wstring(L"%x%")));
    EXPECT_EQ(Where(L"a NOT LIKE 'x'").kind, Kind::Not);
}

TEST(WqlSelect, TakesTheSpacingThatClientsSend) {
    const WqlCondition settings = Where(L"ParentId = \"x\" AND Caption= \"y\"");
    ASSERT_EQ(settings.operands.size(), 2u);
    EXPECT_EQ(settings.operands[1].property, L"Caption");
    EXPECT_EQ(Where(L"SameElement = 'id'").literal, Scalar(std::wstring(L"id")));
    EXPECT_EQ(Where(L"PackageName = \"p\" AND NOT DiagnosticName = \"x\"").operands[1].kind, Kind::Not);
    EXPECT_EQ(Where(L"SlotID=\"3\"").property, L"SlotID");
}

TEST(WqlAssociations, ReadsBothForms) {
    const WqlQuery bare = Parsed(L"ASSOCIATORS OF {C.k=\"1\"}");
    EXPECT_EQ(bare.kind, WqlQuery::Kind::Associators);
    EXPECT_EQ(bare.objectPath, L"C.k=\"1\"");
    const WqlQuery full = Parsed(L"associators of{ C.k='}{' } where ResultClass=R AssocClass = A "
                                 L"Role= From ResultRole =To RequiredQualifier=Q RequiredAssocQualifier = P "
                                 L"ClassDefsOnly KeysOnly");
    EXPECT_EQ(full.objectPath, L"C.k='}{'");
    EXPECT_EQ(full.resultClass, L"R");
    EXPECT_EQ(full.assocClass, L"A");
    EXPECT_EQ(full.role, L"From");
    EXPECT_EQ(full.resultRole, L"To");
    EXPECT_EQ(full.requiredQualifier, L"Q");
    EXPECT_EQ(full.requiredAssocQualifier, L"P");
    EXPECT_TRUE(full.classDefsOnly);
    EXPECT_TRUE(full.keysOnly);
    const WqlQuery references = Parsed(LR"(REFERENCES OF {C.k="a\"}b"} WHERE ResultClass = Zorel_Member)");
    EXPECT_EQ(references.kind, WqlQuery::Kind::References);
    EXPECT_EQ(references.objectPath, LR"(C.k="a\"}b")");
    EXPECT_EQ(references.resultClass, L"Zorel_Member");
}

struct BadQuery {
    const wchar_t* text;
    std::size_t position;
};

class WqlErrors : public ::testing::TestWithParam<BadQuery> {};

TEST_P(WqlErrors, NameTheirPosition) {
    WqlError error;
    EXPECT_FALSE(ParseWql(GetParam().text, &error)) << ToUtf8(GetParam().text);
    EXPECT_EQ(error.position, GetParam().position)
        << ToUtf8(GetParam().text) << ": " << ToUtf8(error.message);
    EXPECT_FALSE(error.message.empty());
    EXPECT_FALSE(ParseWql(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WqlErrors,
    ::testing::Values(
        BadQuery{L"", 0}, BadQuery{L"   ", 3}, BadQuery{L"DELETE FROM C", 0}, BadQuery{L"SELECT", 6},
        BadQuery{L"SELECT FROM C", 12}, BadQuery{L"SELECT * C", 9}, BadQuery{L"SELECT * FROM", 13},
        BadQuery{L"SELECT * FROM 5", 14}, BadQuery{L"SELECT a, FROM C", 15},
        BadQuery{L"SELECT *, a FROM C", 8}, BadQuery{L"SELECT * FROM C;", 15},
        BadQuery{L"SELECT * FROM C D", 16}, BadQuery{L"SELECT * FROM C WHERE", 21},
        BadQuery{L"SELECT * FROM C WHERE a", 23}, BadQuery{L"SELECT * FROM C WHERE a =", 25},
        BadQuery{L"SELECT * FROM C WHERE a = b", 26}, BadQuery{L"SELECT * FROM C WHERE a = 'x", 26},
        BadQuery{L"SELECT * FROM C WHERE a = \"x'", 26}, BadQuery{L"SELECT * FROM C WHERE a = \"x\"\"", 29},
        BadQuery{L"SELECT * FROM C WHERE (a = 1", 28}, BadQuery{L"SELECT * FROM C WHERE a = 1)", 27},
        BadQuery{L"SELECT * FROM C WHERE a = 1 AND", 31}, BadQuery{L"SELECT * FROM C WHERE AND a = 1", 22},
        BadQuery{L"SELECT * FROM C WHERE a ! 1", 24}, BadQuery{L"SELECT * FROM C WHERE a == 1", 25},
        BadQuery{L"SELECT * FROM C WHERE a = 1x", 27}, BadQuery{L"SELECT * FROM C WHERE a = 1.2.3", 26},
        BadQuery{L"SELECT * FROM C WHERE a = 18446744073709551616", 26},
        BadQuery{L"SELECT * FROM C WHERE a < NULL", 24}, BadQuery{L"SELECT * FROM C WHERE a IS 5", 27},
        BadQuery{L"SELECT * FROM C WHERE a IS NOT 5", 31}, BadQuery{L"SELECT * FROM C WHERE a LIKE 5", 29},
        BadQuery{L"SELECT * FROM C WHERE a NOT 5", 28}, BadQuery{L"SELECT * FROM C WHERE 1 = 2", 26},
        BadQuery{L"SELECT * FROM C WHERE a.b = 2", 23}, BadQuery{L"SELECT * FROM C WHERE a ~ 2", 24},
        BadQuery{L"ASSOCIATORS {a}", 12}, BadQuery{L"ASSOCIATORS a", 12}, BadQuery{L"ASSOCIATORS OF a", 15},
        BadQuery{L"ASSOCIATORS OF", 14}, BadQuery{L"ASSOCIATORS OF {a", 15},
        BadQuery{L"ASSOCIATORS OF {a.k=\"}", 15}, BadQuery{L"ASSOCIATORS OF {a} WHERE", 24},
        BadQuery{L"ASSOCIATORS OF {a} ResultClass=b", 19},
        BadQuery{L"ASSOCIATORS OF {a} WHERE ResultClass b", 37},
        BadQuery{L"ASSOCIATORS OF {a} WHERE ResultClass=", 37},
        BadQuery{L"ASSOCIATORS OF {a} WHERE ResultClass='b'", 37},
        BadQuery{L"ASSOCIATORS OF {a} WHERE ResultClass=b AND Role=c", 39},
        BadQuery{L"ASSOCIATORS OF {a} WHERE Role=b Role=c", 32},
        BadQuery{L"ASSOCIATORS OF {a} WHERE x=y", 25}, BadQuery{L"REFERENCES OF {a} WHERE AssocClass=b", 24},
        BadQuery{L"REFERENCES OF {a} WHERE ResultRole=b", 24}, BadQuery{L"REFERENCES OF {a\\", 14}));

TEST(WqlLimits, NestingEndsInAnErrorNotInTheStack) {
    const std::wstring head = L"SELECT * FROM C WHERE ";
    const auto nested = [&](std::size_t depth) {
        return head + std::wstring(depth, L'(') + L"a=1" + std::wstring(depth, L')');
    };
    EXPECT_TRUE(ParseWql(nested(kMaximumWqlDepth - 1)));
    WqlError error;
    EXPECT_FALSE(ParseWql(nested(kMaximumWqlDepth), &error));
    EXPECT_EQ(error.position, head.size() + kMaximumWqlDepth);
    EXPECT_FALSE(ParseWql(nested(1'000'000)));
    std::wstring nots = head;
    for (int i = 0; i < 100'000; ++i) {
        nots += L"NOT ";
    }
    EXPECT_FALSE(ParseWql(nots + L"a=1"));
}

TEST(WqlLimits, LongChainsAreNotNested) {
    std::wstring text = L"SELECT * FROM C WHERE a=0";
    for (int i = 1; i < 20'000; ++i) {
        text += (i % 2 == 0 ? L" OR a=" : L" AND a=") + std::to_wstring(i);
    }
    EXPECT_EQ(Parsed(text).where->operands.size(), 10'000u);
}

TEST(WqlLimits, HugeLiteralsAndBinaryTextDoNoHarm) {
    const std::wstring literal(1 << 20, L'x');
    EXPECT_EQ(Where(L"a = '" + literal + L"'").literal, Scalar(literal));
    EXPECT_FALSE(ParseWql(std::wstring(1 << 16, L'\0')));
    EXPECT_FALSE(ParseWql(std::wstring(L"SELECT * FROM C\0", 16)));
    EXPECT_FALSE(ParseWql(std::wstring(1 << 20, L'{')));
    EXPECT_FALSE(ParseWql(L"SELECT * FROM C WHERE a = " + std::wstring(100'000, L'9')));
}

} // namespace
} // namespace quillet::tests
