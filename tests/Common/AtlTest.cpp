// Our stand-ins for ATL's owner classes.
#include <windows.h>
#include <atlbase.h>

#include <gtest/gtest.h>
#include <string>

namespace {

using ATL::CComBSTR;
using ATL::CComPtr;

/// Counts its references, its own one included.
class Counted : public IUnknown {
  public:
    virtual ~Counted() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<IUnknown*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    ULONG references = 1;
};

class AtlPointerTest : public testing::Test {
  protected:
    Counted m_object;
    Counted m_other;
};

TEST_F(AtlPointerTest, EmptyPointer_IsNull) {
    const CComPtr<IUnknown> pointer;
    EXPECT_TRUE(!pointer);
    EXPECT_TRUE(pointer == nullptr);
    EXPECT_EQ(static_cast<IUnknown*>(pointer), nullptr);
}

TEST_F(AtlPointerTest, Copies_HaveReferencesOfTheirOwn) {
    {
        const CComPtr<IUnknown> first(&m_object);
        EXPECT_EQ(m_object.references, 2u);
        const CComPtr<IUnknown> second(first);
        EXPECT_EQ(m_object.references, 3u);
        EXPECT_TRUE(first == second);
    }
    EXPECT_EQ(m_object.references, 1u);
}

TEST_F(AtlPointerTest, Move_PassesTheReferenceOn) {
    CComPtr<IUnknown> first(&m_object);
    CComPtr<IUnknown> second(std::move(first));
    EXPECT_EQ(m_object.references, 2u);
    CComPtr<IUnknown> third(&m_other);
    third = std::move(second);
    EXPECT_EQ(m_object.references, 2u);
    EXPECT_EQ(m_other.references, 1u);
    EXPECT_TRUE(third == &m_object);
}

TEST_F(AtlPointerTest, Assignment_GivesTheOldReferenceBack) {
    CComPtr<IUnknown> pointer(&m_object);
    pointer = &m_other;
    EXPECT_EQ(m_object.references, 1u);
    EXPECT_EQ(m_other.references, 2u);
    CComPtr<IUnknown>& same = pointer;
    pointer = same;
    EXPECT_EQ(m_other.references, 2u);
    pointer = pointer.p;
    EXPECT_EQ(m_other.references, 2u);
    pointer = nullptr;
    EXPECT_EQ(m_other.references, 1u);
}

TEST_F(AtlPointerTest, AttachAndDetach_CountNothing) {
    CComPtr<IUnknown> pointer;
    m_object.AddRef();
    pointer.Attach(&m_object);
    EXPECT_EQ(m_object.references, 2u);
    IUnknown* const detached = pointer.Detach();
    EXPECT_EQ(m_object.references, 2u);
    EXPECT_EQ(detached, &m_object);
    EXPECT_TRUE(!pointer);
    detached->Release();
}

TEST_F(AtlPointerTest, AddressOfEmptyPointer_TakesAnOutArgument) {
    CComPtr<IUnknown> pointer;
    ASSERT_EQ(m_object.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&pointer)), S_OK);
    EXPECT_EQ(m_object.references, 2u);
    EXPECT_EQ(pointer->AddRef(), 3u);
    EXPECT_EQ((*pointer).Release(), 2u);
}

TEST_F(AtlPointerTest, CopyTo_AddsAReferenceAndRefusesNull) {
    const CComPtr<IUnknown> pointer(&m_object);
    IUnknown* copy = nullptr;
    EXPECT_EQ(pointer.CopyTo(&copy), S_OK);
    EXPECT_EQ(m_object.references, 3u);
    copy->Release();
    EXPECT_EQ(pointer.CopyTo(nullptr), E_POINTER);
    const CComPtr<IUnknown> empty;
    EXPECT_EQ(empty.CopyTo(&copy), S_OK);
    EXPECT_EQ(copy, nullptr);
}

TEST_F(AtlPointerTest, QueryInterface_AsksTheObject) {
    const CComPtr<IUnknown> pointer(&m_object);
    CComPtr<IUnknown> answer;
    EXPECT_EQ(pointer.QueryInterface(IID_IUnknown, &answer), S_OK);
    EXPECT_EQ(m_object.references, 3u);
    CComPtr<IUnknown> none;
    EXPECT_EQ(pointer.QueryInterface(IID_IClassFactory, &none), E_NOINTERFACE);
    EXPECT_TRUE(!none);
    EXPECT_EQ(CComPtr<IUnknown>().QueryInterface(IID_IUnknown, &none), E_POINTER);
    EXPECT_EQ(pointer.QueryInterface(IID_IUnknown, static_cast<IUnknown**>(nullptr)), E_POINTER);
}

