// quilletctl setting: the advanced settings of adapters, teams, VLANs and boot agents.
#include "app/Answers.h"
#include "app/List.h"
#include "commands/Commands.h"
#include "commands/setting/OwnersOption.h"
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

Json OwnerAsJson(const SettingOwner& owner) {
    return Json{{"kind", WordFor(owner)}, {"path", owner.path}, {"objectId", TextOrNull(owner.objectId)}};
}

class ListSettings final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "[owner] [setting...]", m_words, 0, kMostNames,
            "Whose settings (not with --all-adapters; a pattern names several owners), and which, "
            "by caption or name; a pattern names several (default: all)");
        m_owners.Declare(syntax);
        syntax.Flag("--vmq", m_vmqOnly, "Only the settings of an adapter's virtual machine queues");
        syntax.Flag("--changed", m_changedOnly, "Only settings whose value is not the default");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        m_owners.Take(m_words);
        quillet::Session& session = run.Session();
        const std::vector<SettingOwner> owners = m_owners.Find(session);
        List list(m_options);
        list.LeaveOut("OWNER"); // which a heading says
        if (!m_owners.AreSeveral()) {
            AddRows(list, owners.front(), Settings(owners.front(), session), m_words);
            return list.Answer(run, OfOne(owners.front()), None());
        }
        std::vector<std::string> unknown = m_words;
        for (const SettingOwner& owner : owners) {
            list.BeginGroup(owner.called);
            try {
                AddKnown(list, owner, Settings(owner, session), unknown);
            } catch (const Refusal& refusal) {
                // One that cannot be read hides none of the others.
                run.FailAfterAnswer(refusal);
            }
        }
        if (!unknown.empty() && run.RefusalsAfterAnswer().empty()) {
            throw UsageError("no setting is called \"" + unknown.front() + '"');
        }
        return list.Answer(run, OfSeveral(owners), None());
    }

  private:
    using Document = std::function<Json(Json entries)>;

    /// Those of the wanted settings that an owner of several has. @param unknown is left with those that none
    /// had so far
    void AddKnown(List& list, const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                  std::vector<std::string>& unknown) {
        const std::vector<Named> names = NamesOf(settings);
        const auto isNone = [&](const std::string& text) { return FindNamedOrFitting(names, text).empty(); };
        std::vector<std::string> known = m_words;
        std::erase_if(known, isNone);
        std::erase_if(unknown, [&](const std::string& text) { return !isNone(text); });
        if (m_words.empty() || !known.empty()) {
            AddRows(list, owner, settings, known);
        }
    }
    void AddRows(List& list, const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                 const std::vector<std::string>& wanted) const {
        for (const std::size_t i : ChooseNamed(NamesOf(settings), wanted, "setting")) {
            const quillet::Setting& setting = settings[i];
            const bool isChanged = IsChanged(setting);
            if (isChanged || !m_changedOnly) {
                list.AddRow({ToUtf8(setting.keyword), ToUtf8(setting.description),
                             KindText(setting) + (setting.writable ? "" : ", read only"),
                             Cell(ValueText(setting), isChanged ? Tone::Warning : Tone::Plain),
                             DefaultText(setting), PossibleText(setting), owner.called},
                            Json{{"owner", owner.path}, {"setting", AsJson(setting)}});
            }
        }
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
    const char* None() const { return m_changedOnly ? "every setting has its default" : "no settings"; }

    static Json AnswerOf(const SettingOwner& owner, const Json& entries) {
        Json settings = Json::array();
        for (const Json& entry : entries) {
            if (entry.at("owner") == owner.path) {
                settings.push_back(entry.at("setting"));
            }
        }
        return Json{{"owner", OwnerAsJson(owner)}, {"settings", std::move(settings)}};
    }
    static Document OfOne(const SettingOwner& owner) {
        return [&owner](const Json& entries) { return AnswerOf(owner, entries); };
    }
    static Document OfSeveral(const std::vector<SettingOwner>& owners) {
        return [&owners](const Json& entries) {
            Json answers = Json::array();
            for (const SettingOwner& owner : owners) {
                answers.push_back(AnswerOf(owner, entries));
            }
            return Json{{"owners", std::move(answers)}};
        };
    }

    std::vector<std::string> m_words; ///< the owner, until it is taken, and settings
    OwnersOption m_owners;
    bool m_vmqOnly = false;
    bool m_changedOnly = false;
    ListOptions m_options{{{"SETTING"},
                           {"NAME", Fit::MayShorten, {}, Stay::WhileAllFits},
                           {"KIND", Fit::MayShorten, {}, Stay::Second},
                           {"CURRENT", Fit::MayShorten},
                           {"DEFAULT", Fit::MayShorten},
                           {"POSSIBLE VALUES", Fit::MayShorten, {}, Stay::Third},
                           {"OWNER", Fit::MayShorten}}};
};

class GetSetting final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("owner", m_owner, "Whose settings: a name, object ID or object path");
        syntax.Choice("--of", m_kind, OwnerKindWords(),
                      "What the owner is, where its path does not say (default: adapter)");
        syntax.Argument("setting", m_caption, "The setting, by its caption such as *JumboPacket or its name");
    }

    ExitStatus Run(Invocation& run) override {
        const SettingOwner owner = FindSettingOwner(run.Session(), m_owner, m_kind);
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

  private:
    std::string m_owner;
    std::string m_kind;
    std::string m_caption;
};

} // namespace

void AddSettingCommands(CommandTree& tree) {
    auto setting = tree.AddNoun("setting", "The advanced settings of adapters, teams, VLANs and boot agents");
    setting
        .Query("list", "List the settings of owners with current, default and possible values",
               std::make_unique<ListSettings>())
        .Query("get", "Show one setting", std::make_unique<GetSetting>());
    AddSettingSet(setting);
}

} // namespace quilletctl
