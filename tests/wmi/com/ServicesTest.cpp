// IWbemServices: reading, writing and querying, and the code of each refusal.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

constexpr LONG kServicesForever = static_cast<LONG>(WBEM_INFINITE);
constexpr LONG kLater = WBEM_FLAG_RETURN_IMMEDIATELY;
constexpr LONG kLaterAmended = WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_USE_AMENDED_QUALIFIERS;

class Services : public ComTest {
  protected:
    std::string Write(IWbemClassObject* object, LONG flags = 0) {
        return Code(services->PutInstance(object, flags, nullptr, nullptr));
    }
    std::string Remove(const wchar_t* path) {
        return Code(services->DeleteInstance(_bstr_t(path).GetBSTR(), 0, nullptr, nullptr));
    }
    CComPtr<IWbemClassObject> Fresh(LONG number) {
        CComPtr<IWbemClassObject> fresh;
        EXPECT_EQ(Object(L"Test_Lone")->SpawnInstance(0, &fresh), S_OK);
        EXPECT_EQ(Put(fresh, L"Number", I4(number)), S_OK);
        return fresh;
    }
    std::string Status(IWbemCallResult* result) {
        LONG status = 99;
        EXPECT_EQ(Code(result->GetCallStatus(kServicesForever, &status)), "0x00000000");
        return Code(status);
    }
};

TEST_F(Services, GetsObjectsByAnyFormOfTheirPath) {
    for (const auto* path : {L"Test_All", L"test_all.name='one'", L"Test_All=\"one\"",
                             L"\\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\"",
                             L"\\\\.\\root\\marlolum2:Test_All.Name=\"one\"", L"Test_Lone.Number=1"}) {
        EXPECT_EQ(Code(GetStatus(path)), "0x00000000") << Narrow(path);
    }
}

TEST_F(Services, RefusesObjectsWithTheRightCode) {
    EXPECT_EQ(Code(GetStatus(L"No_Such_Class")), "0x80041002");
    EXPECT_EQ(Code(GetStatus(L"No_Such_Class.Name=\"one\"")), "0x80041010");
    EXPECT_EQ(Code(GetStatus(L"Test_All.Name=\"three\"")), "0x80041002");
    EXPECT_EQ(Code(GetStatus(L"\\\\ELSEWHERE\\ROOT\\MarloLUM2:Test_All.Name=\"one\"")), "0x80041002");
    EXPECT_EQ(Code(GetStatus(L"Test_All.Name=\"one")), "0x8004103A");
    EXPECT_EQ(Code(GetStatus(L"...")), "0x8004103A");
    EXPECT_EQ(Code(GetStatus(L"\\\\TESTHOST\\ROOT\\cimv2:Test_All")), "0x8004100E");
    EXPECT_EQ(Code(GetStatus(L"")), "0x8004100C");
    EXPECT_EQ(Code(GetStatus(L"Test_All", 0x1)), "0x80041008");
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(services->GetObject(nullptr, 0, nullptr, &object, nullptr)), "0x80041008");
    EXPECT_EQ(Code(services->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, nullptr, nullptr)),
              "0x80041008");
    EXPECT_EQ(Code(GetStatus(L"Test_All", kLater)), "0x80041008");
}

TEST_F(Services, GetsAnObjectLater) {
    CComPtr<IWbemClassObject> object;
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->GetObject(_bstr_t(kAll).GetBSTR(), kLater, nullptr, &object, &result)),
              "0x00000000");
    EXPECT_EQ(object.p, nullptr);
    EXPECT_EQ(Status(result), "0x00000000");
    ASSERT_EQ(Code(result->GetResultObject(kServicesForever, &object)), "0x00000000");
    EXPECT_EQ(Get(object, L"Name"), _variant_t(L"one"));
    CComPtr<IWbemServices> other;
    EXPECT_EQ(Code(result->GetResultServices(kServicesForever, &other)), "0x80041016");
    BSTR text = nullptr;
    EXPECT_EQ(Code(result->GetResultString(kServicesForever, &text)), "0x80041016");
    EXPECT_EQ(SetBlanket(result), S_OK);
}

