// The machine's adapters, and finding the one that the command line names.
#pragma once

#include "Invocation.h"
#include "Text.h"

#include <quillet/Quillet.h>

#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// An adapter by all the names it goes by (UTF-8).
struct ListedAdapter {
    std::string path;
    std::string objectId; ///< empty when the path holds none
    std::string name;
    std::string displayName;
    std::string deviceId;

    /// What messages call it: its name, or what there is of one.
    const std::string& Called() const { return name.empty() ? path : name; }
};

/// All adapters, in the provider's order. Throws Refusal.
std::vector<ListedAdapter> ReadAdapters(CQuillet& session);

/// The adapter that a text names: by object path, object ID (with or without its braces), device ID, name, or
/// display name where only one adapter has it; case does not count. A path that is not among the machine's
/// adapters is taken as it is, for the provider may know it in another form. Throws UsageError where nothing,
/// or more than one adapter, is named, and Refusal.
ListedAdapter FindAdapter(CQuillet& session, const std::string& text);

/// What an operation of the library reads of an adapter. Throws Refusal.
/// @param what completes "could not read … of the adapter"
template <class Record>
Record ReadRecord(CQuillet& session, HRESULT (CQuillet::*read)(const std::wstring&, Record&),
                  const ListedAdapter& adapter, const char* what) {
    Record record;
    Invocation::Check((session.*read)(ToWide(adapter.path), record),
                      std::string("read ") + what + " of " + adapter.Called());
    return record;
}

} // namespace quilletctl
