// Result codes and bit masks as people read them.
#include <texts/BitMask.h>
#include <texts/ResultCodes.h>

#include <gtest/gtest.h>

#include <cstdint>

using namespace quilletctl;

namespace {

std::string Described(std::uint32_t code) {
    return DescribeResult(static_cast<HRESULT>(code));
}

TEST(ResultCodesTest, DescribeResult_NamesWmiAndComCodes) {
    EXPECT_EQ(Described(0x80041001), "0x80041001 WBEM_E_FAILED");
    EXPECT_EQ(Described(0x80041002), "0x80041002 WBEM_E_NOT_FOUND");
    EXPECT_EQ(Described(0x80041003), "0x80041003 WBEM_E_ACCESS_DENIED");
    EXPECT_EQ(Described(0x8004100E), "0x8004100E WBEM_E_INVALID_NAMESPACE");
    EXPECT_EQ(Described(0x80041010), "0x80041010 WBEM_E_INVALID_CLASS");
    EXPECT_EQ(Described(0x80041017), "0x80041017 WBEM_E_INVALID_QUERY");
    EXPECT_EQ(Described(0x80004005), "0x80004005 E_FAIL");
    EXPECT_EQ(Described(0x80070005), "0x80070005 E_ACCESSDENIED");
    EXPECT_EQ(Described(0x8007000E), "0x8007000E E_OUTOFMEMORY");
    EXPECT_EQ(Described(0x800401F0), "0x800401F0 CO_E_NOTINITIALIZED");
    EXPECT_EQ(Described(0x80040154), "0x80040154 REGDB_E_CLASSNOTREG");
    EXPECT_EQ(Described(0x800706BA), "0x800706BA RPC_S_SERVER_UNAVAILABLE");
}

TEST(ResultCodesTest, DescribeResult_ACodeWithoutANameStandsAlone) {
    EXPECT_EQ(Described(0x80041FFF), "0x80041FFF");
    EXPECT_EQ(Described(0xFFFFFFFF), "0xFFFFFFFF");
    EXPECT_EQ(Described(0), "0x00000000");
}

TEST(ResultCodesTest, ExplainResult_SaysItInWordsFirst) {
    const auto explained = [](std::uint32_t code, const std::string& reason = {}) {
        return ExplainResult(static_cast<HRESULT>(code), reason);
    };
    EXPECT_EQ(explained(0x80041003), "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED");
    EXPECT_EQ(explained(0x800706BA), "the machine cannot be reached: 0x800706BA RPC_S_SERVER_UNAVAILABLE");
    EXPECT_EQ(explained(0x80041001), "0x80041001 WBEM_E_FAILED") << "that it failed is said already";
    EXPECT_EQ(explained(0x80041001, "the adapter is in no team"),
              "the adapter is in no team: 0x80041001 WBEM_E_FAILED");
    EXPECT_EQ(explained(0x80041FFF), "0x80041FFF");
    EXPECT_EQ(explained(5), "a code of the provider's own: 0x00000005");
}

TEST(BitMaskTest, SetBits_FromTheLowest) {
    EXPECT_EQ(SetBits(0), std::vector<unsigned>());
    EXPECT_EQ(SetBits(0x8000000000000005ULL), (std::vector<unsigned>{0, 2, 63}));
}

TEST(BitMaskTest, HexMask_KeepsAll64Bits) {
    EXPECT_EQ(HexMask(0), "0x0000000000000000");
    EXPECT_EQ(HexMask(0x8000000100000005ULL), "0x8000000100000005");
}

} // namespace
