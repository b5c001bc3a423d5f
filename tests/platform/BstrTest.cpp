// BSTR and _bstr_t: the length prefix, embedded zeros, reallocation, sharing and ownership.
#include <windows.h>
#include <oleauto.h>
#include <comdef.h>
#include <comutil.h>

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr UINT kCharacter = sizeof(OLECHAR);

std::wstring Text(BSTR text) {
    return {text, SysStringLen(text)};
}

/// The 32-bit number that stands just before the text.
std::uint32_t Prefix(BSTR text) {
    std::uint32_t prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const char*>(text) - sizeof prefix, sizeof prefix);
    return prefix;
}

TEST(BstrTest, KeepsItsLengthInBytesBeforeTheText) {
    const BSTR text = SysAllocString(L"adapter");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(Prefix(text), 7 * kCharacter);
    EXPECT_EQ(SysStringLen(text), 7u);
    EXPECT_EQ(SysStringByteLen(text), 7 * kCharacter);
    EXPECT_EQ(text[7], L'\0');
    EXPECT_EQ(std::wstring(text), L"adapter");
    SysFreeString(text);
}

TEST(BstrTest, NullHasNoLengthAndIsFreedWithoutHarm) {
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysStringByteLen(nullptr), 0u);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    SysFreeString(nullptr);
}

TEST(BstrTest, EmptyTextIsNotNull) {
    const BSTR text = SysAllocString(L"");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 0u);
    EXPECT_EQ(*text, L'\0');
    SysFreeString(text);
}

TEST(BstrTest, KeepsEmbeddedZeros) {
    const BSTR text = SysAllocStringLen(L"a\0b\0", 4);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(Text(text), std::wstring(L"a\0b\0", 4));
    EXPECT_EQ(text[4], L'\0');
    SysFreeString(text);
}

TEST(BstrTest, CopiesOnlyTheLengthThatIsAsked) {
    const BSTR text = SysAllocStringLen(L"network", 3);
    EXPECT_EQ(Text(text), L"net");
    EXPECT_EQ(text[3], L'\0');
    SysFreeString(text);
}

TEST(BstrTest, NullSourceGivesRoomWithATerminator) {
    const BSTR text = SysAllocStringLen(nullptr, 5);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 5u);
    EXPECT_EQ(text[5], L'\0');
    SysFreeString(text);
}

TEST(BstrTest, ByteLengthNeedNotBeWholeCharacters) {
    const char bytes[] = {1, 2, 3, 4, 5};
    for (UINT count = 0; count <= sizeof bytes; ++count) {
        const BSTR text = SysAllocStringByteLen(bytes, count);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(SysStringByteLen(text), count);
        EXPECT_EQ(SysStringLen(text), count / kCharacter);
        EXPECT_EQ(std::memcmp(text, bytes, count), 0);
        // Whoever takes it for a text must find an end.
        EXPECT_LE(std::wcslen(text), (count + kCharacter - 1) / kCharacter);
        SysFreeString(text);
    }
}

TEST(BstrTest, AbsurdLengthsGiveNull) {
    EXPECT_EQ(SysAllocStringLen(nullptr, ~0u), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000u), nullptr);
}

TEST(BstrTest, ReallocationReplacesTheText) {
    BSTR text = SysAllocString(L"one");
    EXPECT_TRUE(SysReAllocString(&text, L"another"));
    EXPECT_EQ(Text(text), L"another");
    EXPECT_TRUE(SysReAllocString(&text, L""));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 0u);
    EXPECT_TRUE(SysReAllocStringLen(&text, L"x\0y", 3));
    EXPECT_EQ(Text(text), std::wstring(L"x\0y", 3));
    SysFreeString(text);
}

TEST(BstrTest, ReallocationMayTakeAPartOfTheOldText) {
    BSTR text = SysAllocString(L"gigabit adapter");
    EXPECT_TRUE(SysReAllocStringLen(&text, text, 7));
    EXPECT_EQ(Text(text), L"gigabit");
    SysFreeString(text);
}

