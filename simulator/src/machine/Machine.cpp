// A machine: what it is made from, what it is told about itself, and writing it back.
#include <quillet-simulator/Machine.h>

#include "machine/MachineState.h"
#include "packed/PackedMachines.h"
#include "packed/PackedReader.h"

#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace quillet::simulator {

namespace {

std::wstring ThisComputer() {
    WCHAR name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    return GetComputerNameW(name, &size) ? std::wstring(name, size) : std::wstring(L"LOCALHOST");
}

/// The one instance in which a machine describes itself; null when its text has none.
InstancePtr Description(const Repository& store) {
    const auto found = store.Instances(L"QuilletSimulator_Machine");
    return found.empty() ? nullptr : found.front();
}

constexpr const wchar_t* kFaultClass = L"QuilletSimulator_Fault";

/// Throws std::invalid_argument for a name that the schema lets pass but that names nothing.
FaultRule ReadFault(const Instance& fault) {
    FaultRule rule;
    if (const auto operation = fault.Text(L"Operation"); operation.empty()) {
        rule.operation.reset();
    } else if (rule.operation = OperationByName(operation); !rule.operation) {
        throw std::invalid_argument("Operation names no call");
    }
    const auto effect = EffectByName(fault.Text(L"Effect"));
    if (!effect) {
        throw std::invalid_argument("Effect names no effect");
    }
    rule.effect = *effect;
    rule.target = fault.Text(L"Target");
    rule.method = fault.Text(L"MethodName");
    rule.nth = static_cast<unsigned>(fault.Number(L"Nth", 1));
    rule.repeat = fault.Number(L"Repeat") != 0;
    rule.code = static_cast<HRESULT>(
        static_cast<std::uint32_t>(fault.Number(L"Code", static_cast<std::uint32_t>(WBEM_E_FAILED))));
    rule.vt = static_cast<VARTYPE>(fault.Number(L"VariantType", VT_UNKNOWN));
    rule.verdict = static_cast<LONG>(fault.Number(L"ReturnValue", 1));
    rule.element = static_cast<LONG>(fault.Number(L"Element"));
    rule.size = static_cast<std::size_t>(fault.Number(L"Size", 1 << 20));
    rule.milliseconds = static_cast<unsigned>(fault.Number(L"Milliseconds"));
    return rule;
}

/// Rejects a fault that the schema lets pass but the simulator cannot use, as an InstanceCheck.
void CheckFault(const Instance& instance) {
    if (!SameName(instance.definition->name, kFaultClass)) {
        return;
    }
    try {
        Faults().Add(ReadFault(instance));
    } catch (const std::invalid_argument& refused) {
        throw std::invalid_argument("QuilletSimulator_Fault.Id=" + std::to_string(instance.Number(L"Id")) +
                                    ": " + refused.what());
    }
}

/// What a machine begins with.
enum class Shipped { SchemaAlone, Empty, BuiltIn };

Repository Read(const std::wstring& namespaceName, Shipped shipped) {
    Repository store(std::wstring(), namespaceName);
    ReadPacked(store, PackedSchema());
    if (shipped != Shipped::SchemaAlone) {
        ReadPacked(store, shipped == Shipped::Empty ? PackedEmptyMachine() : PackedBuiltInMachine());
    }
    return store;
}

/// A store with what is shipped. Reading that takes far longer than copying it, so whoever makes a second
/// machine keeps a store to copy from. Most programs make one: they neither keep nor copy any.
Repository MakeStore(const std::wstring& namespaceName, Shipped shipped) {
    constexpr std::size_t kKept = 8;
    static std::mutex lock;
    // Null for what was made once.
    static std::map<std::pair<std::wstring, Shipped>, std::shared_ptr<const Repository>> prototypes;
    const std::pair key(namespaceName, shipped);
    std::shared_ptr<const Repository> prototype;
    bool isFirst = false;
    {
        const std::lock_guard guard(lock);
        if (prototypes.size() >= kKept && !prototypes.contains(key)) {
            prototypes.clear();
        }
        const auto [known, isNew] = prototypes.try_emplace(key);
        prototype = known->second;
        isFirst = isNew;
    }
    if (isFirst) {
        return Read(namespaceName, shipped);
    }
    if (!prototype) {
        prototype = std::make_shared<const Repository>(Read(namespaceName, shipped));
        const std::lock_guard guard(lock);
        prototypes[key] = prototype;
    }
    return *prototype;
}

/// Builds the parts of a machine from one that is shipped, or from the schema alone and what `compile` adds.
template <class Compile>
auto Build(const MachineOptions& options, Shipped shipped, Compile compile) {
    auto state = std::make_unique<Machine::State>(MakeStore(options.namespaceName, shipped), options.strict);
    compile(state->store);
    std::wstring name = options.serverName;
    if (const auto description = Description(state->store); description != nullptr && name.empty()) {
        name = description->Text(L"ServerName");
    }
    state->store.Rename(name.empty() ? ThisComputer() : std::move(name));
    state->Configure();
    return state;
}

/// A machine that is shipped.
auto BuildShipped(const MachineOptions& options, Shipped shipped) {
    return Build(options, shipped, [](Repository&) {});
}

} // namespace

