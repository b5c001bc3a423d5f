// The module for machines over the network. The program loads it when it needs it, and not before: what the
// module is linked with would take most of the program's start.
#pragma once

#include <quillet-wsman/Remote.h>

#include <memory>
#include <string>
#include <string_view>

namespace quilletctl {

/// What the module gives the program. Both are of one build, so these may be types of C++.
struct RemoteModule {
    const char* version; ///< of the program that it is for; stays the first whatever becomes of the others
    std::shared_ptr<quillet::wmi::Host> (*makeHost)(quillet::wsman::RemoteOptions options);
    bool (*isThisComputer)(std::string_view host);
    std::string (*lastFailure)();
};

/// The module, which stays where it is until the program ends. Throws Refusal.
const RemoteModule& LoadRemoteModule();

} // namespace quilletctl

/// All that the module exports.
extern "C" const quilletctl::RemoteModule* QuilletctlRemoteModule() noexcept;
