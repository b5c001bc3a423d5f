// Result codes as people look them up: in hexadecimal and by name.
#pragma once

#include <windows.h>

#include <string>

namespace quilletctl {

/// "0x80041010 WBEM_E_INVALID_CLASS"; the code alone where it has no name here.
std::string DescribeResult(HRESULT code);

} // namespace quilletctl
