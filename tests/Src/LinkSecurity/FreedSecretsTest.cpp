// What is freed while link security is at work: no block that anyone but the simulator gives back may still
// hold a secret.
#include "LinkSecurity/EveryWay.h"

#include <FreedBlocks.h>

#include <quillet-platform/TestHooks.h>

#include <comdef.h>

namespace {

using quillet::tests::FreedBlocks;
using testing::IsEmpty;
using testing::Not;

constexpr const wchar_t* kSecret = L"CANARY of a test that frees it by itself CANARY";

std::string Text(const std::vector<FreedBlocks::Finding>& findings) {
    std::string text;
    for (const FreedBlocks::Finding& finding : findings) {
        text += std::to_string(finding.bytes) + (finding.isBstr ? " bytes, a BSTR" : " bytes") +
                ", freed by" + finding.where + "\n";
    }
    return text;
}

// --- the watcher itself ------------------------------------------------------------------------------------

TEST(FreedBlocksTest, FindsWhatIsFreedAsItIs) {
    const FreedBlocks freed(kCanary);
    { const std::wstring text(kSecret); }
    ASSERT_EQ(freed.Findings().size(), 1u);
    EXPECT_FALSE(freed.Findings()[0].isBstr);
    EXPECT_FALSE(freed.Findings()[0].bySimulator);
    SysFreeString(SysAllocString(kSecret));
    ASSERT_EQ(freed.Findings().size(), 2u);
    EXPECT_TRUE(freed.Findings()[1].isBstr);
    { const std::string narrow("a CANARY that has a block of its own"); }
    EXPECT_EQ(freed.FindingsOutsideSimulator().size(), 3u);
}

TEST(FreedBlocksTest, FindsNeitherLiveNorOverwrittenTexts) {
    const std::wstring live(kSecret);
    const FreedBlocks freed(kCanary);
    {
        std::wstring overwritten(kSecret);
        std::fill(overwritten.begin(), overwritten.end(), L'x');
        const std::wstring other(100, L'y');
    }
    EXPECT_EQ(freed.Count(), 2u);
    EXPECT_THAT(Text(freed.Findings()), IsEmpty());
}

class FreedSecretsTest : public ProviderTest {
  protected:
    void SetUp() override {
        // Not a copy, which would share its secrets with the machine that it is one of.
        Use(Machine::FromText(LinkSecurityOperations().machine, "test.mof", Options()));
        Connect();
    }
};

TEST_F(FreedSecretsTest, SimulatorsOwn_AreToldApart) {
    quillet.UninitQuillet();
    const FreedBlocks freed(kCanary);
    Use(nullptr); // with its secrets
    EXPECT_THAT(freed.Findings(), Not(IsEmpty()));
    EXPECT_THAT(Text(freed.FindingsOutsideSimulator()), IsEmpty());
}

TEST_F(FreedSecretsTest, TextReadAsIfItWereNoSecret_IsCaught) {
    const ATL::CComPtr<IWbemServices> service = QuilletTestAccess::GetWbemService(quillet);
    ATL::CComPtr<IWbemClassObject> configuration;
    ASSERT_EQ(Code(service->GetObject(_bstr_t(LR"(Zorel_LinkSecConfiguration.DeviceID="{A}")"), 0, nullptr,
                                      &configuration, nullptr)),
              "0x00000000");
    const FreedBlocks freed(kCanary);
    {
        _bstr_t text;
        bool isNull = false;
        ASSERT_EQ(Code(QuilletTestAccess::GetPropertyAsString(configuration, L"strPassword", text, isNull)),
                  "0x00000000");
    }
    ASSERT_EQ(freed.FindingsOutsideSimulator().size(), 1u);
    EXPECT_TRUE(freed.FindingsOutsideSimulator()[0].isBstr);
}

TEST_F(FreedSecretsTest, RecordThatIsUsedAgain_LeavesNothingOfWhatItHeld) {
    const std::wstring adapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
    CAdapterLinksecSavedCredInfo longer;
    longer.m_sPassword = std::wstring(500, L'x') + kSecret;
    const FreedBlocks freed(kCanary);
    {
        CAdapterLinksecSavedCredInfo record;
        record.m_sPassword = kSecret;
        record = longer; // which takes another block
        CAdapterLinksecSavedCredInfo shorter;
        shorter.m_sPassword = L"CANARY";
        ASSERT_EQ(Code(quillet.GetAdapterSavedCredOptions(adapter, shorter)), "0x00000000");
        ASSERT_EQ(Code(quillet.GetAdapterSavedCredOptions(adapter, record)), "0x00000000");
        const CAdapterLinksecSavedCredInfo copy(record);
    }
    EXPECT_THAT(Text(freed.FindingsOutsideSimulator()), IsEmpty());
}

// --- operations --------------------------------------------------------------------------------------------

class OperationsFreeNoSecretsTest : public EveryWayTest {};

TEST_P(OperationsFreeNoSecretsTest, InAnyWay) {
    std::size_t freedBlocks = 0;
    std::size_t simulators = 0;
    EveryWay([&](const std::function<HRESULT()>& run) {
        const FreedBlocks freed(kCanary);
        run();
        EXPECT_THAT(Text(freed.FindingsOutsideSimulator()), IsEmpty());
        freedBlocks += freed.Count();
        simulators += freed.Findings().size();
    });
    EXPECT_GT(freedBlocks, Ways());
    const std::string name = GetParam().name;
    if (name != "DeletePacFile" && name != "GetAdapterPacFileContents" &&
        name != "GetAdapterLinksecSecurityStats" && name.find("Outer1") == std::string::npos) {
        EXPECT_GT(simulators, 0u) << "the secrets came through the simulator";
    }
}

TEST_P(OperationsFreeNoSecretsTest, WhenStringsCannotBeAllocated) {
    const auto once = [this](unsigned long failing) {
        Prepare();
        const unsigned long before = quillet::platform::BstrAllocations();
        const FreedBlocks freed(kCanary);
        quillet::platform::FailBstrAllocation(failing);
        try {
            Outputs outputs;
            GetParam().run(quillet, outputs);
        } catch (const _com_error& error) {
            EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
        }
        quillet::platform::FailBstrAllocation(0);
        EXPECT_THAT(Text(freed.FindingsOutsideSimulator()), IsEmpty()) << "allocation " << failing;
        return quillet::platform::BstrAllocations() - before;
    };
    const unsigned long count = once(0);
    ASSERT_GT(count, 0u);
    for (unsigned long failing = 1; failing <= count; ++failing) {
        once(failing);
    }
}

INSTANTIATE_TEST_SUITE_P(LinkSecurity, OperationsFreeNoSecretsTest,
                         testing::ValuesIn(LinkSecurityOperations().operations), CaseName);

} // namespace
