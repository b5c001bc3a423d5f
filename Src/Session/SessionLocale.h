// The language in which the provider is asked for its texts.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

/// The locale for the connection ("MS_409"), or none: the registry's forced language, else the user's
/// on a multi-language Windows 2000, else what the installer stored. Traces what it finds.
std::optional<std::wstring> ChooseConnectionLocale();

/// The language identifier the provider has texts for that is nearest to a user's language.
DWORD ProviderLanguage(LANGID userLanguage);
