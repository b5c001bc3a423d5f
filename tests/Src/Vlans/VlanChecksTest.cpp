// The checks of VLANs before they are added or changed, as a client calls them. VlanRulesTest.cpp asks every
// combination.
#include "Vlans/VlanMachine.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Access = QuilletTestAccess;

constexpr ULONGLONG NONE = 0;

/// So many tagged VLANs on adapter {A}, from ID 100 on; and on team {T}.
std::string Crowded(unsigned count) {
    std::string mof = R"(instance of Zorel_NetService { Name = "ZorelNetService"; };)";
    for (const std::string parent : {"{A}", "{T}"}) {
        for (unsigned index = 0; index < count; ++index) {
            const std::string id = std::to_string(index);
            mof += "instance of Zorel_VLAN { Name = \"" + parent + id + "\"; Caption = \"c\"; ParentID = \"" +
                   parent + "\"; VLANName = \"VLAN" + id + "\"; VLANNumber = " + std::to_string(100 + index) +
                   "; StatusInfo = 3; };\n";
        }
    }
    return mof;
}

class VlanChecksTest : public VlanTest {
  protected:
    void Crowd(unsigned count) {
        quillet.UninitQuillet();
        UseText(Crowded(count));
        Connect();
    }
    static CVLANs Several(const std::vector<LONG>& numbers) {
        CVLANs vlans;
        for (const LONG number : numbers) {
            vlans.m_vecItems.push_back(new CVLAN(Wanted(number, L"new" + std::to_wstring(number))));
        }
        return vlans;
    }
    /// The lines of a check without those of the enumeration in it.
    std::vector<std::string> OwnTrace() {
        std::vector<std::string> own;
        bool inside = false;
        for (const std::string& line : Traced()) {
            const bool entry = line.starts_with("Entering CQuillet::EnumerateVLANsOf");
            const bool exit = line == "Exiting CQuillet::EnumerateVLANsOfAdapter" ||
                              line == "Exiting CQuillet::EnumerateVLANsOfTeam";
            if (entry && !inside) {
                own.push_back("<" + line.substr(19) + ">");
            }
            inside = (inside || entry) && !exit;
            if (!inside && !exit) {
                own.push_back(line);
            }
        }
        return own;
    }
};

// --- one tagged VLAN ---

TEST_F(VlanChecksTest, Tagged_NothingInTheWay_IsClean) {
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(30, L"New")), NONE);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateVLANAdapterCheck",
                            "Entering CQuillet::CheckForUniqueID", "Checking for VLAN Unique ID, Names", "30",
                            "New", "<EnumerateVLANsOfAdapter>", "Exiting CQuillet::CheckForUniqueID",
                            "Exiting CQuillet::CreateVLANAdapterCheck"));
    EXPECT_EQ(quillet.CreateVLANTeamCheck(T, Wanted(30, L"New")), NONE);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateVLANTeamCheck", "Entering CQuillet::CheckForUniqueID",
                            "Checking for VLAN Unique ID, Names", "30", "New", "<EnumerateVLANsOfTeam>",
                            "Exiting CQuillet::CheckForUniqueID", "Exiting CQuillet::CreateVLANTeamCheck"));
}

TEST_F(VlanChecksTest, Tagged_EndsOfTheRange) {
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(0, L"New")), 0x100u);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(1, L"New")), NONE);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(4094, L"New")), NONE);
    Traced();
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(4095, L"New")), 0x100u);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateVLANAdapterCheck",
                            "Entering CQuillet::CheckForUniqueID", "Checking for VLAN Unique ID, Names",
                            "4095", "New", "VLAN ID out of range", "<EnumerateVLANsOfAdapter>",
                            "Exiting CQuillet::CheckForUniqueID",
                            "Exiting CQuillet::CreateVLANAdapterCheck"));
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(-10, L"New")), 0x100u);
}

