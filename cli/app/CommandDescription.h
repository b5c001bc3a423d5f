// What a command takes, as its declaration said: the source of the help, the manual and the completion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// Something that stands without an option's name.
struct ArgumentDescription {
    std::string name;
    std::size_t least = 1;
    std::size_t most = 1;
    std::vector<std::string> words; ///< what it may be; empty: anything
    std::string description;
};

struct OptionDescription {
    std::string name;               ///< with its dashes
    std::string value;              ///< how the help calls its value; empty: it takes none
    bool isValueOptional = false;   ///< it may also stand without one
    bool isRepeatable = false;      ///< it may be given several times
    std::vector<std::string> words; ///< what the value may be, or may be among others
    std::optional<std::int64_t> least;
    std::optional<std::int64_t> most;
    std::string byDefault; ///< empty: nothing, or what the description says
    std::string description;
};

struct CommandDescription {
    std::string name; ///< noun and verb
    std::string description;
    std::vector<ArgumentDescription> arguments;
    std::vector<OptionDescription> options;
    bool takesSecrets = false; ///< what stands on its command line by mistake may be one

    /// The option of a name; null where there is none.
    const OptionDescription* Option(const std::string& name) const;
};

struct NounDescription {
    std::string name;
    std::string description;
    std::string group; ///< of the help
};

/// Everything that can stand on a command line.
struct TreeDescription {
    std::vector<OptionDescription> options; ///< of every command
    std::vector<NounDescription> nouns;     ///< in the order of the help
    std::vector<CommandDescription> commands;

    /// The command of a name, noun and verb; null where there is none.
    const CommandDescription* Command(const std::string& name) const;
    /// The option of a name that can stand beside a command: one of its own, or one of every command. Null
    /// where there is none.
    /// @param command null: none is known yet
    const OptionDescription* Option(const CommandDescription* command, const std::string& name) const;
};

/// "quilletctl vlan add PARENT ID NAME [OPTION...]".
std::string UsageOf(const CommandDescription& command);
/// How the help shows an argument: "PARENT", "[ADAPTER...]".
std::string ShownName(const ArgumentDescription& argument);
/// What an option takes, in words: "a number from 1 to 4094", "on or off".
std::string ValueText(const OptionDescription& option);
/// One of a few words: "on or off", "primary, secondary or off".
std::string ListOf(const std::vector<std::string>& words);

/// The text that `quilletctl help` prints: of everything, of a noun, or of a command. Nothing where the words
/// name none.
std::optional<std::string> HelpText(const TreeDescription& tree, const std::vector<std::string>& words);

} // namespace quilletctl
