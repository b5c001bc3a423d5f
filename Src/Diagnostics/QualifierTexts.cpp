// Display texts that the provider keeps in the qualifiers of a property, in the language of the connection.
#include "Diagnostics/QualifierTexts.h"

#include "Variants/SafeArray.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

#include <quillet/ValueTexts.h>

#include <algorithm>
#include <map>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// The texts of one qualifier; empty when the property does not have it, or when it is no list.
HRESULT ReadTexts(IWbemQualifierSet* qualifiers, const wchar_t* name, std::vector<std::wstring>& texts) {
    const auto fail = [name](const wchar_t* step, HRESULT code) {
        TraceText(step, name);
        return code;
    };
    _variant_t value;
    HRESULT result = qualifiers->Get(name, 0, &value, nullptr);
    if (result == kResultWbemNotFound) {
        return S_OK;
    }
    if (FAILED(result)) {
        return fail(L"Get -> ", result);
    }
    SAFEARRAY* array = ArrayOf(value);
    if (!array) {
        return S_OK;
    }
    LONG lower = 0;
    LONG upper = -1;
    result = SafeArrayGetLBound(array, 1, &lower);
    if (FAILED(result)) {
        return fail(L"SafeArrayGetLBound -> ", result);
    }
    result = SafeArrayGetUBound(array, 1, &upper);
    if (FAILED(result)) {
        return fail(L"SafeArrayGetUBound -> ", result);
    }
    for (LONGLONG index = lower; index <= upper; ++index) {
        CComBSTR element;
        // A text that is none keeps its place: the position is the code.
        const bool read = SUCCEEDED(ReadElement(array, static_cast<LONG>(index), element));
        texts.push_back(read ? TextOf(element) : std::wstring());
    }
    return S_OK;
}

/// The text at a position, or an empty one.
std::wstring TextAt(const std::vector<std::wstring>& texts, LONGLONG position) {
    return position >= 0 && position < static_cast<LONGLONG>(texts.size())
               ? texts[static_cast<std::size_t>(position)]
               : std::wstring();
}

/// The text of a code: at the position of the code itself, or where the map has the code.
HRESULT ReadDisplayText(IWbemQualifierSet* qualifiers, LONG code, std::wstring& text, bool mapped) {
    std::vector<std::wstring> codes;
    HRESULT result = mapped ? ReadTexts(qualifiers, L"ValueMap", codes) : S_OK;
    std::vector<std::wstring> texts;
    if (SUCCEEDED(result)) {
        result = ReadTexts(qualifiers, L"Values", texts);
    }
    if (FAILED(result)) {
        return result;
    }
    LONGLONG position = code;
    if (!codes.empty()) {
        const auto found = std::find(codes.begin(), codes.end(), std::to_wstring(code));
        position = found == codes.end() ? -1 : found - codes.begin();
    }
    text = TextAt(texts, position);
    return result;
}

HRESULT ReadDisplayText(CQuillet& quillet, const ProviderName& className, const ProviderName& property,
                        LONG code, std::wstring& text, bool mapped) {
    text.clear();
    const ProviderSession session(quillet);
    CComPtr<IWbemQualifierSet> qualifiers;
    const HRESULT result = PropertyQualifiers(session, className, property, qualifiers);
    return FAILED(result) ? result : ReadDisplayText(qualifiers, code, text, mapped);
}

HRESULT FetchClass(const ProviderSession& session, const ProviderName& className,
                   CComPtr<IWbemClassObject>& classObject) {
    if (session.Failed()) {
        return session.Result();
    }
    const HRESULT result = session.Service()->GetObject(
        _bstr_t(className.name), WBEM_FLAG_USE_AMENDED_QUALIFIERS, session.Context(), &classObject, nullptr);
    if (FAILED(result)) {
        TraceText(L"GetObject -> ", className.symbol);
        return result;
    }
    if (!classObject) {
        LumTrace().Print(L"GetObject -> %s -> NULL", className.symbol);
        return kResultWbemFailed;
    }
    return result;
}

HRESULT QualifiersOf(IWbemClassObject* classObject, const ProviderName& property,
                     CComPtr<IWbemQualifierSet>& qualifiers) {
    const HRESULT result = classObject->GetPropertyQualifierSet(property.name, &qualifiers);
    if (FAILED(result)) {
        TraceText(L"GetPropertyQualifierSet -> ", property.symbol);
        return result;
    }
    if (!qualifiers) {
        LumTrace().Print(L"GetPropertyQualifierSet -> %s -> NULL", property.symbol);
        return kResultWbemFailed;
    }
    return result;
}

} // namespace

HRESULT PropertyQualifiers(const ProviderSession& session, const ProviderName& className,
                           const ProviderName& property, CComPtr<IWbemQualifierSet>& qualifiers) {
    CComPtr<IWbemClassObject> classObject;
    const HRESULT result = FetchClass(session, className, classObject);
    return FAILED(result) ? result : QualifiersOf(classObject, property, qualifiers);
}

struct CValueTexts::Classes {
    struct Fetched {
        HRESULT result;
        CComPtr<IWbemClassObject> object;
    };
    std::map<std::wstring, Fetched> byName;
};

CValueTexts::CValueTexts(CQuillet& quillet) : m_quillet(quillet), m_classes(std::make_unique<Classes>()) {}

CValueTexts::~CValueTexts() = default;

HRESULT CValueTexts::GetText(const std::wstring& className, const std::wstring& property, LONG code,
                             std::wstring& text) {
    const OperationTrace trace(L"GetValueText");
    text.clear();
    auto known = m_classes->byName.find(className);
    if (known == m_classes->byName.end()) {
        CComPtr<IWbemClassObject> object;
        const ProviderSession session(m_quillet);
        const HRESULT result = FetchClass(session, {className.c_str(), className.c_str()}, object);
        known = m_classes->byName.emplace(className, Classes::Fetched{result, object}).first;
    }
    const Classes::Fetched& fetched = known->second;
    CComPtr<IWbemQualifierSet> qualifiers;
    const HRESULT result =
        FAILED(fetched.result)
            ? fetched.result
            : QualifiersOf(fetched.object, {property.c_str(), property.c_str()}, qualifiers);
    return FAILED(result) ? result : ReadDisplayText(qualifiers, code, text, true);
}

HRESULT CQuillet::GetDataFromValues(const ProviderName& className, const ProviderName& property, LONG code,
                                    std::wstring& text) {
    const OperationTrace trace(L"GetDataFromValues");
    return ReadDisplayText(*this, className, property, code, text, false);
}

HRESULT CQuillet::GetDataFromValueMap(const ProviderName& className, const ProviderName& property, LONG code,
                                      std::wstring& text) {
    const OperationTrace trace(L"GetDataFromValueMap");
    return ReadDisplayText(*this, className, property, code, text, true);
}
