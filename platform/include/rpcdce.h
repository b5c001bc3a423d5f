// Authentication constants of the proxy blanket.
#pragma once

#include <windef.h>

using RPC_AUTH_IDENTITY_HANDLE = void*;
using RPC_AUTHZ_HANDLE = void*;

#define RPC_C_AUTHN_NONE 0u
#define RPC_C_AUTHN_GSS_NEGOTIATE 9u
#define RPC_C_AUTHN_WINNT 10u
#define RPC_C_AUTHN_GSS_KERBEROS 16u
#define RPC_C_AUTHN_DEFAULT 0xffffffffu

#define RPC_C_AUTHZ_NONE 0u
#define RPC_C_AUTHZ_NAME 1u
#define RPC_C_AUTHZ_DCE 2u
#define RPC_C_AUTHZ_DEFAULT 0xffffffffu

#define RPC_C_AUTHN_LEVEL_DEFAULT 0u
#define RPC_C_AUTHN_LEVEL_NONE 1u
#define RPC_C_AUTHN_LEVEL_CONNECT 2u
#define RPC_C_AUTHN_LEVEL_CALL 3u
#define RPC_C_AUTHN_LEVEL_PKT 4u
#define RPC_C_AUTHN_LEVEL_PKT_INTEGRITY 5u
#define RPC_C_AUTHN_LEVEL_PKT_PRIVACY 6u

#define RPC_C_IMP_LEVEL_DEFAULT 0u
#define RPC_C_IMP_LEVEL_ANONYMOUS 1u
#define RPC_C_IMP_LEVEL_IDENTIFY 2u
#define RPC_C_IMP_LEVEL_IMPERSONATE 3u
#define RPC_C_IMP_LEVEL_DELEGATE 4u
