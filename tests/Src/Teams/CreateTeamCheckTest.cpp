// The rules for new teams: each by itself, and all of them against a second statement of the same rules.
#include "Teams/TeamFixture.h"

#include "LumDebug.h"

#include <algorithm>
#include <random>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class CreateTeamCheckTest : public TeamTest {
  protected:
    ULONGLONG Check(int mode, const CAdapters& members, int kind = 3, const wchar_t* name = L"New") {
        return quillet.CreateTeamCheck(static_cast<CTeam::TeamMode>(mode), name, members, kind);
    }
    /// So many adapters that can do everything.
    CAdapters Alike(std::size_t count) {
        std::string mof = kMachine;
        CAdapters adapters;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string id = "{N" + std::to_string(i) + "}";
            mof += "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"" + id +
                   "\"; Capabilities = {4, 5, 8, 9, 10, 12, 34, 37, 46, 47, 68}; };\n";
            adapters.m_vecItems.push_back(new CAdapter);
            adapters.m_vecItems.back()->m_wsAdapterID = Adapter(std::wstring(id.begin(), id.end()).c_str());
        }
        UseText(mof);
        Connect();
        return adapters;
    }
};

TEST_F(CreateTeamCheckTest, GoodTeam_HasNoProblems) {
    EXPECT_EQ(Check(1, Adapters({kA, kB})), 0u);
    EXPECT_THAT(Steps(),
                ElementsAre("Entering CQuillet::CreateTeamCheck", "Entering CQuillet::EnumerateTeams",
                            "Exiting CQuillet::EnumerateTeams", "calling GetAdapterCapabilities ",
                            "Entering CQuillet::GetAdapterCapabilities",
                            "Exiting CQuillet::GetAdapterCapabilities", "calling GetAdapterCapabilities ",
                            "Entering CQuillet::GetAdapterCapabilities",
                            "Exiting CQuillet::GetAdapterCapabilities", "Exiting CQuillet::CreateTeamCheck"));
    std::vector<std::string> calls;
    for (const JournalEntry& call : Calls()) {
        if (call.operation != Operation::Next) {
            calls.push_back(Narrow(quillet::simulator::OperationName(call.operation)) + " " +
                            Narrow(call.target));
        }
    }
    EXPECT_THAT(calls, ElementsAre("CreateInstanceEnum Zorel_TeamOfAdapters", "GetObject " + Narrow(kA),
                                   "GetObject " + Narrow(kB)));
}

TEST_F(CreateTeamCheckTest, NineMembersOfMode5_AreTooManyForATeamAndForTheMode) {
    EXPECT_EQ(Check(5, Alike(9)), 0x201u);
    const std::vector<std::string> lines = Traced();
    EXPECT_THAT(lines, Contains("Maximum adapters in a team"));
    EXPECT_THAT(lines, Contains("SFT Mode. Adapter count <> 2"));
}

TEST_F(CreateTeamCheckTest, EightMembers_AreAllowed) {
    EXPECT_EQ(Check(1, Alike(8)), 0u);
    EXPECT_EQ(Check(5, Alike(8)), 0x200u);
    EXPECT_EQ(Check(1, Alike(9)), 0x1u);
}

TEST_F(CreateTeamCheckTest, Mode5_OneMemberIsNotFlagged) {
    EXPECT_EQ(Check(5, Alike(1)), 0u);
    EXPECT_EQ(Check(5, Alike(2)), 0u);
    EXPECT_EQ(Check(5, Alike(3)), 0x200u);
}

TEST_F(CreateTeamCheckTest, TenGigabitAndSlowMembers_StandAloneEvenWhenTheNameIsTaken) {
    EXPECT_EQ(Check(1, Adapters({kD, kE}), 3, L"TEAM : One"), 0x8000u);
    EXPECT_THAT(Traced(),
                testing::AllOf(Contains("TEN_GIG_TEAM_MISMATCH"), Contains("Team Name Not Unique")));
    EXPECT_EQ(Check(1, Adapters({kD, kA}), 3, L"TEAM : One"), 0x80u) << "gigabit is not slow";
}

