// Diagnostics, boot agents, flash images and booting from iSCSI.
#include "Operations.h"

#include <quillet-simulator/FlashImage.h>

#include <algorithm>
#include <cstdint>

namespace {

using quillet::simulator::WriteFlashImage;

std::vector<std::uint8_t> Image() {
    return WriteFlashImage({{L"PXE", L"1.4.0", 0, 1, {1, 2, 3}}});
}

/// A package with one test and one package in it, so that every step is taken.
const char* MachineText() {
    static const std::string kText = [] {
        std::string flash;
        for (const std::uint8_t byte : Image()) {
            flash += (flash.empty() ? "" : ",") + std::to_string(byte);
        }
        return R"(
            instance of Zorel_NetService { Name = "ZorelNetService"; bIsiSCSIOS = TRUE; };
            instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; };
            instance of Zorel_DiagTest as $T { Name = "All"; TestId = 7; Grouped = TRUE; GroupId = 2; };
            instance of Zorel_DiagTestForAdapter { Antecedent = $T; Dependent = $A; };
            instance of Zorel_DiagResult {
                Name = "{1}"; DiagnosticName = "All"; PackageName = "All"; Title = "T"; Result = "R"; ResultCode = 3;
                Description = "D"; IsPackage = TRUE; TestState = 3; TestResultIds = {700}; TestResultsAttr = {1}; };
            instance of Zorel_DiagResult {
                Name = "{2}"; DiagnosticName = "Cables"; PackageName = "All"; IsPackage = TRUE; };
            instance of Zorel_DiagResult { Name = "{3}"; DiagnosticName = "Pair"; PackageName = "Cables"; };
            instance of Zorel_BootAgent {
                Name = "{A}"; Version = "1.4.0"; VersionNumber = 66560; UpdateAvailable = TRUE; FlashImageType = 4;
                iSCSI_Status = 1; InstalledFlashImageTypes = 5; FlashImage = {)" +
               flash + R"(}; };
            instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{A}"; AdapterName = "First"; iSCSI_Status = 1; };)";
    }();
    return kText.c_str();
}

constexpr const wchar_t* kAdapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const wchar_t* kTest = LR"(Zorel_DiagTest.Name="All")";
constexpr const wchar_t* kAgent = LR"(Zorel_BootAgent.Name="{A}")";

CSettings Types() {
    CSettings types;
    types.m_vecItems.push_back(new CSettingString);
    types.m_vecItems.back()->m_wsCaption = L"PXE";
    return types;
}

/// An operation on an image that answers with a code.
OperationCase OnImage(const char* name,
                      HRESULT (CQuillet::*operation)(const std::wstring&, const LONG&, unsigned char*,
                                                     CSettings&, int&),
                      CSettings (*settings)()) {
    return {name, [operation, settings](CQuillet& q, Outputs& out) {
                std::vector<std::uint8_t> image = Image();
                CSettings types = settings();
                int code = 99;
                const HRESULT result =
                    (q.*operation)(kAgent, static_cast<LONG>(image.size()), image.data(), types, code);
                out("code", code)("settings", types.m_vecItems);
                return result;
            }};
}

/// The place of the first call that fits.
template <class Fits>
std::size_t Find(const std::vector<JournalEntry>& calls, Fits fits) {
    return static_cast<std::size_t>(std::find_if(calls.begin(), calls.end(), fits) - calls.begin());
}

/// A result without its package, its text or its message numbers is still one.
bool ResultIsReadAllTheSame(const std::vector<JournalEntry>& calls, std::size_t failed) {
    const std::size_t package = Find(calls, [](const JournalEntry& call) {
        return call.operation == Operation::ExecQuery &&
               call.target.find(L"PackageName") != std::wstring::npos;
    });
    const std::size_t state =
        Find(calls, [](const JournalEntry& call) { return call.target == L"TestState"; });
    // Behind the state come its text and the numbers.
    return (package <= failed && failed < state) || failed > state;
}

/// A package that lacks the members of a package in it is still one.
bool PackageIsReadAllTheSame(const std::vector<JournalEntry>& calls, std::size_t failed) {
    const std::size_t inner = Find(calls, [](const JournalEntry& call) {
        return call.operation == Operation::ExecQuery && call.target.find(L"Cables") != std::wstring::npos;
    });
    return inner <= failed && failed + 1 < calls.size();
}

} // namespace

