// The rules of VLANs against a second opinion: a table of what each problem means, asked for every
// combination of parent, VLAN and circumstance.
#include "Vlans/VlanMachine.h"

#include "Vlans/VlanRules.h"

#include "LumDebug.h"
#include "TraceAtLoad.h"

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <set>

namespace {

using Numbers = std::vector<LONG>;

/// Capital letters of what the generated names are made of.
std::wstring Capitals(std::wstring text) {
    for (wchar_t& letter : text) {
        if (letter >= L'a' && letter <= L'z') {
            letter = static_cast<wchar_t>(letter - L'a' + L'A');
        } else if (letter == L'\u00fc') {
            letter = L'\u00dc';
        }
    }
    return text;
}

/// What a parent's VLANs take, counted once for all questions about it.
struct Taken {
    explicit Taken(const std::vector<CVLAN>& has) {
        for (const CVLAN& vlan : has) {
            numbers.insert(vlan.m_lVLANNumber);
            names.insert(vlan.m_wsVLANName);
            capitals.insert(Capitals(vlan.m_wsVLANName));
            ofItself.emplace(vlan.m_wsName, &vlan);
        }
    }

    std::multiset<LONG> numbers;
    std::multiset<std::wstring> names;
    std::multiset<std::wstring> capitals;
    std::multimap<std::wstring, const CVLAN*> ofItself;
};

/// One question: what a parent has, what is wanted, and how.
struct Question {
    enum Kind { Tagged, Untagged, Several };
    Kind kind = Tagged;
    std::vector<CVLAN> has;
    std::shared_ptr<const Taken> taken; ///< of those
    std::vector<CVLAN> wanted;
    bool isModify = false;
    bool isTeam = false;
};

/// What a question comes down to: counts and sets, no loops over pairs.
struct Facts {
    explicit Facts(const Question& question) : kind(question.kind), isModify(question.isModify) {
        count = question.has.size();
        added = question.wanted.size();
        if (question.wanted.empty()) {
            return;
        }
        first = question.wanted.front().m_lVLANNumber;
        last = question.wanted.back().m_lVLANNumber;
        const Taken& taken = *question.taken;
        if (kind == Question::Tagged) {
            const CVLAN& wanted = question.wanted.front();
            const std::wstring name = Capitals(wanted.m_wsVLANName);
            sharedNumbers = taken.numbers.count(first);
            sharedNames = taken.capitals.count(name);
            // Only the check of one tagged VLAN knows the VLAN itself.
            const auto [own, end] = taken.ofItself.equal_range(wanted.m_wsName);
            for (auto self = own; self != end; ++self) {
                sharedNumbers -= self->second->m_lVLANNumber == first ? 1u : 0u;
                sharedNames -= Capitals(self->second->m_wsVLANName) == name ? 1u : 0u;
            }
            return;
        }
        for (const CVLAN& vlan : question.wanted) {
            sharedNumbers += taken.numbers.count(vlan.m_lVLANNumber);
            sharedNames += taken.names.count(vlan.m_wsVLANName);
        }
    }

