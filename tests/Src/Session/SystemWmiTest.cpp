// The library against the WMI that the host itself has: no simulator, no stand-in. Under Wine the service
// cannot be put into the interface table, so a connection ends there; everything before that step, and every
// typed read, is real.
#include "ProviderTest.h"
#include "Session/ProxyBlanket.h"
#include "RegistryScope.h"

#include "Session/ConfigurationKeys.h"

#include <algorithm>

namespace {

using ATL::CComPtr;
using testing::Contains;
using testing::ElementsAre;
using Access = QuilletTestAccess;

constexpr const char* NO_SERVICE = "GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))";

/// What one connection did.
struct Attempt {
    HRESULT result = S_OK;
    std::vector<std::string> trace;
};

/// All connections are made before the tests: the system loses a registry key whenever it cannot put a
/// service into the interface table, which the leak check would blame on the test.
class SystemWmiTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        quillet::test::TraceFile file;
        quillet::test::RegistryScope registry;
        const auto traced = [&file] {
            std::vector<std::string> lines;
            for (const std::wstring& text : file.NewTexts()) {
                lines.push_back(Narrow(text));
            }
            return lines;
        };
        registry.SetString(REGISTRY_PROVIDERS, L"Namespace", L"cimv2");
        registry.SetDword(REGISTRY_ORBA, L"ForcedLanguage", 1033);
        registry.RemoveValue(REGISTRY_LUM2, L"LCID");
        {
            CQuillet quillet(L"localhost");
            m_forced.result = quillet.InitQuillet();
            m_forced.trace = traced();
            m_cookies = Access::ServiceCookie(quillet) | Access::ContextCookie(quillet) |
                        Access::NetServiceCookie(quillet);
            m_hasTable = Access::InterfaceTable(quillet);
            CAdapters adapters;
            m_operation.result = quillet.EnumerateAdapters(adapters);
            m_operation.trace = traced();
        }
        traced();
        registry.RemoveValue(REGISTRY_ORBA, L"ForcedLanguage");
        registry.SetString(REGISTRY_LUM2, L"LCID", L"407");
        {
            CQuillet quillet(L"localhost");
            m_unforced.result = quillet.InitQuillet();
            m_unforced.trace = traced();
        }
        traced();
        registry.SetString(REGISTRY_PROVIDERS, L"Namespace", L"NoSuchNamespace");
        {
            CQuillet quillet(L"localhost");
            m_nowhere.result = quillet.InitQuillet();
            m_nowhere.trace = traced();
        }
    }

    inline static Attempt m_forced;    ///< ForcedLanguage 1033
    inline static Attempt m_unforced;  ///< no ForcedLanguage, LCID 407
    inline static Attempt m_nowhere;   ///< a namespace that does not exist
    inline static Attempt m_operation; ///< an operation after the first of these
    inline static DWORD m_cookies = 0;
    inline static bool m_hasTable = false;
};

TEST_F(SystemWmiTest, InitQuillet_ServiceCannotBeShared_GetsAsFarAsTheTable) {
    EXPECT_EQ(Code(m_forced.result), "0x80041001");
    // No line about locator, connection or blanket: these steps succeeded.
    EXPECT_THAT(m_forced.trace, ElementsAre("Enter InitQuillet", "Locale: MS_409", "Enter CreateNetServices",
                                            NO_SERVICE, "pIWbemService == NULL", "Exit CreateNetServices",
                                            NO_SERVICE, "Unable to create net service"));
    EXPECT_EQ(m_cookies, 0u);
    EXPECT_TRUE(m_hasTable) << "the table itself was made";
}

TEST_F(SystemWmiTest, InitQuillet_NoForcedLanguage_AsksTheSystemForItsLanguages) {
    EXPECT_EQ(Code(m_unforced.result), "0x80041001");
    const auto has = [](const char* line) {
        return std::find(m_unforced.trace.begin(), m_unforced.trace.end(), line) != m_unforced.trace.end();
    };
    EXPECT_THAT(m_unforced.trace, Contains(testing::StartsWith("UI language: ")));
    // Wine offers every language that it knows; a Windows of one language reads the registry instead.
    EXPECT_NE(has("MUI System"), has("Not a MUI System"));
    EXPECT_EQ(has("Locale: MS_407"), has("Not a MUI System"));
    EXPECT_TRUE(has("Enter CreateNetServices")) << "the connection was made";
}

TEST_F(SystemWmiTest, InitQuillet_NoSuchNamespace_IsTheSystemsCode) {
    EXPECT_EQ(Code(m_nowhere.result), "0x8004100E");
    EXPECT_THAT(m_nowhere.trace, testing::Not(Contains("Enter CreateNetServices")));
    ASSERT_FALSE(m_nowhere.trace.empty());
    EXPECT_EQ(m_nowhere.trace.back(), "Could not connect to namespace.");
}

