// The words. A number that has none is shown as it is, for a later provider may know more of them.
#include "commands/adapter/AdapterTexts.h"

namespace quilletctl {

namespace {

struct Word {
    LONG number;
    const char* text;
};

template <std::size_t N>
std::string Find(const Word (&words)[N], LONG number) {
    for (const Word& word : words) {
        if (word.number == number) {
            return word.text;
        }
    }
    return "code " + std::to_string(number);
}

} // namespace

std::string SpeedText(CAdapterDynamicInfo::LinkSpeed speed) {
    static constexpr Word kWords[] = {
        {CAdapterDynamicInfo::LinkSpeedNone, "no link"},
        {CAdapterDynamicInfo::LinkSpeed1Mb, "1 Mbit/s"},
        {CAdapterDynamicInfo::LinkSpeed10Mb, "10 Mbit/s"},
        {CAdapterDynamicInfo::LinkSpeed100Mb, "100 Mbit/s"},
        {CAdapterDynamicInfo::LinkSpeed1Gb, "1 Gbit/s"},
        {CAdapterDynamicInfo::LinkSpeed10Gb, "10 Gbit/s"},
        {CAdapterDynamicInfo::LinkSpeedOther, "unknown"},
    };
    return Find(kWords, speed);
}

std::string DuplexText(CAdapterDynamicInfo::DuplexMode mode) {
    static constexpr Word kWords[] = {
        {CAdapterDynamicInfo::DuplexUnknown, "unknown"},
        {CAdapterDynamicInfo::DuplexHalf, "half duplex"},
        {CAdapterDynamicInfo::DuplexFull, "full duplex"},
    };
    return Find(kWords, mode);
}

std::string LinkSecText(CAdapterDynamicInfo::LinkSecStatus status) {
    static constexpr Word kWords[] = {
        {0, "unknown"},
        {1, "not supported"},
        {2, "disabled"},
        {3, "enabled"},
        {4, "authenticating"},
        {5, "authenticated"},
        {6, "authentication failed"},
        {7, "secured"},
        {8, "secured with encryption"},
        {9, "key agreement failed"},
    };
    return Find(kWords, status);
}

std::string AdapterStatusText(LONG status) {
    static constexpr Word kWords[] = {{1, "enabled"}, {2, "driver problem"}, {4, "hardware missing"}};
    std::string text;
    const auto add = [&text](const std::string& condition) {
        text += (text.empty() ? "" : ", ") + condition;
    };
    for (unsigned bit = 0; bit < 32; ++bit) {
        const ULONG mask = ULONG{1} << bit;
        if ((static_cast<ULONG>(status) & mask) != 0) {
            add(mask <= 4 ? Find(kWords, static_cast<LONG>(mask)) : "condition " + std::to_string(bit));
        }
    }
    return text.empty() ? "nothing reported" : text;
}

std::string StatusInfoText(LONG status) {
    static constexpr Word kWords[] = {
        {1, "other"}, {2, "unknown"}, {3, "enabled"}, {4, "disabled"}, {5, "not applicable"},
    };
    return Find(kWords, status);
}

std::string AvailabilityText(LONG availability) {
    // The codes of the CIM schema.
    static constexpr Word kWords[] = {
        {1, "other"},
        {2, "unknown"},
        {3, "running, full power"},
        {4, "warning"},
        {5, "in test"},
        {6, "not applicable"},
        {7, "power off"},
        {8, "off line"},
        {9, "off duty"},
        {10, "degraded"},
        {11, "not installed"},
        {12, "install error"},
        {13, "power save, unknown"},
        {14, "power save, low power mode"},
        {15, "power save, standby"},
        {16, "power cycle"},
        {17, "power save, warning"},
        {18, "paused"},
        {19, "not ready"},
        {20, "not configured"},
        {21, "quiesced"},
    };
    return Find(kWords, availability);
}

std::string HardwareStatusText(LONG status) {
    static constexpr Word kWords[] = {
        {0, "hardware missing"},
        {1, "driver not loaded"},
        {2, "cable removed"},
        {3, "link present"},
    };
    return Find(kWords, status);
}

std::string CapabilityText(LONG code) {
    static constexpr Word kWords[] = {
        {3, "Teaming"},
        {4, "Fault tolerance team"},
        {5, "Adaptive load balancing team"},
        {8, "Gigabit link aggregation team"},
        {9, "Static link aggregation team"},
        {10, "IEEE 802.3ad dynamic link aggregation team"},
        {12, "Switch fault tolerance team"},
        {32, "10 Mbit/s"},
        {33, "100 Mbit/s"},
        {34, "1 Gbit/s"},
        {35, "10 Gbit/s"},
        {36, "Teaming with adapters of other makers"},
        {37, "VLAN"},
        {39, "Priority tagging"},
        {41, "Boot agent"},
        {43, "Wake on LAN"},
        {44, "Diagnostics"},
        {46, "Server adapter"},
        {47, "Speeds reported"},
        {50, "Power management"},
        {52, "Cable test"},
        {53, "Fibre medium"},
        {54, "TCP segmentation offload"},
        {55, "Checksum offload"},
        {56, "Jumbo frames"},
        {57, "Adapter identification"},
        {60, "Receive side scaling"},
        {61, "Scalable networking"},
        {62, "Direct cache access"},
        {63, "Virtual machine queues"},
        {64, "Link security"},
        {65, "iSCSI boot"},
        {66, "Data centre bridging"},
        {68, "Virtual machine load balancing team"},
    };
    return Find(kWords, code);
}

} // namespace quilletctl
