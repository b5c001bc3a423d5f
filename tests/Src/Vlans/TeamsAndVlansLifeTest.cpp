// The life of a machine: ten thousand random changes of teams and VLANs, of which many are refused, made
// through the library on the simulated provider and beside it on a model of a few lines. The two agree after
// every step.
#include "Vlans/VlanMachine.h"

#include "LumDebug.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <set>
#include <tuple>

namespace {

constexpr unsigned kSteps = 10'000;
/// One step in so many asks the library for all the VLANs of a parent, or all members of a team.
constexpr unsigned kAsking = 4;
constexpr std::size_t kAdapters = 10;
/// Adapters from this one on cannot carry VLANs.
constexpr std::size_t kWithoutVlans = 9;
constexpr std::size_t kMostMembers = 8;
constexpr std::size_t kMostVlans = 64;
constexpr std::size_t kNobody = kAdapters; ///< stands for an adapter that does not exist

std::wstring DeviceId(std::size_t adapter) {
    return L"{ADAPTER-" + std::to_wstring(adapter) + L"}";
}

std::string MachineText() {
    std::string mof = R"(instance of Zorel_NetService { Name = "ZorelNetService"; };)";
    for (std::size_t adapter = 0; adapter < kAdapters; ++adapter) {
        const std::string id = Narrow(DeviceId(adapter));
        const std::string vlans = adapter < kWithoutVlans ? "37, " : "";
        mof += "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"" + id + "\"; Caption = \"Port " +
               std::to_string(adapter) +
               "\"; OriginalDisplayName = \"Port\"; AdapterStatus = 1; HardwareStatus = 3; " +
               "Speed = 1000000000; FullDuplex = TRUE; PermanentAddress = \"02-00-5E-00-00-0" +
               std::to_string(adapter) + "\"; Capabilities = {3, 4, 5, 8, 9, 10, 12, 34, 36, " + vlans +
               "46, 47, 68}; };\n";
        if (adapter < kWithoutVlans) {
            mof += "instance of Zorel_802dot1QVLANService { Name = \"" + id + "\"; };\n";
        }
    }
    return mof;
}

/// Names differ in more than their case.
std::wstring Capitals(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), [](wchar_t letter) {
        return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
    });
    return text;
}

// --- the model ---

struct ModelVlan {
    std::wstring path;
    LONG number = 0;
    std::wstring name;
    std::size_t settings = 0;
};

/// What VLANs sit on.
struct ModelParent {
    std::wstring caption;
    bool carriesVlans = false;
    std::vector<ModelVlan> vlans;

    /// Whether a VLAN may have this number and name; `self` is the one that is changed, if any.
    bool MayHave(LONG number, const std::wstring& name, const ModelVlan* self) const {
        if (number < 0 || number > 4094 || name.empty() || (!self && vlans.size() >= kMostVlans)) {
            return false;
        }
        return std::none_of(vlans.begin(), vlans.end(), [&](const ModelVlan& other) {
            return &other != self && (other.number == number || Capitals(other.name) == Capitals(name));
        });
    }
};

struct ModelMember {
    std::size_t adapter = 0;
    LONG role = 0; ///< 1 primary, 2 secondary, 0 neither
};

struct ModelTeam : ModelParent {
    std::wstring path;
    LONG mode = 0;
    std::vector<ModelMember> members; ///< in the order in which they joined

    ModelMember* Holder(LONG role) {
        const auto found = std::find_if(members.begin(), members.end(),
                                        [role](const ModelMember& each) { return each.role == role; });
        return found == members.end() ? nullptr : &*found;
    }
    void Join(std::size_t adapter) {
        const LONG role = !Holder(1) ? 1 : !Holder(2) ? 2 : 0;
        members.push_back({adapter, role});
    }
    void Leave(std::size_t adapter) {
        const auto leaving = std::find_if(members.begin(), members.end(), [adapter](const ModelMember& each) {
            return each.adapter == adapter;
        });
        const bool wasPrimary = leaving->role == 1;
        members.erase(leaving);
        if (ModelMember* successor = wasPrimary ? Holder(2) : nullptr) {
            successor->role = 1;
        }
    }
};

struct Model {
    std::array<ModelParent, kAdapters> adapters;
    std::vector<ModelTeam> teams;

