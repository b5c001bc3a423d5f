// Sets one setting on every adapter that has it, in one client set, and says whether the machine needs a
// restart. Usage: batch [--simulate] KEYWORD NUMBER
#include "../Simulation.h"

#include <quillet/client.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// Writes the number where the setting exists, can be written and is another one. The first failure ends it.
void SetEverywhere(quillet::Session& session, const std::wstring& keyword, std::int32_t number,
                   unsigned& written) {
    for (const quillet::Adapter& adapter : session.Adapters()) {
        std::vector<quillet::Setting> settings = session.Settings(adapter.id);
        quillet::Setting* setting = quillet::FindSetting(settings, keyword);
        auto* value = setting != nullptr ? std::get_if<quillet::ChoiceValue>(&setting->value) : nullptr;
        if (value != nullptr && setting->writable && value->current != number) {
            value->current = number;
            session.Write(*setting);
            ++written;
        }
    }
}

int Run(const std::wstring& keyword, std::int32_t number) {
    quillet::Session session;
    // Whatever happens in between, the set is closed: until then the provider keeps others out.
    quillet::Transaction change(session);
    unsigned written = 0;
    std::string failure;
    try {
        SetEverywhere(session, keyword, number, written);
    } catch (const quillet::Error& error) {
        failure = error.what();
    }
    std::printf("%u adapters changed; %s\n", written,
                change.Apply().restartNeeded ? "the machine must be restarted" : "no restart is needed");
    if (!failure.empty()) {
        std::fprintf(stderr, "stopped: %s\n", failure.c_str());
    }
    return failure.empty() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        return 1;
    }
    try {
        const quillet::ComUsage com; // for the simulator
        const Simulation simulation(count, arguments);
        const std::string keyword = arguments[count - 2];
        return Run(std::wstring(keyword.begin(), keyword.end()),
                   static_cast<std::int32_t>(std::strtol(arguments[count - 1], nullptr, 10)));
    } catch (const quillet::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
