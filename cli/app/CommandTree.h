// The tree of the commands. One file per noun in commands/ adds them to it.
#pragma once

#include "app/Command.h"
#include "app/CommandDescription.h"
#include "app/Options.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quilletctl {

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
        /// A verb that changes nothing on the machine.
        Noun& Query(const std::string& name, const std::string& description, CommandFunction function);
        Noun& Query(const std::string& name, const std::string& description,
                    std::unique_ptr<Command> command);

      private:
        CommandTree& m_tree;
        CLI::App& m_app;
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
    /// Of everything, also of what no line has used.
    const TreeDescription& Description();

  private:
    CLI::App& AddNounApp(const std::string& name, const std::string& description, Group group);
    /// @param verb empty: the noun needs none
    void Attach(CLI::App& noun, const std::string& verb, const std::string& description,
                std::unique_ptr<Command> command);
    /// Has the commands of a noun tell the parser and the description what they take, once.
    void Declare(const std::string& noun);
    void DeclareAll();
    /// The line with each "--simulate" that has no file moved to its end, where it cannot take the name of a
    /// command for one; the option takes no "--" behind it either.
    std::vector<std::string> WithSimulateApart(const std::vector<std::string>& arguments) const;
    void CheckGlobalOptions();

    GlobalOptions m_options;
    std::optional<std::string> m_machine; ///< --machine
    std::optional<std::string> m_state;   ///< --state
    std::vector<std::string> m_faults;    ///< --fault
    std::vector<std::string> m_further;   ///< words beyond those that the command takes
    TreeDescription m_description;
    std::unique_ptr<CLI::App> m_app;
    struct Leaf {
        CLI::App* noun;
        std::string verb;
        std::unique_ptr<Command> command;
        bool isDeclared = false;
    };
    std::vector<Leaf> m_leaves;    ///< in the order of the descriptions of the commands
    std::set<std::string> m_names; ///< of all nouns and verbs
};

} // namespace quilletctl
