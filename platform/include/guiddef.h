// GUID, how one is declared, and how one is found from an interface type (__uuidof).
#pragma once

#include <windef.h>

#include <cstring>
#include <type_traits>

struct _GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using GUID = _GUID;
using IID = GUID;
using CLSID = GUID;
using LPGUID = GUID*;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

constexpr bool operator==(const GUID& left, const GUID& right) noexcept {
    if (left.Data1 != right.Data1 || left.Data2 != right.Data2 || left.Data3 != right.Data3) {
        return false;
    }
    for (int i = 0; i < 8; ++i) {
        if (left.Data4[i] != right.Data4[i]) {
            return false;
        }
    }
    return true;
}

constexpr int InlineIsEqualGUID(REFGUID left, REFGUID right) noexcept {
    return left == right ? 1 : 0;
}
constexpr int IsEqualGUID(REFGUID left, REFGUID right) noexcept {
    return left == right ? 1 : 0;
}
constexpr int IsEqualIID(REFIID left, REFIID right) noexcept {
    return left == right ? 1 : 0;
}
constexpr int IsEqualCLSID(REFCLSID left, REFCLSID right) noexcept {
    return left == right ? 1 : 0;
}

#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                         \
    inline constexpr GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}
#define DEFINE_OLEGUID(name, l, w1, w2) DEFINE_GUID(name, l, w1, w2, 0xc0, 0, 0, 0, 0, 0, 0, 0x46)

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
#define IID_NULL GUID_NULL
#define CLSID_NULL GUID_NULL

namespace quillet::platform {
/// The identifier of an interface or class type; specialised by __CRT_UUID_DECL.
template <class T>
struct Uuid;
} // namespace quillet::platform

#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                     \
    template <>                                                                                              \
    struct quillet::platform::Uuid<type> {                                                                   \
        static constexpr GUID value = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}};                         \
    };

/// Takes a type or an expression of one, as the compilers that have it built in do.
#define __uuidof(typeOrExpression)                                                                           \
    (::quillet::platform::Uuid<std::remove_cv_t<                                                             \
         std::remove_pointer_t<std::remove_reference_t<__typeof__(typeOrExpression)>>>>::value)

#define DECLSPEC_UUID(text)
#define DECLSPEC_NOVTABLE
#define MIDL_INTERFACE(text) struct

// Declares IID_<type> and makes __uuidof(<type>) yield the same.
#define QUILLET_PLATFORM_IID(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                \
    struct type;                                                                                             \
    DEFINE_GUID(IID_##type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8);                                      \
    __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)
#define QUILLET_PLATFORM_OLE_IID(type, l) QUILLET_PLATFORM_IID(type, l, 0, 0, 0xc0, 0, 0, 0, 0, 0, 0, 0x46)
