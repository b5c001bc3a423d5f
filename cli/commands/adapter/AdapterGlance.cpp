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

Cell SpeedCell(const AdapterOverview& overview) {
    return overview.state && overview.state->speed != LinkSpeed::None
               ? Cell(InWords(overview.state->speed), static_cast<std::int64_t>(overview.state->speed))
               : Cell("");
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
            {"TEAM", Fit::MayShorten, {}, Stay::First},
            {"ROLE", Fit::Whole, {}, Stay::Second},
            {"STATE", Fit::MayShorten, {}, Stay::First},
            {"DISPLAY NAME", Fit::MayShorten, "NAME", Stay::WhileAllFits},
            {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits},
            {"DEVICE ID", Fit::Whole, {}, Stay::WhileAllFits}};
}

std::vector<Cell> GlanceCells(const AdapterOverview& overview) {
    const quillet::Adapter& adapter = overview.adapter;
    const bool isMember = !overview.team.IsEmpty();
    return {ToUtf8(adapter.name.empty() ? adapter.id.Path() : adapter.name),
            Cell(LinkText(overview.state), LinkTone(overview.state)),
            SpeedCell(overview),
            overview.hardware ? ToUtf8(overview.hardware->macAddress) : std::string(),
            PlaceOf(overview),
            isMember ? ToUtf8(overview.teamName) : std::string(),
            isMember ? InWords(overview.role) : std::string(),
            StateCell(overview),
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
