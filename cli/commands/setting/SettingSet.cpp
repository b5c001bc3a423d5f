// quilletctl setting set, reset: settings of one owner, or of several at once.
#include "app/Command.h"
#include "commands/setting/OwnersOption.h"
#include "commands/setting/SettingTargets.h"
#include "commands/setting/SettingVerbs.h"
#include "names/ObjectPath.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

/// A command that changes settings. Which of its words are what, the command says.
class ChangeSettings : public Command {
  public:
    void Declare(Syntax& syntax) override {
        m_owners.Declare(syntax);
        m_wait.Declare(syntax);
    }

  protected:
    OwnersOption& Owners() noexcept { return m_owners; }
    const WaitOption& Wait() const noexcept { return m_wait; }

  private:
    OwnersOption m_owners;
    WaitOption m_wait;
};

class SetSettings final : public ChangeSettings {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("[owner] setting=value...", m_words, 1, 64,
                         "Whose settings (not with --all-adapters; a pattern names several owners), each by "
                         "its caption such as "
                         "*JumboPacket or its name, and its value, by number or by its text. One setting and "
                         "its value may "
                         "also be two words");
        ChangeSettings::Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        Owners().Take(m_words);
        const bool areAssignments =
            !m_words.empty() && std::all_of(m_words.begin(), m_words.end(), IsAssignment);
        if (!areAssignments && m_words.size() != 2) {
            throw UsageError(Owners().IsAllAdapters()
                                 ? "--all-adapters: a setting and a value are needed, and no owner"
                                 : "an owner (or --all-adapters), a setting and a value are needed");
        }
        std::vector<Assignment> assignments;
        for (const std::string& word : m_words) {
            const std::size_t equals = word.find('=');
            assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
        }
        if (!areAssignments) {
            assignments = {{m_words.front(), m_words.back()}};
        }
        SettingTargets targets(run, Owners().AreSeveral(),
                               areAssignments ? ToldBy::Settings : ToldBy::Owners);
        for (const SettingOwner& owner : Owners().Find(run.Session())) {
            targets.Add(owner, assignments);
        }
        if (areAssignments) {
            return targets.Change(Wait());
        }
        const std::string caption = targets.Caption();
        return targets.Change(Wait(), Json{{"setting", caption.empty() ? m_words.front() : caption}, //
                                           {"value", m_words.back()}});
    }

  private:
    /// "Setting=value". An object path has a "=" of its own, and is the name of a setting.
    static bool IsAssignment(const std::string& word) {
        const std::size_t equals = word.find('=');
        return equals != std::string::npos && equals != 0 && !IsObjectPath(word);
    }

    std::vector<std::string> m_words;
};

class ResetSettings final : public ChangeSettings {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "[owner] [setting...]", m_words, 0, 64,
            "Whose settings (not with --all-adapters; a pattern names several owners), and which, by "
            "caption or name (default: all that differ from their defaults and can be written)");
        ChangeSettings::Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        Owners().Take(m_words);
        std::vector<Assignment> assignments;
        for (const std::string& word : m_words) {
            assignments.push_back({word, std::nullopt});
        }
        SettingTargets targets(run, Owners().AreSeveral() || assignments.empty(), ToldBy::Settings);
        for (const SettingOwner& owner : Owners().Find(run.Session())) {
            if (assignments.empty()) {
                targets.AddDiffering(owner);
            } else {
                targets.Add(owner, assignments);
            }
        }
        if (targets.IsEmpty() && !run.WantsJson() && !run.IsDryRun()) {
            run.Out() << "every setting that can be written has its default\n";
        }
        return targets.Change(Wait());
    }

  private:
    std::vector<std::string> m_words;
};

} // namespace

void AddSettingSet(CommandTree::Noun& setting) {
    setting.Verb("set", "Change settings of an owner, or of several at once", std::make_unique<SetSettings>())
        .Verb("reset", "Give settings their defaults", std::make_unique<ResetSettings>());
}

} // namespace quilletctl
