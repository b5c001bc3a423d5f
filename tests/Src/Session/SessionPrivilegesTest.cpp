// The process token: which of its steps may fail, and with what.
#include "ProviderTest.h"

#include <quillet-platform/TestHooks.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace platform = quillet::platform;
using Access = QuilletTestAccess;

class SessionPrivilegesTest : public ProviderTest {
  protected:
    SessionPrivilegesTest() : ProviderTest(NET_SERVICE_MOF) {}
    ~SessionPrivilegesTest() override { platform::ResetHooks(); }
};

TEST_F(SessionPrivilegesTest, SetInitialSecurityAttribute_EnablesEveryPrivilegeOfTheToken) {
    const long tokens = platform::Live().tokens;
    EXPECT_EQ(Code(Access::SetInitialSecurityAttribute(quillet)), "0x00000000");
    EXPECT_FALSE(platform::EnabledPrivileges().empty());
    EXPECT_EQ(platform::Live().tokens, tokens);
}

struct Refused {
    platform::TokenStep step;
    const char* name;
};

class TokenStepTest : public SessionPrivilegesTest, public testing::WithParamInterface<Refused> {};

TEST_P(TokenStepTest, InitQuillet_TokenStepFails_IsDeniedAndSendsNothing) {
    platform::FailToken(GetParam().step);
    const long tokens = platform::Live().tokens;
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x80041003");
    EXPECT_THAT(Traced(), ElementsAre("Enter InitQuillet"));
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_THAT(platform::EnabledPrivileges(), IsEmpty());
    EXPECT_EQ(platform::Live().tokens, tokens);
    EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
}

INSTANTIATE_TEST_SUITE_P(Steps, TokenStepTest,
                         testing::Values(Refused{platform::TokenStep::Open, "Open"},
                                         Refused{platform::TokenStep::Query, "Query"},
                                         Refused{platform::TokenStep::Adjust, "Adjust"}),
                         [](const testing::TestParamInfo<Refused>& test) { return test.param.name; });

TEST_F(SessionPrivilegesTest, AddNameSpace_ComputerNameUnknown_IsError) {
    platform::FailComputerName(true);
    EXPECT_EQ(Access::AddNameSpace(quillet, L"Zorel_VLAN.Name=\"x\""), L"error");
    EXPECT_THAT(Traced(), ElementsAre("GetComputerName Failure!!!"));
}

} // namespace
