// Operations on VLANs.
#include "Connection.h"

namespace quillet::python {

void DefineVlans(pybind11::class_<Connection>& session) {
    Define(session, "vlans", &Session::Vlans);
    Define(session, "read_vlan", &Session::ReadVlan);
    Define(session, "vlan_status", static_cast<StatusInfo (Session::*)(const VlanId&)>(&Session::ReadStatus));
    Define(session, "vlan_by_object_id", &Session::VlanByObjectId);
    Define(session, "tagged_vlans", &Session::TaggedVlans);
    Define(session, "has_vlan", &Session::HasVlan);
    Define(session, "supports_vlans", &Session::SupportsVlans);
    DefineAs(
        session, "check_vlan",
        +[](Connection& connection, const VlanParentId& parent, std::int32_t number,
            const std::wstring& name) {
            return connection.Use()->CheckVlan(parent, {.id = number, .name = name});
        });
    DefineAs(
        session, "check_vlans",
        +[](Connection& connection, const VlanParentId& parent,
            const std::vector<std::pair<std::int32_t, std::wstring>>& vlans) {
            std::vector<NewVlan> wanted;
            wanted.reserve(vlans.size());
            for (const auto& [number, name] : vlans) {
                wanted.push_back({.id = number, .name = name});
            }
            return connection.Use()->CheckVlans(parent, wanted);
        });
    DefineAs(
        session, "check_vlan_change",
        +[](Connection& connection, const VlanParentId& parent, const Vlan& vlan, std::int32_t number,
            const std::wstring& name) {
            return connection.Use()->CheckVlanChange(parent, vlan, {.id = number, .name = name});
        });
    DefineAs(
        session, "add_vlan",
        +[](Connection& connection, const VlanParentId& parent, std::int32_t number,
            const std::wstring& name) {
            return connection.Use()->AddVlan(parent, {.id = number, .name = name});
        });
    DefineAs(
        session, "modify_vlan",
        +[](Connection& connection, const VlanId& vlan, std::int32_t number, const std::wstring& name) {
            connection.Use()->ModifyVlan(vlan, {.id = number, .name = name});
        });
    Define(session, "remove_vlan", &Session::RemoveVlan);
}

} // namespace quillet::python
