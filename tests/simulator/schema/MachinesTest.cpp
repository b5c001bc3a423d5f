// The machines that ship with the simulator, and those that the generator writes: they compile, and what they
// tell about a machine agrees with itself.
#include "CompiledSchema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

namespace quillet::simulator::tests {

namespace {

constexpr std::int64_t HardwareMissing = 4;

/// A machine and the questions that every test asks it.
struct Inventory {
    std::unique_ptr<Repository> store;
    std::map<std::wstring, InstancePtr> adapters; ///< by object ID
    std::map<std::wstring, InstancePtr> teams;
    std::map<std::wstring, InstancePtr> vlans;
    std::map<std::wstring, InstancePtr> bootAgents;

    explicit Inventory(const std::filesystem::path& file) : store(Compile(file)) {
        adapters = ByText(L"Zorel_PhysicalEthernetAdapter", L"DeviceID");
        teams = ByText(L"Zorel_TeamOfAdapters", L"Name");
        vlans = ByText(L"Zorel_VLAN", L"Name");
        bootAgents = ByText(L"Zorel_BootAgent", L"Name");
    }

    std::vector<InstancePtr> All(std::wstring_view cls) const { return store->Instances(cls); }

    std::map<std::wstring, InstancePtr> ByText(std::wstring_view cls, std::wstring_view property) const {
        std::map<std::wstring, InstancePtr> found;
        for (const auto& instance : All(cls)) {
            found[instance->Text(property)] = instance;
        }
        return found;
    }

    /// What a reference leads to; null when it leads nowhere.
    InstancePtr Follow(const Instance& from, std::wstring_view reference) const {
        return store->FindInstance(from.Text(reference));
    }

    std::vector<InstancePtr> MembersOf(const Instance& team) const {
        std::vector<InstancePtr> members;
        for (const auto& member : All(L"Zorel_TeamedMemberAdapter")) {
            const auto group = Follow(*member, L"GroupComponent");
            if (group && group->Text(L"Name") == team.Text(L"Name")) {
                members.push_back(member);
            }
        }
        return members;
    }
};

const Inventory& BuiltIn() {
    static const Inventory machine(MachineFile("builtin.mof"));
    return machine;
}

bool Can(const Instance& adapter, std::int64_t capability) {
    const auto codes = Numbers(adapter, L"Capabilities");
    return std::ranges::find(codes, capability) != codes.end();
}

bool Missing(const Instance& adapter) {
    return (adapter.Number(L"AdapterStatus") & HardwareMissing) != 0;
}

bool IsGuid(const std::wstring& text) {
    static const std::wstring shape = L"{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    return text.size() == shape.size() && std::ranges::equal(text, shape, [](wchar_t letter, wchar_t mark) {
               return mark == L'x' ? std::wstring(L"0123456789ABCDEF").find(letter) != std::wstring::npos
                                   : letter == mark;
           });
}

void ExpectReferencesResolve(const Inventory& machine) {
    for (const auto& instance : machine.store->AllInstances()) {
        for (const auto& property : instance->definition->properties) {
            if (property.type != CIM_REFERENCE) {
                continue;
            }
            const auto target = machine.Follow(*instance, property.name);
            ASSERT_NE(nullptr, target) << Narrow(machine.store->FullPath(*instance));
            EXPECT_TRUE(target->definition->IsA(property.referenceClass))
                << Narrow(machine.store->FullPath(*instance));
        }
    }
}

void ExpectIdsAreUniqueGuids(const Inventory& machine) {
    std::set<std::wstring> ids;
    const auto check = [&](const std::wstring& id) {
        EXPECT_TRUE(IsGuid(id)) << Narrow(id);
        EXPECT_TRUE(ids.insert(id).second) << Narrow(id);
    };
    for (const auto& adapter : machine.All(L"Zorel_PhysicalEthernetAdapter")) {
        check(adapter->Text(L"DeviceID"));
    }
    for (const auto& [cls, key] :
         {std::pair{L"Zorel_TeamOfAdapters", L"Name"}, std::pair{L"Zorel_VLAN", L"Name"},
          std::pair{L"Zorel_DiagResult", L"Name"}}) {
        for (const auto& instance : machine.All(cls)) {
            check(instance->Text(key));
        }
    }
    std::set<std::wstring> addresses;
    for (const auto& adapter : machine.All(L"Zorel_PhysicalEthernetAdapter")) {
        EXPECT_TRUE(addresses.insert(adapter->Text(L"PermanentAddress")).second)
            << Narrow(adapter->Text(L"PermanentAddress"));
    }
}

