// Teams: making, changing and removing them, the checks, the best mode and the test of the switch.
#include "providers/ClassProvider.h"
#include "machine/MachineState.h"
#include "rules/SettingValidation.h"
#include "repository/StoreQueries.h"
#include "rules/TeamChecks.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr std::int64_t kVlanCapability = 37;

/// "Status" of "GetBestTeamMode".
constexpr std::int64_t kDetectionCompleted = 2;
constexpr std::int64_t kDetectionFailed = 3;
/// "ErrorMessageId" of a detection that found no link.
constexpr std::int64_t kNoLinkMessage = 1001;

/// What a test of the switch can find, with what to do about it.
struct SwitchTrouble {
    std::wstring cause;
    std::int64_t causeId;
    std::wstring solution;
    std::int64_t solutionId;
};

Value Texts(const std::vector<SwitchTrouble>& troubles, std::wstring SwitchTrouble::*text) {
    Value::Array array;
    for (const auto& trouble : troubles) {
        array.emplace_back(trouble.*text);
    }
    return Value(std::move(array));
}

Value Numbers(const std::vector<SwitchTrouble>& troubles, std::int64_t SwitchTrouble::*number) {
    Value::Array array;
    for (const auto& trouble : troubles) {
        array.emplace_back(trouble.*number);
    }
    return Value(std::move(array));
}

class TeamProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        using Handler = HRESULT (*)(MethodCall&);
        static const std::map<std::wstring, Handler, NameLess> kOfTheClass = {
            {L"CreateTeam", CreateTeam},
            {L"ValidateTeamName", ValidateTeamName},
            {L"ValidateTeamMode", ValidateTeamMode},
            {L"ValidateNewTeamMembers", ValidateNewTeamMembers},
        };
        static const std::map<std::wstring, Handler, NameLess> kOfATeam = {
            {L"ValidateAddAdapters", ValidateAddAdapters},
            {L"GetBestTeamMode", GetBestTeamMode},
            {L"TestSwitchConfiguration", TestSwitchConfiguration},
            {L"ValidateSetting", ValidateSettingOnTeam},
        };
        if (const auto handler = kOfTheClass.find(call.method.name); handler != kOfTheClass.end()) {
            return handler->second(call);
        }
        const auto handler = kOfATeam.find(call.method.name);
        if (handler == kOfATeam.end()) {
            return ClassProvider::ExecMethod(call);
        }
        return call.instance != nullptr ? handler->second(call) : HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }

    /// Only what the schema lets clients write is taken over; the rest is the provider's.
    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) override {
        auto& store = request.Target().Store();
        const auto present = store.FindInstance(RelativePath(instance));
        if (present == nullptr) {
            // There is a method for making teams.
            return mode == WriteMode::UpdateOnly ? HRESULT(WBEM_E_NOT_FOUND)
                                                 : HRESULT(WBEM_E_PROVIDER_NOT_CAPABLE);
        }
        if (mode == WriteMode::CreateOnly) {
            return HRESULT(WBEM_E_ALREADY_EXISTS);
        }
        const auto caption = instance.Text(L"Caption");
        const auto teamingMode = instance.Number(L"TeamingMode", -1);
        if (teamingMode < 0 || teamingMode > kLastTeamMode ||
            (ReasonsAgainstName(store, caption, present.get()) & ReasonBadName) != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        if (IsTeamNameTaken(store, caption, present.get())) {
            return HRESULT(WBEM_E_ALREADY_EXISTS);
        }
        Instance changed = *present;
        changed.Set(L"TeamingMode", Value::Signed(teamingMode));
        const HRESULT result = store.PutInstance(changed, WriteMode::UpdateOnly);
        if (FAILED(result)) {
            return result;
        }
        NoteHyperV(request, changed);
        return RenameTeam(store, changed, caption);
    }

    HRESULT DeleteInstance(Request& request, const ObjectPath&, const Instance& instance) override {
        NoteHyperV(request, instance);
        request.Target().Internals().switchTests.Forget(instance.Text(L"Name"));
        return RemoveTeamFrom(request.Target().Store(), instance);
    }

  private:
    /// A virtual switch on top of the team holds on to what it was until the machine restarts.
    static void NoteHyperV(Request& request, const Instance& team) {
        if (team.Number(L"BoundToHyperV") != 0) {
            request.RequireFollowup(1);
        }
    }

    static HRESULT CreateTeam(MethodCall& call) {
        if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
            return allowed;
        }
        auto& store = call.request.Target().Store();
        const auto caption = call.in.Text(L"TeamName");
        const auto mode = call.in.Number(L"TeamingMode", -1);
        const auto paths = TextsOf(call.in, L"Adapters");
        if (paths.empty() || paths.size() > kMaximumTeamMembers || mode < 0 || mode > kLastTeamMode ||
            (ReasonsAgainstName(store, caption, nullptr) & ReasonBadName) != 0) {
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        std::vector<InstancePtr> members;
        for (const auto& path : paths) {
            const auto adapter = FindAdapter(store, path);
            if (adapter == nullptr) {
                return HRESULT(WBEM_E_NOT_FOUND);
            }
            if (std::find(members.begin(), members.end(), adapter) != members.end()) {
                return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
            }
            if (!MembershipsOf(store, *adapter).empty()) {
                return HRESULT(WBEM_E_INVALID_OPERATION);
            }
            members.push_back(adapter);
        }
        if (IsTeamNameTaken(store, caption, nullptr)) {
            return HRESULT(WBEM_E_ALREADY_EXISTS);
        }
        InstancePtr team;
        const HRESULT made = MakeTeam(store, call.in, caption, mode, members, team);
        if (FAILED(made)) {
            if (team != nullptr) {
                RemoveTeamFrom(store, *team);
            }
            return made;
        }
        call.request.Changed(*team->definition);
        call.out.Set(L"TeamPath", Value::Text(store.FullPath(*team)));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT MakeTeam(Repository& store, const Instance& parameters, const std::wstring& caption,
                            std::int64_t mode, const std::vector<InstancePtr>& members, InstancePtr& team) {
        const auto id =
            NewObjectId(store, L"Zorel_TeamOfAdapters", L"Name", members.front()->Text(L"DeviceID"));
        // A team goes by the address of the member that leads it.
        const auto address = members.front()->Text(L"PermanentAddress");
        const auto flag = [&parameters](const wchar_t* name) {
            return Value::Bool(parameters.Number(name) != 0);
        };
        const auto made = MakeInstance(store, L"Zorel_TeamOfAdapters",
                                       {{L"Name", Value::Text(id)},
                                        {L"Caption", Value::Text(caption)},
                                        {L"TeamingMode", Value::Signed(mode)},
                                        {L"TeamMacAddress", Value::Text(address)},
                                        {L"MFOEnabled", flag(L"MFOEnable")},
                                        {L"LinksecEnabled", flag(L"LinksecEnabled")},
                                        {L"BoundToHyperV", Value::Bool(false)},
                                        {L"TeamProfile", Value::Signed(parameters.Number(L"TeamProfile"))}});
        const auto logical = MakeInstance(store, L"Zorel_LogicalEthernetAdapter",
                                          {{L"DeviceID", Value::Text(id)},
                                           {L"Name", Value::Text(caption)},
                                           {L"Caption", Value::Text(caption)},
                                           {L"PermanentAddress", Value::Text(address)},
                                           {L"NetworkAddresses", Value(Value::Array{Scalar(address)})}});
        const auto same = MakeInstance(store, L"Zorel_NetworkVirtualAdapter",
                                       {{L"SystemElement", Value::Text(store.FullPath(logical))},
                                        {L"SameElement", Value::Text(store.FullPath(made))}});
        constexpr auto kCreate = WriteMode::CreateOnly;
        HRESULT result = store.PutInstance(made, kCreate);
        if (FAILED(result)) {
            return result;
        }
        team = store.FindInstance(RelativePath(made));
        for (const Instance* part : {&logical, &same}) {
            if (FAILED(result = store.PutInstance(*part, kCreate))) {
                return result;
            }
        }
        for (const auto& member : members) {
            if (FAILED(result = AddMember(store, *team, *member, std::nullopt))) {
                return result;
            }
        }
        // A team carries VLANs only where each of its members can.
        if (std::all_of(members.begin(), members.end(),
                        [](const InstancePtr& each) { return HasCapability(*each, kVlanCapability); })) {
            const auto service = MakeInstance(
                store, L"Zorel_802dot1QVLANService",
                {{L"Name", Value::Text(id)}, {L"Caption", Value::Text(VlanServiceCaption(caption))}});
            if (FAILED(result = store.PutInstance(service, kCreate))) {
                return result;
            }
        }
        RefreshTeam(store, *team);
        return S_OK;
    }

    static HRESULT Judge(MethodCall& call, const wchar_t* parameter, std::uint64_t reasons) {
        call.Answer(parameter, static_cast<std::int64_t>(reasons));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT ValidateTeamName(MethodCall& call) {
        return Judge(
            call, L"ValResult",
            ReasonsAgainstName(call.request.Target().Store(), call.in.Text(L"Caption"), call.instance.get()));
    }

    static HRESULT ValidateTeamMode(MethodCall& call) {
        const auto members = call.instance != nullptr
                                 ? MembersOf(call.request.Target().Store(), *call.instance)
                                 : std::vector<InstancePtr>();
        return Judge(call, L"ValResult", ReasonsAgainstMode(members, call.in.Number(L"TeamingMode", -1)));
    }

    static HRESULT ValidateNewTeamMembers(MethodCall& call) {
        return Judge(call, L"ValResultNewTeam",
                     ReasonsAgainstMembers(call.request.Target().Store(), {},
                                           TextsOf(call.in, L"NewAdapters"),
                                           call.in.Number(L"NewTeamMode", -1)));
    }

    static HRESULT ValidateAddAdapters(MethodCall& call) {
        const auto& store = call.request.Target().Store();
        return Judge(call, L"ValResult",
                     ReasonsAgainstMembers(store, MembersOf(store, *call.instance),
                                           TextsOf(call.in, L"Adapters"),
                                           call.instance->Number(L"TeamingMode", -1)));
    }

    /// The most useful mode first: what all members support, and the links allow.
    static std::int64_t BestMode(const std::vector<InstancePtr>& members) {
        for (const std::int64_t mode : {4, 1, 0}) {
            if (ReasonsAgainstMode(members, mode) == 0) {
                return mode;
            }
        }
        return 0;
    }

    static HRESULT GetBestTeamMode(MethodCall& call) {
        const auto members = MembersOf(call.request.Target().Store(), *call.instance);
        const auto linked = std::count_if(members.begin(), members.end(), [](const InstancePtr& member) {
            return member->Number(L"HardwareStatus", kHardwareMissing) == kLinkPresent;
        });
        call.Answer(L"Status", linked > 0 ? kDetectionCompleted : kDetectionFailed);
        call.Answer(L"PercentOfCoverage",
                    members.empty() ? 0 : linked * 100 / static_cast<std::ptrdiff_t>(members.size()));
        call.Answer(L"ErrorMessageId", linked > 0 ? 0 : kNoLinkMessage);
        call.Answer(L"TeamingMode", linked > 0 ? BestMode(members) : call.instance->Number(L"TeamingMode"));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static std::vector<SwitchTrouble> Troubles(const Repository& store, const Instance& team) {
        std::vector<SwitchTrouble> troubles;
        std::vector<std::int64_t> speeds;
        const auto members = MembersOf(store, team);
        for (const auto& member : members) {
            const auto name = member->Text(L"Caption");
            switch (member->Number(L"HardwareStatus", kHardwareMissing)) {
            case kHardwareMissing:
                troubles.push_back({L"The adapter " + name + L" is missing.", 2001,
                                    L"Put the adapter back, or remove it from the team.", 3001});
                break;
            case kLinkPresent:
                speeds.push_back(member->Number(L"Speed"));
                break;
            default:
                troubles.push_back({L"The adapter " + name + L" has no link.", 2002,
                                    L"Connect its cable, and enable its port on the switch.", 3002});
                break;
            }
        }
        if (team.Number(L"TeamingMode") == 5 && members.size() != 2) {
            troubles.push_back({L"Switch fault tolerance works with two adapters.", 2003,
                                L"Leave two members in the team, and connect each to a switch of its own.",
                                3003});
        }
        if (std::adjacent_find(speeds.begin(), speeds.end(), std::not_equal_to<>()) != speeds.end()) {
            troubles.push_back({L"The links of the team differ in their speed.", 2004,
                                L"Set the ports of the switch to one speed.", 3004});
        }
        return troubles;
    }

    static HRESULT TestSwitchConfiguration(MethodCall& call) {
        auto& machine = call.request.Target();
        auto& tests = machine.Internals().switchTests;
        const auto team = call.instance->Text(L"Name");
        const auto mode = call.instance->Number(L"TeamingMode", -1);
        if (mode != 4 && mode != 5) {
            // The other modes ask nothing of the switch.
            return HRESULT(WBEM_E_NOT_SUPPORTED);
        }
        switch (call.in.Number(L"Cmd", -1)) {
        case SwitchTestStart:
            tests.Start(team, machine.Now());
            break;
        case SwitchTestQuery:
            break;
        case SwitchTestStop:
            tests.Stop(team, machine.Now());
            break;
        default:
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        auto status = tests.State(team, machine.Now());
        const auto troubles = status == SwitchTestPassed ? Troubles(machine.Store(), *call.instance)
                                                         : std::vector<SwitchTrouble>();
        if (!troubles.empty()) {
            status = SwitchTestFailed;
        }
        call.Answer(L"Status", status);
        call.out.Set(L"strCause", Texts(troubles, &SwitchTrouble::cause));
        call.out.Set(L"strSolution", Texts(troubles, &SwitchTrouble::solution));
        call.out.Set(L"CauseMessageId", Numbers(troubles, &SwitchTrouble::causeId));
        call.out.Set(L"SolutionMessageId", Numbers(troubles, &SwitchTrouble::solutionId));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeTeamProvider() {
    return std::make_unique<TeamProvider>();
}

} // namespace quillet::simulator
