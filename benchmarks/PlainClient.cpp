// The hand-written client. Deliberately no more than COM and the standard library: what it costs is the price
// of doing without Quillet.
#include "PlainClient.h"

#include <comutil.h>

#include <cwchar>

namespace quillet::bench {

namespace {

using ATL::CComBSTR;
using ATL::CComPtr;

HRESULT SetBlanket(IWbemServices* services) {
    return CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

HRESULT SetFlag(IWbemContext* context, const wchar_t* name, bool value) {
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_BOOL;
    V_BOOL(&variant) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return context->SetValue(name, 0, &variant);
}

HRESULT SetNumber(IWbemContext* context, const wchar_t* name, LONG value) {
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_I4;
    V_I4(&variant) = value;
    return context->SetValue(name, 0, &variant);
}

/// Asks for a part of the data in the calls that follow.
HRESULT AskForPart(IWbemContext* context, LONG part) {
    HRESULT result = SetFlag(context, L"GET_EXT_CLIENT_REQUEST", true);
    if (SUCCEEDED(result)) {
        result = SetFlag(context, L"GET_EXTENSIONS", true);
    }
    return SUCCEEDED(result) ? SetNumber(context, L"Zorel_PartialData", part) : result;
}

HRESULT AskForAll(IWbemContext* context) {
    HRESULT result = SetFlag(context, L"GET_EXT_CLIENT_REQUEST", false);
    if (SUCCEEDED(result)) {
        result = SetFlag(context, L"GET_EXTENSIONS", false);
    }
    if (SUCCEEDED(result)) {
        result = SetFlag(context, L"GET_EXT_KEYS_ONLY", false);
    }
    return SUCCEEDED(result) ? SetNumber(context, L"Zorel_PartialData", -1) : result;
}

/// A value while it is looked at.
struct Held : VARIANT {
    Held() { VariantInit(this); }
    ~Held() { VariantClear(this); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
};

/// A text; without one the target stays as it is.
HRESULT Read(IWbemClassObject* object, const wchar_t* name, std::wstring& target) {
    Held value;
    const HRESULT result = object->Get(name, 0, &value, nullptr, nullptr);
    if (SUCCEEDED(result) && V_VT(&value) == VT_BSTR) {
        const BSTR text = V_BSTR(&value);
        target.assign(text ? text : L"", SysStringLen(text));
    }
    return result;
}

/// A text without which an object is of no use.
HRESULT ReadNeeded(IWbemClassObject* object, const wchar_t* name, std::wstring& target) {
    Held value;
    const HRESULT result = object->Get(name, 0, &value, nullptr, nullptr);
    if (FAILED(result)) {
        return result;
    }
    if (V_VT(&value) != VT_BSTR) {
        return E_FAIL;
    }
    const BSTR text = V_BSTR(&value);
    target.assign(text ? text : L"", SysStringLen(text));
    return S_OK;
}

HRESULT Read(IWbemClassObject* object, const wchar_t* name, LONG& target) {
    Held value;
    const HRESULT result = object->Get(name, 0, &value, nullptr, nullptr);
    if (SUCCEEDED(result) && V_VT(&value) == VT_I4) {
        target = V_I4(&value);
    }
    return result;
}

HRESULT Read(IWbemClassObject* object, const wchar_t* name, bool& target) {
    Held value;
    const HRESULT result = object->Get(name, 0, &value, nullptr, nullptr);
    if (SUCCEEDED(result) && V_VT(&value) == VT_BOOL) {
        target = V_BOOL(&value) != VARIANT_FALSE;
    }
    return result;
}

void Take(BSTR text, std::wstring& target) {
    target.assign(text ? text : L"", SysStringLen(text));
}

void Take(BSTR text, LONG& target) {
    target = static_cast<LONG>(std::wcstol(text ? text : L"", nullptr, 10));
}

/// A list of texts.
template <class Element>
HRESULT Read(IWbemClassObject* object, const wchar_t* name, std::vector<Element>& target) {
    Held value;
    HRESULT result = object->Get(name, 0, &value, nullptr, nullptr);
    if (FAILED(result) || V_VT(&value) != (VT_ARRAY | VT_BSTR)) {
        return result;
    }
    SAFEARRAY* const array = V_ARRAY(&value);
    LONG lower = 0;
    LONG upper = -1;
    result = SafeArrayGetLBound(array, 1, &lower);
    if (SUCCEEDED(result)) {
        result = SafeArrayGetUBound(array, 1, &upper);
    }
    BSTR* texts = nullptr;
    if (SUCCEEDED(result)) {
        result = SafeArrayAccessData(array, reinterpret_cast<void**>(&texts));
    }
    if (FAILED(result)) {
        return result;
    }
    target.resize(static_cast<std::size_t>(upper - lower + 1));
    for (std::size_t index = 0; index < target.size(); ++index) {
        Take(texts[index], target[index]);
    }
    return SafeArrayUnaccessData(array);
}

/// Reads one property after the other until one fails.
class Reader {
  public:
    explicit Reader(IWbemClassObject* object) : m_object(object) {}
    template <class Target>
    Reader& operator()(const wchar_t* name, Target& target) {
        if (SUCCEEDED(m_result)) {
            m_result = Read(m_object, name, target);
        }
        return *this;
    }
    HRESULT Result() const { return m_result; }

  private:
    IWbemClassObject* m_object;
    HRESULT m_result = S_OK;
};

bool Holds(const std::wstring& text, const wchar_t* word) {
    return text.find(word) != std::wstring::npos;
}

HRESULT ReadSetting(IWbemClassObject* object, PlainSetting& setting) {
    std::wstring kind;
    Reader read(object);
    read(L"__CLASS", kind)(L"__PATH", setting.id)(L"Caption", setting.caption)(
        L"Description", setting.description)(L"MiniHelp", setting.help)(L"ExposeLevel", setting.exposeLevel)(
        L"Writable", setting.writable)(L"Grouped", setting.grouped);
    if (setting.grouped) {
        read(L"GroupId", setting.group);
    }
    if (Holds(kind, L"Int")) {
        PlainNumber& number = setting.values.emplace<PlainNumber>();
        read(L"CurrentValue", number.current)(L"DefaultValue", number.standard)(L"Max", number.most)(
            L"Min", number.least)(L"Step", number.step)(L"Base", number.base)(L"Scale", number.scale);
    } else if (Holds(kind, L"MultiString")) {
        PlainTexts& texts = setting.values.emplace<PlainTexts>();
        read(L"CurrentValues", texts.current)(L"DefaultValue", texts.standard)(L"MaxLength", texts.longest);
    } else if (Holds(kind, L"String")) {
        PlainText& text = setting.values.emplace<PlainText>();
        read(L"CurrentValue", text.current)(L"DefaultValue", text.standard)(L"MaxLength", text.longest);
    } else if (Holds(kind, L"Slider")) {
        PlainSlider& slider = setting.values.emplace<PlainSlider>();
        read(L"CurrentValue", slider.current)(L"DefaultValue", slider.standard)(
            L"PossibleValues", slider.values)(L"FirstLabel", slider.first)(L"LastLabel", slider.last);
    } else {
        PlainChoice& choice = setting.values.emplace<PlainChoice>();
        read(L"CurrentValue", choice.current)(L"DefaultValue", choice.standard)(
            L"DescriptionMap", choice.texts)(L"PossibleValues", choice.values);
    }
    return read.Result();
}

/// The next object of an enumeration; S_FALSE at its end.
HRESULT Next(IEnumWbemClassObject* objects, CComPtr<IWbemClassObject>& object) {
    object.Release();
    ULONG count = 0;
    const HRESULT result = objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count);
    return SUCCEEDED(result) && count == 0 ? S_FALSE : result;
}

} // namespace

PlainClient::~PlainClient() {
    if (m_table) {
        if (m_servicesCookie != 0) {
            m_table->RevokeInterfaceFromGlobal(m_servicesCookie);
        }
        if (m_contextCookie != 0) {
            m_table->RevokeInterfaceFromGlobal(m_contextCookie);
        }
    }
}

HRESULT PlainClient::Connect() {
    CComPtr<IWbemLocator> locator;
    HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                      reinterpret_cast<void**>(&locator));
    if (FAILED(result)) {
        return result;
    }
    const CComBSTR path(L"\\\\127.0.0.1\\ROOT\\MarloLUM2");
    result = locator->ConnectServer(path.m_str, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &m_services);
    if (SUCCEEDED(result)) {
        result = SetBlanket(m_services);
    }
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(CLSID_WbemContext, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemContext,
                                  reinterpret_cast<void**>(&m_context));
    }
    if (SUCCEEDED(result)) {
        result = SetNumber(m_context, L"ClientSetId", 0);
    }
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&m_table));
    }
    if (SUCCEEDED(result)) {
        result = m_table->RegisterInterfaceInGlobal(m_services, IID_IWbemServices, &m_servicesCookie);
    }
    return SUCCEEDED(result)
               ? m_table->RegisterInterfaceInGlobal(m_context, IID_IWbemContext, &m_contextCookie)
               : result;
}