void ExpectAdaptersAgreeWithThemselves(const Inventory& machine) {
    const std::map<std::int64_t, std::int64_t> speedCodes = {{10, 32}, {100, 33}, {1000, 34}, {10000, 35}};
    const auto services = machine.ByText(L"Zorel_802dot1QVLANService", L"Name");
    const auto property =
        machine.store->FindClass(L"Zorel_PhysicalEthernetAdapter")->FindProperty(L"Capabilities");
    const auto texts = Texts(property->qualifiers.Find(L"Values")->value);
    for (const auto& [id, adapter] : machine.adapters) {
        const auto where = Narrow(adapter->Text(L"Name"));
        const auto codes = Numbers(*adapter, L"Capabilities");
        EXPECT_TRUE(std::ranges::is_sorted(codes, std::less_equal<>())) << where;
        for (const auto code : codes) {
            ASSERT_LT(static_cast<std::size_t>(code), texts.size()) << where;
            EXPECT_NE(L"Reserved", texts[static_cast<std::size_t>(code)]) << where << " " << code;
        }
        for (const std::int64_t mode : {4, 5, 8, 9, 10, 12, 68}) {
            EXPECT_TRUE(!Can(*adapter, mode) || Can(*adapter, 3)) << where << " teams without teaming";
        }
        EXPECT_TRUE(Can(*adapter, 47)) << where << " has speeds and does not report them";
        EXPECT_EQ(!Missing(*adapter) && Can(*adapter, 37), services.count(id) == 1) << where;

        const auto state = adapter->Number(L"HardwareStatus", -1);
        const auto speed = adapter->Number(L"Speed", -1);
        EXPECT_EQ(state == 0, Missing(*adapter)) << where;
        EXPECT_EQ(state == 3, speed > 0) << where;
        EXPECT_EQ(state == 2 || state == 3, adapter->Number(L"AdapterStatus") == 1) << where;
        if (speed > 0) {
            EXPECT_TRUE(Can(*adapter, speedCodes.at(speed / 1000000))) << where << " " << speed;
        }
        const auto addresses = Texts(*adapter, L"NetworkAddresses");
        ASSERT_EQ(1u, addresses.size()) << where;
        EXPECT_EQ(adapter->Text(L"PermanentAddress"), addresses[0]) << where;
        EXPECT_EQ(L"02-00-5E-", addresses[0].substr(0, 9)) << where << " is not locally administered";
        EXPECT_EQ(17u, addresses[0].size()) << where;
        EXPECT_EQ(adapter->Text(L"BusType") == L"PCI Express" && !Missing(*adapter),
                  !adapter->Text(L"NegotiatedLinkWidth").empty())
            << where;
        for (const wchar_t* name :
             {L"Name", L"Caption", L"OriginalDisplayName", L"SlotID", L"ControllerID", L"MediaType",
              L"PortNumber", L"PartNumber", L"EEPROMVersion", L"PCIDeviceID"}) {
            EXPECT_FALSE(adapter->Text(name).empty()) << where << " " << Narrow(name);
        }
        EXPECT_EQ(0u, adapter->Text(L"Name").rfind(adapter->Text(L"OriginalDisplayName"), 0)) << where;
    }
}

