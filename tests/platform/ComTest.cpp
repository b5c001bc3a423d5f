// COM: initialisation per thread, class objects, the Global Interface Table, proxy blankets, GUID texts.
#include "ComObjects.h"

#include <windows.h>
#include <objbase.h>

#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

using quillet::tests::AgileObject;
using quillet::tests::SecuredObject;

constexpr CLSID kTestClass = {0x8d9b3c61, 0x5a0e, 0x4d5e, {0x9f, 0x0a, 0x3b, 0x5e, 0x61, 0x7c, 0x20, 0x01}};

/// Runs on a thread that has not initialised COM.
template <class Test>
void OnNewThread(Test test) {
    std::thread(test).join();
}

TEST(ComInitialisationTest, IsCountedAndKeepsItsModel) {
    OnNewThread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), RPC_E_CHANGED_MODE);
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), RPC_E_CHANGED_MODE)
            << "one initialisation is left";
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
        CoUninitialize();
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        CoUninitialize();
    });
}

TEST(ComInitialisationTest, AMultithreadedApartmentThatIsKept_ServesThreadsWithoutOne) {
    OnNewThread([] {
        CO_MTA_USAGE_COOKIE cookie{};
        ASSERT_EQ(CoIncrementMTAUsage(&cookie), S_OK);
        CO_MTA_USAGE_COOKIE other{};
        ASSERT_EQ(CoIncrementMTAUsage(&other), S_OK);
        EXPECT_EQ(CoDecrementMTAUsage(other), S_OK);
        IGlobalInterfaceTable* table = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
                  S_OK);
        if (table != nullptr) {
            table->Release();
        }
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK)
            << "the thread had none of its own";
        CoUninitialize();
        EXPECT_EQ(CoDecrementMTAUsage(cookie), S_OK);
    });
}

TEST(ComInitialisationTest, IsEachThreadsOwn) {
    OnNewThread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        OnNewThread([] {
            EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
            CoUninitialize();
        });
        CoUninitialize();
    });
}

// --- Class objects -------------------------------------------------------------------------------------

/// Registers a class object for one test.
class Registration {
  public:
    explicit Registration(IUnknown& factory) {
        EXPECT_EQ(
            CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie),
            S_OK);
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() { Revoke(); }
    DWORD Cookie() const { return m_cookie; }
    HRESULT Revoke() {
        const DWORD cookie = m_cookie;
        m_cookie = 0;
        return cookie ? CoRevokeClassObject(cookie) : S_OK;
    }

  private:
    DWORD m_cookie = 0;
};

TEST(ClassObjectsTest, UnknownClassIsNotRegistered) {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
              static_cast<HRESULT>(0x80040154));
    EXPECT_EQ(object, nullptr);
    object = &object;
    EXPECT_EQ(CoGetClassObject(kTestClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
}

TEST(ClassObjectsTest, RegisteredClassCreatesThroughItsFactory) {
    AgileObject factory;
    const Registration registration(factory);
    EXPECT_NE(registration.Cookie(), 0u);
    IUnknown* object = nullptr;
    ASSERT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&object)),
              S_OK);
    EXPECT_EQ(object, &factory);
    EXPECT_EQ(factory.created, 1);
    EXPECT_EQ(factory.lastOuter, nullptr);
    object->Release();
}

TEST(ClassObjectsTest, TheTableHoldsAReferenceUntilRevoked) {
    AgileObject factory;
    Registration registration(factory);
    EXPECT_GT(factory.References(), 1u);
    const DWORD cookie = registration.Cookie();
    EXPECT_EQ(registration.Revoke(), S_OK);
    EXPECT_EQ(factory.References(), 1u);
    EXPECT_EQ(CoRevokeClassObject(cookie), E_INVALIDARG);
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(factory.created, 0);
}

TEST(ClassObjectsTest, TheFactorysFailureIsTheResult) {
    AgileObject factory;
    const Registration registration(factory);
    factory.createResult = E_ACCESSDENIED;
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
              E_ACCESSDENIED);
    EXPECT_EQ(object, nullptr);
}

TEST(ClassObjectsTest, AnInterfaceThatTheObjectLacksIsRefused) {
    AgileObject factory;
    const Registration registration(factory);
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &object),
              E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
}

TEST(ClassObjectsTest, ClassObjectItselfCanBeAskedFor) {
    AgileObject factory;
    const Registration registration(factory);
    IClassFactory* found = nullptr;
    ASSERT_EQ(CoGetClassObject(kTestClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                               reinterpret_cast<void**>(&found)),
              S_OK);
    EXPECT_EQ(found, &factory);
    found->Release();
}

