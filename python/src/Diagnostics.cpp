// Operations on diagnostic tests.
#include "Connection.h"

namespace quillet::python {

namespace {

namespace py = pybind11;

RunEnd Run(Connection& connection, const Given<DiagnosticId>& test, const Given<AdapterId>& adapter,
           const Given<std::uint32_t>& interval, const Given<std::uint32_t>& patience, const py::object& seen,
           const std::stop_source& stop) {
    return WithoutPython([&] {
        const Stoppable stoppable(stop.get_token());
        const auto look = [&](const TestResult& result) { WithPython([&] { seen(result); }); };
        return connection.Use()
            ->RunDiagnostic(test.value, adapter.value,
                            {.interval = std::chrono::milliseconds(interval.value),
                             .patience = std::chrono::milliseconds(patience.value),
                             .seen = look,
                             .stop = stop.get_token()})
            .end;
    });
}

} // namespace

void DefineDiagnostics(py::module_& module, py::class_<Connection>& session) {
    py::class_<std::stop_source>(module, "StopSource")
        .def(py::init<>())
        .def("request_stop", &std::stop_source::request_stop, py::call_guard<py::gil_scoped_release>());
    Define(session, "diagnostics", &Session::Diagnostics);
    Define(session, "start_diagnostic", &Session::StartDiagnostic);
    Define(session, "stop_diagnostic", &Session::StopDiagnostic);
    Define(session, "read_result", &Session::ReadResult);
    Define(session, "read_package_results", &Session::ReadPackageResults);
    session.def("run_diagnostic", &Run);
}

} // namespace quillet::python