void ExpectSettingsAreWhole(const Inventory& machine) {
    const std::map<std::wstring, std::pair<std::wstring, const std::map<std::wstring, InstancePtr>*>> owners =
        {
            {L"NIC", {L"Zorel_AdapterSetting", &machine.adapters}},
            {L"TEAM", {L"Zorel_TeamSetting", &machine.teams}},
            {L"VLAN", {L"Zorel_VLANSetting", &machine.vlans}},
            {L"BOOTAGENT", {L"Zorel_BootAgentSetting", &machine.bootAgents}},
        };
    for (const auto& setting : machine.All(L"Zorel_Setting")) {
        const auto where = Narrow(RelativePath(*setting));
        const auto owner = owners.find(setting->Text(L"ParentType"));
        ASSERT_NE(owners.end(), owner) << where;
        EXPECT_TRUE(setting->definition->IsA(owner->second.first)) << where;
        EXPECT_EQ(1u, owner->second.second->count(setting->Text(L"ParentId"))) << where << " has no owner";
        EXPECT_FALSE(setting->Text(L"Description").empty()) << where;
        EXPECT_FALSE(setting->Text(L"MiniHelp").empty()) << where;
        ASSERT_NE(nullptr, setting->Find(L"GroupId")) << where;
        EXPECT_EQ(setting->Number(L"Grouped") == 0, setting->Find(L"GroupId")->IsNull()) << where;

        const auto current = setting->Number(L"CurrentValue", -1);
        const auto initial = setting->Number(L"DefaultValue", -1);
        const auto possible = Texts(*setting, L"PossibleValues");
        const auto isPossible = [&](std::int64_t number) {
            return std::ranges::find(possible, std::to_wstring(number)) != possible.end();
        };
        const auto& name = setting->definition->name;
        const auto isKind = [&](std::wstring_view kind) { return name.ends_with(kind); };
        if (isKind(L"SettingInt")) {
            const auto low = setting->Number(L"Min");
            const auto high = setting->Number(L"Max");
            EXPECT_LT(low, high) << where;
            for (const auto number : {current, initial}) {
                EXPECT_GE(number, low) << where;
                EXPECT_LE(number, high) << where;
                EXPECT_EQ(0, (number - low) % setting->Number(L"Step", 1)) << where;
            }
        } else if (isKind(L"Enum")) {
            EXPECT_TRUE(isPossible(current)) << where;
            EXPECT_TRUE(isPossible(initial)) << where;
        } else if (isKind(L"Slider")) {
            EXPECT_TRUE(isPossible(current)) << where;
            EXPECT_FALSE(setting->Text(L"FirstLabel").empty()) << where;
            EXPECT_FALSE(setting->Text(L"LastLabel").empty()) << where;
        } else if (isKind(L"MultiSelection")) {
            std::int64_t sum = 0;
            for (const auto& text : possible) {
                sum |= std::stoll(text);
            }
            EXPECT_EQ(current, current & sum) << where;
        } else if (isKind(L"MultiString")) {
            const auto texts = Texts(*setting, L"CurrentValues");
            EXPECT_FALSE(texts.empty()) << where;
            for (const auto& text : texts) {
                EXPECT_LE(static_cast<std::int64_t>(text.size()), setting->Number(L"MaxLength")) << where;
            }
        } else {
            ASSERT_TRUE(isKind(L"String")) << where;
            EXPECT_LE(static_cast<std::int64_t>(setting->Text(L"CurrentValue").size()),
                      setting->Number(L"MaxLength"))
                << where;
        }
        if (isKind(L"Enum") || isKind(L"MultiSelection")) {
            EXPECT_FALSE(possible.empty()) << where;
            EXPECT_EQ(possible.size(), Texts(*setting, L"DescriptionMap").size()) << where;
        }
    }
}

