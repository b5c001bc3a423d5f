// How a client gets to the provider: class objects, ConnectServer, the blanket, OpenNamespace.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

class Connection : public ComTest {
  protected:
    HRESULT TryConnect(const wchar_t* resource, LONG flags = 0, const wchar_t* password = nullptr) {
        CComPtr<IWbemServices> connected;
        _bstr_t secret(password);
        return Locator()->ConnectServer(resource != nullptr ? _bstr_t(resource).GetBSTR() : nullptr, nullptr,
                                        password != nullptr ? secret.GetBSTR() : nullptr, nullptr, flags,
                                        nullptr, nullptr, &connected);
    }
};

TEST_F(Connection, AnyHostNameReachesTheMachine) {
    EXPECT_EQ(Code(TryConnect(L"\\\\127.0.0.1\\ROOT\\MarloLUM2")), "0x00000000");
    EXPECT_EQ(Code(TryConnect(L"\\\\far.example\\root\\marlolum2")), "0x00000000");
    EXPECT_EQ(Code(TryConnect(L"//./root/MarloLUM2")), "0x00000000");
    EXPECT_EQ(Code(TryConnect(L"ROOT\\MarloLUM2")), "0x00000000");
}

TEST_F(Connection, AnotherNamespaceIsInvalid) {
    EXPECT_EQ(Code(TryConnect(L"\\\\127.0.0.1\\ROOT\\cimv2")), "0x8004100E");
    EXPECT_EQ(Code(TryConnect(L"\\\\127.0.0.1")), "0x8004100E");
    EXPECT_EQ(Code(TryConnect(L"\\\\\\ROOT\\MarloLUM2")), "0x8004100E");
    EXPECT_EQ(Code(TryConnect(L"")), "0x8004100E");
}

TEST_F(Connection, ArgumentsAreChecked) {
    EXPECT_EQ(Code(TryConnect(nullptr)), "0x80041008");
    EXPECT_EQ(Code(TryConnect(L"ROOT\\MarloLUM2", 0x40)), "0x80041008");
    EXPECT_EQ(Code(TryConnect(L"ROOT\\MarloLUM2", WBEM_FLAG_CONNECT_USE_MAX_WAIT)), "0x00000000");
    EXPECT_EQ(Code(Locator()->ConnectServer(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), nullptr, nullptr, nullptr,
                                            0, nullptr, nullptr, nullptr)),
              "0x80041008");
}

TEST_F(Connection, TheJournalHidesThePassword) {
    EXPECT_EQ(Code(TryConnect(L"ROOT\\MarloLUM2", 0, L"open sesame")), "0x00000000");
    const auto calls = machine->Calls().All();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(
        Narrow(calls[0].Line()),
        "ConnectServer ROOT\\MarloLUM2(User=null, Password=***, Locale=null, Authority=null) -> 0x00000000");
    EXPECT_TRUE(calls[0].Argument(L"Locale")->value.IsNull());
    EXPECT_EQ(calls[0].Argument(L"password")->value, Value::Text(L"***"));
}

TEST_F(Connection, ACallWithoutABlanketIsDenied) {
    CComPtr<IWbemServices> bare;
    ASSERT_EQ(Locator()->ConnectServer(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), nullptr, nullptr, nullptr, 0,
                                       nullptr, nullptr, &bare),
              S_OK);
    const auto get = [&bare] {
        CComPtr<IWbemClassObject> object;
        const HRESULT result = bare->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr);
        EXPECT_EQ(SUCCEEDED(result), object != nullptr);
        return Code(result);
    };
    EXPECT_EQ(get(), "0x80070005");
    ASSERT_EQ(SetBlanket(bare, RPC_C_AUTHN_LEVEL_CONNECT), S_OK);
    EXPECT_EQ(get(), "0x80070005");
    ASSERT_EQ(SetBlanket(bare, RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IDENTIFY), S_OK);
    EXPECT_EQ(get(), "0x80070005");
    ASSERT_EQ(SetBlanket(bare, RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE), S_OK);
    EXPECT_EQ(get(), "0x00000000");
    ASSERT_EQ(SetBlanket(bare, RPC_C_AUTHN_LEVEL_PKT_PRIVACY, RPC_C_IMP_LEVEL_DELEGATE), S_OK);
    EXPECT_EQ(get(), "0x00000000");
    EXPECT_EQ(machine->Calls().Of(Operation::GetObject).front().result, E_ACCESSDENIED);
}

