// A client that forgot to initialise COM is told so.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using Access = QuilletTestAccess;

/// Takes COM away from the main thread, and with it from the process, for as long as this lives.
class WithoutCom {
  public:
    WithoutCom() { CoUninitialize(); }
    ~WithoutCom() { EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))); }
    WithoutCom(const WithoutCom&) = delete;
    WithoutCom& operator=(const WithoutCom&) = delete;
};

TEST(UninitialisedCom, InitQuillet_ReturnsComsOwnCode) {
    quillet::test::TraceFile trace;
    const WithoutCom withoutCom;
    CQuillet quillet;
    EXPECT_EQ(Code(quillet.InitQuillet()), "0x800401F0");
    EXPECT_THAT(trace.NewTexts(), Contains(L"Failed to create IWbemLocator object."));
    EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
    EXPECT_EQ(Code(quillet.UninitQuillet()), "0x00000000");
}

TEST(UninitialisedCom, Operations_FailAsWithoutAConnection) {
    const WithoutCom withoutCom;
    CQuillet quillet;
    quillet.InitQuillet();
    CAdapters adapters;
    bool followup = true;
    ULONGLONG warnings = 5;
    EXPECT_EQ(Code(quillet.EnumerateAdapters(adapters)), "0x80041001");
    EXPECT_EQ(Code(quillet.BeginApply()), "0x80041001");
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x80041001");
    EXPECT_EQ(Code(quillet.GetWarnings(warnings)), "0x80041001");
}

TEST(UninitialisedCom, Marshal_TableCannotBeCreated_TracesAndReturnsItsCode) {
    quillet::test::TraceFile trace;
    const WithoutCom withoutCom;
    CQuillet quillet;
    const HRESULT result = Access::MarshalWbemService(quillet, nullptr);
    Access::MarshalWbemContext(quillet, nullptr);
    Access::MarshalNetService(quillet, nullptr);
    if (Access::InterfaceTable(quillet)) {
        // Wine makes its table for any thread; what it then says is about the interface.
        EXPECT_EQ(Code(result), "0x80070057");
        EXPECT_TRUE(trace.NewTexts().empty());
    } else {
        EXPECT_EQ(Code(result), "0x800401F0");
        EXPECT_THAT(
            trace.NewTexts(),
            testing::ElementsAre(L"MarshalWbemService -> CoCreateInstance -> CLSID_StdGlobalInterfaceTable",
                                 L"MarshalWbemContext -> CoCreateInstance -> CLSID_StdGlobalInterfaceTable",
                                 L"MarshalNetService -> CoCreateInstance -> CLSID_StdGlobalInterfaceTable"));
    }
}

} // namespace
