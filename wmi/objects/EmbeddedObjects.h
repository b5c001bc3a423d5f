// Objects that are values of properties, in VARIANTs and out of them.
#pragma once

#include "connection/Session.h"

#include <oleauto.h>

namespace quillet::wmi {

/// Whether values of a CIM type (with its array flag or without) are objects.
constexpr bool IsObjectType(CIMTYPE type) noexcept {
    return (type & ~CIMTYPE(CIM_FLAG_ARRAY)) == CIM_OBJECT;
}

/// Fills a VARIANT with new objects, one for each: VT_UNKNOWN, or an array of it. Null becomes VT_NULL.
HRESULT FillObjects(const SessionPtr& session, bool amended, const Value& value, VARIANT* variant);

/// Reads the objects that a client puts. WBEM_E_TYPE_MISMATCH for what is none of this layer's: somebody
/// else's has values that only its own methods tell.
HRESULT FromObjects(const VARIANT& variant, CIMTYPE type, Value& value);

} // namespace quillet::wmi
