// The qualifiers of a class's property, where the provider keeps display texts.
#pragma once

#include "Provider/ProviderSession.h"

/// Fetches the qualifiers of a property of a class, with the texts of the connection's language. Failed steps
/// are traced.
HRESULT PropertyQualifiers(const ProviderSession& session, const ProviderName& className,
                           const ProviderName& property, ATL::CComPtr<IWbemQualifierSet>& qualifiers);