TEST_F(CreateTeamCheckTest, Mode2_MembersWithoutACommonSpeed_StandAlone) {
    UseText(std::string(kMachine) + R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{F}"; Capabilities = {9, 37, 46, 47, 35}; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{G}"; Capabilities = {9, 37, 46, 47, 34}; };)");
    Connect();
    EXPECT_EQ(Check(2, Adapters({Adapter(L"{F}"), Adapter(L"{G}")}), 3, L"TEAM : One"), 0x4000u);
    EXPECT_THAT(Traced(), Contains("SLA FIBER MISMATCH"));
    EXPECT_EQ(Check(2, Adapters({Adapter(L"{F}"), kD})), 0u) << "10 gigabit is common";
    EXPECT_EQ(Check(2, Adapters({Adapter(L"{G}"), kD, kA})), 0u);
    EXPECT_EQ(Check(2, Adapters({Adapter(L"{none}")})), 0x4000u) << "nobody has a speed";
}

TEST_F(CreateTeamCheckTest, Kind0_LooksAtNoMember) {
    Fail(Operation::GetObject, WBEM_E_FAILED);
    EXPECT_EQ(Check(5, Adapters({kE, kD, kA}), 0), 0u);
    EXPECT_EQ(Check(5, Adapters({kE, kD, kA}), 0, L"TEAM : One"), 0x80u);
    EXPECT_EQ(Check(5, CAdapters(), 0, L"TEAM : One"), 0x80u) << "an empty list still has a name";
    EXPECT_EQ(Check(5, CAdapters(), 0), 0u);
    EXPECT_EQ(Check(5, CAdapters(), 0, L"team : one"), 0u) << "case counts";
}

TEST_F(CreateTeamCheckTest, Kinds1And2_NeverLookAtTheName) {
    for (const int kind : {1, 2}) {
        EXPECT_EQ(Check(1, Adapters({kA, kB}), kind, L"TEAM : One"), 0u);
        EXPECT_EQ(CallsOf(Operation::CreateInstanceEnum).size(), 0u);
    }
}

TEST_F(CreateTeamCheckTest, NoMembers_Is10AtOnceUnlessOnlyTheNameIsAsked) {
    for (const int kind : {1, 2, 3, 4, -1}) {
        EXPECT_EQ(Check(1, CAdapters(), kind, L"TEAM : One"), 0x10u) << kind;
    }
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(CreateTeamCheckTest, AnotherKind_ChecksNothing) {
    EXPECT_EQ(Check(1, Adapters({kE}), 4, L"TEAM : One"), 0u);
    EXPECT_EQ(Check(1, Adapters({kE}), -1, L"TEAM : One"), 0u);
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(CreateTeamCheckTest, DesktopAdapter_LacksServerModeAndVlans) {
    EXPECT_EQ(Check(0, Adapters({kE})), 0x18u);
    EXPECT_THAT(Traced(),
                testing::AllOf(Contains("No Server adapters found"), Contains("VLAN Creation not possible")));
    EXPECT_EQ(Check(4, Adapters({kE, kA})), 0x4u) << "VLANs are asked of supporters only";
    EXPECT_THAT(Traced(), Contains("Team Modes Mismatch"));
    EXPECT_EQ(Check(0, Adapters({kE, kA})), 0x8u) << "one server adapter is enough";
}

TEST_F(CreateTeamCheckTest, MemberThatCannotBeRead_IsNotCountedAmongTheCapable) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Zorel_PhysicalEthernetAdapter", 2);
    EXPECT_EQ(Check(1, Adapters({kA, kE})), 0u) << "E would have added 0x8";
    machine->Rules().Clear();
    EXPECT_EQ(Check(1, Adapters({kA, Adapter(L"{none}")})), 0u);
    EXPECT_EQ(Check(1, Adapters({Adapter(L"{none}")})), 0x10u);
    CAdapters withNull = Adapters({kA});
    withNull.m_vecItems.push_back(nullptr);
    EXPECT_EQ(Check(1, withNull), 0u);
}

TEST_F(CreateTeamCheckTest, RecordsOfTheCaller_AreLeftAlone) {
    CAdapters members = Adapters({kA, kE});
    EXPECT_EQ(Check(1, members), 0x8u);
    EXPECT_EQ(Check(1, members), 0x8u) << "again";
    EXPECT_EQ(members.m_vecItems[0]->m_pAdapterCapabilities, nullptr);
}

TEST_F(CreateTeamCheckTest, NeverFails) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_FAILED);
    EXPECT_EQ(Check(1, Adapters({kA}), 3, L"TEAM : One"), 0u) << "no team could be read";
    quillet.UninitQuillet();
    EXPECT_EQ(Check(1, Adapters({kA}), 3, L"TEAM : One"), 0x10u);
}

// --- the whole table ---

/// What an adapter of the generated machine can do.
struct Profile {
    bool readable;
    bool server;
    bool vlans;
    bool speedsKnown;
    unsigned speeds; ///< bit 0: 10 megabit ... bit 3: 10 gigabit
    unsigned modes;  ///< bit n: mode n; bit 7: modes of any other number
    std::wstring id;
};

