// IEnumWbemClassObject: counts, end of data, timeouts, walking again.
#include "ComFixture.h"

#include <chrono>

using ATL::CComPtr;

namespace {

constexpr LONG kForever = static_cast<LONG>(WBEM_INFINITE);

class Enumeration : public ComTest {
  protected:
    CComPtr<IEnumWbemClassObject> Open(const wchar_t* name = L"Test_All", LONG flags = 0) {
        CComPtr<IEnumWbemClassObject> answer;
        EXPECT_EQ(Code(services->CreateInstanceEnum(_bstr_t(name).GetBSTR(), flags, nullptr, &answer)),
                  "0x00000000");
        return answer;
    }
    std::wstring NameOf(IWbemClassObject* object) {
        const auto name = Get(object, L"Name");
        return V_VT(&name) == VT_BSTR ? V_BSTR(&name) : L"";
    }
    /// The names of all that is left, one by one.
    std::vector<std::wstring> Rest(IEnumWbemClassObject* answer) {
        std::vector<std::wstring> names;
        for (;;) {
            CComPtr<IWbemClassObject> object;
            ULONG returned = 99;
            const HRESULT result = answer->Next(kForever, 1, &object, &returned);
            if (result != S_OK) {
                EXPECT_EQ(Code(result), "0x00000001");
                EXPECT_EQ(returned, 0u);
                EXPECT_EQ(object.p, nullptr);
                return names;
            }
            EXPECT_EQ(returned, 1u);
            names.push_back(NameOf(object));
        }
    }
};

TEST_F(Enumeration, EndsWithFalseAndNothing) {
    const auto answer = Open();
    EXPECT_THAT(Rest(answer), testing::ElementsAre(L"one", L"two"));
    EXPECT_THAT(Rest(answer), testing::ElementsAre());
}

TEST_F(Enumeration, ReturnsFewerThanAskedForAtTheEnd) {
    const auto answer = Open();
    IWbemClassObject* objects[5] = {};
    ULONG returned = 0;
    EXPECT_EQ(Code(answer->Next(kForever, 5, objects, &returned)), "0x00000001");
    ASSERT_EQ(returned, 2u);
    EXPECT_EQ(NameOf(objects[1]), L"two");
    EXPECT_EQ(objects[2], nullptr);
    objects[0]->Release();
    objects[1]->Release();
    EXPECT_EQ(Code(answer->Next(kForever, 2, objects, &returned)), "0x00000001");
    EXPECT_EQ(returned, 0u);
}

TEST_F(Enumeration, ReturnsExactlyWhatWasAskedFor) {
    const auto answer = Open();
    IWbemClassObject* objects[2] = {};
    ULONG returned = 0;
    EXPECT_EQ(Code(answer->Next(kForever, 2, objects, &returned)), "0x00000000");
    EXPECT_EQ(returned, 2u);
    objects[0]->Release();
    objects[1]->Release();
}

TEST_F(Enumeration, ResetsClonesAndSkips) {
    const auto answer = Open();
    EXPECT_EQ(Code(answer->Skip(kForever, 1)), "0x00000000");
    CComPtr<IEnumWbemClassObject> copy;
    ASSERT_EQ(answer->Clone(&copy), S_OK);
    EXPECT_THAT(Rest(answer), testing::ElementsAre(L"two"));
    EXPECT_THAT(Rest(copy), testing::ElementsAre(L"two"));
    EXPECT_EQ(answer->Reset(), S_OK);
    EXPECT_THAT(Rest(answer), testing::ElementsAre(L"one", L"two"));
    EXPECT_EQ(answer->Reset(), S_OK);
    EXPECT_EQ(Code(answer->Skip(kForever, 3)), "0x00000001");
    EXPECT_THAT(Rest(answer), testing::ElementsAre());
}

TEST_F(Enumeration, AForwardOnlyOneIsWalkedOnce) {
    const auto answer = Open(L"Test_All", WBEM_FLAG_FORWARD_ONLY);
    EXPECT_EQ(Code(answer->Reset()), "0x80041016");
    CComPtr<IEnumWbemClassObject> copy;
    EXPECT_EQ(Code(answer->Clone(&copy)), "0x80041016");
    EXPECT_THAT(Rest(answer), testing::ElementsAre(L"one", L"two"));
}

TEST_F(Enumeration, ShowsTheMachineAsItWasWhenAsked) {
    const auto answer = Open();
    ASSERT_EQ(services->DeleteInstance(_bstr_t(L"Test_All.Name=\"two\"").GetBSTR(), 0, nullptr, nullptr),
              S_OK);
    EXPECT_THAT(Rest(answer), testing::ElementsAre(L"one", L"two"));
    EXPECT_THAT(Rest(Open()), testing::ElementsAre(L"one"));
}

TEST_F(Enumeration, DeepTakesSubclassesAndShallowDoesNot) {
    EXPECT_THAT(Rest(Open(L"Test_Base")), testing::ElementsAre(L"one", L"two"));
    EXPECT_THAT(Rest(Open(L"test_base", WBEM_FLAG_SHALLOW)), testing::ElementsAre());
}

TEST_F(Enumeration, ArgumentsAreChecked) {
    const auto answer = Open();
    CComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    EXPECT_EQ(Code(answer->Next(kForever, 1, nullptr, &returned)), "0x80041008");
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, nullptr)), "0x80041008");
    EXPECT_EQ(Code(answer->Next(-2, 1, &object, &returned)), "0x80041008");
    EXPECT_EQ(Code(answer->Next(kForever, 0, &object, &returned)), "0x80041008");
    EXPECT_EQ(Code(answer->Skip(-2, 1)), "0x80041008");
    EXPECT_EQ(Code(answer->Clone(nullptr)), "0x80041008");
    EXPECT_EQ(Code(answer->NextAsync(1, nullptr)), "0x8004100C");
    EXPECT_EQ(SetBlanket(answer), S_OK);
}

