// Walking an enumeration, the queries of a session, and single objects.
#include "Provider/ProviderEnum.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderSession.h"
#include "ProviderTest.h"

namespace {

using ATL::CComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

class ProviderEnumTest : public ProviderTest {
  protected:
    ProviderEnumTest()
        : ProviderTest(std::string(NET_SERVICE_MOF) + R"(
            instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{1}"; Name = "One"; };
            instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{2}"; Name = "Two"; };
            instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{3}"; Name = "Three"; };)") {}
    void SetUp() override { Connect(); }
    /// The names of all that an enumeration yields.
    static std::vector<std::wstring> Names(ProviderEnum& instances) {
        std::vector<std::wstring> names;
        CComPtr<IWbemClassObject> instance;
        while (instances.Next(instance)) {
            _bstr_t name;
            bool isNull = false;
            Access::GetPropertyAsString(instance, L"Name", name, isNull);
            names.emplace_back(static_cast<const wchar_t*>(name));
        }
        EXPECT_FALSE(instance) << "the last object is released";
        return names;
    }
    static constexpr const char* NEXT = "Next Zorel_PhysicalEthernetAdapter -> 0x00000000";
    static constexpr const char* END = "Next Zorel_PhysicalEthernetAdapter -> 0x00000001";
    static constexpr const char* ENUMERATION =
        "CreateInstanceEnum Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0}";
};

TEST_F(ProviderEnumTest, Next_YieldsOneObjectAtATimeUntilTheEnd) {
    const ProviderSession session(quillet);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    EXPECT_EQ(Code(instances.Result()), "0x00000000");
    EXPECT_THAT(Names(instances), ElementsAre(L"One", L"Two", L"Three"));
    EXPECT_TRUE(SUCCEEDED(instances.Result()));
    EXPECT_THAT(Called(), ElementsAre(ENUMERATION, NEXT, NEXT, NEXT, END));
    EXPECT_THAT(Traced(), ElementsAre("dwErrorCode: %l"));
}

TEST_F(ProviderEnumTest, Next_NoEnumerator_IsAtItsEnd) {
    ProviderEnum instances(S_OK);
    EXPECT_THAT(Names(instances), IsEmpty());
    EXPECT_EQ(Code(instances.Result()), "0x00000000");
}

TEST_F(ProviderEnumTest, Next_Fails_EndsAndKeepsTheCode) {
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 2);
    const ProviderSession session(quillet);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    EXPECT_THAT(Names(instances), ElementsAre(L"One"));
    EXPECT_EQ(Code(instances.Result()), Code(WBEM_E_TRANSPORT_FAILURE));
    Calls();
    EXPECT_THAT(Names(instances), IsEmpty());
    EXPECT_THAT(Called(), IsEmpty()) << "an enumeration that broke off is not asked again";
}

TEST_F(ProviderEnumTest, Next_SucceedsWithoutAnObject_IsTheEnd) {
    Spoil(Operation::Next, Effect::NullObject, L"", 2);
    const ProviderSession session(quillet);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    EXPECT_THAT(Names(instances), ElementsAre(L"One"));
    EXPECT_TRUE(SUCCEEDED(instances.Result()));
}

TEST_F(ProviderEnumTest, Next_DataEndsEarly_IsTheEnd) {
    Spoil(Operation::Next, Effect::EndOfData, L"", 3);
    const ProviderSession session(quillet);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    EXPECT_THAT(Names(instances), ElementsAre(L"One", L"Two"));
    EXPECT_TRUE(SUCCEEDED(instances.Result()));
}

