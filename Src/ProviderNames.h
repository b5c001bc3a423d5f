// The provider's vocabulary: every class, method, parameter and property with the symbol that traces call it
// by. A symbol or name that is misspelt in the provider's protocol is misspelt here, once.
#pragma once

/// A name of the provider's protocol.
struct ProviderName {
    const wchar_t* symbol; ///< how trace lines call it
    const wchar_t* name;   ///< what goes over the wire
};

// System properties and what every method has.
inline constexpr ProviderName L_ZOREL_PATH{L"L_ZOREL_PATH", L"__PATH"};
inline constexpr ProviderName L_METHOD_RETURN{L"L_METHOD_RETURN", L"ReturnValue"};

// Context values.
inline constexpr const wchar_t* CONTEXT_CLIENT_SET_ID = L"ClientSetId";
inline constexpr const wchar_t* CONTEXT_EXTENSIONS = L"GET_EXTENSIONS";
inline constexpr const wchar_t* CONTEXT_CLIENT_REQUEST = L"GET_EXT_CLIENT_REQUEST";
inline constexpr const wchar_t* CONTEXT_KEYS_ONLY = L"GET_EXT_KEYS_ONLY";
inline constexpr const wchar_t* CONTEXT_PARTIAL_DATA = L"Zorel_PartialData";

// The network service. Its symbol is that of the core service it grew out of.
inline constexpr ProviderName L_CLASS_ZOREL_CORESERVICE{L"L_CLASS_ZOREL_CORESERVICE", L"Zorel_NetService"};
inline constexpr ProviderName L_METHOD_NET_APPLY_BEGIN{L"L_METHOD_NET_APPLY_BEGIN", L"BeginApply"};
inline constexpr ProviderName L_METHOD_NET_APPLY_DONE{L"L_METHOD_NET_APPLY_DONE", L"Apply"};
inline constexpr ProviderName L_METHOD_GETALLWARNINGS{L"L_METHOD_GETALLWARNINGS", L"GetKavlorWarnings"};
inline constexpr ProviderName L_PARAM_NET_CLIENTSETHANDLE{L"L_PARAM_NET_CLIENTSETHANDLE", L"ClientSetHandle"};
inline constexpr ProviderName L_PARAM_NET_FOLLOWUPACTION{L"L_PARAM_NET_FOLLOWUPACTION", L"FollowupAction"};
inline constexpr ProviderName L_PARAM_ALLWARNINGS{L"L_PARAM_ALLWARNINGS", L"Warnings"};

// Physical adapters.
inline constexpr ProviderName L_CLASS_ZOREL_ETHERNETADAPTER{L"L_CLASS_ZOREL_ETHERNETADAPTER",
                                                            L"Zorel_PhysicalEthernetAdapter"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_NAME{L"L_PROP_ETHERNETADAPTER_NAME", L"Name"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_ORIGNAME{L"L_PROP_ETHERNETADAPTER_ORIGNAME",
                                                              L"OriginalDisplayName"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_DEVICEID{L"L_PROP_ETHERNETADAPTER_DEVICEID",
                                                              L"DeviceID"};
