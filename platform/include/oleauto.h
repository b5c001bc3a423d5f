// OLE automation: strings, variants and arrays.
#pragma once

#include <oaidl.h>

#define V_UNION(variant, member) ((variant)->member)
#define V_VT(variant) ((variant)->vt)
#define V_ISBYREF(variant) (V_VT(variant) & VT_BYREF)
#define V_ISARRAY(variant) (V_VT(variant) & VT_ARRAY)
#define V_ISVECTOR(variant) (V_VT(variant) & VT_VECTOR)
#define V_NONE(variant) V_I2(variant)
#define V_UI1(variant) V_UNION(variant, bVal)
#define V_UI1REF(variant) V_UNION(variant, pbVal)
#define V_I2(variant) V_UNION(variant, iVal)
#define V_I2REF(variant) V_UNION(variant, piVal)
#define V_I4(variant) V_UNION(variant, lVal)
#define V_I4REF(variant) V_UNION(variant, plVal)
#define V_R4(variant) V_UNION(variant, fltVal)
#define V_R4REF(variant) V_UNION(variant, pfltVal)
#define V_I8(variant) V_UNION(variant, llVal)
#define V_I8REF(variant) V_UNION(variant, pllVal)
#define V_R8(variant) V_UNION(variant, dblVal)
#define V_R8REF(variant) V_UNION(variant, pdblVal)
#define V_I1(variant) V_UNION(variant, cVal)
#define V_I1REF(variant) V_UNION(variant, pcVal)
#define V_UI2(variant) V_UNION(variant, uiVal)
#define V_UI2REF(variant) V_UNION(variant, puiVal)
#define V_UI4(variant) V_UNION(variant, ulVal)
#define V_UI4REF(variant) V_UNION(variant, pulVal)
#define V_UI8(variant) V_UNION(variant, ullVal)
#define V_UI8REF(variant) V_UNION(variant, pullVal)
#define V_INT(variant) V_UNION(variant, intVal)
#define V_INTREF(variant) V_UNION(variant, pintVal)
#define V_UINT(variant) V_UNION(variant, uintVal)
#define V_UINTREF(variant) V_UNION(variant, puintVal)
#define V_CY(variant) V_UNION(variant, cyVal)
#define V_CYREF(variant) V_UNION(variant, pcyVal)
#define V_DATE(variant) V_UNION(variant, date)
#define V_DATEREF(variant) V_UNION(variant, pdate)
#define V_BSTR(variant) V_UNION(variant, bstrVal)
#define V_BSTRREF(variant) V_UNION(variant, pbstrVal)
#define V_DISPATCH(variant) V_UNION(variant, pdispVal)
#define V_DISPATCHREF(variant) V_UNION(variant, ppdispVal)
#define V_ERROR(variant) V_UNION(variant, scode)
#define V_ERRORREF(variant) V_UNION(variant, pscode)
#define V_BOOL(variant) V_UNION(variant, boolVal)
#define V_BOOLREF(variant) V_UNION(variant, pboolVal)
#define V_UNKNOWN(variant) V_UNION(variant, punkVal)
#define V_UNKNOWNREF(variant) V_UNION(variant, ppunkVal)
#define V_VARIANTREF(variant) V_UNION(variant, pvarVal)
#define V_ARRAY(variant) V_UNION(variant, parray)
#define V_ARRAYREF(variant) V_UNION(variant, pparray)
#define V_BYREF(variant) V_UNION(variant, byref)
#define V_DECIMAL(variant) ((variant)->decVal)
#define V_DECIMALREF(variant) V_UNION(variant, pdecVal)

#define VARIANT_NOVALUEPROP 0x01
#define VARIANT_ALPHABOOL 0x02
#define VARIANT_NOUSEROVERRIDE 0x04
#define VARIANT_LOCALBOOL 0x10

#pragma GCC visibility push(default)

// --- Strings -------------------------------------------------------------------------------------------
BSTR WINAPI SysAllocString(const OLECHAR* text);
/// Copies `length` characters; with a null text their content is undefined, the terminator is set.
BSTR WINAPI SysAllocStringLen(const OLECHAR* text, UINT length);
/// The same for a number of bytes, which need not be whole characters.
BSTR WINAPI SysAllocStringByteLen(LPCSTR text, UINT bytes);
INT WINAPI SysReAllocString(BSTR* text, const OLECHAR* newText);
INT WINAPI SysReAllocStringLen(BSTR* text, const OLECHAR* newText, UINT length);
void WINAPI SysFreeString(BSTR text);
UINT WINAPI SysStringLen(BSTR text);
UINT WINAPI SysStringByteLen(BSTR text);

// --- Variants ------------------------------------------------------------------------------------------
void WINAPI VariantInit(VARIANTARG* variant);
HRESULT WINAPI VariantClear(VARIANTARG* variant);
HRESULT WINAPI VariantCopy(VARIANTARG* destination, const VARIANTARG* source);
/// VariantCopy through one VT_BYREF.
HRESULT WINAPI VariantCopyInd(VARIANT* destination, const VARIANTARG* source);
/// Converts between booleans, integers, reals and text by OLE's rules (from dates and currency amounts to
/// numbers too); anything else is DISP_E_TYPEMISMATCH. Text is read and written in the form of US English.
/// `destination` may be `source`; it is left alone when the conversion fails.
HRESULT WINAPI VariantChangeType(VARIANTARG* destination, const VARIANTARG* source, USHORT flags,
                                 VARTYPE type);
HRESULT WINAPI VariantChangeTypeEx(VARIANTARG* destination, const VARIANTARG* source, LCID locale,
                                   USHORT flags, VARTYPE type);

// --- Arrays --------------------------------------------------------------------------------------------
/// @return null when the type has no array form, a bound is absurd or memory is short.
SAFEARRAY* WINAPI SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
SAFEARRAY* WINAPI SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements);
HRESULT WINAPI SafeArrayDestroy(SAFEARRAY* array);
HRESULT WINAPI SafeArrayDestroyData(SAFEARRAY* array);
HRESULT WINAPI SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy);
/// Changes the last dimension; elements within both sizes stay.
HRESULT WINAPI SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* bound);
UINT WINAPI SafeArrayGetDim(SAFEARRAY* array);
UINT WINAPI SafeArrayGetElemsize(SAFEARRAY* array);
HRESULT WINAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT WINAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT WINAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
/// Copies one element out; texts, variants and interfaces are the caller's own.
HRESULT WINAPI SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* element);
/// Copies one element in. Texts and interfaces are passed as they are, all else by address.
HRESULT WINAPI SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* element);
HRESULT WINAPI SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** address);
HRESULT WINAPI SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT WINAPI SafeArrayUnaccessData(SAFEARRAY* array);
HRESULT WINAPI SafeArrayLock(SAFEARRAY* array);
HRESULT WINAPI SafeArrayUnlock(SAFEARRAY* array);

#pragma GCC visibility pop
