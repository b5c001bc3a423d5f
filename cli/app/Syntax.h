// What a command declares its own options with.
#pragma once

#include "app/CommandDescription.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quilletctl {

/// How many names a command takes at most where it takes any number of them.
inline constexpr std::size_t kMostNames = 64;
/// The words of a choice that is a switch.
inline const std::vector<std::string> kOnOff{"on", "off"};

/// The variables must live as long as the command; they hold the default until the command line is read.
class Syntax {
  public:
    Syntax(CLI::App& app, CommandDescription& command) noexcept : m_app(app), m_command(command) {}
    /// An option with a number, such as "--lines".
    void Number(const std::string& name, std::uint32_t& value, std::uint32_t least, std::uint32_t most,
                const std::string& description);
    /// The same with nothing as its default.
    void Number(const std::string& name, std::optional<LONG>& value, LONG least, LONG most,
                const std::string& description);
    /// An option with a text; `kind` is how the help calls that. Of the texts that it may be, some may be
    /// proposed.
    void Text(const std::string& name, std::optional<std::string>& value, const std::string& kind,
              const std::string& description, const std::vector<std::string>& proposals = {});
    /// An option whose text the command takes itself: `take` throws UsageError for one that it cannot use.
    void Text(const std::string& name, std::function<void(const std::string&)> take, const std::string& kind,
              const std::string& description, const std::vector<std::string>& proposals);
    /// The first, but it may also stand without the text.
    void OptionalText(const std::string& name, bool& isGiven, std::string& value, const std::string& kind,
                      const std::string& description);
    /// An option with one of a few words, such as "--of".
    void Choice(const std::string& name, std::string& value, const std::vector<std::string>& words,
                const std::string& description);
    /// An option without a value.
    void Flag(const std::string& name, bool& value, const std::string& description);
    /// What the command is about, without an option's name; must be given. Several stand in the order of the
    /// calls. Where `words` are named it is one of them.
    void Argument(const std::string& name, std::string& value, const std::string& description,
                  const std::vector<std::string>& words = {});
    /// So many words without an option's name, where their number tells what they are.
    void Arguments(const std::string& name, std::vector<std::string>& words, std::size_t least,
                   std::size_t most, const std::string& description);
    /// An option with a text that may be given several times.
    void Texts(const std::string& name, std::vector<std::string>& values, const std::string& kind,
               const std::string& description);
    /// The command reads secrets, so messages about its command line repeat nothing of it.
    void TakesSecrets() noexcept { m_command.takesSecrets = true; }

  private:
    OptionDescription& Describe(const std::string& name, const std::string& description);

    CLI::App& m_app;
    CommandDescription& m_command;
};

} // namespace quilletctl
