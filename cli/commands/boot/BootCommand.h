// The shapes of commands about the boot agent of one adapter.
#pragma once

#include "commands/AdapterCommand.h"
#include "ending/Failure.h"

#include <quillet/client/Session.h>

#include <string>
#include <vector>

namespace quilletctl {

/// A command about the boot agent of one adapter.
class BootCommand : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) final {
        return RunForAgent(
            adapter, ReadRecord(run.Session(), &quillet::Session::ReadBootAgent, adapter, "the boot agent"),
            run);
    }

    virtual ExitStatus RunForAgent(const ListedAdapter& adapter, const quillet::BootAgent& agent,
                                   Invocation& run) = 0;
};

/// A command about an image file and the images of it that are wanted.
class ChosenImagesCommand : public BootCommand {
  public:
    void Declare(Syntax& syntax) override {
        BootCommand::Declare(syntax);
        syntax.Argument("file", m_file, "The image file");
        syntax.Texts("--type", m_types, "TYPE", "An image of the file, by its type (default: all of them)");
    }

  protected:
    const std::string& File() const noexcept { return m_file; }
    const std::vector<std::string>& Types() const noexcept { return m_types; }

  private:
    std::string m_file;
    std::vector<std::string> m_types;
};

} // namespace quilletctl
