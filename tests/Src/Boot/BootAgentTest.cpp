// Boot agents: what is known of one, and reading and writing its flash memory.
#include "Boot/BootMachine.h"

#include "Boot/FlashImage.h"
#include "Variants/SafeArray.h"
#include "Variants/SafeArrays.h"

#include <memory>

namespace {

using boot::Bytes;
using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class BootAgentTest : public boot::BootTest {
  protected:
    /// What ReadBootAgentFlash hands out.
    struct Read {
        HRESULT result = E_UNEXPECTED;
        LONG size = -7;
        unsigned char* data = reinterpret_cast<unsigned char*>(1);
        ~Read() { ::operator delete(data); }
        Bytes Contents() const { return Bytes(data, data + size); }
    };
    void ReadInto(Read& read, const std::wstring& agent) {
        read.result = quillet.ReadBootAgentFlash(agent, read.size, &read.data);
    }
    HRESULT Write(Bytes image, CSettings types, int& code) {
        return quillet.WriteBootAgentFlash(AGENT, static_cast<LONG>(image.size()), image.data(), types, code);
    }
};

TEST(BootAgent, StartsEmpty) {
    const CBootAgent agent;
    EXPECT_EQ(agent.m_wsBootAgentID, L"");
    EXPECT_EQ(agent.m_lVersionNumber, 0);
    EXPECT_FALSE(agent.m_bUpdateAvailable);
    EXPECT_EQ(agent.m_lInstalledFlashImageTypes, 0);
}

TEST_F(BootAgentTest, Info_FillsEveryMember) {
    CBootAgent agent;
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(ADAPTER, agent)), "0x00000000");
    EXPECT_EQ(agent.m_wsBootAgentID, AGENT);
    EXPECT_EQ(agent.m_wsVersion, L"1.2.3");
    EXPECT_EQ(agent.m_lVersionNumber, 66051);
    EXPECT_TRUE(agent.m_bUpdateAvailable);
    EXPECT_EQ(agent.m_lFlashImageType, 4);
    EXPECT_EQ(agent.m_wsFlashImageType, L"PXE and iSCSI");
    EXPECT_EQ(agent.m_lISCSIStatus, 1);
    EXPECT_EQ(agent.m_lInstalledFlashImageTypes, 5);
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::GetAdapterBootAgentInfo");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::GetAdapterBootAgentInfo");
    EXPECT_THAT(trace, Contains(R"(Boot Agent WMI Object ID is Zorel_BootAgent.Name="{A}")"));
    EXPECT_THAT(Called(),
                ElementsAre(R"(GetObject Zorel_BootAgent.Name="{A}" -> 0x00000000 {ClientSetId=0})",
                            "GetObject Zorel_BootAgent, flags 0x20000 -> 0x00000000 {ClientSetId=0}"));
}

TEST_F(BootAgentTest, Info_NullProperties_KeepTheMembersAndNothingIsLookedUp) {
    CBootAgent agent;
    agent.m_wsVersion = L"kept";
    agent.m_lVersionNumber = 7;
    agent.m_lFlashImageType = 3;
    agent.m_wsFlashImageType = L"kept";
    agent.m_lISCSIStatus = 9;
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(
                  boot::Path(L"Zorel_PhysicalEthernetAdapter.DeviceID", L"{C}"), agent)),
              "0x00000000");
    EXPECT_EQ(agent.m_wsVersion, L"kept");
    EXPECT_EQ(agent.m_lVersionNumber, 7);
    EXPECT_EQ(agent.m_lFlashImageType, 3);
    EXPECT_EQ(agent.m_wsFlashImageType, L"kept");
    EXPECT_EQ(agent.m_lISCSIStatus, 9);
    EXPECT_EQ(Called().size(), 1u);
}

