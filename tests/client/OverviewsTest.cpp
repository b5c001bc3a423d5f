// What a list of adapters asks, and sharing what was fetched.
#include "ProviderTest.h"

#include <quillet/client.h>

#include <algorithm>
#include <map>
#include <thread>

namespace quillet::tests {

namespace {

using testing::IsEmpty;

/// The machine that ships with the simulator.
class OverviewsTest : public ProviderTest {};
class FetchOnceTest : public ProviderTest {};

TEST_F(OverviewsTest, AdapterOverviews_HoldWhatAListShows) {
    Session session;
    const std::vector<AdapterOverview> overviews = session.AdapterOverviews();
    const std::vector<Team> teams = session.Teams();
    ASSERT_FALSE(overviews.empty());
    ASSERT_FALSE(teams.empty());
    std::size_t teamed = 0;
    for (const AdapterOverview& each : overviews) {
        SCOPED_TRACE(Narrow(each.adapter.name));
        EXPECT_FALSE(each.failure) << each.failure.message();
        EXPECT_FALSE(each.objectId.empty());
        EXPECT_FALSE(each.adapter.slot.empty());
        ASSERT_TRUE(each.state && each.hardware);
        EXPECT_FALSE(each.hardware->macAddress.empty());
        teamed += each.team.IsEmpty() ? 0U : 1U;
    }
    std::size_t members = 0;
    for (const Team& team : teams) {
        members += session.Members(team.id).size();
    }
    EXPECT_EQ(teamed, members);
}

TEST_F(OverviewsTest, AdapterOverviews_FetchEachAdapterOnce) {
    Session session;
    Calls();
    const std::vector<AdapterOverview> overviews = session.AdapterOverviews();
    std::map<std::wstring, int> fetches;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::GetObject &&
            call.target.find(L"Zorel_PhysicalEthernetAdapter") != std::wstring::npos) {
            ++fetches[call.target];
        }
    }
    EXPECT_EQ(fetches.size(), overviews.size());
    EXPECT_THAT(fetches, testing::Each(testing::Pair(testing::_, 1)));
}

TEST_F(OverviewsTest, AdapterOverviews_OnSeveralThreads_AreTheSame) {
    Session session;
    const std::vector<AdapterOverview> one = session.AdapterOverviews();
    const std::vector<AdapterOverview> several = session.AdapterOverviews(4);
    ASSERT_EQ(several.size(), one.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(several[i].adapter.id, one[i].adapter.id);
        EXPECT_EQ(several[i].adapter.slot, one[i].adapter.slot);
        EXPECT_EQ(several[i].hardware.value().macAddress, one[i].hardware.value().macAddress);
        EXPECT_EQ(several[i].state.value().hardware, one[i].state.value().hardware);
        EXPECT_EQ(several[i].team, one[i].team);
        EXPECT_EQ(several[i].role, one[i].role);
    }
}

TEST_F(OverviewsTest, AdapterOverviews_OfATeamThatDoesNotTell_HideNothingElse) {
    Session session;
    Fail(Operation::ExecQuery, static_cast<HRESULT>(WBEM_E_ACCESS_DENIED));
    for (const AdapterOverview& each : session.AdapterOverviews()) {
        EXPECT_EQ(Code(each.failure.value()), "0x80041003");
        EXPECT_TRUE(each.state && each.hardware);
        EXPECT_TRUE(each.team.IsEmpty());
    }
}

TEST_F(OverviewsTest, AdapterOverviews_OfAnAdapterThatCannotTell_HideNoOther) {
    Session session;
    Fail(Operation::Get, static_cast<HRESULT>(WBEM_E_FAILED), L"SlotID", 1);
    int failures = 0;
    for (const AdapterOverview& each : session.AdapterOverviews()) {
        EXPECT_TRUE(each.state && each.hardware);
        EXPECT_EQ(each.adapter.slot.empty(), static_cast<bool>(each.failure));
        failures += each.failure ? 1 : 0;
        EXPECT_EQ(Code(each.failure.value()), each.failure ? "0x80041001" : "0x00000000");
    }
    EXPECT_EQ(failures, 1);
}

TEST_F(FetchOnceTest, SharesWhatWasFetched_UntilSomethingChanges) {
    Session session;
    const AdapterId adapter = session.Adapters().front().id;
    const auto fetches = [&](auto read) {
        Calls();
        read();
        const std::vector<JournalEntry> calls = Calls();
        return std::count_if(calls.begin(), calls.end(), [&](const JournalEntry& call) {
            return call.operation == Operation::GetObject && call.target == adapter.Path();
        });
    };
    const auto read = [&] {
        session.ReadState(adapter);
        session.ReadHardware(adapter);
    };
    EXPECT_EQ(fetches(read), 2);
    {
        const FetchOnce once(session);
        EXPECT_EQ(fetches(read), 1);
        EXPECT_EQ(fetches(read), 0);
        EXPECT_EQ(fetches([&] {
                      const FetchOnce within(session);
                      read();
                  }),
                  0)
            << "one within another is the same";
        EXPECT_EQ(fetches([&] { std::thread(read).join(); }), 2) << "another thread has its own";
        Session other;
        EXPECT_EQ(fetches([&] { other.ReadState(adapter); }), 1) << "and so has another session";
        { Transaction change(session); }
        EXPECT_EQ(fetches(read), 1) << "after a change it may be another";
    }
    EXPECT_EQ(fetches(read), 2);
}

TEST_F(FetchOnceTest, AFetchThatFailed_IsNotTriedAgain) {
    Session session;
    const AdapterId none(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{none}")");
    const FetchOnce once(session);
    EXPECT_THROW(session.ReadHardware(none), Error);
    Calls();
    EXPECT_THROW(session.ReadHardware(none), Error);
    EXPECT_THAT(Calls(), IsEmpty());
}

} // namespace

} // namespace quillet::tests
