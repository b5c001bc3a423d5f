// The identifiers in a list of adapters, of whatever kind its records are. They are compared letter by
// letter: what the caller holds is what it was given. A null entry has none and counts for nothing.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

/// In the order of the list, as provider methods take them.
template <class Adapters>
std::vector<std::wstring> AdapterIds(const Adapters& adapters) {
    std::vector<std::wstring> ids;
    for (const auto* adapter : adapters.m_vecItems) {
        if (adapter) {
            ids.push_back(adapter->m_wsAdapterID);
        }
    }
    return ids;
}

/// Whether one of the adapters has the identifier.
template <class Adapters>
bool HasAdapter(const Adapters& adapters, const std::wstring& adapterId) {
    return std::any_of(adapters.m_vecItems.begin(), adapters.m_vecItems.end(),
                       [&](const auto* each) { return each && each->m_wsAdapterID == adapterId; });
}
