// Values of the client layer as Python's, and back: texts, identifiers, enumerations, masks, records, bytes.
#pragma once

#include "MoreNames.h"

#include <quillet/client/Text.h>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstring>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillet::python {

/// A class of the part that is written in Python.
inline pybind11::object ClassOf(const char* module, const char* name) {
    return pybind11::module_::import(module).attr(name);
}

template <class Type>
inline constexpr bool kIsRecord = requires {
    Fields<Type>::kName;
};

template <class Type>
inline constexpr bool kIsNumber = std::is_integral_v<Type> || kEnumName<Type> != nullptr;
template <class Bit>
inline constexpr bool kIsNumber<Flags<Bit>> = true;

/// What is to be given for a value, for people.
template <class Type>
struct Kind {
    static std::string Text() {
        if constexpr (kIsRecord<Type>) {
            return Fields<Type>::kName;
        } else if constexpr (kEnumName<Type> != nullptr) {
            return kEnumName<Type>;
        } else if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, Reload>) {
            return "bool";
        } else if constexpr (kIsNumber<Type>) {
            return "int";
        } else {
            return "str";
        }
    }
};
template <>
struct Kind<Secret> {
    static std::string Text() { return "Secret"; }
};
template <>
struct Kind<VlanParentId> {
    static std::string Text() { return "Adapter or Team"; }
};
template <>
struct Kind<SettingValue> {
    static std::string Text() { return "a value of a setting"; }
};
template <>
struct Kind<std::vector<std::byte>> {
    static std::string Text() { return "bytes"; }
};
template <class Item>
struct Kind<std::vector<Item>> {
    static std::string Text() { return "list of " + Kind<Item>::Text(); }
};
template <class Item>
struct Kind<std::optional<Item>> {
    static std::string Text() { return Kind<Item>::Text() + " or None"; }
};
template <class First, class Second>
struct Kind<std::pair<First, Second>> {
    static std::string Text() { return "(" + Kind<First>::Text() + ", " + Kind<Second>::Text() + ")"; }
};

/// Throws what Python throws for a value that does not fit. The value itself is not shown.
/// @param place where it was found, as "Setting.group: "; empty for an argument
template <class Type>
[[noreturn]] void Refuse(pybind11::handle source, const std::string& place) {
    if (kIsNumber<Type> && PyLong_Check(source.ptr())) {
        throw pybind11::value_error(place + "the number is out of range");
    }
    const std::string kind = Kind<Type>::Text();
    if (kind == "str" && PyUnicode_Check(source.ptr())) {
        throw pybind11::value_error(place + "the text holds what is no character");
    }
    if (kind.starts_with("list of") && PyList_Check(source.ptr())) {
        throw pybind11::type_error(place + kind + " is needed, not a list of something else");
    }
    throw pybind11::type_error(place + kind + " is needed, not " + Py_TYPE(source.ptr())->tp_name);
}

} // namespace quillet::python

namespace pybind11::detail {

/// A provider's text may hold what is no character: it must not make an answer unreadable. A text with a NUL
/// would be cut off on its way to the provider, so it is refused.
template <>
struct type_caster<std::wstring> {
    PYBIND11_TYPE_CASTER(std::wstring, const_name("str"));

    bool load(handle source, bool) {
        if (!source || !PyUnicode_Check(source.ptr())) {
            return false;
        }
        Py_ssize_t length = 0;
        wchar_t* const text = PyUnicode_AsWideCharString(source.ptr(), &length);
        if (text == nullptr) {
            throw error_already_set();
        }
        value.assign(text, static_cast<std::size_t>(length));
        PyMem_Free(text);
        if (value.find(L'\0') != std::wstring::npos) {
            throw value_error("a text must not hold a NUL character");
        }
        return true;
    }

    static handle cast(const std::wstring& text, return_value_policy, handle) {
        return str(quillet::ToUtf8(text)).release();
    }
};

/// An identifier is its path. That it is one of the right kind is seen to by the classes in Python.
template <class Kind>
struct type_caster<quillet::Id<Kind>> {
    PYBIND11_TYPE_CASTER(quillet::Id<Kind>, const_name("str"));

    bool load(handle source, bool convert) {
        make_caster<std::wstring> path;
        if (!path.load(source, convert)) {
            return false;
        }
        value = quillet::Id<Kind>(cast_op<std::wstring&>(path));
        return true;
    }

    static handle cast(const quillet::Id<Kind>& id, return_value_policy policy, handle parent) {
        return make_caster<std::wstring>::cast(id.Path(), policy, parent);
    }
};

/// What carries a VLAN: an object of a class of Python's, for a path alone does not tell which of both it is.
template <>
struct type_caster<quillet::VlanParentId> {
    PYBIND11_TYPE_CASTER(quillet::VlanParentId, const_name("Adapter | Team"));

