// A command: a function, or a class where it has options of its own.
#pragma once

#include "app/Invocation.h"
#include "app/Syntax.h"
#include "ending/Failure.h"

namespace quilletctl {

class Command {
  public:
    virtual ~Command() = default;
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    virtual void Declare(Syntax&) {}
    /// Throws Refusal or UsageError where it cannot go on.
    virtual ExitStatus Run(Invocation& run) = 0;

    /// Whether it changes nothing on the machine, as the command line stands. Such a command waits for no
    /// other, and whatever became of its simulated machine is forgotten.
    virtual bool OnlyReads() const noexcept { return m_isQuery; }
    void MarkAsQuery() noexcept { m_isQuery = true; }
    /// Whether errors are told as an engine reads them: a JSON object a line.
    virtual bool ServesEngine() const noexcept { return false; }

  private:
    bool m_isQuery = false;
};

/// A command without options of its own.
using CommandFunction = ExitStatus (*)(Invocation& run);

} // namespace quilletctl
