// Failures as exceptions of Python's.
#include "Connection.h"

#include <quillet-wmi/Mof.h>

namespace quillet::python {

namespace {

void Raise(const Error& error, const pybind11::object& read) {
    const char* name = read ? "PartialError" : "Error";
    std::string text = error.what();
    if (const std::string details = FailureDetails(error); !details.empty()) {
        text += " (" + details + ")";
    }
    // As a number without a sign: so it is written everywhere.
    const auto code = static_cast<std::uint32_t>(error.Code());
    pybind11::object type = ClassOf("quillet._errors", name);
    const pybind11::object made = read ? type(text, code, error.Operation(), error.About(), read)
                                       : type(text, code, error.Operation(), error.About());
    PyErr_SetObject(type.ptr(), made.ptr());
}

/// Whether it comes with what was read before.
template <class Read>
bool RaisePartial(const Error& error) {
    const auto* partial = dynamic_cast<const PartialError<Read>*>(&error);
    if (partial == nullptr) {
        return false;
    }
    Raise(error, pybind11::cast(partial->Read()));
    return true;
}

template <class... Reads>
bool RaiseAnyPartial(const Error& error) {
    return (RaisePartial<Reads>(error) || ...);
}

void Translate(std::exception_ptr failure) {
    try {
        HeedInterruption(); // it failed for that
        std::rethrow_exception(std::move(failure));
    } catch (const Error& error) {
        if (!RaiseAnyPartial<std::vector<Adapter>, AdapterState, std::vector<TeamedPort>,
                             std::vector<Setting>, std::vector<OfferedProfile>, PowerOptions, WakeOptions,
                             std::vector<Team>, std::vector<TeamMember>, Team, std::vector<Vlan>, Vlan,
                             std::vector<Diagnostic>, TestResult, std::vector<TestResult>,
                             std::vector<IscsiAdapter>, PacContents>(error)) {
            Raise(error, {});
        }
    } catch (pybind11::error_already_set& error) {
        error.restore();
    } catch (const wmi::MofError& error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    }
}

} // namespace

void DefineErrors() {
    pybind11::register_exception_translator(&Translate);
}

} // namespace quillet::python