TEST_F(VlanChecksTest, Tagged_OutOfRangeAndTaken_ChecksGoOn) {
    EXPECT_EQ(quillet.CreateVLANTeamCheck(T, Wanted(0, L"b\u00dcRO")), 0x130u);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateVLANTeamCheck", "Entering CQuillet::CheckForUniqueID",
                            "Checking for VLAN Unique ID, Names", "0", "b\xC3\x9CRO", "VLAN ID out of range",
                            "<EnumerateVLANsOfTeam>", "VLAN ID not Unique. In an adapter",
                            "VLAN name is not Unique. In an adapter", "Exiting CQuillet::CheckForUniqueID",
                            "Exiting CQuillet::CreateVLANTeamCheck"));
}

TEST_F(VlanChecksTest, Tagged_IdOrNameTaken) {
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(10, L"New")), 0x10u);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(11, L"VOICE")), 0x20u)
        << "letters count alike in any case";
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(20, L"voice")), 0x30u);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(B, Wanted(10, L"Voice")), NONE)
        << "another parent's do not count";
}

TEST_F(VlanChecksTest, Tagged_AgainstItself_FindsNothing) {
    quillet.SetVlanIsModify(true);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(10, L"Voice", L"{V1}")), NONE);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(20, L"Voice", L"{V1}")), 0x10u);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(10, L"DATA", L"{V1}")), 0x20u);
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(10, L"Voice", L"{v1}")), 0x30u)
        << "a name in other letters is another VLAN";
}

TEST_F(VlanChecksTest, Tagged_TheLimitIsMetExactly) {
    for (const unsigned count : {63u, 64u, 65u}) {
        SCOPED_TRACE(count);
        Crowd(count);
        quillet.SetVlanIsModify(false);
        const ULONGLONG expected = count == 64 ? 0x40 : 0;
        EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(30, L"New")), expected);
        const std::vector<std::string> trace = OwnTrace();
        EXPECT_EQ(std::count(trace.begin(), trace.end(), "Too Many VLANs on Team"), count == 64 ? 1 : 0)
            << "the words are the same for an adapter";
        EXPECT_EQ(quillet.CreateVLANTeamCheck(T, Wanted(30, L"New")), expected);
        quillet.SetVlanIsModify(true);
        EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(30, L"New")), NONE) << "a change adds none";
    }
}

// --- the untagged VLAN ---

TEST_F(VlanChecksTest, Untagged_BesideTaggedOnes_IsClean) {
    EXPECT_EQ(quillet.CreateUnTaggedVLANAdapterCheck(A, Wanted(0, L"Voice")), NONE)
        << "names are not compared";
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateUnTaggedVLANAdapterCheck",
                            "Entering CQuillet::CheckForUniqueIDForUnTaggedVLAN",
                            "Checking for VLAN Unique ID, Names", "0", "Voice", "<EnumerateVLANsOfAdapter>",
                            "Exiting CQuillet::CheckForUniqueIDForUnTaggedVLAN",
                            "Exiting CQuillet::CreateUnTaggedVLANAdapterCheck"));
}

TEST_F(VlanChecksTest, Untagged_AlreadyThere) {
    EXPECT_EQ(quillet.CreateUnTaggedVLANTeamCheck(T, Wanted(0, L"New")), 0x10u);
    EXPECT_THAT(OwnTrace(), ElementsAre("Entering CQuillet::CreateUnTaggedVLANTeamCheck",
                                        "Entering CQuillet::CheckForUniqueIDForUnTaggedVLAN",
                                        "Checking for VLAN Unique ID, Names", "0", "New",
                                        "<EnumerateVLANsOfTeam>", "VLAN ID not Unique. In an adapter",
                                        "Exiting CQuillet::CheckForUniqueIDForUnTaggedVLAN",
                                        "Exiting CQuillet::CreateUnTaggedVLANTeamCheck"));
}

TEST_F(VlanChecksTest, Untagged_OnAParentWithoutVlans_WouldBeAlone) {
    EXPECT_EQ(quillet.CreateUnTaggedVLANAdapterCheck(B, Wanted(0, L"New")), 0x8u);
    Traced();
    EXPECT_EQ(quillet.CreateUnTaggedVLANAdapterCheck(B, Wanted(7, L"New")), 0x100u)
        << "with another ID it is no untagged VLAN that could be alone";
    EXPECT_THAT(Traced(), Contains("VLAN ID out of range"));
}

