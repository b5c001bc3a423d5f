// From assignments to changes.
#include "commands/setting/SettingTargets.h"

#include "commands/setting/SettingTexts.h"
#include "commands/setting/SettingValue.h"
#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <algorithm>
#include <memory>

namespace quilletctl {

namespace {

using TargetOutcome = Target::Outcome;

/// The settings of an owner after the change, read once for all that were written.
class Afterwards {
  public:
    const std::vector<quillet::Setting>& Of(quillet::Session& session, const SettingOwner& owner) {
        if (!m_settings) {
            m_settings = ReadSettings(session, owner);
        }
        return *m_settings;
    }

  private:
    std::optional<std::vector<quillet::Setting>> m_settings;
};

Json CurrentJson(const quillet::Setting& setting) {
    return AsJson(setting).at("current");
}

bool HaveSameValue(const quillet::Setting& now, const quillet::Setting& wanted) {
    // The digits of an address may come back in the other case.
    return SameIgnoringCase(ToUtf8(wanted.keyword), "NetworkAddress")
               ? SameIgnoringCase(ValueText(now), ValueText(wanted))
               : CurrentJson(now) == CurrentJson(wanted);
}

void Compare(const quillet::Setting& wanted, const std::vector<quillet::Setting>& settings,
             Verification& taken) {
    const quillet::Setting* now = quillet::FindSetting(settings, wanted.keyword);
    if (now == nullptr) {
        taken.Add("current", CurrentJson(wanted), Json(), "it is not there any more");
    } else if (!HaveSameValue(*now, wanted)) {
        taken.Add("current", CurrentJson(wanted), CurrentJson(*now),
                  "it is " + ValueText(*now) + ", not " + ValueText(wanted));
    }
}

} // namespace

void SettingTargets::Add(const SettingOwner& owner, const std::vector<Assignment>& assignments) {
    const std::size_t first = m_wanted.size();
    AddAll(owner, ReadSettings(m_run.Session(), owner), assignments);
    for (std::size_t i = first; i < m_wanted.size(); ++i) {
        for (std::size_t j = first; j < i; ++j) {
            if (m_wanted[i].caption == m_wanted[j].caption) {
                throw UsageError(m_wanted[i].caption + ": given more than once");
            }
        }
    }
}

void SettingTargets::AddDiffering(const SettingOwner& owner) {
    const std::vector<quillet::Setting> settings = ReadSettings(m_run.Session(), owner);
    std::vector<Assignment> differing;
    for (const quillet::Setting& setting : settings) {
        const std::optional<quillet::Setting> reset = WithDefault(setting);
        if (setting.writable && reset && reset->value != setting.value) {
            differing.push_back({PathOf(setting.id), std::nullopt});
        }
    }
    AddAll(owner, settings, differing);
}

void SettingTargets::AddAll(const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                            const std::vector<Assignment>& assignments) {
    const std::size_t first = m_wanted.size();
    for (const Assignment& assignment : assignments) {
        AddOne(owner, settings, assignment);
    }
    const auto afterwards = std::make_shared<Afterwards>();
    for (std::size_t i = first; i < m_wanted.size(); ++i) {
        Wanted& wanted = m_wanted[i];
        if (wanted.setting) {
            wanted.target.change = [setting = *wanted.setting](quillet::Session& session) {
                session.Write(setting);
            };
            wanted.target.compare = [owner, afterwards, setting = *wanted.setting](quillet::Session& session,
                                                                                   Verification& taken) {
                Compare(setting, afterwards->Of(session, owner), taken);
            };
        }
    }
}

void SettingTargets::AddOne(const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                            const Assignment& assignment) {
    // Among many owners one without the setting is nothing special; a single one was meant.
    const quillet::Setting* setting = m_isOfSeveral ? LookForSetting(settings, assignment.setting)
                                                    : &FindSetting(settings, assignment.setting, owner);
    const std::string caption = setting == nullptr ? assignment.setting : ToUtf8(setting->keyword);
    Wanted wanted{owner, caption, {}, {}};
    Target& target = wanted.target;
    target.called = owner.called;
    target.named = {{"kind", {}, WordFor(owner)}, {"path", {}, owner.path}};
    if (m_told == ToldBy::Settings) {
        target.named.push_back({"setting", {}, caption});
        target.named.push_back({"value", {}, assignment.value ? Json(*assignment.value) : Json()});
    }
    if (setting == nullptr) {
        target.text = "has no " + caption + ", left alone";
    } else if (!setting->writable) {
        target.outcome = TargetOutcome::ReadOnly;
        target.text = caption + " is read only, left alone";
    } else if (const auto changed =
                   assignment.value ? WithValue(*setting, *assignment.value) : WithDefault(*setting)) {
        Want(wanted, *setting, *changed, assignment.value.value_or(DefaultText(*setting)));
    } else if (m_isOfSeveral) {
        target.text = caption + " has no default, left alone";
    } else {
        throw UsageError(caption + " of " + owner.called + " has no default that it can have");
    }
    m_wanted.push_back(std::move(wanted));
}

void SettingTargets::Want(Wanted& wanted, const quillet::Setting& setting, const quillet::Setting& changed,
                          const std::string& value) const {
    const std::string text = ValueText(changed);
    const std::string what = "set " + wanted.caption + " of " + wanted.owner.called + " to ";
    const bool differs = changed.value != setting.value;
    Target& target = wanted.target;
    target.outcome = differs ? TargetOutcome::Changed : TargetOutcome::Unchanged;
    target.text = differs ? "set to " + text : "is " + text + " already";
    target.possible = PossibleText(setting);
    target.asked = what + value;
    target.step = what + text;
    if (m_told == ToldBy::Settings) {
        target.called += ": " + wanted.caption;
        target.named.back().value = value;
    }
    wanted.setting = changed;
}

void SettingTargets::Check(Wanted& wanted) {
    const std::optional<std::int32_t> value = wanted.target.outcome == TargetOutcome::Changed
                                                  ? quillet::CurrentNumber(*wanted.setting)
                                                  : std::nullopt;
    if (!value) {
        return;
    }
    const std::wstring& keyword = wanted.setting->keyword;
    quillet::Session& session = m_run.Session();
    std::vector<std::string>& warnings = wanted.target.warnings;
    quillet::Flags<quillet::ProviderBit> objections;
    const char* objector = "the VLAN";
    if (const auto* adapter = std::get_if<quillet::AdapterId>(&wanted.owner.id)) {
        const quillet::SettingVerdict verdict = session.ValidateSetting(*adapter, keyword, *value);
        objections = verdict.reasons;
        objector = "its team";
        if (verdict.isTeamed && quillet::IsJumboFrameSetting(*wanted.setting) &&
            !session.CheckJumboFrames(*adapter).onAllMembers) {
            warnings.emplace_back("not every member of its team has a jumbo-frame setting");
        }
    } else if (const auto* vlan = std::get_if<quillet::VlanId>(&wanted.owner.id)) {
        objections = session.ValidateSetting(*vlan, keyword, *value);
    }
    for (const std::string& reason : InWords(objections, L"reason")) {
        warnings.push_back(objector + (" objects: " + reason));
    }
}

std::string SettingTargets::Caption() const {
    const auto known = std::find_if(m_wanted.begin(), m_wanted.end(), [](const Wanted& each) {
        return each.target.outcome != TargetOutcome::Missing;
    });
    return known == m_wanted.end() ? std::string() : known->caption;
}

std::vector<Watched> SettingTargets::WatchedOnes() const {
    std::vector<Watched> watched;
    const std::string* last = nullptr;
    for (const Wanted& wanted : m_wanted) {
        const SettingOwner& owner = wanted.owner;
        if (wanted.target.outcome != TargetOutcome::Changed || (last != nullptr && *last == owner.path)) {
            continue;
        }
        last = &owner.path;
        if (const auto* adapter = std::get_if<quillet::AdapterId>(&owner.id)) {
            watched.push_back(LinkOf(*adapter, owner.called));
        } else if (const auto* team = std::get_if<quillet::TeamId>(&owner.id)) {
            watched.push_back(StatusOf(*team, owner.called));
        } else if (const auto* vlan = std::get_if<quillet::VlanId>(&owner.id)) {
            watched.push_back(StatusOf(*vlan, owner.called));
        }
    }
    return watched;
}

ExitStatus SettingTargets::Change(const WaitOption& wait, const Json& answer) {
    const std::vector<Watched> up = wait.Up(m_run.Session(), WatchedOnes());
    std::vector<Target> targets;
    for (Wanted& wanted : m_wanted) {
        Attempt("check " + wanted.caption + " of " + wanted.owner.called, [&] { Check(wanted); });
        targets.push_back(std::move(wanted.target));
    }
    return ChangeTargets(m_run, std::move(targets), !m_isOfSeveral, answer, [&] { wait.Until(m_run, up); });
}

} // namespace quilletctl
