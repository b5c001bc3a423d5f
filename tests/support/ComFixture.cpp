// A machine with a class of every CIM type, and a client that is connected to it.
#include "ComFixture.h"

#include "LeakCheck.h"

using ATL::CComPtr;

namespace {

const bool counted = [] {
    quillet::tests::RegisterLeakCounter("simulator COM objects", [] { return Machine::LiveObjects(); });
    return true;
}();

} // namespace

std::string Code(HRESULT result) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        text += Digits[(static_cast<std::uint32_t>(result) >> shift) & 0xF];
    }
    return text;
}

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t wide : text) {
        const auto code = static_cast<std::uint32_t>(wide);
        if (code < 0x80) {
            narrow += static_cast<char>(code);
        } else if (code < 0x800) {
            narrow += static_cast<char>(0xC0 | (code >> 6));
            narrow += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            narrow += static_cast<char>(0xE0 | ((code >> 12) & 0xF));
            narrow += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            narrow += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return narrow;
}

std::vector<std::wstring> TakeNames(SAFEARRAY* names) {
    std::vector<std::wstring> list;
    LONG lower = 0;
    LONG upper = -1;
    if (names == nullptr) {
        ADD_FAILURE() << "no array";
        return list;
    }
    EXPECT_EQ(SafeArrayGetLBound(names, 1, &lower), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(names, 1, &upper), S_OK);
    for (LONG index = lower; index <= upper; ++index) {
        BSTR name = nullptr;
        EXPECT_EQ(SafeArrayGetElement(names, &index, &name), S_OK);
        list.emplace_back(name, SysStringLen(name));
        SysFreeString(name);
    }
    SafeArrayDestroy(names);
    return list;
}

std::vector<std::string> Lines(const std::vector<JournalEntry>& entries) {
    std::vector<std::string> lines;
    for (const auto& entry : entries) {
        lines.push_back(Narrow(entry.Line()));
    }
    return lines;
}

_variant_t NumberVariant(VARTYPE vt, long long number) {
    _variant_t variant;
    switch (vt) {
    case VT_I1:
    case VT_UI1:
        V_UI1(&variant) = static_cast<BYTE>(number);
        break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        V_I2(&variant) = static_cast<SHORT>(number);
        break;
    case VT_R4:
        V_R4(&variant) = static_cast<FLOAT>(number);
        break;
    case VT_R8:
        V_R8(&variant) = static_cast<DOUBLE>(number);
        break;
    case VT_I8:
    case VT_UI8:
        V_I8(&variant) = number;
        break;
    default:
        V_I4(&variant) = static_cast<LONG>(number);
        break;
    }
    V_VT(&variant) = vt;
    return variant;
}

_variant_t TextArray(const std::vector<std::wstring>& texts) {
    _variant_t variant;
    V_ARRAY(&variant) = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
    V_VT(&variant) = VT_ARRAY | VT_BSTR;
    LONG index = 0;
    for (const auto& text : texts) {
        EXPECT_EQ(SafeArrayPutElement(V_ARRAY(&variant), &index, _bstr_t(text.c_str()).GetBSTR()), S_OK);
        ++index;
    }
    return variant;
}

_variant_t ByteArray(const std::vector<unsigned char>& bytes) {
    _variant_t variant;
    V_ARRAY(&variant) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    V_VT(&variant) = VT_ARRAY | VT_UI1;
    LONG index = 0;
    for (unsigned char octet : bytes) {
        EXPECT_EQ(SafeArrayPutElement(V_ARRAY(&variant), &index, &octet), S_OK);
        ++index;
    }
    return variant;
}

const char* const ComTest::MOF = R"(
[Description("Everything begins here."), Abstract]
class Test_Base {
    [Key] string Name;
    string Caption = "none";
    [Description("Says hello.")] uint32 Hello();
};
[Description("A class of every type.")]
class Test_All : Test_Base {
    sint8 S8; uint8 U8; sint16 S16; uint16 U16; sint32 S32; uint32 U32; sint64 S64; uint64 U64;
    real32 R32; real64 R64; boolean Flag; char16 Letter; datetime Stamp; Test_Base REF Other;
    sint8 S8s[]; uint8 U8s[]; sint16 S16s[]; uint16 U16s[]; sint32 S32s[]; uint32 U32s[]; sint64 S64s[];
    uint64 U64s[]; real32 R32s[]; real64 R64s[]; boolean Flags[]; string Texts[];
    [Secret] string Password;
    [Description("State") : Translatable, ValueMap{"0", "1"},
     Values{"Off", "On"} : Translatable, Values_de_DE{"Aus", "Ein"} : Translatable]
    uint16 State = 1;
    uint32 Run([In] sint32 Count, [In, Secret] string Password, [In] uint8 Data[], [In] string Names[],
               [In(false), Out] uint64 Total);
    string Tell([In(false), Out] string Story);
};
class Test_Lone { [Key] uint32 Number; string Text; };
[Association] class Test_Link { [Key] Test_All REF From; [Key] Test_Lone REF To; };
instance of Test_All as $One {
    Name = "one"; Caption = "First";
    S8 = -8; U8 = 200; S16 = -1600; U16 = 65000; S32 = -320000; U32 = 4000000000;
    S64 = -9000000000000000000; U64 = 18446744073709551615; R32 = 1.5; R64 = -2.25; Flag = TRUE; Letter = 'A';
    Stamp = "20240229120000.000000+060"; Other = "Test_All.Name=\"two\"";
    S8s = {-1, 1}; U8s = {0, 255}; S16s = {-300, 300}; U16s = {1, 65535}; S32s = {-70000, 70000};
    U32s = {1, 4294967295}; S64s = {-5, 5}; U64s = {0, 18446744073709551615}; R32s = {0.5}; R64s = {0.25, 1};
    Flags = {TRUE, FALSE}; Texts = {"a", "", "c"}; Password = "hush";
};
instance of Test_All as $Two { Name = "two"; State = 0; };
instance of Test_Lone as $Lone { Number = 1; Text = "alone"; };
instance of Test_Link { From = $One; To = $Lone; };
)";

