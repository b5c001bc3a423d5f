// Settings as people and programs read them, whatever their kind.
#pragma once

#include "texts/Json.h"

#include <quillet/client/Setting.h>

#include <string>

namespace quilletctl {

/// "number", "choice", "slider", "text", "selection" or "list".
std::string KindText(const quillet::Setting& setting);
/// The value with its meaning: "Rx & Tx Enabled (3)".
std::string ValueText(const quillet::Setting& setting);
std::string DefaultText(const quillet::Setting& setting);
/// Whether the value is another than the default.
bool IsChanged(const quillet::Setting& setting);
/// "80 to 2048 in steps of 8", "Disabled (0), Enabled (1)", "up to 12 characters".
std::string PossibleText(const quillet::Setting& setting);

/// The whole setting.
Json AsJson(const quillet::Setting& setting);

} // namespace quilletctl
