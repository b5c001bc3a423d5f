// What the commands about link security share: reading the records of an adapter, and what these hold by
// name. Secrets are masked.
#pragma once

#include "names/AdapterLookup.h"
#include "terminal/Sheet.h"
#include "texts/Field.h"

namespace quilletctl {

// Throw Refusal.
CAdapterManualAuthInfo ReadKeys(CQuillet& session, const ListedAdapter& adapter);
CAdapterAuthTypeInfo ReadAuthentication(CQuillet& session, const ListedAdapter& adapter);
CAdapterLinksecSavedCredInfo ReadSaved(CQuillet& session, const ListedAdapter& adapter);
/// With the flag that the library yields beside the record.
CAdapterManualPMKInfo ReadMasterKey(CQuillet& session, const ListedAdapter& adapter);

std::vector<Field> FieldsOf(const CAdapterManualAuthInfo& keys);
std::vector<Field> FieldsOf(const CAdapterAuthTypeInfo& authentication);
std::vector<Field> FieldsOf(const CAdapterLinksecSavedCredInfo& saved);
std::vector<Field> FieldsOf(const CAdapterManualPMKInfo& key);

/// A line for each value.
void AddTo(Sheet& sheet, const std::vector<Field>& fields);

} // namespace quilletctl
