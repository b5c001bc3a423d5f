// Advanced settings as values, and the checks of changes to them.
#pragma once

#include <quillet/client/Adapter.h>
#include <quillet/client/Flags.h>
#include <quillet/client/Id.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillet {

/// A number within a range.
struct NumberValue {
    std::int32_t current = 0;
    std::int32_t standard = 0; ///< "DefaultValue"
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t step = 0;
    std::int32_t base = 0;  ///< the radix to display it in
    std::int32_t scale = 0; ///< "Scale"
    friend bool operator==(const NumberValue&, const NumberValue&) = default;
};

/// A value that can be chosen.
struct Choice {
    std::wstring value; ///< the number as text ("PossibleValues")
    std::wstring text;  ///< what it means ("DescriptionMap"); empty where the provider has no text
    friend bool operator==(const Choice&, const Choice&) = default;
};

/// One of several values.
struct ChoiceValue {
    std::int32_t current = 0;
    std::int32_t standard = 0;
    std::vector<Choice> choices;
    friend bool operator==(const ChoiceValue&, const ChoiceValue&) = default;
};

/// One of several numbers on a scale with a label at each end.
struct SliderValue {
    std::int32_t current = 0;
    std::int32_t standard = 0;
    std::wstring firstLabel;
    std::wstring lastLabel;
    std::vector<std::int32_t> possible;
    friend bool operator==(const SliderValue&, const SliderValue&) = default;
};

/// A text.
struct TextValue {
    std::wstring current;
    std::wstring standard;
    std::wstring maximumLength; ///< the most characters, as decimal text
    friend bool operator==(const TextValue&, const TextValue&) = default;
};

/// Any number of several values at once, as the bits of one number.
struct SelectionValue {
    std::int32_t current = 0;
    std::int32_t standard = 0;
    std::vector<Choice> choices;
    friend bool operator==(const SelectionValue&, const SelectionValue&) = default;
};

/// A list of texts.
struct TextListValue {
    std::vector<std::wstring> current;
    std::wstring standard;
    std::wstring maximumLength; ///< the most characters, as decimal text
    friend bool operator==(const TextListValue&, const TextListValue&) = default;
};

/// The value of a setting, by its kind.
using SettingValue =
    std::variant<NumberValue, ChoiceValue, SliderValue, TextValue, SelectionValue, TextListValue>;

/// One advanced setting of an adapter, a team, a VLAN or a boot agent (a class below Zorel_Setting).
struct Setting {
    SettingId id;
    std::wstring keyword;     ///< what it is looked up by, such as "*JumboPacket" ("Caption")
    std::wstring description; ///< the display name ("Description")
    std::wstring help;        ///< a short help text ("MiniHelp")
    std::wstring exposeLevel; ///< the level of user that it is meant for, as decimal text ("ExposeLevel")
    bool writable = false;    ///< "Writable"
    std::optional<std::int32_t> group; ///< "GroupId", of a setting that belongs to a group ("Grouped")
    SettingValue value;

    friend bool operator==(const Setting&, const Setting&) = default;
};

/// The setting with a keyword; case does not count. Null where there is none.
const Setting* FindSetting(const std::vector<Setting>& settings, std::wstring_view keyword) noexcept;
/// As the one before.
Setting* FindSetting(std::vector<Setting>& settings, std::wstring_view keyword) noexcept;
/// The current value as text: numbers in decimal, lists joined with ",".
std::wstring CurrentText(const Setting& setting);
/// The current value as a number; nothing for texts.
std::optional<std::int32_t> CurrentNumber(const Setting& setting);
/// Whether it is the jumbo-frame setting, by any of its keywords.
bool IsJumboFrameSetting(const Setting& setting);

/// What the provider is asked to retrieve of settings.
using SettingSelector = std::uint32_t;
/// Everything.
inline constexpr SettingSelector kAllSettings = 0xFFFFFFFF;

/// What an adapter's team says to a value (Zorel_TeamOfAdapters.ValidateSetting).
struct SettingVerdict {
    bool isTeamed = false;      ///< whether the adapter is a member of a team; one without may take any value
    Flags<ProviderBit> reasons; ///< the provider's own, against the value; none where it may be taken
};

/// Whether all that must change with the jumbo-frame setting can.
struct JumboFrameVerdict {
    bool isTeamed = false;    ///< whether the adapter is a member of a team
    bool onAllMembers = true; ///< whether every member of its team has a jumbo-frame setting
};

/// What a change of a team's members does to receive side scaling (RSS). A check finds at most one.
enum class RssProblem : std::uint64_t {
    TeamGainsRss = 0x1,          ///< every member will have RSS enabled, which was not so before
    DisabledAdapterAdded = 0x2,  ///< an adapter with RSS disabled joins: the whole team loses it
    IncapableAdapterAdded = 0x4, ///< an adapter without RSS joins a team that has it enabled
    OtherMakerAdded = 0x8,       ///< another maker's adapter joins a team that has it enabled
    AddedToIncapableTeam = 0x10, ///< an adapter with RSS enabled joins a team that cannot have it
    AddedToMixedTeam = 0x20      ///< an adapter with RSS enabled joins a team of several makers
};
/// The findings as sentences without a full stop, the lowest bit first.
std::vector<std::wstring> Texts(Flags<RssProblem> problems);

/// A performance profile's number, as the values of the setting "PerformanceProfile" have it. Other numbers
/// are the provider's own tunings.
enum class Profile : std::int32_t {
    NotSupported = 0, ///< as the first of a list: the adapter has no profiles
    Custom = 1,       ///< the settings were changed by hand
    HyperV = 5        ///< for hosts of virtual machines
};

/// A profile that an adapter offers.
struct OfferedProfile {
    Profile profile{};
    std::wstring description; ///< the provider's display text
    bool isCurrent = false;   ///< whether it is the adapter's now
};

} // namespace quillet
