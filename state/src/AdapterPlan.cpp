// What has to be changed of adapters, and settings of whatever has any.
#include "Options.h"
#include "Planner.h"
#include "SettingValues.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

namespace {

/// "magicPacket on, link off" of the keys and values of an object.
std::string OptionsText(const Json& options) {
    std::string text;
    for (const auto& [key, value] : options.items()) {
        text += (text.empty() ? "" : ", ") + key + ' ' +
                (!value.is_boolean()   ? value.dump()
                 : value == Json(true) ? "on"
                                       : "off");
    }
    return text;
}

/// Takes over the options that differ; whether there are any. What the adapter does not have is `missing`.
template <class Record, std::size_t Size>
bool TakeOptions(const std::array<Option<Record>, Size>& options, const Json& wanted, const Record& present,
                 Record& changed, Json& now, Json& then, std::vector<std::string>& missing) {
    for (const auto& option : options) {
        const auto value = wanted.find(option.key);
        if (value == wanted.end()) {
            continue;
        }
        const bool isOn = *value == Json(true);
        const std::optional<bool>& current = present.*option.field;
        if (!current) {
            missing.emplace_back(option.key);
        } else if (*current != isOn) {
            changed.*option.field = isOn;
            now[option.key] = *current;
            then[option.key] = isOn;
        }
    }
    return !then.empty();
}

std::string NewSettingText(const std::string& name, const std::string& subject, const Json& value) {
    return "set " + name + " of " + subject + " to " + value.dump();
}

std::string NoSettingText(const std::string& name, const std::string& subject) {
    return subject + " has no setting " + name;
}

} // namespace

void Planner::PlanAdapter(const AdapterWish& wish) {
    const Adapter& adapter = m_machine.Adapters()[wish.adapter];
    const std::string subject = SubjectOf(wish.adapter);
    const Owner owner = adapter.id;
    struct Value {
        Json value;
        bool isOptional;
    };
    std::vector<std::pair<std::string, Value>> settings;
    const auto take = [&](const std::string& name, const Json& value, bool isOptional) {
        const auto known = std::find_if(settings.begin(), settings.end(), [&](const auto& each) {
            const Setting* one = SettingCalled(m_machine.Settings(owner), each.first);
            return one != nullptr && one == SettingCalled(m_machine.Settings(owner), name);
        });
        if (known != settings.end()) {
            known->second = {value, isOptional};
        } else {
            settings.emplace_back(name, Value{value, isOptional});
        }
    };
    Json power = Json::object();
    Json wake = Json::object();
    std::optional<std::string> iscsi;
    bool isPattern = true;
    bool isIscsiOptional = true;
    for (const WantedAdapter* entry : wish.entries) {
        const bool isOptional = entry->selector.IsPattern();
        isPattern = isPattern && isOptional;
        if (!entry->profile.is_null()) {
            take(kProfile, entry->profile, isOptional);
        }
        for (const auto& [name, value] : entry->settings.items()) {
            take(name, value, isOptional);
        }
        power.update(entry->power);
        wake.update(entry->wakeOnLan);
        if (entry->iscsi) {
            iscsi = entry->iscsi;
            isIscsiOptional = isOptional;
        }
    }
    for (const auto& [name, value] : settings) {
        PlanSetting(owner, subject, name, value.value,
                    name == kProfile ? StepKind::Profile : StepKind::Setting, value.isOptional);
    }
    if (!power.empty()) {
        PlanPower(wish.adapter, subject, power, isPattern);
    }
    if (!wake.empty()) {
        PlanWake(wish.adapter, subject, wake, isPattern);
    }
    if (iscsi) {
        PlanIscsi(wish.adapter, subject, *iscsi, isIscsiOptional);
    }
}

void Planner::PlanSettings(const Owner& owner, const std::string& subject, const Json& values,
                           bool isOptional) {
    for (const auto& [name, value] : values.items()) {
        PlanSetting(owner, subject, name, value, StepKind::Setting, isOptional);
    }
}

void Planner::PlanSetting(const Owner& owner, const std::string& subject, const std::string& name,
                          const Json& value, StepKind kind, bool isOptional) {
    const Setting* setting = SettingCalled(m_machine.Settings(owner), name);
    if (setting == nullptr) {
        if (!isOptional) {
            Problem(subject, "it has no setting " + name);
        }
        return;
    }
    const std::string caption = ToUtf8(setting->keyword);
    Setting changed = *setting;
    try {
        changed = WithValue(*setting, value);
    } catch (const ValueError& error) {
        Problem(subject, caption + ": " + value.dump() + " " + error.what());
        return;
    }
    if (HasSameValue(*setting, changed)) {
        return;
    }
    if (!setting->writable) {
        Problem(subject, caption + " is read only, and is " + ValueText(*setting));
        return;
    }
    if (const auto number = CurrentNumber(changed)) {
        m_checks.emplace_back([this, owner, subject, changed, number = *number] {
            Flags<ProviderBit> reasons;
            if (const auto* adapter = std::get_if<AdapterId>(&owner)) {
                const SettingVerdict verdict =
                    m_machine.Asked().ValidateSetting(*adapter, changed.keyword, number);
                reasons = verdict.reasons;
                if (verdict.isTeamed && IsJumboFrameSetting(changed) &&
                    !m_machine.Asked().CheckJumboFrames(*adapter).onAllMembers) {
                    m_plan.warnings.push_back(subject +
                                              ": not every member of its team has a jumbo-frame setting");
                }
            } else if (const auto* vlan = std::get_if<VlanId>(&owner)) {
                reasons = m_machine.Asked().ValidateSetting(*vlan, changed.keyword, number);
            }
            if (reasons.Any()) {
                m_plan.warnings.push_back(subject + ": the provider objects to " + ToUtf8(changed.keyword) +
                                          " = " + ValueText(changed));
            }
        });
    }
    Add(kind, subject, caption, ValueOf(*setting), ValueOf(changed),
        "set " + caption + " of " + subject + " to " + ValueText(changed) + ", now " + ValueText(*setting),
        [changed](Work& work) { work.session.Write(changed); });
}

