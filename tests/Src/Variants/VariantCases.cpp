#include "Variants/VariantCases.h"

#include <limits>

namespace {

/// Counts every call but those of its reference count: reading a property must not call into an object.
class Uncallable : public IDispatch {
  public:
    virtual ~Uncallable() = default;
    int calls = 0;
    ULONG references = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        ++calls;
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return Called(); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return Called(); }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return Called();
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return Called();
    }

  private:
    HRESULT Called() {
        ++calls;
        return E_UNEXPECTED;
    }
};

Uncallable& TheUncallable() {
    static Uncallable object;
    return object;
}

template <class Fill>
std::function<VARIANT()> Make(VARTYPE type, Fill fill) {
    return [type, fill] {
        VARIANT value;
        VariantInit(&value);
        fill(value);
        V_VT(&value) = type;
        return value;
    };
}

std::function<VARIANT()> MakeText(const std::wstring& text) {
    return Make(VT_BSTR, [text](VARIANT& value) {
        V_BSTR(&value) = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
    });
}

/// A type with a pointer that leads nowhere; to follow it would end the process.
std::function<VARIANT()> MakeWild(int type) {
    return Make(static_cast<VARTYPE>(type), [](VARIANT& value) {
        V_BYREF(&value) = reinterpret_cast<void*>(static_cast<ULONG_PTR>(0x10));
    });
}

std::function<VARIANT()> MakeNullPointer(int type) {
    return Make(static_cast<VARTYPE>(type), [](VARIANT& value) { V_BYREF(&value) = nullptr; });
}

std::function<VARIANT()> MakeArray(VARTYPE element) {
    return Make(static_cast<VARTYPE>(VT_ARRAY | element),
                [element](VARIANT& value) { V_ARRAY(&value) = SafeArrayCreateVector(element, 0, 2); });
}

void AddNumbers(std::vector<VariantCase>& cases) {
    constexpr LONG lowest = std::numeric_limits<LONG>::min();
    constexpr LONG highest = std::numeric_limits<LONG>::max();
    constexpr ULONGLONG everyBit = std::numeric_limits<ULONGLONG>::max();
    const auto add = [&cases](const char* name, VARTYPE type, auto fill, std::optional<bool> asBool,
                              std::optional<LONG> asLong, std::optional<ULONGLONG> asUInt64) {
        cases.push_back({name, Make(type, fill), asBool, asLong, asUInt64, L""});
    };
    add(
        "I1_zero", VT_I1, [](VARIANT& v) { V_I1(&v) = 0; }, false, 0, 0);
    add(
        "I1_negative", VT_I1, [](VARIANT& v) { V_I1(&v) = static_cast<CHAR>(-5); }, true, -5, 0xFFFFFFFBu);
    add(
        "UI1", VT_UI1, [](VARIANT& v) { V_UI1(&v) = 200; }, true, 200, 200);
    add(
        "I2", VT_I2, [](VARIANT& v) { V_I2(&v) = -300; }, true, -300, 0xFFFFFED4u);
    add(
        "UI2", VT_UI2, [](VARIANT& v) { V_UI2(&v) = 60000; }, true, 60000, 60000);
    add(
        "I4_zero", VT_I4, [](VARIANT& v) { V_I4(&v) = 0; }, false, 0, 0);
    add(
        "I4_lowest", VT_I4, [](VARIANT& v) { V_I4(&v) = lowest; }, true, lowest, 0x80000000u);
    add(
        "I4_highest", VT_I4, [](VARIANT& v) { V_I4(&v) = highest; }, true, highest, 0x7FFFFFFFu);
    add(
        "UI4", VT_UI4, [](VARIANT& v) { V_UI4(&v) = 0xFFFFFFFFu; }, true, -1, 0xFFFFFFFFu);
    add(
        "INT", VT_INT, [](VARIANT& v) { V_INT(&v) = -7; }, true, -7, 0xFFFFFFF9u);
    add(
        "UINT", VT_UINT, [](VARIANT& v) { V_UINT(&v) = 0x80000001u; }, true, lowest + 1, 0x80000001u);
    add(
        "BOOL_true", VT_BOOL, [](VARIANT& v) { V_BOOL(&v) = VARIANT_TRUE; }, true, -1, 0xFFFFFFFFu);
    add(
        "BOOL_false", VT_BOOL, [](VARIANT& v) { V_BOOL(&v) = VARIANT_FALSE; }, false, 0, 0);
    add(
        "I8_small", VT_I8, [](VARIANT& v) { V_I8(&v) = -1; }, true, -1, everyBit);
    add(
        "I8_large", VT_I8, [](VARIANT& v) { V_I8(&v) = 5000000000; }, true, std::nullopt, 5000000000u);
    add(
        "UI8_largest", VT_UI8, [](VARIANT& v) { V_UI8(&v) = everyBit; }, true, std::nullopt, everyBit);
    add(
        "R4", VT_R4, [](VARIANT& v) { V_R4(&v) = 2.25f; }, true, 2, 2);
    add(
        "R8", VT_R8, [](VARIANT& v) { V_R8(&v) = 3.75; }, true, 4, 4);
    add(
        "R8_zero", VT_R8, [](VARIANT& v) { V_R8(&v) = 0.0; }, false, 0, 0);
    add(
        "R8_beyond", VT_R8, [](VARIANT& v) { V_R8(&v) = 1e300; }, true, std::nullopt, std::nullopt);
    add(
        "CY", VT_CY, [](VARIANT& v) { V_CY(&v).int64 = 120000; }, true, 12, 12);
    add(
        "DATE", VT_DATE, [](VARIANT& v) { V_DATE(&v) = 2.0; }, true, 2, 2);
    add(
        "DECIMAL", VT_DECIMAL,
        [](VARIANT& v) {
            V_DECIMAL(&v) = DECIMAL{};
            V_DECIMAL(&v).Lo32 = 7;
        },
        true, 7, 7);
}