Machine::State::State(Repository content, bool isStrict) : store(std::move(content)), strict(isStrict) {
    providers[L"Zorel_NetService"] = MakeNetServiceProvider();
    providers[L"Zorel_PhysicalEthernetAdapter"] = MakePhysicalAdapterProvider();
    providers[L"Zorel_802dot1QVLANService"] = MakeVlanServiceProvider();
    providers[L"Zorel_VLAN"] = MakeVlanProvider();
    providers[L"Zorel_Setting"] = MakeSettingProvider();
    providers[L"Zorel_TeamOfAdapters"] = MakeTeamProvider();
    providers[L"Zorel_TeamedMemberAdapter"] = MakeTeamMembershipProvider();
    providers[L"Zorel_NetworkBoot"] = MakeNetworkBootProvider();
    providers[L"Zorel_DiagTest"] = MakeDiagTestProvider();
}

void Machine::State::Configure() {
    if (const auto description = Description(store)) {
        strict = strict || description->Number(L"Strict") != 0;
        clock.FollowRealTime(description->Number(L"FollowRealTime") != 0);
    }
    for (const auto& followUp : store.Instances(L"QuilletSimulator_FollowUp")) {
        followUps[followUp->Text(L"ClassName")] = static_cast<LONG>(followUp->Number(L"Action"));
    }
    for (const auto& fault : store.Instances(kFaultClass)) {
        faults.Add(ReadFault(*fault));
    }
}

void Machine::State::CatchUp() {
    if (diagnostics.Busy()) {
        diagnostics.CatchUp(store, clock.Now());
    }
}

ClassProvider& Machine::State::ProviderOf(const ClassDefinition& definition) {
    auto found = providers.find(definition.name);
    for (auto above = definition.ancestors.begin();
         found == providers.end() && above != definition.ancestors.end(); ++above) {
        found = providers.find(*above);
    }
    return found != providers.end() ? *found->second : plain;
}

Machine::Machine(std::unique_ptr<State> state) : m_state(std::move(state)) {}

Machine::~Machine() = default;

std::shared_ptr<Machine> Machine::Empty(const MachineOptions& options) {
    return std::shared_ptr<Machine>(new Machine(BuildShipped(options, Shipped::Empty)));
}

std::shared_ptr<Machine> Machine::BuiltIn(const MachineOptions& options) {
    return std::shared_ptr<Machine>(new Machine(BuildShipped(options, Shipped::BuiltIn)));
}

std::shared_ptr<Machine> Machine::FromText(std::string_view mof, const std::string& fileName,
                                           const MachineOptions& options) {
    return std::shared_ptr<Machine>(new Machine(Build(options, Shipped::SchemaAlone, [&](Repository& store) {
        CompileMof(store, mof, fileName, CheckFault);
    })));
}

std::shared_ptr<Machine> Machine::FromFile(const std::filesystem::path& file, const MachineOptions& options) {
    return std::shared_ptr<Machine>(new Machine(Build(
        options, Shipped::SchemaAlone, [&](Repository& store) { CompileMofFile(store, file, CheckFault); })));
}

std::shared_ptr<Machine> Machine::Copy() const {
    auto state = std::make_unique<State>(m_state->store, m_state->strict);
    state->Configure();
    return std::shared_ptr<Machine>(new Machine(std::move(state)));
}

Repository& Machine::Store() noexcept {
    return m_state->store;
}

Journal& Machine::Calls() noexcept {
    return m_state->journal;
}

Faults& Machine::Rules() noexcept {
    return m_state->faults;
}

std::chrono::milliseconds Machine::Now() const {
    return m_state->clock.Now();
}

void Machine::Advance(std::chrono::milliseconds time) {
    m_state->clock.Advance(time);
    m_state->CatchUp();
}

void Machine::FollowRealTime(bool follow) {
    m_state->clock.FollowRealTime(follow);
}

std::chrono::milliseconds Machine::BlinksFor(std::wstring_view deviceId) const {
    return m_state->blinking.Left(deviceId, m_state->clock.Now());
}

LONG Machine::OpenClientSet() const {
    return m_state->sets.Last();
}

void Machine::RequireFollowup(LONG action) {
    m_state->sets.Require(0, action);
}

std::string Machine::Save() const {
    m_state->CatchUp();
    return WriteInstancesAsMof(m_state->store.AllInstances());
}

long Machine::LiveObjects() noexcept {
    return LiveObjectCount();
}

} // namespace quillet::simulator