void ExpectTeamsAreWhole(const Inventory& machine) {
    const std::map<std::int64_t, std::int64_t> modeCodes = {{0, 4},  {1, 5},  {2, 9}, {3, 8},
                                                            {4, 10}, {5, 12}, {6, 68}};
    const auto logical = machine.ByText(L"Zorel_LogicalEthernetAdapter", L"DeviceID");
    const auto services = machine.ByText(L"Zorel_802dot1QVLANService", L"Name");
    EXPECT_EQ(machine.teams.size(), logical.size());
    EXPECT_EQ(machine.teams.size(), machine.All(L"Zorel_NetworkVirtualAdapter").size());
    std::set<std::wstring> teamed;
    for (const auto& [id, team] : machine.teams) {
        const auto where = Narrow(team->Text(L"Caption"));
        ASSERT_EQ(1u, logical.count(id)) << where;
        EXPECT_EQ(1u, services.count(id)) << where;
        const auto prefix = std::wstring(L"TEAM : ");
        EXPECT_EQ(0u, team->Text(L"Caption").rfind(prefix, 0)) << where;
        const auto members = machine.MembersOf(*team);
        EXPECT_EQ(2u, members.size()) << where;
        int primaries = 0;
        for (const auto& member : members) {
            const auto adapter = machine.Follow(*member, L"PartComponent");
            ASSERT_NE(nullptr, adapter) << where;
            EXPECT_TRUE(teamed.insert(adapter->Text(L"DeviceID")).second) << where << " shares a member";
            EXPECT_TRUE(Can(*adapter, modeCodes.at(team->Number(L"TeamingMode")))) << where;
            if (member->Number(L"AdapterFunction") == 1) {
                ++primaries;
                EXPECT_EQ(adapter->Text(L"PermanentAddress"), team->Text(L"TeamMacAddress")) << where;
            }
        }
        EXPECT_EQ(1, primaries) << where;
    }
    for (const auto& virtualAdapter : machine.All(L"Zorel_NetworkVirtualAdapter")) {
        const auto element = machine.Follow(*virtualAdapter, L"SystemElement");
        const auto team = machine.Follow(*virtualAdapter, L"SameElement");
        ASSERT_TRUE(element && team);
        EXPECT_EQ(team->Text(L"Name"), element->Text(L"DeviceID"));
    }
    std::set<std::pair<std::wstring, std::int64_t>> numbers;
    for (const auto& [id, vlan] : machine.vlans) {
        const auto parent = vlan->Text(L"ParentID");
        const auto number = vlan->Number(L"VLANNumber", -1);
        EXPECT_EQ(1u, services.count(parent)) << Narrow(vlan->Text(L"Caption"));
        EXPECT_TRUE(numbers.insert({parent, number}).second) << Narrow(vlan->Text(L"Caption"));
        EXPECT_TRUE(number >= 0 && number <= 4094) << number;
    }
    // A VLAN of a member would have to be one of its team.
    for (const auto& [id, vlan] : machine.vlans) {
        EXPECT_EQ(0u, teamed.count(vlan->Text(L"ParentID"))) << Narrow(vlan->Text(L"Caption"));
    }
    for (const auto& [id, service] : services) {
        EXPECT_TRUE(machine.adapters.count(id) == 1 || machine.teams.count(id) == 1) << Narrow(id);
    }
}

void ExpectBootAgentsAndTestsBelongToAdapters(const Inventory& machine) {
    for (const auto& [id, agent] : machine.bootAgents) {
        ASSERT_EQ(1u, machine.adapters.count(id)) << Narrow(id);
        EXPECT_TRUE(Can(*machine.adapters.at(id), 41)) << Narrow(id);
        EXPECT_FALSE(Numbers(*agent, L"FlashImage").empty()) << Narrow(id);
    }
    for (const auto& entry : machine.All(L"Zorel_BootAgent_iSCSI_Adapters")) {
        const auto id = entry->Text(L"Name");
        ASSERT_EQ(1u, machine.bootAgents.count(id)) << Narrow(id);
        EXPECT_TRUE(Can(*machine.adapters.at(id), 65)) << Narrow(id);
        EXPECT_EQ(machine.adapters.at(id)->Text(L"Name"), entry->Text(L"AdapterName"));
        EXPECT_EQ(machine.bootAgents.at(id)->Number(L"iSCSI_Status", -1), entry->Number(L"iSCSI_Status", -2));
    }
    std::map<std::wstring, int> owners;
    for (const auto& offer : machine.All(L"Zorel_DiagTestForAdapter")) {
        const auto test = machine.Follow(*offer, L"Antecedent");
        ASSERT_NE(nullptr, test);
        ++owners[test->Text(L"Name")];
    }
    const auto tests = machine.ByText(L"Zorel_DiagTest", L"Name");
    EXPECT_EQ(tests.size(), owners.size());
    for (const auto& [name, count] : owners) {
        EXPECT_EQ(1, count) << Narrow(name);
    }
    for (const auto& result : machine.All(L"Zorel_DiagResult")) {
        EXPECT_EQ(1u, tests.count(result->Text(L"DiagnosticName")))
            << Narrow(result->Text(L"DiagnosticName"));
        EXPECT_EQ(Numbers(*result, L"TestResultIds").size(), Numbers(*result, L"TestResultsAttr").size());
    }
    for (const auto& [cls, capability] :
         {std::pair{L"Zorel_PowerConfiguration", 50}, std::pair{L"Zorel_LinkSecConfiguration", 64},
          std::pair{L"Zorel_PACFile", 64}}) {
        for (const auto& state : machine.All(cls)) {
            ASSERT_EQ(1u, machine.adapters.count(state->Text(L"DeviceID"))) << Narrow(cls);
            EXPECT_TRUE(Can(*machine.adapters.at(state->Text(L"DeviceID")), capability)) << Narrow(cls);
        }
    }
}

