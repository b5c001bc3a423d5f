// One client's connection.
#include "connection/Session.h"

#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

LCID LocaleFromText(std::wstring_view text) noexcept {
    constexpr std::wstring_view kPrefix = L"MS_";
    if (text.size() <= kPrefix.size() || text.size() > kPrefix.size() + 8 ||
        !SameName(text.substr(0, kPrefix.size()), kPrefix)) {
        return 0;
    }
    LCID locale = 0;
    for (const wchar_t character : text.substr(kPrefix.size())) {
        unsigned digit = 0;
        if (character >= L'0' && character <= L'9') {
            digit = static_cast<unsigned>(character - L'0');
        } else if (character >= L'A' && character <= L'F') {
            digit = static_cast<unsigned>(character - L'A') + 10;
        } else if (character >= L'a' && character <= L'f') {
            digit = static_cast<unsigned>(character - L'a') + 10;
        } else {
            return 0;
        }
        locale = locale * 16 + digit;
    }
    return locale;
}

HRESULT LocalCall::Fill(const Value& value, CIMTYPE type, VARIANT* variant) const {
    return m_interference.fill ? m_interference.fill(value, type, variant) : ToVariant(value, type, variant);
}

HRESULT Refused(CallObserver* observer, const ObservedCall& call, HRESULT result,
                const std::vector<NamedValue>& arguments) {
    if (observer != nullptr && observer->Records(call.operation)) {
        observer->After(call, result, arguments, S_OK);
    }
    return result;
}

} // namespace quillet::wmi
