// A physical adapter: blinking, and what it tells of itself beyond its properties.
#include "providers/ClassProvider.h"
#include "providers/LinkSecurity.h"
#include "machine/MachineState.h"
#include "providers/PowerOptions.h"
#include "rules/TeamChecks.h"

namespace quillet::simulator {

namespace {

class PhysicalAdapterProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        using Handler = HRESULT (*)(MethodCall&);
        static const std::map<std::wstring, Handler, NameLess> kHandlers = {
            {L"IdentifyAdapter", Identify},
            {L"GetHbaPath",
             [](MethodCall& made) {
                 return Tell(made, {{L"HbaPath", L"HbaPath"}});
             }},
            {L"GetNDISVersion",
             [](MethodCall& made) {
                 return Tell(made, {{L"dwMajorVersion", L"NDISMajorVersion"},
                                    {L"dwMinorVersion", L"NDISMinorVersion"}});
             }},
            {L"IsiSCSIEnabled", TellPlaceInBoot},
            {L"IsiSCSISupported", TellSystemsSupport},
            {L"GetAdapterWarnings",
             [](MethodCall& made) {
                 return Tell(made, {{L"dwAdapterWarnings", L"AdapterWarnings"}});
             }},
            {L"GetLinksecManualCfgKeys", TellLinkSecurity},
            {L"SetLinksecManualCfgKeys", ChangeLinkSecurity},
            {L"GetLinksecParams", TellLinkSecurity},
            {L"SetLinksecParams", ChangeLinkSecurityAuthentication},
            {L"ImportManualPAC", ImportPacFile},
            {L"DeletePacFile", DeletePacFile},
            {L"GetPACFileContents", TellPacFile},
            {L"GetLinksecManualPMKeys", TellLinkSecurity},
            {L"SetLinksecManualPMKeys", ChangeLinkSecurity},
            {L"GetLinksecSavedCreds", TellLinkSecurity},
            {L"GetLinksecSecurityStatsLog", TellLinkSecurity},
            {L"GetPowerUsageOptions", TellPowerOptions},
            {L"SetPowerUsageOptions", ChangePowerOptions},
            {L"GetWakeOnLanPowerOptions", TellPowerOptions},
            {L"SetWakeOnLanPowerOptions", ChangePowerOptions},
            {L"SetPowerMgmtCapabilities", ApplyPowerCapabilities},
        };
        if (SameName(call.method.name, L"ValidateSettingOnNewTeam")) {
            return ValidateSettingOnNewTeam(call);
        }
        const auto handler = kHandlers.find(call.method.name);
        if (handler == kHandlers.end()) {
            return ClassProvider::ExecMethod(call);
        }
        // Each of them is about one adapter; the class has no light to blink.
        return call.instance != nullptr ? handler->second(call) : HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }

    /// To blink is all that an adapter does that finds it.
    bool Changes(const MethodCall& call) const override {
        return !SameName(call.method.name, L"IdentifyAdapter");
    }

    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) override {
        const HRESULT result = ClassProvider::PutInstance(request, instance, mode);
        if (SUCCEEDED(result)) {
            RefreshTeamOf(request.Target().Store(), instance);
        }
        return result;
    }

  private:
    /// About several adapters, so it is the class that is asked.
    static HRESULT ValidateSettingOnNewTeam(MethodCall& call) {
        const auto reasons = ReasonsAgainstSetting(
            call.request.Target().Store(), TextsOf(call.in, L"Adapters"), call.in.Text(L"SettingName"));
        call.Answer(L"ValResult", static_cast<std::int64_t>(reasons));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    /// Out-parameters that are properties of the adapter.
    static HRESULT Tell(MethodCall& call,
                        std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> properties) {
        for (const auto& [parameter, property] : properties) {
            if (const Value* value = call.instance->Find(property)) {
                call.out.Set(parameter, *value);
            }
        }
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    /// The port's place among the iSCSI boot adapters; 0 when it has none.
    static HRESULT TellPlaceInBoot(MethodCall& call) {
        ObjectPath path{{}, {}, L"Zorel_BootAgent_iSCSI_Adapters", {}, false};
        path.keys.push_back({L"Name", Scalar(call.instance->Text(L"DeviceID"))});
        const auto entry = call.request.Target().Store().FindInstance(path);
        call.Answer(L"iSCSIStatus", entry != nullptr ? entry->Number(L"iSCSI_Status") : 0);
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    /// What the network service knows of the operating system.
    static HRESULT TellSystemsSupport(MethodCall& call) {
        const auto services = call.request.Target().Store().Instances(L"Zorel_NetService");
        for (const wchar_t* name : {L"bIsiSCSIOS", L"bIsiSCSIPatch", L"bIsiSCSIHotFix"}) {
            call.Answer(name, services.empty() ? 0 : services.front()->Number(name));
        }
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT Identify(MethodCall& call) {
        const auto seconds = call.in.Number(L"nSeconds", -1);
        if (seconds < 0) {
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        call.request.Target().Internals().blinking.Start(
            call.instance->Text(L"DeviceID"), call.request.Target().Now() + std::chrono::seconds(seconds));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakePhysicalAdapterProvider() {
    return std::make_unique<PhysicalAdapterProvider>();
}

} // namespace quillet::simulator
