// quilletctl help: what can stand on a command line, for people and, with --json, for programs.
#include "commands/Commands.h"
#include "texts/Nearest.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

Json NumberOrNull(const std::optional<std::int64_t>& number) {
    return number ? Json(*number) : Json();
}

Json Described(const ArgumentDescription& argument) {
    return Json{{"name", argument.name},
                {"least", argument.least},
                {"most", argument.most},
                {"words", argument.words},
                {"description", argument.description}};
}

Json Described(const OptionDescription& option) {
    return Json{{"name", option.name},
                {"value", option.value.empty() ? Json() : Json(option.value)},
                {"valueOptional", option.isValueOptional},
                {"repeatable", option.isRepeatable},
                {"words", option.words},
                {"least", NumberOrNull(option.least)},
                {"most", NumberOrNull(option.most)},
                {"default", option.byDefault.empty() ? Json() : Json(option.byDefault)},
                {"description", option.description}};
}

/// What a message about a command that there is not goes on with.
std::string InsteadOf(const std::string& asked, const TreeDescription& tree) {
    std::vector<std::string> names;
    for (const NounDescription& noun : tree.nouns) {
        names.push_back(noun.name);
    }
    for (const CommandDescription& command : tree.commands) {
        names.push_back(command.name);
    }
    return DidYouMeanOr(asked, names, "; see quilletctl help");
}

template <class Description>
Json Described(const std::vector<Description>& descriptions) {
    Json list = Json::array();
    for (const Description& each : descriptions) {
        list.push_back(Described(each));
    }
    return list;
}

class HelpCommand final : public Command {
  public:
    explicit HelpCommand(CommandTree& tree) noexcept : m_tree(tree) {}

    void Declare(Syntax& syntax) override {
        syntax.Arguments("[noun [verb]]", m_words, 0, 2, "What to tell about (default: everything)");
    }

    ExitStatus Run(Invocation& run) override {
        const TreeDescription& tree = m_tree.Description();
        const std::optional<std::string> text = HelpText(tree, m_words);
        if (!text) {
            std::string asked;
            for (const std::string& word : m_words) {
                asked += (asked.empty() ? "" : " ") + word;
            }
            throw UsageError("there is no command \"" + asked + '"' + InsteadOf(asked, tree));
        }
        if (run.WantsJson()) {
            run.Print(AsJson(tree));
        } else {
            run.Out() << *text;
        }
        return ExitStatus::Done;
    }

  private:
    /// Whether the help was asked about this command.
    bool IsAbout(const std::string& command) const {
        std::string asked;
        for (const std::string& word : m_words) {
            asked += word + ' ';
        }
        return (command + ' ').starts_with(asked);
    }

    Json AsJson(const TreeDescription& tree) const {
        Json nouns = Json::array();
        for (const NounDescription& noun : tree.nouns) {
            if (m_words.empty() || noun.name == m_words.front()) {
                nouns.push_back(Json{{"name", noun.name}, {"description", noun.description}});
            }
        }
        Json commands = Json::array();
        for (const CommandDescription& command : tree.commands) {
            if (IsAbout(command.name)) {
                commands.push_back(Json{{"name", command.name},
                                        {"usage", UsageOf(command)},
                                        {"description", command.description},
                                        {"arguments", Described(command.arguments)},
                                        {"options", Described(command.options)}});
            }
        }
        return Json{{"version", QUILLETCTL_VERSION},
                    {"options", Described(tree.options)},
                    {"nouns", std::move(nouns)},
                    {"commands", std::move(commands)}};
    }

    CommandTree& m_tree;
    std::vector<std::string> m_words;
};

} // namespace

void AddHelpCommand(CommandTree& tree) {
    tree.AddCommand("help", "Tell what a command takes", CommandTree::Group::Diagnostics,
                    std::make_unique<HelpCommand>(tree));
}

} // namespace quilletctl