HRESULT PlainClient::Take(Use use, Interfaces& interfaces) const {
    if (use == Use::ThisThread) {
        interfaces.services = m_services;
        // Each operation asks for its own part of the data.
        return m_context->Clone(&interfaces.context);
    }
    HRESULT result = m_table->GetInterfaceFromGlobal(m_servicesCookie, IID_IWbemServices,
                                                     reinterpret_cast<void**>(&interfaces.services));
    if (SUCCEEDED(result)) {
        result = SetBlanket(interfaces.services);
    }
    if (SUCCEEDED(result)) {
        result = m_table->GetInterfaceFromGlobal(m_contextCookie, IID_IWbemContext,
                                                 reinterpret_cast<void**>(&interfaces.context));
    }
    return SUCCEEDED(result) ? SetNumber(interfaces.context, L"ClientSetId", 0) : result;
}

HRESULT PlainClient::EnumerateAdapters(std::vector<PlainAdapter>& adapters, Use use) {
    Interfaces with;
    HRESULT result = Take(use, with);
    if (SUCCEEDED(result)) {
        result = AskForPart(with.context, 1);
    }
    CComPtr<IEnumWbemClassObject> objects;
    if (SUCCEEDED(result)) {
        const CComBSTR className(L"Zorel_PhysicalEthernetAdapter");
        result = with.services->CreateInstanceEnum(className.m_str, 0, with.context, &objects);
    }
    if (SUCCEEDED(result)) {
        result = AskForAll(with.context);
    }
    CComPtr<IWbemClassObject> object;
    while (SUCCEEDED(result) && (result = Next(objects, object)) == S_OK) {
        PlainAdapter& adapter = adapters.emplace_back();
        result = ReadNeeded(object, L"__PATH", adapter.id);
        if (SUCCEEDED(result)) {
            result = ReadNeeded(object, L"Name", adapter.name);
        }
        if (SUCCEEDED(result)) {
            result = ReadNeeded(object, L"OriginalDisplayName", adapter.displayName);
        }
        if (SUCCEEDED(result)) {
            result = ReadNeeded(object, L"DeviceID", adapter.deviceId);
        }
    }
    return SUCCEEDED(result) ? S_OK : result;
}