TEST_F(BootAgentTest, Info_UnreadableProperty_ReturnsAtOnceAndKeepsWhatWasRead) {
    struct Case {
        const wchar_t* property;
        const char* line;
    };
    for (const Case& each : {
             Case{L"__PATH", "GetPropertyAsString -> pIAdapterBootAgtInstance, L_ZOREL_PATH"},
             Case{L"Version", "GetPropertyAsString -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_VERSION"},
             Case{L"VersionNumber",
                  "GetPropertyAsLong -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_VERSIONNUMBER"},
             Case{L"UpdateAvailable",
                  "GetPropertyAsBool -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_UPDATEAVAILABLE"},
             Case{L"FlashImageType",
                  "GetPropertyAsLong -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_FLASHIMAGETYPE"},
             Case{L"iSCSI_Status",
                  "GetPropertyAsLong -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_ISCSI_STATUS"},
             Case{L"InstalledFlashImageTypes",
                  "GetPropertyAsLong -> pIAdapterBootAgtInstance, L_PROP_BOOTAGENT_INSTALLEDFLASHIMAGETYPES"},
         }) {
        SCOPED_TRACE(each.line);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, each.property);
        CBootAgent agent;
        EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(ADAPTER, agent)), "0x80041003");
        EXPECT_THAT(Traced(), Contains(each.line));
        EXPECT_EQ(agent.m_wsBootAgentID.empty(), each.property == std::wstring(L"__PATH"));
        EXPECT_EQ(agent.m_lInstalledFlashImageTypes, 0);
        machine->Rules().Clear();
    }
}

TEST_F(BootAgentTest, Info_TextThatCannotBeLookedUp_IsAFailure) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"", 2);
    CBootAgent agent;
    agent.m_wsFlashImageType = L"kept";
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(ADAPTER, agent)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_ZOREL_BOOTAGENT"));
    EXPECT_EQ(agent.m_lFlashImageType, 4);
    EXPECT_EQ(agent.m_wsFlashImageType, L"kept");
}

TEST_F(BootAgentTest, Info_AgentThatIsNotThere_IsNamed) {
    CBootAgent agent;
    EXPECT_EQ(
        Code(quillet.GetAdapterBootAgentInfo(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{D}")", agent)),
        "0x80041002");
    EXPECT_THAT(Traced(), Contains("pIAdapterBootAgtInstance -> FAIL"));
}

TEST_F(BootAgentTest, Info_BadArguments_AreRefusedWithoutACall) {
    CBootAgent agent;
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(L"", agent)), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::GetAdapterBootAgentInfo", "(wsAdapterID.empty())",
                                      "Exiting CQuillet::GetAdapterBootAgentInfo"));
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(L"no path", agent)), "0x80004005");
    EXPECT_THAT(Traced(), Contains("GetObjectIdFromPath -> wsAdapterID"));
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(quillet.GetAdapterBootAgentInfo(ADAPTER, agent)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
}

TEST_F(BootAgentTest, Read_HandsOutTheFlashMemory) {
    Read read;
    ReadInto(read, AGENT);
    EXPECT_EQ(Code(read.result), "0x00000000");
    ASSERT_EQ(read.size, static_cast<LONG>(boot::OldImage().size()));
    EXPECT_EQ(read.Contents(), boot::OldImage());
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ReadBootAgentFlash", "dwErrorCode: %l",
                                      "Exiting CQuillet::ReadBootAgentFlash"));
    EXPECT_THAT(Called(),
                ElementsAre("GetObject Zorel_BootAgent -> 0x00000000 {ClientSetId=0}",
                            "ExecMethod " + Narrow(AGENT) + ", ReadFlash() -> 0x00000000 {ClientSetId=0}"));
}

TEST_F(BootAgentTest, Read_WhateverTheBounds_GivesAllBytesFromTheFirst) {
    for (const Bytes& contents : {Bytes{1, 2, 3, 4, 5}, Bytes{9}, Bytes{}}) {
        SCOPED_TRACE(contents.size());
        auto agent = *machine->Store().FindInstance(AGENT);
        ASSERT_TRUE(agent.Set(L"FlashImage", Value(contents)));
        ASSERT_TRUE(SUCCEEDED(machine->Store().PutInstance(agent)));
        for (const bool shifted : {false, true}) {
            if (shifted) {
                Spoil(Operation::Get, Effect::ShiftedArray, L"FlashData"); // from 5
            }
            Read read;
            ReadInto(read, AGENT);
            EXPECT_EQ(Code(read.result), "0x00000000");
            ASSERT_EQ(read.size, static_cast<LONG>(contents.size()));
            ASSERT_NE(read.data, nullptr) << "an empty buffer is a buffer";
            EXPECT_EQ(read.Contents(), contents);
            machine->Rules().Clear();
        }
    }
}

