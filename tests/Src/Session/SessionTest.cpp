// The session: what connecting sends and traces, what each failing step leaves behind, and how threads and
// copies come by their interfaces.
#include "Session/FakeInterfaceTable.h"
#include "ProviderTest.h"
#include "RegistryScope.h"
#include "Provider/StubInstance.h"

#include "Session/ConfigurationKeys.h"

namespace {

using ATL::CComPtr;
using quillet::test::RegistryScope;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr const char* NO_SERVICE = "GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))";
constexpr const char* NO_CONTEXT = "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))";
constexpr const char* NO_NET_SERVICE = "GetNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))";
constexpr const char* NOTHING_TO_REVOKE_CONTEXT =
    "RevokeWbemContext -> ((0 == m_dwContext) || (m_pGIT == NULL))";
constexpr const char* NOTHING_TO_REVOKE_NET_SERVICE =
    "RevokeNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))";
constexpr const char* CONNECTED =
    R"(ConnectServer \\127.0.0.1\ROOT\MarloLUM2(User=null, Password=null, Locale=null, Authority=null))"
    " -> 0x00000000";

/// The steps of a connection, with what the choice of a locale traces taken out: it depends on the host.
std::vector<std::string> WithoutLocale(std::vector<std::string> trace) {
    std::erase_if(trace, [](const std::string& line) {
        return line.starts_with("UI language: ") || line == "Not a MUI System" || line == "MUI System";
    });
    return trace;
}

class SessionTest : public ProviderTest {
  protected:
    SessionTest() : ProviderTest(NET_SERVICE_MOF) {
        m_registry.RemoveValue(REGISTRY_PROVIDERS, L"Namespace");
        m_registry.RemoveValue(REGISTRY_LUM2, L"LCID");
        m_registry.RemoveValue(REGISTRY_ORBA, L"ForcedLanguage");
    }
    ~SessionTest() override {
        // The table goes with this object, before the one that uses it.
        if (Access::InterfaceTable(quillet) == &table) {
            Access::InterfaceTable(quillet) = nullptr;
            Access::ServiceCookie(quillet) = 0;
        }
    }
    /// Makes the library use `table` instead of COM's own.
    void UseFakeTable() { Access::InterfaceTable(quillet) = &table; }
    /// Whether the interface table knows a cookie.
    bool InTable(DWORD cookie, REFIID iid) {
        CComPtr<IUnknown> found;
        return SUCCEEDED(Access::InterfaceTable(quillet)->GetInterfaceFromGlobal(
            cookie, iid, reinterpret_cast<void**>(&found)));
    }
    void ExpectDisconnected() {
        EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
        EXPECT_EQ(Access::ContextCookie(quillet), 0u);
        EXPECT_EQ(Access::NetServiceCookie(quillet), 0u);
    }

