// The command line: global options, nouns and verbs.
#include "app/CommandTree.h"

#include "app/FaultRules.h"
#include "app/ParsedLine.h"
#include "app/SimulatedMachine.h"
#include "names/HostName.h"
#include "remote/RemoteMachine.h"
#include "terminal/Console.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

namespace quilletctl {

namespace {

class FunctionCommand final : public Command {
  public:
    explicit FunctionCommand(CommandFunction function) noexcept : m_function(function) {}
    ExitStatus Run(Invocation& run) override { return m_function(run); }

  private:
    CommandFunction m_function;
};

const char* GroupName(CommandTree::Group group) {
    return group == CommandTree::Group::Management ? "Nouns" : "Diagnostics and help";
}

} // namespace

CommandTree::CommandTree() : m_app(std::make_unique<CLI::App>("", "quilletctl")) {
    // Nouns and verbs inherit these three. One syntax on every host; "/S" is a file name here.
    m_app->allow_windows_style_options(false);
    // A global option may stand anywhere on the line.
    m_app->fallthrough();
    m_app->set_help_flag("-h,--help");
    // One noun; a word after it that is another noun's name is a name like any other.
    m_app->require_subcommand(0, 1);
    CommandDescription everywhere;
    Syntax syntax(*m_app, everywhere);
    syntax.Text("--machine", m_machine, "HOST",
                "The machine to manage, by name or address (default: this one)");
    m_options.remote.Declare(syntax);
    syntax.OptionalText("--simulate", m_options.simulate, m_options.machineFile, "FILE",
                        "Talk to a simulated machine: that of a MOF file, or the built-in one");
    syntax.Text("--state", m_state, "FILE",
                "Keep the simulated machine in a file from one command to the next");
    syntax.Texts("--fault", m_faults, "RULE", std::string("Let the simulated machine fail: ") + kFaultForm);
    syntax.Flag("--json", m_options.json, "Answer as JSON");
    syntax.Flag("--journal", m_options.journal, "Print the calls that the simulated provider received");
    syntax.Flag("--dry-run", m_options.dryRun,
                "Make all checks and tell what would be changed; change nothing");
    syntax.Flag("--yes", m_options.yes, "Answer yes to every question");
    syntax.Flag("--no-color", m_options.noColour, "Print without colours (as with NO_COLOR set)");
    m_description.options = std::move(everywhere.options);
    for (const char* name : {"--help", "--version"}) {
        OptionDescription option;
        option.name = name;
        option.description =
            option.name == "--help" ? "Print what the command takes (also -h)" : "Print the version";
        m_description.options.push_back(std::move(option));
    }
    m_app->set_version_flag("--version", "quilletctl " QUILLETCTL_VERSION);
}

CommandTree::~CommandTree() = default;

CLI::App& CommandTree::AddNounApp(const std::string& name, const std::string& description, Group group) {
    m_names.insert(name);
    CLI::App& app = *m_app->add_subcommand(name);
    app.require_subcommand(0, 1);
    m_description.nouns.push_back({name, description, GroupName(group)});
    return app;
}

void CommandTree::Attach(CLI::App& noun, const std::string& verb, const std::string& description,
                         std::unique_ptr<Command> command) {
    CommandDescription described;
    described.name = noun.get_name();
    if (!verb.empty()) {
        m_names.insert(verb);
        described.name += ' ' + verb;
    }
    described.description = description;
    m_description.commands.push_back(std::move(described));
    m_leaves.push_back({&noun, verb, std::move(command)});
}

void CommandTree::Declare(const std::string& noun) {
    for (std::size_t i = 0; i < m_leaves.size(); ++i) {
        Leaf& leaf = m_leaves[i];
        if (leaf.isDeclared || leaf.noun->get_name() != noun) {
            continue;
        }
        leaf.isDeclared = true;
        CLI::App& app = leaf.verb.empty() ? *leaf.noun : *leaf.noun->add_subcommand(leaf.verb);
        Syntax syntax(app, m_description.commands[i]);
        leaf.command->Declare(syntax);
        // Once it has all the words that it needs, the parser hands "--" to the noun, and takes what follows
        // for options. A word that is never needed keeps it here.
        app.add_option("further words", m_further);
    }
}

void CommandTree::DeclareAll() {
    for (const NounDescription& noun : m_description.nouns) {
        Declare(noun.name);
    }
}

const TreeDescription& CommandTree::Description() {
    DeclareAll();
    return m_description;
}

CommandTree::Noun CommandTree::AddNoun(const std::string& name, const std::string& description, Group group) {
    return {*this, AddNounApp(name, description, group)};
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             CommandFunction function) {
    AddCommand(name, description, group, std::make_unique<FunctionCommand>(function));
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             std::unique_ptr<Command> command) {
    command->MarkAsQuery();
    Attach(AddNounApp(name, description, group), "", description, std::move(command));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           CommandFunction function) {
    return Verb(name, description, std::make_unique<FunctionCommand>(function));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           std::unique_ptr<Command> command) {
    m_tree.Attach(m_app, name, description, std::move(command));
    return *this;
}

CommandTree::Noun& CommandTree::Noun::Query(const std::string& name, const std::string& description,
                                            CommandFunction function) {
    return Query(name, description, std::make_unique<FunctionCommand>(function));
}

CommandTree::Noun& CommandTree::Noun::Query(const std::string& name, const std::string& description,
                                            std::unique_ptr<Command> command) {
    command->MarkAsQuery();
    return Verb(name, description, std::move(command));
}

std::vector<std::string> CommandTree::WithSimulateApart(const std::vector<std::string>& arguments) const {
    std::vector<std::string> line;
    bool isMoved = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--simulate" && i + 1 < arguments.size() && m_names.count(arguments[i + 1]) > 0) {
            isMoved = true;
        } else {
            line.push_back(arguments[i]);
        }
    }
    if (isMoved) {
        line.insert(std::find(line.begin(), line.end(), "--"), "--simulate");
    }
    const auto end = std::find(line.begin(), line.end(), "--");
    const auto isSimulate = [&](std::ptrdiff_t before) {
        return end - line.begin() >= before && *(end - before) == "--simulate";
    };
    const bool isBehindCommand =
        std::any_of(line.begin(), end, [this](const std::string& word) { return m_names.contains(word); });
    // The parser has one for the end of the option's values, and one for the end of all options.
    if (end != line.end() && isBehindCommand &&
        (isSimulate(1) || (isSimulate(2) && !(end - 1)->starts_with('-')))) {
        line.insert(end, "--");
    }
    return line;
}