TEST(ClassObjectsTest, NullArgumentsAreRefused) {
    AgileObject factory;
    DWORD cookie = 7;
    EXPECT_EQ(CoRegisterClassObject(kTestClass, nullptr, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
              E_INVALIDARG);
    EXPECT_EQ(CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(factory.References(), 1u);
}

TEST(ClassObjectsTest, AreSeenByOtherMultithreadedThreads) {
    AgileObject factory;
    const Registration registration(factory);
    OnNewThread([&factory] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        IUnknown* object = nullptr;
        EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                   reinterpret_cast<void**>(&object)),
                  S_OK);
        EXPECT_EQ(object, &factory);
        if (object) {
            object->Release();
        }
        CoUninitialize();
    });
}

// --- The Global Interface Table ------------------------------------------------------------------------

class InterfaceTableTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&m_table)),
                  S_OK);
    }
    void TearDown() override {
        if (m_table) {
            m_table->Release();
        }
    }
    IGlobalInterfaceTable* m_table = nullptr;
};

TEST_F(InterfaceTableTest, HandsOutWhatWasRegisteredAndCountsReferences) {
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IClassFactory, &cookie), S_OK);
    EXPECT_NE(cookie, 0u);
    const ULONG registered = object.References();
    EXPECT_GT(registered, 1u);
    IClassFactory* got = nullptr;
    ASSERT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IClassFactory, reinterpret_cast<void**>(&got)),
              S_OK);
    EXPECT_EQ(got, &object);
    EXPECT_EQ(object.References(), registered + 1);
    got->Release();
    EXPECT_EQ(object.References(), registered);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(object.References(), 1u);
}

TEST_F(InterfaceTableTest, WhatWasHandedOutOutlivesItsEntry) {
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
    IUnknown* got = nullptr;
    ASSERT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IUnknown, reinterpret_cast<void**>(&got)), S_OK);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(object.References(), 2u);
    got->Release();
    EXPECT_EQ(object.References(), 1u);
}

TEST_F(InterfaceTableTest, NullInterfaceIsInvalidAndLeavesTheCookie) {
    DWORD cookie = 0;
    EXPECT_EQ(m_table->RegisterInterfaceInGlobal(nullptr, IID_IUnknown, &cookie),
              static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(cookie, 0u);
}

TEST_F(InterfaceTableTest, DeadCookieIsInvalid) {
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
    ASSERT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), static_cast<HRESULT>(0x80070057));
    void* got = nullptr;
    EXPECT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IUnknown, &got), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(0), static_cast<HRESULT>(0x80070057));
}

TEST_F(InterfaceTableTest, EveryRegistrationHasACookieOfItsOwn) {
    AgileObject object;
    DWORD first = 0;
    DWORD second = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &first), S_OK);
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &second), S_OK);
    EXPECT_NE(first, second);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(first), S_OK);
    IUnknown* got = nullptr;
    EXPECT_EQ(m_table->GetInterfaceFromGlobal(second, IID_IUnknown, reinterpret_cast<void**>(&got)), S_OK);
    EXPECT_EQ(got, static_cast<IUnknown*>(&object));
    got->Release();
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(second), S_OK);
}

TEST_F(InterfaceTableTest, FreeThreadedObjectReachesASingleThreadedApartmentAsItself) {
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IClassFactory, &cookie), S_OK);
    OnNewThread([&object, cookie] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        IGlobalInterfaceTable* table = nullptr;
        ASSERT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
                  S_OK);
        IClassFactory* got = nullptr;
        EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IID_IClassFactory, reinterpret_cast<void**>(&got)),
                  S_OK);
        EXPECT_EQ(got, &object);
        if (got) {
            got->Release();
        }
        table->Release();
        CoUninitialize();
    });
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(object.References(), 1u);
}

TEST_F(InterfaceTableTest, RegistrationAsAnInterfaceThatTheObjectLacksFails) {
    AgileObject object;
    DWORD cookie = 0;
    EXPECT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IDispatch, &cookie), E_NOINTERFACE);
    EXPECT_EQ(object.References(), 1u);
}

// --- Marshaler -----------------------------------------------------------------------------------------

TEST(FreeThreadedMarshalerTest, AnswersForTheOuterObject) {
    AgileObject object;
    IMarshal* marshal = nullptr;
    ASSERT_EQ(object.QueryInterface(IID_IMarshal, reinterpret_cast<void**>(&marshal)), S_OK);
    EXPECT_EQ(object.References(), 2u) << "the part is held through the whole";
    IUnknown* identity = nullptr;
    EXPECT_EQ(marshal->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity)), S_OK);
    EXPECT_EQ(identity, static_cast<IUnknown*>(&object));
    identity->Release();
    marshal->Release();
    EXPECT_EQ(object.References(), 1u);
}

// --- Proxy blankets ------------------------------------------------------------------------------------

