// Connecting, and client sets.
#include "Operations.h"

#include <objbase.h>

#include <exception>

namespace quillet {

ComUsage::ComUsage() {
    CO_MTA_USAGE_COOKIE cookie{};
    if (const HRESULT result = CoIncrementMTAUsage(&cookie); FAILED(result)) {
        throw Error(result, "CoIncrementMTAUsage");
    }
    m_cookie = cookie;
}

ComUsage::~ComUsage() {
    CoDecrementMTAUsage(static_cast<CO_MTA_USAGE_COOKIE>(m_cookie));
}

Session::Session(const SessionOptions& options) : m_state(std::make_unique<State>(options.machine)) {
    Do("InitQuillet", options.machine, [&] { return m_state->quillet.InitQuillet(); });
}

Session::~Session() = default;

Session::State::~State() {
    try {
        quillet.UninitQuillet();
    } catch (const _com_error&) {
        // Not even a trace line could be made any more.
    }
}

std::optional<Flags<ProviderBit>> Session::Warnings() {
    // A provider that does not tell leaves the mask as it was, without a failure. No provider has as many
    // warnings as this.
    constexpr ULONGLONG kUntold = ~0ULL;
    ULONGLONG warnings = kUntold;
    Do("GetWarnings", {}, [&] { return m_state->quillet.GetWarnings(warnings); });
    return warnings == kUntold ? std::nullopt : std::optional(Flags<ProviderBit>::FromMask(warnings));
}

Transaction::Transaction(Session& session) : m_session(session) {
    Do("BeginApply", {}, [&] { return session.m_state->quillet.BeginApply(); });
}

Transaction::~Transaction() {
    if (m_isOpen) {
        try {
            static_cast<void>(Apply());
        } catch (const std::exception&) {
            // Whoever wants to know calls Apply().
        }
    }
}

Followup Transaction::Apply() {
    Followup followup;
    if (std::exchange(m_isOpen, false)) {
        Do("ApplyDone", {}, [&] { return m_session.m_state->quillet.ApplyDone(followup.restartNeeded); });
    }
    return followup;
}

} // namespace quillet
