// Settings as people and programs read them, whatever their kind.
#pragma once

#include "texts/Json.h"

#include <quillet/Setting.h>

#include <string>

namespace quilletctl {

/// "number", "choice", "slider", "text", "selection" or "list".
std::string KindText(const CSetting& setting);
/// The value with its meaning: "Rx & Tx Enabled (3)".
std::string CurrentText(const CSetting& setting);
std::string DefaultText(const CSetting& setting);
/// "80 to 2048 in steps of 8", "Disabled (0), Enabled (1)", "up to 12 characters".
std::string PossibleText(const CSetting& setting);

/// The whole setting.
Json AsJson(const CSetting& setting);

} // namespace quilletctl