    FakeInterfaceTable table;
    RegistryScope m_registry;
};

// --- construction, copies, destruction ---

TEST_F(SessionTest, DefaultConstruction_IsThisMachineAndNotConnected) {
    EXPECT_EQ(Access::MachineName(quillet), L"127.0.0.1");
    ExpectDisconnected();
    EXPECT_FALSE(Access::InterfaceTable(quillet));
    EXPECT_FALSE(Access::Reserved1(quillet));
    EXPECT_FALSE(Access::Reserved2(quillet));
    EXPECT_EQ(Access::ClientSetId(quillet), 0);
    EXPECT_FALSE(Access::VlanIsModify(quillet));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(SessionTest, ConstructionWithMachine_KeepsTheNameAndContactsNobody) {
    CQuillet other(L"fileserver");
    EXPECT_EQ(Access::MachineName(other), L"fileserver");
    EXPECT_EQ(Access::ServiceCookie(other), 0u);
    EXPECT_FALSE(Access::InterfaceTable(other));
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(SessionTest, Destruction_TracesItsNameAndRevokesNothing) {
    Connect();
    const DWORD service = Access::ServiceCookie(quillet);
    { const CQuillet copy(quillet); }
    EXPECT_THAT(Traced(), ElementsAre("~CQuillet"));
    EXPECT_TRUE(InTable(service, IID_IWbemServices));
}

TEST_F(SessionTest, Copy_TakesEveryMemberAndSharesTheInterfaces) {
    Connect();
    StubInstance first;
    StubInstance second;
    Access::Reserved1(quillet) = &first;
    Access::Reserved2(quillet) = &second;
    Access::ClientSetId(quillet) = 12;
    Access::VlanIsModify(quillet) = true;
    {
        CQuillet copy(quillet);
        EXPECT_EQ(Access::ServiceCookie(copy), Access::ServiceCookie(quillet));
        EXPECT_EQ(Access::ContextCookie(copy), Access::ContextCookie(quillet));
        EXPECT_EQ(Access::NetServiceCookie(copy), Access::NetServiceCookie(quillet));
        EXPECT_EQ(Access::MachineName(copy), Access::MachineName(quillet));
        EXPECT_EQ(Access::InterfaceTable(copy), Access::InterfaceTable(quillet));
        EXPECT_EQ(Access::ClientSetId(copy), 12);
        EXPECT_TRUE(Access::VlanIsModify(copy));
        EXPECT_EQ(first.References(), 3u);
        EXPECT_EQ(second.References(), 3u);
    }
    EXPECT_EQ(first.References(), 2u);
    Access::Reserved1(quillet) = nullptr;
    Access::Reserved2(quillet) = nullptr;
    EXPECT_EQ(first.References(), 1u);
    EXPECT_EQ(second.References(), 1u);
}

TEST_F(SessionTest, Assignment_ReferencesTheNewBeforeItReleasesTheOld) {
    StubInstance kept;
    CQuillet other(L"fileserver");
    Access::Reserved1(other) = &kept;
    quillet = other;
    EXPECT_EQ(kept.References(), 3u);
    EXPECT_EQ(Access::MachineName(quillet), L"fileserver");
    const CQuillet& itself = quillet;
    quillet = itself;
    EXPECT_EQ(kept.References(), 3u);
    EXPECT_EQ(Access::MachineName(quillet), L"fileserver");
    Access::Reserved1(other) = nullptr;
    quillet = other;
    EXPECT_EQ(kept.References(), 1u);
}

TEST_F(SessionTest, UninitQuillet_OnOneOfTwoCopies_DisconnectsTheOther) {
    Connect();
    CQuillet copy(quillet);
    EXPECT_TRUE(Access::GetWbemService(copy));
    EXPECT_TRUE(Access::GetContext(copy));
    EXPECT_TRUE(Access::GetNetService(copy));
    quillet.UninitQuillet();
    Traced();

    EXPECT_FALSE(Access::GetWbemService(copy));
    EXPECT_FALSE(Access::GetContext(copy));
    EXPECT_FALSE(Access::GetNetService(copy));
    EXPECT_THAT(Traced(), IsEmpty()) << "a cookie that is there but dead is no reason for a line";
    EXPECT_EQ(Code(copy.UninitQuillet()), "0x00000000");
    EXPECT_EQ(Access::ServiceCookie(copy), 0u);
}

// --- connecting ---

TEST_F(SessionTest, InitQuillet_NamespaceValueAbsent_ConnectsToTheProvidersOwn) {
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_THAT(Called(),
                ElementsAre(CONNECTED, "CreateInstanceEnum Zorel_NetService -> 0x00000000",
                            "Next Zorel_NetService -> 0x00000000", "Next Zorel_NetService -> 0x00000001"));
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "Exit CreateNetServices",
                            "Create Context - Exit InitQuillet", "Exit InitQuillet"));
    EXPECT_NE(Access::ServiceCookie(quillet), 0u);
    EXPECT_NE(Access::ContextCookie(quillet), 0u);
    EXPECT_NE(Access::NetServiceCookie(quillet), 0u);
}

TEST_F(SessionTest, InitQuillet_NamespaceValueCustom_ConnectsThere) {
    m_registry.SetString(REGISTRY_PROVIDERS, L"Namespace", L"Custom");
    MachineOptions options = Options();
    options.namespaceName = L"ROOT\\Custom";
    UseText(NET_SERVICE_MOF, options);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_THAT(Called(),
                Contains(R"(ConnectServer \\127.0.0.1\ROOT\Custom(User=null, Password=null, Locale=null,)"
                         " Authority=null) -> 0x00000000"));
}

TEST_F(SessionTest, GetNamespace_ValueOfAnotherType_IsTheProvidersOwn) {
    m_registry.SetDword(REGISTRY_PROVIDERS, L"Namespace", 5);
    EXPECT_EQ(Access::GetNamespace(quillet), L"\\ROOT\\MarloLUM2");
}

TEST_F(SessionTest, GetNamespace_LongAndNonAsciiValue_IsTakenWhole) {
    const std::wstring name = std::wstring(400, L'n') + L"\u00dc";
    m_registry.SetString(REGISTRY_PROVIDERS, L"Namespace", name);
    EXPECT_EQ(Access::GetNamespace(quillet), L"\\ROOT\\" + name);
}

TEST_F(SessionTest, InitQuillet_NamedMachine_IsPartOfThePath) {
    quillet = CQuillet(L"fileserver.example");
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_THAT(
        Called(),
        Contains(R"(ConnectServer \\fileserver.example\ROOT\MarloLUM2(User=null, Password=null, Locale=null,)"
                 " Authority=null) -> 0x00000000"));
}

TEST_F(SessionTest, InitQuillet_SetsTheBlanketBeforeTheFirstCall) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    constexpr const char* BLANKET =
        "SetBlanket IWbemServices(AuthenticationLevel=3, ImpersonationLevel=3) -> 0x00000000";
    EXPECT_THAT(Called(),
                ElementsAre(CONNECTED, BLANKET, BLANKET, "CreateInstanceEnum Zorel_NetService -> 0x00000000",
                            "Next Zorel_NetService -> 0x00000000", "Next Zorel_NetService -> 0x00000001",
                            "CreateContext IWbemContext -> 0x00000000"));
}

