// Machines behind CLSID_WbemLocator: apart from their host, which is of use without COM objects as well.
#include <quillet-wsman/Remote.h>

#include "client/RemoteHost.h"

#include <quillet-wmi/Registration.h>

#include <utility>

namespace quillet::wsman {

struct Remote::State {
    explicit State(RemoteOptions options)
        : host(std::make_shared<RemoteHost>(std::move(options))), registration(host) {}
    const std::shared_ptr<RemoteHost> host;
    wmi::ClassRegistration registration;
};

Remote::Remote(RemoteOptions options) : m_state(std::make_unique<State>(std::move(options))) {}

Remote::~Remote() = default;

HRESULT Remote::Result() const noexcept {
    return m_state->registration.Result();
}

void Remote::Cancel() noexcept {
    m_state->host->Cancel();
}

} // namespace quillet::wsman
