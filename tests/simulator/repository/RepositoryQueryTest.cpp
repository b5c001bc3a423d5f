// SELECT and the association queries, and that indexes serve them.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RepositoryQuery : public RepositoryFixture {
  protected:
    /// `count` devices; their parents repeat after ten.
    void PutMany(int count) {
        for (int i = 0; i < count; ++i) {
            Instance device = New(i % 2 == 0 ? L"T_Device" : L"T_FastDevice");
            device.Set(L"DeviceID", Value::Text(L"d" + std::to_wstring(i)));
            device.Set(L"ParentId", Value::Text(L"p" + std::to_wstring(i / 10)));
            device.Set(L"Speed", Value::Unsigned(static_cast<std::uint64_t>(i)));
            device.Set(L"Enabled", Value::Bool(i % 100 == 0));
            if (i > 0) {
                device.Set(L"Peer", Value::Text(L"T_Device='d" + std::to_wstring(i - 1) + L"'"));
            }
            ASSERT_EQ(m_repository.PutInstance(device), 0);
        }
    }
    /// How many instances a query looks at.
    std::uint64_t Cost(const wchar_t* query) {
        const std::uint64_t before = m_repository.Examined();
        Query(query);
        return m_repository.Examined() - before;
    }
};

TEST_F(RepositoryQuery, SelectsOfAClassAndItsSubclasses) {
    PutDevice(L"1");
    PutDevice(L"2", L"T_FastDevice");
    EXPECT_THAT(Query(L"SELECT * FROM T_Device"), ElementsAre(L"1", L"2"));
    EXPECT_THAT(Query(L"select DeviceID, __PATH from t_element"), IsEmpty());
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_QUERY));
    EXPECT_THAT(Query(L"select Caption, __PATH from t_element"), ElementsAre(L"1", L"2"));
    EXPECT_THAT(Query(L"SELECT * FROM T_FastDevice"), ElementsAre(L"2"));
    EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE __CLASS = 'T_Device'"), ElementsAre(L"1"));
    EXPECT_EQ(m_lastResult, 0);
}

TEST_F(RepositoryQuery, NamesUnknownClassesAndProperties) {
    PutDevice(L"1");
    Query(L"SELECT * FROM None");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_CLASS));
    Query(L"SELECT * FROM T_Device WHERE None = 1 OR Speed = 1");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_QUERY));
    Query(L"SELECT None FROM T_Device");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_QUERY));
    Query(L"SELECT * FROM T_Device WHERE Lanes = 1");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_QUERY));
    EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE __UNHEARD IS NULL"), ElementsAre(L"1"));
}

TEST_F(RepositoryQuery, AnswersInTheOrderOfCreationWithOrWithoutIndex) {
    PutMany(40);
    EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE DeviceID = 'd7' OR DeviceID = 'D3' OR DeviceID='d12'"),
                ElementsAre(L"d3", L"d7", L"d12"));
    EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE Speed > 36"), ElementsAre(L"d37", L"d38", L"d39"));
}

TEST_F(RepositoryQuery, AnIndexServesEquality) {
    PutMany(1000);
    const std::uint64_t first = Cost(L"SELECT * FROM T_Device WHERE ParentId = 'P42'");
    EXPECT_GE(first, 1000u);
    for (const wchar_t* query :
         {L"SELECT * FROM T_Device WHERE ParentId = 'p42'", L"SELECT * FROM T_Device WHERE 'p42' = ParentId",
          L"SELECT * FROM T_Device WHERE ParentId = \"p42\" AND NOT DeviceID = \"d425\"",
          L"SELECT * FROM T_Device WHERE Speed > 5 AND (ParentId = 'p42' AND Caption IS NULL)",
          L"SELECT * FROM T_Element WHERE Caption IS NULL AND __CLASS = 'none' AND Caption = 'none'"}) {
        Cost(query);
        EXPECT_LE(Cost(query), 10u) << ToUtf8(query);
    }
    EXPECT_EQ(Query(L"SELECT * FROM T_Device WHERE ParentId = 'p42'").size(), 10u);
    EXPECT_EQ(Query(L"SELECT * FROM T_Device WHERE ParentId = \"p42\" AND NOT DeviceID = \"d425\"").size(),
              9u);
}

struct IndexedQuery {
    const wchar_t* text;
    std::size_t results;
    bool indexed;
};

/// GoogleTest would show the bytes, those behind the last member included.
void PrintTo(const IndexedQuery& query, std::ostream* out) {
    *out << query.results << (query.indexed ? " by index" : " by search");
}