void ExpectNoSecrets(const Inventory& machine) {
    for (const auto& instance : machine.store->AllInstances()) {
        for (const auto& property : instance->definition->properties) {
            if (property.qualifiers.Has(L"Secret")) {
                EXPECT_TRUE(instance->Find(property.name)->IsNull())
                    << Narrow(RelativePath(*instance)) << " " << Narrow(property.name);
            }
        }
    }
}

void ExpectSound(const Inventory& machine) {
    EXPECT_EQ(1u, machine.All(L"Zorel_NetService").size());
    ExpectReferencesResolve(machine);
    ExpectIdsAreUniqueGuids(machine);
    ExpectAdaptersAgreeWithThemselves(machine);
    ExpectSettingsAreWhole(machine);
    ExpectTeamsAreWhole(machine);
    ExpectBootAgentsAndTestsBelongToAdapters(machine);
    ExpectNoSecrets(machine);
}

} // namespace

TEST(BuiltInMachine, IsSound) {
    ExpectSound(BuiltIn());
}

TEST(BuiltInMachine, HasTheBoardsOfAServer) {
    std::map<std::wstring, std::vector<InstancePtr>> slots;
    for (const auto& adapter : BuiltIn().All(L"Zorel_PhysicalEthernetAdapter")) {
        slots[adapter->Text(L"SlotID")].push_back(adapter);
    }
    std::multiset<std::size_t> ports;
    for (const auto& [slot, adapters] : slots) {
        ports.insert(adapters.size());
        for (std::size_t index = 0; index < adapters.size(); ++index) {
            EXPECT_EQ(std::to_wstring(index + 1), adapters[index]->Text(L"PortNumber")) << Narrow(slot);
            EXPECT_EQ(adapters[0]->Text(L"PartNumber"), adapters[index]->Text(L"PartNumber")) << Narrow(slot);
        }
    }
    EXPECT_EQ((std::multiset<std::size_t>{1, 1, 1, 1, 2, 4}), ports);

    std::map<std::int64_t, int> speeds;
    int missing = 0;
    int nonAscii = 0;
    for (const auto& [id, adapter] : BuiltIn().adapters) {
        ++speeds[adapter->Number(L"Speed") / 1000000];
        missing += Missing(*adapter) ? 1 : 0;
        nonAscii +=
            std::ranges::any_of(adapter->Text(L"Name"), [](wchar_t letter) { return letter > 0x7F; }) ? 1 : 0;
    }
    // No link: the port without a cable and the missing board. The desktop and the built-in port run at 100.
    EXPECT_EQ((std::map<std::int64_t, int>{{0, 2}, {100, 2}, {1000, 4}, {10000, 2}}), speeds);
    EXPECT_EQ(1, missing);
    EXPECT_EQ(2, nonAscii);
}

TEST(BuiltInMachine, HasSettingsOfEveryKindForEveryOwner) {
    std::map<std::wstring, std::size_t> counts;
    for (const auto& setting : BuiltIn().All(L"Zorel_Setting")) {
        ++counts[setting->definition->name];
    }
    for (const wchar_t* owner : {L"Adapter", L"Team", L"VLAN", L"BootAgent"}) {
        for (const wchar_t* kind :
             {L"Int", L"Enum", L"Slider", L"String", L"MultiSelection", L"MultiString"}) {
            const auto name = L"Zorel_" + std::wstring(owner) + L"Setting" + kind;
            EXPECT_GT(counts[name], 0u) << Narrow(name);
        }
    }
    // The well-known keywords, on every gigabit port that is there.
    for (const auto& adapter : BuiltIn().All(L"Zorel_PhysicalEthernetAdapter")) {
        if (Missing(*adapter) || !Can(*adapter, 46)) {
            continue;
        }
        for (const wchar_t* keyword : {L"*SpeedDuplex", L"*FlowControl", L"*JumboPacket", L"*RSS",
                                       L"*TransmitBuffers", L"*ReceiveBuffers", L"*LsoV1IPv4", L"*LsoV2IPv4",
                                       L"*LsoV2IPv6", L"PerformanceProfile", L"NetworkAddress"}) {
            const auto settings = BuiltIn().All(L"Zorel_AdapterSetting");
            EXPECT_TRUE(std::ranges::any_of(settings,
                                            [&](const InstancePtr& setting) {
                                                return setting->Text(L"Caption") == keyword &&
                                                       setting->Text(L"ParentId") ==
                                                           adapter->Text(L"DeviceID");
                                            }))
                << Narrow(adapter->Text(L"Name")) << " " << Narrow(keyword);
        }
    }
}

