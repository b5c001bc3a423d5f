// The shape of a command about one adapter.
#pragma once

#include "app/Command.h"
#include "names/AdapterLookup.h"

#include <string>

namespace quilletctl {

/// A command whose first word names an adapter. A command with more words or options overrides Declare() and
/// calls this one first.
class AdapterCommand : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("adapter", m_adapter, "The adapter: its name, object ID or object path");
    }
    ExitStatus Run(Invocation& run) final { return RunFor(FindAdapter(run.Session(), m_adapter), run); }

  private:
    virtual ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) = 0;

    std::string m_adapter;
};

} // namespace quilletctl
