// Arrays as a provider might answer with them.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <comutil.h>

#include <stdexcept>
#include <string>
#include <vector>

/// Destroys an array with the test.
class OwnedArray {
  public:
    explicit OwnedArray(SAFEARRAY* array) : m_array(array) {}
    ~OwnedArray() { SafeArrayDestroy(m_array); }
    OwnedArray(const OwnedArray&) = delete;
    OwnedArray& operator=(const OwnedArray&) = delete;
    SAFEARRAY* Get() const { return m_array; }
    /// Gives the array to a VARIANT.
    _variant_t Release(VARTYPE element) {
        _variant_t value;
        V_ARRAY(&value) = m_array;
        V_VT(&value) = static_cast<VARTYPE>(VT_ARRAY | element);
        m_array = nullptr;
        return value;
    }

  private:
    SAFEARRAY* m_array;
};

/// A one-dimensional array of elements that are put one by one.
template <class Elements, class Place>
_variant_t MakeArray(VARTYPE type, const Elements& elements, LONG lower, Place place) {
    SAFEARRAYBOUND bound{static_cast<ULONG>(elements.size()), lower};
    OwnedArray array(SafeArrayCreate(type, 1, &bound));
    LONG index = lower;
    for (const auto& element : elements) {
        if (!array.Get() || FAILED(SafeArrayPutElement(array.Get(), &index, place(element)))) {
            throw std::runtime_error("the array cannot be made");
        }
        ++index;
    }
    return array.Release(type);
}

inline _variant_t NumberArray(const std::vector<LONG>& numbers, LONG lower = 0) {
    return MakeArray(VT_I4, numbers, lower, [](const LONG& number) { return const_cast<LONG*>(&number); });
}

inline _variant_t TextArray(const std::vector<std::wstring>& texts, LONG lower = 0) {
    std::vector<_bstr_t> strings;
    for (const std::wstring& text : texts) {
        strings.emplace_back(SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size())), false);
    }
    return MakeArray(VT_BSTR, strings, lower,
                     [](const _bstr_t& text) { return const_cast<_bstr_t&>(text).GetBSTR(); });
}

inline _variant_t MixedArray(const std::vector<_variant_t>& values, LONG lower = 0) {
    return MakeArray(VT_VARIANT, values, lower,
                     [](const _variant_t& value) { return const_cast<_variant_t*>(&value); });
}