TEST_F(SystemWmiTest, Operations_WithoutTheSharedService_FailClearly) {
    EXPECT_EQ(Code(m_operation.result), "0x80041001");
    EXPECT_THAT(m_operation.trace, ElementsAre("Entering CQuillet::EnumerateAdapters", NO_SERVICE,
                                               "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                               "((pIWbemService == NULL) || (pIWbemContext == NULL))",
                                               "Exiting CQuillet::EnumerateAdapters"));
}

/// Typed reads of the system's own objects, compared with what plain COM gives.
class SystemObjectsTest : public testing::Test {
  protected:
    void SetUp() override {
        CComPtr<IWbemLocator> locator;
        ASSERT_EQ(Code(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                        reinterpret_cast<void**>(&locator))),
                  "0x00000000");
        ASSERT_EQ(Code(locator->ConnectServer(_bstr_t(L"\\\\localhost\\ROOT\\cimv2"), nullptr, nullptr,
                                              _bstr_t(L"MS_409"), 0, nullptr, nullptr, &m_service)),
                  "0x00000000");
        ASSERT_EQ(Code(SetProxyBlanket(m_service)), "0x00000000");
    }
    /// The first instance of a class; null when the system lists none.
    CComPtr<IWbemClassObject> First(const wchar_t* className) {
        CComPtr<IEnumWbemClassObject> enumerator;
        CComPtr<IWbemClassObject> instance;
        ULONG count = 0;
        if (SUCCEEDED(m_service->CreateInstanceEnum(_bstr_t(className), 0, nullptr, &enumerator))) {
            enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, &instance, &count);
        }
        return instance;
    }
    static VARIANT Plain(IWbemClassObject* instance, const wchar_t* property) {
        VARIANT value;
        VariantInit(&value);
        EXPECT_TRUE(SUCCEEDED(instance->Get(property, 0, &value, nullptr, nullptr))) << Narrow(property);
        return value;
    }
    /// How many of the properties had a value.
    int CompareTexts(IWbemClassObject* instance, std::initializer_list<const wchar_t*> properties) {
        int compared = 0;
        for (const wchar_t* property : properties) {
            SCOPED_TRACE(Narrow(property));
            VARIANT plain = Plain(instance, property);
            _bstr_t text(L"before");
            bool isNull = false;
            EXPECT_EQ(Code(Access::GetPropertyAsString(instance, property, text, isNull)), "0x00000000");
            EXPECT_EQ(isNull, V_VT(&plain) == VT_NULL || V_VT(&plain) == VT_EMPTY);
            if (V_VT(&plain) == VT_BSTR) {
                EXPECT_STREQ(static_cast<const wchar_t*>(text), V_BSTR(&plain));
                ++compared;
            } else {
                EXPECT_STREQ(static_cast<const wchar_t*>(text), isNull ? L"before" : L"");
            }
            VariantClear(&plain);
        }
        return compared;
    }
    int CompareNumbers(IWbemClassObject* instance, std::initializer_list<const wchar_t*> properties) {
        int compared = 0;
        for (const wchar_t* property : properties) {
            SCOPED_TRACE(Narrow(property));
            VARIANT plain = Plain(instance, property);
            LONG number = 4242;
            int integer = 4242;
            ULONGLONG mask = 4242;
            bool isNull = false;
            EXPECT_EQ(Code(Access::GetPropertyAsLong(instance, property, number, isNull)), "0x00000000");
            EXPECT_EQ(Code(Access::GetPropertyAsInt(instance, property, integer, isNull)), "0x00000000");
            EXPECT_EQ(Code(Access::GetPropertyAsUINT64(instance, property, mask, isNull)), "0x00000000");
            if (V_VT(&plain) == VT_NULL) {
                EXPECT_TRUE(isNull);
                EXPECT_EQ(number, 4242);
            } else if (V_VT(&plain) == VT_BSTR) {
                // A 64-bit number.
                EXPECT_EQ(mask, wcstoull(V_BSTR(&plain), nullptr, 10));
                ++compared;
            } else {
                EXPECT_EQ(Code(VariantChangeType(&plain, &plain, 0, VT_I4)), "0x00000000");
                EXPECT_EQ(number, V_I4(&plain));
                EXPECT_EQ(integer, static_cast<int>(V_I4(&plain)));
                EXPECT_EQ(mask, static_cast<ULONG>(V_I4(&plain)));
                ++compared;
            }
            VariantClear(&plain);
        }
        return compared;
    }
    int CompareFlags(IWbemClassObject* instance, std::initializer_list<const wchar_t*> properties) {
        int compared = 0;
        for (const wchar_t* property : properties) {
            SCOPED_TRACE(Narrow(property));
            VARIANT plain = Plain(instance, property);
            for (const bool before : {false, true}) {
                bool flag = before;
                bool isNull = false;
                EXPECT_EQ(Code(Access::GetPropertyAsBool(instance, property, flag, isNull)), "0x00000000");
                EXPECT_EQ(isNull, V_VT(&plain) == VT_NULL);
                EXPECT_EQ(flag, V_VT(&plain) == VT_BOOL ? V_BOOL(&plain) != VARIANT_FALSE : before);
            }
            compared += V_VT(&plain) == VT_BOOL ? 1 : 0;
            VariantClear(&plain);
        }
        return compared;
    }

    CComPtr<IWbemServices> m_service;
};

