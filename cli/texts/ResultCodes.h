// Result codes as people look them up, in hexadecimal and by name, and what they mean.
#pragma once

#include <windows.h>

#include <string>

namespace quilletctl {

/// "0x80041010 WBEM_E_INVALID_CLASS"; the code alone where it has no name here.
std::string DescribeResult(HRESULT code);
/// The same with what it means before it: "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED". Codes that say
/// nothing but that something failed have no words.
/// @param reason what it means here; empty: what it means everywhere
std::string ExplainResult(HRESULT code, const std::string& reason = {});

} // namespace quilletctl