TEST_F(ProviderEnumTest, ForEach_HandsOutAllAndEndsWell) {
    const ProviderSession session(quillet);
    Traced();
    int count = 0;
    EXPECT_EQ(Code(session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed")
                       .ForEach(L"broke off",
                                [&](IWbemClassObject* instance) {
                                    count += instance != nullptr ? 1 : 0;
                                    return S_FALSE;
                                })),
              "0x00000000");
    EXPECT_EQ(count, 3);
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(ProviderEnumTest, ForEach_StepFails_IsItsCodeAndAsksForNoMore) {
    const ProviderSession session(quillet);
    Traced();
    EXPECT_EQ(Code(session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed")
                       .ForEach(L"broke off", [](IWbemClassObject*) { return E_ABORT; })),
              Code(E_ABORT));
    EXPECT_THAT(Called(), ElementsAre(ENUMERATION, NEXT));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(ProviderEnumTest, ForEach_BreaksOff_IsTracedAndFails) {
    Fail(Operation::Next, WBEM_E_TRANSPORT_FAILURE, L"", 3);
    const ProviderSession session(quillet);
    Traced();
    int count = 0;
    EXPECT_EQ(Code(session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed")
                       .ForEach(L"broke off",
                                [&](IWbemClassObject*) {
                                    ++count;
                                    return S_OK;
                                })),
              Code(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_EQ(count, 2);
    EXPECT_THAT(Traced(), ElementsAre("broke off"));
}

TEST_F(ProviderEnumTest, ForEach_OfWhatWasRefused_IsThatCodeWithoutALineOfItsOwn) {
    Traced();
    ProviderEnum refused(E_ACCESSDENIED);
    EXPECT_EQ(Code(refused.ForEach(L"broke off", [](IWbemClassObject*) { return S_OK; })),
              Code(E_ACCESSDENIED));
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(ProviderEnumTest, Session_Refusal_ComesBeforeTheConnectionUnlessItIsToWait) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(ProviderSession(quillet, Refusal{true, L"no id"}).Result()), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("no id"));
    EXPECT_EQ(Code(ProviderSession(quillet, Refusal{true, L"no id"}.OnceConnected(), L"missing").Result()),
              "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                      "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))", "missing"));
}

TEST_F(ProviderEnumTest, Enumerate_Refused_TracesTheTextGiven) {
    Fail(Operation::CreateInstanceEnum, WBEM_E_INVALID_CLASS);
    const ProviderSession session(quillet);
    Traced();
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"100% failed");
    EXPECT_EQ(Code(instances.Result()), "0x80041010");
    EXPECT_THAT(Traced(), ElementsAre("100% failed"));
    EXPECT_THAT(Names(instances), IsEmpty());
}

TEST_F(ProviderEnumTest, EnumerateAndQuery_NoEnumerator_AreFailures) {
    Spoil(Operation::CreateInstanceEnum, Effect::NullObject);
    Spoil(Operation::ExecQuery, Effect::NullObject);
    const ProviderSession session(quillet);
    Traced();
    EXPECT_EQ(Code(session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"list").Result()), "0x80041001");
    EXPECT_EQ(Code(session.Query(L"SELECT * FROM Zorel_VLAN", L"query").Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("list -> NULL", "query -> NULL"));
}

TEST_F(ProviderEnumTest, Query_RunsWithTheThreadsContext) {
    const ProviderSession session(quillet);
    ProviderEnum instances =
        session.Query(L"SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE Name = \"Two\"", L"failed");
    EXPECT_EQ(Code(instances.Result()), "0x00000000");
    EXPECT_THAT(Names(instances), ElementsAre(L"Two"));
    EXPECT_EQ(Called().at(0),
              "ExecQuery SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE Name = \"Two\" -> 0x00000000 "
              "{ClientSetId=0}");
}

TEST_F(ProviderEnumTest, Query_Malformed_TracesTheTextGiven) {
    const ProviderSession session(quillet);
    Traced();
    EXPECT_EQ(Code(session.Query(L"SELECT FROM", L"ExecQuery -> it").Result()), "0x80041017");
    EXPECT_THAT(Traced(), ElementsAre("ExecQuery -> it"));
}

TEST_F(ProviderEnumTest, Session_NotConnected_TracesOnceAndSendsNothing) {
    quillet.UninitQuillet();
    Traced();
    const ProviderSession session(quillet, L"own text");
    EXPECT_EQ(Code(session.Result()), "0x80041001");
    EXPECT_EQ(Code(session.Query(L"SELECT * FROM Zorel_VLAN", L"failed").Result()), "0x80041001");
    EXPECT_EQ(Code(session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed").Result()), "0x80041001");
    const ProviderInstance instance(session, L"Zorel_NetService.Name=\"x\"", L"failed");
    EXPECT_EQ(Code(instance.Result()), "0x80041001");
    EXPECT_FALSE(instance.Get());
    EXPECT_THAT(Traced(), ElementsAre("GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))",
                                      "GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))", "own text"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(ProviderEnumTest, Session_OnlyTheContextMissing_FailsAndReleasesTheService) {
    Access::RevokeWbemContext(quillet);
    const ProviderSession session(quillet);
    EXPECT_EQ(Code(session.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))",
                                      "((pIWbemService == NULL) || (pIWbemContext == NULL))"));
}

TEST_F(ProviderEnumTest, Retrieve_SwitchesTheCallsOfThisSessionOnly) {
    const ProviderSession session(quillet);
    session.Retrieve(5);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    const ProviderSession other(quillet);
    ProviderEnum others = other.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, L"failed");
    EXPECT_THAT(Called(),
                ElementsAre("CreateInstanceEnum Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0, "
                            "GET_EXT_CLIENT_REQUEST=true, GET_EXTENSIONS=true, Zorel_PartialData=5}",
                            ENUMERATION));
}

TEST_F(ProviderEnumTest, Instance_IsFetchedByItsPathAndRead) {
    const ProviderSession session(quillet);
    const ProviderInstance instance(session, L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{2}\"", L"failed");
    EXPECT_EQ(Code(instance.Result()), "0x00000000");
    std::wstring name;
    EXPECT_EQ(Code(instance.Read(L"pInstance").String(L_PROP_ETHERNETADAPTER_NAME, name).Result()),
              "0x00000000");
    EXPECT_EQ(name, L"Two");
    EXPECT_THAT(Called(),
                ElementsAre("GetObject Zorel_PhysicalEthernetAdapter.DeviceID=\"{2}\" -> 0x00000000 "
                            "{ClientSetId=0}"));
}

TEST_F(ProviderEnumTest, Instance_Missing_IsAFailedReader) {
    const ProviderSession session(quillet);
    Traced();
    const ProviderInstance instance(session, L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{9}\"",
                                    L"GetObject -> it");
    std::wstring name = L"before";
    EXPECT_EQ(Code(instance.Read(L"pInstance").String(L_PROP_ETHERNETADAPTER_NAME, name).Result()),
              "0x80041002");
    EXPECT_EQ(name, L"before");
    EXPECT_THAT(Traced(), ElementsAre("GetObject -> it"));
}

TEST_F(ProviderEnumTest, Instance_Null_IsAFailedReader) {
    Spoil(Operation::GetObject, Effect::NullObject);
    const ProviderSession session(quillet);
    Traced();
    const ProviderInstance instance(session, L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{2}\"",
                                    L"GetObject -> it");
    EXPECT_EQ(Code(instance.Result()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("GetObject -> it -> NULL"));
}

} // namespace
