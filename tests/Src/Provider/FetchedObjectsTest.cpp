// What operations that share their fetches may share, and what not: an object of which only a part was asked
// for.
#include "Provider/ProviderInstance.h"
#include "ProviderTest.h"
#include "Session/FakeInterfaceTable.h"

#include <quillet/FetchOnce.h>

#include <map>

namespace {

using Access = QuilletTestAccess;
using ATL::CComPtr;

constexpr LONG kIdentityOnly = 1;

/// A table that gives everybody the same object, as COM's may where both are in one apartment.
class SharingTable final : public FakeInterfaceTable {
  public:
    explicit SharingTable(IGlobalInterfaceTable* real) : m_real(real) {}
    HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID iid, void** object) override {
        CComPtr<IUnknown>& kept = m_kept[cookie];
        if (!kept) {
            const HRESULT result =
                m_real->GetInterfaceFromGlobal(cookie, IID_IUnknown, reinterpret_cast<void**>(&kept));
            if (FAILED(result)) {
                return result;
            }
        }
        return kept->QueryInterface(iid, object);
    }

  private:
    const CComPtr<IGlobalInterfaceTable> m_real;
    std::map<DWORD, CComPtr<IUnknown>> m_kept;
};

class FetchedObjectsTest : public ProviderTest, public testing::WithParamInterface<bool> {
  protected:
    void SetUp() override {
        Connect();
        if (GetParam()) {
            m_real = Access::InterfaceTable(quillet);
            m_table.emplace(m_real);
            Access::InterfaceTable(quillet) = &*m_table;
        }
        CAdapters adapters;
        ASSERT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x00000000");
        ASSERT_FALSE(adapters.m_vecItems.empty());
        m_adapter = adapters.m_vecItems.front()->m_wsAdapterID;
        CTeams teams;
        ASSERT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000");
        ASSERT_FALSE(teams.m_vecItems.empty());
        m_team = teams.m_vecItems.front()->m_wsTeamID;
        ForgetCalls();
    }
    void TearDown() override {
        if (m_real) {
            // What was registered is revoked where it was.
            Access::InterfaceTable(quillet) = m_real;
        }
    }

    /// For each fetch of an object since the last call, whether only a part of it was asked for.
    std::vector<bool> Fetches(const std::wstring& path) {
        std::vector<bool> partial;
        for (const JournalEntry& call : Calls()) {
            if (call.operation == Operation::GetObject && call.target == path) {
                const std::string line = Describe(call);
                partial.push_back(line.find("Zorel_PartialData=") != std::string::npos &&
                                  line.find("Zorel_PartialData=-1") == std::string::npos);
            }
        }
        return partial;
    }
    void Fetch(const ProviderSession& session) const {
        const ProviderInstance instance(session, m_adapter, L"fetch");
        EXPECT_EQ(Code(instance.Result()), "0x00000000");
    }
    void ReadAdapter() {
        CAdapter adapter;
        EXPECT_EQ(Code(quillet.GetAdapterDynamicInfo(m_adapter, adapter)), "0x00000000");
    }

    std::wstring m_adapter;
    std::wstring m_team;

  private:
    CComPtr<IGlobalInterfaceTable> m_real;
    std::optional<SharingTable> m_table;
};

using Partial = std::vector<bool>;

TEST_P(FetchedObjectsTest, APartialObject_IsNotKeptForTheNext) {
    const CFetchOnce once(quillet);
    {
        const ProviderSession session(quillet);
        const PartialRetrieval partial(session, kIdentityOnly);
        Fetch(session);
    }
    EXPECT_EQ(Fetches(m_adapter), Partial{true});
    ReadAdapter();
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), Partial{false});
}

TEST_P(FetchedObjectsTest, AnObjectThatIsKept_IsNotWhatAPartialFetchYields) {
    const CFetchOnce once(quillet);
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), Partial{false});
    {
        const ProviderSession session(quillet);
        const PartialRetrieval partial(session, kIdentityOnly);
        Fetch(session);
    }
    EXPECT_EQ(Fetches(m_adapter), Partial{true});
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), Partial{});
}

TEST_P(FetchedObjectsTest, AnOperationWithinAPartialOne_KeepsNothingForTheNext) {
    const CFetchOnce once(quillet);
    {
        const ProviderSession outer(quillet);
        const PartialRetrieval partial(outer, kIdentityOnly);
        const ProviderSession inner(quillet);
        Fetch(inner);
        Fetch(outer);
        // Whether the inner one gets all of it depends on whose the context is.
        EXPECT_EQ(Fetches(m_adapter), (Partial{GetParam(), true}));
    }
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), Partial{false});
}

TEST_P(FetchedObjectsTest, APartialOperationWithinAnother_LeavesTheOuterOneWhole) {
    const CFetchOnce once(quillet);
    const ProviderSession outer(quillet);
    {
        const ProviderSession inner(quillet);
        const PartialRetrieval partial(inner, kIdentityOnly);
        Fetch(inner);
    }
    Fetch(outer);
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), (Partial{true, false}));
}

TEST_P(FetchedObjectsTest, TheOperationsThatAskForParts_LeaveWholeObjectsToTheOthers) {
    const CFetchOnce once(quillet);
    CAdapters adapters;
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems.front()->m_wsAdapterID = m_adapter;
    CTeamWizTeamModes modes;
    EXPECT_EQ(Code(quillet.GetCompatibleTeamModesWithAdapters(adapters, modes, true)), "0x00000000");
    ReadAdapter();
    EXPECT_EQ(Fetches(m_adapter), (Partial{true, false}));

    CTeamedAdapters members;
    EXPECT_EQ(Code(quillet.GetMemberAdapters(m_team, members)), "0x00000000");
    EXPECT_GT(members.m_vecItems.size(), 1U);
    CTeam team;
    EXPECT_EQ(Code(quillet.GetTeamInfo(m_team, team)), "0x00000000");
    EXPECT_EQ(Code(quillet.GetTeamInfo(m_team, team)), "0x00000000");
    // The list of the members asks for the team once for each of them.
    Partial expected(members.m_vecItems.size(), true);
    expected.push_back(false);
    EXPECT_EQ(Fetches(m_team), expected);
}

INSTANTIATE_TEST_SUITE_P(Contexts, FetchedObjectsTest, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& each) {
                             return std::string(each.param ? "OneForAll" : "OneForEach");
                         });

} // namespace