TEST(BstrTest, ReallocationStartsFromNull) {
    BSTR text = nullptr;
    EXPECT_TRUE(SysReAllocString(&text, L"first"));
    EXPECT_EQ(Text(text), L"first");
    SysFreeString(text);
    text = nullptr;
    EXPECT_TRUE(SysReAllocStringLen(&text, L"second", 6));
    EXPECT_EQ(Text(text), L"second");
    SysFreeString(text);
}

// --- _bstr_t -------------------------------------------------------------------------------------------

TEST(BstrOwnerTest, DefaultIsNull) {
    const _bstr_t text;
    EXPECT_EQ(static_cast<const wchar_t*>(text), nullptr);
    EXPECT_EQ(text.length(), 0u);
    EXPECT_TRUE(!text);
}

TEST(BstrOwnerTest, TakesWideText) {
    const _bstr_t text(L"wide");
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"wide");
    EXPECT_EQ(text.length(), 4u);
    EXPECT_FALSE(!text);
}

TEST(BstrOwnerTest, CopiesShareOneText) {
    const _bstr_t first(L"shared");
    const _bstr_t second(first);
    EXPECT_EQ(static_cast<const wchar_t*>(first), static_cast<const wchar_t*>(second));
    _bstr_t third;
    third = second;
    EXPECT_EQ(static_cast<const wchar_t*>(first), static_cast<const wchar_t*>(third));
}

TEST(BstrOwnerTest, CopyMakesATextForTheCaller) {
    const _bstr_t owner(L"mine");
    const BSTR copy = owner.copy();
    EXPECT_NE(copy, static_cast<const wchar_t*>(owner));
    EXPECT_EQ(Text(copy), L"mine");
    SysFreeString(copy);
    EXPECT_EQ(owner.copy(false), static_cast<const wchar_t*>(owner));
}

TEST(BstrOwnerTest, CopyKeepsEmbeddedZeros) {
    const BSTR raw = SysAllocStringLen(L"a\0b", 3);
    const _bstr_t owner(raw, true);
    EXPECT_NE(static_cast<const wchar_t*>(owner), raw);
    SysFreeString(raw);
    EXPECT_EQ(owner.length(), 3u);
    const BSTR copy = owner.copy();
    EXPECT_EQ(Text(copy), std::wstring(L"a\0b", 3));
    SysFreeString(copy);
}

TEST(BstrOwnerTest, TakesABstrOver) {
    const BSTR raw = SysAllocString(L"taken");
    const _bstr_t owner(raw, false);
    EXPECT_EQ(static_cast<const wchar_t*>(owner), raw);
}

TEST(BstrOwnerTest, AttachAndDetachPassOwnership) {
    _bstr_t owner(L"before");
    const BSTR raw = SysAllocString(L"attached");
    owner.Attach(raw);
    EXPECT_EQ(static_cast<const wchar_t*>(owner), raw);
    const BSTR detached = owner.Detach();
    EXPECT_EQ(detached, raw);
    EXPECT_TRUE(!owner);
    SysFreeString(detached);
}

TEST(BstrOwnerTest, GetAddressReceivesAnOutParameter) {
    _bstr_t owner(L"old");
    const _bstr_t view(owner);
    BSTR* const place = owner.GetAddress();
    EXPECT_EQ(*place, nullptr);
    *place = SysAllocString(L"new");
    EXPECT_STREQ(static_cast<const wchar_t*>(owner), L"new");
    EXPECT_STREQ(static_cast<const wchar_t*>(view), L"old");
}

