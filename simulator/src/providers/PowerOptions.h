// The power-saving and wake-on-LAN options of a port, which Zorel_PowerConfiguration keeps.
#pragma once

#include "providers/ClassProvider.h"

namespace quillet::simulator {

/// Answers the out-parameters with the options of the same names; an option that the port does not have is
/// null.
HRESULT TellPowerOptions(MethodCall& call);
/// Changes the options for which there is an in-parameter; what is not given stays.
/// WBEM_E_INVALID_METHOD_PARAMETERS, and nothing changed, for an option that the port does not have or a
/// value that it cannot take.
HRESULT ChangePowerOptions(MethodCall& call);
/// "SetPowerMgmtCapabilities". WBEM_E_NOT_SUPPORTED for a port without power management.
HRESULT ApplyPowerCapabilities(MethodCall& call);

} // namespace quillet::simulator
