// From the words before the cursor to those that may follow.
#include "completion/CompletedLine.h"

#include <algorithm>
#include <utility>

namespace quilletctl {

namespace {

/// Which things of the machine the words behind noun and verb are, by what the help calls them.
MachineWord MachineWordOf(const std::string& argument) {
    static const std::map<std::string, MachineWord> kWords{
        {"adapter", MachineWord::Adapter}, {"team", MachineWord::Team},
        {"parent", MachineWord::Parent},   {"vlan", MachineWord::Vlan},
        {"owner", MachineWord::Owner},     {"setting", MachineWord::Setting},
        {"test", MachineWord::Test},       {"profile", MachineWord::Profile},
    };
    const auto found = kWords.find(argument);
    return found == kWords.end() ? MachineWord::None : found->second;
}

} // namespace

CompletedLine::CompletedLine(const TreeDescription& tree, const std::vector<std::string>& words,
                             std::string current)
    : m_tree(tree), m_current(std::move(current)) {
    for (const std::string& word : words) {
        TakeWord(word);
    }
    const std::size_t equals = m_current.find('=');
    const bool isOption = !m_isEnded && m_current.starts_with('-');
    if (const OptionDescription* awaiting = m_tree.Option(Command(), m_awaiting)) {
        ProposeValues(*awaiting);
        if (!awaiting->isValueOptional) {
            return;
        }
    }
    if (isOption && equals != std::string::npos) {
        m_prefix = m_current.substr(0, equals + 1);
        if (const OptionDescription* option = m_tree.Option(Command(), m_current.substr(0, equals))) {
            ProposeValues(*option);
        }
    } else if (isOption) {
        ProposeOptions();
    } else if (m_noun.empty()) {
        ProposeNouns();
    } else if (m_verb.empty() && HasVerbs(m_noun)) {
        ProposeVerbs(m_noun);
    } else {
        ProposeArgument();
    }
}

void CompletedLine::TakeWord(const std::string& word) {
    const OptionDescription* awaiting = m_tree.Option(Command(), m_awaiting);
    // A value that may be left out is none where a name of a command stands.
    if (awaiting != nullptr && (!awaiting->isValueOptional || (!word.starts_with('-') && !IsName(word)))) {
        m_options[std::exchange(m_awaiting, {})] = word;
        return;
    }
    m_awaiting.clear();
    if (!m_isEnded && word == "--") {
        m_isEnded = true;
    } else if (!m_isEnded && word.starts_with('-')) {
        TakeOption(word);
    } else if (m_noun.empty()) {
        m_noun = word;
    } else if (m_verb.empty() && HasVerbs(m_noun)) {
        m_verb = word;
    } else {
        m_path.push_back(word);
    }
}

void CompletedLine::TakeOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    m_options[name] = equals == std::string::npos ? std::string() : word.substr(equals + 1);
    const OptionDescription* option = m_tree.Option(Command(), name);
    if (equals == std::string::npos && option != nullptr && !option->value.empty()) {
        m_awaiting = name;
    }
}

std::string CompletedLine::OptionValue(const std::string& name) const {
    const auto found = m_options.find(name);
    return found == m_options.end() ? std::string() : found->second;
}

std::string CompletedLine::Owner() const {
    return m_path.empty() || m_options.contains("--all-adapters") ? std::string() : m_path.front();
}

std::vector<std::string> CompletedLine::MachineOptions() const {
    static const std::set<std::string> kOthers{"--json", "--journal",  "--yes",    "--dry-run",
                                               "--help", "--no-color", "--version"};
    std::vector<std::string> given;
    for (const OptionDescription& option : m_tree.options) {
        const auto found = m_options.find(option.name);
        if (found != m_options.end() && !kOthers.contains(option.name)) {
            given.push_back(option.name + (found->second.empty() ? "" : '=' + found->second));
        }
    }
    return given;
}

