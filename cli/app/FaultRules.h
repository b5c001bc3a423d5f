// Faults of the simulated provider as the command line has them.
#pragma once

#include <quillet-simulator/Faults.h>

#include <string>

namespace quilletctl {

/// How a rule reads; for the help and for mistakes.
inline constexpr const char kFaultForm[] = "OPERATION[:WHERE[:NTH[+]]][=EFFECT[:NUMBER]]";

/// The rule of a text such as "ExecMethod:CreateVLAN:2=0x80041001". Throws UsageError, which shows the form.
quillet::simulator::FaultRule ParseFault(const std::string& text);

} // namespace quilletctl
