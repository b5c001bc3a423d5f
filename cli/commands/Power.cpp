// quilletctl power and quilletctl wol: the power-saving and wake-on-LAN options of an adapter.
#include "app/Answers.h"
#include "changes/Targets.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "texts/InWords.h"

#include <nlohmann/json.hpp>

#include <array>

namespace quilletctl {

namespace {

/// An option on the command line, on the screen and in JSON, and its place in the record.
template <class Record>
struct Option {
    const char* word;
    const char* label;
    const char* key;
    std::optional<bool> Record::*field;
};

using Power = quillet::PowerOptions;
constexpr std::array kPowerOptions{
    Option<Power>{"--auto-power-save", "Automatic power saving", "autoPowerSave", &Power::autoPowerSave},
    Option<Power>{"--reduce-speed", "Reduce speed on power-down", "reduceSpeed", &Power::reduceSpeed},
    Option<Power>{"--smart-power-down", "Power down when unused", "smartPowerDown", &Power::smartPowerDown},
    Option<Power>{"--aspm", "Enhanced bus power saving", "aspm", &Power::enhancedAspm},
    Option<Power>{"--battery-connection", "Automatic connection battery saver", "batteryConnection",
                  &Power::batteryConnection},
    Option<Power>{"--battery-speed", "Reduce speed on battery", "batterySpeed", &Power::batterySpeed},
    Option<Power>{"--system-idle", "Save power on an idle system", "systemIdle", &Power::systemIdle},
};
using Wake = quillet::WakeOptions;
constexpr std::array kWakeOptions{
    Option<Wake>{"--power-off", "Wake from power off", "powerOff", &Wake::fromPowerOff},
    Option<Wake>{"--link", "Wake on link", "link", &Wake::onLink},
    Option<Wake>{"--magic-packet", "Wake on magic packet", "magicPacket", &Wake::onMagicPacket},
    Option<Wake>{"--directed-packet", "Wake on directed packet", "directedPacket", &Wake::onDirectedPacket},
    Option<Wake>{"--pattern", "Wake on packet pattern", "pattern", &Wake::onPattern},
};

const std::vector<std::string> kModes{"0", "1", "2"};

Power ReadPower(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadPower, adapter, "the power options");
}

Wake ReadWake(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadWake, adapter, "the wake-on-LAN options");
}

/// The options by their names; null for one that the adapter does not have, or that is to stay as it is.
template <class Record, std::size_t Size>
std::vector<Field> OptionFields(const std::array<Option<Record>, Size>& options, const Record& info) {
    std::vector<Field> fields;
    for (const auto& option : options) {
        const std::optional<bool>& value = info.*option.field;
        fields.push_back({option.key, option.label, value ? Json(*value) : Json()});
    }
    return fields;
}

std::vector<Field> Fields(const Wake& info) {
    return OptionFields(kWakeOptions, info);
}

std::vector<Field> Fields(const Power& info) {
    std::vector<Field> fields = OptionFields(kPowerOptions, info);
    fields.insert(fields.begin(),
                  {"mode", "Power-saving mode", info.mode, false, UnknownText(info.mode, L"mode")});
    return fields;
}

template <class Record>
ExitStatus Show(const ListedAdapter& adapter, const Record& info, Invocation& run) {
    const std::vector<Field> fields = Fields(info);
    Json json{{"adapter", adapter.path}};
    json.update(AsJson(fields));
    Sheet sheet;
    for (const Field& field : fields) {
        sheet.Add(field.label, TextOf(field));
    }
    return AnswerSheet(run, json, sheet);
}

class ShowPower final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        return Show(adapter, ReadPower(run.Session(), adapter), run);
    }
};

class ShowWake final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        return Show(adapter, ReadWake(run.Session(), adapter), run);
    }
};

/// Options that are switched on or off; those that are not named stay as they are.
template <class Record, std::size_t Size>
class Switches {
  public:
    explicit Switches(const std::array<Option<Record>, Size>& options) : m_options(options) {}

    void Declare(Syntax& syntax) {
        for (std::size_t i = 0; i < Size; ++i) {
            syntax.Choice(m_options[i].word, m_words[i], kOnOff, m_options[i].label);
        }
    }
    bool IsAnyGiven() const {
        for (const std::string& word : m_words) {
            if (!word.empty()) {
                return true;
            }
        }
        return false;
    }
    /// A record of nothing but the named options.
    Record Chosen() const {
        Record chosen;
        for (std::size_t i = 0; i < Size; ++i) {
            if (!m_words[i].empty()) {
                chosen.*m_options[i].field = m_words[i] == "on";
            }
        }
        return chosen;
    }
    /// The first of the named options that the adapter does not have; empty where it has them all.
    std::string Missing(const Record& present) const {
        for (std::size_t i = 0; i < Size; ++i) {
            if (!m_words[i].empty() && !(present.*m_options[i].field)) {
                return m_options[i].word;
            }
        }
        return {};
    }

  private:
    const std::array<Option<Record>, Size>& m_options;
    std::array<std::string, Size> m_words;
};

