// The object identifier (GUID text) inside the object path of an adapter, team, VLAN or boot agent.
#pragma once

#include <string>

/// Which helper takes the identifier out of the path: the key of each class has another name.
enum class ObjectKind {
    Ethernet, ///< adapters, logical adapters and boot agents
    Team,
    Vlan,
    BootAgent ///< boot agents, in the list of those that can boot from iSCSI as well
};

/// The relative path of the logical adapter that stands for a team, by the team's own path; traced
/// "Logical Ethernet Adapter Path". False, and an empty path, when the text is no team's path.
bool LogicalAdapterOfTeam(const std::wstring& teamPath, std::wstring& adapterPath);

/// False, and an empty identifier, when the text is no path or not one of this kind.
bool ObjectIdFromPath(ObjectKind kind, const std::wstring& path, std::wstring& objectId);

/// Whether two paths name the same object, whatever their form: with or without the server, with keys in
/// either case. Texts that are no such paths are the same object only where they are the same text.
bool NameTheSameObject(const std::wstring& left, const std::wstring& right);
