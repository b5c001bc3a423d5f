// What the provider's numbers about adapters mean. A number that has no word is shown as it is, for a later
// provider may know more of them.
#include <quillet/client/Adapter.h>
#include <quillet/client/Words.h>

#include <cstddef>

namespace quillet {

namespace {

template <class Number>
struct Word {
    Number number;
    const wchar_t* text;
};

template <class Number, std::size_t Size>
std::wstring Find(const Word<Number> (&words)[Size], Number number) {
    for (const Word<Number>& word : words) {
        if (word.number == number) {
            return word.text;
        }
    }
    return UnknownNumber(static_cast<std::int32_t>(number));
}

} // namespace

std::wstring Text(LinkSpeed speed) {
    static constexpr Word<LinkSpeed> kWords[] = {
        {LinkSpeed::None, L"no link"},        {LinkSpeed::Megabit1, L"1 Mbit/s"},
        {LinkSpeed::Megabit10, L"10 Mbit/s"}, {LinkSpeed::Megabit100, L"100 Mbit/s"},
        {LinkSpeed::Gigabit1, L"1 Gbit/s"},   {LinkSpeed::Gigabit10, L"10 Gbit/s"},
        {LinkSpeed::Other, L"unknown"},
    };
    return Find(kWords, speed);
}

std::wstring Text(Duplex duplex) {
    static constexpr Word<Duplex> kWords[] = {
        {Duplex::Unknown, L"unknown"},
        {Duplex::Half, L"half duplex"},
        {Duplex::Full, L"full duplex"},
    };
    return Find(kWords, duplex);
}

std::wstring Text(LinkSecurityStatus status) {
    static constexpr Word<LinkSecurityStatus> kWords[] = {
        {LinkSecurityStatus::Unknown, L"unknown"},
        {LinkSecurityStatus::NotSupported, L"not supported"},
        {LinkSecurityStatus::Disabled, L"disabled"},
        {LinkSecurityStatus::Enabled, L"enabled"},
        {LinkSecurityStatus::Authenticating, L"authenticating"},
        {LinkSecurityStatus::Authenticated, L"authenticated"},
        {LinkSecurityStatus::AuthenticationFailed, L"authentication failed"},
        {LinkSecurityStatus::Secured, L"secured"},
        {LinkSecurityStatus::SecuredWithEncryption, L"secured with encryption"},
        {LinkSecurityStatus::KeyAgreementFailed, L"key agreement failed"},
    };
    return Find(kWords, status);
}

std::wstring Text(StatusInfo status) {
    static constexpr Word<StatusInfo> kWords[] = {
        {StatusInfo::Other, L"other"},
        {StatusInfo::Unknown, L"unknown"},
        {StatusInfo::Enabled, L"enabled"},
        {StatusInfo::Disabled, L"disabled"},
        {StatusInfo::NotApplicable, L"not applicable"},
    };
    return Find(kWords, status);
}

std::wstring Text(Availability availability) {
    // The codes of the CIM schema.
    static constexpr Word<Availability> kWords[] = {
        {Availability::Other, L"other"},
        {Availability::Unknown, L"unknown"},
        {Availability::Running, L"running, full power"},
        {Availability::Warning, L"warning"},
        {Availability::InTest, L"in test"},
        {Availability::NotApplicable, L"not applicable"},
        {Availability::PowerOff, L"power off"},
        {Availability::OffLine, L"off line"},
        {Availability::OffDuty, L"off duty"},
        {Availability::Degraded, L"degraded"},
        {Availability::NotInstalled, L"not installed"},
        {Availability::InstallError, L"install error"},
        {Availability::PowerSaveUnknown, L"power save, unknown"},
        {Availability::PowerSaveLowPower, L"power save, low power mode"},
        {Availability::PowerSaveStandby, L"power save, standby"},
        {Availability::PowerCycle, L"power cycle"},
        {Availability::PowerSaveWarning, L"power save, warning"},
        {Availability::Paused, L"paused"},
        {Availability::NotReady, L"not ready"},
        {Availability::NotConfigured, L"not configured"},
        {Availability::Quiesced, L"quiesced"},
    };
    return Find(kWords, availability);
}

std::wstring Text(HardwareStatus status) {
    static constexpr Word<HardwareStatus> kWords[] = {
        {HardwareStatus::Missing, L"hardware missing"},
        {HardwareStatus::DriverNotLoaded, L"driver not loaded"},
        {HardwareStatus::CableRemoved, L"cable removed"},
        {HardwareStatus::LinkPresent, L"link present"},
    };
    return Find(kWords, status);
}

std::wstring Text(Capability capability) {
    static constexpr Word<Capability> kWords[] = {
        {Capability::Teaming, L"Teaming"},
        {Capability::FaultToleranceTeam, L"Fault tolerance team"},
        {Capability::AdaptiveLoadBalancingTeam, L"Adaptive load balancing team"},
        {Capability::GigabitLinkAggregationTeam, L"Gigabit link aggregation team"},
        {Capability::StaticLinkAggregationTeam, L"Static link aggregation team"},
        {Capability::DynamicLinkAggregationTeam, L"IEEE 802.3ad dynamic link aggregation team"},
        {Capability::SwitchFaultToleranceTeam, L"Switch fault tolerance team"},
        {Capability::Speed10Megabit, L"10 Mbit/s"},
        {Capability::Speed100Megabit, L"100 Mbit/s"},
        {Capability::Speed1Gigabit, L"1 Gbit/s"},
        {Capability::Speed10Gigabit, L"10 Gbit/s"},
        {Capability::TeamingWithOtherMakers, L"Teaming with adapters of other makers"},
        {Capability::Vlan, L"VLAN"},
        {Capability::PriorityTagging, L"Priority tagging"},
        {Capability::BootAgent, L"Boot agent"},
        {Capability::WakeOnLan, L"Wake on LAN"},
        {Capability::Diagnostics, L"Diagnostics"},
        {Capability::ServerAdapter, L"Server adapter"},
        {Capability::SpeedsReported, L"Speeds reported"},
        {Capability::PowerManagement, L"Power management"},
        {Capability::CableTest, L"Cable test"},
        {Capability::FibreMedium, L"Fibre medium"},
        {Capability::TcpSegmentationOffload, L"TCP segmentation offload"},
        {Capability::ChecksumOffload, L"Checksum offload"},
        {Capability::JumboFrames, L"Jumbo frames"},
        {Capability::AdapterIdentification, L"Adapter identification"},
        {Capability::ReceiveSideScaling, L"Receive side scaling"},
        {Capability::ScalableNetworking, L"Scalable networking"},
        {Capability::DirectCacheAccess, L"Direct cache access"},
        {Capability::VirtualMachineQueues, L"Virtual machine queues"},
        {Capability::LinkSecurity, L"Link security"},
        {Capability::IscsiBoot, L"iSCSI boot"},
        {Capability::DataCentreBridging, L"Data centre bridging"},
        {Capability::VirtualMachineLoadBalancingTeam, L"Virtual machine load balancing team"},
    };
    return Find(kWords, capability);
}

std::wstring Text(Flags<AdapterCondition> conditions) {
    std::wstring text;
    const auto add = [&text](const std::wstring& condition) {
        text += (text.empty() ? L"" : L", ") + condition;
    };
    unsigned number = 0;
    for (std::uint64_t rest = conditions.Mask(); rest != 0; rest >>= 1, ++number) {
        if ((rest & 1) == 0) {
            continue;
        }
        switch (static_cast<AdapterCondition>(std::uint64_t{1} << number)) {
        case AdapterCondition::Enabled:
            add(L"enabled");
            break;
        case AdapterCondition::DriverProblem:
            add(L"driver problem");
            break;
        case AdapterCondition::HardwareMissing:
            add(L"hardware missing");
            break;
        default:
            add(UnknownNumber(number, L"condition"));
        }
    }
    return text.empty() ? L"nothing reported" : text;
}

} // namespace quillet