const CommandDescription* CompletedLine::Command() const {
    return m_tree.Command(m_verb.empty() ? m_noun : m_noun + ' ' + m_verb);
}

bool CompletedLine::HasVerbs(const std::string& noun) const {
    return std::any_of(m_tree.commands.begin(), m_tree.commands.end(),
                       [&](const CommandDescription& each) { return each.name.starts_with(noun + ' '); });
}

bool CompletedLine::IsName(const std::string& word) const {
    return std::any_of(m_tree.commands.begin(), m_tree.commands.end(), [&](const CommandDescription& each) {
        return each.name.substr(0, each.name.find(' ')) == word || each.name.ends_with(' ' + word);
    });
}

void CompletedLine::ProposeValues(const OptionDescription& option) {
    for (const std::string& word : option.words) {
        m_proposals.push_back({m_prefix + word});
    }
    m_mayBeFile = option.value == "FILE";
    m_fromMachine = option.value == "TEAM" ? MachineWord::Team : MachineWord::None;
}

void CompletedLine::ProposeOptions() {
    const CommandDescription* command = Command();
    const auto propose = [this](const std::vector<OptionDescription>& options) {
        for (const OptionDescription& option : options) {
            if (option.isRepeatable || !m_options.contains(option.name)) {
                m_proposals.push_back({option.name, option.description});
            }
        }
    };
    m_mayBeFile = false;
    propose(command == nullptr ? std::vector<OptionDescription>() : command->options);
    propose(m_tree.options);
}

void CompletedLine::ProposeNouns() {
    for (const NounDescription& noun : m_tree.nouns) {
        m_proposals.push_back({noun.name, noun.description});
    }
}

void CompletedLine::ProposeVerbs(const std::string& noun) {
    for (const CommandDescription& command : m_tree.commands) {
        if (command.name.starts_with(noun + ' ')) {
            m_proposals.push_back({command.name.substr(noun.size() + 1), command.description});
        }
    }
}

void CompletedLine::ProposeArgument() {
    const CommandDescription* command = Command();
    if (command == nullptr) {
        return;
    }
    if (m_noun == "help") {
        if (m_path.empty()) {
            ProposeNouns();
        } else if (m_path.size() == 1) {
            ProposeVerbs(m_path.front());
        }
        return;
    }
    std::size_t end = 0;
    for (const ArgumentDescription& argument : command->arguments) {
        end += argument.most;
        if (m_path.size() >= end) {
            continue;
        }
        if (argument.name.starts_with("[owner]")) {
            ProposeSettings(argument.name.find('=') != std::string::npos);
            return;
        }
        for (const std::string& word : argument.words) {
            m_proposals.push_back({word});
        }
        m_mayBeFile = m_mayBeFile || argument.name == "file";
        m_fromMachine = command->name == "team remove" && argument.name == "adapter"
                            ? MachineWord::Member
                            : MachineWordOf(argument.name);
        return;
    }
}

void CompletedLine::ProposeSettings(bool takesValues) {
    const bool isOfAll = m_options.contains("--all-adapters");
    const std::size_t first = isOfAll ? 0 : 1;
    if (m_path.size() < first) {
        m_fromMachine = MachineWord::Owner;
        return;
    }
    const std::size_t equals = m_current.find('=');
    const bool follows = m_path.size() > first;
    const bool isAssignment = follows && m_path.back().find('=') != std::string::npos;
    if (takesValues && equals != std::string::npos) {
        m_prefix = m_current.substr(0, equals + 1);
        m_setting = m_current.substr(0, equals);
        m_fromMachine = MachineWord::SettingValue;
    } else if (takesValues && follows && !isAssignment) {
        m_setting = m_path.back();
        m_fromMachine = m_path.size() == first + 1 ? MachineWord::SettingValue : MachineWord::None;
    } else {
        m_fromMachine = isAssignment ? MachineWord::Assignment : MachineWord::Setting;
    }
}

} // namespace quilletctl
