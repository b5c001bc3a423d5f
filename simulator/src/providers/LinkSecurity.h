// Link security of an adapter: the methods of Zorel_PhysicalEthernetAdapter for it. What an adapter keeps
// stands in its Zorel_LinkSecConfiguration, whose properties bear the names of the parameters, and in one
// Zorel_PACFile for each file that it imported.
#pragma once

#include "providers/ClassProvider.h"

namespace quillet::simulator {

/// "GetLinksecManualCfgKeys", "GetLinksecParams", "GetLinksecManualPMKeys", "GetLinksecSavedCreds" and
/// "GetLinksecSecurityStatsLog". WBEM_E_NOT_SUPPORTED, here and below, for an adapter without a
/// configuration.
HRESULT TellLinkSecurity(MethodCall& call);
/// "SetLinksecManualCfgKeys" and "SetLinksecManualPMKeys": what is given changes.
HRESULT ChangeLinkSecurity(MethodCall& call);
/// "SetLinksecParams"; the credentials that are given are saved as well.
HRESULT ChangeLinkSecurityAuthentication(MethodCall& call);
/// "ImportManualPAC": WBEM_E_NOT_FOUND for a file that is not on the machine, WBEM_E_ACCESS_DENIED when the
/// password is not the file's.
HRESULT ImportPacFile(MethodCall& call);
/// "DeletePacFile" and "GetPACFileContents": WBEM_E_NOT_FOUND for a file that the adapter did not import.
HRESULT DeletePacFile(MethodCall& call);
HRESULT TellPacFile(MethodCall& call);

} // namespace quillet::simulator
