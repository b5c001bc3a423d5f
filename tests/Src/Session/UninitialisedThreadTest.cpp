// A thread that has not initialised COM, while others of the process have. (On Windows such a thread belongs
// to the multithreaded apartment of the others, and its calls go through.)
#include "ProviderTest.h"

#include <thread>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

class UninitialisedThreadTest : public ProviderTest {
  protected:
    UninitialisedThreadTest() : ProviderTest(NET_SERVICE_MOF) {}
    void SetUp() override { Connect(); }
    template <class Work>
    static void InAThreadWithoutCom(Work work) {
        std::thread(work).join();
    }
};

TEST_F(UninitialisedThreadTest, Operations_OnAConnectedObject_FailAndSendNothing) {
    std::vector<HRESULT> results;
    InAThreadWithoutCom([this, &results] {
        CAdapters adapters;
        bool followup = true;
        ULONGLONG warnings = 5;
        results = {quillet.EnumerateAdapters(adapters), quillet.BeginApply(), quillet.ApplyDone(followup),
                   quillet.GetWarnings(warnings)};
    });
    ASSERT_EQ(results.size(), 4u);
    for (const HRESULT result : results) {
        EXPECT_EQ(Code(result), "0x80041001");
    }
    EXPECT_THAT(Called(), IsEmpty());
    constexpr const char* MISSING = "((pIWbemService == NULL) || (pIWbemContext == NULL))";
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::EnumerateAdapters", MISSING,
                                      "Exiting CQuillet::EnumerateAdapters", "Enter CQuillet::BeginApply",
                                      MISSING, "Exit CQuillet::BeginApply", "Enter CQuillet::ApplyDone",
                                      MISSING, "Exit CQuillet::ApplyDone", "Entering CQuillet::GetWarnings",
                                      MISSING, "Exit CQuillet::GetWarnings"));
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000") << "the connection is as it was";
}

TEST_F(UninitialisedThreadTest, InitQuillet_OnAnotherObject_ReturnsComsOwnCode) {
    HRESULT result = S_OK;
    InAThreadWithoutCom([&result] {
        CQuillet other;
        result = other.InitQuillet();
    });
    EXPECT_EQ(Code(result), "0x800401F0");
}

TEST_F(UninitialisedThreadTest, UninitQuillet_OnAConnectedObject_CannotRevoke) {
    const DWORD service = Access::ServiceCookie(quillet);
    const DWORD context = Access::ContextCookie(quillet);
    const DWORD netService = Access::NetServiceCookie(quillet);
    HRESULT result = E_FAIL;
    InAThreadWithoutCom([this, &result] { result = quillet.UninitQuillet(); });
    EXPECT_EQ(Code(result), "0x00000000");
    EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
    // The table refused; whoever calls from the right thread can still do it.
    for (const DWORD cookie : {service, context, netService}) {
        EXPECT_EQ(Code(Access::InterfaceTable(quillet)->RevokeInterfaceFromGlobal(cookie)), "0x00000000");
    }
}

} // namespace
