// Arrays in VARIANTs: taking one apart element by element, whatever a provider put into it, and making one.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <comutil.h>
#include <atlbase.h>

#include <span>
#include <string>
#include <vector>

/// The array that a VARIANT owns; null when it holds none.
SAFEARRAY* ArrayOf(const VARIANT& value);

/// Reads one element of a one-dimensional array into a number or a text. The element is fetched in the
/// array's own type and then converted: an array of another type must not be copied into a LONG.
/// DISP_E_TYPEMISMATCH when it cannot be converted, DISP_E_BADINDEX when the array has other dimensions;
/// raises _com_error(E_OUTOFMEMORY) for a text that cannot be allocated.
HRESULT ReadElement(SAFEARRAY* array, LONG index, LONG& element);
HRESULT ReadElement(SAFEARRAY* array, LONG index, ATL::CComBSTR& element);
HRESULT ReadElement(SAFEARRAY* array, LONG index, std::wstring& element);

/// The texts of a one-dimensional array that holds texts and nothing else, where they lie: most arrays are
/// such, and a copy of each element would cost more than all the rest of reading them. Any other array has
/// none.
class TextsInPlace {
  public:
    /// @param length how many elements its bounds say
    TextsInPlace(SAFEARRAY* array, LONGLONG length);
    ~TextsInPlace();
    TextsInPlace(const TextsInPlace&) = delete;
    TextsInPlace& operator=(const TextsInPlace&) = delete;
    bool Found() const { return m_locked; }
    std::span<const BSTR> Texts() const { return m_texts; }

  private:
    SAFEARRAY* m_array;
    bool m_locked = false;
    std::span<const BSTR> m_texts;
};

/// What stands for an empty text in an array.
enum class EmptyText { Empty, Null };

/// A one-dimensional VT_ARRAY | VT_BSTR with lower bound 0. False when the array cannot be created;
/// a text that cannot be allocated raises _com_error(E_OUTOFMEMORY).
bool MakeTextArray(const std::vector<std::wstring>& texts, _variant_t& result,
                   EmptyText empty = EmptyText::Empty);

/// How many elements a one-dimensional array has, whatever its bounds. The code of OLE when the bounds cannot
/// be read (`step` is the call that failed); E_FAIL for more dimensions than one and for a length that is
/// negative or does not fit.
HRESULT ArrayLength(SAFEARRAY* array, LONG& length, const wchar_t*& step);

/// Copies so many bytes from the beginning of an array. Its elements are taken to be bytes, whatever they
/// are; each takes one at least.
HRESULT CopyBytes(SAFEARRAY* array, unsigned char* bytes, LONG length);