TEST_F(SessionTest, InitQuillet_NoNetServiceInstance_StillSucceeds) {
    UseText("");
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_EQ(Access::NetServiceCookie(quillet), 0u);
    Traced();
    EXPECT_FALSE(Access::GetNetService(quillet));
    EXPECT_THAT(Traced(), ElementsAre(NO_NET_SERVICE));
    EXPECT_TRUE(Access::GetWbemService(quillet));
}

TEST_F(SessionTest, InitQuillet_SeveralNetServiceInstances_KeepsTheLast) {
    UseText(R"(instance of Zorel_NetService { Name = "First"; };
               instance of Zorel_NetService { Name = "Second"; };)");
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_THAT(Called(),
                ElementsAre(CONNECTED, "CreateInstanceEnum Zorel_NetService -> 0x00000000",
                            "Next Zorel_NetService -> 0x00000000", "Next Zorel_NetService -> 0x00000000",
                            "Next Zorel_NetService -> 0x00000001"));
    const CComPtr<IWbemClassObject> netService = Access::GetNetService(quillet);
    ASSERT_TRUE(netService);
    _bstr_t name;
    bool isNull = true;
    EXPECT_EQ(Code(Access::GetPropertyAsString(netService, L"Name", name, isNull)), "0x00000000");
    EXPECT_STREQ(static_cast<const wchar_t*>(name), L"Second");
}

TEST_F(SessionTest, InitQuillet_AfterUninitQuillet_ConnectsAgain) {
    Connect();
    quillet.UninitQuillet();
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_TRUE(Access::GetWbemService(quillet));
}

TEST_F(SessionTest, InitQuillet_Twice_LeavesNothingOfTheFirstConnection) {
    Connect();
    const DWORD service = Access::ServiceCookie(quillet);
    const DWORD context = Access::ContextCookie(quillet);
    const DWORD netService = Access::NetServiceCookie(quillet);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "Exit CreateNetServices",
                            "Create Context - Exit InitQuillet", "Exit InitQuillet"));
    EXPECT_FALSE(InTable(service, IID_IWbemServices));
    EXPECT_FALSE(InTable(context, IID_IWbemContext));
    EXPECT_FALSE(InTable(netService, IID_IWbemClassObject));
    EXPECT_TRUE(Access::GetWbemService(quillet));
    EXPECT_TRUE(Access::GetContext(quillet));
    EXPECT_TRUE(Access::GetNetService(quillet));
}