class RepositoryIndexes : public RepositoryQuery, public ::testing::WithParamInterface<IndexedQuery> {};

TEST_P(RepositoryIndexes, ServeWhatTheyCanAndChangeNoAnswer) {
    PutMany(500);
    const std::wstring query = std::wstring(L"SELECT * FROM T_Device WHERE ") + GetParam().text;
    EXPECT_EQ(Query(query).size(), GetParam().results);
    const std::uint64_t cost = Cost(query.c_str());
    EXPECT_EQ(cost < 100, GetParam().indexed) << cost;
    EXPECT_EQ(Query(query).size(), GetParam().results);
}

INSTANTIATE_TEST_SUITE_P(
    Queries, RepositoryIndexes,
    ::testing::Values(IndexedQuery{L"DeviceID = 'd17'", 1, true}, IndexedQuery{L"DeviceID = 'D17'", 1, true},
                      IndexedQuery{L"Speed = 17", 1, true}, IndexedQuery{L"Speed = '17'", 1, true},
                      IndexedQuery{L"Speed = 17.0", 1, false}, IndexedQuery{L"Speed = -1", 0, true},
                      IndexedQuery{L"Enabled = TRUE", 5, true}, IndexedQuery{L"Enabled = 1", 5, false},
                      IndexedQuery{L"Peer = 'T_Device.DeviceID=\"d16\"'", 1, true},
                      IndexedQuery{LR"(Peer = '\\HOST\ROOT\Test:T_FastDevice.DeviceID="D16"')", 1, true},
                      IndexedQuery{L"Peer = 'no path'", 0, true},
                      IndexedQuery{L"DeviceID = 'd17' OR Speed = 18", 2, true},
                      IndexedQuery{L"DeviceID = 'd17' OR Speed > 498", 2, false},
                      IndexedQuery{L"DeviceID = 'd17' AND Speed > 498", 0, true},
                      IndexedQuery{L"NOT DeviceID = 'd17'", 499, false},
                      IndexedQuery{L"DeviceID <> 'd17'", 499, false},
                      IndexedQuery{L"DeviceID = 17", 0, false}, IndexedQuery{L"Peer IS NULL", 1, false},
                      IndexedQuery{L"Peer = NULL", 1, false}, IndexedQuery{L"Load = 1.0", 0, false},
                      IndexedQuery{L"DeviceID LIKE 'd17'", 1, false}));

TEST_F(RepositoryQuery, IndexesFollowEveryChange) {
    PutMany(100);
    const wchar_t* query = L"SELECT * FROM T_Device WHERE ParentId = 'p3'";
    EXPECT_EQ(Query(query).size(), 10u);
    Instance moved = *m_repository.FindInstance(L"T_Device='d35'");
    moved.Set(L"ParentId", Value::Text(L"elsewhere"));
    ASSERT_EQ(m_repository.PutInstance(moved), 0);
    ASSERT_EQ(m_repository.DeleteInstance(*ObjectPath::Parse(L"T_Device='d36'")), 0);
    Instance added = New(L"T_Device");
    added.Set(L"DeviceID", Value::Text(L"new"));
    added.Set(L"ParentId", Value::Text(L"P3"));
    ASSERT_EQ(m_repository.PutInstance(added), 0);
    EXPECT_THAT(Query(query),
                ElementsAre(L"d30", L"d31", L"d32", L"d33", L"d34", L"d37", L"d38", L"d39", L"new"));
    EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE ParentId = 'elsewhere'"), ElementsAre(L"d35"));
    Compile("class T_SlowDevice : T_Device { }; instance of T_SlowDevice { DeviceID = \"slow\"; ParentId = "
            "\"p3\"; };");
    EXPECT_EQ(Query(query).size(), 10u);
}

TEST_F(RepositoryQuery, FetchByPathDoesNotLookAtInstances) {
    PutMany(300);
    const std::uint64_t before = m_repository.Examined();
    EXPECT_TRUE(m_repository.FindInstance(L"T_Device='d299'"));
    EXPECT_EQ(m_repository.Examined(), before);
}

