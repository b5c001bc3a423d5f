// What our own COM and OLE add or decide: apartments, fresh proxies, cookies, live counts, limits.
#include "ComObjects.h"

#include <quillet-platform/TestHooks.h>

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <comdef.h>
#include <comutil.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using quillet::platform::Live;
using quillet::tests::AgileObject;
using quillet::tests::SecuredObject;

constexpr CLSID kTestClass = {0x8d9b3c61, 0x5a0e, 0x4d5e, {0x9f, 0x0a, 0x3b, 0x5e, 0x61, 0x7c, 0x20, 0x02}};

template <class Test>
void OnNewThread(Test test) {
    std::thread(test).join();
}

IGlobalInterfaceTable* Table() {
    IGlobalInterfaceTable* table = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
              S_OK);
    return table;
}

// --- Apartments ----------------------------------------------------------------------------------------

TEST(NativeComTest, NothingIsCreatedOnAThreadWithoutCom) {
    AgileObject factory;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
              S_OK);
    OnNewThread([&factory, cookie] {
        void* object = &object;
        EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
                  static_cast<HRESULT>(0x800401f0));
        EXPECT_EQ(object, nullptr);
        object = &object;
        EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, &object),
                  CO_E_NOTINITIALIZED);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(CoGetClassObject(kTestClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object),
                  CO_E_NOTINITIALIZED);
        DWORD other = 0;
        EXPECT_EQ(
            CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &other),
            CO_E_NOTINITIALIZED);
        EXPECT_EQ(CoRevokeClassObject(cookie), CO_E_NOTINITIALIZED);
    });
    EXPECT_EQ(factory.created, 0);
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

TEST(NativeComTest, AThreadMayUseComUntilItsLastUninitialise) {
    OnNewThread([] {
        const auto create = [] {
            void* object = nullptr;
            return CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object);
        };
        EXPECT_EQ(create(), CO_E_NOTINITIALIZED);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
        EXPECT_EQ(create(), REGDB_E_CLASSNOTREG);
        CoUninitialize();
        EXPECT_EQ(create(), REGDB_E_CLASSNOTREG);
        CoUninitialize();
        EXPECT_EQ(create(), CO_E_NOTINITIALIZED);
        CoUninitialize();
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK) << "one too many is forgiven";
        CoUninitialize();
    });
}

TEST(NativeComTest, InitialisationTakesNoOtherArguments) {
    OnNewThread([] {
        int reserved = 0;
        EXPECT_EQ(CoInitializeEx(&reserved, COINIT_MULTITHREADED), E_INVALIDARG);
        EXPECT_EQ(CoInitializeEx(nullptr, 0x1000), E_INVALIDARG);
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE), S_OK);
        CoUninitialize();
    });
}

TEST(NativeComTest, TheInterfaceTableNeedsComToo) {
    IGlobalInterfaceTable* const table = Table();
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
    OnNewThread([table, cookie, &object] {
        DWORD other = 0;
        EXPECT_EQ(table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &other), CO_E_NOTINITIALIZED);
        void* got = nullptr;
        EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IID_IUnknown, &got), CO_E_NOTINITIALIZED);
        EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), CO_E_NOTINITIALIZED);
    });
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    table->Release();
}

// --- Class objects -------------------------------------------------------------------------------------

TEST(NativeComTest, ASingleUseClassServesOnce) {
    AgileObject first;
    AgileObject second;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kTestClass, &first, CLSCTX_INPROC_SERVER, REGCLS_SINGLEUSE, &cookie),
              S_OK);
    IUnknown* object = nullptr;
    ASSERT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&object)),
              S_OK);
    object->Release();
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&object)),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(first.References(), 1u);
    DWORD other = 0;
    ASSERT_EQ(CoRegisterClassObject(kTestClass, &second, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &other),
              S_OK);
    ASSERT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&object)),
              S_OK);
    EXPECT_EQ(object, static_cast<IUnknown*>(&second)) << "the spent one does not stand in its way";
    object->Release();
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(CoRevokeClassObject(other), S_OK);
}

TEST(NativeComTest, ClassObjectsServeEveryApartment) {
    AgileObject factory;
    DWORD cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kTestClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
              S_OK);
    OnNewThread([&factory] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        IUnknown* object = nullptr;
        EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                   reinterpret_cast<void**>(&object)),
                  S_OK);
        EXPECT_EQ(object, static_cast<IUnknown*>(&factory));
        object->Release();
        CoUninitialize();
    });
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

// --- The interface table -------------------------------------------------------------------------------

