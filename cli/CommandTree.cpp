// The command line: global options, nouns and verbs.
#include "Command.h"
#include "SimulatedMachine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>
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

constexpr const char* FOOTER = R"(
Exit status: 0 done, 1 the provider refused, 2 bad usage, 3 a check found problems.)";

void Configure(CLI::App& app) {
    // One syntax on every host; "/S" is a file name here.
    app.allow_windows_style_options(false);
    // A global option may stand anywhere on the line.
    app.fallthrough();
    app.get_formatter()->column_width(28);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
}

const char* NameOf(CommandTree::Group group) {
    return group == CommandTree::Group::Management ? "Commands" : "Diagnostics";
}

} // namespace

void Syntax::Number(const std::string& name, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                    const std::string& description) {
    m_app.add_option(name, value, description)->check(CLI::Range(least, most))->capture_default_str();
}

void Syntax::Number(const std::string& name, std::optional<LONG>& value, LONG least, LONG most,
                    const std::string& description) {
    CLI::Option& option = *m_app.add_option_function<LONG>(
        name, [&value](const LONG& given) { value = given; }, description);
    option.type_name("NUMBER");
    // A range that leaves nothing out would only fill the help.
    if (least != std::numeric_limits<LONG>::min() || most != std::numeric_limits<LONG>::max()) {
        option.check(CLI::Range(least, most));
    }
}

void Syntax::Text(const std::string& name, std::optional<std::string>& value, const std::string& kind,
                  const std::string& description) {
    m_app
        .add_option_function<std::string>(
            name, [&value](const std::string& given) { value = given; }, description)
        ->type_name(kind);
}

void Syntax::Choice(const std::string& name, std::string& value, const std::vector<std::string>& words,
                    const std::string& description) {
    m_app.add_option(name, value, description)->check(CLI::IsMember(words));
}

void Syntax::Flag(const std::string& name, bool& value, const std::string& description) {
    m_app.add_flag(name, value, description);
}

void Syntax::Argument(const std::string& name, std::string& value, const std::string& description) {
    m_app.add_option(name, value, description)->required()->type_name("");
}

void Syntax::Arguments(const std::string& name, std::vector<std::string>& words, std::size_t least,
                       std::size_t most, const std::string& description) {
    m_app.add_option(name, words, description)
        ->required(least > 0)
        ->expected(static_cast<int>(least), static_cast<int>(most))
        ->type_name("");
}

void Syntax::Texts(const std::string& name, std::vector<std::string>& values,
                   const std::string& description) {
    m_app.add_option(name, values, description)->type_name("TEXT")->allow_extra_args(false);
}

CommandTree::CommandTree()
    : m_app(std::make_unique<CLI::App>("Manages the network adapters of a machine.", "quilletctl")) {
    Configure(*m_app);
    m_app->footer(FOOTER);
    m_app->add_option("--machine", m_options.machine, "Machine to manage, by name or address")
        ->type_name("HOST");
    m_app->set_version_flag("--version", "quilletctl " QUILLETCTL_VERSION);
    m_app
        ->add_option_function<std::vector<std::string>>(
            "--simulate",
            [this](const std::vector<std::string>& file) {
                m_options.simulate = true;
                m_options.machineFile = file.empty() ? std::string() : file.front();
            },
            "Talk to a simulated machine: that of a MOF file, or the built-in one")
        ->type_name("[FILE]")
        ->expected(0, 1)
        ->trigger_on_parse();
    m_app
        ->add_option("--state", m_options.stateFile,
                     "Keep the simulated machine in a file from one command to the next")
        ->type_name("FILE");
    m_app->add_flag("--json", m_options.json, "Answer as JSON");
    m_app->add_flag("--journal", m_options.journal, "Print the calls that the provider received");
    m_app->add_flag("--yes", m_options.yes, "Answer yes to every question");
    m_app->add_flag("--no-color", m_options.noColour, "Print without colours (as with NO_COLOR set)");
}

