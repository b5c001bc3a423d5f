// Image files before they are written: listing what is in one, and checking it.
#include "Boot/BootMachine.h"

#include <random>
#include <set>

namespace {

using boot::Bytes;
using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class BootAgentImagesTest : public boot::BootTest {
  protected:
    HRESULT Inspect(Bytes file, CSettings& images, int& code) {
        return quillet.ReadBootAgentImageFile(AGENT, static_cast<LONG>(file.size()), file.data(), images,
                                              code);
    }
    HRESULT Verify(Bytes file, CSettings types, int& code) {
        return quillet.VerifyImageType(AGENT, static_cast<LONG>(file.size()), file.data(), types, code);
    }
    static const CSettingString& At(const CSettings& images, std::size_t index) {
        return dynamic_cast<const CSettingString&>(*images.m_vecItems.at(index));
    }
};

TEST_F(BootAgentImagesTest, Inspect_AppendsOneSettingForEachImage) {
    CSettings images = Types({L"already there"});
    int code = 99;
    EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x00000000");
    EXPECT_EQ(code, 0);
    ASSERT_EQ(images.m_vecItems.size(), 4u);
    EXPECT_EQ(At(images, 0).m_wsCaption, L"already there");
    EXPECT_EQ(At(images, 1).m_wsCaption, L"PXE");
    EXPECT_EQ(At(images, 1).m_wsCurrentValue, L"1.4.0");
    EXPECT_EQ(At(images, 1).m_lGroupId, 0);
    EXPECT_EQ(At(images, 1).m_wsExposeLevel, L"1");
    EXPECT_EQ(At(images, 2).m_wsCaption, L"iSCSI");
    EXPECT_EQ(At(images, 2).m_wsCurrentValue, L"2.1.7");
    EXPECT_EQ(At(images, 2).m_lGroupId, 1);
    EXPECT_EQ(At(images, 2).GetExposeLevel(), 3);
    EXPECT_EQ(At(images, 3).m_wsCaption, L"EFI");
    EXPECT_EQ(At(images, 3).m_wsExposeLevel, L"-1");
    EXPECT_EQ(At(images, 3).GetExposeLevel(), -1);
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::ReadBootAgentImageFile");
    EXPECT_EQ(trace[1], "Checks done");
    EXPECT_THAT(trace, Contains("Get input params for the method called ProgramFlash()"));
    EXPECT_EQ(trace.back(), "Exiting CQuillet::ReadBootAgentImageFile");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].target, AGENT);
    EXPECT_EQ(calls[1].method, L"ReadImageFile");
    ASSERT_EQ(calls[1].arguments.size(), 1u);
    EXPECT_EQ(calls[1].arguments[0].name, L"FlashData");
    EXPECT_EQ(calls[1].arguments[0].vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(calls[1].arguments[0].value, Value(boot::NewImage()));
}

TEST_F(BootAgentImagesTest, Inspect_FileThatCannotBeRead_IsSuccessWithTheCodeAndNoImages) {
    struct Case {
        Bytes file;
        int code;
    };
    Bytes foreign = boot::NewImage();
    foreign[0] = 'X';
    Bytes damaged = boot::NewImage();
    damaged[damaged.size() / 2] ^= 0x10;
    Bytes cut = boot::NewImage();
    cut.pop_back();
    for (const Case& each : {Case{foreign, 1}, Case{damaged, 3}, Case{cut, 3}, Case{Bytes{1}, 1}}) {
        SCOPED_TRACE(each.code);
        CSettings images = Types({L"kept"});
        int code = 99;
        EXPECT_EQ(Code(Inspect(each.file, images, code)), "0x00000000");
        EXPECT_EQ(code, each.code);
        EXPECT_EQ(images.m_vecItems.size(), 1u);
    }
}

TEST_F(BootAgentImagesTest, Inspect_CodeOfAnotherType_IsNoVerdict) {
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"FlashRetCode";
    rule.effect = Effect::WrongType;
    rule.vt = VT_BSTR;
    Inject(rule);
    CSettings images;
    int code = 77; // bit 0 is set in it, but the provider did not say so
    EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x00000000");
    EXPECT_EQ(code, 77);
    EXPECT_EQ(images.m_vecItems.size(), 3u);
}