using Party = std::vector<const Profile*>;

/// The rules once more, as a table: when each bit is set, from counts over the members.
ULONGLONG Oracle(int mode, bool nameTaken, const Party& members, int kind) {
    const auto count = [&members](auto wanted) {
        return std::count_if(members.begin(), members.end(),
                             [&wanted](const Profile* each) { return each->readable && wanted(*each); });
    };
    const unsigned modeBit = 1u << (mode >= 0 && mode <= 6 ? mode : 7);
    const auto supports = [modeBit](const Profile& each) { return (each.modes & modeBit) != 0; };
    const auto speaks = [&](const Profile& each) { return supports(each) && each.speedsKnown; };
    unsigned common = 0xF;
    for (const Profile* each : members) {
        common &= each->readable && speaks(*each) ? each->speeds : 0xF;
    }
    const bool anySpeaks = count(speaks) > 0;
    const bool tenGigabit = count([&](const Profile& p) { return speaks(p) && p.speeds >= 8; }) > 0;
    const bool slow =
        count([&](const Profile& p) { return speaks(p) && p.speeds >= 1 && p.speeds <= 3; }) > 0;
    const bool asksName = kind == 0 || kind == 3;
    const bool asksMembers = kind == 1 || kind == 2 || kind == 3;

    struct Rule {
        ULONGLONG bit;
        bool alone; ///< what is before it in the table hides it, and it hides the rest
        bool broken;
    };
    const Rule rules[] = {
        {0x10, true, kind != 0 && members.empty()},
        {0x8000, true, asksMembers && tenGigabit && slow},
        {0x4000, true, asksMembers && mode == 2 && (!anySpeaks || common == 0)},
        {0x80, false, asksName && nameTaken},
        {0x1, false, asksMembers && members.size() > 8},
        {0x10, false, asksMembers && count([](const Profile& p) { return p.server; }) == 0},
        {0x4, false, asksMembers && count([&](const Profile& p) { return !supports(p); }) > 0},
        {0x8, false, asksMembers && count([&](const Profile& p) { return supports(p) && !p.vlans; }) > 0},
        {0x200, false, asksMembers && mode == 5 && members.size() > 2},
    };
    ULONGLONG mask = 0;
    for (const Rule& rule : rules) {
        if (rule.broken && rule.alone) {
            return rule.bit;
        }
        mask |= rule.broken ? rule.bit : 0;
    }
    return mask;
}

class CreateTeamCheckTableTest : public TeamTest {
  protected:
    static constexpr int kModes[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 255};

