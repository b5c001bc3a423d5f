// The framework of the commands. A command is a function, or a class where it has options of its own; one
// file per noun in commands/ adds them to the tree, and Commands.cpp lists those files.
#pragma once

#include "app/CommandDescription.h"
#include "app/Invocation.h"
#include "app/Options.h"
#include "ending/Failure.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace quilletctl {

/// What a command declares its own options with. The variables must live as long as the command; they hold
/// the default until the command line is read.
class Syntax {
  public:
    Syntax(CLI::App& app, CommandDescription& command) noexcept : m_app(app), m_command(command) {}
    /// An option with a number, such as "--lines".
    void Number(const std::string& name, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                const std::string& description);
    /// The same with nothing as its default.
    void Number(const std::string& name, std::optional<LONG>& value, LONG least, LONG most,
                const std::string& description);
    /// An option with a text; `kind` is how the help calls that. Of the texts that it may be, some may be
    /// proposed.
    void Text(const std::string& name, std::optional<std::string>& value, const std::string& kind,
              const std::string& description, const std::vector<std::string>& proposals = {});
    /// The same, but it may also stand without the text.
    void OptionalText(const std::string& name, bool& isGiven, std::string& value, const std::string& kind,
                      const std::string& description);
    /// An option with one of a few words, such as "--of".
    void Choice(const std::string& name, std::string& value, const std::vector<std::string>& words,
                const std::string& description);
    /// An option without a value.
    void Flag(const std::string& name, bool& value, const std::string& description);
    /// What the command is about, without an option's name; must be given. Several stand in the order of the
    /// calls. Where `words` are named it is one of them.
    void Argument(const std::string& name, std::string& value, const std::string& description,
                  const std::vector<std::string>& words = {});
    /// So many words without an option's name, where their number tells what they are.
    void Arguments(const std::string& name, std::vector<std::string>& words, std::size_t least,
                   std::size_t most, const std::string& description);
    /// An option with a text that may be given several times.
    void Texts(const std::string& name, std::vector<std::string>& values, const std::string& kind,
               const std::string& description);
    /// The command reads secrets, so messages about its command line repeat nothing of it.
    void TakesSecrets() noexcept { m_command.takesSecrets = true; }

  private:
    OptionDescription& Describe(const std::string& name, const std::string& description);

    CLI::App& m_app;
    CommandDescription& m_command;
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

    /// Whether it changes nothing on the machine, as the command line stands. Such a command waits for no
    /// other, and whatever became of its simulated machine is forgotten.
    virtual bool OnlyReads() const noexcept { return m_isQuery; }
    void MarkAsQuery() noexcept { m_isQuery = true; }

  private:
    bool m_isQuery = false;
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
        Noun(CommandTree& tree, CLI::App& app, std::string name)
            : m_tree(tree), m_app(app), m_name(std::move(name)) {}
        Noun& Verb(const std::string& name, const std::string& description, CommandFunction function);
        Noun& Verb(const std::string& name, const std::string& description, std::unique_ptr<Command> command);
        /// A verb that changes nothing on the machine.
        Noun& Query(const std::string& name, const std::string& description, CommandFunction function);
        Noun& Query(const std::string& name, const std::string& description,
                    std::unique_ptr<Command> command);

      private:
        CommandTree& m_tree;
        CLI::App& m_app;
        std::string m_name;
    };
    Noun AddNoun(const std::string& name, const std::string& description, Group group = Group::Management);
    /// A noun that needs no verb. It changes nothing on the machine.
    void AddCommand(const std::string& name, const std::string& description, Group group,
                    CommandFunction function);
    void AddCommand(const std::string& name, const std::string& description, Group group,
                    std::unique_ptr<Command> command);

    /// Reads a command line (UTF-8, without the program's name) and yields the command it chooses. Throws
    /// UsageError, or TextRequest.
    Command& Parse(const std::vector<std::string>& arguments);
    const GlobalOptions& Options() const noexcept { return m_options; }
    const TreeDescription& Description() const noexcept { return m_description; }

  private:
    CLI::App& Subcommand(CLI::App& parent, const std::string& name);
    CLI::App& AddNounApp(const std::string& name, const std::string& description, Group group);
    void Attach(CLI::App& app, const std::string& name, const std::string& description,
                std::unique_ptr<Command> command);
    /// The line with each "--simulate" that has no file moved to its end, where it cannot take the name of a
    /// command for one.
    std::vector<std::string> WithSimulateApart(const std::vector<std::string>& arguments) const;
    /// Noun and verb that the line has chosen so far.
    std::vector<std::string> ChosenWords() const;
    const CommandDescription* ChosenCommand() const;
    const OptionDescription* FindOption(const std::string& name) const;
    /// What is wrong with a line that the parser refused, in words. The first is for lines with words too
    /// many, the second for all others.
    std::string SuperfluousText() const;
    std::string MistakeText(const std::vector<std::string>& line, const std::string& parserText) const;
    void CheckGlobalOptions();

    GlobalOptions m_options;
    std::optional<std::string> m_machine; ///< --machine
    std::optional<std::string> m_state;   ///< --state
    TreeDescription m_description;
    std::unique_ptr<CLI::App> m_app;
    struct Leaf {
        CLI::App* app;
        std::unique_ptr<Command> command;
    };
    std::vector<Leaf> m_leaves;    ///< in the order of the descriptions of the commands
    std::set<std::string> m_names; ///< of all nouns and verbs
};

} // namespace quilletctl
