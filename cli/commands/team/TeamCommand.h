// The shape of a command about one team.
#pragma once

#include "app/Command.h"
#include "names/TeamLookup.h"

#include <string>

namespace quilletctl {

/// A command about one team.
class TeamCommand : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("team", m_name, "The team: its name, object ID or object path");
    }
    ExitStatus Run(Invocation& run) final { return RunFor(FindTeam(run.Session(), m_name), run); }

  private:
    virtual ExitStatus RunFor(const quillet::Team& team, Invocation& run) = 0;

    std::string m_name;
};

} // namespace quilletctl
