// Operations on adapters, power saving and wake-on-LAN.
#include "Connection.h"

namespace quillet::python {

void DefineAdapters(pybind11::class_<Connection>& session) {
    DefineAs(
        session, "warnings", +[](Connection& connection) { return connection.Use()->Warnings(); });
    Define(session, "adapters", &Session::Adapters);
    Define(session, "adapter_overviews",
           static_cast<std::vector<AdapterOverview> (Session::*)(unsigned)>(&Session::AdapterOverviews));
    Define(session, "overviews_of",
           static_cast<std::vector<AdapterOverview> (Session::*)(std::vector<Adapter>, unsigned)>(
               &Session::AdapterOverviews));
    Define(session, "adapter_by_object_id", &Session::AdapterByObjectId);
    Define(session, "object_id_of", &Session::ObjectIdOf);
    Define(session, "read_adapter", &Session::ReadAdapter);
    Define(session, "read_state", &Session::ReadState);
    Define(session, "read_conditions", &Session::ReadConditions);
    Define(session, "capabilities", &Session::Capabilities);
    Define(session, "read_hardware", &Session::ReadHardware);
    Define(session, "teamed_ports", &Session::TeamedPorts);
    DefineAs(
        session, "identify", +[](Connection& connection, const AdapterId& adapter, std::uint32_t seconds) {
            connection.Use()->Identify(adapter, std::chrono::seconds(seconds));
        });
    Define(session, "hba_path", &Session::HbaPath);
    Define(session, "read_ndis_version", &Session::ReadNdisVersion);
    Define(session, "adapter_warnings",
           static_cast<Flags<ProviderBit> (Session::*)(const AdapterId&)>(&Session::Warnings));
    Define(session, "read_power", &Session::ReadPower);
    Define(session, "read_wake", &Session::ReadWake);
    Define(session, "set_power", &Session::SetPower);
    Define(session, "set_wake", &Session::SetWake);
    Define(session, "reapply_power", &Session::ReapplyPower);
}

} // namespace quillet::python