TEST_F(BootAgentTest, Read_NothingToRead_FailsAndHandsOutNothing) {
    const char* line = "((vFlashData.vt == VT_EMPTY) || (vFlashData.vt == VT_NULL) || (!vFlashData.parray))";
    struct Case {
        Effect effect;
        VARTYPE type;
    };
    for (const Case& each : {Case{Effect::NullValue, VT_NULL}, Case{Effect::WrongType, VT_EMPTY},
                             Case{Effect::WrongType, VT_I4}, Case{Effect::WrongType, VT_BSTR},
                             Case{Effect::WrongType, VT_BYREF | VT_I4}, Case{Effect::NullArray, VT_ARRAY}}) {
        SCOPED_TRACE(each.type);
        FaultRule rule;
        rule.operation = Operation::Get;
        rule.target = L"FlashData";
        rule.effect = each.effect;
        rule.vt = each.type;
        Inject(rule);
        Read read;
        ReadInto(read, AGENT);
        EXPECT_EQ(Code(read.result), "0x80004005");
        EXPECT_EQ(read.data, nullptr);
        EXPECT_EQ(read.size, -7);
        EXPECT_THAT(Traced(), Contains(line));
        machine->Rules().Clear();
    }
    Read read;
    ReadInto(read, boot::Path(L"Zorel_BootAgent.Name", L"{C}"));
    EXPECT_EQ(Code(read.result), "0x80004005") << "a boot agent without flash memory";
    EXPECT_EQ(read.data, nullptr);
}

