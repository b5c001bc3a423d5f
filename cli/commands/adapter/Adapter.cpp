// quilletctl adapter: the machine's network adapters.
#include "app/Answers.h"
#include "changes/Verification.h"
#include "commands/adapter/AdapterTexts.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/BitMask.h"
#include "texts/JsonParts.h"
#include "texts/ResultCodes.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

Json AsJson(const std::vector<ListedAdapter>& adapters) {
    Json list = Json::array();
    for (const ListedAdapter& adapter : adapters) {
        list.push_back(Json{{"path", adapter.path},
                            {"objectId", TextOrNull(adapter.objectId)},
                            {"name", adapter.name},
                            {"displayName", adapter.displayName},
                            {"deviceId", adapter.deviceId}});
    }
    return Json{{"adapters", std::move(list)}};
}

void PrintTable(const std::vector<ListedAdapter>& adapters, const Terminal& screen) {
    // On most machines the two identifiers are one; a second column of the same would only fill the screen.
    const bool twoIds = std::any_of(adapters.begin(), adapters.end(),
                                    [](const ListedAdapter& each) { return each.deviceId != each.objectId; });
    std::vector<Column> columns{
        {"NAME", Fit::MayShorten}, {"DISPLAY NAME", Fit::MayShorten, "NAME"}, {"OBJECT ID", Fit::Whole}};
    if (twoIds) {
        columns.push_back({"DEVICE ID", Fit::Whole});
    }
    Table table(std::move(columns));
    for (const ListedAdapter& adapter : adapters) {
        table.AddRow({adapter.name, adapter.displayName, adapter.objectId, adapter.deviceId});
    }
    table.Print(screen);
}

ExitStatus ListAdapters(Invocation& run) {
    const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
    if (run.WantsJson()) {
        run.Print(AsJson(adapters));
    } else if (adapters.empty()) {
        run.Out() << "no adapters\n";
    } else {
        PrintTable(adapters, run.Screen());
    }
    return ExitStatus::Done;
}

/// A number that a provider method tells, or the code of its refusal: one that an adapter cannot tell must
/// not hide the others.
template <class Value>
struct Told {
    HRESULT result = S_OK;
    Value value{};

    /// The value's text, or why there is none.
    template <class Words>
    std::string Text(const Words& words) const {
        return SUCCEEDED(result) ? words(value) : "not told: " + ExplainResult(result);
    }
    template <class Words>
    Json AsJson(const Words& words) const {
        return SUCCEEDED(result) ? Json(words(value)) : Json();
    }
};

class ShowAdapter final : public AdapterCommand {
    struct Ndis {
        int major = 0;
        int minor = 0;
    };

    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        const std::wstring path = ToWide(adapter.path);
        const std::string asked = "read the adapter " + adapter.Called();
        CAdapter known;
        ThrowIfRefused(session.GetAdapterBasicInfo(path, known), asked);
        ThrowIfRefused(session.GetAdapterDynamicInfo(path, known), asked);
        CPCIInfo pci;
        ThrowIfRefused(session.GetAdapterPCIInfo(path, pci), asked);
        Told<Ndis> ndis;
        ndis.result = session.GetNDIS_Version(path, ndis.value.major, ndis.value.minor);
        Told<std::wstring> hba;
        hba.result = session.GetHbaPath(path, hba.value);
        Told<ULONGLONG> warnings;
        warnings.result = session.GetAdapterWarnings(path, warnings.value);