/// A proxy that can be copied: each copy is an object of its own.
class Proxy final : public IClientSecurity {
  public:
    static inline long alive = 0;
    explicit Proxy(HRESULT copyResult = S_OK) : m_copyResult(copyResult) { ++alive; }
    Proxy(const Proxy&) = delete;
    Proxy& operator=(const Proxy&) = delete;
    virtual ~Proxy() { --alive; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown && iid != IID_IClientSecurity) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClientSecurity*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                           DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD level, DWORD, void*,
                                         DWORD) override {
        authnLevel = level;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown** copy) override {
        *copy = m_copyResult == S_OK ? new Proxy : nullptr;
        return FAILED(m_copyResult) ? m_copyResult : S_OK;
    }

    DWORD authnLevel = 0;

  private:
    std::atomic<ULONG> m_references{1};
    HRESULT m_copyResult;
};

class NativeInterfaceTableTest : public testing::Test {
  protected:
    void SetUp() override { m_table = Table(); }
    void TearDown() override {
        m_table->Release();
        EXPECT_EQ(Proxy::alive, 0);
    }
    Proxy* Get(DWORD cookie) {
        Proxy* got = nullptr;
        EXPECT_EQ(
            m_table->GetInterfaceFromGlobal(cookie, IID_IClientSecurity, reinterpret_cast<void**>(&got)),
            S_OK);
        return got;
    }
    IGlobalInterfaceTable* m_table = nullptr;
};

TEST_F(NativeInterfaceTableTest, EachRetrievalOfAProxyIsAFreshOne) {
    auto* const original = new Proxy;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(original, IID_IClientSecurity, &cookie), S_OK);
    Proxy* const first = Get(cookie);
    Proxy* const second = Get(cookie);
    EXPECT_NE(first, original);
    EXPECT_NE(second, original);
    EXPECT_NE(first, second);
    EXPECT_EQ(CoSetProxyBlanket(first, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
              S_OK);
    EXPECT_EQ(first->authnLevel, DWORD{RPC_C_AUTHN_LEVEL_CALL});
    EXPECT_EQ(second->authnLevel, 0u) << "the blanket of one is not that of the other";
    EXPECT_EQ(original->authnLevel, 0u);
    first->Release();
    second->Release();
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    original->Release();
}

TEST_F(NativeInterfaceTableTest, AProxyThatCannotBeCopiedIsNotHandedOut) {
    for (const HRESULT result : {E_ACCESSDENIED, S_FALSE}) {
        auto* const original = new Proxy(result);
        DWORD cookie = 0;
        ASSERT_EQ(m_table->RegisterInterfaceInGlobal(original, IID_IClientSecurity, &cookie), S_OK);
        void* got = &got;
        EXPECT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IClientSecurity, &got),
                  result == S_FALSE ? E_NOINTERFACE : result);
        EXPECT_EQ(got, nullptr);
        EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
        original->Release();
    }
}

TEST_F(NativeInterfaceTableTest, AnInterfaceThatTheCopyLacksIsRefused) {
    auto* const original = new Proxy;
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(original, IID_IUnknown, &cookie), S_OK);
    void* got = &got;
    EXPECT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IDispatch, &got), E_NOINTERFACE);
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    original->Release();
}

TEST_F(NativeInterfaceTableTest, CookiesAreNotReusedWhileTheyLiveNorSoonAfter) {
    AgileObject object;
    std::set<DWORD> seen;
    std::vector<DWORD> live;
    for (int i = 0; i < 2000; ++i) {
        DWORD cookie = 0;
        ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
        ASSERT_NE(cookie, 0u);
        ASSERT_TRUE(seen.insert(cookie).second) << cookie;
        live.push_back(cookie);
        if (i % 3 == 0) {
            ASSERT_EQ(m_table->RevokeInterfaceFromGlobal(live.front()), S_OK);
            live.erase(live.begin());
        }
    }
    EXPECT_EQ(object.References(), 1u + live.size());
    for (const DWORD cookie : live) {
        EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    }
    EXPECT_EQ(object.References(), 1u);
}

TEST_F(NativeInterfaceTableTest, NullPlacesAreInvalid) {
    AgileObject object;
    EXPECT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, nullptr), E_INVALIDARG);
    DWORD cookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
    EXPECT_EQ(m_table->GetInterfaceFromGlobal(cookie, IID_IUnknown, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(object.References(), 1u);
}

/// An object whose end takes the lock of the table.
class Nested final : public IUnknown {
  public:
    explicit Nested(IGlobalInterfaceTable* table, DWORD cookie) : m_table(table), m_cookie(cookie) {}
    virtual ~Nested() { EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(m_cookie), S_OK); }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown) {
            return E_NOINTERFACE;
        }
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  private:
    std::atomic<ULONG> m_references{1};
    IGlobalInterfaceTable* m_table;
    DWORD m_cookie;
};

