// Provider calls of the operations on diagnostics, boot agents and booting from iSCSI, and of connecting.
#include "CallCounts.h"

namespace quillet::tests {

namespace {

MachineSize Tests(unsigned n) {
    return {.adapters = 3, .tests = n};
}
MachineSize OneMoreTest(unsigned n) {
    return Tests(n + 1);
}
MachineSize BootAgents(unsigned n) {
    return {.adapters = n + 1, .iscsiPorts = n};
}
MachineSize OneMoreBootAgent(unsigned n) {
    return BootAgents(n + 1);
}

constexpr const wchar_t* kFirstTest = LR"(Zorel_DiagTest.Name="Test 1 - Adapter 1")";

const Operation kPortCallCountsOperations[] = {
    {"EnumerateDiagnostics", Tests, OfAdapter<&CQuillet::EnumerateDiagnostics, 2>,
     // The tests that are associated with the adapter, not those of its neighbours.
     [](unsigned n) { return Query(n); }},
    {"RunDiagnostics", OneMoreTest,
     [](CQuillet& q, unsigned) { return q.RunDiagnostics(kFirstTest, AdapterId(1)); }, kOneMethod},
    {"RunDiagnostics_and_GetDiagnosticsResult", OneMoreTest,
     [](CQuillet& q, unsigned) {
         CDiagResult result;
         const HRESULT started = q.RunDiagnostics(kFirstTest, AdapterId(1));
         return FAILED(started) ? started : q.GetDiagnosticsResult(kFirstTest, result);
     },
     // The test tells its name, by which its result is found; the class has the texts of the states.
     [](unsigned) { return kMethod + kObject + kFirstOfQuery + kObject; }},
    {"RunDiagnostics_and_StopDiagnostics", OneMoreTest,
     [](CQuillet& q, unsigned) {
         const HRESULT started = q.RunDiagnostics(kFirstTest, AdapterId(1));
         return FAILED(started) ? started : q.StopDiagnostics(kFirstTest, AdapterId(1));
     },
     // The test tells its name; the results are looked through until it is found, and here it is the only
     // one.
     [](unsigned) { return kMethod + kObject + Count{.enumerations = 1, .nexts = 1} + kMethod; }},
    {"GetAdapterBootAgentInfo", OneMoreBootAgent, OfAdapter<&CQuillet::GetAdapterBootAgentInfo>,
     // An agent without an image has no image type that would need a text.
     kOneObject},
    {"EnumerateISCSIAdapters", BootAgents, OfMachine<&CQuillet::EnumerateISCSIAdapters>,
     [](unsigned n) { return Enumeration(n); }},
    {"SetiSCSIStatus", OneMoreBootAgent,
     [](CQuillet& q, unsigned) {
         unsigned int returnCode = 0;
         return q.SetiSCSIStatus(L"Zorel_BootAgent_iSCSI_Adapters.Name=\"{A1}\"",
                                 static_cast<CISCSIAdapter::iSCSIStatus>(1), returnCode);
     },
     kOneMethod},
    {"GetiSCSI_Info", OneMoreBootAgent, OfAdapter<&CQuillet::GetiSCSI_Info>,
     // Two methods.
     [](unsigned) { return 2 * kMethod; }},
};

std::string PortCaseName(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Ports, CallCountsTest, testing::ValuesIn(kPortCallCountsOperations), PortCaseName);

} // namespace

TEST_F(ProviderTest, InitQuillet_OnMachinesOfAnySize_MakesFourCalls) {
    for (const unsigned n : {0u, 1u, 64u}) {
        SCOPED_TRACE(n);
        UseText(MachineText({.adapters = n}));
        ASSERT_EQ(Code(quillet.InitQuillet()), "0x00000000");
        std::vector<std::string> operations;
        for (const JournalEntry& call : machine->Calls().ProviderCalls()) {
            operations.push_back(Narrow(quillet::simulator::OperationName(call.operation)));
        }
        // The connection; and the one network service, enumerated to its end.
        EXPECT_THAT(operations, testing::ElementsAre("ConnectServer", "CreateInstanceEnum", "Next", "Next"));
    }
}

} // namespace quillet::tests
