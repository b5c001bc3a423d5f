// Result codes as people read them.
#include <quillet/client/Error.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace quillet::tests {

namespace {

std::string Described(std::uint32_t code) {
    return DescribeResult(static_cast<std::int32_t>(code));
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
        return ExplainResult(static_cast<std::int32_t>(code), reason);
    };
    EXPECT_EQ(explained(0x80041003), "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED");
    EXPECT_EQ(explained(0x800706BA), "the machine cannot be reached: 0x800706BA RPC_S_SERVER_UNAVAILABLE");
    EXPECT_EQ(explained(0x80041001), "0x80041001 WBEM_E_FAILED") << "that it failed is said already";
    EXPECT_EQ(explained(0x80041001, "the adapter is in no team"),
              "the adapter is in no team: 0x80041001 WBEM_E_FAILED");
    EXPECT_EQ(explained(0x80041FFF), "0x80041FFF (unknown)");
    EXPECT_EQ(explained(5), "a code of the provider's own: 0x00000005");
}

TEST(ResultCodesTest, ResultCategory_HasMessagesAndConditions) {
    const std::error_code code(static_cast<int>(0x8007000E), ResultCategory());
    EXPECT_EQ(code, std::errc::not_enough_memory);
    EXPECT_EQ(code.message(), "there is not enough memory: 0x8007000E E_OUTOFMEMORY");
    EXPECT_NE(code, std::errc::permission_denied);
    EXPECT_FALSE(std::error_code(0, ResultCategory()));
}

} // namespace

} // namespace quillet::tests
