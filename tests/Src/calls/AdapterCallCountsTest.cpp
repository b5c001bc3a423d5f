// Provider calls of the operations on adapters and their settings.
#include "CallCounts.h"

#include <LumString.h>

namespace quillet::tests {

namespace {

MachineSize Adapters(unsigned n) {
    return {.adapters = n};
}
/// At least the adapter that is asked about, among others that must not matter.
MachineSize OneAmongAdapters(unsigned n) {
    return {.adapters = n + 1};
}
MachineSize SettingsOfEach(unsigned n) {
    return {.adapters = 3, .settings = n};
}
MachineSize Profiles(unsigned n) {
    return {.adapters = n, .profiles = 3};
}
/// Adapters of which the first two share a slot and are a team.
MachineSize TeamedPair(unsigned n) {
    return {.adapters = n + 2, .teams = 1};
}

const Operation kOperations[] = {
    {"EnumerateAdapters", Adapters, OfMachine<&CQuillet::EnumerateAdapters>,
     // The four properties of an adapter come with it.
     [](unsigned n) { return Enumeration(n); }},
    {"GetAdapterBasicInfo", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterBasicInfo>, kOneObject},
    {"GetAdapterDynamicInfo", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterDynamicInfo>, kOneObject},
    {"GetAdapterStatus", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterStatus>, kOneObject},
    {"GetAdapterCapabilities", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterCapabilities>, kOneObject},
    {"GetAdapterPCIInfo", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterPCIInfo>, kOneObject},
    {"EnumerateOtherPortOfAdapter", TeamedPair, OfAdapter<&CQuillet::EnumerateOtherPortOfAdapter>,
     // The adapter tells its slot, a query finds the two ports in it, and another for each its one
     // membership.
     [](unsigned) { return kObject + Query(2) + 2 * Query(1); }},
    {"EnumerateOtherPortOfAdapter_NotTeamed", OneAmongAdapters,
     [](CQuillet& q, unsigned n) {
         CAdapterPorts ports;
         // The last one of an odd number has its slot to itself.
         return q.EnumerateOtherPortOfAdapter(AdapterId(n + 1), ports);
     },
     [](unsigned n) {
         const unsigned ports = n % 2 == 0 ? 1 : 2;
         return kObject + Query(ports) + ports * Query(0);
     }},
    {"IdentifyAdapter", OneAmongAdapters,
     [](CQuillet& q, unsigned) { return q.IdentifyAdapter(AdapterId(1), 10); }, kOneMethod},
    {"GetHbaPath", OneAmongAdapters, OfAdapter<&CQuillet::GetHbaPath>, kOneMethod},
    {"GetNDIS_Version", OneAmongAdapters,
     [](CQuillet& q, unsigned) {
         int major = 0;
         int minor = 0;
         return q.GetNDIS_Version(AdapterId(1), major, minor);
     },
     kOneMethod},
    {"GetAdapterWarnings", OneAmongAdapters, OfAdapter<&CQuillet::GetAdapterWarnings>, kOneMethod},
    {"GetAdapterSettings", SettingsOfEach,
     [](CQuillet& q, unsigned) {
         CSettings settings;
         return q.GetAdapterSettings(AdapterId(2), settings);
     },
     // The provider chooses the adapter's settings; those of the others do not travel.
     [](unsigned n) { return Query(n); }},
    {"GetAdapterVmqSettings", SettingsOfEach,
     [](CQuillet& q, unsigned) {
         CSettings settings;
         return q.GetAdapterVmqSettings(CLumString(AdapterId(2)), settings);
     },
     // None of these settings is of the subset.
     [](unsigned) { return Query(0); }},
    {"GetSettingFromClassOnAdapter_ByCaption", SettingsOfEach,
     [](CQuillet& q, unsigned) {
         CSettings settings;
         return q.GetSettingFromClassOnAdapter(L"Zorel_AdapterSetting", L"{A2}", L"*Setting1", settings);
     },
     [](unsigned n) { return Query(n > 0 ? 1 : 0); }},
    {"SetSetting", [](unsigned n) { return MachineSize{.adapters = 1, .settings = n + 1}; },
     [](CQuillet& q, unsigned) {
         // Number 1 of the kinds is a number.
         CSettingInt setting;
         setting.m_lCurrentValue = 512;
         return q.SetSetting(
             LR"(Zorel_AdapterSettingInt.Caption="*Setting1",ParentId="{A1}",ParentType="NIC")", setting);
     },
     // Fetched, changed here, and written back as a whole.
     [](unsigned) { return kObject + kCommit; }},
    {"GetAdapterSettingAsync", [](unsigned n) { return Profiles(n + 1); },
     [](CQuillet& q, unsigned) {
         CSettingEnum setting;
         setting.m_wsCaption = L"PerformanceProfile";
         return q.GetAdapterSettingAsync(CLumString(L"{A1}"), &setting);
     },
     // Asked for in one call, taken in another.
     [](unsigned) { return kObject + Count{.results = 1}; }},
    {"GetAdapterProfiles", [](unsigned n) { return MachineSize{.adapters = 1, .profiles = n + 1}; },
     OfAdapter<&CQuillet::GetAdapterProfiles>,
     // All profiles are values of one setting.
     [](unsigned) { return kObject + Count{.results = 1}; }},
    {"ChangeAllAdapterProfilesFromHyperV", Profiles,
     [](CQuillet& q, unsigned) { return q.ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE(2)); },
     // No adapter has the profile that is to be left: the setting of each is read, and no transaction begun.
     [](unsigned n) { return Enumeration(n) + n * (kObject + Count{.results = 1}); }},
    {"ChangeAllAdapterProfilesFromHyperV_OfAll",
     [](unsigned n) { return MachineSize{.adapters = n, .profiles = 5, .currentProfile = 5}; },
     [](CQuillet& q, unsigned) { return q.ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE(2)); },
     // Each setting is read and written, and one transaction, two methods, spans them all.
     [](unsigned n) {
         return Enumeration(n) + n * (kObject + Count{.results = 1} + kObject + kCommit) +
                (n > 0 ? 2 : 0) * kMethod;
     }},
    {"GetCompatibleTeamProfilesWithAdapters", [](unsigned n) { return Profiles(n + 1); },
     [](CQuillet& q, unsigned n) {
         CPerformanceProfiles profiles;
         return q.GetCompatibleTeamProfilesWithAdapters(FirstAdapters(n + 1), profiles);
     },
     [](unsigned n) { return (n + 1) * (kObject + Count{.results = 1}); }},
    {"ValidateSetSetting_NotTeamed", OneAmongAdapters,
     [](CQuillet& q, unsigned n) {
         bool teamed = false;
         ULONGLONG warnings = 0;
         return q.ValidateSetSetting(FullPath(AdapterId(n + 1)), teamed, L"*Setting1", 1, warnings);
     },
     // As the ports of the slot; there is no team to ask.
     [](unsigned n) {
         const unsigned ports = n % 2 == 0 ? 1 : 2;
         return kObject + Query(ports) + ports * Query(0);
     }},
    {"ValidateSetSetting", TeamedPair,
     [](CQuillet& q, unsigned) {
         bool teamed = false;
         ULONGLONG warnings = 0;
         return q.ValidateSetSetting(FullPath(AdapterId(1)), teamed, L"*Setting1", 1, warnings);
     },
     [](unsigned) { return kObject + Query(2) + 2 * Query(1) + kMethod; }},
    {"BeginApply", Adapters, [](CQuillet& q, unsigned) { return q.BeginApply(); }, kOneMethod},
    {"GetWarnings", Adapters, OfMachine<&CQuillet::GetWarnings>, kOneMethod},
};

std::string Name(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Adapters, CallCountsTest, testing::ValuesIn(kOperations), Name);

} // namespace

} // namespace quillet::tests
