// The texts of refusals.
#include "Failure.h"

#include "ResultCodes.h"

namespace quilletctl {

Refusal::Refusal(const std::string& asked, HRESULT code)
    : std::runtime_error("could not " + asked + ": " + DescribeResult(code)), m_code(code) {}

} // namespace quilletctl
