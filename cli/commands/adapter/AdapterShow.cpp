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
#include <variant>

namespace quilletctl {

namespace {

/// What a provider method tells, or the code of its refusal: one that an adapter cannot tell must not hide
/// the others.
template <class Value>
class ToldOrWhyNot {
  public:
    template <class Read>
    explicit ToldOrWhyNot(Read read) : m_told(Tell(read)) {}

    /// The value's text, or why there is none.
    template <class Words>
    std::string Text(const Words& words) const {
        const Value* value = std::get_if<Value>(&m_told);
        return value != nullptr ? words(*value)
                                : "not told: " + ExplainResult(std::get<Refused>(m_told).code);
    }
    template <class Words>
    Json AsJson(const Words& words) const {
        const Value* value = std::get_if<Value>(&m_told);
        return value != nullptr ? Json(words(*value)) : Json();
    }

  private:
    struct Refused {
        HRESULT code;
    };

    template <class Read>
    static std::variant<Value, Refused> Tell(Read read) {
        try {
            return read();
        } catch (const quillet::Error& refusal) {
            return Refused{refusal.Code()};
        }
    }

    std::variant<Value, Refused> m_told;
};
template <class Read>
ToldOrWhyNot(Read read) -> ToldOrWhyNot<decltype(read())>;

class ShowAdapter final : public AdapterCommand {
    using WarningBits = quillet::Flags<quillet::ProviderBit>;

    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Session& session = run.Session();
        quillet::Adapter known;
        quillet::AdapterState state;
        quillet::AdapterHardware hardware;
        const quillet::FetchOnce once(session);
        Attempt("read the adapter " + adapter.Called(), [&] {
            known = session.ReadAdapter(adapter.id);
            state = session.ReadState(adapter.id);
            hardware = session.ReadHardware(adapter.id);
        });
        const ToldOrWhyNot ndis([&] { return session.ReadNdisVersion(adapter.id); });
        const ToldOrWhyNot hba([&] { return session.HbaPath(adapter.id); });
        const ToldOrWhyNot warnings([&] { return session.Warnings(adapter.id); });

        const auto version = [](const quillet::NdisVersion& told) {
            return std::to_string(told.major) + '.' + std::to_string(told.minor);
        };
        if (run.WantsJson()) {
            run.Print(Json{
                {"path", adapter.path},
                {"objectId", TextOrNull(adapter.objectId)},
                {"name", ToUtf8(known.name)},
                {"displayName", ToUtf8(known.displayName)},
                {"deviceId", ToUtf8(known.deviceId)},
                {"slotId", ToUtf8(known.slot)},
                {"status", ToUtf8(state.text)},
                {"speed", Coded(state.speed)},
                {"duplex", Coded(state.duplex)},
                {"linkSecurity", Coded(state.linkSecurity)},
                {"adapterStatus",
                 Coded(static_cast<std::int32_t>(state.conditions.Mask()), InWords(state.conditions))},
                {"statusInfo", Coded(state.statusInfo)},
                {"availability", Coded(state.availability)},
                {"hardwareStatus", Coded(state.hardware)},
                {"controllerId", ToUtf8(hardware.controllerId)},
                {"mediaType", ToUtf8(hardware.mediaType)},
                {"negotiatedLinkWidth", ToUtf8(hardware.negotiatedLinkWidth)},
                {"portNumber", ToUtf8(hardware.portNumber)},
                {"partNumber", ToUtf8(hardware.partNumber)},
                {"macAddress", ToUtf8(hardware.macAddress)},
                {"eepromVersion", ToUtf8(hardware.eepromVersion)},
                {"sanMacAddress", ToUtf8(hardware.sanMacAddress)},
                {"pciDeviceId", ToUtf8(hardware.pciDeviceId)},
                {"ndisVersion", ndis.AsJson(version)},
                {"hbaPath", hba.AsJson([](const std::wstring& told) { return TextOrNull(ToUtf8(told)); })},
                {"warnings", warnings.AsJson([](WarningBits bits) { return HexMask(bits.Mask()); })},
                {"warningTexts", warnings.AsJson([](WarningBits bits) { return InWords(bits, L"warning"); })},
            });
            return ExitStatus::Done;
        }
        Sheet()
            .Add("Name", ToUtf8(known.name))
            .Add("Display name", ToUtf8(known.displayName))
            .Add("Object ID", adapter.objectId)
            .Add("Device ID", ToUtf8(known.deviceId))
            .Add("Slot", ToUtf8(known.slot))
            .Add("Status", ToUtf8(state.text))
            .Add("Hardware", InWords(state.hardware))
            .Add("Link", LinkText(state))
            .Add("Link security", InWords(state.linkSecurity))
            .Add("Condition", InWords(state.conditions))
            .Add("State", InWords(state.statusInfo))
            .Add("Availability", InWords(state.availability))
            .Add("Controller", ToUtf8(hardware.controllerId))
            .Add("PCI device ID", ToUtf8(hardware.pciDeviceId))
            .Add("Medium", ToUtf8(hardware.mediaType))
            .Add("Link width", ToUtf8(hardware.negotiatedLinkWidth))
            .Add("Port", ToUtf8(hardware.portNumber))
            .Add("Part number", ToUtf8(hardware.partNumber))
            .Add("EEPROM version", ToUtf8(hardware.eepromVersion))
            .Add("MAC address", ToUtf8(hardware.macAddress))
            .Add("SAN MAC address", ToUtf8(hardware.sanMacAddress))
            .Add("NDIS version", ndis.Text(version))
            .Add("HBA path", hba.Text(ToUtf8))
            .Add("Warnings", warnings.Text(WarningText))
            .Print(run.Screen());
        return ExitStatus::Done;
    }

    /// The speed, and the duplex mode where there is a link to have one.
    static std::string LinkText(const quillet::AdapterState& state) {
        const std::string speed = InWords(state.speed);
        return state.speed == quillet::LinkSpeed::None ? speed : speed + ", " + InWords(state.duplex);
    }

    static std::string WarningText(WarningBits warnings) {
        std::string text;
        for (const std::string& each : InWords(warnings, L"warning")) {
            text += (text.empty() ? "" : ", ") + each;
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
