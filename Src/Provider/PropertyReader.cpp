#include "Provider/PropertyReader.h"

#include "Provider/GetProperty.h"
#include "Provider/ResultCodes.h"
#include "Variants/SafeArray.h"
#include "Provider/Trace.h"

using ATL::CComBSTR;

template <typename Value, typename Getter>
PropertyReader& PropertyReader::Read(Getter getter, const wchar_t* accessor, const ProviderName& property,
                                     Value& value, const wchar_t* failure) {
    m_found = false;
    m_isNull = false;
    if (Failed()) {
        return *this;
    }
    m_result = getter(m_instance, property.name, value, m_isNull, &m_found);
    if (Failed()) {
        Trace(accessor, property, failure, L"");
    } else if (m_isNull && m_onNull != OnNull::Keep) {
        Trace(accessor, property, failure, L" -> NULL");
        if (m_onNull == OnNull::Fail) {
            m_result = kResultWbemFailed;
        }
    }
    return *this;
}

namespace {

// As the accessors of CQuillet, but straight into the record: this is most of what reading a machine is.
constexpr auto kGetText = [](IWbemClassObject* instance, const wchar_t* name, auto& target, bool& isNull,
                             bool* isRead) {
    return GetProperty(instance, name, target, isNull, isRead, L"GetPropertyAsString -> pInstance == NULL");
};
constexpr auto kGetBool = [](IWbemClassObject* instance, const wchar_t* name, bool& target, bool& isNull,
                             bool* isRead) {
    return GetProperty(instance, name, target, isNull, isRead, L"GetPropertyAsBool -> pInstance == NULL");
};
constexpr auto kGetLong = [](IWbemClassObject* instance, const wchar_t* name, LONG& target, bool& isNull,
                             bool* isRead) {
    return GetProperty(instance, name, target, isNull, isRead, L"GetPropertyAsLong -> pInstance == NULL",
                       true);
};

} // namespace

PropertyReader& PropertyReader::String(const ProviderName& property, std::wstring& value,
                                       const wchar_t* failure) {
    return Read(kGetText, L"GetPropertyAsString", property, value, failure);
}

PropertyReader& PropertyReader::Text(const ProviderName& property, CComBSTR& value) {
    return Read(kGetText, L"GetPropertyAsString", property, value, nullptr);
}

PropertyReader& PropertyReader::Secret(const ProviderName& property, std::wstring& value,
                                       const wchar_t* failure) {
    return Read(CQuillet::GetPropertyAsSecret, L"GetPropertyAsString", property, value, failure);
}

PropertyReader& PropertyReader::Bool(const ProviderName& property, bool& value, const wchar_t* failure) {
    return Read(kGetBool, L"GetPropertyAsBool", property, value, failure);
}

PropertyReader& PropertyReader::Int(const ProviderName& property, int& value, const wchar_t* failure) {
    return Read(CQuillet::GetPropertyAsInt, L"GetPropertyAsInt", property, value, failure);
}

PropertyReader& PropertyReader::Long(const ProviderName& property, LONG& value, const wchar_t* failure) {
    return Read(kGetLong, L"GetPropertyAsLong", property, value, failure);
}

PropertyReader& PropertyReader::UInt64(const ProviderName& property, ULONGLONG& value,
                                       const wchar_t* failure) {
    return Read(CQuillet::GetPropertyAsUINT64, L"GetPropertyAsUINT64", property, value, failure);
}

template <typename Element>
PropertyReader& PropertyReader::ReadArray(ArrayGetter<Element> getter, const ProviderName& property,
                                          std::vector<Element>& values, Gaps gaps, const wchar_t* failure) {
    m_found = false;
    if (Failed()) {
        return *this;
    }
    const std::size_t before = values.size();
    int count = 0;
    m_result = getter(m_instance, property.name, values, &count);
    if (!Failed() && gaps == Gaps::Fail && values.size() - before != static_cast<std::size_t>(count)) {
        m_result = E_FAIL;
    }
    m_found = SUCCEEDED(m_result);
    if (Failed()) {
        Trace(L"GetPropertyArray", property, failure, L"");
    }
    return *this;
}

PropertyReader& PropertyReader::Array(const ProviderName& property, std::vector<LONG>& values, Gaps gaps,
                                      const wchar_t* failure) {
    return ReadArray<LONG>(CQuillet::GetPropertyArray, property, values, gaps, failure);
}

PropertyReader& PropertyReader::Array(const ProviderName& property, std::vector<CComBSTR>& values, Gaps gaps,
                                      const wchar_t* failure) {
    return ReadArray<CComBSTR>(CQuillet::GetPropertyArray, property, values, gaps, failure);
}

PropertyReader& PropertyReader::Texts(const ProviderName& property, std::vector<std::wstring>& texts) {
    std::vector<std::wstring> elements;
    if (ReadArray(GetPropertyTexts, property, elements, Gaps::Skip, nullptr).Found()) {
        texts = std::move(elements);
    }
    return *this;
}

PropertyReader& PropertyReader::Plain(const ProviderName& property, VARIANT& value, const wchar_t* step) {
    if (Failed()) {
        return *this;
    }
    m_result = m_instance ? m_instance->Get(property.name, 0, &value, nullptr, nullptr) : E_FAIL;
    if (Failed()) {
        TraceText(step, property.symbol);
    }
    return *this;
}

PropertyReader& PropertyReader::Verdict(const wchar_t* operation) {
    LONG verdict = 0;
    if (Long(L_METHOD_RETURN, verdict).Found() && verdict != 0) {
        LumTrace().Print(L"%s -> ReturnValue %ld", operation, verdict);
    }
    return *this;
}

void PropertyReader::Trace(const wchar_t* accessor, const ProviderName& property, const wchar_t* failure,
                           const wchar_t* ending) const {
    if (failure) {
        TraceText(failure, ending);
    } else {
        LumTrace().Print(L"%s%s -> %s, %s%s", m_prefix, accessor, m_variable, property.symbol, ending);
    }
}
