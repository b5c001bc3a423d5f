// Every string allocation of each operation fails in turn: what escapes is an exception or a failure code,
// and nothing is left.
#include "AllocationFailures.h"
#include "Provider/ProviderNames.h"
#include "ProviderTest.h"

namespace {

using ATL::CComPtr;
using Access = QuilletTestAccess;
namespace platform = quillet::platform;

constexpr const char* kNoArray = "(NULL == pSafeArray) -> Create fail";

constexpr const wchar_t* kAllocationFailuresAdapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const char* kProfiles = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "A"; OriginalDisplayName = "A"; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 5; DefaultValue = 2;
        PossibleValues = {"1", "2", "5"}; DescriptionMap = {"profile 1", "profile 2", "profile 5"}; };)";

class AllocationFailuresTest : public ProviderTest {
  protected:
    AllocationFailuresTest()
        : ProviderTest(R"(
            instance of Zorel_NetService { Name = "ZorelNetService"; Warnings = 5; };
            instance of Zorel_PhysicalEthernetAdapter {
                DeviceID = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
                Name = "Zorel Gigabit";
                OriginalDisplayName = "Zorel Gigabit Server Adapter";
                NetworkAddresses = {"02-00-5E-00-00-01"};
            };)") {}
};

TEST_F(AllocationFailuresTest, InitQuillet_AnyStringMissing_LeavesNothingOnceDisconnected) {
    FailEachStringAllocation(
        [this] {
            const HRESULT result = quillet.InitQuillet();
            if (SUCCEEDED(result)) {
                EXPECT_NE(Access::ServiceCookie(quillet), 0u);
                EXPECT_NE(Access::ContextCookie(quillet), 0u);
                EXPECT_NE(Access::NetServiceCookie(quillet), 0u);
                quillet.UninitQuillet();
            } else {
                EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
            }
            return result;
        },
        [this] { quillet.UninitQuillet(); });
}

TEST_F(AllocationFailuresTest, InitQuillet_OutOfMemoryForThePath_RaisesBeforeAnythingIsSent) {
    // The texts of the namespace path are the first that a connection allocates.
    platform::FailBstrAllocation(1);
    EXPECT_THROW(quillet.InitQuillet(), _com_error);
    platform::FailBstrAllocation(0);
    EXPECT_TRUE(Called().empty());
    EXPECT_EQ(Access::ServiceCookie(quillet), 0u);
}

TEST_F(AllocationFailuresTest, EnumerateAdapters_AnyStringMissing_LeavesNothing) {
    Connect();
    FailEachStringAllocation([this] {
        CAdapters adapters;
        const HRESULT result = quillet.EnumerateAdapters(adapters);
        if (SUCCEEDED(result)) {
            EXPECT_EQ(adapters.m_vecItems.size(), 1u);
            for (const CAdapter* adapter : adapters.m_vecItems) {
                EXPECT_FALSE(adapter->m_wsAdapterID.empty());
                EXPECT_EQ(adapter->m_wsName, L"Zorel Gigabit");
                EXPECT_EQ(adapter->m_wsDisplayName, L"Zorel Gigabit Server Adapter");
                EXPECT_EQ(adapter->m_wsDeviceID, L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}");
            }
        }
        return result;
    });
}

TEST_F(AllocationFailuresTest, BeginApply_AnyStringMissing_LeavesNothing) {
    Connect();
    FailEachStringAllocation([this] {
        Access::ClientSetId(quillet) = 0;
        const HRESULT result = quillet.BeginApply();
        EXPECT_EQ(SUCCEEDED(result), Access::ClientSetId(quillet) != 0);
        return result;
    });
}

TEST_F(AllocationFailuresTest, ApplyDone_AnyStringMissing_LeavesNothing) {
    Connect();
    FailEachStringAllocation([this] {
        Access::ClientSetId(quillet) = 7;
        machine->RequireFollowup(1);
        bool followup = false;
        const HRESULT result = quillet.ApplyDone(followup);
        if (SUCCEEDED(result)) {
            EXPECT_TRUE(followup);
            EXPECT_EQ(Access::ClientSetId(quillet), 0);
        }
        return result;
    });
}