void Planner::PlanNewSettings(const std::function<Owner(Work&)>& owner, const std::string& subject,
                              const Json& values) {
    for (const auto& [name, value] : values.items()) {
        Add(StepKind::NewSetting, subject, name, Json(), value, NewSettingText(name, subject, value),
            [owner, subject, name = name, value = value](Work& work) {
                const std::vector<Setting> settings =
                    std::visit([&](const auto& id) { return work.session.Settings(id); }, owner(work));
                const Setting* setting = SettingCalled(settings, name);
                if (setting == nullptr) {
                    throw ValueError(NoSettingText(name, subject));
                }
                const Setting changed = WithValue(*setting, value);
                if (!HasSameValue(*setting, changed)) {
                    work.session.Write(changed);
                }
            });
    }
}

void Planner::PlanPower(std::size_t adapter, const std::string& subject, const Json& wanted,
                        bool isOptional) {
    const PowerOptions& present = m_machine.Power(adapter);
    PowerOptions changed;
    changed.mode = present.mode; // which travels with every change
    Json now = Json::object();
    Json then = Json::object();
    if (const auto mode = wanted.find("mode");
        mode != wanted.end() && mode->get<std::uint32_t>() != present.mode) {
        changed.mode = mode->get<std::uint32_t>();
        now["mode"] = present.mode;
        then["mode"] = changed.mode;
    }
    std::vector<std::string> missing;
    const bool differs = TakeOptions(kPowerOptions, wanted, present, changed, now, then, missing);
    for (const std::string& key : missing) {
        if (!isOptional) {
            Problem(subject, "it does not have the power option " + key);
        }
    }
    if (differs) {
        const AdapterId id = m_machine.Adapters()[adapter].id;
        Add(StepKind::Power, subject, "power", now, then,
            "set the power options of " + subject + ": " + OptionsText(then) + ", now " + OptionsText(now),
            [id, changed](Work& work) { work.session.SetPower(id, changed); });
    }
}

void Planner::PlanWake(std::size_t adapter, const std::string& subject, const Json& wanted, bool isOptional) {
    const WakeOptions& present = m_machine.Wake(adapter);
    WakeOptions changed;
    Json now = Json::object();
    Json then = Json::object();
    std::vector<std::string> missing;
    const bool differs = TakeOptions(kWakeOptions, wanted, present, changed, now, then, missing);
    for (const std::string& key : missing) {
        if (!isOptional) {
            Problem(subject, "it does not have the wake-on-LAN option " + key);
        }
    }
    if (differs) {
        const AdapterId id = m_machine.Adapters()[adapter].id;
        Add(StepKind::WakeOnLan, subject, "wakeOnLan", now, then,
            "set the wake-on-LAN options of " + subject + ": " + OptionsText(then) + ", now " +
                OptionsText(now),
            [id, changed](Work& work) { work.session.SetWake(id, changed); });
    }
}

void Planner::PlanIscsi(std::size_t adapter, const std::string& subject, const std::string& word,
                        bool isOptional) {
    const IscsiAdapter* port = m_machine.Iscsi(adapter);
    const IscsiStatus wanted = *IscsiFrom(word);
    if (port == nullptr) {
        if (!isOptional && wanted != IscsiStatus::NotBootPort) {
            Problem(subject, "it cannot boot from iSCSI");
        }
        return;
    }
    if (port->status == wanted) {
        return;
    }
    const std::optional<std::string> known = IscsiWord(port->status);
    const Json now = known ? Json(*known) : Json(static_cast<std::int32_t>(port->status));
    Add(wanted == IscsiStatus::NotBootPort ? StepKind::IscsiOff : StepKind::Iscsi, subject, "iscsi", now,
        word, "set the iSCSI boot place of " + subject + " to " + word,
        [id = port->bootAgent, wanted, subject](Work& work) {
            if (const unsigned code = work.session.SetIscsiStatus(id, wanted); code != 0) {
                throw ValueError("the provider refused, code " + std::to_string(code));
            }
        });
}

} // namespace quillet::state
