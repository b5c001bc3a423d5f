// A client that is out of memory: each call says so, leaves nothing behind, and can be made again. Only our
// own platform layer can be told to allocate nothing.
#include "ComFixture.h"

#include <quillet-platform/TestHooks.h>

using ATL::CComPtr;

namespace {

namespace platform = quillet::platform;

constexpr const char* kOutOfMemory = "0x80041006";

class Memory : public ComTest {
  protected:
    /// Makes each string that a call allocates fail in turn.
    /// @param call frees what it was given when it succeeds
    template <class Call>
    static void FailEachString(Call call) {
        const unsigned long before = platform::BstrAllocations();
        ASSERT_EQ(Code(call()), "0x00000000");
        const unsigned long count = platform::BstrAllocations() - before;
        ASSERT_GT(count, 0u) << "no string is allocated";
        FailEach(count, platform::FailBstrAllocation, call);
    }
    /// The same for the arrays, of which it creates this many.
    template <class Call>
    static void FailEachArray(unsigned long count, Call call) {
        FailEach(count, platform::FailArrayAllocation, call);
    }
    template <class Call>
    static void FailEach(unsigned long count, void (*fail)(unsigned long), Call call) {
        const auto alive = platform::Live();
        for (unsigned long nth = 1; nth <= count; ++nth) {
            fail(nth);
            EXPECT_EQ(Code(call()), kOutOfMemory) << nth << " of " << count;
            fail(0);
            EXPECT_TRUE(platform::Live() == alive) << nth << " of " << count << " leaves something";
        }
        EXPECT_EQ(Code(call()), "0x00000000") << "it does not recover";
    }
    void Damage(Effect effect, const wchar_t* name, VARTYPE vt = VT_BSTR) {
        FaultRule rule;
        rule.operation = Operation::Get;
        rule.target = name;
        rule.effect = effect;
        rule.vt = vt;
        rule.repeat = true;
        machine->Rules().Clear();
        machine->Rules().Add(rule);
    }
    HRESULT Read(const wchar_t* name) {
        _variant_t value;
        return one->Get(name, 0, &value, nullptr, nullptr);
    }
    static HRESULT Freed(HRESULT result, BSTR text) {
        SysFreeString(text);
        return result;
    }
    static HRESULT Freed(HRESULT result, SAFEARRAY* array) {
        SafeArrayDestroy(array);
        return result;
    }

