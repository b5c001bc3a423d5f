// What a provider lets a client write into an advanced setting.
#pragma once

#include <quillet-simulator/Repository.h>

namespace quillet::simulator {

/// Whether the setting, whatever its kind, may take a number: one of its values, within its bounds, a choice
/// out of its bits. A setting of texts takes none.
bool MayTake(const Instance& setting, std::int64_t number);

/// Takes what a client may change from a written instance over into the setting as it is stored.
/// WBEM_E_READ_ONLY for a setting that can only be read and for a change of anything but its value,
/// WBEM_E_ILLEGAL_NULL for one without its value, WBEM_E_VALUE_OUT_OF_RANGE for a value that it cannot have.
HRESULT TakeOver(Instance& stored, const Instance& written);

/// The setting of an owner; null when there is none. Case does not count.
InstancePtr FindSetting(const Repository& store, std::wstring_view className, std::wstring_view parentId,
                        std::wstring_view caption);

} // namespace quillet::simulator
