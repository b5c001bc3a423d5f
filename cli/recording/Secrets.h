// What of a machine is nobody's business but its own.
#pragma once

#include <quillet-wmi/Model.h>

#include <cstddef>
#include <string>

namespace quilletctl {

/// What stands in a record where the machine has a secret.
inline constexpr const wchar_t kSecretStandIn[] = L"***";

/// Whether a setting that is called so holds a secret: its keyword, its display name, or both in one text.
bool NamesASecret(std::wstring names);

/// Puts the stand-in where an instance has a secret, and says how many it had. What is empty stays empty.
std::size_t HideSecrets(quillet::wmi::Instance& instance);

} // namespace quilletctl