    bool load(handle source, bool) {
        if (isinstance(source, quillet::python::ClassOf("quillet._values", "Team"))) {
            value = source.attr("path").cast<quillet::TeamId>();
            return true;
        }
        if (isinstance(source, quillet::python::ClassOf("quillet._values", "Adapter"))) {
            value = source.attr("path").cast<quillet::AdapterId>();
            return true;
        }
        return false;
    }
};

template <class Enum>
struct type_caster<Enum, std::enable_if_t<quillet::python::kEnumName<Enum> != nullptr>> {
    PYBIND11_TYPE_CASTER(Enum, const_name("int"));

    bool load(handle source, bool convert) {
        make_caster<std::underlying_type_t<Enum>> number;
        if (!number.load(source, convert)) {
            return false;
        }
        value = static_cast<Enum>(cast_op<std::underlying_type_t<Enum>>(number));
        return true;
    }

    static handle cast(Enum number, return_value_policy, handle) {
        return quillet::python::ClassOf("quillet._words", quillet::python::kEnumName<Enum>)(
                   static_cast<std::underlying_type_t<Enum>>(number))
            .release();
    }
};

template <class Bit>
struct type_caster<quillet::Flags<Bit>> {
    PYBIND11_TYPE_CASTER(quillet::Flags<Bit>, const_name("int"));

    bool load(handle source, bool convert) {
        make_caster<std::uint64_t> mask;
        if (!mask.load(source, convert)) {
            return false;
        }
        value = quillet::Flags<Bit>::FromMask(cast_op<std::uint64_t>(mask));
        return true;
    }

    static handle cast(quillet::Flags<Bit> flags, return_value_policy, handle) {
        const int_ mask(flags.Mask());
        if constexpr (quillet::python::kEnumName<Bit> == nullptr) {
            return int_(mask).release();
        } else {
            return quillet::python::ClassOf("quillet._words", quillet::python::kEnumName<Bit>)(mask)
                .release();
        }
    }
};

template <class Record>
struct type_caster<Record, std::enable_if_t<quillet::python::kIsRecord<Record>>> {
    using Names = quillet::python::Fields<Record>;
    PYBIND11_TYPE_CASTER(Record, const_name("object"));

    bool load(handle source, bool) {
        return source && isinstance(source, quillet::python::ClassOf("quillet._values", Names::kName)) &&
               std::apply([&](const auto&... field) { return (LoadField(source, field) && ...); },
                          Names::kFields);
    }

    static handle cast(const Record& record, return_value_policy, handle) {
        dict arguments;
        std::apply(
            [&](const auto&... field) {
                ((arguments[field.name] = pybind11::cast(record.*field.member, return_value_policy::copy)),
                 ...);
            },
            Names::kFields);
        return quillet::python::ClassOf("quillet._values", Names::kName)(**arguments).release();
    }

  private:
    template <class Member>
    bool LoadField(handle source, const quillet::python::Field<Record, Member>& field) {
        const object attribute = source.attr(field.name);
        make_caster<Member> loaded;
        if (!loaded.load(attribute, false)) {
            quillet::python::Refuse<Member>(attribute, std::string(Names::kName) + "." + field.name + ": ");
        }
        value.*field.member = cast_op<Member&>(loaded);
        return true;
    }
};

/// Whether the driver is reloaded.
template <>
struct type_caster<quillet::Reload> {
    PYBIND11_TYPE_CASTER(quillet::Reload, const_name("bool"));

    bool load(handle source, bool) {
        value = source.ptr() == Py_True ? quillet::Reload::Driver : quillet::Reload::No;
        return source.ptr() == Py_True || source.ptr() == Py_False;
    }
};

/// Why an adapter could not be read whole.
template <>
struct type_caster<std::error_code> {
    static constexpr auto name = const_name("str | None");
    static handle cast(const std::error_code& failure, return_value_policy, handle) {
        return failure ? str(failure.message()).release() : none().release();
    }
};

/// A flash image: bytes, bytearray, memoryview.
template <>
struct type_caster<std::vector<std::byte>> {
    PYBIND11_TYPE_CASTER(std::vector<std::byte>, const_name("bytes"));

    bool load(handle source, bool) {
        if (!source || !PyObject_CheckBuffer(source.ptr())) {
            return false;
        }
        Py_buffer view;
        if (PyObject_GetBuffer(source.ptr(), &view, PyBUF_CONTIG_RO) != 0) {
            throw error_already_set();
        }
        value.resize(static_cast<std::size_t>(view.len));
        if (view.len != 0) {
            std::memcpy(value.data(), view.buf, value.size());
        }
        PyBuffer_Release(&view);
        return true;
    }

    static handle cast(const std::vector<std::byte>& data, return_value_policy, handle) {
        return bytes(reinterpret_cast<const char*>(data.data()), data.size()).release();
    }
};

} // namespace pybind11::detail
