// The object identifier (GUID text) inside the object path of an adapter, team, VLAN or boot agent, and the
// one way to tell whether two of them, or two paths, mean the same object.
#pragma once

#include <string>

/// Which classes a path may be of. A path is one of its kind when the key that identifies its class is among
/// its keys.
enum class ObjectKind {
    Adapter,            ///< physical adapters, and the logical ones that stand for teams
    AdapterOrBootAgent, ///< also the boot agent that belongs to an adapter
    Team,
    Vlan,
    BootAgent ///< boot agents, in the list of those that can boot from iSCSI as well
};

/// The relative path of the logical adapter that stands for a team, by the team's own path; traced
/// "Logical Ethernet Adapter Path". False, and an empty path, when the text is no team's path.
bool LogicalAdapterOfTeam(const std::wstring& teamPath, std::wstring& adapterPath);

/// False, and an empty identifier, when the text is no path or not one of this kind. Path and identifier may
/// be one string.
bool ObjectIdFromPath(ObjectKind kind, const std::wstring& path, std::wstring& objectId);

/// What settings call an adapter as their owner: the identifier in its path, or the text itself if it is
/// none.
std::wstring ParentIdOf(const std::wstring& adapterId);

/// Whether two object identifiers are the same: a GUID is, in whatever case it is written.
bool IsSameObjectId(const std::wstring& left, const std::wstring& right) noexcept;

/// Whether two paths name the same object, whatever their form: with or without the server, with keys in
/// either case. Texts that are no such paths are the same object only where they are the same text.
bool NameTheSameObject(const std::wstring& left, const std::wstring& right);
