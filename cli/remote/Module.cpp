// The module itself. It has no state that the program has as well: it makes no COM objects.
#include "remote/RemoteModule.h"

extern "C" __attribute__((visibility("default"))) const quilletctl::RemoteModule*
QuilletctlRemoteModule() noexcept {
    static constexpr quilletctl::RemoteModule kModule{QUILLETCTL_VERSION, quillet::wsman::MakeRemoteHost,
                                                      quillet::wsman::IsThisComputer,
                                                      quillet::wsman::LastFailure};
    return &kModule;
}
