// The identifiers of a list of adapters, as provider methods take them.
#pragma once

#include <quillet/Quillet.h>

#include <string>
#include <vector>

/// In the order of the list; a null entry has none.
inline std::vector<std::wstring> AdapterIds(const CAdapters& adapters) {
    std::vector<std::wstring> ids;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (adapter) {
            ids.push_back(adapter->m_wsAdapterID);
        }
    }
    return ids;
}