TEST_F(AllocationFailuresTest, GetWarnings_AnyStringMissing_LeavesNothing) {
    Connect();
    FailEachStringAllocation([this] {
        ULONGLONG warnings = 0;
        const HRESULT result = quillet.GetWarnings(warnings);
        EXPECT_EQ(warnings, SUCCEEDED(result) ? 5u : 0u);
        return result;
    });
}

TEST_F(AllocationFailuresTest, GetAdapterID_AnyStringMissing_LeavesNothing) {
    FailEachStringAllocation([this] {
        std::wstring adapterId = L"before";
        const HRESULT result = quillet.GetAdapterID(L"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}", adapterId);
        // An operation that always succeeds says by its text that there was no memory.
        return adapterId.empty() ? E_OUTOFMEMORY : result;
    });
}

TEST_F(AllocationFailuresTest, Setters_AnyStringMissing_LeaveNothing) {
    Connect();
    const CComPtr<IWbemServices> service = Access::GetWbemService(quillet);
    ASSERT_TRUE(service);
    CComPtr<IWbemClassObject> adapter;
    ASSERT_EQ(Code(service->GetObject(_bstr_t(L"Zorel_PhysicalEthernetAdapter.DeviceID="
                                              L"\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\""),
                                      0, nullptr, &adapter, nullptr)),
              "0x00000000");
    const auto stored = [this](const wchar_t* property) {
        const auto instance = machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter").at(0);
        const auto* value = instance->Find(property);
        return value ? *value : quillet::simulator::Value();
    };
    int round = 0;
    FailEachStringAllocation([&] {
        const std::wstring text = L"name " + std::to_wstring(++round);
        const HRESULT result = Access::SetPropertyAsString(quillet, adapter, L"Name", text.c_str());
        EXPECT_EQ(SUCCEEDED(result), stored(L"Name") == quillet::simulator::Value::Text(text));
        return result;
    });
    FailEachStringAllocation([&] {
        const std::size_t length = static_cast<std::size_t>(++round);
        const std::vector<std::wstring> texts(length, L"x");
        const HRESULT result = Access::SetPropertyAsMultiString(quillet, adapter, L"NetworkAddresses", texts);
        const quillet::simulator::Value value = stored(L"NetworkAddresses");
        EXPECT_EQ(SUCCEEDED(result), value.AsArray() && value.AsArray()->size() == length);
        return result;
    });
}

TEST_F(AllocationFailuresTest, DisplayTexts_AnyStringMissing_AreNeverAnEmptySuccess) {
    Connect();
    for (const auto look : {Access::GetDataFromValues, Access::GetDataFromValueMap}) {
        FailEachStringAllocation([&] {
            std::wstring text;
            const HRESULT result =
                look(quillet, L_CLASS_ZOREL_TEAMOFADAPTERS, L_PROP_TEAMOFADAPTERS_TEAMINGMODE, 4, text);
            EXPECT_EQ(SUCCEEDED(result), text == L"IEEE 802.3ad Dynamic Link Aggregation") << Narrow(text);
            return result;
        });
    }
}

TEST_F(AllocationFailuresTest, Profiles_AnyStringMissing_KeepValuesAndTextsTogether) {
    UseText(kProfiles);
    Connect();
    FailEachStringAllocation([this] {
        CPerformanceProfiles profiles;
        const HRESULT result = quillet.GetAdapterProfiles(kAllocationFailuresAdapter, profiles);
        if (SUCCEEDED(result)) {
            EXPECT_EQ(profiles.m_vecItems.size(), 3u);
        }
        for (const CPerformanceProfile* profile : profiles.m_vecItems) {
            EXPECT_EQ(profile->m_wsDescription, L"profile " + std::to_wstring(profile->m_eProfile));
        }
        return result;
    });
}

