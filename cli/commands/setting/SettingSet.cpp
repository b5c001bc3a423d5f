// quilletctl setting set: one setting of one owner, or of all adapters at once.
#include "changes/ClientSet.h"
#include "changes/Verification.h"
#include "commands/setting/SettingTexts.h"
#include "commands/setting/SettingValue.h"
#include "commands/setting/SettingVerbs.h"
#include "names/AdapterLookup.h"
#include "names/SettingOwner.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

/// One owner of the setting, and what becomes of it.
struct Target {
    enum class Outcome { Changed, Unchanged, ReadOnly, Missing, Refused, NotTaken, Unknown, NotTried };

    SettingOwner owner;
    std::optional<quillet::Setting> setting{}; ///< with the new value, where there is something to write
    std::string caption{};                     ///< of the setting; as it was typed where the owner has none
    std::vector<std::string> warnings{};
    Outcome outcome = Outcome::Missing;
    HRESULT code = S_OK;
    Verification taken{}; ///< where it was written
};

const char* NameOf(Target::Outcome outcome) {
    switch (outcome) {
    case Target::Outcome::Changed:
        return "changed";
    case Target::Outcome::Unchanged:
        return "unchanged";
    case Target::Outcome::ReadOnly:
        return "readOnly";
    case Target::Outcome::Missing:
        return "missing";
    case Target::Outcome::Refused:
        return "refused";
    case Target::Outcome::NotTaken:
        return "notTaken";
    case Target::Outcome::Unknown:
        return "unknown";
    case Target::Outcome::NotTried:
        return "notTried";
    }
    return "";
}

