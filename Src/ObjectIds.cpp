#include "ObjectIds.h"

#include "Lum2InstUtility.h"
#include "Trace.h"

using Helper = CZorel_EthernetAdapterMgrHelper;

bool ObjectIdFromPath(ObjectKind kind, const std::wstring& path, std::wstring& objectId) {
    objectId.clear();
    CLumWmiAutoParsedObjectPath parsed;
    if (parsed.Parse(path.c_str()) != 0) {
        return false;
    }
    wchar_t* found = nullptr;
    switch (kind) {
    case ObjectKind::Ethernet:
        if (!Helper::GetObjectIdFromPath(&parsed, found)) {
            return false;
        }
        break;
    case ObjectKind::Team:
        found = Helper::GetObjectIdFromTeamOfAdapPath(0, &parsed);
        break;
    case ObjectKind::Vlan:
        found = Helper::GetVlanObjectIdFromPath(&parsed);
        break;
    }
    if (!found) {
        return false;
    }
    objectId = found;
    return true;
}

bool LogicalAdapterOfTeam(const std::wstring& teamPath, std::wstring& adapterPath) {
    adapterPath.clear();
    std::wstring objectId;
    if (!ObjectIdFromPath(ObjectKind::Team, teamPath, objectId)) {
        return false;
    }
    ATL::CComBSTR path;
    Helper::MakePathFromObjectId(1, objectId.c_str(), path, Helper::LogicalAdapter);
    TraceText(L"Logical Ethernet Adapter Path");
    adapterPath.assign(path.m_str, path.Length());
    return true;
}