TEST_F(AllocationFailuresTest, LeaveHyperV_AnyStringMissing_LeavesNoClientSetOpen) {
    UseText(kProfiles);
    Connect();
    FailEachStringAllocation([this] {
        struct Check {
            CQuillet& quillet;
            // Also when an exception leaves.
            ~Check() { EXPECT_EQ(Access::ClientSetId(quillet), 0); }
        } check{quillet};
        const HRESULT result =
            quillet.ChangeAllAdapterProfilesFromHyperV(static_cast<ePERFORMANCE_PROFILE>(2));
        // As it was, for the next time.
        const auto setting =
            machine->Store().FindInstance(LR"(Zorel_AdapterSettingEnum.Caption="PerformanceProfile",)"
                                          LR"(ParentId="{A}",ParentType="NIC")");
        quillet::simulator::Instance changed = *setting;
        EXPECT_TRUE(changed.Set(L"CurrentValue", quillet::simulator::Value::Signed(5)));
        EXPECT_TRUE(SUCCEEDED(machine->Store().PutInstance(changed)));
        return result;
    });
}

TEST_F(AllocationFailuresTest, GetPropertyAsString_NoMemory_IsTheProvidersCode) {
    Connect();
    const CComPtr<IWbemClassObject> netService = Access::GetNetService(quillet);
    ASSERT_TRUE(netService);
    _bstr_t path(L"before");
    bool isNull = true;
    platform::FailBstrAllocation(1);
    EXPECT_EQ(Code(Access::GetPropertyAsString(netService, L"__PATH", path, isNull)), "0x80041006");
    platform::FailBstrAllocation(0);
    EXPECT_STREQ(static_cast<const wchar_t*>(path), L"before");
}

TEST_F(AllocationFailuresTest, FlashOperations_NoMemoryForTheArray_FailBeforeTheProviderIsAsked) {
    Connect();
    unsigned char image[] = {1, 2, 3};
    const LONG size = 3;
    CSettings types;
    int returnCode = 77;
    // The image is the first array that these two make.
    platform::FailArrayAllocation(1);
    EXPECT_EQ(
        Code(quillet.WriteBootAgentFlash(L"Zorel_BootAgent.Name=\"{A}\"", size, image, types, returnCode)),
        "0x8007000E");
    EXPECT_THAT(Traced(), testing::Contains("(pSafeArray == NULL)"));
    platform::FailArrayAllocation(1);
    EXPECT_EQ(
        Code(quillet.ReadBootAgentImageFile(L"Zorel_BootAgent.Name=\"{A}\"", size, image, types, returnCode)),
        "0x8007000E");
    platform::FailArrayAllocation(0);
    EXPECT_THAT(Traced(), testing::Contains("(pSafeArray == NULL)"));
    // The types come first where an image is only looked at.
    platform::FailArrayAllocation(1);
    EXPECT_EQ(Code(quillet.VerifyImageType(L"Zorel_BootAgent.Name=\"{A}\"", size, image, types, returnCode)),
              "0x80004005");
    platform::FailArrayAllocation(0);
    EXPECT_THAT(Traced(), testing::Contains(kNoArray));
    EXPECT_THAT(Called(), testing::IsEmpty());
}

TEST_F(AllocationFailuresTest, ListsOfTexts_NoMemoryForTheArray_AreNotSent) {
    Connect();
    CAdapters adapters;
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems.back()->m_wsAdapterID = L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"";
    ULONGLONG validation = 0;
    platform::FailArrayAllocation(1);
    EXPECT_EQ(Code(quillet.ValidateSettingsOnNewTeam(adapters, validation)), "0x80041001");
    platform::FailArrayAllocation(0);
    EXPECT_THAT(Traced(), testing::Contains(kNoArray));

    const CComPtr<IWbemClassObject> netService = Access::GetNetService(quillet);
    ASSERT_TRUE(netService);
    Called();
    platform::FailArrayAllocation(1);
    EXPECT_EQ(Code(Access::SetPropertyAsMultiString(quillet, netService, L"Name", {L"a", L"b"})),
              "0x80004005");
    platform::FailArrayAllocation(0);
    EXPECT_THAT(Traced(), testing::Contains(kNoArray));
    for (const JournalEntry& call : machine->Calls().All()) {
        EXPECT_NE(call.operation, Operation::ExecMethod);
        EXPECT_NE(call.operation, Operation::PutInstance);
    }
}

} // namespace