class RepositoryAssociations : public RepositoryQuery {
  protected:
    RepositoryAssociations() {
        for (const wchar_t* id : {L"team", L"a", L"b", L"other"}) {
            PutDevice(id);
        }
        PutDevice(L"fast", L"T_FastDevice");
        Compile(R"(
            instance of T_Member { Group = "T_Device='team'"; Part = "T_Device.DeviceID=\"a\""; Rank = 1; };
            instance of T_Member { Group = "\\\\HOST\\ROOT\\Test:T_Device.DeviceID=\"TEAM\""; Part = "T_FastDevice='fast'"; };
            instance of T_Member { Group = "T_Device='team'"; Part = "T_Device='b'"; };
            instance of T_Next { Id = "n1"; From = "T_Device='a'"; To = "T_Device='b'"; };
            instance of T_Next { Id = "n2"; From = "T_Device='b'"; To = "T_Device='a'"; };
            instance of T_Next { Id = "n3"; From = "T_Device='b'"; To = "T_Device='missing'"; };
        )");
    }
};

TEST_F(RepositoryAssociations, AssociatorsAreTheOtherEnds) {
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='team'}"), ElementsAre(L"a", L"fast", L"b"));
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='a'}"), ElementsAre(L"team", L"b"));
    EXPECT_THAT(Query(LR"(ASSOCIATORS OF {\\HOST\ROOT\Test:T_Device.DeviceID="Fast"})"),
                ElementsAre(L"team"));
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='other'}"), IsEmpty());
    EXPECT_EQ(m_lastResult, 0);
}

TEST_F(RepositoryAssociations, AssociatorsAreFiltered) {
    const auto of = [this](const wchar_t* object, const std::wstring& where) {
        return Query(std::wstring(L"ASSOCIATORS OF {T_Device='") + object + L"'} WHERE " + where);
    };
    EXPECT_THAT(of(L"team", L"ResultClass = T_FastDevice"), ElementsAre(L"fast"));
    EXPECT_THAT(of(L"team", L"ResultClass = t_element"), ElementsAre(L"a", L"fast", L"b"));
    EXPECT_THAT(of(L"a", L"AssocClass = T_Next"), ElementsAre(L"b"));
    EXPECT_THAT(of(L"a", L"AssocClass = T_Member"), ElementsAre(L"team"));
    EXPECT_THAT(of(L"a", L"Role = From"), ElementsAre(L"b"));
    EXPECT_THAT(of(L"a", L"Role = Part"), ElementsAre(L"team"));
    EXPECT_THAT(of(L"a", L"ResultRole = group"), ElementsAre(L"team"));
    EXPECT_THAT(of(L"a", L"ResultRole = Part"), IsEmpty());
    EXPECT_THAT(of(L"a", L"AssocClass=T_Next ResultClass=T_Device Role=To ResultRole=From"),
                ElementsAre(L"b"));
    EXPECT_THAT(of(L"a", L"RequiredAssocQualifier = Association"), ElementsAre(L"team", L"b"));
    EXPECT_THAT(of(L"a", L"RequiredQualifier = Association"), IsEmpty());
    EXPECT_EQ(of(L"team", L"ClassDefsOnly").size(), 2u);
}

TEST_F(RepositoryAssociations, ReferencesAreTheAssociations) {
    EXPECT_EQ(Query(L"REFERENCES OF {T_Device='team'} WHERE ResultClass = T_Member").size(), 3u);
    EXPECT_EQ(Query(L"REFERENCES OF {T_Device='a'}").size(), 3u);
    EXPECT_THAT(Query(L"REFERENCES OF {T_Device='a'} WHERE Role = From"), ElementsAre(L"T_Next.Id=\"n1\""));
    EXPECT_THAT(Query(L"REFERENCES OF {T_Device='b'} WHERE ResultClass=T_Next"),
                ElementsAre(L"T_Next.Id=\"n1\"", L"T_Next.Id=\"n2\"", L"T_Next.Id=\"n3\""));
    EXPECT_THAT(Query(L"REFERENCES OF {T_Device='a'} WHERE ResultClass=T_Device"), IsEmpty());
    EXPECT_EQ(Query(L"REFERENCES OF {T_Device='a'} WHERE ClassDefsOnly").size(), 2u);
    EXPECT_THAT(Query(L"REFERENCES OF {T_Device='other'}"), IsEmpty());
}

TEST_F(RepositoryAssociations, AnAssociationOfAnObjectWithItselfComesOnce) {
    Compile("instance of T_Next { Id = \"self\"; From = \"T_Device='other'\"; To = \"T_Device='other'\"; };");
    EXPECT_EQ(Query(L"REFERENCES OF {T_Device='other'}").size(), 1u);
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='other'}"), ElementsAre(L"other"));
}

