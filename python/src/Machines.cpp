// Where sessions come from: simulated machines, and machines over the network.
#include "Connection.h"

#include <quillet-simulator/Machine.h>

#ifdef QUILLET_PYTHON_REMOTE
#include <quillet-wsman/Remote.h>
#endif

#include <filesystem>
#include <stdexcept>

namespace quillet::python {

namespace {

namespace py = pybind11;
using simulator::FaultRule;
using simulator::Machine;

std::shared_ptr<Machine> Simulate(const std::optional<std::string>& file,
                                  const std::optional<std::string>& text, bool isStrict) {
    const simulator::MachineOptions options{.serverName = {}, .strict = isStrict};
    if (text) {
        return Machine::FromText(*text, "machine.mof", options);
    }
    return file ? Machine::FromFile(*file, options) : Machine::BuiltIn(options);
}

std::unique_ptr<Connection> ConnectSimulated(const std::shared_ptr<Machine>& machine) {
    return std::make_unique<Connection>(simulator::HostOf(machine), std::wstring(), false);
}

void AddFault(Machine& machine, const std::wstring& operation, const std::wstring& target,
              const std::wstring& method, unsigned nth, bool repeat, const std::wstring& effect,
              std::uint32_t code, std::int32_t verdict, unsigned milliseconds) {
    FaultRule rule;
    rule.operation = wmi::OperationByName(operation);
    if (!rule.operation && operation != L"*") {
        throw std::invalid_argument("\"" + ToUtf8(operation) + "\" is no call");
    }
    const std::optional<simulator::Effect> known = simulator::EffectByName(effect);
    if (!known) {
        throw std::invalid_argument("\"" + ToUtf8(effect) + "\" is no effect");
    }
    rule.target = target;
    rule.method = method;
    rule.nth = nth;
    rule.repeat = repeat;
    rule.effect = *known;
    rule.code = static_cast<HRESULT>(code);
    rule.verdict = verdict;
    rule.milliseconds = milliseconds;
    machine.Rules().Add(std::move(rule));
}

std::vector<std::wstring> Calls(Machine& machine) {
    std::vector<std::wstring> lines;
    for (const simulator::JournalEntry& entry : machine.Calls().ProviderCalls()) {
        lines.push_back(entry.Line());
    }
    return lines;
}

void SetHardwareStatus(Machine& machine, const std::wstring& deviceId, HardwareStatus status) {
    const HRESULT result = machine.SetHardwareStatus(deviceId, static_cast<LONG>(status));
    if (FAILED(result)) {
        throw Error(result, "SetHardwareStatus", deviceId);
    }
}

void DefineSimulator(py::module_& module) {
    py::class_<Machine, std::shared_ptr<Machine>> type(module, "Simulator");
    type.def(py::init(Checked(&Simulate)));
    type.def("connect", [](const std::shared_ptr<Machine>& machine) {
        return WithoutPython([&] { return ConnectSimulated(machine); });
    });
    DefineAs(type, "fail", &AddFault);
    DefineAs(
        type, "clear_faults", +[](Machine& machine) { machine.Rules().Clear(); });
    DefineAs(
        type, "fault_hits", +[](Machine& machine) { return machine.Rules().Hits(); });
    DefineAs(type, "calls", &Calls);
    DefineAs(
        type, "clear_calls", +[](Machine& machine) { machine.Calls().Clear(); });
    DefineAs(
        type, "advance",
        +[](Machine& machine, std::uint32_t time) { machine.Advance(std::chrono::milliseconds(time)); });
    DefineAs(
        type, "follow_real_time", +[](Machine& machine, bool follow) { machine.FollowRealTime(follow); });
    DefineAs(type, "set_hardware_status", &SetHardwareStatus);
    DefineAs(
        type, "save", +[](Machine& machine) { return machine.Save(); });
}

#ifdef QUILLET_PYTHON_REMOTE
/// The class of a name as this module knows it, for machines that do not tell theirs.
wmi::ClassPtr KnownClass(std::wstring_view name) {
    static const auto kMachine = Machine::Empty();
    return kMachine->Store().FindClass(name);
}

wsman::Authentication AuthenticationOf(const std::string& scheme) {
    return scheme == "basic"  ? wsman::Authentication::Basic
           : scheme == "ntlm" ? wsman::Authentication::Ntlm
                              : wsman::Authentication::Negotiate;
}

/// What the network takes is UTF-8. The copy in between is overwritten.
wsman::Password PasswordOf(const Secret& secret) {
    constexpr std::size_t kLongestCharacter = 4;
    std::string text;
    text.reserve(secret.Reveal().size() * kLongestCharacter); // growing would leave a copy behind
    for (const wchar_t& character : secret.Reveal()) {
        text += ToUtf8({&character, 1});
    }
    wsman::Password password(text);
    SecureZeroMemory(text.data(), text.size());
    return password;
}

std::unique_ptr<Connection> ConnectRemote(const std::string& host, int port, const std::string& scheme,
                                          const std::string& user, const Secret& password,
                                          const std::string& authorities, bool isUnverified, bool isPlain) {
    wsman::RemoteOptions options{.host = host,
                                 .port = port,
                                 .authentication = AuthenticationOf(scheme),
                                 .user = user,
                                 .password = PasswordOf(password),
                                 .authorities = authorities,
                                 .isUnverified = isUnverified,
                                 .isPlain = isPlain};
    options.schema = KnownClass;
    options.isInterrupted = IsInterrupted;
    return std::make_unique<Connection>(wsman::MakeRemoteHost(std::move(options)), FromUtf8(host), true);
}
#endif

} // namespace

void DefineMachines(py::module_& module) {
    DefineSimulator(module);
#ifdef QUILLET_PYTHON_REMOTE
    module.def("connect_remote", Checked(&ConnectRemote));
    module.def("is_this_computer", [](const std::string& host) { return wsman::IsThisComputer(host); });
#endif
}

} // namespace quillet::python
