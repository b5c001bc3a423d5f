// How the client layer calls an operation of CQuillet: what fails is thrown, what is a list becomes values.
#pragma once

#include <quillet/Quillet.h>

#include <quillet/client/Session.h>

#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillet {

struct Session::State {
    explicit State(const std::wstring& machine) : quillet(machine.empty() ? CQuillet() : CQuillet(machine)) {}
    /// Disconnects, also what was connected before connecting failed.
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ComUsage com; // before the session, which ends first
    CQuillet quillet;
    std::mutex vlanChecks; ///< whether a check is about a change is told to the session beforehand
};

/// Runs an operation. A text that could not be allocated is an Error, too.
template <class Call>
auto Guarded(const char* operation, const std::wstring& about, Call call) -> decltype(call()) {
    try {
        return call();
    } catch (const _com_error& failure) {
        throw Error(failure.Error(), operation, about);
    }
}

/// Runs an operation that yields an HRESULT, and returns the code where it is none of a failure.
template <class Call>
HRESULT Do(const char* operation, const std::wstring& about, Call call) {
    const HRESULT result = Guarded(operation, about, call);
    if (FAILED(result)) {
        throw Error(result, operation, about);
    }
    return result;
}

/// Do, for an operation that also fails with numbers of the provider's that are no failure codes.
template <class Call>
void DoOrThrow(const char* operation, const std::wstring& about, Call call) {
    const HRESULT result = Guarded(operation, about, call);
    if (result != S_OK) {
        throw Error(result, operation, about);
    }
}

/// Do; where it fails, PartialError with what `read` makes of what is there by then.
template <class Call, class Read>
HRESULT DoInParts(const char* operation, const std::wstring& about, Call call, Read read) {
    try {
        return Do(operation, about, call);
    } catch (const Error& error) {
        throw PartialError<std::invoke_result_t<Read>>(error, read());
    }
}

/// A value that comes into being where it is put: it converts when it is asked for.
template <class Convert, class Record>
struct Made {
    operator std::invoke_result_t<Convert&, Record&&>() const { return convert(std::move(record)); }
    Convert& convert;
    Record& record;
};
template <class Convert, class Record>
Made(Convert&, Record&) -> Made<Convert, Record>;

/// What a list of the library's holds, as values. `convert` makes one of a record, whose texts it may take.
template <class Items, class Convert>
auto Values(Items&& items, Convert convert) {
    std::vector<std::invoke_result_t<Convert, decltype(std::move(*items.m_vecItems.front()))>> values;
    values.reserve(items.m_vecItems.size());
    for (auto* item : items.m_vecItems) {
        if (item != nullptr) {
            values.emplace_back(Made{convert, *item});
        }
    }
    return values;
}

/// Reads a list of the library's: `call` fills it, `convert` makes a value of one element.
template <class Items, class Call, class Convert>
auto ReadList(const char* operation, const std::wstring& about, Call call, Convert convert) {
    Items items;
    const auto values = [&] { return Values(std::move(items), convert); };
    DoInParts(
        operation, about, [&] { return call(items); }, values);
    return values();
}

/// Records of adapters that hold nothing but their paths.
CAdapters AdaptersOf(std::span<const AdapterId> ids);
/// Records of members.
CTeamedAdapters ToRecords(std::span<const TeamMember> members);
/// The path of whatever carries a VLAN.
const std::wstring& PathOf(const VlanParentId& parent) noexcept;
/// Whether that is a team.
bool IsTeam(const VlanParentId& parent) noexcept;
/// A mode as the library's records have it.
inline CTeam::TeamMode RecordMode(TeamMode mode) {
    return static_cast<CTeam::TeamMode>(mode);
}
/// A setting, from the library's record, whose texts it takes, and into one.
Setting SettingFromRecord(CSetting&& record);
std::unique_ptr<CSetting> ToRecord(const Setting& setting);

} // namespace quillet