CommandTree::~CommandTree() = default;

CLI::App& CommandTree::Subcommand(CLI::App& parent, const std::string& name, const std::string& description) {
    CLI::App& app = *parent.add_subcommand(name, description);
    m_names.insert(name);
    Configure(app);
    app.group("Commands");
    app.footer("\nquilletctl --help lists the options that every command takes.");
    return app;
}

void CommandTree::Attach(CLI::App& app, std::unique_ptr<Command> command) {
    Syntax syntax(app);
    command->Declare(syntax);
    m_leaves.push_back({&app, std::move(command)});
}

CommandTree::Noun CommandTree::AddNoun(const std::string& name, const std::string& description, Group group) {
    CLI::App& app = Subcommand(*m_app, name, description);
    app.group(NameOf(group));
    return {*this, app};
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             CommandFunction function) {
    AddCommand(name, description, group, std::make_unique<FunctionCommand>(function));
}

void CommandTree::AddCommand(const std::string& name, const std::string& description, Group group,
                             std::unique_ptr<Command> command) {
    CLI::App& app = Subcommand(*m_app, name, description);
    app.group(NameOf(group));
    Attach(app, std::move(command));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           CommandFunction function) {
    return Verb(name, description, std::make_unique<FunctionCommand>(function));
}

CommandTree::Noun& CommandTree::Noun::Verb(const std::string& name, const std::string& description,
                                           std::unique_ptr<Command> command) {
    m_tree.Attach(m_tree.Subcommand(m_app, name, description), std::move(command));
    return *this;
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

Command& CommandTree::Parse(const std::vector<std::string>& arguments) {
    try {
        const std::vector<std::string> line = WithSimulateApart(arguments);
        m_app->parse(std::vector<std::string>(line.rbegin(), line.rend()));
    } catch (const CLI::CallForHelp&) {
        throw TextRequest{m_app->help()};
    } catch (const CLI::CallForVersion& version) {
        throw TextRequest{std::string(version.what()) + "\n"};
    } catch (const CLI::ExtrasError&) {
        std::string unexpected;
        for (const std::string& each : m_app->remaining(true)) {
            unexpected += " " + each;
        }
        throw UsageError("not understood:" + unexpected);
    } catch (const CLI::ParseError& mistake) {
        throw UsageError(mistake.what());
    }

    const CLI::App* chosen = m_app.get();
    while (!chosen->get_subcommands().empty()) {
        if (chosen->get_subcommands().size() > 1) {
            throw UsageError("one command at a time: " + chosen->get_subcommands()[0]->get_name() + " or " +
                             chosen->get_subcommands()[1]->get_name());
        }
        chosen = chosen->get_subcommands().front();
    }
    const auto leaf =
        std::find_if(m_leaves.begin(), m_leaves.end(), [=](const Leaf& each) { return each.app == chosen; });
    if (leaf == m_leaves.end()) {
        std::string names;
        for (const CLI::App* each : chosen->get_subcommands([](const CLI::App*) { return true; })) {
            names += (names.empty() ? "" : ", ") + each->get_name();
        }
        throw UsageError((chosen == m_app.get() ? std::string("a command is needed: ")
                                                : chosen->get_name() + " needs a verb: ") +
                         names);
    }

    // Names are often pasted with the backslashes of a network path.
    m_options.machine.erase(0, m_options.machine.find_first_not_of('\\'));
    if (m_app->count("--machine") > 0 && m_options.machine.empty()) {
        throw UsageError("--machine: a name or an address is needed");
    }
    if (m_app->count("--state") > 0 && m_options.stateFile.empty()) {
        throw UsageError("--state: the name of a file is needed");
    }
    if (m_options.journal && !UsesSimulator(m_options)) {
        throw UsageError("--journal: only a simulated machine keeps a journal; add --simulate");
    }
    return *leaf->command;
}

} // namespace quilletctl
