#include "Provider/ObjectIds.h"

#include "Lum2InstUtility.h"
#include "Records/Text.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

using Helper = CZorel_EthernetAdapterMgrHelper;

namespace {

/// The identifier, which the parsed path keeps; null when the path is not of the kind.
const wchar_t* Find(ObjectKind kind, CLumWmiAutoParsedObjectPath& parsed) {
    wchar_t* found = nullptr;
    switch (kind) {
    case ObjectKind::Adapter:
        // The helper reads paths of boot agents, too.
        return !Helper::GetBootAgentIdFromPath(&parsed) && Helper::GetObjectIdFromPath(&parsed, found)
                   ? found
                   : nullptr;
    case ObjectKind::AdapterOrBootAgent:
        return Helper::GetObjectIdFromPath(&parsed, found) ? found : nullptr;
    case ObjectKind::Team:
        return Helper::GetObjectIdFromTeamOfAdapPath(0, &parsed);
    case ObjectKind::Vlan:
        return Helper::GetVlanObjectIdFromPath(&parsed);
    case ObjectKind::BootAgent:
        return Helper::GetBootAgentIdFromPath(&parsed);
    }
    return nullptr;
}

/// What a path names, whatever its form; empty when it names nothing that has an identifier.
struct Identity {
    explicit Identity(const std::wstring& path) {
        CLumWmiAutoParsedObjectPath parsed;
        if (parsed.Parse(path.c_str()) != 0) {
            return;
        }
        for (const ObjectKind kind : {ObjectKind::AdapterOrBootAgent, ObjectKind::Team, ObjectKind::Vlan}) {
            if (const wchar_t* found = Find(kind, parsed)) {
                className = parsed.ClassName();
                objectId = found;
            }
        }
    }
    std::wstring className;
    std::wstring objectId;
};

} // namespace

bool ObjectIdFromPath(ObjectKind kind, const std::wstring& path, std::wstring& objectId) {
    CLumWmiAutoParsedObjectPath parsed;
    const wchar_t* found = nullptr;
    if (parsed.Parse(path.c_str()) == 0) {
        found = Find(kind, parsed);
    }
    objectId = found ? found : L"";
    return found != nullptr;
}

std::wstring ParentIdOf(const std::wstring& adapterId) {
    std::wstring objectId;
    return ObjectIdFromPath(ObjectKind::Adapter, adapterId, objectId) ? objectId : adapterId;
}

bool IsSameObjectId(const std::wstring& left, const std::wstring& right) noexcept {
    return quillet::EqualsIgnoringCase(left, right);
}

bool NameTheSameObject(const std::wstring& left, const std::wstring& right) {
    if (left == right) {
        return true;
    }
    const Identity first(left);
    const Identity second(right);
    return !first.objectId.empty() && IsSameObjectId(first.objectId, second.objectId) &&
           quillet::EqualsIgnoringCase(first.className, second.className);
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