void AddTexts(std::vector<VariantCase>& cases) {
    const auto add = [&cases](const char* name, const std::wstring& text, std::optional<bool> asBool,
                              LONG asLong, ULONGLONG asUInt64) {
        cases.push_back({name, MakeText(text), asBool, asLong, asUInt64, text});
    };
    add("BSTR_number", L"123", true, 123, 123);
    add("BSTR_zero", L"0", false, 0, 0);
    add("BSTR_negative", L"-2", true, -2, static_cast<ULONGLONG>(-2));
    add("BSTR_number_and_more", L"42 apples", std::nullopt, 42, 42);
    add("BSTR_word", L"fast", std::nullopt, 0, 0);
    add("BSTR_true", L"True", true, 0, 0);
    add("BSTR_empty", L"", std::nullopt, 0, 0);
    add("BSTR_largest_unsigned", L"18446744073709551615", true, std::numeric_limits<LONG>::max(),
        18446744073709551615u);
    add("BSTR_beyond_64_bits", L"99999999999999999999999", true, std::numeric_limits<LONG>::max(),
        18446744073709551615u);
    add("BSTR_below_32_bits", L"-99999999999", true, std::numeric_limits<LONG>::min(),
        static_cast<ULONGLONG>(-99999999999));
    add("BSTR_not_ascii", L"Z\u00fcrich", std::nullopt, 0, 0);
    add("BSTR_embedded_zero",
        std::wstring(L"12\0"
                     L"34",
                     5),
        true, 12, 12);
    add("BSTR_huge", std::wstring(1u << 20, L'x'), std::nullopt, 0, 0);
    cases.push_back({"BSTR_null", MakeNullPointer(VT_BSTR), std::nullopt, 0, 0, L""});
}

void AddWhatPointsSomewhere(std::vector<VariantCase>& cases) {
    const auto add = [&cases](const char* name, std::function<VARIANT()> make) {
        cases.push_back({name, std::move(make), std::nullopt, std::nullopt, std::nullopt, L""});
    };
    add("UNKNOWN", Make(VT_UNKNOWN, [](VARIANT& v) {
            V_UNKNOWN(&v) = &TheUncallable();
            TheUncallable().AddRef();
        }));
    add("DISPATCH", Make(VT_DISPATCH, [](VARIANT& v) {
            V_DISPATCH(&v) = &TheUncallable();
            TheUncallable().AddRef();
        }));
    add("UNKNOWN_null", MakeNullPointer(VT_UNKNOWN));
    add("DISPATCH_null", MakeNullPointer(VT_DISPATCH));
    add("ERROR", Make(VT_ERROR, [](VARIANT& v) { V_ERROR(&v) = E_FAIL; }));
    add("ARRAY_of_I4", MakeArray(VT_I4));
    add("ARRAY_of_BSTR", MakeArray(VT_BSTR));
    add("ARRAY_of_VARIANT", MakeArray(VT_VARIANT));
    add("ARRAY_null", MakeNullPointer(VT_ARRAY | VT_I4));
    add("BYREF_I4_wild", MakeWild(VT_BYREF | VT_I4));
    add("BYREF_BOOL_wild", MakeWild(VT_BYREF | VT_BOOL));
    add("BYREF_BSTR_wild", MakeWild(VT_BYREF | VT_BSTR));
    add("BYREF_BSTR_null", MakeNullPointer(VT_BYREF | VT_BSTR));
    add("BYREF_VARIANT_wild", MakeWild(VT_BYREF | VT_VARIANT));
    add("BYREF_VARIANT_null", MakeNullPointer(VT_BYREF | VT_VARIANT));
    add("BYREF_DISPATCH_wild", MakeWild(VT_BYREF | VT_DISPATCH));
    add("BYREF_DECIMAL_wild", MakeWild(VT_BYREF | VT_DECIMAL));
    add("BYREF_ARRAY_wild", MakeWild(VT_BYREF | VT_ARRAY | VT_I4));
    add("BYREF_ARRAY_null", MakeNullPointer(VT_BYREF | VT_ARRAY | VT_BSTR));
    // Types that no VARIANT may have; it cannot be cleared either, so that the pointer stays what it is.
    add("PTR", MakeWild(VT_PTR));
    add("LPWSTR", MakeWild(VT_LPWSTR));
    add("SAFEARRAY", MakeWild(VT_SAFEARRAY));
    add("VECTOR_of_I4", MakeWild(VT_VECTOR | VT_I4));
    add("no_type", MakeWild(0x0FFF));
}

} // namespace

std::vector<VariantCase> AllVariantCases() {
    std::vector<VariantCase> cases;
    AddNumbers(cases);
    AddTexts(cases);
    AddWhatPointsSomewhere(cases);
    return cases;
}

IUnknown* UncallableObject() {
    return &TheUncallable();
}

int CallsOfUncallableObject() {
    return TheUncallable().calls;
}

ULONG ReferencesOfUncallableObject() {
    return TheUncallable().references - 1;
}
