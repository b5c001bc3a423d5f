// Making flash memory.
#include "FlashMemory.h"

#include <quillet-simulator/FlashImage.h>

namespace quillet::bench {

std::vector<std::uint8_t> FlashImage(std::size_t size) {
    std::vector<std::uint8_t> contents(size - 4096);
    std::uint32_t seed = 1;
    for (std::uint8_t& byte : contents) {
        seed = seed * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(seed >> 24);
    }
    std::vector<std::uint8_t> image = simulator::WriteFlashImage({{L"PXE", L"1.0.0", 0, 1, contents}});
    contents.resize(contents.size() + size - image.size());
    return simulator::WriteFlashImage({{L"PXE", L"1.0.0", 0, 1, contents}});
}

bool WriteFlash(CQuillet& quillet, std::size_t size) {
    std::vector<std::uint8_t> image = FlashImage(size);
    CSettings types;
    auto* type = new CSettingString;
    type->m_wsCaption = L"PXE";
    types.m_vecItems.push_back(type);
    int returnCode = -1;
    return SUCCEEDED(quillet.WriteBootAgentFlash(kBootAgent, static_cast<LONG>(image.size()), image.data(),
                                                 types, returnCode)) &&
           returnCode == 0;
}

} // namespace quillet::bench
