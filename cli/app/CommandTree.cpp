// The command line: global options, nouns and verbs.
#include "app/CommandTree.h"
#include "app/SimulatedMachine.h"
#include "names/HostName.h"
#include "terminal/Console.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
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

void Configure(CLI::App& app) {
    // One syntax on every host; "/S" is a file name here.
    app.allow_windows_style_options(false);
    // A global option may stand anywhere on the line.
    app.fallthrough();
    app.set_help_flag("-h,--help");
}

const char* NameOf(CommandTree::Group group) {
    return group == CommandTree::Group::Management ? "Nouns" : "Diagnostics and help";
}

std::string Joined(const std::vector<std::string>& words, const char* separator = " ") {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

/// The nouns, or the verbs of one noun.
std::string NamesWithin(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* each : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(each->get_name());
    }
    return Joined(names, ", ");
}

/// The name of the option that a word of the line is, without its value; empty when it is none.
std::string OptionIn(const std::string& word) {
    return word.starts_with("--") ? word.substr(0, word.find('=')) : std::string();
}

constexpr const char* NOT_REPEATED =
    " takes no such word or option; it is not repeated here, for it may be a secret: secrets are typed at a "
    "prompt or read with --secret-fd, never given on the command line";

} // namespace

CommandTree::CommandTree() : m_app(std::make_unique<CLI::App>("", "quilletctl")) {
    Configure(*m_app);
    // One noun; a word after it that is another noun's name is a name like any other.
    m_app->require_subcommand(0, 1);
    CommandDescription everywhere;
    Syntax syntax(*m_app, everywhere);
    syntax.Text("--machine", m_machine, "HOST",
                "The machine to manage, by name or address (default: this one)");
    syntax.OptionalText("--simulate", m_options.simulate, m_options.machineFile, "FILE",
                        "Talk to a simulated machine: that of a MOF file, or the built-in one");
    syntax.Text("--state", m_state, "FILE",
                "Keep the simulated machine in a file from one command to the next");
    syntax.Flag("--json", m_options.json, "Answer as JSON");
    syntax.Flag("--journal", m_options.journal, "Print the calls that the simulated provider received");
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

CLI::App& CommandTree::Subcommand(CLI::App& parent, const std::string& name) {
    CLI::App& app = *parent.add_subcommand(name);
    m_names.insert(name);
    Configure(app);
    return app;
}

CLI::App& CommandTree::AddNounApp(const std::string& name, const std::string& description, Group group) {
    CLI::App& app = Subcommand(*m_app, name);
    app.require_subcommand(0, 1);
    m_description.nouns.push_back({name, description, NameOf(group)});
    return app;
}

void CommandTree::Attach(CLI::App& app, const std::string& name, const std::string& description,
                         std::unique_ptr<Command> command) {
    CommandDescription described;
    described.name = name;
    described.description = description;
    Syntax syntax(app, described);
    command->Declare(syntax);
    m_description.commands.push_back(std::move(described));
    m_leaves.push_back({&app, std::move(command)});
}

CommandTree::Noun CommandTree::AddNoun(const std::string& name, const std::string& description, Group group) {
    return {*this, AddNounApp(name, description, group), name};
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             CommandFunction function) {
    AddCommand(name, description, group, std::make_unique<FunctionCommand>(function));
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             std::unique_ptr<Command> command) {
    command->MarkAsQuery();
    Attach(AddNounApp(name, description, group), name, description, std::move(command));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           CommandFunction function) {
    return Verb(name, description, std::make_unique<FunctionCommand>(function));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           std::unique_ptr<Command> command) {
    m_tree.Attach(m_tree.Subcommand(m_app, name), m_name + ' ' + name, description, std::move(command));
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
    return line;
}

std::vector<std::string> CommandTree::ChosenWords() const {
    std::vector<std::string> words;
    for (const CLI::App* app = m_app.get(); !app->get_subcommands().empty();) {
        app = app->get_subcommands().front();
        words.push_back(app->get_name());
    }
    return words;
}

const CommandDescription* CommandTree::ChosenCommand() const {
    const std::string name = Joined(ChosenWords());
    const auto found = std::find_if(m_description.commands.begin(), m_description.commands.end(),
                                    [&](const CommandDescription& each) { return each.name == name; });
    return found == m_description.commands.end() ? nullptr : &*found;
}

const OptionDescription* CommandTree::FindOption(const std::string& name) const {
    const CommandDescription* command = ChosenCommand();
    if (const OptionDescription* own = command == nullptr ? nullptr : command->Option(name)) {
        return own;
    }
    const auto found = std::find_if(m_description.options.begin(), m_description.options.end(),
                                    [&](const OptionDescription& each) { return each.name == name; });
    return found == m_description.options.end() ? nullptr : &*found;
}

std::string CommandTree::SuperfluousText() const {
    const std::vector<std::string> chosen = ChosenWords();
    const std::string name = Joined(chosen);
    const CommandDescription* command = ChosenCommand();
    if (command != nullptr && command->takesSecrets) {
        return name + NOT_REPEATED;
    }
    const std::vector<std::string> words = m_app->remaining(true);
    const std::string word = words.empty() ? std::string() : words.front();
    if (word.starts_with('-') && word.size() > 1) {
        return (name.empty() ? "there is" : name + " has") + " no option " + word.substr(0, word.find('=')) +
               "; see quilletctl help" + (name.empty() ? "" : ' ' + name);
    }
    if (command != nullptr) {
        return name + " takes no further word: \"" + word + '"';
    }
    return chosen.empty()
               ? "there is no command \"" + word + "\", only " + NamesWithin(*m_app)
               : name + " has no verb \"" + word + "\", only " + NamesWithin(*m_app->get_subcommand(name));
}

std::string CommandTree::MistakeText(const std::vector<std::string>& line,
                                     const std::string& parserText) const {
    const CommandDescription* command = ChosenCommand();
    const auto end = std::find(line.begin(), line.end(), "--");
    // Options of the line in their order: the parser's own texts may repeat values, and speak its language.
    std::map<std::string, int> given;
    for (auto word = line.begin(); word != end; ++word) {
        const std::string name = OptionIn(*word);
        const OptionDescription* option = name.empty() ? nullptr : FindOption(name);
        if (option != nullptr && option->value.empty() && name.size() < word->size()) {
            return name + ": takes no value";
        }
        if (option != nullptr && !option->value.empty() && !option->isRepeatable && ++given[name] > 1) {
            return name + ": given more than once";
        }
    }
    const std::string subject = parserText.substr(0, parserText.find(": "));
    if (const OptionDescription* option = FindOption(subject)) {
        return subject + ": " + ValueText(*option) + " is needed";
    }
    const auto isSubject = [&](const ArgumentDescription& each) { return each.name == subject; };
    if (command != nullptr && parserText.size() > subject.size() + 2) {
        const auto argument = std::find_if(command->arguments.begin(), command->arguments.end(), isSubject);
        if (argument != command->arguments.end() && !argument->words.empty()) {
            return ShownName(*argument) + ": " + ListOf(argument->words) + " is needed";
        }
    }
    if (command == nullptr) {
        return "not understood";
    }
    const bool areTooMany = parserText.find("At Most") != std::string::npos;
    return (areTooMany ? "too many words; usage: " : "words are missing; usage: ") + UsageOf(*command);
}

Command& CommandTree::Parse(const std::vector<std::string>& arguments) {
    const std::vector<std::string> line = WithSimulateApart(arguments);
    try {
        m_app->parse(std::vector<std::string>(line.rbegin(), line.rend()));
    } catch (const CLI::CallForHelp&) {
        throw TextRequest{HelpText(m_description, ChosenWords()).value_or("")};
    } catch (const CLI::CallForVersion& version) {
        throw TextRequest{std::string(version.what()) + "\n"};
    } catch (const CLI::ExtrasError&) {
        throw UsageError(SuperfluousText());
    } catch (const CLI::ParseError& mistake) {
        throw UsageError(MistakeText(line, mistake.what()));
    }
    CheckGlobalOptions();

    const CommandDescription* command = ChosenCommand();
    if (command == nullptr) {
        const std::vector<std::string> chosen = ChosenWords();
        throw UsageError(chosen.empty() ? "a command is needed: " + NamesWithin(*m_app)
                                        : chosen.front() + " needs a verb: " +
                                              NamesWithin(*m_app->get_subcommand(chosen.front())));
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
    if (!m_options.machine.empty() && !AsksForSimulator(m_options) && !HostHasWmi()) {
        throw UsageError(
            "--machine: this host has no WMI, and so no way to another machine; run quilletctl on "
            "Windows, or add --simulate");
    }
    if (m_options.journal && !UsesSimulator(m_options)) {
        throw UsageError("--journal: only a simulated machine keeps a journal; add --simulate");
    }
}

} // namespace quilletctl
