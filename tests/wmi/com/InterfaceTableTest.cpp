// The Global Interface Table: what each retrieval hands out, on both hosts.
#include "ComFixture.h"

#include <thread>

using ATL::CComPtr;

namespace {

class InterfaceTable : public ComTest {
  protected:
    InterfaceTable() {
        EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
                  S_OK);
    }
    DWORD Register(IUnknown* object, REFIID iid) {
        DWORD cookie = 0;
        EXPECT_EQ(Code(table->RegisterInterfaceInGlobal(object, iid, &cookie)), "0x00000000");
        EXPECT_NE(cookie, 0u);
        return cookie;
    }
    template <class Interface>
    CComPtr<Interface> Retrieve(DWORD cookie, REFIID iid) {
        CComPtr<Interface> object;
        EXPECT_EQ(Code(table->GetInterfaceFromGlobal(cookie, iid, reinterpret_cast<void**>(&object))),
                  "0x00000000");
        return object;
    }
    void Revoke(DWORD cookie) { EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK); }
    std::string Read(IWbemServices* proxy) {
        CComPtr<IWbemClassObject> object;
        return Code(proxy->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr));
    }
    /// Runs something on a thread of an apartment of its own.
    template <class Work>
    static void On(COINIT apartment, Work work) {
        std::thread([&] {
            ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, static_cast<DWORD>(apartment))));
            work();
            CoUninitialize();
        }).join();
    }

    CComPtr<IGlobalInterfaceTable> table;
};

TEST_F(InterfaceTable, EachRetrievalOfTheServiceIsAProxyOfItsOwn) {
    const DWORD cookie = Register(services, IID_IWbemServices);
    {
        const auto first = Retrieve<IWbemServices>(cookie, IID_IWbemServices);
        const auto second = Retrieve<IWbemServices>(cookie, IID_IWbemServices);
        EXPECT_NE(first.p, second.p);
        EXPECT_NE(first.p, services.p);
        EXPECT_EQ(Read(first), "0x80070005");
        ASSERT_EQ(SetBlanket(first), S_OK);
        EXPECT_EQ(Read(first), "0x00000000");
        EXPECT_EQ(Read(second), "0x80070005");
    }
    Revoke(cookie);
}

TEST_F(InterfaceTable, EveryApartmentGetsItsProxy) {
    const DWORD cookie = Register(services, IID_IWbemServices);
    for (const auto apartment : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        On(apartment, [&] {
            const auto proxy = Retrieve<IWbemServices>(cookie, IID_IWbemServices);
            EXPECT_EQ(Read(proxy), "0x80070005");
            ASSERT_EQ(SetBlanket(proxy), S_OK);
            EXPECT_EQ(Read(proxy), "0x00000000");
        });
    }
    Revoke(cookie);
}

TEST_F(InterfaceTable, TheTableKeepsTheServiceAlive) {
    const DWORD cookie = Register(services, IID_IWbemServices);
    services.Release();
    {
        const auto proxy = Retrieve<IWbemServices>(cookie, IID_IWbemServices);
        ASSERT_EQ(SetBlanket(proxy), S_OK);
        EXPECT_EQ(Read(proxy), "0x00000000");
    }
    const long before = Machine::LiveObjects();
    Revoke(cookie);
    EXPECT_LT(Machine::LiveObjects(), before);
}

TEST_F(InterfaceTable, EachRetrievalOfAContextIsACopy) {
    const auto context = Context();
    _variant_t value = I4(7);
    ASSERT_EQ(context->SetValue(L"ClientSetId", 0, &value), S_OK);
    const DWORD cookie = Register(context, IID_IWbemContext);
    On(COINIT_APARTMENTTHREADED, [&] {
        const auto mine = Retrieve<IWbemContext>(cookie, IID_IWbemContext);
        _variant_t inherited;
        EXPECT_EQ(mine->GetValue(L"ClientSetId", 0, &inherited), S_OK);
        EXPECT_EQ(inherited, I4(7));
        _variant_t changed = I4(8);
        EXPECT_EQ(mine->SetValue(L"ClientSetId", 0, &changed), S_OK);
    });
    const auto again = Retrieve<IWbemContext>(cookie, IID_IWbemContext);
    _variant_t untouched;
    EXPECT_EQ(again->GetValue(L"ClientSetId", 0, &untouched), S_OK);
    EXPECT_EQ(untouched, I4(7));
    Revoke(cookie);
}

TEST_F(InterfaceTable, EachRetrievalOfAnInstanceIsACopy) {
    const auto one = Object(kAll);
    const DWORD cookie = Register(one, IID_IWbemClassObject);
    On(COINIT_MULTITHREADED, [&] {
        const auto mine = Retrieve<IWbemClassObject>(cookie, IID_IWbemClassObject);
        EXPECT_EQ(Get(mine, L"__RELPATH"), _variant_t(kAll));
        EXPECT_EQ(Put(mine, L"Caption", L"changed"), S_OK);
    });
    EXPECT_EQ(Get(Retrieve<IWbemClassObject>(cookie, IID_IWbemClassObject), L"Caption"),
              _variant_t(L"First"));
    Revoke(cookie);
}

TEST_F(InterfaceTable, AnEnumerationGoesOnWhereItWas) {
    CComPtr<IEnumWbemClassObject> answer;
    ASSERT_EQ(services->CreateInstanceEnum(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &answer), S_OK);
    const DWORD cookie = Register(answer, IID_IEnumWbemClassObject);
    On(COINIT_MULTITHREADED, [&] {
        EXPECT_EQ(Retrieve<IEnumWbemClassObject>(cookie, IID_IEnumWbemClassObject)->Skip(0, 1), S_OK);
    });
    CComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    ASSERT_EQ(answer->Next(0, 1, &object, &returned), S_OK);
    EXPECT_EQ(Get(object, L"Name"), _variant_t(L"two"));
    Revoke(cookie);
}

TEST_F(InterfaceTable, ARevokedCookieIsDead) {
    const DWORD cookie = Register(services, IID_IWbemServices);
    Revoke(cookie);
    CComPtr<IWbemServices> proxy;
    EXPECT_EQ(
        Code(table->GetInterfaceFromGlobal(cookie, IID_IWbemServices, reinterpret_cast<void**>(&proxy))),
        "0x80070057");
}

} // namespace
