// The framework of the commands. A command is a function, or a class where it has options of its own; one
// file per noun in commands/ adds them to the tree, and Commands.cpp lists those files.
#pragma once

#include "Failure.h"
#include "Invocation.h"
#include "Options.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quilletctl {

/// What a command declares its own options with. The variables must live as long as the command; they hold
/// the default until the command line is read.
class Syntax {
  public:
    explicit Syntax(CLI::App& app) noexcept : m_app(app) {}
    /// An option with a number, such as "--lines".
    void Number(const std::string& name, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                const std::string& description);
    /// The same with nothing as its default.
    void Number(const std::string& name, std::optional<LONG>& value, LONG least, LONG most,
                const std::string& description);
    /// An option with a text; `kind` is how the help calls that.
    void Text(const std::string& name, std::optional<std::string>& value, const std::string& kind,
              const std::string& description);
    /// An option with one of a few words, such as "--of".
    void Choice(const std::string& name, std::string& value, const std::vector<std::string>& words,
                const std::string& description);
    /// An option without a value.
    void Flag(const std::string& name, bool& value, const std::string& description);
    /// What the command is about, without an option's name; must be given. Several stand in the order of the
    /// calls. `name` is how the help calls it.
    void Argument(const std::string& name, std::string& value, const std::string& description);
    /// So many words without an option's name, where their number tells what they are.
    void Arguments(const std::string& name, std::vector<std::string>& words, std::size_t least,
                   std::size_t most, const std::string& description);

    /// An option with a text that may be given several times.
    void Texts(const std::string& name, std::vector<std::string>& values, const std::string& description);

  private:
    CLI::App& m_app;
};

class Command {
  public:
    virtual ~Command() = default;
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    virtual void Declare(Syntax&) {}
    /// Throws Refusal or UsageError where it cannot go on.
    virtual ExitStatus Run(Invocation& run) = 0;
};

/// A command without options of its own.
using CommandFunction = ExitStatus (*)(Invocation& run);

/// Asked for instead of a command: a text to print (the help, the version).
struct TextRequest {
    std::string text;
};

/// All nouns and verbs, and the command line that chooses among them.
class CommandTree {
  public:
    CommandTree();
    ~CommandTree();
    CommandTree(const CommandTree&) = delete;
    CommandTree& operator=(const CommandTree&) = delete;

    /// In which list of the help a noun stands.
    enum class Group { Management, Diagnostics };

    /// The verbs of one noun.
    class Noun {
      public:
        Noun(CommandTree& tree, CLI::App& app) noexcept : m_tree(tree), m_app(app) {}
        Noun& Verb(const std::string& name, const std::string& description, CommandFunction function);
        Noun& Verb(const std::string& name, const std::string& description, std::unique_ptr<Command> command);

      private:
        CommandTree& m_tree;
        CLI::App& m_app;
    };
    Noun AddNoun(const std::string& name, const std::string& description, Group group = Group::Management);
    /// A noun that needs no verb.
    void AddCommand(const std::string& name, const std::string& description, Group group,
                    CommandFunction function);
    void AddCommand(const std::string& name, const std::string& description, Group group,
                    std::unique_ptr<Command> command);

    /// Reads a command line (UTF-8, without the program's name) and yields the command it chooses. Throws
    /// UsageError, or TextRequest.
    Command& Parse(const std::vector<std::string>& arguments);
    const GlobalOptions& Options() const noexcept { return m_options; }

  private:
    CLI::App& Subcommand(CLI::App& parent, const std::string& name, const std::string& description);
    void Attach(CLI::App& app, std::unique_ptr<Command> command);
    /// The line with each "--simulate" that has no file moved to its end, where it cannot take the name of a
    /// command for one.
    std::vector<std::string> WithSimulateApart(const std::vector<std::string>& arguments) const;

    GlobalOptions m_options;
    std::unique_ptr<CLI::App> m_app;
    struct Leaf {
        CLI::App* app;
        std::unique_ptr<Command> command;
    };
    std::vector<Leaf> m_leaves;
    std::set<std::string> m_names; ///< of all nouns and verbs
};

} // namespace quilletctl
