// The texts of refusals.
#include "ending/Failure.h"

namespace quilletctl {

Refusal::Refusal(const std::string& asked, HRESULT code, const std::string& reason)
    : std::runtime_error("could not " + asked + ": " + ExplainResult(code, reason)), m_code(code) {}

NotTaken::NotTaken(const std::string& asked, const std::string& why)
    : std::runtime_error("could not " + asked + ": " + why) {}

} // namespace quilletctl
