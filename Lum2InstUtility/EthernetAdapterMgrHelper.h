// CZorel_EthernetAdapterMgrHelper: from object identifiers to object paths and back.
#pragma once

#include "LumWmiObjectPath.h"

#include <windows.h>
#include <atlbase.h>

/// The provider names adapters, teams, VLANs and boot agents by object identifiers (GUID texts in braces);
/// its interfaces name the same things by object paths.
///
/// The path makers take as their first argument which path is wanted: 0 the full one on this computer,
/// `\\<computer>\ROOT\MarloLUM2:Class.Key="…"`; anything else the relative one, `Class.Key="…"`, which
/// resolves on whatever the connection is open to. They return whether a path was made; without one (a null
/// or empty identifier, a computer without a name) it is the empty text, never null.
///
/// The readers take the identifier of an instance out of a parsed path, whose owner they leave it with: it
/// lives until that object's next Parse or its end. A null path, a path that was not parsed and a path of
/// another class give nothing.
class CZorel_EthernetAdapterMgrHelper {
  public:
    /// Which instance an object identifier stands for: the same one names a team and its logical adapter.
    enum EthernetInstanceType : int {
        PhysicalAdapter = 0, ///< Zorel_PhysicalEthernetAdapter
        LogicalAdapter = 1,  ///< Zorel_LogicalEthernetAdapter
        TeamOfAdapters = 2,  ///< Zorel_TeamOfAdapters
        Vlan = 3,            ///< Zorel_VLAN
    };

    static bool MakePathFromObjectId(int form, const wchar_t* objectId, ATL::CComBSTR& path,
                                     EthernetInstanceType type);
    static bool MakeTeamOfAdapPathFromObjectId(int form, const wchar_t* objectId, ATL::CComBSTR& path);
    static bool MakePathFromVlanObjectId(int form, const wchar_t* objectId, ATL::CComBSTR& path);
    /// The VLAN service of the adapter, or of the team, whose identifier this is.
    static bool MakeVlanServicePathFromParentObjectId(int form, const wchar_t* objectId, ATL::CComBSTR& path);
    /// The boot agent of the adapter whose identifier this is.
    static bool MakePathFromBootAgentId(int form, const wchar_t* objectId, ATL::CComBSTR& path);

    /// The identifier of a physical or logical adapter or of a boot agent.
    /// @return false, with a null identifier, for any other path
    static bool GetObjectIdFromPath(CLumWmiAutoParsedObjectPath* path, wchar_t*& objectId);
    /// The identifier of a team; null for any other path. The form of the path makes no difference.
    static wchar_t* GetObjectIdFromTeamOfAdapPath(int form, CLumWmiAutoParsedObjectPath* path);
    /// The identifier of a VLAN; null for any other path.
    static wchar_t* GetVlanObjectIdFromPath(CLumWmiAutoParsedObjectPath* path);
    /// The identifier of a boot agent, also of one that can boot from iSCSI; null for any other path.
    static wchar_t* GetBootAgentIdFromPath(CLumWmiAutoParsedObjectPath* path);
    /// The identifier of the adapter in the path of a team membership (Zorel_TeamedMemberAdapter), whose
    /// PartComponent is itself a path; null for any other path.
    static wchar_t* GetAdapterIdFromMemberAdapterPath(CLumWmiAutoParsedObjectPath* path);
};
