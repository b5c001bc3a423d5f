// What the commands about link security share: reading the records of an adapter, and what these hold by
// name. Secrets are masked.
#pragma once

#include "names/AdapterLookup.h"
#include "terminal/Sheet.h"
#include "texts/Field.h"

namespace quilletctl {

// Throw Refusal.
quillet::ManualKeys ReadKeys(quillet::Session& session, const ListedAdapter& adapter);
quillet::Authentication ReadAuthentication(quillet::Session& session, const ListedAdapter& adapter);
quillet::SavedCredentials ReadSaved(quillet::Session& session, const ListedAdapter& adapter);
quillet::MasterKey ReadMasterKey(quillet::Session& session, const ListedAdapter& adapter);

std::vector<Field> FieldsOf(const quillet::ManualKeys& keys);
std::vector<Field> FieldsOf(const quillet::Authentication& authentication);
std::vector<Field> FieldsOf(const quillet::SavedCredentials& saved);
std::vector<Field> FieldsOf(const quillet::MasterKey& key);

/// A line for each value.
void AddTo(Sheet& sheet, const std::vector<Field>& fields);

} // namespace quilletctl
