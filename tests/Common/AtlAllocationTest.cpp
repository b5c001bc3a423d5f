// What ATL's stand-ins do without memory.
#include <windows.h>
#include <atlbase.h>
#include <quillet-platform/TestHooks.h>

#include <functional>
#include <gtest/gtest.h>

namespace {

using ATL::CComBSTR;
using quillet::platform::FailBstrAllocation;

void ExpectOutOfMemory(const std::function<void()>& operation) {
    FailBstrAllocation(1);
    try {
        operation();
        ADD_FAILURE() << "no exception";
    } catch (const _com_error& error) {
        EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
    }
    FailBstrAllocation(0);
}

TEST(AtlStringWithoutMemoryTest, EveryCopy_RaisesTheComErrorAndKeepsTheOldText) {
    CComBSTR text(L"kept");
    const CComBSTR other(L"other");
    ExpectOutOfMemory([] { CComBSTR failed(L"x"); });
    ExpectOutOfMemory([] { CComBSTR failed(3, L"abc"); });
    ExpectOutOfMemory([&] { CComBSTR failed(other); });
    ExpectOutOfMemory([&] { text = other; });
    ExpectOutOfMemory([&] { text = L"x"; });
    ExpectOutOfMemory([&] { text.Append(L"x"); });
    ExpectOutOfMemory([&] { ::SysFreeString(text.Copy()); });
    EXPECT_TRUE(text == L"kept");
}

} // namespace
