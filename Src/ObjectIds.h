// The object identifier (GUID text) inside the object path of an adapter, team, VLAN or boot agent.
#pragma once

#include <string>

/// Which helper takes the identifier out of the path: the key of each class has another name.
enum class ObjectKind {
    Ethernet, ///< adapters, logical adapters and boot agents
    Team,
    Vlan
};

/// False, and an empty identifier, when the text is no path or not one of this kind.
bool ObjectIdFromPath(ObjectKind kind, const std::wstring& path, std::wstring& objectId);