        const auto version = [](const Ndis& told) {
            return std::to_string(told.major) + '.' + std::to_string(told.minor);
        };
        const CAdapterDynamicInfo& state = *known.m_pAdapterDynamicInfo;
        if (run.WantsJson()) {
            run.Print(Json{
                {"path", adapter.path},
                {"objectId", TextOrNull(adapter.objectId)},
                {"name", ToUtf8(known.m_wsName)},
                {"displayName", ToUtf8(known.m_wsDisplayName)},
                {"deviceId", ToUtf8(known.m_wsDeviceID)},
                {"slotId", ToUtf8(known.m_wsSlotID)},
                {"status", ToUtf8(state.m_wsStatus)},
                {"speed", Coded(state.m_eLinkSpeed, SpeedText(state.m_eLinkSpeed))},
                {"duplex", Coded(state.m_eDuplexMode, DuplexText(state.m_eDuplexMode))},
                {"linkSecurity", Coded(state.m_eLinkSecStatus, LinkSecText(state.m_eLinkSecStatus))},
                {"adapterStatus", Coded(state.m_lAdapterStatus, AdapterStatusText(state.m_lAdapterStatus))},
                {"statusInfo", Coded(state.m_lStatusInfo, StatusInfoText(state.m_lStatusInfo))},
                {"availability", Coded(state.m_lAvailability, AvailabilityText(state.m_lAvailability))},
                {"hardwareStatus",
                 Coded(state.m_lHardwareStatus, HardwareStatusText(state.m_lHardwareStatus))},
                {"controllerId", ToUtf8(pci.m_wsControllerID)},
                {"mediaType", ToUtf8(pci.m_wsMediaType)},
                {"negotiatedLinkWidth", ToUtf8(pci.m_wsNegotiatedLinkWidth)},
                {"portNumber", ToUtf8(pci.m_wsPortNumber)},
                {"partNumber", ToUtf8(pci.m_wsPartNumber)},
                {"macAddress", ToUtf8(pci.m_wsMacAddress)},
                {"eepromVersion", ToUtf8(pci.m_wsEEPROMVersion)},
                {"sanMacAddress", ToUtf8(pci.m_wsSanMacAddress)},
                {"pciDeviceId", ToUtf8(pci.m_wsPCIDeviceID)},
                {"ndisVersion", ndis.AsJson(version)},
                {"hbaPath", hba.AsJson([](const std::wstring& told) { return TextOrNull(ToUtf8(told)); })},
                {"warnings", warnings.AsJson(HexMask)},
            });
            return ExitStatus::Done;
        }
        Sheet()
            .Add("Name", ToUtf8(known.m_wsName))
            .Add("Display name", ToUtf8(known.m_wsDisplayName))
            .Add("Object ID", adapter.objectId)
            .Add("Device ID", ToUtf8(known.m_wsDeviceID))
            .Add("Slot", ToUtf8(known.m_wsSlotID))
            .Add("Status", ToUtf8(state.m_wsStatus))
            .Add("Hardware", HardwareStatusText(state.m_lHardwareStatus))
            .Add("Link", LinkText(state))
            .Add("Link security", LinkSecText(state.m_eLinkSecStatus))
            .Add("Condition", AdapterStatusText(state.m_lAdapterStatus))
            .Add("State", StatusInfoText(state.m_lStatusInfo))
            .Add("Availability", AvailabilityText(state.m_lAvailability))
            .Add("Controller", ToUtf8(pci.m_wsControllerID))
            .Add("PCI device ID", ToUtf8(pci.m_wsPCIDeviceID))
            .Add("Medium", ToUtf8(pci.m_wsMediaType))
            .Add("Link width", ToUtf8(pci.m_wsNegotiatedLinkWidth))
            .Add("Port", ToUtf8(pci.m_wsPortNumber))
            .Add("Part number", ToUtf8(pci.m_wsPartNumber))
            .Add("EEPROM version", ToUtf8(pci.m_wsEEPROMVersion))
            .Add("MAC address", ToUtf8(pci.m_wsMacAddress))
            .Add("SAN MAC address", ToUtf8(pci.m_wsSanMacAddress))
            .Add("NDIS version", ndis.Text(version))
            .Add("HBA path", hba.Text(ToUtf8))
            .Add("Warnings", warnings.Text(WarningText))
            .Print(run.Screen());
        return ExitStatus::Done;
    }

    /// The speed, and the duplex mode where there is a link to have one.
    static std::string LinkText(const CAdapterDynamicInfo& state) {
        const std::string speed = SpeedText(state.m_eLinkSpeed);
        return state.m_eLinkSpeed == CAdapterDynamicInfo::LinkSpeedNone
                   ? speed
                   : speed + ", " + DuplexText(state.m_eDuplexMode);
    }

    static std::string WarningText(ULONGLONG mask) {
        // The meaning of the bits is the provider's own.
        std::string text;
        for (const unsigned bit : SetBits(mask)) {
            text += (text.empty() ? "provider warning " : ", ") + std::to_string(bit);
        }
        return text.empty() ? "none" : text;
    }
};