    ModelTeam* TeamOf(std::size_t adapter) {
        for (ModelTeam& team : teams) {
            for (const ModelMember& member : team.members) {
                if (member.adapter == adapter) {
                    return &team;
                }
            }
        }
        return nullptr;
    }
    bool IsNameTaken(const std::wstring& caption, const ModelTeam* except) const {
        return std::any_of(teams.begin(), teams.end(),
                           [&](const ModelTeam& team) { return &team != except && team.caption == caption; });
    }
    template <class Visit>
    void ForEachParent(Visit visit) const {
        for (std::size_t adapter = 0; adapter < kAdapters; ++adapter) {
            visit(DeviceId(adapter), adapters[adapter]);
        }
        for (const ModelTeam& team : teams) {
            visit(team.path.substr(team.path.find(L'{'), team.path.size() - team.path.find(L'{') - 1), team);
        }
    }
};

/// Everything that can be seen of teams and VLANs, in a form that compares.
struct Sight {
    struct Row {
        std::wstring first;
        std::wstring second;
        std::wstring third;
        LONG number = 0;
        friend bool operator==(const Row&, const Row&) = default;
        /// Numbers first: the texts begin alike, and take long to compare.
        friend bool operator<(const Row& left, const Row& right) {
            return std::tie(left.number, left.first, left.second, left.third) <
                   std::tie(right.number, right.first, right.second, right.third);
        }
    };
    std::set<Row> teams;        // path, caption, "", mode
    std::multiset<Row> members; // team's path, device, "", role
    std::set<Row> vlans;        // path, parent, name with caption, number
    std::size_t settings = 0;
    std::size_t logicalAdapters = 0;
    std::size_t virtualAdapters = 0;
    std::size_t services = 0;
    friend bool operator==(const Sight&, const Sight&) = default;
};

std::string InWords(const Sight& sight) {
    std::string text;
    const auto add = [&text](const char* title, const auto& rows) {
        for (const auto& [first, second, third, number] : rows) {
            text += std::string(title) + " " + Narrow(first) + " | " + Narrow(second) + " | " +
                    Narrow(third) + " | " + std::to_string(number) + "\n";
        }
    };
    add("team", sight.teams);
    add("member", sight.members);
    add("vlan", sight.vlans);
    return text + std::to_string(sight.settings) + " settings, " + std::to_string(sight.logicalAdapters) +
           "/" + std::to_string(sight.virtualAdapters) + " adapters of teams, " +
           std::to_string(sight.services) + " services\n";
}

std::wstring VlanCaption(const ModelParent& parent, const ModelVlan& vlan) {
    return parent.caption + L" - VLAN : " + vlan.name;
}

// --- the test ---

