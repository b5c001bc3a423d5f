// CIM values and OLE VARIANTs: how one becomes the other, and how a fault damages the result.
#pragma once

#include <quillet-simulator/Faults.h>

#include <oleauto.h>

namespace quillet::simulator {

/// The VARIANT type that carries a CIM type, with VT_ARRAY for arrays; VT_NULL for types that are not
/// carried.
VARTYPE VariantType(CIMTYPE type) noexcept;

/// Fills a VARIANT (whatever it held before is not freed) with a value of a CIM type.
/// WBEM_E_OUT_OF_MEMORY when a string or an array cannot be allocated.
HRESULT ToVariant(const Value& value, CIMTYPE type, VARIANT* variant);
/// The same with the damage that a rule asks for; effects that are no damage leave the value right.
HRESULT ToDamagedVariant(const Value& value, CIMTYPE type, const FaultRule& rule, VARIANT* variant);

/// Reads a VARIANT that a client puts into a property of a CIM type. WBEM_E_TYPE_MISMATCH when the type
/// does not take it or the number does not fit.
HRESULT FromVariant(const VARIANT& variant, CIMTYPE type, Value& value);
/// Reads a VARIANT that has no CIM type (a context value), as far as it holds scalars; null otherwise.
Value AnyFromVariant(const VARIANT& variant);

/// "uint32", "string", "ref:Zorel_VLAN": the text of the CIMTYPE qualifier, without array brackets.
std::wstring CimTypeText(CIMTYPE type, std::wstring_view referenceClass);

/// An integer of the signedness in which a CIM type is held.
Value Integer(CIMTYPE type, std::int64_t number);

/// A BSTR of a text; null only when there is no memory for it.
BSTR MakeBstr(std::wstring_view text) noexcept;
/// The text of a BSTR; empty for null.
std::wstring_view BstrText(const OLECHAR* text) noexcept;

/// A one-dimensional array of BSTRs from 0; null when there is no memory for it.
SAFEARRAY* MakeNameArray(const std::vector<std::wstring>& names) noexcept;

} // namespace quillet::simulator
