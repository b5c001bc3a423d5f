// The codes in an adapter's "Capabilities", from which both its capabilities and its team modes are told.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <vector>

/// Appends the codes of the array; failed steps are traced.
HRESULT ReadCapabilityCodes(SAFEARRAY* array, std::vector<LONG>& codes);
