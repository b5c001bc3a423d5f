// Path makers on a computer that has no name to tell.
#include "EthernetAdapterMgrHelper.h"

#include <quillet-platform/TestHooks.h>

#include <gtest/gtest.h>

namespace {

using Helper = CZorel_EthernetAdapterMgrHelper;

TEST(PathMakerWithoutComputerNameTest, FullFormFails_RelativeFormDoesNot) {
    quillet::platform::FailComputerName(true);
    ATL::CComBSTR path;
    EXPECT_FALSE(Helper::MakePathFromVlanObjectId(0, L"{1}", path));
    EXPECT_NE(path.m_str, nullptr);
    EXPECT_EQ(path.Length(), 0u);
    EXPECT_TRUE(Helper::MakePathFromVlanObjectId(1, L"{1}", path));
    EXPECT_TRUE(path == L"Zorel_VLAN.Name=\"{1}\"");
    quillet::platform::FailComputerName(false);
}

TEST(PathMakerWithoutMemoryTest, RaisesTheComError) {
    for (unsigned long failing = 1; failing <= 2; ++failing) {
        ATL::CComBSTR path;
        quillet::platform::FailBstrAllocation(1);
        try {
            Helper::MakePathFromVlanObjectId(1, failing == 1 ? L"{1}" : L"", path);
            ADD_FAILURE() << "no exception";
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
        }
        quillet::platform::FailBstrAllocation(0);
    }
}

} // namespace
