// Memberships: adapters that join a team, leave it, and change their role in it.
#include "providers/ClassProvider.h"
#include "rules/TeamModel.h"

namespace quillet::simulator {

namespace {

class TeamMembershipProvider final : public ClassProvider {
  public:
    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) override {
        auto& store = request.Target().Store();
        const Value* function = instance.Find(L"AdapterFunction");
        std::optional<std::int64_t> role;
        if (function != nullptr && !function->IsNull()) {
            role = instance.Number(L"AdapterFunction");
            if (*role < kRoleNone || *role > kRoleSecondary) {
                return HRESULT(WBEM_E_INVALID_PARAMETER);
            }
        }
        const auto team = store.FindInstance(instance.Text(L"GroupComponent"));
        const auto adapter = FindAdapter(store, instance.Text(L"PartComponent"));
        if (team == nullptr || !team->definition->IsA(L"Zorel_TeamOfAdapters") || adapter == nullptr) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        if (const auto present = store.FindInstance(RelativePath(instance))) {
            if (mode == WriteMode::CreateOnly) {
                return HRESULT(WBEM_E_ALREADY_EXISTS);
            }
            // The role is all that a client may change of a member.
            return SetRole(store, *present, role.value_or(kRoleNone));
        }
        if (mode == WriteMode::UpdateOnly) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        if (!MembershipsOf(store, *adapter).empty() ||
            MembershipsOf(store, *team).size() >= kMaximumTeamMembers) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const HRESULT result = AddMember(store, *team, *adapter, role);
        if (SUCCEEDED(result)) {
            RefreshTeam(store, *team);
        }
        return result;
    }

    HRESULT DeleteInstance(Request& request, const ObjectPath&, const Instance& instance) override {
        return RemoveMember(request.Target().Store(), instance);
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeTeamMembershipProvider() {
    return std::make_unique<TeamMembershipProvider>();
}

} // namespace quillet::simulator
