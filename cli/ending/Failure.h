// How a command ends: its exit status, and what it throws where it cannot go on.
#pragma once

#include <windows.h>

#include <quillet/client/Error.h>

#include <stdexcept>
#include <string>

namespace quilletctl {

using quillet::DescribeResult;
using quillet::ExplainResult;

enum class ExitStatus : int {
    Done = 0,
    Refused = 1,      ///< the provider refused, or could not be reached, or a change did not take
    BadUsage = 2,     ///< the command line, or a file that it names, cannot be used
    Findings = 3,     ///< a check ran and found problems
    Interrupted = 130 ///< as shells have it
};

/// The provider (or COM on the way to it) refused: what was asked for, and the code.
class Refusal : public std::runtime_error {
  public:
    /// @param reason what the code means here; empty: what it means everywhere
    Refusal(const std::string& asked, HRESULT code, const std::string& reason = {});
    HRESULT Code() const noexcept { return m_code; }

  private:
    HRESULT m_code;
};

/// Why a machine over the network did not do it, as far as that is known; empty: it is none.
std::string RemoteReason(HRESULT code);

/// Does something with the session, and throws Refusal where that fails; `asked` completes "could not …".
template <class Operation>
auto Attempt(const std::string& asked, Operation operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const quillet::Error& failure) {
        throw Refusal(asked, failure.Code(), RemoteReason(failure.Code()));
    }
}

/// The call succeeded, and what was asked for was not done all the same.
class NotTaken : public std::runtime_error {
  public:
    NotTaken(const std::string& asked, const std::string& why);
};

/// The command line, or a file that it names, cannot be used.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Somebody asked the program to end before anything was changed.
class Interruption : public std::runtime_error {
  public:
    Interruption() : std::runtime_error("interrupted; nothing was changed") {}
};

/// A dry run has told what the command would change, and nothing more is to be done.
struct DryRunEnd {};

} // namespace quilletctl