class ListCapabilities final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapter known;
        ThrowIfRefused(run.Session().GetAdapterCapabilities(ToWide(adapter.path), known),
                       "read the capabilities of " + adapter.Called());
        std::vector<LONG> codes;
        for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
            if (known.m_pAdapterCapabilities->*flag.m_pFlag) {
                codes.push_back(flag.m_lCode);
            }
        }
        std::sort(codes.begin(), codes.end());
        Json list = Json::array();
        Table table({{"CODE", Fit::Whole}, {"CAPABILITY", Fit::MayShorten}});
        for (const LONG code : codes) {
            list.push_back(Coded(code, CapabilityText(code)));
            table.AddRow({std::to_string(code), CapabilityText(code)});
        }
        return AnswerList(run, Json{{"path", adapter.path}, {"capabilities", std::move(list)}}, table,
                          "no capabilities");
    }
};

class ListPorts final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        CAdapterPorts ports;
        ThrowIfRefused(session.EnumerateOtherPortOfAdapter(ToWide(adapter.path), ports),
                       "list the ports beside " + adapter.Called());
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const CAdapterPort* port : ports.m_vecItems) {
                list.push_back(Json{{"path", ToUtf8(port->m_wsAdapterID)},
                                    {"objectId", TextOrNull(IdIn(port->m_wsAdapterID))},
                                    {"teamed", port->m_bTeamed},
                                    {"teamPath", ToUtf8(port->m_wsTeamID)},
                                    {"teamId", TextOrNull(IdIn(port->m_wsTeamID))}});
            }
            run.Print(Json{{"path", adapter.path}, {"ports", std::move(list)}});
        } else if (ports.m_vecItems.empty()) {
            run.Out() << "no port of this board is in a team\n";
        } else {
            const std::vector<ListedAdapter> adapters = ReadAdapters(session);
            const CTeams teams = ReadTeams(session);
            Table table({{"PORT", Fit::MayShorten}, {"OBJECT ID", Fit::Whole}, {"TEAM", Fit::MayShorten}});
            for (const CAdapterPort* port : ports.m_vecItems) {
                table.AddRow({PortName(adapters, *port), IdIn(port->m_wsAdapterID), TeamName(teams, *port)});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }

    static std::string PortName(const std::vector<ListedAdapter>& adapters, const CAdapterPort& port) {
        for (const ListedAdapter& each : adapters) {
            if (each.objectId == IdIn(port.m_wsAdapterID)) {
                return each.Called();
            }
        }
        return ToUtf8(port.m_wsAdapterID);
    }
    static std::string TeamName(const CTeams& teams, const CAdapterPort& port) {
        for (const CTeam* each : teams.m_vecItems) {
            if (IdIn(each->m_wsTeamID) == IdIn(port.m_wsTeamID)) {
                return Called(*each);
            }
        }
        return IdIn(port.m_wsTeamID);
    }
    static std::string IdIn(const std::wstring& path) { return NameInPath(ToUtf8(path)).key; }
};

class IdentifyAdapter final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--seconds", m_seconds, 1, 3600, "For how long");
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        run.HoldInterrupts();
        ThrowIfRefused(session.IdentifyAdapter(ToWide(adapter.path), static_cast<LONG>(m_seconds)),
                       "identify " + adapter.Called());
        // Only who stands before the rack sees whether it does.
        Verification taken;
        taken.LeaveOpen();
        if (run.WantsJson()) {
            Json answer{{"path", adapter.path}, {"seconds", m_seconds}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called()) << " was asked to blink for " << m_seconds
                      << (m_seconds == 1 ? " second" : " seconds") << "; it does not tell whether it does\n";
        }
        return ExitStatus::Done;
    }

    std::uint32_t m_seconds = 10;
};

} // namespace

void AddAdapterCommands(CommandTree& tree) {
    tree.AddNoun("adapter", "The machine's network adapters")
        .Query("list", "List the adapters", ListAdapters)
        .Query("show", "What is known of an adapter: names, link, state, hardware",
               std::make_unique<ShowAdapter>())
        .Query("capabilities", "What an adapter can do", std::make_unique<ListCapabilities>())
        .Query("ports", "The ports of an adapter's board that are in a team", std::make_unique<ListPorts>())
        .Verb("identify", "Let an adapter blink, so that it is found in the rack",
              std::make_unique<IdentifyAdapter>());
}

} // namespace quilletctl