TEST_F(BootAgentTest, Read_FailedSteps_AreNamedAndHandOutNothing) {
    struct Case {
        Operation operation;
        Effect effect;
        const wchar_t* target;
        const char* code;
        const char* line;
    };
    for (const Case& each : {
             Case{Operation::GetObject, Effect::Fail, L"", "0x80041003",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT"},
             Case{Operation::GetObject, Effect::NullObject, L"", "0x80041001",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT -> NULL"},
             Case{Operation::GetMethod, Effect::Fail, L"", "0x80041003",
                  "GetMethod -> L_METHOD_BOOTAGENT_READFLASH"},
             Case{Operation::ExecMethod, Effect::Fail, L"", "0x80041003",
                  "ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READFLASH"},
             Case{Operation::ExecMethod, Effect::NoOutParameters, L"", "0x80041001",
                  "ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READFLASH, pWbemClassObject_OutParams -> "
                  "NULL"},
             Case{Operation::Get, Effect::Fail, L"FlashData", "0x80041003",
                  "Get -> L_PARAM_BOOTAGENT_READFLASH_FLASHDATA"},
         }) {
        SCOPED_TRACE(each.line);
        FaultRule rule;
        rule.operation = each.operation;
        rule.effect = each.effect;
        rule.target = each.target;
        rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
        Inject(rule);
        Read read;
        ReadInto(read, AGENT);
        EXPECT_EQ(Code(read.result), each.code);
        EXPECT_EQ(read.data, nullptr);
        EXPECT_THAT(Traced(), Contains(each.line));
        machine->Rules().Clear();
    }
}

TEST_F(BootAgentTest, Read_BadArguments_AreRefusedWithoutACall) {
    const char* line = "((wsBootAgtID.empty()) || (ppbyFlashData == NULL))";
    Read read;
    ReadInto(read, L"");
    EXPECT_EQ(Code(read.result), "0x80004005");
    EXPECT_EQ(read.data, nullptr) << "set before anything else";
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ReadBootAgentFlash", line,
                                      "Exiting CQuillet::ReadBootAgentFlash"));
    LONG size = 0;
    EXPECT_EQ(Code(quillet.ReadBootAgentFlash(AGENT, size, nullptr)), "0x80004005");
    EXPECT_THAT(Traced(), Contains(line));
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    unsigned char* data = nullptr;
    EXPECT_EQ(Code(quillet.ReadBootAgentFlash(AGENT, size, &data)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
}

TEST(FlashArrays, Length_OfAnArrayWithAnyBounds) {
    for (const LONG lower : {0, 5, -3, 0x7FFFFFFB}) {
        SAFEARRAYBOUND bound{5, lower};
        const OwnedArray array(SafeArrayCreate(VT_UI1, 1, &bound));
        LONG length = 0;
        const wchar_t* step = nullptr;
        EXPECT_EQ(Code(ArrayLength(array.Get(), length, step)), "0x00000000") << lower;
        EXPECT_EQ(length, 5);
    }
}

TEST(FlashArrays, Length_ThatMakesNoSense_IsRefused) {
    LONG length = 42;
    const wchar_t* step = nullptr;
    // What a broken provider could say of an array that nobody has: nothing of it may be allocated or read.
    SAFEARRAY lying{};
    lying.cDims = 1;
    lying.cbElements = 1;
    for (const auto& [elements, lower] : {std::pair<ULONG, LONG>{0x80000001u, 0},
                                          {0xFFFFFFFFu, -1},
                                          {0xFFFFFFFFu, 0x7FFFFFF0},
                                          {0x80000000u, 0}}) {
        lying.rgsabound[0] = {elements, lower};
        EXPECT_EQ(Code(ArrayLength(&lying, length, step)), "0x80004005") << elements << " from " << lower;
    }
    SAFEARRAYBOUND two[2] = {{2, 0}, {0, 0}};
    const OwnedArray square(SafeArrayCreate(VT_UI1, 2, two));
    EXPECT_EQ(Code(ArrayLength(square.Get(), length, step)), "0x80004005");
    EXPECT_EQ(length, 42);
    EXPECT_TRUE(FAILED(ArrayLength(nullptr, length, step)));
    EXPECT_EQ(std::wstring(step), L"SafeArrayGetLBound");
}

TEST(FlashArrays, Copy_OfAnArrayWithoutData_Fails) {
    SAFEARRAY empty{};
    empty.cDims = 1;
    empty.rgsabound[0] = {4, 0};
    unsigned char bytes[4] = {1, 2, 3, 4};
    EXPECT_TRUE(FAILED(CopyBytes(&empty, bytes, 4)));
    EXPECT_EQ(bytes[0], 1);
}

TEST_F(BootAgentTest, Read_ElementsThatAreNoBytes_AreTakenAsTheyLie) {
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"FlashData";
    rule.effect = Effect::WrongType;
    rule.vt = VT_ARRAY | VT_I4; // one element
    Inject(rule);
    Read read;
    ReadInto(read, AGENT);
    EXPECT_EQ(Code(read.result), "0x00000000");
    EXPECT_EQ(read.size, 1);
}

TEST_F(BootAgentTest, Write_ProgramsTheImageAndItReadsBackByteForByte) {
    int code = 99;
    EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE", L"iSCSI"}), code)), "0x00000000");
    EXPECT_EQ(code, 0);
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::WriteBootAgentFlash", "Checks done", "dwErrorCode: %l",
                            "Before SafeArrayAccessData", "Fill up data into VARIANT",
                            "Get input params for the method called ProgramFlash()",
                            "Fill up input parameter, Action", "Exiting CQuillet::WriteBootAgentFlash"));
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].target, L"Zorel_BootAgent");
    EXPECT_EQ(calls[1].target, AGENT);
    EXPECT_EQ(calls[1].method, L"ProgramFlashEx");
    ASSERT_EQ(calls[1].arguments.size(), 2u);
    EXPECT_EQ(calls[1].arguments[0].name, L"NewFlashData");
    EXPECT_EQ(calls[1].arguments[0].vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(calls[1].arguments[0].value, Value(boot::NewImage()));
    EXPECT_EQ(calls[1].arguments[1].name, L"ImageType");
    EXPECT_EQ(calls[1].arguments[1].vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(calls[1].arguments[1].value, Value(Value::Array{std::wstring(L"PXE"), std::wstring(L"iSCSI")}));
    Read read;
    ReadInto(read, AGENT);
    EXPECT_EQ(read.Contents(), boot::NewImage());
    CBootAgent agent;
    quillet.GetAdapterBootAgentInfo(ADAPTER, agent);
    EXPECT_EQ(agent.m_wsVersion, L"1.4.0");
    EXPECT_EQ(agent.m_lVersionNumber, 0x10400);
    EXPECT_FALSE(agent.m_bUpdateAvailable);
    EXPECT_EQ(agent.m_wsFlashImageType, L"PXE and iSCSI");
    EXPECT_EQ(agent.m_lInstalledFlashImageTypes, 5);
}

TEST_F(BootAgentTest, Write_WithoutTypes_SendsAnEmptyArray) {
    int code = 99;
    EXPECT_EQ(Code(Write(boot::NewImage(), CSettings(), code)), "0x00000000");
    const std::vector<JournalEntry> calls = Calls();
    EXPECT_EQ(calls[1].Argument(L"ImageType")->vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(calls[1].Argument(L"ImageType")->value, Value(Value::Array{}));
}

TEST(FlashArrays, Types_AreCaptionsInOrderAndNullForAnEmptyOne) {
    CSettings settings;
    for (const wchar_t* caption : {L"b", L"", L"a"}) {
        settings.m_vecItems.push_back(new CSettingString);
        settings.m_vecItems.back()->m_wsCaption = caption;
    }
    settings.m_vecItems.push_back(nullptr);
    _variant_t types;
    EXPECT_EQ(Code(FlashImage::MakeTypes(settings, types)), "0x00000000");
    EXPECT_EQ(types.vt, VT_ARRAY | VT_BSTR);
    SAFEARRAY* array = V_ARRAY(&types);
    LONG lower = -1;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, 3);
    void* raw = nullptr;
    ASSERT_TRUE(SUCCEEDED(SafeArrayAccessData(array, &raw)));
    const BSTR* texts = static_cast<const BSTR*>(raw);
    EXPECT_EQ(std::wstring(texts[0]), L"b");
    EXPECT_EQ(texts[1], nullptr);
    EXPECT_EQ(std::wstring(texts[2]), L"a");
    EXPECT_EQ(texts[3], nullptr);
    SafeArrayUnaccessData(array);
}

TEST(FlashArrays, Bytes_AreAnArrayFromZero) {
    const Bytes bytes{1, 2, 255};
    _variant_t value;
    EXPECT_EQ(Code(FlashImage::MakeBytes(3, bytes.data(), value)), "0x00000000");
    EXPECT_EQ(value.vt, 0x2011);
    LONG lower = -1;
    SafeArrayGetLBound(V_ARRAY(&value), 1, &lower);
    EXPECT_EQ(lower, 0);
    unsigned char copy[3] = {};
    EXPECT_EQ(Code(CopyBytes(V_ARRAY(&value), copy, 3)), "0x00000000");
    EXPECT_EQ(Bytes(copy, copy + 3), bytes);
}

TEST_F(BootAgentTest, Write_RefusedByTheProvider_IsToldByTheCodeAloneAndTheFlashStays) {
    Bytes damaged = boot::NewImage();
    damaged.back() ^= 1;
    int code = 99;
    EXPECT_EQ(Code(Write(damaged, Types({L"PXE"}), code)), "0x00000000");
    EXPECT_EQ(code, 3);
    EXPECT_EQ(Flash(), boot::OldImage());
}

TEST_F(BootAgentTest, Write_ReturnCodeOfAnotherType_LeavesTheArgumentAndSucceeds) {
    for (const VARTYPE type : {VARTYPE{VT_BSTR}, VARTYPE{VT_UI1}, VARTYPE{VT_NULL}, VARTYPE{VT_UNKNOWN}}) {
        FaultRule rule;
        rule.operation = Operation::Get;
        rule.target = L"FlashRetCode";
        rule.effect = Effect::WrongType;
        rule.vt = type;
        Inject(rule);
        int code = 99;
        EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), "0x00000000");
        EXPECT_EQ(code, 99) << type;
        machine->Rules().Clear();
    }
}

