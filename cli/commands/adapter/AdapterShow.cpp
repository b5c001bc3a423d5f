// quilletctl adapter show: what is known of an adapter.
#include "commands/AdapterCommand.h"
#include "commands/adapter/AdapterVerbs.h"
#include "terminal/Sheet.h"
#include "texts/BitMask.h"
#include "texts/InWords.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>

namespace quilletctl {

namespace {

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
                {"speed", Coded(state.m_eLinkSpeed, InWords<quillet::LinkSpeed>(state.m_eLinkSpeed))},
                {"duplex", Coded(state.m_eDuplexMode, InWords<quillet::Duplex>(state.m_eDuplexMode))},
                {"linkSecurity",
                 Coded(state.m_eLinkSecStatus, InWords<quillet::LinkSecurityStatus>(state.m_eLinkSecStatus))},
                {"adapterStatus", Coded(state.m_lAdapterStatus, ConditionsInWords(state.m_lAdapterStatus))},
                {"statusInfo", Coded(state.m_lStatusInfo, InWords<quillet::StatusInfo>(state.m_lStatusInfo))},
                {"availability",
                 Coded(state.m_lAvailability, InWords<quillet::Availability>(state.m_lAvailability))},
                {"hardwareStatus",
                 Coded(state.m_lHardwareStatus, InWords<quillet::HardwareStatus>(state.m_lHardwareStatus))},
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
            .Add("Hardware", InWords<quillet::HardwareStatus>(state.m_lHardwareStatus))
            .Add("Link", LinkText(state))
            .Add("Link security", InWords<quillet::LinkSecurityStatus>(state.m_eLinkSecStatus))
            .Add("Condition", ConditionsInWords(state.m_lAdapterStatus))
            .Add("State", InWords<quillet::StatusInfo>(state.m_lStatusInfo))
            .Add("Availability", InWords<quillet::Availability>(state.m_lAvailability))
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

    static std::string ConditionsInWords(LONG status) {
        // A word of 32 bits: widened with its sign it would be more of them.
        const auto mask = static_cast<std::uint32_t>(status);
        return ToUtf8(quillet::Text(quillet::Flags<quillet::AdapterCondition>::FromMask(mask)));
    }

    /// The speed, and the duplex mode where there is a link to have one.
    static std::string LinkText(const CAdapterDynamicInfo& state) {
        const std::string speed = InWords<quillet::LinkSpeed>(state.m_eLinkSpeed);
        return state.m_eLinkSpeed == CAdapterDynamicInfo::LinkSpeedNone
                   ? speed
                   : speed + ", " + InWords<quillet::Duplex>(state.m_eDuplexMode);
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

} // namespace

void AddAdapterShow(CommandTree::Noun& adapter) {
    adapter.Query("show", "What is known of an adapter: names, link, state, hardware",
                  std::make_unique<ShowAdapter>());
}

} // namespace quilletctl
