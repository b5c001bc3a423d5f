// IWbemContext: named values, enumeration, copies.
#include "ComFixture.h"

using ATL::CComPtr;
using testing::ElementsAre;

namespace {

class ContextObject : public ComTest {
  protected:
    CComPtr<IWbemContext> context = Context();
    HRESULT Set(const wchar_t* name, _variant_t value) { return context->SetValue(name, 0, &value); }
};

TEST_F(ContextObject, KeepsValuesWithTheirType) {
    EXPECT_EQ(Set(L"ClientSetId", I4(7)), S_OK);
    EXPECT_EQ(Set(L"Text", L"abc"), S_OK);
    EXPECT_EQ(Set(L"clientsetid", I4(8)), S_OK);
    _variant_t value;
    EXPECT_EQ(context->GetValue(L"CLIENTSETID", 0, &value), S_OK);
    EXPECT_EQ(value, I4(8));
    _variant_t text;
    EXPECT_EQ(context->GetValue(L"Text", 0, &text), S_OK);
    EXPECT_EQ(text, _variant_t(L"abc"));
    SAFEARRAY* names = nullptr;
    EXPECT_EQ(context->GetNames(0, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre(L"ClientSetId", L"Text"));
}

TEST_F(ContextObject, DeletesValues) {
    EXPECT_EQ(Set(L"A", I4(1)), S_OK);
    EXPECT_EQ(Set(L"B", I4(2)), S_OK);
    EXPECT_EQ(Code(context->DeleteValue(L"a", 0)), "0x00000000");
    EXPECT_EQ(Code(context->DeleteValue(L"a", 0)), "0x80041002");
    _variant_t value;
    EXPECT_EQ(Code(context->GetValue(L"A", 0, &value)), "0x80041002");
    EXPECT_EQ(context->DeleteAll(), S_OK);
    SAFEARRAY* names = nullptr;
    EXPECT_EQ(context->GetNames(0, &names), S_OK);
    EXPECT_THAT(TakeNames(names), ElementsAre());
}

TEST_F(ContextObject, Enumerates) {
    BSTR name = nullptr;
    _variant_t value;
    EXPECT_EQ(Code(context->Next(0, &name, &value)), "0x8004101D");
    EXPECT_EQ(Set(L"A", I4(1)), S_OK);
    EXPECT_EQ(Set(L"B", L"two"), S_OK);
    EXPECT_EQ(context->BeginEnumeration(0), S_OK);
    EXPECT_EQ(context->Next(0, &name, &value), S_OK);
    EXPECT_STREQ(name, L"A");
    SysFreeString(name);
    value.Clear();
    EXPECT_EQ(context->Next(0, nullptr, &value), S_OK);
    EXPECT_EQ(value, _variant_t(L"two"));
    EXPECT_EQ(Code(context->Next(0, &name, &value)), "0x00040005");
    EXPECT_EQ(context->EndEnumeration(), S_OK);
    EXPECT_EQ(Code(context->Next(0, &name, &value)), "0x8004101D");
}

TEST_F(ContextObject, AValueDeletedWhileEnumeratingIsPassedOver) {
    EXPECT_EQ(Set(L"A", I4(1)), S_OK);
    EXPECT_EQ(Set(L"B", I4(2)), S_OK);
    EXPECT_EQ(context->BeginEnumeration(0), S_OK);
    EXPECT_EQ(context->DeleteValue(L"A", 0), S_OK);
    _variant_t value;
    EXPECT_EQ(context->Next(0, nullptr, &value), S_OK);
    EXPECT_EQ(value, I4(2));
}

TEST_F(ContextObject, ACloneIsIndependent) {
    EXPECT_EQ(Set(L"A", I4(1)), S_OK);
    CComPtr<IWbemContext> copy;
    ASSERT_EQ(context->Clone(&copy), S_OK);
    EXPECT_EQ(Set(L"A", I4(2)), S_OK);
    _variant_t value;
    EXPECT_EQ(copy->GetValue(L"A", 0, &value), S_OK);
    EXPECT_EQ(value, I4(1));
}

TEST_F(ContextObject, ArgumentsAreChecked) {
    _variant_t value = I4(1);
    EXPECT_EQ(Code(context->SetValue(nullptr, 0, &value)), "0x80041008");
    EXPECT_EQ(Code(context->SetValue(L"A", 0, nullptr)), "0x80041008");
    EXPECT_EQ(Code(context->SetValue(L"A", 1, &value)), "0x80041008");
    EXPECT_EQ(Code(context->GetValue(nullptr, 0, &value)), "0x80041008");
    EXPECT_EQ(Code(context->GetValue(L"A", 0, nullptr)), "0x80041008");
    EXPECT_EQ(Code(context->DeleteValue(nullptr, 0)), "0x80041008");
    EXPECT_EQ(Code(context->GetNames(0, nullptr)), "0x80041008");
    EXPECT_EQ(Code(context->BeginEnumeration(1)), "0x80041008");
    EXPECT_EQ(Code(context->Next(1, nullptr, nullptr)), "0x80041008");
    EXPECT_EQ(Code(context->Clone(nullptr)), "0x80041008");
}

TEST_F(ContextObject, TheJournalKeepsTheValuesOfEachCall) {
    EXPECT_EQ(Set(L"ClientSetId", I4(7)), S_OK);
    EXPECT_EQ(Set(L"GET_EXTENSIONS", true), S_OK);
    CComPtr<IWbemClassObject> object;
    ASSERT_EQ(services->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, context, &object, nullptr), S_OK);
    EXPECT_EQ(Set(L"ClientSetId", I4(0)), S_OK);
    object.Release();
    ASSERT_EQ(services->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, nullptr, &object, nullptr), S_OK);
    const auto calls = machine->Calls().All();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_TRUE(calls[0].hasContext);
    ASSERT_NE(calls[0].ContextValue(L"clientsetid"), nullptr);
    EXPECT_EQ(calls[0].ContextValue(L"ClientSetId")->vt, VT_I4);
    EXPECT_EQ(calls[0].ContextValue(L"ClientSetId")->value, Value::Signed(7));
    EXPECT_EQ(calls[0].ContextValue(L"GET_EXTENSIONS")->vt, VT_BOOL);
    EXPECT_EQ(calls[0].ContextValue(L"GET_EXTENSIONS")->value, Value::Bool(true));
    EXPECT_FALSE(calls[1].hasContext);
    EXPECT_TRUE(calls[1].context.empty());
}