TEST_F(SessionTest, InitQuillet_SecondConnectionFails_LeavesTheObjectDisconnected) {
    Connect();
    const DWORD service = Access::ServiceCookie(quillet);
    Fail(Operation::ConnectServer, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041003");
    EXPECT_FALSE(InTable(service, IID_IWbemServices));
    ExpectDisconnected();
}

// --- every step that can fail ---

TEST_F(SessionTest, InitQuillet_LocatorCannotBeCreated_ReturnsThatCode) {
    Use(nullptr);
    const FailingClass locator(CLSID_WbemLocator, E_ACCESSDENIED);
    ASSERT_EQ(Code(locator.Registered()), "0x00000000");
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80070005");
    EXPECT_THAT(Traced(), ElementsAre("Enter InitQuillet", "Failed to create IWbemLocator object."));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ConnectionRefused_ReturnsThatCode) {
    Fail(Operation::ConnectServer, WBEM_E_INVALID_NAMESPACE);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x8004100E");
    EXPECT_THAT(WithoutLocale(Traced()), ElementsAre("Enter InitQuillet", "Could not connect to namespace."));
    EXPECT_EQ(Called().size(), 1u);
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ConnectionWithoutService_Fails) {
    Spoil(Operation::ConnectServer, Effect::NullObject);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041001");
    EXPECT_THAT(WithoutLocale(Traced()), ElementsAre("Enter InitQuillet", "Could not set proxy blanket."));
    EXPECT_THAT(Called(), ElementsAre(CONNECTED));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_BlanketRefused_ReturnsThatCode) {
    Fail(Operation::SetBlanket, E_ACCESSDENIED);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80070005");
    EXPECT_THAT(WithoutLocale(Traced()), ElementsAre("Enter InitQuillet", "Could not set proxy blanket."));
    EXPECT_THAT(Called(), ElementsAre(CONNECTED));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_BlanketRefusedOnTheThreadsProxy_FindsNoService) {
    Fail(Operation::SetBlanket, E_ACCESSDENIED, L"", 2);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041001");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "Could not set proxy blanket.",
                            "pIWbemService == NULL", "Exit CreateNetServices",
                            "Unable to create net service"));
    EXPECT_THAT(Called(), ElementsAre(CONNECTED));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ServiceCannotBeRegistered_FindsNoService) {
    table.registerResult = E_NOINTERFACE;
    UseFakeTable();
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041001");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", NO_SERVICE,
                            "pIWbemService == NULL", "Exit CreateNetServices", NO_SERVICE,
                            "Unable to create net service"));
    EXPECT_THAT(Called(), ElementsAre(CONNECTED));
    ASSERT_EQ(table.registeredAs.size(), 1u);
    EXPECT_TRUE(IsEqualGUID(table.registeredAs[0], IID_IWbemServices));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ServiceCannotBeRetrieved_RevokesIt) {
    UseFakeTable();
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041001");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "pIWbemService == NULL",
                            "Exit CreateNetServices", "Unable to create net service"));
    EXPECT_THAT(table.revoked, ElementsAre(0x700u));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_NetServicesCannotBeListed_ReturnsThatCode) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_INVALID_CLASS);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041010");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices",
                            "pIWbemService->CreateInstanceEnum", "Exit CreateNetServices",
                            "Unable to create net service"));
    EXPECT_THAT(Called(), ElementsAre(CONNECTED, "CreateInstanceEnum Zorel_NetService -> 0x80041010"));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ListOfNetServicesMissing_ConnectsWithoutOne) {
    Spoil(Operation::CreateInstanceEnum, Effect::NullObject);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_EQ(Access::NetServiceCookie(quillet), 0u);
    EXPECT_NE(Access::ServiceCookie(quillet), 0u);
}

