// A line that somebody types: what may come next.
#pragma once

#include "app/CommandDescription.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace quilletctl {

/// A word that may stand at the cursor. Texts are UTF-8.
struct Proposal {
    std::string word;
    std::string description{};
};

/// What a word may be of which only the machine knows the names.
enum class MachineWord {
    None,
    Adapter,
    Team,
    Member,       ///< of the team before it
    Parent,       ///< of VLANs
    Vlan,         ///< of the parent before it
    Owner,        ///< of settings
    Setting,      ///< of the owner before it
    Assignment,   ///< the same with "=" behind it
    SettingValue, ///< of the setting before it
    Test,         ///< of the adapter before it
    Profile       ///< of the adapter before it
};

class CompletedLine {
  public:
    /// @param words before the cursor's, without the program's name @param current as far as it stands
    CompletedLine(const TreeDescription& tree, const std::vector<std::string>& words, std::string current);

    /// What the commands' declarations propose.
    const std::vector<Proposal>& Words() const noexcept { return m_proposals; }
    bool MayBeFile() const noexcept { return m_mayBeFile; }
    MachineWord FromMachine() const noexcept { return m_fromMachine; }
    /// What of the current word is before that: "--team=", "*JumboPacket=".
    const std::string& Prefix() const noexcept { return m_prefix; }

    /// The words of the command so far, noun and verb apart.
    const std::vector<std::string>& Path() const noexcept { return m_path; }
    /// Whose settings they are; empty: those of all adapters.
    std::string Owner() const;
    std::string OwnerKind() const { return OptionValue("--of"); }
    /// The setting of which a value is wanted.
    const std::string& Setting() const noexcept { return m_setting; }
    /// Options that say which machine it is, as they stand on a command line.
    std::vector<std::string> MachineOptions() const;

  private:
    void TakeWord(const std::string& word);
    void TakeOption(const std::string& word);
    std::string OptionValue(const std::string& name) const;
    const CommandDescription* Command() const;
    bool HasVerbs(const std::string& noun) const;
    bool IsName(const std::string& word) const;
    void ProposeValues(const OptionDescription& option);
    void ProposeOptions();
    void ProposeNouns();
    void ProposeVerbs(const std::string& noun);
    void ProposeArgument();
    void ProposeSettings(bool takesValues);

    const TreeDescription& m_tree;
    std::string m_current;
    std::string m_noun;
    std::string m_verb;
    std::vector<std::string> m_path;
    std::map<std::string, std::string> m_options; ///< that were given, and their values
    std::string m_awaiting;                       ///< the option whose value comes next
    bool m_isEnded = false;                       ///< by "--"
    std::vector<Proposal> m_proposals;
    bool m_mayBeFile = false;
    MachineWord m_fromMachine = MachineWord::None;
    std::string m_prefix;
    std::string m_setting;
};

} // namespace quilletctl
