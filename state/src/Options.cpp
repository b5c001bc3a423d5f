// Options as documents have them: those that an adapter has.
#include "Options.h"

namespace quillet::state {

namespace {

template <class Record, std::size_t Size>
void AddOptions(Json& json, const std::array<Option<Record>, Size>& options, const Record& record) {
    for (const auto& option : options) {
        if (const std::optional<bool>& value = record.*option.field) {
            json[option.key] = *value;
        }
    }
}

} // namespace

Json AsJson(const PowerOptions& power) {
    Json json{{"mode", power.mode}};
    AddOptions(json, kPowerOptions, power);
    return json;
}

Json AsJson(const WakeOptions& wake) {
    Json json = Json::object();
    AddOptions(json, kWakeOptions, wake);
    return json;
}

/// The values of an object for the keys that another has.

} // namespace quillet::state