TEST_F(Services, AFailureToGetAnObjectLaterIsInItsResult) {
    CComPtr<IWbemClassObject> object;
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(
        Code(services->GetObject(_bstr_t(L"Test_All=\"none\"").GetBSTR(), kLater, nullptr, nullptr, &result)),
        "0x00000000");
    EXPECT_EQ(Status(result), "0x80041002");
    EXPECT_EQ(Code(result->GetResultObject(kServicesForever, &object)), "0x80041002");
    CComPtr<IWbemServices> other;
    EXPECT_EQ(Code(result->GetResultServices(kServicesForever, &other)), "0x80041002");
    BSTR text = nullptr;
    EXPECT_EQ(Code(result->GetResultString(kServicesForever, &text)), "0x80041002");
}

TEST_F(Services, ASynchronousCallMayHaveAResultToo) {
    CComPtr<IWbemClassObject> object;
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->GetObject(_bstr_t(kAll).GetBSTR(), 0, nullptr, &object, &result)), "0x00000000");
    EXPECT_NE(object.p, nullptr);
    EXPECT_EQ(Status(result), "0x00000000");
    result.Release();
    EXPECT_EQ(Code(services->GetObject(_bstr_t(L"None").GetBSTR(), 0, nullptr, nullptr, &result)),
              "0x80041002");
    EXPECT_EQ(result.p, nullptr);
}

TEST_F(Services, ACallResultChecksItsArguments) {
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(services->GetObject(_bstr_t(kAll).GetBSTR(), kLater, nullptr, nullptr, &result), S_OK);
    LONG status = 0;
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(result->GetCallStatus(kServicesForever, nullptr)), "0x80041008");
    EXPECT_EQ(Code(result->GetCallStatus(-2, &status)), "0x80041008");
    EXPECT_EQ(Code(result->GetResultObject(kServicesForever, nullptr)), "0x80041008");
    EXPECT_EQ(Code(result->GetResultObject(-2, &object)), "0x80041008");
    EXPECT_EQ(Code(result->GetResultString(kServicesForever, nullptr)), "0x80041008");
    EXPECT_EQ(Code(result->GetResultServices(kServicesForever, nullptr)), "0x80041008");
}

TEST_F(Services, AWrittenInstanceStaysWritten) {
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    EXPECT_EQ(Write(one), "0x00000000");
    EXPECT_EQ(Get(Object(kAll), L"Caption"), _variant_t(L"changed"));
    EXPECT_EQ(machine->Store().FindInstance(kAll)->Text(L"Password"), L"hush");
}

TEST_F(Services, InstancesAreCreatedOrUpdatedAsTheFlagsSay) {
    EXPECT_EQ(Write(Fresh(5), WBEM_FLAG_UPDATE_ONLY), "0x80041002");
    EXPECT_EQ(Write(Fresh(5), WBEM_FLAG_CREATE_ONLY), "0x00000000");
    EXPECT_EQ(Write(Fresh(5), WBEM_FLAG_CREATE_ONLY), "0x80041019");
    EXPECT_EQ(Write(Fresh(5), WBEM_FLAG_UPDATE_ONLY), "0x00000000");
    EXPECT_EQ(Write(Fresh(6)), "0x00000000");
    EXPECT_EQ(Code(GetStatus(L"Test_Lone=6")), "0x00000000");
    EXPECT_EQ(Write(Fresh(7), WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY), "0x80041008");
    EXPECT_EQ(Write(Fresh(7), 0x4000), "0x80041008");
    EXPECT_EQ(Write(nullptr), "0x80041008");
}

