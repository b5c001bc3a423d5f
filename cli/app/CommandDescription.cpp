// Help texts.
#include "app/CommandDescription.h"

#include "texts/Text.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>

namespace quilletctl {

namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 28;

using Lines = std::vector<std::pair<std::string, std::string>>;

/// The description of that name; null where there is none.
template <class Description>
const Description* Find(const std::vector<Description>& descriptions, const std::string& name) {
    const auto found = std::find_if(descriptions.begin(), descriptions.end(),
                                    [&](const Description& each) { return each.name == name; });
    return found == descriptions.end() ? nullptr : &*found;
}

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

/// The text from a column on, its further lines below its first.
std::string Wrapped(const std::string& text, std::size_t column) {
    std::istringstream words(text);
    std::string wrapped;
    std::size_t at = column;
    for (std::string word; words >> word;) {
        const std::size_t width = DisplayWidth(word);
        if (at > column && at + 1 + width > kWidth) {
            wrapped += '\n' + std::string(column, ' ');
            at = column;
        } else if (at > column) {
            wrapped += ' ';
            ++at;
        }
        wrapped += word;
        at += width;
    }
    return wrapped;
}

/// Names and what they mean in two columns under a title; nothing where there are none.
std::string Section(const std::string& title, const Lines& lines) {
    if (lines.empty()) {
        return {};
    }
    std::string text = '\n' + title + ":\n";
    for (const auto& [name, meaning] : lines) {
        const std::string head = "  " + name;
        text += head;
        text += head.size() + 1 >= kColumn ? '\n' + std::string(kColumn, ' ')
                                           : std::string(kColumn - head.size(), ' ');
        text += Wrapped(meaning, kColumn) + '\n';
    }
    return text;
}

std::string ShownName(const OptionDescription& option) {
    if (option.value.empty()) {
        return option.name;
    }
    return option.name + ' ' + (option.isValueOptional ? '[' + option.value + ']' : option.value);
}

std::string Meaning(const OptionDescription& option) {
    std::string remarks;
    const auto add = [&](const std::string& remark) { remarks += (remarks.empty() ? " (" : "; ") + remark; };
    if (option.least && option.most) {
        add(std::to_string(*option.least) + " to " + std::to_string(*option.most));
    }
    if (!option.byDefault.empty()) {
        add("default: " + option.byDefault);
    }
    if (option.isRepeatable) {
        add("may be given several times");
    }
    return option.description + remarks + (remarks.empty() ? "" : ")");
}

Lines OptionLines(const std::vector<OptionDescription>& options) {
    Lines lines;
    for (const OptionDescription& option : options) {
        lines.emplace_back(ShownName(option), Meaning(option));
    }
    return lines;
}

std::string HelpOfEverything(const TreeDescription& tree) {
    std::string text = "Manages the network adapters of a machine.\n\n"
                       "Usage: quilletctl NOUN VERB [WORD...] [OPTION...]\n";
    std::vector<std::string> groups;
    for (const NounDescription& noun : tree.nouns) {
        if (std::find(groups.begin(), groups.end(), noun.group) == groups.end()) {
            groups.push_back(noun.group);
        }
    }
    for (const std::string& group : groups) {
        Lines lines;
        for (const NounDescription& noun : tree.nouns) {
            if (noun.group == group) {
                lines.emplace_back(noun.name, noun.description);
            }
        }
        text += Section(group, lines);
    }
    return text + Section("Options, anywhere on the line", OptionLines(tree.options)) +
           "\nExit status: 0 done, 1 the provider refused, 2 bad usage, 3 a check found problems,\n"
           "130 interrupted.\n"
           "quilletctl help NOUN lists the verbs of a noun.\n";
}

std::string HelpOfNoun(const TreeDescription& tree, const NounDescription& noun) {
    Lines verbs;
    for (const CommandDescription& command : tree.commands) {
        if (command.name.starts_with(noun.name + ' ')) {
            verbs.emplace_back(command.name.substr(noun.name.size() + 1), command.description);
        }
    }
    return noun.description + "\n\nUsage: quilletctl " + noun.name + " VERB [WORD...] [OPTION...]\n" +
           Section("Verbs", verbs) + "\nquilletctl help " + noun.name + " VERB says what a verb takes.\n";
}

std::string HelpOfCommand(const CommandDescription& command) {
    Lines arguments;
    for (const ArgumentDescription& argument : command.arguments) {
        arguments.emplace_back(ShownName(argument),
                               argument.description +
                                   (argument.words.empty() ? "" : ": " + ListOf(argument.words)));
    }
    return command.description + "\n\nUsage: " + Wrapped(UsageOf(command), 7) + '\n' +
           Section("Words", arguments) + Section("Options", OptionLines(command.options)) +
           "\nquilletctl help lists the options that every command takes.\n";
}

} // namespace

const OptionDescription* CommandDescription::Option(const std::string& wanted) const {
    return Find(options, wanted);
}

const CommandDescription* TreeDescription::Command(const std::string& name) const {
    return Find(commands, name);
}

const OptionDescription* TreeDescription::Option(const CommandDescription* command,
                                                 const std::string& name) const {
    const OptionDescription* own = command == nullptr ? nullptr : command->Option(name);
    return own == nullptr ? Find(options, name) : own;
}

std::string ShownName(const ArgumentDescription& argument) {
    std::string name = Upper(argument.name);
    if (name.find(' ') != std::string::npos) {
        return name; // several, each with its own name
    }
    name += argument.most > 1 ? "..." : "";
    return argument.least == 0 ? '[' + name + ']' : name;
}

std::string UsageOf(const CommandDescription& command) {
    std::string usage = "quilletctl " + command.name;
    for (const ArgumentDescription& argument : command.arguments) {
        usage += ' ' + ShownName(argument);
    }
    return usage + (command.options.empty() ? "" : " [OPTION...]");
}

std::string ListOf(const std::vector<std::string>& words) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        list += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    return list;
}

std::string ValueText(const OptionDescription& option) {
    if (option.value == "NUMBER") {
        return option.least && option.most
                   ? "a number from " + std::to_string(*option.least) + " to " + std::to_string(*option.most)
                   : std::string("a number");
    }
    return !option.words.empty() ? ListOf(option.words) : "a value (" + option.value + ")";
}

std::optional<std::string> HelpText(const TreeDescription& tree, const std::vector<std::string>& words) {
    if (words.empty()) {
        return HelpOfEverything(tree);
    }
    std::string name;
    for (const std::string& word : words) {
        name += (name.empty() ? "" : " ") + word;
    }
    if (const CommandDescription* command = tree.Command(name)) {
        return HelpOfCommand(*command);
    }
    const NounDescription* noun = Find(tree.nouns, name);
    return noun == nullptr ? std::nullopt : std::optional(HelpOfNoun(tree, *noun));
}

} // namespace quilletctl