TEST_F(VlanChecksTest, Untagged_TheLimitIsMetExactly) {
    for (const unsigned count : {63u, 64u, 65u}) {
        SCOPED_TRACE(count);
        Crowd(count);
        quillet.SetVlanIsModify(false);
        EXPECT_EQ(quillet.CreateUnTaggedVLANAdapterCheck(A, Wanted(0, L"New")), count == 64 ? 0x40u : 0u);
        const std::vector<std::string> trace = OwnTrace();
        EXPECT_EQ(std::count(trace.begin(), trace.end(), "Too may VLANs on team"), count == 64 ? 1 : 0);
        quillet.SetVlanIsModify(true);
        EXPECT_EQ(quillet.CreateUnTaggedVLANAdapterCheck(A, Wanted(0, L"New")), NONE);
    }
}

// --- several VLANs ---

TEST_F(VlanChecksTest, Several_WithRoomForAll_IsClean) {
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 31, 32})), NONE);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateMultipleVLANAdapterCheck",
                            "Entering CQuillet::CheckForUniqueIDForMultipleVLANs",
                            "<EnumerateVLANsOfAdapter>", "Exiting CQuillet::CheckForUniqueIDForMultipleVLANs",
                            "Exiting CQuillet::CreateMultipleVLANAdapterCheck"));
    EXPECT_EQ(quillet.CreateMultipleVLANTeamCheck(T, Several({30, 31, 32})), NONE);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CreateMultipleVLANTeamCheck",
                            "Entering CQuillet::CheckForUniqueIDForMultipleVLANs", "<EnumerateVLANsOfTeam>",
                            "Exiting CQuillet::CheckForUniqueIDForMultipleVLANs",
                            "Exiting CQuillet::CreateMultipleVLANTeamCheck"));
}

TEST_F(VlanChecksTest, Several_OneTooMany) {
    Crowd(62);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 31})), NONE);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 31, 32})), 0x40u);
    EXPECT_THAT(Traced(), Contains("Too may VLANs on adapter"));
    quillet.SetVlanIsModify(true);
    EXPECT_EQ(quillet.CreateMultipleVLANTeamCheck(T, Several({30, 31, 32})), 0x40u)
        << "a change plays no part here";
    EXPECT_THAT(Traced(), Contains("Too Many VLANs on Team"));
}

TEST_F(VlanChecksTest, Several_OnlyTheEndsAreCheckedForTheirRange) {
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 5000, 40})), NONE);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({0, 30, 40})), 0x100u);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 40, 4095})), 0x100u);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({5000})), 0x100u);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(B, Several({10, 5000, 20})), NONE);
}

TEST_F(VlanChecksTest, Several_AgainstExistingOnes_ButNotAgainstEachOther) {
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({30, 30})), NONE);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({5, 20, 30})), 0x10u);
    EXPECT_THAT(Traced(), Contains("VLAN ID not Unique. In an adapter"));
    CVLANs named = Several({5, 6});
    named.m_vecItems[1]->m_wsVLANName = L"Data";
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, named), 0x20u);
    EXPECT_THAT(Traced(), Contains("VLAN Name is not Unique. In an adapter"));
    named.m_vecItems[1]->m_wsVLANName = L"DATA";
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, named), NONE) << "letter by letter";
}

TEST_F(VlanChecksTest, Several_AnEmptyList_IsOnlyCounted) {
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, CVLANs()), NONE);
    Crowd(64);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, CVLANs()), NONE);
    Crowd(65);
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, CVLANs()), 0x40u);
}

TEST_F(VlanChecksTest, Several_HolesInTheList_AreCountedAndSkipped) {
    CVLANs holed;
    holed.m_vecItems = {nullptr, new CVLAN(Wanted(20, L"New")), nullptr};
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, holed), 0x10u);
}

// --- which there are ---

TEST_F(VlanChecksTest, UntaggedOn_TellsWhetherTheIdIsThere) {
    EXPECT_EQ(quillet.CheckForUntaggedVLANOnTeam(T, 0), 0x10u);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CheckForUntaggedVLANOnTeam", "<EnumerateVLANsOfTeam>",
                            "Untagged VLAN ID not Unique. In an adapter",
                            "Exiting CQuillet::CheckForUntaggedVLANOnTeam"));
    EXPECT_EQ(quillet.CheckForUntaggedVLANOnAdapter(A, 0), NONE);
    EXPECT_THAT(Traced(), Not(Contains("Untagged VLAN ID not Unique. In an adapter")));
    EXPECT_EQ(quillet.CheckForUntaggedVLANOnAdapter(A, 20), 0x10u) << "any ID can be asked for";
}

