#include "ObjectIds.h"

#include "Lum2InstUtility.h"
#include "Records/Text.h"
#include "Trace.h"
#include "VariantValue.h"

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
    case ObjectKind::BootAgent:
        found = Helper::GetBootAgentIdFromPath(&parsed);
        break;
    }
    if (!found) {
        return false;
    }
    objectId = found;
    return true;
}

bool NameTheSameObject(const std::wstring& left, const std::wstring& right) {
    if (left == right) {
        return true;
    }
    const std::wstring* paths[] = {&left, &right};
    CLumWmiAutoParsedObjectPath parsed[2];
    wchar_t* objectIds[2] = {};
    for (int i = 0; i < 2; ++i) {
        if (parsed[i].Parse(paths[i]->c_str()) != 0 ||
            !Helper::GetObjectIdFromPath(&parsed[i], objectIds[i])) {
            return false;
        }
    }
    return quillet::EqualsIgnoringCase(parsed[0].ClassName(), parsed[1].ClassName()) &&
           quillet::EqualsIgnoringCase(objectIds[0], objectIds[1]);
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
    adapterPath = TextOf(path);
    return true;
}
