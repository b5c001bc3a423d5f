// Operations on boot agents, flash images and iSCSI boot.
#include "Connection.h"

namespace quillet::python {

namespace {

/// Nothing is written where what is told of the stages throws before.
FlashOutcome Program(Connection& connection, const Given<BootAgentId>& bootAgent,
                     const Given<std::vector<std::byte>>& file, const Given<std::vector<std::wstring>>& types,
                     const pybind11::object& progress) {
    return WithoutPython([&] {
        return connection.Use()->ProgramFlash(
            bootAgent.value, file.value, types.value,
            [&](FlashStage stage) { WithPython([&] { progress(stage); }); });
    });
}

} // namespace

void DefineBoot(pybind11::class_<Connection>& session) {
    Define(session, "read_boot_agent", &Session::ReadBootAgent);
    Define(session, "read_flash", &Session::ReadFlash);
    Define(session, "read_image_file", &Session::ReadImageFile);
    Define(session, "verify_images", &Session::VerifyImages);
    Define(session, "write_flash", &Session::WriteFlash);
    session.def("program_flash", &Program);
    Define(session, "iscsi_adapters", &Session::IscsiAdapters);
    Define(session, "set_iscsi_status", &Session::SetIscsiStatus);
    Define(session, "read_iscsi_support", &Session::ReadIscsiSupport);
}

} // namespace quillet::python
