// Texts as COM passes them.
#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

BSTR MakeBstr(std::wstring_view text) noexcept {
    return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

std::wstring_view BstrText(const OLECHAR* text) noexcept {
    return text != nullptr ? std::wstring_view(text, SysStringLen(const_cast<BSTR>(text)))
                           : std::wstring_view();
}

SAFEARRAY* MakeNameArray(const std::vector<std::wstring>& names) noexcept {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(names.size()));
    if (array == nullptr) {
        return nullptr;
    }
    void* raw = nullptr;
    bool whole = SUCCEEDED(SafeArrayAccessData(array, &raw));
    if (whole) {
        auto* place = static_cast<BSTR*>(raw);
        for (const auto& name : names) {
            *place = MakeBstr(name);
            if (*place++ == nullptr) {
                whole = false;
                break;
            }
        }
        SafeArrayUnaccessData(array);
    }
    if (!whole) {
        SafeArrayDestroy(array);
        return nullptr;
    }
    return array;
}

} // namespace quillet::wmi