TEST_F(ContextObject, TheJournalShowsValuesOfEveryType) {
    EXPECT_EQ(Set(L"Real", 2.5), S_OK);
    EXPECT_EQ(Set(L"Bytes", ByteArray({1, 2})), S_OK);
    EXPECT_EQ(Set(L"Texts", TextArray({L"a", L"b"})), S_OK);
    EXPECT_EQ(Set(L"Date", NumberVariant(VT_DATE, 0)), S_OK);
    CComPtr<IWbemClassObject> object;
    ASSERT_EQ(services->GetObject(_bstr_t(L"Test_All").GetBSTR(), 0, context, &object, nullptr), S_OK);
    const auto call = machine->Calls().All().back();
    EXPECT_EQ(call.ContextValue(L"Real")->value, Value(Scalar(2.5)));
    EXPECT_EQ(call.ContextValue(L"Bytes")->value,
              Value(Value::Array{Scalar(std::int64_t{1}), Scalar(std::int64_t{2})}));
    EXPECT_EQ(call.ContextValue(L"Texts")->value,
              Value(Value::Array{Scalar(std::wstring(L"a")), Scalar(std::wstring(L"b"))}));
    EXPECT_EQ(call.ContextValue(L"Date")->vt, VT_DATE);
    EXPECT_TRUE(call.ContextValue(L"Date")->value.IsNull()) << "CIM has no such type";
}

} // namespace
