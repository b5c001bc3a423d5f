// A machine over WS-Management.
#include "remote/RemoteMachine.h"

#include "ending/Failure.h"
#include "remote/Credentials.h"
#include "remote/RemoteModule.h"
#include "texts/Text.h"

#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Registration.h>

#include <ostream>
#include <stdexcept>

namespace quilletctl {

namespace {

using quillet::wsman::Authentication;
using quillet::wsman::RemoteOptions;

/// What answers for a machine over the network; null: none does. There is one at a time.
const RemoteModule* g_module = nullptr;

/// The class of a name as this program knows it, for machines that do not tell theirs.
quillet::wmi::ClassPtr KnownClass(std::wstring_view name) {
    static const auto kMachine = quillet::simulator::Machine::Empty();
    return kMachine->Store().FindClass(name);
}

RemoteOptions OptionsFor(const GlobalOptions& options) {
    const RemoteAccess& access = options.remote;
    Credentials credentials = ReadCredentials(access, options.machine);
    RemoteOptions remote;
    remote.host = options.machine;
    remote.port = static_cast<int>(access.port.value_or(0));
    remote.authentication = credentials.user.empty()           ? Authentication::Negotiate
                            : access.authentication == "basic" ? Authentication::Basic
                                                               : Authentication::Ntlm;
    if (access.authentication && access.authentication != "negotiate" && credentials.user.empty()) {
        throw UsageError("--auth: " + *access.authentication + " needs --user or --credentials");
    }
    remote.user = std::move(credentials.user);
    remote.password = std::move(credentials.password);
    remote.authorities = access.authorities.value_or("");
    remote.isUnverified = access.isUnverified;
    remote.isPlain = access.isPlain;
    remote.schema = KnownClass;
    return remote;
}

} // namespace

bool HasRemoteAccess() noexcept {
    return true;
}

struct RemoteMachine::State {
    explicit State(std::shared_ptr<quillet::wmi::Host> host) : registration(std::move(host)) {}
    quillet::wmi::ClassRegistration registration;
};

RemoteMachine::RemoteMachine(const GlobalOptions& options, const Terminal& terminal) {
    const auto warn = [&](const char* what) {
        terminal.out.flush();
        terminal.err << "quilletctl: warning: " << what << '\n';
    };
    const RemoteModule& module = LoadRemoteModule();
    RemoteOptions remote = OptionsFor(options);
    if (remote.isPlain && !module.isThisComputer(remote.host)) {
        warn("--plain-http: everybody on the way can read and change what is sent");
    } else if (remote.isUnverified && !remote.isPlain) {
        warn("--insecure: the machine's certificate is not checked; somebody else may answer in its place");
    }
    try {
        m_state = std::make_unique<State>(module.makeHost(std::move(remote)));
    } catch (const std::invalid_argument& mistake) {
        throw UsageError(std::string("--machine: ") + mistake.what());
    }
    if (FAILED(m_state->registration.Result())) {
        throw Refusal("reach machines over WS-Management", m_state->registration.Result());
    }
    g_module = &module;
}

RemoteMachine::~RemoteMachine() {
    g_module = nullptr;
}

std::string RemoteReason(HRESULT code) {
    if (g_module == nullptr) {
        return {};
    }
    switch (static_cast<std::uint32_t>(code)) {
    case 0x80070005: // E_ACCESSDENIED
    case 0x800706BA: // RPC_S_SERVER_UNAVAILABLE
    case 0x80041003: // WBEM_E_ACCESS_DENIED
    case 0x80041015: // WBEM_E_TRANSPORT_FAILURE
    case 0x80041032: // WBEM_E_CALL_CANCELLED
    case 0x80041069: // WBEM_E_TIMED_OUT
        return g_module->lastFailure();
    default:
        return {};
    }
}

} // namespace quilletctl
