// quilletctl setting: the advanced settings of adapters, teams, VLANs and boot agents.
#include "app/Answers.h"
#include "commands/Commands.h"
#include "commands/setting/SettingTexts.h"
#include "commands/setting/SettingVerbs.h"
#include "names/SettingOwner.h"
#include "texts/JsonParts.h"
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
        return Json{
            {"kind", WordFor(owner.kind)}, {"path", owner.path}, {"objectId", TextOrNull(owner.objectId)}};
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
        syntax.Flag("--vmq", m_vmqOnly, "Only the settings of an adapter's virtual machine queues");
    }

  private:
    ExitStatus RunFor(const SettingOwner& owner, Invocation& run) override {
        CSettings settings;
        if (m_vmqOnly) {
            if (owner.kind != SettingOwner::Kind::Adapter) {
                throw UsageError("--vmq: only an adapter has virtual machine queues");
            }
            ReadVmqSettings(run.Session(), owner, settings);
        } else {
            ReadSettings(run.Session(), owner, settings);
        }
        Json list = Json::array();
        Table table({{"SETTING", Fit::Whole},
                     {"KIND", Fit::MayShorten},
                     {"CURRENT", Fit::MayShorten},
                     {"DEFAULT", Fit::MayShorten},
                     {"POSSIBLE VALUES", Fit::MayShorten}});
        for (const CSetting* setting : settings.m_vecItems) {
            list.push_back(AsJson(*setting));
            table.AddRow({ToUtf8(setting->m_wsCaption),
                          KindText(*setting) + (setting->m_bWritable ? "" : ", read only"),
                          CurrentText(*setting), DefaultText(*setting), PossibleText(*setting)});
        }
        return AnswerList(run, Json{{"owner", OwnerAsJson(owner)}, {"settings", std::move(list)}}, table,
                          "no settings");
    }

    bool m_vmqOnly = false;
};

class GetSetting final : public SettingCommand {
  public:
    void Declare(Syntax& syntax) override {
        SettingCommand::Declare(syntax);
        syntax.Argument("setting", m_caption, "The setting, by its caption such as *JumboPacket or its name");
    }

  private:
    ExitStatus RunFor(const SettingOwner& owner, Invocation& run) override {
        CSettings settings;
        ReadSettings(run.Session(), owner, settings);
        const CSetting& setting = FindSetting(settings, m_caption, owner);
        Sheet sheet;
        sheet.Add("Setting", ToUtf8(setting.m_wsCaption))
            .Add("Name", ToUtf8(setting.m_wsDescription))
            .Add("Help", ToUtf8(setting.m_wsMiniHelp))
            .Add("Kind", KindText(setting))
            .Add("Current", CurrentText(setting))
            .Add("Default", DefaultText(setting))
            .Add("Possible values", PossibleText(setting))
            .Add("Writable", YesOrNo(setting.m_bWritable))
            .Add("Group", setting.m_bGrouped ? std::to_string(setting.m_lGroupId) : std::string())
            .Add("Expose level", std::to_string(setting.GetExposeLevel()))
            .Add("Path", ToUtf8(setting.m_wsPath));
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
