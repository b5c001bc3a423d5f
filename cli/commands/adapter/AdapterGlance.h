// An adapter at a glance: is it up, how fast is it, where is it, and whose is it.
#pragma once

#include "terminal/Table.h"
#include "texts/Json.h"

#include <quillet/client/Adapter.h>

#include <vector>

namespace quilletctl {

/// The columns of a list of adapters.
std::vector<Column> GlanceColumns();
/// A row of them.
std::vector<Cell> GlanceCells(const quillet::AdapterOverview& overview);
Json AsJson(const quillet::AdapterOverview& overview);

} // namespace quilletctl