TEST_F(BootAgentTest, Write_PowerCut_FailsAndLeavesTheOldImage) {
    Spoil(Operation::ExecMethod, Effect::PowerCut);
    int code = 99;
    const auto before = machine->Now();
    EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), "0x80041001");
    EXPECT_GT(machine->Now(), before) << "it happened while the flash was written";
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_PROGRAMFLASHEX"));
    EXPECT_EQ(code, 99);
    EXPECT_EQ(Flash(), boot::OldImage());
    machine->Rules().Clear();
    EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), "0x00000000");
    EXPECT_EQ(Flash(), boot::NewImage());
}

TEST_F(BootAgentTest, Write_FailedSteps_AreNamedAsEverAndLeaveTheFlash) {
    struct Case {
        Operation operation;
        Effect effect;
        const wchar_t* target;
        const char* code;
        const char* line;
    };
    for (const Case& each : {
             Case{Operation::GetObject, Effect::Fail, L"", "0x80041003",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT"},
             Case{Operation::GetObject, Effect::NullObject, L"", "0x80041001",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT -> NULL"},
             Case{Operation::GetMethod, Effect::Fail, L"", "0x80041003",
                  "GetMethod -> L_METHOD_BOOTAGENT_PROGRAMFLASH"},
             Case{Operation::SpawnInstance, Effect::Fail, L"", "0x80041003",
                  "SpawnInstance -> L_METHOD_BOOTAGENT_PROGRAMFLASH"},
             Case{Operation::Put, Effect::Fail, L"NewFlashData", "0x80041003",
                  "pIWbemClassObject_InParams -> Put, L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA"},
             Case{Operation::Put, Effect::Fail, L"ImageType", "0x80041003",
                  "pIWbemClassObject_InParams -> Put, L_PARAM_BOOTAGENT_PROGRAMFLASH_ACTION"},
             Case{Operation::ExecMethod, Effect::Fail, L"", "0x80041003",
                  "ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_PROGRAMFLASHEX"},
         }) {
        SCOPED_TRACE(each.line);
        FaultRule rule;
        rule.operation = each.operation;
        rule.effect = each.effect;
        rule.target = each.target;
        rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
        Inject(rule);
        int code = 99;
        EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), each.code);
        EXPECT_EQ(code, 99);
        const std::vector<std::string> trace = Traced();
        EXPECT_THAT(trace, Contains(each.line));
        const bool signatureAsked = each.operation != Operation::GetObject;
        EXPECT_EQ(
            std::count(trace.begin(), trace.end(), "Get input params for the method called ProgramFlash()"),
            signatureAsked ? 1 : 0);
        EXPECT_EQ(Flash(), boot::OldImage());
        machine->Rules().Clear();
    }
}