ComTest::ComTest() {
    EXPECT_TRUE(counted);
    Use("instance of Zorel_NetService { Name = \"ZorelNetService\"; Warnings = 9007199254740993; };");
    Connect();
}

ComTest::~ComTest() = default;

MachineOptions ComTest::Options(bool strict) {
    MachineOptions options;
    options.serverName = L"TESTHOST";
    options.strict = strict;
    return options;
}

void ComTest::Use(const std::string& instances, MachineOptions options) {
    services.Release();
    m_registration.reset();
    machine = Machine::FromText(MOF + instances, "test.mof", std::move(options));
    m_registration.emplace(machine);
    ASSERT_EQ(Code(m_registration->Result()), "0x00000000");
}

CComPtr<IWbemLocator> ComTest::Locator() {
    CComPtr<IWbemLocator> locator;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(&locator)),
              S_OK);
    return locator;
}

CComPtr<IWbemContext> ComTest::Context() {
    CComPtr<IWbemContext> context;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemContext, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemContext,
                               reinterpret_cast<void**>(&context)),
              S_OK);
    return context;
}

HRESULT ComTest::SetBlanket(IUnknown* proxy, DWORD authentication, DWORD impersonation) {
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, authentication,
                             impersonation, nullptr, EOAC_NONE);
}

void ComTest::Connect(const wchar_t* locale) {
    services.Release();
    const auto locator = Locator();
    _bstr_t language(locale);
    ASSERT_EQ(Code(locator->ConnectServer(_bstr_t(L"\\\\127.0.0.1\\ROOT\\MarloLUM2").GetBSTR(), nullptr,
                                          nullptr, locale != nullptr ? language.GetBSTR() : nullptr, 0,
                                          nullptr, nullptr, &services)),
              "0x00000000");
    ASSERT_EQ(Code(SetBlanket(services)), "0x00000000");
    machine->Calls().Clear();
}

CComPtr<IWbemClassObject> ComTest::Object(const wchar_t* path, LONG flags) {
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(services->GetObject(_bstr_t(path).GetBSTR(), flags, nullptr, &object, nullptr)),
              "0x00000000");
    return object;
}

CComPtr<IWbemClassObject> ComTest::InParameters(const wchar_t* className, const wchar_t* method) {
    CComPtr<IWbemClassObject> signature;
    CComPtr<IWbemClassObject> parameters;
    EXPECT_EQ(Object(className)->GetMethod(method, 0, &signature, nullptr), S_OK);
    EXPECT_EQ(signature->SpawnInstance(0, &parameters), S_OK);
    return parameters;
}

HRESULT ComTest::GetStatus(const wchar_t* path, LONG flags) {
    CComPtr<IWbemClassObject> object;
    return services->GetObject(_bstr_t(path).GetBSTR(), flags, nullptr, &object, nullptr);
}

HRESULT ComTest::Query(const wchar_t* text, std::vector<std::wstring>* names) {
    CComPtr<IEnumWbemClassObject> answer;
    const HRESULT result =
        services->ExecQuery(_bstr_t(L"WQL").GetBSTR(), _bstr_t(text).GetBSTR(), 0, nullptr, &answer);
    for (ULONG returned = 1; SUCCEEDED(result) && names != nullptr && returned != 0;) {
        CComPtr<IWbemClassObject> object;
        EXPECT_TRUE(SUCCEEDED(answer->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned)));
        if (returned != 0) {
            const auto path = Get(object, L"__RELPATH");
            names->push_back(V_VT(&path) == VT_BSTR ? V_BSTR(&path) : L"null");
        }
    }
    return result;
}

_variant_t ComTest::Get(IWbemClassObject* object, const wchar_t* name) {
    _variant_t value;
    EXPECT_EQ(Code(object->Get(name, 0, &value, nullptr, nullptr)), "0x00000000") << Narrow(name);
    return value;
}

HRESULT ComTest::GetCode(IWbemClassObject* object, const wchar_t* name, VARIANT* value) {
    return object->Get(name, 0, value, nullptr, nullptr);
}

HRESULT ComTest::Put(IWbemClassObject* object, const wchar_t* name, _variant_t value, CIMTYPE type) {
    return object->Put(name, 0, &value, type);
}

std::string ComTest::ExecMethod(const wchar_t* path, const wchar_t* method, IWbemClassObject* in,
                                CComPtr<IWbemClassObject>& out, IWbemContext* context) {
    out.Release();
    return Code(services->ExecMethod(_bstr_t(path).GetBSTR(), _bstr_t(method).GetBSTR(), 0, context, in, &out,
                                     nullptr));
}

LONG ComTest::Begin() {
    CComPtr<IWbemClassObject> out;
    EXPECT_EQ(ExecMethod(L"Zorel_NetService.Name=\"ZorelNetService\"", L"BeginApply", nullptr, out),
              "0x00000000");
    const auto handle = Get(out, L"ClientSetHandle");
    EXPECT_EQ(V_VT(&handle), VT_I4);
    return V_I4(&handle);
}
