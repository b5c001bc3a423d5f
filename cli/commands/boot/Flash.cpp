// Reading the flash memory.
#include "commands/boot/Flash.h"

#include "ending/Failure.h"

namespace quilletctl {

Flash ReadFlash(CQuillet& session, const CBootAgent& agent) {
    LONG size = 0;
    unsigned char* data = nullptr;
    const HRESULT result = session.ReadBootAgentFlash(agent.m_wsBootAgentID, size, &data);
    Flash flash{std::unique_ptr<unsigned char, ReleaseBytes>(data), static_cast<std::size_t>(size)};
    ThrowIfRefused(result, "read the flash memory");
    return flash;
}

} // namespace quilletctl