HRESULT PlainClient::GetAdapterSettings(const std::wstring& objectId, std::vector<PlainSetting>& settings,
                                        Use use) {
    Interfaces with;
    HRESULT result = Take(use, with);
    if (SUCCEEDED(result)) {
        result = AskForPart(with.context, -1);
    }
    CComPtr<IEnumWbemClassObject> objects;
    if (SUCCEEDED(result)) {
        const CComBSTR language(L"WQL");
        const CComBSTR query(
            (L"SELECT * FROM Zorel_AdapterSetting WHERE ParentId = \"" + objectId + L'"').c_str());
        result = with.services->ExecQuery(language.m_str, query.m_str, 0, with.context, &objects);
    }
    CComPtr<IWbemClassObject> object;
    while (SUCCEEDED(result) && (result = Next(objects, object)) == S_OK) {
        result = ReadSetting(object, settings.emplace_back());
    }
    return SUCCEEDED(result) ? S_OK : result;
}

HRESULT PlainClient::IdentifyAdapter(const std::wstring& adapterId, LONG seconds, LONG& verdict, Use use) {
    Interfaces with;
    HRESULT result = Take(use, with);
    CComPtr<IWbemClassObject> classObject;
    if (SUCCEEDED(result)) {
        const CComBSTR className(L"Zorel_PhysicalEthernetAdapter");
        result = with.services->GetObject(className.m_str, 0, with.context, &classObject, nullptr);
    }
    CComPtr<IWbemClassObject> signature;
    if (SUCCEEDED(result)) {
        result = classObject->GetMethod(L"IdentifyAdapter", 0, &signature, nullptr);
    }
    CComPtr<IWbemClassObject> in;
    if (SUCCEEDED(result)) {
        result = signature->SpawnInstance(0, &in);
    }
    if (SUCCEEDED(result)) {
        VARIANT value;
        VariantInit(&value);
        V_VT(&value) = VT_I4;
        V_I4(&value) = seconds;
        result = in->Put(L"nSeconds", 0, &value, 0);
    }
    CComPtr<IWbemClassObject> out;
    if (SUCCEEDED(result)) {
        const CComBSTR path(static_cast<int>(adapterId.size()), adapterId.c_str());
        const CComBSTR method(L"IdentifyAdapter");
        result = with.services->ExecMethod(path.m_str, method.m_str, 0, with.context, in, &out, nullptr);
    }
    return SUCCEEDED(result) ? Read(out, L"ReturnValue", verdict) : result;
}

} // namespace quillet::bench
