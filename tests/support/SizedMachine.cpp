// Machines of any size as MOF. Everything is named after its number, so that paths can be written down.
#include "SizedMachine.h"

#include <array>

namespace quillet::tests {

namespace {

using Text = std::string;

Text Number(unsigned number) {
    return std::to_string(number);
}

/// An object ID: any text in braces.
Text IdOfAdapter(unsigned number) {
    return "{A" + Number(number) + "}";
}
Text IdOfTeam(unsigned number) {
    return "{T" + Number(number) + "}";
}
Text IdOfVlan(const Text& parent, unsigned number) {
    return "{V" + Number(number) + " of " + parent.substr(1);
}

Text Instance(const Text& className, const Text& body, const Text& alias = {}) {
    return "instance of " + className + (alias.empty() ? "" : " as $" + alias) + " {" + body + "};\n";
}

Text Property(const char* name, const Text& text) {
    return Text(name) + "=\"" + text + "\";";
}

/// What a setting has whatever its kind, and what is its kind's.
Text Setting(const Text& classPrefix, const Text& owner, const char* ownerKind, unsigned number) {
    struct Kind {
        const char* name;
        const char* values;
    };
    static constexpr std::array kKinds{
        Kind{"Enum", "CurrentValue=1;DefaultValue=0;DescriptionMap={\"Disabled\",\"Enabled\",\"Automatic\"};"
                     "PossibleValues={\"0\",\"1\",\"2\"};"},
        Kind{"Int", "CurrentValue=256;DefaultValue=512;Max=2048;Min=80;Step=8;Base=10;Scale=1;"},
        Kind{"String", "CurrentValue=\"02005E000001\";DefaultValue=\"\";MaxLength=12;"},
        Kind{"Slider", "CurrentValue=2;DefaultValue=1;PossibleValues={\"1\",\"2\",\"3\",\"4\"};"
                       "FirstLabel=\"Low\";LastLabel=\"High\";"},
        Kind{"MultiSelection", "CurrentValue=3;DefaultValue=1;DescriptionMap={\"Magic packet\",\"Pattern\"};"
                               "PossibleValues={\"1\",\"2\"};"},
        Kind{"MultiString", "CurrentValues={\"first pattern\",\"second pattern\"};DefaultValue=\"\";"
                            "MaxLength=64;"},
    };
    const Kind& kind = kKinds[number % kKinds.size()];
    return Instance(
        classPrefix + kind.name,
        Property("Caption", "*Setting" + Number(number)) + Property("ParentId", owner) +
            Property("ParentType", ownerKind) + Property("Description", "Setting number " + Number(number)) +
            Property("MiniHelp", "What this setting does to the adapter, in a sentence or two.") +
            "ExposeLevel=1;Writable=TRUE;Grouped=" + (number % 4 == 0 ? "TRUE;GroupId=2;" : "FALSE;") +
            kind.values);
}

Text Profile(const Text& owner, unsigned values, unsigned current) {
    Text texts;
    Text numbers;
    for (unsigned value = 1; value <= values; ++value) {
        const char* separator = value == 1 ? "" : ",";
        texts += separator + ("\"Profile " + Number(value) + "\"");
        numbers += separator + ("\"" + Number(value) + "\"");
    }
    return Instance("Zorel_AdapterSettingEnum",
                    Property("Caption", "PerformanceProfile") + Property("ParentId", owner) +
                        Property("ParentType", "NIC") + "CurrentValue=" + Number(current) +
                        ";DefaultValue=1;DescriptionMap={" + texts + "};PossibleValues={" + numbers + "};");
}

Text Adapter(unsigned number) {
    return Instance(
        "Zorel_PhysicalEthernetAdapter",
        Property("DeviceID", IdOfAdapter(number)) +
            Property("Name", "Zorel Gigabit Server Adapter #" + Number(number)) +
            Property("Caption", "Adapter " + Number(number)) +
            Property("OriginalDisplayName", "Zorel Gigabit Server Adapter") +
            Property("SlotID", "Slot " + Number((number + 1) / 2)) + Property("Status", "OK") +
            "StatusInfo=3;Availability=3;AdapterStatus=1;HardwareStatus=3;Speed=1000000000;FullDuplex=TRUE;"
            "LinkSecStatus=1;Capabilities={3,4,5,8,9,10,12,32,33,34,36,37,41,43,44,46,47,50,57,60,61,65,68};"
            "PermanentAddress=\"02-00-5E-00-00-01\";NetworkAddresses={\"02-00-5E-00-00-01\"};"
            "ControllerID=\"ZC-1G1 rev 06\";MediaType=\"Copper\";BusType=\"PCI Express\";"
            "NegotiatedLinkWidth=\"x1\";PortNumber=\"1\";PHYDevice=4354;PartNumber=\"ZB1G1-020\";"
            "EEPROMVersion=\"1.5-2\";PCIDeviceID=\"F112\";NDISMajorVersion=6;NDISMinorVersion=20;"
            "HbaPath=\"ScsiPort1\";",
        "A" + Number(number));
}

Text VlansOf(const Text& parent, const MachineSize& size) {
    Text text;
    for (unsigned number = 1; number <= size.vlans; ++number) {
        const Text id = IdOfVlan(parent, number);
        text +=
            Instance("Zorel_VLAN",
                     Property("Name", id) + Property("Caption", parent + " - VLAN : Net " + Number(number)) +
                         Property("ParentID", parent) + Property("VLANName", "Net " + Number(number)) +
                         "VLANNumber=" + Number(number) + ";StatusInfo=3;");
        for (unsigned setting = 1; number == 1 && setting <= size.vlanSettings; ++setting) {
            text += Setting("Zorel_VLANSetting", id, "VLAN", setting);
        }
    }
    return text;
}

Text Team(unsigned number, unsigned members) {
    const Text id = IdOfTeam(number);
    const Text team = "T" + Number(number);
    Text text = Instance("Zorel_TeamOfAdapters",
                         Property("Name", id) + Property("Caption", "TEAM : " + Number(number)) +
                             "TeamingMode=0;TeamMacAddress=\"02-00-5E-00-00-01\";MFOEnabled=FALSE;"
                             "LinksecEnabled=FALSE;BoundToHyperV=FALSE;TeamProfile=2;",
                         team);
    text += Instance("Zorel_LogicalEthernetAdapter",
                     Property("DeviceID", id) + Property("Name", "TEAM : " + Number(number)) +
                         Property("Caption", "TEAM : " + Number(number)) +
                         "Status=\"OK\";StatusInfo=3;Availability=3;Speed=1000000000;FullDuplex=TRUE;",
                     "L" + Number(number));
    text += Instance("Zorel_NetworkVirtualAdapter",
                     "SystemElement=$L" + Number(number) + ";SameElement=$" + team + ";");
    for (unsigned member = 1; member <= members; ++member) {
        text += Instance("Zorel_TeamedMemberAdapter", "GroupComponent=$" + team + ";PartComponent=$A" +
                                                          Number((number - 1) * members + member) +
                                                          ";AdapterFunction=" + (member == 1 ? "1" : "2") +
                                                          ";AdapterStatus=1;");
    }
    return text + Instance("Zorel_802dot1QVLANService", Property("Name", id));
}

Text TestsOf(unsigned adapter, unsigned tests) {
    Text text;
    for (unsigned test = 1; test <= tests; ++test) {
        const Text alias = "D" + Number(test) + "of" + Number(adapter);
        text += Instance("Zorel_DiagTest",
                         Property("Name", "Test " + Number(test) + " - Adapter " + Number(adapter)) +
                             Property("Description", "Examines the adapter.") + "TestId=" + Number(test) +
                             ";Grouped=FALSE;",
                         alias);
        text += Instance("Zorel_DiagTestForAdapter",
                         "Antecedent=$" + alias + ";Dependent=$A" + Number(adapter) + ";");
    }
    return text;
}

std::wstring Path(const wchar_t* classAndKey, const Text& id) {
    return classAndKey + (L"=\"" + std::wstring(id.begin(), id.end())) + L'"';
}

} // namespace

std::string MachineText(const MachineSize& size) {
    Text text = Instance("Zorel_NetService", "Name=\"ZorelNetService\";Warnings=5;bIsiSCSIOS=TRUE;");
    for (unsigned number = 1; number <= size.adapters; ++number) {
        const Text id = IdOfAdapter(number);
        text += Adapter(number) + Instance("Zorel_802dot1QVLANService", Property("Name", id));
        for (unsigned setting = 1; setting <= size.settings; ++setting) {
            text += Setting("Zorel_AdapterSetting", id, "NIC", setting);
        }
        if (size.profiles != 0) {
            text += Profile(id, size.profiles, size.currentProfile);
        }
        text += TestsOf(number, size.tests);
    }
    for (unsigned number = 1; number <= size.teams; ++number) {
        text += Team(number, size.members);
    }
    for (unsigned number = 1; number <= size.iscsiPorts; ++number) {
        text += Instance("Zorel_BootAgent", Property("Name", IdOfAdapter(number)) + "iSCSI_Status=0;");
        text += Instance("Zorel_BootAgent_iSCSI_Adapters",
                         Property("Name", IdOfAdapter(number)) +
                             Property("AdapterName", "Adapter " + Number(number)) + "iSCSI_Status=0;");
    }
    if (size.adapters != 0) {
        text += VlansOf(IdOfAdapter(size.adapters), size);
    }
    if (size.teams != 0) {
        text += VlansOf(IdOfTeam(1), size);
    }
    return text;
}

std::wstring AdapterId(unsigned number) {
    return Path(L"Zorel_PhysicalEthernetAdapter.DeviceID", IdOfAdapter(number));
}

std::wstring TeamId(unsigned number) {
    return Path(L"Zorel_TeamOfAdapters.Name", IdOfTeam(number));
}

std::wstring AdapterVlanId(unsigned adapter, unsigned number) {
    return Path(L"Zorel_VLAN.Name", IdOfVlan(IdOfAdapter(adapter), number));
}

std::wstring TeamVlanId(unsigned team, unsigned number) {
    return Path(L"Zorel_VLAN.Name", IdOfVlan(IdOfTeam(team), number));
}

} // namespace quillet::tests
