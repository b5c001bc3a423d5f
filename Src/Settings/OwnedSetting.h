// An advanced setting and whose it is: the provider tells the owner ("ParentId"), and a setting's path need
// not.
#pragma once

#include <quillet/Quillet.h>

#include <memory>
#include <string>

struct CQuillet::OwnedSetting {
    std::wstring parentId; ///< the object identifier of the owner
    std::unique_ptr<CSettingEnum> setting;
};