class TeamsAndVlansLifeTest : public ProviderTest {
  public:
    TeamsAndVlansLifeTest() : ProviderTest(MachineText()) {
        for (std::size_t adapter = 0; adapter < kAdapters; ++adapter) {
            m_model.adapters[adapter].caption = L"Port " + std::to_wstring(adapter);
            m_model.adapters[adapter].carriesVlans = adapter < kWithoutVlans;
        }
    }

    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }
    bool Chance(unsigned percent) { return Below(100) < percent; }

    std::wstring AnyName(const wchar_t* kind, std::size_t variety) {
        std::wstring name = kind + std::to_wstring(Below(variety));
        return Chance(10) ? Capitals(std::move(name)) : name;
    }
    /// Numbers of VLANs: mostly near each other, so that they meet, and sometimes at the ends and beyond.
    LONG AnyNumber() {
        static constexpr LONG kOdd[] = {-1, 0, 1, 4093, 4094, 4095, 4096};
        return Chance(8) ? kOdd[Below(std::size(kOdd))] : static_cast<LONG>(Below(140));
    }
    LONG AnyMode() { return Chance(90) ? static_cast<LONG>(Below(7)) : (Chance(50) ? 7 : -1); }
    static std::wstring PathOfAdapter(std::size_t adapter) {
        return AdapterPath(adapter == kNobody ? L"{NOBODY}" : DeviceId(adapter));
    }
    static CAdapters ListOf(const std::vector<std::size_t>& adapters) {
        CAdapters list;
        for (const std::size_t adapter : adapters) {
            list.m_vecItems.push_back(new CAdapter);
            list.m_vecItems.back()->m_wsAdapterID = PathOfAdapter(adapter);
        }
        return list;
    }
    /// Some adapters, none twice. Those without a team come first when a change is to have a chance.
    std::vector<std::size_t> SomeAdapters(std::size_t most) {
        std::vector<std::size_t> adapters(kAdapters);
        for (std::size_t adapter = 0; adapter < kAdapters; ++adapter) {
            adapters[adapter] = adapter;
        }
        std::shuffle(adapters.begin(), adapters.end(), m_random);
        if (Chance(80)) {
            std::stable_partition(adapters.begin(), adapters.end(),
                                  [this](std::size_t adapter) { return m_model.TeamOf(adapter) == nullptr; });
        }
        adapters.resize(Below(std::min(most, kAdapters) + 1));
        if (Chance(3)) {
            adapters.insert(adapters.begin() + static_cast<std::ptrdiff_t>(Below(adapters.size() + 1)),
                            kNobody);
        }
        return adapters;
    }
    /// A team, or the path of one that was removed.
    ModelTeam* AnyTeam(std::wstring& path) {
        if (m_model.teams.empty() || Chance(4)) {
            path = m_gone.empty() ? TeamPath(L"{GONE}") : m_gone;
            const auto again = std::find_if(m_model.teams.begin(), m_model.teams.end(),
                                            [&](const ModelTeam& team) { return team.path == path; });
            return again == m_model.teams.end() ? nullptr : &*again;
        }
        ModelTeam& team = m_model.teams[Below(m_model.teams.size())];
        path = team.path;
        return &team;
    }

    // Each step makes one change, tells by the model whether it must succeed, and brings the model to where
    // the machine must then be.

    void CreateTeam() {
        const std::vector<std::size_t> members = SomeAdapters(Chance(90) ? 4 : kAdapters);
        const std::wstring caption = Chance(3) ? L"" : AnyName(L"Team ", 12);
        const LONG mode = AnyMode();
        bool may = !caption.empty() && mode >= 0 && mode <= 6 && !members.empty() &&
                   members.size() <= kMostMembers && !m_model.IsNameTaken(caption, nullptr);
        for (const std::size_t adapter : members) {
            may = may && adapter != kNobody && m_model.TeamOf(adapter) == nullptr;
        }
        CTeam made;
        Expect(may, quillet.CreateTeam(static_cast<CTeam::TeamMode>(mode), caption, ListOf(members), made,
                                       static_cast<ePERFORMANCE_PROFILE>(0), Chance(50), Chance(50)));
        if (!may) {
            return;
        }
        ModelTeam team;
        team.path = made.m_wsTeamID;
        team.caption = caption;
        team.mode = mode;
        team.carriesVlans = true;
        for (const std::size_t adapter : members) {
            team.Join(adapter);
            team.carriesVlans = team.carriesVlans && m_model.adapters[adapter].carriesVlans;
        }
        m_model.teams.push_back(std::move(team));
        m_touchedTeam = made.m_wsTeamID;
    }

    void RemoveTeam() {
        std::wstring path;
        const ModelTeam* team = AnyTeam(path);
        Expect(team != nullptr, quillet.RemoveTeam(path));
        if (team != nullptr) {
            m_gone = path;
            m_model.teams.erase(m_model.teams.begin() + (team - m_model.teams.data()));
        }
    }

    void ModifyTeam() {
        std::wstring path;
        ModelTeam* team = AnyTeam(path);
        CTeam wanted;
        wanted.m_eTeamMode = static_cast<CTeam::TeamMode>(AnyMode());
        wanted.m_wsCaption = Chance(3) ? L" " : AnyName(L"Team ", 12);
        const bool may = team != nullptr && wanted.m_eTeamMode >= 0 && wanted.m_eTeamMode <= 6 &&
                         wanted.m_wsCaption != L" " && !m_model.IsNameTaken(wanted.m_wsCaption, team);
        Expect(may, quillet.ModifyTeamInfo(path, wanted));
        if (may) {
            team->mode = wanted.m_eTeamMode;
            team->caption = wanted.m_wsCaption;
        }
        m_touchedTeam = path;
    }

    void ModifyMembers() {
        std::wstring path;
        ModelTeam* team = AnyTeam(path);
        std::vector<std::size_t> wanted = SomeAdapters(3);
        CTeamedAdapters current;
        if (team != nullptr) {
            // Some of the members stay, mostly.
            for (const ModelMember& member : team->members) {
                if (Chance(70) && std::find(wanted.begin(), wanted.end(), member.adapter) == wanted.end()) {
                    wanted.insert(wanted.begin() + static_cast<std::ptrdiff_t>(Below(wanted.size() + 1)),
                                  member.adapter);
                }
            }
            ASSERT_EQ(Code(quillet.GetMemberAdapters(path, current)), "0x00000000");
        }
        bool may = team != nullptr;
        const HRESULT result = quillet.ModifyMemberList(path, current, ListOf(wanted));
        if (team == nullptr) {
            // Without members on either side there is nothing to ask the provider for.
            may = wanted.empty() && SUCCEEDED(result);
        } else {
            m_isModelTouched = true; // even a refused change may have come half way
            const std::vector<ModelMember> before = team->members;
            for (const ModelMember& member : before) {
                if (std::find(wanted.begin(), wanted.end(), member.adapter) == wanted.end()) {
                    team->Leave(member.adapter);
                }
            }
            for (const std::size_t adapter : wanted) {
                const bool wasMember =
                    std::any_of(before.begin(), before.end(),
                                [adapter](const ModelMember& each) { return each.adapter == adapter; });
                if (wasMember) {
                    continue;
                }
                if (adapter == kNobody || m_model.TeamOf(adapter) != nullptr ||
                    team->members.size() >= kMostMembers) {
                    may = false; // what was changed until here stays
                    break;
                }
                team->Join(adapter);
            }
        }
        Expect(may, result);
        m_touchedTeam = path;
    }

    void SetPriority() {
        const std::size_t adapter = Below(kAdapters + 1);
        const auto role = static_cast<LONG>(Below(4));
        ModelTeam* team = adapter == kNobody ? nullptr : m_model.TeamOf(adapter);
        const bool may = team != nullptr && role <= 2;
        Expect(may, quillet.SetTeamedAdapterPriority(PathOfAdapter(adapter), role));
        if (!may) {
            return;
        }
        ModelMember& member =
            *std::find_if(team->members.begin(), team->members.end(),
                          [adapter](const ModelMember& each) { return each.adapter == adapter; });
        ModelMember* holder = role != 0 ? team->Holder(role) : nullptr;
        if (holder != nullptr && holder != &member) {
            holder->role = member.role;
        }
        member.role = role;
        m_touchedTeam = team->path;
    }

    void AddVlan() {
        CVLAN vlan = Wanted(AnyNumber(), Chance(2) ? L"" : AnyName(L"vlan ", 160));
        // One adapter in particular, so that it fills up.
        const bool onTeam = !m_model.teams.empty() && Chance(45);
        std::wstring path;
        ModelTeam* team = onTeam ? AnyTeam(path) : nullptr;
        const std::size_t adapter = Chance(60) ? 0 : Below(kAdapters);
        ModelParent* parent = onTeam ? team : &m_model.adapters[adapter];
        if (!onTeam) {
            path = PathOfAdapter(adapter);
        }
        const bool isMember = !onTeam && m_model.TeamOf(adapter) != nullptr;
        const bool carries = parent != nullptr && parent->carriesVlans;
        const bool may =
            carries && !isMember && parent->MayHave(vlan.m_lVLANNumber, vlan.m_wsVLANName, nullptr);

        // What the client is told beforehand is what then happens. Asking lists all the parent's VLANs, so it
        // is not done each time.
        HRESULT supported = E_FAIL;
        ULONGLONG problems = 0;
        if (m_step % kAsking == 0) {
            supported = quillet.ParentSupportingVLAN(path);
            EXPECT_EQ(SUCCEEDED(supported), carries) << Where();
            EXPECT_EQ(supported == CVLAN::ParentIsTeamMember, carries && isMember) << Where();
            problems = vlan.m_lVLANNumber == 0 ? (onTeam ? quillet.CreateUnTaggedVLANTeamCheck(path, vlan)
                                                         : quillet.CreateUnTaggedVLANAdapterCheck(path, vlan))
                                               : (onTeam ? quillet.CreateVLANTeamCheck(path, vlan)
                                                         : quillet.CreateVLANAdapterCheck(path, vlan));
        }
        const HRESULT result =
            onTeam ? quillet.AddVLANToTeam(path, vlan) : quillet.AddVLANToAdapter(path, vlan);
        Expect(may, result);
        if (supported == S_OK && vlan.m_lVLANNumber != 0 && !vlan.m_wsVLANName.empty()) {
            EXPECT_EQ(problems == 0, SUCCEEDED(result)) << Where() << ": problems " << problems;
        }
        m_refusedForCrowd += carries && !isMember && parent->vlans.size() == kMostVlans ? 1u : 0u;
        if (m_step % kAsking == 1) {
            m_touchedParent = path;
            m_touchedIsTeam = onTeam;
        }
        if (may) {
            const std::size_t settings = vlan.m_lVLANNumber == 0 ? 5u : 6u;
            parent->vlans.push_back({vlan.m_wsVLANID, vlan.m_lVLANNumber, vlan.m_wsVLANName, settings});
        }
    }

    /// A VLAN and its parent; nothing when there is none.
    std::pair<ModelParent*, std::size_t> AnyVlan() {
        std::vector<ModelParent*> parents;
        for (ModelParent& adapter : m_model.adapters) {
            parents.push_back(&adapter);
        }
        for (ModelTeam& team : m_model.teams) {
            parents.push_back(&team);
        }
        std::erase_if(parents, [](const ModelParent* parent) { return parent->vlans.empty(); });
        if (parents.empty()) {
            return {nullptr, 0};
        }
        ModelParent* parent = parents[Below(parents.size())];
        return {parent, Below(parent->vlans.size())};
    }

    void ModifyVlan() {
        const auto [parent, index] = AnyVlan();
        const CVLAN wanted = Wanted(AnyNumber(), Chance(2) ? L"" : AnyName(L"vlan ", 160));
        if (parent == nullptr || Chance(3)) {
            Expect(false, quillet.ModifyVLANProperty(VlanPath(L"{NONE}"), wanted));
            return;
        }
        ModelVlan& vlan = parent->vlans[index];
        const bool may = parent->MayHave(wanted.m_lVLANNumber, wanted.m_wsVLANName, &vlan);
        Expect(may, quillet.ModifyVLANProperty(vlan.path, wanted));
        if (may) {
            vlan.number = wanted.m_lVLANNumber;
            vlan.name = wanted.m_wsVLANName;
        }
    }

    void RemoveVlan() {
        const auto [parent, index] = AnyVlan();
        if (parent == nullptr || Chance(3)) {
            Expect(false, quillet.RemoveVLAN(VlanPath(L"{NONE}")));
            return;
        }
        Expect(true, quillet.RemoveVLAN(parent->vlans[index].path));
        parent->vlans.erase(parent->vlans.begin() + static_cast<std::ptrdiff_t>(index));
    }

    void Expect(bool may, HRESULT result) {
        EXPECT_EQ(SUCCEEDED(result), may) << Where() << ": " << Code(result);
        ++(SUCCEEDED(result) ? m_done : m_refused)[m_what];
        m_isModelTouched = m_isModelTouched || may;
    }
    std::string Where() const { return "step " + std::to_string(m_step) + ", " + m_what; }

    /// What the model says that there is.
    Sight Foreseen() const {
        Sight sight;
        sight.services = kWithoutVlans;
        for (const ModelTeam& team : m_model.teams) {
            sight.teams.insert({team.path, team.caption, L"", team.mode});
            for (const ModelMember& member : team.members) {
                sight.members.insert({team.path, DeviceId(member.adapter), L"", member.role});
            }
            sight.services += team.carriesVlans ? 1u : 0u;
        }
        sight.logicalAdapters = sight.virtualAdapters = m_model.teams.size();
        m_model.ForEachParent([&](const std::wstring& id, const ModelParent& parent) {
            for (const ModelVlan& vlan : parent.vlans) {
                sight.vlans.insert(
                    {vlan.path, id, vlan.name + L" / " + VlanCaption(parent, vlan), vlan.number});
                sight.settings += vlan.settings;
            }
        });
        return sight;
    }

    /// What the machine holds.
    Sight Held() {
        const auto& store = machine->Store();
        Sight sight;
        for (const auto& team : store.Instances(L"Zorel_TeamOfAdapters")) {
            sight.teams.insert({store.FullPath(*team), team->Text(L"Caption"), L"",
                                static_cast<LONG>(team->Number(L"TeamingMode"))});
        }
        for (const auto& member : store.Instances(L"Zorel_TeamedMemberAdapter")) {
            const auto adapter = store.FindInstance(member->Text(L"PartComponent"));
            sight.members.insert({member->Text(L"GroupComponent"),
                                  adapter ? adapter->Text(L"DeviceID") : L"none", L"",
                                  static_cast<LONG>(member->Number(L"AdapterFunction"))});
        }
        for (const auto& vlan : store.Instances(L"Zorel_VLAN")) {
            sight.vlans.insert({store.FullPath(*vlan), vlan->Text(L"ParentID"),
                                vlan->Text(L"VLANName") + L" / " + vlan->Text(L"Caption"),
                                static_cast<LONG>(vlan->Number(L"VLANNumber"))});
        }
        sight.settings = store.Instances(L"Zorel_VLANSetting").size();
        sight.logicalAdapters = store.Instances(L"Zorel_LogicalEthernetAdapter").size();
        sight.virtualAdapters = store.Instances(L"Zorel_NetworkVirtualAdapter").size();
        sight.services = store.Instances(L"Zorel_802dot1QVLANService").size();
        return sight;
    }

    /// What a client sees of a parent's VLANs.
    void SeeVlans(const std::wstring& path, bool isTeam, Sight& sight) {
        CVLANs vlans;
        EXPECT_EQ(Code(isTeam ? quillet.EnumerateVLANsOfTeam(path, vlans)
                              : quillet.EnumerateVLANsOfAdapter(path, vlans)),
                  "0x00000000")
            << Where();
        for (const CVLAN* vlan : vlans.m_vecItems) {
            sight.vlans.insert({vlan->m_wsVLANID, vlan->m_wsParentID,
                                vlan->m_wsVLANName + L" / " + vlan->m_wsCaption, vlan->m_lVLANNumber});
        }
    }
    void SeeMembers(const std::wstring& path, Sight& sight) {
        CTeamedAdapters members;
        EXPECT_EQ(Code(quillet.GetMemberAdapters(path, members)), "0x00000000") << Where();
        for (const CTeamedAdapter* member : members.m_vecItems) {
            sight.members.insert({path, member->m_wsDeviceID, L"", member->m_lMemberRole});
        }
    }

    /// All of it, as a client sees it.
    void CompareAllThroughTheLibrary(const Sight& foreseen) {
        Sight seen;
        CTeams teams;
        ASSERT_EQ(Code(quillet.EnumerateTeams(teams)), "0x00000000") << Where();
        for (const CTeam* team : teams.m_vecItems) {
            seen.teams.insert({team->m_wsTeamID, team->m_wsCaption, L"", team->m_eTeamMode});
            SeeMembers(team->m_wsTeamID, seen);
            SeeVlans(team->m_wsTeamID, true, seen);
        }
        for (std::size_t adapter = 0; adapter < kAdapters; ++adapter) {
            SeeVlans(PathOfAdapter(adapter), false, seen);
        }
        seen.settings = foreseen.settings;
        seen.logicalAdapters = foreseen.logicalAdapters;
        seen.virtualAdapters = foreseen.virtualAdapters;
        seen.services = foreseen.services;
        ASSERT_TRUE(seen == foreseen) << Where() << "\nseen:\n"
                                      << InWords(seen) << "foreseen:\n"
                                      << InWords(foreseen);
    }

    /// What the step was about, as a client sees it.
    void CompareTouchedThroughTheLibrary(const Sight& foreseen) {
        const auto of = [&](const auto& rows, std::size_t column, const std::wstring& value) {
            std::multiset<Sight::Row> some;
            for (const auto& row : rows) {
                if ((column == 0 ? row.first : row.second) == value) {
                    some.insert(row);
                }
            }
            return some;
        };
        if (!m_touchedParent.empty()) {
            Sight seen;
            SeeVlans(m_touchedParent, m_touchedIsTeam, seen);
            const auto brace = m_touchedParent.find(L'{');
            const std::wstring id = m_touchedParent.substr(brace, m_touchedParent.size() - brace - 1);
            const auto vlans = of(foreseen.vlans, 1, id);
            ASSERT_TRUE(std::equal(seen.vlans.begin(), seen.vlans.end(), vlans.begin(), vlans.end()))
                << Where();
        }
        const bool isThere =
            std::any_of(m_model.teams.begin(), m_model.teams.end(),
                        [this](const ModelTeam& team) { return team.path == m_touchedTeam; });
        if (isThere && m_step % kAsking == 1) {
            Sight seen;
            SeeMembers(m_touchedTeam, seen);
            ASSERT_TRUE(seen.members == of(foreseen.members, 0, m_touchedTeam)) << Where() << "\nseen:\n"
                                                                                << InWords(seen);
            CTeam team;
            ASSERT_EQ(Code(quillet.GetTeamInfo(m_touchedTeam, team)), "0x00000000") << Where();
            ASSERT_EQ(foreseen.teams.count({team.m_wsTeamID, team.m_wsCaption, L"", team.m_eTeamMode}), 1u)
                << Where();
        }
    }

    Model m_model;
    std::mt19937 m_random{20260101};
    std::wstring m_gone;          ///< the path of a team that was removed
    std::wstring m_touchedTeam;   ///< what the step was about
    std::wstring m_touchedParent; ///< the same, of VLANs
    bool m_touchedIsTeam = false;
    bool m_isModelTouched = false; ///< the step may have changed the model
    unsigned m_step = 0;
    unsigned m_refusedForCrowd = 0;
    std::string m_what;
    std::map<std::string, unsigned> m_done;
    std::map<std::string, unsigned> m_refused;
};

