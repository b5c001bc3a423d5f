// On Windows a thread that has not initialised COM belongs to the multithreaded apartment as long as another
// thread has made one, so its calls go through.
#include "ProviderTest.h"

#include <thread>

namespace {

class ImplicitApartmentTest : public ProviderTest {
  protected:
    ImplicitApartmentTest() : ProviderTest(NET_SERVICE_MOF) {}
};

TEST_F(ImplicitApartmentTest, Operations_InAThreadWithoutCom_AreInTheApartmentOfTheOthers) {
    Connect();
    HRESULT result = E_FAIL;
    std::thread([this, &result] { result = quillet.BeginApply(); }).join();
    EXPECT_EQ(Code(result), "0x00000000");
    EXPECT_EQ(Called().size(), 2u);
    EXPECT_NE(QuilletTestAccess::ClientSetId(quillet), 0);
}

} // namespace
