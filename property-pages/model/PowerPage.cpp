// Power saving, and what wakes the machine.
#include "model/PowerPage.h"

#include "model/Words.h"

#include <algorithm>

namespace quillet::pages {

namespace {

constexpr std::uint32_t kKnownModes = 3;

/// A record as a whole or not at all: of one that was read in part, nobody knows which options are missing
/// and which the adapter does not have.
template <class Read>
auto ReadWhole(Read read, std::wstring& notice) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const Error& error) {
        notice = Say(TextId::ReadInPart, {Reason(error)});
        return std::nullopt;
    }
}

template <class Options, std::size_t Size>
bool HasAny(const std::array<PowerOption<Options>, Size>& options, const Options& of) {
    return std::ranges::any_of(options, [&of](const auto& option) { return (of.*option.value).has_value(); });
}

template <class Options, std::size_t Size>
bool HasAll(const std::array<PowerOption<Options>, Size>& options, const Options& of) {
    return std::ranges::all_of(options, [&of](const auto& option) { return (of.*option.value).has_value(); });
}

/// Those options that the user has changed: what is not written cannot be undone by accident.
template <class Options, std::size_t Size>
Options Differing(const std::array<PowerOption<Options>, Size>& options, const Options& read,
                  const Options& wanted) {
    Options differing;
    for (const auto& option : options) {
        if (read.*option.value != wanted.*option.value) {
            differing.*option.value = wanted.*option.value;
        }
    }
    return differing;
}

} // namespace

struct PowerPage::Read {
    std::optional<PowerOptions> power;
    std::optional<WakeOptions> wake;
    bool hasModes = false;
};

Job PowerPage::Reading() {
    return [page = Self<PowerPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        read.power = ReadWhole([&] { return session.ReadPower(id); }, notice);
        read.wake = ReadWhole([&] { return session.ReadWake(id); }, notice);
        const auto abilities =
            ReadIfThere([&] { return session.Capabilities(id); }, notice).value_or(std::vector<Capability>());
        read.hasModes = std::ranges::find(abilities, Capability::PowerManagement) != abilities.end() ||
                        (read.power && HasAny(kPowerOptions, *read.power));
        return [page, read, notice] { page->Take(read, notice); };
    };
}

void PowerPage::Take(const Read& now, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    m_hasModes = now.hasModes;
    if (now.power) {
        if (!m_power.isRead) {
            m_power = {true, *now.power, *now.power};
        }
        if (TakeOver(m_power.read.mode, m_power.wanted.mode, now.power->mode)) {
            NoteDispute();
            notice =
                Say(TextId::ChangedMeanwhile, {Say(TextId::PowerModeName), std::to_wstring(now.power->mode)});
        }
        TakeOptions(kPowerOptions, m_power, *now.power, notice);
    }
    if (now.wake) {
        if (!m_wake.isRead) {
            m_wake = {true, *now.wake, *now.wake};
        }
        TakeOptions(kWakeOptions, m_wake, *now.wake, notice);
    }
    NoteRead(std::move(notice));
}

template <class Options, std::size_t Size>
void PowerPage::TakeOptions(const std::array<PowerOption<Options>, Size>& options, Edited<Options>& edited,
                            const Options& now, std::wstring& notice) {
    for (const auto& option : options) {
        const std::optional<bool>& value = now.*option.value;
        if (TakeOver(edited.read.*option.value, edited.wanted.*option.value, value) && value) {
            NoteDispute();
            notice = Say(TextId::ChangedMeanwhile,
                         {WithoutMnemonic(Say(option.label)), Say(*value ? TextId::On : TextId::Off)});
        }
        if (!value) {
            edited.wanted.*option.value = std::nullopt; // an option that has gone cannot be wanted
        }
    }
    edited.read = now;
}

bool PowerPage::IsChanged() const {
    return m_power.read != m_power.wanted || m_wake.read != m_wake.wanted;
}

Change PowerPage::Changes() const {
    std::optional<PowerOptions> power;
    std::optional<WakeOptions> wake;
    if (m_power.read != m_power.wanted) {
        power = Differing(kPowerOptions, m_power.read, m_power.wanted);
        power->mode = m_power.wanted.mode; // it goes with every change of the others
    }
    if (m_wake.read != m_wake.wanted) {
        wake = Differing(kWakeOptions, m_wake.read, m_wake.wanted);
    }
    return {.write = [id = m_adapter, power, wake](Session& session) {
        if (power) {
            session.SetPower(id, *power);
        }
        if (wake) {
            session.SetWake(id, *wake);
        }
    }};
}

std::vector<std::uint32_t> PowerPage::Modes() const {
    std::vector<std::uint32_t> modes;
    for (std::uint32_t mode = 0; mode < kKnownModes; ++mode) {
        modes.push_back(mode);
    }
    if (m_power.read.mode >= kKnownModes) {
        modes.push_back(m_power.read.mode);
    }
    return modes;
}

std::wstring PowerPage::WhyNotAll() const {
    if (!IsRead()) {
        return {};
    }
    const bool hasAny = HasModes() || HasAny(kPowerOptions, Power()) || HasAny(kWakeOptions, Wake());
    const bool hasAll = HasModes() && HasAll(kPowerOptions, Power()) && HasAll(kWakeOptions, Wake());
    return hasAll ? std::wstring() : Say(hasAny ? TextId::PowerNotAll : TextId::PowerNone);
}

void PowerPage::SetMode(std::uint32_t mode) {
    if (HasModes()) {
        m_power.wanted.mode = mode;
        NoteChange();
    }
}

void PowerPage::Set(std::optional<bool> PowerOptions::*option, bool isOn) {
    if (m_power.wanted.*option) {
        m_power.wanted.*option = isOn;
        NoteChange();
    }
}

void PowerPage::Set(std::optional<bool> WakeOptions::*option, bool isOn) {
    if (m_wake.wanted.*option) {
        m_wake.wanted.*option = isOn;
        NoteChange();
    }
}

Job PowerPage::Reapplying() {
    return InSet([id = m_adapter](Session& session) { session.ReapplyPower(id); },
                 [page = Self<PowerPage>()] { page->SetNotice(Say(TextId::PowerReapplied)); });
}

} // namespace quillet::pages
