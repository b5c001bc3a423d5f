// The module quillet._quillet. What its users see is written in Python, above it.
#include "Connection.h"

PYBIND11_MODULE(_quillet, module) {
    namespace python = quillet::python;
    module.doc() = "The client layer for the classes of the package quillet, and for nobody else.";
    python::PrepareThreads();
    python::DefineErrors();
    python::DefineSecret(module);
    pybind11::class_<python::Connection> session(module, "Session");
    using Connection = python::Connection;
    python::DefineAs(
        session, "close", +[](Connection& connection) { connection.Close(); });
    python::DefineAs(
        session, "is_open", +[](Connection& connection) { return connection.IsOpen(); });
    python::DefineAs(
        session, "begin", +[](Connection& connection) { connection.Begin(); });
    python::DefineAs(
        session, "apply", +[](Connection& connection) { return connection.Apply(); });
    python::DefineAs(
        session, "abandon", +[](Connection& connection) { connection.Abandon(); });
    python::DefineWords(module, session);
    python::DefineFetching(module, session);
    python::DefineAdapters(session);
    python::DefineSettings(session);
    python::DefineTeams(session);
    python::DefineVlans(session);
    python::DefineDiagnostics(module, session);
    python::DefineBoot(session);
    python::DefineLinkSecurity(session);
    python::DefineMachines(module);
}