TEST_F(TeamsAndVlansLifeTest, TenThousandChanges_AgreeWithTheModelAfterEach) {
    Connect();
    LumTrace() = CLumDebug(); // ten thousand traces would only take time
    using Step = void (TeamsAndVlansLifeTest::*)();
    const struct {
        const char* what;
        Step make;
        unsigned weight;
    } steps[] = {
        {"CreateTeam", &TeamsAndVlansLifeTest::CreateTeam, 6},
        {"RemoveTeam", &TeamsAndVlansLifeTest::RemoveTeam, 4},
        {"ModifyTeamInfo", &TeamsAndVlansLifeTest::ModifyTeam, 8},
        {"ModifyMemberList", &TeamsAndVlansLifeTest::ModifyMembers, 12},
        {"SetTeamedAdapterPriority", &TeamsAndVlansLifeTest::SetPriority, 8},
        {"AddVLAN", &TeamsAndVlansLifeTest::AddVlan, 34},
        {"ModifyVLANProperty", &TeamsAndVlansLifeTest::ModifyVlan, 16},
        {"RemoveVLAN", &TeamsAndVlansLifeTest::RemoveVlan, 12},
    };
    std::vector<unsigned> weights;
    for (const auto& step : steps) {
        weights.push_back(step.weight);
    }
    std::discrete_distribution<std::size_t> choose(weights.begin(), weights.end());
    Sight foreseen = Foreseen();
    Sight held = Held();
    std::uint64_t looked = machine->Store().Generation();
    for (m_step = 1; m_step <= kSteps && !HasFailure(); ++m_step) {
        const auto& step = steps[choose(m_random)];
        m_what = step.what;
        m_isModelTouched = false;
        m_touchedTeam.clear();
        m_touchedParent.clear();
        const bool inSet = Chance(25);
        if (inSet) {
            ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
        }
        (this->*step.make)();
        if (inSet) {
            bool followup = true;
            ASSERT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
            EXPECT_FALSE(followup);
        }
        // What has not changed since it was looked at is as it was, on either side.
        if (m_isModelTouched) {
            foreseen = Foreseen();
        }
        if (machine->Store().Generation() != looked) {
            held = Held();
            looked = machine->Store().Generation();
        }
        ASSERT_TRUE(held == foreseen) << Where() << "\nheld:\n"
                                      << InWords(held) << "foreseen:\n"
                                      << InWords(foreseen);
        CompareTouchedThroughTheLibrary(foreseen);
        if (m_step % 500 == 0) {
            CompareAllThroughTheLibrary(foreseen);
        }
        ForgetCalls();
    }
    // Each kind of change was made, and each was refused, many times; one parent was full for a while.
    for (const auto& step : steps) {
        EXPECT_GE(m_done[step.what], 50u) << step.what;
        EXPECT_GE(m_refused[step.what], 10u) << step.what;
        std::printf("%-26s done %4u, refused %4u\n", step.what, m_done[step.what], m_refused[step.what]);
    }
    EXPECT_GE(m_refusedForCrowd, 20u);
    std::printf("asked of a full parent: %u\n", m_refusedForCrowd);
}

} // namespace