TEST(AtlStringTest, NullAndEmpty_AreTwoValuesOfLengthZero) {
    const CComBSTR null;
    const CComBSTR empty(L"");
    EXPECT_EQ(null.m_str, nullptr);
    EXPECT_NE(empty.m_str, nullptr);
    EXPECT_EQ(null.Length(), 0u);
    EXPECT_EQ(empty.Length(), 0u);
    EXPECT_TRUE(!null);
    EXPECT_FALSE(!empty);
    EXPECT_TRUE(null == empty);
    EXPECT_EQ(CComBSTR(static_cast<const wchar_t*>(nullptr)).m_str, nullptr);
}

TEST(AtlStringTest, Text_IsCopiedWithItsLength) {
    const CComBSTR text(L"abc");
    EXPECT_EQ(text.Length(), 3u);
    EXPECT_EQ(text.ByteLength(), 3 * sizeof(wchar_t));
    EXPECT_EQ(std::wstring(text), L"abc");
    EXPECT_TRUE(text == L"abc");
    EXPECT_TRUE(text != L"abd");
    EXPECT_TRUE(text != CComBSTR(L"ab"));
}

TEST(AtlStringTest, EmbeddedZeros_AreKept) {
    const CComBSTR text(3, L"a\0c");
    const CComBSTR copy(text);
    EXPECT_EQ(copy.Length(), 3u);
    EXPECT_EQ(copy.m_str[2], L'c');
    EXPECT_TRUE(copy == text);
    EXPECT_TRUE(copy != L"a");
}

TEST(AtlStringTest, CopyMoveAndAssignment_OwnOneTextEach) {
    CComBSTR first(L"first");
    CComBSTR second(first);
    EXPECT_NE(first.m_str, second.m_str);
    const BSTR kept = first.m_str;
    CComBSTR third(std::move(first));
    EXPECT_EQ(third.m_str, kept);
    EXPECT_EQ(first.m_str, nullptr);
    second = L"second";
    first = second;
    EXPECT_TRUE(first == L"second");
    CComBSTR& same = first;
    first = same;
    EXPECT_TRUE(first == L"second");
    first = std::move(third);
    EXPECT_TRUE(first == L"first");
    first = static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(first.m_str, nullptr);
}

TEST(AtlStringTest, Append_AddsAtTheEnd) {
    CComBSTR text;
    EXPECT_EQ(text.Append(L"ab"), S_OK);
    EXPECT_EQ(text.Append(L"cdef", 2), S_OK);
    EXPECT_EQ(text.Append(static_cast<const wchar_t*>(nullptr)), S_OK);
    EXPECT_EQ(text.Append(CComBSTR()), S_OK);
    EXPECT_EQ(text.Append(L"x", -1), E_INVALIDARG);
    EXPECT_EQ(text.Append(text), S_OK);
    text += L"!";
    text += CComBSTR(L"?");
    EXPECT_EQ(std::wstring(text), L"abcdabcd!?");
    text.Append(text.m_str);
    EXPECT_EQ(std::wstring(text), L"abcdabcd!?abcdabcd!?");
}

TEST(AtlStringTest, AttachDetachCopyEmpty_PassOwnership) {
    CComBSTR text(L"old");
    text.Attach(::SysAllocString(L"new"));
    EXPECT_TRUE(text == L"new");
    text.Attach(text.m_str);
    EXPECT_TRUE(text == L"new");
    const BSTR copy = text.Copy();
    const BSTR detached = text.Detach();
    EXPECT_NE(copy, detached);
    EXPECT_EQ(text.m_str, nullptr);
    EXPECT_EQ(text.Copy(), nullptr);
    text.Attach(copy);
    text.Empty();
    EXPECT_EQ(text.m_str, nullptr);
    ::SysFreeString(detached);
    BSTR out = nullptr;
    EXPECT_EQ(CComBSTR(L"x").CopyTo(&out), S_OK);
    CComBSTR owner;
    *&owner = out;
    EXPECT_TRUE(owner == L"x");
    EXPECT_EQ(owner.CopyTo(nullptr), E_POINTER);
}

} // namespace