TEST(BstrOwnerTest, ConcatenatesAndCompares) {
    const _bstr_t head(L"team");
    const _bstr_t sum = head + _bstr_t(L" of ") + L"two";
    EXPECT_STREQ(static_cast<const wchar_t*>(sum), L"team of two");
    EXPECT_STREQ(static_cast<const wchar_t*>(L"a " + head), L"a team");
    EXPECT_STREQ(static_cast<const wchar_t*>(head), L"team");
    _bstr_t grown(head);
    grown += L"s";
    EXPECT_STREQ(static_cast<const wchar_t*>(grown), L"teams");
    EXPECT_TRUE(head == _bstr_t(L"team"));
    EXPECT_TRUE(head != grown);
    EXPECT_TRUE(head < grown);
    EXPECT_TRUE(grown > head);
    EXPECT_TRUE(_bstr_t(L"Team") < head);
    EXPECT_TRUE(_bstr_t() < _bstr_t(L""));
    EXPECT_TRUE(_bstr_t() == _bstr_t());
}

TEST(BstrOwnerTest, AssignmentToItselfKeepsTheText) {
    _bstr_t owner(L"same");
    _bstr_t& alias = owner;
    owner = alias;
    EXPECT_STREQ(static_cast<const wchar_t*>(owner), L"same");
    owner = static_cast<const wchar_t*>(owner);
    EXPECT_STREQ(static_cast<const wchar_t*>(owner), L"same");
    owner = static_cast<const wchar_t*>(nullptr);
    EXPECT_TRUE(!owner);
}

TEST(BstrOwnerTest, ReadsAVariantAsText) {
    EXPECT_STREQ(static_cast<const wchar_t*>(_bstr_t(_variant_t(LONG{42}))), L"42");
    EXPECT_STREQ(static_cast<const wchar_t*>(_bstr_t(_variant_t(L"text"))), L"text");
    VARIANT null;
    VariantInit(&null);
    V_VT(&null) = VT_NULL;
    try {
        const _bstr_t text{_variant_t(null)};
        ADD_FAILURE() << "a null became the text " << static_cast<const wchar_t*>(text);
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), DISP_E_TYPEMISMATCH);
    }
}

// --- _com_error ----------------------------------------------------------------------------------------

TEST(ComErrorTest, CarriesItsCode) {
    const _com_error error(E_OUTOFMEMORY);
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
    EXPECT_EQ(error.ErrorInfo(), nullptr);
    const _com_error copy(error);
    EXPECT_EQ(copy.Error(), E_OUTOFMEMORY);
    EXPECT_EQ(copy.WCode(), 0);
}

TEST(ComErrorTest, MessageHasNoLineEnd) {
    const _com_error error(E_ACCESSDENIED);
    const std::basic_string<TCHAR> message = error.ErrorMessage();
    ASSERT_FALSE(message.empty());
    EXPECT_NE(message.back(), TEXT('\n'));
    EXPECT_NE(message.back(), TEXT('\r'));
}

TEST(ComErrorTest, CodeWithoutTextStillHasAMessage) {
    const _com_error error(static_cast<HRESULT>(0x8fff1234));
    const std::basic_string<TCHAR> message = error.ErrorMessage();
    EXPECT_NE(message.find(TEXT("8FFF1234")), std::basic_string<TCHAR>::npos);
}

TEST(ComErrorTest, DispatchCodesMapBothWays) {
    EXPECT_EQ(_com_error::WCodeToHRESULT(0x10), static_cast<HRESULT>(0x80040210));
    EXPECT_EQ(_com_error::HRESULTToWCode(static_cast<HRESULT>(0x80040210)), 0x10);
    EXPECT_EQ(_com_error::HRESULTToWCode(E_FAIL), 0);
}

TEST(ComErrorTest, CheckErrorRaisesOnlyFailures) {
    EXPECT_NO_THROW(_com_util::CheckError(S_OK));
    EXPECT_NO_THROW(_com_util::CheckError(S_FALSE));
    try {
        _com_util::CheckError(E_UNEXPECTED);
        ADD_FAILURE() << "nothing was raised";
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_UNEXPECTED);
    }
}

} // namespace