TEST_F(BootAgentTest, Write_WithoutAnswerOrReturnCode_Fails) {
    int code = 99;
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(pIWbemClassObject_OutParams -> NULL)"));
    machine->Rules().Clear();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"FlashRetCode");
    EXPECT_EQ(Code(Write(boot::NewImage(), Types({L"PXE"}), code)), "0x80041003");
    EXPECT_THAT(Traced(),
                Contains("pIWbemClassObject_OutParams -> Get, L_PARAM_BOOTAGENT_PROGRAMFLASH_RETURN"));
    EXPECT_EQ(code, 99);
}

TEST_F(BootAgentTest, Write_BadArguments_AreRefusedBeforeAnyCall) {
    const char* line = "((wsBootAgtID.empty()) || (pFlashData == NULL) || (rlFlashSize <= 0))";
    Bytes image = boot::NewImage();
    CSettings types;
    int code = 99;
    for (const LONG size : std::initializer_list<LONG>{0, -1, -2147483647 - 1}) {
        EXPECT_EQ(Code(quillet.WriteBootAgentFlash(AGENT, size, image.data(), types, code)), "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::WriteBootAgentFlash", line,
                                          "Exiting CQuillet::WriteBootAgentFlash"));
    }
    EXPECT_EQ(Code(quillet.WriteBootAgentFlash(L"", 5, image.data(), types, code)), "0x80004005");
    EXPECT_THAT(Traced(), Contains(line));
    EXPECT_EQ(Code(quillet.WriteBootAgentFlash(AGENT, 5, nullptr, types, code)), "0x80004005");
    EXPECT_THAT(Traced(), Contains(line));
    EXPECT_EQ(code, 99);
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(quillet.WriteBootAgentFlash(AGENT, 5, image.data(), types, code)), "0x80041001");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("Checks done"));
    EXPECT_THAT(trace, Contains(MISSING));
    EXPECT_THAT(trace, Not(Contains("Before SafeArrayAccessData")));
}

TEST_F(BootAgentTest, EachCallFailing_ReturnsItsCode) {
    CBootAgent agent;
    FailEachProviderCall([&] { return quillet.GetAdapterBootAgentInfo(ADAPTER, agent); });
    FailEachProviderCall([&] {
        Read read;
        ReadInto(read, AGENT);
        return read.result;
    });
    int code = 0;
    FailEachProviderCall([&] { return Write(boot::NewImage(), Types({L"PXE"}), code); });
}

TEST_F(BootAgentTest, Write_SixteenMebibytes_ComeBackAsTheyWent) {
    const Bytes image = boot::WriteFlashImage({{L"PXE", L"1.4.0", 0, 1, boot::Noise((16u << 20) - 88)}});
    ASSERT_EQ(image.size(), 16u << 20);
    int code = 99;
    EXPECT_EQ(Code(Write(image, Types({L"PXE"}), code)), "0x00000000");
    EXPECT_EQ(code, 0);
    Read read;
    ReadInto(read, AGENT);
    ASSERT_EQ(Code(read.result), "0x00000000");
    ASSERT_EQ(read.size, 16 << 20);
    EXPECT_TRUE(std::equal(image.begin(), image.end(), read.data));
}

} // namespace