TEST_F(NativeInterfaceTableTest, TheLastReleaseMayUseTheTable) {
    AgileObject inner;
    DWORD innerCookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(&inner, IID_IUnknown, &innerCookie), S_OK);
    auto* const outer = new Nested(m_table, innerCookie);
    DWORD outerCookie = 0;
    ASSERT_EQ(m_table->RegisterInterfaceInGlobal(outer, IID_IUnknown, &outerCookie), S_OK);
    outer->Release();
    EXPECT_EQ(m_table->RevokeInterfaceFromGlobal(outerCookie), S_OK);
    EXPECT_EQ(inner.References(), 1u);
}

// --- Proxy blankets ------------------------------------------------------------------------------------

TEST(NativeProxyBlanketTest, NullArgumentsAreInvalid) {
    EXPECT_EQ(CoSetProxyBlanket(nullptr, 0, 0, nullptr, 0, 0, nullptr, 0), E_INVALIDARG);
    SecuredObject proxy;
    EXPECT_EQ(CoCopyProxy(&proxy, nullptr), E_INVALIDARG);
    EXPECT_EQ(proxy.References(), 1u);
}

// --- Counts --------------------------------------------------------------------------------------------

TEST(LiveCountsTest, FollowEveryKind) {
    const auto before = Live();
    const BSTR text = SysAllocString(L"counted");
    EXPECT_EQ(Live().bstrs, before.bstrs + 1);
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 1);
    EXPECT_EQ(Live().safeArrays, before.safeArrays + 1);
    LONG index = 0;
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
    EXPECT_EQ(Live().bstrs, before.bstrs + 2) << "the element is a text of its own";
    IGlobalInterfaceTable* const table = Table();
    AgileObject object;
    DWORD cookie = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
    EXPECT_EQ(Live().interfaceTableEntries, before.interfaceTableEntries + 1);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, nullptr, 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(Live().registryKeys, before.registryKeys + 1);
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    EXPECT_EQ(Live().tokens, before.tokens + 1);

    EXPECT_TRUE(CloseHandle(token));
    EXPECT_FALSE(CloseHandle(token)) << "closed is closed";
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), E_INVALIDARG);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    SysFreeString(text);
    EXPECT_TRUE(Live() == before);
}

// --- Limits of arrays and variants ---------------------------------------------------------------------

TEST(NativeSafeArrayTest, AbsurdBoundsGiveNull) {
    SAFEARRAYBOUND tooMany[] = {{0x7fffffffu, 0}, {0x7fffffffu, 0}, {0x7fffffffu, 0}};
    EXPECT_EQ(SafeArrayCreate(VT_VARIANT, 3, tooMany), nullptr);
    SAFEARRAYBOUND wrapping[] = {{0x10000u, 0}, {0x10000u, 0}, {0x10000u, 0}, {0x10000u, 0}};
    EXPECT_EQ(SafeArrayCreate(VT_UI1, 4, wrapping), nullptr) << "2^64 cells are not none";
    SAFEARRAYBOUND tooBig = {0xfffffff0u, 0};
    EXPECT_EQ(SafeArrayCreate(VT_R8, 1, &tooBig), nullptr);
    EXPECT_EQ(SafeArrayCreateVector(VT_UI1, 0x7fffffff, 2), nullptr) << "no index could name the last";
    EXPECT_EQ(SafeArrayCreateVector(VT_UI1, 0, 0xffffffffu), nullptr);
}

TEST(NativeSafeArrayTest, TheGreatestLowerBoundHasRoomForOne) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0x7fffffff, 1);
    ASSERT_NE(array, nullptr);
    LONG index = 0x7fffffff;
    BYTE value = 3;
    EXPECT_EQ(SafeArrayPutElement(array, &index, &value), S_OK);
    index = -0x7fffffff - 1;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &value), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(NativeSafeArrayTest, RedimKeepsWhatStays) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 2);
    for (LONG i = 0; i < 2; ++i) {
        const BSTR text = SysAllocString(i == 0 ? L"zero" : L"one");
        EXPECT_EQ(SafeArrayPutElement(array, &i, text), S_OK);
        SysFreeString(text);
    }
    SAFEARRAYBOUND bound = {4, 0};
    ASSERT_EQ(SafeArrayRedim(array, &bound), S_OK);
    LONG upper = 0;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(upper, 3);
    BSTR got = nullptr;
    LONG index = 1;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_STREQ(got, L"one");
    SysFreeString(got);
    index = 3;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
    EXPECT_EQ(got, nullptr);
    EXPECT_EQ(SafeArrayLock(array), S_OK);
    EXPECT_EQ(SafeArrayRedim(array, &bound), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnlock(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(NativeSafeArrayTest, RedimFreesWhatIsCutOff) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 2);
    const auto before = Live();
    for (LONG i = 0; i < 2; ++i) {
        const BSTR text = SysAllocString(L"element");
        EXPECT_EQ(SafeArrayPutElement(array, &i, text), S_OK);
        SysFreeString(text);
    }
    SAFEARRAYBOUND bound = {1, 0};
    EXPECT_EQ(SafeArrayRedim(array, &bound), S_OK);
    EXPECT_EQ(Live().bstrs, before.bstrs + 1);
    LONG index = 1;
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), DISP_E_BADINDEX);
    bound = {0xffffffffu, 0};
    EXPECT_EQ(SafeArrayRedim(array, &bound), E_OUTOFMEMORY);
    LONG upper = -1;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(upper, 0) << "a failure changes nothing";
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    EXPECT_EQ(Live().bstrs, before.bstrs);
}