Command& CommandTree::Parse(const std::vector<std::string>& arguments) {
    const std::vector<std::string> line = WithSimulateApart(arguments);
    // A line uses one noun, and its name is a word of it: what others take would be a third of a short
    // command's work.
    for (const std::string& word : line) {
        Declare(word);
    }
    const ParsedLine parsed(*m_app, m_description, line);
    try {
        m_app->parse(std::vector<std::string>(line.rbegin(), line.rend()));
    } catch (const CLI::CallForHelp&) {
        throw TextRequest{HelpText(Description(), parsed.Chosen()).value_or("")};
    } catch (const CLI::CallForVersion& version) {
        throw TextRequest{std::string(version.what()) + "\n"};
    } catch (const CLI::ExtrasError&) {
        throw UsageError(parsed.SuperfluousText(m_further));
    } catch (const CLI::ParseError& mistake) {
        throw UsageError(parsed.MistakeText(mistake.what()));
    }
    if (!m_further.empty()) {
        throw UsageError(parsed.SuperfluousText(m_further));
    }
    CheckGlobalOptions();

    const CommandDescription* command = parsed.Command();
    if (command == nullptr) {
        throw UsageError(parsed.UnfinishedText());
    }
    return *m_leaves[static_cast<std::size_t>(command - m_description.commands.data())].command;
}

void CommandTree::CheckGlobalOptions() {
    if (m_machine) {
        // Names are often pasted with the backslashes of a network path.
        m_options.machine =
            m_machine->substr(std::min(m_machine->size(), m_machine->find_first_not_of('\\')));
        if (m_options.machine.empty()) {
            throw UsageError("--machine: a name or an address is needed");
        }
        if (!IsHostName(m_options.machine)) {
            throw UsageError("--machine: \"" + m_options.machine +
                             "\" is no name and no address of a machine");
        }
    }
    if (m_state) {
        m_options.stateFile = *m_state;
        if (m_options.stateFile.empty()) {
            throw UsageError("--state: the name of a file is needed");
        }
    }
    CheckRemoteAccess(m_options);
    const bool isRemote = !m_options.machine.empty() && !AsksForSimulator(m_options) && !HostHasWmi();
    if (isRemote && !HasRemoteAccess()) {
        throw UsageError(
            "--machine: this host has no WMI, and this program was built without WS-Management; run "
            "quilletctl on Windows, or add --simulate");
    }
    const bool isSimulated = !isRemote && UsesSimulator(m_options);
    if (m_options.journal && !isSimulated) {
        throw UsageError("--journal: only a simulated machine keeps a journal; add --simulate");
    }
    if (!m_faults.empty() && !isSimulated) {
        throw UsageError("--fault: only a simulated machine fails as it is told; add --simulate");
    }
    for (const std::string& rule : m_faults) {
        m_options.faults.push_back(ParseFault(rule));
    }
}

} // namespace quilletctl