OperationArea BootOperations() {
    return {
        MachineText(),
        true,
        {
            {"EnumerateDiagnostics",
             [](CQuillet& q, Outputs& out) {
                 CDiagTests tests;
                 const HRESULT result = q.EnumerateDiagnostics(kAdapter, tests);
                 out("tests", tests.m_vecItems);
                 return result;
             }},
            {"RunDiagnostics", [](CQuillet& q, Outputs&) { return q.RunDiagnostics(kTest, kAdapter); }},
            {"StopDiagnostics", [](CQuillet& q, Outputs&) { return q.StopDiagnostics(kTest, kAdapter); }},
            {"GetDiagnosticsResult",
             [](CQuillet& q, Outputs& out) {
                 CDiagResult read;
                 const HRESULT result = q.GetDiagnosticsResult(kTest, read);
                 out("id", read.m_lTestId)("name", read.m_wsDiagnosticName)("state", read.m_lTestState)(
                     "text", read.m_wsStateText)("members", read.m_vecPackageResults)(
                     "ids", read.m_vecTestResultIds)("attributes", read.m_vecTestResultAttributes);
                 return result;
             },
             {},
             {},
             false,
             false,
             ResultIsReadAllTheSame},
            {"GetDiagnosticsPackageResults",
             [](CQuillet& q, Outputs& out) {
                 CDiagResult package;
                 package.m_sUniqueID = LR"(Zorel_DiagResult.Name="{1}")";
                 package.m_wsPackageName = L"All";
                 const HRESULT result = q.GetDiagnosticsPackageResults(kTest, package);
                 out("members", package.m_vecPackageResults);
                 return result;
             },
             {},
             {},
             false,
             false,
             PackageIsReadAllTheSame},
            {"GetAdapterBootAgentInfo",
             [](CQuillet& q, Outputs& out) {
                 CBootAgent agent;
                 const HRESULT result = q.GetAdapterBootAgentInfo(kAdapter, agent);
                 out("version", agent.m_wsVersion)("type", agent.m_lFlashImageType)(
                     "text", agent.m_wsFlashImageType)("installed", agent.m_lInstalledFlashImageTypes);
                 return result;
             }},
            {"ReadBootAgentFlash",
             [](CQuillet& q, Outputs& out) {
                 LONG size = -7;
                 unsigned char* data = nullptr;
                 const HRESULT result = q.ReadBootAgentFlash(kAgent, size, &data);
                 out("size", size)("buffer", data != nullptr);
                 ::operator delete(data);
                 return result;
             }},
            OnImage("WriteBootAgentFlash", &CQuillet::WriteBootAgentFlash, Types),
            OnImage("ReadBootAgentImageFile", &CQuillet::ReadBootAgentImageFile, [] { return CSettings(); }),
            OnImage("VerifyImageType", &CQuillet::VerifyImageType, Types),
            {"EnumerateISCSIAdapters",
             [](CQuillet& q, Outputs& out) {
                 CISCSIAdapters all;
                 const HRESULT result = q.EnumerateISCSIAdapters(all);
                 out("adapters", all.m_vecItems);
                 return result;
             }},
            {"SetiSCSIStatus",
             [](CQuillet& q, Outputs& out) {
                 unsigned int code = 99;
                 const HRESULT result = q.SetiSCSIStatus(kAgent, CISCSIAdapter::SecondaryPort, code);
                 out("code", code);
                 return result;
             }},
            {"GetiSCSI_Info",
             [](CQuillet& q, Outputs& out) {
                 CiSCSI info;
                 const HRESULT result = q.GetiSCSI_Info(kAdapter, info);
                 out("status", info.m_lStatus)("system", info.m_bOSSupported);
                 return result;
             }},
        },
    };
}