TEST(NativeSafeArrayTest, DestroyedDataHasNoElements) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_BSTR, 0, 2);
    EXPECT_EQ(SafeArrayDestroyData(array), S_OK);
    LONG index = 0;
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), E_INVALIDARG);
    EXPECT_EQ(SafeArrayPutElement(array, &index, nullptr), E_INVALIDARG);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(NativeVariantTest, ClearOfALockedArrayFails) {
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_ARRAY | VT_I4;
    V_ARRAY(&variant) = SafeArrayCreateVector(VT_I4, 0, 1);
    EXPECT_EQ(SafeArrayLock(V_ARRAY(&variant)), S_OK);
    EXPECT_EQ(VariantClear(&variant), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(V_VT(&variant), VT_ARRAY | VT_I4);
    EXPECT_EQ(SafeArrayUnlock(V_ARRAY(&variant)), S_OK);
    EXPECT_EQ(VariantClear(&variant), S_OK);
}

// --- Narrow text and error objects of the compiler's classes -------------------------------------------

TEST(NativeBstrOwnerTest, NarrowTextIsUtf8) {
    const _bstr_t text("Gr\xc3\xb6\xc3\x9f"
                       "e");
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"Gr\u00f6\u00dfe");
    const _bstr_t wide(L"Gr\u00f6\u00dfe");
    EXPECT_STREQ(static_cast<const char*>(wide), "Gr\xc3\xb6\xc3\x9f"
                                                 "e");
    EXPECT_STREQ(static_cast<const wchar_t*>("a" + wide), L"aGr\u00f6\u00dfe");
    EXPECT_STREQ(_variant_t("narrow").bstrVal, L"narrow");
    EXPECT_EQ(static_cast<const char*>(_bstr_t()), nullptr);
}

TEST(NativeBstrOwnerTest, DetachOfASharedOrEmptyTextIsRefused) {
    _bstr_t empty;
    EXPECT_THROW(empty.Detach(), _com_error);
    _bstr_t shared(L"shared");
    const _bstr_t copy(shared);
    EXPECT_THROW(shared.Detach(), _com_error);
    EXPECT_STREQ(static_cast<const wchar_t*>(shared), L"shared");
}

class ErrorInfo final : public IErrorInfo {
  public:
    ErrorInfo() = default;
    ErrorInfo(const ErrorInfo&) = delete;
    ErrorInfo& operator=(const ErrorInfo&) = delete;
    virtual ~ErrorInfo() = default;
    ULONG references = 1;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override {
        *source = SysAllocString(L"source");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override {
        *description = SysAllocString(L"description");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        *context = 77;
        return S_OK;
    }
};

TEST(NativeComErrorTest, HoldsItsErrorObject) {
    ErrorInfo info;
    {
        const _com_error error(E_FAIL, &info, true);
        EXPECT_EQ(info.references, 2u);
        _com_error copy(E_ABORT);
        copy = error;
        EXPECT_EQ(info.references, 3u);
        EXPECT_EQ(copy.Error(), E_FAIL);
        EXPECT_STREQ(static_cast<const wchar_t*>(copy.Description()), L"description");
        EXPECT_STREQ(static_cast<const wchar_t*>(copy.Source()), L"source");
        EXPECT_TRUE(!copy.HelpFile());
        EXPECT_EQ(copy.HelpContext(), 77u);
        IErrorInfo* const held = copy.ErrorInfo();
        EXPECT_EQ(held, &info);
        EXPECT_EQ(info.references, 4u);
        held->Release();
    }
    EXPECT_EQ(info.references, 1u);
}

TEST(NativeComErrorTest, MessagesAreTheSystems) {
    EXPECT_STREQ(_com_error(E_ACCESSDENIED).ErrorMessage(), L"Access is denied.");
    EXPECT_STREQ(_com_error(static_cast<HRESULT>(0x80041002)).ErrorMessage(), L"Not found.");
    EXPECT_STREQ(_com_error(static_cast<HRESULT>(0x80040210)).ErrorMessage(), L"IDispatch error #16");
    EXPECT_STREQ(_com_error(static_cast<HRESULT>(0x8fff1234)).ErrorMessage(), L"Unknown error 0x8FFF1234");
}

} // namespace
