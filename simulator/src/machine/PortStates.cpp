// Cables pulled and adapters taken out: the state of a port, with everything that tells of it.
#include <quillet-simulator/Machine.h>

#include "machine/MachineState.h"
#include "repository/StoreQueries.h"
#include "rules/TeamModel.h"

namespace quillet::simulator {

namespace {

/// What an adapter says of itself in each state.
struct PortState {
    std::uint64_t adapterStatus;
    const wchar_t* status;
    std::uint64_t statusInfo;
    std::uint64_t availability;
};
constexpr PortState kPortStates[] = {
    {4, L"Lost Comm", 4, 11}, // hardware missing
    {2, L"Error", 4, 8},      // driver not loaded
    {1, L"OK", 3, 3},         // cable removed
    {1, L"OK", 3, 3},         // link present
};

/// The speed of a new link: the fastest that the port can do.
std::uint64_t LinkSpeed(const Instance& adapter) {
    constexpr std::uint64_t kMegabit = 1'000'000;
    if (HasCapability(adapter, 35)) {
        return 10'000 * kMegabit;
    }
    if (HasCapability(adapter, 34)) {
        return 1'000 * kMegabit;
    }
    return HasCapability(adapter, 33) ? 100 * kMegabit : 10 * kMegabit;
}

} // namespace

HRESULT Machine::SetHardwareStatus(std::wstring_view deviceId, LONG status) {
    if (status < kHardwareMissing || status > kLinkPresent) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const std::lock_guard lock(m_state->changes);
    auto& store = m_state->store;
    const auto found =
        InstancesWhere(store, L"Zorel_PhysicalEthernetAdapter", L"DeviceID", std::wstring(deviceId));
    if (found.empty()) {
        return HRESULT(WBEM_E_NOT_FOUND);
    }
    const bool linked = status == kLinkPresent;
    const PortState& state = kPortStates[status];
    Instance changed = *found.front();
    changed.Set(L"HardwareStatus", Value::Unsigned(static_cast<std::uint64_t>(status)));
    changed.Set(L"AdapterStatus", Value::Unsigned(state.adapterStatus));
    changed.Set(L"Status", Value::Text(state.status));
    changed.Set(L"StatusInfo", Value::Unsigned(state.statusInfo));
    changed.Set(L"Availability", Value::Unsigned(state.availability));
    changed.Set(L"Speed", Value::Unsigned(linked ? LinkSpeed(changed) : 0));
    changed.Set(L"FullDuplex", Value::Bool(linked));
    const HRESULT result = store.PutInstance(changed, WriteMode::UpdateOnly);
    if (SUCCEEDED(result)) {
        RefreshTeamOf(store, changed);
    }
    return result;
}

} // namespace quillet::simulator
