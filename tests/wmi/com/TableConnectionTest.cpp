// The library in front of a connection that is no simulator: what a machine must answer is no more than this.
#include "TableConnection.h"

#include <quillet-wmi/Registration.h>
#include <quillet/Quillet.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet::tests {
namespace {

constexpr const char* kMachine = R"(
class Zorel_NetService {
    [key] string Name;
    uint32 BeginApply([out] sint32 ClientSetHandle);
    uint32 Apply([in] sint32 ClientSetHandle, [out] uint32 FollowupAction);
};
class Zorel_PhysicalEthernetAdapter {
    [key] string DeviceID;
    string Name;
    string OriginalDisplayName;
};
class Zorel_VLAN {
    [key] string Name;
    string Caption;
    string ParentID;
    string VLANName;
    uint32 VLANNumber;
    uint16 StatusInfo;
};
instance of Zorel_NetService { Name = "service"; };
instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "First"; OriginalDisplayName = "Port 1"; };
instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Second"; OriginalDisplayName = "Port 2"; };
instance of Zorel_VLAN { Name = "{V}"; Caption = "c"; ParentID = "{A}"; VLANName = "Lab"; VLANNumber = 7; StatusInfo = 3; };
instance of Zorel_VLAN { Name = "{W}"; Caption = "c"; ParentID = "{B}"; VLANName = "Far"; VLANNumber = 8; StatusInfo = 3; };
)";

class TableConnectionTest : public testing::Test {
  protected:
    void SetUp() override {
        wmi::CompileMof(m_table, kMachine, "table.mof");
        m_connection = std::make_shared<TableConnection>(m_table);
        m_registration.emplace(std::make_shared<TableHost>(m_connection));
        ASSERT_EQ(m_registration->Result(), S_OK);
    }
    void TearDown() override {
        m_quillet.UninitQuillet();
        m_registration.reset();
        EXPECT_EQ(wmi::LiveObjectCount(), 0);
    }

    Table m_table;
    std::shared_ptr<TableConnection> m_connection;
    std::optional<wmi::ClassRegistration> m_registration;
    CQuillet m_quillet;
};

TEST_F(TableConnectionTest, TellsAdaptersByTheirPaths) {
    ASSERT_EQ(m_quillet.InitQuillet(), S_OK);
    CAdapters adapters;
    ASSERT_EQ(m_quillet.EnumerateAdapters(adapters), S_OK);
    ASSERT_EQ(adapters.m_vecItems.size(), 2u);
    EXPECT_EQ(adapters.m_vecItems[1]->m_wsDisplayName, L"Port 2");
    EXPECT_EQ(adapters.m_vecItems[1]->m_wsAdapterID,
              L"\\\\TABLE\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=\"{B}\"");
}

TEST_F(TableConnectionTest, ChangesAndRemovesAVlanInsideATransaction) {
    std::int64_t closed = 0;
    m_connection->answers[L"BeginApply"] = [](const wmi::Filled*, wmi::Instance& out) {
        out.Set(L"ClientSetHandle", wmi::Value::Signed(42));
    };
    m_connection->answers[L"Apply"] = [&closed](const wmi::Filled* in, wmi::Instance& out) {
        closed = in->values.Number(L"ClientSetHandle");
        out.Set(L"FollowupAction", wmi::Value::Unsigned(1));
    };
    ASSERT_EQ(m_quillet.InitQuillet(), S_OK);
    ASSERT_EQ(m_quillet.BeginApply(), S_OK);

    CVLANs vlans;
    ASSERT_EQ(m_quillet.EnumerateVLANsOfAdapter(L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"", vlans),
              S_OK);
    ASSERT_EQ(vlans.m_vecItems.size(), 1u);
    CVLAN& vlan = *vlans.m_vecItems.front();
    EXPECT_EQ(vlan.m_lVLANNumber, 7);
    vlan.m_wsVLANName = L"Laboratory";
    ASSERT_EQ(m_quillet.ModifyVLANProperty(vlan.m_wsVLANID, vlan), S_OK);
    ASSERT_EQ(m_quillet.RemoveVLAN(L"Zorel_VLAN.Name=\"{W}\""), S_OK);

    bool restart = false;
    ASSERT_EQ(m_quillet.ApplyDone(restart), S_OK);
    EXPECT_TRUE(restart);
    EXPECT_EQ(closed, 42);
    ASSERT_NE(m_table.FindInstance(L"Zorel_VLAN.Name=\"{V}\""), nullptr);
    EXPECT_EQ(m_table.FindInstance(L"Zorel_VLAN.Name=\"{V}\"")->Text(L"VLANName"), L"Laboratory");
    EXPECT_EQ(m_table.FindInstance(L"Zorel_VLAN.Name=\"{W}\""), nullptr);
}

TEST_F(TableConnectionTest, FailuresReachTheCaller) {
    ASSERT_EQ(m_quillet.InitQuillet(), S_OK);
    EXPECT_EQ(m_quillet.BeginApply(), HRESULT(WBEM_E_INVALID_METHOD));
    CVLAN vlan;
    EXPECT_EQ(m_quillet.GetVLANInfo(std::wstring(L"Zorel_VLAN.Name=\"{X}\""), vlan),
              HRESULT(WBEM_E_NOT_FOUND));
    CTeams teams;
    EXPECT_EQ(m_quillet.EnumerateTeams(teams), S_OK);
    EXPECT_TRUE(teams.m_vecItems.empty());
}

TEST_F(TableConnectionTest, AnotherNamespaceIsNotThere) {
    IWbemLocator* locator = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(&locator)),
              S_OK);
    BSTR path = SysAllocString(L"\\\\TABLE\\ROOT\\Other");
    IWbemServices* services = nullptr;
    EXPECT_EQ(locator->ConnectServer(path, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services),
              HRESULT(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(services, nullptr);
    SysFreeString(path);
    locator->Release();
}

} // namespace
} // namespace quillet::tests