    CComPtr<IWbemClassObject> one = Object(kAll);
};

TEST_F(Memory, AValueIsReadWholeOrNotAtAll) {
    for (const auto* name : {L"Caption", L"U64", L"Texts", L"S64s", L"__PATH", L"__DERIVATION"}) {
        SCOPED_TRACE(Narrow(name));
        FailEachString([&] { return Read(name); });
    }
    for (const auto* name : {L"S32s", L"Texts"}) {
        SCOPED_TRACE(Narrow(name));
        FailEachArray(1, [&] { return Read(name); });
    }
    // The bytes of a flash image are copied in one piece, by way of an array that lends them.
    ASSERT_EQ(Put(one, L"U8s", ByteArray({1, 2, 3})), S_OK);
    FailEachArray(2, [&] { return Read(L"U8s"); });
}

TEST_F(Memory, ADamagedValueNeedsItsMemoryToo) {
    Damage(Effect::WrongType, L"Caption");
    FailEachString([&] { return Read(L"Caption"); });
    Damage(Effect::HugeString, L"Caption");
    FailEachString([&] { return Read(L"Caption"); });
    Damage(Effect::WrongType, L"Caption", VT_ARRAY | VT_I4);
    FailEachArray(1, [&] { return Read(L"Caption"); });
    Damage(Effect::UnreadableElement, L"S32s");
    FailEachArray(1, [&] { return Read(L"S32s"); });
    Damage(Effect::UnreadableElement, L"Texts");
    FailEachString([&] { return Read(L"Texts"); });
    Damage(Effect::ShiftedArray, L"S32s");
    FailEachArray(1, [&] { return Read(L"S32s"); });
}

TEST_F(Memory, NamesAndTextsComeWholeOrNotAtAll) {
    const auto definition = Object(L"Test_All");
    const auto names = [&](IWbemClassObject* object) {
        SAFEARRAY* list = nullptr;
        const HRESULT result = object->GetNames(nullptr, WBEM_FLAG_KEYS_ONLY, nullptr, &list);
        return Freed(result, list);
    };
    FailEachString([&] { return names(one); });
    FailEachArray(1, [&] { return names(one); });
    FailEachString([&] {
        BSTR text = nullptr;
        const HRESULT result = one->GetObjectText(0, &text);
        return Freed(result, text);
    });
    for (const auto* name : {L"Name", L"__PATH"}) {
        FailEachString([&] {
            BSTR text = nullptr;
            const HRESULT result = one->GetPropertyOrigin(name, &text);
            return Freed(result, text);
        });
    }
    FailEachString([&] {
        BSTR text = nullptr;
        const HRESULT result = definition->GetMethodOrigin(L"Hello", &text);
        return Freed(result, text);
    });
}

TEST_F(Memory, AnEnumerationStaysWhereItWas) {
    const auto definition = Object(L"Test_All", WBEM_FLAG_USE_AMENDED_QUALIFIERS);
    CComPtr<IWbemQualifierSet> qualifiers;
    ASSERT_EQ(definition->GetPropertyQualifierSet(L"State", &qualifiers), S_OK);
    const auto stays = [](auto next) {
        for (unsigned long nth = 1; nth <= 2; ++nth) {
            BSTR name = nullptr;
            _variant_t value;
            const auto alive = platform::Live();
            platform::FailBstrAllocation(nth);
            EXPECT_EQ(Code(next(&name, &value)), kOutOfMemory) << nth;
            platform::FailBstrAllocation(0);
            EXPECT_EQ(name, nullptr);
            EXPECT_EQ(V_VT(&value), VT_EMPTY);
            EXPECT_TRUE(platform::Live() == alive);
        }
        BSTR name = nullptr;
        _variant_t value;
        EXPECT_EQ(Code(next(&name, &value)), "0x00000000");
        const std::wstring first = name != nullptr ? name : L"";
        SysFreeString(name);
        return first;
    };
    ASSERT_EQ(one->BeginEnumeration(WBEM_FLAG_NONSYSTEM_ONLY), S_OK);
    EXPECT_EQ(stays([&](BSTR* name, VARIANT* value) { return one->Next(0, name, value, nullptr, nullptr); }),
              L"Name");
    ASSERT_EQ(qualifiers->BeginEnumeration(0), S_OK);
    EXPECT_EQ(stays([&](BSTR* name, VARIANT* value) { return qualifiers->Next(0, name, value, nullptr); }),
              L"Description");
    const auto context = Context();
    _variant_t text(L"text");
    ASSERT_EQ(context->SetValue(L"A", 0, &text), S_OK);
    ASSERT_EQ(context->SetValue(L"B", 0, &text), S_OK);
    ASSERT_EQ(context->BeginEnumeration(0), S_OK);
    EXPECT_EQ(stays([&](BSTR* name, VARIANT* value) { return context->Next(0, name, value); }), L"A");
    ASSERT_EQ(definition->BeginMethodEnumeration(WBEM_FLAG_LOCAL_ONLY), S_OK);
    BSTR name = nullptr;
    platform::FailBstrAllocation(1);
    EXPECT_EQ(Code(definition->NextMethod(0, &name, nullptr, nullptr)), kOutOfMemory);
    platform::FailBstrAllocation(0);
    ASSERT_EQ(definition->NextMethod(0, &name, nullptr, nullptr), S_OK);
    EXPECT_STREQ(name, L"Run");
    SysFreeString(name);
}

TEST_F(Memory, AContextKeepsWhatItHad) {
    const auto context = Context();
    _variant_t before(L"before");
    _variant_t after(L"after");
    ASSERT_EQ(context->SetValue(L"A", 0, &before), S_OK);
    platform::FailBstrAllocation(1);
    EXPECT_EQ(Code(context->SetValue(L"A", 0, &after)), kOutOfMemory);
    platform::FailBstrAllocation(0);
    FailEachString([&] {
        _variant_t value;
        const HRESULT result = context->GetValue(L"A", 0, &value);
        if (SUCCEEDED(result)) {
            EXPECT_EQ(value, before);
        }
        return result;
    });
    FailEachString([&] {
        SAFEARRAY* names = nullptr;
        const HRESULT result = context->GetNames(0, &names);
        return Freed(result, names);
    });
    FailEachString([&] {
        CComPtr<IWbemContext> copy;
        return context->Clone(&copy);
    });
}

} // namespace
