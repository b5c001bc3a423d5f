// The shapes of commands about one adapter.
#pragma once

#include "app/Command.h"
#include "app/List.h"
#include "names/AdapterLookup.h"

#include <string>
#include <utility>
#include <vector>

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

/// A command that lists what an adapter has.
class AdapterListCommand : public AdapterCommand {
  public:
    explicit AdapterListCommand(std::vector<Column> columns) : m_options(std::move(columns)) {}
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        m_options.Declare(syntax);
    }

  protected:
    List NewList() const { return List(m_options); }

  private:
    ListOptions m_options;
};

} // namespace quilletctl
