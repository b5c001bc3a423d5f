// The rows of a list of adapters.
#include "commands/adapter/AdapterGlance.h"

#include "ending/Failure.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <quillet/client/Team.h>

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

using quillet::AdapterOverview;
using quillet::HardwareStatus;
using quillet::LinkSpeed;

HRESULT CodeOf(const AdapterOverview& overview) {
    return static_cast<HRESULT>(overview.failure.value());
}

/// What keeps the adapter from working or, where nothing does, whether it is enabled.
Cell StateCell(const AdapterOverview& overview) {
    if (!overview.state) {
        return {"not told: " + ExplainResult(CodeOf(overview)), Tone::Warning};
    }
    const quillet::AdapterState& state = *overview.state;
    if (state.hardware != HardwareStatus::LinkPresent) {
        return {InWords(state.hardware),
                state.hardware == HardwareStatus::CableRemoved ? Tone::Warning : Tone::Bad};
    }
    if (state.conditions.Has(quillet::AdapterCondition::DriverProblem)) {
        return {InWords(quillet::Flags(quillet::AdapterCondition::DriverProblem)), Tone::Bad};
    }
    // Some providers tell the one, some the other.
    if (state.statusInfo == quillet::StatusInfo()) {
        return state.conditions.Any() ? Cell(InWords(state.conditions)) : Cell("");
    }
    return {InWords(state.statusInfo), ToneOf(state.statusInfo)};
}

/// The state below the adapter's name: only one that is not the usual one.
Cell StateCellOrBelow(const AdapterOverview& overview) {
    Cell cell = StateCell(overview);
    const std::string below = cell.tone == Tone::Good ? std::string() : cell.Text();
    return std::move(cell).Below(below);
}

/// "10G" for "10 Gbit/s"; empty where it cannot be said shorter.
std::string BriefSpeed(const std::string& speed) {
    constexpr std::string_view kUnit = "bit/s";
    const std::size_t blank = speed.find(' ');
    return blank != std::string::npos && speed.size() == blank + 2 + kUnit.size() && speed.ends_with(kUnit)
               ? speed.substr(0, blank) + speed[blank + 1]
               : std::string();
}

Cell SpeedCell(const AdapterOverview& overview) {
    if (!overview.state || overview.state->speed == LinkSpeed::None) {
        return "";
    }
    const std::string speed = InWords(overview.state->speed);
    return Cell(speed, static_cast<std::int64_t>(overview.state->speed)).Briefly(BriefSpeed(speed));
}

Cell TeamCell(const AdapterOverview& overview) {
    const std::string name = ToUtf8(overview.teamName);
    return overview.team.IsEmpty() ? Cell("")
                                   : Cell(name).Below("in " + name + ", " + InWords(overview.role));
}

std::string PlaceOf(const AdapterOverview& overview) {
    return overview.hardware ? PlaceText(ToUtf8(overview.adapter.slot), ToUtf8(overview.hardware->portNumber))
                             : std::string();
}

Json TeamAsJson(const AdapterOverview& overview) {
    return overview.team.IsEmpty() ? Json()
                                   : Json{{"path", PathOf(overview.team)},
                                          {"objectId", TextOrNull(ObjectIdIn(overview.team))},
                                          {"name", ToUtf8(overview.teamName)},
                                          {"role", Coded(overview.role)}};
}

} // namespace

std::vector<Column> GlanceColumns() {
    return {{"NAME", Fit::MayShorten},
            {"LINK"},
            {"SPEED"},
            {"MAC", Fit::Intact, {}, Stay::Third},
            {"SLOT"},
            {"TEAM", Fit::MayShorten, {}, Stay::Below},
            {"ROLE", Fit::Whole, {}, Stay::Below},
            {"STATE", Fit::MayShorten, {}, Stay::Below},
            {"DISPLAY NAME", Fit::MayShorten, "NAME", Stay::WhileAllFits},
            {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits},
            {"DEVICE ID", Fit::Whole, {}, Stay::WhileAllFits}};
}

std::vector<Cell> GlanceCells(const AdapterOverview& overview) {
    const quillet::Adapter& adapter = overview.adapter;
    return {ToUtf8(adapter.name.empty() ? adapter.id.Path() : adapter.name),
            Cell(LinkText(overview.state), LinkTone(overview.state)),
            SpeedCell(overview),
            overview.hardware ? ToUtf8(overview.hardware->macAddress) : std::string(),
            PlaceOf(overview),
            TeamCell(overview),
            overview.team.IsEmpty() ? std::string() : InWords(overview.role),
            StateCellOrBelow(overview),
            ToUtf8(adapter.displayName),
            ToUtf8(overview.objectId),
            ToUtf8(adapter.deviceId)};
}

Json AsJson(const AdapterOverview& overview) {
    const quillet::Adapter& adapter = overview.adapter;
    const auto& state = overview.state;
    const auto& hardware = overview.hardware;
    return Json{{"path", PathOf(adapter.id)},
                {"objectId", TextOrNull(ToUtf8(overview.objectId))},
                {"name", ToUtf8(adapter.name)},
                {"displayName", ToUtf8(adapter.displayName)},
                {"deviceId", ToUtf8(adapter.deviceId)},
                {"link", TextOrNull(LinkText(state))},
                {"speed", state ? Coded(state->speed) : Json()},
                {"duplex", state ? Coded(state->duplex) : Json()},
                {"slot", TextOrNull(PlaceOf(overview))},
                {"slotId", TextOrNull(ToUtf8(adapter.slot))},
                {"portNumber", hardware ? Json(ToUtf8(hardware->portNumber)) : Json()},
                {"macAddress", hardware ? Json(ToUtf8(hardware->macAddress)) : Json()},
                {"team", TeamAsJson(overview)},
                {"hardwareStatus", state ? Coded(state->hardware) : Json()},
                {"statusInfo", state ? Coded(state->statusInfo) : Json()},
                {"failure", overview.failure ? Json(DescribeResult(CodeOf(overview))) : Json()}};
}

} // namespace quilletctl