TEST_F(Services, WhatIsNoInstanceOfThisMachineIsNotWritten) {
    EXPECT_EQ(Write(Object(L"Test_All")), "0x8004100F");
    EXPECT_EQ(Write(InParameters(L"Test_All", L"Run")), "0x8004100F");
    CComPtr<IWbemClassObject> keyless;
    ASSERT_EQ(Object(L"Test_Lone")->SpawnInstance(0, &keyless), S_OK);
    EXPECT_EQ(Write(keyless), "0x8004100F");
    CComPtr<IWbemClassObject> abstract;
    ASSERT_EQ(Object(L"Test_Base")->SpawnInstance(0, &abstract), S_OK);
    ASSERT_EQ(Put(abstract, L"Name", L"x"), S_OK);
    EXPECT_EQ(Write(abstract), "0x80041016");
    const auto foreign = Fresh(9);
    Use("");
    Connect();
    EXPECT_EQ(Write(foreign), "0x8004100F");
}

TEST_F(Services, AnInstanceIsWrittenLater) {
    const auto one = Object(kAll);
    ASSERT_EQ(Put(one, L"Caption", L"changed"), S_OK);
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->PutInstance(one, kLaterAmended, nullptr, &result)), "0x00000000");
    EXPECT_EQ(Status(result), "0x00000000");
    BSTR path = nullptr;
    ASSERT_EQ(Code(result->GetResultString(kServicesForever, &path)), "0x00000000");
    EXPECT_STREQ(path, L"\\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\"");
    SysFreeString(path);
    CComPtr<IWbemClassObject> object;
    EXPECT_EQ(Code(result->GetResultObject(kServicesForever, &object)), "0x80041016");
    result.Release();
    ASSERT_EQ(Code(services->PutInstance(Fresh(5), kLaterAmended | WBEM_FLAG_UPDATE_ONLY, nullptr, &result)),
              "0x00000000");
    EXPECT_EQ(Status(result), "0x80041002");
    EXPECT_EQ(Write(Fresh(5), kLaterAmended | WBEM_FLAG_UPDATE_ONLY), "0x80041002");
}

TEST_F(Services, InstancesAreDeleted) {
    EXPECT_EQ(Remove(L"Test_Lone.Number=1"), "0x00000000");
    EXPECT_EQ(Remove(L"Test_Lone.Number=1"), "0x80041002");
    EXPECT_EQ(Remove(L"No_Such_Class=1"), "0x80041010");
    EXPECT_EQ(Remove(L"Test_Lone"), "0x8004103A");
    EXPECT_EQ(Remove(L"Test_Lone.Number="), "0x8004103A");
    EXPECT_EQ(Code(services->DeleteInstance(nullptr, 0, nullptr, nullptr)), "0x80041008");
    CComPtr<IWbemCallResult> result;
    EXPECT_EQ(
        Code(services->DeleteInstance(_bstr_t(L"Test_All=\"two\"").GetBSTR(), kLater, nullptr, &result)),
        "0x00000000");
    EXPECT_EQ(Status(result), "0x00000000");
    EXPECT_EQ(Code(GetStatus(L"Test_All=\"two\"")), "0x80041002");
}

TEST_F(Services, EnumerationsAreRefusedWithTheRightCode) {
    CComPtr<IEnumWbemClassObject> answer;
    EXPECT_EQ(Code(services->CreateInstanceEnum(_bstr_t(L"None").GetBSTR(), 0, nullptr, &answer)),
              "0x80041010");
    EXPECT_EQ(Code(services->CreateInstanceEnum(nullptr, 0, nullptr, &answer)), "0x80041008");
    EXPECT_EQ(Code(services->CreateInstanceEnum(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, nullptr)),
              "0x80041008");
    EXPECT_EQ(Code(services->CreateInstanceEnum(_bstr_t(L"Test_All").GetBSTR(), 0x4000, nullptr, &answer)),
              "0x80041008");
    EXPECT_EQ(answer.p, nullptr);
}