TEST_F(Enumeration, ASlowAnswerTimesOutAndComesLater) {
    FaultRule slow;
    slow.operation = Operation::Next;
    slow.effect = Effect::Delay;
    slow.milliseconds = 60;
    machine->Rules().Add(slow);
    const auto answer = Open();
    CComPtr<IWbemClassObject> object;
    ULONG returned = 99;
    EXPECT_EQ(Code(answer->Next(20, 1, &object, &returned)), "0x00040004");
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(machine->Now(), std::chrono::milliseconds(20));
    EXPECT_EQ(Code(answer->Next(0, 1, &object, &returned)), "0x00040004");
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, &returned)), "0x00000000");
    EXPECT_EQ(returned, 1u);
    EXPECT_EQ(machine->Now(), std::chrono::milliseconds(60));
}

TEST_F(Enumeration, ASemisynchronousFailureComesWithTheFirstObject) {
    const auto answer = Open(L"No_Such_Class", WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY);
    CComPtr<IWbemClassObject> object;
    ULONG returned = 99;
    EXPECT_EQ(Code(answer->Next(kForever, 1, &object, &returned)), "0x80041010");
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(Code(answer->Skip(kForever, 1)), "0x80041010");
}

TEST_F(Enumeration, ClassesComeDeepOrShallow) {
    const auto names = [this](const wchar_t* superclass, LONG flags) {
        CComPtr<IEnumWbemClassObject> answer;
        EXPECT_EQ(
            Code(services->CreateClassEnum(superclass != nullptr ? _bstr_t(superclass).GetBSTR() : nullptr,
                                           flags, nullptr, &answer)),
            "0x00000000");
        std::vector<std::wstring> list;
        IWbemClassObject* object = nullptr;
        for (ULONG returned = 0; answer->Next(kForever, 1, &object, &returned) == S_OK; object->Release()) {
            const auto name = Get(object, L"__CLASS");
            list.emplace_back(V_BSTR(&name));
        }
        return list;
    };
    EXPECT_THAT(names(L"Test_Base", WBEM_FLAG_DEEP), testing::ElementsAre(L"Test_All"));
    EXPECT_THAT(names(L"Test_All", WBEM_FLAG_DEEP), testing::ElementsAre());
    EXPECT_THAT(names(L"", WBEM_FLAG_SHALLOW),
                testing::IsSupersetOf({L"Test_Base", L"Test_Lone", L"Zorel_VLAN"}));
    EXPECT_THAT(names(L"", WBEM_FLAG_SHALLOW), testing::Not(testing::Contains(L"Test_All")));
    EXPECT_THAT(names(nullptr, WBEM_FLAG_DEEP), testing::Contains(L"Test_All"));
    CComPtr<IEnumWbemClassObject> answer;
    EXPECT_EQ(Code(services->CreateClassEnum(_bstr_t(L"None").GetBSTR(), 0, nullptr, &answer)), "0x80041010");
}

} // namespace