TEST_F(BootAgentImagesTest, Inspect_ShorterLists_LeaveTheRestEmpty) {
    // No version, group or level at all; and an array of another length where a fault can make one.
    Spoil(Operation::Get, Effect::EmptyArray, L"ImageVersionNumber");
    Spoil(Operation::Get, Effect::EmptyArray, L"ImageGroupNumber");
    FaultRule rule;
    rule.operation = Operation::Get;
    rule.target = L"ImageExposeLevel";
    rule.effect = Effect::WrongType;
    rule.vt = VT_ARRAY | VT_I4; // one element, 0
    Inject(rule);
    CSettings images;
    int code = 99;
    EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x00000000");
    ASSERT_EQ(images.m_vecItems.size(), 3u);
    EXPECT_EQ(At(images, 0).m_wsExposeLevel, L"0");
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(At(images, index).m_wsCurrentValue, L"");
        EXPECT_EQ(At(images, index).m_lGroupId, 0);
        EXPECT_EQ(At(images, index).m_wsExposeLevel, index == 0 ? L"0" : L"");
    }
}

TEST_F(BootAgentImagesTest, Inspect_ArraysFromFive_AreReadFromTheirBeginning) {
    for (const wchar_t* name :
         {L"ImageType", L"ImageVersionNumber", L"ImageGroupNumber", L"ImageExposeLevel"}) {
        Spoil(Operation::Get, Effect::ShiftedArray, name);
    }
    CSettings images;
    int code = 99;
    EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x00000000");
    ASSERT_EQ(images.m_vecItems.size(), 3u);
    EXPECT_EQ(At(images, 1).m_wsCaption, L"iSCSI");
    EXPECT_EQ(At(images, 1).m_wsCurrentValue, L"2.1.7");
    EXPECT_EQ(At(images, 1).m_lGroupId, 1);
    EXPECT_EQ(At(images, 1).m_wsExposeLevel, L"3");
}

TEST_F(BootAgentImagesTest, Inspect_UnreadableArrayOrElement_FailsAndAppendsNothing) {
    const char* line = "GetEnumSetting -> GetPropertyArray -> pIWbemSetting, L_PROP_SETTING_NAMES";
    for (const wchar_t* name :
         {L"ImageType", L"ImageVersionNumber", L"ImageGroupNumber", L"ImageExposeLevel"}) {
        CSettings images;
        int code = 99;
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, name);
        EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x80041003");
        EXPECT_EQ(code, 0);
        EXPECT_THAT(Traced(), Contains(line));
        machine->Rules().Clear();
        Spoil(Operation::Get, Effect::NullValue, name);
        EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x80004005");
        EXPECT_THAT(Traced(), Contains(line));
        machine->Rules().Clear();
        // A gap in the middle would give each image behind it the version of another.
        FaultRule gap;
        gap.operation = Operation::Get;
        gap.target = name;
        gap.effect = Effect::UnreadableElement;
        gap.element = 1;
        Inject(gap);
        EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x80004005");
        EXPECT_THAT(Traced(), Contains(line));
        machine->Rules().Clear();
        EXPECT_TRUE(images.m_vecItems.empty());
    }
}

TEST_F(BootAgentImagesTest, Verify_TellsTheVerdictByTheCodeAlone) {
    struct Case {
        CSettings types;
        int code;
    };
    for (const Case& each : {Case{Types({L"PXE", L"EFI"}), 0}, Case{Types({}), 0}, Case{Types({L"HTTP"}), 8},
                             Case{Types({L"PXE", L""}), 8}}) {
        int code = 99;
        EXPECT_EQ(Code(Verify(boot::NewImage(), each.types, code)), "0x00000000");
        EXPECT_EQ(code, each.code);
    }
    Bytes foreign(100, 0);
    int code = 99;
    EXPECT_EQ(Code(Verify(foreign, Types({L"PXE"}), code)), "0x00000000");
    EXPECT_EQ(code, 1);
}

