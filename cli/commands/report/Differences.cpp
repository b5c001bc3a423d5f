// Holding values against their defaults.
#include "commands/report/Differences.h"

#include "recording/Secrets.h"
#include "texts/Text.h"

#include <algorithm>
#include <type_traits>

namespace quilletctl {

namespace {

using quillet::Setting;
using quillet::TextListValue;

/// The setting as it was delivered.
Setting AtDefault(Setting setting) {
    std::visit(
        [](auto& value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, TextListValue>) {
                value.current = value.standard.empty() ? std::vector<std::wstring>()
                                                       : std::vector<std::wstring>{value.standard};
            } else {
                value.current = value.standard;
            }
        },
        setting.value);
    return setting;
}

/// The current value, in words where the provider has some.
std::string ReportedValue(const Setting& setting) {
    const std::wstring current = quillet::CurrentText(setting);
    // A page goes through many hands.
    if (!quillet::CurrentNumber(setting) && !current.empty() &&
        NamesASecret(setting.keyword + L' ' + setting.description)) {
        return ToUtf8(kSecretStandIn);
    }
    const auto* choice = std::get_if<quillet::ChoiceValue>(&setting.value);
    if (choice != nullptr) {
        const auto found = std::ranges::find(choice->choices, current, &quillet::Choice::value);
        if (found != choice->choices.end() && !found->text.empty()) {
            return ToUtf8(found->text);
        }
    }
    return current.empty() ? "(empty)" : ToUtf8(current);
}

void Add(std::vector<Difference>& differences, const std::string& owner,
         const std::vector<Setting>& settings) {
    for (const Setting& setting : settings) {
        const Setting standard = AtDefault(setting);
        // What nobody can change was delivered so, whatever its default says.
        if (setting.writable && quillet::CurrentText(setting) != quillet::CurrentText(standard)) {
            differences.push_back(
                {owner, ToUtf8(setting.description.empty() ? setting.keyword : setting.description),
                 ReportedValue(setting), ReportedValue(standard)});
        }
    }
}

} // namespace

std::vector<Difference> DifferencesFromDefaults(const MachineFacts& facts) {
    std::vector<Difference> differences;
    for (const AdapterFacts& adapter : facts.adapters.value) {
        const std::string name = NameOf(adapter.overview);
        Add(differences, name, adapter.settings.value);
        Add(differences, name + " (boot agent)", adapter.bootSettings.value);
    }
    for (const TeamFacts& team : facts.teams.value) {
        Add(differences, ToUtf8(team.team.name), team.settings.value);
    }
    return differences;
}

} // namespace quilletctl