TEST_F(SessionTest, InitQuillet_ListOfNetServicesBreaksOff_CountsAsItsEnd) {
    UseText(R"(instance of Zorel_NetService { Name = "First"; };
               instance of Zorel_NetService { Name = "Second"; };)");
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_TRUE(Access::GetNetService(quillet));
}

TEST_F(SessionTest, InitQuillet_NetServiceIsNull_ConnectsWithoutOne) {
    Spoil(Operation::Next, Effect::NullObject);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_EQ(Access::NetServiceCookie(quillet), 0u);
    EXPECT_THAT(Called(), ElementsAre(CONNECTED, "CreateInstanceEnum Zorel_NetService -> 0x00000000",
                                      "Next Zorel_NetService -> 0x00000000"));
}

TEST_F(SessionTest, InitQuillet_ContextCannotBeCreated_RevokesServiceAndNetService) {
    Fail(Operation::CreateContext, E_OUTOFMEMORY);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x8007000E");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "Exit CreateNetServices"));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ContextCannotBeCreatedAndNoNetService_TracesTheEmptyRevocation) {
    UseText("");
    Fail(Operation::CreateContext, E_OUTOFMEMORY);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x8007000E");
    EXPECT_THAT(WithoutLocale(Traced()),
                ElementsAre("Enter InitQuillet", "Enter CreateNetServices", "Exit CreateNetServices",
                            NOTHING_TO_REVOKE_NET_SERVICE));
    ExpectDisconnected();
}

TEST_F(SessionTest, InitQuillet_ContextIsNull_ConnectsButOperationsFindNone) {
    Spoil(Operation::CreateContext, Effect::NullObject);
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    EXPECT_EQ(Access::ContextCookie(quillet), 0u);
    Traced();
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Enter CQuillet::BeginApply", NO_CONTEXT,
                                      "((pIWbemService == NULL) || (pIWbemContext == NULL))",
                                      "Exit CQuillet::BeginApply"));
}

// --- the calling thread's interfaces ---

