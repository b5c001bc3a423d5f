// What a line chose, and what is wrong with it.
#include "app/ParsedLine.h"

#include "texts/Nearest.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace quilletctl {

namespace {

std::string Joined(const std::vector<std::string>& words, const char* separator = " ") {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

/// The nouns, or the verbs of one noun.
std::vector<std::string> NamesWithin(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* each : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(each->get_name());
    }
    return names;
}

/// What a message about a word that is none of these goes on with: the one that may be meant, or all.
std::string InsteadOf(const std::string& word, const CLI::App& app) {
    const std::vector<std::string> names = NamesWithin(app);
    return DidYouMeanOr(word, names, ", only " + Joined(names, ", "));
}

/// The name of the option that a word of the line is, without its value; empty when it is none.
std::string OptionIn(const std::string& word) {
    return word.starts_with("--") ? word.substr(0, word.find('=')) : std::string();
}

constexpr const char* kNotRepeated =
    " takes no such word or option; it is not repeated here, for it may be a secret: secrets are typed at a "
    "prompt or read with --secret-fd, never given on the command line";

} // namespace

std::vector<std::string> ParsedLine::Chosen() const {
    std::vector<std::string> words;
    for (const CLI::App* app = &m_app; !app->get_subcommands().empty();) {
        app = app->get_subcommands().front();
        words.push_back(app->get_name());
    }
    return words;
}

const CommandDescription* ParsedLine::Command() const {
    return m_tree.Command(Joined(Chosen()));
}

std::string ParsedLine::SuperfluousText(const std::vector<std::string>& further) const {
    const std::vector<std::string> chosen = Chosen();
    const std::string name = Joined(chosen);
    const CommandDescription* command = Command();
    if (command != nullptr && command->takesSecrets) {
        return name + kNotRepeated;
    }
    std::vector<std::string> words = m_app.remaining(true);
    words.erase(std::remove(words.begin(), words.end(), "--"), words.end());
    // An option that is none leaves its value behind.
    const bool isOption = !words.empty() && words.front().starts_with('-') && words.front().size() > 1;
    words.insert(isOption ? words.end() : words.begin(), further.begin(), further.end());
    const std::string word = words.empty() ? std::string() : words.front();
    if (isOption) {
        return (name.empty() ? "there is" : name + " has") + " no option " + word.substr(0, word.find('=')) +
               "; see quilletctl help" + (name.empty() ? "" : ' ' + name);
    }
    if (command != nullptr) {
        return name + " takes no further word: \"" + word + '"';
    }
    return chosen.empty()
               ? "there is no command \"" + word + '"' + InsteadOf(word, m_app)
               : name + " has no verb \"" + word + '"' + InsteadOf(word, *m_app.get_subcommand(name));
}

std::string ParsedLine::MistakeText(const std::string& parserText) const {
    const CommandDescription* command = Command();
    const auto end = std::find(m_words.begin(), m_words.end(), "--");
    // Options of the line in their order: the parser's own texts may repeat values, and speak its language.
    std::map<std::string, int> given;
    for (auto word = m_words.begin(); word != end; ++word) {
        const std::string name = OptionIn(*word);
        const OptionDescription* option = name.empty() ? nullptr : m_tree.Option(command, name);
        if (option != nullptr && option->value.empty() && name.size() < word->size()) {
            return name + ": takes no value";
        }
        if (option != nullptr && !option->value.empty() && !option->isRepeatable && ++given[name] > 1) {
            return name + ": given more than once";
        }
    }
    const std::string subject = parserText.substr(0, parserText.find(": "));
    if (const OptionDescription* option = m_tree.Option(command, subject)) {
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

std::string ParsedLine::UnfinishedText() const {
    const std::vector<std::string> chosen = Chosen();
    return chosen.empty()
               ? "a command is needed: " + Joined(NamesWithin(m_app), ", ")
               : chosen.front() +
                     " needs a verb: " + Joined(NamesWithin(*m_app.get_subcommand(chosen.front())), ", ");
}

} // namespace quilletctl