TEST_F(SystemObjectsTest, Accessors_NetworkAdapter_ReadWhatPlainComReads) {
    const CComPtr<IWbemClassObject> adapter = First(L"Win32_NetworkAdapter");
    if (!adapter) {
        GTEST_SKIP() << "this system lists no network adapter";
    }
    EXPECT_GE(CompareTexts(adapter, {L"DeviceID", L"Name", L"Description", L"AdapterType", L"MACAddress",
                                     L"GUID", L"PNPDeviceID", L"__PATH", L"__CLASS"}),
              3);
    EXPECT_GE(CompareNumbers(
                  adapter, {L"Index", L"InterfaceIndex", L"NetConnectionStatus", L"AdapterTypeID", L"Speed"}),
              2);
    EXPECT_GE(CompareFlags(adapter, {L"PhysicalAdapter"}), 1);
    LONG number = 4242;
    bool isNull = true;
    EXPECT_TRUE(FAILED(Access::GetPropertyAsLong(adapter, L"NoSuchProperty", number, isNull)));
    EXPECT_EQ(number, 4242);
}

TEST_F(SystemObjectsTest, Accessors_OperatingSystem_ReadWhatPlainComReads) {
    const CComPtr<IWbemClassObject> system = First(L"Win32_OperatingSystem");
    ASSERT_TRUE(system);
    EXPECT_GE(CompareTexts(system, {L"Caption", L"Version", L"BuildNumber", L"CSName", L"OSArchitecture",
                                    L"InstallDate", L"__PATH"}),
              5);
    EXPECT_GE(CompareNumbers(system, {L"OSLanguage", L"ProductType", L"OSType", L"TotalVisibleMemorySize",
                                      L"SuiteMask"}),
              3);
    EXPECT_GE(CompareFlags(system, {L"Primary"}), 1);
}

TEST_F(SystemObjectsTest, GetPropertyArray_SystemsOwnArrays_AreReadWhole) {
    // Which class has an array with a value depends on the system; each that has one is compared.
    struct Place {
        const wchar_t* className;
        const wchar_t* property;
        bool text;
    };
    int compared = 0;
    for (const Place& place : {Place{L"Win32_OperatingSystem", L"MUILanguages", true},
                               Place{L"Win32_NetworkAdapterConfiguration", L"IPAddress", true},
                               Place{L"Win32_BIOS", L"BIOSVersion", true},
                               Place{L"Win32_SystemEnclosure", L"ChassisTypes", false}}) {
        SCOPED_TRACE(Narrow(place.className));
        const CComPtr<IWbemClassObject> instance = First(place.className);
        if (!instance) {
            continue;
        }
        VARIANT plain;
        VariantInit(&plain);
        if (FAILED(instance->Get(place.property, 0, &plain, nullptr, nullptr)) ||
            !(V_VT(&plain) & VT_ARRAY)) {
            VariantClear(&plain);
            continue;
        }
        LONG lower = 0;
        LONG upper = -1;
        SafeArrayGetLBound(V_ARRAY(&plain), 1, &lower);
        SafeArrayGetUBound(V_ARRAY(&plain), 1, &upper);
        int count = -1;
        if (place.text) {
            std::vector<ATL::CComBSTR> texts;
            EXPECT_EQ(Code(Access::GetPropertyArray(instance, place.property, texts, &count)), "0x00000000");
            ASSERT_EQ(texts.size(), static_cast<std::size_t>(upper - lower + 1));
            for (LONG index = lower; index <= upper; ++index) {
                BSTR element = nullptr;
                SafeArrayGetElement(V_ARRAY(&plain), &index, &element);
                EXPECT_STREQ(texts[static_cast<std::size_t>(index - lower)].m_str, element);
                SysFreeString(element);
            }
        } else {
            std::vector<LONG> numbers;
            EXPECT_EQ(Code(Access::GetPropertyArray(instance, place.property, numbers, &count)),
                      "0x00000000");
            EXPECT_EQ(numbers.size(), static_cast<std::size_t>(upper - lower + 1));
        }
        EXPECT_EQ(count, upper - lower + 1);
        ++compared;
        VariantClear(&plain);
    }
    EXPECT_GE(compared, 1);
}

} // namespace