    void SetUp() override {
        for (unsigned speeds = 0; speeds < 16; ++speeds) {
            for (unsigned flags = 0; flags < 16; ++flags) {
                Add({true, (flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0, speeds,
                     (flags & 8) != 0 ? 0xFFu : 0u, L""});
            }
        }
        m_structured = m_profiles.size();
        std::mt19937 random(20260101);
        for (int i = 0; i < 300; ++i) {
            Add({random() % 8 != 0, random() % 4 == 0, random() % 4 != 0, random() % 4 != 0,
                 static_cast<unsigned>(random() % 16), static_cast<unsigned>(random() % 256), L""});
        }
        UseText(m_mof);
        Connect();
        // Ten lines for each of half a million reads would tell nobody anything.
        LumTrace() = CLumDebug();
    }

    void Add(Profile profile) {
        const std::string id = "{P" + std::to_string(m_profiles.size()) + "}";
        profile.id = Adapter(std::wstring(id.begin(), id.end()).c_str());
        if (profile.readable) {
            constexpr unsigned kModeCodes[] = {4, 5, 9, 8, 10, 12, 68, 36};
            std::vector<unsigned> codes{3, 50, 99};
            for (unsigned bit = 0; bit < 8; ++bit) {
                if (profile.modes & (1u << bit)) {
                    codes.push_back(kModeCodes[bit]);
                }
            }
            for (unsigned bit = 0; bit < 4; ++bit) {
                if (profile.speeds & (1u << bit)) {
                    codes.push_back(32 + bit);
                }
            }
            for (const auto& [flag, code] : {std::pair{profile.server, 46u}, std::pair{profile.vlans, 37u},
                                             std::pair{profile.speedsKnown, 47u}}) {
                if (flag) {
                    codes.push_back(code);
                }
            }
            std::string list;
            for (const unsigned code : codes) {
                list += (list.empty() ? "" : ", ") + std::to_string(code);
            }
            m_mof += "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"" + id +
                     "\"; Capabilities = {" + list + "}; };\n";
        }
        m_profiles.push_back(std::move(profile));
    }

    /// Compares one case with the oracle; stops the test at the first few that differ.
    void Compare(int mode, bool nameTaken, const Party& members, int kind) {
        CAdapters adapters;
        for (const Profile* member : members) {
            adapters.m_vecItems.push_back(new CAdapter);
            adapters.m_vecItems.back()->m_wsAdapterID = member->id;
        }
        const ULONGLONG mask = quillet.CreateTeamCheck(static_cast<CTeam::TeamMode>(mode),
                                                       nameTaken ? L"Taken" : L"taken", adapters, kind);
        const ULONGLONG expected = Oracle(mode, nameTaken, members, kind);
        if (mask != expected && ++m_differences < 10) {
            std::string text;
            for (const Profile* member : members) {
                text += " " + Narrow(member->id.substr(member->id.rfind(L'{')));
            }
            ADD_FAILURE() << "mode " << mode << " kind " << kind << " name " << nameTaken << " members"
                          << text << ": " << std::hex << mask << " instead of " << expected;
        }
        if (++m_cases % 1000 == 0) {
            ForgetCalls();
        }
        ++m_masks[expected];
    }

    std::vector<Profile> m_profiles;
    std::size_t m_structured = 0;
    std::string m_mof = std::string(kNetServiceMof) + R"(
        instance of Zorel_TeamOfAdapters {
            Name = "{1}"; Caption = "Other"; TeamingMode = 0; MFOEnabled = FALSE; LinksecEnabled = FALSE; };
        instance of Zorel_TeamOfAdapters {
            Name = "{2}"; Caption = "Taken"; TeamingMode = 0; MFOEnabled = FALSE; LinksecEnabled = FALSE; };)";
    std::size_t m_cases = 0;
    std::size_t m_differences = 0;
    std::map<ULONGLONG, std::size_t> m_masks;
};

TEST_F(CreateTeamCheckTableTest, AgreesWithTheOracleInMoreThan100000Cases) {
    // One member of every kind there is, in every mode.
    for (std::size_t i = 0; i < m_structured; ++i) {
        for (const int mode : kModes) {
            for (const int kind : {0, 1, 2, 3}) {
                Compare(mode, i % 2 == 0, {&m_profiles[i]}, kind);
            }
        }
    }
    // Two members of every two combinations of speeds: both support the mode and say their speeds.
    std::vector<const Profile*> speeds;
    for (std::size_t i = 0; i < m_structured; ++i) {
        const Profile& profile = m_profiles[i];
        if (profile.server && profile.vlans && profile.speedsKnown && profile.modes != 0) {
            speeds.push_back(&profile);
        }
    }
    ASSERT_EQ(speeds.size(), 16u);
    for (const Profile* first : speeds) {
        for (const Profile* second : speeds) {
            for (const int mode : kModes) {
                for (const int kind : {1, 2, 3}) {
                    Compare(mode, kind == 3, {first, second}, kind);
                }
            }
        }
    }
    // Every number of members from none to ten, in every mode, kind and state of the name.
    std::mt19937 random(7);
    const auto any = [&] { return &m_profiles[random() % m_profiles.size()]; };
    for (std::size_t count = 0; count <= 10; ++count) {
        for (const int mode : kModes) {
            for (const int kind : {0, 1, 2, 3}) {
                for (const bool nameTaken : {false, true}) {
                    for (int i = 0; i < 96; ++i) {
                        Party members(count);
                        // Half of them alike but for one member, where most rules are decided.
                        const Profile* common = any();
                        std::generate(members.begin(), members.end(),
                                      [&] { return i % 2 == 0 ? any() : common; });
                        if (i % 2 != 0 && count > 1) {
                            members[random() % count] = any();
                        }
                        Compare(mode, nameTaken, members, kind);
                    }
                }
            }
        }
    }
    EXPECT_EQ(m_differences, 0u);
    EXPECT_GT(m_cases, 100'000u);
    // The cases reach every bit, in many combinations.
    ULONGLONG reached = 0;
    for (const auto& [mask, cases] : m_masks) {
        reached |= mask;
    }
    EXPECT_EQ(reached, 0xC29Du);
    EXPECT_GT(m_masks.size(), 30u);
    std::printf("CreateTeamCheck: %zu cases, %zu different masks\n", m_cases, m_masks.size());
}

} // namespace
