// Keys and passwords in Python.
#include "Connection.h"

#include <windows.h>

namespace quillet::python {

namespace {

namespace py = pybind11;

/// Nothing of what is given gets into a message: it may be the password all the same. So it is taken as it
/// comes, for who refuses arguments elsewhere shows them.
Secret FromPython(const py::args& texts, const py::kwargs& others) {
    if (!others.empty() || texts.size() > 1) {
        throw py::type_error("a secret is made of one str");
    }
    const py::object text = texts.empty() ? py::object(py::str()) : py::object(texts[0]);
    if (!PyUnicode_Check(text.ptr())) {
        throw py::type_error("a secret is made of a str");
    }
    Py_ssize_t length = 0;
    wchar_t* const copy = PyUnicode_AsWideCharString(text.ptr(), &length);
    if (copy == nullptr) {
        throw py::error_already_set();
    }
    const std::wstring_view view(copy, static_cast<std::size_t>(length));
    const bool isWhole = view.find(L'\0') == std::wstring_view::npos;
    Secret secret(view);
    SecureZeroMemory(copy, view.size() * sizeof(wchar_t));
    PyMem_Free(copy);
    if (!isWhole) {
        throw py::value_error("a secret must not hold a NUL character");
    }
    return secret;
}

py::object Reveal(const Secret& secret) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_FromWideChar(secret.Reveal().data(), static_cast<Py_ssize_t>(secret.Reveal().size())));
}

} // namespace

void DefineSecret(py::module_& module) {
    py::class_<Secret> type(module, "Secret", R"doc(A key or a password, which is not shown.

>>> secret = Secret("open sesame")
>>> secret
Secret(***)
>>> f"the key is {secret}"
'the key is Secret(***)'
>>> secret == Secret("open sesame")
True
>>> secret.reveal()
'open sesame'
)doc");
    type.def(py::init(&FromPython));
    type.def("reveal", &Reveal, "The text, for whoever must have it. Nobody overwrites the copy.");
    type.def("clear", &Secret::Clear, "Overwrites it. There is none then.");
    type.def("__bool__", [](const Secret& secret) { return !secret.IsEmpty(); });
    type.def("__repr__", [](const Secret&) { return "Secret(***)"; });
    type.def("__eq__", [](const Secret& left, const py::object& right) {
        return py::isinstance<Secret>(right) && left == right.cast<const Secret&>();
    });
    type.attr("__hash__") = py::none();
    type.def("__copy__", [](const Secret& secret) { return Secret(secret); });
    type.def("__deepcopy__", [](const Secret& secret, const py::object&) { return Secret(secret); });
    type.def("__reduce_ex__", [](const Secret&, const py::object&) -> py::object {
        throw py::type_error("a secret is not written down");
    });
}

} // namespace quillet::python
