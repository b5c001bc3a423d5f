// What is freed while the layer carries secrets: no block that anyone but the simulator gives back may still
// hold one.
#include "ClientOperations.h"

#include "Operations.h"

#include <FreedBlocks.h>

namespace quillet::tests {

namespace {

constexpr const char* kCanary = "CANARY";

class FreedClientSecretsTest : public ProviderTest, public testing::WithParamInterface<OperationCase> {};

TEST_P(FreedClientSecretsTest, OperationsOfTheLayer_LeaveNone) {
    UseText(LinkSecurityOperations().machine);
    Session session;
    const FreedBlocks freed(kCanary);
    FindClientOperation(GetParam().name)->run(session);
    for (const FreedBlocks::Finding& finding : freed.FindingsOutsideSimulator()) {
        ADD_FAILURE() << finding.bytes << " bytes, freed by" << finding.where;
    }
    EXPECT_GT(freed.Count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(LinkSecurity, FreedClientSecretsTest,
                         testing::ValuesIn(LinkSecurityOperations().operations),
                         [](const testing::TestParamInfo<OperationCase>& each) {
                             return std::string(each.param.name);
                         });

TEST(FreedSecretTest, ReplacedMovedAndCopied_LeaveNothing) {
    const std::wstring text(L"CANARY of a secret that is replaced CANARY");
    const FreedBlocks freed(kCanary);
    {
        Secret one{std::wstring_view(text)};
        Secret two = one;
        two = Secret(L"CANARY of another, which is longer than the first one was CANARY");
        one = std::move(two);
        const Secret three(one);
    }
    EXPECT_GT(freed.Count(), 3u);
    EXPECT_TRUE(freed.FindingsOutsideSimulator().empty());
}

} // namespace

} // namespace quillet::tests
