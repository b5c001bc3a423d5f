// What the simulated provider has against a team.
#include "rules/TeamChecks.h"

#include "repository/StoreQueries.h"
#include "rules/VlanModel.h"

#include <algorithm>
#include <functional>
#include <set>

namespace quillet::simulator {

namespace {

constexpr std::int64_t kStaticLinkAggregation = 2;
constexpr std::int64_t kSwitchFaultTolerance = 5;
/// Capability codes.
constexpr std::int64_t kServerAdapter = 46;
constexpr std::int64_t kSpeeds[] = {32, 33, 34, 35};

std::set<std::int64_t> SpeedsOf(const Instance& adapter) {
    std::set<std::int64_t> speeds;
    for (const auto code : kSpeeds) {
        if (HasCapability(adapter, code)) {
            speeds.insert(code);
        }
    }
    return speeds;
}

std::uint64_t ReasonsOfSpeed(const std::vector<InstancePtr>& members, std::int64_t mode) {
    bool tenGigabit = false;
    bool slow = false;
    std::optional<std::set<std::int64_t>> shared;
    for (const auto& member : members) {
        const auto speeds = SpeedsOf(*member);
        if (speeds.empty()) {
            continue;
        }
        tenGigabit = tenGigabit || speeds.count(35) != 0;
        slow = slow || *speeds.rbegin() <= 33;
        if (!shared) {
            shared = speeds;
        } else {
            std::erase_if(*shared, [&](std::int64_t code) { return speeds.count(code) == 0; });
        }
    }
    std::uint64_t reasons = tenGigabit && slow ? std::uint64_t{ReasonMixedSpeeds} : 0;
    if (mode == kStaticLinkAggregation && shared && shared->empty()) {
        reasons |= ReasonNoSharedSpeed;
    }
    return reasons;
}

} // namespace

std::uint64_t ReasonsAgainstName(const Repository& store, std::wstring_view caption, const Instance* team) {
    const bool blank =
        std::all_of(caption.begin(), caption.end(), [](wchar_t character) { return character == L' '; });
    return (blank ? std::uint64_t{ReasonBadName} : 0) |
           (IsTeamNameTaken(store, caption, team) ? std::uint64_t{ReasonNameTaken} : 0);
}

std::uint64_t ReasonsAgainstMode(const std::vector<InstancePtr>& members, std::int64_t mode) {
    if (mode < 0 || mode > kLastTeamMode) {
        return ReasonUnknownMode;
    }
    std::uint64_t reasons = ReasonsOfSpeed(members, mode);
    if (!std::all_of(members.begin(), members.end(),
                     [mode](const InstancePtr& member) { return SupportsMode(*member, mode); })) {
        reasons |= ReasonModeNotSupported;
    }
    if (mode == kSwitchFaultTolerance && members.size() > 2) {
        reasons |= ReasonMoreThanTwo;
    }
    return reasons;
}

std::uint64_t ReasonsAgainstMembers(const Repository& store, const std::vector<InstancePtr>& members,
                                    const std::vector<std::wstring>& added, std::int64_t mode) {
    std::uint64_t reasons = 0;
    auto all = members;
    for (const auto& path : added) {
        const auto adapter = FindAdapter(store, path);
        if (adapter == nullptr) {
            reasons |= ReasonUnknownAdapter;
            continue;
        }
        if (!MembershipsOf(store, *adapter).empty()) {
            reasons |= ReasonTeamedAlready;
        }
        if (!VlansOf(store, adapter->Text(L"DeviceID")).empty()) {
            reasons |= ReasonHasVlans;
        }
        all.push_back(adapter);
    }
    if (all.size() > kMaximumTeamMembers) {
        reasons |= ReasonTooManyMembers;
    }
    if (!all.empty() && std::none_of(all.begin(), all.end(), [](const InstancePtr& member) {
            return HasCapability(*member, kServerAdapter);
        })) {
        reasons |= ReasonNoServerAdapter;
    }
    return reasons | ReasonsAgainstMode(all, mode);
}

std::uint64_t ReasonsAgainstSetting(const Repository& store, const std::vector<std::wstring>& adapters,
                                    const std::wstring& setting) {
    std::uint64_t reasons = 0;
    std::vector<Value> values;
    const auto candidates = InstancesWhere(store, L"Zorel_AdapterSetting", L"Caption", setting);
    for (const auto& path : adapters) {
        const auto adapter = FindAdapter(store, path);
        if (adapter == nullptr) {
            reasons |= ReasonUnknownAdapter;
            continue;
        }
        const auto own = std::find_if(candidates.begin(), candidates.end(), [&](const InstancePtr& each) {
            return SameName(each->Text(L"ParentId"), adapter->Text(L"DeviceID"));
        });
        const Value* current = own != candidates.end() ? (*own)->Find(L"CurrentValue") : nullptr;
        // An adapter without the setting differs from one that has it.
        values.push_back(current != nullptr ? *current : Value());
    }
    if (std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) != values.end()) {
        reasons |= ReasonSettingsDiffer;
    }
    return reasons;
}

std::vector<std::wstring> TextsOf(const Instance& parameters, std::wstring_view name) {
    std::vector<std::wstring> texts;
    const Value* value = parameters.Find(name);
    if (const auto* elements = value != nullptr ? value->AsArray() : nullptr) {
        for (const auto& element : *elements) {
            const auto* text = element ? std::get_if<std::wstring>(&*element) : nullptr;
            texts.push_back(text != nullptr ? *text : std::wstring());
        }
    }
    return texts;
}

} // namespace quillet::simulator
