// The client layer's counterpart of every operation that the library's own tests run.
#pragma once

#include <quillet/client.h>

#include <functional>
#include <string>

namespace quillet::tests {

/// What the client layer makes of an operation of the library's.
struct ClientOperation {
    /// What an error must call it; empty: as the case is called.
    std::string operation;
    /// Does what the case of the same name does, through the layer.
    std::function<void(Session&)> run;
};

/// The counterpart of a case; null for what the layer does not have.
const ClientOperation* FindClientOperation(const std::string& name);

} // namespace quillet::tests
