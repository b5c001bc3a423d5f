// Win32 for hosts without it: the subset that this project's sources call, with the SDK's names and meaning.
#pragma once

#include <windef.h>
#include <guiddef.h>
#include <winerror.h>
#include <winnt.h>
#include <winbase.h>
#include <winreg.h>
#include <winnls.h>
// On Windows these stand in the C library's own headers, which this host has without them.
#include <quillet-platform/SecureCrt.h>
#ifndef WIN32_LEAN_AND_MEAN
#include <ole2.h>
#endif