TEST_F(BootAgentImagesTest, Verify_SendsTheBytesAndThenTheTypes) {
    int code = 99;
    EXPECT_EQ(Code(Verify(boot::NewImage(), CSettings(), code)), "0x00000000");
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace.front(), "Entering CQuillet::VerifyImageType");
    EXPECT_EQ(trace[1], "Checks done");
    EXPECT_THAT(trace, Contains("Get input params for the method called ProgramFlash()"));
    EXPECT_EQ(trace.back(), "Exiting CQuillet::VerifyImageType");
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].target, AGENT);
    EXPECT_EQ(calls[1].method, L"VerifyImageType");
    ASSERT_EQ(calls[1].arguments.size(), 2u);
    EXPECT_EQ(calls[1].arguments[0].name, L"FlashData");
    EXPECT_EQ(calls[1].arguments[1].name, L"ImageType");
    EXPECT_EQ(calls[1].arguments[1].vt, VT_ARRAY | VT_BSTR);
    EXPECT_EQ(calls[1].arguments[1].value, Value(Value::Array{}));
}

TEST_F(BootAgentImagesTest, BothCalls_FailedSteps_AreNamedAsEver) {
    struct Case {
        Operation operation;
        Effect effect;
        const wchar_t* target;
        const char* code;
        const char* line;
        bool onlyVerify;
    };
    for (const Case& each : {
             Case{Operation::GetObject, Effect::Fail, L"", "0x80041003",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT", false},
             Case{Operation::GetObject, Effect::NullObject, L"", "0x80041001",
                  "GetObject -> L_CLASS_ZOREL_BOOTAGENT -> NULL", false},
             Case{Operation::GetMethod, Effect::Fail, L"", "0x80041003",
                  "GetMethod -> L_METHOD_BOOTAGENT_PROGRAMFLASH", false},
             Case{Operation::Put, Effect::Fail, L"FlashData", "0x80041003",
                  "pIWbemClassObject_InParams -> Put, L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA", false},
             // The line about the bytes, for the types as well.
             Case{Operation::Put, Effect::Fail, L"ImageType", "0x80041003",
                  "pIWbemClassObject_InParams -> Put, L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA", true},
             Case{Operation::ExecMethod, Effect::NoOutParameters, L"", "0x80041001",
                  "(pIWbemClassObject_OutParams -> NULL)", false},
             Case{Operation::Get, Effect::Fail, L"FlashRetCode", "0x80041003",
                  "pIWbemClassObject_OutParams -> Get, L_PARAM_BOOTAGENT_PROGRAMFLASH_RETURN", false},
         }) {
        SCOPED_TRACE(each.line);
        for (const bool verify : {false, true}) {
            FaultRule rule;
            rule.operation = each.operation;
            rule.effect = each.effect;
            rule.target = each.target;
            rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
            if (each.onlyVerify && !verify) {
                continue;
            }
            Inject(rule);
            CSettings images;
            int code = 99;
            EXPECT_EQ(Code(verify ? Verify(boot::NewImage(), Types({L"PXE"}), code)
                                  : Inspect(boot::NewImage(), images, code)),
                      each.code);
            EXPECT_EQ(code, 99);
            EXPECT_TRUE(images.m_vecItems.empty());
            EXPECT_THAT(Traced(), Contains(each.line));
            machine->Rules().Clear();
        }
    }
    int code = 99;
    CSettings images;
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Inspect(boot::NewImage(), images, code)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READIMAGEFILE"));
    machine->Rules().Clear();
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(Verify(boot::NewImage(), Types({L"PXE"}), code)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_VERIFYIMAGETYPE"));
}

TEST_F(BootAgentImagesTest, BothCalls_BadArguments_AreRefusedWithoutACall) {
    const char* line = "((wsBootAgtID.empty()) || (pFlashData == NULL) || (rlFlashSize <= 0))";
    Bytes file = boot::NewImage();
    CSettings settings;
    int code = 99;
    struct Case {
        const wchar_t* agent;
        LONG size;
        unsigned char* data;
    };
    for (const Case& each : {Case{L"", 5, file.data()}, Case{L"x", 5, nullptr}, Case{L"x", 0, file.data()},
                             Case{L"x", -1, file.data()}}) {
        EXPECT_EQ(Code(quillet.ReadBootAgentImageFile(each.agent, each.size, each.data, settings, code)),
                  "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ReadBootAgentImageFile", line,
                                          "Exiting CQuillet::ReadBootAgentImageFile"));
        EXPECT_EQ(Code(quillet.VerifyImageType(each.agent, each.size, each.data, settings, code)),
                  "0x80004005");
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::VerifyImageType", line,
                                          "Exiting CQuillet::VerifyImageType"));
    }
    EXPECT_THAT(Called(), IsEmpty());
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(Inspect(file, settings, code)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(Code(Verify(file, settings, code)), "0x80041001");
    EXPECT_THAT(Traced(), Contains(MISSING));
    EXPECT_EQ(code, 99);
}

