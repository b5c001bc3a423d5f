// A machine: what it is made from, what it is told about itself, and writing it back.
#include <quillet-simulator/Machine.h>

#include "machine/EmbeddedTexts.h"
#include "machine/MachineState.h"

#include <map>
#include <mutex>
#include <stdexcept>
#include <tuple>

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

/// A store with the provider's schema and, if one is named, a machine that ships with the simulator.
/// Compiling them takes far longer than copying the result, so each is compiled once in a process.
std::shared_ptr<const Repository> Prototype(const MachineOptions& options, const EmbeddedText* machine) {
    constexpr std::size_t kKept = 8;
    static std::mutex lock;
    static std::map<std::tuple<std::wstring, std::wstring, const EmbeddedText*>,
                    std::shared_ptr<const Repository>>
        compiled;
    const std::lock_guard guard(lock);
    const auto key = std::make_tuple(options.serverName, options.namespaceName, machine);
    if (const auto found = compiled.find(key); found != compiled.end()) {
        return found->second;
    }
    auto store = std::make_shared<Repository>(options.serverName, options.namespaceName);
    for (const auto& file : EmbeddedSchema()) {
        CompileMof(*store, file.text, file.fileName);
    }
    if (machine != nullptr) {
        CompileMof(*store, machine->text, machine->fileName);
    }
    if (compiled.size() >= kKept) {
        compiled.clear();
    }
    compiled.emplace(key, store);
    return store;
}

/// Builds the parts of a machine from one that is shipped, or from the schema alone and what `compile` adds.
/// The name in object paths belongs to the store from its beginning, so a text that names it is compiled
/// again into a store of that name.
template <class Compile>
auto Build(MachineOptions options, const EmbeddedText* shipped, Compile compile) {
    const bool named = !options.serverName.empty();
    if (!named) {
        options.serverName = ThisComputer();
    }
    auto state = std::make_unique<Machine::State>(*Prototype(options, shipped), options);
    compile(state->store);
    if (const auto description = Description(state->store); description != nullptr && !named) {
        const auto name = description->Text(L"ServerName");
        if (!name.empty() && name != options.serverName) {
            options.serverName = name;
            state = std::make_unique<Machine::State>(*Prototype(options, shipped), options);
            compile(state->store);
        }
    }
    state->Configure();
    return state;
}

/// A machine that is shipped.
auto BuildShipped(MachineOptions options, const EmbeddedText& machine) {
    return Build(std::move(options), &machine, [](Repository&) {});
}

} // namespace

Machine::State::State(const Repository& prototype, const MachineOptions& options)
    : store(prototype), strict(options.strict) {
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

std::shared_ptr<Machine> Machine::Empty(MachineOptions options) {
    return std::shared_ptr<Machine>(new Machine(BuildShipped(std::move(options), EmbeddedEmptyMachine())));
}

std::shared_ptr<Machine> Machine::BuiltIn(MachineOptions options) {
    return std::shared_ptr<Machine>(new Machine(BuildShipped(std::move(options), EmbeddedBuiltInMachine())));
}

std::shared_ptr<Machine> Machine::FromText(std::string_view mof, const std::string& fileName,
                                           MachineOptions options) {
    return std::shared_ptr<Machine>(new Machine(Build(std::move(options), nullptr, [&](Repository& store) {
        CompileMof(store, mof, fileName, CheckFault);
    })));
}

std::shared_ptr<Machine> Machine::FromFile(const std::filesystem::path& file, MachineOptions options) {
    return std::shared_ptr<Machine>(new Machine(Build(
        std::move(options), nullptr, [&](Repository& store) { CompileMofFile(store, file, CheckFault); })));
}

std::shared_ptr<Machine> Machine::Copy() const {
    MachineOptions options;
    options.strict = m_state->strict;
    auto state = std::make_unique<State>(m_state->store, options);
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
