// Declaring what a command takes: to the parser of the command line, and in the command's description. Values
// that do not fit are not repeated in messages: what was typed in a wrong place may be a secret.
#include "app/Syntax.h"

#include "ending/Failure.h"
#include "texts/Number.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

namespace quilletctl {

namespace {

bool IsNumberWithin(const std::string& text, std::int64_t least, std::int64_t most) {
    const auto number = NumberIn<std::int64_t>(text);
    return number && *number >= least && *number <= most;
}

OptionDescription& Numbered(OptionDescription& option, std::int64_t least, std::int64_t most) {
    option.value = "NUMBER";
    // A range that leaves nothing out would only fill the help.
    if (least != std::numeric_limits<LONG>::min() || most != std::numeric_limits<LONG>::max()) {
        option.least = least;
        option.most = most;
    }
    return option;
}

/// A check whose message is the whole message.
CLI::Validator Check(std::function<bool(const std::string&)> fits, const std::string& needed) {
    return CLI::Validator(
        [fits = std::move(fits), needed](std::string& given) {
            return fits(given) ? std::string() : needed + " is needed";
        },
        "");
}

CLI::Validator OneOf(const std::vector<std::string>& words) {
    return Check(
        [words](const std::string& given) {
            return std::find(words.begin(), words.end(), given) != words.end();
        },
        ListOf(words));
}

} // namespace

OptionDescription& Syntax::Describe(const std::string& name, const std::string& description) {
    OptionDescription option;
    option.name = name;
    option.description = description;
    m_command.options.push_back(std::move(option));
    return m_command.options.back();
}

void Syntax::Number(const std::string& name, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                    const std::string& description) {
    OptionDescription& option = Numbered(Describe(name, description), least, most);
    option.byDefault = std::to_string(value);
    m_app.add_option(name, value)
        ->check(Check([=](const std::string& given) { return IsNumberWithin(given, least, most); },
                      ValueText(option)));
}

void Syntax::Number(const std::string& name, std::optional<LONG>& value, LONG least, LONG most,
                    const std::string& description) {
    const OptionDescription& option = Numbered(Describe(name, description), least, most);
    m_app.add_option_function<LONG>(name, [&value](const LONG& given) { value = given; })
        ->check(Check([=](const std::string& given) { return IsNumberWithin(given, least, most); },
                      ValueText(option)));
}

void Syntax::Text(const std::string& name, std::optional<std::string>& value, const std::string& kind,
                  const std::string& description, const std::vector<std::string>& proposals) {
    OptionDescription& option = Describe(name, description);
    option.value = kind;
    option.words = proposals;
    m_app.add_option_function<std::string>(name, [&value](const std::string& given) { value = given; });
}

void Syntax::Text(const std::string& name, std::function<void(const std::string&)> take,
                  const std::string& kind, const std::string& description,
                  const std::vector<std::string>& proposals) {
    OptionDescription& option = Describe(name, description);
    option.value = kind;
    option.words = proposals;
    m_app.add_option_function<std::string>(name, [name, take = std::move(take)](const std::string& given) {
        try {
            take(given);
        } catch (const UsageError& mistake) {
            throw UsageError(name + ": " + mistake.what());
        }
    });
}

void Syntax::OptionalText(const std::string& name, bool& isGiven, std::string& value, const std::string& kind,
                          const std::string& description) {
    OptionDescription& option = Describe(name, description);
    option.value = kind;
    option.isValueOptional = true;
    m_app
        .add_option_function<std::vector<std::string>>(name,
                                                       [&](const std::vector<std::string>& given) {
                                                           isGiven = true;
                                                           value =
                                                               given.empty() ? std::string() : given.front();
                                                       })
        ->expected(0, 1)
        ->allow_extra_args(false)
        ->trigger_on_parse();
}

void Syntax::Choice(const std::string& name, std::string& value, const std::vector<std::string>& words,
                    const std::string& description) {
    OptionDescription& option = Describe(name, description);
    for (const std::string& word : words) {
        option.value += (option.value.empty() ? "" : "|") + word;
    }
    option.words = words;
    m_app.add_option(name, value)->check(OneOf(words));
}

void Syntax::Flag(const std::string& name, bool& value, const std::string& description) {
    Describe(name, description);
    m_app.add_flag(name, value)->disable_flag_override();
}

void Syntax::Argument(const std::string& name, std::string& value, const std::string& description,
                      const std::vector<std::string>& words) {
    m_command.arguments.push_back({name, 1, 1, words, description});
    CLI::Option* option = m_app.add_option(name, value)->required();
    if (!words.empty()) {
        option->check(OneOf(words));
    }
}

void Syntax::Arguments(const std::string& name, std::vector<std::string>& words, std::size_t least,
                       std::size_t most, const std::string& description) {
    m_command.arguments.push_back({name, least, most, {}, description});
    m_app.add_option(name, words)
        ->required(least > 0)
        ->expected(static_cast<int>(least), static_cast<int>(most));
}

void Syntax::Texts(const std::string& name, std::vector<std::string>& values, const std::string& kind,
                   const std::string& description) {
    OptionDescription& option = Describe(name, description);
    option.value = kind;
    option.isRepeatable = true;
    m_app.add_option(name, values)->allow_extra_args(false);
}

} // namespace quilletctl
