// Arguments from Python: what does not fit is told in words that whoever called understands.
#pragma once

#include "Casters.h"

#include <string>
#include <type_traits>

namespace quillet::python {

/// An argument.
template <class Type>
struct Given {
    Type value{};
};

} // namespace quillet::python

namespace pybind11::detail {

template <class Type>
struct type_caster<quillet::python::Given<Type>> {
    PYBIND11_TYPE_CASTER(quillet::python::Given<Type>, make_caster<Type>::name);

    bool load(handle source, bool) {
        make_caster<Type> loaded;
        if (!loaded.load(source, false)) {
            quillet::python::Refuse<Type>(source, {});
        }
        if constexpr (std::is_base_of_v<type_caster_generic, make_caster<Type>>) {
            value.value = cast_op<const Type&>(loaded);
        } else {
            value.value = cast_op<Type&&>(std::move(loaded));
        }
        return true;
    }
};

} // namespace pybind11::detail
