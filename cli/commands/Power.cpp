// quilletctl power and quilletctl wol: the power-saving and wake-on-LAN options of an adapter.
#include "app/Answers.h"
#include "changes/ClientSet.h"
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
std::vector<Field> FieldsOf(const std::array<Option<Record>, Size>& options, const Record& info) {
    std::vector<Field> fields;
    for (const auto& option : options) {
        const std::optional<bool>& value = info.*option.field;
        fields.push_back({option.key, option.label, value ? Json(*value) : Json()});
    }
    return fields;
}

std::vector<Field> Fields(const Wake& info) {
    return FieldsOf(kWakeOptions, info);
}

std::vector<Field> Fields(const Power& info) {
    std::vector<Field> fields = FieldsOf(kPowerOptions, info);
    fields.insert(fields.begin(),
                  {"mode", "Power-saving mode", info.mode, false, UnknownText(info.mode, L"mode")});
    return fields;
}

template <class Record>
ExitStatus Show(const ListedAdapter& adapter, const Record& info, Invocation& run) {
    Json json{{"adapter", adapter.path}};
    Sheet sheet;
    for (const Field& field : Fields(info)) {
        json[field.key] = field.value;
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
    /// A record of nothing but the named options. Throws UsageError for one that the adapter does not have.
    Record Chosen(const Record& present, const ListedAdapter& adapter) const {
        Record chosen;
        for (std::size_t i = 0; i < Size; ++i) {
            if (m_words[i].empty()) {
                continue;
            }
            if (!(present.*m_options[i].field)) {
                throw UsageError(std::string(m_options[i].word) + ": not available on " + adapter.Called());
            }
            chosen.*m_options[i].field = m_words[i] == "on";
        }
        return chosen;
    }

  private:
    const std::array<Option<Record>, Size>& m_options;
    std::array<std::string, Size> m_words;
};

class SetPower final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Choice("--mode", m_mode, kModes, "Power-saving mode");
        m_switches.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        if (m_mode.empty() && !m_switches.IsAnyGiven()) {
            throw UsageError("an option to set is needed; see quilletctl power set --help");
        }
        // The mode always travels with the options, so it must be known.
        const Power present = ReadPower(run.Session(), adapter);
        Power chosen = m_switches.Chosen(present, adapter);
        chosen.mode = m_mode.empty() ? present.mode : static_cast<std::uint32_t>(m_mode.front() - '0');
        return ChangeInSet(
            run, "set the power options of " + adapter.Called(), "power options set",
            [&](quillet::Session& session) { session.SetPower(adapter.id, chosen); },
            [&](quillet::Session& session, Verification& taken) {
                taken.Compare(Fields(chosen), Fields(ReadPower(session, adapter)));
            });
    }

    std::string m_mode;
    Switches<Power, kPowerOptions.size()> m_switches{kPowerOptions};
};

class SetWake final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        m_switches.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        if (!m_switches.IsAnyGiven()) {
            throw UsageError("an option to set is needed; see quilletctl wol set --help");
        }
        const Wake chosen = m_switches.Chosen(ReadWake(run.Session(), adapter), adapter);
        return ChangeInSet(
            run, "set the wake-on-LAN options of " + adapter.Called(), "wake-on-LAN options set",
            [&](quillet::Session& session) { session.SetWake(adapter.id, chosen); },
            [&](quillet::Session& session, Verification& taken) {
                taken.Compare(Fields(chosen), Fields(ReadWake(session, adapter)));
            });
    }

    Switches<Wake, kWakeOptions.size()> m_switches{kWakeOptions};
};

class ReapplyPower final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        return ChangeInSet(
            run, "apply the power-management capabilities of " + adapter.Called() + " again",
            "power-management capabilities applied",
            [&](quillet::Session& session) { session.ReapplyPower(adapter.id); },
            [](quillet::Session&, Verification& taken) { taken.LeaveOpen(); });
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