    Question::Kind kind;
    bool isModify;
    std::size_t count = 0;
    std::size_t added = 0;
    LONG first = 0;
    LONG last = 0;
    std::size_t sharedNumbers = 0;
    std::size_t sharedNames = 0;
};

/// The table: a bit, the kinds of check that know it, and when it is set.
struct Rule {
    ULONGLONG bit;
    std::set<Question::Kind> kinds;
    bool (*holds)(const Facts&);
};

bool OutOfRange(LONG id) {
    return id < 1 || id > 4094;
}

const Rule kRules[] = {
    {0x8, {Question::Untagged}, [](const Facts& f) { return f.count == 0 && f.first == 0; }},
    {0x10,
     {Question::Tagged, Question::Untagged, Question::Several},
     [](const Facts& f) { return f.sharedNumbers != 0; }},
    {0x20, {Question::Tagged, Question::Several}, [](const Facts& f) { return f.sharedNames != 0; }},
    {0x40,
     {Question::Tagged, Question::Untagged},
     [](const Facts& f) { return f.count == 64 && !f.isModify; }},
    {0x40, {Question::Several}, [](const Facts& f) { return f.count + f.added > 64; }},
    {0x100, {Question::Tagged}, [](const Facts& f) { return OutOfRange(f.first); }},
    {0x100, {Question::Untagged}, [](const Facts& f) { return f.first != 0; }},
    {0x100,
     {Question::Several},
     [](const Facts& f) { return f.added != 0 && (OutOfRange(f.first) || OutOfRange(f.last)); }},
};

ULONGLONG Expected(const Question& question) {
    const Facts facts(question);
    ULONGLONG mask = 0;
    for (const Rule& rule : kRules) {
        if (rule.kinds.count(question.kind) != 0 && rule.holds(facts)) {
            mask |= rule.bit;
        }
    }
    return mask;
}

CVLANs ListOf(const std::vector<CVLAN>& records) {
    CVLANs list;
    for (const CVLAN& record : records) {
        list.m_vecItems.push_back(new CVLAN(record));
    }
    return list;
}

ULONGLONG Answer(const Question& question, const CVLANs& existing) {
    switch (question.kind) {
    case Question::Tagged:
        return vlan_rules::CheckTaggedID(question.wanted.front()) |
               vlan_rules::CheckTagged(existing, question.wanted.front(), question.isModify);
    case Question::Untagged:
        return vlan_rules::CheckUntaggedID(question.wanted.front()) |
               vlan_rules::CheckUntagged(existing, question.wanted.front(), question.isModify);
    case Question::Several:
        return vlan_rules::CheckSeveral(existing, ListOf(question.wanted), question.isTeam);
    }
    return 0;
}

std::string InWords(const Question& question) {
    std::string text = "kind " + std::to_string(question.kind) + ", " + std::to_string(question.has.size()) +
                       " VLANs, modify " + std::to_string(question.isModify) + ", team " +
                       std::to_string(question.isTeam) + ", wanted";
    for (const CVLAN& vlan : question.wanted) {
        text += " " + std::to_string(vlan.m_lVLANNumber) + "/" + Narrow(vlan.m_wsVLANName);
    }
    return text;
}

constexpr LONG kLeast = std::numeric_limits<LONG>::min();
constexpr LONG kMost = std::numeric_limits<LONG>::max();

/// A parent's VLANs: numbers from `from` on, ends of the range among them, with the untagged one if asked
/// for.
std::vector<CVLAN> Parent(std::size_t count, LONG from, bool hasUntagged) {
    std::vector<CVLAN> vlans;
    for (std::size_t index = 0; index < count; ++index) {
        const LONG number = hasUntagged && index == 0 ? 0 : from + static_cast<LONG>(index);
        vlans.push_back(
            Wanted(number, L"vlan \u00fc " + std::to_wstring(index), L"{" + std::to_wstring(index) + L"}"));
    }
    return vlans;
}

/// The parents that are asked about.
std::vector<std::vector<CVLAN>> Parents() {
    std::vector<std::vector<CVLAN>> parents;
    for (const std::size_t count : {0u, 1u, 61u, 62u, 63u, 64u, 65u}) {
        for (const LONG from : {LONG{1}, LONG{4030}}) {
            for (const bool hasUntagged : {false, true}) {
                parents.push_back(Parent(count, from, hasUntagged));
            }
        }
    }
    return parents;
}

/// At and around every bound, and in and beside what the parents have.
const Numbers kIds{kLeast, -1, 0, 1, 2, 63, 64, 65, 66, 4030, 4092, 4093, 4094, 4095, 4096, kMost};

/// Names: one of nobody's, an existing one as it is, in capitals, and nearly.
std::vector<std::wstring> Names(const std::vector<CVLAN>& has) {
    std::vector<std::wstring> names{L"", L"new"};
    if (!has.empty()) {
        const std::wstring& last = has.back().m_wsVLANName;
        names.insert(names.end(), {last, Capitals(last), last + L"x", has.front().m_wsVLANName});
    }
    return names;
}

/// Asks every question there is about one tagged or untagged VLAN, and about several.
template <class Ask>
void ForEachQuestion(const std::vector<CVLAN>& has, const Numbers& ids, Ask ask) {
    Question question;
    question.has = has;
    question.taken = std::make_shared<const Taken>(has);
    for (const std::wstring& name : Names(has)) {
        for (const LONG id : ids) {
            // As a new VLAN, as the parent's first or last one, and with an object ID of nobody's.
            std::vector<std::wstring> selves{L"", L"{none}"};
            if (!has.empty()) {
                selves.insert(selves.end(), {has.front().m_wsName, has.back().m_wsName});
            }
            for (const std::wstring& self : selves) {
                question.wanted = {Wanted(id, name, self)};
                for (const bool isModify : {false, true}) {
                    question.isModify = isModify;
                    for (const Question::Kind kind : {Question::Tagged, Question::Untagged}) {
                        question.kind = kind;
                        ask(question);
                    }
                }
            }
        }
        question.kind = Question::Several;
        for (const bool isTeam : {false, true}) {
            question.isTeam = isTeam;
            question.wanted.clear();
            ask(question);
            for (const LONG first : ids) {
                question.wanted = {Wanted(first, name)};
                ask(question);
                for (const LONG last : {LONG{0}, LONG{1}, LONG{4094}, LONG{4095}, LONG{40}}) {
                    // Two, and three with something in between that is out of range or taken.
                    question.wanted = {Wanted(first, name), Wanted(last, L"last")};
                    ask(question);
                    for (const LONG middle : {LONG{5000}, LONG{3}}) {
                        question.wanted = {Wanted(first, L"first"), Wanted(middle, name),
                                           Wanted(last, L"last")};
                        ask(question);
                    }
                }
            }
        }
    }
}

/// The trace is not what is asked here, and would take most of the time.
struct WithoutTrace {
    WithoutTrace() { LumTrace() = CLumDebug(); }
};

TEST(VlanRulesTest, EveryQuestion_IsAnsweredAsByTheTable) {
    const WithoutTrace off;
    std::uint64_t asked = 0;
    std::uint64_t wrong = 0;
    std::map<ULONGLONG, std::uint64_t> answers;
    for (const std::vector<CVLAN>& has : Parents()) {
        const CVLANs existing = ListOf(has);
        ForEachQuestion(has, kIds, [&](const Question& question) {
            ++asked;
            const ULONGLONG expected = Expected(question);
            const ULONGLONG answer = Answer(question, existing);
            ++answers[expected];
            if (answer != expected && ++wrong <= 10) {
                ADD_FAILURE() << InWords(question) << ": " << answer << " instead of " << expected;
            }
        });
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GE(asked, 100000u);
    // Every bit came up, alone or with others, and so did the clean answer.
    ULONGLONG all = 0;
    for (const auto& [mask, count] : answers) {
        all |= mask;
    }
    EXPECT_EQ(all, ULONGLONG{0x8 | 0x10 | 0x20 | 0x40 | 0x100});
    EXPECT_GT(answers[0], 1000u);
    EXPECT_GT(answers.size(), 12u);
    RecordProperty("questions", std::to_string(asked));
    std::printf("questions: %llu, different answers: %zu\n", static_cast<unsigned long long>(asked),
                answers.size());
}

/// The same table against the operations themselves, on machines that have those VLANs.
class VlanCheckOperationsTest : public ProviderTest {
  protected:
    VlanCheckOperationsTest() : ProviderTest(kNetServiceMof) {}

    /// A machine whose adapter {P} or team {P} has these VLANs.
    void UseParent(const std::vector<CVLAN>& has) {
        if (QuilletTestAccess::ServiceCookie(quillet) != 0) {
            quillet.UninitQuillet();
        }
        std::string mof = kNetServiceMof;
        for (const CVLAN& vlan : has) {
            mof += "instance of Zorel_VLAN { Name = \"" + Narrow(vlan.m_wsName) +
                   "\"; Caption = \"c\"; ParentID = \"{P}\"; StatusInfo = 3; VLANNumber = " +
                   std::to_string(vlan.m_lVLANNumber) + "; VLANName = \"" + Narrow(vlan.m_wsVLANName) +
                   "\"; };\n";
        }
        UseText(mof);
        Connect();
        LumTrace() = CLumDebug();
    }

    ULONGLONG Ask(const Question& question) {
        const std::wstring parent = question.isTeam ? TeamPath(L"{P}") : AdapterPath(L"{P}");
        quillet.SetVlanIsModify(question.isModify);
        switch (question.kind) {
        case Question::Tagged:
            return question.isTeam ? quillet.CreateVLANTeamCheck(parent, question.wanted.front())
                                   : quillet.CreateVLANAdapterCheck(parent, question.wanted.front());
        case Question::Untagged:
            return question.isTeam ? quillet.CreateUnTaggedVLANTeamCheck(parent, question.wanted.front())
                                   : quillet.CreateUnTaggedVLANAdapterCheck(parent, question.wanted.front());
        case Question::Several:
            return question.isTeam ? quillet.CreateMultipleVLANTeamCheck(parent, ListOf(question.wanted))
                                   : quillet.CreateMultipleVLANAdapterCheck(parent, ListOf(question.wanted));
        }
        return 0;
    }
};

TEST_F(VlanCheckOperationsTest, EveryQuestion_IsAnsweredAsByTheTable) {
    std::uint64_t asked = 0;
    std::uint64_t wrong = 0;
    for (const std::size_t count : {0u, 1u, 61u, 62u, 63u, 64u, 65u}) {
        const std::vector<CVLAN> has = Parent(count, 100, count % 2 != 0);
        UseParent(has);
        // Every question on the small parents, every so many on the large ones, whose lists take time.
        const std::uint64_t step = count < 10 ? 1 : 2;
        std::uint64_t number = 0;
        ForEachQuestion(has, {-1, 0, 1, 101, 4094, 4095}, [&](Question question) {
            if (number++ % step != 0) {
                return;
            }
            question.isTeam = number % 2 == 0;
            ++asked;
            const ULONGLONG expected = Expected(question);
            const ULONGLONG answer = Ask(question);
            if (answer != expected && ++wrong <= 10) {
                ADD_FAILURE() << InWords(question) << ": " << answer << " instead of " << expected;
            }
        });
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GE(asked, 5000u);
    RecordProperty("questions", std::to_string(asked));
    std::printf("questions: %llu\n", static_cast<unsigned long long>(asked));
}

} // namespace