class SetSetting final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "[owner] setting value", m_words, 2, 3,
            "Whose setting (not with --all-adapters; a pattern names several adapters), its caption "
            "such as *JumboPacket or its name, and the value, by number or by its text");
        syntax.Flag("--all-adapters", m_allAdapters, "Set it on every adapter that has it");
        syntax.Choice("--of", m_kind, OwnerKindWords(),
                      "What the owner is, where its path does not say (default: adapter)");
    }

    ExitStatus Run(Invocation& run) override {
        TakeWords();
        quillet::Session& session = run.Session();
        std::vector<Target> targets = Targets(session);
        for (Target& target : targets) {
            Prepare(session, target);
        }
        for (Target& target : targets) {
            Check(session, target);
        }
        if (!run.WantsJson()) {
            PrintWarnings(targets, run.Out());
        }
        const std::optional<bool> restartNeeded = Write(run, targets);
        for (Target& target : targets) {
            ReadBack(session, target);
        }
        if (run.WantsJson()) {
            run.Print(AsJson(targets, restartNeeded));
        } else {
            PrintOutcomes(targets, restartNeeded, run.Out());
        }
        for (const Target& target : targets) {
            const std::string asked =
                "set " + target.caption + " of " + target.owner.called + " to " + m_value;
            if (target.outcome == Target::Outcome::Refused) {
                throw Refusal(asked, target.code, ReasonOf(target));
            }
            target.taken.End(asked);
        }
        const bool leftAlone = !m_isOfSeveral && targets.front().outcome == Target::Outcome::ReadOnly;
        return leftAlone ? ExitStatus::Findings : ExitStatus::Done;
    }

  private:
    void TakeWords() {
        if (m_allAdapters && !m_kind.empty() && m_kind != WordFor(SettingOwner::Kind::Adapter)) {
            throw UsageError("--all-adapters: not together with --of " + m_kind);
        }
        if (m_words.size() != (m_allAdapters ? 2U : 3U)) {
            throw UsageError(m_allAdapters
                                 ? "--all-adapters: a setting and a value are needed, and no owner"
                                 : "an owner (or --all-adapters), a setting and a value are needed");
        }
        m_isOfSeveral = m_allAdapters || (IsPattern(m_words.front()) &&
                                          (m_kind.empty() || m_kind == WordFor(SettingOwner::Kind::Adapter)));
        m_setting = m_words[m_words.size() - 2];
        m_value = m_words.back();
    }

    std::vector<Target> Targets(quillet::Session& session) const {
        std::vector<Target> targets;
        if (!m_isOfSeveral) {
            targets.push_back({FindSettingOwner(session, m_words.front(), m_kind)});
            return targets;
        }
        for (const ListedAdapter& adapter :
             m_allAdapters ? ReadAdapters(session) : FindAdapters(session, {m_words.front()})) {
            targets.push_back({{adapter.id, adapter.path, adapter.objectId, adapter.Called()}});
        }
        return targets;
    }

    /// Reads the setting and finds out whether there is something to write.
    void Prepare(quillet::Session& session, Target& target) const {
        const std::vector<quillet::Setting> settings = ReadSettings(session, target.owner);
        // Among many owners one without the setting is nothing special; a single one was meant.
        const quillet::Setting* setting = m_isOfSeveral ? LookForSetting(settings, m_setting)
                                                        : &FindSetting(settings, m_setting, target.owner);
        target.caption = setting == nullptr ? m_setting : ToUtf8(setting->keyword);
        if (setting == nullptr) {
            return;
        }
        if (!setting->writable) {
            target.outcome = Target::Outcome::ReadOnly;
            return;
        }
        target.setting = WithValue(*setting, m_value);
        target.outcome =
            target.setting->value == setting->value ? Target::Outcome::Unchanged : Target::Outcome::Changed;
    }

    /// Asks the team of an adapter, or the VLAN, what it thinks of the value.
    static void Check(quillet::Session& session, Target& target) {
        if (target.outcome != Target::Outcome::Changed) {
            return;
        }
        const std::optional<std::int32_t> value = quillet::CurrentNumber(*target.setting);
        if (value) {
            Attempt("check " + target.caption + " of " + target.owner.called,
                    [&] { AddObjections(session, target, *value); });
        }
    }

    static void AddObjections(quillet::Session& session, Target& target, std::int32_t value) {
        const std::wstring& keyword = target.setting->keyword;
        quillet::Flags<quillet::ProviderBit> objections;
        const char* objector = "the VLAN";
        if (const auto* adapter = std::get_if<quillet::AdapterId>(&target.owner.id)) {
            const quillet::SettingVerdict verdict = session.ValidateSetting(*adapter, keyword, value);
            objections = verdict.reasons;
            objector = "its team";
            if (verdict.isTeamed && quillet::IsJumboFrameSetting(*target.setting) &&
                !session.CheckJumboFrames(*adapter).onAllMembers) {
                target.warnings.push_back("not every member of its team has a jumbo-frame setting");
            }
        } else if (const auto* vlan = std::get_if<quillet::VlanId>(&target.owner.id)) {
            objections = session.ValidateSetting(*vlan, keyword, value);
        }
        for (const std::string& reason : InWords(objections, L"reason")) {
            target.warnings.push_back(objector + (" objects: " + reason));
        }
    }

    /// Writes in one client set; without anything to write none is opened.
    static std::optional<bool> Write(Invocation& run, std::vector<Target>& targets) {
        const auto isToBeChanged = [](const Target& each) {
            return each.outcome == Target::Outcome::Changed;
        };
        if (std::none_of(targets.begin(), targets.end(), isToBeChanged)) {
            return false;
        }
        ClientSet set(run);
        for (Target& target : targets) {
            if (!isToBeChanged(target)) {
                continue;
            }
            if (!run.MayGoOn()) {
                target.outcome = Target::Outcome::NotTried;
            } else {
                try {
                    run.Session().Write(*target.setting);
                } catch (const quillet::Error& refusal) {
                    target.code = refusal.Code();
                    target.outcome = Target::Outcome::Refused;
                }
            }
        }
        return set.Close();
    }

    /// Once the client set is closed: until then a provider may keep changes back.
    static void ReadBack(quillet::Session& session, Target& target) {
        if (target.outcome != Target::Outcome::Changed) {
            return;
        }
        target.taken = Verification::By([&](Verification& compare) {
            const std::vector<quillet::Setting> settings = ReadSettings(session, target.owner);
            const quillet::Setting& wanted = *target.setting;
            const quillet::Setting* now = quillet::FindSetting(settings, wanted.keyword);
            if (now == nullptr) {
                compare.Add("current", CurrentJson(wanted), Json(), "it is not there any more");
            } else if (!HaveSameValue(*now, wanted)) {
                compare.Add("current", CurrentJson(wanted), CurrentJson(*now),
                            "it is " + ValueText(*now) + ", not " + ValueText(wanted));
            }
        });
        const std::optional<bool> took = target.taken.Took();
        target.outcome = !took   ? Target::Outcome::Unknown
                         : *took ? Target::Outcome::Changed
                                 : Target::Outcome::NotTaken;
    }

    static Json CurrentJson(const quillet::Setting& setting) {
        return quilletctl::AsJson(setting).at("current");
    }

    static bool HaveSameValue(const quillet::Setting& now, const quillet::Setting& wanted) {
        // The digits of an address may come back in the other case.
        return SameIgnoringCase(ToUtf8(wanted.keyword), "NetworkAddress")
                   ? SameIgnoringCase(ValueText(now), ValueText(wanted))
                   : CurrentJson(now) == CurrentJson(wanted);
    }

    static void PrintWarnings(const std::vector<Target>& targets, std::ostream& out) {
        for (const Target& target : targets) {
            for (const std::string& warning : target.warnings) {
                out << "warning: " << Printable(target.owner.called) << ": " << warning << '\n';
            }
        }
    }

    /// What would have been possible, where the provider has that against the value.
    static std::string ReasonOf(const Target& target) {
        return target.code == static_cast<HRESULT>(WBEM_E_VALUE_OUT_OF_RANGE)
                   ? "the value is out of range (" + PossibleText(*target.setting) + ')'
                   : std::string();
    }

    static std::string OutcomeText(const Target& target) {
        switch (target.outcome) {
        case Target::Outcome::Changed:
        case Target::Outcome::NotTaken:
        case Target::Outcome::Unknown:
            return target.taken.Text("set to " + ValueText(*target.setting));
        case Target::Outcome::Unchanged:
            return "is " + ValueText(*target.setting) + " already";
        case Target::Outcome::ReadOnly:
            return target.caption + " is read only, left alone";
        case Target::Outcome::Missing:
            return "has no " + target.caption + ", left alone";
        case Target::Outcome::Refused:
            return "refused, " + ExplainResult(target.code, ReasonOf(target));
        case Target::Outcome::NotTried:
            return "left alone, for the command was interrupted";
        }
        return {};
    }

    static void PrintOutcomes(const std::vector<Target>& targets, std::optional<bool> restartNeeded,
                              std::ostream& out) {
        for (const Target& target : targets) {
            out << Printable(target.owner.called + ": " + OutcomeText(target)) << '\n';
        }
        out << RestartText(restartNeeded) << '\n';
    }

    Json AsJson(const std::vector<Target>& targets, std::optional<bool> restartNeeded) const {
        Json list = Json::array();
        for (const Target& target : targets) {
            list.push_back(Json{{"kind", WordFor(target.owner)},
                                {"path", target.owner.path},
                                {"outcome", NameOf(target.outcome)},
                                {"warnings", target.warnings},
                                {"code", FAILED(target.code) ? Json(DescribeResult(target.code)) : Json()},
                                {"differences", target.taken.Differences()}});
        }
        const auto known = std::find_if(targets.begin(), targets.end(), [](const Target& each) {
            return each.outcome != Target::Outcome::Missing;
        });
        return Json{{"setting", known == targets.end() ? m_setting : known->caption},
                    {"value", m_value},
                    {"targets", std::move(list)},
                    {"restartNeeded", RestartJson(restartNeeded)}};
    }

    std::vector<std::string> m_words;
    bool m_allAdapters = false;
    bool m_isOfSeveral = false; ///< all adapters, or those of a pattern
    std::string m_kind;
    std::string m_setting;
    std::string m_value;
};

} // namespace

void AddSettingSet(CommandTree::Noun& setting) {
    setting.Verb("set", "Change a setting of one owner, or of all adapters at once",
                 std::make_unique<SetSetting>());
}

} // namespace quilletctl
