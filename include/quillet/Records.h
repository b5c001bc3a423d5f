// Every record and collection of the library.
#pragma once

#include <quillet/Adapter.h>
#include <quillet/BootAgent.h>
#include <quillet/DiagTest.h>
#include <quillet/ISCSIAdapter.h>
#include <quillet/LinkSecurity.h>
#include <quillet/PerformanceProfile.h>
#include <quillet/PointerArray.h>
#include <quillet/Setting.h>
#include <quillet/SettingNames.h>
#include <quillet/Team.h>
#include <quillet/VLAN.h>
