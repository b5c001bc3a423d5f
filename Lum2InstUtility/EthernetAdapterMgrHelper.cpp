// The classes of the provider that have an object identifier in their path, and the key it stands in.
#include "EthernetAdapterMgrHelper.h"

#include <initializer_list>
#include <string>

namespace {

struct KeyedClass {
    const wchar_t* name;
    const wchar_t* key;
};

constexpr KeyedClass kPhysicalAdapter{L"Zorel_PhysicalEthernetAdapter", L"DeviceID"};
constexpr KeyedClass kLogicalAdapter{L"Zorel_LogicalEthernetAdapter", L"DeviceID"};
constexpr KeyedClass kTeam{L"Zorel_TeamOfAdapters", L"Name"};
constexpr KeyedClass kVlan{L"Zorel_VLAN", L"Name"};
constexpr KeyedClass kVlanService{L"Zorel_802dot1QVLANService", L"Name"};
constexpr KeyedClass kBootAgent{L"Zorel_BootAgent", L"Name"};
constexpr KeyedClass kIscsiBootAgent{L"Zorel_BootAgent_iSCSI_Adapters", L"Name"};
constexpr KeyedClass kTeamMembership{L"Zorel_TeamedMemberAdapter", L"PartComponent"};

constexpr int kFullForm = 0;

std::wstring ComputerName() {
    // Longer than MAX_COMPUTERNAME_LENGTH: hosts without NetBIOS have longer names.
    wchar_t name[256];
    DWORD length = 256;
    return GetComputerNameW(name, &length) ? std::wstring(name, length) : std::wstring();
}

bool MakePath(int form, const wchar_t* objectId, ATL::CComBSTR& path, const KeyedClass& keyedClass) {
    std::wstring text;
    if (form == kFullForm) {
        const std::wstring computer = ComputerName();
        if (!computer.empty()) {
            text = L"\\\\" + computer + L"\\ROOT\\MarloLUM2:";
        }
    }
    const bool made = objectId != nullptr && *objectId != L'\0' && (form != kFullForm || !text.empty());
    if (!made) {
        path = L"";
        return false;
    }
    text.append(keyedClass.name).append(1, L'.').append(keyedClass.key).append(L"=\"");
    for (const wchar_t* character = objectId; *character != L'\0'; ++character) {
        if (*character == L'"' || *character == L'\\') {
            text += L'\\';
        }
        text += *character;
    }
    text += L'"';
    path = text.c_str();
    return true;
}

/// The value of the key that identifies an instance of one of these classes; null for any other path and for
/// an empty value, which names nothing. A key beside it does not matter: a class may get another one.
const std::wstring* FindObjectId(const CLumWmiAutoParsedObjectPath& path,
                                 std::initializer_list<KeyedClass> classes) {
    for (const KeyedClass& keyedClass : classes) {
        if (path.IsOfClass(keyedClass.name)) {
            const std::wstring* value = path.FindKey(keyedClass.key);
            return value == nullptr || value->empty() ? nullptr : value;
        }
    }
    return nullptr;
}

wchar_t* GetObjectId(CLumWmiAutoParsedObjectPath* path, std::initializer_list<KeyedClass> classes) {
    const std::wstring* value = path == nullptr ? nullptr : FindObjectId(*path, classes);
    return value == nullptr ? nullptr : path->Keep(*value);
}

} // namespace

bool CZorel_EthernetAdapterMgrHelper::MakePathFromObjectId(int form, const wchar_t* objectId,
                                                           ATL::CComBSTR& path, EthernetInstanceType type) {
    switch (type) {
    case PhysicalAdapter:
        return MakePath(form, objectId, path, kPhysicalAdapter);
    case LogicalAdapter:
        return MakePath(form, objectId, path, kLogicalAdapter);
    case TeamOfAdapters:
        return MakePath(form, objectId, path, kTeam);
    case Vlan:
        return MakePath(form, objectId, path, kVlan);
    }
    path = L"";
    return false;
}

bool CZorel_EthernetAdapterMgrHelper::MakeTeamOfAdapPathFromObjectId(int form, const wchar_t* objectId,
                                                                     ATL::CComBSTR& path) {
    return MakePath(form, objectId, path, kTeam);
}

bool CZorel_EthernetAdapterMgrHelper::MakePathFromVlanObjectId(int form, const wchar_t* objectId,
                                                               ATL::CComBSTR& path) {
    return MakePath(form, objectId, path, kVlan);
}

bool CZorel_EthernetAdapterMgrHelper::MakeVlanServicePathFromParentObjectId(int form, const wchar_t* objectId,
                                                                            ATL::CComBSTR& path) {
    return MakePath(form, objectId, path, kVlanService);
}

bool CZorel_EthernetAdapterMgrHelper::MakePathFromBootAgentId(int form, const wchar_t* objectId,
                                                              ATL::CComBSTR& path) {
    return MakePath(form, objectId, path, kBootAgent);
}

bool CZorel_EthernetAdapterMgrHelper::GetObjectIdFromPath(CLumWmiAutoParsedObjectPath* path,
                                                          wchar_t*& objectId) {
    objectId = GetObjectId(path, {kPhysicalAdapter, kLogicalAdapter, kBootAgent, kIscsiBootAgent});
    return objectId != nullptr;
}

wchar_t* CZorel_EthernetAdapterMgrHelper::GetObjectIdFromTeamOfAdapPath(int,
                                                                        CLumWmiAutoParsedObjectPath* path) {
    return GetObjectId(path, {kTeam});
}

wchar_t* CZorel_EthernetAdapterMgrHelper::GetVlanObjectIdFromPath(CLumWmiAutoParsedObjectPath* path) {
    return GetObjectId(path, {kVlan});
}

wchar_t* CZorel_EthernetAdapterMgrHelper::GetBootAgentIdFromPath(CLumWmiAutoParsedObjectPath* path) {
    return GetObjectId(path, {kBootAgent, kIscsiBootAgent});
}

wchar_t*
CZorel_EthernetAdapterMgrHelper::GetAdapterIdFromMemberAdapterPath(CLumWmiAutoParsedObjectPath* path) {
    if (path == nullptr || !path->IsOfClass(kTeamMembership.name)) {
        return nullptr;
    }
    const std::wstring* part = path->FindKey(kTeamMembership.key);
    CLumWmiAutoParsedObjectPath adapter;
    if (part == nullptr || adapter.Parse(part->c_str()) != 0) {
        return nullptr;
    }
    const std::wstring* objectId = FindObjectId(adapter, {kPhysicalAdapter});
    return objectId == nullptr ? nullptr : path->Keep(*objectId);
}