TEST_F(BootAgentImagesTest, BothCalls_EachCallFailing_ReturnsItsCode) {
    int code = 0;
    FailEachProviderCall([&] {
        CSettings images;
        return Inspect(boot::NewImage(), images, code);
    });
    FailEachProviderCall([&] { return Verify(boot::NewImage(), Types({L"PXE"}), code); });
}

/// Changes a file in one of the ways in which files are damaged.
void Mutate(Bytes& file, std::mt19937& random) {
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const auto byte = [&] { return static_cast<std::uint8_t>(below(256)); };
    switch (below(7)) {
    case 0:
        file[below(file.size())] ^= static_cast<std::uint8_t>(1u << below(8));
        break;
    case 1:
        file[below(file.size())] = byte();
        break;
    case 2:
        file.resize(1 + below(file.size()));
        break;
    case 3:
        file.insert(file.end(), 1 + below(64), byte());
        break;
    case 4: // two blocks change places
        std::swap_ranges(file.begin(), file.begin() + 8,
                         file.begin() + 8 + static_cast<std::ptrdiff_t>(below(file.size() - 16)));
        break;
    case 5: // a number in the header or the table
        for (std::size_t at = 8 + below(24 + 3 * 64 - 12), end = at + 4; at < end; ++at) {
            file[at] = byte();
        }
        break;
    default:
        for (std::size_t count = 1 + below(20); count > 0; --count) {
            file[below(file.size())] = byte();
        }
    }
}

TEST_F(BootAgentImagesTest, Fuzzed_IsNeverTakenForRightUnlessItIsAndLeavesTheFlash) {
    std::mt19937 random(20110314);
    const Bytes whole = boot::NewImage();
    unsigned same = 0;
    std::set<int> codes;
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        Bytes file = whole;
        Mutate(file, random);
        if (round % 3 == 0) {
            Mutate(file, random);
        }
        const bool identical = file == whole;
        same += identical ? 1 : 0;
        int code = 99;
        ASSERT_EQ(Code(Verify(file, Types({L"PXE"}), code)), "0x00000000");
        ASSERT_EQ(code == 0, identical) << code;
        codes.insert(code);
        CSettings images;
        ASSERT_EQ(Code(Inspect(file, images, code)), "0x00000000");
        ASSERT_EQ(images.m_vecItems.empty(), !identical);
        if (!identical) {
            CSettings types = Types({L"PXE"});
            ASSERT_EQ(Code(quillet.WriteBootAgentFlash(AGENT, static_cast<LONG>(file.size()), file.data(),
                                                       types, code)),
                      "0x00000000");
            ASSERT_NE(code, 0);
        }
        ASSERT_EQ(Flash(), boot::OldImage());
    }
    EXPECT_LT(same, 50u) << "the mutations change something";
    EXPECT_TRUE(codes.count(1) == 1 && codes.count(3) == 1) << "they reach the magic and the checksums";
}

} // namespace