TEST(BuiltInMachine, HasOneTeamOfTwoWithThreeVlans) {
    ASSERT_EQ(1u, BuiltIn().teams.size());
    const auto& team = *BuiltIn().teams.begin()->second;
    EXPECT_EQ(L"TEAM : Z\u00FCrich", team.Text(L"Caption"));
    std::set<std::int64_t> numbers;
    for (const auto& [id, vlan] : BuiltIn().vlans) {
        EXPECT_EQ(team.Text(L"Name"), vlan->Text(L"ParentID"));
        numbers.insert(vlan->Number(L"VLANNumber"));
    }
    EXPECT_EQ((std::set<std::int64_t>{0, 12, 340}), numbers);
}

TEST(BuiltInMachine, HasAPackageOfResultsThatDoesNotHoldItself) {
    std::vector<InstancePtr> packages;
    for (const auto& result : BuiltIn().All(L"Zorel_DiagResult")) {
        if (result->Number(L"IsPackage") != 0) {
            packages.push_back(result);
        }
    }
    ASSERT_EQ(1u, packages.size());
    const auto name = packages[0]->Text(L"PackageName");
    EXPECT_EQ(packages[0]->Text(L"DiagnosticName"), name);
    int members = 0;
    for (const auto& result : BuiltIn().All(L"Zorel_DiagResult")) {
        members += result->Text(L"PackageName") == name && result->Text(L"DiagnosticName") != name ? 1 : 0;
    }
    EXPECT_EQ(3, members);
}

TEST(BuiltInMachine, HasBootAgentsTestsAndOptions) {
    EXPECT_EQ(9u, BuiltIn().bootAgents.size());
    EXPECT_EQ(7u, BuiltIn().All(L"Zorel_BootAgent_iSCSI_Adapters").size());
    EXPECT_EQ(9u, BuiltIn().All(L"Zorel_PowerConfiguration").size());
    EXPECT_EQ(4u, BuiltIn().All(L"Zorel_LinkSecConfiguration").size());
    EXPECT_EQ(60u, BuiltIn().All(L"Zorel_DiagTest").size());
    EXPECT_EQ(6u, BuiltIn().All(L"Zorel_DiagResult").size());
}

TEST(MinimalMachine, HasOneAdapterAndTheService) {
    const Inventory machine(MachineFile("minimal.mof"));
    EXPECT_EQ(2u, machine.store->AllInstances().size());
    EXPECT_EQ(1u, machine.adapters.size());
    EXPECT_EQ(1u, machine.All(L"Zorel_NetService").size());
    ExpectIdsAreUniqueGuids(machine);
}

TEST(EmptyMachine, HasTheServiceAlone) {
    const Inventory machine(MachineFile("empty.mof"));
    ASSERT_EQ(1u, machine.store->AllInstances().size());
    const auto& service = *machine.store->AllInstances()[0];
    EXPECT_EQ(L"Zorel_NetService", service.definition->name);
    EXPECT_EQ(0, service.Number(L"Warnings", -1));
}

class GeneratedMachine : public testing::TestWithParam<int> {};

TEST_P(GeneratedMachine, IsSound) {
    const Inventory machine(GeneratedMachineFile(GetParam()));
    EXPECT_EQ(static_cast<std::size_t>(GetParam()), machine.adapters.size());
    EXPECT_EQ(static_cast<std::size_t>(GetParam() / 8), machine.teams.size());
    EXPECT_EQ(3 * machine.teams.size(), machine.vlans.size());
    EXPECT_EQ(static_cast<std::size_t>(4 * GetParam()), machine.All(L"Zorel_AdapterSetting").size());
    ExpectSound(machine);
}

INSTANTIATE_TEST_SUITE_P(OfAdapters, GeneratedMachine, testing::Values(1, 10, 1000),
                         [](const auto& information) { return std::to_string(information.param); });

} // namespace quillet::simulator::tests