TEST_F(RepositoryAssociations, BadObjectsAndClassesHaveTheirCodes) {
    Query(L"ASSOCIATORS OF {no path}");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_OBJECT_PATH));
    Query(L"ASSOCIATORS OF {T_Device}");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_OBJECT_PATH));
    Query(L"REFERENCES OF {}");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_OBJECT_PATH));
    Query(L"REFERENCES OF {T_Device='nobody'}");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_NOT_FOUND));
    Query(L"REFERENCES OF {T_Device='a'} WHERE ResultClass = None");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_CLASS));
    Query(L"ASSOCIATORS OF {T_Device='a'} WHERE AssocClass = None");
    EXPECT_EQ(m_lastResult, Code(WBEM_E_INVALID_CLASS));
}

TEST_F(RepositoryAssociations, DoNotScan) {
    for (int i = 0; i < 500; ++i) {
        const std::string id = std::to_string(i);
        Compile("instance of T_Next { Id = \"x" + id + "\"; From = \"T_Device='x" + id +
                "'\"; To = \"T_Device='other'\"; };");
    }
    EXPECT_LE(Cost(L"ASSOCIATORS OF {T_Device='team'}"), 3u);
    EXPECT_LE(Cost(L"REFERENCES OF {T_Device='a'}"), 3u);
    EXPECT_EQ(Cost(L"REFERENCES OF {T_Device='other'}"), 500u);
}

TEST_F(RepositoryAssociations, FollowChangesAndDeletions) {
    Instance moved = *m_repository.FindInstance(L"T_Next='n1'");
    moved.Set(L"To", Value::Text(L"T_Device='other'"));
    ASSERT_EQ(m_repository.PutInstance(moved), 0);
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='other'}"), ElementsAre(L"a"));
    ASSERT_EQ(m_repository.DeleteInstance(*ObjectPath::Parse(L"T_Next='n1'")), 0);
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='other'}"), IsEmpty());
    ASSERT_EQ(m_repository.DeleteInstance(*ObjectPath::Parse(L"T_Device='b'")), 0);
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='a'}"), ElementsAre(L"team"));
    EXPECT_EQ(Query(L"REFERENCES OF {T_Device='a'}").size(), 2u);
    EXPECT_EQ(m_repository.Instances(L"T_Next").size(), 2u);
    PutDevice(L"b");
    EXPECT_THAT(Query(L"ASSOCIATORS OF {T_Device='a'}"), ElementsAre(L"team", L"b"));
}

TEST_F(RepositoryFixture, ANumberInAQueryMayBeWrittenInAnyForm) {
    Compile("instance of T_Device { DeviceID = \"a\"; Speed = 1000; };"
            "instance of T_Device { DeviceID = \"b\"; Speed = 2000; };");
    for (const wchar_t* number : {L"2000", L"'2000'", L"2000.0", L"'2e3'"}) {
        EXPECT_THAT(Query(L"SELECT * FROM T_Device WHERE Speed = " + std::wstring(number)),
                    ::testing::ElementsAre(L"b"))
            << ToUtf8(number);
    }
}

TEST(RepositoryLateClass, GivesMeaningToPathsThatWereStoredBefore) {
    Repository repository(L"HOST", L"ROOT\\Test");
    CompileMof(repository,
               "class R { }; [Association] class L { [Key] string Id; R REF A; R REF B; };"
               "class H { [Key] R REF Target; R REF Extra; };"
               "instance of L { Id = \"1\"; A = \"Late.Id='x'\"; B = \"Late='y'\"; };"
               "instance of H { Target = \"Late='x'\"; Extra = \"Late='y'\"; };",
               "early.mof");
    std::vector<InstancePtr> found;
    const auto extra = ParseWql(L"SELECT * FROM H WHERE Extra = 'Late.Id=\"y\"'");
    ASSERT_EQ(repository.Select(*extra, found), 0);
    EXPECT_TRUE(found.empty());
    CompileMof(repository,
               "class Late : R { [Key] string Id; }; instance of Late { Id = \"x\"; };"
               "instance of Late { Id = \"y\"; };",
               "late.mof");
    ASSERT_EQ(repository.Associations(*ParseWql(L"ASSOCIATORS OF {Late='X'}"), found), 0);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0]->Text(L"Id"), L"y");
    ASSERT_EQ(repository.Select(*extra, found), 0);
    EXPECT_EQ(found.size(), 1u);
    EXPECT_TRUE(repository.FindInstance(LR"(H.Target="Late.Id=\"X\"")"));
    EXPECT_EQ(repository.DeleteInstance(*ObjectPath::Parse(L"H.Target=\"Late='x'\"")), 0);
    ASSERT_EQ(repository.Select(*extra, found), 0);
    EXPECT_TRUE(found.empty());
}

} // namespace
} // namespace quillet::tests