TEST_F(Connection, EveryServiceCallNeedsTheBlanket) {
    CComPtr<IWbemServices> bare;
    ASSERT_EQ(Locator()->ConnectServer(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), nullptr, nullptr, nullptr, 0,
                                       nullptr, nullptr, &bare),
              S_OK);
    const auto one = Object(kAll);
    CComPtr<IEnumWbemClassObject> answer;
    CComPtr<IWbemServices> opened;
    _bstr_t text(L"Test_All");
    const BSTR name = text.GetBSTR();
    EXPECT_EQ(Code(bare->PutInstance(one, 0, nullptr, nullptr)), "0x80070005");
    EXPECT_EQ(Code(bare->DeleteInstance(name, 0, nullptr, nullptr)), "0x80070005");
    EXPECT_EQ(Code(bare->CreateInstanceEnum(name, 0, nullptr, &answer)), "0x80070005");
    EXPECT_EQ(Code(bare->CreateClassEnum(name, 0, nullptr, &answer)), "0x80070005");
    EXPECT_EQ(Code(bare->ExecQuery(name, name, 0, nullptr, &answer)), "0x80070005");
    EXPECT_EQ(Code(bare->ExecMethod(name, name, 0, nullptr, nullptr, nullptr, nullptr)), "0x80070005");
    EXPECT_EQ(Code(bare->OpenNamespace(name, 0, nullptr, &opened, nullptr)), "0x80070005");
    EXPECT_EQ(Code(bare->PutClass(one, 0, nullptr, nullptr)), "0x80070005");
}

TEST_F(Connection, ABlanketCanBeQueried) {
    CComPtr<IClientSecurity> security;
    ASSERT_EQ(services->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    DWORD service = 0, authorisation = 99, authentication = 0, impersonation = 0, capabilities = 99;
    OLECHAR* principal = nullptr;
    void* identity = nullptr;
    EXPECT_EQ(security->QueryBlanket(services, &service, &authorisation, &principal, &authentication,
                                     &impersonation, &identity, &capabilities),
              S_OK);
    EXPECT_EQ(service, DWORD{RPC_C_AUTHN_WINNT});
    EXPECT_EQ(authorisation, DWORD{RPC_C_AUTHZ_NONE});
    EXPECT_EQ(authentication, DWORD{RPC_C_AUTHN_LEVEL_CALL});
    EXPECT_EQ(impersonation, DWORD{RPC_C_IMP_LEVEL_IMPERSONATE});
    EXPECT_EQ(capabilities, DWORD{EOAC_NONE});
    EXPECT_EQ(security->SetBlanket(nullptr, 0, 0, nullptr, 0, 0, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(security->QueryBlanket(nullptr, &service, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              E_INVALIDARG);
    CComPtr<IUnknown> copied;
    EXPECT_EQ(security->CopyProxy(nullptr, &copied), E_INVALIDARG);
    EXPECT_EQ(security->CopyProxy(services, nullptr), E_INVALIDARG);
}

TEST_F(Connection, AnObjectThatIsNoProxyHasNoBlanketToTell) {
    CComPtr<IClientSecurity> security;
    const auto one = Object(kAll);
    ASSERT_EQ(one->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    DWORD authentication = 99;
    EXPECT_EQ(
        security->QueryBlanket(one, nullptr, nullptr, nullptr, &authentication, nullptr, nullptr, nullptr),
        E_NOINTERFACE);
    EXPECT_EQ(authentication, 99u);
}

TEST_F(Connection, TheFactoryMakesWholeObjectsOnly) {
    CComPtr<IClassFactory> factory;
    ASSERT_EQ(CoGetClassObject(CLSID_WbemLocator, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                               reinterpret_cast<void**>(&factory)),
              S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IWbemLocator, nullptr), E_POINTER);
    CComPtr<IUnknown> made;
    EXPECT_EQ(factory->CreateInstance(services, IID_IUnknown, reinterpret_cast<void**>(&made)),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(made.p, nullptr);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&made)), S_OK);
    EXPECT_NE(made.p, nullptr);
}

TEST_F(Connection, ACopiedProxyHasNoBlanket) {
    CComPtr<IClientSecurity> security;
    ASSERT_EQ(services->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    CComPtr<IUnknown> copied;
    ASSERT_EQ(security->CopyProxy(services, &copied), S_OK);
    CComPtr<IWbemServices> copy;
    ASSERT_EQ(copied->QueryInterface(IID_IWbemServices, reinterpret_cast<void**>(&copy)), S_OK);
    EXPECT_NE(copy.p, services.p);
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(copy->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr)),
              "0x80070005");
    ASSERT_EQ(SetBlanket(copy), S_OK);
    EXPECT_EQ(Code(copy->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr)),
              "0x00000000");
}

