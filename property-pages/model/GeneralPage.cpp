// What an adapter is, and whether it has a link.
#include "model/GeneralPage.h"

#include "model/Words.h"

#include <algorithm>

namespace quillet::pages {

struct GeneralPage::Read {
    Adapter adapter;
    std::optional<AdapterState> state;
    std::optional<AdapterHardware> hardware;
    std::vector<Capability> capabilities;
    NdisVersion driver;
    Flags<ProviderBit> warnings;
    std::wstring hba;
};

Job GeneralPage::Reading() {
    return [page = Self<GeneralPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        const FetchOnce once(session);
        std::wstring notice;
        Read read;
        read.adapter = session.ReadAdapter(id);
        read.state = ReadIfThere([&] { return session.ReadState(id); }, notice);
        read.hardware = ReadIfThere([&] { return session.ReadHardware(id); }, notice);
        if (auto known = ReadIfThere([&] { return session.Capabilities(id); }, notice)) {
            read.capabilities = std::move(*known);
        }
        if (const auto driver = ReadIfThere([&] { return session.ReadNdisVersion(id); }, notice)) {
            read.driver = *driver;
        }
        if (const auto warnings = ReadIfThere([&] { return session.Warnings(id); }, notice)) {
            read.warnings = *warnings;
        }
        std::wstring unused; // most adapters have no storage host bus adapter
        read.hba = ReadIfThere([&] { return session.HbaPath(id); }, unused).value_or(L"");
        return [page, read = std::move(read), notice] {
            page->Take(read);
            page->NoteRead(notice);
        };
    };
}

void GeneralPage::Take(const Read& read) {
    m_name = read.adapter.displayName;
    m_link = read.state ? LinkWords(*read.state) : Say(TextId::Unknown);
    m_state = read.state ? read.state->text : std::wstring();
    m_canBlink =
        std::ranges::find(read.capabilities, Capability::AdapterIdentification) != read.capabilities.end();
    m_facts.clear();
    const auto add = [this](TextId name, const std::wstring& value) {
        if (!value.empty()) {
            m_facts.push_back({Say(name), value});
        }
    };
    add(TextId::FactSlot, read.adapter.slot);
    if (read.hardware) {
        add(TextId::FactPort, read.hardware->portNumber);
        add(TextId::FactMac, read.hardware->macAddress);
        add(TextId::FactSanMac, read.hardware->sanMacAddress);
        add(TextId::FactMedia, read.hardware->mediaType);
        add(TextId::FactController, read.hardware->controllerId);
        add(TextId::FactWidth, read.hardware->negotiatedLinkWidth);
        add(TextId::FactPart, read.hardware->partNumber);
        add(TextId::FactEeprom, read.hardware->eepromVersion);
        add(TextId::FactPci, read.hardware->pciDeviceId);
    }
    if (read.state) {
        add(TextId::FactStatus, InOwnLanguage(Text(read.state->statusInfo)));
        add(TextId::FactAvailability, InOwnLanguage(Text(read.state->availability)));
        add(TextId::FactHardware, InOwnLanguage(Text(read.state->hardware)));
        add(TextId::FactConditions, Text(read.state->conditions));
        add(TextId::FactLinkSecurity, InOwnLanguage(Text(read.state->linkSecurity)));
    }
    if (read.driver.major >= 0) {
        add(TextId::FactNdis, std::to_wstring(read.driver.major) + L"." + std::to_wstring(read.driver.minor));
    }
    add(TextId::FactHba, read.hba);
    add(TextId::FactDevice, read.adapter.deviceId);
    for (const std::wstring& warning : UnknownBits(read.warnings, Say(TextId::Warning))) {
        add(TextId::FactWarning, warning);
    }
    std::wstring abilities;
    for (const Capability capability : read.capabilities) {
        abilities += (abilities.empty() ? L"" : L", ") + InOwnLanguage(Text(capability));
    }
    add(TextId::FactCapabilities, abilities);
}

Job GeneralPage::Blinking(std::chrono::seconds duration) {
    return [id = m_adapter, duration](Session& session, const Asking&) -> Answer {
        session.Identify(id, duration);
        return nullptr;
    };
}

} // namespace quillet::pages
