// The flash memory of a boot agent.
#pragma once

#include <quillet/Quillet.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace quilletctl {

struct ReleaseBytes {
    void operator()(unsigned char* bytes) const { ::operator delete(bytes); }
};

/// The contents of a flash memory.
struct Flash {
    std::unique_ptr<unsigned char, ReleaseBytes> bytes;
    std::size_t size = 0;

    std::string_view Text() const { return {reinterpret_cast<const char*>(bytes.get()), size}; }
};

/// Throws Refusal.
Flash ReadFlash(CQuillet& session, const CBootAgent& agent);

} // namespace quilletctl