TEST_F(Services, QueriesAreAnswered) {
    std::vector<std::wstring> names;
    EXPECT_EQ(Code(Query(L"SELECT * FROM Test_Base WHERE Caption = 'first'", &names)), "0x00000000");
    EXPECT_THAT(names, ElementsAre(L"Test_All.Name=\"one\""));
    names.clear();
    EXPECT_EQ(Code(Query(L"ASSOCIATORS OF {Test_All.Name=\"one\"} WHERE ResultClass = Test_Lone", &names)),
              "0x00000000");
    EXPECT_THAT(names, ElementsAre(L"Test_Lone.Number=1"));
    names.clear();
    EXPECT_EQ(Code(Query(L"ASSOCIATORS OF {Test_All.Name=\"one\"} WHERE ClassDefsOnly", &names)),
              "0x00000000");
    EXPECT_THAT(names, ElementsAre(L"Test_Lone"));
    names.clear();
    EXPECT_EQ(Code(Query(L"REFERENCES OF {Test_Lone=1} WHERE ResultClass = Test_Link", &names)),
              "0x00000000");
    ASSERT_EQ(names.size(), 1u);
    EXPECT_THAT(Narrow(names[0]), testing::StartsWith("Test_Link."));
}

TEST_F(Services, ASelectedListLeavesTheRestOut) {
    CComPtr<IEnumWbemClassObject> answer;
    ASSERT_EQ(services->ExecQuery(_bstr_t(L"wql").GetBSTR(),
                                  _bstr_t(L"SELECT U8, Caption FROM Test_All WHERE Name = 'one'").GetBSTR(),
                                  0, nullptr, &answer),
              S_OK);
    CComPtr<IWbemClassObject> part;
    ULONG returned = 0;
    ASSERT_EQ(answer->Next(kServicesForever, 1, &part, &returned), S_OK);
    EXPECT_EQ(Get(part, L"Caption"), _variant_t(L"First"));
    EXPECT_EQ(Code(GetCode(part, L"S16")), "0x80041002");
    EXPECT_EQ(Get(part, L"__PROPERTY_COUNT"), I4(2));
    const auto path = Get(part, L"__PATH");
    EXPECT_EQ(V_VT(&path), VT_NULL);
    EXPECT_EQ(Write(part), "0x8004100F");
    std::vector<std::wstring> names;
    EXPECT_EQ(Code(Query(L"SELECT Name FROM Test_All WHERE U8 = 200", &names)), "0x00000000");
    EXPECT_THAT(names, ElementsAre(L"Test_All.Name=\"one\""));
}

TEST_F(Services, QueriesAreRefusedWithTheRightCode) {
    EXPECT_EQ(Code(Query(L"SELECT FROM")), "0x80041017");
    EXPECT_EQ(Code(Query(L"")), "0x80041017");
    EXPECT_EQ(Code(Query(L"SELECT * FROM No_Such_Class")), "0x80041010");
    EXPECT_EQ(Code(Query(L"SELECT Nothing FROM Test_All")), "0x80041017");
    EXPECT_EQ(Code(Query(L"REFERENCES OF {Test_Lone=2}")), "0x80041002");
    EXPECT_EQ(Code(Query(L"REFERENCES OF {=}")), "0x8004103A");
    CComPtr<IEnumWbemClassObject> answer;
    _bstr_t text(L"SELECT * FROM Test_All");
    EXPECT_EQ(Code(services->ExecQuery(_bstr_t(L"SQL").GetBSTR(), text.GetBSTR(), 0, nullptr, &answer)),
              "0x80041018");
    EXPECT_EQ(Code(services->ExecQuery(nullptr, text.GetBSTR(), 0, nullptr, &answer)), "0x80041008");
    EXPECT_EQ(Code(services->ExecQuery(_bstr_t(L"WQL").GetBSTR(), nullptr, 0, nullptr, &answer)),
              "0x80041008");
    EXPECT_EQ(Code(services->ExecQuery(_bstr_t(L"WQL").GetBSTR(), text.GetBSTR(), 0, nullptr, nullptr)),
              "0x80041008");
    EXPECT_EQ(answer.p, nullptr);
}

} // namespace
