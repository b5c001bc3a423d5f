// Where WS-Management is not built: Windows has its own, and reaches other machines by WMI.
#include "remote/RemoteMachine.h"

#include "ending/Failure.h"

namespace quilletctl {

bool HasRemoteAccess() noexcept {
    return false;
}

struct RemoteMachine::State {};

RemoteMachine::RemoteMachine(const GlobalOptions&, const Terminal&) {
    throw UsageError("--machine: this program was built without WS-Management");
}

RemoteMachine::~RemoteMachine() = default;

std::string RemoteReason(HRESULT) {
    return {};
}

} // namespace quilletctl
