#include "ObjectIds.h"

#include "Lum2InstUtility.h"

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
