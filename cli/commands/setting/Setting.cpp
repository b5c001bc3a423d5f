// quilletctl setting: the advanced settings of adapters, teams, VLANs and boot agents.
#include "app/Answers.h"
#include "app/List.h"
#include "commands/Commands.h"
#include "commands/setting/SettingTexts.h"
#include "commands/setting/SettingVerbs.h"
#include "names/ObjectPath.h"
#include "names/SettingOwner.h"
#include "texts/JsonParts.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

/// A command about the settings of one owner.
class SettingCommand : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("owner", m_owner, "Whose settings: a name, object ID or object path");
        syntax.Choice("--of", m_kind, OwnerKindWords(),
                      "What the owner is, where its path does not say (default: adapter)");
    }
    ExitStatus Run(Invocation& run) final {
        return RunFor(FindSettingOwner(run.Session(), m_owner, m_kind), run);
    }

  protected:
    static Json OwnerAsJson(const SettingOwner& owner) {
        return Json{{"kind", WordFor(owner)}, {"path", owner.path}, {"objectId", TextOrNull(owner.objectId)}};
    }

  private:
    virtual ExitStatus RunFor(const SettingOwner& owner, Invocation& run) = 0;

    std::string m_owner;
    std::string m_kind;
};

class ListSettings final : public SettingCommand {
  public:
    void Declare(Syntax& syntax) override {
        SettingCommand::Declare(syntax);
        syntax.Arguments("setting", m_settings, 0, kMostNames,
                         "Settings: captions or names; a pattern names several (default: all)");
        syntax.Flag("--vmq", m_vmqOnly, "Only the settings of an adapter's virtual machine queues");
        syntax.Flag("--changed", m_changedOnly, "Only settings whose value is not the default");
        m_options.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const SettingOwner& owner, Invocation& run) override {
        const std::vector<quillet::Setting> settings = Settings(owner, run.Session());
        List list(m_options);
        for (const std::size_t i : ChooseNamed(NamesOf(settings), m_settings, "setting")) {
            const quillet::Setting& setting = settings[i];
            const bool isChanged = IsChanged(setting);
            if (isChanged || !m_changedOnly) {
                list.AddRow({ToUtf8(setting.keyword), ToUtf8(setting.description),
                             KindText(setting) + (setting.writable ? "" : ", read only"),
                             Cell(ValueText(setting), isChanged ? Tone::Warning : Tone::Plain),
                             DefaultText(setting), PossibleText(setting)},
                            AsJson(setting));
            }
        }
        return list.Answer(
            run,
            [&](Json entries) {
                return Json{{"owner", OwnerAsJson(owner)}, {"settings", std::move(entries)}};
            },
            m_changedOnly ? "every setting has its default" : "no settings");
    }

    std::vector<quillet::Setting> Settings(const SettingOwner& owner, quillet::Session& session) const {
        if (!m_vmqOnly) {
            return ReadSettings(session, owner);
        }
        const auto* adapter = std::get_if<quillet::AdapterId>(&owner.id);
        if (adapter == nullptr) {
            throw UsageError("--vmq: only an adapter has virtual machine queues");
        }
        return ReadQueueSettings(session, *adapter, owner.called);
    }

    std::vector<std::string> m_settings;
    bool m_vmqOnly = false;
    bool m_changedOnly = false;
    ListOptions m_options{{{"SETTING"},
                           {"NAME", Fit::MayShorten, {}, Stay::WhileAllFits},
                           {"KIND", Fit::MayShorten, {}, Stay::Second},
                           {"CURRENT", Fit::MayShorten},
                           {"DEFAULT", Fit::MayShorten},
                           {"POSSIBLE VALUES", Fit::MayShorten, {}, Stay::Third}}};
};

class GetSetting final : public SettingCommand {
  public:
    void Declare(Syntax& syntax) override {
        SettingCommand::Declare(syntax);
        syntax.Argument("setting", m_caption, "The setting, by its caption such as *JumboPacket or its name");
    }

  private:
    ExitStatus RunFor(const SettingOwner& owner, Invocation& run) override {
        const std::vector<quillet::Setting> settings = ReadSettings(run.Session(), owner);
        const quillet::Setting& setting = FindSetting(settings, m_caption, owner);
        Sheet sheet;
        sheet.Add("Setting", ToUtf8(setting.keyword))
            .Add("Name", ToUtf8(setting.description))
            .Add("Help", ToUtf8(setting.help))
            .Add("Kind", KindText(setting))
            .Add("Current", ValueText(setting))
            .Add("Default", DefaultText(setting))
            .Add("Possible values", PossibleText(setting))
            .Add("Writable", YesOrNo(setting.writable))
            .Add("Group", setting.group ? std::to_string(*setting.group) : std::string())
            .Add("Expose level", std::to_string(NumberIn(ToUtf8(setting.exposeLevel)).value_or(0)))
            .Add("Path", PathOf(setting.id));
        return AnswerSheet(run, Json{{"owner", OwnerAsJson(owner)}, {"setting", AsJson(setting)}}, sheet);
    }

    std::string m_caption;
};

} // namespace

void AddSettingCommands(CommandTree& tree) {
    auto setting = tree.AddNoun("setting", "The advanced settings of adapters, teams, VLANs and boot agents");
    setting
        .Query("list", "List the settings of an owner with current, default and possible values",
               std::make_unique<ListSettings>())
        .Query("get", "Show one setting", std::make_unique<GetSetting>());
    AddSettingSet(setting);
}

} // namespace quilletctl
