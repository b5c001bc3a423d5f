// The library's words in the language of the pages.
#pragma once

#include "model/Strings.h"

#include <quillet/client.h>

#include <string>
#include <vector>

namespace quillet::pages {

/// A text of the library's (Text, Texts) in the language that was chosen; as it is where there is no
/// translation.
std::wstring InOwnLanguage(const std::wstring& english);
/// Several of them, a line each.
std::wstring InOwnLanguage(const std::vector<std::wstring>& english);

/// "Zorel Quad Port Adapter (Slot 4, port 2)": the ports of a board have one display name.
std::wstring AdapterLabel(const AdapterOverview& overview);
/// "Slot 4, port 2: Zorel Quad Port Adapter": for lists, which cut the end.
std::wstring AdapterRowLabel(const AdapterOverview& overview);
/// A control's label without the mark of its key.
std::wstring WithoutMnemonic(std::wstring label);

/// "up, 10 Gbit/s, full duplex", or "down".
std::wstring LinkWords(const AdapterState& state);
/// The same of an adapter whose state may be unknown.
std::wstring LinkWords(const AdapterOverview& overview);
/// "10 Gbit/s", or "down": for lists with little room. Half duplex is rare enough to be told.
std::wstring ShortLinkWords(const AdapterOverview& overview);

} // namespace quillet::pages
