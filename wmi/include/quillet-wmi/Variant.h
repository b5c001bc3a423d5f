// CIM values and OLE VARIANTs: how one becomes the other.
#pragma once

#include <quillet-wmi/Model.h>

#include <oleauto.h>

namespace quillet::wmi {

/// What is left of a VARTYPE without VT_ARRAY and VT_BYREF.
constexpr VARTYPE kVariantTypeMask = 0x0FFF;

/// The VARIANT type that carries a CIM type, with VT_ARRAY for arrays; VT_NULL for types that are not
/// carried.
VARTYPE VariantType(CIMTYPE type) noexcept;

/// Fills a VARIANT (whatever it held before is not freed) with a value of a CIM type. WBEM_E_OUT_OF_MEMORY
/// when a string or an array cannot be allocated.
HRESULT ToVariant(const Value& value, CIMTYPE type, VARIANT* variant);
/// The same for one element as a VARIANT type; nothing gives the type's zero.
HRESULT FillScalar(const std::optional<Scalar>& element, VARTYPE vt, VARIANT* variant);
/// The same for an array with elements of a VARIANT type.
HRESULT FillArray(const Value::Array& elements, VARTYPE vt, LONG lowerBound, VARIANT* variant);
/// The same for an array of bytes, in one piece.
HRESULT FillBytes(const Value::Bytes& bytes, LONG lowerBound, VARIANT* variant);

/// Reads a VARIANT that a client puts into a property of a CIM type. WBEM_E_TYPE_MISMATCH when the type does
/// not take it or the number does not fit.
HRESULT FromVariant(const VARIANT& variant, CIMTYPE type, Value& value);
/// Reads a VARIANT that has no CIM type (a context value), as far as it holds scalars; null otherwise.
Value AnyFromVariant(const VARIANT& variant);

/// A BSTR of a text; null only when there is no memory for it.
BSTR MakeBstr(std::wstring_view text) noexcept;
/// The text of a BSTR; empty for null.
std::wstring_view BstrText(const OLECHAR* text) noexcept;
/// A one-dimensional array of BSTRs from 0; null when there is no memory for it.
SAFEARRAY* MakeNameArray(const std::vector<std::wstring>& names) noexcept;

} // namespace quillet::wmi
