// The one place that looks into a VARIANT from the provider. A type that is not expected is converted where
// OLE has a rule for it and left alone where it has none; nothing it may point to is ever followed.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <comutil.h>
#include <atlbase.h>

#include <string>

/// A VARIANT for a provider to fill. Most of what is read is a number or a text: for those OLE is not asked
/// to clear it.
class FilledVariant : public VARIANT {
  public:
    // cppcheck-suppress uninitDerivedMemberVar; all of it is zero
    FilledVariant() noexcept : VARIANT{} {}
    ~FilledVariant() {
        if (vt == VT_BSTR) {
            ::SysFreeString(V_BSTR(this));
        } else if (vt != VT_EMPTY && vt != VT_NULL && vt != VT_I4 && vt != VT_BOOL) {
            ::VariantClear(this);
        }
    }
    FilledVariant(const FilledVariant&) = delete;
    FilledVariant& operator=(const FilledVariant&) = delete;
};

/// Whether the property exists but holds no value.
inline bool HoldsNothing(const VARIANT& value) {
    return value.vt == VT_EMPTY || value.vt == VT_NULL;
}

/// Each reads a scalar and tells whether it could; `result` is untouched when not.
/// Text is read as decimal digits the way _wtol and _wcstoui64 do: what is no number reads as 0.
bool ReadVariant(const VARIANT& value, bool& result);
bool ReadVariant(const VARIANT& value, LONG& result);
bool ReadVariant(const VARIANT& value, ULONGLONG& result);
/// Copies the text, embedded zeros and all. Anything but a BSTR, and a null one, reads as an empty text.
bool ReadVariant(const VARIANT& value, std::wstring& result);
/// Takes the text out of the VARIANT instead of copying it. Anything but a BSTR reads as an empty text.
bool ReadVariant(VARIANT& value, _bstr_t& result);
bool ReadVariant(VARIANT& value, ATL::CComBSTR& result);

/// The text of a BSTR, embedded zeros and all; a null BSTR is an empty text.
std::wstring TextOf(const ATL::CComBSTR& text);

/// A VARIANT to put: each has exactly the type that the provider's protocol names.
_variant_t VariantOfLong(LONG value);
_variant_t VariantOfBool(bool value);
_variant_t VariantOfText(const std::wstring& text);
