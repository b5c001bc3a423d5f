// The same change to several things, in one client set: every one is tried, whatever becomes of the others.
#pragma once

#include "app/Invocation.h"
#include "changes/Verification.h"
#include "texts/Field.h"

#include <quillet/client/Session.h>

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

namespace quilletctl {

/// One of the things, and what becomes of it.
struct Target {
    enum class Outcome { Changed, Unchanged, ReadOnly, Missing, Refused, NotTaken, Unknown, NotTried };

    std::string called{};       ///< what its line begins with
    std::vector<Field> named{}; ///< which it is, for programs; people read `called`
    std::string asked{};        ///< completes "could not …"
    std::string step{};         ///< completes "would …"
    std::string text{};         ///< what was done where it took, or why it is left alone
    std::string possible{}; ///< what a value could have been, where the provider says that it is out of range
    std::vector<std::string> warnings{};
    Outcome outcome = Outcome::Missing; ///< Changed: `change` is to be made
    std::function<void(quillet::Session&)> change{};
    /// Reads back into the verification, once the client set is closed.
    std::function<void(quillet::Session&, Verification&)> compare{};
    HRESULT code = S_OK;
    Verification taken{};
};

/// Makes the change of a command that is about one thing only, and answers as such a command does
/// (AnswerChange). Throws Refusal and NotTaken.
ExitStatus ChangeTarget(Invocation& run, const Target& target);

/// Makes the changes that are to be made, reads them back and answers for all. Without any to be made no
/// client set is opened. Throws Refusal or NotTaken of the first that failed.
/// @param needsAll whether a target that is read only keeps the others from being changed; that is a finding
/// @param answer what stands before "targets" in the answer for programs
/// @param settle is called after the changes, before they are read back
ExitStatus ChangeTargets(Invocation& run, std::vector<Target> targets, bool needsAll,
                         Json answer = Json::object(), const std::function<void()>& settle = {});

} // namespace quilletctl
