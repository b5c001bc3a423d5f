// The provider's numbers about an adapter, in words.
#pragma once

#include <quillet/Adapter.h>

#include <string>

namespace quilletctl {

std::string SpeedText(CAdapterDynamicInfo::LinkSpeed speed);
std::string DuplexText(CAdapterDynamicInfo::DuplexMode mode);
std::string LinkSecText(CAdapterDynamicInfo::LinkSecStatus status);
/// "AdapterStatus", a bit mask: its conditions, separated by commas.
std::string AdapterStatusText(LONG status);
std::string StatusInfoText(LONG status);
std::string AvailabilityText(LONG availability);
std::string HardwareStatusText(LONG status);
/// What a capability code means.
std::string CapabilityText(LONG code);

} // namespace quilletctl