TEST_F(SessionTest, GetWbemService_EachRetrieval_IsAProxyOfItsOwnWithTheBlanketSet) {
    Connect();
    RecordLocalCalls();
    const CComPtr<IWbemServices> first = Access::GetWbemService(quillet);
    const CComPtr<IWbemServices> second = Access::GetWbemService(quillet);
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(Called().size(), 2u) << "one SetBlanket for each";
    for (IWbemServices* service : {first.p, second.p}) {
        DWORD authentication = 0;
        DWORD authorisation = 99;
        DWORD level = 0;
        DWORD impersonation = 0;
        DWORD capabilities = 99;
        EXPECT_EQ(Code(CoQueryProxyBlanket(service, &authentication, &authorisation, nullptr, &level,
                                           &impersonation, nullptr, &capabilities)),
                  "0x00000000");
        EXPECT_EQ(authentication, 10u);
        EXPECT_EQ(authorisation, 0u);
        EXPECT_EQ(level, 3u);
        EXPECT_EQ(impersonation, 3u);
        EXPECT_EQ(capabilities, 0u);
    }
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(SessionTest, GetWbemService_BlanketRefused_IsNull) {
    Connect();
    Fail(Operation::SetBlanket, E_ACCESSDENIED);
    EXPECT_FALSE(Access::GetWbemService(quillet));
    EXPECT_THAT(Traced(), ElementsAre("Could not set proxy blanket."));
    EXPECT_TRUE(Access::GetWbemService(quillet)) << "the next retrieval is not affected";
}

TEST_F(SessionTest, Getters_NotConnected_TraceAndYieldNull) {
    EXPECT_FALSE(Access::GetWbemService(quillet));
    EXPECT_FALSE(Access::GetContext(quillet));
    EXPECT_FALSE(Access::GetNetService(quillet));
    EXPECT_THAT(Traced(), ElementsAre(NO_SERVICE, NO_CONTEXT, NO_NET_SERVICE));
}

TEST_F(SessionTest, Getters_TableRefuses_YieldNullWithoutALine) {
    UseFakeTable();
    Access::ServiceCookie(quillet) = 5;
    Access::ContextCookie(quillet) = 6;
    Access::NetServiceCookie(quillet) = 7;
    EXPECT_FALSE(Access::GetWbemService(quillet));
    EXPECT_FALSE(Access::GetContext(quillet));
    EXPECT_FALSE(Access::GetNetService(quillet));
    EXPECT_THAT(Traced(), IsEmpty());
    ASSERT_EQ(table.askedAs.size(), 3u);
    EXPECT_TRUE(IsEqualGUID(table.askedAs[0], IID_IWbemServices));
    EXPECT_TRUE(IsEqualGUID(table.askedAs[1], IID_IWbemContext));
    EXPECT_TRUE(IsEqualGUID(table.askedAs[2], IID_IWbemClassObject));
}

TEST_F(SessionTest, Getters_TableSucceedsWithoutAnInterface_YieldNull) {
    table.getResult = S_OK;
    UseFakeTable();
    Access::ServiceCookie(quillet) = 5;
    Access::ContextCookie(quillet) = 6;
    Access::NetServiceCookie(quillet) = 7;
    EXPECT_FALSE(Access::GetWbemService(quillet));
    EXPECT_FALSE(Access::GetContext(quillet));
    EXPECT_FALSE(Access::GetNetService(quillet));
}

TEST_F(SessionTest, GetContext_CarriesTheClientSet) {
    Connect();
    Access::ClientSetId(quillet) = 4711;
    const CComPtr<IWbemContext> context = Access::GetContext(quillet);
    ASSERT_TRUE(context);
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l"));
    _variant_t value;
    EXPECT_EQ(Code(context->GetValue(L"ClientSetId", 0, &value)), "0x00000000");
    EXPECT_EQ(V_VT(&value), VT_I4);
    EXPECT_EQ(V_I4(&value), 4711);
}

TEST_F(SessionTest, GetContext_ValueCannotBeSet_IsHandedOutAllTheSame) {
    Connect();
    Fail(Operation::SetContextValue, E_OUTOFMEMORY);
    EXPECT_TRUE(Access::GetContext(quillet));
}

TEST_F(SessionTest, GetContext_OfOneCaller_IsNotSeenByAnother) {
    Connect();
    const CComPtr<IWbemContext> mine = Access::GetContext(quillet);
    Access::ChangeContext(mine, 1);
    const CComPtr<IWbemContext> other = Access::GetContext(quillet);
    _variant_t value;
    EXPECT_EQ(Code(mine->GetValue(L"Zorel_PartialData", 0, &value)), "0x00000000");
    EXPECT_TRUE(FAILED(other->GetValue(L"Zorel_PartialData", 0, &value)));
}

// --- registering and revoking ---

TEST_F(SessionTest, Marshal_TableRefuses_ReturnsItsCodeAndKeepsTheCookie) {
    table.registerResult = E_NOINTERFACE;
    UseFakeTable();
    StubInstance netService;
    EXPECT_EQ(Code(Access::MarshalNetService(quillet, &netService)), "0x80004002");
    EXPECT_EQ(Access::NetServiceCookie(quillet), 0u);
    EXPECT_TRUE(IsEqualGUID(table.registeredAs.at(0), IID_IWbemClassObject));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(SessionTest, Marshal_NullInterface_IsTheTablesError) {
    EXPECT_EQ(Code(Access::MarshalWbemService(quillet, nullptr)), "0x80070057");
    EXPECT_EQ(Code(Access::MarshalWbemContext(quillet, nullptr)), "0x80070057");
    EXPECT_EQ(Code(Access::MarshalNetService(quillet, nullptr)), "0x80070057");
    EXPECT_TRUE(Access::InterfaceTable(quillet)) << "the table is made when it is first needed";
    ExpectDisconnected();
}

TEST_F(SessionTest, Revoke_TableRefuses_ReturnsItsCodeAndForgetsTheCookie) {
    table.revokeResult = E_INVALIDARG;
    UseFakeTable();
    Access::ServiceCookie(quillet) = 5;
    Access::ContextCookie(quillet) = 6;
    Access::NetServiceCookie(quillet) = 7;
    EXPECT_EQ(Code(Access::RevokeWbemService(quillet)), "0x80070057");
    EXPECT_EQ(Code(Access::RevokeWbemContext(quillet)), "0x80070057");
    EXPECT_EQ(Code(Access::RevokeNetService(quillet)), "0x80070057");
    EXPECT_THAT(table.revoked, ElementsAre(5u, 6u, 7u));
    EXPECT_THAT(Traced(), IsEmpty());
    ExpectDisconnected();
}

TEST_F(SessionTest, Revoke_NothingRegistered_TracesAndFails) {
    EXPECT_EQ(Code(Access::RevokeWbemService(quillet)), "0x80004005");
    EXPECT_EQ(Code(Access::RevokeWbemContext(quillet)), "0x80004005");
    EXPECT_EQ(Code(Access::RevokeNetService(quillet)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre(NO_SERVICE, NOTHING_TO_REVOKE_CONTEXT, NOTHING_TO_REVOKE_NET_SERVICE));
}

TEST_F(SessionTest, Revoke_CookieWithoutTable_TracesAndFails) {
    Access::ContextCookie(quillet) = 6;
    EXPECT_EQ(Code(Access::RevokeWbemContext(quillet)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre(NOTHING_TO_REVOKE_CONTEXT));
}

TEST_F(SessionTest, UninitQuillet_Connected_RevokesAllThree) {
    Connect();
    const DWORD service = Access::ServiceCookie(quillet);
    const DWORD context = Access::ContextCookie(quillet);
    const DWORD netService = Access::NetServiceCookie(quillet);
    EXPECT_EQ(Code(quillet.UninitQuillet()), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Enter UninitQuillet", "Exit UninitQuillet"));
    EXPECT_FALSE(InTable(service, IID_IWbemServices));
    EXPECT_FALSE(InTable(context, IID_IWbemContext));
    EXPECT_FALSE(InTable(netService, IID_IWbemClassObject));
    EXPECT_THAT(Called(), IsEmpty());
    ExpectDisconnected();
}

TEST_F(SessionTest, UninitQuillet_RevokesNetServiceThenContextThenService) {
    UseFakeTable();
    Access::ServiceCookie(quillet) = 5;
    Access::ContextCookie(quillet) = 6;
    Access::NetServiceCookie(quillet) = 7;
    EXPECT_EQ(Code(quillet.UninitQuillet()), "0x00000000");
    EXPECT_THAT(table.revoked, ElementsAre(7u, 6u, 5u));
}

TEST_F(SessionTest, UninitQuillet_NeverConnected_TracesThreeTextsAndSucceeds) {
    EXPECT_EQ(Code(quillet.UninitQuillet()), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Enter UninitQuillet", NOTHING_TO_REVOKE_NET_SERVICE,
                                      NOTHING_TO_REVOKE_CONTEXT, NO_SERVICE, "Exit UninitQuillet"));
}

TEST_F(SessionTest, Operations_AfterUninitQuillet_SendNothing) {
    Connect();
    quillet.UninitQuillet();
    Traced();
    CAdapters adapters;
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateAdapters", NO_SERVICE, NO_CONTEXT,
                                      "((pIWbemService == NULL) || (pIWbemContext == NULL))",
                                      "Exiting CQuillet::EnumerateAdapters"));
    EXPECT_THAT(Called(), IsEmpty());
}

// --- paths on this computer ---

TEST_F(SessionTest, AddNameSpace_MakesAFullPathOnThisComputer) {
    wchar_t computer[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(computer, &length));
    EXPECT_EQ(Access::AddNameSpace(quillet, L"Zorel_VLAN.Name=\"x\""),
              L"\\\\" + std::wstring(computer) + L"\\ROOT\\MarloLUM2:Zorel_VLAN.Name=\"x\"");
    EXPECT_THAT(Traced(), IsEmpty());
}

} // namespace
