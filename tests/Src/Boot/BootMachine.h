// A machine with boot agents, and images for them.
#pragma once

#include "ProviderTest.h"

#include <quillet-simulator/FlashImage.h>

#include <cstdint>
#include <string>
#include <vector>

namespace boot {

using Bytes = std::vector<std::uint8_t>;
using quillet::simulator::BootImage;
using quillet::simulator::WriteFlashImage;

/// Bytes that are the same every time and repeat nowhere soon.
inline Bytes Noise(std::size_t size, std::uint32_t seed = 1) {
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    return bytes;
}

/// The image that is in the flash memory at first.
inline Bytes OldImage() {
    return WriteFlashImage({{L"PXE", L"1.2.3", 0, 1, Noise(100)}});
}

/// A file with three images.
inline Bytes NewImage(std::size_t size = 200) {
    return WriteFlashImage({{L"PXE", L"1.4.0", 0, 1, Noise(size, 2)},
                            {L"iSCSI", L"2.1.7", 1, 3, Noise(60, 3)},
                            {L"EFI", L"1.0.2", 2, -1, Noise(40, 4)}});
}

/// A MOF array of bytes.
inline std::string Mof(const Bytes& bytes) {
    std::string text = "{";
    for (const std::uint8_t byte : bytes) {
        text += (text.size() > 1 ? "," : "") + std::to_string(byte);
    }
    return text + "}";
}

/// Three ports: {A} and {B} can boot from iSCSI, {C} has a boot agent without flash memory.
inline std::string MachineText() {
    return std::string(R"(
        instance of Zorel_NetService {
            Name = "ZorelNetService"; bIsiSCSIOS = TRUE; bIsiSCSIPatch = FALSE; bIsiSCSIHotFix = TRUE; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; };
        instance of Zorel_BootAgent {
            Name = "{A}"; Version = "1.2.3"; VersionNumber = 66051; UpdateAvailable = TRUE; FlashImageType = 4;
            iSCSI_Status = 1; InstalledFlashImageTypes = 5; FlashImage = )") +
           Mof(OldImage()) + R"(; };
        instance of Zorel_BootAgent { Name = "{B}"; iSCSI_Status = 0; };
        instance of Zorel_BootAgent { Name = "{C}"; };
        instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{A}"; AdapterName = "First"; iSCSI_Status = 1; };
        instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{B}"; AdapterName = "Second"; iSCSI_Status = 0; };)";
}

/// The full path of an instance of one key.
inline std::wstring Path(const wchar_t* classAndKey, const wchar_t* value) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:)" + std::wstring(classAndKey) + L"=\"" + value + L"\"";
}

/// A connected session with that machine.
class BootTest : public ProviderTest {
  protected:
    BootTest() : ProviderTest(MachineText()) {}
    void SetUp() override { Connect(); }

    /// What is in the flash memory of a boot agent.
    Bytes Flash(const wchar_t* name = L"{A}") {
        const auto agent = machine->Store().FindInstance(Path(L"Zorel_BootAgent.Name", name));
        const auto* value = agent->Find(L"FlashImage");
        return value->AsBytes() != nullptr ? *value->AsBytes() : Bytes();
    }
    /// Image types as the operations take them.
    static CSettings Types(std::initializer_list<const wchar_t*> names) {
        CSettings types;
        for (const wchar_t* name : names) {
            auto* type = new CSettingString;
            type->m_wsCaption = name;
            types.m_vecItems.push_back(type);
        }
        return types;
    }

    const std::wstring ADAPTER = Path(L"Zorel_PhysicalEthernetAdapter.DeviceID", L"{A}");
    const std::wstring AGENT = Path(L"Zorel_BootAgent.Name", L"{A}");
    static constexpr const char* MISSING = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
};

} // namespace boot