/// A command that changes the adapter, or the adapters, that its first word names.
class ChangeAdapters : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("adapter", m_adapter,
                        "The adapter: its name, object ID or object path; a pattern names several");
    }
    ExitStatus Run(Invocation& run) final {
        CheckOptions();
        const std::vector<ListedAdapter> adapters = FindAdapters(run.Session(), {m_adapter});
        if (!IsPattern(m_adapter)) {
            const Target target = TargetFor(run.Session(), adapters.front());
            if (target.outcome == Target::Outcome::Missing) {
                throw UsageError(target.text + " on " + target.called);
            }
            return ChangeTarget(run, target);
        }
        std::vector<Target> targets;
        targets.reserve(adapters.size());
        for (const ListedAdapter& adapter : adapters) {
            targets.push_back(TargetOrRefusal(run.Session(), adapter));
        }
        return ChangeTargets(run, std::move(targets), false);
    }

  private:
    /// Throws UsageError where there is nothing to do.
    virtual void CheckOptions() const {}
    /// What is to be done with an adapter; Missing, and what, where it cannot be done. Throws Refusal.
    virtual Target TargetFor(quillet::Session& session, const ListedAdapter& adapter) const = 0;

    /// Among many adapters one that cannot be read keeps nobody from changing the others.
    Target TargetOrRefusal(quillet::Session& session, const ListedAdapter& adapter) const {
        Target target;
        try {
            target = TargetFor(session, adapter);
        } catch (const Refusal& refusal) {
            target.outcome = Target::Outcome::Refused;
            target.code = refusal.Code();
            target.asked = "read the options of " + adapter.Called();
        }
        target.called = adapter.Called();
        target.named = {{"path", {}, adapter.path}};
        return target;
    }

    std::string m_adapter;
};

Target ChangeOf(const std::string& asked, const char* done, const std::vector<Field>& values) {
    Target target;
    target.asked = asked;
    target.step = WithValues(asked, values);
    target.text = done;
    target.outcome = Target::Outcome::Changed;
    return target;
}

Target WithoutOption(const ListedAdapter& adapter, const std::string& option) {
    Target target;
    target.called = adapter.Called();
    target.text = option + ": not available";
    return target;
}

class SetPower final : public ChangeAdapters {
  public:
    void Declare(Syntax& syntax) override {
        ChangeAdapters::Declare(syntax);
        syntax.Choice("--mode", m_mode, kModes, "Power-saving mode");
        m_switches.Declare(syntax);
    }

  private:
    void CheckOptions() const override {
        if (m_mode.empty() && !m_switches.IsAnyGiven()) {
            throw UsageError("an option to set is needed; see quilletctl power set --help");
        }
    }
    Target TargetFor(quillet::Session& session, const ListedAdapter& adapter) const override {
        const Power present = ReadPower(session, adapter);
        const std::string missing = m_switches.Missing(present);
        if (!missing.empty()) {
            return WithoutOption(adapter, missing);
        }
        Power chosen = m_switches.Chosen();
        std::vector<Field> named = Fields(chosen);
        named.front().value = m_mode.empty() ? Json() : Json(ModeNumber());
        // The mode always travels with the options, so it must be known.
        chosen.mode = m_mode.empty() ? present.mode : ModeNumber();
        Target target = ChangeOf("set the power options of " + adapter.Called(), "power options set", named);
        target.change = [adapter, chosen](quillet::Session& connected) {
            connected.SetPower(adapter.id, chosen);
        };
        target.compare = [adapter, chosen](quillet::Session& connected, Verification& taken) {
            taken.Compare(Fields(chosen), Fields(ReadPower(connected, adapter)));
        };
        return target;
    }
    std::uint32_t ModeNumber() const { return static_cast<std::uint32_t>(m_mode.front() - '0'); }

    std::string m_mode;
    Switches<Power, kPowerOptions.size()> m_switches{kPowerOptions};
};

class SetWake final : public ChangeAdapters {
  public:
    void Declare(Syntax& syntax) override {
        ChangeAdapters::Declare(syntax);
        m_switches.Declare(syntax);
    }

  private:
    void CheckOptions() const override {
        if (!m_switches.IsAnyGiven()) {
            throw UsageError("an option to set is needed; see quilletctl wol set --help");
        }
    }
    Target TargetFor(quillet::Session& session, const ListedAdapter& adapter) const override {
        const std::string missing = m_switches.Missing(ReadWake(session, adapter));
        if (!missing.empty()) {
            return WithoutOption(adapter, missing);
        }
        const Wake chosen = m_switches.Chosen();
        Target target = ChangeOf("set the wake-on-LAN options of " + adapter.Called(),
                                 "wake-on-LAN options set", Fields(chosen));
        target.change = [adapter, chosen](quillet::Session& connected) {
            connected.SetWake(adapter.id, chosen);
        };
        target.compare = [adapter, chosen](quillet::Session& connected, Verification& taken) {
            taken.Compare(Fields(chosen), Fields(ReadWake(connected, adapter)));
        };
        return target;
    }

    Switches<Wake, kWakeOptions.size()> m_switches{kWakeOptions};
};

class ReapplyPower final : public ChangeAdapters {
    Target TargetFor(quillet::Session&, const ListedAdapter& adapter) const override {
        Target target = ChangeOf("apply the power-management capabilities of " + adapter.Called() + " again",
                                 "power-management capabilities applied", {});
        target.change = [adapter](quillet::Session& session) { session.ReapplyPower(adapter.id); };
        target.compare = [](quillet::Session&, Verification& taken) { taken.LeaveOpen(); };
        return target;
    }
};

} // namespace

void AddPowerCommands(CommandTree& tree) {
    tree.AddNoun("power", "The power-saving options of an adapter")
        .Query("show", "Show the options, and which the adapter does not have", std::make_unique<ShowPower>())
        .Verb("set", "Change options; those not named stay", std::make_unique<SetPower>())
        .Verb("reapply", "Let the adapter apply its power-management capabilities again",
              std::make_unique<ReapplyPower>());
    tree.AddNoun("wol", "What wakes the machine through an adapter")
        .Query("show", "Show the options, and which the adapter does not have", std::make_unique<ShowWake>())
        .Verb("set", "Change options; those not named stay", std::make_unique<SetWake>());
}

} // namespace quilletctl