TEST_F(Connection, OnlyItsOwnNamespaceOpens) {
    CComPtr<IWbemServices> opened;
    EXPECT_EQ(
        Code(services->OpenNamespace(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(), 0, nullptr, &opened, nullptr)),
        "0x00000000");
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(opened->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr)),
              "0x80070005");
    CComPtr<IWbemServices> other;
    EXPECT_EQ(Code(services->OpenNamespace(_bstr_t(L"Sub").GetBSTR(), 0, nullptr, &other, nullptr)),
              "0x8004100E");
    EXPECT_EQ(other.p, nullptr);
    CComPtr<IWbemCallResult> later;
    EXPECT_EQ(Code(services->OpenNamespace(_bstr_t(L"ROOT\\MarloLUM2").GetBSTR(),
                                           WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, nullptr, &later)),
              "0x00000000");
    EXPECT_EQ(Code(later->GetResultServices(static_cast<LONG>(WBEM_INFINITE), &other)), "0x00000000");
    EXPECT_NE(other.p, nullptr);
}

TEST_F(Connection, WhatIsNotDoneIsRefused) {
    _bstr_t text(L"x");
    const BSTR name = text.GetBSTR();
    CComPtr<IEnumWbemClassObject> answer;
    EXPECT_EQ(Code(services->GetObjectAsync(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->PutClass(nullptr, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->DeleteClass(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->ExecNotificationQuery(name, name, 0, nullptr, &answer)), "0x8004100C");
    EXPECT_EQ(Code(services->CancelAsyncCall(nullptr)), "0x8004100C");
    EXPECT_THAT(Lines(machine->Calls().All()),
                ElementsAre("Unsupported GetObjectAsync -> 0x8004100C", "Unsupported PutClass -> 0x8004100C",
                            "Unsupported DeleteClass -> 0x8004100C",
                            "Unsupported ExecNotificationQuery -> 0x8004100C",
                            "Unsupported CancelAsyncCall -> 0x8004100C"));
}

TEST_F(Connection, NothingIsDoneBehindTheClientsBack) {
    _bstr_t text(kAll);
    const BSTR name = text.GetBSTR();
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    machine->Calls().Clear();
    EXPECT_EQ(Code(services->PutClassAsync(one, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->DeleteClassAsync(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->CreateClassEnumAsync(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->PutInstanceAsync(one, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->DeleteInstanceAsync(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->CreateInstanceEnumAsync(name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->ExecQueryAsync(name, name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->ExecNotificationQueryAsync(name, name, 0, nullptr, nullptr)), "0x8004100C");
    EXPECT_EQ(Code(services->ExecMethodAsync(name, name, 0, nullptr, nullptr, nullptr)), "0x8004100C");
    EXPECT_THAT(
        Lines(machine->Calls().All()),
        ElementsAre(
            "Unsupported PutClassAsync -> 0x8004100C", "Unsupported DeleteClassAsync -> 0x8004100C",
            "Unsupported CreateClassEnumAsync -> 0x8004100C", "Unsupported PutInstanceAsync -> 0x8004100C",
            "Unsupported DeleteInstanceAsync -> 0x8004100C",
            "Unsupported CreateInstanceEnumAsync -> 0x8004100C", "Unsupported ExecQueryAsync -> 0x8004100C",
            "Unsupported ExecNotificationQueryAsync -> 0x8004100C",
            "Unsupported ExecMethodAsync -> 0x8004100C"));
    const auto stored = machine->Store().FindInstance(kAll);
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->Text(L"Caption"), L"First");
}

TEST_F(Connection, ThereIsNoSinkToHandOut) {
    // A value that is no pointer to anything, to see that it is taken back.
    auto* sink = reinterpret_cast<IWbemObjectSink*>(this);
    EXPECT_EQ(Code(services->QueryObjectSink(0, &sink)), "0x8004100C");
    EXPECT_EQ(sink, nullptr);
    EXPECT_THAT(Lines(machine->Calls().All()), ElementsAre("Unsupported QueryObjectSink -> 0x8004100C"));
}

TEST_F(Connection, ClassObjectsRefuseAggregationAndForeignInterfaces) {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, services, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(CoCreateInstance(CLSID_WbemContext, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &object),
              E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
}

TEST_F(Connection, AnObjectKeepsItsIdentity) {
    const auto object = Object(kAll);
    CComPtr<IUnknown> first;
    CComPtr<IClientSecurity> security;
    CComPtr<IUnknown> second;
    ASSERT_EQ(object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&first)), S_OK);
    ASSERT_EQ(object->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)), S_OK);
    ASSERT_EQ(security->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&second)), S_OK);
    EXPECT_EQ(first.p, second.p);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(SetBlanket(object), E_NOINTERFACE);
}

TEST_F(Connection, NothingIsLeftWhenAllIsReleased) {
    const std::weak_ptr<Machine> watched = machine;
    EXPECT_GT(Machine::LiveObjects(), 0);
    services.Release();
    Unregister();
    EXPECT_EQ(Machine::LiveObjects(), 0);
    machine.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(Connection, AConnectionKeepsItsMachineAlive) {
    Unregister();
    machine.reset();
    EXPECT_EQ(Code(GetStatus(kAll)), "0x00000000");
}

} // namespace