TEST(ProxyBlanketTest, ReachesTheObjectsOwnSecurity) {
    SecuredObject proxy;
    int identity = 0;
    EXPECT_EQ(CoSetProxyBlanket(&proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                RPC_C_IMP_LEVEL_IMPERSONATE, &identity, EOAC_DYNAMIC_CLOAKING),
              S_OK);
    ASSERT_EQ(proxy.blanketsSet, 1);
    EXPECT_EQ(proxy.blanket.proxy, static_cast<IUnknown*>(&proxy));
    EXPECT_EQ(proxy.blanket.authnSvc, DWORD{RPC_C_AUTHN_WINNT});
    EXPECT_EQ(proxy.blanket.authzSvc, DWORD{RPC_C_AUTHZ_NONE});
    EXPECT_EQ(proxy.blanket.principal, nullptr);
    EXPECT_EQ(proxy.blanket.authnLevel, DWORD{RPC_C_AUTHN_LEVEL_CALL});
    EXPECT_EQ(proxy.blanket.impLevel, DWORD{RPC_C_IMP_LEVEL_IMPERSONATE});
    EXPECT_EQ(proxy.blanket.authInfo, &identity);
    EXPECT_EQ(proxy.blanket.capabilities, DWORD{EOAC_DYNAMIC_CLOAKING});
    EXPECT_EQ(proxy.References(), 1u);
}

TEST(ProxyBlanketTest, FailureOfTheProxyIsTheResult) {
    SecuredObject proxy;
    proxy.blanketResult = E_ACCESSDENIED;
    EXPECT_EQ(CoSetProxyBlanket(&proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
              E_ACCESSDENIED);
    EXPECT_EQ(proxy.References(), 1u);
}

TEST(ProxyBlanketTest, ObjectWithoutSecurityHasNoBlanket) {
    AgileObject object;
    EXPECT_EQ(CoSetProxyBlanket(static_cast<IClassFactory*>(&object), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE,
                                nullptr, RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                EOAC_NONE),
              E_NOINTERFACE);
    EXPECT_EQ(object.References(), 1u);
}

TEST(ProxyBlanketTest, CanBeQueriedAndTheProxyCopied) {
    SecuredObject proxy;
    proxy.blanket.authnLevel = RPC_C_AUTHN_LEVEL_PKT;
    proxy.blanket.impLevel = RPC_C_IMP_LEVEL_DELEGATE;
    DWORD authnSvc = 0;
    DWORD authzSvc = 0;
    DWORD authnLevel = 0;
    DWORD impLevel = 0;
    DWORD capabilities = 0;
    EXPECT_EQ(CoQueryProxyBlanket(&proxy, &authnSvc, &authzSvc, nullptr, &authnLevel, &impLevel, nullptr,
                                  &capabilities),
              S_OK);
    EXPECT_EQ(authnLevel, DWORD{RPC_C_AUTHN_LEVEL_PKT});
    EXPECT_EQ(impLevel, DWORD{RPC_C_IMP_LEVEL_DELEGATE});
    IUnknown* copy = nullptr;
    EXPECT_EQ(CoCopyProxy(&proxy, &copy), S_OK);
    EXPECT_EQ(proxy.References(), 2u);
    copy->Release();
}

// --- GUIDs and memory ----------------------------------------------------------------------------------

TEST(GuidsTest, AreWrittenAndReadInBraces) {
    wchar_t text[39];
    EXPECT_EQ(StringFromGUID2(kTestClass, text, 39), 39);
    EXPECT_STREQ(text, L"{8D9B3C61-5A0E-4D5E-9F0A-3B5E617C2001}");
    EXPECT_EQ(StringFromGUID2(kTestClass, text, 38), 0);
    CLSID read;
    EXPECT_EQ(CLSIDFromString(L"{8d9b3c61-5a0e-4d5e-9f0a-3b5e617c2001}", &read), S_OK);
    EXPECT_TRUE(read == kTestClass);
    for (const wchar_t* bad : {L"{8d9b3c61-5a0e-4d5e-9f0a-3b5e617c2001", L"{8d9b3c61}",
                               L"{8d9b3c61-5a0e-4d5e-9f0a-3b5e617c200g}"}) {
        EXPECT_EQ(CLSIDFromString(bad, &read), CO_E_CLASSSTRING) << std::wstring(bad);
    }
}

TEST(GuidsTest, NewOnesDiffer) {
    GUID first;
    GUID second;
    EXPECT_EQ(CoCreateGuid(&first), S_OK);
    EXPECT_EQ(CoCreateGuid(&second), S_OK);
    EXPECT_FALSE(first == second);
    EXPECT_EQ(first.Data3 >> 12, 4);
    EXPECT_EQ(first.Data4[0] & 0xc0, 0x80);
}

TEST(TaskMemoryTest, GrowsAndIsFreed) {
    auto* memory = static_cast<char*>(CoTaskMemAlloc(4));
    ASSERT_NE(memory, nullptr);
    memory[0] = 'a';
    memory[3] = 'd';
    memory = static_cast<char*>(CoTaskMemRealloc(memory, 4096));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(memory[0], 'a');
    EXPECT_EQ(memory[3], 'd');
    CoTaskMemFree(memory);
    CoTaskMemFree(nullptr);
}

} // namespace