TEST_F(VlanChecksTest, TaggedOn_CountsAllButTheUntagged) {
    EXPECT_EQ(quillet.CheckForTaggedVLANOnAdapter(A), 2);
    EXPECT_EQ(quillet.CheckForTaggedVLANOnAdapter(B), 0);
    Traced();
    EXPECT_EQ(quillet.CheckForTaggedVLANOnTeam(T), 1);
    EXPECT_THAT(OwnTrace(),
                ElementsAre("Entering CQuillet::CheckForTaggedVLANOnTeam", "<EnumerateVLANsOfTeam>",
                            "Exiting CQuillet::CheckForTaggedVLANOnTeam"));
}

// --- what checks have in common ---

TEST_F(VlanChecksTest, AListThatBreaksOff_CountsAsEmpty) {
    const auto breakOff = [this] {
        machine->Rules().Clear();
        Fail(Operation::Next, WBEM_E_FAILED, L"", 2);
    };
    breakOff();
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(10, L"Voice")), NONE) << "the first VLAN was read";
    breakOff();
    EXPECT_EQ(quillet.CreateVLANAdapterCheck(A, Wanted(4095, L"Voice")), 0x100u);
    breakOff();
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(A, Several({10, 4095})), 0x100u);
    breakOff();
    EXPECT_EQ(quillet.CheckForTaggedVLANOnAdapter(A), 0);
    breakOff();
    EXPECT_EQ(quillet.CheckForUntaggedVLANOnAdapter(A, 10), NONE);
    machine->Rules().Clear();
    std::vector<LONG> many;
    for (LONG number = 1000; number < 1065; ++number) {
        many.push_back(number);
    }
    EXPECT_EQ(quillet.CreateMultipleVLANAdapterCheck(L"", Several(many)), 0x40u)
        << "65 are too many for any parent";
}

TEST_F(VlanChecksTest, NeverChangeAnything) {
    const std::string before = machine->Save();
    quillet.CreateVLANAdapterCheck(A, Wanted(30, L"New"));
    quillet.CreateUnTaggedVLANTeamCheck(T, Wanted(0, L"New"));
    quillet.CreateMultipleVLANAdapterCheck(A, Several({1, 2}));
    quillet.CheckForTaggedVLANOnTeam(T);
    for (const JournalEntry& call : Calls()) {
        EXPECT_TRUE(call.operation == Operation::ExecQuery || call.operation == Operation::Next)
            << Describe(call);
    }
    EXPECT_EQ(machine->Save(), before);
}

TEST_F(VlanChecksTest, ModifyFlag_IsFalseAtFirstAndKeepsWhatIsStored) {
    EXPECT_FALSE(CQuillet().GetVlanIsModify());
    EXPECT_FALSE(quillet.GetVlanIsModify());
    quillet.SetVlanIsModify(true);
    EXPECT_TRUE(quillet.GetVlanIsModify());
    EXPECT_TRUE(Access::VlanIsModify(quillet));
    EXPECT_TRUE(CQuillet(quillet).GetVlanIsModify()) << "a copy is a copy of it, too";
    quillet.SetVlanIsModify(false);
    EXPECT_FALSE(quillet.GetVlanIsModify());
}

TEST_F(VlanChecksTest, RemoveIntVectorElement_RemovesEveryEqualOne) {
    std::vector<int> values{32, 33, 32, 34, 32};
    CQuillet::RemoveIntVectorElement(values, 32);
    EXPECT_THAT(values, ElementsAre(33, 34));
    CQuillet::RemoveIntVectorElement(values, 99);
    EXPECT_THAT(values, ElementsAre(33, 34));
    values = {7};
    CQuillet::RemoveIntVectorElement(values, 7);
    EXPECT_THAT(values, IsEmpty());
    CQuillet::RemoveIntVectorElement(values, 7);
    EXPECT_THAT(values, IsEmpty());
}

} // namespace
