// Display texts that the provider keeps in the qualifiers of a property, in the language of the connection.
#include "QualifierTexts.h"

#include "SafeArray.h"
#include "Trace.h"
#include "VariantValue.h"

#include <algorithm>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// The texts of one qualifier; empty when the property does not have it.
std::vector<std::wstring> TextsOf(IWbemQualifierSet* qualifiers, const wchar_t* name) {
    std::vector<std::wstring> texts;
    _variant_t value;
    if (FAILED(qualifiers->Get(name, 0, &value, nullptr))) {
        return texts;
    }
    SAFEARRAY* array = ArrayOf(value);
    LONG lower = 0;
    LONG upper = -1;
    if (!array || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        return texts;
    }
    for (LONGLONG index = lower; index <= upper; ++index) {
        CComBSTR element;
        // A text that cannot be read keeps its place: the position is the code.
        const bool read = SUCCEEDED(ReadElement(array, static_cast<LONG>(index), element));
        texts.push_back(read ? TextOf(element) : std::wstring());
    }
    return texts;
}

/// The text at a position, or an empty one.
std::wstring TextAt(const std::vector<std::wstring>& texts, LONGLONG position) {
    return position >= 0 && position < static_cast<LONGLONG>(texts.size())
               ? texts[static_cast<std::size_t>(position)]
               : std::wstring();
}

} // namespace

HRESULT PropertyQualifiers(const ProviderSession& session, const ProviderName& className,
                           const ProviderName& property, CComPtr<IWbemQualifierSet>& qualifiers) {
    if (FAILED(session.Result())) {
        return session.Result();
    }
    CComPtr<IWbemClassObject> classObject;
    HRESULT result = session.Service()->GetObject(_bstr_t(className.name), WBEM_FLAG_USE_AMENDED_QUALIFIERS,
                                                  session.Context(), &classObject, nullptr);
    if (FAILED(result)) {
        TraceText(L"GetObject -> ", className.symbol);
        return result;
    }
    if (!classObject) {
        LumTrace().Print(L"GetObject -> %s -> NULL", className.symbol);
        return RESULT_WBEM_FAILED;
    }
    result = classObject->GetPropertyQualifierSet(property.name, &qualifiers);
    if (FAILED(result)) {
        TraceText(L"GetPropertyQualifierSet -> ", property.symbol);
        return result;
    }
    if (!qualifiers) {
        LumTrace().Print(L"GetPropertyQualifierSet -> %s -> NULL", property.symbol);
        return RESULT_WBEM_FAILED;
    }
    return result;
}

HRESULT CQuillet::GetDataFromValues(const ProviderName& className, const ProviderName& property, LONG code,
                                    std::wstring& text) {
    const OperationTrace trace(L"GetDataFromValues");
    text.clear();
    const ProviderSession session(*this);
    CComPtr<IWbemQualifierSet> qualifiers;
    const HRESULT result = PropertyQualifiers(session, className, property, qualifiers);
    if (SUCCEEDED(result)) {
        text = TextAt(TextsOf(qualifiers, L"Values"), code);
    }
    return result;
}

HRESULT CQuillet::GetDataFromValueMap(const ProviderName& className, const ProviderName& property, LONG code,
                                      std::wstring& text) {
    const OperationTrace trace(L"GetDataFromValueMap");
    text.clear();
    const ProviderSession session(*this);
    CComPtr<IWbemQualifierSet> qualifiers;
    const HRESULT result = PropertyQualifiers(session, className, property, qualifiers);
    if (FAILED(result)) {
        return result;
    }
    const std::vector<std::wstring> codes = TextsOf(qualifiers, L"ValueMap");
    LONGLONG position = code;
    if (!codes.empty()) {
        const auto found = std::find(codes.begin(), codes.end(), std::to_wstring(code));
        position = found == codes.end() ? -1 : found - codes.begin();
    }
    text = TextAt(TextsOf(qualifiers, L"Values"), position);
    return result;
}
